// Opens the windows of the display family from the command line, for the tests that
// drive them on an X server and for the checks of the printed output:
//   quarn_report show FILE [TITLE [VIEWER]]   the report display on the lines of FILE
//   quarn_report ps|pdf|txt FILE OUT          one printed form of FILE into OUT
//   quarn_report tmp_ps FILE                  tmp.ps, its conversion and its viewer
//   quarn_report message|alert|big|wait TEXT  a message box, an alert, the big box, the wait form
#include <FL/Fl.H>

#include <fstream>
#include <iostream>
#include <list>
#include <string>
#include <vector>

#include "gui/afficheur.h"
#include "gui/formspp.h"
#include "gui/report.h"

namespace {

std::vector<std::string> readLines(const std::string& path, bool* ok) {
  std::ifstream in(path);
  *ok = static_cast<bool>(in);
  std::vector<std::string> lines;
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

int usage() {
  std::cerr << "usage: quarn_report show FILE [TITLE [VIEWER]] | ps|pdf|txt FILE OUT | tmp_ps FILE"
               " | message|alert|big|wait TEXT"
            << std::endl;
  return 2;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) return usage();
  std::string mode = argv[1];
  std::string arg = argv[2];
  if (mode == "message") {
    fl_show_Smessages(arg);
    return 0;
  }
  if (mode == "alert") {
    fl_show_Salert(arg);
    return 0;
  }
  if (mode == "big") {
    fl_show_Sbigmessages(arg, 80);
    return 0;
  }
  if (mode == "wait") {
    OFD_wait_form wait(arg);
    for (int i = 0; i < 50; i++) {  // half a second on screen
      if (quarn_display_reachable()) Fl::check();
      Fl::wait(0.01);
    }
    return 0;
  }
  bool ok = false;
  std::vector<std::string> lines = readLines(arg, &ok);
  if (!ok) {
    std::cerr << "cannot read " << arg << std::endl;
    return 1;
  }
  if (mode == "show") {
    std::list<std::string> l(lines.begin(), lines.end());
    show_report(l, argc > 3 ? argv[3] : "Report", argc > 4 ? argv[4] : "");
    return 0;
  }
  if (mode == "tmp_ps") {
    OFD_afficheur display(nullptr, 1);
    display.charge(lines, "Report", "");
    display.imprime_tmp_ps();
    return 0;
  }
  if (argc < 4) return usage();
  std::ofstream out(argv[3], std::ios::binary);
  if (!out) {
    std::cerr << "cannot write " << argv[3] << std::endl;
    return 1;
  }
  if (mode == "ps") {
    OFD_afficheur_filtre_impression(lines).imprime_postscript(out);
  } else if (mode == "pdf") {
    OFD_afficheur_filtre_impression(lines).imprime_pdf(out);
  } else if (mode == "txt") {
    OFD_afficheur_filtre_texte(lines).imprime(out);
  } else {
    return usage();
  }
  return 0;
}

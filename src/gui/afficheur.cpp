#include "gui/afficheur.h"

#include <FL/Fl.H>
#include <FL/Fl_Box.H>
#include <FL/Fl_Browser.H>
#include <FL/Fl_Button.H>
#include <FL/Fl_Double_Window.H>
#include <FL/Fl_Int_Input.H>
#include <FL/fl_draw.H>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>

#include "gui/formspp.h"
#include "gui/report.h"
#include "util/Stringpp.h"

namespace {

// A viewer is a window the user reads in; a conversion is a short batch job.
constexpr int kViewerTimeout = 3600;
constexpr int kConverterTimeout = 120;
constexpr int kBrowserLineMax = 161;

// The report as the error stream gets it when no window can open.
void reportToStderr(const std::vector<std::string>& lines, const std::string& title) {
  std::cerr << title << "\n";
  OFD_afficheur_filtre_texte(lines).imprime(std::cerr);
  std::cerr.flush();
}

bool windowsShown() { return quarn_display_reachable() && Fl::first_window() != nullptr; }

}  // namespace

bool report_program_exists(const std::string& program) {
  if (program.empty()) return false;
  auto executable = [](const std::string& path) {
    struct stat st;
    return stat(path.c_str(), &st) == 0 && S_ISREG(st.st_mode) && access(path.c_str(), X_OK) == 0;
  };
  if (program.find('/') != std::string::npos) return executable(program);
  const char* path = std::getenv("PATH");
  std::string rest = path != nullptr ? path : "/usr/bin:/bin";
  while (!rest.empty()) {
    std::string dir = next_record(rest, ':', rest);
    if (executable((dir.empty() ? "." : dir) + "/" + program)) return true;
  }
  return false;
}

int run_report_command(const std::string& command, int timeout_seconds) {
  std::cout.flush();
  std::cerr.flush();
  pid_t pid = fork();
  if (pid < 0) return -1;
  if (pid == 0) {
    setpgid(0, 0);  // the whole job can be ended at the timeout
    execl("/bin/sh", "sh", "-c", command.c_str(), static_cast<char*>(nullptr));
    _exit(127);
  }
  setpgid(pid, pid);
  auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(timeout_seconds);
  for (;;) {
    int status = 0;
    pid_t r = waitpid(pid, &status, WNOHANG);
    if (r == pid) return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    if (r < 0) return -1;
    if (std::chrono::steady_clock::now() >= deadline) {
      kill(-pid, SIGKILL);
      waitpid(pid, &status, 0);
      std::cerr << "command stopped after " << timeout_seconds << " seconds: " << command
                << std::endl;
      return -1;
    }
    if (windowsShown()) Fl::check();
    usleep(10000);
  }
}

void show_report(const std::list<std::string>& lines, const std::string& title,
                 const std::string& viewer) {
  Fl_Group* current = Fl_Group::current();
  Fl_Group::current(nullptr);
  Fl_Double_Window parent(740, 665);
  parent.end();
  OFD_afficheur display(&parent, 1);
  Fl_Group::current(current);
  std::list<std::string> copy = lines;
  std::string t = title, v = viewer;
  display.activation(&copy, t, v);
}

// --- OFD_afficheur ---

OFD_afficheur::OFD_afficheur(Fl_Window* parent, int english)
    : parent_(parent), english_(english) {
  Fl_Group* current = Fl_Group::current();
  Fl_Group::current(nullptr);
  form_ = new Fl_Double_Window(920, 700);
  browser_ = new Fl_Browser(10, 50, 910, 570);
  title_text_ = new Fl_Box(280, 20, 310, 20);
  page_text_ = new Fl_Box(80, 20, 120, 20);
  auto button = [](int x, int y, int w, int h, const char* label) {
    Fl_Button* b = new Fl_Button(x, y, w, h, label);
    b->labelfont(FL_BOLD);
    return b;
  };
  next_button_ = button(300, 630, 120, 20, english ? "next page" : "page suivante");
  previous_button_ = button(300, 660, 120, 20, english ? "previous page" : "page precedente");
  cancel_button_ = button(40, 630, 90, 50, english ? "CANCEL" : "ANNULER");
  pdf_button_ = button(500, 630, 100, 50, english ? "pdf file" : "fichier pdf");
  text_button_ = button(750, 630, 100, 50, english ? "text file" : "fichier texte");
  page_input_ = new Fl_Int_Input(150, 645, 40, 20);
  // Enter in the page field works as the go button.
  page_input_->when(FL_WHEN_ENTER_KEY_ALWAYS);
  go_button_ = button(190, 645, 20, 20, "@>");
  go_button_->labelsize(10);
  next_button_->shortcut(FL_Page_Down | FL_CTRL);
  previous_button_->shortcut(FL_Page_Up | FL_CTRL);
  form_->end();
  form_->resizable(browser_);
  Fl_Group::current(current);
}

OFD_afficheur::~OFD_afficheur() {
  if (form_->shown()) form_->hide();
  delete form_;
}

int OFD_afficheur::nb_pages() const { return affichage_ ? affichage_->nb_pages() : 0; }

void OFD_afficheur::message(const std::string& text) {
  fl_show_Smessages(text);
  std::cerr << text << std::endl;
}

void OFD_afficheur::charge(std::vector<std::string> lines, const std::string& title,
                           const std::string& viewer) {
  viewer_ = viewer;
  title_ = title;
  page_ = 0;
  affichage_ = std::make_unique<OFD_afficheur_filtre_affichage>(lines);
  impression_ = std::make_unique<OFD_afficheur_filtre_impression>(lines);
  texte_ = std::make_unique<OFD_afficheur_filtre_texte>(std::move(lines));
  form_->copy_label(title_.c_str());
  fl_set_object_Slabel(title_text_, title_, 50);
  visu_page();
}

void OFD_afficheur::visu_page() {
  if (!affichage_) return;
  lignes_.clear();
  std::string rest = affichage_->visu_page(page_);
  while (!rest.empty()) lignes_.push_back(my_before(next_record(rest, '\n', rest), kBrowserLineMax));
  // The browser measures its lines with the display's fonts: without one it stays empty.
  if (quarn_display_reachable()) {
    browser_->clear();
    for (const std::string& l : lignes_) browser_->add(l.c_str());
  }
  fl_set_object_Slabel(page_text_,
                       "page " + std::to_string(page_ + 1) + " / " +
                           std::to_string(affichage_->nb_pages() + 1) + "    ",
                       25);
  fl_set_Sinput(page_input_, std::to_string(page_ + 1));
}

void OFD_afficheur::page_precedente() { page_numero(page_ - 1); }

void OFD_afficheur::page_suivante() { page_numero(page_ + 1); }

void OFD_afficheur::page_numero(int page) {
  if (page < 0 || page > nb_pages()) return;
  page_ = page;
  visu_page();
}

void OFD_afficheur::fichier_pdf() {
  if (!impression_) return;
  {
    std::ofstream out("tmp.pdf", std::ios::binary);
    if (!out) {
      message("cannot write tmp.pdf");
      return;
    }
    impression_->imprime_pdf(out);
  }
  message(english_ ? "generation of tmp.pdf file" : "generation du fichier tmp.pdf");
  if (!viewer_.empty()) imprime_tmp_pdf();
}

void OFD_afficheur::fichier_texte() {
  if (!texte_) return;
  {
    std::ofstream out("tmp.txt");
    if (!out) {
      message("cannot write tmp.txt");
      return;
    }
    texte_->imprime(out);
  }
  message(english_ ? "generation of tmp.txt file" : "generation du fichier tmp.txt");
}

// A missing viewer leaves the file in place for the user and says so.
void OFD_afficheur::imprime_tmp_pdf() {
  if (!report_program_exists(viewer_)) {
    message("viewer not found: " + viewer_ + " (tmp.pdf is kept)");
    return;
  }
  run_report_command("\"" + viewer_ + "\" tmp.pdf", kViewerTimeout);
  std::remove("tmp.pdf");
}

void OFD_afficheur::imprime_tmp_ps() {
  if (!impression_) return;
  {
    std::ofstream out("tmp.ps");
    if (!out) {
      message("cannot write tmp.ps");
      return;
    }
    impression_->imprime_postscript(out);
  }
  if (!report_program_exists("ps2pdf")) {
    message("converter not found: ps2pdf (tmp.ps is kept)");
    return;
  }
  if (run_report_command("ps2pdf tmp.ps", kConverterTimeout) != 0) {
    message("ps2pdf tmp.ps failed (tmp.ps is kept)");
    return;
  }
  std::remove("tmp.ps");
  if (!report_program_exists("acroread")) {
    message("viewer not found: acroread (tmp.pdf is kept)");
    return;
  }
  run_report_command("acroread tmp.pdf", kViewerTimeout);
  std::remove("tmp.pdf");
}

void OFD_afficheur::boucle() {
  for (;;) {
    Fl::check();
    bool done = false;
    while (Fl_Widget* w = Fl::readqueue()) {
      if (w == cancel_button_ || w == form_) {
        done = true;
      } else if (w == next_button_) {
        page_suivante();
      } else if (w == previous_button_) {
        page_precedente();
      } else if (w == pdf_button_) {
        fichier_pdf();
      } else if (w == text_button_) {
        fichier_texte();
      } else if (w == go_button_ || w == page_input_) {
        page_numero(static_cast<int>(Stol(page_input_->value())) - 1);
        visu_page();  // an ignored number is put back to the current page
      }
    }
    if (done || !form_->shown()) break;
    usleep(1000);
  }
}

void OFD_afficheur::activation(std::list<std::string>* lines, std::string& title,
                               std::string& viewer) {
  if (parent_ != nullptr) parent_->deactivate();
  if (lines == nullptr) {
    if (parent_ != nullptr) parent_->activate();
    return;
  }
  charge(std::vector<std::string>(lines->begin(), lines->end()), title, viewer);
  if (!quarn_display_reachable()) {
    reportToStderr(std::vector<std::string>(lines->begin(), lines->end()), title);
  } else {
    form_->show();
    boucle();
    form_->hide();
    Fl::check();
  }
  if (parent_ != nullptr) parent_->activate();
}

void OFD_afficheur::activation(std::string* lines, int count, std::string& title,
                               std::string& viewer) {
  if (lines == nullptr) {
    activation(static_cast<std::list<std::string>*>(nullptr), title, viewer);
    return;
  }
  std::list<std::string> l(lines, lines + std::max(count, 0));
  activation(&l, title, viewer);
}

// --- OFD_wait_form ---

OFD_wait_form::OFD_wait_form(std::string message) : message_(std::move(message)) {
  if (!quarn_display_reachable()) {
    std::cerr << message_ << std::endl;
    return;
  }
  Fl_Group* current = Fl_Group::current();
  Fl_Group::current(nullptr);
  form_ = new Fl_Double_Window(600, 60, "travail en cours ...");
  Fl_Box* frame = new Fl_Box(0, 0, 600, 60);
  frame->box(FL_UP_BOX);
  Fl_Box* text = new Fl_Box(10, 10, 580, 40);
  text->label(message_.c_str());
  form_->end();
  Fl_Group::current(current);
  form_->show();
  Fl::check();
  usleep(1000);
}

OFD_wait_form::~OFD_wait_form() {
  if (form_ == nullptr) return;
  form_->hide();
  Fl::check();
  delete form_;
}

// --- OFL_vision_sheet ---

void OFL_vision_sheet::define(int x, int y, int w, int h, int colour) {
  resize(x, y, w, h);
  colour_ = colour;
}

void OFL_vision_sheet::resize(int x, int y, int w, int h) {
  x0_ = x;
  y0_ = y;
  x1_ = x + w;
  y1_ = y + h;
}

bool OFL_vision_sheet::push() {
  if (x1_ > x0_ && y1_ > y0_) {
    fl_push_clip(x0_, y0_, x1_ - x0_, y1_ - y0_);
    return true;
  }
  return false;
}

void OFL_vision_sheet::pop(bool pushed) {
  if (pushed) fl_pop_clip();
}

void OFL_vision_sheet::break_points(int x1, int y1, int x2, int y2, int* xa, int* ya, int* xb,
                                    int* yb) {
  *xa = (3 * x1 + x2 + 2 * (y1 - y2)) / 4;
  *ya = (3 * y1 + y2 + 2 * (x2 - x1)) / 4;
  *xb = (3 * x2 + x1 + 2 * (y2 - y1)) / 4;
  *yb = (3 * y2 + y1 + 2 * (x1 - x2)) / 4;
}

void OFL_vision_sheet::ofl_line(int x1, int y1, int x2, int y2, int colour) {
  bool p = push();
  fl_color(static_cast<Fl_Color>(colour));
  fl_line(x1, y1, x2, y2);
  pop(p);
}

void OFL_vision_sheet::ofl_dash_line(int x1, int y1, int x2, int y2, int colour) {
  bool p = push();
  fl_color(static_cast<Fl_Color>(colour));
  fl_line_style(1);
  fl_line(x1, y1, x2, y2);
  fl_line_style(0);
  pop(p);
}

void OFL_vision_sheet::ofl_break_line(int x1, int y1, int x2, int y2, int colour) {
  int xa, ya, xb, yb;
  break_points(x1, y1, x2, y2, &xa, &ya, &xb, &yb);
  bool p = push();
  fl_color(static_cast<Fl_Color>(colour));
  fl_line(x1, y1, xa, ya);
  fl_line(xa, ya, xb, yb);
  fl_line(xb, yb, x2, y2);
  pop(p);
}

void OFL_vision_sheet::ofl_rect(int x, int y, int w, int h, int colour) {
  bool p = push();
  fl_color(static_cast<Fl_Color>(colour));
  fl_rect(x, y, w, h);
  pop(p);
}

void OFL_vision_sheet::ofl_circ(int x, int y, int r, int colour) {
  bool p = push();
  fl_color(static_cast<Fl_Color>(colour));
  fl_arc(x - r, y - r, 2 * r, 2 * r, 0, 360);
  pop(p);
}

void OFL_vision_sheet::ofl_rectf(int x, int y, int w, int h, int colour) {
  bool p = push();
  fl_color(static_cast<Fl_Color>(colour));
  fl_rectf(x, y, w, h);
  pop(p);
}

void OFL_vision_sheet::ofl_circf(int x, int y, int r, int colour) {
  bool p = push();
  fl_color(static_cast<Fl_Color>(colour));
  fl_pie(x - r, y - r, 2 * r, 2 * r, 0, 360);
  pop(p);
}

void OFL_vision_sheet::ofl_rectbound(int x, int y, int w, int h, int fill, int border) {
  bool p = push();
  fl_color(static_cast<Fl_Color>(fill));
  fl_rectf(x, y, w, h);
  fl_color(static_cast<Fl_Color>(border));
  fl_rect(x, y, w, h);
  pop(p);
}

void OFL_vision_sheet::ofl_circbound(int x, int y, int r, int fill, int border) {
  bool p = push();
  fl_color(static_cast<Fl_Color>(fill));
  fl_pie(x - r, y - r, 2 * r, 2 * r, 0, 360);
  fl_color(static_cast<Fl_Color>(border));
  fl_arc(x - r, y - r, 2 * r, 2 * r, 0, 360);
  pop(p);
}

void OFL_vision_sheet::ofl_arrowbound(int x1, int y1, int x2, int y2, int size, int colour) {
  bool p = push();
  fl_color(static_cast<Fl_Color>(colour));
  fl_line(x1, y1, x2, y2);
  // The pie is centred on the head; screen y grows downwards, pie angles upwards.
  double angle = std::atan2(static_cast<double>(y1 - y2), static_cast<double>(x2 - x1)) * 180.0 / M_PI;
  fl_pie(x2 - size, y2 - size, 2 * size, 2 * size, angle + 160, angle + 200);
  pop(p);
}

void OFL_vision_sheet::ofl_drw_String(const std::string& s, int x, int y, int colour) {
  bool p = push();
  fl_color(static_cast<Fl_Color>(colour));
  fl_draw(s.c_str(), x, y);
  pop(p);
}

void OFL_vision_sheet::ofl_drw_text(const std::string& s, int x, int y, int w, int h, int colour) {
  bool p = push();
  fl_color(static_cast<Fl_Color>(colour));
  fl_draw(s.c_str(), x, y, w, h, FL_ALIGN_LEFT);
  pop(p);
}

void OFL_vision_sheet::ofl_drw_arrow_line(int x1, int y1, int x2, int y2, double angle, int length,
                                          int colour) {
  bool p = push();
  fl_color(static_cast<Fl_Color>(colour));
  fl_line(x1, y1, x2, y2);
  double back = std::atan2(static_cast<double>(y1 - y2), static_cast<double>(x1 - x2));
  double a = angle * M_PI / 180.0;
  for (double side : {back - a, back + a})
    fl_line(x2, y2, x2 + static_cast<int>(std::lround(length * std::cos(side))),
            y2 + static_cast<int>(std::lround(length * std::sin(side))));
  pop(p);
}

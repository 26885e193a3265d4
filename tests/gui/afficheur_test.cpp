#include "gui/afficheur.h"

#include <FL/Fl_Box.H>
#include <FL/Fl_Browser.H>
#include <FL/Fl_Double_Window.H>
#include <FL/Fl_Int_Input.H>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "gui/afficheur_filtres.h"
#include "gui/report.h"
#include "util/report.h"

void install_message_boxes();

namespace {

std::vector<std::string> textLines(int n) {
  std::vector<std::string> lines;
  for (int i = 1; i <= n; i++) lines.push_back("line " + std::to_string(i));
  return lines;
}

std::vector<std::string> readFile(const std::string& path) {
  std::ifstream in(path);
  std::vector<std::string> lines;
  for (std::string l; std::getline(in, l);) lines.push_back(l);
  return lines;
}

const std::string kData = std::string(QUARN_SOURCE_DIR) + "/tests/gui/data/";

TEST(ReportLines, Types) {
  const struct {
    const char* line;
    int type;
  } cases[] = {
      {"#T", 3}, {"#TRAIT", 3}, {"#C 10", 1}, {"#COLONNE 130 ", 1}, {"#P", 2},
      {"#", 0},  {"", 0},       {"#X", 0},    {"text#with#columns", 0}, {"T#", 0},
  };
  for (const auto& c : cases) EXPECT_EQ(report_line_type(c.line), c.type) << c.line;
}

TEST(ReportLines, ColumnDefinitions) {
  const struct {
    const char* definition;
    std::vector<int> widths;
    std::vector<bool> bars;
  } cases[] = {
      {"#COLONNE 130 ", {130}, {false}},
      {"#C 10 T20 5", {10, 20, 5}, {false, true, false}},
      {"#C T10T20", {10, 20}, {true, true}},
      {"#C T 7", {7}, {true}},
      {"#C12 3", {3}, {false}},  // read after the first blank only
      {"#C", {}, {}},
      {"#C 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1", std::vector<int>(15, 1),
       std::vector<bool>(15, false)},
  };
  for (const auto& c : cases) {
    OFD_afficheur_filtre_affichage f({});
    EXPECT_EQ(f.visu_ligne(c.definition), "") << c.definition;
    EXPECT_EQ(f.largeurs(), c.widths) << c.definition;
    EXPECT_EQ(f.traits(), c.bars) << c.definition;
  }
}

TEST(ReportLines, ScreenForm) {
  OFD_afficheur_filtre_affichage f({});
  EXPECT_EQ(f.visu_ligne("no columns yet#b"), "@f@S14 no columns yet#b");
  f.visu_ligne("#C 5 T3 4");
  const struct {
    const char* line;
    const char* screen;
  } cases[] = {
      {"ab#cdefg#h", "@f@S14 ab   cdeh   "},
      {"a", "@f@S14 a           "},
      {"123456#1#2#dropped", "@f@S14 123451  2   "},
      {"#T", "@f@S14 ------------"},
      {"#P", ""},
  };
  for (const auto& c : cases) EXPECT_EQ(f.visu_ligne(c.line), c.screen) << c.line;
}

// A page holds 76 text lines and rules; definitions and page marks take no line.
TEST(ReportPages, SeventySixLinesAPage) {
  const struct {
    int textLines;
    int lastPage;
  } cases[] = {{0, 0}, {1, 0}, {76, 0}, {77, 1}, {152, 1}, {153, 2}};
  for (const auto& c : cases) {
    std::vector<std::string> lines = textLines(c.textLines);
    lines.insert(lines.begin(), "#C 20");
    lines.push_back("#P");
    OFD_afficheur_filtre_affichage f(lines);
    EXPECT_EQ(f.nb_pages(), c.lastPage) << c.textLines;
  }
  std::vector<std::string> lines = textLines(77);
  lines.insert(lines.begin() + 40, "#C 3");  // a definition on the first page
  OFD_afficheur_filtre_affichage f(lines);
  std::string first = f.visu_page(0);
  EXPECT_EQ(std::count(first.begin(), first.end(), '\n'), 75);
  EXPECT_EQ(first.substr(0, 15), "@f@S14 line 1\n@");
  // The second page is read with the columns defined on the first.
  EXPECT_EQ(f.visu_page(1), "@f@S14 lin");
  EXPECT_EQ(f.visu_page(2), "");
}

TEST(ReportText, GoldenFile) {
  std::ostringstream out;
  OFD_afficheur_filtre_texte(readFile(kData + "three_pages.rpt")).imprime(out);
  std::ifstream golden(kData + "three_pages.txt");
  std::stringstream expected;
  expected << golden.rdbuf();
  EXPECT_EQ(out.str(), expected.str());
}

std::string postscript(const std::vector<std::string>& lines) {
  std::ostringstream out;
  OFD_afficheur_filtre_impression(lines).imprime_postscript(out);
  return out.str();
}

size_t count(const std::string& s, const std::string& part) {
  size_t n = 0;
  for (size_t at = s.find(part); at != std::string::npos; at = s.find(part, at + 1)) n++;
  return n;
}

TEST(ReportPrint, PostScriptGeometry) {
  std::string ps = postscript({"#C 4 T6", "ab#(c)", "#T", "x\\y"});
  EXPECT_EQ(ps.substr(0, 15), "%!PS-Adobe-2.0\n");
  // Line 1 at y 790; the second column 4 characters (20 units) to the right.
  EXPECT_NE(ps.find("40 790 moveto (ab) show\n"), std::string::npos) << ps;
  EXPECT_NE(ps.find("60 790 moveto (\\(c\\)) show\n"), std::string::npos) << ps;
  // The rule of line 2 spans both columns; the bar of column 2 runs along lines 1 to 3.
  EXPECT_NE(ps.find("newpath 40 783 moveto 90 783 lineto stroke \n"), std::string::npos) << ps;
  EXPECT_NE(ps.find("newpath 58 798 moveto 58 768 lineto stroke \n"), std::string::npos) << ps;
  EXPECT_NE(ps.find("40 770 moveto (x\\\\y) show\n"), std::string::npos) << ps;
  EXPECT_EQ(count(ps, "showpage"), 1u);

  std::string three = postscript(readFile(kData + "three_pages.rpt"));
  EXPECT_EQ(count(three, "showpage"), 3u);
  EXPECT_NE(three.find("%%page : 3 3\n"), std::string::npos);
  // The 76th line of a page stands at y 40, the first of the next one at 790 again.
  EXPECT_NE(three.find("40 40 moveto (73) show\n"), std::string::npos);
  EXPECT_NE(three.find("40 790 moveto (74) show\n"), std::string::npos);
}

TEST(ReportPrint, PdfFrameGrowsWithThePages) {
  std::ostringstream out;
  OFD_afficheur_filtre_impression(readFile(kData + "three_pages.rpt")).imprime_pdf(out);
  std::string pdf = out.str();
  EXPECT_EQ(pdf.substr(0, 9), "%PDF-1.4\n");
  EXPECT_NE(pdf.find("     /Kids [10 0 R 12 0 R 14 0 R]\n     /Count 3\n"), std::string::npos);
  EXPECT_NE(pdf.find("15 0 obj\n"), std::string::npos);
  EXPECT_NE(pdf.find("     40 760 Td\n(No) Tj\n"), std::string::npos);
  // Every offset of the cross-reference table points at its object.
  size_t xref = pdf.find("\nxref\n0 16\n");
  ASSERT_NE(xref, std::string::npos);
  std::istringstream table(pdf.substr(xref + 11));
  for (int n = 0; n < 16; n++) {
    long offset;
    std::string generation, kind;
    table >> offset >> generation >> kind;
    bool used = n >= 10 || (n >= 1 && n <= 5);
    EXPECT_EQ(kind, used ? "n" : "f") << n;
    if (used) {
      std::string head = std::to_string(n) + " 0 obj";
      EXPECT_EQ(pdf.compare(offset, head.size(), head), 0) << n;
    }
  }
  size_t startxref = pdf.find("startxref\n");
  EXPECT_EQ(std::stol(pdf.substr(startxref + 10)), static_cast<long>(xref + 1));
  EXPECT_NE(pdf.find("  << /Size 16\n     /Root 1 0 R\n  >>\n"), std::string::npos);
  EXPECT_EQ(pdf.substr(pdf.size() - 6), "%%EOF\n");
}

// The display's commands without a window: paging, the go field, the files written.
class Display : public ::testing::Test {
 protected:
  void SetUp() override {
    setenv("QUARN_BATCH", "1", 1);
    dir_ = std::filesystem::temp_directory_path() / ("quarn_display_" + std::to_string(getpid()));
    std::filesystem::create_directories(dir_);
    old_ = std::filesystem::current_path();
    std::filesystem::current_path(dir_);
  }
  void TearDown() override {
    std::filesystem::current_path(old_);
    std::filesystem::remove_all(dir_);
  }
  std::filesystem::path dir_, old_;
};

TEST_F(Display, Paging) {
  OFD_afficheur d(nullptr, 1);
  d.charge(readFile(kData + "three_pages.rpt"), "Report", "");
  EXPECT_EQ(d.nb_pages(), 2);
  EXPECT_STREQ(d.page_text()->label(), "page 1 / 3    ");
  EXPECT_EQ(static_cast<int>(d.browser_lines().size()), 76);
  d.page_precedente();
  EXPECT_EQ(d.page(), 0);
  d.page_suivante();
  d.page_suivante();
  EXPECT_EQ(d.page(), 2);
  EXPECT_STREQ(d.page_input()->value(), "3");
  EXPECT_EQ(static_cast<int>(d.browser_lines().size()), 16);
  d.page_suivante();
  EXPECT_EQ(d.page(), 2) << "no page beyond the last";
  d.page_numero(3);
  d.page_numero(-1);
  EXPECT_EQ(d.page(), 2);
  d.page_numero(1);
  EXPECT_STREQ(d.page_text()->label(), "page 2 / 3    ");
}

TEST(DisplayForm, LabelsAndGeometry) {
  const struct {
    int english;
    std::vector<std::string> labels;
  } cases[] = {
      {1, {"next page", "previous page", "CANCEL", "pdf file", "text file"}},
      {0, {"page suivante", "page precedente", "ANNULER", "fichier pdf", "fichier texte"}},
  };
  for (const auto& c : cases) {
    OFD_afficheur d(nullptr, c.english);
    EXPECT_EQ(d.form()->w(), 920);
    EXPECT_EQ(d.form()->h(), 700);
    EXPECT_FALSE(d.form()->shown());
    std::vector<std::string> labels;
    for (int i = 0; i < d.form()->children(); i++)
      if (d.form()->child(i)->label() != nullptr && *d.form()->child(i)->label() != '@')
        labels.push_back(d.form()->child(i)->label());
    EXPECT_EQ(labels, c.labels);
  }
}

TEST_F(Display, BrowserLinesAreCut) {
  OFD_afficheur d(nullptr, 0);
  d.charge({"#C 200", std::string(300, 'x')}, "Report", "");
  EXPECT_EQ(d.browser_lines().at(0).size(), 161u);
  EXPECT_EQ(d.nb_pages(), 0);
  EXPECT_STREQ(d.page_input()->value(), "1");
}

TEST_F(Display, FilesAndViewers) {
  OFD_afficheur d(nullptr, 1);
  d.charge(readFile(kData + "three_pages.rpt"), "Report", "");
  d.fichier_texte();
  EXPECT_TRUE(std::filesystem::exists("tmp.txt"));
  d.fichier_pdf();  // no viewer: the file stays
  EXPECT_TRUE(std::filesystem::exists("tmp.pdf"));

  // A viewer is run on the file, which is removed afterwards.
  std::ofstream("viewer.sh") << "#!/bin/sh\ncp \"$1\" seen.pdf\n";
  std::filesystem::permissions("viewer.sh", std::filesystem::perms::owner_all);
  d.charge(readFile(kData + "three_pages.rpt"), "Report", (dir_ / "viewer.sh").string());
  d.fichier_pdf();
  EXPECT_TRUE(std::filesystem::exists("seen.pdf"));
  EXPECT_FALSE(std::filesystem::exists("tmp.pdf"));

  // A missing viewer is reported and the file kept.
  d.charge({"a"}, "Report", "no-such-viewer-quarn");
  testing::internal::CaptureStderr();
  d.fichier_pdf();
  std::string err = testing::internal::GetCapturedStderr();
  EXPECT_NE(err.find("viewer not found: no-such-viewer-quarn"), std::string::npos) << err;
  EXPECT_TRUE(std::filesystem::exists("tmp.pdf"));
}

TEST(Commands, TimeoutAndStatus) {
  EXPECT_EQ(run_report_command("exit 3", 10), 3);
  EXPECT_EQ(run_report_command("sleep 30", 1), -1) << "killed at the timeout";
  EXPECT_TRUE(report_program_exists("sh"));
  EXPECT_TRUE(report_program_exists("/bin/sh"));
  EXPECT_FALSE(report_program_exists("acroread-quarn-none"));
  EXPECT_FALSE(report_program_exists(""));
}

TEST(NoDisplay, ReportGoesToTheErrorStream) {
  setenv("QUARN_BATCH", "1", 1);
  testing::internal::CaptureStderr();
  show_report({"#COLONNE 130 ", "first", "#T", "second"}, "Debugging trace");
  std::string err = testing::internal::GetCapturedStderr();
  EXPECT_EQ(err, "Debugging trace\n" + std::string(55, '-') + "\nfirst\n" + std::string(55, '-') +
                     "\nsecond\n");
  // The core reaches the display through its installed boxes.
  install_message_boxes();
  testing::internal::CaptureStderr();
  report_display({"trace line"}, "Debugging trace");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "Debugging trace\ntrace line\n");
  testing::internal::CaptureStderr();
  { OFD_wait_form wait("compiling"); }
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "compiling\n");
}

TEST(Sheet, BreakLineAndClip) {
  OFL_vision_sheet s;
  EXPECT_EQ(s.colour(), 56);
  s.define(10, 20, 30, 40, 1);
  EXPECT_EQ(s.x1(), 40);
  EXPECT_EQ(s.y1(), 60);
  int xa, ya, xb, yb;
  OFL_vision_sheet::break_points(0, 0, 40, 0, &xa, &ya, &xb, &yb);
  EXPECT_EQ(xa, 10);
  EXPECT_EQ(ya, 20);
  EXPECT_EQ(xb, 30);
  EXPECT_EQ(yb, -20);
}

}  // namespace

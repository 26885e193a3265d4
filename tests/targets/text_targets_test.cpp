// Lustre, Esterel, the automaton-tool model and the documentation form of compiled
// programs: the text is compared with the files in tests/targets/text, and the Lustre
// and Esterel text must pass the structural checks. QUARN_REGENERATE=1 rewrites the
// expected files (read them before committing).
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>
#include <unistd.h>

#include "data/data.h"
#include "util/compilation.h"
#include "equations/Bddexpression.h"
#include "model/module.h"
#include "signals/signal_manager.h"
#include "targets/report_display.h"
#include "util/report.h"
#include "text_check.h"
#include "common/quarn_test.h"

namespace {

// The module compiled from its source and the finalized copy that generators get.
Module* finalized(const std::string& file, const std::string& name) {
  quarn_test::fresh_run();  // names count statements over the run
  Compilation::qn_parse(file);
  Module* m = Compilation::ModTable->get(name);
  if (!m) return nullptr;
  m->complementary_check_syntax();
  m->compile();
  Module* copy = new Module(*m);
  copy->finalize(0);
  return copy;
}

// The user's functions and constants that the text may name: methods and zero_ values.
std::set<std::string> user_names() {
  std::set<std::string> names;
  if (Compilation::GDataMethodTable && Compilation::GDataMethodTable->getMethodList())
    for (MethodDecl* d : *Compilation::GDataMethodTable->getMethodList()) names.insert(d->getName());
  if (Compilation::GDataTypeTable)
    for (const auto& [type, index] : Compilation::GDataTypeTable->getTypeTable())
      names.insert(DataTypeTable::zero_lustre(type));
  return names;
}

std::string text_of(const std::function<void(std::ostream&)>& write) {
  std::ostringstream out;
  write(out);
  return out.str();
}

const std::string kTextDir = std::string(QUARN_SOURCE_DIR) + "/tests/targets/text/";

void compare_with_file(const std::string& text, const std::string& expected_file) {
  std::string path = kTextDir + expected_file;
  if (getenv("QUARN_REGENERATE")) std::ofstream(path) << text;
  std::ifstream in(path);
  ASSERT_TRUE(in.is_open()) << path;
  std::stringstream expected;
  expected << in.rdbuf();
  EXPECT_EQ(text, expected.str()) << expected_file;
}

std::string joined(const std::vector<std::string>& faults) {
  std::string s;
  for (const std::string& f : faults) s += f + "\n";
  return s;
}

TEST(TextTargets, ProgramsMatchTheirExpectedTextAndParse) {
  struct Case {
    std::string source, module;
  };
  const std::string examples = std::string(QUARN_SOURCE_DIR) + "/examples/";
  for (const Case& c : {Case{examples + "abro.qn", "abro"}, Case{kTextDir + "data.qn", "dat"}}) {
    SCOPED_TRACE(c.module);
    Module* m = finalized(c.source, c.module);
    ASSERT_NE(m, nullptr);
    std::string lustre = text_of([&](std::ostream& o) { m->LUSTRE_put(o, 0); });
    std::string esterel = text_of([&](std::ostream& o) { m->ESTEREL_put(o, 0); });
    compare_with_file(lustre, c.module + ".lus");
    compare_with_file(esterel, c.module + ".strl");
    compare_with_file(text_of([&](std::ostream& o) { m->ENCAPSULATEDHOV_put(o); }), c.module + ".hov");
    compare_with_file(text_of([&](std::ostream& o) { m->DOC_put(o, 0); }), c.module + ".doc");
    EXPECT_EQ(joined(text_check::check_lustre(lustre, user_names())), "") << lustre;
    EXPECT_EQ(joined(text_check::check_esterel(esterel, user_names())), "") << esterel;
  }
}

// Every program of the examples and of the reaction traces gives Lustre and Esterel
// text that passes the structural checks.
TEST(TextTargets, EveryTracedProgramParses) {
  std::vector<std::string> files;
  for (const char* dir : {"/examples", "/tests/e2e/trace"})
    for (const auto& entry : std::filesystem::directory_iterator(std::string(QUARN_SOURCE_DIR) + dir))
      if (entry.path().extension() == ".qn") files.push_back(entry.path().string());
  std::sort(files.begin(), files.end());
  ASSERT_GT(files.size(), 10u);
  for (const std::string& file : files) {
    quarn_test::fresh_run();
    Compilation::qn_parse(file);
    std::vector<std::string> names;
    for (const auto& [name, module] : *Compilation::ModTable->getTable()) names.push_back(name);
    for (const std::string& name : names) {
      SCOPED_TRACE(file + ": " + name);
      Module* m = Compilation::ModTable->get(name);
      m->complementary_check_syntax();
      m->compile();
      Module* copy = new Module(*m);
      copy->finalize(0);
      std::string lustre = text_of([&](std::ostream& o) { copy->LUSTRE_put(o, 0); });
      std::string esterel = text_of([&](std::ostream& o) { copy->ESTEREL_put(o, 0); });
      EXPECT_EQ(joined(text_check::check_lustre(lustre, user_names())), "") << lustre;
      EXPECT_EQ(joined(text_check::check_esterel(esterel, user_names())), "") << esterel;
    }
  }
}

// A value signal whose equation is abstract (computed from data) but has no binding:
// the writers stop with the message and status 1.
TEST(TextTargetsDeathTest, AbstractEquationWithoutBinding) {
  const std::vector<std::pair<std::string, std::function<void(Module&, std::ostream&)>>> writers = {
      {"lustre", [](Module& m, std::ostream& o) { m.LUSTRE_put(o, 0); }},
      {"esterel", [](Module& m, std::ostream& o) { m.ESTEREL_put(o, 0); }},
  };
  for (const auto& [target, write] : writers) {
    SCOPED_TRACE(target);
    Module m("m");
    m.createCompileEnv();
    Signal* v = new Signal("v", &m, m.getBddWood());
    v->setLocal();
    m.addLocalSignal(v);
    Bddexpressionwood* w = m.getBddWood();
    new Bddexpression(v->getOverBddId(&m, w), w, std::set<long>{}, "VALUE_SIGNAL", 0, 0);
    std::ostringstream out;
    EXPECT_EXIT(write(m, out), testing::ExitedWithCode(1), "\\*\\*\\*error: abstract equation without bindind for:v");
  }
}

// The display gets the trace in lines of at most 128 characters: a line feed or a zero
// byte ends a line, and so does a 129th character, which is lost.
TEST(DebugTrace, LinesForTheDisplay) {
  struct Case {
    std::string file;
    std::list<std::string> lines;
  };
  const std::string a128(128, 'a');
  const std::vector<Case> cases = {
      {"", {}},
      {"one\ntwo\n", {"one", "two"}},
      {"no end", {"no end"}},
      {std::string("x\0y\n", 4), {"x", "y"}},
      {a128 + "\n", {a128}},
      {a128 + "bc\n", {a128, "c"}},
      {a128 + a128 + "zz", {a128, std::string(127, 'a') + "z"}},
  };
  const std::string path = std::string(QUARN_BINARY_DIR) + "/report_lines_" + std::to_string(getpid()) + ".txt";
  for (const Case& c : cases) {
    std::ofstream(path, std::ios::binary) << c.file;
    std::list<std::string> expected = c.lines;
    expected.push_front("#COLONNE 130 ");
    EXPECT_EQ(report_lines_of_file(path), expected) << c.file;
  }
  std::remove(path.c_str());
}

int shown_reports = 0;
void count_report(const std::list<std::string>&, const std::string&, const std::string&) { shown_reports++; }

// A batch run writes the trace and never calls the display, so nothing waits.
TEST(DebugTrace, BatchRunWritesTheFileAndShowsNothing) {
  Module* m = finalized(std::string(QUARN_SOURCE_DIR) + "/examples/abro.qn", "abro");
  ASSERT_NE(m, nullptr);
  Module* main_module = Compilation::ModTable->get("abro");
  ReportBoxes boxes;
  boxes.display = count_report;
  install_report_boxes(boxes);
  Module::OutputDir = QUARN_BINARY_DIR;
  Module::OutputFile = "trace_" + std::to_string(getpid()) + ".dbg";
  main_module->printDebug();
  std::string path = Module::OutputDir + "/" + Module::OutputFile;
  std::ifstream in(path);
  std::string first;
  std::getline(in, first);
  EXPECT_EQ(first, "module: abro");
  EXPECT_EQ(shown_reports, 0);
  std::remove(path.c_str());
  install_report_boxes(ReportBoxes{});
  Module::OutputDir = ".";
  Module::OutputFile.clear();
}

}  // namespace

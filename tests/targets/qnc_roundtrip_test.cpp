// Compiled modules written and read back: the text is a fixpoint of write-read-write,
// the equations keep their functions, and damaged files end with the reader's report.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <random>
#include <sstream>

#include "bdd/bddpp.h"
#include "util/compilation.h"
#include "equations/Bddexpression.h"
#include "model/module.h"
#include "signals/signal_manager.h"

namespace {

const bool kBatch = (setenv("QUARN_BATCH", "1", 1), true);

// One scratch directory per test process (children write into their parent's), removed
// at the end.
const std::string kScratch = [] {
  std::string dir = std::string(QUARN_BINARY_DIR) + "/qnc_test_" + std::to_string(getpid());
  std::system(("mkdir -p " + dir).c_str());
  static struct Cleanup {
    std::string dir;
    pid_t owner = getpid();
    ~Cleanup() {
      if (getpid() == owner) std::system(("rm -rf " + dir).c_str());
    }
  } cleanup{dir};
  return dir;
}();

std::string scratch(const std::string& name) { return kScratch + "/" + name; }

Signal* declare(Module& m, const std::string& name, const char* kind, const std::string& type = "") {
  Signal* s = new Signal(name, &m, m.getBddWood());
  if (!type.empty()) s->setValueType(type, &m);
  std::string k = kind;
  if (k == "input") {
    s->setInput();
    m.addInputSignal(s);
  } else if (k == "output") {
    s->setOutput();
    m.addOutputSignal(s);
  } else {
    s->setLocal();
    m.addLocalSignal(s);
  }
  return s;
}

bdd var(Module& m, const std::string& name) {
  Bddexpressionwood* w = m.getBddWood();
  return w->Bdd_var_by_index(w->Index_var_by_name(name));
}

// A module as compilation leaves one: interface, wires, two occurrences of an output and
// a local, a register, equations reading all of them, one abstract equation.
Module* sampleModule(const std::string& name) {
  Module* m = new Module(name);
  declare(*m, "A", "input");
  declare(*m, "B", "input");
  declare(*m, "O", "output");
  declare(*m, "L", "local");
  m->addRegisterDecl("q", 1, "qn");
  m->createCompileEnv();
  m->setReincarnate(true);
  Bddexpressionwood* w = m->getBddWood();
  bddpp_manager* mg = w->my_bdd_manager();
  bdd a = var(*m, "_s_A"), b = var(*m, "_s_B"), q = var(*m, "_s_q"), set = var(*m, "_s_SET" + name),
      reset = var(*m, "_s_RESET" + name);
  bdd o1 = mg->Bdd_ite(a, mg->Bdd_not(b), q);
  new Bddexpression("_s_O_1", w, var(*m, "_s_O_1"), o1, 1, 0);
  new Bddexpression("_v_O_1", w, var(*m, "_v_O_1"), mg->Bdd_and(a, b), 1, 0);
  new Bddexpression("_s_L_1", w, var(*m, "_s_L_1"), mg->Bdd_ite(set, a, mg->Bdd_zero()), 1, 0);
  new Bddexpression("_s_qn", w, var(*m, "_s_qn"), mg->Bdd_and(mg->Bdd_not(reset), var(*m, "_s_L")), 2, 0);
  new Bddexpression("_s_RTL" + name, w, var(*m, "_s_RTL" + name), mg->Bdd_one(), 0, 0);
  std::set<long> deps = {w->Index_var_by_name("_s_A"), w->Index_var_by_name("_s_q")};
  new Bddexpression(w->Index_var_by_name("_v_L_1"), w, deps, "VALUE_SIGNAL", 3, 0);
  return m;
}

std::string written(Module& m, int forgetLocals = 0) {
  std::ostringstream out;
  m.QNC_put(out, 2, 1, forgetLocals);
  return out.str();
}

std::string toFile(const std::string& name, const std::string& text) {
  std::string path = scratch(name);
  std::ofstream(path) << text;
  return path;
}

Module* readBack(const std::string& name, const std::string& text) {
  return Compilation::qnc_parse(toFile(name, text), Compilation::EmptyString, nullptr, nullptr);
}

// Value of f when exactly the variables named in `on` are true.
bool evaluate(const bdd& f, const std::set<std::string>& on) {
  bddpp_manager* mg = f.manager_ref();
  bdd_node* n = f.node();
  int link = f.link_type();
  while (n != mg->Bdd_node_one()) {
    if (on.count(mg->Name_var_by_id(n->var_id))) {
      n = n->then_node;
    } else {
      link *= n->else_link_type;
      n = n->else_node;
    }
  }
  return link == 1;
}

// Every equation of `from` stands in `to` under the same variable name, with the same
// function, dates and dependences by name.
void expectSameEquations(Module& from, Module& to) {
  Bddexpressionwood* a = from.getBddWood();
  Bddexpressionwood* b = to.getBddWood();
  bddpp_manager* mg = a->my_bdd_manager();
  std::mt19937 random(7);
  EXPECT_EQ(a->exp_number(), b->exp_number());
  for (long index : a->getExpIds()) {
    Bddexpression* e = a->exp_by_index(index);
    std::string name = a->Name_var_by_index(index);
    SCOPED_TRACE(name);
    long other = b->Index_var_by_name(name);
    ASSERT_GE(other, 0);
    Bddexpression* f = b->exp_by_index(other);
    ASSERT_NE(f, nullptr);
    EXPECT_EQ(e->getEarlyDate(), f->getEarlyDate());
    EXPECT_EQ(e->my_bdd_exp().initialised(), f->my_bdd_exp().initialised());
    std::set<std::string> deps, otherDeps;
    for (long d : e->getDependances()) deps.insert(a->Name_var_by_index(d));
    for (long d : f->getDependances()) otherDeps.insert(b->Name_var_by_index(d));
    EXPECT_EQ(deps, otherDeps);
    if (!e->my_bdd_exp().initialised() || !f->my_bdd_exp().initialised()) continue;
    for (int trial = 0; trial < 64; trial++) {
      std::set<std::string> on;
      for (long id = 0; id < mg->Nb_bdd_vars; id++)
        if (random() & 1) on.insert(mg->Name_var_by_id(id));
      EXPECT_EQ(evaluate(e->my_bdd_exp(), on), evaluate(f->my_bdd_exp(), on));
    }
  }
}

TEST(QncRoundTrip, WriteReadWriteIsAFixpoint) {
  for (int forget : {0, 1}) {
    SCOPED_TRACE(forget);
    Module* m = sampleModule(forget ? "F" : "M");
    std::string first = written(*m, forget);
    Module* r1 = readBack("fix1", first);
    ASSERT_NE(r1, nullptr) << first;
    std::string second = written(*r1, forget);
    Module* r2 = readBack("fix2", second);
    ASSERT_NE(r2, nullptr) << second;
    EXPECT_EQ(written(*r2, forget), second);
    // Without names of locals the variables can't be matched by name.
    if (!forget) expectSameEquations(*m, *r1);
    EXPECT_EQ(r1->getBddWood()->exp_number(), m->getBddWood()->exp_number());
    EXPECT_EQ(r1->getName(), m->getName());
    EXPECT_TRUE(r1->getReincarnate());
    ASSERT_EQ(r1->getRegisterList()->size(), 1u);
    EXPECT_EQ(r1->getRegisterList()->front()->is_initialy_true(), 1);
    EXPECT_TRUE(r1->getRegisterList()->front()->next_var()->isRegister());
  }
}

}  // namespace

namespace {

std::string slurp(const std::string& path) {
  std::ifstream in(path);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

TEST(QncSave, OutputNameRules) {
  std::string dir = scratch("dir");
  ASSERT_EQ(std::system(("mkdir -p " + dir).c_str()), 0);
  Module::OutputDir = dir;
  struct Case {
    const char* outputFile;
    const char* file;
  } cases[] = {{"", "S.qnc"}, {"out", "out.qnc"}, {"a.qnc.old", "a.qnc.old"}, {"b.qnc", "b.qnc"}};
  Module* m = sampleModule("S");
  for (const Case& c : cases) {
    SCOPED_TRACE(c.outputFile);
    Module::OutputFile = c.outputFile;
    m->save();
    std::string text = slurp(dir + "/" + c.file);
    EXPECT_EQ(text.rfind("module: S  1 0\n", 0), 0u) << text;
  }
  // An existing file is written again, with a warning.
  Module::OutputFile = "";
  testing::internal::CaptureStderr();
  m->save();
  EXPECT_NE(testing::internal::GetCapturedStderr().find("File: " + dir + "/S.qnc already exists. File rewrited."),
            std::string::npos);

  Module::OutputDir = dir + "/missing";
  EXPECT_EXIT(m->save(), testing::ExitedWithCode(1), "Cannot open output file: ");
  Module::OutputDir = dir;
  Module uncompiled("U");
  EXPECT_EXIT(uncompiled.save(), testing::ExitedWithCode(1), "module U is not compiled");
  Module::OutputDir = ".";
  std::system(("rm -rf " + dir).c_str());
}

TEST(QncSave, DebugCommentsAreSkippedByTheReader) {
  Module* m = sampleModule("G");
  Compilation::DebugFlag = true;
  std::string commented = written(*m);
  Compilation::DebugFlag = false;
  EXPECT_NE(commented.find("// expression "), std::string::npos);
  Module* r = readBack("debug", commented);
  ASSERT_NE(r, nullptr) << commented;
  std::string plain = written(*r);
  EXPECT_EQ(plain.find("//"), std::string::npos);
  expectSameEquations(*m, *r);
}

TEST(QncSave, SectionsOfAModuleWithoutInterface) {
  Module m("E");
  m.createCompileEnv();
  std::string text = written(m);
  // The run's data tables, if other tests made some, follow.
  EXPECT_EQ(text.substr(0, text.find("data:")),
            "module: E  0 0\nconnexion: SETE RESETE RTLE;\n\nequation_def:\n0\nexpressions:\nend:\n\n");
  Module* r = readBack("empty", text);
  ASSERT_NE(r, nullptr);
  EXPECT_EQ(written(*r), text);
}

}  // namespace

namespace {

// A signal that no list names (as the value signals made for bindings) but that an
// equation reads is saved as a local, so that the equation reads back right.
TEST(QncSave, VariablesReadButUnlistedBecomeLocals) {
  Module* m = sampleModule("H");
  Bddexpressionwood* w = m->getBddWood();
  Signal* hidden = new Signal("hidden", m, w);
  hidden->setLocal();
  bddpp_manager* mg = w->my_bdd_manager();
  new Bddexpression("_s_O_1", w, var(*m, "_s_O_1"), mg->Bdd_and(var(*m, "_s_hidden"), var(*m, "_s_A")), 1, 0);
  std::string text = written(*m);
  EXPECT_NE(text.find(" hidden;"), std::string::npos) << text;
  Module* r = readBack("hidden", text);
  ASSERT_NE(r, nullptr) << text;
  expectSameEquations(*m, *r);
}

}  // namespace

namespace {

// Checked by hand: A 0-1, B 2-3, O 4-5, then the locals L, L_1, q, qn and O's second
// occurrence 6-15 (names forgotten), the wires 16-21; the register is next qn, actual q;
// each node line is number: variable:then:else,else link, the terminal -1; the equations
// in variable order of the writing manager.
TEST(QncSave, GoldenFileWithoutLocalNames) {
  const std::string golden =
      "module: F  1 0\n"
      "input: A B ;\n"
      "output: O ;\n"
      "local:  V6  V8  V10  V12  V14;\n"
      "register:\n V12 V10 1;\n\n"
      "connexion: SETF RESETF RTLF;\n\n"
      "equation_def:\n13\n"
      "0: 14:1:1,-1\n1: -1:-3:-3,1\n2: 15:1:1,-1\n3: 8:1:1,-1\n4: 9:1:1,-1\n"
      "5: 6:6:1,1\n6: 18:1:1,-1\n7: 0:8:9,-1\n8: 2:1:1,-1\n9: 10:1:1,-1\n"
      "10: 0:8:1,-1\n11: 0:12:1,-1\n12: 16:1:1,-1\n"
      "expressions:\n"
      "0 0 4:0,1,(14 )\n0 0 5:2,1,(15 )\n0 0 6:3,1,(8 )\n0 0 7:4,1,(9 )\n"
      "2 0 12:5,-1,(6 18 )\n0 0 20:1,1,()\n1 0 14:7,-1,(0 2 10 )\n1 0 15:10,1,(0 2 )\n"
      "1 0 8:11,1,(0 16 )\n3 0 9:-3,-3,(0 10 )\n"
      "end:\n\n";
  Module* m = sampleModule("F");
  std::string text = written(*m, 1);
  EXPECT_EQ(text.substr(0, text.find("data:")), golden);
}

}  // namespace

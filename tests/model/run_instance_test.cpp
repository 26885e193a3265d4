// Instances of a called module: names with the instance suffix, connections by the
// renaming table or by equal names, and the same wood whichever road brought the called
// module in. Each compilation runs in a child process, since the module tables and the
// statement counters belong to the whole run.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <functional>
#include <set>
#include <sstream>
#include <vector>

#include "bdd/bddpp.h"
#include "util/compilation.h"
#include "equations/Bddexpression.h"
#include "equations/equationtable.h"
#include "model/module.h"
#include "model/statement.h"
#include "model_test_util.h"
#include "signals/signal_manager.h"

namespace fs = std::filesystem;

namespace {

// A scratch copy of the run cases' files.
fs::path scratchCopy() {
  fs::path dir = fs::temp_directory_path() /
                 ("quarn_run_" + std::to_string(getpid()) + "_" + std::to_string(rand()));
  fs::create_directories(dir);
  fs::copy(fs::path(QUARN_SOURCE_DIR) / "tests/e2e/run", dir, fs::copy_options::recursive);
  return dir;
}

struct Outcome {
  int status = -1;
  std::vector<std::string> lines;
};

// Runs body in a child process in dir; what it writes to its stream comes back as lines.
Outcome inChild(const fs::path& dir, const std::function<void(std::ostream&)>& body) {
  fs::path out = dir / "child.out";
  fflush(nullptr);
  pid_t pid = fork();
  if (pid == 0) {
    fs::current_path(dir);
    std::ofstream stream(out);
    body(stream);
    stream.close();
    _exit(0);
  }
  Outcome o;
  int status = 0;
  waitpid(pid, &status, 0);
  o.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128;
  std::ifstream in(out);
  for (std::string line; std::getline(in, line);) o.lines.push_back(line);
  return o;
}

Module* parseAndCompile(const std::string& file, const std::string& name) {
  Compilation::qn_parse(file);
  Module* m = Compilation::ModTable->get(name);
  if (!m) _exit(3);
  m->complementary_check_syntax();
  m->compile();
  return m;
}

// Equation names in ascending order, one a line, behind their count.
void printWood(Module* m, std::ostream& out) {
  Bddexpressionwood* wood = m->getBddWood();
  std::vector<std::string> names;
  for (long i : wood->getExpIds())
    if (Bddexpression* e = wood->exp_by_index(i)) names.push_back(e->getName());
  std::sort(names.begin(), names.end());
  out << "count " << names.size() << "\n";
  for (const std::string& n : names) out << n << "\n";
}

// Each equation as its variable's name, the names its right member reads, and its truth
// table over them in name order: the same circuit gives the same lines whatever the
// equations are called and whatever the order of the variables.
void printCircuit(Module* m, std::ostream& out) {
  Bddexpressionwood* wood = m->getBddWood();
  bddpp_manager* manager = wood->my_bdd_manager();
  std::vector<std::string> lines;
  std::vector<int> literals(manager->Nb_bdd_vars, 2);
  for (long i : wood->getExpIds()) {
    Bddexpression* e = wood->exp_by_index(i);
    if (!e) continue;
    std::string line = e->my_bddname() + " <-";
    if (!e->getExpDef().empty()) {
      lines.push_back(line + " " + e->getExpDef());
      continue;
    }
    std::vector<std::pair<std::string, long>> support;
    for (long index : manager->set_of_index_depend_on(e->my_bdd_exp()))
      support.emplace_back(manager->Name_var_by_index(index), index);
    std::sort(support.begin(), support.end());
    for (auto& [name, index] : support) line += " " + name;
    line += " :";
    if (support.size() <= 12) {
      for (unsigned long bits = 0; bits < (1ul << support.size()); bits++) {
        for (size_t k = 0; k < support.size(); k++) literals[support[k].second] = (bits >> k) & 1;
        line += std::to_string(manager->Bdd_eval_for_literal(e->my_bdd_exp(), literals.data()));
      }
      for (auto& [name, index] : support) literals[index] = 2;
    }
    lines.push_back(line);
  }
  std::sort(lines.begin(), lines.end());
  out << "count " << lines.size() << "\n";
  for (const std::string& l : lines) out << l << "\n";
}

bool has(const std::vector<std::string>& lines, const std::string& s) {
  return std::find(lines.begin(), lines.end(), s) != lines.end();
}

size_t countContaining(const std::vector<std::string>& lines, const std::string& part) {
  return std::count_if(lines.begin(), lines.end(),
                       [&](const std::string& l) { return l.find(part) != std::string::npos; });
}

// The run statements of a tree, in the order of the source.
void collectRuns(Statement* s, std::vector<::Run*>& runs);

}  // namespace

// ---------------------------------------------------------------------------------------
// Names of instances and their connections

TEST(RunInstance, NamesAndConnections) {
  fs::path dir = scratchCopy();
  // Locals of the caller, then the renaming table of each run, after compilation.
  Outcome o = inChild(dir, [](std::ostream& out) {
    Module* m = parseAndCompile("same.qn", "twice");
    for (Signal* s : *m->getLocalSignalList()) out << "local " << s->getInternalName() << "\n";
    std::vector<::Run*> runs;
    collectRuns(m->getStatement(), runs);
    for (::Run* r : runs) {
      out << "run " << *r->getInstance() << "\n";
      for (auto& [key, s] : *r->getRenamingTable())
        out << "rename " << *r->getInstance() << " " << key << " "
            << (s ? s->getInternalName() : "null") << "\n";
      for (auto& [key, s] : *r->getInterface()->getLocalSignalTable())
        out << "iface local " << *r->getInstance() << " " << key << " " << s->getInternalName()
            << "\n";
      for (auto& [key, s] : *r->getInterface()->getOutputSignalTable())
        out << "iface output " << *r->getInstance() << " " << key << "\n";
    }
  });
  ASSERT_EQ(o.status, 0);
  const auto& l = o.lines;
  struct Expect {
    const char* line;
    bool present;
  } cases[] = {
      // Two instances of one module get two numbers.
      {"run __sub_i0", true},
      {"run __sub_i1", true},
      {"run __sub_i2", false},
      // The called module's locals and wires are the caller's under the suffix.
      {"local L__sub_i0", true},
      {"local L__sub_i1", true},
      {"local SETsub__sub_i0", true},
      {"local RESETsub__sub_i0", true},
      {"local RTLsub__sub_i1", true},
      {"iface local __sub_i0 L L__sub_i0", true},
      // The renamed run keeps its table and adds nothing to the interface outputs.
      {"rename __sub_i0 GO A", true},
      {"rename __sub_i0 DONE O", true},
      {"iface output __sub_i0 DONE", false},
      // The plain run connects by equal names and records them.
      {"rename __sub_i1 GO GO", true},
      {"rename __sub_i1 DONE DONE", true},
      {"iface output __sub_i1 DONE", true},
  };
  for (const Expect& c : cases) EXPECT_EQ(has(l, c.line), c.present) << c.line;
  // The occurrences of the called output beyond 0 are locals of each instance.
  EXPECT_GE(countContaining(l, "local DONE_1__sub_i"), 2u);
  fs::remove_all(dir);
}

// The instance's equations land in the caller's wood; the variable of an output that
// the run renamed is the caller's, never a copy under the suffix.
TEST(RunInstance, WoodOfTheCaller) {
  fs::path dir = scratchCopy();
  Outcome o =
      inChild(dir, [](std::ostream& out) { printWood(parseAndCompile("same.qn", "top"), out); });
  ASSERT_EQ(o.status, 0);
  const auto& l = o.lines;
  EXPECT_TRUE(has(l, "L__sub_i0"));
  EXPECT_TRUE(has(l, "SETsub__sub_i0"));
  EXPECT_TRUE(has(l, "O"));
  EXPECT_EQ(countContaining(l, "DONE__sub"), 0u);
  EXPECT_EQ(countContaining(l, "GO"), 0u);
  EXPECT_EQ(countContaining(l, "__sub_i1"), 0u);
  fs::remove_all(dir);
}

// A run of a module that holds runs: the inner suffix is part of the inner names and the
// outer one goes behind it; a valued output keeps its type in every occurrence copy.
TEST(RunInstance, NestedInstancesAndValuedOutputs) {
  fs::path dir = scratchCopy();
  Outcome o = inChild(dir, [](std::ostream& out) {
    Module* m = parseAndCompile("nested.qn", "nest");
    for (Signal* s : *m->getLocalSignalList()) {
      out << "local " << s->getInternalName();
      if (s->isValued(m)) out << " : " << s->getValueType(m);
      out << "\n";
    }
    printWood(m, out);
  });
  ASSERT_EQ(o.status, 0);
  const auto& l = o.lines;
  struct Expect {
    const char* line;
    bool present;
  } cases[] = {
      {"local L__sub_i0__mid_i0", true},
      {"local L__sub_i0__mid_i1", true},
      {"local SETsub__sub_i0__mid_i1", true},
      {"local SETmid__mid_i0", true},
      {"local SETmid__mid_i1", true},
      {"local SETvsub__vsub_i0__mid_i0", true},
      // Inner modules are compiled once: one inner instance per module.
      {"local L__sub_i1__mid_i0", false},
      {"local V_1__vsub_i0__mid_i0 : int", true},
      {"local V_1__mid_i1 : int", true},
  };
  for (const Expect& c : cases) EXPECT_EQ(has(l, c.line), c.present) << c.line;
  fs::remove_all(dir);
}

// compile_with_preemption masks the outputs that the instance connects by name with
// Not(strong); a renamed output and a zero strong function leave them as they are.
TEST(RunInstance, PreemptionMasksUnrenamedOutputs) {
  struct Case {
    const char* what;
    bool renamed;
    bool zeroStrong;
    bool masked;
  } cases[] = {
      {"by name", false, false, true},
      {"renamed", true, false, false},
      {"zero strong", false, true, false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    fs::path dir = scratchCopy();
    Outcome o = inChild(dir, [&](std::ostream& out) {
      Compilation::qn_parse("sub.qn");
      Module* host = new Module("host");
      model_test::input(*host, "GO");
      Signal* k = model_test::input(*host, "K");
      Signal* done = model_test::output(*host, "DONE");
      Signal* other = model_test::output(*host, "X");
      host->createCompileEnv();
      Bddexpressionwood* wood = host->getBddWood();
      ::Run* r = new ::Run("R", "sub");
      r->setParentModule(host);
      if (c.renamed) {
        auto* l = new std::list<std::pair<char const*, Signal*>*>;
        l->push_back(new std::pair<char const*, Signal*>("DONE", other));
        r->setRenamingTable(l);
      }
      bddpp_manager* manager = wood->my_bdd_manager();
      bdd strong = c.zeroStrong ? manager->Bdd_zero() : k->getOverBdd(host, wood);
      r->compile_with_preemption(host, host->getCompilation(), strong);
      Signal* target = c.renamed ? other : done;
      SignalRef* ref = target->getCurrentSignalRef(wood, host);
      Bddexpression* e = wood->exp_by_index(ref->getOverBddId(wood));
      bdd k1 = manager->Bdd_and(e->my_bdd_exp(), k->getOverBdd(host, wood));
      out << (manager->Bdd_is_zero_tautologic(k1) ? "masked" : "open") << "\n";
      out << (manager->Bdd_is_zero_tautologic(e->my_bdd_exp()) ? "zero" : "nonzero") << "\n";
    });
    ASSERT_EQ(o.status, 0);
    ASSERT_EQ(o.lines.size(), 2u);
    EXPECT_EQ(o.lines[0], c.masked ? "masked" : "open");
    EXPECT_EQ(o.lines[1], "nonzero");
    fs::remove_all(dir);
  }
}

// Every name of an instance finds its new name: no warning while the wood is copied.
TEST(RunInstance, CompilesWithoutLostNames) {
  struct Case {
    const char* file;
    const char* module;
  } cases[] = {
      {"same.qn", "top"},      {"same.qn", "twice"},        {"top.qn", "twice"},
      {"nested.qn", "nest"},   {"branches.qn", "branches"}, {"branches.qn", "looped"},
      {"nested.qn", "prerun"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.file) + " " + c.module);
    fs::path dir = scratchCopy();
    testing::internal::CaptureStderr();
    Outcome o = inChild(dir, [&](std::ostream&) { parseAndCompile(c.file, c.module); });
    std::string err = testing::internal::GetCapturedStderr();
    EXPECT_EQ(o.status, 0) << err;
    EXPECT_EQ(err.find("Warning: no renaming"), std::string::npos) << err;
    EXPECT_EQ(err.find("error"), std::string::npos) << err;
    fs::remove_all(dir);
  }
}

// A pre signal of the called module becomes an input and pre of the caller, remembering
// the caller's signal that the renaming gave.
TEST(RunInstance, PreSignalsFollowTheRenaming) {
  fs::path dir = scratchCopy();
  Outcome o = inChild(dir, [](std::ostream& out) {
    Module* m = parseAndCompile("nested.qn", "prerun");
    for (memorizedSignal* p : *m->getPreSignalList())
      out << "pre " << p->getPre()->getInternalName() << " " << p->getPre()->isInput() << " "
          << (p->getActual() ? p->getActual()->getInternalName() : "null") << "\n";
    printWood(m, out);
  });
  ASSERT_EQ(o.status, 0);
  EXPECT_TRUE(has(o.lines, "pre PGO__psub_i0 1 A"));
  fs::remove_all(dir);
}

// A module that runs itself, directly or through another, is reported, never looped on.
TEST(RunInstance, RecursiveRunIsReported) {
  for (const char* name : {"a", "b", "c"}) {
    SCOPED_TRACE(name);
    fs::path dir = scratchCopy();
    testing::internal::CaptureStderr();
    Outcome o = inChild(dir, [&](std::ostream&) { parseAndCompile("recursive.qn", name); });
    std::string err = testing::internal::GetCapturedStderr();
    EXPECT_EQ(o.status, 1);
    EXPECT_NE(err.find(" runs itself"), std::string::npos) << err;
    fs::remove_all(dir);
  }
}

// A run in each branch of a test: two instances, compiled in two tables and joined.
TEST(RunInstance, BranchesKeepBothInstances) {
  fs::path dir = scratchCopy();
  Outcome o = inChild(
      dir, [](std::ostream& out) { printWood(parseAndCompile("branches.qn", "branches"), out); });
  ASSERT_EQ(o.status, 0);
  EXPECT_GT(countContaining(o.lines, "L__sub_i0"), 0u);
  EXPECT_GT(countContaining(o.lines, "L__sub_i1"), 0u);
  EXPECT_TRUE(has(o.lines, "DONE"));
  fs::remove_all(dir);
}

// ---------------------------------------------------------------------------------------
// The same wood by every road

TEST(RunInstance, SameWoodFromSourceFileOrDeclaration) {
  for (const char* name : {"top", "twice"}) {
    SCOPED_TRACE(name);
    fs::path dir = scratchCopy();
    std::string main = name;
    Outcome same = inChild(dir, [&](std::ostream& out) {
      Module* m = parseAndCompile("same.qn", main);
      printWood(m, out);
      printCircuit(m, out);
    });
    // Through the declaration "Run:": the called module's file is read by the check.
    Outcome other = inChild(dir, [&](std::ostream& out) {
      Module* m = parseAndCompile("top.qn", main);
      printWood(m, out);
      printCircuit(m, out);
    });
    ASSERT_EQ(same.status, 0);
    ASSERT_EQ(other.status, 0);
    ASSERT_FALSE(same.lines.empty());
    EXPECT_EQ(same.lines, other.lines);
    fs::remove_all(dir);
  }
}

// The called module from its compiled file: written by one run, read by another.
TEST(RunInstance, SameWoodFromCompiledFile) {
  for (const char* name : {"top", "twice"}) {
    SCOPED_TRACE(name);
    fs::path dir = scratchCopy();
    std::string main = name;
    Outcome same = inChild(
        dir, [&](std::ostream& out) { printCircuit(parseAndCompile("same.qn", main), out); });
    Outcome saved = inChild(dir, [](std::ostream&) {
      Module* sub = parseAndCompile("sub.qn", "sub");
      Module::OutputDir = ".";
      sub->save();
    });
    ASSERT_EQ(saved.status, 0);
    ASSERT_TRUE(fs::exists(dir / "sub.qnc"));
    fs::remove(dir / "sub.qn");
    Outcome compiled = inChild(dir, [&](std::ostream& out) {
      Module::CompilationFileList = new std::list<std::string>{"sub.qnc"};
      Module* m = parseAndCompile("top.qn", main);
      if (Compilation::ModTable->get("sub")) out << "sub read from source\n";
      printCircuit(m, out);
    });
    ASSERT_EQ(same.status, 0);
    ASSERT_EQ(compiled.status, 0);
    EXPECT_EQ(same.lines, compiled.lines);
    fs::remove_all(dir);
  }
}

// A compiled module that holds instances itself, one with a valued output and a data
// binding, gives the circuit that its source gives.
TEST(RunInstance, NestedFromCompiledFile) {
  fs::path dir = scratchCopy();
  Outcome same = inChild(
      dir, [](std::ostream& out) { printCircuit(parseAndCompile("nested.qn", "nest"), out); });
  Outcome saved = inChild(dir, [](std::ostream&) {
    Module* mid = parseAndCompile("nested.qn", "mid");
    Module::OutputDir = ".";
    mid->save();
  });
  ASSERT_EQ(saved.status, 0);
  Outcome compiled = inChild(dir, [](std::ostream& out) {
    Module::CompilationFileList = new std::list<std::string>{"mid.qnc"};
    printCircuit(parseAndCompile("nested_declared.qn", "nest"), out);
  });
  ASSERT_EQ(same.status, 0);
  ASSERT_EQ(compiled.status, 0);
  EXPECT_EQ(same.lines, compiled.lines);
  fs::remove_all(dir);
}

// A declared module that no file provides is reported.
TEST(RunInstance, DeclaredButMissing) {
  fs::path dir = scratchCopy();
  fs::remove(dir / "sub.qn");
  testing::internal::CaptureStderr();
  Outcome o = inChild(dir, [](std::ostream&) { parseAndCompile("top.qn", "top"); });
  std::string err = testing::internal::GetCapturedStderr();
  EXPECT_EQ(o.status, 1);
  EXPECT_NE(err.find("Impossible to load module :\"sub\" from qnc file"), std::string::npos) << err;
  fs::remove_all(dir);
}

namespace {

void collectRuns(Statement* s, std::vector<::Run*>& runs) {
  if (!s) return;
  if (auto* r = dynamic_cast<::Run*>(s)) {
    runs.push_back(r);
    return;
  }
  if (auto* p = dynamic_cast<Pn*>(s))
    for (int i = 0; i < p->getCount(); i++) collectRuns(p->getArray()[i], runs);
  if (auto* p = dynamic_cast<Parallel*>(s)) {
    collectRuns(p->getLeft(), runs);
    collectRuns(p->getRight(), runs);
  }
}

}  // namespace

// Compiled modules with value bindings and data tables; damaged files.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <functional>
#include <random>
#include <sstream>

#include "bdd/bddpp.h"
#include "data/data.h"
#include "util/compilation.h"
#include "equations/Bddexpression.h"
#include "model/module.h"
#include "signals/signal_manager.h"

// A run frees nothing by design (modules, signals and data trees live until the end), so
// leak reports at the exit of a test process say nothing about the reader.

namespace {

const bool kBatch = (setenv("QUARN_BATCH", "1", 1), true);

// One scratch directory per test process (children write into their parent's), removed
// at the end.
const std::string kScratch = [] {
  std::string dir = std::string(QUARN_BINARY_DIR) + "/qnc_data_" + std::to_string(getpid());
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

std::string toFile(const std::string& name, const std::string& text) {
  std::string path = scratch(name);
  std::ofstream(path) << text;
  return path;
}

std::string written(Module& m, int forgetLocals = 0) {
  std::ostringstream out;
  m.QNC_put(out, 2, 1, forgetLocals);
  return out.str();
}

Module* readBack(const std::string& name, const std::string& text) {
  return Compilation::qnc_parse(toFile(name, text), Compilation::EmptyString, nullptr, nullptr);
}

// Fresh run tables with one type, one method and two constants.
void ensureTables() {
  Compilation::GDataTypeTable = new DataTypeTable();
  Compilation::GDataTypeTable->addType("int");
  Compilation::GDataMethodTable = new DataMethodTable();
  std::list<std::string> args = {"int", "int"};
  Compilation::GDataMethodTable->addMethod(new MethodDecl("int", "plus", &args));
  Compilation::GDataConstantTable = new DataConstantTable();
  auto constant = [](const char* name, std::map<int, DataExpr*>* values) {
    ConstantDecl* decl = new ConstantDecl("int", name, values);
    for (auto& [language, value] : *values) static_cast<DataValue*>(value)->setConstDecl(decl);
    Compilation::GDataConstantTable->addConstant(decl);
  };
  constant("zero", new std::map<int, DataExpr*>{{TLanguage::DEFAULT, new DataValue("0")}});
  constant("one", new std::map<int, DataExpr*>{{TLanguage::C, new DataValue("1")},
                                               {TLanguage::VHDL, new DataValue("one_v")}});
}

Signal* declare(Module& m, const std::string& name, bool input, const std::string& type = "") {
  Signal* s = new Signal(name, &m, m.getBddWood());
  if (!type.empty()) s->setValueType(type, &m);
  if (input) {
    s->setInput();
    m.addInputSignal(s);
  } else {
    s->setLocal();
    m.addLocalSignal(s);
  }
  return s;
}

// Inputs A, B : int; a local V bound with clock A to plus(zero, ?B), a local W bound to
// ?B + zero.
Module* dataModule() {
  Module* m = new Module("D");
  Signal* a = declare(*m, "A", true);
  Signal* b = declare(*m, "B", true, "int");
  Signal* v = declare(*m, "V", false, "int");
  Signal* w = declare(*m, "W", false, "int");
  m->createCompileEnv();
  int plus = Compilation::GDataMethodTable->getMethodIndex("plus");
  int zero = Compilation::GDataConstantTable->getConstantIndex("zero");
  auto* args = new std::list<DataExpr*>{new DataConstant(zero), new DataSignalValue(b)};
  m->addSignalBinding(new DataMethodCall(plus, args), v, a);
  m->addSignalBinding(new DataBinaryOp(DataExpr::Plus, new DataSignalValue(b), new DataConstant(zero)), w);
  return m;
}

TEST(QncData, BindingsAndTablesReadBack) {
  ensureTables();
  Module* m = dataModule();
  std::string first = written(*m);
  // Evaluation numbers belong to one writing: a second one is the same text.
  EXPECT_EQ(written(*m), first);
  for (const char* part : {"binding:", "evaltable:", "clock: (", "%%", "data:", "type:\nint;",
                           "method:\nint plus(int, int);", "int zero :default=  \"0\";",
                           "int one :vhdl=  \"one_v\" :c=  \"1\";"})
    EXPECT_NE(first.find(part), std::string::npos) << part << "\n" << first;
  size_t methods = Compilation::GDataMethodTable->getMethodList()->size();
  Module* r1 = readBack("d1", first);
  ASSERT_NE(r1, nullptr) << first;
  ASSERT_NE(r1->getDataTable(), nullptr);
  // Each occurrence of a bound local is a signal of its own in the file.
  EXPECT_EQ(r1->getDataTable()->size(), 4u);
  // Declarations already in the run are found, not added again.
  EXPECT_EQ(Compilation::GDataMethodTable->getMethodList()->size(), methods);
  EXPECT_EQ(Compilation::GDataConstantTable->getConstantList()->size(), 2u);
  std::string second = written(*r1);
  Module* r2 = readBack("d2", second);
  ASSERT_NE(r2, nullptr) << second;
  EXPECT_EQ(written(*r2), second);
}

// Runs f in a child process with its error stream in a file; gives the wait status.
int isolated(const std::function<void()>& f, std::string& err) {
  std::string errFile = scratch("stderr");
  std::fflush(nullptr);
  pid_t pid = fork();
  if (pid == 0) {
    if (!std::freopen(errFile.c_str(), "w", stderr)) _exit(3);
    f();
    std::exit(0);
  }
  int status = 0;
  waitpid(pid, &status, 0);
  std::ifstream in(errFile);
  err.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
  return status;
}

// Reads the text; a module read is written again. Exit 1 without a module.
void readAndWrite(const std::string& text) {
  Module* r = readBack("damaged", text);
  if (!r) std::exit(1);
  std::ostringstream out;
  r->QNC_put(out, 2, 1, 0);
}

void expectCleanEnd(int status, const std::string& err, const std::string& what) {
  EXPECT_TRUE(WIFEXITED(status) && (WEXITSTATUS(status) == 0 || WEXITSTATUS(status) == 1))
      << what << "\nstatus " << status << "\n" << err;
  EXPECT_EQ(err.find("Sanitizer"), std::string::npos) << what << "\n" << err;
  EXPECT_EQ(err.find("runtime error"), std::string::npos) << what << "\n" << err;
}

TEST(QncDamaged, TruncatedFilesAreRefused) {
  ensureTables();
  Module* m = dataModule();
  std::string text = written(*m);
  size_t woodEnd = text.find("end:");
  ASSERT_NE(woodEnd, std::string::npos);
  for (size_t cut = 0; cut < text.size(); cut += 1 + text.size() / 80) {
    std::string err;
    int status = isolated([&] { readAndWrite(text.substr(0, cut)); }, err);
    std::string what = "cut at " + std::to_string(cut);
    expectCleanEnd(status, err, what);
    // Up to the end of the equations nothing can stand alone.
    if (cut < woodEnd) {
      EXPECT_EQ(WEXITSTATUS(status), 1) << what;
      EXPECT_NE(err.find("ERROR during loading file : "), std::string::npos) << what << "\n" << err;
    }
  }
}

TEST(QncDamaged, FlippedBytesNeverCrash) {
  ensureTables();
  Module* m = dataModule();
  std::string text = written(*m);
  std::mt19937 random(2026);
  for (int trial = 0; trial < 150; trial++) {
    std::string damaged = text;
    size_t at = random() % damaged.size();
    const char replacements[] = "0123456789-:,;()%$ \nxV9";
    damaged[at] = (trial % 3 == 0) ? char(random() % 256) : replacements[random() % (sizeof replacements - 1)];
    std::string err;
    int status = isolated([&] { readAndWrite(damaged); }, err);
    expectCleanEnd(status, err, "byte " + std::to_string(at) + " in\n" + damaged);
  }
}

// Hand-made files that reach each check of the reader.
TEST(QncDamaged, ReaderMessages) {
  const std::string head = "module: H  0 0\ninput: A ;\nconnexion: S R T;\n";
  struct Case {
    const char* name;
    std::string text;
    const char* message;
  } cases[] = {
      {"syntax", "module: H 0\n", "line "},
      {"node of no entry", head + "equation_def:\n1\n0: -1:-3:-3,1\nexpressions:\n0 0 2:5,1,()\nend:\n",
       "node 5 is not in the node table"},
      {"unknown variable", head + "equation_def:\n2\n0: 99:1:1,-1\n1: -1:-3:-3,1\nexpressions:\n0 0 2:0,1,()\nend:\n",
       "unknown variable 99"},
      {"loop", head + "equation_def:\n2\n0: 0:1:0,1\n1: -1:-3:-3,1\nexpressions:\n0 0 2:0,1,()\nend:\n",
       "is its own descendant"},
      {"date", head + "equation_def:\n0\nexpressions:\n99999999999999999999 0 2:-3,-3,()\nend:\n",
       "date out of range"},
      {"equation of no variable", head + "equation_def:\n0\nexpressions:\n0 0 40:-3,-3,()\nend:\n",
       "equation of an unknown variable 40"},
      {"twice", "module: H  0 0\ninput: A A ;\nconnexion: S R T;\nequation_def:\n0\nexpressions:\nend:\n",
       "signal \"A\" is declared twice"},
      {"binding of no signal",
       head + "equation_def:\n0\nexpressions:\nend:\nbinding:\n   (50, 51): value: 0;\nend:\nevaltable:\n   0: $0;\nend:\n",
       "unknown data signal:50"},
      {"evaluation loop",
       head + "equation_def:\n0\nexpressions:\nend:\nbinding:\n   (0, 1): value: 0;\nend:\nevaltable:\n   0: 1;\n   1: 0;\nend:\n",
       "the evaluation table loops"},
      {"bad operator",
       head + "equation_def:\n0\nexpressions:\nend:\nbinding:\n   (0, 1): value: 0;\nend:\nevaltable:\n   0: %%0();\nend:\n",
       "binding_declaration_parse::dataexpr: invalid_operator"},
      {"unknown method",
       head + "equation_def:\n0\nexpressions:\nend:\nbinding:\n   (0, 1): value: 0;\nend:\nevaltable:\n   0: %7();\nend:\n",
       "Undefined method"},
  };
  for (const Case& c : cases) {
    std::string err;
    int status = isolated([&] { readAndWrite(c.text); }, err);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 1) << c.name << "\n" << err;
    EXPECT_NE(err.find(c.message), std::string::npos) << c.name << "\n" << err;
  }
}

TEST(QncReader, AwaitedSignalsAndInstances) {
  std::string text = "module: H  1 0\ninput: A B : int ;\noutput: O ;\nconnexion: S R T;\n"
                     "equation_def:\n0\nexpressions:\nend:\n";
  std::string path = toFile("await", text);
  std::list<std::string> inputs = {"A"}, outputs = {"O"};
  std::string instance = "_i1";
  // B is valued: accepted although not awaited.
  Module* m = Compilation::qnc_parse(path, &instance, &inputs, &outputs);
  ASSERT_NE(m, nullptr);
  EXPECT_TRUE(m->getReincarnate());
  ASSERT_EQ(m->getInputSignalList()->size(), 2u);
  EXPECT_EQ(m->getInputSignalList()->front()->getOriginalName(), "A");
  EXPECT_EQ(m->getInputSignalList()->front()->getInternalName(), "A_i1");
  EXPECT_TRUE(std::ifstream(path + ".log").is_open());

  std::list<std::string> other = {"X"};
  std::string err;
  int status = isolated([&] { Compilation::qnc_parse(path, &instance, &other, nullptr); }, err);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 1);
  EXPECT_NE(err.find("H:PARSING ERROR: input signal \"A\" is unknown in main module!\n"
                     "  --> authorised signals:\nX\n"),
            std::string::npos)
      << err;

  EXPECT_EQ(Compilation::qnc_parse(scratch("missing.qnc"), nullptr, nullptr, nullptr), nullptr);
}

}  // namespace

namespace {

// Values that the plain string pattern would refuse are escaped and read back as they were.
TEST(QncData, ConstantValuesOfAnyTextReadBack) {
  const std::vector<std::string> texts = {"x\"0F\"", "", "a|b@[c]^", "back\\slash", "end\\", "tab\there"};
  std::string err;
  int status = isolated(
      [&] {
        ensureTables();
        int n = 0;
        for (const std::string& t : texts) {
          std::string name = "odd" + std::to_string(n++);
          auto* values = new std::map<int, DataExpr*>{{TLanguage::DEFAULT, new DataValue(t)},
                                                       {TLanguage::C, new DataValue(t)}};
          Compilation::GDataConstantTable->addConstant(new ConstantDecl("int", name, values));
        }
        Module* m = dataModule();
        std::string text = written(*m);
        Compilation::GDataConstantTable = nullptr;
        Module* r = readBack("odd", text);
        if (!r) std::exit(2);
        for (size_t i = 0; i < texts.size(); i++) {
          ConstantDecl* c = Compilation::GDataConstantTable->getConstant("odd" + std::to_string(i));
          if (!c || !c->getValueTable()) std::exit(3);
          for (const auto& [language, value] : *c->getValueTable()) {
            auto* v = static_cast<DataValue*>(value);
            if (v->getText() != texts[i]) {
              std::cerr << "read [" << v->getText() << "] for [" << texts[i] << "]\n" << text;
              std::exit(4);
            }
          }
        }
      },
      err);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status << "\n" << err;
}

}  // namespace

namespace {

// A node table far beyond 32767 entries, over as many variables, reads back.
TEST(QncReader, LargeFilesRead) {
  const long n = 35000;
  std::ostringstream text;
  text << "module: big  0 0\ninput:";
  for (long i = 0; i < n; i++) text << " I" << i;
  text << " ;\noutput: O ;\nconnexion: S R T;\nequation_def:\n" << n + 1 << "\n";
  // The conjunction of all inputs, the root first.
  for (long i = 0; i < n; i++) text << i << ": " << 2 * i << ":" << (i + 1) << ":" << n << ",-1\n";
  text << n << ": -1:-3:-3,1\nexpressions:\n0 0 " << 2 * n << ":0,1,()\nend:\n";
  Module* m = readBack("big", text.str());
  ASSERT_NE(m, nullptr);
  Bddexpressionwood* w = m->getBddWood();
  Bddexpression* e = w->exp_by_index(2 * n);
  ASSERT_NE(e, nullptr);
  bddpp_manager* mg = w->my_bdd_manager();
  EXPECT_EQ(long(mg->set_of_index_depend_on(e->my_bdd_exp()).size()), n);
}

// Operator numbers carry a type index that is only informative; a writer without the type
// gives negative numbers, and SignalVal of type index 1 is 29.
TEST(QncReader, OperatorNumbersKeepTheOperatorAlone) {
  ensureTables();
  for (const char* code : {"14", "-1", "29"}) {
    SCOPED_TRACE(code);
    std::string text = std::string("module: H  0 0\ninput: A : int ;\nlocal: V : int;\nconnexion: S R T;\n") +
                       "equation_def:\n0\nexpressions:\nend:\nbinding:\n   (2, 3): value: 0;\nend:\n" +
                       "evaltable:\n   0: %%" + code + "(0, 1);\nend:\n";
    Module* m = readBack("operator", text);
    ASSERT_NE(m, nullptr);
    ASSERT_NE(m->getDataTable(), nullptr);
    ASSERT_EQ(m->getDataTable()->size(), 1u);
    EXPECT_TRUE(m->getDataTable()->begin()->second->getValue()->isDataSignalValue());
  }
}

}  // namespace

namespace {

// A register of an unknown name is left out with a message; an initial value above 1 is
// warned about and read as true.
TEST(QncReader, RegisterLines) {
  std::string text = "module: H  0 0\nlocal: n a;\nregister:\nn a 2;\nn missing 0;\n\n"
                     "connexion: S R T;\nequation_def:\n0\nexpressions:\nend:\n";
  testing::internal::CaptureStderr();
  Module* m = readBack("registers", text);
  std::string err = testing::internal::GetCapturedStderr();
  ASSERT_NE(m, nullptr) << err;
  EXPECT_NE(err.find("Warning: Boolean value expected to initialize register value\n"), std::string::npos);
  EXPECT_NE(err.find("register missing not defined as local ..."), std::string::npos);
  ASSERT_EQ(m->getRegisterList()->size(), 1u);
  regclass* r = m->getRegisterList()->front();
  EXPECT_EQ(r->next_var()->getInternalName(), "n");
  EXPECT_EQ(r->actual_var()->getInternalName(), "a");
  EXPECT_EQ(r->is_initialy_true(), 1);
}

}  // namespace

namespace {

// The value bound to an input is written itself, not a copy: its arguments keep the
// numbers of a writing, which the next one must not take for its own.
TEST(QncData, InputBindingWrittenTwice) {
  ensureTables();
  Module* m = new Module("J");
  declare(*m, "A", true);
  Signal* b = declare(*m, "B", true, "int");
  Signal* c = declare(*m, "C", true, "int");
  m->createCompileEnv();
  int plus = Compilation::GDataMethodTable->getMethodIndex("plus");
  int zero = Compilation::GDataConstantTable->getConstantIndex("zero");
  auto* args = new std::list<DataExpr*>{new DataConstant(zero), new DataSignalValue(b)};
  m->addSignalBinding(new DataMethodCall(plus, args), c, static_cast<Signal*>(nullptr));
  std::string first = written(*m);
  EXPECT_EQ(written(*m), first);
  EXPECT_NE(readBack("input_binding", written(*m)), nullptr) << first;
}

}  // namespace

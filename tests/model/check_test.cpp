// Semantic checks: each failure prints its text and ends with status 1.
#include <gtest/gtest.h>

#include <functional>

#include "data/data.h"
#include "util/compilation.h"
#include "model/module.h"
#include "model/statement.h"
#include "common/quarn_test.h"
#include "signals/expression.h"

using namespace quarn_test;

namespace {

struct Failure {
  const char* what;
  std::function<void()> run;  // builds a tree and checks it
  std::string text;           // empty: the check passes
};

void expectAll(const std::vector<Failure>& cases) {
  for (const Failure& c : cases) {
    SCOPED_TRACE(c.what);
    if (c.text.empty()) {
      EXPECT_EXIT({ c.run(); std::exit(0); }, testing::ExitedWithCode(0), "");
    } else {
      EXPECT_EXIT(c.run(), testing::ExitedWithCode(1), literally(c.text));
    }
  }
}

// ---------------------------------------------------------------------------------------
// Module: value types against the data section

TEST(ModuleCheck, ValueTypesMustBeDeclared) {
  auto withTypes = [] {
    Compilation::GDataTypeTable = new DataTypeTable;
    Compilation::GDataTypeTable->addType("int");
  };
  std::vector<Failure> cases = {
      {"input", [&] {
         withTypes();
         Module m("M");
         input(m, "a", "float");
         m.complementary_check_syntax();
       },
       "ERROR about input valued signal \"a\": type \"float\" is not defined in data section ..."},
      {"output", [&] {
         withTypes();
         Module m("M");
         output(m, "o", "int");
         output(m, "b", "bool");
         m.complementary_check_syntax();
       },
       "ERROR about output valued signal \"b\": type \"bool\" is not defined in data section ..."},
      {"local", [&] {
         withTypes();
         Module m("M");
         local(m, "l", "T");
         m.complementary_check_syntax();
       },
       "ERROR about local valued signal \"l\": type \"T\" is not defined in data section ..."},
      {"data", [&] {
         withTypes();
         Module m("M");
         m.addDataSignal(new_signal(m, "d", "U"));
         m.complementary_check_syntax();
       },
       "ERROR about data signal \"d\": type \"U\" is not defined in data section ..."},
      {"pre: its actual signal", [&] {
         withTypes();
         Module m("M");
         Signal* x = new_signal(m, "x", "V");  // in no list of its own
         m.addPreSignal(new_signal(m, "px"), x, "");
         m.complementary_check_syntax();
       },
       "ERROR about pre valued signal \"x\": type \"V\" is not defined in data section ..."},
      {"declared types and pure signals pass", [&] {
         withTypes();
         Module m("M");
         input(m, "a", "int");
         input(m, "p");
         output(m, "o", "int");
         m.complementary_check_syntax();
       },
       ""},
      {"no data section: nothing is checked", [&] {
         Compilation::GDataTypeTable = nullptr;
         Module m("M");
         input(m, "a", "whatever");
         local(m, "l", "T");
         m.complementary_check_syntax();
       },
       ""},
  };
  expectAll(cases);
}

TEST(ModuleCheck, StatementIsCheckedToo) {
  Compilation::GDataTypeTable = nullptr;
  Module m("M");
  Signal* a = input(m, "a");
  Emit* e = new Emit("ME_0", a);
  e->setParentModule(&m);
  m.setStatement(new Loop("ML_0", e));
  EXPECT_EXIT(m.complementary_check_syntax(), testing::ExitedWithCode(1),
              literally("Error in module \"M\":\n Emission of signal: \"a\"  undefined !"));
}

// ---------------------------------------------------------------------------------------
// Emissions

// Module M: input i, output o (pure), ov (int), local l (pure), lv (int), data d.
struct EmitModule {
  Module m{"M"};
  Signal* i = input(m, "i");
  Signal* o = output(m, "o");
  Signal* ov = output(m, "ov", "int");
  Signal* l = local(m, "l");
  Signal* lv = local(m, "lv", "int");
  Signal* clockInt = local(m, "MclkI", "int");
  Signal* clockReal = local(m, "MclkR", "real");
  Signal* d = nullptr;
  EmitModule() {
    d = new_signal(m, "d", "int");
    m.addDataSignal(d);
  }
  void emit(Signal* s, Signal* clock = nullptr) {
    Emit e("ME_0", s, clock);
    e.setParentModule(&m);
    e.complementary_check_syntax();
  }
  void sustain(Signal* s, Signal* clock = nullptr) {
    SustainUntil e("MSU_0", s, nullptr);
    e.setClock(clock);
    e.setParentModule(&m);
    e.complementary_check_syntax();
  }
};

TEST(EmitCheck, Messages) {
  const std::string head = "Error in module \"M\":\n ";
  std::vector<Failure> cases = {
      {"pure output", [] { EmitModule t; t.emit(t.o); }, ""},
      {"pure local", [] { EmitModule t; t.emit(t.l); }, ""},
      {"valued output", [] { EmitModule t; t.emit(t.ov, t.clockInt); }, ""},
      {"valued local", [] { EmitModule t; t.emit(t.lv, t.clockInt); }, ""},
      {"pure emission of a valued output", [] { EmitModule t; t.emit(t.ov); },
       head + "Emission of output signal: \"ov\" without value !"},
      {"pure emission of a valued local", [] { EmitModule t; t.emit(t.lv); },
       head + "Emission of local signal: \"lv\" without value !"},
      {"value on a pure output", [] { EmitModule t; t.emit(t.o, t.clockInt); },
       head + "Emission of output signal: \"o\" with a value\n whereas this signal is declared pure!"},
      {"value on a pure local", [] { EmitModule t; t.emit(t.l, t.clockInt); },
       head + "Emission of local signal: \"l\" with a value\n whereas this signal is declared pure!"},
      {"value of another type", [] { EmitModule t; t.emit(t.ov, t.clockReal); },
       head + "Emission of output signal: \"ov\" with a value typed by : \"real\"\n whereas this "
              "signal is declared with the type : \"int\" !"},
      {"an input is undefined here", [] { EmitModule t; t.emit(t.i); },
       head + "Emission of signal: \"i\"  undefined !"},
      {"a data signal is undefined here", [] { EmitModule t; t.emit(t.d, t.clockInt); },
       head + "Emission of signal: \"d\"  undefined !"},
  };
  expectAll(cases);
}

TEST(EmitCheck, SustainWords) {
  const std::string head = "Error in module \"M\":\n ";
  std::vector<Failure> cases = {
      {"pure sustain of a pure local", [] { EmitModule t; t.sustain(t.l); }, ""},
      {"valued sustain", [] { EmitModule t; t.sustain(t.ov, t.clockInt); }, ""},
      {"pure sustain of a valued output", [] { EmitModule t; t.sustain(t.ov); },
       head + "Sustain emission of output signal: \"ov\" without value !"},
      {"valued sustain of a pure local", [] { EmitModule t; t.sustain(t.l, t.clockInt); },
       head + "Sustain emission of local signal: \"l\" with a value\n whereas this signal is "
              "declared pure!"},
      {"sustain of an input", [] { EmitModule t; t.sustain(t.i); },
       head + "Sustain emission of signal: \"i\"  undefined !"},
      {"sustain of another type", [] { EmitModule t; t.sustain(t.lv, t.clockReal); },
       head + "Sustain emission of local signal: \"lv\" with a value typed by : \"real\"\n "
              "whereas this signal is declared with the type : \"int\" !"},
  };
  expectAll(cases);
}

TEST(EmitCheck, NoParentModule) {
  EmitModule t;
  Emit pure("E", t.o);
  Emit valued("E", t.ov, t.clockInt);
  EXPECT_EXIT(pure.complementary_check_syntax(), testing::ExitedWithCode(1),
              literally("internal error in Emit::complementary_check_syntax()!"));
  EXPECT_EXIT(valued.complementary_check_syntax(), testing::ExitedWithCode(1),
              literally("internal error1 in Emit::complementary_check_syntax()!"));
}

TEST(EmitCheck, NoEmitChecksNothing) {
  EmitModule t;
  NoEmit n("MNE_0", t.i);
  n.setParentModule(&t.m);
  n.complementary_check_syntax();
  SUCCEED();
}

TEST(EmitCheck, CompoundStatementsCheckTheirParts) {
  auto bad = [](EmitModule& t) {
    Emit* e = new Emit("ME_9", t.i);
    e->setParentModule(&t.m);
    return e;
  };
  auto ok = [] { return new Nothing("N"); };
  const std::string text = "Error in module \"M\":\n Emission of signal: \"i\"  undefined !";
  using Make = std::function<Statement*(EmitModule&)>;
  struct Case {
    const char* what;
    Make make;
  } cases[] = {
      {"Sequence right", [&](EmitModule& t) { return new Sequence("S", ok(), bad(t)); }},
      {"Parallel left", [&](EmitModule& t) { return new Parallel("P", bad(t), ok()); }},
      {"Sn last", [&](EmitModule& t) { return new Sn("Sn", 2, new Statement*[2]{ok(), bad(t)}); }},
      {"Pn last", [&](EmitModule& t) { return new Pn("Pn", 2, new Statement*[2]{ok(), bad(t)}); }},
      {"Present else", [&](EmitModule& t) { return new Present("PR", nullptr, ok(), bad(t)); }},
      {"Absent then", [&](EmitModule& t) { return new Absent("AB", nullptr, bad(t), nullptr); }},
      {"Abort body", [&](EmitModule& t) { return new Abort("A", nullptr, bad(t)); }},
      {"StrongAbort body", [&](EmitModule& t) { return new StrongAbort("SA", nullptr, bad(t)); }},
      {"Loop body", [&](EmitModule& t) { return new Loop("L", bad(t)); }},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EXIT(
        {
          EmitModule t;
          c.make(t)->complementary_check_syntax();
        },
        testing::ExitedWithCode(1), literally(text));
  }
}

// ---------------------------------------------------------------------------------------
// Automata

struct AutomatonTree {
  std::map<std::string, State*>* states = new std::map<std::string, State*>;
  std::list<Transition*>* transitions = new std::list<Transition*>;
  State* state(const std::string& n, bool final = false) {
    State* s = new State(n);
    s->setFinal(final ? 1 : 0);
    (*states)[n] = s;
    return s;
  }
  void arc(State* from, State* to, int type = 1, Expression* trigger = new TrueExpression()) {
    transitions->push_back(new Transition(type, 0, trigger, nullptr, from, to, nullptr, false));
  }
  void initial(State* to) {
    transitions->push_back(
        new Transition(1, 0, new TrueExpression(), nullptr, nullptr, to, nullptr, true));
  }
  void check() { Automaton("MAUT_0", nullptr, states, transitions).complementary_check_syntax(); }
};

TEST(AutomatonCheck, Messages) {
  const std::string aborted = "\n\n   --> compilation process aborted ...";
  Signal* action = reinterpret_cast<Signal*>(0x10);
  std::vector<Failure> cases = {
      {"plain", [] {
         AutomatonTree t;
         State* s0 = t.state("s0");
         State* s1 = t.state("s1", true);
         t.initial(s0);
         t.arc(s0, s1);
         t.arc(s0, s1, 3);
         t.arc(s0, s1, 3, nullptr);  // a missing trigger is accepted
         t.check();
       },
       ""},
      {"final state with a Moore action", [=] {
         AutomatonTree t;
         t.state("s0", true)->addMooreAction(action);
         t.check();
       },
       "ERROR: The FINAL state: \"s0\" must not have one (or several) Moore action!" + aborted},
      {"final state running a module", [] {
         AutomatonTree t;
         t.state("s0", true)->setRunModule(new ::Run("R", "Sub"));
         t.check();
       },
       "ERROR: The FINAL state: \"s0\" must not run a module!" + aborted},
      {"both: the actions are reported", [=] {
         AutomatonTree t;
         State* s = t.state("s0", true);
         s->setRunModule(new ::Run("R", "Sub"));
         s->addMooreAction(action);
         t.check();
       },
       "ERROR: The FINAL state: \"s0\" must not have one (or several) Moore action!" + aborted},
      {"states in name order", [=] {
         AutomatonTree t;
         t.state("b", true)->addMooreAction(action);
         t.state("a", true)->setRunModule(new ::Run("R", "Sub"));
         t.check();
       },
       "ERROR: The FINAL state: \"a\" must not run a module!" + aborted},
      {"a transition leaving a final state", [] {
         AutomatonTree t;
         State* s0 = t.state("s0");
         State* f = t.state("f", true);
         t.arc(s0, f);
         t.arc(f, s0);
         t.check();
       },
       "ERROR: A transition beginning with the FINAL state: \"f\" had been detected!" + aborted},
      {"the initial transition is skipped", [] {
         AutomatonTree t;
         State* f = t.state("f", true);
         t.transitions->push_back(
             new Transition(1, 0, new TrueExpression(), nullptr, f, f, nullptr, true));
         t.check();
       },
       ""},
      {"a trigger on normalterm", [] {
         AutomatonTree t;
         State* s0 = t.state("s0");
         State* s1 = t.state("s1");
         t.arc(s0, s1, 1, new FalseExpression());
         t.arc(s1, s0, 3, new FalseExpression());
         t.check();
       },
       "ERROR: TRIGGER in the Normal Terminaison transition from \"s1\" is not supported!" +
           aborted},
  };
  expectAll(cases);
}

// ---------------------------------------------------------------------------------------
// Runs

// Called module Sub: inputs a (pure), av (int); outputs b (pure), bv (int).
// Caller M: input x, xv (int); output y, yv (int), yr (real); local l.
struct RunSetup {
  Module* sub = new Module("Sub");
  Module* m = new Module("M");
  ::Run* run = new ::Run("MR_Sub_0", "Sub");
  Signal *x, *xv, *y, *yv, *yr, *l;
  RunSetup() {
    Compilation::ModTable = new ModuleTable;
    Compilation::QncModTable = nullptr;
    input(*sub, "a");
    input(*sub, "av", "int");
    output(*sub, "b");
    output(*sub, "bv", "int");
    Compilation::ModTable->add(sub);
    x = input(*m, "x");
    xv = input(*m, "xv", "int");
    y = output(*m, "y");
    yv = output(*m, "yv", "int");
    yr = output(*m, "yr", "real");
    l = local(*m, "l");
    run->setParentModule(m);
  }
  RunSetup& rename(const std::string& inside, Signal* outside) {
    (*run->getRenamingTable())[inside] = outside;
    return *this;
  }
  void check() { run->complementary_check_syntax(); }
  // All four connected by renaming.
  RunSetup& full() { return rename("a", x).rename("av", xv).rename("b", y).rename("bv", yv); }
};

TEST(RunCheck, Messages) {
  const std::string h = "ERROR in module M about run Sub:\n";
  std::vector<Failure> cases = {
      {"all renamed", [] { RunSetup().full().check(); }, ""},
      {"connection by equal names, no type test", [] {
         RunSetup t;
         t.rename("b", t.y).rename("bv", t.yv);
         input(*t.m, "a", "int");  // pure inside, valued outside: accepted
         input(*t.m, "av");
         t.check();
       },
       ""},
      {"input connected to a local or a pre", [] {
         RunSetup t;
         t.rename("b", t.y).rename("bv", t.yv);
         local(*t.m, "a");
         Signal* pre = new Signal("av", "av", t.m, t.m->getBddWood());
         t.m->addPreSignal(pre, t.x, "");
         t.check();
       },
       ""},
      {"output connected to a local", [] {
         RunSetup t;
         t.rename("a", t.x).rename("av", t.xv).rename("bv", t.yv);
         local(*t.m, "b");
         t.check();
       },
       ""},
      {"input renamed to an output", [] { RunSetup t; t.full().rename("a", t.y).check(); },
       h + "y is an output whereas a from module Sub is an input !\n Aborting ..."},
      {"output renamed to an input", [] { RunSetup t; t.full().rename("b", t.x).check(); },
       h + "x is an input or pre whereas b from module Sub is an output !\n Aborting ..."},
      {"pure outside, valued inside", [] { RunSetup t; t.full().rename("bv", t.y).check(); },
       h + "y is pure whereas bv from module Sub is typed with \"int\" !\n Aborting ..."},
      {"valued outside, pure inside", [] { RunSetup t; t.full().rename("a", t.xv).check(); },
       h + "xv is typed with \"int\" whereas a from module Sub is pure !\n Aborting ..."},
      {"two types", [] { RunSetup t; t.full().rename("bv", t.yr).check(); },
       h + "yr is typed with \"real\" whereas bv from module Sub is typed with \"int\" !\n "
           "Aborting ..."},
      {"name not in the called module", [] { RunSetup t; t.full().rename("zz", t.l).check(); },
       h + "zz is undefined in I/O list of module Sub\" !\n Aborting ..."},
      {"input left unconnected", [] {
         RunSetup t;
         t.rename("av", t.xv).rename("b", t.y).rename("bv", t.yv).check();
       },
       h + "Input \"a\" of called module \"Sub\" is not defined as Input, Local or Pre or renamed "
           "in module \"M\"\n Aborting ..."},
      {"output left unconnected", [] {
         RunSetup t;
         t.rename("a", t.x).rename("av", t.xv).rename("b", t.y).check();
       },
       h + "Output \"bv\" of called module \"Sub\" is not defined as Output, Local or renamed in "
           "module \"M\"\n Aborting ..."},
      {"an input of the caller does not take an output", [] {
         RunSetup t;
         t.rename("a", t.x).rename("av", t.xv).rename("bv", t.yv);
         input(*t.m, "b");
         t.check();
       },
       h + "Output \"b\" of called module \"Sub\" is not defined as Output, Local or renamed in "
           "module \"M\"\n Aborting ..."},
      {"undefined module", [] {
         RunSetup t;
         Compilation::ModTable = new ModuleTable;
         t.check();
       },
       h + ":\nrun of an undefined module :\"Sub\"\nAborting ..."},
      {"undefined module, other declarations", [] {
         RunSetup t;
         Compilation::ModTable = new ModuleTable;
         t.m->addRunDecl("Other", "o", "d");
         t.check();
       },
       h + ":\nrun of an undefined module :\"Sub\"\nAborting ..."},
      {"declared but no file", [] {
         RunSetup t;
         Compilation::ModTable = new ModuleTable;
         Module::CompilationFileList = nullptr;
         t.m->addRunDecl("Sub", "sub", "/nonexistent");
         t.check();
       },
       h + "Impossible to load module :\"Sub\" from qnc file ...\nHave you really indicate the "
           "list of qnc files to include by graphical interface or quarnc parameters "
           "?\nAborting ..."},
      {"found in the compiled modules", [] {
         RunSetup t;
         Compilation::QncModTable = Compilation::ModTable;
         Compilation::ModTable = new ModuleTable;
         t.full().check();
       },
       ""},
  };
  expectAll(cases);
}

TEST(RunCheck, NoRenamingTableIsANote) {
  Module* empty = new Module("Empty");
  Compilation::ModTable = new ModuleTable;
  Compilation::ModTable->add(empty);
  Module m("M");
  ::Run run("MR_Empty_0", "Empty");
  run.setParentModule(&m);
  run.setRenamingTable(static_cast<std::map<std::string, Signal*>*>(nullptr));
  testing::internal::CaptureStderr();
  run.complementary_check_syntax();
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "no renaming table ...\n");
}

}  // namespace

namespace {

TEST(RunCheck, AwaitedNames) {
  RunSetup t;
  t.rename("a", t.x).rename("b", t.y).rename("c", t.l);
  std::list<std::string> in, out;
  t.run->computeAwaitedNameList(&in, &out, t.m);
  EXPECT_EQ(in, (std::list<std::string>{"x", "xv", "l", "a", "c"}));
  EXPECT_EQ(out, (std::list<std::string>{"y", "yv", "yr", "l", "b", "c"}));
}

}  // namespace

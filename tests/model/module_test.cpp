// Module, Interface, ModuleTable: tables, lookups, declarations.
#include "model/module.h"

#include <gtest/gtest.h>

#include <sstream>

#include "util/compilation.h"
#include "model/statement.h"
#include "model_test_util.h"

using namespace model_test;

namespace {

TEST(ModuleTableTest, AddGetAndDuplicate) {
  ModuleTable t;
  Module* a = new Module("A");
  Module* b = new Module("B");
  t.add(a);
  t.add(b);
  EXPECT_EQ(t.get("A"), a);
  EXPECT_EQ(t.get("B"), b);
  EXPECT_EQ(t.get("C"), nullptr);
  EXPECT_EXIT(t.add(new Module("A")), testing::ExitedWithCode(1),
              literally("Exception in Hash Table: add:A is already defined"));
}

TEST(ModuleStatics, StartValues) {
  // The environment variable "/tmp" is never set in an ordinary environment.
  EXPECT_EQ(Module::SimulationDir, "./");
  EXPECT_EQ(Module::SimulationQncDir, ".");
  EXPECT_EQ(Module::OutputDir, ".");
  EXPECT_EQ(Module::OutputFile, "");
  EXPECT_EQ(Module::CompilationFileList, nullptr);
}

TEST(ModuleConstruction, EmptyParts) {
  Module m("M");
  EXPECT_EQ(m.getName(), "M");
  EXPECT_EQ(m.getStatement(), nullptr);
  EXPECT_TRUE(m.getInputSignalList()->empty());
  EXPECT_TRUE(m.getOutputSignalList()->empty());
  EXPECT_TRUE(m.getLocalSignalList()->empty());
  EXPECT_TRUE(m.getDataSignalList()->empty());
  EXPECT_EQ(m.getRunDeclTable(), nullptr);
  EXPECT_EQ(m.getSet(), nullptr);
  EXPECT_EQ(m.getReset(), nullptr);
  EXPECT_EQ(m.getRtl(), nullptr);
  EXPECT_FALSE(m.getReincarnate());
  EXPECT_EQ(m.getFinalised(), 0);
  EXPECT_EQ(m.getCurrentInstance(), -1);
  EXPECT_EQ(m.incrCurrentInstance(), 0);
  EXPECT_EQ(m.getDataTable(), nullptr);
  ASSERT_NE(m.getCompilation(), nullptr);
  EXPECT_NE(m.getSignalManager(), nullptr);
}

TEST(ModuleRunDecl, LocationAndSecondDeclaration) {
  Module m("M");
  m.addRunDecl("Sub", "sub", "/home/u/lib");
  m.addRunDecl("Other", "", "dir");
  ASSERT_NE(m.getModuleLocation("Sub"), nullptr);
  EXPECT_EQ(*m.getModuleLocation("Sub"), "/home/u/lib/sub");
  EXPECT_EQ(*m.getModuleLocation("Other"), "dir/");
  EXPECT_EQ(m.getModuleLocation("None"), nullptr);
  // Twice fails, even with the same location.
  EXPECT_EXIT(m.addRunDecl("Sub", "sub", "/home/u/lib"), testing::ExitedWithCode(1),
              literally("Run module already exists: Sub"));
}

TEST(ModuleLookup, OrderAndNames) {
  Module m("M");
  Signal* in = input(m, "x");
  Signal* loc = local(m, "x");
  Signal* out = output(m, "o");
  Signal* l2 = local(m, "l");
  Signal* data = newSignal(m, "d");
  m.addDataSignal(data);
  // A renamed signal: original and internal names differ.
  Signal* renamedIn = new Signal("r", "r__Sub_i0", &m, m.getBddWood());
  m.addInputSignal(renamedIn);
  Signal* pre = new Signal("p", "p_int", &m, m.getBddWood());
  m.addPreSignal(pre, in, "");

  struct Case {
    const char* what;
    Signal* got;
    Signal* expected;
  } cases[] = {
      {"getSignal: input before local", m.getSignal("x"), in},
      {"getSignal: output", m.getSignal("o"), out},
      {"getSignal: local", m.getSignal("l"), l2},
      {"getSignal: data", m.getSignal("d"), data},
      {"getSignal: pre by internal name", m.getSignal("p_int"), pre},
      {"getSignal: pre not by original name", m.getSignal("p"), nullptr},
      {"getSignal: none", m.getSignal("zz"), nullptr},
      {"getOutputLocalSignal: output", m.getOutputLocalSignal("o"), out},
      {"getOutputLocalSignal: local", m.getOutputLocalSignal("l"), l2},
      {"getOutputLocalSignal: input only", m.getOutputLocalSignal("r"), nullptr},
      {"getInputSignal: original name", m.getInputSignal("r"), renamedIn},
      {"getInputSignal: not internal name", m.getInputSignal("r__Sub_i0"), nullptr},
      {"getPreSignal: internal", m.getPreSignal("p_int"), pre},
      {"getPreSignal: not original", m.getPreSignal("p"), nullptr},
      {"getLocalSignal", m.getLocalSignal("x"), loc},
      {"getDataSignal", m.getDataSignal("d"), data},
      {"getOutputSignal on an input", m.getOutputSignal("x"), nullptr},
      {"getSignalFromInternalName: input", m.getSignalFromInternalName("r__Sub_i0"), renamedIn},
      {"getSignalFromInternalName: not original", m.getSignalFromInternalName("r"), nullptr},
      {"getSignalFromInternalName: pre", m.getSignalFromInternalName("p_int"), pre},
  };
  for (const Case& c : cases) EXPECT_EQ(c.got, c.expected) << c.what;
}

TEST(ModuleLookup, ById) {
  Module m("M");
  Signal* a = input(m, "a");
  Bddexpressionwood* wood = m.getBddWood();
  long over = a->getOverBddId(&m, wood);
  long under = a->getUnderBddId(&m, wood);
  EXPECT_EQ(m.getSignalById(over, wood), a);
  EXPECT_EQ(m.getSignalById(under), a);
  EXPECT_EQ(m.getOtherBddId(over, wood), under);
  EXPECT_EQ(m.getOtherBddId(under, wood), over);
  EXPECT_EQ(m.getSignalNameById(over, wood), "a");
  EXPECT_EQ(m.getSignalById(999, wood), nullptr);
  EXPECT_EXIT(m.getSignalNameById(999, wood), testing::ExitedWithCode(1),
              literally("Module::getSignalNameById: no signal reference for this bdd id: 999"));
  EXPECT_EXIT(m.getOtherBddId(999, wood), testing::ExitedWithCode(1),
              literally("Module::getOtherBddId: no signal in table for this bdd id:999"));
}

TEST(ModuleDeclarations, Registers) {
  Module m("M");
  m.addRegisterDecl("q", 1, "qnext");
  ASSERT_EQ(m.getLocalSignalList()->size(), 2u);
  Signal* q = m.getLocalSignalList()->front();
  Signal* qn = m.getLocalSignalList()->back();
  EXPECT_EQ(q->getInternalName(), "q");
  EXPECT_EQ(qn->getInternalName(), "qnext");
  EXPECT_TRUE(q->isLocal() && q->isRegister() && q->isWire());
  EXPECT_TRUE(qn->isLocal() && qn->isRegister());
  ASSERT_EQ(m.getRegisterList()->size(), 1u);
  regclass* r = m.getRegisterList()->front();
  EXPECT_EQ(*r, regclass(q, qn, 1));
  m.addRegisterSignal(qn, q);
  EXPECT_EQ(*m.getRegisterList()->back(), regclass(qn, q, 0));
}

TEST(ModuleDeclarations, WiresAreMarked) {
  Module m("M");
  Signal* s = newSignal(m, "SETM");
  Signal* r = newSignal(m, "RESETM");
  Signal* t = newSignal(m, "RTLM");
  m.setSet(s);
  m.setReset(r);
  m.setRtl(t);
  EXPECT_TRUE(s->isWire() && r->isWire() && t->isWire());
  EXPECT_EQ(m.getSet(), s);
}

TEST(RegisterPrinting, Forms) {
  Module m("M");
  Signal* a = newSignal(m, "A");
  Signal* n = newSignal(m, "An");
  struct Case {
    regclass r;
    const char* text;
  } cases[] = {{regclass(a, n, 1), "An A 1"}, {regclass(a, n, 0), "An A 0"},
               {regclass(nullptr, nullptr, 0), "? ? 0"}};
  for (const Case& c : cases) {
    std::ostringstream out;
    out << c.r;
    EXPECT_EQ(out.str(), c.text);
  }
  EXPECT_FALSE(regclass(a, n, 1) == regclass(a, n, 0));
  EXPECT_FALSE(regclass(a, n, 1) == regclass(n, a, 1));
  regclass r(a, n, 0);
  r.is_initialy_true(1);
  r.next_var(a);
  EXPECT_EQ(r, regclass(a, a, 1));

  std::ostringstream out;
  out << memorizedSignal(n, a, "C_zero") << "|" << memorizedSignal(n, nullptr, "");
  EXPECT_EQ(out.str(), "An A C_zero;|An ? ;");
}

TEST(InterfaceTest, TablesAndFailures) {
  Module m("M");
  Signal* a = newSignal(m, "a__Sub_i0");
  Signal* b = newSignal(m, "b");
  Signal* c = newSignal(m, "c");
  Interface iface;
  iface.addInput("a", a);
  iface.addOutput("b", b);
  iface.addLocal("c", c);
  iface.addData("a", c);  // data table is looked at last
  EXPECT_EQ(iface.getInputSignal("a"), a);
  EXPECT_EQ(iface.getOutputSignal("b"), b);
  EXPECT_EQ(iface.getLocalSignal("c"), c);
  EXPECT_EQ(iface.getSignal("a"), a);
  EXPECT_EQ(iface.getSignal("c"), c);
  EXPECT_EQ(iface.getSignal("z"), nullptr);
  EXPECT_EQ(iface.getOriginalSignalName("a__Sub_i0"), "a");
  EXPECT_EQ(iface.getOriginalSignalName("c"), "c");
  EXPECT_EQ(iface.getOriginalSignalName("none"), "");
  EXPECT_EQ(iface.getOutputSignalTable()->size(), 1u);

  EXPECT_EXIT(iface.addInput("a", b), testing::ExitedWithCode(1),
              literally("Impossible to add Input Signal a..."));
  EXPECT_EXIT(iface.getInputSignal("q"), testing::ExitedWithCode(1),
              literally("Input Signal: q not found!"));
  EXPECT_EXIT(iface.getOutputSignal("q"), testing::ExitedWithCode(1),
              literally("Output Signal: q not found!"));
  // Programming faults: thrown, never caught by the compiler.
  try {
    iface.addOutput("b", a);
    ADD_FAILURE();
  } catch (IllegalOperationException& e) {
    EXPECT_STREQ(e.what(), "Interface::addOutput");
    EXPECT_STREQ(e.reason(), "b");
  }
  EXPECT_THROW(iface.addLocal("c", a), IllegalOperationException);
  EXPECT_THROW(iface.addData("a", a), IllegalOperationException);
  EXPECT_THROW(iface.getLocalSignal("q"), IllegalOperationException);
}

TEST(RunStatement, RenamingTableFromTheParser) {
  Module m("M");
  Signal* a = newSignal(m, "a");
  Signal* b = newSignal(m, "b");
  ::Run run("MR_Sub_0", "Sub");
  std::list<std::pair<char const*, Signal*>*> l{new std::pair<char const*, Signal*>("x", a),
                                                new std::pair<char const*, Signal*>("y", b)};
  run.setRenamingTable(&l);
  EXPECT_EQ(run.getRenamingSignal("x"), a);
  EXPECT_EQ(run.getRenamingSignal("y"), b);
  EXPECT_EQ(run.getRenamingSignal("a"), nullptr);
  run.setRenamingTable(static_cast<std::map<std::string, Signal*>*>(nullptr));
  EXPECT_EQ(run.getRenamingSignal("x"), nullptr);

  ::Run twice("MR_Sub_1", "Sub");
  std::list<std::pair<char const*, Signal*>*> dup{new std::pair<char const*, Signal*>("x", a),
                                                  new std::pair<char const*, Signal*>("x", b)};
  EXPECT_EXIT(twice.setRenamingTable(&dup), testing::ExitedWithCode(1),
              literally("Exception in Hash Table: add:x is already defined"));
}

TEST(RunStatement, ReincarnateOfALinkedModule) {
  Module called("Sub");
  called.setStatement(new Nothing("SubN_0"));
  ::Run run("MR_Sub_0", "Sub");
  run.setModule(&called);
  // Not compiled yet: its statement answers.
  EXPECT_TRUE(run.reincarnate());
  // Compiled: the flag stored by compile answers.
  called.setSet(newSignal(called, "SETSub"));
  called.setReincarnate(false);
  EXPECT_FALSE(run.reincarnate());
  called.setReincarnate(true);
  EXPECT_TRUE(run.reincarnate());
}

TEST(RunStatement, ReincarnateOfAnUndeclaredModule) {
  Module m("M");
  ::Run run("MR_Nowhere_0", "Nowhere");
  run.setParentModule(&m);
  EXPECT_EXIT(run.reincarnate(), testing::ExitedWithCode(1),
              literally("ex1:Run module undefined: Nowhere"));
  m.addRunDecl("Other", "o", "d");
  EXPECT_EXIT(run.reincarnate(), testing::ExitedWithCode(1),
              literally("ex2:Run module undefined: Nowhere"));
}

TEST(MealyMachineTest, LaterEquationReplaces) {
  Module m("M");
  Signal* x = newSignal(m, "x");
  Signal* y = newSignal(m, "y");
  Equation* e1 = new Equation(x, nullptr);
  Equation* e2 = new Equation(y, nullptr);
  Equation* e3 = new Equation(x, nullptr);
  MealyMachine mm("MMM_0");
  std::list<Equation*> l{e1, e2, e3};
  mm.setMachineTable(&l, &m);
  ASSERT_EQ(mm.getMachineTable()->size(), 2u);
  EXPECT_EQ(mm.getMachineTable()->at("x"), e3);
  EXPECT_EQ(mm.getMachineTable()->at("y"), e2);
}

TEST(StatementWires, CreateWires) {
  Module m("M");
  Pause p("MPS_0");
  p.createWires(&m, m.getCompilation());
  std::vector<std::string> names;
  for (Signal* s : *m.getLocalSignalList()) {
    names.push_back(s->getInternalName());
    EXPECT_TRUE(s->isWire());
  }
  EXPECT_EQ(names, (std::vector<std::string>{"SETMPS_0", "RESETMPS_0", "RTLMPS_0"}));
  EXPECT_EQ(p.getSet()->getInternalName(), "SETMPS_0");
  EXPECT_EQ(p.getRtl()->getInternalName(), "RTLMPS_0");
}

}  // namespace

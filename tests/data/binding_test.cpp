// Signal values and bindings on real modules: typing, texts, copies for instances and
// module copies, the data table, value signals and the .qnc binding section.
#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <sstream>

#include "data/data.h"
#include "util/compilation.h"
#include "equations/Bddexpression.h"
#include "model/module.h"
#include "signals/signal_manager.h"

namespace {

std::string exact(const std::string& text) {
  std::string r;
  for (char c : text) {
    if (std::string("\\^$.|?*+()[]{}").find(c) != std::string::npos) r += '\\';
    r += c;
  }
  return r;
}

template <class F>
std::string text(F put) {
  std::ostringstream out;
  put(out);
  return out.str();
}

class BindingTest : public ::testing::Test {
 protected:
  void SetUp() override {
    setenv("QUARN_BATCH", "1", 1);
    Compilation::GDataTypeTable = new DataTypeTable();
    Compilation::GDataTypeTable->addType("int");
    Compilation::GDataTypeTable->addType("bool");
    Compilation::GDataMethodTable = nullptr;
    Compilation::GDataConstantTable = new DataConstantTable();
    auto* v = new DataValue("1");
    auto* decl = new ConstantDecl("int", "one", new std::map<int, DataExpr*>{{TLanguage::DEFAULT, v}});
    v->setConstDecl(decl);
    Compilation::GDataConstantTable->addConstant(decl);
    m = new Module("M");
  }
  void TearDown() override {
    Compilation::GDataTypeTable = nullptr;
    Compilation::GDataConstantTable = nullptr;
  }

  // A signal of module mod with the given kind; valued when type isn't empty.
  Signal* signal(Module* mod, const std::string& name, char kind, const std::string& type = "") {
    auto* s = new Signal(name, mod, mod->getBddWood());
    switch (kind) {
      case 'i': s->setInput(); mod->addInputSignal(s); break;
      case 'p': s->setInput(); s->setPre(); mod->addInputSignal(s); break;
      case 'o': s->setOutput(); mod->addOutputSignal(s); break;
      case 'l': s->setLocal(); mod->addLocalSignal(s); break;
      case 'w': s->setWire(); mod->addWireSignal(s); break;
    }
    if (!type.empty()) s->setValueType(type, mod);
    return s;
  }

  Module* m = nullptr;
};

TEST_F(BindingTest, SignalValueTyping) {
  Signal* x = signal(m, "x", 'i', "int");
  Signal* pure = signal(m, "y", 'i');
  EXPECT_EQ(DataSignalValue(x).getType(m), "int");
  EXPECT_EQ(DataBinaryOp(DataExpr::Sup, new DataSignalValue(x), new DataConstant(0)).getType(m), "int");
  EXPECT_EXIT(DataSignalValue(pure).getType(m), testing::ExitedWithCode(1),
              exact("Error: Undefined type: signal not valued y"));

  testing::internal::CaptureStderr();
  DataSignalValue none(nullptr);
  none.setType("t");
  EXPECT_EQ(none.computeType(m), "t");
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "abnormal null! Bound signal have to be defined about type= t and index= -1...\n");
}

TEST_F(BindingTest, SignalValueTextsPerLanguage) {
  struct Case {
    const char* name;
    char kind;
    const char *c, *csharp, *lustre, *esterel, *vhdl;
  };
  const Case cases[] = {
      {"x", 'i', "_s_x_val", "_s_x_val", "_s_x_val", "?_s_x", "_s_x_locval"},
      {"o", 'o', "*o_val", " _s_o_val", "_s_o_val", "?_s_o", "_s_o_locval"},
      {"p", 'p', "p_val", "_s_p_val", "p_val", "?p", "p_locval"},
      {"l", 'l', "_s_l_val", "_s_l_val", "_s_l_val", "?_s_l", "_s_l_locval"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    DataSignalValue v(signal(m, c.name, c.kind, "int"));
    EXPECT_EQ(text([&](std::ostream& o) { v.C_put(o, m); }), c.c);
    EXPECT_EQ(text([&](std::ostream& o) { v.CSharp_put(o, m); }), c.csharp);
    EXPECT_EQ(text([&](std::ostream& o) { v.LUSTRE_put(o, m); }), c.lustre);
    EXPECT_EQ(text([&](std::ostream& o) { v.ESTEREL_put(o, m); }), c.esterel);
    EXPECT_EQ(text([&](std::ostream& o) { v.VHDL_put(o, m); }), c.vhdl);
    EXPECT_EQ(text([&](std::ostream& o) { v.DEBUG_put(o, m); }),
              std::string("SIGNAL VALUE of \"") + c.name + "\"");
  }
  // Inside a call and an operator.
  Signal* x = m->getInputSignal("x");
  DataBinaryOp sum(DataExpr::Plus, new DataSignalValue(x), new DataConstant(0));
  EXPECT_EQ(text([&](std::ostream& o) { sum.C_put(o, m); }), " add_int(_s_x_val,one)");
  EXPECT_EQ(text([&](std::ostream& o) { sum.VHDL_put(o, m); }), "(_s_x_locval + one)");
}

TEST_F(BindingTest, Dependencies) {
  Signal* x = signal(m, "x", 'i', "int");
  Signal* y = signal(m, "y", 'l', "int");
  auto* e = new DataBinaryOp(
      DataExpr::Plus, new DataUnaryOp(DataExpr::Uminus, new DataSignalValue(x)),
      new DataBinaryOp(DataExpr::Mult, new DataConstant(0),
                       new DataBinaryOp(DataExpr::Minus, new DataSignalValue(y), new DataSignalValue(x))));
  std::set<Signal*>* deps = e->computeDependencySet();
  ASSERT_NE(deps, nullptr);
  EXPECT_EQ(*deps, (std::set<Signal*>{x, y}));
  std::set<Signal*> more{nullptr};
  e->computeValueSignalDependencies(more);
  EXPECT_EQ(more, (std::set<Signal*>{nullptr, x, y}));
  // Constants read nothing, whatever the operators around them.
  EXPECT_EQ(DataBinaryOp(DataExpr::Plus, new DataConstant(0), new DataConstant(0)).computeDependencySet(), nullptr);
}

TEST_F(BindingTest, CopiesForModuleCopies) {
  Signal* x = signal(m, "x", 'i', "int");
  Signal* k = signal(m, "k", 'l');
  Signal* z = signal(m, "z", 'l', "int");
  auto* m2 = new Module("M2");
  Signal* x2 = signal(m2, "x", 'i', "int");
  Signal* k2 = signal(m2, "k", 'l');

  auto* e = new DataUnaryOp(DataExpr::Uminus, new DataSignalValue(x));
  auto* moved = static_cast<DataUnaryOp*>(e->changeModule(m2, m));
  EXPECT_EQ(static_cast<DataSignalValue*>(moved->getOperand())->getSignal(), x2);
  auto* same = static_cast<DataUnaryOp*>(e->duplicate());
  EXPECT_NE(same->getOperand(), e->getOperand());
  EXPECT_EQ(static_cast<DataSignalValue*>(same->getOperand())->getSignal(), x);

  DataBinding b(x, e, k);
  DataBinding copy(b, m2, m);
  EXPECT_EQ(copy.getSignal(), x2);
  EXPECT_EQ(copy.getClock(), k2);
  EXPECT_NE(copy.getValue(), e);

  EXPECT_EXIT(DataSignalValue(z).changeModule(m2, m), testing::ExitedWithCode(1),
              exact("Error: Illegal operation!\nDataSignalValue::changeModule: no signal in new module for:z"));
  DataBinding lost(z, new DataConstant(0));
  EXPECT_EXIT(DataBinding(lost, m2, m), testing::ExitedWithCode(1),
              exact("Error: Illegal operation!\nDataDinding::DataBinding: no signal in new module for:z"));
  DataBinding lostClock(x, new DataConstant(0), z);
  EXPECT_EXIT(DataBinding(lostClock, m2, m), testing::ExitedWithCode(1),
              exact("Error: Illegal operation!\nDataDinding::DataBinding: no clock in new module for: z"));
}

TEST_F(BindingTest, Instances) {
  // called: the module whose bindings are copied into caller m.
  auto* called = new Module("C");
  Signal* a = signal(called, "a", 'i', "int");
  Signal* p = signal(called, "p", 'p', "int");
  Signal* o = signal(called, "o", 'o', "int");
  Signal* l = signal(called, "l", 'l', "int");
  Signal* r = signal(called, "r", 'i', "int");
  Signal* w = signal(called, "w", 'w');

  Signal* a2 = signal(m, "a", 'i', "int");
  Signal* p2 = signal(m, "p__C_i0", 'p', "int");
  Signal* o2 = signal(m, "o__C_i0", 'l', "int");
  Signal* l2 = signal(m, "l__C_i0", 'l', "int");
  Signal* r2 = signal(m, "rr", 'i', "int");
  auto* iface = new Interface();
  iface->addInput("p", p2);
  iface->addOutput("o", o2);
  iface->addLocal("l", l2);
  std::map<std::string, Signal*> renaming{{"r", r2}};

  const std::pair<Signal*, Signal*> cases[] = {{a, a2}, {p, p2}, {o, o2}, {l, l2}, {r, r2}};
  for (const auto& [inside, outside] : cases) {
    SCOPED_TRACE(inside->getInternalName());
    DataExpr* e = DataSignalValue(inside).instanciate(iface, &renaming, m);
    EXPECT_EQ(static_cast<DataSignalValue*>(e)->getSignal(), outside);
  }
  EXPECT_EXIT(DataSignalValue(w).instanciate(iface, &renaming, m), testing::ExitedWithCode(1),
              exact("Error: Illegal operation!\nDataSignalValue::instanciate   w"));

  // Renaming works on names inside the instance.
  DataSignalValue renamed(l2);
  std::map<std::string, Signal*> again{{"l", a2}};
  EXPECT_EQ(static_cast<DataSignalValue*>(renamed.applyRenaming(&again, iface))->getSignal(), a2);
  EXPECT_EQ(renamed.applyRenaming(&renaming, iface), &renamed);
  EXPECT_EXIT(DataSignalValue(a2).applyRenaming(&renaming, iface), testing::ExitedWithCode(1),
              exact("***Internal error: applyRenaming: no original signal for renamed signal: a"));

  // A binding of the called module: its signal through the interface, its clock by
  // renaming, as an output of the caller, or through the interface.
  Signal* k = signal(called, "k", 'l');
  Signal* k2 = signal(m, "k__C_i0", 'l');
  iface->addLocal("k", k2);
  DataBinding* b = DataBinding(l, new DataSignalValue(a), k).instanciate(iface, &renaming, m);
  EXPECT_EQ(b->getSignal(), l2);
  EXPECT_EQ(b->getClock(), k2);
  EXPECT_EQ(static_cast<DataSignalValue*>(b->getValue())->getSignal(), a2);
  b = DataBinding(l, new DataConstant(0), r).instanciate(iface, &renaming, m);
  EXPECT_EQ(b->getClock(), r2);
  Signal* out = signal(called, "out", 'o');
  signal(m, "out", 'o');
  b = DataBinding(l, new DataConstant(0), out).instanciate(iface, &renaming, m);
  EXPECT_EQ(b->getClock(), out);
  b = DataBinding(o, new DataConstant(0)).instanciate(iface, &renaming, m);
  EXPECT_EQ(b->getSignal(), o2);
  EXPECT_EQ(b->getClock(), nullptr);
  EXPECT_EXIT(DataBinding(a, new DataConstant(0)).instanciate(iface, &renaming, m),
              testing::ExitedWithCode(1), exact(" not in interface:a"));
}

TEST_F(BindingTest, DataTable) {
  EXPECT_EQ(m->getBinding("s"), nullptr);
  EXPECT_EQ(m->getSignalBindingByClock(signal(m, "c0", 'l')), nullptr);
  EXPECT_EQ(m->getDataBindingByClock(m->getLocalSignal("c0")), nullptr);
  EXPECT_EQ(text([&](std::ostream& o) { m->debugPrintBinding(o); }), "no data table ...\n");
  m->removeBinding("s");

  Signal* s = signal(m, "s", 'l', "int");
  Signal* t = signal(m, "t", 'l', "int");
  Signal* c = signal(m, "c", 'l');
  auto* first = new DataConstant(0);
  auto* second = new DataUnaryOp(DataExpr::Uminus, new DataConstant(0));
  EXPECT_EQ(m->addSignalBinding(first, s, c), s);
  EXPECT_EQ(m->addSignalBinding(second, s, c), s);
  EXPECT_EQ(m->addSignalBinding(new DataConstant(0), t, static_cast<Signal*>(nullptr)), t);
  EXPECT_TRUE(s->isValue());
  EXPECT_TRUE(c->isClock());
  ASSERT_NE(m->getDataTable(), nullptr);
  EXPECT_EQ(m->getDataTable()->size(), 2u);
  EXPECT_EQ(m->getBinding("s")->getValue(), second);
  EXPECT_EQ(m->getBinding("t")->getClock(), nullptr);

  // Clocks are found by name: a clock of another module finds them.
  auto* other = new Module("O");
  Signal* otherClock = signal(other, "c", 'l');
  std::list<Signal*>* signals = m->getSignalBindingByClock(otherClock);
  ASSERT_NE(signals, nullptr);
  EXPECT_EQ(*signals, (std::list<Signal*>{s}));
  std::list<DataBinding*>* bindings = m->getDataBindingByClock(c);
  ASSERT_EQ(bindings->size(), 1u);
  EXPECT_EQ(bindings->front(), m->getBinding("s"));
  EXPECT_TRUE(m->getSignalBindingByClock(t)->empty());

  EXPECT_EQ(text([&](std::ostream& o) { m->getBinding("s")->print_debug(o); }),
            "s signal porteur (clock):c     value:  -(C: 0)");
  EXPECT_EQ(text([&](std::ostream& o) { m->getBinding("t")->print_debug(o); }),
            "t pas de signal porteur (clock) associe ...     value: C: 0");

  m->removeBinding("s");
  EXPECT_EQ(m->getBinding("s"), nullptr);
  m->addBinding(new DataBinding(s, first));
  EXPECT_EQ(m->getBinding("s")->getValue(), first);
}

TEST_F(BindingTest, ValueSignals) {
  Signal* s = signal(m, "s", 'o', "int");
  int n = DataExpr::Indexation;

  Signal* v = m->addSignalBinding(new DataConstant(0), "T");
  EXPECT_EQ(v->getInternalName(), "IData_T" + std::to_string(n));
  EXPECT_TRUE(v->isLocal() && v->isValue());
  EXPECT_TRUE(v->isValued(m));
  EXPECT_EQ(v->getValueType(m), "int");
  EXPECT_EQ(m->getBinding(v->getInternalName())->getSignal(), v);

  Signal* c = m->addSignalBinding(new DataConstant(0), "E", s);
  EXPECT_EQ(c->getInternalName(), "sData_E" + std::to_string(n + 1));
  EXPECT_TRUE(s->isClock());
  EXPECT_TRUE(c->isLocal() && c->isValue());
  EXPECT_EQ(c->getValueType(m), "int");
  EXPECT_EQ(m->getBinding(c->getInternalName())->getClock(), s);

  Signal* d = m->addSignalBinding(new DataConstant(0), s, m->getBddWood());
  EXPECT_EQ(d->getInternalName(), "sData_" + std::to_string(n + 2));
  EXPECT_FALSE(d->isLocal());
  EXPECT_TRUE(d->isValue());
  EXPECT_EQ(DataExpr::Indexation, n + 3);

  // A constant reads no signal: no equation comes with the binding.
  Signal* plain = signal(m, "plain", 'l', "int");
  EXPECT_EQ(m->addSignalBinding(new DataConstant(0), plain), plain);
  EXPECT_EQ(m->getBinding("plain")->getClock(), nullptr);
  Bddexpressionwood* wood = m->getBddWood();
  EXPECT_EQ(wood->exp_by_index(plain->getOverBddId(m, wood)), nullptr);
  // A clocked binding gets no equation either.
  Signal* x = signal(m, "x", 'i', "int");
  Signal* clocked = signal(m, "clocked", 'l', "int");
  m->addSignalBinding(new DataSignalValue(x), clocked, s);
  EXPECT_EQ(wood->exp_by_index(clocked->getOverBddId(m, wood)), nullptr);
}

// An unclocked value is computed after the values it reads: its over and under variables
// get abstract equations that depend on theirs.
TEST_F(BindingTest, ValueSignalEquations) {
  Signal* x = signal(m, "x", 'i', "int");
  Signal* y = signal(m, "y", 'l', "int");
  Signal* s = signal(m, "s", 'l', "int");
  Bddexpressionwood* wood = m->getBddWood();
  m->addSignalBinding(new DataBinaryOp(DataExpr::Plus, new DataSignalValue(x), new DataSignalValue(y)), s);
  Signal* v = m->addSignalBinding(new DataUnaryOp(DataExpr::Uminus, new DataSignalValue(x)), "V");
  const std::set<long> xy{x->getOverBddId(m, wood), x->getUnderBddId(m, wood),
                          y->getOverBddId(m, wood), y->getUnderBddId(m, wood)};
  const std::set<long> xOnly{x->getOverBddId(m, wood), x->getUnderBddId(m, wood)};
  const std::pair<Signal*, const std::set<long>*> cases[] = {{s, &xy}, {v, &xOnly}};
  for (const auto& [bound, deps] : cases) {
    SCOPED_TRACE(bound->getInternalName());
    for (long id : {bound->getOverBddId(m, wood), bound->getUnderBddId(m, wood)}) {
      Bddexpression* e = wood->exp_by_index(id);
      ASSERT_NE(e, nullptr);
      EXPECT_NE(e->getAbstraction(), 0);
      EXPECT_EQ(e->getExpDef(), "VALUE_SIGNAL");
      EXPECT_EQ(e->getDependances(), *deps);
      EXPECT_EQ(e->getEarlyDate(), 0);
    }
  }
}

TEST_F(BindingTest, QncBindingSection) {
  Signal* x = signal(m, "x", 'i', "int");      // vars 0, 1
  Signal* k = signal(m, "k", 'l');             // vars 2, 3
  Signal* y = signal(m, "y", 'l', "int");      // vars 4, 5
  long corres[64];
  for (long i = 0; i < 64; i++) corres[i] = 100 + i;
  m->addSignalBinding(new DataBinaryOp(DataExpr::Plus, new DataConstant(0), new DataSignalValue(x)), x, k);
  m->addSignalBinding(new DataSignalValue(x), y, static_cast<Signal*>(nullptr));
  EXPECT_EQ(text([&](std::ostream& o) { m->printBinding(o, corres); }),
            "binding:\n"
            "   (100, 101): value: 0 clock: (102, 103);\n"
            "   (104, 105): value: 1;\n"
            "end:\n\n"
            "evaltable:\n"
            "   0: %%0(2, 3);\n"
            "   1: %%14(100, 101);\n"
            "   2: $0;\n"
            "   3: %%14(100, 101);\n"
            "end:\n\n");
}

}  // namespace

namespace {

// Evaluation for the simulator, as far as it needs no request to the data server.
TEST_F(BindingTest, SimulatorEvaluationWithoutServer) {
  Signal* s = signal(m, "s", 'o', "int");
  Signal* c = signal(m, "c", 'l');
  m->addSignalBinding(new DataValue("41"), c, s);
  Bddexpressionwood* wood = m->getBddWood();
  long sOver = s->getInitialOverBddId(m, wood);

  DataConstantValueMap constants{{"one", {nullptr, "7"}}};
  DataSignalValueMap values{{sOver, "--"}};
  int wires[16] = {0};

  EXPECT_EQ(DataValue("x").QUARNS_put(m, &constants, &values, wires, nullptr), "x");
  EXPECT_EQ(DataConstant(0).QUARNS_put(m, &constants, &values, wires, nullptr), "7");
  constants["one"] = {new DataValue("3"), ""};
  EXPECT_EQ(DataConstant(0).QUARNS_put(m, &constants, &values, wires, nullptr), "3");
  EXPECT_EQ(constants["one"].second, "3");

  // Absent: no value.
  testing::internal::CaptureStderr();
  EXPECT_EQ(DataSignalValue(s).QUARNS_put(m, &constants, &values, wires, nullptr), "--");
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "***error:DataSignalValue:QUARNS_put: signal: s  has no value\n");
  // Present, with the binding's signal present: the bound value.
  wires[sOver] = 1;
  wires[c->getInitialOverBddId(m, wood)] = 1;
  testing::internal::CaptureStderr();
  EXPECT_EQ(DataSignalValue(s).QUARNS_put(m, &constants, &values, wires, nullptr), "41");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "Value:41\n");
  // A known value is kept.
  values[sOver] = "12";
  EXPECT_EQ(DataSignalValue(s).QUARNS_put(m, &constants, &values, wires, nullptr), "12");

  DataConstantValueMap noConstants;
  EXPECT_EXIT(DataConstant(0).QUARNS_put(m, &noConstants, &values, wires, nullptr),
              testing::ExitedWithCode(1),
              exact("***error: DataConstant::QUARNS_put: undefined constant:one"));
  DataSignalValueMap noValues;
  EXPECT_EXIT(DataSignalValue(s).QUARNS_put(m, &constants, &noValues, wires, nullptr),
              testing::ExitedWithCode(1),
              exact("***error: DataSignalValue:QUARNS_put: signal: s  undefined in  data signal "
                    "value table"));
}

}  // namespace

// Writing equations: current and initial forms, wires, emissions, registers, bottoms,
// and the occurrences opened at a pause.
#include <functional>
#include <map>

#include "data/data.h"

#include "equationtable_fixture.h"

namespace {

using Write = TableTest;

TEST_F(Write, EquationOfALocalAndOfAnOutput) {
  Signal* a = input("A");
  Signal* b = input("B");
  Signal* l = emitted("L", false);
  Signal* o = emitted("O", true);
  t->createEquation(l, new OrExpression(a, b), m);
  t->createEquation(o, new NpExpression(a), m, false);
  struct Row {
    const char* var;
    bdd right;
    int type;
  };
  const Row rows[] = {
      {"_s_L_1", g->Bdd_or(v("_s_A"), v("_s_B")), Compilation::STAT},
      {"_v_L_1", g->Bdd_and(v("_v_A"), v("_v_B")), Compilation::VAL},
      {"_s_O_1", g->Bdd_or(g->Bdd_not(v("_s_A")), g->Bdd_and(v("_s_A"), v("_v_A"))),
       Compilation::SOUTPUT},
      {"_v_O_1", v("_s_A"), Compilation::VOUTPUT},
  };
  for (const Row& r : rows) {
    Bddexpression* e = eq(r.var);
    ASSERT_NE(e, nullptr) << r.var;
    EXPECT_EQ(e->my_bdd_exp(), r.right) << r.var;
    EXPECT_EQ(e->getUserType(), r.type) << r.var;
  }
  EXPECT_EQ(eq("_s_L_1")->getName(), "L");
  // Occurrence 0 keeps its definition.
  EXPECT_EQ(rhs("_s_L"), v("_s_L_1"));
}

// A wire is two-valued: its under is the negated over variable, whatever the
// expression's under function.
TEST_F(Write, WireUnderIsTheNegatedOver) {
  Signal* a = input("A");
  Signal* k = wire("K");
  Expression* values[] = {new ErrorExpression(), new BottomExpression(), a, new NotExpression(a)};
  for (Expression* e : values) {
    t->createEquation(k, e, m);
    EXPECT_EQ(rhs("_s_K"), e->getOverBdd(m, w));
    EXPECT_EQ(rhs("_v_K"), g->Bdd_not(v("_s_K")));
    EXPECT_EQ(eq("_s_K")->getUserType(), +Compilation::SWIRE);
    EXPECT_EQ(eq("_v_K")->getUserType(), +Compilation::VWIRE);
  }
  // Not of a wire is its complement once the equations are read.
  auto* n = new NotExpression(k);
  EXPECT_EQ(n->getOverBdd(m, w), v("_v_K"));
}

// The initial form reads occurrence 0 of the operands and writes occurrence 0 on the
// over side; the under variable comes from the signal's current occurrence.
TEST_F(Write, InitialForm) {
  Signal* l = emitted("L", false);
  Signal* x = emitted("X", false);
  x->newOccurrence(w, m);
  t->createEquation(l, new NotExpression(x), m, true);
  EXPECT_EQ(rhs("_s_L"), v("_v_X"));
  EXPECT_EQ(rhs("_v_L_1"), v("_s_X"));
  EXPECT_EQ(rhs("_s_L_1"), g->Bdd_zero());
}

TEST_F(Write, EmissionsAreOredIntoTheCurrentOccurrence) {
  Signal* c = input("C");
  Signal* d = input("D");
  Signal* o = emitted("O", true);
  t->createUnifyEquation(o, new ThenExpression(c, new TrueExpression()), m, false);
  EXPECT_EQ(rhs("_s_O_1"), v("_s_C"));
  EXPECT_EQ(rhs("_v_O_1"), g->Bdd_zero());
  t->createUnifyEquation(o, new ThenExpression(d, new FalseExpression()), m, false);
  EXPECT_EQ(rhs("_s_O_1"), v("_s_C"));
  EXPECT_EQ(rhs("_v_O_1"), v("_s_D"));
  // Initial: the over side goes to occurrence 0, the under side to the current one.
  t->createUnifyEquation(o, new ErrorExpression(), m, true);
  EXPECT_EQ(rhs("_s_O"), g->Bdd_one());
  EXPECT_EQ(rhs("_v_O_1"), g->Bdd_one());
  EXPECT_EQ(rhs("_v_O"), v("_v_O_1"));
}

TEST_F(Write, EmissionWithoutEquationIsReported) {
  auto* s = new Signal("S", m, w);
  s->setLocal();
  long oid = s->getOverBddId(m, w), uid = s->getUnderBddId(m, w);
  testing::internal::CaptureStderr();
  t->createUnifyEquation(s, new TrueExpression(), m, false);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "internal error 1 in createUnifyEquation()! about oid=" + std::to_string(oid) +
                "\ninternal error 2 in createUnifyEquation()! about uid=" + std::to_string(uid) +
                "\n");
  EXPECT_EQ(eq("_s_S"), nullptr);
  EXPECT_EQ(eq("_v_S"), nullptr);
}

// Value dependencies order an emission after what its value reads.
TEST_F(Write, ValueDependencies) {
  Signal* d = input("D");
  Signal* o = emitted("O", true);
  o->addValueDependency(d);
  testing::internal::CaptureStderr();
  t->createUnifyEquation(o, new TrueExpression(), m, false);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "****error:signal:Dvalued without data table for main module\n"
            "****error:signal:Dvalued without data table for main module\n");
  EXPECT_EQ(eq("_s_O_1")->getDependances().count(w->Index_var_by_name("_s_D")), 1u);
  EXPECT_EQ(eq("_v_O_1")->getDependances().count(w->Index_var_by_name("_v_D")), 1u);
  EXPECT_EQ(eq("_s_O_1")->getDependances().count(w->Index_var_by_name("_v_D")), 0u);
}

// With a data table, the signal of each binding clocked by a dependency counts too.
TEST_F(Write, ValueDependenciesThroughBindings) {
  Signal* d = input("D");
  Signal* x = input("X");
  Signal* y = input("Y");
  Signal* o = emitted("O", true);
  o->addValueDependency(d);
  auto* bindings = new std::map<std::string, DataBinding*>();
  (*bindings)["x"] = new DataBinding(x, nullptr, d);
  (*bindings)["y"] = new DataBinding(y, nullptr, x);
  m->setDataTable(bindings);
  testing::internal::CaptureStderr();
  t->createUnifyEquation(o, new TrueExpression(), m, false);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  const std::set<long>& over = eq("_s_O_1")->getDependances();
  EXPECT_EQ(over.count(w->Index_var_by_name("_s_D")), 1u);
  EXPECT_EQ(over.count(w->Index_var_by_name("_s_X")), 1u);
  EXPECT_EQ(over.count(w->Index_var_by_name("_s_Y")), 0u);
  const std::set<long>& under = eq("_v_O_1")->getDependances();
  EXPECT_EQ(under.count(w->Index_var_by_name("_v_D")), 1u);
  EXPECT_EQ(under.count(w->Index_var_by_name("_v_X")), 1u);
}

TEST_F(Write, RegisterAndBottomEquations) {
  auto* r = new Signal("R", m, w, true);
  t->createRegisterEquation(r, m);
  EXPECT_EQ(eq("_s_R"), nullptr);
  EXPECT_EQ(rhs("_v_R"), g->Bdd_not(v("_s_R")));
  EXPECT_EQ(eq("_v_R")->getUserType(), +Compilation::VREG);

  Signal* l = emitted("L", false);
  t->createUnifyEquation(l, new ErrorExpression(), m, false);
  l->newOccurrence(w, m);
  t->createBottomEquation(l, m, 1);
  EXPECT_EQ(rhs("_s_L_1"), g->Bdd_zero());
  EXPECT_EQ(rhs("_v_L_1"), g->Bdd_zero());
  EXPECT_EQ(eq("_s_L_2"), nullptr);  // the current occurrence has no equation yet
  t->createBottomEquation(l, m);
  EXPECT_EQ(rhs("_s_L_2"), g->Bdd_zero());
  EXPECT_EXIT(t->createBottomEquation(l, m, 5), ::testing::ExitedWithCode(1),
              "createBottomEquation: no signalrefL");
}

TEST_F(Write, ReplaceEquation) {
  Signal* a = input("A");
  Signal* l = emitted("L", false);
  Signal* x = new Signal("X", m, w);
  t->replaceEquation(l, a, m);
  EXPECT_EQ(rhs("_s_L_1"), v("_s_A"));
  EXPECT_EQ(rhs("_v_L_1"), v("_v_A"));
  t->replaceEquation(x, a, m);
  EXPECT_EQ(rhs("_s_X"), v("_s_A"));
  EXPECT_EQ(eq("_s_X")->getUserType(), +Compilation::STAT);
  EXPECT_EQ(eq("_v_X")->getUserType(), +Compilation::VAL);
}

TEST_F(Write, CondNarrowsOutputsAndLocals) {
  Signal* c = input("C");
  Signal* o = emitted("O", true);
  Signal* l = emitted("L", false);
  Signal* k = wire("K");
  t->createEquation(k, new TrueExpression(), m);
  t->createUnifyEquation(o, new TrueExpression(), m, false);
  t->createUnifyEquation(l, new ErrorExpression(), m, false);
  t->cond(c, m);
  EXPECT_EQ(rhs("_s_O_1"), v("_s_C"));
  EXPECT_EQ(rhs("_s_L_1"), v("_s_C"));
  EXPECT_EQ(rhs("_v_L_1"), v("_s_C"));
  EXPECT_EQ(rhs("_s_L"), g->Bdd_and(v("_s_L_1"), v("_s_C")));
  EXPECT_EQ(rhs("_s_K"), g->Bdd_one());
}

// After n pauses: _s_S = _s_S_1 + ... + _s_S_(n+1), and the same under _v_.
TEST_F(Write, PauseOpensOccurrences) {
  Signal* o = emitted("O", true);
  Signal* l = emitted("L", false);
  Signal* k = wire("K");
  auto* never = new Signal("N", m, w);  // a local that nothing defines
  never->setLocal();
  m->addLocalSignal(never);
  t->pre(m);
  t->pre(m);
  for (const char* s : {"O", "L"}) {
    std::string n = s;
    EXPECT_EQ(rhs("_s_" + n),
              g->Bdd_or(g->Bdd_or(v("_s_" + n + "_1"), v("_s_" + n + "_2")), v("_s_" + n + "_3")))
        << n;
    EXPECT_EQ(rhs("_v_" + n),
              g->Bdd_or(g->Bdd_or(v("_v_" + n + "_1"), v("_v_" + n + "_2")), v("_v_" + n + "_3")))
        << n;
    EXPECT_EQ(rhs("_s_" + n + "_3"), g->Bdd_zero());
    EXPECT_EQ(rhs("_v_" + n + "_3"), g->Bdd_zero());
  }
  EXPECT_EQ(o->getCurrentOccurrence(w), 3);
  EXPECT_EQ(l->getCurrentOccurrence(w), 3);
  EXPECT_EQ(k->getCurrentOccurrence(w), 0);
  EXPECT_EQ(never->getCurrentOccurrence(w), 0);
  // The next emission goes to the newest occurrence.
  t->createUnifyEquation(o, new TrueExpression(), m, false);
  EXPECT_EQ(rhs("_s_O_3"), g->Bdd_one());
  EXPECT_EQ(rhs("_s_O_2"), g->Bdd_zero());
}

TEST_F(Write, PauseWithoutOutputsOrLocalsDoesNothing) {
  input("A");
  long vars = w->Nb_bdd_vars(), eqs = w->exp_number();
  t->pre(m);
  EXPECT_EQ(w->Nb_bdd_vars(), vars);
  EXPECT_EQ(w->exp_number(), eqs);
}

TEST_F(Write, OutputWithoutEquationEndsThePause) {
  auto* o = new Signal("O", m, w);
  o->setOutput();
  m->addOutputSignal(o);
  EXPECT_EXIT(t->pre(m), ::testing::ExitedWithCode(1), "^undefined equation for over wire of :O\n$");
}

TEST_F(Write, IdOutOfBounds) {
  input("A");
  EXPECT_EQ(t->getBddExpression(0), nullptr);
  EXPECT_THROW(t->getBddExpression(w->Nb_bdd_vars()), IllegalOperationException);
  EXPECT_THROW(t->getBddExpression(-1), IllegalOperationException);
  emitted("L", false);
  EXPECT_EQ(t->getBddExpression(w->Index_var_by_name("_s_L_1")), eq("_s_L_1"));
}

TEST_F(Write, LearnSignalInABranchWood) {
  Signal* l = emitted("L", false);
  auto* branch = new EquationTable("", new Bddexpressionwood());
  branch->learnSignal(l, m);
  SignalRef* ref = m->getSignalManager()->getSignalRefByName("L_1");
  ASSERT_TRUE(ref->isDefinedWood(branch->getBddexpressionWood()));
  EXPECT_EQ(branch->getBddexpressionWood()->Name_var_by_index(
                ref->getUnderBddId(branch->getBddexpressionWood())),
            "_v_L_1");
}

}  // namespace

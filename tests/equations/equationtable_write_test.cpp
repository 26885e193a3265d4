// Operations of the equation table that the statement compilers don't call, and the
// register and bottom forms with their failures: the traces don't reach them.

#include "equationtable_fixture.h"

namespace {

using Write = TableTest;

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

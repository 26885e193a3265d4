// Finalization of hand-built woods: what the generators get to print.
#include <gtest/gtest.h>

#include "c_test_util.h"
#include "equations/equationtable.h"

using namespace c_test;

namespace {

struct FlagGuard {
  int saved = Compilation::KeepWiresFlag;
  ~FlagGuard() { Compilation::KeepWiresFlag = saved; }
};

TEST(Finalize, InputsGetTheirSourceNameAndUnderIsNotOver) {
  Module m("m");
  Signal* a = input(m, "a");
  Signal* o = output(m, "o");
  m.createCompileEnv();
  drive(m, o, over(m, a));
  m.finalize(0);
  Bddexpressionwood* w = m.getBddWood();
  EXPECT_EQ(m.getFinalised(), 1);
  EXPECT_EQ(w->Name_var_by_bdd(over(m, a)), "a");
  EXPECT_EQ(w->Name_var_by_bdd(under(m, a)), "v_v_a");
  Bddexpression* u = equation(m, "v_v_a");
  ASSERT_NE(u, nullptr);
  EXPECT_EQ(u->getUserType(), int(Compilation::VINPUT));
  EXPECT_TRUE(u->my_bdd_exp() == w->Bdd_not(over(m, a)));
  // The output's over variable has the source name and reads the input directly.
  Bddexpression* oe = equation(m, "o");
  ASSERT_NE(oe, nullptr);
  EXPECT_TRUE(oe->my_bdd_exp() == over(m, a));
}

TEST(Finalize, BootRegisterDrivesSetAndResetNeverKills) {
  Module m("m");
  Signal* o = output(m, "o");
  m.createCompileEnv();
  // Something reads RESET, or it would be cleaned away as an unread constant.
  drive(m, o, over(m, m.getReset()));
  m.setLocalSignalList(nullptr);
  m.finalize(0);
  Bddexpressionwood* w = m.getBddWood();
  ASSERT_NE(m.getLocalSignalList(), nullptr);
  ASSERT_EQ(m.getLocalSignalList()->size(), 2u);
  EXPECT_EQ(m.getLocalSignalList()->front()->getInternalName(), "m_boot");
  EXPECT_EQ(m.getLocalSignalList()->back()->getInternalName(), "mbootplus");
  regclass* boot = m.getRegisterList()->back();
  EXPECT_EQ(boot->is_initialy_true(), 1);
  EXPECT_EQ(boot->actual_var()->getInternalName(), "m_boot");
  Bddexpression* set = equation(m, "v_s_SETm");
  ASSERT_NE(set, nullptr);
  EXPECT_TRUE(set->my_bdd_exp() == over(m, boot->actual_var()));
  Bddexpression* reset = equation(m, "v_s_RESETm");
  ASSERT_NE(reset, nullptr);
  EXPECT_TRUE(reset->my_bdd_exp() == w->Bdd_zero());
  Bddexpression* next = equation(m, "v_s_mbootplus");
  ASSERT_NE(next, nullptr);
  EXPECT_EQ(next->getName(), "_s_bootplus");
  EXPECT_TRUE(next->my_bdd_exp() == w->Bdd_zero());
}

// Nothing emits o in any of its sections: each occurrence, and so o itself, is false.
// q reads the under side of o (as "abs o" does) and p its over side.
TEST(Finalize, UnemittedOutputUnderIsTheConstantOne) {
  Module m("m");
  Signal* o = output(m, "o");
  Signal* p = output(m, "p");
  Signal* q = output(m, "q");
  m.createCompileEnv();
  m.getCompilation()->pre(&m);  // a pause: occurrences 2
  Bddexpressionwood* w = m.getBddWood();
  drive(m, p, o->getInitialOverBdd(&m, w));
  drive(m, q, o->getInitialUnderBdd(&m, w));
  m.finalize(0);
  Bddexpression* pe = equation(m, "p");
  ASSERT_NE(pe, nullptr);
  EXPECT_TRUE(pe->my_bdd_exp() == w->Bdd_zero());
  Bddexpression* qe = equation(m, "q");
  ASSERT_NE(qe, nullptr);
  EXPECT_TRUE(qe->my_bdd_exp() == w->Bdd_one());
}

TEST(Finalize, OutputWithoutUnderEquationGetsNotOver) {
  Module m("m");
  Signal* a = input(m, "a");
  Signal* o = output(m, "o");
  m.createCompileEnv();
  Bddexpressionwood* w = m.getBddWood();
  // Occurrence 0 alone, over equation only.
  new Bddexpression("o", w, o->getInitialOverBdd(&m, w), over(m, a), 0, 0, Compilation::SOUTPUT);
  w->absolute_forget_expression_by_bddid(o->getInitialUnderBddId(&m, w));
  m.finalize(0);
  Bddexpression* u = equation(m, "v_v_o");
  ASSERT_NE(u, nullptr);
  EXPECT_EQ(u->getUserType(), o->computeUnderType());
  EXPECT_TRUE(u->my_bdd_exp() == w->Bdd_not(w->Bdd_var_by_index(index_named(m, "o"))));
}

TEST(Finalize, UnderWithoutOverIsWarnedAndCompleted) {
  Module m("m");
  Signal* a = input(m, "a");
  Signal* o = output(m, "o");
  m.createCompileEnv();
  Bddexpressionwood* w = m.getBddWood();
  new Bddexpression("o", w, o->getInitialUnderBdd(&m, w), over(m, a), 0, 0, Compilation::VOUTPUT);
  w->absolute_forget_expression_by_bddid(o->getInitialOverBddId(&m, w));
  testing::internal::CaptureStderr();
  m.finalize(0);
  std::string err = testing::internal::GetCapturedStderr();
  EXPECT_NE(err.find("***Warning: Finalize: no over expression and under expression for:_v_o!!!\n"
                     " => changing over equation ...\n"),
            std::string::npos)
      << err;
  Bddexpression* oe = equation(m, "o");
  ASSERT_NE(oe, nullptr);
  EXPECT_TRUE(oe->my_bdd_exp() == w->Bdd_not(o->getInitialUnderBdd(&m, w)));
}

// A register is useless when its next value is always its initial value.
TEST(Finalize, UselessRegisters) {
  struct Case {
    int initial;
    bool next_one;
    bool useless;
  } cases[] = {{0, false, true}, {1, true, true}, {1, false, false}, {0, true, false}};
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << c.initial << " " << c.next_one);
    Module m("m");
    Signal* o = output(m, "o");
    m.addRegisterDecl("r", c.initial, "rn");
    m.createCompileEnv();
    Bddexpressionwood* w = m.getBddWood();
    Signal* r = m.getLocalSignal("r");
    Signal* rn = m.getLocalSignal("rn");
    drive(m, o, over(m, r));
    new Bddexpression("rn", w, over(m, rn), c.next_one ? w->Bdd_one() : w->Bdd_zero(), 0, 0, Compilation::SREG);
    testing::internal::CaptureStderr();
    m.finalize(0);
    std::string err = testing::internal::GetCapturedStderr();
    EXPECT_EQ(err.find("detecting useless register r") != std::string::npos, c.useless) << err;
    bool kept = false;
    for (regclass* reg : *m.getRegisterList()) kept = kept || reg->actual_var() == r;
    EXPECT_EQ(kept, !c.useless);
    // The output read the register: now it reads its constant value.
    if (c.useless) {
      Bddexpression* oe = equation(m, "o");
      ASSERT_NE(oe, nullptr);
      EXPECT_TRUE(oe->my_bdd_exp() == (c.initial ? w->Bdd_one() : w->Bdd_zero()));
    }
  }
}

TEST(Finalize, KeepWiresLeavesLocalsInTheWood) {
  FlagGuard guard;
  for (int keep : {0, 1}) {
    SCOPED_TRACE(keep);
    Compilation::KeepWiresFlag = keep;
    Module m("m");
    Signal* a = input(m, "a");
    Signal* b = input(m, "b");
    Signal* o = output(m, "o");
    Signal* l = local(m, "l");
    m.createCompileEnv();
    Bddexpressionwood* w = m.getBddWood();
    drive(m, l, w->Bdd_and(over(m, a), over(m, b)));
    drive(m, o, l->getInitialOverBdd(&m, w));
    m.finalize(0);
    EXPECT_EQ(equation(m, "v_s_l_1") != nullptr, keep == 1);
    Bddexpression* oe = equation(m, "o");
    ASSERT_NE(oe, nullptr);
    if (!keep) {
      EXPECT_TRUE(oe->my_bdd_exp() == w->Bdd_and(over(m, a), over(m, b)));
    }
  }
}

TEST(CheckOverKnowledge, ErrorOutputIsOverAndUnderAtOnce) {
  Module m("m");
  Signal* a = input(m, "a");
  Signal* b = input(m, "b");
  Signal* o = output(m, "o");
  m.createCompileEnv();
  Bddexpressionwood* w = m.getBddWood();
  new Bddexpression("o", w, o->getInitialOverBdd(&m, w), over(m, a), 0, 0, Compilation::SOUTPUT);
  new Bddexpression("o", w, o->getInitialUnderBdd(&m, w), over(m, b), 0, 0, Compilation::VOUTPUT);
  m.check_over_knowledge();
  ASSERT_EQ(m.getOutputSignalList()->size(), 2u);
  Signal* e = m.getOutputSignalList()->back();
  EXPECT_EQ(e->getInternalName(), "OverKnowledgeError");
  EXPECT_TRUE(e->isOutput());
  Bddexpression* eo = w->exp_by_bdd(over(m, e));
  Bddexpression* eu = w->exp_by_bdd(under(m, e));
  ASSERT_NE(eo, nullptr);
  ASSERT_NE(eu, nullptr);
  bdd both = w->Bdd_and(over(m, a), over(m, b));
  EXPECT_TRUE(eo->my_bdd_exp() == both);
  EXPECT_TRUE(eu->my_bdd_exp() == w->Bdd_not(both));
  EXPECT_EQ(eo->getUserType(), int(Compilation::VOUTPUT));
  EXPECT_EQ(eu->getUserType(), int(Compilation::VOUTPUT));
}

}  // namespace

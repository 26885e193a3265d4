// Mealy machines: the machine's register, its equations gated from the start on, and
// the reactions they give.
#include <gtest/gtest.h>

#include "automaton_eval.h"
#include "model_test_util.h"

using namespace automaton_test;

namespace {

const std::string kMachine =
    "module m: Input: a, b; Output: x, y;\n"
    "Mealy Machine Register: r : 1 : rn;\n"
    "x = a and r; y = b or abs a; rn = not r; end";

TEST(MealyEquations, RegistersAndEquationsByHand) {
  Module* m = compiled(kMachine);
  ASSERT_NE(m, nullptr);
  std::vector<std::pair<std::string, int>> regs;
  for (regclass* r : *m->getRegisterList())
    regs.push_back({r->actual_var()->getInternalName() + ":" + r->next_var()->getInternalName(),
                    r->is_initialy_true()});
  EXPECT_EQ(regs, (std::vector<std::pair<std::string, int>>{{"r:rn", 1},
                                                             {"ACTIFmMM_0:ACTIFPLUSmMM_0", 0}}));

  std::vector<EquationView> want = {
      {"ACTIFPLUSmMM_0", "_s_ACTIFPLUSmMM_0", Compilation::SREG},
      {"ACTIFPLUSmMM_0", "_v_ACTIFPLUSmMM_0", Compilation::VREG},
      {"x", "_s_x_1", Compilation::SOUTPUT},
      {"x", "_v_x_1", Compilation::VOUTPUT},
      {"rn", "_s_rn", Compilation::SREG},
      {"rn", "_v_rn", Compilation::VREG},
      {"RTLmMM_0", "_s_RTLmMM_0", Compilation::SWIRE},
      {"RTLmMM_0", "_v_RTLmMM_0", Compilation::VWIRE},
  };
  // The machine's register and the present value of r have no equation.
  EXPECT_EQ(equationsOf(m, {"_s_ACTIFmMM_0", "_v_ACTIFmMM_0", "_s_r", "_v_r", "_s_ACTIFPLUSmMM_0",
                            "_v_ACTIFPLUSmMM_0", "_s_x_1", "_v_x_1", "_s_rn", "_v_rn",
                            "_s_RTLmMM_0", "_v_RTLmMM_0"}),
            want);

  Bddexpressionwood* wood = m->getBddWood();
  bddpp_manager* M = wood->my_bdd_manager();
  auto v = [&](const std::string& n) { return M->Bdd_var_by_index(M->Index_var_by_name(n)); };
  auto rhs = [&](const std::string& n) {
    return wood->exp_by_index(wood->Index_var_by_name(n))->my_bdd_exp();
  };
  auto AND = [&](bdd f, bdd g) { return M->Bdd_and(f, g); };
  auto OR = [&](bdd f, bdd g) { return M->Bdd_or(f, g); };
  bdd S = v("_s_SETmMM_0"), Su = v("_v_SETmMM_0"), A = v("_s_ACTIFmMM_0"),
      Au = v("_v_ACTIFmMM_0");
  // A+ = (S or A) and abs R.
  EXPECT_EQ(rhs("_s_ACTIFPLUSmMM_0"), AND(OR(S, A), v("_v_RESETmMM_0")));
  EXPECT_EQ(rhs("_v_ACTIFPLUSmMM_0"), M->Bdd_not(v("_s_ACTIFPLUSmMM_0")));
  // x = (a and r) and (A or S), over and under; the bottom start of x is gone.
  EXPECT_EQ(rhs("_s_x_1"), AND(AND(v("_s_a"), v("_s_r")), OR(S, A)));
  EXPECT_EQ(rhs("_v_x_1"), OR(OR(v("_v_a"), v("_v_r")), AND(Su, Au)));
  EXPECT_EQ(rhs("_v_rn"), M->Bdd_not(v("_s_rn")));
  // Neither terminates nor says that it doesn't.
  EXPECT_EQ(rhs("_s_RTLmMM_0"), M->Bdd_zero());
  EXPECT_EQ(rhs("_v_RTLmMM_0"), M->Bdd_zero());
}

struct Instant {
  std::set<std::string> in;
  bool set, reset;
  std::map<std::string, std::string> out;  // letters: T true, F false, B bottom
};

void runTrace(const std::string& source, const std::vector<Instant>& trace) {
  Module* m = compiled(source);
  ASSERT_NE(m, nullptr);
  Runner run(m);
  int n = 0;
  for (const Instant& i : trace) {
    SCOPED_TRACE("instant " + std::to_string(n++));
    run.step(i.in, i.set, i.reset);
    for (auto& [name, letter] : i.out) EXPECT_EQ(run.value(name), letter) << name;
    EXPECT_EQ(run.rtl(), 0);
  }
}

TEST(MealyBehaviour, ActiveFromStartUntilReset) {
  runTrace(kMachine,
           {
               {{"a"}, true, false, {{"r", "T"}, {"x", "T"}, {"y", "F"}}},
               {{"a"}, false, false, {{"r", "F"}, {"x", "F"}, {"y", "F"}}},
               {{"a", "b"}, false, false, {{"r", "T"}, {"x", "T"}, {"y", "T"}}},
               {{}, false, false, {{"r", "F"}, {"x", "F"}, {"y", "T"}}},
               // The reset instant is still active; the next ones aren't.
               {{"a"}, false, true, {{"r", "T"}, {"x", "T"}, {"y", "F"}}},
               {{"a"}, false, false, {{"r", "F"}, {"x", "F"}, {"y", "F"}}},
               {{"b"}, false, false, {{"r", "F"}, {"x", "F"}, {"y", "F"}}},
               {{"a"}, true, false, {{"r", "F"}, {"x", "F"}, {"y", "F"}}},
               {{"a"}, false, false, {{"r", "T"}, {"x", "T"}}},
           });
}

TEST(MealyBehaviour, RegisterNextIsGatedBeforeTheStart) {
  // r starts at 1, but its next value is gated like every other equation: an instant
  // before the start clears it.
  runTrace(kMachine, {
                         {{"a"}, false, false, {{"r", "T"}, {"x", "F"}, {"y", "F"}}},
                         {{"a"}, true, false, {{"r", "F"}, {"x", "F"}}},
                         {{"a"}, false, false, {{"r", "T"}, {"x", "T"}}},
                     });
}

TEST(MealyBehaviour, WithoutRegistersAndConstants) {
  runTrace("module m: Input: a; Output: x, y; Mealy Machine x = 1; y = 0; end",
           {
               {{}, false, false, {{"x", "F"}, {"y", "F"}}},
               {{}, true, false, {{"x", "T"}, {"y", "F"}}},
               {{}, false, false, {{"x", "T"}, {"y", "F"}}},
               {{}, false, true, {{"x", "T"}}},
               {{}, false, false, {{"x", "F"}}},
           });
}

TEST(MealyEquations, ValuedEquationDrivesTheClockToo) {
  Module* m = compiled(
      "data: Type: int; Constant: int C__1 := 1; end data "
      "module m: Input: a; Output: y : int; Mealy Machine y(C__1) = a; end");
  ASSERT_NE(m, nullptr);
  Bddexpressionwood* wood = m->getBddWood();
  Signal* clock = nullptr;
  for (Signal* s : *m->getOutputSignalList())
    if (s->getInternalName().find("y_value") != std::string::npos) clock = s;
  ASSERT_NE(clock, nullptr);
  Signal* y = m->getOutputSignal("y");
  for (bool over : {true, false}) {
    long yId = over ? y->getOverBddId(m, wood) : y->getUnderBddId(m, wood);
    long cId = over ? clock->getOverBddId(m, wood) : clock->getUnderBddId(m, wood);
    ASSERT_NE(wood->exp_by_index(yId), nullptr);
    ASSERT_NE(wood->exp_by_index(cId), nullptr);
    EXPECT_EQ(wood->exp_by_index(yId)->my_bdd_exp(), wood->exp_by_index(cId)->my_bdd_exp());
  }
  Runner run(m);
  run.step({"a"}, true);
  EXPECT_EQ(run.value(clock->getInternalName()), "T");
}

}  // namespace

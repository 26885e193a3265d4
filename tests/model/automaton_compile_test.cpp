// Automata compiled into equations: state bits, the equations written, and the
// reactions they give instant by instant.
#include <gtest/gtest.h>

#include "automaton_eval.h"
#include "model_test_util.h"

using namespace automaton_test;
using model_test::literally;

namespace {

TEST(AutomatonEncoding, BitsHoldEveryStateAndFalling) {
  struct Case {
    int states;
    int bits;
  } cases[] = {{1, 2}, {2, 2}, {3, 3}, {6, 3}, {7, 4}};
  for (const Case& c : cases) {
    std::string src = "module m: automaton ";
    for (int i = 0; i < c.states; i++) src += "state: s" + std::to_string(i) + "; ";
    src += "transition: initial-> s0; end";
    Module* m = compiled(src);
    ASSERT_NE(m, nullptr);
    std::list<regclass*>* regs = m->getRegisterList();
    ASSERT_NE(regs, nullptr);
    ASSERT_EQ(int(regs->size()), c.bits) << c.states << " states";
    int i = 0;
    for (regclass* r : *regs) {
      EXPECT_EQ(r->actual_var()->getInternalName(), "reg" + std::to_string(i) + "m");
      EXPECT_EQ(r->next_var()->getInternalName(), "reg" + std::to_string(i) + "nextm");
      EXPECT_EQ(r->is_initialy_true(), 0);
      EXPECT_EQ(m->getLocalSignal(r->next_var()->getInternalName()), r->next_var());
      i++;
    }
    // States are numbered from 1 in key order.
    int id = 1;
    for (auto& [name, s] : *m->getStatement()->getStateTable()) EXPECT_EQ(s->getId(), id++);
  }
}

// One state, no final: n = 1, b = 2; the start sets reg(0), the state then holds.
TEST(AutomatonEquations, OneStateByHand) {
  Module* m = compiled(
      "module m: Output: a; automaton state: s0 / a; transition: initial-> s0; end");
  ASSERT_NE(m, nullptr);
  std::vector<EquationView> want = {
      {"reg0nextm", "_s_reg0nextm", Compilation::SREG},
      {"reg0nextm", "_v_reg0nextm", Compilation::VREG},
      {"reg1nextm", "_s_reg1nextm", Compilation::SREG},
      {"reg1nextm", "_v_reg1nextm", Compilation::VREG},
      {"RTLmAUT_0", "_s_RTLmAUT_0", Compilation::STAT},
      {"RTLmAUT_0", "_v_RTLmAUT_0", Compilation::VAL},
      {"a", "_s_a_1", Compilation::SOUTPUT},
  };
  EXPECT_EQ(equationsOf(m, {"_s_reg0nextm", "_v_reg0nextm", "_s_reg1nextm", "_v_reg1nextm",
                            "_s_RTLmAUT_0", "_v_RTLmAUT_0", "_s_a_1", "_s_reg0m", "_s_reg1m"}),
            want);

  Bddexpressionwood* wood = m->getBddWood();
  bddpp_manager* M = wood->my_bdd_manager();
  auto var = [&](const std::string& n) { return M->Bdd_var_by_index(M->Index_var_by_name(n)); };
  auto rhs = [&](const std::string& n) {
    return wood->exp_by_index(wood->Index_var_by_name(n))->my_bdd_exp();
  };
  bdd set1 = M->Bdd_and(var("_s_SETm"), M->Bdd_not(var("_v_SETm")));
  bdd reset1 = M->Bdd_and(var("_s_RESETm"), M->Bdd_not(var("_v_RESETm")));
  bdd inS0 = M->Bdd_and(var("_s_reg0m"), M->Bdd_not(var("_s_reg1m")));
  // Started, or in s0 and neither restarted nor reset.
  bdd next0 = M->Bdd_or(set1, M->Bdd_and(inS0, M->Bdd_and(M->Bdd_not(set1), M->Bdd_not(reset1))));
  EXPECT_EQ(rhs("_s_reg0nextm"), next0);
  EXPECT_EQ(rhs("_v_reg0nextm"), M->Bdd_not(next0));
  EXPECT_EQ(rhs("_s_reg1nextm"), M->Bdd_zero());
  EXPECT_EQ(rhs("_v_reg1nextm"), M->Bdd_one());
  // No final state: never terminates.
  EXPECT_EQ(rhs("_s_RTLmAUT_0"), M->Bdd_zero());
  EXPECT_EQ(rhs("_v_RTLmAUT_0"), M->Bdd_one());
  // The Moore action: the next state is s0.
  EXPECT_EQ(rhs("_s_a_1"), M->Bdd_and(var("_s_reg0nextm"), M->Bdd_not(var("_s_reg1nextm"))));
  EXPECT_EQ(rhs("_v_a_1"), M->Bdd_zero());
}

// One instant: present inputs, set, reset; then the outputs' letters (T true, B not
// driven), the state code reached and the module's termination.
struct Instant {
  std::set<std::string> in;
  bool set, reset;
  std::map<std::string, std::string> out;
  long code;
  int rtl;
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
    EXPECT_EQ(run.code(), i.code);
    EXPECT_EQ(run.rtl(), i.rtl);
  }
}

TEST(AutomatonBehaviour, StrongWeakMooreStartAndReset) {
  // s0 = 1, s1 = 2.
  runTrace(
      "module m: Input: i, j; Output: a, b;\n"
      "automaton state: s0 / a; state: s1;\n"
      "transition: initial-> s0; s0 [i] / b -> s1; s1 [j] weak-> s0; end",
      {
          {{}, false, false, {{"a", "B"}, {"b", "B"}}, 0, 0},       // not started: nothing
          {{"i"}, true, false, {{"a", "T"}, {"b", "B"}}, 1, 0},    // start: Moore from arrival
          {{}, false, false, {{"a", "T"}, {"b", "B"}}, 1, 0},      // holds
          {{"i"}, false, false, {{"a", "B"}, {"b", "T"}}, 2, 0},   // leaves with its action
          {{"i"}, false, false, {{"a", "B"}, {"b", "B"}}, 2, 0},   // no way out on i
          {{"j"}, false, false, {{"a", "T"}, {"b", "B"}}, 1, 0},   // weak back to s0
          {{"i"}, true, false, {{"a", "T"}, {"b", "T"}}, 1, 0},    // a start restarts; the action still fires
          {{"i"}, false, true, {{"a", "B"}, {"b", "T"}}, 0, 0},    // reset without start: code 0
          {{"i"}, false, false, {{"a", "B"}, {"b", "B"}}, 0, 0},   // stays off
          {{"i"}, true, true, {{"a", "T"}, {"b", "B"}}, 1, 0},     // set and reset: a start
      });
}

TEST(AutomatonBehaviour, StrongBeatsWeakAndWeakKeepsSourceMoore) {
  // s0 = 1, s1 = 2, s2 = 3.
  runTrace(
      "module m: Input: i, j; Output: a, b, c;\n"
      "automaton state: s0 / a; state: s1 / b; state: s2 / c;\n"
      "transition: initial-> s0; s0 [i] -> s1; s0 [j] weak-> s2; end",
      {
          {{}, true, false, {{"a", "T"}, {"b", "B"}, {"c", "B"}}, 1, 0},
          {{"i", "j"}, false, false, {{"a", "B"}, {"b", "T"}, {"c", "B"}}, 2, 0},
          {{}, true, false, {{"a", "T"}, {"b", "B"}, {"c", "B"}}, 1, 0},
          {{"j"}, false, false, {{"a", "T"}, {"b", "B"}, {"c", "T"}}, 3, 0},
          {{}, false, false, {{"a", "B"}, {"b", "B"}, {"c", "T"}}, 3, 0},
      });
}

TEST(AutomatonBehaviour, PrioritiesAndOther) {
  // s0 = 1, s1 = 2, s2 = 3, s3 = 4.
  runTrace(
      "module m: Input: i, j; Output: a;\n"
      "automaton state: s0; state: s1; state: s2; state: s3;\n"
      "transition: initial-> s0;\n"
      "s0 2 [j] -> s2; s0 1 [i] -> s1; s0 other [] -> s3;\n"
      "s1 -> s0; s2 -> s0; s3 -> s0; end",
      {
          {{}, true, false, {}, 1, 0},
          {{"i", "j"}, false, false, {}, 2, 0},  // priority 1 before 2
          {{}, false, false, {}, 1, 0},
          {{"j"}, false, false, {}, 3, 0},
          {{"i", "j"}, false, false, {}, 1, 0},
          {{}, false, false, {}, 4, 0},  // "other": none of the others
          {{"i"}, false, false, {}, 1, 0},
          {{"i"}, false, false, {}, 2, 0},
      });
}

TEST(AutomatonBehaviour, PriorityGuardsWeakBehindStrong) {
  // A weak transition with a priority yields to the strong ones: s0 = 1, s1 = 2, s2 = 3.
  runTrace(
      "module m: Input: i, j; Output: a;\n"
      "automaton state: s0 / a; state: s1; state: s2;\n"
      "transition: initial-> s0; s0 [i] -> s1; s0 1 [j] weak-> s2; s1 -> s0; s2 -> s0; end",
      {
          {{}, true, false, {}, 1, 0},
          {{"i", "j"}, false, false, {{"a", "B"}}, 2, 0},
          {{}, false, false, {}, 1, 0},
          {{"j"}, false, false, {{"a", "T"}}, 3, 0},
      });
}

TEST(AutomatonBehaviour, FinalStateTerminatesOnArrival) {
  // Key order: f = 1, s0 = 2; all ones is 3.
  runTrace(
      "module m: Input: i; Output: b;\n"
      "automaton state: s0; state: f final;\n"
      "transition: initial-> s0; s0 [i] / b -> f; end",
      {
          {{}, true, false, {{"b", "B"}}, 2, 0},
          {{"i"}, false, false, {{"b", "T"}}, 1, 1},  // T and the action in the arrival instant
          {{"i"}, false, false, {{"b", "B"}}, 3, 0},  // the final state leaves for all ones
          {{"i"}, false, false, {{"b", "B"}}, 0, 0},  // where nothing holds
          {{"i"}, false, false, {{"b", "B"}}, 0, 0},
          {{}, true, false, {{"b", "B"}}, 2, 0},
      });
}

TEST(AutomatonEquations, TriggerFiresOnlyWhenExactlyTrue) {
  // Not at error (over and under), not at bottom.
  Module* m = compiled(
      "module m: Input: i; Output: a;\n"
      "automaton state: s0; state: s1 / a;\n"
      "transition: initial-> s0; s0 [i] -> s1; end");
  ASSERT_NE(m, nullptr);
  auto* aut = m->getStatement();
  Transition* t = aut->getTransitionList()->back();
  Bddexpressionwood* wood = m->getBddWood();
  bddpp_manager* M = wood->my_bdd_manager();
  auto var = [&](const std::string& n) { return M->Bdd_var_by_index(M->Index_var_by_name(n)); };
  EXPECT_EQ(t->triggerable_bdd(m), M->Bdd_and(var("_s_i"), M->Bdd_not(var("_v_i"))));
}

TEST(AutomatonWarnings, NormalTerminationWithoutRunHasNoEffect) {
  testing::internal::CaptureStderr();
  Module* m = compiled(
      "module m: Output: a;\n"
      "automaton state: s0; state: s1 / a;\n"
      "transition: initial-> s0; s0 normalterm-> s1; end");
  std::string err = testing::internal::GetCapturedStderr();
  ASSERT_NE(m, nullptr);
  // s0 = 1.
  EXPECT_NE(err.find("Warning: No found Run module about state s0: Normal Terminaison has no "
                     "effect ...\n"),
            std::string::npos)
      << err;
  Runner run(m);
  run.step({}, true);
  EXPECT_EQ(run.code(), 1);
  run.step({});
  EXPECT_EQ(run.code(), 1);
  EXPECT_EQ(run.value("a"), "B");
}

TEST(AutomatonEquations, CreateEquationsIsNotTheWay) {
  Module* m = parse("module m: automaton state: s0; transition: initial-> s0; end");
  ASSERT_NE(m, nullptr);
  EXPECT_EXIT(m->getStatement()->createEquations(m, m->getCompilation()),
              testing::ExitedWithCode(1),
              literally("ModuleTable::createEquations(): do not use ..."));
}

}  // namespace

namespace {

// A state that runs a module: arrival starts it, a strong trigger of the state cuts its
// outputs in that instant, leaving resets it. s0 = 1, s1 = 2.
TEST(AutomatonBehaviour, RunInAState) {
  testing::internal::CaptureStderr();
  Module* m = compiled(
      "module sub: Output: o; Mealy Machine o = 1; end\n"
      "module m: Input: i; Output: o;\n"
      "automaton state: s0; state: s1 run sub;\n"
      "transition: initial-> s0; s0 [i] -> s1; s1 [i] -> s0; end");
  std::string err = testing::internal::GetCapturedStderr();
  ASSERT_NE(m, nullptr);
  EXPECT_NE(err.find("Run detecte:mR_sub_"), std::string::npos) << err;
  Runner run(m);
  struct Step {
    std::set<std::string> in;
    bool set;
    long code;
    std::string o;
  } steps[] = {
      {{}, true, 1, "F"},    // the instance isn't started
      {{"i"}, false, 2, "B"},  // started, but its outputs are cut while i holds
      {{}, false, 2, "T"},
      {{}, false, 2, "T"},
      {{"i"}, false, 1, "B"},  // preempted and reset
      {{}, false, 1, "F"},
  };
  int n = 0;
  for (const Step& s : steps) {
    SCOPED_TRACE("instant " + std::to_string(n++));
    run.step(s.in, s.set);
    EXPECT_EQ(run.code(), s.code);
    EXPECT_EQ(run.value("o"), s.o);
  }
}

}  // namespace

// The state-space queries on small finalized modules whose reachable states are
// counted by hand.
#include <gtest/gtest.h>

#include <set>
#include <vector>

#include "common/quarn_test.h"
#include "bdd/bddpp.h"
#include "equations/Bddexpression.h"
#include "signals/signal_manager.h"

namespace {

struct Finalized {
  Module* m;
  Bddexpressionwood* wood;
  bddpp_manager* manager;
  explicit Finalized(const std::string& text) {
    m = quarn_test::compiled_from_text(text);
    m->finalize(0);
    wood = m->getBddWood();
    manager = wood->my_bdd_manager();
  }
  bdd initial() {
    bdd s = wood->Bdd_one();
    for (regclass* r : *m->getRegisterList()) {
      bdd v = r->actual_var()->getOverBdd(m, wood);
      s = wood->Bdd_and(s, r->is_initialy_true() ? v : wood->Bdd_not(v));
    }
    return s;
  }
  bdd input(const std::string& name) {
    return wood->Bdd_var_by_index(m->getInputSignal(name)->getOverBddId(m, wood));
  }
  bdd output(const std::string& name) {
    return wood->Bdd_var_by_index(m->getOutputSignal(name)->getInitialOverBddId(m, wood));
  }
  // Reachable states from the initial one over every valuation of the input cubes.
  size_t reachable(const std::vector<bdd>& inputCubes) {
    std::vector<bdd> todo{initial()};
    std::set<std::pair<bdd_node*, int>> states{{todo[0].node(), todo[0].link_type()}};
    while (!todo.empty()) {
      bdd s = todo.back();
      todo.pop_back();
      for (const bdd& in : inputCubes) {
        bdd next = m->state_corres(m->next_state(s, in));
        if (states.insert({next.node(), next.link_type()}).second) todo.push_back(next);
      }
    }
    return states.size();
  }
};

struct Case {
  const char* name;
  const char* text;
  std::vector<const char*> inputs;
  size_t states;
};

TEST(StateSpace, ReachableStatesCountedByHand) {
  const Case cases[] = {
      // boot; then the first pause and the second in turn
      {"two pauses", "module m: Output: o; loop { emit o >> pause >> pause } end", {}, 3},
      // boot; waiting for a, whatever a does
      {"wait", "module m: Input: a; Output: o; loop { wait a >> emit o } end", {"a"}, 2},
      // boot; then pause, then halted for ever
      {"halt", "module m: Output: o; pause >> emit o >> halt end", {}, 3},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    Finalized f(c.text);
    std::vector<bdd> cubes{f.wood->Bdd_one()};
    for (const char* i : c.inputs) {
      std::vector<bdd> both;
      for (const bdd& cube : cubes) {
        both.push_back(f.wood->Bdd_and(cube, f.input(i)));
        both.push_back(f.wood->Bdd_and(cube, f.wood->Bdd_not(f.input(i))));
      }
      cubes = both;
    }
    EXPECT_EQ(f.reachable(cubes), c.states);
  }
}

// From the boot state the next state no longer has the boot register, and mapping it
// back to the actual variables gives a cube over registers only.
TEST(StateSpace, NextStateLeavesBoot) {
  Finalized f("module m: Input: a; Output: o; loop { wait a >> emit o } end");
  bdd first = f.m->state_corres(f.m->next_state(f.initial(), f.input("a")));
  bdd second = f.m->state_corres(f.m->next_state(first, f.input("a")));
  EXPECT_NE(first, f.initial());
  EXPECT_EQ(first, second);  // waiting again after o
  EXPECT_EQ(first, f.m->state_corres(f.m->next_state(first, f.wood->Bdd_not(f.input("a")))));
}

// While waiting, o cannot be 1 exactly when a is absent, and cannot be 0 when a is present.
TEST(StateSpace, TransitionsThatContradictTheExpectedOutput) {
  Finalized f("module m: Input: a; Output: o; loop { wait a >> emit o } end");
  bdd waiting = f.m->state_corres(f.m->next_state(f.initial(), f.wood->Bdd_not(f.input("a"))));
  std::vector<bdd> results(64);
  for (int expected = 0; expected < 2; expected++) {
    SCOPED_TRACE(expected);
    bdd o = expected ? f.output("o") : f.wood->Bdd_not(f.output("o"));
    int n = f.m->real_possible_transitions(waiting, o, results.data());
    ASSERT_GE(n, 1);
    bdd all = f.wood->Bdd_zero();
    for (int i = 0; i < n; i++) all = f.manager->Bdd_or(all, results[i]);
    EXPECT_EQ(all, expected ? f.wood->Bdd_not(f.input("a")) : f.input("a"));
  }
  // The boot state emits nothing whatever a is: o = 1 fails on every branch.
  int n = f.m->real_possible_transitions(f.initial(), f.output("o"), results.data());
  bdd all = f.wood->Bdd_zero();
  for (int i = 0; i < n; i++) all = f.manager->Bdd_or(all, results[i]);
  EXPECT_EQ(all, f.wood->Bdd_one());
}

}  // namespace

// Transitions of one priority that can fire together end the compilation; different
// priorities, a strong and a weak one, or exclusive triggers don't.
#include <gtest/gtest.h>

#include "common/quarn_test.h"
#include "model/statement.h"

using quarn_test::literally;

namespace {

const std::string kHead = "module m: Input: i, j; automaton state: s0; state: s1; state: s2;\n";

TEST(AutomatonDeterminism, ConflictsEndTheCompilation) {
  struct Case {
    const char* transitions;
    const char* message;
  } cases[] = {
      {"initial-> s0; initial-> s1;",
       "ERROR: Non determinist automaton: Several possible Init transitions \"\" \n\n"
       "   --> compilation process aborted ..."},
      {"initial-> [i] s0; initial-> [i and j] s1;",
       "ERROR: Non determinist automaton: Several possible Init transitions \"\" \n\n"
       "   --> compilation process aborted ..."},
      {"initial-> s0; s0 [i] -> s1; s0 [j] -> s2;",
       "ERROR: Non determinist automaton: Several possible transitions from state \"s0\" \n\n"
       "   --> compilation process aborted ..."},
      {"initial-> s0; s1 [i] weak-> s0; s1 [i] weak-> s2;",
       "ERROR: Non determinist automaton: Several possible transitions from state \"s1\" \n\n"
       "   --> compilation process aborted ..."},
      {"initial-> s0; s0 3 [i] -> s1; s0 3 [j] strong-> s2;",
       "ERROR: Non determinist automaton: Several possible transitions from state \"s0\" \n\n"
       "   --> compilation process aborted ..."},
      {"initial-> s0; s0 other [] -> s1; s0 other [j] -> s2;",
       "ERROR: Non determinist automaton: Several possible transitions from state \"s0\" \n\n"
       "   --> compilation process aborted ..."},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.transitions);
    EXPECT_EXIT(quarn_test::compiled_from_text(kHead + "transition: " + c.transitions + " end"),
                testing::ExitedWithCode(1), literally(c.message));
  }
}

TEST(AutomatonDeterminism, NoConflict) {
  const char* cases[] = {
      "initial-> [i] s0; initial-> [not i] s1;",
      "initial-> s0; initial-> 1 [] s1;",
      "initial-> s0; s0 [i] -> s1; s0 [not i] -> s2;",
      "initial-> s0; s0 1 [i] -> s1; s0 2 [i] -> s2;",
      "initial-> s0; s0 [i] -> s1; s0 other [] -> s2;",
      "initial-> s0; s0 [i] -> s1; s0 [i] weak-> s2;",
      "initial-> s0; s1 [i] -> s2; s0 [i] -> s2;",
      // A trigger that is never exactly true conflicts with nothing.
      "initial-> s0; s0 [i and not i] -> s1; s0 [i] -> s2;",
  };
  for (const char* c : cases) {
    SCOPED_TRACE(c);
    Module* m = quarn_test::compiled_from_text(kHead + "transition: " + c + " end");
    ASSERT_NE(m, nullptr);
    // Priorities are folded into the triggers; initial transitions keep theirs.
    for (Transition* t : *m->getStatement()->getTransitionList())
      if (!t->isInitial()) {
        EXPECT_EQ(t->getPriority(), 0);
      }
  }
}

}  // namespace

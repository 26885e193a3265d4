// Dating through the table and the causality report.
#include <algorithm>

#include "equationtable_fixture.h"

namespace {

using Pert = TableTest;

TEST_F(Pert, CycleFreeWoodGivesItsLevelQuietly) {
  Signal* a = input("A");
  Signal* k = wire("K");
  Signal* j = wire("J");
  t->createEquation(k, a, m);
  t->createEquation(j, new NotExpression(k), m);
  testing::internal::CaptureStderr();
  long level = t->callPert();
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_GT(level, 0);
  EXPECT_EQ(t->callPert(), level);
  std::list<long> all = {0, 1, 2, 3, 4, 5};
  EXPECT_EQ(t->callPert(all), level);
}

class Cycle : public TableTest {
 protected:
  // K = J and J = K: two wires that read each other.
  void SetUp() override {
    TableTest::SetUp();
    Signal* k = wire("K");
    Signal* j = wire("J");
    t->createEquation(k, j, m);
    t->createEquation(j, k, m);
  }
  // What the report names: the variables of the cycles and behind them, then the
  // equations of the first cycle found from the last of them.
  std::string names(const std::list<long>& loop) {
    std::string text;
    for (long i : loop) text += " " + g->Name_var_by_index(i) + "\n";
    return text;
  }
  std::string equations(const std::list<long>& loop) {
    std::string text;
    for (long i : loop) text += w->exp_by_index(i)->debug_in_string() + "\n\n";
    return text;
  }
};

TEST_F(Cycle, ReportOfCallPert) {
  std::list<long> loop = w->loop_detection();
  ASSERT_FALSE(loop.empty());
  EXPECT_NE(std::find(loop.begin(), loop.end(), w->Index_var_by_name("_s_K")), loop.end());
  EXPECT_NE(std::find(loop.begin(), loop.end(), w->Index_var_by_name("_s_J")), loop.end());
  std::string head = "ERROR in Module `M': detecting variables in a dependance cycle:\n" +
                     names(loop) + "\n\nwhen sorting equations: \n";
  EXPECT_EXIT(t->callPert(), ::testing::ExitedWithCode(1),
              ::testing::Eq(head + "\n" + head + equations(loop) + "\n"));
}

TEST_F(Cycle, ReportOfCallPertWithAList) {
  std::list<long> loop = w->loop_detection();
  ASSERT_FALSE(loop.empty());
  std::string head = "ERROR in Module `M': detecting variables in a dependance cycle:\n" +
                     names(loop) + "\nwhen sorting equations: \n";
  std::list<long> ids = {0, 1, 2, 3};
  EXPECT_EXIT(t->callPert(ids), ::testing::ExitedWithCode(1),
              ::testing::Eq(head + equations(loop) + "\n"));
}

TEST_F(Pert, DependenceText) {
  Signal* a = input("A");
  Signal* k = wire("K");
  Signal* j = wire("J");
  t->createEquation(k, a, m);
  t->createEquation(j, k, m);
  long sa = w->Index_var_by_name("_s_A"), sk = w->Index_var_by_name("_s_K"),
       sj = w->Index_var_by_name("_s_J");
  struct Case {
    std::list<long> path;
    std::string text;
  };
  const Case cases[] = {
      {{sj}, ""},        // no cycle below J
      {{sa}, ""},        // a free variable has no equation
      {{sa, sk}, "_s_A = -\n\n" + w->exp_by_index(sk)->debug_in_string() + "\n\n"},
      {{sk, sj}, w->exp_by_index(sk)->debug_in_string() + "\n\n" +
                     w->exp_by_index(sj)->debug_in_string() + "\n\n"},
  };
  for (const Case& c : cases) {
    std::list<long> path = c.path;
    EXPECT_EQ(t->computeDependence(path), c.text);
    EXPECT_EQ(path, c.path);
  }
}

}  // namespace

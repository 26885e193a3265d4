// Dates, orders, cycles, closures and critical paths of an equation wood.
#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "equations/Bddexpression.h"

namespace {

// A wood whose variables are made first, by name, and whose equations read
// the conjunction of the variables given.
struct Wood {
  Bddexpressionwood wood;
  bddpp_manager* m = wood.my_bdd_manager();

  explicit Wood(const std::vector<std::string>& names) {
    for (const auto& n : names) wood.New_var_last(n);
  }
  long at(const std::string& n) { return m->Index_var_by_name(n); }
  bdd var(const std::string& n) { return m->Bdd_var_by_name(n); }
  Bddexpression* eq(const std::string& n, const std::vector<std::string>& reads) {
    bdd f = m->Bdd_one();
    for (const auto& r : reads) f = m->Bdd_and(f, var(r));
    return new Bddexpression(n, &wood, var(n), f, 0, 0);
  }
  long early(const std::string& n) { return wood.exp_by_index(at(n))->getEarlyDate(); }
  long late(const std::string& n) { return wood.getLateDate(at(n)); }
  std::list<long> ids(const std::vector<std::string>& names) {
    std::list<long> l;
    for (const auto& n : names) l.push_back(at(n));
    return l;
  }
};

TEST(WoodDates, HandCheckedGraphs) {
  struct Case {
    const char* what;
    std::vector<std::string> vars;
    std::vector<std::pair<std::string, std::vector<std::string>>> eqs;
    long levels;
    std::vector<std::pair<std::string, long>> early, late;
    std::vector<std::string> earliest;
  };
  const std::vector<Case> cases = {
      {"empty wood", {}, {}, 0, {}, {}, {}},
      {"one equation reading two inputs",
       {"x", "y", "a"},
       {{"a", {"x", "y"}}},
       2,
       {{"a", 1}},
       {{"x", 1}, {"y", 1}, {"a", 0}},
       {"a"}},
      {"chain",
       {"in", "a", "b", "c"},
       {{"a", {"in"}}, {"b", {"a"}}, {"c", {"b"}}},
       4,
       {{"a", 1}, {"b", 2}, {"c", 3}},
       {{"in", 3}, {"a", 2}, {"b", 1}, {"c", 0}},
       {"a", "b", "c"}},
      {"constant equation without reader comes first",
       {"x", "a", "k"},
       {{"a", {"x"}}, {"k", {}}},
       2,
       {{"a", 1}, {"k", 0}},
       {{"k", 0}},
       {"k", "a"}},
      {"order by date, not by index",
       {"o", "m", "i"},
       {{"o", {"m"}}, {"m", {"i"}}},
       3,
       {{"m", 1}, {"o", 2}},
       {{"i", 2}, {"m", 1}, {"o", 0}},
       {"m", "o"}},
      {"diamond: equal dates keep index order, the long side wins",
       {"x", "r", "p", "q", "s"},
       {{"p", {"x"}}, {"q", {"p"}}, {"r", {"p", "q"}}, {"s", {"x"}}},
       4,
       {{"p", 1}, {"q", 2}, {"r", 3}, {"s", 1}},
       {{"x", 3}, {"p", 2}, {"q", 1}, {"r", 0}, {"s", 0}},
       {"p", "s", "q", "r"}},
      {"a register's next value reads its current value: two variables, no cycle",
       {"cur", "nxt", "go"},
       {{"nxt", {"cur", "go"}}},
       2,
       {{"nxt", 1}},
       {{"cur", 1}},
       {"nxt"}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    Wood w(c.vars);
    for (const auto& e : c.eqs) w.eq(e.first, e.second);
    EXPECT_EQ(w.wood.compute_dates(), c.levels);
    for (const auto& [n, d] : c.early) EXPECT_EQ(w.early(n), d) << n;
    for (const auto& [n, d] : c.late) EXPECT_EQ(w.late(n), d) << n;
    EXPECT_EQ(w.wood.earliest_sort(), w.ids(c.earliest));
    EXPECT_TRUE(w.wood.loop_detection().empty());
    // A second dating changes nothing.
    EXPECT_EQ(w.wood.compute_dates(), c.levels);
  }
}

TEST(WoodDates, LatestSortAndConstantRightMember) {
  Wood w({"x", "y", "a", "b", "c"});
  w.eq("a", {"x"});
  w.eq("b", {"a"});
  w.eq("c", {"y"});
  // y and not y: a constant right member, no dependence on y.
  Bddexpression* c = w.wood.exp_by_index(w.at("c"));
  c->setBddExp(w.m->Bdd_and(w.var("y"), w.m->Bdd_not(w.var("y"))));
  EXPECT_TRUE(c->getDependances().empty());
  EXPECT_TRUE(w.wood.getReaders(w.at("y")).empty());
  EXPECT_EQ(w.wood.compute_dates(), 3);
  EXPECT_EQ(w.wood.latest_sort(), w.ids({"a", "b", "c"}));
  EXPECT_EQ(w.wood.earliest_sort(), w.ids({"c", "a", "b"}));
}

TEST(WoodDates, ListDatingMovesNewEquationsBehindWhatTheyRead) {
  Wood w({"x", "a", "n", "r"});
  w.eq("a", {"x"});
  EXPECT_EQ(w.wood.compute_dates(), 2);
  w.eq("n", {"a"});
  w.eq("r", {"n"});
  EXPECT_EQ(w.wood.Nb_level(), 2);
  std::list<long> ids = w.ids({"a", "n"});
  ids.push_front(-1);  // a signal reference without variable
  EXPECT_EQ(w.wood.compute_dates(ids), 4);
  EXPECT_EQ(w.early("a"), 1);
  EXPECT_EQ(w.early("n"), 2);
  EXPECT_EQ(w.early("r"), 3);
  EXPECT_EQ(w.wood.earliest_sort(), w.ids({"a", "n", "r"}));
}

TEST(WoodDates, CycleIsReportedWithWhatLiesBehindIt) {
  // w feeds the cycle a <-> b, o reads it, z is apart.
  Wood w({"o", "in", "w", "a", "b", "z"});
  w.eq("w", {"in"});
  w.eq("a", {"w", "b"});
  w.eq("b", {"a"});
  w.eq("o", {"b"});
  w.eq("z", {"in"});
  long levels = w.wood.compute_dates();
  EXPECT_GT(levels, w.wood.Nb_bdd_vars());
  EXPECT_EQ(w.wood.loop_detection(), w.ids({"o", "a", "b"}));
  EXPECT_EQ(w.early("z"), 1);
  EXPECT_EQ(w.early("w"), 1);

  // A change upstream of the cycle warns once.
  testing::internal::CaptureStderr();
  w.wood.exp_by_index(w.at("w"))->append_or_exp(w.var("z"));
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "WARNING in Bddexpressionwood::down_critical_path():\n"
            "   possible infinite recursion due to a signals cycle\n");

  // The walks end on the cycle.
  EXPECT_EQ(w.wood.up_dependances(w.at("o"), 0, {}), std::set<long>({w.at("in"), w.at("w"), w.at("a"),
                                                                      w.at("b"), w.at("z")}));
  w.wood.up_critical_path(w.at("o"), 0, 1);
}

TEST(WoodDates, SelfLoopAndTwoEquationsReadingEachOther) {
  Wood w({"p", "q", "s"});
  w.eq("p", {"q"});
  w.eq("q", {"p"});
  w.eq("s", {"s"});
  EXPECT_EQ(w.wood.loop_detection(), w.ids({"p", "q", "s"}));
}

TEST(WoodDates, ListDatingFindsACycleThatItEnters) {
  Wood w({"x", "a", "b"});
  w.eq("a", {"x"});
  EXPECT_EQ(w.wood.compute_dates(), 2);
  Bddexpression* b = w.eq("b", {"a"});
  w.wood.exp_by_index(w.at("a"))->append_and_exp(w.var("b"));
  EXPECT_TRUE(w.wood.loop_detection().empty());  // dated already: no new dating
  w.wood.compute_dates(w.ids({"a"}));
  EXPECT_EQ(w.wood.loop_detection(), w.ids({"a", "b"}));
  EXPECT_GT(b->getEarlyDate(), w.wood.Nb_bdd_vars());
}

TEST(WoodDates, PastTwiceTheVariablesOnlyDirectStepsAreTaken) {
  // Dates brought from elsewhere put Nb_level past 2 * Nb_bdd_vars: a list
  // dating then raises the readers of the listed equations and goes no further.
  Wood w({"x", "a", "b", "c"});
  new Bddexpression("a", &w.wood, w.var("a"), w.var("x"), 100, 0);
  w.eq("b", {"a"});
  w.eq("c", {"b"});
  EXPECT_EQ(w.wood.Nb_level(), 100);
  EXPECT_EQ(w.wood.compute_dates(w.ids({"a"})), 102);
  EXPECT_EQ(w.early("b"), 101);
  EXPECT_EQ(w.early("c"), 0);
  EXPECT_EQ(w.late("x"), 1);
}

// The dating as a literal eager propagation, to compare with on cycle-free woods.
struct Reference {
  long n;
  std::vector<std::set<long>> readers, deps;
  std::vector<char> has;
  std::vector<long> early, late;
  long level = 0;
  void early_prop(long i, long date) {
    if (!has[i] || date <= early[i]) return;
    early[i] = date;
    if (level <= date) level = date + 1;
    if (2 * n >= level)
      for (long r : readers[i]) early_prop(r, date + 1);
  }
  void late_prop(long i, long date) {
    if (late[i] != 0 && late[i] >= date) return;
    late[i] = date;
    if (level <= date) level = date + 1;
    if (!has[i] || level > 2 * n) return;
    for (long d : deps[i]) late_prop(d, date + 1);
  }
  void step(long i) {
    for (long r : readers[i]) early_prop(r, has[i] ? early[i] + 1 : 1);
    if (readers[i].empty() && has[i] && level <= early[i]) level = early[i] + 1;
    if (has[i])
      for (long d : deps[i]) late_prop(d, late[i] + 1);
  }
};

TEST(WoodDates, SameDatesAsEagerPropagationOnRandomAcyclicWoods) {
  std::mt19937 rng(7);
  for (int round = 0; round < 60; ++round) {
    SCOPED_TRACE(round);
    long n = 2 + long(rng() % 30);
    std::vector<long> topo(n);
    for (long i = 0; i < n; ++i) topo[i] = i;
    std::shuffle(topo.begin(), topo.end(), rng);
    std::vector<std::string> names;
    for (long i = 0; i < n; ++i) names.push_back("v" + std::to_string(i));
    Wood w(names);
    Reference ref{n, std::vector<std::set<long>>(n), std::vector<std::set<long>>(n), std::vector<char>(n, 0),
                  std::vector<long>(n, 0), std::vector<long>(n, 0)};
    for (long k = 0; k < n; ++k) {
      if (rng() % 4 == 0) continue;  // a free input
      long i = topo[k];
      std::vector<std::string> reads;
      for (long j = 0; j < k; ++j)
        if (rng() % 3 == 0) reads.push_back(names[topo[j]]);
      w.eq(names[i], reads);
      ref.has[i] = 1;
      for (const auto& r : reads) {
        ref.deps[i].insert(w.at(r));
        ref.readers[w.at(r)].insert(i);
      }
    }
    w.wood.compute_dates();
    for (long i = 0; i < n; ++i) ref.step(i);
    // Then a list dating after some right members grew.
    std::list<long> list;
    for (int extra = 0; extra < 3; ++extra) {
      long k = 1 + long(rng() % (n - 1));
      long i = topo[k], j = topo[rng() % k];
      Bddexpression* e = w.wood.exp_by_index(i);
      if (e == nullptr || ref.deps[i].count(j)) continue;
      e->append_and_exp(w.m->Bdd_var_by_index(j));
      ref.deps[i].insert(j);
      ref.readers[j].insert(i);
    }
    for (long i = 0; i < n; ++i)
      if (rng() % 2) list.push_back(i);
    w.wood.compute_dates(list);
    for (long i : list) ref.step(i);
    EXPECT_EQ(w.wood.Nb_level(), ref.level);
    for (long i = 0; i < n; ++i) {
      if (ref.has[i]) {
        EXPECT_EQ(w.wood.exp_by_index(i)->getEarlyDate(), ref.early[i]) << i;
      }
      EXPECT_EQ(w.wood.getLateDate(i), ref.late[i]) << i;
    }
    EXPECT_TRUE(w.wood.loop_detection().empty());
  }
}

// With cycles: the report holds exactly the equations on a cycle and those
// that read, directly or not, an equation on a cycle.
TEST(WoodDates, CycleReportOnRandomWoods) {
  std::mt19937 rng(11);
  for (int round = 0; round < 80; ++round) {
    SCOPED_TRACE(round);
    long n = 2 + long(rng() % 16);
    std::vector<std::string> names;
    for (long i = 0; i < n; ++i) names.push_back("v" + std::to_string(i));
    Wood w(names);
    std::vector<std::vector<char>> reach(n, std::vector<char>(n, 0));  // reach[a][b]: b reads a, maybe not directly
    for (long i = 0; i < n; ++i) {
      if (rng() % 5 == 0) continue;
      std::vector<std::string> reads;
      for (long j = 0; j < n; ++j)
        if (rng() % 6 == 0) {
          reads.push_back(names[j]);
          reach[j][i] = 1;
        }
      w.eq(names[i], reads);
    }
    for (long k = 0; k < n; ++k)
      for (long a = 0; a < n; ++a)
        for (long b = 0; b < n; ++b)
          if (reach[a][k] && reach[k][b]) reach[a][b] = 1;
    std::list<long> expected;
    for (long i = 0; i < n; ++i) {
      bool behind = false;
      for (long c = 0; c < n; ++c)
        if (reach[c][c] && (c == i || reach[c][i])) behind = true;
      if (behind) expected.push_back(i);
    }
    EXPECT_EQ(w.wood.loop_detection(), expected);
  }
}

TEST(WoodPaths, WeightedCriticalPathsAndClosures) {
  Wood w({"x", "a", "b", "c", "y"});
  w.eq("a", {"x", "y"})->setW(5);
  w.eq("b", {"x"});
  w.eq("c", {"a", "b"})->setW(2);
  EXPECT_EQ(w.wood.down_critical_path(w.at("x"), 0, 0), 7);  // 5 + 2 through a
  EXPECT_EQ(w.wood.down_critical_path(w.at("c"), 0, 4), 4);  // no reader: the weight alone
  EXPECT_EQ(w.wood.up_critical_path(w.at("c"), 0, 10), 17);  // 10 + 2 + 5
  EXPECT_EQ(w.wood.up_critical_path(w.at("x"), 0, 3), 3);    // no equation
  EXPECT_EQ(w.wood.up_critical_path(w.at("b"), 1, 1), 2);
  EXPECT_EQ(w.wood.up_dependances(w.at("c"), 0, {}),
            std::set<long>({w.at("x"), w.at("y"), w.at("a"), w.at("b")}));
  // What is in the given set already isn't followed: y stays out.
  EXPECT_EQ(w.wood.up_dependances(w.at("c"), 0, {w.at("a")}),
            std::set<long>({w.at("x"), w.at("a"), w.at("b")}));
  EXPECT_EQ(w.wood.up_dependances(w.at("x"), 0, {w.at("y")}), std::set<long>({w.at("y")}));
  EXPECT_EQ(w.wood.down_dependances(w.at("a"), 0, {}), std::set<long>({w.at("c")}));
  EXPECT_EQ(w.wood.down_dependances(w.at("c"), 0, {}), std::set<long>());
}

// A ladder of rungs u_k, v_k that both read u_(k-1) and v_(k-1): 2^k paths
// reach rung k, which a walk without memory would follow one by one.
TEST(WoodPaths, LadderOfThousandsOfRungsIsInstant) {
  const long rungs = 3000;
  Bddexpressionwood wood;
  bddpp_manager* m = wood.my_bdd_manager();
  bdd in = wood.New_var_last("in");
  bdd pu = in, pv = in;
  for (long k = 0; k < rungs; ++k) {
    bdd u = wood.New_var_last("u" + std::to_string(k));
    bdd v = wood.New_var_last("v" + std::to_string(k));
    new Bddexpression("u", &wood, u, m->Bdd_and(pu, pv), 0, 0);
    new Bddexpression("v", &wood, v, m->Bdd_or(pu, pv), 0, 0);
    pu = u;
    pv = v;
  }
  long top = m->Index_var_by_bdd(pu);
  EXPECT_EQ(wood.compute_dates(), rungs + 1);
  EXPECT_EQ(wood.exp_by_index(top)->getEarlyDate(), rungs);
  EXPECT_EQ(wood.getLateDate(0), rungs);
  EXPECT_TRUE(wood.loop_detection().empty());
  EXPECT_EQ(long(wood.earliest_sort().size()), 2 * rungs);
  EXPECT_EQ(wood.up_critical_path(top, 0, 0), rungs);
  EXPECT_EQ(wood.down_critical_path(0, 0, 0), rungs);
  EXPECT_EQ(long(wood.up_dependances(top, 0, {}).size()), 2 * rungs - 1);
  EXPECT_EQ(long(wood.down_dependances(1, 0, {}).size()), 2 * rungs - 2);
  // Rewriting the bottom rung walks everything above it once.
  wood.exp_by_index(1)->append_or_exp(in);
}

TEST(WoodPaths, LoopBreakingSplitsACycleOnAFreeVariable) {
  // a = c ? b : x, b = c ? y : a: for each value of c the cycle is gone.
  Wood w({"c", "x", "y", "a", "b"});
  bddpp_manager* m = w.m;
  new Bddexpression("a", &w.wood, w.var("a"), m->Bdd_ite(w.var("c"), w.var("b"), w.var("x")), 0, 0);
  new Bddexpression("b", &w.wood, w.var("b"), m->Bdd_ite(w.var("c"), w.var("y"), w.var("a")), 0, 0);
  EXPECT_EQ(w.wood.loop_detection(), w.ids({"a", "b"}));
  std::set<long> candidates = {w.at("c")};
  int flag = 0;
  std::set<long> made = w.wood.loop_breaking(candidates, flag);
  EXPECT_EQ(made.size(), 4u);
  EXPECT_EQ(flag, 1);
  EXPECT_TRUE(w.wood.loop_detection().empty());
  EXPECT_NE(w.wood.exp_by_bddname("a_c"), nullptr);
  EXPECT_NE(w.wood.exp_by_bddname("b_notc"), nullptr);
}

TEST(WoodPaths, StandAloneDaterAgreesAndReportsCycles) {
  Wood w({"in", "a", "b", "c"});
  Bddexpression* list[] = {w.eq("a", {"in"}), w.eq("b", {"a"}), w.eq("c", {"a", "b"})};
  EXPECT_EQ(PERT_original_version(3, list), 4);
  EXPECT_EQ(list[0]->getEarlyDate(), 1);
  EXPECT_EQ(list[2]->getEarlyDate(), 3);
  EXPECT_EQ(list[0]->getLateDate(), 2);
  EXPECT_EQ(PERT_original_version(0, list), 0);
  list[0]->append_and_exp(w.var("c"));
  testing::internal::CaptureStdout();
  EXPECT_EQ(PERT_original_version(3, list), -1);
  EXPECT_EQ(testing::internal::GetCapturedStdout().rfind("CYCLE DE CAUSALITE SUR:\n", 0), 0u);
}

}  // namespace

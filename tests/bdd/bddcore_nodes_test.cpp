// Node listings and copies of functions between managers.
#include <gtest/gtest.h>

#include <sstream>

#include "bddcore_tt.h"

using namespace bddtest;

namespace {

TEST(BddNodeListing, Lines) {
  bddpp_manager m;
  bdd a = m.New_var_last("a"), b = m.New_var_last("b");
  bdd f = m.Bdd_and(a, b);  // a ? b : 0
  bdd g = m.Bdd_or(b, m.Bdd_var_by_index(0));
  const long corres[] = {10, 20};
  struct Case {
    const char* name;
    std::function<void(std::ostream&)> print;
    std::string text;
  } cases[] = {
      {"one function", [&](std::ostream& o) { m.Print_bdd_by_nodes_list(o, f); },
       "nombre de noeud trouves: 3\n"
       "0: 0:1:2,-1\n"
       "1: 1:2:2,-1\n"
       "2: -1:-3:-3,1\n"},
      {"one function, renamed variables", [&](std::ostream& o) { m.Print_bdd_by_nodes_list(o, m.Bdd_not(f), corres); },
       "0: 10:1:2,-1\n"
       "1: 20:2:2,-1\n"
       "2: -1:-3:-3,1\n"},
      {"zero", [&](std::ostream& o) { m.Print_bdd_by_nodes_list(o, m.Bdd_zero()); },
       "nombre de noeud trouves: 1\n"
       "0: -1:-3:-3,1\n"},
      // b or a = a ? 1 : b, with a normal else edge.
      {"a list shares its nodes", [&](std::ostream& o) {
         m.Print_bdds_list_by_nodes_list(o, std::list<bdd>{f, bdd(), g, b}, corres);
       },
       "4\n"
       "0: 10:1:2,-1\n"
       "1: 20:2:2,-1\n"
       "2: -1:-3:-3,1\n"
       "3: 10:2:1,1\n"},
      {"a list with the variables", [&](std::ostream& o) {
         m.Print_bdds_list_by_nodes_list(o, std::list<bdd>{b, f});
       },
       "bdd_vars: \n"
       "a,b;\n"
       "bdd_nodes: \n"
       "0: 1:1:1,-1\n"
       "1: -1:-3:-3,1\n"
       "2: 0:0:1,-1\n"},
  };
  for (const Case& c : cases) {
    std::ostringstream out;
    c.print(out);
    EXPECT_EQ(out.str(), c.text) << c.name;
  }
  std::ostringstream line;
  m.one->print_number = 7;
  Print_bdd_node(line, m.one);
  Print_bdd_node(line, nullptr);
  EXPECT_EQ(line.str(), "7: -1:-3:-3,1");
}

// Copies: the same function over the mapped variables.
TEST(BddCopies, SameIndexTranslatedAndByName) {
  bddpp_manager source;
  make_vars(source);
  Gen gen(source, 21);
  for (int round = 0; round < 10; ++round) {
    Pair f = gen.random(6);

    bddpp_manager same(&source);
    bdd c = Bdd_isomorphe(&same, &source, f.f);
    EXPECT_EQ(c.manager_ref(), &same);
    EXPECT_EQ(tt_of(same, c), f.t);
    EXPECT_TRUE(same.Bdd_is_correct(c));
    EXPECT_EQ(same.Bdd_size(c), source.Bdd_size(f.f));
    EXPECT_EQ(Bdd_isomorphe(&same, &source, f.f), c);

    // Reversed order: source index i goes to target index 9 - i.
    long reverse[kVars];
    for (int i = 0; i < kVars; ++i) reverse[i] = kVars - 1 - i;
    bddpp_manager reversed(&source);
    bdd r = Bdd_isomorphe(&reversed, &source, f.f, reverse);
    EXPECT_TRUE(reversed.Bdd_is_correct(r));
    TT expected;
    for (unsigned a = 0; a < (1u << kVars); ++a) {
      unsigned b = 0;
      for (int i = 0; i < kVars; ++i)
        if ((a >> (kVars - 1 - i)) & 1) b |= 1u << i;
      expected[a] = f.t[b];
    }
    EXPECT_EQ(tt_of(reversed, r), expected) << round;

    // By name into a manager that knows some names, in another order.
    bddpp_manager named;
    named.New_var_last("x7");
    named.New_var_last("other");
    named.New_var_last("x2");
    bdd n = Bdd_isomorphe_by_name(&named, &source, f.f);
    EXPECT_TRUE(named.Bdd_is_correct(n));
    long vars = named.Nb_bdd_vars;
    EXPECT_EQ(Bdd_isomorphe_by_name(&named, &source, f.f), n);
    EXPECT_EQ(named.Nb_bdd_vars, vars) << "a second copy adds no variable";
    for (unsigned a = 0; a < (1u << kVars); a += 7) {
      std::vector<int> values(named.Nb_bdd_vars, 0);
      for (int i = 0; i < kVars; ++i) {
        long index = named.Index_var_by_name("x" + std::to_string(i));
        if (index >= 0) values[index] = (a >> i) & 1;
      }
      bdd v = named.Bdd_eval(n, values.data());
      ASSERT_TRUE(named.Bdd_is_tautology(v));
      EXPECT_EQ(named.Bdd_is_one_tautologic(v), bool(f.t[a]));
    }
  }
}

TEST(BddCopies, NewNamesArriveDepthFirst) {
  bddpp_manager source;
  bdd a = source.New_var_last("a"), b = source.New_var_last("b"), c = source.New_var_last("c");
  bdd f = source.Bdd_or(source.Bdd_and(a, c), source.Bdd_and(source.Bdd_not(a), b));
  bddpp_manager target;
  target.New_var_last("c");
  bdd g = Bdd_isomorphe_by_name(&target, &source, f);
  // a at the root, then its then side (c, known), then its else side (b).
  EXPECT_EQ(target.Name_var_by_index(1), "a");
  EXPECT_EQ(target.Name_var_by_index(2), "b");
  EXPECT_EQ(target.Nb_bdd_vars, 3);
  bdd ta = target.Bdd_var_by_name("a"), tb = target.Bdd_var_by_name("b"), tc = target.Bdd_var_by_name("c");
  EXPECT_EQ(g, target.Bdd_or(target.Bdd_and(ta, tc), target.Bdd_and(target.Bdd_not(ta), tb)));
  EXPECT_EQ(Bdd_isomorphe_by_name(&target, &source, source.Bdd_zero()), target.Bdd_zero());
  EXPECT_EQ(Bdd_isomorphe(&target, &source, source.Bdd_one()), target.Bdd_one());
}

TEST(BddCopies, BadCalls) {
  bddpp_manager source, target;
  source.New_var_last("a");
  long translation[] = {0};
  testing::internal::CaptureStderr();
  EXPECT_EQ(Bdd_isomorphe(&target, &source, bdd(), translation), target.Bdd_zero());
  EXPECT_EQ(Bdd_isomorphe(&target, nullptr, source.Bdd_var_by_index(0), translation), target.Bdd_zero());
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "ERROR: Bad call of Bdd_isomorphe() !\nERROR: Bad call of Bdd_isomorphe() !\n");
  EXPECT_EQ(Bdd_isomorphe(&target, nullptr, source.var_nodes[0]), target.one);
}

}  // namespace

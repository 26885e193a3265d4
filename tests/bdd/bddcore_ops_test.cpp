// Every Boolean operation against truth tables of random functions.
#include <gtest/gtest.h>

#include "bddcore_tt.h"

using namespace bddtest;

namespace {

TT restrict_tt(const TT& t, int i, bool value) {
  TT r;
  for (unsigned a = 0; a < (1u << kVars); ++a) r[a] = t[value ? (a | (1u << i)) : (a & ~(1u << i))];
  return r;
}

bool depends_tt(const TT& t, int i) { return restrict_tt(t, i, false) != restrict_tt(t, i, true); }

TT compose_tt(const TT& f, int i, const TT& g) {
  TT f1 = restrict_tt(f, i, true), f0 = restrict_tt(f, i, false);
  return (g & f1) | (~g & f0);
}

// A random cube: each variable absent, true or false; gives the bdd, its
// table and its literal array.
struct Cube {
  bdd f;
  TT t;
  std::vector<int> literals;
};

Cube random_cube(bddpp_manager& m, Gen& gen, int density) {
  Cube c{m.Bdd_one(), tt_mask(), std::vector<int>(kVars, 2)};
  for (int i = 0; i < kVars; ++i) {
    unsigned r = gen.next() % 6;
    if (int(r) >= density) continue;
    bool positive = r & 1;
    c.literals[i] = positive ? 1 : 0;
    bdd v = m.Bdd_var_by_index(i);
    c.f = m.Bdd_and(c.f, positive ? v : m.Bdd_not(v));
    c.t &= positive ? tt_var(i) : ~tt_var(i);
  }
  return c;
}

TT fix_tt(const TT& t, const std::vector<int>& literals) {
  TT r;
  for (unsigned a = 0; a < (1u << kVars); ++a) {
    unsigned b = a;
    for (int i = 0; i < kVars; ++i) {
      if (literals[i] == 1) b |= 1u << i;
      if (literals[i] == 0) b &= ~(1u << i);
    }
    r[a] = t[b];
  }
  return r;
}

class BddOps : public ::testing::TestWithParam<unsigned> {
 protected:
  void SetUp() override { make_vars(m); }
  bddpp_manager m;
};

TEST_P(BddOps, ConnectivesMatchTruthTables) {
  Gen gen(m, GetParam());
  const TT all = tt_mask();
  for (int round = 0; round < 8; ++round) {
    Pair f = gen.random(6), g = gen.random(6), h = gen.random(5);
    ASSERT_EQ(tt_of(m, f.f), f.t);
    struct Case {
      const char* name;
      bdd result;
      TT expected;
    } cases[] = {
        {"and", m.Bdd_and(f.f, g.f), f.t & g.t},
        {"or", m.Bdd_or(f.f, g.f), f.t | g.t},
        {"nand", m.Bdd_nand(f.f, g.f), ~(f.t & g.t) & all},
        {"nor", m.Bdd_nor(f.f, g.f), ~(f.t | g.t) & all},
        {"xor", m.Bdd_xor(f.f, g.f), f.t ^ g.t},
        {"xnor", m.Bdd_xnor(f.f, g.f), ~(f.t ^ g.t) & all},
        {"eq", m.Bdd_eq(f.f, g.f), ~(f.t ^ g.t) & all},
        {"implication", m.Bdd_implication(f.f, g.f), (~f.t | g.t) & all},
        {"ite", m.Bdd_ite(f.f, g.f, h.f), (f.t & g.t) | (~f.t & h.t)},
        {"ite on index", m.Bdd_ite(1, 3, g.f, h.f), (tt_var(3) & g.t) | (~tt_var(3) & h.t)},
        {"ite on negated index", m.Bdd_ite(-1, 7, g.f, h.f), (~tt_var(7) & g.t) | (tt_var(7) & h.t)},
        {"ite on constant", m.Bdd_ite(1, -1, g.f, h.f), g.t},
        {"not", m.Bdd_not(f.f), ~f.t & all},
    };
    for (const Case& c : cases) {
      EXPECT_EQ(tt_of(m, c.result), c.expected) << c.name << " round " << round;
      EXPECT_TRUE(m.Bdd_is_correct(c.result)) << c.name;
    }
    EXPECT_EQ(m.Bdd_equiv(f.f, g.f), f.t == g.t ? 1 : 0);
    EXPECT_EQ(m.Bdd_equiv(f.f, f.f), 1);
    EXPECT_EQ(m.Bdd_imply(f.f, g.f), (f.t & ~g.t).none() ? 1 : 0);
    EXPECT_EQ(m.Bdd_imply(m.Bdd_and(f.f, g.f), f.f), 1);
    EXPECT_EQ(m.Bdds_excl(f.f, g.f), (f.t & g.t).none() ? 1 : 0);
    EXPECT_EQ(m.Bdds_exclude(f.f, m.Bdd_not(f.f)), 1);
  }
}

TEST_P(BddOps, CofactorsQuantifiersAndComposition) {
  Gen gen(m, GetParam() * 7 + 1);
  for (int round = 0; round < 6; ++round) {
    Pair f = gen.random(6), g = gen.random(4);
    if (f.f.node() != m.one) {
      long root = m.Bdd_if_index(f.f);
      EXPECT_EQ(tt_of(m, m.Bdd_then(f.f)), restrict_tt(f.t, root, true));
      EXPECT_EQ(tt_of(m, m.Bdd_else(f.f)), restrict_tt(f.t, root, false));
      EXPECT_EQ(m.Bdd_if(f.f), m.Bdd_var_by_index(root));
    }
    for (int i = 0; i < kVars; ++i) {
      bdd v = m.Bdd_var_by_index(i);
      TT f0 = restrict_tt(f.t, i, false), f1 = restrict_tt(f.t, i, true);
      EXPECT_EQ(m.Bdd_depends_on(f.f, v), depends_tt(f.t, i)) << i;
      EXPECT_EQ(m.Variable_awaited(f.f, i), depends_tt(f.t, i)) << i;
      EXPECT_EQ(m.Variable_true_awaited(f.f, i), depends_tt(f.t, i) && f1.any());
      EXPECT_EQ(m.Variable_false_awaited(f.f, i), depends_tt(f.t, i) && f0.any());
      EXPECT_EQ(tt_of(m, m.Bdd_cube_reduce(f.f, v)), f1);
      EXPECT_EQ(tt_of(m, m.Bdd_cube_reduce(f.f, m.Bdd_not(v))), f0);
      EXPECT_EQ(tt_of(m, m.Bdd_exist(f.f, v)), f0 | f1) << "exist " << i;
      EXPECT_EQ(tt_of(m, m.Bdd_exist(f.f, m.Bdd_not(v))), f0 | f1);
      EXPECT_EQ(tt_of(m, m.Bdd_forall(f.f, v)), f0 & f1) << "forall " << i;
      EXPECT_EQ(tt_of(m, m.Bdd_compose(f.f, v, g.f)), compose_tt(f.t, i, g.t)) << "compose " << i;
      // Shannon: f = v.f1 + !v.f0
      EXPECT_EQ(m.Bdd_ite(v, m.Bdd_cube_reduce(f.f, v), m.Bdd_cube_reduce(f.f, m.Bdd_not(v))), f.f);
    }
    std::set<long> support;
    for (int i = 0; i < kVars; ++i)
      if (depends_tt(f.t, i)) support.insert(i);
    EXPECT_EQ(m.set_of_id_depend_on(f.f), support);
    EXPECT_EQ(m.set_of_index_depend_on(f.f), support);
    std::vector<int> flags(kVars, 7);
    m.Present_variables(f.f, flags.data());
    for (int i = 0; i < kVars; ++i) EXPECT_EQ(flags[i], support.count(i) ? 1 : 0);
    bool common = false;
    for (int i = 0; i < kVars; ++i) common |= depends_tt(f.t, i) && depends_tt(g.t, i);
    EXPECT_EQ(m.exists_common_variables(f.f, g.f), common);
  }
}

TEST_P(BddOps, CubesLiteralsAndReductions) {
  Gen gen(m, GetParam() * 13 + 5);
  for (int round = 0; round < 6; ++round) {
    Pair f = gen.random(6);
    Cube c = random_cube(m, gen, 3);
    EXPECT_EQ(m.Bdd_is_cube(c.f), 1);
    EXPECT_EQ(tt_of(m, c.f), c.t);
    EXPECT_EQ(tt_of(m, m.Bdd_cube_reduce(f.f, c.f)), fix_tt(f.t, c.literals));
    if (c.f.node() != m.one) {
      std::vector<int> literals(kVars, 9);
      m.Bdd_to_literals(c.f, literals.data());
      EXPECT_EQ(literals, c.literals);
      EXPECT_EQ(m.Literals_to_bdd(c.literals.data()), c.f);
      EXPECT_EQ(tt_of(m, m.Bdd_reduce(f.f, c.f)), fix_tt(f.t, c.literals)) << "reduce by a cube";
    }
    // Evaluation fixes the variables with value 0 or 1.
    EXPECT_EQ(tt_of(m, m.Bdd_eval(f.f, c.literals.data())), fix_tt(f.t, c.literals));
    int expected = 2;
    TT fixed = fix_tt(f.t, c.literals);
    if (fixed.none()) expected = 0;
    if (fixed == tt_mask()) expected = 1;
    EXPECT_EQ(m.Bdd_eval_for_literal(f.f, c.literals.data()), expected);
    EXPECT_EQ(m.Bdd_eval_for_literal(m.Bdd_not(f.f), c.literals.data()), expected == 2 ? 2 : 1 - expected);

    // A satisfying cube implies the function.
    bdd s = m.Bdd_satisfy(f.f);
    if (f.t.any()) {
      EXPECT_EQ(m.Bdd_is_cube(s), 1);
      EXPECT_TRUE(tt_of(m, s).any());
      EXPECT_TRUE((tt_of(m, s) & ~f.t).none());
    } else {
      EXPECT_EQ(s, m.Bdd_one());
    }
    EXPECT_EQ(m.Bdd_is_cube(f.f), f.t.none() || f.t == tt_mask() || m.Bdd_is_cube(f.f));

    // The reduction by any assertion is the conjunction of the cofactors by
    // the disjoint cubes of the assertion.
    Pair a = gen.random(3);
    bdd expected_reduce = m.Bdd_one();
    if (!m.exists_common_variables(f.f, a.f)) {
      expected_reduce = f.f;
    } else if (m.Bdd_is_cube(a.f)) {
      expected_reduce = m.Bdd_cube_reduce(f.f, a.f);
    } else {
      bdd rest = a.f;
      TT covered;
      while (!m.Bdd_is_zero_tautologic(rest)) {
        bdd cube = m.Bdd_satisfy(rest);
        ASSERT_EQ(m.Bdd_is_cube(cube), 1);
        EXPECT_TRUE((tt_of(m, cube) & covered).none()) << "cubes are disjoint";
        covered |= tt_of(m, cube);
        expected_reduce = m.Bdd_and(expected_reduce, m.Bdd_cube_reduce(f.f, cube));
        rest = m.Bdd_and(rest, m.Bdd_not(cube));
      }
      EXPECT_EQ(covered, a.t);
    }
    EXPECT_EQ(m.Bdd_reduce(f.f, a.f), expected_reduce);
  }
}

TEST_P(BddOps, ReplaceKeepAndSimplify) {
  Gen gen(m, GetParam() * 31 + 3);
  std::vector<long> perm(kVars);
  for (int i = 0; i < kVars; ++i) perm[i] = i;
  for (int round = 0; round < 5; ++round) {
    Pair f = gen.random(6), c = gen.random(4);
    std::shuffle(perm.begin(), perm.end(), std::mt19937(gen.next()));
    TT replaced;
    for (unsigned a = 0; a < (1u << kVars); ++a) {
      unsigned b = 0;
      for (int i = 0; i < kVars; ++i)
        if ((a >> perm[i]) & 1) b |= 1u << i;
      replaced[a] = f.t[b];
    }
    EXPECT_EQ(tt_of(m, m.Bdd_replace_vars(f.f, perm.data())), replaced) << "replace";

    // Keeping the first n variables: a path that reaches index n gives one.
    for (long n : {0L, 1L, 4L, 10L}) {
      TT kept;
      for (unsigned a = 0; a < (1u << kVars); ++a) {
        bdd_node* x = f.f.node();
        int link = f.f.link_type();
        while (x != m.one && m.index_of_id[x->var_id] < n) {
          if ((a >> m.index_of_id[x->var_id]) & 1) {
            x = x->then_node;
          } else {
            link *= x->else_link_type;
            x = x->else_node;
          }
        }
        kept[a] = x != m.one ? true : link == 1;
      }
      EXPECT_EQ(tt_of(m, m.Bdd_keep_first_variables(f.f, n)), kept) << "keep " << n;
    }

    // Simplification against an exclusion: drop every variable that keeps
    // the function disjoint from c, earlier ids first.
    TT excl = f.t & ~c.t;
    bdd fe = m.Bdd_and(f.f, m.Bdd_not(c.f));
    TT r = excl;
    for (int i = 0; i < kVars; ++i) {
      if (!depends_tt(excl, i)) continue;
      TT candidate = restrict_tt(r, i, false) | restrict_tt(r, i, true);
      if ((candidate & c.t).none()) r = candidate;
    }
    EXPECT_EQ(tt_of(m, m.Bdd_simplify(fe, c.f)), r) << "simplify";
    EXPECT_EQ(m.Bdd_simplify2(fe, c.f), fe) << "ids equal indexes: nothing below the root";
    EXPECT_EQ(m.Bdd_simplify(m.Bdd_one(), c.f), m.Bdd_one());
  }
}

INSTANTIATE_TEST_SUITE_P(Seeds, BddOps, ::testing::Range(1u, 13u));

TEST(BddOps, MintermsAndFunctionIds) {
  bddpp_manager m;
  make_vars(m, 7);
  std::vector<bdd> vars;
  for (int i = 0; i < 7; ++i) vars.push_back(m.Bdd_var_by_index(6 - i));
  std::mt19937_64 rng(5);
  for (int count = 1; count <= 6; ++count) {
    for (int k = 0; k < (1 << count); ++k) {
      TT expected = tt_mask(7);
      for (int i = 0; i < count; ++i) expected &= ((k >> i) & 1) ? tt_var(6 - i, 7) : ~tt_var(6 - i, 7);
      EXPECT_EQ(tt_of(m, m.Minterm(k, count, vars.data()), 7), expected);
    }
    for (int trial = 0; trial < 4; ++trial) {
      uint64_t id = rng();
      if (count < 6) id &= (uint64_t(1) << (1 << count)) - 1;
      bdd f = m.Bdd_function_by_id(id, count, vars.data());
      EXPECT_EQ(m.Id_function_by_bdd(f, count, vars.data()), id) << count;
    }
  }
  EXPECT_EQ(m.Minterm(-1, 3, vars.data()), m.Bdd_zero());
  EXPECT_EQ(m.Bdd_function_by_id(0, 3, vars.data()), m.Bdd_zero());
  testing::internal::CaptureStderr();
  EXPECT_EQ(m.Id_function_by_bdd(m.Bdd_one(), 7, vars.data()), 0u);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "In bddpp_manager::Id_function_by_bdd(): number of variables (7) too big! avorted ...\n");
}

TEST(BddOps, Canonicity) {
  bddpp_manager m;
  make_vars(m);
  Gen gen(m, 99);
  // Build each function again, node by node, by Shannon expansion of its
  // table: same handle, and no node is created the second time.
  std::function<bdd(const TT&, int)> build = [&](const TT& t, int i) -> bdd {
    if (t.none()) return m.Bdd_zero();
    if (t == tt_mask()) return m.Bdd_one();
    TT t1 = restrict_tt(t, i, true), t0 = restrict_tt(t, i, false);
    if (t1 == t0) return build(t, i + 1);
    bdd then_part = build(t1, i + 1), else_part = build(t0, i + 1);
    int link = 1;
    bdd_node* n = m.Find_or_create_bdd_node(i, then_part.link_type(), else_part.link_type(), then_part.node(),
                                            else_part.node(), link);
    return bdd(&m, link, n);
  };
  for (int round = 0; round < 20; ++round) {
    Pair f = gen.random(6);
    long before = m.Bdd_total_size();
    EXPECT_EQ(build(f.t, 0), f.f);
    EXPECT_EQ(m.Bdd_total_size(), before) << "rebuilding created a node";
    // f and its negation share every node.
    EXPECT_EQ(build(~f.t & tt_mask(), 0).node(), f.f.node());
  }
}

TEST(BddOps, EdgeCases) {
  bddpp_manager m;
  bdd x = m.New_var_last("x"), y = m.New_var_last("y");
  bdd one = m.Bdd_one(), zero = m.Bdd_zero();
  bdd f = m.Bdd_xor(x, y);
  long size = m.Bdd_total_size();
  EXPECT_EQ(m.Bdd_and(f, m.Bdd_not(f)), zero);
  EXPECT_EQ(m.Bdd_or(f, m.Bdd_not(f)), one);
  EXPECT_EQ(m.Bdd_and(zero, f), zero);
  EXPECT_EQ(m.Bdd_total_size(), size);
  EXPECT_EQ(m.Bdd_xor(f, f), zero);
  EXPECT_EQ(m.Bdd_xnor(f, f), one);
  EXPECT_EQ(m.Bdd_exist(m.Bdd_and(x, y), x), y);
  EXPECT_EQ(m.Bdd_forall(m.Bdd_and(x, y), x), zero);
  EXPECT_EQ(m.Bdd_exist(f, m.Bdd_and(x, y)), f) << "not a literal: unchanged";
  EXPECT_EQ(m.Bdd_reduce(f, zero), f);
  EXPECT_EQ(m.Bdd_reduce(m.Bdd_or(x, y), x), one);
  EXPECT_EQ(m.Bdd_reduce(x, m.Bdd_or(x, y)), zero);
  EXPECT_EQ(m.Bdd_satisfy(zero), one);
  EXPECT_EQ(m.Bdd_is_cube(zero), 1);
  EXPECT_EQ(m.Bdd_is_cube(one), 1);
  EXPECT_EQ(m.Bdd_is_cube(f), 0);
  EXPECT_EQ(m.Bdd_is_cube(m.Bdd_and(x, m.Bdd_not(y))), 1);
  std::vector<int> literals(2, 5);
  m.Bdd_to_literals(zero, literals.data());
  EXPECT_EQ(literals, (std::vector<int>{2, 2}));
  EXPECT_EQ(m.Bdd_keep_first_variables(f, 0), one);
  EXPECT_EQ(m.Bdd_keep_first_variables(zero, 0), zero);
  EXPECT_EQ(m.Bdd_keep_first_variables(f, 2), f);

  testing::internal::CaptureStderr();
  EXPECT_EQ(m.Bdd_compose(f, m.Bdd_not(x), y), zero);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "Warning in bddpp_manager::Bdd_compose(): second parametre is not a variable!\n");
}

TEST(BddOps, Associations) {
  bddpp_manager m;
  make_vars(m, 7);
  auto v = [&](int i) { return m.Bdd_var_by_index(i); };
  long out = 99;
  // Each variable starts associated with itself.
  bdd f = m.Bdd_or(v(0), v(3));
  EXPECT_EQ(m.Bdd_follow_assoc(f, &out), f);
  EXPECT_EQ(out, 3);
  EXPECT_EQ(m.Bdd_follow_assoc(v(2), &out), v(2));
  EXPECT_EQ(out, 2);
  EXPECT_EQ(m.Bdd_follow_assoc(m.Bdd_one(), &out), m.Bdd_one());
  EXPECT_EQ(out, -1);

  m.Bdd_assoc_bdd_to_var(m.Bdd_xor(v(0), v(6)), v(5));
  m.Bdd_assoc_bdd_to_var(v(1), v(0));
  EXPECT_EQ(m.assoc_table[0], v(1));
  EXPECT_EQ(m.assoc_table[5], m.Bdd_xor(v(1), v(6))) << "the new association is composed into the others";
  EXPECT_EQ(m.Bdd_follow_assoc(m.Bdd_and(v(0), v(3)), &out), m.Bdd_and(v(1), v(3)));
  EXPECT_EQ(out, 3);
  EXPECT_EQ(m.Bdd_follow_assoc(v(0), &out), v(1));
  EXPECT_EQ(out, -1);
  m.Bdd_assoc_bdd_to_var(m.Bdd_one(), m.Bdd_one());  // nothing to do
}

TEST(BddOpsDeath, Stops) {
  bddpp_manager m;
  bdd x = m.New_var_last("x");
  EXPECT_EXIT(m.Bdd_then(m.Bdd_one()), ::testing::ExitedWithCode(1),
              "ERROR in Bdd_then\\(\\): calling with a tautologic function!");
  EXPECT_EXIT(m.Bdd_else(m.Bdd_zero()), ::testing::ExitedWithCode(1),
              "ERROR in Bdd_else\\(\\): calling with a tautologic function!");
  std::vector<int> literals(1);
  EXPECT_EXIT(m.Bdd_to_literals(m.Bdd_one(), literals.data()), ::testing::ExitedWithCode(1),
              "ERROR in  bddpp_manager::Bdd_node_to_literals\\(\\) :\nconstant 1 is not a literal ...");
  EXPECT_EXIT(m.Bdd_and(x, bdd()), ::testing::ExitedWithCode(1),
              "ERROR: call bddpp_manager::Bdd_and\\(\\) with null reference");
  EXPECT_EXIT(m.Bdd_or(bdd(), x), ::testing::ExitedWithCode(1),
              "ERROR: call bddpp_manager::Bdd_or\\(\\) with null reference");
  EXPECT_EXIT(m.Bdd_ite(1, 5, x, x), ::testing::ExitedWithCode(1),
              "ERROR: abnormal index in bddpp_manager::Bdd_ite\\(\\)\nERROR: call bddpp_manager::Bdd_and");
  EXPECT_EXIT(m.Bdd_assoc_bdd_to_var(x, m.Bdd_one()), ::testing::ExitedWithCode(1),
              "error in bddpp_manager::Bdd_assoc_bdd_to_var\\(\\):\n     second parameter is not a var !\n"
              "replace from: 1 by expression: x");
}

}  // namespace

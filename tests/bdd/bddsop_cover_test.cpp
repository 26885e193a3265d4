// Covers, implicants and truth tables, checked against explicit truth tables
// of seeded random functions.
#include <gtest/gtest.h>

#include <list>
#include <random>
#include <string>
#include <vector>

#include "bdd/bdd_sop.h"
#include "bdd/bddpp.h"

namespace {

class SopCover : public ::testing::Test {
 protected:
  void SetUp() override {
    for (const char* name : {"a", "b", "c", "d", "e"}) v.push_back(m.New_var_last(name));
  }

  // Value of f where variable i (index = id here) has bit i of `point`.
  bool Eval(const bdd& f, unsigned point) {
    int link = f.link_type();
    const bdd_node* n = f.node();
    while (n != m.Bdd_node_one()) {
      if ((point >> n->var_id) & 1) {
        n = n->then_node;
      } else {
        link *= n->else_link_type;
        n = n->else_node;
      }
    }
    return link > 0;
  }

  // The function over the first `count` variables whose value at point p is bit p of `table`.
  bdd From_table(uint64_t table, int count) {
    bdd f = m.Bdd_zero();
    for (unsigned p = 0; p < (1u << count); ++p) {
      if (!((table >> p) & 1)) continue;
      bdd cube = m.Bdd_one();
      for (int i = 0; i < count; ++i) cube = m.Bdd_and(cube, (p >> i) & 1 ? v[i] : m.Bdd_not(v[i]));
      f = m.Bdd_or(f, cube);
    }
    return f;
  }

  bdd Or_all(const std::list<bdd>& list) {
    bdd r = m.Bdd_zero();
    for (const bdd& c : list) r = m.Bdd_or(r, c);
    return r;
  }

  // Brute-force cube check: c is a conjunction of literals (or a constant).
  bool Is_cube(const bdd& c) {
    if (m.Bdd_is_tautology(c)) return true;
    std::vector<int> lits(m.Nb_bdd_vars);
    m.Bdd_to_literals(c, lits.data());
    return m.Literals_to_bdd(lits.data()) == c;
  }

  // Every prime implicant of f over the first `count` variables, by enumeration of all 3^count cubes.
  std::vector<bdd> Brute_primes(const bdd& f, int count) {
    std::vector<bdd> implicants;
    int total = 1;
    for (int i = 0; i < count; ++i) total *= 3;
    for (int code = 0; code < total; ++code) {
      bdd cube = m.Bdd_one();
      for (int i = 0, c = code; i < count; ++i, c /= 3) {
        if (c % 3 == 1) cube = m.Bdd_and(cube, v[i]);
        if (c % 3 == 2) cube = m.Bdd_and(cube, m.Bdd_not(v[i]));
      }
      if (!m.Bdd_is_zero_tautologic(cube) && m.Bdd_imply(cube, f)) implicants.push_back(cube);
    }
    std::vector<bdd> primes;
    for (const bdd& p : implicants) {
      bool prime = true;
      for (const bdd& q : implicants)
        if (q != p && m.Bdd_imply(p, q)) prime = false;
      if (prime) primes.push_back(p);
    }
    return primes;
  }

  bddpp_manager m;
  std::vector<bdd> v;
};

TEST_F(SopCover, EveryLevelCoversRandomFunctionsExactly) {
  std::mt19937_64 rng(20261123);
  for (int trial = 0; trial < 60; ++trial) {
    int count = 3 + trial % 3;
    uint64_t mask = count == 6 ? ~0ull : (1ull << (1u << count)) - 1;
    bdd f = From_table(rng() & mask, count);
    size_t size1 = 0;
    for (int level = 0; level <= 3; ++level) {
      std::list<bdd> cubes;
      m.Bdd_sop(f, cubes, level);
      SCOPED_TRACE("trial " + std::to_string(trial) + " level " + std::to_string(level));
      if (m.Bdd_is_zero_tautologic(f)) {
        EXPECT_EQ(cubes.size(), level == 1 ? 1u : 0u);
        continue;
      }
      EXPECT_EQ(Or_all(cubes), f);
      for (const bdd& c : cubes) {
        EXPECT_TRUE(Is_cube(c));
        EXPECT_TRUE(m.Bdd_imply(c, f));
      }
      std::vector<bdd> all(cubes.begin(), cubes.end());
      if (level == 0) {
        for (size_t i = 0; i < all.size(); ++i)
          for (size_t j = i + 1; j < all.size(); ++j) EXPECT_TRUE(m.Bdds_excl(all[i], all[j]));
      }
      if (level >= 1 && !m.Bdd_is_tautology(f)) {
        // irredundant: no cube is covered by the others
        for (size_t i = 0; i < all.size(); ++i) {
          bdd rest = m.Bdd_zero();
          for (size_t j = 0; j < all.size(); ++j)
            if (j != i) rest = m.Bdd_or(rest, all[j]);
          EXPECT_NE(rest, f);
        }
      }
      if (level == 1) size1 = all.size();
      if (level == 2) {
        EXPECT_LE(all.size(), size1);
      }
    }
  }
}

TEST_F(SopCover, SmallCoversAreTheDocumentedOnes) {
  bdd a = v[0], b = v[1], c = v[2];
  bdd zero = m.Bdd_zero(), one = m.Bdd_one();
  bdd ab = m.Bdd_and(a, b), nac = m.Bdd_and(m.Bdd_not(a), c);
  struct Case {
    const char* what;
    bdd f;
    int level;
    std::vector<bdd> cubes;
  };
  const Case cases[] = {
      {"x at level 0", a, 0, {a}},
      {"a or b at level 0", m.Bdd_or(a, b), 0, {a, m.Bdd_and(m.Bdd_not(a), b)}},
      {"a or b at level 1", m.Bdd_or(a, b), 1, {a, b}},
      {"zero at level 0", zero, 0, {}},
      {"zero at level 1", zero, 1, {zero}},
      {"zero at level 2", zero, 2, {}},
      {"zero at level 3", zero, 3, {}},
      {"one at level 0", one, 0, {one}},
      {"one at level 1", one, 1, {one}},
      {"one at level 2", one, 2, {one}},
      {"one at level 3", one, 3, {one}},
      // a.b + !a.c: the consensus b.c is a prime that is not essential
      {"consensus at level 2", m.Bdd_or(ab, nac), 2, {ab, nac}},
      {"consensus at level 3", m.Bdd_or(ab, nac), 3, {ab, nac}},
      {"unknown level is level 0", m.Bdd_or(a, b), 7, {a, m.Bdd_and(m.Bdd_not(a), b)}},
  };
  for (const Case& c : cases) {
    std::list<bdd> cubes;
    m.Bdd_sop(c.f, cubes, c.level);
    EXPECT_EQ(std::vector<bdd>(cubes.begin(), cubes.end()), c.cubes) << c.what;
  }
}

TEST_F(SopCover, LevelTwoOnACycleOfPrimesIsValidAndNoLongerThanLevelOne) {
  // a.!b + b.!c + c.!a has two covers of three primes and no essential prime.
  bdd a = v[0], b = v[1], c = v[2];
  bdd f = m.Bdd_or(m.Bdd_or(m.Bdd_and(a, m.Bdd_not(b)), m.Bdd_and(b, m.Bdd_not(c))),
                   m.Bdd_and(c, m.Bdd_not(a)));
  std::list<bdd> essential, others;
  m.Bdd_essential_implicants(f, essential, others);
  EXPECT_TRUE(essential.empty());
  EXPECT_EQ(others.size(), 6u);
  std::list<bdd> level1, level2;
  m.Bdd_sop(f, level1, 1);
  m.Bdd_sop(f, level2, 2);
  EXPECT_EQ(Or_all(level2), f);
  EXPECT_LE(level2.size(), level1.size());
}

TEST_F(SopCover, LevelThreeGivesTheCatalogueCover) {
  bdd a = v[0], b = v[1], c = v[2], d = v[3];
  auto n = [&](const bdd& x) { return m.Bdd_not(x); };
  auto And = [&](std::initializer_list<bdd> xs) {
    bdd r = m.Bdd_one();
    for (const bdd& x : xs) r = m.Bdd_and(r, x);
    return r;
  };
  struct Row {
    int number;
    std::vector<bdd> cover;
  };
  const Row rows[] = {
      // !a.d + b.!d + a.c + a.!b
      {12, {And({n(a), d}), And({b, n(d)}), And({a, c}), And({a, n(b)})}},
      // b + a.!d + !c.d + !a.c
      {17, {b, And({a, n(d)}), And({n(c), d}), And({n(a), c})}},
      // !a.!b.d + !a.b.!d + b.!c + a.c.d + a.!b.!d
      {34, {And({n(a), n(b), d}), And({n(a), b, n(d)}), And({b, n(c)}), And({a, c, d}), And({a, n(b), n(d)})}},
  };
  for (const Row& row : rows) {
    bdd f = m.Bdd_zero();
    for (const bdd& cube : row.cover) f = m.Bdd_or(f, cube);
    std::list<bdd> cubes;
    m.Bdd_sop(f, cubes, 3);
    EXPECT_EQ(std::vector<bdd>(cubes.begin(), cubes.end()), row.cover) << "row " << row.number;
  }
  // Outside the catalogue level 3 is level 2.
  bdd f = m.Bdd_or(m.Bdd_and(a, v[4]), m.Bdd_and(b, c));
  std::list<bdd> level2, level3;
  m.Bdd_sop(f, level2, 2);
  m.Bdd_sop(f, level3, 3);
  EXPECT_EQ(level3, level2);
}

TEST_F(SopCover, PrimeImplicantsAreExactlyThePrimes) {
  std::mt19937_64 rng(7);
  for (int trial = 0; trial < 40; ++trial) {
    int count = 2 + trial % 3;
    uint64_t mask = (1ull << (1u << count)) - 1;
    bdd f = From_table(rng() & mask, count);
    if (m.Bdd_is_tautology(f)) continue;
    std::list<bdd> primes;
    m.Bdd_prime_implicants(f, primes);
    std::vector<bdd> got(primes.begin(), primes.end());
    std::vector<bdd> want = Brute_primes(f, count);
    std::sort(got.begin(), got.end());
    std::sort(want.begin(), want.end());
    EXPECT_EQ(got, want) << "trial " << trial;

    std::list<bdd> essential, others;
    m.Bdd_essential_implicants(f, essential, others);
    EXPECT_EQ(essential.size() + others.size(), primes.size());
    for (const bdd& p : essential) {
      bdd rest = m.Bdd_zero();
      for (const bdd& q : primes)
        if (q != p) rest = m.Bdd_or(rest, q);
      EXPECT_NE(rest, f);
    }
  }
}

TEST_F(SopCover, PrimeImplicantsOfSmallFunctions) {
  bdd a = v[0], b = v[1];
  std::list<bdd> primes;
  m.Bdd_prime_implicants(m.Bdd_xor(a, b), primes);
  EXPECT_EQ(std::vector<bdd>(primes.begin(), primes.end()),
            (std::vector<bdd>{m.Bdd_and(a, m.Bdd_not(b)), m.Bdd_and(m.Bdd_not(a), b)}));
  m.Bdd_prime_implicants(m.Bdd_or(m.Bdd_and(a, b), m.Bdd_and(m.Bdd_not(a), v[2])), primes);
  EXPECT_EQ(std::vector<bdd>(primes.begin(), primes.end()),
            (std::vector<bdd>{m.Bdd_and(a, b), m.Bdd_and(m.Bdd_not(a), v[2]), m.Bdd_and(b, v[2])}));
  std::list<bdd> essential, others;
  m.Bdd_essential_implicants(m.Bdd_or(m.Bdd_and(a, b), m.Bdd_and(m.Bdd_not(a), v[2])), essential, others);
  EXPECT_EQ(others, std::list<bdd>{m.Bdd_and(b, v[2])});
  EXPECT_EQ(essential.size(), 2u);
  m.Bdd_prime_implicants(m.Bdd_zero(), primes);
  EXPECT_EQ(primes, std::list<bdd>{m.Bdd_zero()});
  m.Bdd_prime_implicants(m.Bdd_one(), primes);
  EXPECT_EQ(primes, std::list<bdd>{m.Bdd_one()});

  Tdd tdd(&m, m.Bdd_or(a, b));
  tdd.Bdd_prime_implicants(primes);
  EXPECT_EQ(std::vector<bdd>(primes.begin(), primes.end()), (std::vector<bdd>{a, b}));
}

TEST_F(SopCover, OneImplicant) {
  bdd a = v[0], b = v[1], c = v[2];
  EXPECT_EQ(m.Bdd_one_implicant(m.Bdd_and(a, b)), m.Bdd_and(a, b));
  EXPECT_EQ(m.Bdd_one_implicant(m.Bdd_zero()), m.Bdd_zero());
  EXPECT_EQ(m.Bdd_one_implicant(m.Bdd_one()), m.Bdd_one());
  EXPECT_EQ(m.Bdd_one_implicant(m.Bdd_not(b)), m.Bdd_not(b));
  // T = b, E = c: equal support sizes take the then side.
  EXPECT_EQ(m.Bdd_one_implicant(m.Bdd_ite(a, b, c)), m.Bdd_and(a, b));
  // T = b.c, E = c: the smaller else side.
  EXPECT_EQ(m.Bdd_one_implicant(m.Bdd_ite(a, m.Bdd_and(b, c), c)), m.Bdd_and(m.Bdd_not(a), c));
  EXPECT_EQ(m.Bdd_one_implicant(m.Bdd_or(a, b)), a);
  EXPECT_EQ(m.Bdd_one_implicant(m.Bdd_or(m.Bdd_not(a), b)), m.Bdd_not(a));

  std::mt19937_64 rng(11);
  for (int trial = 0; trial < 50; ++trial) {
    bdd f = From_table(rng() | 1, 5);
    bdd i = m.Bdd_one_implicant(f);
    EXPECT_TRUE(Is_cube(i));
    EXPECT_FALSE(m.Bdd_is_zero_tautologic(i));
    EXPECT_TRUE(m.Bdd_imply(i, f));
  }
}

TEST_F(SopCover, Simplify3StaysDisjointFromTheExclusion) {
  std::mt19937_64 rng(5);
  for (int trial = 0; trial < 40; ++trial) {
    bdd f = From_table(rng(), 4);
    bdd c = m.Bdd_and(From_table(rng(), 4), m.Bdd_not(f));
    bdd s = m.Bdd_simplify3(f, c);
    EXPECT_TRUE(m.Bdd_imply(f, s));
    EXPECT_TRUE(m.Bdds_excl(s, c));
  }
  // Nothing to avoid: each prime widens to one.
  EXPECT_EQ(m.Bdd_simplify3(m.Bdd_and(v[0], v[1]), m.Bdd_zero()), m.Bdd_one());
  // b is needed to stay away from a.!b.
  EXPECT_EQ(m.Bdd_simplify3(m.Bdd_and(v[0], v[1]), m.Bdd_and(v[0], m.Bdd_not(v[1]))), v[1]);
}

TEST_F(SopCover, TruthTables) {
  std::mt19937_64 rng(3);
  for (int trial = 0; trial < 20; ++trial) {
    uint64_t table = rng() & 0xffff;
    bdd f = From_table(table, 4);
    std::vector<std::string> text(16);
    std::vector<bdd> results(16);
    m.Truth_table(f, 4, v.data(), text.data());
    m.Bdd_truth_table(f, 4, v.data(), results.data());
    for (unsigned p = 0; p < 16; ++p) {
      bool value = (table >> p) & 1;
      EXPECT_EQ(text[p], value ? "1" : "0");
      EXPECT_EQ(results[p], value ? m.Bdd_one() : m.Bdd_zero());
      EXPECT_EQ(Eval(f, p), value);
    }
  }
  // a.e over (a, b): undecided where a holds, since e is outside the table.
  bdd f = m.Bdd_and(v[0], v[4]);
  std::vector<std::string> text(4);
  std::vector<bdd> results(4);
  m.Truth_table(f, 2, v.data(), text.data());
  m.Bdd_truth_table(f, 2, v.data(), results.data());
  EXPECT_EQ(text, (std::vector<std::string>{"0", "?", "0", "?"}));
  EXPECT_EQ(results[1], v[4]);
  EXPECT_EQ(results[2], m.Bdd_zero());
}

TEST_F(SopCover, ObsoleteArrayFormWarnsAndCounts) {
  bdd cubes[4];
  testing::internal::CaptureStderr();
  int count = m.Bdd_sop(m.Bdd_or(v[0], v[1]), cubes, 1);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "warning: calling obsolete version of bddpp_manager::Bdd_sop() ...\n");
  ASSERT_EQ(count, 2);
  EXPECT_EQ(cubes[0], v[0]);
  EXPECT_EQ(cubes[1], v[1]);
  EXPECT_EQ(m.Max_number_of_terms(), 1000000);
}

TEST_F(SopCover, ForeignHandlesStop) {
  bddpp_manager other;
  bdd x = other.New_var_last("x");
  std::list<bdd> cubes;
  EXPECT_EXIT(m.Bdd_sop(x, cubes, 0), ::testing::ExitedWithCode(1),
              "ERROR in bddpp_manager::Bdd_sop\\(\\):\n   bdd : .*, is not allocated or associated with a bad "
              "BDD manager...");
  EXPECT_EXIT(m.Bdd_one_implicant(x), ::testing::ExitedWithCode(1),
              "ERROR in bddpp_manager::Bdd_one_implicant\\(\\):\n   bdd : .*, is not allocated");
  EXPECT_EXIT(m.Bdd_sop(bdd(), cubes, 1), ::testing::ExitedWithCode(1), "ERROR in bddpp_manager::Bdd_sop");
}

TEST_F(SopCover, TddWithoutManagerSaysSo) {
  testing::internal::CaptureStderr();
  Tdd tdd(nullptr, v[0]);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "in Tdd::Tdd() : error: bdd manager not yet created !\n");
  std::list<bdd> primes{v[0]};
  tdd.Bdd_prime_implicants(primes);
  EXPECT_TRUE(primes.empty());
}

}  // namespace

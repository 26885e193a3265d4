// The benchmark workloads at tiny sizes on our package, checked against
// known answers and against plain truth tables running the same operations.
#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <vector>

#include "../../bench/bdd_backend_ours.h"
#include "../../bench/bdd_workloads.h"

namespace {

using namespace bddbench;

// Functions as explicit truth tables: bit m is the value at assignment m,
// where variable i takes bit i of m.
struct TableBackend {
  using F = std::vector<uint64_t>;
  int n = 0;
  size_t words = 0;

  void start(int nvars) {
    n = nvars;
    words = nvars >= 6 ? (size_t{1} << (nvars - 6)) : 1;
  }
  void finish() {}
  bool value(const F& f, uint64_t m) const { return (f[m >> 6] >> (m & 63)) & 1; }
  void set(F& f, uint64_t m, bool v) const {
    if (v) f[m >> 6] |= uint64_t{1} << (m & 63);
  }
  uint64_t size() const { return uint64_t{1} << n; }
  F var(int i) const {
    F f(words, 0);
    for (uint64_t m = 0; m < size(); ++m) set(f, m, (m >> i) & 1);
    return f;
  }
  F one() const {
    F f(words, 0);
    for (uint64_t m = 0; m < size(); ++m) set(f, m, true);
    return f;
  }
  F zero() const { return F(words, 0); }
  F land(const F& f, const F& g) const {
    F r(words);
    for (size_t w = 0; w < words; ++w) r[w] = f[w] & g[w];
    return r;
  }
  F lor(const F& f, const F& g) const {
    F r(words);
    for (size_t w = 0; w < words; ++w) r[w] = f[w] | g[w];
    return r;
  }
  F lxor(const F& f, const F& g) const {
    F r(words);
    for (size_t w = 0; w < words; ++w) r[w] = f[w] ^ g[w];
    return r;
  }
  F lnot(const F& f) const { return lxor(f, one()); }
  F exist(const F& f, int i) const {
    F r(words, 0);
    for (uint64_t m = 0; m < size(); ++m) set(r, m, value(f, m) || value(f, m ^ (uint64_t{1} << i)));
    return r;
  }
  F compose(const F& f, int i, const F& g) const {
    F r(words, 0);
    for (uint64_t m = 0; m < size(); ++m) {
      uint64_t at = value(g, m) ? (m | (uint64_t{1} << i)) : (m & ~(uint64_t{1} << i));
      set(r, m, value(f, at));
    }
    return r;
  }
  bool same(const F& f, const F& g) const { return f == g; }
  double satcount(const F& f) const {
    double count = 0;
    for (uint64_t w : f) count += std::popcount(w);
    return count;
  }
};

template <class B>
double Measure(const Workload& w) {
  B b;
  b.start(w.nvars());
  double value = run(b, w);
  b.finish();
  return value;
}

TEST(BddsopBenchSmoke, QueensCountsAreKnown) {
  const struct {
    int n;
    double solutions;
  } cases[] = {{1, 1}, {2, 0}, {3, 0}, {4, 2}, {5, 10}, {6, 4}};
  for (const auto& c : cases) EXPECT_EQ(Measure<OursBackend>({Kind::Queens, c.n}), c.solutions) << c.n;
}

TEST(BddsopBenchSmoke, AdderFormsAreEquivalent) {
  for (int width : {1, 2, 5, 8}) EXPECT_EQ(Measure<OursBackend>({Kind::Adders, width}), 1) << width;
}

TEST(BddsopBenchSmoke, WorkloadsAgreeWithTruthTables) {
  const Workload cases[] = {
      {Kind::Adders, 3},          {Kind::Cnf3, 8, 1},         {Kind::Cnf3, 10, 2},
      {Kind::Cnf3, 12, 3},        {Kind::ComposeExist, 6, 4, 10}, {Kind::ComposeExist, 9, 5, 16},
      {Kind::ComposeExist, 12, 6, 24},
  };
  for (const Workload& w : cases) EXPECT_EQ(Measure<OursBackend>(w), Measure<TableBackend>(w)) << w.name();
}

// The same random chain from the same seed is the same function.
TEST(BddsopBenchSmoke, SeededWorkloadsRepeat) {
  Workload w{Kind::ComposeExist, 10, 9, 20};
  EXPECT_EQ(Measure<OursBackend>(w), Measure<OursBackend>(w));
}

}  // namespace

// The benchmark workloads, written once over a BDD backend so that every
// package runs exactly the same operations with the same variable order.
//
// A backend B provides:
//   using F = <a handle that is copied by value>;
//   void start(int nvars);          variables 0 .. nvars-1, index = number
//   void finish();
//   F var(int i), one(), zero();
//   F land(const F&, const F&), lor(...), lxor(...), lnot(const F&);
//   F exist(const F& f, int i);     quantify variable i out of f
//   F compose(const F& f, int i, const F& g);   f with variable i replaced by g
//   bool same(const F&, const F&);
//   double satcount(const F&);      models over the nvars variables
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace bddbench {

// Seeded generator, identical on every platform (splitmix64).
class Rng {
public:
  explicit Rng(uint64_t seed) : state(seed) {}
  uint64_t next() {
    uint64_t z = (state += 0x9e3779b97f4a7c15ULL);
    z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9ULL;
    z = (z ^ (z >> 27)) * 0x94d049bb133111ebULL;
    return z ^ (z >> 31);
  }
  int below(int n) { return static_cast<int>(next() % static_cast<uint64_t>(n)); }

private:
  uint64_t state;
};

enum class Kind { Queens, Adders, Cnf3, ComposeExist };

struct Workload {
  Kind kind;
  int size;           // queens: board side; adders: width; cnf: variables; chain: variables
  uint64_t seed = 1;  // cnf and chain
  int steps = 0;      // chain: number of compositions

  int nvars() const {
    switch (kind) {
      case Kind::Queens: return size * size;
      case Kind::Adders: return 2 * size;
      case Kind::Cnf3: return size;
      case Kind::ComposeExist: return size;
    }
    return 0;
  }
  std::string name() const {
    switch (kind) {
      case Kind::Queens: return "queens_" + std::to_string(size);
      case Kind::Adders: return "adders_" + std::to_string(size);
      case Kind::Cnf3: return "cnf3_" + std::to_string(size);
      case Kind::ComposeExist:
        return "compose_exist_" + std::to_string(size) + "x" + std::to_string(steps);
    }
    return "?";
  }
};

// Solutions of the n-queens problem; variable i*n+j is the square (i, j).
template <class B>
double queens(B& b, int n) {
  using F = typename B::F;
  auto x = [&](int i, int j) { return b.var(i * n + j); };
  F all = b.one();
  for (int i = 0; i < n; ++i) {
    F row = b.zero();
    for (int j = 0; j < n; ++j) row = b.lor(row, x(i, j));
    all = b.land(all, row);
  }
  for (int i = 0; i < n; ++i) {
    for (int j = 0; j < n; ++j) {
      F free = b.one();
      for (int k = 0; k < n; ++k) {
        if (k != j) free = b.land(free, b.lnot(x(i, k)));
        if (k != i) free = b.land(free, b.lnot(x(k, j)));
        int d = k - i;
        if (d != 0 && j + d >= 0 && j + d < n) free = b.land(free, b.lnot(x(k, j + d)));
        if (d != 0 && j - d >= 0 && j - d < n) free = b.land(free, b.lnot(x(k, j - d)));
      }
      all = b.land(all, b.lor(b.lnot(x(i, j)), free));
    }
  }
  return b.satcount(all);
}

// 1 when a ripple-carry adder and a carry-lookahead adder of the given width
// compute the same sum and carry; a is variable 2i, b is variable 2i+1.
template <class B>
double adders(B& b, int width) {
  using F = typename B::F;
  std::vector<F> ripple, lookahead;
  F carry = b.zero();
  for (int i = 0; i < width; ++i) {
    F a = b.var(2 * i), c = b.var(2 * i + 1);
    F half = b.lxor(a, c);
    ripple.push_back(b.lxor(half, carry));
    carry = b.lor(b.land(a, c), b.land(carry, half));
  }
  ripple.push_back(carry);

  std::vector<F> gen, prop;
  for (int i = 0; i < width; ++i) {
    gen.push_back(b.land(b.var(2 * i), b.var(2 * i + 1)));
    prop.push_back(b.lor(b.var(2 * i), b.var(2 * i + 1)));
  }
  for (int i = 0; i <= width; ++i) {
    // carry into bit i: some j < i generates and every k in (j, i) propagates
    F cin = b.zero();
    for (int j = 0; j < i; ++j) {
      F term = gen[j];
      for (int k = j + 1; k < i; ++k) term = b.land(term, prop[k]);
      cin = b.lor(cin, term);
    }
    if (i < width)
      lookahead.push_back(b.lxor(b.lxor(b.var(2 * i), b.var(2 * i + 1)), cin));
    else
      lookahead.push_back(cin);
  }
  for (int i = 0; i <= width; ++i)
    if (!b.same(ripple[i], lookahead[i])) return 0;
  return 1;
}

// A random clause of three distinct variables with random signs.
template <class B>
typename B::F random_clause(B& b, Rng& rng, int nvars) {
  int v[3];
  for (int k = 0; k < 3; ++k) {
    bool again;
    do {
      v[k] = rng.below(nvars);
      again = false;
      for (int l = 0; l < k; ++l) again = again || v[l] == v[k];
    } while (again);
  }
  typename B::F clause = b.zero();
  for (int k = 0; k < 3; ++k) {
    typename B::F lit = b.var(v[k]);
    if (rng.next() & 1) lit = b.lnot(lit);
    clause = b.lor(clause, lit);
  }
  return clause;
}

// Models of a seeded random 3-CNF with round(ratio * nvars) clauses.
template <class B>
typename B::F random_cnf(B& b, int nvars, double ratio, uint64_t seed) {
  Rng rng(seed);
  int clauses = static_cast<int>(ratio * nvars + 0.5);
  typename B::F f = b.one();
  for (int c = 0; c < clauses; ++c) f = b.land(f, random_clause(b, rng, nvars));
  return f;
}

template <class B>
double cnf3(B& b, int nvars, uint64_t seed) {
  return b.satcount(random_cnf(b, nvars, 4.26, seed));
}

// A chain of compositions by small random functions, with a quantification
// every fourth step, from an under-constrained random 3-CNF.
template <class B>
double compose_exist(B& b, int nvars, int steps, uint64_t seed) {
  using F = typename B::F;
  F f = random_cnf(b, nvars, 2.0, seed);
  Rng rng(seed * 7919 + 17);
  for (int s = 0; s < steps; ++s) {
    int v = rng.below(nvars);
    F g = b.lxor(b.var(rng.below(nvars)), b.land(b.var(rng.below(nvars)), b.var(rng.below(nvars))));
    f = b.compose(f, v, g);
    if (s % 4 == 3) f = b.exist(f, rng.below(nvars));
  }
  return b.satcount(f);
}

template <class B>
double run(B& b, const Workload& w) {
  switch (w.kind) {
    case Kind::Queens: return queens(b, w.size);
    case Kind::Adders: return adders(b, w.size);
    case Kind::Cnf3: return cnf3(b, w.size, w.seed);
    case Kind::ComposeExist: return compose_exist(b, w.size, w.steps, w.seed);
  }
  return -1;
}

}  // namespace bddbench

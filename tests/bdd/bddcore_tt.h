// Truth tables of functions over the first variables of a manager, used as
// the independent reference of the BDD tests.
#pragma once

#include <bitset>
#include <random>
#include <vector>

#include "bdd/bddpp.h"

namespace bddtest {

constexpr int kVars = 10;
using TT = std::bitset<1 << kVars>;  // bit m: value at the assignment m (index i is bit i of m)

// Value of f at assignment m, by walking the nodes: then edges carry no sign.
inline bool eval_at(bddpp_manager& m, const bdd& f, unsigned a) {
  bdd_node* n = f.node();
  int link = f.link_type();
  while (n != m.one) {
    long index = m.index_of_id[n->var_id];
    if ((a >> index) & 1) {
      n = n->then_node;
    } else {
      link *= n->else_link_type;
      n = n->else_node;
    }
  }
  return link == 1;
}

inline TT tt_of(bddpp_manager& m, const bdd& f, int vars = kVars) {
  TT t;
  for (unsigned a = 0; a < (1u << vars); ++a) t[a] = eval_at(m, f, a);
  return t;
}

inline TT tt_var(int index, int vars = kVars) {
  TT t;
  for (unsigned a = 0; a < (1u << vars); ++a) t[a] = (a >> index) & 1;
  return t;
}

inline TT tt_mask(int vars = kVars) {
  TT t;
  for (unsigned a = 0; a < (1u << vars); ++a) t[a] = 1;
  return t;
}

// A random function built the same way on both sides: a BDD and its table.
struct Pair {
  bdd f;
  TT t;
};

class Gen {
 public:
  Gen(bddpp_manager& m, unsigned seed, int vars = kVars) : m_(m), rng_(seed), vars_(vars) {}

  Pair leaf() {
    int i = int(rng_() % vars_);
    Pair p{m_.Bdd_var_by_index(i), tt_var(i, vars_)};
    if (rng_() & 1) p = Pair{m_.Bdd_not(p.f), ~p.t & tt_mask(vars_)};
    return p;
  }

  Pair random(int depth) {
    if (depth == 0 || rng_() % 5 == 0) return leaf();
    Pair a = random(depth - 1);
    Pair b = random(depth - 1);
    switch (rng_() % 4) {
      case 0: return Pair{m_.Bdd_and(a.f, b.f), a.t & b.t};
      case 1: return Pair{m_.Bdd_or(a.f, b.f), a.t | b.t};
      case 2: return Pair{m_.Bdd_xor(a.f, b.f), a.t ^ b.t};
      default: return Pair{m_.Bdd_not(a.f), ~a.t & tt_mask(vars_)};
    }
  }

  unsigned next() { return unsigned(rng_()); }

 private:
  bddpp_manager& m_;
  std::mt19937 rng_;
  int vars_;
};

inline void make_vars(bddpp_manager& m, int vars = kVars) {
  for (int i = 0; i < vars; ++i) m.New_var_last("x" + std::to_string(i));
}

}  // namespace bddtest

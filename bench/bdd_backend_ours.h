// Our package as a backend of the workloads in bdd_workloads.h.
#pragma once

#include <cmath>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "bdd/bddpp.h"

namespace bddbench {

struct OursBackend {
  using F = bdd;

  void start(int nvars) {
    manager = std::make_unique<bddpp_manager>();
    for (int i = 0; i < nvars; ++i) {
      std::string name = std::to_string(i);
      vars.push_back(manager->New_var_last(name.insert(0, 1, 'x')));
    }
  }
  // Handles go before their manager.
  void finish() {
    vars.clear();
    manager.reset();
  }

  F var(int i) { return vars[i]; }
  F one() { return manager->Bdd_one(); }
  F zero() { return manager->Bdd_zero(); }
  F land(const F& f, const F& g) { return manager->Bdd_and(f, g); }
  F lor(const F& f, const F& g) { return manager->Bdd_or(f, g); }
  F lxor(const F& f, const F& g) { return manager->Bdd_xor(f, g); }
  F lnot(const F& f) { return manager->Bdd_not(f); }
  F exist(const F& f, int i) { return manager->Bdd_exist(f, vars[i]); }
  F compose(const F& f, int i, const F& g) { return manager->Bdd_compose(f, vars[i], g); }
  bool same(const F& f, const F& g) { return f == g; }

  double satcount(const F& f) {
    std::unordered_map<Key, double, KeyHash> memo;
    return std::ldexp(density(f.node(), f.link_type(), memo), static_cast<int>(vars.size()));
  }

  std::unique_ptr<bddpp_manager> manager;
  std::vector<bdd> vars;

 private:
  using Key = std::pair<const bdd_node*, int>;
  struct KeyHash {
    size_t operator()(const Key& k) const { return std::hash<const void*>()(k.first) * 2 + (k.second > 0); }
  };
  // Share of the assignments that satisfy the node's function under `link`.
  // Both signs are counted upward, never as 1 - d, which would lose tiny shares.
  double density(const bdd_node* n, int link, std::unordered_map<Key, double, KeyHash>& memo) {
    if (n == manager->Bdd_node_one()) return link > 0 ? 1 : 0;
    auto found = memo.find({n, link});
    if (found != memo.end()) return found->second;
    double d = (density(n->then_node, link, memo) + density(n->else_node, link * n->else_link_type, memo)) / 2;
    memo.emplace(Key{n, link}, d);
    return d;
  }
};

}  // namespace bddbench

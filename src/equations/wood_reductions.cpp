// Reductions of a wood: constants, wires and locals substituted into their
// readers, right members reduced by an assertion. Each leaves Exp_table,
// exp_ids, dependences and readers in agreement.
#include <algorithm>
#include <iostream>

#include "equations/Bddexpression.h"

namespace {

bool In(const std::list<int>& types, int t) { return std::find(types.begin(), types.end(), t) != types.end(); }

}  // namespace

void Bddexpressionwood::internal_global_build_dependances() {
  for (long i = 0; i < nb_bdd_vars; ++i) readers[i].clear();
  for (long i = 0; i < nb_bdd_vars; ++i) {
    Bddexpression* e = exp_table[i];
    if (e == nullptr) continue;
    if (e->abstraction == 0) e->internal_build_dependances();
    for (long d : e->dependances)
      if (d >= 0 && d < nb_bdd_vars) readers[d].insert(i);
  }
}

void Bddexpressionwood::constants_propagation() { constants_propagation(std::list<int>()); }

void Bddexpressionwood::constants_propagation(const std::list<int>& types) {
  std::vector<long> removed;
  bool changed = true;
  while (changed) {
    changed = false;
    std::vector<long> ids(exp_ids.begin(), exp_ids.end());
    for (long i : ids) {
      Bddexpression* e = i >= 0 && i < nb_bdd_vars ? exp_table[i] : nullptr;
      if (e == nullptr || readers[i].empty() || e->abstraction != 0 || !e->right.initialised()) continue;
      bdd c;
      if (manager->Bdd_is_tautology(e->right, 1))
        c = manager->Bdd_var_by_index(i);
      else if (manager->Bdd_is_tautology(e->right, 0))
        c = manager->Bdd_not(manager->Bdd_var_by_index(i));
      else
        continue;
      std::set<long> rs = readers[i];
      for (long r : rs) {
        Bddexpression* re = r >= 0 && r < nb_bdd_vars ? exp_table[r] : nullptr;
        if (re == nullptr || re->abstraction != 0 || !re->right.initialised()) continue;
        re->right = manager->Bdd_reduce(re->right, c);
        re->internal_build_dependances();
      }
      changed = true;
      if (!In(types, e->usertype)) {
        delete e;
        exp_table[i] = nullptr;
        removed.push_back(i);
      }
      readers[i].clear();
    }
  }
  for (long i : removed) exp_ids.erase(i);
  internal_global_build_dependances();
}

// The right member of `index` replaces its variable in the reader `r`.
void Bddexpressionwood::Compose_into(long r, long index) {
  Bddexpression* re = exp_table[r];
  Bddexpression* e = exp_table[index];
  if (re->abstraction == 0 && re->right.initialised())
    re->right = manager->Bdd_compose(re->right, manager->Bdd_var_by_index(index), e->right);
  re->dependances.erase(index);
  re->dependances.insert(e->dependances.begin(), e->dependances.end());
  for (long d : e->dependances)
    if (d >= 0 && d < nb_bdd_vars) readers[d].insert(r);
}

void Bddexpressionwood::Prune_readers() {
  for (long i = 0; i < nb_bdd_vars; ++i) {
    if (readers[i].empty()) continue;
    for (auto it = readers[i].begin(); it != readers[i].end();) {
      long r = *it;
      Bddexpression* re = r >= 0 && r < nb_bdd_vars ? exp_table[r] : nullptr;
      if (re == nullptr || re->dependances.count(i) == 0)
        it = readers[i].erase(it);
      else
        ++it;
    }
  }
}

void Bddexpressionwood::suppress_wires() { suppress_wires(std::list<int>()); }

void Bddexpressionwood::suppress_wires(const std::list<int>& types) {
  update_bdd_vars();
  for (long i = 0; i < nb_bdd_vars; ++i) {
    Bddexpression* e = exp_table[i];
    if (e == nullptr || In(types, e->usertype) || e->abstraction != 0 || readers[i].empty() ||
        e->dependances.size() != 1)
      continue;
    long d = *e->dependances.begin();
    if (d == i || d < 0 || d >= nb_bdd_vars) continue;  // a wire on itself is a cycle, reported by the dating
    bool abstract_reader = false;
    for (long r : readers[i])
      if (r >= 0 && r < nb_bdd_vars && exp_table[r] != nullptr && exp_table[r]->abstraction != 0)
        abstract_reader = true;
    if (abstract_reader) continue;
    readers[d].erase(i);
    exp_ids.erase(i);
    std::set<long> rs = readers[i];
    for (long r : rs) {
      if (r >= 0 && r < nb_bdd_vars && exp_table[r] != nullptr) Compose_into(r, i);
      else readers[d].insert(r);  // pruned again below
    }
    delete e;
    exp_table[i] = nullptr;
    readers[i].clear();
    late_dates[i] = 0;
  }
  constants_propagation();
  Prune_readers();
  // New dates from the heaviest paths; one memo serves every index.
  bool cycle = false;
  bool fresh = true;
  std::vector<long> early(nb_bdd_vars, 0);
  for (long i = 0; i < nb_bdd_vars; ++i)
    if (exp_table[i] != nullptr) {
      early[i] = 1 + Path_weight(i, false, cycle, fresh);
      fresh = false;
    }
  fresh = true;
  for (long i = 0; i < nb_bdd_vars; ++i)
    if (exp_table[i] != nullptr) {
      exp_table[i]->early_date = early[i];
      late_dates[i] = nb_bdd_vars > 1 ? Path_weight(i, true, cycle, fresh) : 0;
      fresh = false;
    }
}

namespace {

// The guards of suppress_local and useless_local: true when `index` may go.
bool Substitutable(Bddexpressionwood& wood, long index, Bddexpression* e, const std::set<long>& readers) {
  if (e == nullptr || readers.empty() || e->getDependances().empty()) return false;
  if (readers.count(index) != 0 || e->getDependances().count(index) != 0) {
    std::cerr << "ERROR: detected self-dependance about variable : " << index << " !!!" << std::endl
              << "in associated expression: " << *e << std::endl
              << std::endl
              << "in associated wood:" << std::endl
              << wood << std::endl;
    return false;
  }
  return true;
}

}  // namespace

void Bddexpressionwood::suppress_local(long index) { suppress_local(index, std::list<int>()); }

void Bddexpressionwood::suppress_local(long index, const std::list<int>& types) {
  if (index < 0 || index >= nb_bdd_vars) return;
  Bddexpression* e = exp_table[index];
  if (!Substitutable(*this, index, e, readers[index])) return;
  for (long d : e->dependances)
    if (d >= 0 && d < nb_bdd_vars) readers[d].erase(index);
  std::set<long> rs = readers[index];
  for (long r : rs)
    if (r >= 0 && r < nb_bdd_vars && exp_table[r] != nullptr) Compose_into(r, index);
  delete e;
  exp_table[index] = nullptr;
  readers[index].clear();
  exp_ids.erase(index);
  constants_propagation(types);
  Prune_readers();
}

void Bddexpressionwood::suppress_locals() { suppress_locals(std::list<int>()); }

void Bddexpressionwood::suppress_locals(const std::list<int>& types) {
  for (long index = 0; index < nb_bdd_vars; ++index) {
    Bddexpression* e = exp_table[index];
    if (e == nullptr || In(types, e->usertype) || readers[index].empty() || e->dependances.empty()) continue;
    if (readers[index].count(index) != 0 || e->dependances.count(index) != 0) continue;
    for (long d : e->dependances)
      if (d >= 0 && d < nb_bdd_vars) readers[d].erase(index);
    std::set<long> rs = readers[index];
    for (long r : rs)
      if (r >= 0 && r < nb_bdd_vars && exp_table[r] != nullptr) Compose_into(r, index);
    delete e;
    exp_table[index] = nullptr;
    readers[index].clear();
    exp_ids.erase(index);
  }
  constants_propagation();
  Prune_readers();
}

void Bddexpressionwood::useless_local(long index) {
  if (index < 0 || index >= nb_bdd_vars) return;
  Bddexpression* e = exp_table[index];
  if (!Substitutable(*this, index, e, readers[index]) || e->abstraction != 0) return;
  for (long d : e->dependances)
    if (d >= 0 && d < nb_bdd_vars) readers[d].erase(index);
  std::set<long> rs = readers[index];
  for (long r : rs) {
    Bddexpression* re = r >= 0 && r < nb_bdd_vars ? exp_table[r] : nullptr;
    if (re == nullptr || re->abstraction != 0 || !re->right.initialised()) continue;
    re->right = manager->Bdd_compose(re->right, manager->Bdd_var_by_index(index), e->right);
    re->internal_build_dependances();
    for (long d : e->dependances)
      if (d >= 0 && d < nb_bdd_vars && re->dependances.count(d) != 0) readers[d].insert(r);
  }
  readers[index].clear();
}

namespace {

template <class Change>
void Rewrite_all(Bddexpressionwood& wood, std::vector<std::set<long>>& readers, Change change) {
  for (long i : std::vector<long>(wood.getExpIds().begin(), wood.getExpIds().end())) {
    Bddexpression* e = wood.exp_by_index(i);
    if (e == nullptr || !e->my_bdd_exp().initialised()) continue;
    std::set<long> before = e->set_of_index_used_variables();
    change(e);
    std::set<long> after = e->set_of_index_used_variables();
    if (before == after) continue;
    for (long x : after)
      if (before.count(x) == 0 && x >= 0 && x < long(readers.size())) readers[x].insert(i);
    for (long x : before)
      if (after.count(x) == 0 && x >= 0 && x < long(readers.size())) readers[x].erase(i);
  }
}

}  // namespace

void Bddexpressionwood::reduce_expressions(const bdd& assertion) { reduce_expressions(assertion, std::list<int>()); }

void Bddexpressionwood::reduce_expressions(const bdd& assertion, const std::list<int>& types) {
  update_bdd_vars();
  Rewrite_all(*this, readers, [&](Bddexpression* e) {
    e->right = manager->Bdd_reduce(e->right, assertion);
    e->build_normal_dependances();
  });
  constants_propagation(types);
}

void Bddexpressionwood::reduce_expressions_when_var_forgotten_by_exist_op(long index) {
  update_bdd_vars();
  bdd v = manager->Bdd_var_by_index(index);
  Rewrite_all(*this, readers, [&](Bddexpression* e) {
    e->right = manager->Bdd_exist(e->right, v);
    e->build_normal_dependances();
  });
  constants_propagation();
}

void Bddexpressionwood::reduce_expressions_when_var_forgotten_by_forall_op(long index) {
  update_bdd_vars();
  bdd v = manager->Bdd_var_by_index(index);
  Rewrite_all(*this, readers, [&](Bddexpression* e) {
    e->right = manager->Bdd_forall(e->right, v);
    e->build_normal_dependances();
  });
  constants_propagation();
}

long Bddexpressionwood::reduce_proposition_by_variable() {
  if (nb_level < 0) return -1;
  long best = -1, best_date = 0;
  for (long i = 0; i < nb_bdd_vars; ++i) {
    Bddexpression* e = exp_table[i];
    if (e == nullptr || readers[i].empty() || e->dependances.empty()) continue;
    if (e->early_date < 0 || e->early_date > nb_level) continue;
    if (best < 0 || e->early_date < best_date) {
      best = i;
      best_date = e->early_date;
    }
  }
  return best < 0 ? -1 : *exp_table[best]->dependances.begin();
}

bool Bddexpressionwood::global_tautology() {
  constants_propagation();
  for (long i : exp_ids) {
    Bddexpression* e = i >= 0 && i < nb_bdd_vars ? exp_table[i] : nullptr;
    if (e == nullptr) continue;
    if (!e->right.initialised() || e->right.node() != manager->Bdd_node_one()) return false;
  }
  return true;
}

bdd Bddexpressionwood::reduce_proposition_by_assertion() {
  for (long i : latest_sort()) {
    Bddexpression* e = exp_table[i];
    if (e == nullptr || !e->right.initialised() || e->right.node() == manager->Bdd_node_one()) continue;
    return manager->Bdd_one_implicant(e->right);
  }
  return manager->Bdd_one();
}

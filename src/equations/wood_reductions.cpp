// Reductions of a wood: constants, wires and locals substituted into their
// readers, right members reduced by an assertion. Each leaves Exp_table,
// exp_ids, dependences and readers in agreement.
#include <algorithm>
#include <iostream>

#include "equations/Bddexpression.h"

namespace {

bool In(const std::list<int>& types, int t) { return std::find(types.begin(), types.end(), t) != types.end(); }

}  // namespace

void Bddexpressionwood::Leave_step() {
  if (!in_step) return;
  in_step = false;
  reader_log.clear();
  touched.clear();
  candidates.clear();
}

void Bddexpressionwood::Reader_insert(long d, long r) {
  if (!readers[d].insert(r).second || !in_step) return;
  reader_log.push_back({d, r, true});
  candidates.insert(d);
}

void Bddexpressionwood::Reader_erase(long d, long r) {
  if (readers[d].erase(r) == 0 || !in_step) return;
  reader_log.push_back({d, r, false});
}

void Bddexpressionwood::Reader_clear(long d) {
  if (in_step)
    for (long r : readers[d]) reader_log.push_back({d, r, false});
  readers[d].clear();
}

void Bddexpressionwood::Touch(long i) {
  if (!in_step) return;
  candidates.insert(i);
  if (touched.count(i) != 0) return;
  Bddexpression* e = i >= 0 && i < nb_bdd_vars ? exp_table[i] : nullptr;
  touched.emplace(i, e != nullptr ? e->dependances : std::set<long>());
}

bool Bddexpressionwood::Constant_with_readers(long i) const {
  if (i < 0 || i >= nb_bdd_vars) return false;
  Bddexpression* e = exp_table[i];
  if (e == nullptr || readers[i].empty() || e->abstraction != 0 || !e->right.initialised()) return false;
  return manager->Bdd_is_tautology(e->right, 1) || manager->Bdd_is_tautology(e->right, 0);
}

void Bddexpressionwood::Full_rebuild() {
  for (long i = 0; i < nb_bdd_vars; ++i) readers[i].clear();
  for (long i = 0; i < nb_bdd_vars; ++i) {
    Bddexpression* e = exp_table[i];
    if (e == nullptr) continue;
    if (e->abstraction == 0) e->internal_build_dependances();
    for (long d : e->dependances)
      if (d >= 0 && d < nb_bdd_vars) readers[d].insert(i);
  }
  Leave_step();
  for (long i : exp_ids)
    if (Constant_with_readers(i)) candidates.insert(i);
  in_step = true;
}

// The readers as the last full rebuild left them (undo of the log), then the
// dependences of the changed equations rebuilt and their entries moved.
void Bddexpressionwood::Step_rebuild() {
  for (auto it = reader_log.rbegin(); it != reader_log.rend(); ++it) {
    if (it->inserted)
      readers[it->d].erase(it->r);
    else
      readers[it->d].insert(it->r);
    candidates.insert(it->d);
  }
  reader_log.clear();
  static const std::set<long> none;
  for (auto& [i, before] : touched) {
    candidates.insert(i);
    Bddexpression* e = exp_table[i];
    if (e != nullptr && e->abstraction == 0) e->internal_build_dependances();
    const std::set<long>& now = e != nullptr ? e->dependances : none;
    for (long d : before)
      if (d >= 0 && d < nb_bdd_vars && now.count(d) == 0) {
        readers[d].erase(i);
        candidates.insert(d);
      }
    for (long d : now)
      if (d >= 0 && d < nb_bdd_vars && before.count(d) == 0) {
        readers[d].insert(i);
        candidates.insert(d);
      }
  }
  touched.clear();
  for (auto it = candidates.begin(); it != candidates.end();)
    it = Constant_with_readers(*it) ? std::next(it) : candidates.erase(it);
}

void Bddexpressionwood::internal_global_build_dependances() {
  if (in_step)
    Step_rebuild();
  else
    Full_rebuild();
}

void Bddexpressionwood::constants_propagation() { constants_propagation(std::list<int>()); }

// Passes in ascending index order until one changes nothing. Only a constant
// equation with readers changes anything; a reader made constant is taken up
// later in the same pass when its index is above, in the next pass otherwise.
void Bddexpressionwood::constants_propagation(const std::list<int>& types) {
  std::vector<long> removed;
  std::set<long> pass, next;
  if (in_step) {
    for (long i : candidates)
      if (Constant_with_readers(i)) pass.insert(i);
  } else {
    for (long i : exp_ids)
      if (Constant_with_readers(i)) pass.insert(i);
  }
  while (!pass.empty()) {
    while (!pass.empty()) {
      long i = *pass.begin();
      pass.erase(pass.begin());
      if (!Constant_with_readers(i)) continue;
      Bddexpression* e = exp_table[i];
      bdd c = manager->Bdd_is_tautology(e->right, 1) ? manager->Bdd_var_by_index(i)
                                                      : manager->Bdd_not(manager->Bdd_var_by_index(i));
      std::set<long> rs = readers[i];
      for (long r : rs) {
        Bddexpression* re = r >= 0 && r < nb_bdd_vars ? exp_table[r] : nullptr;
        if (re == nullptr || re->abstraction != 0 || !re->right.initialised()) continue;
        Touch(r);
        re->right = manager->Bdd_reduce(re->right, c);
        re->internal_build_dependances();
        if (Constant_with_readers(r)) (r > i ? pass : next).insert(r);
      }
      if (!In(types, e->usertype)) {
        Touch(i);
        delete e;
        exp_table[i] = nullptr;
        removed.push_back(i);
      }
      Reader_clear(i);
    }
    pass.swap(next);
  }
  for (long i : removed) exp_ids.erase(i);
  internal_global_build_dependances();
}

// The right member of `index` replaces its variable in the reader `r`.
void Bddexpressionwood::Compose_into(long r, long index) {
  Bddexpression* re = exp_table[r];
  Bddexpression* e = exp_table[index];
  Touch(r);
  if (re->abstraction == 0 && re->right.initialised())
    re->right = manager->Bdd_compose(re->right, manager->Bdd_var_by_index(index), e->right);
  re->dependances.erase(index);
  re->dependances.insert(e->dependances.begin(), e->dependances.end());
  for (long d : e->dependances)
    if (d >= 0 && d < nb_bdd_vars) Reader_insert(d, r);
}

// In step the readers are the exact inverse already.
void Bddexpressionwood::Prune_readers() {
  if (in_step && reader_log.empty() && touched.empty()) return;
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
  Leave_step();
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
    if (d >= 0 && d < nb_bdd_vars) Reader_erase(d, index);
  std::set<long> rs = readers[index];
  for (long r : rs)
    if (r >= 0 && r < nb_bdd_vars && exp_table[r] != nullptr) Compose_into(r, index);
  Touch(index);
  delete e;
  exp_table[index] = nullptr;
  Reader_clear(index);
  exp_ids.erase(index);
  constants_propagation(types);
  Prune_readers();
}

void Bddexpressionwood::suppress_locals() { suppress_locals(std::list<int>()); }

void Bddexpressionwood::suppress_locals(const std::list<int>& types) {
  Leave_step();
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
  Leave_step();
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
  Leave_step();
  update_bdd_vars();
  Rewrite_all(*this, readers, [&](Bddexpression* e) {
    e->right = manager->Bdd_reduce(e->right, assertion);
    e->build_normal_dependances();
  });
  constants_propagation(types);
}

void Bddexpressionwood::reduce_expressions_when_var_forgotten_by_exist_op(long index) {
  Leave_step();
  update_bdd_vars();
  bdd v = manager->Bdd_var_by_index(index);
  Rewrite_all(*this, readers, [&](Bddexpression* e) {
    e->right = manager->Bdd_exist(e->right, v);
    e->build_normal_dependances();
  });
  constants_propagation();
}

void Bddexpressionwood::reduce_expressions_when_var_forgotten_by_forall_op(long index) {
  Leave_step();
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

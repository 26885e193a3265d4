// Instantiation: the equations of a compiled sub-module copied into a parent
// wood under new names, once per `run`.
#include <cstdlib>
#include <functional>
#include <iostream>

#include "equations/Bddexpression.h"

namespace {

// New name of a sub-module name; `fatal` turns the missing entry into a stop.
using Renaming = std::function<std::string(const std::string&, bool fatal)>;

Renaming By_map(std::map<std::string, std::string>* names) {
  return [names](const std::string& n, bool fatal) {
    std::string m = names != nullptr ? (*names)[n] : std::string();
    if (m.empty()) {
      if (fatal) {
        std::cerr << "Error: no renaming for : " << n << std::endl;
        exit(1);
      }
      std::cerr << "Warning: no renaming for : " << n << std::endl;
    }
    return m;
  };
}

Renaming By_suffix(const std::string& suffix) {
  return [suffix](const std::string& n, bool) { return n + suffix; };
}

}  // namespace

void Bddexpressionwood::Include_wood_instance(Bddexpressionwood& sub, std::map<std::string, std::string>* names) {
  Include(sub, By_map(names), true);
}

void Bddexpressionwood::Include_wood_instance(Bddexpressionwood& sub, const std::string& suffix) {
  Include(sub, By_suffix(suffix), false);
}

void Bddexpressionwood::Include(Bddexpressionwood& sub, const Renaming& rename, bool verbose) {
  bddpp_manager* there = sub.manager;
  Leave_step();
  update_bdd_vars();
  if (there == nullptr || manager == nullptr) return;
  sub.update_bdd_vars();
  std::set<long> used = sub.Set_of_index_used_variables();

  if (there != manager) {
    std::vector<long> translation(std::max(sub.nb_bdd_vars, 1L), -1);
    for (long u : used) {
      if (u < 0 || u >= sub.nb_bdd_vars) continue;
      long index = Index_new_var_last(rename(there->Name_var_by_index(u), false));
      translation[u] = index;
      setLateDate(index, sub.late_dates[u]);
    }
    for (long i : sub.exp_ids) {
      Bddexpression* e = i >= 0 && i < sub.nb_bdd_vars ? sub.exp_table[i] : nullptr;
      if (e == nullptr) continue;
      std::string en = rename(e->name, false);
      std::string vn = rename(e->my_bddname(), false);
      long late = sub.late_dates[i];
      if (e->abstraction != 0) {
        std::set<long> deps;
        for (long d : e->dependances)
          if (d >= 0 && d < sub.nb_bdd_vars) deps.insert(translation[d]);
        long index = manager->Index_var_by_name(vn);
        long id = index >= 0 ? manager->id_of_index[index] : -1;
        Bddexpression* copy = new Bddexpression(id, this, deps, e->exp_def, e->early_date, late);
        copy->usertype = e->usertype;
      } else {
        bdd var = Bdd_isomorphe(manager, there, e->variable, translation.data());
        bdd right = Bdd_isomorphe(manager, there, e->right, translation.data());
        new Bddexpression(en, this, var, right, e->exp_def, e->early_date, late, e->usertype);
      }
    }
  } else {
    if (verbose) std::cerr << "WOOD A INTEGRER avec meme Bdd_manager " << std::endl;
    long limit = nb_bdd_vars;
    for (long u : used) {
      if (u < 0 || u >= sub.nb_bdd_vars) continue;
      long index = Index_new_var_last(rename(there->Name_var_by_index(u), false));
      setLateDate(index, sub.late_dates[u]);
    }
    std::vector<long> translation(nb_bdd_vars);
    for (long k = 0; k < nb_bdd_vars; ++k) translation[k] = k;
    for (long u : used)
      if (u >= 0 && u < sub.nb_bdd_vars)
        translation[u] = manager->Index_var_by_name(rename(there->Name_var_by_index(u), false));
    std::vector<long> ids(sub.exp_ids.begin(), sub.exp_ids.end());
    for (long i : ids) {
      Bddexpression* e = i >= 0 && i < limit && i < sub.nb_bdd_vars ? sub.exp_table[i] : nullptr;
      if (e == nullptr) continue;
      std::string en = rename(e->name, false);
      std::string vn = rename(e->my_bddname(), true);
      bdd var = manager->Bdd_var_by_name(vn);
      long target = manager->Index_var_by_bdd(var);
      long late = sub.late_dates[i];
      if (e->abstraction != 0) {
        std::set<long> deps;
        for (long d : e->dependances)
          if (d >= 0 && d < long(translation.size())) deps.insert(translation[d]);
        if (target >= 0 && target < nb_bdd_vars && i < nb_bdd_vars) {
          std::set<long> from = readers[i];
          for (long r : from)
            if (r >= 0 && r < long(translation.size())) readers[target].insert(translation[r]);
        }
        std::set<long> none;
        long id = target >= 0 ? manager->id_of_index[target] : -1;
        Bddexpression* copy = new Bddexpression(id, this, &none, &deps, e->exp_def, e->early_date, late);
        copy->usertype = e->usertype;
      } else {
        bdd right = manager->Bdd_replace_vars(e->right, translation.data());
        new Bddexpression(en, this, var, right, e->exp_def, e->early_date, late, e->usertype);
      }
    }
  }
  sub.update_bdd_vars();
  if (sub.nb_level > nb_level) nb_level = sub.nb_level;
  manager->Bdd_gc();
}

// Equations and the wood: records, tables, readers, printing.
// Dating, closures and critical paths are in wood_dates.cpp.
#include "equations/Bddexpression.h"

#include <cstdlib>
#include <iostream>
#include <sstream>

#include "signals/owner.h"

namespace {

const long kWoodSizeLimit = 536870911;  // a table may reach 2^29 entries

void Put_set(std::ostream& out, const std::set<long>& s) {
  for (long x : s) out << x << " ";
}

}  // namespace

// ===================================================================
// Bddexpression: construction
// ===================================================================

Bddexpression::Bddexpression() = default;

Bddexpression::Bddexpression(Bddexpressionwood* w) : wood(w) {}

Bddexpression::Bddexpression(const std::string& n, Bddexpressionwood* w, const bdd& var, const bdd& exp,
                             long early, long late)
    : Bddexpression(n, w, var, exp, early, late, 0) {}

Bddexpression::Bddexpression(const std::string& n, Bddexpressionwood* w, const bdd& var, const bdd& exp,
                             long early, long late, int type)
    : wood(w), name(n), early_date(early), usertype(type) {
  if (wood == nullptr) return;
  variable = var;
  right = exp;
  abstraction = 0;
  internal_build_dependances();
  wood->learn_expression(this);
  setLateDate(late);
}

Bddexpression::Bddexpression(Bddexpressionwood* w, const bdd& var, const bdd& exp, long early, long late)
    : Bddexpression(w != nullptr && var.initialised() ? w->Name_var_by_bdd(var) : std::string(), w, var, exp,
                    early, late, 0) {}

Bddexpression::Bddexpression(const std::string& n, Bddexpressionwood* w, const bdd& var, const bdd& exp,
                             const std::string& def, long early, long late, int type)
    : wood(w), name(n), early_date(early), usertype(type) {
  if (def.empty()) {
    if (wood == nullptr) return;
    variable = var;
    right = exp;
    abstraction = 0;
    internal_build_dependances();
    wood->learn_expression(this);
  } else {
    exp_def = def;
    abstraction = 1;
    variable = var;
    if (wood == nullptr) return;
    wood->learn_abstract_expression(this, nullptr);
  }
  setLateDate(late);
}

Bddexpression::Bddexpression(long id, Bddexpressionwood* w, const std::set<long>& deps, const std::string& def,
                             long early, long late)
    : Bddexpression(id, w, nullptr, &deps, def, early, late) {}

Bddexpression::Bddexpression(long id, Bddexpressionwood* w, const std::set<long>* extra,
                             const std::set<long>* deps, long early, long late)
    : Bddexpression(id, w, extra, deps, std::string(), early, late) {}

Bddexpression::Bddexpression(long id, Bddexpressionwood* w, const std::set<long>* extra,
                             const std::set<long>* deps, const std::string& def, long early, long late)
    : wood(w), abstraction(1), exp_def(def), early_date(early) {
  if (deps != nullptr) dependances = *deps;
  if (wood == nullptr || wood->manager == nullptr) return;
  bddpp_manager* m = wood->manager;
  if (id >= 0 && id < m->Nb_bdd_vars) {
    variable = m->Bdd_var_by_id(id);
    name = m->Name_var_by_id(id);
  }
  wood->learn_abstract_expression(this, extra);
  setLateDate(late);
}

Bddexpression::Bddexpression(const Bddexpression& other) = default;

// Takes every field but the wood and the handles, which are carried into the
// manager of `wood` (by index) when there is one.
void Bddexpression::Carry_from(bddpp_manager* source, const Bddexpression& other) {
  name = other.name;
  exp_def = other.exp_def;
  weight = other.weight;
  dependances = other.dependances;
  early_date = other.early_date;
  usertype = other.usertype;
  abstraction = other.abstraction;
  bddpp_manager* target = wood != nullptr ? wood->manager : nullptr;
  if (target == nullptr) {
    abstraction = 1;
    return;
  }
  auto carry = [&](const bdd& f) -> bdd {
    if (!f.initialised()) return bdd();
    bddpp_manager* from = f.manager_ref() != nullptr ? f.manager_ref() : source;
    if (from == target) return f;
    return Bdd_isomorphe(target, from, f);
  };
  variable = carry(other.variable);
  if (other.abstraction == 0) right = carry(other.right);
}

Bddexpression::Bddexpression(Bddexpressionwood* w, const Bddexpression& other) : wood(w) {
  Carry_from(other.wood != nullptr ? other.wood->manager : nullptr, other);
}

Bddexpression::Bddexpression(Bddexpressionwood* w, Bddexpressionwood* other_wood, const Bddexpression& other)
    : wood(w) {
  Carry_from(other_wood != nullptr ? other_wood->manager : nullptr, other);
  if (wood != nullptr && wood->manager != nullptr) wood->learn_expression(this);
}

Bddexpression& Bddexpression::operator=(const Bddexpression& other) {
  if (this == &other) return *this;
  if (wood != nullptr) wood->Leave_step();
  if (other.wood != nullptr) other.wood->Leave_step();
  name = other.name;
  abstraction = other.abstraction;
  exp_def = other.exp_def;
  weight = other.weight;
  dependances = other.dependances;
  early_date = other.early_date;
  usertype = other.usertype;
  wood = other.wood;
  if (wood != nullptr && wood->manager != nullptr) variable = other.variable;
  if (abstraction == 0) right = other.right;
  return *this;
}

bool Bddexpression::operator==(const Bddexpression& o) const {
  return abstraction == o.abstraction && variable == o.variable && right == o.right && usertype == o.usertype &&
         weight == o.weight && name == o.name && exp_def == o.exp_def;
}

// ===================================================================
// Bddexpression: fields and editing
// ===================================================================

void Bddexpression::setExpDef(const std::string& def) {
  if (wood != nullptr && !def.empty()) wood->Leave_step();
  exp_def = def;
  if (!def.empty()) abstraction = 1;
}

void Bddexpression::setAbstraction(int a) {
  if (wood != nullptr) wood->Leave_step();
  abstraction = a;
}

long Bddexpression::getIndex() const {
  if (wood == nullptr || wood->manager == nullptr || !variable.initialised()) return -1;
  if (variable.manager_ref() != wood->manager) return -1;
  return wood->manager->Index_var_by_bdd(variable);
}

long Bddexpression::getLateDate() const {
  if (wood == nullptr) return 0;
  return wood->getLateDate(getIndex());
}

void Bddexpression::setLateDate(long d) {
  if (wood == nullptr) {
    std::cerr << "internal error in Bddexpression::setLateDate(): no wood found!" << std::endl;
    return;
  }
  long i = getIndex();
  if (i >= 0 && i < wood->nb_bdd_vars) wood->late_dates[i] = d;
}

void Bddexpression::setBddVar(bddpp_manager*, const bdd& var) {
  if (wood != nullptr) {
    std::cerr << "In Bddexpression::setBddVar(bddpp_manager *, bdd): " << std::endl;
    std::cerr << "   wood already defined! Aborted  ..." << std::endl;
    return;
  }
  variable = var;
}

void Bddexpression::setBddExp(bddpp_manager* m, const bdd& exp) {
  if (wood != nullptr) {
    std::cerr << "In Bddexpression::setBddExp(bddpp_manager *, bdd): " << std::endl;
    std::cerr << "   wood already defined! Aborted  ..." << std::endl;
    std::cerr << "   use only Bddexpression::setBddExp(bdd) !!!" << std::endl;
    return;
  }
  right = exp;
  abstraction = 0;
  internal_build_dependances(m);
}

void Bddexpression::setBddExp(const bdd& exp) {
  if (wood == nullptr) {
    std::cerr << "In Bddexpression::setBddExp(): " << std::endl;
    std::cerr << "   no wood defined! Aborted  ..." << std::endl;
    return;
  }
  wood->Leave_step();
  long i = getIndex();
  for (long d : dependances)
    if (d >= 0 && d < wood->nb_bdd_vars) wood->readers[d].erase(i);
  right = exp;
  abstraction = 0;
  build_normal_dependances();
  wood->update_bdd_vars();
  // Cycle watch: the walk warns when a cycle lies behind the equation. Its
  // upstream twin has no effect but a warning-free walk, so it isn't run.
  if (i >= 0) wood->down_critical_path(i, 0, 0);
  for (long d : dependances)
    if (d >= 0 && d < wood->nb_bdd_vars && i >= 0) wood->readers[d].insert(i);
}

void Bddexpression::setBddExp(const bdd& exp, long early, long late) {
  if (wood == nullptr) {
    std::cerr << "In Bddexpression::setBddExp(): " << std::endl;
    std::cerr << "   no wood defined! Aborted  ..." << std::endl;
    return;
  }
  wood->Leave_step();
  long i = getIndex();
  for (long d : dependances)
    if (d >= 0 && d < wood->nb_bdd_vars) wood->readers[d].erase(i);
  right = exp;
  abstraction = 0;
  early_date = early;
  setLateDate(late);
  build_normal_dependances();
  for (long d : dependances)
    if (d >= 0 && d < wood->nb_bdd_vars && i >= 0) wood->readers[d].insert(i);
}

void Bddexpression::append_or_exp(const bdd& g) {
  if (wood == nullptr) {
    std::cerr << "In Bddexpression::append_or_exp(): " << std::endl;
    std::cerr << "   no wood defined! Aborted  ..." << std::endl;
    return;
  }
  setBddExp(right.initialised() ? wood->manager->Bdd_or(g, right) : g);
}

void Bddexpression::append_and_exp(const bdd& g) {
  if (wood == nullptr) {
    std::cerr << "In Bddexpression::append_and_exp(): " << std::endl;
    std::cerr << "   no wood defined! Aborted  ..." << std::endl;
    return;
  }
  setBddExp(right.initialised() ? wood->manager->Bdd_and(g, right) : g);
}

void Bddexpression::append_not_exp() {
  if (wood == nullptr) {
    std::cerr << "In Bddexpression::append_not_exp(): " << std::endl;
    std::cerr << "   no wood defined! Aborted  ..." << std::endl;
    return;
  }
  wood->Leave_step();
  if (right.initialised()) right = wood->manager->Bdd_not(right);
}

void Bddexpression::add_specific_var_dependance(long index) {
  if (wood != nullptr) wood->Leave_step();
  dependances.insert(index);
}

void Bddexpression::setBddexpressionwood(Bddexpressionwood* w) {
  wood = w;
  if (wood != nullptr) wood->learn_expression(this);
}

void Bddexpression::build_normal_dependances() {
  if (wood != nullptr) wood->update_bdd_vars();
  if (abstraction == 0) internal_build_dependances();
}

void Bddexpression::internal_build_dependances() {
  bddpp_manager* m = wood != nullptr ? wood->manager : right.manager_ref();
  internal_build_dependances(m);
}

void Bddexpression::internal_build_dependances(bddpp_manager* m) {
  if (abstraction != 0) return;
  if (m == nullptr || !right.initialised()) {
    dependances.clear();
    return;
  }
  dependances = m->set_of_index_depend_on(right);
}

std::set<long> Bddexpression::set_of_index_used_variables() const {
  std::set<long> s = dependances;
  long i = getIndex();
  if (i >= 0) s.insert(i);
  return s;
}

std::string Bddexpression::my_bddname() const {
  if (wood == nullptr || wood->manager == nullptr || !variable.initialised()) return std::string();
  return wood->manager->Name_var_by_bdd(variable);
}

void Bddexpression::Shannon_expand(long id, long& then_index, long& else_index) {
  then_index = -3;
  else_index = -3;
  if (wood == nullptr || wood->manager == nullptr || !right.initialised()) return;
  bddpp_manager* m = wood->manager;
  if (id < 0 || id >= m->Nb_bdd_vars) return;
  bdd x = m->Bdd_var_by_id(id);
  std::string var_name = m->Name_var_by_id(id);
  std::string then_name = name + "_" + var_name;
  std::string else_name = name + "_not" + var_name;
  bdd then_var = wood->New_var_last(then_name);
  bdd else_var = wood->New_var_last(else_name);
  bdd f = right;
  new Bddexpression(then_name, wood, then_var, m->Bdd_cube_reduce(f, x), 0, 0, usertype);
  new Bddexpression(else_name, wood, else_var, m->Bdd_cube_reduce(f, m->Bdd_not(x)), 0, 0, usertype);
  setBddExp(m->Bdd_ite(x, then_var, else_var), 0, 0);
  then_index = m->Index_var_by_bdd(then_var);
  else_index = m->Index_var_by_bdd(else_var);
}

// ===================================================================
// Bddexpression: printing
// ===================================================================

void Bddexpression::Print(std::ostream& out, bool full) const {
  if (full) out << "(" << static_cast<const void*>(this) << ") ";
  out << "<" << name << "> ";
  if (full) out << "[type:" << usertype << "]";
  bddpp_manager* m = wood != nullptr ? wood->manager : nullptr;
  if (m != nullptr) {
    out << (variable.initialised() ? m->Name_var_by_bdd(variable) : std::string("-")) << " = ";
    if (right.initialised()) {
      m->Print_sop(out, " + ", " * ", "!", "", right);
      if (abstraction != 0) out << "warning ABSTRACTION by " << exp_def << "()!";
    } else if (abstraction != 0) {
      out << exp_def << "()";
    } else {
      out << "--";
    }
    if (full) out << "  weight: " << weight << " usertype: " << usertype;
  } else if (wood != nullptr || abstraction != 0) {
    out << "- = " << exp_def << "()";
  }
}

std::ostream& operator<<(std::ostream& out, const Bddexpression& e) {
  e.Print(out, true);
  return out;
}

std::string Bddexpression::debug_in_string() const {
  std::ostringstream s;
  Print(s, false);
  return s.str();
}

// ===================================================================
// Bddexpressionwood: construction
// ===================================================================

void Bddexpressionwood::Init_tables(long count, const char* who) {
  wood_size = 1;
  while (wood_size < count) {
    if (wood_size > kWoodSizeLimit) {
      std::cerr << who << std::endl;
      std::cerr << "program aborted ..." << std::endl;
      exit(1);
    }
    wood_size *= 2;
  }
  exp_table.assign(wood_size, nullptr);
  readers.assign(wood_size, std::set<long>());
  late_dates.assign(wood_size, 0);
  nb_bdd_vars = count;
}

Bddexpressionwood::Bddexpressionwood() : manager(new bddpp_manager()) {
  Init_tables(manager->Nb_bdd_vars, "in Bddexpression: Nb bdd vars reached!");
}

Bddexpressionwood::Bddexpressionwood(bddpp_manager* m) : manager(m) {
  Init_tables(m != nullptr ? m->Nb_bdd_vars : 0, "in Bddexpression: Nb bdd vars reached!");
}

Bddexpressionwood::Bddexpressionwood(Bddexpressionwood* other) {
  if (other == nullptr) {
    manager = new bddpp_manager();
    Init_tables(0, "in Bddexpression: Nb bdd vars reached!");
    return;
  }
  Copy_from(*other);
}

Bddexpressionwood::Bddexpressionwood(const Bddexpressionwood& other) { Copy_from(other); }

Bddexpressionwood& Bddexpressionwood::operator=(const Bddexpressionwood& other) {
  if (this == &other) return *this;
  Destroy();
  Copy_from(other);
  return *this;
}

// The copy keeps the common-manager setting of its source, so a copy of a
// wood on a shared manager shares it too.
void Bddexpressionwood::Copy_from(const Bddexpressionwood& other) {
  Leave_step();
  nb_level = other.nb_level;
  common_bdd_manager = other.common_bdd_manager;
  exp_ids = other.exp_ids;
  wood_size = other.wood_size;
  nb_bdd_vars = other.nb_bdd_vars;
  if (common_bdd_manager == 0)
    manager = other.manager != nullptr ? new bddpp_manager(other.manager) : new bddpp_manager();
  else
    manager = other.manager;
  exp_table.assign(wood_size, nullptr);
  readers = other.readers;
  late_dates = other.late_dates;
  readers.resize(wood_size);
  late_dates.resize(wood_size, 0);
  for (long i : exp_ids)
    if (i >= 0 && i < long(other.exp_table.size()) && other.exp_table[i] != nullptr)
      exp_table[i] = new Bddexpression(this, *other.exp_table[i]);
}

void Bddexpressionwood::Destroy() {
  std::set<Bddexpression*> gone;
  for (Bddexpression* e : exp_table)
    if (e != nullptr && gone.insert(e).second) delete e;
  for (Bddexpression* e : dropped)
    if (gone.insert(e).second) delete e;
  dropped.clear();
  exp_table.clear();
  readers.clear();
  late_dates.clear();
  exp_ids.clear();
  if (common_bdd_manager == 0) delete manager;
  manager = nullptr;
}

Bddexpressionwood::~Bddexpressionwood() { Destroy(); }

// ===================================================================
// Bddexpressionwood: variables
// ===================================================================

void Bddexpressionwood::update_bdd_vars() {
  if (manager == nullptr) return;
  long n = manager->Nb_bdd_vars;
  if (nb_bdd_vars >= n) return;
  Leave_step();
  if (wood_size < n) {
    long size = wood_size;
    while (size < n) {
      if (size > kWoodSizeLimit) {
        std::cerr << "in Bddexpressionwood: Nb bdd vars reached!" << std::endl;
        std::cerr << "program aborted ..." << std::endl;
        exit(1);
      }
      size *= 2;
    }
    // Dependences stay as they are: rebuilding them from the right members
    // here would drop the value dependences added by emissions.
    exp_table.resize(size, nullptr);
    readers.resize(size);
    late_dates.resize(size, 0);
    wood_size = size;
  }
  for (long i = nb_bdd_vars; i < n; ++i) {
    exp_table[i] = nullptr;
    readers[i].clear();
    late_dates[i] = 0;
  }
  nb_bdd_vars = n;
}

void Bddexpressionwood::update_bdd_vars(long index) {
  if (manager == nullptr) return;
  long old = nb_bdd_vars;
  Leave_step();
  update_bdd_vars();
  if (index < 0 || index >= old + 1 || nb_bdd_vars <= old) return;
  auto shift = [index](long x) { return x >= index ? x + 1 : x; };
  auto shift_set = [&](std::set<long>& s) {
    std::set<long> t;
    for (long x : s) t.insert(shift(x));
    s.swap(t);
  };
  for (long i = old; i > index; --i) {
    exp_table[i] = exp_table[i - 1];
    readers[i].swap(readers[i - 1]);
    late_dates[i] = late_dates[i - 1];
  }
  exp_table[index] = nullptr;
  readers[index].clear();
  late_dates[index] = 0;
  for (long i = 0; i < nb_bdd_vars; ++i) {
    shift_set(readers[i]);
    if (exp_table[i] != nullptr) shift_set(exp_table[i]->dependances);
  }
  shift_set(exp_ids);
}

bdd Bddexpressionwood::New_var_last(const std::string& n) {
  bdd v = manager->New_var_last(n);
  update_bdd_vars();
  return v;
}

long Bddexpressionwood::Index_new_var_last(const std::string& n) {
  bdd v = New_var_last(n);
  return manager->Index_var_by_bdd(v);
}

namespace {
// Runs an insertion of the manager and moves the tables behind the new index.
template <class Insert>
bdd Insert_var(Bddexpressionwood* wood, bddpp_manager* m, Insert insert) {
  long before = m->Nb_bdd_vars;
  bdd v = insert();
  if (m->Nb_bdd_vars > before && v.initialised())
    wood->update_bdd_vars(m->Index_var_by_bdd(v));
  else
    wood->update_bdd_vars();
  return v;
}
}  // namespace

bdd Bddexpressionwood::New_var_before_by_bdd(const bdd& var, const std::string& n) {
  return Insert_var(this, manager, [&] { return manager->New_var_before(var, n); });
}
bdd Bddexpressionwood::New_var_before_by_index(long index, const std::string& n) {
  return Insert_var(this, manager, [&] { return manager->New_var_before(index, n); });
}
bdd Bddexpressionwood::New_var_after_by_bdd(const bdd& var, const std::string& n) {
  return Insert_var(this, manager, [&] { return manager->New_var_after(var, n); });
}
bdd Bddexpressionwood::New_var_after_by_index(long index, const std::string& n) {
  return Insert_var(this, manager, [&] { return manager->New_var_after(index, n); });
}

// ===================================================================
// Bddexpressionwood: access
// ===================================================================

const std::set<long>& Bddexpressionwood::getReaders(long index) const {
  static const std::set<long> none;
  if (index < 0 || index >= nb_bdd_vars) return none;
  return readers[index];
}

long Bddexpressionwood::getLateDate(long index) const {
  if (index < 0 || index >= nb_bdd_vars) return 0;
  return late_dates[index];
}

void Bddexpressionwood::setLateDate(long index, long date) {
  if (index >= 0 && index < nb_bdd_vars) late_dates[index] = date;
}

Bddexpression* Bddexpressionwood::exp_by_index(long index) {
  if (index < 0 || index >= nb_bdd_vars) {
    std::cerr << "ERROR in Bddexpressionwood::exp_by_index : id `" << index << "' not found!" << std::endl;
    return nullptr;
  }
  return exp_table[index];
}

Bddexpression* Bddexpressionwood::exp_by_bdd(const bdd& var) {
  long index = var.initialised() && manager != nullptr ? manager->Index_var_by_bdd(var) : -1;
  if (index < 0 || index >= nb_bdd_vars) {
    std::cerr << "ERROR in Bddexpressionwood::exp_by_bdd : bdd not found!" << std::endl;
    return nullptr;
  }
  return exp_table[index];
}

Bddexpression* Bddexpressionwood::exp_by_bddname(const std::string& n) {
  long index = manager != nullptr ? manager->Index_var_by_name(n) : -1;
  if (index < 0) {
    std::cerr << "ERROR in Bddexpressionwood::exp_by_bddname : `" << n << "' not found!" << std::endl;
    return nullptr;
  }
  update_bdd_vars();
  return index < nb_bdd_vars ? exp_table[index] : nullptr;
}

Bddexpression* Bddexpressionwood::exp_by_name(const std::string& n) {
  for (long i : exp_ids)
    if (exp_table[i] != nullptr && exp_table[i]->name == n) return exp_table[i];
  std::cerr << "ERROR in Bddexpressionwood::exp_by_name : `" << n << "' not found!" << std::endl;
  return nullptr;
}

long Bddexpressionwood::Index_exp_by_name(const std::string& n) {
  for (long i : exp_ids)
    if (exp_table[i] != nullptr && exp_table[i]->name == n) return i;
  std::cerr << "ERROR in Bddexpressionwood::Index_exp_by_name : `" << n << "' not found!" << std::endl;
  return -1;
}

std::string Bddexpressionwood::Name_exp_by_index(long index) {
  if (index < 0 || index >= nb_bdd_vars) {
    std::cerr << "ERROR: in Bddexpressionwood::Name_exp_by_index(): index " << index << " not found!"
              << std::endl;
    return std::string();
  }
  return exp_table[index] != nullptr ? exp_table[index]->name : std::string();
}

std::string Bddexpressionwood::Name_exp_by_bdd(const bdd& var) {
  long index = var.initialised() && manager != nullptr ? manager->Index_var_by_bdd(var) : -1;
  if (index < 0 || index >= nb_bdd_vars) {
    std::cerr << "ERROR: in Bddexpressionwood::Name_exp_by_bdd(): bdd not found!" << std::endl;
    return std::string();
  }
  return exp_table[index] != nullptr ? exp_table[index]->name : std::string();
}

std::string Bddexpressionwood::Bddname_exp_by_index(long index) {
  if (index < 0 || index >= nb_bdd_vars) {
    std::cerr << "ERROR: in Bddexpressionwood::Bddname_exp_by_index(): id " << index << " not found!"
              << std::endl;
    return std::string();
  }
  return exp_table[index] != nullptr ? exp_table[index]->my_bddname() : std::string();
}

std::string Bddexpressionwood::Bddname_exp_by_bdd(const bdd& var) {
  long index = var.initialised() && manager != nullptr ? manager->Index_var_by_bdd(var) : -1;
  if (index < 0 || index >= nb_bdd_vars) {
    std::cerr << "ERROR: in Bddexpressionwood::Bddname_exp_by_bdd(): bdd not found!" << std::endl;
    return std::string();
  }
  return exp_table[index] != nullptr ? exp_table[index]->my_bddname() : std::string();
}

Bddexpression* Bddexpressionwood::exp(long n) {
  if (n < 0 || n >= exp_number()) {
    std::cerr << "ERROR in Bddexpressionwood::exp(): " << n << " bad number ..." << std::endl;
    std::cerr << "possible: ";
    Put_set(std::cerr, exp_ids);
    std::cerr << std::endl;
    return nullptr;
  }
  long k = 0;
  for (long i = 0; i < nb_bdd_vars; ++i) {
    if (exp_table[i] == nullptr) continue;
    if (k == n) return exp_table[i];
    ++k;
  }
  return nullptr;
}

std::set<long> Bddexpressionwood::Set_of_index_used_variables() {
  std::set<long> used;
  for (long i : exp_ids) {
    Bddexpression* e = i >= 0 && i < nb_bdd_vars ? exp_table[i] : nullptr;
    if (e == nullptr) {
      std::cerr << "internal error in Bddexpressionwood::Set_of_index_used_variables(): expression not found!!!"
                << std::endl;
      std::cerr << "   about id:" << i << std::endl;
      continue;
    }
    std::set<long> s = e->set_of_index_used_variables();
    used.insert(s.begin(), s.end());
  }
  return used;
}

void Bddexpressionwood::append_not_expression(long index) {
  if (index >= 0 && index < nb_bdd_vars && exp_table[index] != nullptr) exp_table[index]->append_not_exp();
}

bdd Bddexpressionwood::Bdd_one() { return manager->Bdd_one(); }
bdd Bddexpressionwood::Bdd_zero() { return manager->Bdd_zero(); }
bdd Bddexpressionwood::Bdd_var_by_index(long index) { return manager->Bdd_var_by_index(index); }
long Bddexpressionwood::Index_var_by_name(const std::string& n) { return manager->Index_var_by_name(n); }
std::string Bddexpressionwood::Name_var_by_index(long index) { return manager->Name_var_by_index(index); }
std::string Bddexpressionwood::Name_var_by_bdd(const bdd& f) { return manager->Name_var_by_bdd(f); }
bool Bddexpressionwood::Bdd_is_tautology(const bdd& f) { return manager->Bdd_is_tautology(f); }
bdd Bddexpressionwood::Bdd_and(const bdd& f, const bdd& g) { return manager->Bdd_and(f, g); }
bdd Bddexpressionwood::Bdd_not(const bdd& f) { return manager->Bdd_not(f); }
bdd Bddexpressionwood::Bdd_reduce(const bdd& f, const bdd& a) { return manager->Bdd_reduce(f, a); }
bdd Bddexpressionwood::Bdd_simplify2(const bdd& f, const bdd& c) { return manager->Bdd_simplify2(f, c); }

// ===================================================================
// Bddexpressionwood: entering and leaving
// ===================================================================

void Bddexpressionwood::Learn(Bddexpression* e, const std::set<long>* extra) {
  if (e == nullptr) {
    std::cerr << "INTERNAL ERROR in Bddexpressionwood::learn_expression():" << std::endl;
    std::cerr << "no expression !!!" << std::endl;
    return;
  }
  bddpp_manager* m = e->wood != nullptr && e->wood->manager != nullptr ? e->wood->manager : manager;
  long i = -1;
  if (m != nullptr && e->variable.initialised() && e->variable.manager_ref() == m)
    i = m->Index_var_by_bdd(e->variable);
  if (i < 0) {
    std::cerr << "INTERNAL ERROR in Bddexpressionwood::learn_expression():" << std::endl;
    std::cerr << "no left member in expression" << std::endl;
    return;
  }
  if (i >= m->Nb_bdd_vars) {
    std::cerr << "INTERNAL ERROR in Bddexpressionwood::learn_expression():" << std::endl;
    std::cerr << "bdd variable doesn't exist in Bdd manager" << std::endl;
    return;
  }
  // A right member may read variables made since the last update (a branch's
  // equations carried over by name): their readers must be kept too.
  update_bdd_vars();
  if (i >= nb_bdd_vars) return;  // the record's manager isn't this wood's
  Bddexpression* old = exp_table[i];
  if (old == e) return;
  Leave_step();
  if (old != nullptr) {
    for (long d : old->dependances)
      if (d >= 0 && d < nb_bdd_vars) readers[d].erase(i);
    dropped.push_back(old);
  } else {
    exp_ids.insert(i);
  }
  exp_table[i] = e;
  for (long d : e->dependances)
    if (d >= 0 && d < nb_bdd_vars) readers[d].insert(i);
  if (extra != nullptr)
    for (long d : *extra)
      if (d >= 0 && d < nb_bdd_vars) readers[d].insert(i);
  if (nb_level < e->early_date) nb_level = e->early_date;
  if (nb_level < late_dates[i]) nb_level = late_dates[i];
}

void Bddexpressionwood::learn_expression(Bddexpression* e) { Learn(e, nullptr); }

void Bddexpressionwood::learn_abstract_expression(Bddexpression* e, const std::set<long>* extra) {
  static const std::set<long> none;
  Learn(e, extra != nullptr ? extra : &none);
}

void Bddexpressionwood::forget_expression_by_bddid(long index) {
  if (index < 0 || index >= nb_bdd_vars) {
    std::cerr << "Error in Bddexpressionwood::forget_expression_by_bddid(): " << std::endl
              << index << " value not found ..." << std::endl;
    return;
  }
  Bddexpression* e = exp_table[index];
  if (e == nullptr || !readers[index].empty()) return;
  Leave_step();
  for (long d : e->dependances)
    if (d >= 0 && d < nb_bdd_vars) readers[d].erase(index);
  delete e;
  exp_table[index] = nullptr;
  exp_ids.erase(index);
  late_dates[index] = 0;
}

void Bddexpressionwood::absolute_forget_expression_by_bddid(long index) {
  if (index < 0 || index >= nb_bdd_vars) {
    std::cerr << "Error in Bddexpressionwood::forget_expression_by_bddid(): " << std::endl
              << index << " value not found ..." << std::endl;
    return;
  }
  Bddexpression* e = exp_table[index];
  if (e == nullptr || !readers[index].empty()) return;
  Leave_step();
  delete e;
  exp_table[index] = nullptr;
  exp_ids.erase(index);
}

void Bddexpressionwood::clean(const std::list<long>& keep) {
  clean(std::set<long>(keep.begin(), keep.end()));
}

void Bddexpressionwood::clean(const std::set<long>& keep) {
  Leave_step();
  std::vector<long> ids(exp_ids.begin(), exp_ids.end());
  for (long i : ids) {
    Bddexpression* e = i >= 0 && i < nb_bdd_vars ? exp_table[i] : nullptr;
    if (e == nullptr) {
      std::cerr << "Warning in Bddexpressionwood::clean():" << std::endl;
      std::cerr << "  Expression for id var " << i << " should be existed ..." << std::endl;
      continue;
    }
    if (keep.count(i) != 0 || !readers[i].empty() || !e->dependances.empty()) continue;
    exp_table[i] = nullptr;
    exp_ids.erase(i);
    dropped.push_back(e);
  }
}

void Bddexpressionwood::delete_prefixe_names(const std::string&) { std::cerr << "a faire" << std::endl; }

// ===================================================================
// Bddexpressionwood: printing
// ===================================================================

void Bddexpressionwood::stat(std::ostream& out) {
  long manager_vars = manager != nullptr ? manager->Nb_bdd_vars : 0;
  out << "wood Bddexpression statistics:" << std::endl;
  out << "  - adress: " << static_cast<const void*>(this) << std::endl;
  out << "  - bbd variables number of the bdd manager: " << manager_vars << std::endl;
  out << "  - variables number used : " << nb_bdd_vars << std::endl;
  if (manager_vars != nb_bdd_vars)
    out << "INTERNAL ERROR: bdd variables number doesn't corresponding !!!" << std::endl;
  out << "  - arrays's length  : " << wood_size << std::endl;
  out << "  - expression ids set ";
  Put_set(out, exp_ids);
  out << std::endl;
  out << "  - nb levels " << nb_level << std::endl;
  std::map<long, std::pair<std::list<long>, std::list<long>>> levels;
  for (long i = 0; i < nb_bdd_vars; ++i) {
    if (exp_table[i] != nullptr) levels[exp_table[i]->early_date].first.push_back(i);
    if (late_dates[i] != 0 || exp_table[i] != nullptr) levels[late_dates[i]].second.push_back(i);
  }
  for (auto& [level, lists] : levels) {
    out << "      level: " << level << std::endl;
    out << "        early date: ";
    for (long i : lists.first) out << i << " ";
    out << std::endl;
    out << "        late date: ";
    for (long i : lists.second) out << i << " ";
    out << std::endl;
  }
  out << "   earliest date sorting:";
  for (long i : earliest_sort()) out << " " << i;
  out << std::endl;
  out << "   latest date sorting:";
  for (long i : latest_sort()) out << " " << i;
  out << std::endl;
}

std::ostream& operator<<(std::ostream& out, Bddexpressionwood& wood) {
  wood.stat(out);
  out << "Equations list:" << std::endl;
  for (long i = 0; i < wood.nb_bdd_vars; ++i) {
    out << i << ": ";
    Bddexpression* e = wood.exp_table[i];
    if (e != nullptr) {
      out << *e << " dates (" << e->getEarlyDate() << "," << wood.late_dates[i] << ")" << " from vars ";
      Put_set(out, e->getDependances());
      out << "  to vars ";
      Put_set(out, wood.readers[i]);
    } else {
      out << wood.manager->Name_var_by_index(i) << " = - dates (0," << wood.late_dates[i] << ")";
    }
    out << std::endl;
  }
  return out;
}

std::string Bddexpressionwood::debug_in_string() {
  std::ostringstream s;
  s << *this;
  return s.str();
}

namespace owner {
bddpp_manager* manager(Bddexpressionwood* w) { return w->my_bdd_manager(); }
long newVarLast(Bddexpressionwood* w, const std::string& name) { return w->Index_new_var_last(name); }
long varCount(Bddexpressionwood* w) { return w->Nb_bdd_vars(); }
void destroy(Bddexpressionwood* w) { delete w; }
}  // namespace owner

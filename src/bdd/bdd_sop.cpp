// Covers of a function by cubes, at four levels of effort, and implicants.
#include "bdd/bdd_sop.h"

#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

namespace {

// The short covers of 34 functions of the variables at index 0 to 3 (a to d),
// in the order of comparison; each cover is also the function's definition.
const char* const kCatalogue[] = {
    "!b.c + !b.d + a.c + !a.d + b.!c.!d",
    "a.!b.!c + !c.d + a.b.c + !a.c.!d + !b.d",
    "b.c + a.!b.!d + !c.d + !a.c",
    "c.d + b.!c.!d + a.!b + !a.c + !a.d",
    "!a.c + !a.d + !b.c + b.d + a.!c.!d",
    "!a.b.!c + a.!b.!d + !a.!b.c + b.d + !c.d + a.b.c",
    "a.!b.!d + a.b.d + !a.b.!c + !a.!b.d + a.c + c.!d",
    "b.!d + !b.c + a.!c.d + !a.b",
    "!b.c + a.c + a.!b.!d + !a.b.!d + b.!c.d",
    "a.c + !b.c + !a.b.!c + a.!d + !b.d",
    "b.c + !a.b + !a.c + a.!b.!d + !b.!c.d",
    "!a.d + b.!d + a.c + a.!b",
    "a.b + a.!c + c.!d + !a.!b.d",
    "c.d + !a.b.!d + !a.!b.d + a.!b.!d + a.b.!c",
    "!b.c + !b.d + !a.b.!c + c.d + a.!d",
    "!c.d + !b.c + a.c + a.!b + !a.b.!d",
    "b + a.!d + !c.d + !a.c",
    "!a.!b.c + b.!d + a.d + !c.d + a.!c",
    "!a.!b.c + b.!d + b.!c + a.!c.!d + a.c.d",
    "a.!b + !b.d + c.!d + b.!c",
    "!a.d + b.!c.!d + a.!b + a.c",
    "!c.d + !a.!b.c + b.!c + b.d + a.!d",
    "!a.b + !b.!c.d + !b.c.!d + a.!c.!d + b.c.d",
    "!a.d + !c.d + !a.b + b.c + a.!b.!d",
    "!a.b + a.!c.!d + a.c.d + !a.!c.d + !b.c.!d",
    "a.!c + b.!c + !a.!b.c + a.d + b.!d",
    "a.b.d + a.!b.!d + !a.b.!d + !a.!b.c + !c.d",
    "b.!d + !a.c + a.!b.!c + !a.d",
    "!a.b.!d + a.b.d + !a.!b.d + b.c + a.!b.!c + c.!d",
    "b.d + !a.b.!c + a.!b.!d + !a.!b.c + !c.d",
    "a.b.d + a.!b.!d + !a.!b.d + !a.c.!d + a.!c + b.!c",
    "a.!c.d + b.!c + a.c.!d + !a.!b.c + b.d",
    "!a.d + c.!d + a.!c + a.b",
    "!a.!b.d + !a.b.!d + b.!c + a.c.d + a.!b.!d",
};

// The cubes of a catalogue row, in order.
std::vector<bdd> Catalogue_cover(bddpp_manager& m, const std::string& row) {
  std::vector<bdd> cubes;
  bdd cube = m.Bdd_one();
  bool negated = false;
  for (char ch : row) {
    if (ch == '!') {
      negated = true;
    } else if (ch >= 'a' && ch <= 'd') {
      bdd v = m.Bdd_var_by_index(ch - 'a');
      cube = m.Bdd_and(cube, negated ? m.Bdd_not(v) : v);
      negated = false;
    } else if (ch == '+') {
      cubes.push_back(cube);
      cube = m.Bdd_one();
    }
  }
  cubes.push_back(cube);
  return cubes;
}

void Bad_manager(const char* operation, const bdd& f) {
  std::cerr << "ERROR in bddpp_manager::" << operation << "():" << std::endl
            << "   bdd : " << f << ", is not allocated or associated with a bad BDD manager..." << std::endl;
  std::exit(1);
}

}  // namespace

// ---------------------------------------------------------------------------
// Covers

void bddpp_manager::Bdd_sop(const bdd& f, std::list<bdd>& list, int level) {
  if (f.manager_ref() != this || !f.initialised()) Bad_manager("Bdd_sop", f);
  switch (level) {
    case 1: Bdd_sop_1(f, list); break;
    case 2: Bdd_sop_2(f, list); break;
    case 3: Bdd_sop_2plus(f, list); break;
    default: Bdd_sop_0(f, list); break;
  }
}

int bddpp_manager::Bdd_sop(const bdd& f, bdd* array, int level) {
  std::cerr << "warning: calling obsolete version of bddpp_manager::Bdd_sop() ..." << std::endl;
  std::list<bdd> list;
  Bdd_sop(f, list, level);
  int count = 0;
  for (const bdd& c : list) array[count++] = c;
  return count;
}

// Disjoint cubes, each the first satisfying path of what is left.
void bddpp_manager::Bdd_sop_0(const bdd& f, std::list<bdd>& list) {
  list.clear();
  if (Bdd_is_one_tautologic(f)) {
    list.push_back(f);
    return;
  }
  bdd zero = Bdd_zero();
  bdd rest = f;
  while (rest != zero) {
    bdd c = Bdd_satisfy(rest);
    rest = Bdd_and(rest, Bdd_not(c));
    list.push_back(c);
  }
}

// Level 0, then each cube widened literal by literal while it implies f,
// then the cubes covered by the others dropped.
void bddpp_manager::Bdd_sop_1(const bdd& f, std::list<bdd>& list) {
  list.clear();
  if (Bdd_is_tautology(f)) {
    list.push_back(f);
    return;
  }
  std::list<bdd> disjoint;
  Bdd_sop_0(f, disjoint);
  bdd one = Bdd_one();
  std::vector<bdd> widened;
  std::vector<int> present(Nb_bdd_vars);
  for (bdd c : disjoint) {
    Present_variables(c, present.data());
    for (long i = 0; i < Nb_bdd_vars; ++i) {
      if (!present[i]) continue;
      bdd c2 = Bdd_exist(c, Bdd_var_by_index(i));
      if (Bdd_reduce(f, c2) == one) c = c2;
    }
    widened.push_back(c);
  }
  bdd zero = Bdd_zero();
  for (size_t i = 0; i < widened.size(); ++i) {
    bdd others = zero;
    for (size_t j = 0; j < widened.size(); ++j)
      if (j != i) others = Bdd_or(others, widened[j]);
    if (Bdd_equiv(others, f)) widened[i] = zero;
  }
  for (const bdd& c : widened)
    if (c != zero) list.push_back(c);
}

// Essential primes, then other primes that add something, kept only if
// shorter than level 1.
void bddpp_manager::Bdd_sop_2(const bdd& f, std::list<bdd>& list) {
  list.clear();
  if (Bdd_is_tautology(f)) {
    if (Bdd_is_one_tautologic(f)) list.push_back(f);
    return;
  }
  std::list<bdd> essential, others;
  Bdd_essential_implicants(f, essential, others);
  bdd acc = Bdd_zero();
  for (const bdd& e : essential) {
    list.push_back(e);
    acc = Bdd_or(acc, e);
  }
  while (!Bdd_equiv(acc, f)) {
    const bdd* next = nullptr;
    for (const bdd& o : others)
      if (!Bdd_is_zero_tautologic(o) && Bdds_excl(o, acc)) {
        next = &o;
        break;
      }
    if (!next) break;
    list.push_back(*next);
    acc = Bdd_or(acc, *next);
  }
  if (!Bdd_equiv(acc, f)) {
    for (const bdd& n : others) {
      if (Bdd_equiv(acc, f)) break;
      bdd wider = Bdd_or(acc, n);
      if (!Bdd_equiv(wider, acc)) {
        list.push_back(n);
        acc = wider;
      }
    }
  }
  std::list<bdd> tmp;
  Bdd_sop_1(f, tmp);
  if (tmp.size() < list.size()) list = tmp;
}

// The catalogue's cover for the functions it knows, level 2 otherwise.
void bddpp_manager::Bdd_sop_2plus(const bdd& f, std::list<bdd>& list) {
  // A function with a variable beyond index 3 cannot be in the catalogue.
  bool in_first_four = Nb_bdd_vars >= 4;
  if (in_first_four)
    for (long index : set_of_index_depend_on(f))
      if (index > 3) in_first_four = false;
  if (in_first_four) {
    for (const char* row : kCatalogue) {
      std::vector<bdd> cover = Catalogue_cover(*this, row);
      bdd g = Bdd_zero();
      for (const bdd& c : cover) g = Bdd_or(g, c);
      if (Bdd_equiv(f, g)) {
        list.assign(cover.begin(), cover.end());
        return;
      }
    }
  }
  Bdd_sop_2(f, list);
}

long bddpp_manager::Max_number_of_terms() const { return 1000000; }

// ---------------------------------------------------------------------------
// Ternary diagram and implicants

Tdd::Tdd(bddpp_manager* m, const bdd& f) : manager(m) {
  if (!m) {
    std::cerr << "in Tdd::Tdd() : error: bdd manager not yet created !" << std::endl;
    return;
  }
  if (m->Bdd_is_tautology(f)) {
    function = f;
    return;
  }
  function = m->Bdd_if(f);
  bdd t = m->Bdd_then(f);
  bdd e = m->Bdd_else(f);
  then_child = new Tdd(m, t);
  else_child = new Tdd(m, e);
  dontcare_child = new Tdd(m, m->Bdd_and(t, e));
}

Tdd::~Tdd() {
  delete then_child;
  delete else_child;
  delete dontcare_child;
}

void Tdd::Bdd_implicants_loc(const bdd& path, std::list<bdd>& list) {
  if (!manager) return;
  if (manager->Bdd_is_tautology(function)) {
    if (!manager->Bdd_is_one_tautologic(function)) return;
    for (bdd& e : list)
      if (manager->Bdd_imply(e, path)) {
        e = path;
        return;
      }
    list.push_back(path);
    return;
  }
  then_child->Bdd_implicants_loc(manager->Bdd_and(path, function), list);
  else_child->Bdd_implicants_loc(manager->Bdd_and(path, manager->Bdd_not(function)), list);
  dontcare_child->Bdd_implicants_loc(path, list);
}

void Tdd::Bdd_prime_implicants(std::list<bdd>& list) {
  list.clear();
  if (!manager) return;
  std::vector<bdd> work;
  {
    std::list<bdd> found;
    Bdd_implicants_loc(manager->Bdd_one(), found);
    work.assign(found.begin(), found.end());
  }
  bdd zero = manager->Bdd_zero();
  for (size_t p = 0; p < work.size(); ++p) {
    if (work[p] == zero) continue;
    for (size_t q = p + 1; q < work.size(); ++q)
      if (work[q] != zero && manager->Bdd_imply(work[q], work[p])) work[q] = zero;
  }
  for (const bdd& c : work)
    if (c != zero) list.push_back(c);
}

void Tdd::Print_bdd_structure(std::ostream& out) { Print_bdd_structure_loc(out, 0); }

void Tdd::Print_bdd_structure_loc(std::ostream& out, int indent) {
  std::string blanks(indent, ' ');
  if (!manager) {
    out << blanks << "NULL" << std::endl;
    return;
  }
  if (manager->Bdd_is_tautology(function)) {
    out << blanks << (manager->Bdd_is_one_tautologic(function) ? "1" : "0") << std::endl;
    return;
  }
  std::string name = manager->Name_var_by_bdd(function);
  out << blanks << "if " << name << std::endl;
  then_child->Print_bdd_structure_loc(out, indent + 2);
  out << blanks << "else (not " << name << ")" << std::endl;
  else_child->Print_bdd_structure_loc(out, indent + 2);
  out << blanks << "whatever " << name << std::endl;
  dontcare_child->Print_bdd_structure_loc(out, indent + 2);
}

void bddpp_manager::Bdd_prime_implicants(const bdd& f, std::list<bdd>& list) {
  list.clear();
  if (Bdd_is_tautology(f)) {
    list.push_back(f);
    return;
  }
  Tdd tdd(this, f);
  tdd.Bdd_prime_implicants(list);
}

void bddpp_manager::Bdd_essential_implicants(const bdd& f, std::list<bdd>& essential,
                                             std::list<bdd>& others) {
  essential.clear();
  others.clear();
  std::list<bdd> primes;
  Bdd_prime_implicants(f, primes);
  std::vector<bdd> all(primes.begin(), primes.end());
  for (size_t i = 0; i < all.size(); ++i) {
    bdd rest = Bdd_zero();
    for (size_t j = 0; j < all.size(); ++j)
      if (j != i) rest = Bdd_or(rest, all[j]);
    if (Bdd_equiv(rest, f))
      others.push_back(all[i]);
    else
      essential.push_back(all[i]);
  }
}

// A short implicant: down the side with fewer variables, the then side on a tie.
bdd bddpp_manager::Bdd_one_implicant(const bdd& f) {
  if (f.manager_ref() != this || !f.initialised()) Bad_manager("Bdd_one_implicant", f);
  if (Bdd_is_tautology(f) || Bdd_is_var(f) || Bdd_is_negvar(f)) return f;
  bdd t = Bdd_then(f);
  bdd e = Bdd_else(f);
  bdd x = Bdd_if(f);
  if (Bdd_is_one_tautologic(t)) return x;
  if (Bdd_is_zero_tautologic(t)) return Bdd_and(Bdd_not(x), Bdd_one_implicant(e));
  if (Bdd_is_one_tautologic(e)) return Bdd_not(x);
  if (Bdd_is_zero_tautologic(e)) return Bdd_and(x, Bdd_one_implicant(t));
  if (set_of_id_depend_on(t).size() <= set_of_id_depend_on(e).size())
    return Bdd_and(x, Bdd_one_implicant(t));
  return Bdd_and(Bdd_not(x), Bdd_one_implicant(e));
}

// Each prime implicant of f widened by every variable whose removal keeps it
// disjoint from c.
bdd bddpp_manager::Bdd_simplify3(const bdd& f, const bdd& c) {
  std::list<bdd> primes;
  Bdd_prime_implicants(f, primes);
  bdd result = Bdd_zero();
  for (bdd p : primes) {
    for (long id : set_of_id_depend_on(p)) {
      bdd wider = Bdd_exist(p, Bdd_var_by_id(id));
      if (Bdds_excl(wider, c)) p = wider;
    }
    result = Bdd_or(result, p);
  }
  return result;
}

// ---------------------------------------------------------------------------
// Truth tables over `count` variables; minterm m gives bit i to vars[i].

void bddpp_manager::Truth_table(const bdd& f, int count, const bdd* vars, std::string* text) {
  for (long m = 0; m < (1L << count); ++m) {
    bdd r = Bdd_reduce(f, Minterm(m, count, vars));
    text[m] = Bdd_is_one_tautologic(r) ? "1" : Bdd_is_zero_tautologic(r) ? "0" : "?";
  }
}

void bddpp_manager::Bdd_truth_table(const bdd& f, int count, const bdd* vars, bdd* results) {
  for (long m = 0; m < (1L << count); ++m) results[m] = Bdd_reduce(f, Minterm(m, count, vars));
}

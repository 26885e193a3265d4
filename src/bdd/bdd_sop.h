// Ternary decision diagram for prime implicants. The sums of products
// themselves are members of bddpp_manager (Bdd_sop and its levels).
#pragma once

#include <iosfwd>
#include <list>

#include "bdd/bddpp.h"

// One node of the ternary expansion of a function: a leaf holds a constant,
// an inner node a positive variable and three owned children, the function
// with the variable true, false, and the part that holds whatever it is.
// Branches share nothing, so the diagram is a tree with one leaf per path.
class Tdd {
 public:
  Tdd(bddpp_manager* manager, const bdd& f);
  ~Tdd();
  Tdd(const Tdd&) = delete;
  Tdd& operator=(const Tdd&) = delete;

  // Adds the cube of each path from here to the one leaf, `path` being the
  // choices above; an entry of `list` that implies a new path gives way to it.
  void Bdd_implicants_loc(const bdd& path, std::list<bdd>& list);
  // The prime implicants of the function, in the order of the expansion.
  void Bdd_prime_implicants(std::list<bdd>& list);

  void Print_bdd_structure(std::ostream& out);
  void Print_bdd_structure_loc(std::ostream& out, int indent);

  bddpp_manager* manager = nullptr;
  bdd function;                  // the constant on a leaf, the variable elsewhere
  Tdd* then_child = nullptr;
  Tdd* else_child = nullptr;
  Tdd* dontcare_child = nullptr;
};

// Hand-built modules for the finalization and netlist writer tests.
#pragma once

#include <cstdlib>
#include <string>

#include "bdd/bddpp.h"
#include "util/compilation.h"
#include "equations/Bddexpression.h"
#include "model/module.h"
#include "signals/signal_manager.h"
#include "common/quarn_test.h"

namespace c_test {

using quarn_test::input;
using quarn_test::local;
using quarn_test::output;

inline bdd over(Module& m, Signal* s) { return s->getOverBdd(&m, m.getBddWood()); }
inline bdd under(Module& m, Signal* s) { return s->getUnderBdd(&m, m.getBddWood()); }

// over(s) = f and under(s) = not f in the current occurrence, as an emission gives.
inline void drive(Module& m, Signal* s, const bdd& f, int type = Compilation::STAT) {
  Bddexpressionwood* w = m.getBddWood();
  new Bddexpression(s->getInternalName(), w, over(m, s), f, 0, 0, type);
  new Bddexpression(s->getInternalName(), w, under(m, s), w->Bdd_not(f), 0, 0, type + 1);
}

// By the variable's present name (finalization renames variables).
inline long index_named(Module& m, const std::string& var_name) {
  Bddexpressionwood* w = m.getBddWood();
  for (long i = 0; i < w->my_bdd_manager()->Nb_bdd_vars; i++)
    if (w->Name_var_by_index(i) == var_name) return i;
  return -1;
}

inline Bddexpression* equation(Module& m, const std::string& var_name) {
  long i = index_named(m, var_name);
  return i >= 0 ? m.getBddWood()->exp_by_index(i) : nullptr;
}

}  // namespace c_test

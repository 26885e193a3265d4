// What the target generators share: file names, wire lists, the queries on a right side
// in the two-wire code.
#include <algorithm>

#include "bdd/bddpp.h"
#include "equations/Bddexpression.h"
#include "model/module.h"
#include "signals/signal_manager.h"
#include "targets/formats.h"

std::string target_file_name(const std::string& module, const std::string& output_file,
                             const std::string& ext) {
  if (output_file.empty()) return module + ext;
  if (output_file.find(ext) != std::string::npos) return output_file;
  return output_file + ext;
}

bool item_in(std::list<std::string>& list, const std::string& item) {
  return std::find(list.begin(), list.end(), item) != list.end();
}

namespace {

int awaited(Module* m, bdd f, Signal* s, bool value) {
  Bddexpressionwood* wood = m->getBddWood();
  if (!wood || !f.initialised()) return 0;
  bddpp_manager* manager = wood->my_bdd_manager();
  bdd over = s->getOverBdd(m, wood);
  bdd under = s->getUnderBdd(m, wood);
  if (!over.initialised()) return 0;
  // Two-wire code: the under wire is the negation of the over wire.
  if (under.initialised() && manager->Bdd_depends_on(f, under)) f = manager->Bdd_compose(f, under, manager->Bdd_not(over));
  if (!manager->Bdd_depends_on(f, over)) return 0;
  bdd r = manager->Bdd_cube_reduce(f, value ? over : manager->Bdd_not(over));
  return r == manager->Bdd_zero() ? 0 : 1;
}

}  // namespace

int quadrival_var_true_awaited(Module* m, bdd f, Signal* s) { return awaited(m, f, s, true); }
int quadrival_var_false_awaited(Module* m, bdd f, Signal* s) { return awaited(m, f, s, false); }

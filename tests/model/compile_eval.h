// A reference evaluator for compiled modules: runs the (over, under) equations of a
// module's wood reaction by reaction, in the order of earliest_sort().
#pragma once

#include <cstdlib>
#include <iostream>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "bdd/bddpp.h"
#include "equations/Bddexpression.h"
#include "model/module.h"
#include "signals/signal_manager.h"

namespace compile_eval {

// Four values as letters: '1' true, '0' false, '-' bottom, 'E' error.
inline char fourValue(int over, int under) {
  if (over == 1 && under == 1) return 'E';
  if (over == 1) return '1';
  if (under == 1) return '0';
  return '-';
}

class Reactor {
 public:
  explicit Reactor(Module* m) : module(m), wood(m->getBddWood()), manager(wood->my_bdd_manager()) {
    if (m->getRegisterList())
      for (regclass* r : *m->getRegisterList()) state[r] = r->is_initialy_true() != 0;
    order = wood->earliest_sort();
  }

  // One reaction with the given inputs present (the others absent). The module's SET
  // holds in the first reaction only, its RESET never. Returns the outputs that are
  // not bottom, each as name '=' four value, in output list order.
  std::string react(const std::set<std::string>& present) {
    std::vector<int> values(wood->Nb_bdd_vars(), 2);
    auto setPair = [&](Signal* s, bool on) {
      values[s->getInitialOverBddId(module, wood)] = on ? 1 : 0;
      values[s->getInitialUnderBddId(module, wood)] = on ? 0 : 1;
    };
    for (Signal* s : *module->getInputSignalList()) setPair(s, present.count(s->getOriginalName()));
    setPair(module->getSet(), first);
    setPair(module->getReset(), false);
    for (auto& [r, on] : state) setPair(r->actual_var(), on);
    unknownRead = false;
    for (long i : order) {
      Bddexpression* e = wood->exp_by_index(i);
      if (!e) continue;
      int v = manager->Bdd_eval_for_literal(e->my_bdd_exp(), values.data());
      if (v == 2) {
        unknownRead = true;
        if (getenv("COMPILE_EVAL_DEBUG")) std::cerr << "unknown: " << e->debug_in_string() << "\n";
      }
      values[i] = v;
    }
    std::string out;
    for (Signal* s : *module->getOutputSignalList()) {
      char c = fourValue(values[s->getInitialOverBddId(module, wood)],
                         values[s->getInitialUnderBddId(module, wood)]);
      if (c == '-') continue;
      if (!out.empty()) out += ' ';
      out += s->getOriginalName();
      if (c != '1') out += std::string("=") + c;
    }
    for (auto& [r, on] : state) on = values[r->next_var()->getInitialOverBddId(module, wood)] == 1;
    first = false;
    last = values;
    return out;
  }

  // A local or wire of the last reaction, by internal name.
  char valueOf(const std::string& internalName) {
    long o = wood->Index_var_by_name("_s_" + internalName);
    long u = wood->Index_var_by_name("_v_" + internalName);
    if (o < 0 || u < 0 || last.empty()) return '?';
    return fourValue(last[o], last[u]);
  }

  // Some equation read a variable that no earlier equation had computed.
  bool unknownRead = false;

 private:
  Module* module;
  Bddexpressionwood* wood;
  bddpp_manager* manager;
  std::map<regclass*, bool> state;
  std::list<long> order;
  std::vector<int> last;
  bool first = true;
};

}  // namespace compile_eval

// Pure simulation: the module's netlist handed to the netlist simulator "tarvix", and
// three queries on the module's state space.
#include <cstdlib>
#include <deque>
#include <fstream>
#include <iostream>
#include <list>
#include <utility>
#include <vector>

#include "bdd/bddpp.h"
#include "util/compilation.h"
#include "equations/Bddexpression.h"
#include "model/module.h"
#include "signals/signal_manager.h"
#include "util/sim_support.h"

namespace {

const std::list<int> kKept = {Compilation::SINPUT, Compilation::VINPUT, Compilation::SOUTPUT,
                              Compilation::VOUTPUT, Compilation::SREG,   Compilation::VREG,
                              Compilation::SCLOCK, Compilation::VCLOCK};

// A copy of the module's wood on the module's own manager; the common-manager setting of
// the original comes back when the guard goes.
struct SharedCopy {
  Bddexpressionwood* wood;
  int saved;
  Bddexpressionwood* copy;
  explicit SharedCopy(Bddexpressionwood* w) : wood(w), saved(w->get_common_bdd_manager()) {
    wood->set_common_bdd_manager(1);
    copy = new Bddexpressionwood(wood);
  }
  ~SharedCopy() {
    delete copy;
    wood->set_common_bdd_manager(saved);
  }
};

bool isConstant(Bddexpression* e, bool value) {
  if (!e || !e->my_bdd_exp().initialised()) return false;
  const bdd& r = e->my_bdd_exp();
  if (r.node() != r.manager_ref()->Bdd_node_one()) return false;
  return (r.link_type() == 1) == value;
}

}  // namespace

void Module::simulate() {
  if (!getCompilation()) Compilation::IllegalOperationException("Simulation requires compilation");
  const std::string path = SimulationDir + name + ".blif";
  {
    std::ifstream existing(path);
    if (existing) std::cerr << "File: " << name << ".blif" << " already exists. File rewrited." << std::endl;
  }
  if (!getFinalised()) {
    std::cout << "AVANT FINALISATION" << "\n" << *getBddWood() << "\n";
    finalize(0);
    std::cout << "APRES FINALISATION" << "\n" << *getBddWood() << "\n";
  }
  std::cout.flush();
  {
    std::ofstream out(path);
    BLIF_put(out, !Compilation::KeepWiresFlag);
  }
  const std::string command = "tarvix " + SimulationDir + name;
  if (int status = quarn_sim_run(command); status != 0) {
    std::cerr << "quarnc: -pure_simul: the simulator tarvix ended with status " << status << std::endl;
    std::exit(1);
  }
}

bdd Module::next_state(bdd state, bdd inputs) {
  Bddexpressionwood* wood = getBddWood();
  SharedCopy shared(wood);
  shared.copy->reduce_expressions(state, kKept);
  shared.copy->reduce_expressions(inputs, kKept);
  shared.copy->constants_propagation();
  bdd cube = wood->Bdd_one();
  if (registerList)
    for (regclass* r : *registerList) {
      long id = r->next_var()->getOverBddId(this, wood);
      if (id < 0) continue;
      bdd v = wood->Bdd_var_by_index(id);
      cube = wood->Bdd_and(cube, isConstant(shared.copy->exp_by_index(id), true) ? v : wood->Bdd_not(v));
    }
  return cube;
}

bdd Module::state_corres(bdd next_state_cube) {
  Bddexpressionwood* wood = getBddWood();
  bddpp_manager* manager = wood->my_bdd_manager();
  bdd result = next_state_cube;
  if (registerList)
    for (regclass* r : *registerList) {
      long next = r->next_var()->getOverBddId(this, wood);
      long actual = r->actual_var()->getOverBddId(this, wood);
      if (next < 0 || actual < 0) continue;
      result = manager->Bdd_compose(result, wood->Bdd_var_by_index(next), wood->Bdd_var_by_index(actual));
    }
  return result;
}

int Module::real_possible_transitions(bdd state, bdd expected, bdd* results) {
  Bddexpressionwood* wood = getBddWood();
  bddpp_manager* manager = wood->my_bdd_manager();
  SharedCopy shared(wood);
  shared.copy->reduce_expressions(state, kKept);
  std::vector<int> literals(wood->Nb_bdd_vars() + 1, 2);
  manager->Bdd_to_literals(expected, literals.data());

  std::deque<std::pair<Bddexpressionwood*, bdd>> queue;
  queue.emplace_back(new Bddexpressionwood(shared.copy), wood->Bdd_one());
  int count = 0;
  while (!queue.empty()) {
    auto [w, condition] = queue.front();
    queue.pop_front();
    long v = w->reduce_proposition_by_variable();
    if (v >= 0) {
      bdd x = wood->Bdd_var_by_index(v);
      Bddexpressionwood* positive = new Bddexpressionwood(w);
      Bddexpressionwood* negative = new Bddexpressionwood(w);
      positive->reduce_expressions(x, kKept);
      negative->reduce_expressions(wood->Bdd_not(x), kKept);
      queue.emplace_back(positive, wood->Bdd_and(condition, x));
      queue.emplace_back(negative, wood->Bdd_and(condition, wood->Bdd_not(x)));
    } else {
      for (long i = 0; i < wood->Nb_bdd_vars(); ++i) {
        if (literals[i] == 2) continue;
        Bddexpression* e = w->exp_by_index(i);
        if (!e) continue;
        if ((literals[i] == 1 && isConstant(e, false)) || (literals[i] == 0 && isConstant(e, true))) {
          results[count++] = condition;
          break;
        }
      }
    }
    delete w;
  }
  return count;
}

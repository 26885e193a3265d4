// The netlist of a module for the netlist simulator, in the text of the BLIF target.
// Weak: the BLIF target's own definition takes its place when it is linked.
#include <iostream>
#include <string>

#include "bdd/bddpp.h"
#include "driver/compilation.h"
#include "equations/Bddexpression.h"
#include "model/module.h"
#include "signals/signal_manager.h"
#include "util/report.h"

namespace {

void nodeTables(bddpp_manager* manager, const std::string& base, std::ostream& out, bdd_node* n) {
  if (!n || n->mark) return;
  n->mark = 1;
  const std::string id = base + "_" + std::to_string(n->global_id());
  if (n == manager->Bdd_node_one()) {
    out << ".names " << id << "\n" << "1" << "\n";
  } else if (n->then_node == manager->Bdd_node_one() && n->else_node == manager->Bdd_node_one() &&
             n->else_link_type == -1) {
    out << ".names " << manager->Name_var_by_id(n->var_id) << " " << id << "\n" << "1 1" << "\n";
  } else {
    nodeTables(manager, base, out, n->then_node);
    nodeTables(manager, base, out, n->else_node);
    out << ".names " << manager->Name_var_by_id(n->var_id) << " " << base << "_" << n->then_node->global_id()
        << " " << base << "_" << n->else_node->global_id() << " " << id << "\n"
        << "11- 1" << "\n"
        << "0-" << (n->else_link_type == 1 ? "1" : "0") << " 1" << "\n";
  }
  out << "\n";
}

void valuedMessage(const std::string& name) {
  std::string text = "ERROR: valued signal " + name + " is not supported in blif generation!";
  report_message(text);
  std::cerr << text << std::endl;
}

}  // namespace

__attribute__((weak)) void Module::BLIF_put(std::ostream& out, int) {
  if (!getCompilation()) {
    report_message("ERROR in Module::BLIF_put(): no equationtable defined!");
    std::cerr << "ERROR in Module::BLIF_put(): no equationtable defined!" << std::endl;
    std::exit(1);
  }
  Bddexpressionwood* wood = getBddWood();
  if (!wood) {
    report_message("ERROR in Module::BLIF_put(): no bdd manager defined!");
    std::cerr << "ERROR in Module::BLIF_put(): no bdd manager defined!" << std::endl;
    std::exit(1);
  }
  auto var = [&](long i) { return wood->Name_var_by_index(i); };
  const std::string B = name + "_node";
  out << ".model " << name << "\n";
  if (!finalised) out << ".inputs" << " _s_SET" << name << " _s_RESET" << name;
  if (inputList && !inputList->empty()) {
    if (finalised) out << ".inputs";
    for (Signal* s : *inputList) {
      if (s->isValued(this)) valuedMessage(s->getOriginalName());
      long over = s->getOverBddId(this, wood);
      if (over < 0) continue;
      out << " " << var(over);
      long under = s->getUnderBddId(this, wood);
      if (!finalised && under >= 0) out << " " << var(under);
    }
    if (dataSignalList)
      for (Signal* s : *dataSignalList) {
        long over = s->getOverBddId(this, wood);
        if (over < 0) continue;
        out << " " << var(over);
        long under = s->getUnderBddId(this, wood);
        if (!finalised && under >= 0) out << " " << var(under);
      }
  }
  out << "\n";
  if (!finalised) out << ".outputs" << " _s_RTL" << name;
  if (outputList && !outputList->empty()) {
    if (finalised) out << ".outputs";
    for (Signal* s : *outputList) {
      if (s->isValued(this)) valuedMessage(s->getOriginalName());
      SignalRef* ref = signalManager->getSignalRefByName(s->getInternalName());
      if (!ref) continue;
      long over = ref->getOverBddId(wood);
      if (over < 0) continue;
      out << " " << var(over);
      long under = ref->getUnderBddId(wood);
      if (!finalised && under >= 0) out << " " << var(under);
    }
  }
  out << "\n";
  if (registerList && !registerList->empty()) {
    for (regclass* r : *registerList)
      out << ".latch " << var(r->next_var()->getOverBddId(this, wood)) << " "
          << var(r->actual_var()->getOverBddId(this, wood)) << " " << r->is_initialy_true() << " " << "\n";
    out << "\n";
  }
  if (preList && !preList->empty())
    for (memorizedSignal* p : *preList) {
      Signal* a = p->getActual();
      const std::string P = p->getPre()->getOriginalName();
      if (p->getPre()->isValued(this)) valuedMessage(P);
      bool io = a->isInput() || a->isOutput();
      out << ".latch " << (a->isLocal() ? var(a->getInitialOverBddId(this, wood)) : a->getOriginalName())
          << (io ? "_latch" : "") << " " << P << " 0" << "\n";
      if (io) out << ".names " << a->getOriginalName() << " " << a->getOriginalName() << "_latch" << "\n"
                  << " 1 1" << "\n";
    }
  bddpp_manager* manager = wood->my_bdd_manager();
  manager->Bdd_global_clear_marks();
  for (long id : wood->earliest_sort()) {
    Bddexpression* e = wood->exp_by_index(id);
    if (!e || !e->my_bdd_var().initialised() || !e->my_bdd_exp().initialised()) continue;
    const std::string W = manager->Name_var_by_bdd(e->my_bdd_var());
    const bdd& r = e->my_bdd_exp();
    if (manager->Bdd_is_var(r)) {
      out << ".names " << manager->Name_var_by_bdd(r) << " " << W << "\n" << "1 1" << "\n";
    } else {
      nodeTables(manager, B, out, r.node());
      out << ".names " << B << "_" << r.node()->global_id() << " " << W << "\n"
          << (r.link_type() == 1 ? "1 1" : "0 1") << "\n";
    }
    out << "\n";
  }
  out << "\n" << ".end" << "\n" << "\n";
}

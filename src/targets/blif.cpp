// The BLIF target: one .model with latches for the registers and the pre signals and a
// two-way multiplexer table per BDD node. Values of valued signals are left out.
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <sstream>

#include "bdd/bddpp.h"
#include "util/compilation.h"
#include "equations/Bddexpression.h"
#include "util/report.h"
#include "model/module.h"
#include "signals/signal_manager.h"
#include "targets/formats.h"

namespace {

[[noreturn]] void blif_failure(const std::string& text) {
  report_message(text);
  std::cerr << text << std::endl;
  std::exit(1);
}

void valued_not_supported(const std::string& name) {
  const std::string text = "ERROR: valued signal " + name + " is not supported in blif generation!";
  report_message(text);
  std::cerr << text << std::endl;
}

bool has_id(long id) { return id >= 0; }

}  // namespace

void bddpp_manager::Print_node_for_eval_BLIF(const std::string& var_prefix, const std::string& var_suffix,
                                             const std::string& node_base, std::ostream& out, bdd_node* n) {
  if (!n || n->mark) return;
  n->mark = 1;
  if (n == one) {
    out << ".names " << node_base << "_" << n->global_id() << "\n" << "1" << "\n";
  } else if (n->then_node == one && n->else_node == one && n->else_link_type == -1) {
    out << ".names " << var_prefix << Name_var_by_id(n->var_id) << var_suffix << " " << node_base << "_"
        << n->global_id() << "\n" << "1 1" << "\n";
  } else {
    Print_node_for_eval_BLIF(var_prefix, var_suffix, node_base, out, n->then_node);
    Print_node_for_eval_BLIF(var_prefix, var_suffix, node_base, out, n->else_node);
    if (n->then_node && n->else_node) {
      out << ".names " << var_prefix << Name_var_by_id(n->var_id) << var_suffix << " " << node_base << "_"
          << n->then_node->global_id() << " " << node_base << "_" << n->else_node->global_id() << " "
          << node_base << "_" << n->global_id() << "\n"
          << "11- 1" << "\n"
          << "0-" << (n->else_link_type == 1 ? "1" : "0") << " 1" << "\n";
    }
  }
  out << "\n";
}

void Bddexpression::put_blif(std::ostream& out, const std::string& node_base) {
  if (!variable.initialised() || !right.initialised()) return;
  bddpp_manager* manager = right.manager_ref();
  const std::string w = manager->Name_var_by_bdd(variable);
  if (manager->Bdd_is_var(right)) {
    out << ".names " << manager->Name_var_by_bdd(right) << " " << w << "\n" << "1 1" << "\n";
    return;
  }
  manager->Print_node_for_eval_BLIF("", "", node_base, out, right.node());
  out << ".names " << node_base << "_" << right.node()->global_id() << " " << w << "\n"
      << (right.link_type() == 1 ? "1 1" : "0 1") << "\n";
}

void Bddexpressionwood::Put_blif(std::ostream& out, const std::string& node_base) {
  manager->Bdd_global_clear_marks();
  for (long id : earliest_sort()) {
    Bddexpression* e = exp_by_index(id);
    if (!e) continue;
    e->put_blif(out, node_base);
    out << "\n";
  }
}

void Module::BLIF_put(std::ostream& out, int /*no_wires*/) {
  if (!compilation) blif_failure("ERROR in Module::BLIF_put(): no equationtable defined!");
  Bddexpressionwood* wood = getBddWood();
  if (!wood) blif_failure("ERROR in Module::BLIF_put(): no bdd manager defined!");
  auto wire = [&](long id) { return wood->Name_var_by_index(id); };
  const std::string& m = name;

  out << ".model " << m << "\n";

  if (!finalised) out << ".inputs" << " _s_SET" << m << " _s_RESET" << m;
  // The data signals (presence of data conditions) are read by the nodes: they are inputs
  // of the netlist even in a module without inputs, else they would be undriven.
  bool data_inputs = false;
  if (dataSignalList)
    for (Signal* s : *dataSignalList) data_inputs = data_inputs || has_id(s->getOverBddId(this, wood));
  if ((inputList && !inputList->empty()) || data_inputs) {
    if (finalised) out << ".inputs";
    auto put_signal = [&](Signal* s) {
      long over = s->getOverBddId(this, wood);
      if (has_id(over)) out << " " << wire(over);
      long under = s->getUnderBddId(this, wood);
      if (!finalised && has_id(under)) out << " " << wire(under);
    };
    if (inputList)
      for (Signal* s : *inputList) {
        if (s->isValued(this)) valued_not_supported(s->getOriginalName());
        put_signal(s);
      }
    if (dataSignalList)
      for (Signal* s : *dataSignalList) put_signal(s);
  }
  out << "\n";

  if (!finalised) out << ".outputs" << " _s_RTL" << m;
  if (outputList && !outputList->empty()) {
    if (finalised) out << ".outputs";
    for (Signal* s : *outputList) {
      if (s->isValued(this)) valued_not_supported(s->getOriginalName());
      SignalRef* ref = signalManager->getSignalRefByName(s->getInternalName());
      if (!ref) continue;
      long over = ref->getOverBddId(wood);
      if (has_id(over)) out << " " << wire(over);
      long under = ref->getUnderBddId(wood);
      if (!finalised && has_id(under)) out << " " << wire(under);
    }
  }
  out << "\n";

  if (registerList && !registerList->empty()) {
    for (regclass* r : *registerList)
      out << ".latch " << wire(r->next_var()->getOverBddId(this, wood)) << " "
          << wire(r->actual_var()->getOverBddId(this, wood)) << " " << r->is_initialy_true() << " " << "\n";
    out << "\n";
  }

  if (preList)
    for (memorizedSignal* p : *preList) {
      Signal* pre = p->getPre();
      Signal* a = p->getActual();
      if (pre->isValued(this)) valued_not_supported(pre->getOriginalName());
      const bool port = a->isInput() || a->isOutput();
      out << ".latch " << (a->isLocal() ? wire(a->getInitialOverBddId(this, wood)) : a->getOriginalName())
          << (port ? "_latch" : "") << " " << pre->getOriginalName() << " 0" << "\n";
      if (port)
        out << ".names " << a->getOriginalName() << " " << a->getOriginalName() << "_latch" << "\n"
            << " 1 1" << "\n";
    }

  wood->Put_blif(out, m + "_node");
  out << "\n" << ".end" << "\n" << "\n";
}

void Module::printBLIF() {
  // A module the netlist can't be written for ends the run before its file is made.
  if (!compilation || !getBddWood()) {
    std::ostringstream none;
    BLIF_put(none, !Compilation::KeepWiresFlag);
  }
  std::ofstream out;
  open_target(out, target_path(name, ".blif", true), false);
  BLIF_put(out, !Compilation::KeepWiresFlag);
}

// The NuSMV target: the presence part of a module as a MODULE whose registers and pre
// signals are state variables and whose equations are DEFINEs, and a MODULE main that
// leaves every input free.
#include <fstream>
#include <iostream>
#include <list>
#include <string>

#include "bdd/bddpp.h"
#include "util/compilation.h"
#include "equations/Bddexpression.h"
#include "model/module.h"
#include "signals/signal_manager.h"
#include "targets/formats.h"

namespace {

bool has_id(long id) { return id >= 0; }

std::string joined(const std::list<std::string>& names) {
  std::string s;
  for (const std::string& n : names) s += (s.empty() ? "" : ", ") + n;
  return s;
}

}  // namespace

void bddpp_manager::Print_node_for_eval_NUSMV(const std::string& var_prefix, const std::string& var_suffix,
                                              const std::string& line_prefix, const std::string& node_base,
                                              std::ostream& out, bdd_node* n) {
  if (!n || n->mark) return;
  n->mark = 1;
  const std::string& p = line_prefix;
  const std::string& b = node_base;
  if (n == one) {
    out << p << b << "_" << n->global_id() << ":= " << "TRUE" << ";" << "\n";
    return;
  }
  const std::string name = var_prefix + Name_var_by_id(n->var_id) + var_suffix;
  if (n->then_node == one && n->else_node == one && n->else_link_type == -1) {
    out << p << b << "_" << n->global_id() << ":= " << name << ";" << "\n";
    return;
  }
  Print_node_for_eval_NUSMV(var_prefix, var_suffix, line_prefix, node_base, out, n->then_node);
  Print_node_for_eval_NUSMV(var_prefix, var_suffix, line_prefix, node_base, out, n->else_node);
  out << p << b << "_" << n->global_id() << ":= " << name << " & " << b << "_" << n->then_node->global_id();
  if (n->else_node)
    out << " | " << "!" << name << " & " << (n->else_link_type != 1 ? "!" : "") << b << "_"
        << n->else_node->global_id();
  out << ";" << "\n";
}

void Module::NUSMV_put(std::ostream& out, int /*version*/, int /*no_wires*/) {
  Bddexpressionwood* wood = getBddWood();
  const std::string& m = name;
  std::list<std::string> free;
  std::list<std::string> state;  // registers, then pre signals
  std::list<std::string> state_init, state_next;
  if (wood) {
    bddpp_manager* manager = wood->my_bdd_manager();
    manager->Bdd_global_clear_marks();
    auto wire = [&](long id) { return wood->Name_var_by_index(id); };
    if (!finalised)
      for (Signal* s : {getSet(), getReset()})
        if (s && has_id(s->getUnderBddId(this, wood))) free.push_back(wire(s->getUnderBddId(this, wood)));
    auto add_free = [&](std::list<Signal*>* list) {
      if (!list) return;
      for (Signal* s : *list) {
        long over = s->getOverBddId(this, wood);
        if (has_id(over)) free.push_back(wire(over));
        long under = s->getUnderBddId(this, wood);
        if (!finalised && has_id(under)) free.push_back(wire(under));
      }
    };
    add_free(inputList);
    add_free(dataSignalList);
    if (registerList)
      for (regclass* r : *registerList) {
        state.push_back(wire(r->actual_var()->getOverBddId(this, wood)));
        state_init.push_back(r->is_initialy_true() ? " TRUE;" : "FALSE;");
        state_next.push_back(wire(r->next_var()->getOverBddId(this, wood)));
      }
    // A pre signal is a state variable that starts false and takes the actual signal.
    if (preList)
      for (memorizedSignal* p : *preList) {
        Signal* a = p->getActual();
        state.push_back(p->getPre()->getOriginalName());
        state_init.push_back("FALSE;");
        state_next.push_back(a->isLocal() ? wire(a->getInitialOverBddId(this, wood)) : a->getOriginalName());
      }
  }

  out << "MODULE " << m << "(" << joined(free) << ")" << "\n";
  out << "VAR" << "\n";
  for (const std::string& a : state) out << a << ": boolean;" << "\n";
  out << "ASSIGN" << "\n";
  auto init = state_init.begin();
  for (const std::string& a : state) out << "init(" << a << ") := " << *init++ << "\n";
  out << "DEFINE" << "\n";
  if (wood) {
    bddpp_manager* manager = wood->my_bdd_manager();
    for (long id = 0; id < wood->Nb_bdd_vars(); id++) {
      Bddexpression* e = wood->exp_by_index(id);
      if (!e || e->getAbstraction()) continue;
      const bdd& v = e->my_bdd_var();
      const bdd& r = e->my_bdd_exp();
      if (!v.initialised() || !r.initialised()) continue;
      const std::string w = manager->Name_var_by_bdd(v);
      if (manager->Bdd_is_var(r)) {
        out << "   " << w << " := " << manager->Name_var_by_bdd(r) << ";" << "\n";
        continue;
      }
      manager->Print_node_for_eval_NUSMV("", "", "   ", "node", out, r.node());
      out << "   " << w << " := " << (r.link_type() == 1 ? "" : "!") << "node_" << r.node()->global_id() << ";"
          << "\n";
    }
  }
  out << "ASSIGN" << "\n";
  auto next = state_next.begin();
  for (const std::string& a : state) out << "next(" << a << ") := " << *next++ << ";" << "\n";
  out << "\n" << "\n" << "MODULE  main" << "\n" << "VAR" << "\n";
  for (const std::string& i : free) out << i << ": boolean;" << "\n";
  out << "m" << m << ": " << m << "(" << joined(free) << ");" << "\n";
  out << "ASSIGN" << "\n";
  for (const std::string& i : free) out << i << ":= {FALSE, TRUE};" << "\n";
}

void Module::printSMV() {
  std::ofstream out;
  open_target(out, target_path(name, ".smv", true), true);
  if (!finalised) finalize(0);
  NUSMV_put(out, 2, !Compilation::KeepWiresFlag);
}

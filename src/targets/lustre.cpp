// The Lustre target: a finalized module as one node; a BDD node is a local flow.
#include <cstdlib>
#include <iostream>
#include <map>
#include <set>
#include <sstream>
#include <vector>

#include "bdd/bddpp.h"
#include "data/data.h"
#include "util/compilation.h"
#include "equations/Bddexpression.h"
#include "model/module.h"
#include "signals/signal_manager.h"
#include "targets/formats.h"

namespace {

bool has_id(long id) { return id >= 0; }

// One definition per node, children first, the flow of node n named base_n; marked
// nodes were written by an earlier equation.
void put_flows(bddpp_manager* manager, const std::string& or_op, const std::string& and_op,
               const std::string& not_op, const std::string& close_not, const std::string& var_prefix,
               const std::string& var_suffix, const std::string& zero, const std::string& end_of_line,
               const std::string& base, std::ostream& out, bdd_node* n, bdd_node* terminal) {
  if (!n || n->mark) return;
  n->mark = 1;
  if (n == terminal) {
    out << "   " << base << "_" << n->global_id() << "= " << not_op << zero << close_not;
  } else if (n->then_node == terminal && n->else_node == terminal && n->else_link_type == -1) {
    out << "  " << base << "_" << n->global_id() << "= " << var_prefix << manager->Name_var_by_id(n->var_id)
        << var_suffix;
  } else {
    put_flows(manager, or_op, and_op, not_op, close_not, var_prefix, var_suffix, zero, end_of_line, base, out,
              n->then_node, terminal);
    put_flows(manager, or_op, and_op, not_op, close_not, var_prefix, var_suffix, zero, end_of_line, base, out,
              n->else_node, terminal);
    const std::string name = manager->Name_var_by_id(n->var_id);
    out << "  " << base << "_" << n->global_id() << "= " << var_prefix << name << var_suffix << and_op << base
        << "_" << n->then_node->global_id();
    if (n->else_node) {
      out << or_op << not_op << var_prefix << name << var_suffix << close_not << and_op;
      if (n->else_link_type == 1)
        out << base << "_" << n->else_node->global_id();
      else
        out << not_op << base << "_" << n->else_node->global_id() << close_not;
    }
  }
  out << end_of_line << "\n";
}

void mark_used(bdd_node* n, int size, int* used) {
  if (!n || n->mark) return;
  n->mark = 1;
  if (n->global_id() < size) used[n->global_id()] = 1;
  mark_used(n->then_node, size, used);
  mark_used(n->else_node, size, used);
}

// Signals in a set of clocks come out by name, so that the text does not depend on
// where they were allocated.
struct ByInternalName {
  bool operator()(Signal* a, Signal* b) const { return a->getInternalName() < b->getInternalName(); }
};

}  // namespace

void bddpp_manager::Print_node_for_eval_arrayless(const std::string& or_op, const std::string& and_op,
                                                  const std::string& not_op, const std::string& close_not,
                                                  const std::string& var_prefix, const std::string& var_suffix,
                                                  const std::string& zero, const std::string& end_of_line,
                                                  const std::string& node_array, std::ostream& out, bdd_node* n) {
  put_flows(this, or_op, and_op, not_op, close_not, var_prefix, var_suffix, zero, end_of_line, node_array, out, n,
            Bdd_one().node());
}

void Bddexpression::put_lustre_arrayless(std::ostream& out, const std::string& node_base) {
  if (!variable.initialised() || !right.initialised()) return;
  bddpp_manager* manager = right.manager_ref();
  const std::string left = "   " + manager->Name_var_by_bdd(variable);
  if (manager->Bdd_is_var(right)) {
    out << left << "= " << manager->Name_var_by_bdd(right) << ";";
    return;
  }
  manager->Print_node_for_eval_arrayless(" or ", " and ", "not ", "", "", "", "false", ";", node_base, out,
                                         right.node());
  out << left << (right.link_type() == 1 ? "= " : "= not ") << node_base << "_" << right.node()->global_id()
      << ";";
}

void Bddexpressionwood::Lustre_writing_node_used(int size, int* used) {
  for (int i = 0; i < size; i++) used[i] = 0;
  manager->Bdd_global_clear_marks();
  for (long id : earliest_sort()) {
    Bddexpression* e = exp_by_index(id);
    if (!e || !e->my_bdd_exp().initialised() || manager->Bdd_is_var(e->my_bdd_exp())) continue;
    mark_used(e->my_bdd_exp().node(), size, used);
  }
  manager->Bdd_global_clear_marks();
}

std::set<long> Module::get_really_used_wood_variables() {
  Bddexpressionwood* wood = getBddWood();
  std::set<long> used;
  if (!wood) return used;
  used = wood->Set_of_index_used_variables();
  if (inputList)
    for (Signal* s : *inputList)
      if (!s->isPre() && s->hasOccurrence(wood)) used.erase(s->getOverBddId(this, wood));
  // An output is a parameter under its first occurrence; its under wire only while the
  // module is not finalized.
  if (outputList)
    for (Signal* s : *outputList) {
      if (!s->hasOccurrence(wood)) continue;
      used.erase(s->getInitialOverBddId(this, wood));
      if (!finalised) used.erase(s->getInitialUnderBddId(this, wood));
    }
  return used;
}

void Module::LUSTRE_put_equation(std::ostream& out, const std::string& node_base, std::list<std::string>&) {
  Bddexpressionwood* wood = getBddWood();
  if (!wood) return;
  wood->my_bdd_manager()->Bdd_global_clear_marks();
  std::set<Signal*, ByInternalName> clocks;
  for (const SortedEquation& q : sorted_equations(*this, wood)) {
    Bddexpression* e = q.exp;
    DataBinding* b = q.binding;
    if (e->getAbstraction()) {
      if (!b) {
        report_unbound_abstraction(q.signal_name);
        exit(1);
      }
      out << "  " << e->my_bddname() << " = ";
      b->getValue()->LUSTRE_put(out, this);
      out << ";" << "\n";
      continue;
    }
    e->put_lustre_arrayless(out, node_base);
    out << "\n";
    if (b && b->getClock()) clocks.insert(b->getClock());
  }
  for (Signal* clock : clocks) {
    const std::string w = wood->Name_var_by_index(clock->getInitialOverBddId(this, wood));
    const std::string z = DataTypeTable::zero_lustre(clock->getValueType(this));
    out << "  " << w << "_val =" << "\n" << "    if " << w << " then " << "\n";
    std::list<DataBinding*>* bindings = getDataBindingByClock(clock);
    if (bindings)
      for (DataBinding* b : *bindings) {
        out << "      if " << wood->Name_var_by_index(b->getSignal()->getInitialOverBddId(this, wood)) << " then ";
        b->getValue()->LUSTRE_put(out, this);
        out << "\n" << "      else " << "\n";
      }
    delete bindings;
    out << "      " << z << "\n" << "    else " << z << ";" << "\n";
  }
}

void Module::LUSTRE_put(std::ostream& out, int) {
  Bddexpressionwood* wood = getBddWood();
  if (!wood) return;
  bddpp_manager* manager = wood->my_bdd_manager();
  auto wire = [&](long id) { return wood->Name_var_by_index(id); };
  const std::string& m = name;

  if (Compilation::GDataConstantTable && Compilation::GDataConstantTable->getConstantList())
    for (ConstantDecl* c : *Compilation::GDataConstantTable->getConstantList()) {
      // A constant without a value is imported: it needs its type.
      if (c->getValueTable())
        c->LUSTRE_put(out, this);
      else
        out << "const " << " " << c->getName() << ": " << c->getType() << ";";
      out << "\n";
    }

  // Parameters: presence flows, value flows of valued signals, and the under wires
  // that a module not finalized still has.
  std::string sep;
  auto parameters = [&](std::list<Signal*>* signals, bool initial) {
    if (!signals) return;
    for (Signal* s : *signals) {
      if (!s->hasOccurrence(wood)) continue;
      long over = initial ? s->getInitialOverBddId(this, wood) : s->getOverBddId(this, wood);
      if (!has_id(over)) continue;
      out << sep << wire(over) << ": bool";
      sep = "; ";
      if (s->isValued(this)) out << "; " << wire(over) << "_val: " << s->getValueType(this);
      long under = initial ? s->getInitialUnderBddId(this, wood) : s->getUnderBddId(this, wood);
      if (!finalised && has_id(under)) out << "; " << wire(under) << ": bool";
    }
  };
  out << "\n" << "node " << m << "(";
  if (!finalised) {
    out << " _s_SET" << m << ", _s_RESET" << m << ": bool";
    sep = "; ";
  }
  parameters(inputList, false);
  // A node needs a parameter.
  if (sep.empty()) out << "useless : bool";
  out << ")" << "\n";
  out << "     returns (";
  sep.clear();
  if (!finalised) {
    out << "_s_RTL" << m << ":bool";
    sep = "; ";
  }
  parameters(outputList, true);
  out << ");" << "\n" << "\n";

  // Declarations; "var" only in front of at least one.
  std::ostringstream decls;
  // A flow is declared when the node defines it: by an equation, as a register or as
  // a pre signal. A variable that only an abstract equation depends on stays out.
  std::set<long> used_vars;
  std::set<long> defined = wood->getExpIds();
  if (registerList)
    for (regclass* r : *registerList) defined.insert(r->actual_var()->getOverBddId(this, wood));
  if (preList)
    for (memorizedSignal* p : *preList)
      if (p->getPre()->hasOccurrence(wood)) defined.insert(p->getPre()->getOverBddId(this, wood));
  for (long id : get_really_used_wood_variables())
    if (defined.count(id)) used_vars.insert(id);
  bool first = true;
  for (long id : used_vars) {
    if (!first) decls << "," << "\n";
    first = false;
    decls << "  " << wire(id);
  }
  if (!used_vars.empty()) decls << ": bool;" << "\n";
  int size = int(manager->Bdd_total_size());
  std::vector<int> used(size, 0);
  wood->Lustre_writing_node_used(size, used.data());
  for (int i = 0; i < size; i++)
    if (used[i]) decls << "  " << m << "_node" << "_" << i << ": bool;" << "\n";
  if (localList)
    for (Signal* s : *localList) {
      if (!s->hasOccurrence(wood) || !s->isValued(this) || getBinding(s->getName(this))) continue;
      long over = s->getInitialOverBddId(this, wood);
      if (has_id(over)) decls << "  " << wire(over) << "_val:" << s->getValueType(this) << ";" << "\n";
    }
  if (preList)
    for (memorizedSignal* p : *preList)
      if (p->getPre()->isValued(this))
        decls << "  " << p->getPre()->getOriginalName() << "_val:" << p->getPre()->getValueType(this) << ";"
              << "\n";
  if (!decls.str().empty()) out << "var" << "\n" << decls.str();

  out << "let" << "\n" << "\n";
  if (registerList)
    for (regclass* r : *registerList)
      out << "  " << wire(r->actual_var()->getOverBddId(this, wood)) << "= "
          << (r->is_initialy_true() ? "true" : "false") << "->pre(" << wire(r->next_var()->getOverBddId(this, wood))
          << ");" << "\n";
  if (preList)
    for (memorizedSignal* p : *preList) {
      Signal* pre = p->getPre();
      Signal* a = p->getActual();
      const std::string& pn = pre->getOriginalName();
      // A local is read as a whole, under its first occurrence, as its value flow is.
      const std::string r = a->isLocal() ? wire(a->getInitialOverBddId(this, wood)) : a->getOriginalName();
      out << "  " << pn << "= " << "false ->pre(" << r << ");" << "\n";
      if (pre->isValued(this))
        out << "  " << pn << "_val= " << p->getInitialValue() << "->pre(" << r << "_val);" << "\n";
    }
  out << "\n" << "  " << "-- outputs computing" << "\n";
  std::list<std::string> wires;
  LUSTRE_put_equation(out, m + "_node", wires);
  out << "\n" << "tel" << "\n";
}

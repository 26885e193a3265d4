// The documentation form of a module: its state, interface, initial state, transition
// and definitions as readable equations, then its bindings and data tables.
#include <iostream>

#include "bdd/bddpp.h"
#include "data/data.h"
#include "util/compilation.h"
#include "equations/Bddexpression.h"
#include "model/module.h"
#include "signals/signal_manager.h"

namespace {

bool has_id(long id) { return id >= 0; }

}  // namespace

void Bddexpression::put_doc(std::ostream& out, const std::string& node_base) {
  if (!variable.initialised()) {
    out << "   not defined!";
    return;
  }
  bddpp_manager* manager = variable.manager_ref();
  const std::string left = "   " + manager->Name_var_by_bdd(variable);
  if (!right.initialised()) {
    out << left << "= ???";
  } else if (manager->Bdd_is_one_tautologic(right)) {
    out << left << "= true;";
  } else if (manager->Bdd_is_zero_tautologic(right)) {
    out << left << "= false;";
  } else if (manager->Bdd_is_var(right)) {
    out << left << "= " << manager->Name_var_by_bdd(right) << ";";
  } else {
    manager->Print_node_for_eval_NUSMV("", "", "   ", node_base, out, right.node());
    out << left << (right.link_type() == 1 ? "= " : "= !") << node_base << "_" << right.node()->global_id();
  }
}

void Bddexpressionwood::Put_doc(std::ostream& out, const std::string& node_base) {
  manager->Bdd_global_clear_marks();
  for (long id : earliest_sort()) {
    Bddexpression* e = exp_by_index(id);
    if (!e) continue;
    e->put_doc(out, node_base);
    out << "\n";
  }
}

namespace {

// The binding table: for each binding its clock, its signal with every occurrence, and the
// number of its value in the evaluation table that follows.
void docBindings(std::ostream& out, Module* m, Bddexpressionwood* wood) {
  std::map<std::string, DataBinding*>* dataTable = m->getDataTable();
  if (!dataTable) return;
  out << "Binding table" << "\n";
  std::list<DataExpr*> evaluations;
  for (const auto& [key, b] : *dataTable) {
    out << "presence du signal: \"" << key << "\" declenche l'emission de : " << "\n";
    if (b->getClock()) {
      out << "  - value support signal : ";
      m->DEBUG_OneSignal_put(out, b->getClock());
      out << "\n";
    } else {
      out << "  - no value support signal ..." << "\n";
    }
    if (Signal* s = b->getSignal()) {
      out << "  - signal data: ";
      m->DEBUG_OneSignal_put(out, s);
      out << "\n";
      std::list<SignalRef*>* refs = m->getSignalManager()->getAllSignalRef(s, wood);
      for (SignalRef* r : *refs)
        out << "      associated occurence: " << r->getCurrentOccurrence() << ": " << r->getCurrentName() << " ("
            << r->getOverBddId(wood) << ", " << r->getUnderBddId(wood) << "): " << "\n";
      delete refs;
    }
    out << "  - evaluation tree: " << evaluations.size() << "\n";
    evaluations.push_back(b->getValue());
  }
  out << "\n" << "\n" << "evaltable:" << "\n";
  int i = 0;
  for (DataExpr* e : evaluations) {
    out << " index: " << i++ << ": ";
    e->DEBUG_put(out, m);
    out << ";" << "\n";
  }
}

// The user's types, methods and the constants without a value table.
void docDataTables(std::ostream& out, Module* m) {
  if (Compilation::GDataTypeTable) {
    out << "data type:" << "\n";
    for (const auto& entry : Compilation::GDataTypeTable->getTypeTable()) out << entry.first << "\n";
    if (Compilation::GDataMethodTable) {
      out << "\n" << "methods table:" << "\n";
      Compilation::GDataMethodTable->C_put(out);
    }
  }
  if (Compilation::GDataConstantTable) {
    out << "\n" << "constants table: " << "\n";
    if (Compilation::GDataConstantTable->getConstantList())
      for (ConstantDecl* c : *Compilation::GDataConstantTable->getConstantList())
        if (!c->getValueTable()) {
          c->DEBUG_put(out, m);
          out << "\n";
        }
  }
}

}  // namespace

void Module::DOC_put(std::ostream& out, int) {
  Bddexpressionwood* wood = getBddWood();
  if (!wood) return;
  auto wire = [&](long id) { return wood->Name_var_by_index(id); };
  // A register's state is named by its under wire; a finalized wood keeps only the over.
  auto state_name = [&](Signal* s) {
    long under = s->getUnderBddId(this, wood);
    return wire(has_id(under) ? under : s->getOverBddId(this, wood));
  };
  const std::string& m = name;
  std::list<regclass*> registers = registerList ? *registerList : std::list<regclass*>();

  if (!registers.empty()) {
    out << "state ";
    bool first = true;
    for (regclass* r : registers) {
      out << (first ? "" : ", ") << state_name(r->actual_var());
      first = false;
    }
    out << ";" << "\n" << "\n";
  }

  auto wires = [&](const char* heading, const std::string& fixed, std::list<Signal*>* signals, bool initial) {
    if (!signals || signals->empty()) return;
    out << heading;
    bool first = fixed.empty();
    out << fixed;
    for (Signal* s : *signals) {
      if (!s->hasOccurrence(wood)) continue;
      for (long id : {initial ? s->getInitialOverBddId(this, wood) : s->getOverBddId(this, wood),
                      initial ? s->getInitialUnderBddId(this, wood) : s->getUnderBddId(this, wood)}) {
        if (!has_id(id)) continue;
        out << (first ? "" : ", ") << wire(id);
        first = false;
      }
    }
    out << ";" << "\n" << "\n";
  };
  wires("inputs ", finalised ? "" : "_s_SET" + m + ", _s_RESET" + m, inputList, false);
  wires("outputs ", finalised ? "" : "_s_RTL" + m, outputList, true);
  wires("locals ", "", localList, false);

  out << "pres ";
  bool first = true;
  if (preList)
    for (memorizedSignal* p : *preList) {
      Signal* pre = p->getPre();
      if (!pre->hasOccurrence(wood)) continue;
      for (long id : {pre->getOverBddId(this, wood), pre->getUnderBddId(this, wood)}) {
        if (!has_id(id)) continue;
        out << (first ? "" : ", ") << wire(id);
        first = false;
      }
    }
  out << ";" << "\n" << "\n" << "\n";

  if (!registers.empty()) {
    out << "initial ";
    first = true;
    for (regclass* r : registers) {
      out << (first ? "" : " and ") << (r->is_initialy_true() ? "" : "not ") << state_name(r->actual_var());
      first = false;
    }
    out << ";" << "\n" << "\n" << "transition" << "\n";
    for (regclass* r : registers)
      out << state_name(r->actual_var()) << "' = " << state_name(r->next_var()) << ";" << "\n";
    out << "\n" << "\n";
  }

  if (preList && !preList->empty()) {
    out << "memorisations" << "\n";
    for (memorizedSignal* p : *preList) {
      const std::string& pn = p->getPre()->getOriginalName();
      const std::string& rn = p->getActual()->getOriginalName();
      out << "  " << pn << "= " << "false ->pre(" << rn << ");" << "\n";
      if (p->getPre()->isValued(this))
        out << "  " << pn << "_val= " << p->getInitialValue() << "->pre(" << rn << "_val);" << "\n";
    }
    out << "\n";
  }

  out << "definitions" << "\n";
  wood->Put_doc(out, "node");
  out << "\n";

  docBindings(out, this, wood);
  docDataTables(out, this);
}

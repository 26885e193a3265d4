// A module's data table: the bindings of value expressions to the signals that carry
// them, keyed by the bound signal's name; the key order is the evaluation order of the
// generators and of .qnc files.
#include <iostream>

#include "data/data.h"
#include "data/data_links.h"
#include "util/compilation.h"
#include "equations/Bddexpression.h"
#include "model/module.h"
#include "signals/signal_manager.h"

// The abstract equations of an unclocked binding: the over and under variables of s
// depend on the variables of the signals that e reads, so that the scheduler places the
// value after them. A clocked binding gets its dependences through value dependencies.
static void addValueSignalEquations(Module* module, Signal* s, DataExpr* e) {
  std::set<Signal*>* deps = e->computeDependencySet();
  if (!deps) return;
  Bddexpressionwood* wood = module->getBddWood();
  std::set<long> ids;
  for (Signal* d : *deps) {
    ids.insert(d->getOverBddId(module, wood));
    ids.insert(d->getUnderBddId(module, wood));
  }
  delete deps;
  new Bddexpression(s->getOverBddId(module, wood), wood, ids, "VALUE_SIGNAL", 0, 0);
  new Bddexpression(s->getUnderBddId(module, wood), wood, ids, "VALUE_SIGNAL", 0, 0);
}

// Next suffix of a value signal's name; the counter is never reset.
static std::string nextValueSuffix() { return std::to_string(DataExpr::Indexation++); }

Signal* Module::addSignalBinding(DataExpr* e, const std::string& base) {
  Bddexpressionwood* wood = getBddWood();
  Signal* signal = new Signal(Signal::generateName("IData", base + nextValueSuffix()), this, wood);
  signal->getSignalRef(this)->setIsValued();
  signal->setValueType(e->getType(this), this);
  signal->setLocal();
  signal->setValue();
  addBinding(new DataBinding(signal, e), wood);
  addValueSignalEquations(this, signal, e);
  return signal;
}

Signal* Module::addSignalBinding(DataExpr* e, const std::string& base, Signal* clock) {
  clock->setClock();
  Bddexpressionwood* wood = getBddWood();
  Signal* signal = new Signal(
      Signal::generateName(clock->getInternalName() + "Data", base + nextValueSuffix()), this, wood);
  signal->setValueType(e->getType(this), this);
  signal->setLocal();
  signal->setValue();
  addBinding(new DataBinding(signal, e, clock), wood);
  return signal;
}

Signal* Module::addSignalBinding(DataExpr* e, Signal* clock, Bddexpressionwood* wood) {
  clock->setClock();
  Signal* signal =
      new Signal(Signal::generateName(clock->getInternalName() + "Data", nextValueSuffix()), this, wood);
  signal->setValueType(e->getType(this), this, wood);
  signal->setValue();
  addBinding(new DataBinding(signal, e, clock), wood);
  return signal;
}

Signal* Module::addSignalBinding(DataExpr* e, Signal* s) {
  if (!dataTable) dataTable = new std::map<std::string, DataBinding*>();
  (*dataTable)[s->getInternalName()] = new DataBinding(s, e);
  addValueSignalEquations(this, s, e);
  return s;
}

Signal* Module::addSignalBinding(DataExpr* e, Signal* s, Signal* clock) {
  if (!dataTable) dataTable = new std::map<std::string, DataBinding*>();
  if (clock) {
    clock->setClock();
    (*dataTable)[s->getInternalName()] = new DataBinding(s, e, clock);
  } else {
    (*dataTable)[s->getInternalName()] = new DataBinding(s, e);
  }
  s->setValue();
  return s;
}

void Module::addBinding(DataBinding* b, Bddexpressionwood* wood) {
  if (!dataTable) dataTable = new std::map<std::string, DataBinding*>();
  (*dataTable)[b->getSignal()->getName(this, wood)] = b;
}

void Module::addBinding(DataBinding* b) { addBinding(b, getBddWood()); }

DataBinding* Module::getBinding(const std::string& name) {
  if (!dataTable) return nullptr;
  auto it = dataTable->find(name);
  return it == dataTable->end() ? nullptr : it->second;
}

void Module::removeBinding(const std::string& name) {
  if (dataTable) dataTable->erase(name);
}

// Clocks are compared by name, so that the clock of a copied module finds its bindings.
std::list<Signal*>* Module::getSignalBindingByClock(Signal* clock) {
  if (!dataTable) return nullptr;
  auto* result = new std::list<Signal*>();
  for (const auto& entry : *dataTable) {
    Signal* c = entry.second->getClock();
    if (c && c->getInternalName() == clock->getInternalName())
      result->push_back(entry.second->getSignal());
  }
  return result;
}

std::list<DataBinding*>* Module::getDataBindingByClock(Signal* clock) {
  if (!dataTable) return nullptr;
  auto* result = new std::list<DataBinding*>();
  for (const auto& entry : *dataTable) {
    Signal* c = entry.second->getClock();
    if (c && c->getInternalName() == clock->getInternalName()) result->push_back(entry.second);
  }
  return result;
}

// One line of the binding section: the bound variables, the value's entry number and the
// clock's variables.
static void putBindingLine(std::ostream& out, long* corres, long over, long under, int idx,
                           Signal* clock, Module* module) {
  out << "   (" << dataFileNumber(corres, over) << ", " << dataFileNumber(corres, under)
      << "): value: " << idx;
  if (clock) {
    Bddexpressionwood* wood = module->getBddWood();
    out << " clock: (" << dataFileNumber(corres, clock->getInitialOverBddId(module, wood)) << ", "
        << dataFileNumber(corres, clock->getInitialUnderBddId(module, wood)) << ")";
  }
  out << ";" << std::endl;
}

// The table is walked twice: the bindings with the numbers of their values, then the flat
// evaluation table, which grows while it is written (arguments become further entries).
void Module::printBinding(std::ostream& out, long* corres) {
  Bddexpressionwood* wood = getBddWood();
  int idx = 0;
  std::list<DataExpr*> evaluations;
  out << "binding:" << std::endl;
  if (dataTable)
    for (const auto& entry : *dataTable) {
      DataBinding* b = entry.second;
      Signal* s = b->getSignal();
      if (!s->isLocal() && !s->isWire() && !s->isOutput()) {
        b->getValue()->setIndex(idx);
        evaluations.push_back(b->getValue());
        putBindingLine(out, corres, s->getInitialOverBddId(this, wood),
                       s->getInitialUnderBddId(this, wood), idx++, b->getClock(), this);
        continue;
      }
      // One line per occurrence, each with its own copy of the value.
      std::list<long> ids = s->getAllBddId(this, wood);
      for (auto it = ids.begin(); it != ids.end(); ++it) {
        long over = *it;
        if (++it == ids.end()) break;
        DataExpr* copy = b->getValue()->duplicate();
        copy->setIndex(idx);
        evaluations.push_back(copy);
        putBindingLine(out, corres, over, *it, idx++, b->getClock(), this);
      }
    }
  out << "end:" << std::endl << std::endl << "evaltable:" << std::endl;
  for (auto it = evaluations.begin(); it != evaluations.end(); ++it) {
    out << "   " << (*it)->getIndex() << ": ";
    (*it)->QNC_put(out, corres, this, evaluations, idx, 1);
    out << ";" << std::endl;
  }
  out << "end:" << std::endl << std::endl;
}

// The same walk as printBinding on copies of the values, so that the numbering of a later
// .qnc writing is not disturbed.
void Module::debugPrintBinding(std::ostream& out) {
  if (!dataTable) {
    out << "no data table ..." << std::endl;
    return;
  }
  int idx = 0;
  std::list<DataExpr*> evaluations;
  out << "binding table:" << std::endl;
  for (const auto& entry : *dataTable) {
    DataExpr* copy = entry.second->getValue()->duplicate();
    copy->DataExpr::setIndex(idx);  // a constant's declaration keeps its .qnc number
    evaluations.push_back(copy);
    out << "   " << entry.first << " index: " << idx++ << std::endl;
  }
  out << std::endl << "evaltable:" << std::endl;
  for (auto it = evaluations.begin(); it != evaluations.end(); ++it) {
    out << "   " << (*it)->getIndex() << ": ";
    (*it)->DEBUG_put(out, this, evaluations, idx, 1);
    out << ";" << std::endl;
  }
  out << "end:" << std::endl << std::endl;
}

#include "signals/signal_manager.h"

#include <algorithm>
#include <cstdlib>
#include <iostream>

#include "bdd/bddpp.h"
#include "util/compilation.h"
#include "signals/owner.h"

static std::string occurrenceName(const std::string& internal, int n) {
  return n == 0 ? internal : internal + "_" + std::to_string(n);
}

// ---- Signal ------------------------------------------------------------------------

Signal::Signal(const std::string& name, Module* m, Bddexpressionwood* w)
    : Expression(false), originalName(name), internalName(name) {
  initialise(m, w, true);
}

Signal::Signal(const std::string& name, Module* m, Bddexpressionwood* w, bool r)
    : Expression(r), originalName(name), internalName(name), wire(r), reg(r) {
  initialise(m, w, false);
}

Signal::Signal(const std::string& original, const std::string& internal, Module* m,
               Bddexpressionwood* w)
    : Expression(false), originalName(original), internalName(internal) {
  initialise(m, w, false);
}

Signal::Signal(const std::string& original, const std::string& internal, Module* m,
               Bddexpressionwood* w, bool r)
    : Expression(r), originalName(original), internalName(internal), wire(r), reg(r) {
  initialise(m, w, false);
}

// A signal starts at occurrence 0 in the wood it is made for. A second Signal object
// of a known name shares the record and, except in the plain form, gets no occurrence.
void Signal::initialise(Module* m, Bddexpressionwood* w, bool occurrenceWhenKnown) {
  occurrences = new std::map<Bddexpressionwood*, int>();
  valueDependencies = new std::set<Signal*>();
  SignalManager* sm = owner::signalManager(m);
  if (sm->getSignalRefByName(internalName) == nullptr) {
    new SignalRef(originalName, internalName, m, w);
    extendCurrentOccurrenceTable(w, 0);
  } else if (occurrenceWhenKnown) {
    extendCurrentOccurrenceTable(w, 0);
  }
}

Signal::Signal(Signal& s)
    : Expression(s),
      originalName(s.originalName),
      internalName(s.internalName),
      local(s.local),
      input(s.input),
      output(s.output),
      wire(s.wire),
      reg(s.reg),
      clock(s.clock),
      value(s.value),
      pre(s.pre),
      occurrences(s.occurrences),
      valueDependencies(new std::set<Signal*>(*s.valueDependencies)) {}

Signal::Signal(Signal& s, Module* newModule, Bddexpressionwood* newWood, Module* oldModule)
    : Expression(s),
      originalName(s.originalName),
      internalName(s.internalName),
      local(s.local),
      input(s.input),
      output(s.output),
      wire(s.wire),
      reg(s.reg),
      clock(s.clock),
      value(s.value),
      pre(s.pre),
      occurrences(new std::map<Bddexpressionwood*, int>()),
      valueDependencies(new std::set<Signal*>(*s.valueDependencies)) {
  Bddexpressionwood* oldWood = owner::bddWood(oldModule);
  int current = s.hasOccurrence(oldWood) ? (*s.occurrences)[oldWood] : 0;
  bool valued = false;
  std::string type = "pure";
  SignalRef* oldRef = owner::signalManager(oldModule)->getSignalRefByOccurrence(&s, current);
  if (oldRef != nullptr) {
    valued = oldRef->isValued();
    type = oldRef->getType();
  }
  SignalManager* sm = owner::signalManager(newModule);
  for (int n = 0; n <= current; n++) {
    std::string name = occurrenceName(internalName, n);
    SignalRef* ref = sm->getSignalRefByName(name);
    if (ref == nullptr) {
      ref = new SignalRef(originalName, internalName, name, n, newModule, newWood, valued);
    } else if (!ref->isDefinedWood(newWood)) {
      sm->extendSignalRef(SignalRef::computeId("_s_" + name, newWood),
                          SignalRef::computeId("_v_" + name, newWood), ref, newWood);
    }
    if (valued) {
      ref->setType(type);
      ref->setIsValued(true);
    }
  }
  extendCurrentOccurrenceTable(newWood, current);
}

int Signal::computeOverType() const {
  if (input) return Compilation::SINPUT;
  if (output) return Compilation::SOUTPUT;
  if (reg) return Compilation::SREG;
  if (clock) return Compilation::SCLOCK;
  if (wire) return Compilation::SWIRE;
  return Compilation::STAT;
}

int Signal::computeUnderType() const {
  if (input) return Compilation::VINPUT;
  if (output) return Compilation::VOUTPUT;
  if (reg) return Compilation::VREG;
  if (clock) return Compilation::VCLOCK;
  if (wire) return Compilation::VWIRE;
  return Compilation::VAL;
}

bool Signal::hasOccurrence(Bddexpressionwood* w) const {
  return occurrences != nullptr && occurrences->count(w) != 0;
}

int Signal::getCurrentOccurrence(Bddexpressionwood* w) {
  if (!hasOccurrence(w)) {
    std::cerr << "Signal:getCurrentOccurrence: no current occurrence for the considered wood:"
              << w << "  for signal:" << internalName << std::endl;
    exit(1);
  }
  return (*occurrences)[w];
}

void Signal::setCurrentOccurrence(Bddexpressionwood* w, int n) {
  if (!hasOccurrence(w))
    Compilation::IllegalOperationException("Signal::setCurrentOccurrence: no wood for signal" +
                                           internalName);
  (*occurrences)[w] = n;
}

void Signal::extendCurrentOccurrenceTable(Bddexpressionwood* w, int n) {
  if (occurrences == nullptr) occurrences = new std::map<Bddexpressionwood*, int>();
  (*occurrences)[w] = n;
}

// Only outputs and locals move: their emissions of each pause-delimited section stand
// in an occurrence of their own.
Signal* Signal::newOccurrence(Bddexpressionwood* w, Module* m) {
  if (!local && !output) return this;
  SignalManager* sm = owner::signalManager(m);
  int n = getCurrentOccurrence(w) + 1;
  std::string name = occurrenceName(internalName, n);
  bool valued = false;
  std::string type = "pure";
  if (SignalRef* cur = sm->getSignalRefByOccurrence(this, n - 1)) {
    valued = cur->isValued();
    type = cur->getType();
  }
  setCurrentOccurrence(w, n);
  SignalRef* ref = sm->getSignalRefByName(name);
  if (ref == nullptr) {
    ref = new SignalRef(originalName, internalName, name, n, m, w, valued);
    ref->setOccurrenceMark(true);
    if (valued) {
      ref->setType(type);
      ref->setIsValued(true);
    }
  } else if (ref->isDefinedWood(w)) {
    Compilation::IllegalOperationException(
        "Signal::newOccurrence: signal ref already exits for the current wood" + internalName);
  } else {
    // Another branch reached occurrence n in its own wood first: share its record.
    sm->extendSignalRef(SignalRef::computeId("_s_" + name, w),
                        SignalRef::computeId("_v_" + name, w), ref, w);
  }
  return this;
}

std::string Signal::getName(Module*, Bddexpressionwood* w) {
  return occurrenceName(internalName, getCurrentOccurrence(w));
}

std::string Signal::getName(Module* m) { return getName(m, owner::bddWood(m)); }

SignalRef* Signal::getSignalRef(SignalManager* sm, Bddexpressionwood* w) {
  if (!hasOccurrence(w)) return nullptr;
  return sm->getSignalRefByOccurrence(this, (*occurrences)[w]);
}

SignalRef* Signal::getSignalRef(Module* m, Bddexpressionwood* w) {
  return getSignalRef(owner::signalManager(m), w);
}

SignalRef* Signal::getSignalRef(Module* m) { return getSignalRef(m, owner::bddWood(m)); }

SignalRef* Signal::getCurrentSignalRef(Bddexpressionwood* w, Module* m) {
  SignalManager* sm = owner::signalManager(m);
  std::list<SignalRef*>* refs = sm->getAllSignalRef(this, w);
  SignalRef* first = refs->empty() ? nullptr : refs->front();
  delete refs;
  if (first == nullptr) {
    std::cerr << "Internal error in Signal::getCurrentSignalRef about " << internalName
              << std::endl
              << "Wood:" << std::endl
              << w << std::endl
              << "---------------------------------" << std::endl;
    sm->printSignalTableById(std::cerr);
    exit(1);
  }
  return first;
}

bool Signal::isValued(Module* m, Bddexpressionwood* w) {
  SignalRef* ref = getSignalRef(m, w);
  return ref != nullptr && ref->isValued();
}

bool Signal::isValued(Module* m) { return isValued(m, owner::bddWood(m)); }

std::string Signal::getValueType(Module* m) { return getValueType(m, owner::bddWood(m)); }

std::string Signal::getValueType(Module* m, Bddexpressionwood* w) {
  SignalRef* ref = getSignalRef(m, w);
  return ref != nullptr ? ref->getType() : std::string("pure");
}

void Signal::setValueType(const std::string& type, Module* m) {
  setValueType(type, m, owner::bddWood(m));
}

void Signal::setValueType(const std::string& type, Module* m, Bddexpressionwood* w) {
  SignalRef* ref = getSignalRef(m, w);
  if (ref == nullptr) return;
  ref->setType(type);
  ref->setIsValued(true);
}

bool Signal::usedwithPre(Module* m) {
  std::list<memorizedSignal*>* pres = owner::preSignals(m);
  if (pres == nullptr) return false;
  for (memorizedSignal* p : *pres)
    if (p->getActual() == this && isValued(m)) return true;
  return false;
}

bdd Signal::getOverBdd(Module* m, Bddexpressionwood* w) {
  SignalRef* ref = owner::signalManager(m)->getCurrentOccurrence(this, w);
  if (ref == nullptr)
    Compilation::IllegalOperationException("Signal::getOverBdd:no signal ref for signal " +
                                           internalName);
  return owner::manager(w)->Bdd_var_by_index(ref->getOverBddId(w));
}

bdd Signal::getUnderBdd(Module* m, Bddexpressionwood* w) {
  SignalRef* ref = owner::signalManager(m)->getCurrentOccurrence(this, w);
  if (ref == nullptr)
    Compilation::IllegalOperationException("Signal::getUnderBdd:no signal ref for signal" +
                                           internalName);
  return owner::manager(w)->Bdd_var_by_index(ref->getUnderBddId(w));
}

bdd Signal::getInitialOverBdd(Module* m, Bddexpressionwood* w) {
  SignalRef* ref = owner::signalManager(m)->getSignalRefByName(internalName);
  if (ref == nullptr)
    Compilation::IllegalOperationException("Signal::getOverBdd:no signal ref for signal" +
                                           internalName);
  return owner::manager(w)->Bdd_var_by_index(ref->getOverBddId(w));
}

bdd Signal::getInitialUnderBdd(Module* m, Bddexpressionwood* w) {
  SignalRef* ref = owner::signalManager(m)->getSignalRefByName(internalName);
  if (ref == nullptr)
    Compilation::IllegalOperationException("Signal::getUnderBdd:no signal ref for signal" +
                                           internalName);
  return owner::manager(w)->Bdd_var_by_index(ref->getUnderBddId(w));
}

// A signal is its own copy: the occurrence table is shared.
Expression* Signal::duplicate() { return new Signal(*this); }

Expression* Signal::buildCurrentExpression(EquationTable*, Module*) { return this; }

std::ostream& Signal::print(std::ostream& out) { return out << internalName; }

long Signal::getOverBddId(Module* m, Bddexpressionwood* w) {
  if (!hasOccurrence(w))
    Compilation::IllegalOperationException(
        "Signal::getOverBddId: no current occurrence for this wood" + internalName);
  SignalRef* ref = owner::signalManager(m)->getSignalRefByOccurrence(this, (*occurrences)[w]);
  if (ref == nullptr)
    Compilation::IllegalOperationException("Signal::getOverBddId: no ref for signal" +
                                           internalName);
  return ref->getOverBddId(w);
}

long Signal::getUnderBddId(Module* m, Bddexpressionwood* w) {
  if (!hasOccurrence(w))
    Compilation::IllegalOperationException(
        "Signal::getOverBddId: no current occurrence for this wood" + internalName);
  SignalRef* ref = owner::signalManager(m)->getSignalRefByOccurrence(this, (*occurrences)[w]);
  if (ref == nullptr)
    Compilation::IllegalOperationException("Signal::getUnderBddId: no ref for signal" +
                                           internalName);
  return ref->getUnderBddId(w);
}

long Signal::getInitialOverBddId(Module* m, Bddexpressionwood* w) {
  SignalRef* ref = owner::signalManager(m)->getSignalRefByName(internalName);
  if (ref == nullptr)
    Compilation::IllegalOperationException("Signal::getOverBddId:no signal ref for signal" +
                                           internalName);
  return ref->getOverBddId(w);
}

long Signal::getInitialUnderBddId(Module* m, Bddexpressionwood* w) {
  SignalRef* ref = owner::signalManager(m)->getSignalRefByName(internalName);
  if (ref == nullptr)
    Compilation::IllegalOperationException("Signal::getUnderBddId:no signal ref for signal" +
                                           internalName);
  return ref->getUnderBddId(w);
}

std::string Signal::getOverName(Module* m) {
  Bddexpressionwood* w = owner::bddWood(m);
  return owner::manager(w)->Name_var_by_index(getOverBddId(m, w));
}

std::string Signal::getUnderName(Module* m) {
  Bddexpressionwood* w = owner::bddWood(m);
  return owner::manager(w)->Name_var_by_index(getUnderBddId(m, w));
}

std::list<long> Signal::getAllBddId(Module* m, Bddexpressionwood* w) {
  if (!local && !wire && !output)
    Compilation::IllegalOperationException("Signal::getAllBddId" + internalName);
  std::list<long> ids;
  int current = getCurrentOccurrence(w);
  SignalManager* sm = owner::signalManager(m);
  for (int n = 0; n <= current; n++) {
    SignalRef* ref = sm->getSignalRefByOccurrence(this, n);
    if (ref == nullptr)
      Compilation::IllegalOperationException(" Signal::getAllBddId: Unknown Signal Ref" +
                                             internalName);
    ids.push_back(ref->getOverBddId(w));
    ids.push_back(ref->getUnderBddId(w));
  }
  return ids;
}

void Signal::printSignalOccurrence(std::ostream& out) {
  out << internalName << ":";
  if (occurrences != nullptr)
    for (auto& [w, n] : *occurrences) out << "  wood:" << w << "  nb occurrence:" << n << "; ";
  out << std::endl;
}

std::string Signal::generateName(const std::string& prefix, const std::string& suffix) {
  return prefix + "_" + suffix;
}

std::ostream& operator<<(std::ostream& out, Signal* s) {
  return out << "{" << s->getInternalName() << "}";
}

// ---- SignalRef ---------------------------------------------------------------------

SignalRef::SignalRef(const std::string& name, Module* m, Bddexpressionwood* w)
    : originalName(name), internalName(name), currentName(name), currentOccurrence(0),
      valued(false) {
  initialise(m, w);
}

SignalRef::SignalRef(const std::string& original, const std::string& internal, Module* m,
                     Bddexpressionwood* w)
    : originalName(original), internalName(internal), currentName(internal),
      currentOccurrence(0), valued(false) {
  initialise(m, w);
}

SignalRef::SignalRef(const std::string& original, const std::string& internal, Module* m,
                     Bddexpressionwood* w, bool v)
    : originalName(original), internalName(internal), currentName(internal),
      currentOccurrence(0), valued(v) {
  initialise(m, w);
}

SignalRef::SignalRef(const std::string& original, const std::string& internal,
                     const std::string& current, int occurrence, Module* m,
                     Bddexpressionwood* w)
    : originalName(original), internalName(internal), currentName(current),
      currentOccurrence(occurrence), valued(false) {
  initialise(m, w);
}

SignalRef::SignalRef(const std::string& original, const std::string& internal,
                     const std::string& current, int occurrence, Module* m,
                     Bddexpressionwood* w, bool v)
    : originalName(original), internalName(internal), currentName(current),
      currentOccurrence(occurrence), valued(v) {
  initialise(m, w);
}

void SignalRef::initialise(Module* m, Bddexpressionwood* w) {
  long over = computeId("_s_" + currentName, w);
  long under = computeId("_v_" + currentName, w);
  addBddIds(over, under, w);
  owner::signalManager(m)->addSignalRef(this);
}

bool SignalRef::isDefinedWood(Bddexpressionwood* w) const { return ids.count(w) != 0; }

long SignalRef::getOverBddId(Bddexpressionwood* w) {
  auto it = ids.find(w);
  if (it == ids.end())
    Compilation::IllegalOperationException("SignalRef::getOverBddId:unknown wood" + currentName);
  return it->second.first;
}

long SignalRef::getUnderBddId(Bddexpressionwood* w) {
  auto it = ids.find(w);
  if (it == ids.end())
    Compilation::IllegalOperationException("SignalRef::getUnderBddId:unknown wood " +
                                           currentName);
  return it->second.second;
}

void SignalRef::setOverBddId(long id, Bddexpressionwood* w) {
  auto it = ids.find(w);
  if (it == ids.end())
    Compilation::IllegalOperationException("SignalRef::setOverBddId: wood not found");
  it->second.first = id;
}

void SignalRef::setUnderBddId(long id, Bddexpressionwood* w) {
  auto it = ids.find(w);
  if (it == ids.end())
    Compilation::IllegalOperationException("SignalRef::setUnderBddId: wood not found");
  it->second.second = id;
}

void SignalRef::addBddIds(long over, long under, Bddexpressionwood* w) {
  if (isDefinedWood(w))
    Compilation::IllegalOperationException("SignalRef::addBddIds: wood already added" +
                                           currentName);
  ids[w] = {over, under};
}

long SignalRef::computeId(const std::string& name, Bddexpressionwood* w) {
  long id = owner::manager(w)->Index_var_by_name(name);
  if (id == -1) id = owner::newVarLast(w, name);
  return id;
}

std::ostream& operator<<(std::ostream& out, SignalRef* r) {
  out << "[" << r->getCurrentName() << " (" << r->getInternalName() << ", occurrence "
      << r->getCurrentOccurrence() << ", " << r->getType() << ")";
  for (auto& [w, p] : r->getIds()) out << " wood " << w << ": " << p.first << "/" << p.second;
  return out << "]";
}

// ---- SignalManager -----------------------------------------------------------------

SignalRefTable::SignalRefTable(long n) : size(n), table(new SignalRef*[n > 0 ? n : 1]()) {}

SignalRefTable::~SignalRefTable() { delete[] table; }

SignalManager::~SignalManager() {
  for (auto& [w, t] : idTables) delete t;
}

SignalRef* SignalManager::getSignalRefByName(const std::string& name) {
  auto it = byName.find(name);
  return it == byName.end() ? nullptr : it->second;
}

SignalRef* SignalManager::getSignalRefByOccurrence(Signal* s, int n) {
  return getSignalRefByName(occurrenceName(s->getInternalName(), n));
}

// An index beyond the table has no record.
SignalRef* SignalManager::getSignalRefById(long id, Bddexpressionwood* w) {
  auto it = idTables.find(w);
  if (it == idTables.end()) return nullptr;
  if (id < 0 || id >= it->second->size) return nullptr;
  return it->second->table[id];
}

std::list<SignalRef*>* SignalManager::getAllSignalRef(Signal* s, Bddexpressionwood* w) {
  auto* refs = new std::list<SignalRef*>();
  auto it = byInternalName.find(s->getInternalName());
  if (it != byInternalName.end())
    for (auto& [name, ref] : it->second)
      if (ref->isDefinedWood(w)) refs->push_back(ref);
  return refs;
}

SignalRef* SignalManager::getCurrentOccurrence(Signal* s, Bddexpressionwood* w) {
  SignalRef* best = nullptr;
  auto it = byInternalName.find(s->getInternalName());
  if (it == byInternalName.end()) return nullptr;
  for (auto& [name, ref] : it->second)
    if (ref->isDefinedWood(w) &&
        (best == nullptr || ref->getCurrentOccurrence() > best->getCurrentOccurrence()))
      best = ref;
  return best;
}

void SignalManager::addSignalRef(SignalRef* ref) {
  const std::string& key = ref->getCurrentName();
  if (byName.count(key) != 0) Compilation::HashTableAddException("SignalManager::addSignalRef", key);
  byName[key] = ref;
  byInternalName[ref->getInternalName()][key] = ref;
  for (auto& [w, p] : ref->getIds()) addSignalRefIdTable(p.first, p.second, ref, w);
}

void SignalManager::addSignalRefIdTable(long over, long under, SignalRef* ref,
                                        Bddexpressionwood* w) {
  auto it = idTables.find(w);
  if (it == idTables.end()) {
    idTables[w] = new SignalRefTable(owner::varCount(w));
  } else if (owner::varCount(w) > it->second->size) {
    extendIdTable(w);
  }
  SignalRefTable* t = idTables[w];
  // An index made in the manager that the wood hasn't counted yet.
  long needed = std::max(over, under) + 1;
  if (needed > t->size) {
    grow(w, std::max(needed, 2 * t->size));
    t = idTables[w];
  }
  if (t->table[over] != nullptr)
    Compilation::IllegalOperationException("addSignalRef (excep1) " + ref->getCurrentName());
  t->table[over] = ref;
  if (t->table[under] != nullptr)
    Compilation::IllegalOperationException("addSignalRef (excep2)" + ref->getCurrentName());
  t->table[under] = ref;
}

// Doubles at least: a table grown by one variable at a time costs a copy per signal.
void SignalManager::extendIdTable(Bddexpressionwood* w) {
  auto it = idTables.find(w);
  long size = it == idTables.end() ? 0 : it->second->size;
  grow(w, std::max(owner::varCount(w), 2 * size));
}

void SignalManager::grow(Bddexpressionwood* w, long n) {
  auto it = idTables.find(w);
  SignalRefTable* old = it == idTables.end() ? nullptr : it->second;
  if (old != nullptr && old->size >= n) return;
  auto* t = new SignalRefTable(n);
  if (old != nullptr)
    for (long i = 0; i < old->size; i++) t->table[i] = old->table[i];
  delete old;
  idTables[w] = t;
}

void SignalManager::extendSignalRef(long over, long under, SignalRef* ref, Bddexpressionwood* w) {
  ref->addBddIds(over, under, w);
  addSignalRefIdTable(over, under, ref, w);
}

void SignalManager::duplicate(Bddexpressionwood* newWood, Bddexpressionwood* oldWood) {
  for (auto& [name, ref] : byName)
    if (ref->isDefinedWood(oldWood) && !ref->isDefinedWood(newWood)) {
      auto [o, u] = ref->getIds().at(oldWood);
      extendSignalRef(o, u, ref, newWood);
    }
}

void SignalManager::deleteWood(Bddexpressionwood* w) {
  for (auto& [name, ref] : byName) ref->removeWood(w);
  auto it = idTables.find(w);
  if (it != idTables.end()) {
    delete it->second;
    idTables.erase(it);
  }
  owner::destroy(w);
}

void SignalManager::printSignalTableByName(std::ostream& out) {
  out << "Signal references by name:" << std::endl;
  for (auto& [name, ref] : byName) out << "  " << name << " -> " << ref << std::endl;
}

void SignalManager::printSignalTableById(std::ostream& out) {
  out << "Signal references by id:" << std::endl;
  for (auto& [w, t] : idTables) {
    out << " wood " << w << ":" << std::endl;
    for (long i = 0; i < t->size; i++)
      if (t->table[i] != nullptr) out << "  " << i << " -> " << t->table[i] << std::endl;
  }
}

#include "model/module.h"

#include <cstdlib>
#include <cstring>
#include <iostream>

#include "bdd/bddpp.h"
#include "util/compilation.h"
#include "equations/Bddexpression.h"
#include "equations/equationtable.h"
#include "data/data.h"
#include "model/statement.h"
#include "signals/owner.h"
#include "signals/signal_manager.h"

namespace {

// The one look-up of the environment: the variable's value, or "./".
std::string my_getenv(const char* key) {
  const char* v = std::getenv(key);
  return v ? std::string(v) : std::string("./");
}

Signal* findByOriginalName(std::list<Signal*>* l, const std::string& name) {
  if (!l) return nullptr;
  for (Signal* s : *l)
    if (s->getOriginalName() == name) return s;
  return nullptr;
}

Signal* findByInternalName(std::list<Signal*>* l, const std::string& name) {
  if (!l) return nullptr;
  for (Signal* s : *l)
    if (s->getInternalName() == name) return s;
  return nullptr;
}

void printSignalName(std::ostream& out, Signal* s) {
  if (s)
    out << s->getInternalName() << " ";
  else
    out << "? ";
}

// The exception object outlives the throw: it is never caught.
[[noreturn]] void raise(const char* where, const std::string& name) {
  throw ::IllegalOperationException(where, strdup(name.c_str()));
}

}  // namespace

// ---------------------------------------------------------------------------------------
// Run statics

int Module::PauseNumber = 0, Module::NothingNumber = 0, Module::HaltNumber = 0,
    Module::ParallelNumber = 0, Module::SequenceNumber = 0, Module::PresentNumber = 0,
    Module::AbsentNumber = 0, Module::LoopNumber = 0, Module::LocalNumber = 0,
    Module::WaitNumber = 0, Module::AbortNumber = 0, Module::EmitNumber = 0,
    Module::NoEmitNumber = 0, Module::SustainUntilNumber = 0, Module::RunNumber = 0,
    Module::SustainNumber = 0, Module::AutomatonNumber = 0, Module::MealyMachineNumber = 0,
    Module::TransitionNumber = 0;
std::string Module::SimulationDir = my_getenv("/tmp");
std::string Module::SimulationQncDir = ".";
std::string Module::OutputDir = ".";
std::string Module::OutputFile;
std::list<std::string>* Module::CompilationFileList = nullptr;

// ---------------------------------------------------------------------------------------
// Registers and pre declarations

std::ostream& operator<<(std::ostream& out, const regclass& r) {
  printSignalName(out, r.next_var());
  printSignalName(out, r.actual_var());
  return out << (r.is_initialy_true() ? "1" : "0");
}

std::ostream& operator<<(std::ostream& out, const memorizedSignal& m) {
  printSignalName(out, m.getPre());
  printSignalName(out, m.getActual());
  return out << m.getInitialValue() << ";";
}

// ---------------------------------------------------------------------------------------
// Interface

Interface::Interface()
    : inputTable(new std::map<std::string, Signal*>),
      outputTable(new std::map<std::string, Signal*>),
      localTable(new std::map<std::string, Signal*>),
      dataTable(new std::map<std::string, Signal*>),
      registerList(new std::list<regclass*>) {}

void Interface::addInput(const std::string& name, Signal* s) {
  if (inputTable->count(name)) Compilation::fatal("Impossible to add Input Signal " + name + "...");
  (*inputTable)[name] = s;
}

void Interface::addOutput(const std::string& name, Signal* s) {
  if (outputTable->count(name)) raise("Interface::addOutput", name);
  (*outputTable)[name] = s;
}

void Interface::addLocal(const std::string& name, Signal* s) {
  if (localTable->count(name)) raise("Interface::addLocal", name);
  (*localTable)[name] = s;
}

void Interface::addData(const std::string& name, Signal* s) {
  if (dataTable->count(name)) raise("Interface::addData", name);
  (*dataTable)[name] = s;
}

void Interface::addRegister(regclass* r) { registerList->push_back(r); }

Signal* Interface::getInputSignal(const std::string& name) {
  auto it = inputTable->find(name);
  if (it == inputTable->end()) Compilation::fatal("Input Signal: " + name + " not found!");
  return it->second;
}

Signal* Interface::getOutputSignal(const std::string& name) {
  auto it = outputTable->find(name);
  if (it == outputTable->end()) Compilation::fatal("Output Signal: " + name + " not found!");
  return it->second;
}

Signal* Interface::getLocalSignal(const std::string& name) {
  auto it = localTable->find(name);
  if (it == localTable->end()) raise("Interface::getLocalSignal", name);
  return it->second;
}

Signal* Interface::getSignal(const std::string& name) {
  for (auto* t : {inputTable, outputTable, localTable, dataTable}) {
    auto it = t->find(name);
    if (it != t->end()) return it->second;
  }
  return nullptr;
}

std::string Interface::getOriginalSignalName(const std::string& internalName) {
  for (auto* t : {inputTable, outputTable, localTable, dataTable})
    for (auto& [key, s] : *t)
      if (s && s->getInternalName() == internalName) return key;
  return "";
}

// ---------------------------------------------------------------------------------------
// Module: construction

Module::Module(const std::string& n)
    : name(n),
      statement(nullptr),
      inputList(new std::list<Signal*>),
      outputList(new std::list<Signal*>),
      localList(new std::list<Signal*>),
      preList(new std::list<memorizedSignal*>),
      dataSignalList(new std::list<Signal*>),
      runDeclTable(nullptr),
      registerList(new std::list<regclass*>),
      compilation(new EquationTable(n, new Bddexpressionwood())),
      set(nullptr),
      reset(nullptr),
      rtl(nullptr),
      reincarnate(false),
      finalised(0),
      currentInstance(-1),
      signalManager(new SignalManager()),
      dataTable(nullptr) {}

Module::~Module() {
  Bddexpressionwood* wood = getBddWood();
  if (wood) delete wood;
}

std::string Module::generateName(const std::string& prefix, int& counter) {
  return name + prefix + "_" + std::to_string(counter++);
}

Bddexpressionwood* Module::getBddWood() {
  return compilation ? compilation->getBddexpressionWood() : nullptr;
}

void Module::setSet(Signal* s) {
  set = s;
  if (s) s->setWire();
}

void Module::setReset(Signal* s) {
  reset = s;
  if (s) s->setWire();
}

void Module::setRtl(Signal* s) {
  rtl = s;
  if (s) s->setWire();
}

// ---------------------------------------------------------------------------------------
// Signal lookup

Signal* Module::getInputSignal(const std::string& n) { return findByOriginalName(inputList, n); }
Signal* Module::getOutputSignal(const std::string& n) { return findByOriginalName(outputList, n); }
Signal* Module::getLocalSignal(const std::string& n) { return findLocal(n); }

Signal* Module::findLocal(const std::string& n) {
  if (!localList) return nullptr;
  NameIndex& x = localIndex;
  const std::list<Signal*>& l = *localList;
  size_t added = l.size() - x.size;
  bool extends = x.list == &l && l.size() >= x.size && (x.size == 0 || l.front() == x.front) &&
                 (x.size == 0 || *std::prev(l.end(), long(added) + 1) == x.back);
  auto tail = l.begin();
  if (extends) {
    tail = std::prev(l.end(), long(added));
  } else {
    x.byName.clear();
    x.list = &l;
  }
  for (auto it = tail; it != l.end(); ++it) x.byName.emplace((*it)->getInternalName(), *it);
  x.size = l.size();
  x.front = l.empty() ? nullptr : l.front();
  x.back = l.empty() ? nullptr : l.back();
  auto found = x.byName.find(n);
  if (found == x.byName.end()) return nullptr;
  // A signal renamed since it was indexed: the plain search decides.
  if (found->second->getInternalName() != n) return findByInternalName(localList, n);
  return found->second;
}
Signal* Module::getDataSignal(const std::string& n) {
  return findByInternalName(dataSignalList, n);
}

Signal* Module::getPreSignal(const std::string& n) {
  if (!preList) return nullptr;
  for (memorizedSignal* m : *preList)
    if (m->getPre() && m->getPre()->getInternalName() == n) return m->getPre();
  return nullptr;
}

Signal* Module::getOutputLocalSignal(const std::string& n) {
  Signal* s = getOutputSignal(n);
  return s ? s : getLocalSignal(n);
}

Signal* Module::getSignal(const std::string& n) {
  if (Signal* s = getInputSignal(n)) return s;
  if (Signal* s = getOutputSignal(n)) return s;
  if (Signal* s = getDataSignal(n)) return s;
  if (Signal* s = getLocalSignal(n)) return s;
  return getPreSignal(n);
}

Signal* Module::getSignalFromInternalName(const std::string& n) {
  if (Signal* s = findByInternalName(inputList, n)) return s;
  if (Signal* s = findByInternalName(outputList, n)) return s;
  if (Signal* s = findByInternalName(dataSignalList, n)) return s;
  if (Signal* s = findLocal(n)) return s;
  return getPreSignal(n);
}

Signal* Module::getSignalById(long id, Bddexpressionwood* wood) {
  if (!wood) wood = getBddWood();
  SignalRef* r = signalManager->getSignalRefById(id, wood);
  return r ? getSignal(r->getInternalName()) : nullptr;
}

std::string Module::getSignalNameById(long id, Bddexpressionwood* wood) {
  if (!wood) wood = getBddWood();
  SignalRef* r = signalManager->getSignalRefById(id, wood);
  if (!r)
    Compilation::IllegalOperationException(
        "Module::getSignalNameById: no signal reference for this bdd id: " + std::to_string(id));
  return r->getCurrentName();
}

long Module::getOtherBddId(long id, Bddexpressionwood* wood) {
  if (!wood) wood = getBddWood();
  SignalRef* r = signalManager->getSignalRefById(id, wood);
  if (!r)
    Compilation::IllegalOperationException(
        "Module::getOtherBddId: no signal in table for this bdd id:" + std::to_string(id));
  long over = r->getOverBddId(wood);
  return id == over ? r->getUnderBddId(wood) : over;
}

// ---------------------------------------------------------------------------------------
// Declarations

void Module::addInputSignal(Signal* s) { inputList->push_back(s); }
void Module::addOutputSignal(Signal* s) { outputList->push_back(s); }
void Module::addLocalSignal(Signal* s) { localList->push_back(s); }
void Module::addWireSignal(Signal* s) { localList->push_back(s); }
void Module::addDataSignal(Signal* s) { dataSignalList->push_back(s); }

void Module::addPreSignal(Signal* pre, Signal* actual, const std::string& initialValue) {
  if (!preList) preList = new std::list<memorizedSignal*>;
  preList->push_back(new memorizedSignal(pre, actual, initialValue));
}

void Module::addRegisterDecl(const std::string& actualName, int initial,
                             const std::string& nextName) {
  Bddexpressionwood* wood = getBddWood();
  Signal* actual = new Signal(actualName, actualName, this, wood, true);
  Signal* next = new Signal(nextName, nextName, this, wood, true);
  actual->setLocal();
  next->setLocal();
  addLocalSignal(actual);
  addLocalSignal(next);
  if (!registerList) registerList = new std::list<regclass*>;
  registerList->push_back(new regclass(actual, next, initial));
}

void Module::addRegisterSignal(Signal* actual, Signal* next) { addRegisterSignal(actual, next, 0); }

void Module::addRegisterSignal(Signal* actual, Signal* next, int initial) {
  if (!registerList) registerList = new std::list<regclass*>;
  registerList->push_back(new regclass(actual, next, initial));
}

void Module::addRunDecl(const std::string& moduleName, const std::string& file,
                        const std::string& directory) {
  if (runDeclTable && runDeclTable->count(moduleName))
    Compilation::IllegalOperationException("Run module already exists: " + moduleName);
  if (!runDeclTable) runDeclTable = new std::map<std::string, std::string*>;
  (*runDeclTable)[moduleName] = new std::string(directory + "/" + file);
}

std::string* Module::getModuleLocation(const std::string& moduleName) {
  auto it = runDeclTable->find(moduleName);
  return it == runDeclTable->end() ? nullptr : it->second;
}

void Module::loose_first_underscore_in_name_variables() {
  Bddexpressionwood* wood = getBddWood();
  if (wood && wood->my_bdd_manager()) wood->my_bdd_manager()->No_begin_underscore_name();
}

// ---------------------------------------------------------------------------------------
// ModuleTable

ModuleTable::ModuleTable() : table(new std::map<std::string, Module*>), out(&std::cout) {}

void ModuleTable::add(Module* m) {
  if (table->count(m->getName())) Compilation::HashTableAddException("", m->getName());
  (*table)[m->getName()] = m;
}

Module* ModuleTable::get(const std::string& n) {
  auto it = table->find(n);
  return it == table->end() ? nullptr : it->second;
}

void ModuleTable::print() {
  for (auto& [n, m] : *table) *out << n << std::endl;
}

namespace owner {
SignalManager* signalManager(Module* m) { return m->getSignalManager(); }
Bddexpressionwood* bddWood(Module* m) { return m->getBddWood(); }
std::list<Signal*>* inputSignals(Module* m) { return m->getInputSignalList(); }
std::list<Signal*>* outputSignals(Module* m) { return m->getOutputSignalList(); }
std::list<Signal*>* dataSignals(Module* m) { return m->getDataSignalList(); }
std::list<Signal*>* localSignals(Module* m) { return m->getLocalSignalList(); }
std::list<memorizedSignal*>* preSignals(Module* m) { return m->getPreSignalList(); }
Signal* signal(Module* m, const std::string& name) { return m->getSignal(name); }
Signal* signalFromInternalName(Module* m, const std::string& internal) {
  return m->getSignalFromInternalName(internal);
}
bool clockedSignals(Module* m, Signal* clock, std::vector<Signal*>& out) {
  std::map<std::string, DataBinding*>* bindings = m->getDataTable();
  if (bindings == nullptr) return false;
  for (auto& [key, b] : *bindings)
    if (b->getClock() == clock) out.push_back(b->getSignal());
  return true;
}
}  // namespace owner

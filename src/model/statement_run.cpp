// Instantiation of a module by `run`: the called module is compiled once, then each
// Run copies its equations, signals and registers into the caller under names with a
// per-instance suffix, and connects the copy by its three wires.
#include <fstream>
#include <functional>
#include <iostream>
#include <set>

#include "bdd/bddpp.h"
#include "data/data.h"
#include "util/compilation.h"
#include "equations/Bddexpression.h"
#include "equations/equationtable.h"
#include "model/module.h"
#include "model/statement.h"
#include "signals/signal_manager.h"

namespace {

// The three names of one signal in the name map: plain, over variable, under variable.
void enterName(std::map<std::string, std::string>& names, const std::string& from,
               const std::string& to) {
  names[from] = to;
  names["_s_" + from] = "_s_" + to;
  names["_v_" + from] = "_v_" + to;
}

// The occurrences 1..c of a called output or local become locals of the caller: the
// instance's sections must not meet the caller's own occurrences.
void copyOccurrences(Module* caller, Module* called, Bddexpressionwood* wood, Signal* x,
                     const std::string& instance, std::map<std::string, std::string>& names) {
  Bddexpressionwood* calledWood = called->getBddWood();
  int current = x->hasOccurrence(calledWood) ? x->getCurrentOccurrence(calledWood) : 0;
  bool valued = x->isValued(called);
  for (int n = current; n >= 1; n--) {
    std::string name = x->getInternalName() + "_" + std::to_string(n);
    Signal* s = new Signal(x->getOriginalName(), name + instance, caller, wood);
    if (valued) s->setValueType(x->getValueType(called), caller, wood);
    s->setLocal();
    caller->addLocalSignal(s);
    enterName(names, name, name + instance);
  }
}

// A called input or output: renamed by the run, or connected to the caller's signal of
// the same name, which then enters the renaming table and the interface.
void connectByName(Signal* x, Run* run, std::map<std::string, Signal*>* renaming,
                   std::map<std::string, std::string>& names, Signal* sameName,
                   const std::function<void(const std::string&, Signal*)>& addToInterface) {
  const std::string& original = x->getOriginalName();
  if (Signal* r = run->getRenamingSignal(original)) {
    enterName(names, x->getInternalName(), r->getInternalName());
    return;
  }
  (*renaming)[original] = sameName;
  addToInterface(original, sameName);
  enterName(names, x->getInternalName(), x->getInternalName());
}

// The caller's signal that a called input or output meets by name: of the same kind, or
// else a local or pre signal of that name, which the checks accept too.
Signal* sameNameSignal(Module* caller, Signal* x, Signal* (Module::*sameKind)(const std::string&)) {
  const std::string& name = x->getOriginalName();
  if (Signal* s = (caller->*sameKind)(name)) return s;
  return caller->getSignal(name);
}

// The declared place of a module, with ".qn" behind it, when that source file exists.
std::string declaredSourceFile(Module* caller, const std::string& name) {
  std::map<std::string, std::string*>* decls = caller->getRunDeclTable();
  if (!decls) return "";
  auto it = decls->find(name);
  if (it == decls->end() || !it->second) return "";
  std::string file = *it->second + ".qn";
  std::ifstream in(file);
  return in.is_open() ? file : "";
}

}  // namespace

// ---------------------------------------------------------------------------------------
// Run

void Run::compile(Module* module, EquationTable* table) {
  Module* m = Compilation::QncModTable ? Compilation::QncModTable->get(moduleName) : nullptr;
  if (m) setModule(m);

  std::map<std::string, std::string*>* decls = module->getRunDeclTable();
  if (!m && decls && decls->count(moduleName)) {
    auto* inputs = new std::list<std::string>;
    auto* outputs = new std::list<std::string>;
    computeAwaitedNameList(inputs, outputs, module);
    m = Compilation::createModuleFromQncCode(moduleName, inputs, outputs);
    Module* fromSource = Compilation::ModTable ? Compilation::ModTable->get(moduleName) : nullptr;
    // A declaration may place the module in another source file: read it now.
    if (!m && !fromSource) {
      std::string file = declaredSourceFile(module, moduleName);
      if (!file.empty()) {
        Compilation::qn_parse(file);
        fromSource = Compilation::ModTable->get(moduleName);
      }
    }
    if (!fromSource) {
      if (!m)
        Compilation::fatal("Run call error: compiled called module declared but not provided: " +
                           moduleName);
      setModule(m);
      if (!Compilation::QncModTable) Compilation::QncModTable = new ModuleTable();
      Compilation::QncModTable->add(m);
    } else if (m) {
      // Both a compiled file and the source hold the module: the source is the one
      // checked with this file, so it is the one taken.
      m = nullptr;
    }
  }

  if (!this->module) {
    m = Compilation::ModTable ? Compilation::ModTable->get(moduleName) : nullptr;
    if (!m)
      Compilation::fatal("Error in Run call: called module  not defined in file " + moduleName);
    setModule(m);
  }
  Module* called = this->module;
  if (!called) {
    std::cerr << "***error:"
              << "Run  module:" << moduleName << "  not set\n";
    return;
  }

  // A module that runs itself, directly or through others, would be copied into itself
  // half compiled.
  static std::multiset<Module*> callers;
  if (called == module || callers.count(called))
    Compilation::fatal("Error in Run call: module " + moduleName + " runs itself");
  instance =
      new std::string("__" + moduleName + "_i" + std::to_string(called->incrCurrentInstance()));
  callers.insert(module);
  if (!called->getSet()) called->compile();
  callers.erase(callers.find(module));
  iface = module->includeCompiledModule(called, table, this, *instance);
  createEquations(module, table);
}

void Run::compile_with_preemption(Module* module, EquationTable* table, bdd strong) {
  compile(module, table);
  if (!iface) return;
  Bddexpressionwood* wood = table->getBddexpressionWood();
  bddpp_manager* manager = wood->my_bdd_manager();
  if (manager->Bdd_is_zero_tautologic(strong)) return;
  bdd g = manager->Bdd_not(strong);
  for (auto& [name, s] : *iface->getOutputSignalTable()) {
    if (!s) continue;
    SignalRef* r = s->getCurrentSignalRef(wood, module);
    for (long id : {r->getOverBddId(wood), r->getUnderBddId(wood)}) {
      Bddexpression* e = id >= 0 ? wood->exp_by_index(id) : nullptr;
      if (e) e->setBddExp(manager->Bdd_and(g, e->my_bdd_exp()));
    }
  }
}

// The copies of the called module's wires are locals of the caller named by the wire
// and the instance suffix.
void Run::createEquations(Module* module, EquationTable* table) {
  createWires(module, table);
  Module* called = this->module;
  Bddexpressionwood* calledWood = called->getBddWood();
  auto copyOf = [&](Signal* wire) {
    std::string name = wire->getName(called, calledWood) + *instance;
    Signal* s = module->getLocalSignal(name);
    if (!s) Compilation::IllegalOperationException("Run::createEquations: no local copy " + name);
    return s;
  };
  table->createEquation(copyOf(called->getSet()), set, module);
  table->createEquation(copyOf(called->getReset()), reset, module);
  table->createEquation(rtl, copyOf(called->getRtl()), module);
}

// ---------------------------------------------------------------------------------------
// Module: one instance of a compiled module copied into this one

Interface* Module::includeCompiledModule(Module* called, EquationTable* table, Run* run,
                                         const std::string& instance) {
  Bddexpressionwood* wood = table->getBddexpressionWood();
  Bddexpressionwood* calledWood = called->getBddWood();
  std::map<std::string, std::string> names;
  Interface* iface = new Interface();
  std::map<std::string, Signal*>* renaming = run->getRenamingTable();
  if (!renaming) {
    renaming = new std::map<std::string, Signal*>;
    run->setRenamingTable(renaming);
  }

  if (std::list<Signal*>* inputs = called->getInputSignalList())
    for (Signal* x : *inputs)
      connectByName(x, run, renaming, names, sameNameSignal(this, x, &Module::getInputSignal),
                    [iface](const std::string& n, Signal* s) { iface->addInput(n, s); });

  if (std::list<Signal*>* data = called->getDataSignalList())
    for (Signal* d : *data) {
      std::string newName = d->getInternalName() + instance;
      Signal* s = new Signal(newName, newName, this, wood);
      s->setInput();
      addDataSignal(s);
      iface->addData(d->getInternalName(), s);
      names[newName] = newName;
      // The equation of the data signal, if any, follows its variables.
      names[d->getInternalName()] = newName;
      names["_s_" + d->getInternalName()] = "_s_" + newName;
      names["_v_" + d->getInternalName()] = "_v_" + newName;
    }

  if (std::list<Signal*>* outputs = called->getOutputSignalList())
    for (Signal* x : *outputs) {
      connectByName(x, run, renaming, names, sameNameSignal(this, x, &Module::getOutputSignal),
                    [iface](const std::string& n, Signal* s) { iface->addOutput(n, s); });
      copyOccurrences(this, called, wood, x, instance, names);
    }

  if (std::list<Signal*>* locals = called->getLocalSignalList())
    for (Signal* x : *locals) {
      std::string newName = x->getInternalName() + instance;
      Signal* s = new Signal(x->getOriginalName(), newName, this, wood, x->isRegister());
      s->setLocal();
      if (x->isWire()) s->setWire();
      if (x->isValued(called)) s->setValueType(x->getValueType(called), this, wood);
      localList->push_back(s);
      iface->addLocal(x->getInternalName(), s);
      enterName(names, x->getInternalName(), newName);
      copyOccurrences(this, called, wood, x, instance, names);
    }

  // All three are made before any is entered, so that their variables come in a row.
  Signal* wires[3] = {};
  Signal* calledWires[3] = {called->getSet(), called->getReset(), called->getRtl()};
  for (int i = 0; i < 3; i++)
    wires[i] = new Signal(calledWires[i]->getName(called, calledWood) + instance, this, wood);
  for (int i = 0; i < 3; i++) {
    wires[i]->setLocal();
    wires[i]->setWire();
    addLocalSignal(wires[i]);
    enterName(names, calledWires[i]->getName(called, calledWood), wires[i]->getInternalName());
  }

  if (std::list<regclass*>* registers = called->getRegisterList())
    for (regclass* r : *registers) {
      Signal* actual = getLocalSignal(r->actual_var()->getInternalName() + instance);
      Signal* next = getLocalSignal(r->next_var()->getInternalName() + instance);
      if (actual) actual->setRegister();
      if (next) next->setRegister();
      regclass* copy = new regclass(actual, next, r->is_initialy_true());
      if (!registerList) registerList = new std::list<regclass*>;
      registerList->push_back(copy);
      iface->addRegister(copy);
    }

  if (std::list<memorizedSignal*>* pres = called->getPreSignalList())
    for (memorizedSignal* m : *pres) {
      Signal* a = m->getActual() ? getSignal(names[m->getActual()->getInternalName()]) : nullptr;
      Signal* pre = m->getPre();
      std::string newName = pre->getOriginalName() + instance;
      Signal* p = new Signal(newName, this, wood);
      enterName(names, pre->getOriginalName(), newName);
      p->setPre();
      p->setInput();
      if (a && a->isValued(this, wood)) p->setValueType(a->getValueType(this, wood), this, wood);
      iface->addInput(pre->getInternalName(), p);
      if (!preList) preList = new std::list<memorizedSignal*>;
      preList->push_back(new memorizedSignal(p, a, m->getInitialValue()));
    }

  // The instance's equation of occurrence 0 of a connected output replaces the caller's
  // one; outside a branch that unify joins, the caller's earlier sections of that signal
  // no longer reach it.
  wood->Include_wood_instance(*calledWood, &names);
  reincarnate = reincarnate || called->getReincarnate();

  if (std::map<std::string, DataBinding*>* bindings = called->getDataTable())
    for (auto& [key, b] : *bindings) addBinding(b->instanciate(iface, renaming, this), wood);
  return iface;
}

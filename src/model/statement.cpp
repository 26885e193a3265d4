// Statement tree: construction, wires, copies for loops and "repeat", and whether a
// statement can be left and entered again in one instant.
#include "model/statement.h"

#include <algorithm>
#include <iostream>
#include <set>

#include "util/compilation.h"
#include "equations/equationtable.h"
#include "model/module.h"
#include "model/wire_names.h"
#include "signals/signal_manager.h"

namespace {

// Copies share the parent module; wires and pert level start empty.
template <class T>
T* adopt(T* copy, Module* parent) {
  copy->setParentModule(parent);
  return copy;
}

Statement* dupOrNull(Statement* s, Module* m, EquationTable* t) {
  return s ? s->duplicate(m, t) : nullptr;
}

Statement* dupOrNull(Statement* s, int n) { return s ? s->duplicate(n) : nullptr; }

// Appends last; the array doubles when full, so that a long "a >> b >> ..." is read
// in linear time.
Statement** growArray(Statement** array, int count, int& capacity, Statement* last) {
  if (count >= capacity) {
    capacity = std::max(4, 2 * capacity);
    Statement** grown = new Statement*[capacity];
    std::copy(array, array + count, grown);
    delete[] array;
    array = grown;
  }
  array[count] = last;
  return array;
}

}  // namespace

// ---------------------------------------------------------------------------------------
// Statement

Statement::Statement(const std::string& n)
    : name(n), parentModule(nullptr), set(nullptr), reset(nullptr), rtl(nullptr), pertLevel(0) {}

void Statement::createEquations(Module*, EquationTable*) {}
void Statement::complementary_check_syntax() {}
void Statement::compile(Module*, EquationTable*) {}
bool Statement::isAutomaton() { return false; }
bool Statement::isParallel() { return false; }
bool Statement::isSequence() { return false; }
std::list<Transition*>* Statement::getTransitionList() { return nullptr; }
std::map<std::string, State*>* Statement::getStateTable() { return nullptr; }
bool Statement::reincarnate() { return true; }
Statement* Statement::duplicate(Module*, EquationTable*) { return nullptr; }
Statement* Statement::duplicate(int) { return nullptr; }

Signal* Statement::getSet() {
  if (!set) throw StatementWireException("set");
  return set;
}

Signal* Statement::getReset() {
  if (!reset) throw StatementWireException("reset");
  return reset;
}

Signal* Statement::getRtl() {
  if (!rtl) throw StatementWireException("rtl");
  return rtl;
}

void Statement::createWires(Module* module, EquationTable* table) {
  Bddexpressionwood* wood = table->getBddexpressionWood();
  set = newWireSignal(Compilation::createSETName(name), module, wood);
  reset = newWireSignal(Compilation::createRESETName(name), module, wood);
  rtl = newWireSignal(Compilation::createRTLName(name), module, wood);
  for (Signal* w : {set, reset, rtl}) module->addLocalSignal(w);
}

void Statement::connectExternalWires(Module* module) {
  EquationTable* table = module->getCompilation();
  table->createEquation(getSet(), module->getSet(), module);
  table->createEquation(getReset(), module->getReset(), module);
  table->createEquation(module->getRtl(), getRtl(), module);
}

void Statement::callPert(EquationTable* table) {
  if (pertLevel == 0) pertLevel = table->callPert();
}

void Statement::callPert(EquationTable* table, std::list<long> ids) {
  if (pertLevel == 0) pertLevel = table->callPert(ids);
}

// ---------------------------------------------------------------------------------------
// Sequence, Sn

Sequence::Sequence(const std::string& n, Statement* l, Statement* r)
    : Statement(n), left(l), right(r) {}

bool Sequence::reincarnate() { return left->reincarnate() && right->reincarnate(); }

Statement* Sequence::duplicate(Module* m, EquationTable* t) {
  return adopt(new Sequence(name + "_bis", left->duplicate(m, t), right->duplicate(m, t)),
               parentModule);
}

Statement* Sequence::duplicate(int n) {
  return adopt(new Sequence(name + std::to_string(n), left->duplicate(n), right->duplicate(n)),
               parentModule);
}

Sn::Sn(const std::string& n, int c, Statement** a)
    : Statement(n), count(c), capacity(c), array(a) {}

void Sn::addStatement(Statement* s) { array = growArray(array, count++, capacity, s); }

bool Sn::reincarnate() {
  for (int i = count - 1; i >= 0; i--)
    if (!array[i]->reincarnate()) return false;
  return true;
}

Statement* Sn::duplicate(Module* m, EquationTable* t) {
  Statement** copies = new Statement*[count];
  for (int i = 0; i < count; i++) copies[i] = array[i]->duplicate(m, t);
  return adopt(new Sn(name + "_bis", count, copies), parentModule);
}

Statement* Sn::duplicate(int n) {
  Statement** copies = new Statement*[count];
  for (int i = 0; i < count; i++) copies[i] = array[i]->duplicate(n);
  return adopt(new Sn(name + std::to_string(n), count, copies), parentModule);
}

// ---------------------------------------------------------------------------------------
// Parallel, Pn

Parallel::Parallel(const std::string& n, Statement* l, Statement* r)
    : Statement(n), left(l), right(r) {}

bool Parallel::reincarnate() { return left->reincarnate() || right->reincarnate(); }

Statement* Parallel::duplicate(Module* m, EquationTable* t) {
  return adopt(new Parallel(name + "_bis", left->duplicate(m, t), right->duplicate(m, t)),
               parentModule);
}

Statement* Parallel::duplicate(int n) {
  return adopt(new Parallel(name + std::to_string(n), left->duplicate(n), right->duplicate(n)),
               parentModule);
}

Pn::Pn(const std::string& n, int c, Statement** a)
    : Statement(n), count(c), capacity(c), array(a) {}

void Pn::addStatement(Statement* s) { array = growArray(array, count++, capacity, s); }

bool Pn::reincarnate() {
  for (int i = 0; i < count; i++)
    if (array[i]->reincarnate()) return true;
  return false;
}

Statement* Pn::duplicate(Module* m, EquationTable* t) {
  Statement** copies = new Statement*[count];
  for (int i = 0; i < count; i++) copies[i] = array[i]->duplicate(m, t);
  return adopt(new Pn(name + "_bis", count, copies), parentModule);
}

Statement* Pn::duplicate(int n) {
  Statement** copies = new Statement*[count];
  for (int i = 0; i < count; i++) copies[i] = array[i]->duplicate(n);
  return adopt(new Pn(name + std::to_string(n), count, copies), parentModule);
}

// ---------------------------------------------------------------------------------------
// Present, Absent

Present::Present(const std::string& n, Expression* e, Statement* t, Statement* f)
    : Statement(n), expression(e), thenPart(t), elsePart(f) {}

bool Present::reincarnate() {
  if (elsePart) return thenPart->reincarnate() || elsePart->reincarnate();
  return thenPart->reincarnate();
}

Statement* Present::duplicate(Module* m, EquationTable* t) {
  return adopt(new Present(name + "_bis", expression, thenPart->duplicate(m, t),
                           dupOrNull(elsePart, m, t)),
               parentModule);
}

Statement* Present::duplicate(int n) {
  return adopt(new Present(name + std::to_string(n), expression, thenPart->duplicate(n),
                           dupOrNull(elsePart, n)),
               parentModule);
}

Absent::Absent(const std::string& n, Expression* e, Statement* t, Statement* f)
    : Statement(n), expression(e), thenPart(t), elsePart(f) {}

bool Absent::reincarnate() {
  if (elsePart) return thenPart->reincarnate() || elsePart->reincarnate();
  return thenPart->reincarnate();
}

Statement* Absent::duplicate(Module* m, EquationTable* t) {
  return adopt(new Absent(name + "_bis", expression, thenPart->duplicate(m, t),
                          dupOrNull(elsePart, m, t)),
               parentModule);
}

Statement* Absent::duplicate(int n) {
  return adopt(new Absent(name + std::to_string(n), expression, thenPart->duplicate(n),
                          dupOrNull(elsePart, n)),
               parentModule);
}

// ---------------------------------------------------------------------------------------
// Abort, StrongAbort, Loop

Abort::Abort(const std::string& n, Expression* e, Statement* b)
    : Statement(n), expression(e), body(b) {}

Statement* Abort::duplicate(Module* m, EquationTable* t) {
  return adopt(new Abort(name + "_bis", expression, body->duplicate(m, t)), parentModule);
}

Statement* Abort::duplicate(int n) {
  return adopt(new Abort(name + std::to_string(n), expression, body->duplicate(n)), parentModule);
}

StrongAbort::StrongAbort(const std::string& n, Expression* e, Statement* b)
    : Statement(n), expression(e), body(b) {}

Statement* StrongAbort::duplicate(Module* m, EquationTable* t) {
  return adopt(new StrongAbort(name + "_bis", expression, body->duplicate(m, t)), parentModule);
}

Statement* StrongAbort::duplicate(int n) {
  return adopt(new StrongAbort(name + std::to_string(n), expression, body->duplicate(n)),
               parentModule);
}

Loop::Loop(const std::string& n, Statement* b) : Statement(n), body(b) {}

bool Loop::reincarnate() { return body->reincarnate(); }

Statement* Loop::duplicate(Module* m, EquationTable* t) {
  return adopt(new Loop(name + "_bis", body->duplicate(m, t)), parentModule);
}

Statement* Loop::duplicate(int n) {
  return adopt(new Loop(name + std::to_string(n), body->duplicate(n)), parentModule);
}

// ---------------------------------------------------------------------------------------
// Wait, Pause, Nothing, Halt

Wait::Wait(const std::string& n, Expression* e) : Statement(n), expression(e) {}

Statement* Wait::duplicate(Module*, EquationTable*) {
  return adopt(new Wait(name + "_bis", expression), parentModule);
}

Statement* Wait::duplicate(int n) {
  return adopt(new Wait(name + std::to_string(n), expression), parentModule);
}

Pause::Pause(const std::string& n) : Statement(n) {}

Statement* Pause::duplicate(Module*, EquationTable*) {
  return adopt(new Pause(name + "_bis"), parentModule);
}

Statement* Pause::duplicate(int n) {
  return adopt(new Pause(name + std::to_string(n)), parentModule);
}

Nothing::Nothing(const std::string& n) : Statement(n) {}

Statement* Nothing::duplicate(Module*, EquationTable*) {
  return adopt(new Nothing(name + "_bis"), parentModule);
}

Statement* Nothing::duplicate(int n) {
  return adopt(new Nothing(name + std::to_string(n)), parentModule);
}

Halt::Halt(const std::string& n) : Statement(n) {}

Statement* Halt::duplicate(Module*, EquationTable*) {
  return adopt(new Halt(name + "_bis"), parentModule);
}

Statement* Halt::duplicate(int n) { return adopt(new Halt(name + std::to_string(n)), parentModule); }

// ---------------------------------------------------------------------------------------
// Emit, NoEmit, SustainUntil

Emit::Emit(const std::string& n, Signal* s, Signal* c)
    : Statement(n), signal(s), signalName(s ? s->getOriginalName() : std::string()), clock(c) {}

Statement* Emit::duplicate(Module*, EquationTable*) {
  return adopt(new Emit(name + "_bis", signal, clock), parentModule);
}

Statement* Emit::duplicate(int n) {
  return adopt(new Emit(name + std::to_string(n), signal, clock), parentModule);
}

NoEmit::NoEmit(const std::string& n, Signal* s)
    : Statement(n), signal(s), signalName(s ? s->getOriginalName() : std::string()) {}

Statement* NoEmit::duplicate(Module*, EquationTable*) {
  return adopt(new NoEmit(name + "_bis", signal), parentModule);
}

Statement* NoEmit::duplicate(int n) {
  return adopt(new NoEmit(name + std::to_string(n), signal), parentModule);
}

SustainUntil::SustainUntil(const std::string& n, Signal* s, Expression* u)
    : Statement(n), signal(s), signalName(s ? s->getOriginalName() : std::string()), until(u) {}

// The clock of a valued sustain goes with the copy: without it the copy would emit
// the signal without its value.
Statement* SustainUntil::duplicate(Module*, EquationTable*) {
  SustainUntil* copy = adopt(new SustainUntil(name + "_bis", signal, until), parentModule);
  copy->setClock(clock);
  return copy;
}

Statement* SustainUntil::duplicate(int n) {
  SustainUntil* copy = adopt(new SustainUntil(name + std::to_string(n), signal, until), parentModule);
  copy->setClock(clock);
  return copy;
}

// ---------------------------------------------------------------------------------------
// Run

Run::Run(const std::string& n, const std::string& m)
    : Statement(n), moduleName(m), renamingTable(new std::map<std::string, Signal*>) {}

Statement* Run::duplicate(Module* module, EquationTable*) {
  Run* copy = adopt(
      new Run("R_" + module->getName() + "_" + std::to_string(Module::RunNumber++), moduleName),
      parentModule);
  copy->setRenamingTable(renamingTable);
  return copy;
}

Statement* Run::duplicate(int n) {
  Run* copy = adopt(new Run(name + std::to_string(n), moduleName), parentModule);
  copy->setRenamingTable(renamingTable);
  return copy;
}

void Run::setRenamingTable(std::list<std::pair<char const*, Signal*>*>* l) {
  if (!renamingTable) renamingTable = new std::map<std::string, Signal*>;
  if (!l) return;
  for (auto* p : *l) {
    std::string key = p->first ? p->first : "";
    if (renamingTable->count(key)) Compilation::HashTableAddException("", key);
    (*renamingTable)[key] = p->second;
  }
}

Signal* Run::getRenamingSignal(const std::string& n) {
  if (!renamingTable) return nullptr;
  auto it = renamingTable->find(n);
  return it == renamingTable->end() ? nullptr : it->second;
}

bool Run::reincarnate() {
  // A module that runs itself, directly or through others, would ask itself forever.
  static std::set<std::string> asking;
  if (!asking.insert(moduleName).second)
    Compilation::fatal("Error in Run call: module " + moduleName + " runs itself");
  struct Asked {
    const std::string& name;
    ~Asked() { asking.erase(name); }
  } asked{moduleName};
  if (module) {
    if (!module->getSet() && module->getStatement()) return module->getStatement()->reincarnate();
    return module->getReincarnate();
  }
  if (Compilation::ModTable) {
    Module* m = Compilation::ModTable->get(moduleName);
    if (m && m->getStatement()) return m->getStatement()->reincarnate();
  }
  long stored = Compilation::getReincarnateFromQncFile(moduleName);
  if (stored != -1) return stored != 0;
  if (!parentModule || !parentModule->getRunDeclTable())
    Compilation::IllegalOperationException("ex1:Run module undefined: " + moduleName);
  std::string* location = parentModule->getModuleLocation(moduleName);
  if (!location) Compilation::IllegalOperationException("ex2:Run module undefined: " + moduleName);
  Compilation::qn_parse(*location + ".qn");
  Module* m = Compilation::ModTable ? Compilation::ModTable->get(moduleName) : nullptr;
  // The file at the declared place does not hold the module.
  if (!m || !m->getStatement())
    Compilation::IllegalOperationException("ex2:Run module undefined: " + moduleName);
  return m->getStatement()->reincarnate();
}

// ---------------------------------------------------------------------------------------
// Automaton, transitions

Transition::Transition(int ty, int p, Expression* tr, std::vector<Signal*>* a, State* s, State* t,
                       double* g, bool i)
    : type(ty), priority(p), trigger(tr), action(a), source(s), target(t), geometry(g), initial(i) {}

bool priority_comp(Transition* a, Transition* b) {
  int pa = a->getPriority(), pb = b->getPriority();
  return pa != -1 && (pb == -1 || pa < pb);
}

std::list<Transition*>* priority_sort(std::list<Transition*>* l) {
  auto* sorted = new std::list<Transition*>(*l);
  if (sorted->size() > 1) sorted->sort(priority_comp);
  return sorted;
}

Automaton::Automaton(const std::string& n, double* g, std::map<std::string, State*>* st,
                     std::list<Transition*>* tl)
    : Statement(n), geometry(g), stateTable(st), transitionList(tl) {}

State* Automaton::findState(std::map<std::string, State*>* table, const std::string& n) {
  if (!table) return nullptr;
  auto it = table->find(n);
  return it == table->end() ? nullptr : it->second;
}

// ---------------------------------------------------------------------------------------
// MealyMachine

MealyMachine::MealyMachine(const std::string& n)
    : Statement(n), machineTable(new std::map<std::string, Equation*>) {}

void MealyMachine::setMachineTable(std::list<Equation*>* equations, Module*) {
  if (!equations) return;
  for (Equation* e : *equations) (*machineTable)[e->getLeftVar()->getInternalName()] = e;
}

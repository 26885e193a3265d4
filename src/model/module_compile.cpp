// A module from statement tree to dated equations; the copy made for the generators;
// the wire and local cleaning that finalization calls.
#include <iostream>

#include "bdd/bddpp.h"
#include "data/data.h"
#include "util/compilation.h"
#include "equations/Bddexpression.h"
#include "equations/equationtable.h"
#include "model/module.h"
#include "model/statement.h"
#include "signals/signal_manager.h"

void Module::compile() {
  createCompileEnv();
  if (!statement) return;
  statement->compile(this, compilation);
  statement->connectExternalWires(this);
  sortCode();
  reincarnate = statement->reincarnate();
}

namespace {

// Occurrence 1 of an output or local starts at bottom, and occurrence 0 equals it: the
// pauses of the body add further occurrences to it.
void openSignal(Module* m, Signal* s, Bddexpressionwood* wood, const std::string& undefinedBound) {
  EquationTable* table = m->getCompilation();
  s->newOccurrence(wood, m);
  table->createBottomEquation(s, m);
  new Bddexpression(s->getInternalName(), wood, s->getInitialOverBdd(m, wood),
                    s->getOverBdd(m, wood), 0, 0, s->computeOverType());
  new Bddexpression(s->getInternalName(), wood, s->getInitialUnderBdd(m, wood),
                    s->getUnderBdd(m, wood), 0, 0, s->computeUnderType());
  if (!s->isValued(m)) return;
  std::list<Signal*>* bound = m->getSignalBindingByClock(s);
  if (!bound) return;
  for (Signal* b : *bound) {
    if (!b->getSignalRef(m, wood))
      Compilation::IllegalOperationException(undefinedBound + b->getInternalName());
    table->createBottomEquation(b, m);
  }
}

}  // namespace

void Module::createCompileEnv() {
  Bddexpressionwood* wood = getBddWood();
  set = new Signal(Compilation::createSETName(name), this, wood);
  reset = new Signal(Compilation::createRESETName(name), this, wood);
  rtl = new Signal(Compilation::createRTLName(name), this, wood);
  for (Signal* s : *outputList) {
    if (!s->getSignalRef(this, wood))
      Compilation::IllegalOperationException("Module::createCompileEnv: undefined output signal" +
                                             s->getInternalName());
    openSignal(this, s, wood, "Module::createCompileEnv: undefined signal");
  }
  for (Signal* s : *localList) {
    if (s->isRegister() || s->isValue()) continue;
    if (!s->getSignalRef(this, wood))
      Compilation::IllegalOperationException("Module::createCompileEnv: undefined local signal " +
                                             s->getInternalName());
    openSignal(this, s, wood, "Module::createCompileEnv: undefined signal ");
  }
}

void Module::sortCode() {
  Bddexpressionwood* wood = getBddWood();
  std::list<long> ids;
  for (std::list<Signal*>* l : {localList, outputList})
    for (Signal* s : *l) ids.splice(ids.end(), s->getAllBddId(this, wood));
  statement->callPert(compilation, ids);
}

// A module read from a file or copied has no statement: its wood knows the dates.
long Module::getPertLevel() {
  if (statement) return statement->getPertLevel();
  Bddexpressionwood* wood = getBddWood();
  return wood ? wood->Nb_level() : 0;
}

namespace {

const std::list<int> kRegisterProtection = {Compilation::SINPUT,  Compilation::VINPUT, Compilation::SOUTPUT,
                                            Compilation::VOUTPUT, Compilation::SREG,   Compilation::VREG,
                                            Compilation::SCLOCK,  Compilation::VCLOCK};

}  // namespace

void Module::clean_locals() {
  Bddexpressionwood* wood = getBddWood();
  if (!localList || !wood) return;
  auto* kept = new std::list<Signal*>;
  for (Signal* s : *localList) {
    if (s->isRegister() || s->isValued(this) || s->isClock()) {
      kept->push_back(s);
      continue;
    }
    // A register's next value that turns constant here stays, so that the register
    // keeps its equation; suppress_useless_registers then decides on it.
    wood->suppress_local(s->getOverBddId(this, wood), kRegisterProtection);
    wood->suppress_local(s->getUnderBddId(this, wood), kRegisterProtection);
  }
  localList = kept;
}

namespace {

void setType(Bddexpressionwood* wood, long id, int type) {
  if (Bddexpression* e = wood->exp_by_index(id)) e->setUserType(type);
}

// Over ids get overType, under ids underType, over all occurrences.
void setTypes(Module* m, Signal* s, Bddexpressionwood* wood, int overType, int underType) {
  bool over = true;
  for (long id : s->getAllBddId(m, wood)) {
    setType(wood, id, over ? overType : underType);
    over = !over;
  }
}

}  // namespace

void Module::update_user_type() {
  Bddexpressionwood* wood = getBddWood();
  if (!wood) return;
  if (outputList)
    for (Signal* s : *outputList) {
      setType(wood, s->getOverBddId(this, wood), Compilation::SOUTPUT);
      setType(wood, s->getUnderBddId(this, wood), Compilation::VOUTPUT);
    }
  if (localList)
    for (Signal* s : *localList) {
      if (s->isRegister())
        setTypes(this, s, wood, Compilation::SREG, Compilation::VREG);
      else if (s->isClock())
        setTypes(this, s, wood, Compilation::SCLOCK, Compilation::VCLOCK);
    }
  if (preList)
    for (memorizedSignal* p : *preList) {
      Signal* pre = p->getPre();
      if (!pre) continue;
      if (Bddexpression* e = wood->exp_by_index(pre->getOverBddId(this, wood)))
        if (e->getUserType() != Compilation::SOUTPUT && e->getUserType() != Compilation::SINPUT)
          e->setUserType(Compilation::SUSEDPRE);
      if (Bddexpression* e = wood->exp_by_index(pre->getUnderBddId(this, wood)))
        if (e->getUserType() != Compilation::VOUTPUT && e->getUserType() != Compilation::VINPUT)
          e->setUserType(Compilation::VUSEDPRE);
    }
}

Module::Module(Module& m)
    : name(m.name),
      statement(nullptr),
      inputList(new std::list<Signal*>),
      outputList(new std::list<Signal*>),
      localList(new std::list<Signal*>),
      preList(new std::list<memorizedSignal*>),
      dataSignalList(new std::list<Signal*>),
      runDeclTable(nullptr),
      registerList(new std::list<regclass*>),
      compilation(nullptr),
      set(nullptr),
      reset(nullptr),
      rtl(nullptr),
      reincarnate(m.reincarnate),
      finalised(m.finalised),
      currentInstance(m.currentInstance),
      signalManager(new SignalManager()),
      dataTable(nullptr) {
  Bddexpressionwood* oldWood = m.getBddWood();
  // The copy gets a BDD manager of its own even where the source shares one.
  int common = oldWood->get_common_bdd_manager();
  oldWood->set_common_bdd_manager(0);
  Bddexpressionwood* newWood = new Bddexpressionwood(oldWood);
  compilation = new EquationTable(name, newWood);

  auto copyList = [&](std::list<Signal*>* from, std::list<Signal*>* to) {
    if (!from) return;
    for (Signal* s : *from) to->push_back(new Signal(*s, this, newWood, &m));
  };
  copyList(m.inputList, inputList);
  copyList(m.outputList, outputList);
  copyList(m.localList, localList);
  copyList(m.dataSignalList, dataSignalList);

  if (m.preList)
    for (memorizedSignal* p : *m.preList) {
      Signal* pre = p->getPre() ? new Signal(*p->getPre(), this, newWood, &m) : nullptr;
      Signal* actual = nullptr;
      if (p->getActual()) {
        const std::string& actualName = p->getActual()->getInternalName();
        actual = getSignal(actualName);
        if (!actual) std::cerr << "signal " << actualName << " not found! " << std::endl;
      }
      preList->push_back(new memorizedSignal(pre, actual, p->getInitialValue()));
    }

  if (m.set) setSet(new Signal(*m.set, this, newWood, &m));
  if (m.reset) setReset(new Signal(*m.reset, this, newWood, &m));
  if (m.rtl) setRtl(new Signal(*m.rtl, this, newWood, &m));

  if (m.registerList)
    for (regclass* r : *m.registerList)
      registerList->push_back(
          new regclass(r->actual_var() ? getLocalSignal(r->actual_var()->getInternalName()) : nullptr,
                       r->next_var() ? getLocalSignal(r->next_var()->getInternalName()) : nullptr,
                       r->is_initialy_true()));

  for (long i = 0; i < oldWood->Nb_bdd_vars(); i++)
    if (Bddexpression* e = oldWood->exp_by_index(i)) new Bddexpression(newWood, oldWood, *e);

  if (m.dataTable) {
    dataTable = new std::map<std::string, DataBinding*>;
    for (auto& [key, b] : *m.dataTable) (*dataTable)[key] = new DataBinding(*b, this, &m);
  }

  oldWood->set_common_bdd_manager(common);
}

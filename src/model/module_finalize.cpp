// Finalization: from the (over, under) equations of a compiled module to a closed
// module that runs as a whole: driven start, named inputs and outputs, no wires, no
// constants, registers that change, dated again. Also the over-knowledge output.
#include <iostream>
#include <list>

#include "bdd/bddpp.h"
#include "data/data.h"
#include "util/compilation.h"
#include "equations/Bddexpression.h"
#include "equations/equationtable.h"
#include "util/report.h"
#include "model/module.h"
#include "signals/signal_manager.h"

namespace {

const std::list<int> kFullProtection = {Compilation::SINPUT,   Compilation::VINPUT, Compilation::SOUTPUT,
                                        Compilation::VOUTPUT,  Compilation::SREG,   Compilation::VREG,
                                        Compilation::SCLOCK,   Compilation::VCLOCK, Compilation::SUSEDPRE,
                                        Compilation::VUSEDPRE};
const std::list<int> kRegisterProtection = {Compilation::SINPUT,  Compilation::VINPUT, Compilation::SOUTPUT,
                                            Compilation::VOUTPUT, Compilation::SREG,   Compilation::VREG,
                                            Compilation::SCLOCK,  Compilation::VCLOCK};

bool isZero(Bddexpressionwood* wood, const bdd& f) { return f.initialised() && f == wood->Bdd_zero(); }

// An input-like signal gets under = not over, and its over variable the
// source name.
void closeInput(Module* m, Bddexpressionwood* wood, Signal* s) {
  bdd over = s->getOverBdd(m, wood);
  bdd under = s->getUnderBdd(m, wood);
  if (!over.initialised() || !under.initialised()) return;
  new Bddexpression(s->getInternalName(), wood, under, wood->Bdd_not(over), 0, 0, Compilation::VINPUT);
  wood->my_bdd_manager()->Rename_var(s->getOriginalName(), wood->Name_var_by_bdd(over));
}

// Every occurrence of an output or a local gets both equations.
void closeEmitted(Module* m, Bddexpressionwood* wood, Signal* s, bool output) {
  if (!s->isLocal() && !s->isWire() && !s->isOutput()) return;
  std::list<long> ids = s->getAllBddId(m, wood);
  for (auto it = ids.begin(); it != ids.end();) {
    long oi = *it++;
    if (it == ids.end()) break;
    long ui = *it++;
    if (oi < 0 || ui < 0) continue;
    Bddexpression* O = wood->exp_by_index(oi);
    Bddexpression* U = wood->exp_by_index(ui);
    bdd o = wood->Bdd_var_by_index(oi);
    bdd u = wood->Bdd_var_by_index(ui);
    if (!U) {
      new Bddexpression(s->getInternalName(), wood, u, wood->Bdd_not(o), 0, 0, s->computeUnderType());
    } else if (O) {
      // Nothing emits it and nothing excludes it in this section: false rather than
      // undefined. Occurrence 0 ors the sections, so an output emitted in one section and
      // left alone in another reads back as error inside its module.
      if (output && isZero(wood, O->my_bdd_exp()) && isZero(wood, U->my_bdd_exp()))
        U->setBddExp(wood->Bdd_one());
    } else if (output || !s->isRegister()) {
      std::string text = "***Warning: Finalize: no over expression and under expression for:" +
                         wood->Name_var_by_index(ui) + "!!!\n => changing over equation ...\n";
      report_message(text);
      std::cerr << text << std::endl;
      new Bddexpression(s->getInternalName(), wood, o, wood->Bdd_not(u), U->getEarlyDate(), U->getLateDate(),
                        U->getUserType());
    }
  }
  if (output) {
    bdd over = s->getInitialOverBdd(m, wood);
    if (over.initialised())
      wood->my_bdd_manager()->Rename_var(s->getOriginalName(), wood->Name_var_by_bdd(over));
  }
}

void setUserType(Bddexpressionwood* wood, long index, int type) {
  if (index < 0) return;
  Bddexpression* e = wood->exp_by_index(index);
  if (e && e->getUserType() != type) e->setUserType(type);
}

void pushAllIds(std::list<long>& out, Module* m, Bddexpressionwood* wood, Signal* s) {
  if (!s->isLocal() && !s->isWire() && !s->isOutput()) return;
  for (long id : s->getAllBddId(m, wood))
    if (id >= 0) out.push_back(id);
}

}  // namespace

void Module::finalize(int keep_rtl) {
  finalised = 1;
  Bddexpressionwood* wood = getBddWood();
  if (!wood) return;
  bddpp_manager* manager = wood->my_bdd_manager();

  // Registers: the next value equations are SREG and VREG.
  if (registerList)
    for (regclass* r : *registerList) {
      long oi = r->next_var()->getOverBddId(this, wood);
      Bddexpression* e = oi >= 0 ? wood->exp_by_index(oi) : nullptr;
      if (e && e->getUserType() != Compilation::SREG) {
        std::cerr << " Warning: reaffectation " << oi << ": " << wood->Name_var_by_index(oi) << " with SREG"
                  << std::endl;
        e->setUserType(Compilation::SREG);
      }
      long ui = r->next_var()->getUnderBddId(this, wood);
      e = ui >= 0 ? wood->exp_by_index(ui) : nullptr;
      if (e && e->getUserType() != Compilation::VREG) {
        std::cerr << " Warning reaffectation " << ui << ": " << wood->Name_var_by_index(ui) << " with VREG"
                  << std::endl;
        e->setUserType(Compilation::VREG);
      }
    }

  // Data bindings: a signal that carries a value to a clock is observable.
  if (dataTable)
    for (auto& [key, b] : *dataTable) {
      if (!b || !b->getClock() || !b->getSignal()) continue;
      setUserType(wood, b->getSignal()->getInitialOverBddId(this, wood), Compilation::SOUTPUT);
      setUserType(wood, b->getSignal()->getInitialUnderBddId(this, wood), Compilation::VOUTPUT);
    }

  if (inputList)
    for (Signal* s : *inputList) closeInput(this, wood, s);
  if (dataSignalList)
    for (Signal* s : *dataSignalList) closeInput(this, wood, s);
  if (preList)
    for (memorizedSignal* p : *preList)
      if (p->getPre()) closeInput(this, wood, p->getPre());
  if (outputList)
    for (Signal* s : *outputList) closeEmitted(this, wood, s, true);
  if (localList)
    for (Signal* s : *localList) closeEmitted(this, wood, s, false);

  wood->constants_propagation(kFullProtection);
  clean();

  // The boot register: true in the first reaction only.
  Signal* boot = new Signal(name + "_boot", this, wood, true);
  Signal* bootplus = new Signal(name + "bootplus", this, wood, true);
  if (!registerList) registerList = new std::list<regclass*>;
  registerList->push_back(new regclass(boot, bootplus, 1));
  if (!localList) localList = new std::list<Signal*>;
  localList->push_back(boot);
  localList->push_back(bootplus);

  // External wires: SET starts the body from the boot register, RESET never kills.
  if (set) {
    bdd setOver = set->getOverBdd(this, wood);
    new Bddexpression(set->getInternalName(), wood, setOver, boot->getOverBdd(this, wood), 0, 0, 0);
    new Bddexpression(set->getInternalName(), wood, set->getUnderBdd(this, wood), wood->Bdd_not(setOver), 0,
                      0, 0);
  }
  if (reset) {
    new Bddexpression(reset->getInternalName(), wood, reset->getOverBdd(this, wood), wood->Bdd_zero(), 0, 0, 0);
    new Bddexpression(reset->getInternalName(), wood, reset->getUnderBdd(this, wood), wood->Bdd_one(), 0, 0, 0);
  }
  new Bddexpression("_s_bootplus", wood, bootplus->getOverBdd(this, wood), wood->Bdd_zero(), 0, 0, 0);
  new Bddexpression("_v_bootplus", wood, bootplus->getUnderBdd(this, wood), wood->Bdd_one(), 0, 0, 0);

  std::list<long> keep;
  if (inputList)
    for (Signal* s : *inputList) keep.push_back(s->getOverBddId(this, wood));
  if (outputList)
    for (Signal* s : *outputList) keep.push_back(s->getInitialOverBddId(this, wood));
  if (dataTable)
    for (auto& [key, b] : *dataTable) {
      if (!b || !b->getClock()) continue;
      keep.push_back(b->getClock()->getInitialOverBddId(this, wood));
      if (b->getSignal()) keep.push_back(b->getSignal()->getInitialOverBddId(this, wood));
    }
  for (Signal* s : *localList)
    if (s->isRegister()) {
      keep.push_back(s->getOverBddId(this, wood));
      keep.push_back(s->getUnderBddId(this, wood));
    }
  if (keep_rtl && rtl) keep.push_back(rtl->getOverBddId(this, wood));
  if (preList)
    for (memorizedSignal* p : *preList)
      if (p->getActual()) keep.push_back(p->getActual()->getOverBddId(this, wood));
  keep.remove_if([](long i) { return i < 0; });
  wood->clean(keep);

  std::list<long> dated;
  for (Signal* s : *localList) pushAllIds(dated, this, wood, s);
  if (outputList)
    for (Signal* s : *outputList) pushAllIds(dated, this, wood, s);
  wood->compute_dates(dated);

  if (manager) loose_first_underscore_in_name_variables();
}

namespace {

// The wire suppression propagates a constant next value into its readers (its own under
// member among them) and drops it, whatever its kind; the under member still tells the
// constant. Gives the next value's equation made again, or null.
Bddexpression* restoredNextValue(Module* m, Bddexpressionwood* wood, regclass* r) {
  long ui = r->next_var()->getUnderBddId(m, wood);
  Bddexpression* u = ui >= 0 ? wood->exp_by_index(ui) : nullptr;
  if (!u || !u->my_bdd_exp().initialised()) return nullptr;
  bddpp_manager* manager = wood->my_bdd_manager();
  const bdd& under = u->my_bdd_exp();
  const bool absent = manager->Bdd_is_tautology(under, 1);
  if (!absent && !manager->Bdd_is_tautology(under, 0)) return nullptr;
  bdd over = r->next_var()->getOverBdd(m, wood);
  if (!over.initialised()) return nullptr;
  return new Bddexpression(r->next_var()->getInternalName(), wood, over,
                           absent ? wood->Bdd_zero() : wood->Bdd_one(), 0, 0, Compilation::SREG);
}

}  // namespace

void Module::suppress_useless_registers() {
  Bddexpressionwood* wood = getBddWood();
  if (!wood || !registerList) return;
  auto* kept = new std::list<regclass*>;
  for (regclass* r : *registerList) {
    long oi = r->next_var()->getOverBddId(this, wood);
    Bddexpression* e = oi >= 0 ? wood->exp_by_index(oi) : nullptr;
    if (!e) e = restoredNextValue(this, wood, r);
    if (!e) {
      std::string text = "internal error 2 in Module::suppress_useless_registers() about index:" +
                         std::to_string(oi);
      report_message(text);
      std::cerr << text << std::endl;
      continue;
    }
    const bdd& right = e->my_bdd_exp();
    bddpp_manager* manager = wood->my_bdd_manager();
    if (!right.initialised() || !manager->Bdd_is_tautology(right, r->is_initialy_true())) {
      kept->push_back(r);
      continue;
    }
    std::cerr << "detecting useless register " << r->actual_var()->getInternalName() << std::endl;
    bdd v = r->actual_var()->getOverBdd(this, wood);
    if (!v.initialised()) {
      std::string text = "internal error 1 in Module::suppress_useless_registers(void)";
      report_message(text);
      std::cerr << text << std::endl;
      continue;
    }
    // The register never changes: every reader sees its initial value.
    wood->reduce_expressions(r->is_initialy_true() ? v : wood->Bdd_not(v), kRegisterProtection);
  }
  registerList = kept;
}

void Module::constants_propagation() {
  Bddexpressionwood* wood = getBddWood();
  if (wood) wood->constants_propagation(kRegisterProtection);
}

void Module::check_over_knowledge() {
  Bddexpressionwood* wood = getBddWood();
  if (!outputList || !wood) return;
  bdd e = wood->Bdd_zero();
  for (Signal* s : *outputList) {
    std::list<long> ids = s->getAllBddId(this, wood);
    for (auto it = ids.begin(); it != ids.end();) {
      long oi = *it++;
      if (it == ids.end()) break;
      long ui = *it++;
      if (oi < 0 || ui < 0) continue;
      Bddexpression* O = wood->exp_by_index(oi);
      Bddexpression* U = wood->exp_by_index(ui);
      if (!O || !U || !O->my_bdd_exp().initialised() || !U->my_bdd_exp().initialised()) continue;
      e = wood->my_bdd_manager()->Bdd_or(e, wood->Bdd_and(O->my_bdd_exp(), U->my_bdd_exp()));
    }
  }
  Signal* error = new Signal("OverKnowledgeError", this, wood);
  error->setOutput();
  outputList->push_back(error);
  compilation->createBottomEquation(error, this);
  new Bddexpression(error->getInternalName(), wood, error->getOverBdd(this, wood), e, 0, 0,
                    Compilation::VOUTPUT);
  new Bddexpression(error->getInternalName(), wood, error->getUnderBdd(this, wood), wood->Bdd_not(e), 0, 0,
                    Compilation::VOUTPUT);
}

void Module::learnOverWireAssertion() {
  Bddexpressionwood* wood = getBddWood();
  if (!wood) return;
  bdd assertion = wood->Bdd_one();
  if (localList)
    for (Signal* s : *localList)
      if (s->isWire()) {
        bdd v = s->getOverBdd(this, wood);
        if (v.initialised()) assertion = wood->Bdd_and(assertion, v);
      }
  for (long n = 0; n < wood->exp_number(); n++) {
    Bddexpression* e = wood->exp(n);
    if (e && e->my_bdd_exp().initialised()) e->setBddExp(wood->Bdd_reduce(e->my_bdd_exp(), assertion));
  }
}

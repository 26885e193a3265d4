// Equations of the statements that run branches at once (Parallel, Pn) and of those
// that take control away from a body (weak and strong abortion).
#include <vector>

#include "bdd/bddpp.h"
#include "util/compilation.h"
#include "equations/Bddexpression.h"
#include "equations/equationtable.h"
#include "model/module.h"
#include "model/statement.h"
#include "model/wire_names.h"
#include "signals/expression.h"
#include "signals/signal_manager.h"

namespace {

Expression* And(Expression* a, Expression* b) { return new AndExpression(a, b); }
Expression* Or(Expression* a, Expression* b) { return new OrExpression(a, b); }
Expression* Not(Expression* a) { return new NotExpression(a); }
Expression* Np(Expression* a) { return new NpExpression(a); }

Signal* addRegisterHalf(const std::string& name, Module* module, Bddexpressionwood* wood) {
  Signal* s = newRegisterSignal(name, module, wood);
  module->addWireSignal(s);
  return s;
}

// The wires, register and four equations shared by weak and strong abortion; k is the
// condition as seen here. The condition isn't tested in the start instant (A is off).
Expression* abortEquations(const std::string& name, Module* module, EquationTable* table,
                           Expression* expression, Statement* body, Signal* set, Signal* reset,
                           Signal* rtl, Signal*& actif, Signal*& actifplus) {
  Bddexpressionwood* wood = table->getBddexpressionWood();
  Expression* k = expression->buildCurrentExpression(table, module);
  actif = newRegisterSignal(Compilation::createACTIFName(name), module, wood);
  actifplus = newRegisterSignal(Compilation::createACTIFPLUSName(name), module, wood);
  module->addWireSignal(actif);
  module->addWireSignal(actifplus);
  module->addRegisterSignal(actif, actifplus);
  table->createRegisterEquation(actif, module);
  table->createEquation(body->getSet(), set, module);
  table->createEquation(body->getReset(), Or(And(actif, And(Not(reset), k)), reset), module, true);
  table->createEquation(rtl, Or(body->getRtl(), And(k, actif)), module, true);
  // Np(k): a condition at error fires the abort and keeps A+ set at once.
  table->createEquation(
      actifplus,
      And(Not(reset), And(Or(And(actif, Np(k)), set), Not(body->getRtl()))), module, true);
  return k;
}

// Masks by g the equations of occurrences 1 and up of s in the wood. Occurrence 0 is
// the or of the others' variables and needs no mask. A signal that this wood doesn't
// know (a signal added by a Run in an earlier branch) is passed over.
void maskOccurrences(Module* module, Bddexpressionwood* wood, Signal* s, const bdd& g) {
  if (!s->hasOccurrence(wood)) return;
  bddpp_manager* manager = wood->my_bdd_manager();
  int current = s->getCurrentOccurrence(wood);
  for (int n = 1; n <= current; n++) {
    SignalRef* ref = module->getSignalManager()->getSignalRefByOccurrence(s, n);
    if (!ref || !ref->isDefinedWood(wood)) continue;
    for (long id : {ref->getOverBddId(wood), ref->getUnderBddId(wood)}) {
      Bddexpression* e = id >= 0 ? wood->exp_by_index(id) : nullptr;
      if (e) e->setBddExp(manager->Bdd_and(g, e->my_bdd_exp()));
    }
  }
}

}  // namespace

// ---------------------------------------------------------------------------------------
// Parallel: two branches, each compiled in its own table and joined by unify.

void Parallel::compile(Module* module, EquationTable* table) {
  EquationTable* t2 = table->duplicate(module);
  left->compile(module, table);
  left->callPert(table);
  right->compile(module, t2);
  right->callPert(t2);
  table->unify(t2, module);
  createEquations(module, table);
}

// A (ACTIF): the left branch has terminated and waits for the right one; B (ACTIFBIS)
// the other way round.
void Parallel::createEquations(Module* module, EquationTable* table) {
  createWires(module, table);
  Bddexpressionwood* wood = table->getBddexpressionWood();
  actif = addRegisterHalf(Compilation::createACTIFName(name), module, wood);
  actifplus = addRegisterHalf(Compilation::createACTIFPLUSName(name), module, wood);
  actifbis = addRegisterHalf(Compilation::createACTIFBISName(name), module, wood);
  actifbisplus = addRegisterHalf(Compilation::createACTIFBISPLUSName(name), module, wood);
  module->addRegisterSignal(actif, actifplus);
  module->addRegisterSignal(actifbis, actifbisplus);
  table->createRegisterEquation(actif, module);
  table->createRegisterEquation(actifbis, module);

  Signal* a = actif;
  Signal* b = actifbis;
  Signal* tl = left->getRtl();
  Signal* tr = right->getRtl();
  table->createEquation(left->getSet(), set, module);
  table->createEquation(right->getSet(), set, module);
  table->createEquation(left->getReset(), reset, module);
  table->createEquation(right->getReset(), reset, module);
  table->createEquation(rtl,
                        Or(And(And(Not(a), Not(b)), And(tr, tl)),
                           Or(And(And(tr, Not(b)), a), And(And(tl, Not(a)), b))),
                        module);
  table->createEquation(actifplus,
                        Or(And(And(a, Not(tr)), Not(reset)),
                           And(And(And(Not(tr), Not(reset)), tl), Not(b))),
                        module);
  table->createEquation(actifbisplus,
                        Or(And(And(b, Not(tl)), Not(reset)),
                           And(And(And(tr, Not(reset)), Not(tl)), Not(a))),
                        module);
}

// ---------------------------------------------------------------------------------------
// Pn: n branches; all copies of the table are made before any branch is compiled, so
// no branch sees the equations of another.

void Pn::compile(Module* module, EquationTable* table) {
  std::vector<EquationTable*> copies(count, nullptr);
  for (int i = 1; i < count; i++) copies[i] = table->duplicate(module);
  array[0]->compile(module, table);
  array[0]->callPert(table);
  for (int i = 1; i < count; i++) {
    array[i]->compile(module, copies[i]);
    array[i]->callPert(copies[i]);
    table->unify(copies[i], module);
  }
  createEquations(module, table);
}

// A finished branch i waits in A(i); r(i) ands the ends of branches 0 to i, and the Pn
// terminates when all have ended.
void Pn::createEquations(Module* module, EquationTable* table) {
  createWires(module, table);
  Bddexpressionwood* wood = table->getBddexpressionWood();
  actif = new Signal*[count];
  actifplus = new Signal*[count];
  std::vector<Signal*> r(count);
  for (int i = 0; i < count; i++) {
    actif[i] = newRegisterSignal(Compilation::createACTIFName(name, i), module, wood);
    actifplus[i] = newRegisterSignal(Compilation::createACTIFPLUSName(name, i), module, wood);
    module->addWireSignal(actif[i]);
    module->addWireSignal(actifplus[i]);
    module->addRegisterSignal(actif[i], actifplus[i]);
    table->createRegisterEquation(actif[i], module);
    r[i] = newWireSignal(Compilation::createRTLName(name, i), module, wood);
    module->addLocalSignal(r[i]);
  }
  for (int i = 0; i < count; i++) {
    table->createEquation(array[i]->getSet(), set, module);
    table->createEquation(array[i]->getReset(), reset, module);
  }
  table->createEquation(r[0], Or(actif[0], array[0]->getRtl()), module);
  for (int i = 1; i < count; i++)
    table->createEquation(r[i], And(Or(actif[i], array[i]->getRtl()), r[i - 1]), module);
  table->createEquation(rtl, r[count - 1], module);
  Expression* g = And(Not(rtl), Not(reset));
  for (int i = 0; i < count; i++)
    table->createEquation(actifplus[i], And(Or(actif[i], array[i]->getRtl()), g), module);
}

// ---------------------------------------------------------------------------------------
// Weak abortion: in the instant of the firing the body is killed, and what it emits
// in that instant stands.

void Abort::compile(Module* module, EquationTable* table) {
  body->compile(module, table);
  createEquations(module, table);
}

void Abort::createEquations(Module* module, EquationTable* table) {
  createWires(module, table);
  abortEquations(name, module, table, expression, body, set, reset, rtl, actif, actifplus);
}

// ---------------------------------------------------------------------------------------
// Strong abortion: the same circuit, and the emissions of the firing instant are
// removed from every occurrence that this table holds.

void StrongAbort::compile(Module* module, EquationTable* table) {
  body->compile(module, table);
  createEquations(module, table);
}

void StrongAbort::createEquations(Module* module, EquationTable* table) {
  createWires(module, table);
  Expression* k =
      abortEquations(name, module, table, expression, body, set, reset, rtl, actif, actifplus);
  Bddexpressionwood* wood = table->getBddexpressionWood();
  bddpp_manager* manager = wood->my_bdd_manager();
  // not g = A . over(k) . not under(k): the register is on and the condition exactly true.
  bdd g = k->getUnderBdd(module, wood);
  g = manager->Bdd_or(g, manager->Bdd_not(k->getOverBdd(module, wood)));
  g = manager->Bdd_or(g, manager->Bdd_not(actif->getOverBdd(module, wood)));
  if (manager->Bdd_is_one_tautologic(g)) return;
  if (std::list<Signal*>* outputs = module->getOutputSignalList())
    for (Signal* s : *outputs) maskOccurrences(module, wood, s, g);
  if (std::list<Signal*>* locals = module->getLocalSignalList())
    for (Signal* s : *locals)
      if (!s->isWire() && !s->isRegister()) maskOccurrences(module, wood, s, g);
}

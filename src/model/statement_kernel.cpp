// Equations of the sequential kernel: nothing, halt, sequences, loop, pause, wait and
// the two tests. Each createEquations makes its wires first, then its registers, then
// its equations in the order that fixes the circuit.
#include "util/compilation.h"
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

// The ACTIF / ACTIFPLUS pair of a statement that keeps control across instants; the
// present value gets only its under side here.
void makeRegister(const std::string& name, Module* module, EquationTable* table, Signal*& actif,
                  Signal*& actifplus) {
  Bddexpressionwood* wood = table->getBddexpressionWood();
  actif = newRegisterSignal(Compilation::createACTIFName(name), module, wood);
  actifplus = newRegisterSignal(Compilation::createACTIFPLUSName(name), module, wood);
  module->addWireSignal(actif);
  module->addWireSignal(actifplus);
  module->addRegisterSignal(actif, actifplus);
  table->createRegisterEquation(actif, module);
}

// The branches of a test are compiled apart: the else branch in a copy of the table,
// or'ed back once both are dated.
void compileBranches(Module* module, EquationTable* table, Statement* thenPart,
                     Statement* elsePart) {
  if (!elsePart) {
    thenPart->compile(module, table);
    thenPart->callPert(table);
    return;
  }
  EquationTable* t2 = table->duplicate(module);
  thenPart->compile(module, table);
  thenPart->callPert(table);
  elsePart->compile(module, t2);
  elsePart->callPert(t2);
  table->unify(t2, module);
}

// Present tests the over side of its condition (Then/Else), Absent the under side
// (DThen/DElse); otherwise their equations are the same.
template <class Enter, class Pass>
void testEquations(Module* module, EquationTable* table, Expression* k, Signal* set,
                   Signal* reset, Signal* rtl, Statement* thenPart, Statement* elsePart) {
  if (elsePart) {
    table->createEquation(thenPart->getSet(), new Enter(k, set), module, true);
    table->createEquation(elsePart->getSet(), new Pass(k, set), module, true);
    table->createEquation(thenPart->getReset(), reset, module, true);
    table->createEquation(elsePart->getReset(), reset, module, true);
    table->createEquation(rtl, Or(thenPart->getRtl(), elsePart->getRtl()), module, true);
  } else {
    table->createEquation(thenPart->getSet(), new Enter(k, set), module, true);
    table->createEquation(thenPart->getReset(), reset, module, true);
    table->createEquation(rtl, Or(thenPart->getRtl(), new Pass(k, set)), module, true);
  }
}

}  // namespace

// ---------------------------------------------------------------------------------------
// nothing, halt

void Nothing::compile(Module* module, EquationTable* table) { createEquations(module, table); }

void Nothing::createEquations(Module* module, EquationTable* table) {
  createWires(module, table);
  table->createEquation(rtl, set, module);
}

void Halt::compile(Module* module, EquationTable* table) { createEquations(module, table); }

// Never terminates; S and R are defined by the parent and read by nobody here.
void Halt::createEquations(Module* module, EquationTable* table) {
  createWires(module, table);
  table->createEquation(rtl, new FalseExpression(), module);
}

// ---------------------------------------------------------------------------------------
// sequences

void Sequence::compile(Module* module, EquationTable* table) {
  left->compile(module, table);
  right->compile(module, table);
  createEquations(module, table);
}

void Sequence::createEquations(Module* module, EquationTable* table) {
  createWires(module, table);
  table->createEquation(left->getSet(), set, module);
  table->createEquation(right->getSet(), left->getRtl(), module);
  table->createEquation(left->getReset(), reset, module);
  table->createEquation(right->getReset(), reset, module);
  table->createEquation(rtl, right->getRtl(), module);
}

void Sn::compile(Module* module, EquationTable* table) {
  for (int i = 0; i < count; i++) array[i]->compile(module, table);
  createEquations(module, table);
}

void Sn::createEquations(Module* module, EquationTable* table) {
  createWires(module, table);
  table->createEquation(array[0]->getSet(), set, module);
  for (int i = 1; i < count; i++)
    table->createEquation(array[i]->getSet(), array[i - 1]->getRtl(), module);
  for (int i = 0; i < count; i++) table->createEquation(array[i]->getReset(), reset, module);
  table->createEquation(rtl, array[count - 1]->getRtl(), module);
}

// ---------------------------------------------------------------------------------------
// loop

// A body that can terminate in the instant it starts would restart through a cycle
// S(body) <- T(body): it is doubled, so that the restart enters the second copy. A cycle
// that the doubling doesn't break is left to the dating, which reports it.
void Loop::compile(Module* module, EquationTable* table) {
  if (body->reincarnate()) {
    std::string seqName = "S_" + std::to_string(Module::SequenceNumber++);
    Statement* copy = body->duplicate(module, table);
    Sequence* doubled = new Sequence(seqName, body, copy);
    doubled->setParentModule(module);
    body = doubled;
  }
  body->compile(module, table);
  createEquations(module, table);
}

void Loop::createEquations(Module* module, EquationTable* table) {
  createWires(module, table);
  table->createEquation(body->getSet(), Or(set, body->getRtl()), module);
  table->createEquation(body->getReset(), reset, module);
  table->createEquation(rtl, new FalseExpression(), module);
}

// ---------------------------------------------------------------------------------------
// pause, wait: code behind them belongs to a new section, hence pre first.

void Pause::compile(Module* module, EquationTable* table) {
  table->pre(module);
  createEquations(module, table);
}

void Pause::createEquations(Module* module, EquationTable* table) {
  createWires(module, table);
  makeRegister(name, module, table, actif, actifplus);
  table->createEquation(rtl, actif, module);
  table->createEquation(actifplus, And(set, Not(reset)), module, true);
}

void Wait::compile(Module* module, EquationTable* table) {
  table->pre(module);
  createEquations(module, table);
}

// The condition is tested from the instant after the start on.
void Wait::createEquations(Module* module, EquationTable* table) {
  createWires(module, table);
  Expression* k = expression->buildCurrentExpression(table, module);
  makeRegister(name, module, table, actif, actifplus);
  table->createEquation(rtl, And(actif, k), module, true);
  table->createEquation(actifplus,
                        Or(And(set, Not(reset)), And(And(actif, Not(reset)), Np(k))), module,
                        true);
}

// ---------------------------------------------------------------------------------------
// present, absent

void Present::compile(Module* module, EquationTable* table) {
  compileBranches(module, table, thenPart, elsePart);
  createEquations(module, table);
}

void Present::createEquations(Module* module, EquationTable* table) {
  createWires(module, table);
  Expression* k = expression->buildCurrentExpression(table, module);
  testEquations<ThenExpression, ElseExpression>(module, table, k, set, reset, rtl, thenPart,
                                                elsePart);
}

void Absent::compile(Module* module, EquationTable* table) {
  compileBranches(module, table, thenPart, elsePart);
  createEquations(module, table);
}

void Absent::createEquations(Module* module, EquationTable* table) {
  createWires(module, table);
  Expression* k = expression->buildCurrentExpression(table, module);
  testEquations<DThenExpression, DElseExpression>(module, table, k, set, reset, rtl, thenPart,
                                                  elsePart);
}

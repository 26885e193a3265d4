// Mealy machines: a module body given as equations, active from the start instant on
// until a reset clears the machine's one register.
#include "bdd/bddpp.h"
#include "util/compilation.h"
#include "equations/Bddexpression.h"
#include "equations/equationtable.h"
#include "model/module.h"
#include "model/statement.h"
#include "signals/expression.h"
#include "signals/signal_manager.h"

void MealyMachine::compile(Module* module, EquationTable* table) { createEquations(module, table); }

void MealyMachine::createEquations(Module* module, EquationTable* table) {
  createWires(module, table);
  Bddexpressionwood* wood = table->getBddexpressionWood();
  actif = new Signal(Compilation::createACTIFName(name), module, wood, true);
  module->addWireSignal(actif);
  actifplus = new Signal(Compilation::createACTIFPLUSName(name), module, wood, true);
  module->addWireSignal(actifplus);
  module->addRegisterSignal(actif, actifplus);
  table->createEquation(actifplus, new AndExpression(new OrExpression(set, actif), new NotExpression(reset)),
                        module);
  if (machineTable)
    for (auto& [key, equation] : *machineTable) createQuarncEquation(equation, actif, set, module, table);
  // The machine never terminates, nor says that it doesn't.
  table->createBottomEquation(rtl, module);
}

void MealyMachine::createQuarncEquation(Equation* equation, Signal* a, Signal* s, Module* module,
                                        EquationTable* table) {
  Bddexpressionwood* wood = table->getBddexpressionWood();
  bddpp_manager* M = wood->my_bdd_manager();
  Signal* left = equation->getLeftVar();
  Expression* E = new AndExpression(equation->getRightExpr(), new OrExpression(a, s));
  wood->update_bdd_vars();
  Bddexpression* over = table->getBddExpression(left->getOverBddId(module, wood));
  Bddexpression* under = table->getBddExpression(left->getUnderBddId(module, wood));
  if (over && under) {
    // Replaced, not or'ed: the bottom start of an output or local is dropped.
    long loop = -1;
    over->setBddExp(M->Bdd_follow_assoc(E->getOverBdd(module, wood), &loop));
    under->setBddExp(M->Bdd_follow_assoc(E->getUnderBdd(module, wood), &loop));
    return;
  }
  // A register's next variable: a wire, so its under side is the negated over variable.
  table->createEquation(left, E, module);
}

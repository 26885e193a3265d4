// Emission statements. An emission writes no equation of its own: it ors a driver into
// the equations that the compile environment or a pause opened for the signal.
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

}  // namespace

void Emit::compile(Module* module, EquationTable* table) { createEquations(module, table); }

// Instantaneous: T = S, and the signal (and the clock of a valued emission, which tells
// which value expression to compute) is true in the current section.
void Emit::createEquations(Module* module, EquationTable* table) {
  createWires(module, table);
  table->createEquation(rtl, set, module);
  table->createUnifyEquation(signal, new ThenExpression(rtl, new TrueExpression()), module, false);
  if (clock)
    table->createUnifyEquation(clock, new ThenExpression(rtl, new TrueExpression()), module,
                               false);
}

void NoEmit::compile(Module* module, EquationTable* table) { createEquations(module, table); }

// The signal is false, not merely silent: over 0, under T. In the initial form only the
// under side lands in the current section, where a strong abortion can cut it.
void NoEmit::createEquations(Module* module, EquationTable* table) {
  createWires(module, table);
  table->createEquation(rtl, set, module);
  table->createUnifyEquation(signal, new ThenExpression(rtl, new FalseExpression()), module,
                             true);
}

void SustainUntil::compile(Module* module, EquationTable* table) {
  createEquations(module, table);
}

// Emits from the start up to the instant before the condition holds, and terminates in
// that instant without emitting; the condition is tested in the start instant too.
// A has no register equation: finalization gives its under side one.
void SustainUntil::createEquations(Module* module, EquationTable* table) {
  createWires(module, table);
  Bddexpressionwood* wood = table->getBddexpressionWood();
  actif = newRegisterSignal(Compilation::createACTIFName(name), module, wood);
  module->addWireSignal(actif);
  actifplus = newRegisterSignal(Compilation::createACTIFPLUSName(name), module, wood);
  module->addWireSignal(actifplus);
  module->addRegisterSignal(actif, actifplus);
  Expression* k = until->buildCurrentExpression(table, module);
  table->createEquation(actifplus,
                        And(Or(And(set, Not(reset)), And(actif, Not(reset))), Np(k)), module,
                        true);
  table->createEquation(rtl, And(Or(actif, set), k), module, true);
  Expression* driver = And(Or(actif, set), Np(k));
  table->createUnifyEquation(signal, driver, module, true);
  // A valued sustain: the clock follows the signal's driver, so that the value is
  // computed in every instant in which the signal is emitted.
  if (clock) table->createUnifyEquation(clock, driver, module, true);
}

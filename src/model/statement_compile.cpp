// Equations of each statement: filled in with the statement compilers. Until then a
// statement compiles to nothing.
#include "model/statement.h"

void Automaton::createEquations(Module*, EquationTable*) {}
void Automaton::compile(Module*, EquationTable*) {}
void MealyMachine::createEquations(Module*, EquationTable*) {}
void MealyMachine::compile(Module*, EquationTable*) {}

// Equations of each statement: filled in with the statement compilers. Until then a
// statement compiles to nothing.
#include "model/statement.h"

void Sequence::createEquations(Module*, EquationTable*) {}
void Sequence::compile(Module*, EquationTable*) {}
void Sn::createEquations(Module*, EquationTable*) {}
void Sn::compile(Module*, EquationTable*) {}
void Parallel::createEquations(Module*, EquationTable*) {}
void Parallel::compile(Module*, EquationTable*) {}
void Pn::createEquations(Module*, EquationTable*) {}
void Pn::compile(Module*, EquationTable*) {}
void Present::createEquations(Module*, EquationTable*) {}
void Present::compile(Module*, EquationTable*) {}
void Absent::createEquations(Module*, EquationTable*) {}
void Absent::compile(Module*, EquationTable*) {}
void Abort::createEquations(Module*, EquationTable*) {}
void Abort::compile(Module*, EquationTable*) {}
void StrongAbort::createEquations(Module*, EquationTable*) {}
void StrongAbort::compile(Module*, EquationTable*) {}
void Loop::createEquations(Module*, EquationTable*) {}
void Loop::compile(Module*, EquationTable*) {}
void Wait::createEquations(Module*, EquationTable*) {}
void Wait::compile(Module*, EquationTable*) {}
void Pause::createEquations(Module*, EquationTable*) {}
void Pause::compile(Module*, EquationTable*) {}
void Emit::createEquations(Module*, EquationTable*) {}
void Emit::compile(Module*, EquationTable*) {}
void NoEmit::createEquations(Module*, EquationTable*) {}
void NoEmit::compile(Module*, EquationTable*) {}
void SustainUntil::createEquations(Module*, EquationTable*) {}
void SustainUntil::compile(Module*, EquationTable*) {}
void Nothing::createEquations(Module*, EquationTable*) {}
void Nothing::compile(Module*, EquationTable*) {}
void Halt::createEquations(Module*, EquationTable*) {}
void Halt::compile(Module*, EquationTable*) {}
void Run::createEquations(Module*, EquationTable*) {}
void Run::compile(Module*, EquationTable*) {}

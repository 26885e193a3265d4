// Cleaning of a compiled wood before it is saved or finalized: internal wires, useless
// registers and locals that nobody outside reads.
#include "util/compilation.h"
#include "equations/Bddexpression.h"
#include "model/module.h"

void Module::clean() {
  Bddexpressionwood* wood = getBddWood();
  if (!wood || Compilation::KeepWiresFlag) return;
  std::list<int> keep = {Compilation::SINPUT, Compilation::VINPUT,   Compilation::SOUTPUT,
                         Compilation::VOUTPUT, Compilation::SREG,    Compilation::VREG,
                         Compilation::SCLOCK,  Compilation::VCLOCK,  Compilation::SUSEDPRE,
                         Compilation::VUSEDPRE};
  wood->suppress_wires(keep);
  suppress_useless_registers();
  clean_locals();
  // A pause in a branch that is dead only once the locals are substituted leaves a
  // register whose next value is now its constant initial value.
  suppress_useless_registers();
}

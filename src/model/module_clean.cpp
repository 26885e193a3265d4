// Cleaning of a compiled wood before it is saved or finalized: internal wires, useless
// registers and locals that nobody outside reads.
#include "driver/compilation.h"
#include "equations/Bddexpression.h"
#include "model/module.h"
#include "signals/signal_manager.h"

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
}

void Module::clean_locals() {
  Bddexpressionwood* wood = getBddWood();
  if (!localList || !wood) return;
  auto* kept = new std::list<Signal*>;
  for (Signal* s : *localList) {
    if (s->isRegister() || s->isValued(this) || s->isClock()) {
      kept->push_back(s);
      continue;
    }
    wood->suppress_local(s->getOverBddId(this, wood));
    wood->suppress_local(s->getUnderBddId(this, wood));
  }
  localList = kept;
}

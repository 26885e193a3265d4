// Free names for the signals that the statement compilers make.
#include "model/wire_names.h"

#include "model/module.h"
#include "signals/signal_manager.h"

std::string freeSignalName(Module* module, const std::string& name) {
  SignalManager* sm = module->getSignalManager();
  if (!sm->getSignalRefByName(name)) return name;
  for (long k = 1;; k++) {
    std::string candidate = name + "_u" + std::to_string(k);
    if (!sm->getSignalRefByName(candidate)) return candidate;
  }
}

Signal* newWireSignal(const std::string& name, Module* module, Bddexpressionwood* wood) {
  Signal* s = new Signal(freeSignalName(module, name), module, wood);
  s->setWire();
  return s;
}

Signal* newRegisterSignal(const std::string& name, Module* module, Bddexpressionwood* wood) {
  return new Signal(freeSignalName(module, name), module, wood, true);
}

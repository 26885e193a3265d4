// Signal values in expressions, and the bindings of expressions to signals.
#include <cstdlib>
#include <iostream>

#include "data/data.h"
#include "data/data_links.h"
#include "util/compilation.h"
#include "model/module.h"
#include "signals/signal_manager.h"

static const char* const NullSignalText = "abnormal null! Bound signal have to be defined ...";

DataSignalValue::DataSignalValue(Signal* signal) : signal(signal) {}

std::string DataSignalValue::computeType(Module* module) {
  if (!signal) {
    std::cerr << "abnormal null! Bound signal have to be defined about type= " << type
              << " and index= " << index << "..." << std::endl;
    return type;
  }
  SignalRef* ref = signal->getSignalRef(module);
  if (!ref) Compilation::UndefinedTypeException("undefined signal " + signal->getInternalName());
  if (!ref->isValued())
    Compilation::UndefinedTypeException("signal not valued " + signal->getInternalName());
  type = ref->getType();
  return type;
}

// The signal of the instance is found by the kind of the signal inside the called module.
DataExpr* DataSignalValue::instanciate(Interface* iface, std::map<std::string, Signal*>* renaming,
                                       Module* module) {
  if (renaming) {
    auto it = renaming->find(signal->getOriginalName());
    if (it != renaming->end()) return new DataSignalValue(it->second);
  }
  if (signal->isInput() && !signal->isPre()) {
    Signal* s = module->getInputSignal(signal->getOriginalName());
    if (!s) {
      // The checks of run statements make this unreachable from a source; a value on no
      // signal would only fail later, so the run ends here.
      std::cerr << "****error DataSignalValue:instanciate:" << signal->getOriginalName()
                << " not defined in module:" << module->getName() << std::endl;
      std::exit(1);
    }
    return new DataSignalValue(s);
  }
  if (signal->isInput()) return new DataSignalValue(iface->getInputSignal(signal->getInternalName()));
  if (signal->isOutput())
    return new DataSignalValue(iface->getOutputSignal(signal->getOriginalName()));
  if (signal->isLocal()) return new DataSignalValue(iface->getLocalSignal(signal->getInternalName()));
  Compilation::IllegalOperationException("DataSignalValue::instanciate   " +
                                         signal->getInternalName());
}

DataExpr* DataSignalValue::applyRenaming(std::map<std::string, Signal*>* renaming,
                                         Interface* iface) {
  std::string original = iface->getOriginalSignalName(signal->getInternalName());
  if (original.empty()) {
    std::cerr << "***Internal error: applyRenaming: no original signal for renamed signal: "
              << signal->getInternalName() << std::endl;
    std::exit(1);
  }
  if (renaming) {
    auto it = renaming->find(original);
    if (it != renaming->end()) return new DataSignalValue(it->second);
  }
  return this;
}

DataExpr* DataSignalValue::duplicate() { return new DataSignalValue(signal); }

DataExpr* DataSignalValue::changeModule(Module* newModule, Module*) {
  Signal* s = newModule->getSignal(signal->getInternalName());
  if (!s)
    Compilation::IllegalOperationException("DataSignalValue::changeModule: no signal in new module for:" +
                                           signal->getInternalName());
  return new DataSignalValue(s);
}

std::set<Signal*>* DataSignalValue::computeDependencySet() {
  return new std::set<Signal*>{signal};
}

void DataSignalValue::computeValueSignalDependencies(std::set<Signal*>& s) { s.insert(signal); }

void DataSignalValue::print_debug(std::ostream& out) {
  if (signal)
    out << signal->getInternalName();
  else
    out << NullSignalText;
}

void DataSignalValue::QNC_put(std::ostream& out, long* corres, Module* module,
                              std::list<DataExpr*>& list, int& next, int) {
  if (!hasIndex()) {
    setIndex(next++);
    list.push_back(this);
    out << index;
    return;
  }
  Bddexpressionwood* wood = module->getBddWood();
  int typeIndex = Compilation::GDataTypeTable
                      ? Compilation::GDataTypeTable->getIndex(getType(module))
                      : -1;
  out << "%%" << SignalVal + NbPredefOp * typeIndex << "("
      << dataFileNumber(corres, signal->getInitialOverBddId(module, wood)) << ", "
      << dataFileNumber(corres, signal->getInitialUnderBddId(module, wood)) << ")";
}

void DataSignalValue::DEBUG_put(std::ostream& out, Module* module, std::list<DataExpr*>& list,
                                int& next, int top) {
  if (!hasIndex() && !top) {
    setIndex(next++);
    list.push_back(this);
    out << index;
    return;
  }
  DEBUG_put(out, module);
}

// An output is written through a pointer in the generated C function.
void DataSignalValue::C_put(std::ostream& out, Module* module) {
  if (signal->isOutput()) out << "*";
  if (signal->isPre() || signal->isOutput())
    out << signal->getOriginalName();
  else
    out << dataVarName(module, signal->getInitialOverBddId(module, module->getBddWood()),
                       signal->getInternalName());
  out << "_val";
}

void DataSignalValue::CSharp_put(std::ostream& out, Module* module) {
  if (signal->isOutput()) out << " ";
  out << dataVarName(module, signal->getOverBddId(module, module->getBddWood()),
                     signal->getInternalName())
      << "_val";
}

// The name under which Lustre, Esterel and VHDL read the signal's value.
static std::string synchronousValueName(Signal* signal, Module* module) {
  if (signal->isPre()) return signal->getOriginalName();
  return dataVarName(module, signal->getInitialOverBddId(module, module->getBddWood()),
                     signal->getInternalName());
}

void DataSignalValue::LUSTRE_put(std::ostream& out, Module* module) {
  out << synchronousValueName(signal, module) << "_val";
}

// Esterel reads the value of a signal S as ?S.
void DataSignalValue::ESTEREL_put(std::ostream& out, Module* module) {
  out << "?" << synchronousValueName(signal, module);
}

void DataSignalValue::VHDL_put(std::ostream& out, Module* module) {
  out << synchronousValueName(signal, module) << "_locval";
}

void DataSignalValue::DEBUG_put(std::ostream& out, Module*) {
  if (signal)
    out << "SIGNAL VALUE of \"" << signal->getInternalName() << "\"";
  else
    out << NullSignalText;
}

// A signal is present when its over wire holds 1 and its under wire 0.
static bool isPresent(Signal* s, Module* module, int* wires) {
  Bddexpressionwood* wood = module->getBddWood();
  long over = s->getInitialOverBddId(module, wood);
  long under = s->getInitialUnderBddId(module, wood);
  return over >= 0 && under >= 0 && wires[over] == 1 && wires[under] == 0;
}

std::string DataSignalValue::QUARNS_put(Module* module, DataConstantValueMap* constants,
                                        DataSignalValueMap* values, int* wires,
                                        socket_type* sock) {
  long over = signal->getInitialOverBddId(module, module->getBddWood());
  auto it = values ? values->find(over) : DataSignalValueMap::iterator();
  if (!values || it == values->end()) {
    std::cerr << "***error: DataSignalValue:QUARNS_put: signal: " << signal->getInternalName()
              << "  undefined in  data signal value table\n";
    std::exit(1);
  }
  std::string result = it->second;
  if (result != "--") return result;
  if (isPresent(signal, module, wires)) {
    std::list<Signal*>* bound = module->getSignalBindingByClock(signal);
    if (bound && module->getDataTable())
      for (Signal* w : *bound) {
        auto b = module->getDataTable()->find(w->getInternalName());
        if (b == module->getDataTable()->end()) continue;
        if (!isPresent(b->second->getSignal(), module, wires)) continue;
        result = b->second->getValue()->QUARNS_put(module, constants, values, wires, sock);
        std::cerr << "Value:" << result << std::endl;
        break;
      }
    delete bound;
  }
  if (result == "--")
    std::cerr << "***error:DataSignalValue:QUARNS_put: signal: " << signal->getInternalName()
              << "  has no value\n";
  return result;
}

// ---------------------------------------------------------------------------
// DataBinding

DataBinding::DataBinding(Signal* signal, DataExpr* value)
    : clock(nullptr), signal(signal), value(value) {}

DataBinding::DataBinding(Signal* signal, DataExpr* value, Signal* clock)
    : clock(clock), signal(signal), value(value) {}

DataBinding::DataBinding(DataBinding& other, Module* newModule, Module* oldModule)
    : clock(nullptr), signal(nullptr), value(nullptr) {
  signal = newModule->getSignal(other.signal->getInternalName());
  if (!signal)
    Compilation::IllegalOperationException("DataDinding::DataBinding: no signal in new module for:" +
                                           other.signal->getInternalName());
  if (other.clock) {
    clock = newModule->getSignal(other.clock->getInternalName());
    if (!clock)
      Compilation::IllegalOperationException(
          "DataDinding::DataBinding: no clock in new module for: " + other.clock->getInternalName());
  }
  value = other.value->changeModule(newModule, oldModule);
}

DataBinding* DataBinding::instanciate(Interface* iface, std::map<std::string, Signal*>* renaming,
                                      Module* module) {
  Signal* s = iface->getSignal(signal->getInternalName());
  if (!s) {
    std::cerr << " not in interface:" << signal->getOriginalName() << std::endl;
    std::exit(1);
  }
  DataExpr* v = value->instanciate(iface, renaming, module);
  if (!clock) return new DataBinding(s, v);
  Signal* c2 = nullptr;
  if (renaming) {
    auto it = renaming->find(clock->getOriginalName());
    if (it != renaming->end()) c2 = it->second;
  }
  if (!c2) {
    if (module->getOutputSignal(clock->getOriginalName()))
      c2 = clock;
    else
      c2 = iface->getSignal(clock->getInternalName());
  }
  return new DataBinding(s, v, c2);
}

void DataBinding::print_debug(std::ostream& out) {
  out << signal->getInternalName();
  if (clock)
    out << " signal porteur (clock):" << clock->getInternalName();
  else
    out << " pas de signal porteur (clock) associe ...";
  out << "     value: ";
  value->print_debug(out);
}

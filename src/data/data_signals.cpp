// Signal values, bindings, and what the data layer reads of modules and signals.
#include <iostream>

#include "data/data.h"
#include "data/data_links.h"
#include "driver/compilation.h"

// TODO(model): module name once module.h is on main.
std::string dataModuleName(Module*) { return ""; }
// TODO(signals): internal name once signal_manager.h is on main.
std::string dataSignalName(Signal*) { return ""; }
// TODO(driver): Compilation::Socket_call.
std::string dataSocketCall(const std::string&, socket_type*) {
  Compilation::IllegalOperationException("Compilation::Socket_call: not yet available");
}

[[noreturn]] static void notYet(const char* what) {
  Compilation::IllegalOperationException(std::string(what) + ": not yet available");
}

DataSignalValue::DataSignalValue(Signal* signal) : signal(signal) {}
std::string DataSignalValue::computeType(Module*) { notYet("DataSignalValue::computeType"); }
DataExpr* DataSignalValue::instanciate(Interface*, std::map<std::string, Signal*>*, Module*) {
  notYet("DataSignalValue::instanciate");
}
DataExpr* DataSignalValue::applyRenaming(std::map<std::string, Signal*>*, Interface*) {
  notYet("DataSignalValue::applyRenaming");
}
DataExpr* DataSignalValue::duplicate() { return new DataSignalValue(signal); }
DataExpr* DataSignalValue::changeModule(Module*, Module*) { notYet("DataSignalValue::changeModule"); }
std::set<Signal*>* DataSignalValue::computeDependencySet() {
  return new std::set<Signal*>{signal};
}
void DataSignalValue::computeValueSignalDependencies(std::set<Signal*>& s) { s.insert(signal); }
void DataSignalValue::print_debug(std::ostream&) { notYet("DataSignalValue::print_debug"); }
void DataSignalValue::QNC_put(std::ostream&, long*, Module*, std::list<DataExpr*>&, int&, int) {
  notYet("DataSignalValue::QNC_put");
}
void DataSignalValue::DEBUG_put(std::ostream&, Module*, std::list<DataExpr*>&, int&, int) {
  notYet("DataSignalValue::DEBUG_put");
}
void DataSignalValue::C_put(std::ostream&, Module*) { notYet("DataSignalValue::C_put"); }
void DataSignalValue::CSharp_put(std::ostream&, Module*) { notYet("DataSignalValue::CSharp_put"); }
std::string DataSignalValue::QUARNS_put(Module*, DataConstantValueMap*, DataSignalValueMap*, int*,
                                        socket_type*) {
  notYet("DataSignalValue::QUARNS_put");
}
void DataSignalValue::LUSTRE_put(std::ostream&, Module*) { notYet("DataSignalValue::LUSTRE_put"); }
void DataSignalValue::ESTEREL_put(std::ostream&, Module*) { notYet("DataSignalValue::ESTEREL_put"); }
void DataSignalValue::VHDL_put(std::ostream&, Module*) { notYet("DataSignalValue::VHDL_put"); }
void DataSignalValue::DEBUG_put(std::ostream&, Module*) { notYet("DataSignalValue::DEBUG_put"); }

DataBinding::DataBinding(Signal* signal, DataExpr* value)
    : clock(nullptr), signal(signal), value(value) {}
DataBinding::DataBinding(Signal* signal, DataExpr* value, Signal* clock)
    : clock(clock), signal(signal), value(value) {}
DataBinding::DataBinding(DataBinding&, Module*, Module*)
    : clock(nullptr), signal(nullptr), value(nullptr) {
  notYet("DataBinding::DataBinding");
}
DataBinding* DataBinding::instanciate(Interface*, std::map<std::string, Signal*>*, Module*) {
  notYet("DataBinding::instanciate");
}
void DataBinding::print_debug(std::ostream&) { notYet("DataBinding::print_debug"); }

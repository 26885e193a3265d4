#include "data/data_links.h"

#include "driver/compilation.h"
#include "model/module.h"

std::string dataModuleName(Module* module) { return module ? module->getName() : std::string(); }

// TODO(equations): Bddexpressionwood::Name_var_by_index once the wood is on main.
std::string dataVarName(Module*, long) {
  Compilation::IllegalOperationException("Bddexpressionwood::Name_var_by_index: not yet available");
}

// TODO(driver): Compilation::Socket_call once it is on main.
std::string dataSocketCall(const std::string&, socket_type*) {
  Compilation::IllegalOperationException("Compilation::Socket_call: not yet available");
}

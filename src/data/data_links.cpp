#include "data/data_links.h"

#include "util/compilation.h"
#include "equations/Bddexpression.h"
#include "model/module.h"

std::string dataModuleName(Module* module) { return module ? module->getName() : std::string(); }

std::string dataVarName(Module* module, long index, const std::string& signal) {
  Bddexpressionwood* wood = module->getBddWood();
  if (!wood || index < 0 || index >= wood->Nb_bdd_vars())
    Compilation::IllegalOperationException("DataSignalValue: no variable for the value of signal " +
                                           signal);
  return wood->Name_var_by_index(index);
}

std::string dataSocketCall(const std::string& request, socket_type* sock) {
  return Compilation::Socket_call(request, sock);
}

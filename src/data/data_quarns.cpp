// Evaluation of value expressions through the simulator's data server: one request per
// method call, operator and server-side constant.
#include <cstdlib>
#include <iostream>

#include "data/data.h"
#include "data/data_links.h"
#include "util/compilation.h"

std::string DataValue::QUARNS_put(Module*, DataConstantValueMap*, DataSignalValueMap*, int*,
                                  socket_type*) {
  return text;
}

std::string DataConstant::QUARNS_put(Module* module, DataConstantValueMap* constants,
                                     DataSignalValueMap* values, int* wires,
                                     socket_type* sock) {
  ConstantDecl* decl = getConstDecl();
  std::string name = decl ? decl->getName() : std::to_string(constantIndex);
  auto it = constants ? constants->find(name) : DataConstantValueMap::iterator();
  if (!constants || it == constants->end()) {
    std::cerr << "***error: DataConstant::QUARNS_put: undefined constant:" << name << std::endl;
    std::exit(1);
  }
  if (!it->second.second.empty()) return it->second.second;
  std::string value =
      it->second.first ? it->second.first->QUARNS_put(module, constants, values, wires, sock)
                       : dataSocketCall("CONST," + name, sock);
  (*constants)[name].second = value;
  return value;
}

std::string DataMethodCall::QUARNS_put(Module* module, DataConstantValueMap* constants,
                                       DataSignalValueMap* values, int* wires,
                                       socket_type* sock) {
  MethodDecl* decl = getMethodDecl();
  std::string request = "MC," + (decl ? decl->getName() : std::to_string(method)) + ",";
  if (args) {
    bool first = true;
    for (DataExpr* a : *args) {
      if (!first) request += ",";
      first = false;
      request += a->QUARNS_put(module, constants, values, wires, sock);
    }
  }
  return dataSocketCall(request, sock);
}

std::string DataBinaryOp::QUARNS_put(Module* module, DataConstantValueMap* constants,
                                     DataSignalValueMap* values, int* wires, socket_type* sock) {
  std::string leftType = left->getType(module);
  std::string rightType = right->getType(module);
  std::string leftValue = left->QUARNS_put(module, constants, values, wires, sock);
  std::string rightValue = right->QUARNS_put(module, constants, values, wires, sock);
  return dataSocketCall("BOP," + leftValue + "," + leftType + "," + QUARNS_opname(op) + "," +
                            rightValue + "," + rightType,
                        sock);
}

std::string DataUnaryOp::QUARNS_put(Module* module, DataConstantValueMap* constants,
                                    DataSignalValueMap* values, int* wires, socket_type* sock) {
  std::string operandType = operand->getType(module);
  std::string value = operand->QUARNS_put(module, constants, values, wires, sock);
  return dataSocketCall("UOP," + QUARNS_opname(op) + "," + value + "," + operandType, sock);
}

// What the data layer reads of modules, woods and the simulator link, kept in one unit
// so that the expression printers link without the rest of the compiler.
#pragma once

#include <string>

class Module;
class Bddexpressionwood;
struct socket_type;

std::string dataModuleName(Module* module);
// Name of the BDD variable of that index in the module's wood; a variable the wood
// doesn't have (-1: a wire that is gone) is an internal failure naming the signal.
std::string dataVarName(Module* module, long index, const std::string& signal);
// The file number of a variable in a .qnc writing; -1 for no variable.
inline long dataFileNumber(const long* corres, long index) {
  return index < 0 ? -1 : corres[index];
}
// One request to the simulator's data server; the reply text.
std::string dataSocketCall(const std::string& request, socket_type* sock);

// What the data layer reads of modules, woods and the simulator link, kept in one unit
// so that the expression printers link without the rest of the compiler.
#pragma once

#include <string>

class Module;
class Bddexpressionwood;
struct socket_type;

std::string dataModuleName(Module* module);
// Name of the BDD variable of that index in the module's wood.
std::string dataVarName(Module* module, long index);
// One request to the simulator's data server; the reply text.
std::string dataSocketCall(const std::string& request, socket_type* sock);

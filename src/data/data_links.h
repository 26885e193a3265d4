// What the data layer reads of modules and signals, kept in one unit so that the
// expression printers don't depend on the module's declaration.
#pragma once

#include <string>

class Module;
class Signal;
struct socket_type;

std::string dataModuleName(Module* module);
std::string dataSignalName(Signal* signal);  // internal name

// One request to the simulator's data server; the reply text.
std::string dataSocketCall(const std::string& request, socket_type* sock);

// Signals made by the statement compilers. Their names are plain concatenations, and
// some coincide ("RTL" + "Pn_01" + "0" is "RTL" + "Pn_010"); a new signal of a name
// that the module already knows would share its variables. A taken name gets the first
// free suffix "_u1", "_u2", ... instead; a free name stays as it is.
#pragma once

#include <string>

class Bddexpressionwood;
class Module;
class Signal;

std::string freeSignalName(Module* module, const std::string& name);
// A wire: Signal(name, module, wood) with the wire flag.
Signal* newWireSignal(const std::string& name, Module* module, Bddexpressionwood* wood);
// A register half: Signal(name, module, wood, true).
Signal* newRegisterSignal(const std::string& name, Module* module, Bddexpressionwood* wood);

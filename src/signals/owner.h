// What signals and equation tables read of the module and the equation wood that own
// them. Both owners sit above this layer: the module defines the first group
// (model/module.cpp), the wood the second (equations/Bddexpression.cpp).
#pragma once

#include <list>
#include <string>
#include <vector>

class Bddexpressionwood;
class Module;
class Signal;
class SignalManager;
class bddpp_manager;
class memorizedSignal;

namespace owner {

SignalManager* signalManager(Module* m);
Bddexpressionwood* bddWood(Module* m);
std::list<Signal*>* inputSignals(Module* m);
std::list<Signal*>* outputSignals(Module* m);
std::list<Signal*>* dataSignals(Module* m);
std::list<Signal*>* localSignals(Module* m);
std::list<memorizedSignal*>* preSignals(Module* m);
Signal* signal(Module* m, const std::string& name);
Signal* signalFromInternalName(Module* m, const std::string& internal);
// The signals of the module's data bindings clocked by `clock`; false when the module
// has no data table.
bool clockedSignals(Module* m, Signal* clock, std::vector<Signal*>& out);

bddpp_manager* manager(Bddexpressionwood* w);
long newVarLast(Bddexpressionwood* w, const std::string& name);
long varCount(Bddexpressionwood* w);
void destroy(Bddexpressionwood* w);

}  // namespace owner

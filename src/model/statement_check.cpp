// Semantic checks of the statement tree: emissions that don't fit their signal,
// automata with bad final states, runs that don't fit the called module. Each failure
// is final.
#include <cstdlib>
#include <fstream>
#include <iostream>

#include "util/compilation.h"
#include "model/module.h"
#include "model/statement.h"
#include "signals/signal_manager.h"

namespace {

Signal* findByOriginalName(std::list<Signal*>* l, const std::string& name) {
  if (!l) return nullptr;
  for (Signal* s : *l)
    if (s->getOriginalName() == name) return s;
  return nullptr;
}

// Emit and SustainUntil: "Emission of" or "Sustain emission of" in every text.
void checkEmission(Module* m, const std::string& s, Signal* clock, const std::string& act) {
  if (!m) {
    std::cerr << (clock ? "internal error1 in Emit::complementary_check_syntax()!"
                        : "internal error in Emit::complementary_check_syntax()!")
              << std::endl;
    std::exit(1);
  }
  // Only what the module may emit: an input or a data signal counts as undefined.
  std::string head = "Error in module \"" + m->getName() + "\":\n " + act;
  Signal* found = findByOriginalName(m->getOutputSignalList(), s);
  if (found) {
    head += " output signal: \"";
  } else {
    found = findByOriginalName(m->getLocalSignalList(), s);
    if (!found) Compilation::fatal(head + " signal: \"" + s + "\"  undefined !");
    head += " local signal: \"";
  }
  std::string type = found->getValueType(m);
  if (clock) {
    if (type == "pure")
      Compilation::fatal(head + s + "\" with a value\n whereas this signal is declared pure!");
    std::string clockType = clock->getValueType(m);
    if (clockType != type)
      Compilation::fatal(head + s + "\" with a value typed by : \"" + clockType +
                         "\"\n whereas this signal is declared with the type : \"" + type +
                         "\" !");
  } else if (type != "pure") {
    Compilation::fatal(head + s + "\" without value !");
  }
}

const std::string kAborted = "\n\n   --> compilation process aborted ...";

}  // namespace

void Sequence::complementary_check_syntax() {
  left->complementary_check_syntax();
  right->complementary_check_syntax();
}

void Parallel::complementary_check_syntax() {
  left->complementary_check_syntax();
  right->complementary_check_syntax();
}

void Sn::complementary_check_syntax() {
  for (int i = 0; i < count; i++) array[i]->complementary_check_syntax();
}

void Pn::complementary_check_syntax() {
  for (int i = 0; i < count; i++) array[i]->complementary_check_syntax();
}

void Present::complementary_check_syntax() {
  thenPart->complementary_check_syntax();
  if (elsePart) elsePart->complementary_check_syntax();
}

void Absent::complementary_check_syntax() {
  thenPart->complementary_check_syntax();
  if (elsePart) elsePart->complementary_check_syntax();
}

void Abort::complementary_check_syntax() { body->complementary_check_syntax(); }
void StrongAbort::complementary_check_syntax() { body->complementary_check_syntax(); }
void Loop::complementary_check_syntax() { body->complementary_check_syntax(); }
void NoEmit::complementary_check_syntax() {}

void Emit::complementary_check_syntax() {
  checkEmission(parentModule, signalName, clock, "Emission of");
}

void SustainUntil::complementary_check_syntax() {
  checkEmission(parentModule, signalName, clock, "Sustain emission of");
}

void Automaton::complementary_check_syntax() {
  if (stateTable)
    for (auto& [n, state] : *stateTable) {
      if (!state->isFinal()) continue;
      if (!state->getMooreActions().empty())
        Compilation::fatal("ERROR: The FINAL state: \"" + state->getName() +
                           "\" must not have one (or several) Moore action!" + kAborted);
      if (state->getRunModule())
        Compilation::fatal("ERROR: The FINAL state: \"" + state->getName() +
                           "\" must not run a module!" + kAborted);
    }
  if (!transitionList) return;
  for (Transition* t : *transitionList) {
    if (t->isInitial()) continue;
    State* source = t->getSource();
    if (source && source->isFinal())
      Compilation::fatal("ERROR: A transition beginning with the FINAL state: \"" +
                         source->getName() + "\" had been detected!" + kAborted);
    if (t->getType() == 3 && t->getTrigger() && !t->getTrigger()->isTrueExpr())
      Compilation::fatal("ERROR: TRIGGER in the Normal Terminaison transition from \"" +
                         (source ? source->getName() : std::string()) +
                         "\" is not supported!" + kAborted);
  }
}

void Run::complementary_check_syntax() {
  Module* parent = parentModule;
  if (!parent) {
    std::cerr << "internal error in Run::complementary_check_syntax()!" << std::endl;
    std::exit(1);
  }
  const std::string& r = moduleName;
  const std::string& parentName = parent->getName();
  std::string h = "ERROR in module " + parentName + " about run " + r + ":\n";

  Module* called = Compilation::ModTable ? Compilation::ModTable->get(r) : nullptr;
  if (!called && Compilation::QncModTable) called = Compilation::QncModTable->get(r);
  if (!called) {
    auto* decls = parent->getRunDeclTable();
    if (!decls || !decls->count(r))
      Compilation::fatal(h + ":\nrun of an undefined module :\"" + r + "\"\nAborting ...");
    // Read for this check only; it enters no table.
    called = Compilation::createModuleFromQncCode(r, new std::list<std::string>,
                                                  new std::list<std::string>);
    // Without a compiled file, the declaration may place the module in a source file.
    if (!called) {
      std::string* location = parent->getModuleLocation(r);
      std::string file = location ? *location + ".qn" : "";
      if (location && std::ifstream(file).is_open()) {
        Compilation::qn_parse(file);
        called = Compilation::ModTable->get(r);
      }
    }
    if (!called)
      Compilation::fatal(h + "Impossible to load module :\"" + r +
                         "\" from qnc file ...\nHave you really indicate the list of qnc files "
                         "to include by graphical interface or quarnc parameters ?\nAborting ...");
  }
  const std::string& n = called->getName();

  if (!renamingTable) {
    std::cerr << "no renaming table ..." << std::endl;
  } else {
    for (auto& [x, s] : *renamingTable) {
      const std::string& sName = s->getOriginalName();
      Signal* cx = called->getInputSignal(x);
      if (cx) {
        if (s->isOutput())
          Compilation::fatal(h + sName + " is an output whereas " + x + " from module " + n +
                             " is an input !\n Aborting ...");
      } else {
        cx = called->getOutputSignal(x);
        if (!cx)
          Compilation::fatal(h + x + " is undefined in I/O list of module " + n +
                             "\" !\n Aborting ...");
        if (s->isInput() || s->isPre())
          Compilation::fatal(h + sName + " is an input or pre whereas " + x + " from module " +
                             n + " is an output !\n Aborting ...");
      }
      bool sValued = s->isValued(parent), xValued = cx->isValued(called);
      if (!sValued && xValued)
        Compilation::fatal(h + sName + " is pure whereas " + x + " from module " + n +
                           " is typed with \"" + cx->getValueType(called) + "\" !\n Aborting ...");
      if (sValued && !xValued)
        Compilation::fatal(h + sName + " is typed with \"" + s->getValueType(parent) +
                           "\" whereas " + x + " from module " + n + " is pure !\n Aborting ...");
      if (sValued && xValued && s->getValueType(parent) != cx->getValueType(called))
        Compilation::fatal(h + sName + " is typed with \"" + s->getValueType(parent) +
                           "\" whereas " + x + " from module " + n + " is typed with \"" +
                           cx->getValueType(called) + "\" !\n Aborting ...");
    }
  }

  // Connections by equal names: no test of values or types.
  auto named = [this](const std::string& x) { return renamingTable && renamingTable->count(x); };
  if (called->getInputSignalList())
    for (Signal* in : *called->getInputSignalList()) {
      const std::string& x = in->getOriginalName();
      if (named(x)) continue;
      bool found = findByOriginalName(parent->getInputSignalList(), x) ||
                   findByOriginalName(parent->getLocalSignalList(), x);
      if (!found && parent->getPreSignalList())
        for (memorizedSignal* p : *parent->getPreSignalList())
          if (p->getPre() && p->getPre()->getOriginalName() == x) found = true;
      if (!found)
        Compilation::fatal(h + "Input \"" + x + "\" of called module \"" + n +
                           "\" is not defined as Input, Local or Pre or renamed in module \"" +
                           parentName + "\"\n Aborting ...");
    }
  if (called->getOutputSignalList())
    for (Signal* out : *called->getOutputSignalList()) {
      const std::string& x = out->getOriginalName();
      if (named(x)) continue;
      if (!findByOriginalName(parent->getOutputSignalList(), x) &&
          !findByOriginalName(parent->getLocalSignalList(), x))
        Compilation::fatal(h + "Output \"" + x + "\" of called module \"" + n +
                           "\" is not defined as Output, Local or renamed in module \"" +
                           parentName + "\"\n Aborting ...");
    }
}

void Run::computeAwaitedNameList(std::list<std::string>* inputs,
                                 std::list<std::string>* outputs, Module* module) {
  for (Signal* s : *module->getInputSignalList()) inputs->push_back(s->getOriginalName());
  for (Signal* s : *module->getOutputSignalList()) outputs->push_back(s->getOriginalName());
  for (Signal* s : *module->getLocalSignalList()) {
    inputs->push_back(s->getOriginalName());
    outputs->push_back(s->getOriginalName());
  }
  if (!renamingTable) return;
  for (auto& [key, s] : *renamingTable) {
    if (s->isInput()) {
      inputs->push_back(key);
    } else if (s->isOutput()) {
      outputs->push_back(key);
    } else {
      inputs->push_back(key);
      outputs->push_back(key);
    }
  }
}

// The stages that follow compilation, one entry each, in the order the pipeline runs them:
// the generators that work on a finalized copy of the main module, then the save, the debug
// trace and the simulations, which work on the main module itself. Adding a target is one
// entry here and one writer file.
#pragma once

#include <string>
#include <vector>

class Module;

struct Target {
  const char* option;       // command-line word, e.g. "-blif"
  bool* flag;               // the Compilation flag it sets
  const char* title;        // what the stage makes, for messages: "the BLIF netlist"
  bool onFinalizedCopy;     // runs on the finalized copy rather than on the main module
  // The progress text, line ends included, written to the error stream before the work;
  // empty for none.
  std::string (*progress)(const std::string& moduleName);
  // The files the stage writes, for a module name (paths as the writer makes them).
  std::vector<std::string> (*files)(const std::string& moduleName);
  void (*write)(Module& m);  // null: not built in this version
};

// Every stage, in pipeline order.
const std::vector<Target>& targetTable();

// The stage whose option word is w, or null.
const Target* findTarget(const std::string& w);

// Text of the refusal of an option whose stage is not built: the run stops before parsing.
std::string notBuiltText(const Target& t);

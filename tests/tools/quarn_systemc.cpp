// Writes the SystemC step function of a module, which quarnc has no option for:
//   quarn_systemc QUARNC_ARGUMENTS...  ->  MAIN_sc.cpp and MAIN_sc.h in the current directory
// The arguments are read as quarnc reads them (source, -main, -keep_wires,
// -check_overknowledge, ...); the main module is compiled and finalized as for a target.
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

#include "util/compilation.h"
#include "driver/driver.h"
#include "model/module.h"

int main(int argc, char** argv) {
  setenv("QUARN_BATCH", "1", 1);
  const CommandLine cl = scanCommandLine(std::vector<std::string>(argv + 1, argv + argc));
  if (!cl.failure.empty() || cl.sourceFile.empty() || cl.mainName.empty()) {
    std::cerr << "usage: quarn_systemc [quarnc options] -main MAIN FILE.qn\n";
    return 1;
  }
  applyCommandLine(cl);
  Compilation::qn_parse(cl.sourceFile);
  Module* module = Compilation::ModTable ? Compilation::ModTable->get(cl.mainName) : nullptr;
  if (!module) {
    std::cerr << "Main module: " << cl.mainName << " undefined\n";
    return 1;
  }
  for (auto& [name, m] : *Compilation::ModTable->getTable()) m->complementary_check_syntax();
  module->complementary_check_syntax();
  module->compile();
  if (Compilation::CheckOverKnowledgeFlag) module->check_over_knowledge();
  Module* copy = new Module(*module);
  copy->finalize(0);
  std::ofstream code(cl.mainName + "_sc.cpp");
  std::ofstream header(cl.mainName + "_sc.h");
  copy->SYSTEMC_put(code, header);
  return code && header ? 0 : 1;
}

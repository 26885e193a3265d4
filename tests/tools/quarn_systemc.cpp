// Writes the SystemC step function of a module, which quarnc has no option for:
//   quarn_systemc FILE.qn MAIN   ->  MAIN_sc.cpp and MAIN_sc.h in the current directory
// The module is compiled and finalized as quarnc does for its targets.
#include <cstdlib>
#include <fstream>
#include <iostream>

#include "driver/compilation.h"
#include "model/module.h"

int main(int argc, char** argv) {
  if (argc != 3) {
    std::cerr << "usage: quarn_systemc FILE.qn MAIN\n";
    return 1;
  }
  setenv("QUARN_BATCH", "1", 1);
  const std::string main_name = argv[2];
  Compilation::qn_parse(argv[1]);
  Module* module = Compilation::ModTable ? Compilation::ModTable->get(main_name) : nullptr;
  if (!module) {
    std::cerr << "Main module: " << main_name << " undefined\n";
    return 1;
  }
  for (auto& [name, m] : *Compilation::ModTable->getTable()) m->complementary_check_syntax();
  module->complementary_check_syntax();
  module->compile();
  Module* copy = new Module(*module);
  copy->finalize(0);
  std::ofstream code(main_name + "_sc.cpp");
  std::ofstream header(main_name + "_sc.h");
  copy->SYSTEMC_put(code, header);
  return code && header ? 0 : 1;
}

// Reads a compiled module and writes it again: qnc_resave IN.qnc OUT.qnc. The random
// program checks compare OUT with IN byte for byte.
#include <cstdlib>
#include <fstream>
#include <iostream>

#include "util/compilation.h"
#include "model/module.h"

int main(int argc, char** argv) {
  if (argc != 3) {
    std::cerr << "usage: qnc_resave IN.qnc OUT.qnc" << std::endl;
    return 2;
  }
  setenv("QUARN_BATCH", "1", 1);
  Module* m = Compilation::qnc_parse(argv[1], Compilation::EmptyString, nullptr, nullptr);
  if (!m) {
    std::cerr << "qnc_resave: nothing read from " << argv[1] << std::endl;
    return 1;
  }
  std::ofstream out(argv[2]);
  m->QNC_put(out, 2, 1, 0);
  return out ? 0 : 1;
}

// Modules parsed from text and compiled, for the compile tests.
#pragma once

#include <cstdlib>
#include <fstream>
#include <string>
#include <unistd.h>

#include "driver/compilation.h"
#include "model/module.h"

namespace compile_test {

// A fresh run state, the text through the source parser, the named module checked
// and compiled.
inline Module* compileText(const std::string& text, const std::string& name = "m") {
  setenv("QUARN_BATCH", "1", 1);
  Compilation::ModTable = new ModuleTable();
  Compilation::GDataTypeTable = nullptr;
  Compilation::GDataMethodTable = nullptr;
  Compilation::GDataConstantTable = nullptr;
  std::string file = "/tmp/compile_test_" + std::to_string(getpid()) + ".qn";
  {
    std::ofstream out(file);
    out << text << "\n";
  }
  Compilation::qn_parse(file);
  std::remove(file.c_str());
  Module* m = Compilation::ModTable->get(name);
  if (!m) return nullptr;
  m->complementary_check_syntax();
  m->compile();
  return m;
}

}  // namespace compile_test

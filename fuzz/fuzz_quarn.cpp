// Quarn source text through the parser, the checks of every module and the compilation of
// the first module into equations.
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <string>

#include "util/compilation.h"
#include "fuzz_exit.h"
#include "model/module.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const std::string file = "/tmp/quarn_fuzz_" + std::to_string(getpid()) + ".qn";
  setenv("QUARN_BATCH", "1", 1);
  {
    std::ofstream out(file, std::ios::binary);
    out.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
  }
  fuzz::reset_run();
  fuzz::guarded([&] {
    Compilation::qn_parse(file);
    auto* modules = Compilation::ModTable->getTable();
    if (modules->empty()) return;
    for (auto& [name, module] : *modules) module->complementary_check_syntax();
    modules->begin()->second->compile();
  });
  unlink(file.c_str());
  return 0;
}

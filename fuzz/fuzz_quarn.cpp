// Quarn source text through the parser, the checks of every module and the compilation of
// the first module into equations. Sources whose counts multiply past 64 are left out.
#include <unistd.h>

#include <cctype>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <string>

#include "util/compilation.h"
#include "fuzz_exit.h"
#include "model/module.h"

namespace {
// The product of the numbers written in the text. `repeat N` and `wait N` copy their body
// N times, so a short text can stand for a program of any size: its compile time is the
// benchmarks' business, not the fuzzer's.
double Expansion(const uint8_t* data, size_t size) {
  double product = 1;
  for (size_t i = 0; i < size && product <= 1e9; i++) {
    if (!std::isdigit(data[i]) || (i > 0 && (std::isalnum(data[i - 1]) || data[i - 1] == '_'))) continue;
    double n = 0;
    for (; i < size && std::isdigit(data[i]) && n < 1e9; i++) n = 10 * n + (data[i] - '0');
    if (n > 1) product *= n;
  }
  return product;
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (Expansion(data, size) > 64) return -1;
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

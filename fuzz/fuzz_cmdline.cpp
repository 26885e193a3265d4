// The command-line scanner: one argument per line of the input.
#include <cstdint>
#include <string>
#include <vector>

#include "driver/driver.h"
#include "fuzz_exit.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::vector<std::string> args;
  std::string arg;
  for (size_t i = 0; i < size; i++) {
    if (data[i] == '\n') {
      args.push_back(arg);
      arg.clear();
    } else {
      arg += static_cast<char>(data[i]);
    }
  }
  if (!arg.empty()) args.push_back(arg);
  fuzz::guarded([&] {
    CommandLine cl = scanCommandLine(args);
    (void)cl;
  });
  return 0;
}

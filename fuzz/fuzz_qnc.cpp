// A compiled module file through the reader.
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <string>

#include "util/compilation.h"
#include "fuzz_exit.h"
#include "model/module.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const std::string file = "/tmp/quarn_fuzz_" + std::to_string(getpid()) + ".qnc";
  setenv("QUARN_BATCH", "1", 1);
  {
    std::ofstream out(file, std::ios::binary);
    out.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
  }
  fuzz::reset_run();
  fuzz::guarded([&] { Compilation::qnc_parse(file, Compilation::EmptyString, nullptr, nullptr); });
  unlink(file.c_str());
  unlink((file + ".log").c_str());
  return 0;
}

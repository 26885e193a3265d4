#include "fuzz_exit.h"

#include <cstdio>
#include <cstdlib>

#include "util/compilation.h"
#include "model/module.h"

namespace fuzz {
std::jmp_buf* guard = nullptr;
int exit_status = 0;

void reset_run() {
  Compilation::ModTable = new ModuleTable();
  Compilation::QncModTable = nullptr;
  Compilation::GDataTypeTable = nullptr;
  Compilation::GDataMethodTable = nullptr;
  Compilation::GDataConstantTable = nullptr;
}
}  // namespace fuzz

extern "C" void __real_exit(int status);

extern "C" void __wrap_exit(int status) {
  if (fuzz::guard == nullptr) __real_exit(status);
  fuzz::exit_status = status;
  std::fflush(nullptr);
  std::longjmp(*fuzz::guard, 1);
}

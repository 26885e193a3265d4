#include "fuzz_exit.h"

#include <dirent.h>
#include <linux/close_range.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <set>

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

namespace {

// The descriptors open in this process.
std::set<int> open_fds() {
  std::set<int> fds;
  DIR* dir = opendir("/proc/self/fd");
  if (dir == nullptr) return fds;
  int own = dirfd(dir);
  while (dirent* e = readdir(dir))
    if (e->d_name[0] != '.' && std::atoi(e->d_name) != own) fds.insert(std::atoi(e->d_name));
  closedir(dir);
  return fds;
}

}  // namespace

void close_input_fds() {
  static const std::set<int> own = open_fds();
  const int top = own.empty() ? -1 : *own.rbegin();
  for (int fd = 0; fd < top; fd++)
    if (own.count(fd) == 0) close(fd);
  close_range(static_cast<unsigned>(top + 1), ~0U, 0);
}
}  // namespace fuzz

extern "C" void __real_exit(int status);

extern "C" void __wrap_exit(int status) {
  if (fuzz::guard == nullptr) __real_exit(status);
  fuzz::exit_status = status;
  std::fflush(nullptr);
  std::longjmp(*fuzz::guard, 1);
}

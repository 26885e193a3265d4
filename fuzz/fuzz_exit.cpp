#include "fuzz_exit.h"

#include <dirent.h>
#include <unistd.h>

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

void close_fds_since(const std::set<int>& before) {
  for (int fd : open_fds())
    if (before.count(fd) == 0) close(fd);
}
}  // namespace fuzz

extern "C" void __real_exit(int status);

extern "C" void __wrap_exit(int status) {
  if (fuzz::guard == nullptr) __real_exit(status);
  fuzz::exit_status = status;
  std::fflush(nullptr);
  std::longjmp(*fuzz::guard, 1);
}

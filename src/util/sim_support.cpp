#include "util/sim_support.h"

#include <csignal>
#include <cstdlib>
#include <iostream>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <thread>

void quarn_sim_path() {
  static bool done = false;
  if (done) return;
  done = true;
  char self[4096];
  ssize_t n = readlink("/proc/self/exe", self, sizeof(self) - 1);
  if (n <= 0) return;
  std::string dir(self, static_cast<size_t>(n));
  dir = dir.substr(0, dir.rfind('/'));
  const char* path = std::getenv("PATH");
  std::string value = dir + (path && *path ? ":" + std::string(path) : std::string());
  setenv("PATH", value.c_str(), 1);
}

int quarn_sim_run(const std::string& command) {
  quarn_sim_path();
  std::cout.flush();
  std::cerr.flush();
  pid_t child = fork();
  if (child < 0) {
    std::cerr << "quarnc: cannot run: " << command << std::endl;
    return -1;
  }
  if (child == 0) {
    setpgid(0, 0);
    execl("/bin/sh", "sh", "-c", command.c_str(), static_cast<char*>(nullptr));
    _exit(127);
  }
  const char* env = std::getenv("QUARN_CHILD_TIMEOUT");
  long limit = env ? std::atol(env) : 0;
  if (limit <= 0) limit = 600;
  auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(limit);
  for (;;) {
    int status = 0;
    pid_t r = waitpid(child, &status, WNOHANG);
    if (r == child) return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    if (r < 0) return -1;
    if (std::chrono::steady_clock::now() >= deadline) {
      kill(-child, SIGTERM);
      kill(child, SIGTERM);
      waitpid(child, &status, 0);
      std::cerr << "quarnc: " << command << ": no end within " << limit << " seconds, stopped" << std::endl;
      return -1;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
}

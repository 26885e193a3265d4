// The compiler ends on bad input with exit(1), which is its specified answer. A harness
// links with -Wl,--wrap=exit: such an exit returns to the harness's guard instead, so that
// one process reads many inputs. Objects are never freed during a run, so nothing that
// the abandoned frames held is used again.
#pragma once

#include <csetjmp>
#include <set>

namespace fuzz {

// The jump target of the current input; null outside a guarded call.
extern std::jmp_buf* guard;
// The status of the last exit taken over by the guard.
extern int exit_status;

// The descriptors open in this process.
std::set<int> open_fds();
// Closes every descriptor open now that is not in `before`: the streams of abandoned
// frames never close their files.
void close_fds_since(const std::set<int>& before);

// Calls f(); true when it returned, false when the compiler called exit. Files that f
// left open are closed either way.
template <class F>
bool guarded(F&& f) {
  static std::set<int> before;
  before = open_fds();
  std::jmp_buf here;
  guard = &here;
  if (setjmp(here) != 0) {
    guard = nullptr;
    close_fds_since(before);
    return false;
  }
  f();
  guard = nullptr;
  close_fds_since(before);
  return true;
}

// Empties the run's module and data tables before each input.
void reset_run();

}  // namespace fuzz

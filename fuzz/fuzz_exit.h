// The compiler ends on bad input with exit(1), which is its specified answer. A harness
// links with -Wl,--wrap=exit: such an exit returns to the harness's guard instead, so that
// one process reads many inputs. Objects are never freed during a run, so nothing that
// the abandoned frames held is used again.
#pragma once

#include <csetjmp>

namespace fuzz {

// The jump target of the current input; null outside a guarded call.
extern std::jmp_buf* guard;
// The status of the last exit taken over by the guard.
extern int exit_status;

// Closes every descriptor that was not open at the first call: the streams of abandoned
// frames never close their files, and each input starts with the process's own files only.
void close_input_fds();

// Calls f(); true when it returned, false when the compiler called exit. Files that f
// left open are closed either way.
template <class F>
bool guarded(F&& f) {
  close_input_fds();
  std::jmp_buf here;
  guard = &here;
  if (setjmp(here) != 0) {
    guard = nullptr;
    close_input_fds();
    return false;
  }
  f();
  guard = nullptr;
  close_input_fds();
  return true;
}

// Empties the run's module and data tables before each input.
void reset_run();

}  // namespace fuzz

// Stopwatch over the process clock.
#pragma once

#include <ctime>

class g_chrono {
 public:
  g_chrono() : start(0), sum(0), current(0) {}
  void Go() { start = clock(); }
  // Milliseconds since Go() (clock ticks / 1000 on a system with a million ticks a second).
  long Stop() {
    current = static_cast<long>((clock() - start) / 1000.0);
    return current;
  }
  long StopAndAdd() {
    Stop();
    sum += current;
    return current;
  }
  long Get() const { return current; }
  long CumulGet() const { return sum; }
  double resolution() const { return 1000.0 / CLOCKS_PER_SEC; }

 private:
  clock_t start;
  long sum;
  long current;
};

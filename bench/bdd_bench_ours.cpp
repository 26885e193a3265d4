#include <chrono>

#include "bdd_backend_ours.h"
#include "bdd_bench.h"

namespace bddbench {

Outcome run_ours(const Workload& w) {
  OursBackend b;
  b.start(w.nvars());
  auto t0 = std::chrono::steady_clock::now();
  double value = run(b, w);
  auto t1 = std::chrono::steady_clock::now();
  b.finish();
  return {value, std::chrono::duration<double, std::milli>(t1 - t0).count()};
}

}  // namespace bddbench

// Runners of the workloads, one per BDD package, each in its own unit.
#pragma once

#include "bdd_workloads.h"

namespace bddbench {

struct Outcome {
  double value;  // the workload's answer (model count, or 1 for equivalent adders)
  double ms;     // time of the workload, manager set-up excluded
};

Outcome run_ours(const Workload& w);
Outcome run_buddy(const Workload& w);

}  // namespace bddbench

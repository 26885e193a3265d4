// Growth of the compiler from source text to equations on generated programs.
//
//   compile_bench [--finalize] [--max-ms T] [--shape NAME] [--size N]
//
// For each shape, the size N doubles until one run takes more than T ms (default
// 1500). Each program is written to a temporary file, parsed, checked and compiled;
// with --finalize a copy of the compiled module is finalized as for the targets.
// One line per (shape, N): statements made by the parser, equations, the CPU time of
// each phase, the total and the total per statement. The last line of a shape is
// the growth exponent of the total time in the number of statements, from the two
// largest sizes: 1 is linear, 2 quadratic. --size runs that one size only (for a
// profiler).
//
// Shapes:
//   par     N branches in parallel, each "wait A >> emit O"
//   seq     a sequence of N "pause >> emit O"
//   chain   N locals, each emitted in parallel when the one before is present
//   abort   N nested strong aborts around "loop { pause >> emit O }"
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fstream>
#include <functional>
#include <string>
#include <unistd.h>
#include <vector>

#include "driver/compilation.h"
#include "equations/Bddexpression.h"
#include "model/module.h"

namespace {

// CPU time of the process: the machine may be shared with other work.
struct Clock {
  using time_point = double;
  static double now() {
    timespec t;
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return 1e3 * double(t.tv_sec) + 1e-6 * double(t.tv_nsec);
  }
};

double Ms_since(Clock::time_point t) { return Clock::now() - t; }

std::string Par(const std::string& name, int n) {
  std::string s = "module " + name + ":\nInput: A;\nOutput: O;\n";
  for (int k = 0; k < n; ++k) s += std::string(k ? "|| " : "") + "{ wait A >> emit O }\n";
  return s + "end\n";
}

std::string Seq(const std::string& name, int n) {
  std::string s = "module " + name + ":\nOutput: O;\n";
  for (int k = 0; k < n; ++k) s += std::string(k ? ">> " : "") + "pause >> emit O\n";
  return s + "end\n";
}

std::string Chain(const std::string& name, int n) {
  std::string s = "module " + name + ":\nOutput: O;\nLocal: ";
  for (int k = 0; k < n; ++k) s += (k ? ", S" : "S") + std::to_string(k);
  s += ";\nemit S0\n";
  for (int k = 1; k < n; ++k)
    s += "|| present S" + std::to_string(k - 1) + " { emit S" + std::to_string(k) + " }\n";
  return s + "|| present S" + std::to_string(n - 1) + " { emit O }\nend\n";
}

std::string Abort(const std::string& name, int n) {
  std::string s = "module " + name + ":\nInput: A;\nOutput: O;\n";
  for (int k = 0; k < n; ++k) s += "strong abort {\n";
  s += "loop { pause >> emit O }\n";
  for (int k = 0; k < n; ++k) s += "} when A\n";
  return s + "end\n";
}

struct Shape {
  const char* name;
  std::function<std::string(const std::string&, int)> text;
  int first;
};

// Statements made so far: every statement takes a number from one of these counters.
long Statements_made() {
  return long(Module::PauseNumber) + Module::NothingNumber + Module::HaltNumber +
         Module::ParallelNumber + Module::SequenceNumber + Module::PresentNumber +
         Module::AbsentNumber + Module::LoopNumber + Module::LocalNumber + Module::WaitNumber +
         Module::AbortNumber + Module::EmitNumber + Module::NoEmitNumber +
         Module::SustainUntilNumber + Module::RunNumber + Module::SustainNumber +
         Module::AutomatonNumber + Module::MealyMachineNumber + Module::TransitionNumber;
}

struct Timing {
  long statements = 0;
  long equations = 0;
  double parse = 0, compile = 0, finalize = 0;
  double total() const { return parse + compile + finalize; }
};

Timing Measure(const Shape& shape, int n, bool finalize) {
  static int serial = 0;
  std::string name = std::string(shape.name) + "_" + std::to_string(n) + "_" +
                     std::to_string(serial++);
  std::string file = "/tmp/compile_bench_" + std::to_string(getpid()) + ".qn";
  {
    std::ofstream out(file);
    out << shape.text(name, n);
  }
  Timing r;
  long before = Statements_made();
  Clock::time_point t = Clock::now();
  Compilation::qn_parse(file);
  r.parse = Ms_since(t);
  std::remove(file.c_str());
  r.statements = Statements_made() - before;

  Module* m = Compilation::ModTable->get(name);
  if (!m) {
    std::fprintf(stderr, "module %s not parsed\n", name.c_str());
    std::exit(1);
  }
  t = Clock::now();
  m->complementary_check_syntax();
  m->compile();
  r.compile = Ms_since(t);
  r.equations = m->getBddWood()->exp_number();
  if (finalize) {
    t = Clock::now();
    Module* copy = new Module(*m);
    copy->finalize(0);
    r.finalize = Ms_since(t);
  }
  return r;
}

}  // namespace

int main(int argc, char** argv) {
  bool finalize = false;
  double maxMs = 1500;
  const char* only = nullptr;
  int size = 0;
  for (int i = 1; i < argc; ++i) {
    if (!std::strcmp(argv[i], "--finalize")) {
      finalize = true;
    } else if (!std::strcmp(argv[i], "--max-ms") && i + 1 < argc) {
      maxMs = std::atof(argv[++i]);
    } else if (!std::strcmp(argv[i], "--shape") && i + 1 < argc) {
      only = argv[++i];
    } else if (!std::strcmp(argv[i], "--size") && i + 1 < argc) {
      size = std::atoi(argv[++i]);
    } else {
      std::fprintf(stderr, "usage: compile_bench [--finalize] [--max-ms T] [--shape NAME] [--size N]\n");
      return 1;
    }
  }
  setenv("QUARN_BATCH", "1", 1);
  if (!Compilation::ModTable) Compilation::ModTable = new ModuleTable();

  const Shape shapes[] = {{"par", Par, 16}, {"seq", Seq, 16}, {"chain", Chain, 16},
                          {"abort", Abort, 8}};
  std::printf("%-6s %7s %8s %9s %10s %10s %10s %10s %9s\n", "shape", "N", "stmts", "equations",
              "parse_ms", "compile_ms", "final_ms", "total_ms", "us/stmt");
  for (const Shape& shape : shapes) {
    if (only && std::strcmp(only, shape.name)) continue;
    std::vector<Timing> runs;
    for (int n = size > 0 ? size : shape.first; n <= (1 << 20); n *= 2) {
      Timing r = Measure(shape, n, finalize);
      runs.push_back(r);
      std::printf("%-6s %7d %8ld %9ld %10.1f %10.1f %10.1f %10.1f %9.2f\n", shape.name, n,
                  r.statements, r.equations, r.parse, r.compile, r.finalize, r.total(),
                  1000 * r.total() / double(r.statements));
      std::fflush(stdout);
      if (size > 0 || r.total() > maxMs) break;
    }
    if (runs.size() >= 2) {
      const Timing& a = runs[runs.size() - 2];
      const Timing& b = runs.back();
      double exponent =
          std::log(b.total() / a.total()) / std::log(double(b.statements) / double(a.statements));
      std::printf("%-6s growth exponent %.2f (statements %ld -> %ld)\n", shape.name, exponent,
                  a.statements, b.statements);
    }
  }
  return 0;
}

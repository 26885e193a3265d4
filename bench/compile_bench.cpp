// Growth of the compiler, from source text to C, on generated programs.
//
//   compile_bench [--max-ms T] [--shape NAME] [--size STATEMENTS] [--largest STATEMENTS]
//
// Each shape is made at about 625, 1250, 2500, 5000 and 10000 statements (up to
// --largest). Each size runs in a child process: the program is written to a
// temporary file, parsed, checked, compiled, a copy finalized and written as C
// (to a null stream), as `quarnc -c` does. One line per (shape, size): the
// statements the parser made, the equations, the CPU time of each phase, the
// total, the peak resident memory of the child, and the time per statement.
// A shape stops growing after a run over T ms (default 20000); a child is
// stopped after 4 T. The summary line of a shape gives the time and memory at
// the largest size reached, the growth exponent between the two largest sizes
// and the least-squares exponent over all sizes (1 is linear, 2 quadratic).
// --size runs one size of the chosen shapes in this process (for a profiler).
// Benchmarks report; nothing here is asserted.
//
// Shapes:
//   seq      one loop around a sequence of "emit Ok >> pause"
//   par      parallel cells "loop { wait A >> emit Ok }"
//   chain    a pipeline of locals, one parallel stage per local
//   abort    a sequence of weak and strong aborts around "loop { emit Ok >> pause }"
//   nest     strong aborts and loops with weak aborts nested in each other
//   present  a complete tree of present/else on inputs
//   run      many runs of one module in parallel
//   auto     an automaton with n states and 2n transitions
//   mealy    a Mealy machine with n registers and 2n equations
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "util/compilation.h"
#include "equations/Bddexpression.h"
#include "model/module.h"

namespace {

double Cpu_ms() {
  timespec t;
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
  return 1e3 * double(t.tv_sec) + 1e-6 * double(t.tv_nsec);
}

std::string Join(int n, const std::function<std::string(int)>& item, const std::string& sep) {
  std::string s;
  for (int k = 0; k < n; ++k) s += (k ? sep : std::string()) + item(k);
  return s;
}

std::string Head(const std::string& name, const std::string& inputs, const std::string& outputs) {
  std::string s = "module " + name + ":\n";
  if (!inputs.empty()) s += "Input: " + inputs + ";\n";
  return s + "Output: " + outputs + ";\n";
}

std::string Seq(const std::string& name, int n) {
  return Head(name, "", "Ok") + "loop {\n" +
         Join(n, [](int) { return std::string("emit Ok >> pause"); }, "\n>> ") + "\n}\nend\n";
}

std::string Par(const std::string& name, int n) {
  return Head(name, "A", "Ok") +
         Join(n, [](int) { return std::string("loop { wait A >> emit Ok }"); }, "\n|| ") + "\nend\n";
}

std::string Chain(const std::string& name, int n) {
  std::string s = Head(name, "", "Ok") + "Local: " +
                  Join(n, [](int k) { return "S" + std::to_string(k); }, ", ") + ";\nemit S0\n";
  for (int k = 1; k < n; ++k)
    s += "|| present S" + std::to_string(k - 1) + " { emit S" + std::to_string(k) + " }\n";
  return s + "|| present S" + std::to_string(n - 1) + " { emit Ok }\nend\n";
}

std::string Abort(const std::string& name, int n) {
  return Head(name, "A, B", "Ok") +
         Join(n,
              [](int k) {
                return std::string(k % 2 ? "weak" : "strong") + " abort { loop { emit Ok >> pause } } when " +
                       (k % 2 ? "A" : "B");
              },
              "\n>> ") +
         "\nend\n";
}

std::string Nest(const std::string& name, int n) {
  std::string s = Head(name, "A, B", "Ok");
  for (int k = 0; k < n; ++k) s += k % 2 == 0 ? "strong abort {\n" : "loop { weak abort {\n";
  s += "emit Ok >> pause\n";
  for (int k = n - 1; k >= 0; --k) s += k % 2 == 0 ? "} when A\n" : "} when B >> pause }\n";
  return s + "end\n";
}

std::string Present(const std::string& name, int n) {
  int depth = 1;
  while ((2 << depth) <= n) ++depth;
  std::function<std::string(int)> tree = [&](int level) -> std::string {
    if (level == depth) return "emit Ok";
    std::string sub = tree(level + 1);
    return "present I" + std::to_string(level) + " { " + sub + " } else { " + sub + " }";
  };
  return Head(name, Join(depth, [](int k) { return "I" + std::to_string(k); }, ", "), "Ok") + "loop {\n" +
         tree(0) + " >> pause\n}\nend\n";
}

std::string Runs(const std::string& name, int n) {
  return "module cell_" + name + ":\nInput: A;\nOutput: Ok;\nloop { wait A >> emit Ok }\nend\n\n" +
         Head(name, "A", "Ok") + Join(n, [&](int) { return "run cell_" + name; }, "\n|| ") + "\nend\n";
}

std::string Auto(const std::string& name, int n) {
  std::string s = Head(name, "A, B", "Ok") + "automaton\n";
  for (int k = 0; k < n; ++k) s += "state: s" + std::to_string(k) + " / Ok;\n";
  s += "transition:\ninitial-> s0;\n";
  for (int k = 0; k < n; ++k) {
    s += "s" + std::to_string(k) + " 1 [A] -> s" + std::to_string((k + 1) % n) + ";\n";
    s += "s" + std::to_string(k) + " 2 [B] -> s" + std::to_string((7L * k + 3) % n) + ";\n";
  }
  return s + "end\n";
}

std::string Mealy(const std::string& name, int n) {
  auto num = [](const char* p, int k) { return p + std::to_string(k); };
  std::string s = Head(name, Join(n, [&](int k) { return num("I", k); }, ", "),
                       Join(n, [&](int k) { return num("O", k); }, ", ")) +
                  "Mealy Machine\nRegister: " +
                  Join(n, [&](int k) { return num("r", k) + " : 0 : " + num("rn", k); }, ", ") + ";\n";
  for (int k = 0; k < n; ++k)
    s += num("rn", k) + " = " + num("r", k) + " xor " + num("I", k) + ";\n" + num("O", k) + " = " +
         num("r", k) + " and " + num("I", (k + 1) % n) + ";\n";
  return s + "end\n";
}

struct Shape {
  const char* name;
  std::function<std::string(const std::string&, int)> text;
  double statements_per_unit;  // about, to choose the sizes
};

// Statements made so far: every statement takes a number from one of these counters.
long Statements_made() {
  return long(Module::PauseNumber) + Module::NothingNumber + Module::HaltNumber + Module::ParallelNumber +
         Module::SequenceNumber + Module::PresentNumber + Module::AbsentNumber + Module::LoopNumber +
         Module::LocalNumber + Module::WaitNumber + Module::AbortNumber + Module::EmitNumber +
         Module::NoEmitNumber + Module::SustainUntilNumber + Module::RunNumber + Module::SustainNumber +
         Module::AutomatonNumber + Module::MealyMachineNumber + Module::TransitionNumber;
}

struct Timing {
  long statements = 0;
  long equations = 0;
  double parse = 0, compile = 0, finalize = 0, c = 0;
  long peak_kb = 0;
  bool ok = false;
  double total() const { return parse + compile + finalize + c; }
};

Timing Measure(const Shape& shape, int n) {
  std::string name = std::string(shape.name) + "_" + std::to_string(n);
  std::string file = "/tmp/compile_bench_" + std::to_string(getpid()) + ".qn";
  {
    std::ofstream out(file);
    out << shape.text(name, n);
  }
  Timing r;
  long before = Statements_made();
  double t = Cpu_ms();
  Compilation::qn_parse(file);
  r.parse = Cpu_ms() - t;
  std::remove(file.c_str());
  r.statements = Statements_made() - before;
  Module* m = Compilation::ModTable->get(name);
  if (m == nullptr) {
    std::fprintf(stderr, "module %s not parsed\n", name.c_str());
    std::exit(1);
  }
  t = Cpu_ms();
  for (auto& [other, module] : *Compilation::ModTable->getTable()) module->complementary_check_syntax();
  m->compile();
  r.compile = Cpu_ms() - t;
  r.equations = m->getBddWood()->exp_number();
  t = Cpu_ms();
  Module* copy = new Module(*m);
  copy->finalize(0);
  r.finalize = Cpu_ms() - t;
  t = Cpu_ms();
  std::ofstream code("/dev/null"), header("/dev/null");
  copy->C_put(code, header);
  r.c = Cpu_ms() - t;
  r.ok = true;
  return r;
}

// One size in a child process: fresh statics, its own peak memory, a time limit.
Timing Measure_in_child(const Shape& shape, int n, double limit_ms) {
  Timing r;
  int fds[2];
  if (pipe(fds) != 0) return r;
  std::fflush(stdout);
  pid_t pid = fork();
  if (pid < 0) return r;
  if (pid == 0) {
    close(fds[0]);
    alarm(unsigned(std::ceil(limit_ms / 1000)) + 1);
    Timing c = Measure(shape, n);
    ssize_t w = write(fds[1], &c, sizeof c);
    _exit(w == ssize_t(sizeof c) ? 0 : 1);
  }
  close(fds[1]);
  Timing c;
  ssize_t got = 0;
  while (got < ssize_t(sizeof c)) {
    ssize_t k = read(fds[0], reinterpret_cast<char*>(&c) + got, sizeof c - got);
    if (k < 0 && errno == EINTR) continue;
    if (k <= 0) break;
    got += k;
  }
  close(fds[0]);
  int status = 0;
  rusage usage{};
  while (wait4(pid, &status, 0, &usage) < 0 && errno == EINTR) {
  }
  if (got == ssize_t(sizeof c) && WIFEXITED(status) && WEXITSTATUS(status) == 0) r = c;
  r.peak_kb = usage.ru_maxrss;
  return r;
}

void Print(const char* shape, int n, const Timing& r) {
  std::printf("%-8s %6d %7ld %9ld %9.1f %10.1f %9.1f %8.1f %9.1f %8ld %8.2f\n", shape, n, r.statements,
              r.equations, r.parse, r.compile, r.finalize, r.c, r.total(), r.peak_kb / 1024,
              r.statements > 0 ? 1000 * r.total() / double(r.statements) : 0.0);
  std::fflush(stdout);
}

}  // namespace

int main(int argc, char** argv) {
  double max_ms = 20000;
  const char* only = nullptr;
  long size = 0, largest = 10000;
  for (int i = 1; i < argc; ++i) {
    if (!std::strcmp(argv[i], "--max-ms") && i + 1 < argc) {
      max_ms = std::atof(argv[++i]);
    } else if (!std::strcmp(argv[i], "--shape") && i + 1 < argc) {
      only = argv[++i];
    } else if (!std::strcmp(argv[i], "--size") && i + 1 < argc) {
      size = std::atol(argv[++i]);
    } else if (!std::strcmp(argv[i], "--largest") && i + 1 < argc) {
      largest = std::atol(argv[++i]);
    } else {
      std::fprintf(stderr,
                   "usage: compile_bench [--max-ms T] [--shape NAME] [--size STATEMENTS] [--largest STATEMENTS]\n");
      return 1;
    }
  }
  setenv("QUARN_BATCH", "1", 1);
  if (!Compilation::ModTable) Compilation::ModTable = new ModuleTable();

  const Shape shapes[] = {{"seq", Seq, 2},     {"par", Par, 4},     {"chain", Chain, 2},
                          {"abort", Abort, 5}, {"nest", Nest, 2.5}, {"present", Present, 2},
                          {"run", Runs, 2},     {"auto", Auto, 2},   {"mealy", Mealy, 2}};
  std::printf("%-8s %6s %7s %9s %9s %10s %9s %8s %9s %8s %8s\n", "shape", "N", "stmts", "equations",
              "parse_ms", "compile_ms", "final_ms", "c_ms", "total_ms", "peak_MB", "us/stmt");
  std::vector<std::string> summary;
  for (const Shape& shape : shapes) {
    if (only && std::strcmp(only, shape.name)) continue;
    if (size > 0) {
      int n = std::max(1, int(double(size) / shape.statements_per_unit));
      Print(shape.name, n, Measure(shape, n));
      continue;
    }
    std::vector<Timing> runs;
    std::string stop;
    for (long target = 625; target <= largest; target *= 2) {
      int n = std::max(1, int(double(target) / shape.statements_per_unit));
      Timing r = Measure_in_child(shape, n, 4 * max_ms);
      if (!r.ok) {
        stop = ", stopped: the run of N=" + std::to_string(n) + " failed or passed " +
               std::to_string(long(4 * max_ms)) + " ms";
        break;
      }
      runs.push_back(r);
      Print(shape.name, n, r);
      if (r.total() > max_ms && target * 2 <= largest) {
        stop = ", stopped: over " + std::to_string(long(max_ms)) + " ms";
        break;
      }
    }
    char line[512];
    if (runs.empty()) {
      std::snprintf(line, sizeof line, "%-8s no run%s", shape.name, stop.c_str());
    } else {
      const Timing& b = runs.back();
      double pair = 0, fit = 0;
      if (runs.size() >= 2) {
        const Timing& a = runs[runs.size() - 2];
        pair = std::log(b.total() / a.total()) / std::log(double(b.statements) / double(a.statements));
        double sx = 0, sy = 0, sxx = 0, sxy = 0;
        for (const Timing& r : runs) {
          double x = std::log(double(r.statements)), y = std::log(std::max(r.total(), 1e-3));
          sx += x, sy += y, sxx += x * x, sxy += x * y;
        }
        double k = double(runs.size());
        fit = (k * sxy - sx * sy) / (k * sxx - sx * sx);
      }
      std::snprintf(line, sizeof line,
                    "%-8s %6ld stmts %9.1f ms %6ld MB  exponent %.2f (last two) %.2f (fit)%s", shape.name,
                    b.statements, b.total(), b.peak_kb / 1024, pair, fit, stop.c_str());
    }
    summary.push_back(line);
  }
  if (!summary.empty()) {
    std::printf("\nsummary: time, peak memory and growth at the largest size\n");
    for (const std::string& s : summary) std::printf("%s\n", s.c_str());
  }
  return 0;
}

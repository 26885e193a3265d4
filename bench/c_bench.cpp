// The generated step against a hand-written one: ABRO, a counter and a wide parallel,
// each compiled by quarnc with -c and with -lean_c and built with gcc -O2, run on the same
// random inputs as a hand-written step with the same outputs. Prints nanoseconds per
// reaction and the ratios to the hand-written step; the outputs of the three must agree.
//   c_bench [--reactions N] [--quarnc PATH]
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

struct Design {
  std::string name;
  std::vector<std::string> inputs;
  std::string output;
  std::string source;  // the Quarn module
  std::string hand;    // C: state and "void hand_step(const int* in, int* out)"
};

std::string wideSource(int n) {
  std::ostringstream s;
  s << "module wide:\nInput: ";
  for (int i = 0; i < n; i++) s << (i ? ", " : "") << "A" << i;
  s << ";\nOutput: O;\n";
  for (int i = 0; i < n; i++) s << (i ? "|| " : "{ ") << "loop { wait A" << i << " >> emit O }\n";
  s << "}\nend\n";
  return s.str();
}

std::vector<Design> designs() {
  const int wide = 8;
  std::vector<std::string> wideInputs;
  for (int i = 0; i < wide; i++) wideInputs.push_back("A" + std::to_string(i));
  return {
      {"abro", {"A", "B", "R"}, "O",
       "module abro:\nInput: A, B, R;\nOutput: O;\n"
       "loop { strong abort { { wait A || wait B } >> emit O >> halt } when R }\nend\n",
       "static int boot = 1, wa, wb, halted;\n"
       "void hand_step(const int* in, int* out) {\n"
       "  *out = 0;\n"
       "  if (boot || in[2]) { boot = 0; wa = wb = 1; halted = 0; return; }\n"
       "  if (wa && in[0]) wa = 0;\n"
       "  if (wb && in[1]) wb = 0;\n"
       "  if (!wa && !wb && !halted) { *out = 1; halted = 1; }\n"
       "}\n"},
      {"counter", {"T"}, "O",
       "module counter:\nInput: T;\nOutput: O;\nloop { wait T >> wait T >> wait T >> emit O }\nend\n",
       "static int boot = 1, n;\n"
       "void hand_step(const int* in, int* out) {\n"
       "  *out = 0;\n"
       "  if (boot) { boot = 0; n = 0; return; }\n"
       "  if (in[0] && ++n == 3) { *out = 1; n = 0; }\n"
       "}\n"},
      {"wide", wideInputs, "O", wideSource(wide),
       "static int boot = 1;\n"
       "void hand_step(const int* in, int* out) {\n"
       "  int i;\n"
       "  *out = 0;\n"
       "  if (boot) { boot = 0; return; }\n"
       "  for (i = 0; i < " + std::to_string(wide) + "; i++) *out |= in[i];\n"
       "}\n"},
  };
}

// The timing driver: random inputs made before the clock starts, STEP called on each.
std::string driver(const Design& d, bool generated, long reactions) {
  const size_t n = d.inputs.size();
  std::ostringstream s;
  s << "#include <stdio.h>\n#include <stdlib.h>\n#include <time.h>\n";
  if (generated) {
    s << "#include \"" << d.name << ".c\"\n";
    s << "static void step(const int* in, int* out) { " << d.name << "_automaton(";
    for (size_t i = 0; i < n; i++) s << "in[" << i << "], ";
    s << "out); }\n";
  } else {
    s << d.hand << "static void step(const int* in, int* out) { hand_step(in, out); }\n";
  }
  s << "int main(void) {\n"
    << "  long r, k, n = " << reactions << ", sum = 0;\n"
    << "  int* in = malloc(sizeof(int) * " << n << " * n);\n"
    << "  unsigned x = 12345;\n"
    << "  struct timespec t0, t1;\n"
    << "  for (k = 0; k < " << n << " * n; k++) { x = x * 1103515245u + 12345u; in[k] = (x >> 16) % 4 == 0; }\n";
  if (generated) s << "  " << d.name << "_reset_automaton();\n";
  s << "  clock_gettime(CLOCK_MONOTONIC, &t0);\n"
    << "  for (r = 0; r < n; r++) { int o = 0; step(in + r * " << n << ", &o); sum = sum * 3 + o; }\n"
    << "  clock_gettime(CLOCK_MONOTONIC, &t1);\n"
    << "  printf(\"%.3f %ld\\n\", ((t1.tv_sec - t0.tv_sec) * 1e9 + (t1.tv_nsec - t0.tv_nsec)) / n, sum);\n"
    << "  return 0;\n}\n";
  return s.str();
}

bool run(const std::string& command) { return std::system(command.c_str()) == 0; }

// Builds and runs one driver: nanoseconds per reaction and the outputs' checksum.
bool measure(const fs::path& dir, const std::string& tag, const std::string& text, double& ns, long& sum) {
  const fs::path c = dir / (tag + "_driver.c"), exe = dir / tag, out = dir / (tag + ".txt");
  std::ofstream(c) << text;
  if (!run("gcc -O2 -w -o '" + exe.string() + "' '" + c.string() + "'")) return false;
  double best = 1e30;
  for (int i = 0; i < 3; i++) {
    if (!run("'" + exe.string() + "' > '" + out.string() + "'")) return false;
    std::ifstream in(out);
    double t;
    if (!(in >> t >> sum)) return false;
    best = std::min(best, t);
  }
  ns = best;
  return true;
}

std::string selfDir() {
  char buf[4096];
  ssize_t n = readlink("/proc/self/exe", buf, sizeof buf - 1);
  if (n <= 0) return ".";
  buf[n] = '\0';
  return fs::path(buf).parent_path().string();
}

}  // namespace

int main(int argc, char** argv) {
  long reactions = 2000000;
  std::string quarnc = (fs::path(selfDir()) / ".." / "quarnc").string();
  for (int i = 1; i < argc; i++) {
    if (!std::strcmp(argv[i], "--reactions") && i + 1 < argc) {
      reactions = std::atol(argv[++i]);
    } else if (!std::strcmp(argv[i], "--quarnc") && i + 1 < argc) {
      quarnc = argv[++i];
    } else {
      std::fprintf(stderr, "usage: %s [--reactions N] [--quarnc PATH]\n", argv[0]);
      return 2;
    }
  }
  const fs::path root = fs::temp_directory_path() / ("c_bench_" + std::to_string(getpid()));
  fs::create_directories(root);
  std::printf("%-8s %10s %10s %10s %8s %8s\n", "design", "hand ns", "c ns", "lean ns", "c/hand", "lean/hand");
  double worst = 0;
  bool ok = true;
  for (const Design& d : designs()) {
    double nsHand = 0, ns[2] = {0, 0};
    long sumHand = 0, sums[2] = {0, 0};
    bool good = measure(root, d.name + "_hand", driver(d, false, reactions), nsHand, sumHand);
    const char* options[2] = {"-c", "-lean_c"};
    for (int v = 0; v < 2 && good; v++) {
      const fs::path dir = root / (d.name + options[v]);
      fs::create_directories(dir);
      std::ofstream(dir / (d.name + ".qn")) << d.source;
      good = run("cd '" + dir.string() + "' && QUARN_BATCH=1 '" + quarnc + "' " + options[v] + " -main " + d.name +
                 " " + d.name + ".qn > quarnc.log 2>&1") &&
             measure(dir, d.name, driver(d, true, reactions), ns[v], sums[v]);
    }
    if (!good) {
      std::printf("%-8s failed: see %s\n", d.name.c_str(), root.string().c_str());
      ok = false;
      continue;
    }
    const bool agree = sums[0] == sumHand && sums[1] == sumHand;
    std::printf("%-8s %10.2f %10.2f %10.2f %8.2f %8.2f%s\n", d.name.c_str(), nsHand, ns[0], ns[1], ns[0] / nsHand,
                ns[1] / nsHand, agree ? "" : "  (outputs differ)");
    ok = ok && agree;
    worst = std::max(worst, ns[1] / nsHand);
  }
  if (ok) fs::remove_all(root);
  std::printf("summary: lean C at most %.2f times the hand-written step%s\n", worst, ok ? "" : " (some designs failed)");
  return ok ? 0 : 1;
}

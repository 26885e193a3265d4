// Growth of the wood's dating and walks on synthetic equation graphs.
//
//   wood_bench [largest size]
//
// For each shape and size: build the wood, then time a full dating, a list
// dating, the cycle search, the earliest sort, the critical paths and a
// closure from one end, and a rewrite of the first equation (whose cycle
// watch walks everything behind it). The last column is the total time per
// equation and dependence: flat when the growth is linear.
//
// Shapes: a chain; a ladder whose rungs both read both sides of the rung
// below (2^n paths to the top); a wide fan-in where every equation reads the
// same 16 inputs; and a tree where each equation reads 8 below it.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include "equations/Bddexpression.h"

namespace {

double Worst = 0;  // the largest time per equation and dependence of any run

using Clock = std::chrono::steady_clock;

double Ms_since(Clock::time_point t) { return std::chrono::duration<double, std::milli>(Clock::now() - t).count(); }

struct Built {
  long top;     // the last equation
  long bottom;  // a variable read at the start
  long first;   // the first equation
};

Built Chain(Bddexpressionwood& w, long n) {
  bddpp_manager* m = w.my_bdd_manager();
  bdd prev = w.New_var_last("in");
  long first = -1;
  for (long k = 0; k < n; ++k) {
    bdd v = w.New_var_last("c" + std::to_string(k));
    new Bddexpression("c", &w, v, m->Bdd_not(prev), 0, 0);
    if (first < 0) first = m->Index_var_by_bdd(v);
    prev = v;
  }
  return {m->Index_var_by_bdd(prev), 0, first};
}

Built Ladder(Bddexpressionwood& w, long n) {
  bddpp_manager* m = w.my_bdd_manager();
  bdd in = w.New_var_last("in");
  bdd pu = in, pv = in;
  long first = -1;
  for (long k = 0; k < n / 2; ++k) {
    bdd u = w.New_var_last("u" + std::to_string(k));
    bdd v = w.New_var_last("v" + std::to_string(k));
    new Bddexpression("u", &w, u, m->Bdd_and(pu, pv), 0, 0);
    new Bddexpression("v", &w, v, m->Bdd_xor(pu, pv), 0, 0);
    if (first < 0) first = m->Index_var_by_bdd(u);
    pu = u;
    pv = v;
  }
  return {m->Index_var_by_bdd(pu), 0, first};
}

Built Fan_in(Bddexpressionwood& w, long n) {
  bddpp_manager* m = w.my_bdd_manager();
  std::vector<bdd> inputs;
  for (int k = 0; k < 16; ++k) inputs.push_back(w.New_var_last("i" + std::to_string(k)));
  bdd all = m->Bdd_one();
  for (const bdd& i : inputs) all = m->Bdd_xor(all, i);
  long first = -1, last = -1;
  for (long k = 0; k < n; ++k) {
    bdd v = w.New_var_last("f" + std::to_string(k));
    new Bddexpression("f", &w, v, k % 2 ? all : m->Bdd_not(all), 0, 0);
    last = m->Index_var_by_bdd(v);
    if (first < 0) first = last;
  }
  return {last, 0, first};
}

Built Tree(Bddexpressionwood& w, long n) {
  bddpp_manager* m = w.my_bdd_manager();
  std::vector<bdd> level;
  for (long k = 0; k < n / 2; ++k) level.push_back(w.New_var_last("l" + std::to_string(k)));
  long first = -1, made = 0;
  while (level.size() > 1) {
    std::vector<bdd> up;
    for (size_t k = 0; k < level.size(); k += 8) {
      bdd f = m->Bdd_zero();
      for (size_t j = k; j < k + 8 && j < level.size(); ++j) f = m->Bdd_or(f, level[j]);
      bdd v = w.New_var_last("t" + std::to_string(made++));
      new Bddexpression("t", &w, v, f, 0, 0);
      if (first < 0) first = m->Index_var_by_bdd(v);
      up.push_back(v);
    }
    level.swap(up);
  }
  return {m->Index_var_by_bdd(level[0]), 0, first};
}

void Run(const char* shape, const std::function<Built(Bddexpressionwood&, long)>& build, long n) {
  Bddexpressionwood w;
  auto t = Clock::now();
  Built b = build(w, n);
  double build_ms = Ms_since(t);
  long edges = 0;
  for (long i : w.getExpIds()) edges += long(w.exp_by_index(i)->getDependances().size());
  long eqs = w.exp_number();

  t = Clock::now();
  long levels = w.compute_dates();
  double dates_ms = Ms_since(t);

  std::list<long> all;
  for (long i = 0; i < w.Nb_bdd_vars(); ++i) all.push_back(i);
  t = Clock::now();
  w.compute_dates(all);
  double list_ms = Ms_since(t);

  t = Clock::now();
  bool cycle = !w.loop_detection().empty();
  double loop_ms = Ms_since(t);

  t = Clock::now();
  size_t sorted = w.earliest_sort().size();
  double sort_ms = Ms_since(t);

  t = Clock::now();
  long up = w.up_critical_path(b.top, 0, 0);
  long down = w.down_critical_path(b.bottom, 0, 0);
  size_t closure = w.up_dependances(b.top, 0, {}).size();
  double walks_ms = Ms_since(t);

  t = Clock::now();
  Bddexpression* e = w.exp_by_index(b.first);
  e->setBddExp(e->my_bdd_exp());
  double rewrite_ms = Ms_since(t);

  double total = dates_ms + list_ms + loop_ms + sort_ms + walks_ms + rewrite_ms;
  Worst = std::max(Worst, total * 1e6 / double(eqs + edges));
  std::printf("%-7s %8ld %9ld %7ld | %8.1f | %7.2f %7.2f %7.2f %7.2f %7.2f %7.2f | %6.1f ns/(eq+dep)%s\n", shape,
              eqs, edges, levels, build_ms, dates_ms, list_ms, loop_ms, sort_ms, walks_ms, rewrite_ms,
              total * 1e6 / double(eqs + edges), cycle ? "  CYCLE?" : "");
  if (long(sorted) != eqs || up < 1 || down < 1 || closure < 1) std::printf("        unexpected results\n");
}

}  // namespace

int main(int argc, char** argv) {
  long largest = argc > 1 ? std::atol(argv[1]) : 131072;
  std::printf("%-7s %8s %9s %7s | %8s | %7s %7s %7s %7s %7s %7s |\n", "shape", "eqs", "deps", "levels", "build",
              "dates", "list", "loops", "sort", "walks", "rewrite");
  std::printf("%-7s %8s %9s %7s | %8s | %47s |\n", "", "", "", "", "ms", "ms");
  const std::vector<std::pair<const char*, std::function<Built(Bddexpressionwood&, long)>>> shapes = {
      {"chain", Chain}, {"ladder", Ladder}, {"fan-in", Fan_in}, {"tree", Tree}};
  for (const auto& [name, build] : shapes)
    for (long n = 1024; n <= largest; n *= 4) Run(name, build, n);
  std::printf("summary: up to %ld equations, at most %.1f ns per equation and dependence\n", largest, Worst);
  return 0;
}

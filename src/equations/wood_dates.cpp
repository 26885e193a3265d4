// PERT dates of a wood, cycle detection, sorts, closures and critical paths.
//
// The dates are longest paths: the early date of an equation is raised to one
// above the early date of each equation it is read behind (1 behind a free
// variable), the late date of a variable to one above the late date of each
// equation that reads it. A date is only ever raised, and only from an index
// that is dated (a seed) or whose date rose. That least fixed point is what
// an eager propagation reaches; here it is computed in one pass over the
// strongly connected components in topological order, so each dependence is
// looked at a bounded number of times. Around a cycle the dates have no bound:
// the equations of the cycle and, for early dates, everything behind it get
// the date 2 * Nb_bdd_vars, above any date a cycle-free wood can reach, which
// is what loop_detection looks for.
#include <algorithm>
#include <climits>
#include <iostream>

#include "equations/Bddexpression.h"

namespace {

// Adjacency in one array: the successors of x are next[start[x] .. start[x+1]).
struct Graph {
  std::vector<long> start;
  std::vector<long> next;
  long size() const { return long(start.size()) - 1; }
  const long* begin(long x) const { return next.data() + start[x]; }
  const long* end(long x) const { return next.data() + start[x + 1]; }
};

// The strongly connected components reachable from the seeds, sinks first
// (iterative Tarjan): component c holds members[start[c] .. start[c+1]).
struct Components {
  std::vector<long> comp, members, start;
  long count() const { return long(start.size()) - 1; }
};

Components Reachable_components(const Graph& g, const std::vector<char>& seeded) {
  const long n = g.size();
  Components k;
  std::vector<long> order(n, -1), low(n, 0);
  std::vector<long>& comp = k.comp;
  std::vector<long>& members = k.members;
  std::vector<long>& comp_start = k.start;
  comp.assign(n, -1);
  std::vector<char> on_stack(n, 0);
  std::vector<long> stack;
  std::vector<std::pair<long, long>> calls;  // node, next edge position
  long counter = 0;
  for (long s = 0; s < n; ++s) {
    if (!seeded[s] || order[s] >= 0) continue;
    order[s] = low[s] = counter++;
    stack.push_back(s);
    on_stack[s] = 1;
    calls.emplace_back(s, g.start[s]);
    while (!calls.empty()) {
      long v = calls.back().first;
      long pos = calls.back().second;
      if (pos < g.start[v + 1]) {
        calls.back().second = pos + 1;
        long w = g.next[pos];
        if (order[w] < 0) {
          order[w] = low[w] = counter++;
          stack.push_back(w);
          on_stack[w] = 1;
          calls.emplace_back(w, g.start[w]);
        } else if (on_stack[w]) {
          low[v] = std::min(low[v], order[w]);
        }
        continue;
      }
      if (low[v] == order[v]) {
        long c = long(comp_start.size());
        comp_start.push_back(long(members.size()));
        long w;
        do {
          w = stack.back();
          stack.pop_back();
          on_stack[w] = 0;
          comp[w] = c;
          members.push_back(w);
        } while (w != v);
      }
      calls.pop_back();
      if (!calls.empty()) {
        long u = calls.back().first;
        low[u] = std::min(low[u], low[v]);
      }
    }
  }
  comp_start.push_back(long(members.size()));
  return k;
}

// Raises `dates` to the least fixed point described above, from the `seeded`
// indexes. `infinite` is the date of an index that a cycle raises without end;
// with `spread` it goes on to every index behind the cycle. Gives true when a
// cycle was met; every raised date lifts `level` above it.
bool Propagate(const Graph& g, std::vector<long>& dates, const std::vector<char>& seeded, long infinite,
               bool spread, long& level) {
  const long n = g.size();
  const Components k = Reachable_components(g, seeded);
  const std::vector<long>& comp = k.comp;
  const std::vector<long>& members = k.members;
  const std::vector<long>& comp_start = k.start;
  const long comps = k.count();

  std::vector<long> candidate(n, LONG_MIN);
  std::vector<char> infinite_in(n, 0), raised(n, 0);
  std::vector<long> work;
  bool any_cycle = false;
  for (long c = comps - 1; c >= 0; --c) {
    const long* first = members.data() + comp_start[c];
    const long* last = members.data() + comp_start[c + 1];
    bool cyclic = last - first > 1;
    if (!cyclic)
      for (const long* z = g.begin(*first); z != g.end(*first); ++z)
        if (*z == *first) cyclic = true;
    bool inf = false;
    for (const long* y = first; y != last; ++y) {
      if (infinite_in[*y]) inf = true;
      if (candidate[*y] > dates[*y]) {
        dates[*y] = candidate[*y];
        raised[*y] = 1;
      }
    }
    if (cyclic && !inf) {
      bool all = true;
      work.clear();
      for (const long* y = first; y != last; ++y) {
        if (seeded[*y] || raised[*y])
          work.push_back(*y);
        else
          all = false;
      }
      if (!work.empty() && all) {
        // Every equation of the cycle pushes on the next one: no finite dates.
        inf = true;
      } else if (!work.empty()) {
        // Only part of the component moves: relax inside it. A finite result
        // stays within one path length of the highest date present.
        long bound = LONG_MIN;
        for (const long* y = first; y != last; ++y) bound = std::max(bound, dates[*y]);
        bound += last - first;
        while (!work.empty() && !inf) {
          long x = work.back();
          work.pop_back();
          for (const long* z = g.begin(x); z != g.end(x); ++z) {
            if (comp[*z] != c || dates[x] + 1 <= dates[*z]) continue;
            dates[*z] = dates[x] + 1;
            raised[*z] = 1;
            if (dates[*z] > bound) {
              inf = true;
              break;
            }
            work.push_back(*z);
          }
        }
      }
    }
    if (inf) {
      any_cycle = true;
      for (const long* y = first; y != last; ++y)
        if (dates[*y] < infinite) {
          dates[*y] = infinite;
          raised[*y] = 1;
        }
    }
    for (const long* y = first; y != last; ++y) {
      if (raised[*y] && level <= dates[*y]) level = dates[*y] + 1;
      if (!(seeded[*y] || raised[*y] || inf) || (inf && !spread)) continue;
      for (const long* z = g.begin(*y); z != g.end(*y); ++z) {
        if (comp[*z] == c) continue;
        if (inf)
          infinite_in[*z] = 1;
        else
          candidate[*z] = std::max(candidate[*z], dates[*y] + 1);
      }
    }
  }
  return any_cycle;
}

}  // namespace

// Dates from the given indexes: what they read dates their
// readers (early), and they date what they read (late).
void Bddexpressionwood::Date_from(const std::vector<long>& seeds, const char* too_big) {
  const long n = nb_bdd_vars;
  for (long i : seeds)
    for (long r : readers[i])
      if (r >= n) std::cerr << too_big << r << ">= " << n << std::endl;
  // Past twice the number of variables a propagation no longer goes on: only
  // the direct steps are left.
  if (nb_level > 2 * n) {
    Direct_dates(seeds);
    return;
  }
  std::vector<char> seeded(n, 0);
  for (long i : seeds) seeded[i] = 1;
  const long infinite = 2 * n;

  Graph early;
  early.start.assign(n + 1, 0);
  for (long j = 0; j < n; ++j) {
    for (long r : readers[j])
      if (r >= 0 && r < n && exp_table[r] != nullptr) early.next.push_back(r);
    early.start[j + 1] = long(early.next.size());
  }
  std::vector<long> dates(n, 0);
  for (long i = 0; i < n; ++i)
    if (exp_table[i] != nullptr) dates[i] = exp_table[i]->early_date;
  bool cycle = Propagate(early, dates, seeded, infinite, true, nb_level);
  for (long i = 0; i < n; ++i)
    if (exp_table[i] != nullptr) exp_table[i]->early_date = dates[i];
  for (long i : seeds)
    if (readers[i].empty() && exp_table[i] != nullptr && nb_level <= dates[i]) nb_level = dates[i] + 1;

  Graph late;
  late.start.assign(n + 1, 0);
  for (long i = 0; i < n; ++i) {
    if (exp_table[i] != nullptr)
      for (long d : exp_table[i]->dependances)
        if (d >= 0 && d < n) late.next.push_back(d);
    late.start[i + 1] = long(late.next.size());
  }
  dates.assign(late_dates.begin(), late_dates.begin() + n);
  // Upstream of a cycle the late dates count only the paths that avoid it, so
  // that the report names the cycle and what lies behind it.
  cycle = Propagate(late, dates, seeded, infinite, false, nb_level) || cycle;
  std::copy(dates.begin(), dates.end(), late_dates.begin());
  if (cycle && nb_level <= infinite) nb_level = infinite + 1;
}

// The dating once Nb_level is past twice the number of variables: each step
// stores its date and doesn't go on, in list order.
void Bddexpressionwood::Direct_dates(const std::vector<long>& seeds) {
  const long n = nb_bdd_vars;
  for (long i : seeds) {
    for (long r : readers[i]) {
      if (r >= n) continue;
      long date = exp_table[i] != nullptr ? exp_table[i]->early_date + 1 : 1;
      Bddexpression* e = exp_table[r];
      if (e == nullptr || date <= e->early_date) continue;
      e->early_date = date;
      if (nb_level <= date) nb_level = date + 1;
    }
    Bddexpression* e = exp_table[i];
    if (e == nullptr) continue;
    if (readers[i].empty() && nb_level <= e->early_date) nb_level = e->early_date + 1;
    std::set<long> deps = e->dependances;
    for (long d : deps) {
      if (d < 0 || d >= n) continue;
      long date = late_dates[i] + 1;
      if (late_dates[d] != 0 && late_dates[d] >= date) continue;
      late_dates[d] = date;
      if (nb_level <= date) nb_level = date + 1;
    }
  }
}

long Bddexpressionwood::compute_dates() {
  update_bdd_vars();
  if (nb_level != 0 || nb_bdd_vars < 1) return nb_level;
  std::fill(late_dates.begin(), late_dates.begin() + nb_bdd_vars, 0);
  std::vector<long> seeds(nb_bdd_vars);
  for (long i = 0; i < nb_bdd_vars; ++i) seeds[i] = i;
  Date_from(seeds, "ERREUR dans compute_date(): nombre de variables trop grand :");
  return nb_level;
}

long Bddexpressionwood::compute_dates(const std::list<long>& indexes) {
  if (nb_level < 1) return compute_dates();
  update_bdd_vars();
  std::vector<long> seeds;
  for (long i : indexes)
    if (i >= 0 && i < nb_bdd_vars) seeds.push_back(i);  // a reference without variable is -1
  Date_from(seeds, "ERREUR dans compute_date(list ident): numero de variables trop grand :");
  return nb_level;
}

long PERT(Bddexpressionwood* wood) { return wood != nullptr ? wood->compute_dates() : 0; }

std::list<long> Bddexpressionwood::loop_detection() {
  if (nb_level == 0) compute_dates();
  std::list<long> found;
  if (nb_bdd_vars >= nb_level || nb_bdd_vars < 1) return found;
  for (long i = 0; i < nb_bdd_vars; ++i)
    if (exp_table[i] != nullptr && (exp_table[i]->early_date > nb_bdd_vars || late_dates[i] > nb_bdd_vars))
      found.push_back(i);
  return found;
}

std::list<long> Bddexpressionwood::earliest_sort() {
  std::vector<std::pair<long, long>> dated;
  for (long i = 0; i < nb_bdd_vars; ++i) {
    Bddexpression* e = exp_table[i];
    if (e != nullptr && e->early_date >= 0 && e->early_date <= nb_level) dated.emplace_back(e->early_date, i);
  }
  std::stable_sort(dated.begin(), dated.end(),
                   [](const auto& a, const auto& b) { return a.first < b.first; });
  std::list<long> sorted;
  for (const auto& d : dated) sorted.push_back(d.second);
  return sorted;
}

std::list<long> Bddexpressionwood::latest_sort() {
  std::vector<std::pair<long, long>> dated;
  for (long i = 0; i < nb_bdd_vars; ++i)
    if (exp_table[i] != nullptr && late_dates[i] >= 0 && late_dates[i] <= nb_level)
      dated.emplace_back(late_dates[i], i);
  std::stable_sort(dated.begin(), dated.end(),
                   [](const auto& a, const auto& b) { return a.first > b.first; });
  std::list<long> sorted;
  for (const auto& d : dated) sorted.push_back(d.second);
  return sorted;
}

// ===================================================================
// Closures
// ===================================================================

namespace {

// The depth-first walk of a closure: a variable is followed the first time it
// enters the result, so each one is walked once.
std::set<long> Closure(long index, long depth, const std::set<long>& initial, long n,
                       const std::vector<Bddexpression*>& table,
                       const std::set<long>& (*next)(const std::vector<Bddexpression*>&,
                                                     const std::vector<std::set<long>>&, long),
                       const std::vector<std::set<long>>& readers, const char* warning, const char* words) {
  std::set<long> result = initial;
  if (index < 0 || index >= n || table[index] == nullptr) return result;
  struct Frame {
    long depth;
    std::set<long>::const_iterator it, end;
  };
  std::vector<Frame> stack;
  const std::set<long>& first = next(table, readers, index);
  stack.push_back({depth, first.begin(), first.end()});
  while (!stack.empty()) {
    Frame& f = stack.back();
    if (f.it == f.end) {
      stack.pop_back();
      continue;
    }
    long d = *f.it;
    ++f.it;
    if (!result.insert(d).second) continue;
    if (f.depth >= n) {
      std::cerr << warning << std::endl << words << std::endl;
      continue;
    }
    if (d < 0 || d >= n || table[d] == nullptr) continue;
    const std::set<long>& s = next(table, readers, d);
    long deeper = f.depth + 1;
    stack.push_back({deeper, s.begin(), s.end()});
  }
  return result;
}

const std::set<long>& Dependances_of(const std::vector<Bddexpression*>& table, const std::vector<std::set<long>>&,
                                     long i) {
  return table[i]->getDependances();
}

const std::set<long>& Readers_of(const std::vector<Bddexpression*>&, const std::vector<std::set<long>>& readers,
                                 long i) {
  return readers[i];
}

}  // namespace

std::set<long> Bddexpressionwood::up_dependances(long index, long depth, const std::set<long>& set) {
  return Closure(index, depth, set, nb_bdd_vars, exp_table, Dependances_of, readers,
                 "WARNING in Bddexpressionwood::up_dependances():",
                 "   possible infinite recursion due to a signals cycle");
}

std::set<long> Bddexpressionwood::down_dependances(long index, long depth, const std::set<long>& set) {
  return Closure(index, depth, set, nb_bdd_vars, exp_table, Readers_of, readers,
                 "WARNING in Bddexpressionwood::down_dependances():",
                 "   possible infinite recusion due to a signals cycle");
}

// ===================================================================
// Critical paths
// ===================================================================

// Down: the heaviest sum of reader weights along the readers of `start`, 0
// without readers. Up: the weight of `start` plus the heaviest such sum of
// its dependences, if positive. Each index is valued once per walk; an edge
// back onto the current path closes a cycle and is left out.
long Bddexpressionwood::Path_weight(long start, bool downward, bool& cycle, bool fresh) {
  const long n = nb_bdd_vars;
  if (long(walk_stamp.size()) < n) {
    walk_stamp.resize(n, 0);
    walk_value.resize(n, 0);
    walk_state.resize(n, 0);
  }
  if (walk_serial == 0) fresh = true;
  if (!fresh && walk_stamp[start] == walk_serial) return walk_value[start];
  if (fresh && ++walk_serial == 0) {
    std::fill(walk_stamp.begin(), walk_stamp.end(), 0);
    walk_serial = 1;
  }
  struct Frame {
    long v;
    std::set<long>::const_iterator it, end;
    long best;
    bool any;
  };
  std::vector<Frame> stack;
  auto enter = [&](long v) {
    walk_stamp[v] = walk_serial;
    walk_state[v] = 1;
    const std::set<long>& s = downward ? readers[v] : exp_table[v]->dependances;
    stack.push_back({v, s.begin(), s.end(), 0, false});
  };
  auto take = [&](Frame& f, long w, long value) {
    long c = downward ? exp_table[w]->weight + value : value;
    if (!f.any || c > f.best) {
      f.best = c;
      f.any = true;
    }
  };
  enter(start);
  long result = 0;
  while (!stack.empty()) {
    Frame& f = stack.back();
    if (f.it != f.end) {
      long w = *f.it;
      ++f.it;
      if (w < 0 || w >= n || exp_table[w] == nullptr) continue;
      if (walk_stamp[w] == walk_serial) {
        if (walk_state[w] == 1)
          cycle = true;
        else
          take(f, w, walk_value[w]);
        continue;
      }
      enter(w);
      continue;
    }
    long v = f.v;
    long value = downward ? (f.any ? f.best : 0) : exp_table[v]->weight + (f.any ? std::max(0L, f.best) : 0);
    stack.pop_back();
    walk_state[v] = 2;
    walk_value[v] = value;
    if (stack.empty())
      result = value;
    else
      take(stack.back(), v, value);
  }
  return result;
}

long Bddexpressionwood::down_critical_path(long index, long depth, long weight) {
  if (index < 0 || index >= nb_bdd_vars) return weight;
  if (depth >= nb_bdd_vars) {
    for (long r : readers[index])
      if (r >= 0 && r < nb_bdd_vars && exp_table[r] != nullptr) {
        std::cerr << "WARNING in Bddexpressionwood::down_critical_path():" << std::endl
                  << "   possible infinite recursion due to a signals cycle" << std::endl;
        break;
      }
    return weight;
  }
  bool cycle = false;
  long value = Path_weight(index, true, cycle);
  if (cycle)
    std::cerr << "WARNING in Bddexpressionwood::down_critical_path():" << std::endl
              << "   possible infinite recursion due to a signals cycle" << std::endl;
  return weight + value;
}

// On a cycle the value isn't used (the dating reports the cycle); the walk
// leaves the equations as they are.
long Bddexpressionwood::up_critical_path(long index, long, long weight) {
  if (index < 0 || index >= nb_bdd_vars || exp_table[index] == nullptr) return weight;
  bool cycle = false;
  return weight + Path_weight(index, false, cycle);
}

// ===================================================================
// Case analysis
// ===================================================================

std::set<long> Bddexpressionwood::loop_breaking(const std::set<long>& candidates, int& flag) {
  std::set<long> created;
  std::set<long> forbidden;
  update_bdd_vars();
  for (long i = 0; i < nb_bdd_vars; ++i)
    if (candidates.count(i) == 0) forbidden.insert(i);
  nb_level = 0;
  std::list<long> loop = loop_detection();
  flag = 1;
  while (!loop.empty() && flag == 1) {
    std::vector<long> count(nb_bdd_vars, 0);
    for (long i : loop)
      for (long d : exp_table[i]->dependances)
        if (d >= 0 && d < nb_bdd_vars) ++count[d];
    long chosen = -1;
    for (long v = 0; v < nb_bdd_vars; ++v) {
      if (count[v] == 0 || forbidden.count(v) != 0) continue;
      if (exp_table[v] != nullptr && !exp_table[v]->dependances.empty()) continue;
      if (chosen < 0 || count[v] > count[chosen]) chosen = v;
    }
    if (chosen < 0) {
      flag = 0;
      break;
    }
    forbidden.insert(chosen);
    long first_new = nb_bdd_vars;
    std::vector<std::pair<long, std::pair<long, long>>> copies;  // equation, then copy, else copy
    for (long i : loop) {
      long t, e;
      exp_table[i]->Shannon_expand(manager->id_of_index[chosen], t, e);
      if (t < 0 || e < 0) continue;
      forbidden.insert(t);
      forbidden.insert(e);
      created.insert(t);
      created.insert(e);
      copies.push_back({i, {t, e}});
    }
    update_bdd_vars();
    std::vector<long> then_map(nb_bdd_vars), else_map(nb_bdd_vars);
    for (long i = 0; i < nb_bdd_vars; ++i) then_map[i] = else_map[i] = i;
    for (const auto& c : copies) {
      then_map[c.first] = c.second.first;
      else_map[c.first] = c.second.second;
    }
    for (long k = first_new; k + 1 < nb_bdd_vars; k += 2) {
      Bddexpression* t = exp_table[k];
      Bddexpression* e = exp_table[k + 1];
      if (t != nullptr) t->setBddExp(manager->Bdd_replace_vars(t->my_bdd_exp(), then_map.data()), 0, 0);
      if (e != nullptr) e->setBddExp(manager->Bdd_replace_vars(e->my_bdd_exp(), else_map.data()), 0, 0);
    }
    nb_level = 0;
    loop = loop_detection();
  }
  return created;
}

// ===================================================================
// The stand-alone dater
// ===================================================================

namespace {

long Var_index(Bddexpression* e) {
  Bddexpressionwood* w = e->getBddexpressionwood();
  if (w == nullptr || w->my_bdd_manager() == nullptr || !e->my_bdd_var().initialised()) return -1;
  return w->my_bdd_manager()->Index_var_by_bdd(e->my_bdd_var());
}

template <class At>
long Pert_by_relaxation(long count, At at) {
  if (count < 1) return 0;
  Bddexpressionwood* w = at(0)->getBddexpressionwood();
  long n = w != nullptr && w->my_bdd_manager() != nullptr ? w->my_bdd_manager()->Nb_bdd_vars : 0;
  std::vector<long> early(n, 0), late(n, 0);
  for (long k = 0; k < count; ++k) {
    long v = Var_index(at(k));
    if (v >= 0 && v < n) {
      early[v] = at(k)->getEarlyDate();
      late[v] = at(k)->getLateDate();
    }
  }
  int flag = 0;
  bool changed = true;
  while (changed && flag == 0) {
    changed = false;
    for (long k = 0; k < count; ++k) changed = learn_upstream_dependance(n, early.data(), at(k), flag) || changed;
  }
  changed = true;
  while (changed && flag == 0) {
    changed = false;
    for (long k = 0; k < count; ++k)
      changed = learn_downstream_dependance(n, late.data(), at(k), flag) || changed;
  }
  if (flag == 0) {
    long levels = n == 0 ? 1 : normalise_min_min(n, early.data(), late.data()) + 1;
    for (long k = 0; k < count; ++k) {
      long v = Var_index(at(k));
      if (v < 0 || v >= n) continue;
      at(k)->setEarlyDate(early[v]);
      at(k)->setLateDate(late[v]);
    }
    return levels;
  }
  std::cout << "CYCLE DE CAUSALITE SUR:" << std::endl;
  for (long k = 0; k < count; ++k) {
    long v = Var_index(at(k));
    if (v >= 0 && v < n && early[v] >= n && late[v] >= n) std::cout << *at(k) << std::endl;
  }
  return -1;
}

}  // namespace

long normalise_min_min(long count, long* early, long* late) {
  if (count < 1) return 0;
  long min_early = *std::min_element(early, early + count);
  long min_late = *std::min_element(late, late + count);
  long highest = LONG_MIN;
  for (long i = 0; i < count; ++i) {
    early[i] -= min_early;
    late[i] -= min_late;
    highest = std::max({highest, early[i], late[i]});
  }
  return highest;
}

bool learn_upstream_dependance(long count, long* dates, Bddexpression* e, int& flag) {
  long v = Var_index(e);
  if (v < 0 || v >= count) {
    std::cerr << "INTERNAL ERROR in learn_upstream_dependance()" << std::endl;
    return false;
  }
  bool changed = false;
  for (long d : e->getDependances()) {
    if (d < 0 || d >= count || dates[v] > dates[d]) continue;
    dates[v] = dates[d] + 1;
    changed = true;
    if (dates[v] >= 2 * count) flag = 1;
  }
  return changed;
}

bool learn_downstream_dependance(long count, long* dates, Bddexpression* e, int& flag) {
  long v = Var_index(e);
  if (v < 0 || v >= count) {
    std::cerr << "INTERNAL ERROR in learn_downstream_dependance()" << std::endl;
    return false;
  }
  bool changed = false;
  for (long d : e->getDependances()) {
    if (d < 0 || d >= count || dates[d] > dates[v]) continue;
    dates[d] = dates[v] + 1;
    changed = true;
    if (dates[d] >= 2 * count) flag = 1;
  }
  return changed;
}

long PERT_original_version(long count, Bddexpression** expressions) {
  return Pert_by_relaxation(count, [&](long k) { return expressions[k]; });
}

long PERT_original_version(long count, Bddexpression* expressions) {
  return Pert_by_relaxation(count, [&](long k) { return &expressions[k]; });
}

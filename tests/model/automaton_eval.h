// Parsing a module from text and running its equations instant by instant, for the
// automaton and Mealy machine tests.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "bdd/bddpp.h"
#include "util/compilation.h"
#include "equations/Bddexpression.h"
#include "equations/equationtable.h"
#include "front/parse_supl.h"
#include "model/module.h"
#include "common/quarn_test.h"
#include "model/statement.h"
#include "signals/signal_manager.h"

namespace automaton_test {

// A fresh run state, the text through the parser, the named module.
inline Module* parse(const std::string& source, const std::string& name = "m") {
  quarn_test::fresh_run();
  std::istringstream in(source);
  class_qn_parser::parse_stream(in);
  return Compilation::ModTable->get(name);
}

inline Module* compiled(const std::string& source, const std::string& name = "m") {
  Module* m = parse(source, name);
  if (m) m->compile();
  return m;
}

// One equation as the tests see it: its name, its variable's name, its kind.
struct EquationView {
  std::string name, var;
  int type;
  bool operator==(const EquationView& o) const {
    return name == o.name && var == o.var && type == o.type;
  }
};
inline std::ostream& operator<<(std::ostream& out, const EquationView& e) {
  return out << "{" << e.name << ", " << e.var << ", " << e.type << "}";
}

// Equations whose variable is in `vars`, in the order of `vars`.
inline std::vector<EquationView> equationsOf(Module* m, const std::vector<std::string>& vars) {
  Bddexpressionwood* wood = m->getBddWood();
  std::vector<EquationView> out;
  for (const std::string& v : vars) {
    long i = wood->Index_var_by_name(v);
    Bddexpression* e = i >= 0 ? wood->exp_by_index(i) : nullptr;
    if (e) out.push_back({e->getName(), v, e->getUserType()});
  }
  return out;
}

// Evaluation of the equations of a compiled module, one instant at a time: inputs
// two-valued, registers from the previous instant, then the equations in the order of
// their dates (earliest_sort). A value still unknown (2) there is a dating fault.
class Runner {
 public:
  explicit Runner(Module* m) : m(m), wood(m->getBddWood()), M(wood->my_bdd_manager()) {
    for (regclass* r : *m->getRegisterList()) state[r] = r->is_initialy_true() ? 1 : 0;
  }

  void step(const std::set<std::string>& present, bool set = false, bool reset = false) {
    wood->update_bdd_vars();
    lit.assign(wood->Nb_bdd_vars(), 2);
    auto put = [&](Signal* s, int v) {
      lit[s->getOverBddId(m, wood)] = v;
      lit[s->getUnderBddId(m, wood)] = 1 - v;
    };
    for (Signal* s : *m->getInputSignalList()) put(s, present.count(s->getOriginalName()) ? 1 : 0);
    put(m->getSet(), set);
    put(m->getReset(), reset);
    for (auto& [r, v] : state) put(r->actual_var(), v);
    // In dating order: every variable an equation reads is known by then.
    for (long id : wood->earliest_sort()) {
      Bddexpression* e = wood->exp_by_index(id);
      if (!e) continue;
      lit[id] = M->Bdd_eval_for_literal(e->my_bdd_exp(), lit.data());
      EXPECT_NE(lit[id], 2) << e->getName() << " read an undated variable";
    }
    for (auto& [r, v] : state) {
      int next = lit[r->next_var()->getOverBddId(m, wood)];
      EXPECT_NE(next, 2) << "register " << r->next_var()->getInternalName() << " unknown";
      v = next == 1;
    }
  }

  // Over and under of a variable pair as one letter: T true, F false, B bottom, E error.
  std::string value(const std::string& internalName) {
    int over = var("_s_" + internalName), under = var("_v_" + internalName);
    if (over == 2 || under == 2) return "?";
    return std::string(1, "BFTE"[over * 2 + under]);
  }
  int var(const std::string& bddName) {
    long i = wood->Index_var_by_name(bddName);
    return i < 0 ? -1 : lit[i];
  }
  // Over of the module's RTL.
  int rtl() { return lit[m->getRtl()->getOverBddId(m, wood)]; }
  // The state bits, least significant first, as a number.
  long code() {
    long c = 0, bit = 1;
    for (regclass* r : *m->getRegisterList())
      if (r->actual_var()->getInternalName().rfind("reg", 0) == 0) {
        c += state[r] * bit;
        bit *= 2;
      }
    return c;
  }

 private:
  Module* m;
  Bddexpressionwood* wood;
  bddpp_manager* M;
  std::map<regclass*, int> state;
  std::vector<int> lit;
};

}  // namespace automaton_test

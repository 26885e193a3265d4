// The Esterel target: a finalized module as one module whose body re-emits every
// equation's variable in each tick; registers and pre signals go through a module
// my_pre(S, preS) that the user provides.
#include <cstdlib>
#include <iostream>
#include <set>

#include "bdd/bddpp.h"
#include "data/data.h"
#include "util/compilation.h"
#include "equations/Bddexpression.h"
#include "model/module.h"
#include "signals/signal_manager.h"
#include "targets/formats.h"

namespace {

bool has_id(long id) { return id >= 0; }

}  // namespace

void Module::ESTEREL_put_equation(std::ostream& out, const std::string&, std::list<std::string>&, int mode) {
  Bddexpressionwood* wood = getBddWood();
  if (!wood) return;
  bddpp_manager* manager = wood->my_bdd_manager();
  manager->Bdd_global_clear_marks();
  bool first = true;
  auto branch = [&]() {
    if (!first) out << "    ||" << "\n";
    first = false;
  };
  for (const SortedEquation& q : sorted_equations(*this, wood)) {
    Bddexpression* e = q.exp;
    SignalRef* ref = q.ref;
    DataBinding* b = q.binding;
    if (e->getAbstraction()) {
      if (!b) {
        report_unbound_abstraction(q.signal_name);
        exit(1);
      }
      // The signal is present when its data test holds.
      branch();
      out << "    if ";
      b->getValue()->ESTEREL_put(out, this);
      out << " then" << "\n" << "      emit " << e->my_bddname() << "\n" << "    end if" << "\n";
      continue;
    }
    if (!e->my_bdd_var().initialised() || !e->my_bdd_exp().initialised()) continue;
    const std::string condition = manager->Print_sop_to_ESTEREL_String(e->my_bdd_exp(), mode);
    if (b && b->getClock()) {
      branch();
      // The clock is emitted under the name it is declared with: its first wire.
      Signal* clock = b->getClock();
      out << "    present [" << condition << "] then" << "\n" << "      emit "
          << wood->Name_var_by_index(clock->getInitialOverBddId(this, wood)) << "(";
      b->getValue()->ESTEREL_put(out, this);
      out << ")" << "\n" << "    end present" << "\n";
    } else if (!ref || !ref->isValued()) {
      branch();
      out << "    present [" << condition << "] then" << "\n" << "      emit " << e->my_bddname() << "\n"
          << "    end present" << "\n";
    }
  }
  out << "\n";
}

void Module::ESTEREL_put(std::ostream& out, int mode) {
  Bddexpressionwood* wood = getBddWood();
  if (!wood) return;
  auto wire = [&](long id) { return wood->Name_var_by_index(id); };
  const std::string& m = name;

  out << "module " << m << ":" << "\n";
  if (Compilation::GDataConstantTable && Compilation::GDataConstantTable->getConstantList())
    // Every constant, also one without a value: Esterel takes its value from the host.
    for (ConstantDecl* c : *Compilation::GDataConstantTable->getConstantList()) {
      c->ESTEREL_put(out, this);
      out << "\n";
    }
  out << "\n";

  // One interface line: the wires of the signals, a valued one with its type.
  auto interface = [&](const char* keyword, const std::string& fixed, std::list<Signal*>* signals, bool initial) {
    bool any = !fixed.empty();
    if (any) out << keyword << fixed;
    if (signals)
      for (Signal* s : *signals) {
        if (!s->hasOccurrence(wood)) continue;
        long over = initial ? s->getInitialOverBddId(this, wood) : s->getOverBddId(this, wood);
        if (!has_id(over)) continue;
        out << (any ? ", " : keyword) << wire(over);
        any = true;
        if (s->isValued(this)) out << ": " << s->getValueType(this);
        long under = initial ? s->getInitialUnderBddId(this, wood) : s->getUnderBddId(this, wood);
        if (!finalised && has_id(under)) out << ", " << wire(under);
      }
    if (any) out << " ;" << "\n";
  };
  interface("input ", finalised ? "" : "s_SET" + m + ", v_SET" + m + ", s_RESET" + m + ", v_RESET" + m, inputList,
            false);
  interface("output ", finalised ? "" : "s_RTL" + m + ",v_RTL" + m, outputList, true);

  std::set<long> locals = wood->Set_of_index_used_variables();
  if (inputList)
    for (Signal* s : *inputList)
      if (s->hasOccurrence(wood)) locals.erase(s->getOverBddId(this, wood));
  if (outputList)
    for (Signal* s : *outputList) {
      if (!s->hasOccurrence(wood)) continue;
      locals.erase(s->getInitialOverBddId(this, wood));
      if (!finalised) locals.erase(s->getInitialUnderBddId(this, wood));
    }
  if (!locals.empty()) {
    out << "\n" << "signal ";
    bool first = true;
    for (long id : locals) {
      if (!first) out << "," << "\n" << "       ";
      first = false;
      out << wire(id);
      // A signal that a data test defines (abstract equation) is pure: the test gives
      // its presence.
      SignalRef* ref = signalManager->getSignalRefById(id, wood);
      Bddexpression* e = wood->exp_by_index(id);
      if (ref && ref->isValued() && !(e && e->getAbstraction())) out << ": " << ref->getType();
    }
    out << " in" << "\n" << "\n";
  }

  if (registerList)
    for (regclass* r : *registerList) {
      const std::string a = wire(r->actual_var()->getOverBddId(this, wood));
      out << "  [" << "\n";
      if (r->is_initialy_true()) out << "    emit " << a << ";" << "\n";
      out << "    run my_pre [signal " << wire(r->next_var()->getOverBddId(this, wood)) << " / S, " << a
          << " / preS]" << "\n"
          << "  ]" << "\n"
          << "  ||" << "\n";
    }
  // The pre signal is what my_pre emits: the actual signal goes to S.
  if (preList && !preList->empty()) {
    for (memorizedSignal* p : *preList) {
      Signal* a = p->getActual();
      const std::string r = a->isLocal() ? wire(a->getInitialOverBddId(this, wood)) : a->getOriginalName();
      out << "  [" << "\n"
          << "    run my_pre [signal " << r << " / S, " << p->getPre()->getOriginalName() << " / preS]" << "\n"
          << "  ]" << "\n"
          << "  ||" << "\n";
      if (p->getPre()->isValued(this)) out << "% valued signal TO HANDLE!" << "\n";
    }
    out << "\n";
  }
  out << "  loop" << "\n" << "  [" << "\n";
  std::list<std::string> wires;
  ESTEREL_put_equation(out, m + "_node", wires, mode);
  out << "\n" << "  ]" << "\n" << "  each tick" << "\n";
  if (!locals.empty()) out << "end signal " << "\n";
  out << "end module" << "\n" << "\n";
}

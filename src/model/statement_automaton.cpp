// Automata: the states are numbered and the number kept in register bits; the next
// value of each bit is a sum over the transitions, written straight into the wood as
// BDDs rather than through expressions.
#include <iostream>
#include <string>
#include <vector>

#include "bdd/bddpp.h"
#include "util/compilation.h"
#include "equations/Bddexpression.h"
#include "equations/equationtable.h"
#include "util/report.h"
#include "model/module.h"
#include "model/statement.h"
#include "signals/expression.h"
#include "signals/signal_manager.h"

namespace {

// Warnings go to the message panel and the error stream; compilation goes on.
void warn(const std::string& text) {
  report_message(text);
  std::cerr << text << std::endl;
}

bool isZero(bddpp_manager* M, const bdd& f) { return f == M->Bdd_zero(); }

// Exactly true: over and not under.
bdd exactlyTrue(bddpp_manager* M, Signal* s, Module* module, Bddexpressionwood* wood) {
  return M->Bdd_and(s->getOverBdd(module, wood), M->Bdd_not(s->getUnderBdd(module, wood)));
}

// Ors g into the equation of a's over variable; a missing equation starts at 0.
void orIntoAction(Signal* a, const bdd& g, Module* module, Bddexpressionwood* wood) {
  bddpp_manager* M = wood->my_bdd_manager();
  bdd v = a->getOverBdd(module, wood);
  Bddexpression* e = wood->exp_by_bdd(v);
  if (!e)
    e = new Bddexpression(a->getInternalName(), wood, v, M->Bdd_zero(), 0, 0, Compilation::STAT);
  e->setBddExp(M->Bdd_or(e->my_bdd_exp(), g));
}

const std::string kAborted = "\" \n\n   --> compilation process aborted ...";

}  // namespace

bdd Transition::triggerable_bdd(Module* module) {
  Bddexpressionwood* wood = module->getBddWood();
  bddpp_manager* M = wood->my_bdd_manager();
  return M->Bdd_and(trigger->getOverBdd(module, wood), M->Bdd_not(trigger->getUnderBdd(module, wood)));
}

void Automaton::createEquations(Module*, EquationTable*) {
  Compilation::IllegalOperationException("ModuleTable::createEquations(): do not use ...");
}

void Automaton::ident_states_transitions(std::list<Transition*>::iterator it, int b,
                                         long& sourceId, long& targetId) {
  Transition* t = *it;
  if (t->isInitial()) {
    sourceId = 0;
  } else if (!t->getSource()) {
    warn("PROBLEM DETECTED ABOUT FIRST STATE!!!");
    sourceId = 0;
  } else {
    sourceId = t->getSource()->getId();
  }
  if (!t->getTarget()) {
    warn("PROBLEM DETECTED ABOUT FINAL STATE!!!");
    targetId = (1L << b) - 1;
  } else {
    targetId = t->getTarget()->getId();
  }
}

void Automaton::check_determinism(Module* module, bddpp_manager* manager) {
  if (!transitionList) return;
  for (auto it = transitionList->begin(); it != transitionList->end(); ++it) {
    Transition* t = *it;
    bdd B = t->triggerable_bdd(module);
    if (isZero(manager, B)) continue;
    for (auto jt = std::next(it); jt != transitionList->end(); ++jt) {
      Transition* u = *jt;
      if (t->isInitial()) {
        if (!u->isInitial() || u->getPriority() != t->getPriority()) continue;
        if (!isZero(manager, manager->Bdd_and(B, u->triggerable_bdd(module))))
          Compilation::fatal("ERROR: Non determinist automaton: Several possible Init transitions \"" +
                             kAborted);
      } else {
        if (u->isInitial() || u->getSource() != t->getSource() || u->getType() != t->getType() ||
            u->getPriority() != t->getPriority())
          continue;
        if (!isZero(manager, manager->Bdd_and(B, u->triggerable_bdd(module))))
          Compilation::fatal(
              "ERROR: Non determinist automaton: Several possible transitions from state \"" +
              (t->getSource() ? t->getSource()->getName() : std::string()) + kAborted);
      }
    }
  }
}

void Automaton::priority_integration() {
  if (!stateTable || !transitionList) return;
  for (auto& [key, s] : *stateTable) {
    std::list<Transition*> strongs, weaks;
    for (Transition* t : *transitionList) {
      if (t->isInitial() || t->getSource() != s) continue;
      if (t->getType() == 1) strongs.push_back(t);
      if (t->getType() == 2) weaks.push_back(t);
    }
    std::list<Transition*>* A = priority_sort(&strongs);
    std::list<Transition*>* B = priority_sort(&weaks);
    // Every weak transition with a priority yields to all strong ones; priority 0 is
    // never guarded.
    Expression* acc = new FalseExpression();
    for (std::list<Transition*>* l : {A, B})
      for (Transition* t : *l) {
        if (t->getPriority() != 0) {
          t->setTrigger(new AndExpression(t->getTrigger(), new NpExpression(acc)));
          t->setPriority(0);
        }
        acc = new OrExpression(acc, t->getTrigger());
      }
    delete A;
    delete B;
  }
}

namespace {

// The circuit of one automaton: state codes in b registers, the next-state function as
// an on-set and an off-set per register bit, actions ored into their signals.
struct AutomatonCircuit {
  Automaton* a;
  Module* module;
  EquationTable* table;
  Bddexpressionwood* wood;
  bddpp_manager* M;
  std::map<std::string, State*>& stateTable;
  std::list<Transition*>& transitionList;
  bdd zero, SET1, NOTSET, ONLYRESET;
  long n = 0;                  // states of the table; code 0 is before the start, n + 1 falls
  int b = 0;                   // register bits
  std::vector<State*> states;  // by code
  std::vector<Signal*> nextSignals;
  std::vector<bdd> reg, next, on, off, strong, weak;
  bdd leaving;

  AutomatonCircuit(Automaton* automaton, Module* m, EquationTable* t)
      : a(automaton), module(m), table(t), wood(t->getBddexpressionWood()), M(wood->my_bdd_manager()),
        stateTable(*automaton->getStateTable()), transitionList(*automaton->getTransitionList()) {
    zero = M->Bdd_zero();
    SET1 = exactlyTrue(M, module->getSet(), module, wood);
    bdd RESET1 = exactlyTrue(M, module->getReset(), module, wood);
    NOTSET = M->Bdd_not(SET1);
    ONLYRESET = M->Bdd_and(RESET1, NOTSET);
    leaving = zero;
  }

  bdd minterm(long code, const std::vector<bdd>& vars) { return M->Minterm(code, b, vars.data()); }

  void setBit(long code, const bdd& G) {
    for (int k = 0; k < b; k++) {
      if ((code >> k) & 1)
        on[k] = M->Bdd_or(on[k], G);
      else
        off[k] = M->Bdd_or(off[k], G);
    }
  }

  void encodeStates() {
    n = long(stateTable.size());
    states.assign(n + 2, nullptr);
    states[0] = new State("pre-existing");
    long id = 1;
    for (auto& [key, s] : stateTable) {
      s->setId(int(id));
      states[id++] = s;
    }
    states[n + 1] = new State("falling");
    for (long p = 1; n + 1 >= p; p *= 2) b++;

    std::vector<Signal*> regSignals(b);
    nextSignals.assign(b, nullptr);
    reg.assign(b, zero);
    next.assign(b, zero);
    for (int i = 0; i < b; i++) {
      const std::string bit = std::to_string(i);
      regSignals[i] = new Signal("reg" + bit + module->getName(), module, wood, true);
      nextSignals[i] = new Signal("reg" + bit + "next" + module->getName(), module, wood, true);
      module->addWireSignal(regSignals[i]);
      module->addWireSignal(nextSignals[i]);
      module->addRegisterSignal(regSignals[i], nextSignals[i], 0);
    }
    for (int i = 0; i < b; i++) {
      reg[i] = regSignals[i]->getOverBdd(module, wood);
      next[i] = nextSignals[i]->getOverBdd(module, wood);
    }
    on.assign(b, zero);
    off.assign(b, zero);
    strong.assign(n + 2, zero);
    weak.assign(n + 2, zero);
  }

  // A Run in a state: preempted by the strong triggers, killed on leaving, started on
  // arrival.
  void runsInStates() {
    for (auto& [key, s] : stateTable) {
      Run* run = s->getRunModule();
      if (!run) continue;
      std::cerr << "Run detecte:" << run->getStatementName() << std::endl;
      bdd ST = zero, WK = zero;
      for (Transition* t : transitionList) {
        if (t->isInitial() || t->getSource() != s) continue;
        int type = t->getType();
        if (type != 1 && type != 2) continue;
        bdd trig = t->triggerable_bdd(module);
        bdd& acc = type == 1 ? ST : WK;
        bdd overlap = M->Bdd_and(acc, trig);
        if (!isZero(M, overlap))
          Compilation::fatal("Error: Multiple behaviors about state:\"" + s->getName() + "\" when " +
                             M->Print_sop_to_ESTEREL_String(overlap));
        acc = M->Bdd_or(acc, trig);
      }
      // The copy keeps the caller's equations of the variables that the instance
      // replaces: unify ors both, so the automaton's own actions on a signal stay beside
      // the masked outputs of the instance.
      EquationTable* t2 = table->duplicate(module);
      run->compile_with_preemption(module, table, ST);
      table->unify(t2, module);
      bdd RST = zero;
      for (Transition* t : transitionList) {
        if (t->isInitial() || t->getSource() != s || (t->getType() != 1 && t->getType() != 2)) continue;
        RST = M->Bdd_or(RST, M->Bdd_and(minterm(s->getId(), reg), t->triggerable_bdd(module)));
      }
      Signal* R = run->getReset();
      Signal* S = run->getSet();
      new Bddexpression(R->getName(module, wood), wood, R->getOverBdd(module, wood), RST, 0, 0,
                        Compilation::SWIRE);
      new Bddexpression(R->getName(module, wood), wood, R->getUnderBdd(module, wood), M->Bdd_not(RST), 0, 0,
                        Compilation::VWIRE);
      new Bddexpression(S->getName(module, wood), wood, S->getOverBdd(module, wood), zero, 0, 0,
                        Compilation::SWIRE);
      new Bddexpression(S->getName(module, wood), wood, S->getUnderBdd(module, wood), M->Bdd_one(), 0, 0,
                        Compilation::VWIRE);
    }
  }

  void preemptionTriggers() {
    for (auto it = transitionList.begin(); it != transitionList.end(); ++it) {
      long i, j;
      a->ident_states_transitions(it, b, i, j);
      Transition* t = *it;
      if (t->getType() == 1) strong[i] = M->Bdd_or(strong[i], t->triggerable_bdd(module));
      if (t->getType() == 2) weak[i] = M->Bdd_or(weak[i], t->triggerable_bdd(module));
    }
  }

  // G fires the next state, H the actions; they differ only by NOTSET: a start in the
  // same instant restarts the automaton but lets the actions of the instant happen.
  void transitions() {
    for (auto it = transitionList.begin(); it != transitionList.end(); ++it) {
      long i, j;
      a->ident_states_transitions(it, b, i, j);
      Transition* t = *it;
      bdd G = minterm(i, reg);
      bdd H = G;
      int type = t->getType();
      if ((type == 1 || type == 2) && t->isInitial()) {
        G = M->Bdd_and(SET1, t->triggerable_bdd(module));
        H = G;
      } else if (type == 1 || type == 2) {
        G = M->Bdd_and(G, t->triggerable_bdd(module));
        if (type == 2) G = M->Bdd_and(G, M->Bdd_not(strong[i]));
        H = G;
        G = M->Bdd_and(G, NOTSET);
      } else if (type == 3) {
        Run* r = i < n + 2 ? states[i]->getRunModule() : nullptr;
        if (r) {
          G = M->Bdd_and(G, exactlyTrue(M, r->getRtl(), module, wood));
          G = M->Bdd_and(G, M->Bdd_not(strong[i]));
          G = M->Bdd_and(G, M->Bdd_not(weak[i]));
          H = G;
          G = M->Bdd_and(G, NOTSET);
        } else {
          G = zero;
          H = zero;
          warn("Warning: No found Run module about state " + states[i]->getName() +
               ": Normal Terminaison has no effect ...");
        }
      } else {
        G = zero;
        H = zero;
        warn("Warning: Skipping TRANSITION " + std::to_string(i) + " " + std::to_string(j) +
             ": unknown type ...");
      }
      leaving = M->Bdd_or(leaving, G);
      setBit(j, G);
      if (t->getAction())
        for (Signal* act : *t->getAction()) orIntoAction(act, H, module, wood);
      // A weak transition lets the Moore actions of its source hold in the instant it leaves.
      if (type == 2 && !t->isInitial() && i < n + 2)
        for (Signal* act : states[i]->getMooreActions()) orIntoAction(act, G, module, wood);
      if (j < n + 2 && states[j]->getRunModule()) {
        Signal* S = states[j]->getRunModule()->getSet();
        Bddexpression* over = wood->exp_by_bdd(S->getOverBdd(module, wood));
        Bddexpression* under = wood->exp_by_bdd(S->getUnderBdd(module, wood));
        over->setBddExp(M->Bdd_or(over->my_bdd_exp(), G));
        under->setBddExp(M->Bdd_and(under->my_bdd_exp(), M->Bdd_not(G)));
      }
    }
  }

  void stayResetAndFall() {
    // Staying: no transition of the state fires and no start restarts the automaton.
    for (auto& [key, s] : stateTable) {
      long code = s->getId();
      bdd m = minterm(code, reg);
      setBit(code, M->Bdd_and(M->Bdd_and(M->Bdd_not(M->Bdd_reduce(leaving, m)), m), NOTSET));
    }
    // A reset without a start sends the automaton to code 0.
    for (int k = 0; k < b; k++) {
      off[k] = M->Bdd_or(off[k], ONLYRESET);
      on[k] = M->Bdd_and(on[k], M->Bdd_not(ONLYRESET));
    }
    // A final state leaves at once for the code of all ones, where nothing holds.
    for (auto& [key, s] : stateTable) {
      if (!s->isFinal()) continue;
      bdd G = M->Bdd_and(minterm(s->getId(), reg), NOTSET);
      for (int k = 0; k < b; k++) {
        on[k] = M->Bdd_or(on[k], G);
        off[k] = M->Bdd_and(off[k], M->Bdd_not(G));
      }
    }
  }

  void nextStateEquations() {
    for (int k = 0; k < b; k++) {
      bdd F = M->Bdd_simplify2(on[k], off[k]);
      const std::string& name = nextSignals[k]->getInternalName();
      Signal* s = module->getLocalSignal(name);
      if (!s) s = nextSignals[k];
      new Bddexpression(name, wood, s->getOverBdd(module, wood), F, 0, 0, Compilation::SREG);
      new Bddexpression(name, wood, s->getUnderBdd(module, wood), M->Bdd_not(F), 0, 0, Compilation::VREG);
    }
  }

  // A Moore action holds in every instant whose next state is its state.
  void mooreActions() {
    for (auto& [key, s] : stateTable) {
      if (s->getMooreActions().empty()) continue;
      bdd G = minterm(s->getId(), next);
      for (Signal* act : s->getMooreActions()) orIntoAction(act, G, module, wood);
    }
  }

  // T holds in the instant of arrival in a final state, computed from the source.
  void termination() {
    bdd RTLB = zero;
    for (auto it = transitionList.begin(); it != transitionList.end(); ++it) {
      Transition* t = *it;
      if (!t->getTarget() || !t->getTarget()->isFinal()) continue;
      long i, j;
      a->ident_states_transitions(it, b, i, j);
      RTLB = M->Bdd_or(RTLB, M->Bdd_and(minterm(i, reg), t->triggerable_bdd(module)));
    }
    Signal* T = a->getRtl();
    new Bddexpression(T->getName(module, wood), wood, T->getOverBdd(module, wood), RTLB, 0, 0,
                      Compilation::STAT);
    new Bddexpression(T->getName(module, wood), wood, T->getUnderBdd(module, wood), M->Bdd_not(RTLB), 0, 0,
                      Compilation::VAL);
  }
};

}  // namespace

void Automaton::compile(Module* module, EquationTable* table) {
  createWires(module, table);
  check_determinism(module, table->getBddexpressionWood()->my_bdd_manager());
  priority_integration();
  AutomatonCircuit c(this, module, table);
  c.encodeStates();
  c.runsInStates();
  c.preemptionTriggers();
  c.transitions();
  c.stayResetAndFall();
  c.nextStateEquations();
  c.mooreActions();
  c.termination();
}

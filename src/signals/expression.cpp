#include "signals/expression.h"

#include <iostream>
#include <unordered_map>
#include <utility>

#include "bdd/bddpp.h"
#include "util/compilation.h"
#include "signals/owner.h"
#include "signals/signal_manager.h"

static bddpp_manager* mgr(Bddexpressionwood* w) { return owner::manager(w); }

// ---- Expression --------------------------------------------------------------------

Expression::Expression(bool reg) : reg_(reg) { (void)reg_; }

bdd Expression::getOverBdd(Module*, Bddexpressionwood*) {
  Compilation::AbstractMethodCallException("Expression::getOverBdd()");
}
bdd Expression::getUnderBdd(Module*, Bddexpressionwood*) {
  Compilation::AbstractMethodCallException("Expression::getUnderBdd()");
}
bdd Expression::getInitialOverBdd(Module*, Bddexpressionwood*) {
  Compilation::AbstractMethodCallException("Expression::getInitialOverBdd()");
}
bdd Expression::getInitialUnderBdd(Module*, Bddexpressionwood*) {
  Compilation::AbstractMethodCallException("Expression::getInitialUnderBdd()");
}

bool Expression::isBottomExpr() { return false; }
bool Expression::isErrorExpr() { return false; }
bool Expression::isTrueExpr() { return false; }
bool Expression::isFalseExpr() { return false; }
bool Expression::isSignalExpr() { return false; }

// Join in the order of knowledge on constants: bottom below true and false, error on top.
Expression* Expression::plus(Expression* e, Module*) {
  if (isBottomExpr()) return e;
  if (isErrorExpr()) return this;
  bool ebot = e->isBottomExpr(), efalse = e->isFalseExpr(), eerr = e->isErrorExpr(),
       etrue = e->isTrueExpr();
  if (isTrueExpr()) {
    if (efalse) return new ErrorExpression();
    return eerr ? e : this;
  }
  if (isFalseExpr()) {
    if (etrue) return new ErrorExpression();
    return ebot ? this : e;
  }
  if (ebot) return this;
  if (efalse) return this;
  if (eerr) return e;
  if (etrue) return e;
  return new OrExpression(this, e);
}

// Meet in the order of knowledge on constants.
Expression* Expression::mult(Expression* e, Module*) {
  if (isBottomExpr()) return this;
  if (isErrorExpr()) return e;
  bool ebot = e->isBottomExpr(), efalse = e->isFalseExpr(), eerr = e->isErrorExpr(),
       etrue = e->isTrueExpr();
  if (isTrueExpr()) {
    if (efalse) return new BottomExpression();
    return eerr ? this : e;
  }
  if (isFalseExpr()) {
    if (etrue) return new BottomExpression();
    return ebot ? e : this;
  }
  if (ebot) return e;
  if (efalse) return e;
  if (eerr) return this;
  if (etrue) return this;
  return new AndExpression(this, e);
}

Expression* Expression::duplicate() {
  std::cerr << "abnormal use of expression::duplicate() ..." << std::endl;
  return nullptr;
}

Expression* Expression::buildCurrentExpression(EquationTable*, Module*) { return this; }

std::ostream& Expression::print(std::ostream& out) { return out; }

std::ostream& Expression::printOverBdd(std::ostream& out, Module* m, Bddexpressionwood* w) {
  mgr(w)->Print_sop(out, "+", "*", "!", "", getOverBdd(m, w));
  return out;
}

std::ostream& Expression::printUnderBdd(std::ostream& out, Module* m, Bddexpressionwood* w) {
  mgr(w)->Print_sop(out, "+", "*", "!", "", getUnderBdd(m, w));
  return out;
}

// ---- Constants ---------------------------------------------------------------------

TrueExpression::TrueExpression() : Expression(false) {}
TrueExpression::TrueExpression(Module*) : Expression(false) {}
bdd TrueExpression::getOverBdd(Module*, Bddexpressionwood* w) { return mgr(w)->Bdd_one(); }
bdd TrueExpression::getUnderBdd(Module*, Bddexpressionwood* w) { return mgr(w)->Bdd_zero(); }
bdd TrueExpression::getInitialOverBdd(Module* m, Bddexpressionwood* w) { return getOverBdd(m, w); }
bdd TrueExpression::getInitialUnderBdd(Module* m, Bddexpressionwood* w) {
  return getUnderBdd(m, w);
}
Expression* TrueExpression::duplicate() { return new TrueExpression(); }
std::ostream& TrueExpression::print(std::ostream& out) { return out << " 1 "; }

FalseExpression::FalseExpression() : Expression(false) {}
FalseExpression::FalseExpression(Module*) : Expression(false) {}
bdd FalseExpression::getOverBdd(Module*, Bddexpressionwood* w) { return mgr(w)->Bdd_zero(); }
bdd FalseExpression::getUnderBdd(Module*, Bddexpressionwood* w) { return mgr(w)->Bdd_one(); }
bdd FalseExpression::getInitialOverBdd(Module* m, Bddexpressionwood* w) {
  return getOverBdd(m, w);
}
bdd FalseExpression::getInitialUnderBdd(Module* m, Bddexpressionwood* w) {
  return getUnderBdd(m, w);
}
Expression* FalseExpression::duplicate() { return new FalseExpression(); }
std::ostream& FalseExpression::print(std::ostream& out) { return out << " 0 "; }

BottomExpression::BottomExpression() : Expression(false) {}
bdd BottomExpression::getOverBdd(Module*, Bddexpressionwood* w) { return mgr(w)->Bdd_zero(); }
bdd BottomExpression::getUnderBdd(Module*, Bddexpressionwood* w) { return mgr(w)->Bdd_zero(); }
bdd BottomExpression::getInitialOverBdd(Module* m, Bddexpressionwood* w) {
  return getOverBdd(m, w);
}
bdd BottomExpression::getInitialUnderBdd(Module* m, Bddexpressionwood* w) {
  return getUnderBdd(m, w);
}
Expression* BottomExpression::duplicate() { return new BottomExpression(); }
std::ostream& BottomExpression::print(std::ostream& out) { return out << " bottom "; }

ErrorExpression::ErrorExpression() : Expression(false) {}
bdd ErrorExpression::getOverBdd(Module*, Bddexpressionwood* w) { return mgr(w)->Bdd_one(); }
bdd ErrorExpression::getUnderBdd(Module*, Bddexpressionwood* w) { return mgr(w)->Bdd_one(); }
bdd ErrorExpression::getInitialOverBdd(Module* m, Bddexpressionwood* w) {
  return getOverBdd(m, w);
}
bdd ErrorExpression::getInitialUnderBdd(Module* m, Bddexpressionwood* w) {
  return getUnderBdd(m, w);
}
Expression* ErrorExpression::duplicate() { return new ErrorExpression(); }
std::ostream& ErrorExpression::print(std::ostream& out) { return out << " error "; }

// not o, or o and u: bottom and false give true, error stays error.
static bdd np_over(bddpp_manager* g, const bdd& o, const bdd& u) {
  return g->Bdd_or(g->Bdd_not(o), g->Bdd_and(o, u));
}

using OverUnder = std::pair<bdd, bdd>;
using OverUnderMemo = std::unordered_map<Expression*, OverUnder>;

// Over and under of e together, each node of the tree once. Np needs both functions
// of its operand, and "xor" shares its operands between two branches: asking for the
// functions one at a time would walk such trees an exponential number of times.
static OverUnder over_under(Expression* e, Module* m, Bddexpressionwood* w, bool initial,
                            OverUnderMemo& memo) {
  if (auto found = memo.find(e); found != memo.end()) return found->second;
  bddpp_manager* g = mgr(w);
  OverUnder r;
  auto* b = dynamic_cast<BinaryExpression*>(e);
  if (auto* np = dynamic_cast<NpExpression*>(e)) {
    auto [o, u] = over_under(np->getOperand(), m, w, initial, memo);
    r = {np_over(g, o, u), o};
  } else if (auto* n = dynamic_cast<NotExpression*>(e)) {
    auto [o, u] = over_under(n->getOperand(), m, w, initial, memo);
    r = {u, o};
  } else if (b != nullptr && dynamic_cast<OrExpression*>(e) != nullptr) {
    auto [lo, lu] = over_under(b->getLeft(), m, w, initial, memo);
    auto [ro, ru] = over_under(b->getRight(), m, w, initial, memo);
    r = {g->Bdd_or(lo, ro), g->Bdd_and(lu, ru)};
  } else if (b != nullptr && dynamic_cast<AndExpression*>(e) != nullptr) {
    auto [lo, lu] = over_under(b->getLeft(), m, w, initial, memo);
    auto [ro, ru] = over_under(b->getRight(), m, w, initial, memo);
    r = {g->Bdd_and(lo, ro), g->Bdd_or(lu, ru)};
  } else if (initial) {
    r = {e->getInitialOverBdd(m, w), e->getInitialUnderBdd(m, w)};
  } else {
    r = {e->getOverBdd(m, w), e->getUnderBdd(m, w)};
  }
  memo.emplace(e, r);
  return r;
}

static OverUnder over_under(Expression* e, Module* m, Bddexpressionwood* w, bool initial) {
  OverUnderMemo memo;
  return over_under(e, m, w, initial, memo);
}

// ---- Or, And -----------------------------------------------------------------------

OrExpression::OrExpression(Expression* l, Expression* r) : BinaryExpression(l, r) {}
OrExpression::OrExpression(Expression* l, Expression* r, Module*) : BinaryExpression(l, r) {}

bdd OrExpression::getOverBdd(Module* m, Bddexpressionwood* w) {
  return over_under(this, m, w, false).first;
}
bdd OrExpression::getUnderBdd(Module* m, Bddexpressionwood* w) {
  return over_under(this, m, w, false).second;
}
bdd OrExpression::getInitialOverBdd(Module* m, Bddexpressionwood* w) {
  return over_under(this, m, w, true).first;
}
bdd OrExpression::getInitialUnderBdd(Module* m, Bddexpressionwood* w) {
  return over_under(this, m, w, true).second;
}
Expression* OrExpression::duplicate() {
  return new OrExpression(left->duplicate(), right->duplicate());
}
Expression* OrExpression::buildCurrentExpression(EquationTable* t, Module* m) {
  Expression* l = left->buildCurrentExpression(t, m);
  Expression* r = right->buildCurrentExpression(t, m);
  return new OrExpression(l, r);
}
std::ostream& OrExpression::print(std::ostream& out) {
  out << "(";
  left->print(out);
  out << " + ";
  right->print(out);
  return out << ")";
}

AndExpression::AndExpression(Expression* l, Expression* r) : BinaryExpression(l, r) {}
AndExpression::AndExpression(Expression* l, Expression* r, Module*) : BinaryExpression(l, r) {}

bdd AndExpression::getOverBdd(Module* m, Bddexpressionwood* w) {
  return over_under(this, m, w, false).first;
}
bdd AndExpression::getUnderBdd(Module* m, Bddexpressionwood* w) {
  return over_under(this, m, w, false).second;
}
bdd AndExpression::getInitialOverBdd(Module* m, Bddexpressionwood* w) {
  return over_under(this, m, w, true).first;
}
bdd AndExpression::getInitialUnderBdd(Module* m, Bddexpressionwood* w) {
  return over_under(this, m, w, true).second;
}
Expression* AndExpression::duplicate() {
  return new AndExpression(left->duplicate(), right->duplicate());
}
Expression* AndExpression::buildCurrentExpression(EquationTable* t, Module* m) {
  Expression* l = left->buildCurrentExpression(t, m);
  Expression* r = right->buildCurrentExpression(t, m);
  return new AndExpression(l, r);
}
std::ostream& AndExpression::print(std::ostream& out) {
  out << "(";
  left->print(out);
  out << " * ";
  right->print(out);
  return out << ")";
}

// ---- Not, Np -----------------------------------------------------------------------

NotExpression::NotExpression(Expression* e) : Expression(false), operand(e) {}
NotExpression::NotExpression(Expression* e, Module*) : Expression(false), operand(e) {}

bdd NotExpression::getOverBdd(Module* m, Bddexpressionwood* w) {
  return operand->getUnderBdd(m, w);
}
bdd NotExpression::getUnderBdd(Module* m, Bddexpressionwood* w) {
  return operand->getOverBdd(m, w);
}
bdd NotExpression::getInitialOverBdd(Module* m, Bddexpressionwood* w) {
  return operand->getInitialUnderBdd(m, w);
}
bdd NotExpression::getInitialUnderBdd(Module* m, Bddexpressionwood* w) {
  return operand->getInitialOverBdd(m, w);
}
Expression* NotExpression::duplicate() { return new NotExpression(operand->duplicate()); }
Expression* NotExpression::buildCurrentExpression(EquationTable* t, Module* m) {
  return new NotExpression(operand->buildCurrentExpression(t, m));
}
std::ostream& NotExpression::print(std::ostream& out) {
  out << "~";
  return operand->print(out);
}

NpExpression::NpExpression(Expression* e) : Expression(false), operand(e) {}
NpExpression::NpExpression(Expression* e, Module*) : Expression(false), operand(e) {}

bdd NpExpression::getOverBdd(Module* m, Bddexpressionwood* w) {
  auto [o, u] = over_under(operand, m, w, false);
  return np_over(mgr(w), o, u);
}
bdd NpExpression::getUnderBdd(Module* m, Bddexpressionwood* w) {
  return operand->getOverBdd(m, w);
}
bdd NpExpression::getInitialOverBdd(Module* m, Bddexpressionwood* w) {
  auto [o, u] = over_under(operand, m, w, true);
  return np_over(mgr(w), o, u);
}
bdd NpExpression::getInitialUnderBdd(Module* m, Bddexpressionwood* w) {
  return operand->getInitialOverBdd(m, w);
}
Expression* NpExpression::duplicate() { return new NpExpression(operand->duplicate()); }
Expression* NpExpression::buildCurrentExpression(EquationTable* t, Module* m) {
  return new NpExpression(operand->buildCurrentExpression(t, m));
}
std::ostream& NpExpression::print(std::ostream& out) {
  out << "np ";
  return operand->print(out);
}

// ---- Gates -------------------------------------------------------------------------

// A gate lets its body through where the test on the condition holds:
// o = test · o(x), u = test · u(x).
static bdd gated(bddpp_manager* g, const bdd& test, const bdd& x) { return g->Bdd_and(test, x); }

// test: o(k)
ThenExpression::ThenExpression(Expression* c, Expression* b) : Expression(false), condition(c), body(b) {}
ThenExpression::ThenExpression(Expression* c, Expression* b, Module*)
    : Expression(false), condition(c), body(b) {}
bdd ThenExpression::getOverBdd(Module* m, Bddexpressionwood* w) {
  bddpp_manager* g = mgr(w);
  return gated(g, condition->getOverBdd(m, w), body->getOverBdd(m, w));
}
bdd ThenExpression::getUnderBdd(Module* m, Bddexpressionwood* w) {
  bddpp_manager* g = mgr(w);
  return gated(g, condition->getOverBdd(m, w), body->getUnderBdd(m, w));
}
bdd ThenExpression::getInitialOverBdd(Module* m, Bddexpressionwood* w) {
  bddpp_manager* g = mgr(w);
  return gated(g, condition->getInitialOverBdd(m, w), body->getInitialOverBdd(m, w));
}
bdd ThenExpression::getInitialUnderBdd(Module* m, Bddexpressionwood* w) {
  bddpp_manager* g = mgr(w);
  return gated(g, condition->getInitialOverBdd(m, w), body->getInitialUnderBdd(m, w));
}
Expression* ThenExpression::duplicate() { return new ThenExpression(condition->duplicate(), body->duplicate()); }
std::ostream& ThenExpression::print(std::ostream& out) {
  out << "(SET_then(";
  condition->print(out);
  out << ", ";
  body->print(out);
  return out << "))";
}

// test: not o(k)
ElseExpression::ElseExpression(Expression* c, Expression* b) : Expression(false), condition(c), body(b) {}
ElseExpression::ElseExpression(Expression* c, Expression* b, Module*)
    : Expression(false), condition(c), body(b) {}
bdd ElseExpression::getOverBdd(Module* m, Bddexpressionwood* w) {
  bddpp_manager* g = mgr(w);
  return gated(g, g->Bdd_not(condition->getOverBdd(m, w)), body->getOverBdd(m, w));
}
bdd ElseExpression::getUnderBdd(Module* m, Bddexpressionwood* w) {
  bddpp_manager* g = mgr(w);
  return gated(g, g->Bdd_not(condition->getOverBdd(m, w)), body->getUnderBdd(m, w));
}
bdd ElseExpression::getInitialOverBdd(Module* m, Bddexpressionwood* w) {
  bddpp_manager* g = mgr(w);
  return gated(g, g->Bdd_not(condition->getInitialOverBdd(m, w)), body->getInitialOverBdd(m, w));
}
bdd ElseExpression::getInitialUnderBdd(Module* m, Bddexpressionwood* w) {
  bddpp_manager* g = mgr(w);
  return gated(g, g->Bdd_not(condition->getInitialOverBdd(m, w)), body->getInitialUnderBdd(m, w));
}
Expression* ElseExpression::duplicate() { return new ElseExpression(condition->duplicate(), body->duplicate()); }
std::ostream& ElseExpression::print(std::ostream& out) {
  out << "(SET_else(";
  condition->print(out);
  out << ", ";
  body->print(out);
  return out << "))";
}

// test: u(k)
DThenExpression::DThenExpression(Expression* c, Expression* b) : Expression(false), condition(c), body(b) {}
DThenExpression::DThenExpression(Expression* c, Expression* b, Module*)
    : Expression(false), condition(c), body(b) {}
bdd DThenExpression::getOverBdd(Module* m, Bddexpressionwood* w) {
  bddpp_manager* g = mgr(w);
  return gated(g, condition->getUnderBdd(m, w), body->getOverBdd(m, w));
}
bdd DThenExpression::getUnderBdd(Module* m, Bddexpressionwood* w) {
  bddpp_manager* g = mgr(w);
  return gated(g, condition->getUnderBdd(m, w), body->getUnderBdd(m, w));
}
bdd DThenExpression::getInitialOverBdd(Module* m, Bddexpressionwood* w) {
  bddpp_manager* g = mgr(w);
  return gated(g, condition->getInitialUnderBdd(m, w), body->getInitialOverBdd(m, w));
}
bdd DThenExpression::getInitialUnderBdd(Module* m, Bddexpressionwood* w) {
  bddpp_manager* g = mgr(w);
  return gated(g, condition->getInitialUnderBdd(m, w), body->getInitialUnderBdd(m, w));
}
Expression* DThenExpression::duplicate() { return new DThenExpression(condition->duplicate(), body->duplicate()); }
std::ostream& DThenExpression::print(std::ostream& out) {
  out << "(SET_dthen(";
  condition->print(out);
  out << ", ";
  body->print(out);
  return out << "))";
}

// test: not u(k)
DElseExpression::DElseExpression(Expression* c, Expression* b) : Expression(false), condition(c), body(b) {}
DElseExpression::DElseExpression(Expression* c, Expression* b, Module*)
    : Expression(false), condition(c), body(b) {}
bdd DElseExpression::getOverBdd(Module* m, Bddexpressionwood* w) {
  bddpp_manager* g = mgr(w);
  return gated(g, g->Bdd_not(condition->getUnderBdd(m, w)), body->getOverBdd(m, w));
}
bdd DElseExpression::getUnderBdd(Module* m, Bddexpressionwood* w) {
  bddpp_manager* g = mgr(w);
  return gated(g, g->Bdd_not(condition->getUnderBdd(m, w)), body->getUnderBdd(m, w));
}
bdd DElseExpression::getInitialOverBdd(Module* m, Bddexpressionwood* w) {
  bddpp_manager* g = mgr(w);
  return gated(g, g->Bdd_not(condition->getInitialUnderBdd(m, w)), body->getInitialOverBdd(m, w));
}
bdd DElseExpression::getInitialUnderBdd(Module* m, Bddexpressionwood* w) {
  bddpp_manager* g = mgr(w);
  return gated(g, g->Bdd_not(condition->getInitialUnderBdd(m, w)), body->getInitialUnderBdd(m, w));
}
Expression* DElseExpression::duplicate() { return new DElseExpression(condition->duplicate(), body->duplicate()); }
std::ostream& DElseExpression::print(std::ostream& out) {
  out << "(SET_delse(";
  condition->print(out);
  out << ", ";
  body->print(out);
  return out << "))";
}

// ---- Cond --------------------------------------------------------------------------

CondExpression::CondExpression(Expression* v, Signal* g) : Expression(false), value(v), gate(g) {}

bdd CondExpression::getOverBdd(Module* m, Bddexpressionwood* w) {
  return mgr(w)->Bdd_and(value->getOverBdd(m, w), gate->getOverBdd(m, w));
}
bdd CondExpression::getUnderBdd(Module* m, Bddexpressionwood* w) {
  return mgr(w)->Bdd_and(value->getUnderBdd(m, w), gate->getOverBdd(m, w));
}
bdd CondExpression::getInitialOverBdd(Module* m, Bddexpressionwood* w) { return getOverBdd(m, w); }
bdd CondExpression::getInitialUnderBdd(Module* m, Bddexpressionwood* w) {
  return getUnderBdd(m, w);
}
Expression* CondExpression::duplicate() {
  return new CondExpression(value->duplicate(), static_cast<Signal*>(gate->duplicate()));
}
std::ostream& CondExpression::print(std::ostream& out) {
  out << "(Cond(";
  value->print(out);
  out << ", ";
  gate->print(out);
  return out << "))";
}

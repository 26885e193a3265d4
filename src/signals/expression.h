// Symbolic four-valued terms. A value is a pair (over, under) of Boolean functions
// of one wood: bottom (0,0), true (1,0), false (0,1), error (1,1).
// A tree lives only while an EquationTable turns it into BDDs; leaves are shared
// between trees and nothing is freed during a run.
#pragma once

#include <iosfwd>

class bdd;
class Bddexpressionwood;
class EquationTable;
class Module;
class Signal;

class Expression {
 public:
  explicit Expression(bool reg);
  virtual ~Expression() = default;

  virtual bdd getOverBdd(Module* m, Bddexpressionwood* w);
  virtual bdd getUnderBdd(Module* m, Bddexpressionwood* w);
  // The same, read at occurrence 0 of the signals.
  virtual bdd getInitialOverBdd(Module* m, Bddexpressionwood* w);
  virtual bdd getInitialUnderBdd(Module* m, Bddexpressionwood* w);

  virtual bool isBottomExpr();
  virtual bool isErrorExpr();
  virtual bool isTrueExpr();
  virtual bool isFalseExpr();
  virtual bool isSignalExpr();

  // Folding constructors: join (plus) and meet (mult) of the order of knowledge on
  // constants, an Or/And node otherwise. The receiver is returned by identity.
  virtual Expression* plus(Expression* e, Module* m);
  virtual Expression* mult(Expression* e, Module* m);

  virtual Expression* duplicate();
  // The tree as seen at the statement being compiled: Or, And, Not and Np nodes are
  // rebuilt over the same leaves.
  virtual Expression* buildCurrentExpression(EquationTable* table, Module* m);

  virtual std::ostream& print(std::ostream& out);
  // Sum of products of the over / under function: "+", "*", "!".
  virtual std::ostream& printOverBdd(std::ostream& out, Module* m, Bddexpressionwood* w);
  virtual std::ostream& printUnderBdd(std::ostream& out, Module* m, Bddexpressionwood* w);

 private:
  bool reg_;  // stored, read by nobody
};

class TrueExpression : public Expression {
 public:
  TrueExpression();
  explicit TrueExpression(Module*);
  bdd getOverBdd(Module* m, Bddexpressionwood* w) override;
  bdd getUnderBdd(Module* m, Bddexpressionwood* w) override;
  bdd getInitialOverBdd(Module* m, Bddexpressionwood* w) override;
  bdd getInitialUnderBdd(Module* m, Bddexpressionwood* w) override;
  bool isTrueExpr() override { return true; }
  Expression* duplicate() override;
  std::ostream& print(std::ostream& out) override;
};

class FalseExpression : public Expression {
 public:
  FalseExpression();
  explicit FalseExpression(Module*);
  bdd getOverBdd(Module* m, Bddexpressionwood* w) override;
  bdd getUnderBdd(Module* m, Bddexpressionwood* w) override;
  bdd getInitialOverBdd(Module* m, Bddexpressionwood* w) override;
  bdd getInitialUnderBdd(Module* m, Bddexpressionwood* w) override;
  bool isFalseExpr() override { return true; }
  Expression* duplicate() override;
  std::ostream& print(std::ostream& out) override;
};

class BottomExpression : public Expression {
 public:
  BottomExpression();
  bdd getOverBdd(Module* m, Bddexpressionwood* w) override;
  bdd getUnderBdd(Module* m, Bddexpressionwood* w) override;
  bdd getInitialOverBdd(Module* m, Bddexpressionwood* w) override;
  bdd getInitialUnderBdd(Module* m, Bddexpressionwood* w) override;
  bool isBottomExpr() override { return true; }
  Expression* duplicate() override;
  std::ostream& print(std::ostream& out) override;
};

class ErrorExpression : public Expression {
 public:
  ErrorExpression();
  bdd getOverBdd(Module* m, Bddexpressionwood* w) override;
  bdd getUnderBdd(Module* m, Bddexpressionwood* w) override;
  bdd getInitialOverBdd(Module* m, Bddexpressionwood* w) override;
  bdd getInitialUnderBdd(Module* m, Bddexpressionwood* w) override;
  bool isErrorExpr() override { return true; }
  Expression* duplicate() override;
  std::ostream& print(std::ostream& out) override;
};

class BinaryExpression : public Expression {
 public:
  BinaryExpression(Expression* l, Expression* r) : Expression(false), left(l), right(r) {}
  Expression* getLeft() const { return left; }
  Expression* getRight() const { return right; }

 protected:
  Expression* left;
  Expression* right;
};

// Disjunction in the truth order: false is neutral.
class OrExpression : public BinaryExpression {
 public:
  OrExpression(Expression* l, Expression* r);
  OrExpression(Expression* l, Expression* r, Module*);
  bdd getOverBdd(Module* m, Bddexpressionwood* w) override;
  bdd getUnderBdd(Module* m, Bddexpressionwood* w) override;
  bdd getInitialOverBdd(Module* m, Bddexpressionwood* w) override;
  bdd getInitialUnderBdd(Module* m, Bddexpressionwood* w) override;
  Expression* duplicate() override;
  Expression* buildCurrentExpression(EquationTable* table, Module* m) override;
  std::ostream& print(std::ostream& out) override;
};

// Conjunction in the truth order: true is neutral.
class AndExpression : public BinaryExpression {
 public:
  AndExpression(Expression* l, Expression* r);
  AndExpression(Expression* l, Expression* r, Module*);
  bdd getOverBdd(Module* m, Bddexpressionwood* w) override;
  bdd getUnderBdd(Module* m, Bddexpressionwood* w) override;
  bdd getInitialOverBdd(Module* m, Bddexpressionwood* w) override;
  bdd getInitialUnderBdd(Module* m, Bddexpressionwood* w) override;
  Expression* duplicate() override;
  Expression* buildCurrentExpression(EquationTable* table, Module* m) override;
  std::ostream& print(std::ostream& out) override;
};

// "abs" in the source: swaps over and under.
class NotExpression : public Expression {
 public:
  explicit NotExpression(Expression* e);
  NotExpression(Expression* e, Module*);
  Expression* getOperand() const { return operand; }
  bdd getOverBdd(Module* m, Bddexpressionwood* w) override;
  bdd getUnderBdd(Module* m, Bddexpressionwood* w) override;
  bdd getInitialOverBdd(Module* m, Bddexpressionwood* w) override;
  bdd getInitialUnderBdd(Module* m, Bddexpressionwood* w) override;
  Expression* duplicate() override;
  Expression* buildCurrentExpression(EquationTable* table, Module* m) override;
  std::ostream& print(std::ostream& out) override;

 protected:
  Expression* operand;
};

// "not" in the source, the not-present test: bottom counts as false.
class NpExpression : public Expression {
 public:
  explicit NpExpression(Expression* e);
  NpExpression(Expression* e, Module*);
  Expression* getOperand() const { return operand; }
  bdd getOverBdd(Module* m, Bddexpressionwood* w) override;
  bdd getUnderBdd(Module* m, Bddexpressionwood* w) override;
  bdd getInitialOverBdd(Module* m, Bddexpressionwood* w) override;
  bdd getInitialUnderBdd(Module* m, Bddexpressionwood* w) override;
  Expression* duplicate() override;
  Expression* buildCurrentExpression(EquationTable* table, Module* m) override;
  std::ostream& print(std::ostream& out) override;

 protected:
  Expression* operand;
};

// Gates: the body passes when the condition's over (Then/Else) or under (DThen/DElse)
// function holds, resp. does not hold; bottom otherwise.
class ThenExpression : public Expression {
 public:
  ThenExpression(Expression* cond, Expression* body);
  ThenExpression(Expression* cond, Expression* body, Module*);
  bdd getOverBdd(Module* m, Bddexpressionwood* w) override;
  bdd getUnderBdd(Module* m, Bddexpressionwood* w) override;
  bdd getInitialOverBdd(Module* m, Bddexpressionwood* w) override;
  bdd getInitialUnderBdd(Module* m, Bddexpressionwood* w) override;
  Expression* duplicate() override;
  std::ostream& print(std::ostream& out) override;

 protected:
  Expression* condition;
  Expression* body;
};

class ElseExpression : public Expression {
 public:
  ElseExpression(Expression* cond, Expression* body);
  ElseExpression(Expression* cond, Expression* body, Module*);
  bdd getOverBdd(Module* m, Bddexpressionwood* w) override;
  bdd getUnderBdd(Module* m, Bddexpressionwood* w) override;
  bdd getInitialOverBdd(Module* m, Bddexpressionwood* w) override;
  bdd getInitialUnderBdd(Module* m, Bddexpressionwood* w) override;
  Expression* duplicate() override;
  std::ostream& print(std::ostream& out) override;

 protected:
  Expression* condition;
  Expression* body;
};

class DThenExpression : public Expression {
 public:
  DThenExpression(Expression* cond, Expression* body);
  DThenExpression(Expression* cond, Expression* body, Module*);
  bdd getOverBdd(Module* m, Bddexpressionwood* w) override;
  bdd getUnderBdd(Module* m, Bddexpressionwood* w) override;
  bdd getInitialOverBdd(Module* m, Bddexpressionwood* w) override;
  bdd getInitialUnderBdd(Module* m, Bddexpressionwood* w) override;
  Expression* duplicate() override;
  std::ostream& print(std::ostream& out) override;

 protected:
  Expression* condition;
  Expression* body;
};

class DElseExpression : public Expression {
 public:
  DElseExpression(Expression* cond, Expression* body);
  DElseExpression(Expression* cond, Expression* body, Module*);
  bdd getOverBdd(Module* m, Bddexpressionwood* w) override;
  bdd getUnderBdd(Module* m, Bddexpressionwood* w) override;
  bdd getInitialOverBdd(Module* m, Bddexpressionwood* w) override;
  bdd getInitialUnderBdd(Module* m, Bddexpressionwood* w) override;
  Expression* duplicate() override;
  std::ostream& print(std::ostream& out) override;

 protected:
  Expression* condition;
  Expression* body;
};

// The value v let through when the gate signal's over function holds.
class CondExpression : public Expression {
 public:
  CondExpression(Expression* v, Signal* g);
  bdd getOverBdd(Module* m, Bddexpressionwood* w) override;
  bdd getUnderBdd(Module* m, Bddexpressionwood* w) override;
  // Read the current forms of the operands, like the two above.
  bdd getInitialOverBdd(Module* m, Bddexpressionwood* w) override;
  bdd getInitialUnderBdd(Module* m, Bddexpressionwood* w) override;
  Expression* duplicate() override;
  std::ostream& print(std::ostream& out) override;

 protected:
  Expression* value;
  Signal* gate;
};

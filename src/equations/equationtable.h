// The writing end of one wood while statements are compiled: evaluates expressions
// into over/under BDDs and stores them as equations, opens occurrences at pauses, and
// lets branches be compiled in a copy and or'ed back.
#pragma once

#include <list>
#include <string>

class Bddexpression;
class Bddexpressionwood;
class Expression;
class Module;
class Signal;

class EquationTable {
 public:
  EquationTable(const std::string& name, Bddexpressionwood* wood);

  Bddexpressionwood* getBddexpressionWood() const { return wood; }
  const std::string& getName() const { return name; }

  // Over and under equation of s. initial: the expression's initial forms and
  // occurrence 0 of s; else the current forms and the current occurrence. The under
  // equation of a wire is the negated over variable.
  void createEquation(Signal* s, Expression* e, Module* m, bool initial);
  void createEquation(Signal* s, Expression* e, Module* m);
  // Emission: ors the expression into the existing equations of s.
  void createUnifyEquation(Signal* s, Expression* e, Module* m, bool initial);
  void createRegisterEquation(Signal* s, Module* m);
  // Over and under of the current occurrence (or the given one) start as bottom.
  void createBottomEquation(Signal* s, Module* m);
  void createBottomEquation(Signal* s, Module* m, int occurrence);
  void replaceEquation(Signal* s, Signal* other, Module* m);
  void cond(Signal* s, Module* m);
  void learnSignal(Signal* s, Module* m);

  // A pause: a new occurrence of each output and emitted local, or'ed into occurrence 0.
  void pre(Module* m);

  // Copies an equation of another wood into this one, by variable names.
  void add(Bddexpression* e, Module* m);
  // Ors the equations of a branch table into this one and destroys its wood.
  void unify(EquationTable* other, Module* m);
  // The table of a branch: a copy of the wood, with an empty name.
  EquationTable* duplicate(Module* m);

  Bddexpression* getBddExpression(long id);

  // Text of the first dependence cycle reached from the last id of path.
  std::string computeDependence(std::list<long>& path);
  // Dates the wood; a causality cycle is reported and ends the run.
  long callPert();
  long callPert(const std::list<long>& ids);

 private:
  Bddexpressionwood* wood;
  std::string name;
};

// The statement tree of a module body. Each statement keeps what the source said; its
// equations come from compile and createEquations.
#pragma once

#include <list>
#include <map>
#include <string>
#include <utility>
#include <vector>

class Module;
class Signal;
class Expression;
class EquationTable;
class Interface;
class bdd;
class bddpp_manager;
class State;
class Transition;
class Equation;

class Statement {
 public:
  explicit Statement(const std::string& name);
  virtual ~Statement() = default;

  virtual void createEquations(Module* module, EquationTable* table);
  virtual void complementary_check_syntax();
  virtual void compile(Module* module, EquationTable* table);
  virtual bool isAutomaton();
  virtual bool isParallel();
  virtual bool isSequence();
  virtual std::list<Transition*>* getTransitionList();
  virtual std::map<std::string, State*>* getStateTable();
  // True when the statement can terminate in the instant in which it was started.
  virtual bool reincarnate();
  // Copy for the second half of a loop body: name + "_bis".
  virtual Statement* duplicate(Module* module, EquationTable* table);
  // Numbered copy for "repeat": name + n.
  virtual Statement* duplicate(int n);

  const std::string& getStatementName() const { return name; }
  const std::string& getName() const { return name; }
  void setParentModule(Module* m) { parentModule = m; }
  Module* getParentModule() const { return parentModule; }
  void setPertLevel(long l) { pertLevel = l; }
  long getPertLevel() const { return pertLevel; }

  // Wires; reading one before createWires is a StatementWireException.
  Signal* getSet();
  Signal* getReset();
  Signal* getRtl();
  void createWires(Module* module, EquationTable* table);
  // SET := module SET, RESET := module RESET, module RTL := RTL.
  void connectExternalWires(Module* module);
  // Dates the table once: a second call does nothing.
  void callPert(EquationTable* table);
  void callPert(EquationTable* table, std::list<long> ids);

 protected:
  std::string name;
  Module* parentModule;
  Signal* set;
  Signal* reset;
  Signal* rtl;
  long pertLevel;
};

class Sequence : public Statement {
 public:
  Sequence(const std::string& name, Statement* left, Statement* right);
  void createEquations(Module* module, EquationTable* table) override;
  void complementary_check_syntax() override;
  void compile(Module* module, EquationTable* table) override;
  bool isSequence() override { return true; }
  bool reincarnate() override;
  Statement* duplicate(Module* module, EquationTable* table) override;
  Statement* duplicate(int n) override;
  Statement* getLeft() { return left; }
  Statement* getRight() { return right; }

 private:
  Statement* left;
  Statement* right;
};

class Sn : public Statement {
 public:
  Sn(const std::string& name, int count, Statement** array);
  void createEquations(Module* module, EquationTable* table) override;
  void complementary_check_syntax() override;
  void compile(Module* module, EquationTable* table) override;
  bool isSequence() override { return true; }
  bool reincarnate() override;
  Statement* duplicate(Module* module, EquationTable* table) override;
  Statement* duplicate(int n) override;
  // The parser's "a; b; c": the array grows by one, s goes last.
  void addStatement(Statement* s);
  int getCount() const { return count; }
  Statement** getArray() { return array; }

 private:
  int count;
  int capacity;  // slots in array; count of them are used
  Statement** array;
};

class Parallel : public Statement {
 public:
  Parallel(const std::string& name, Statement* left, Statement* right);
  void createEquations(Module* module, EquationTable* table) override;
  void complementary_check_syntax() override;
  void compile(Module* module, EquationTable* table) override;
  bool isParallel() override { return true; }
  bool reincarnate() override;
  Statement* duplicate(Module* module, EquationTable* table) override;
  Statement* duplicate(int n) override;
  Statement* getLeft() { return left; }
  Statement* getRight() { return right; }

 private:
  Statement* left;
  Statement* right;
  Signal* actif = nullptr;
  Signal* actifplus = nullptr;
  Signal* actifbis = nullptr;
  Signal* actifbisplus = nullptr;
};

class Pn : public Statement {
 public:
  Pn(const std::string& name, int count, Statement** array);
  void createEquations(Module* module, EquationTable* table) override;
  void complementary_check_syntax() override;
  void compile(Module* module, EquationTable* table) override;
  bool isParallel() override { return true; }
  bool reincarnate() override;
  Statement* duplicate(Module* module, EquationTable* table) override;
  Statement* duplicate(int n) override;
  // The parser's "a || b || c": the array grows by one, s goes last.
  void addStatement(Statement* s);
  int getCount() const { return count; }
  Statement** getArray() { return array; }

 private:
  int count;
  int capacity;  // slots in array; count of them are used
  Statement** array;
  Signal** actif = nullptr;
  Signal** actifplus = nullptr;
};

class Present : public Statement {
 public:
  Present(const std::string& name, Expression* expression, Statement* thenPart,
          Statement* elsePart);
  void createEquations(Module* module, EquationTable* table) override;
  void complementary_check_syntax() override;
  void compile(Module* module, EquationTable* table) override;
  bool reincarnate() override;
  Statement* duplicate(Module* module, EquationTable* table) override;
  Statement* duplicate(int n) override;
  Expression* getExpression() { return expression; }
  Statement* getThen() { return thenPart; }
  Statement* getElse() { return elsePart; }

 private:
  Expression* expression;
  Statement* thenPart;
  Statement* elsePart;
};

class Absent : public Statement {
 public:
  Absent(const std::string& name, Expression* expression, Statement* thenPart,
         Statement* elsePart);
  void createEquations(Module* module, EquationTable* table) override;
  void complementary_check_syntax() override;
  void compile(Module* module, EquationTable* table) override;
  bool reincarnate() override;
  Statement* duplicate(Module* module, EquationTable* table) override;
  Statement* duplicate(int n) override;
  Expression* getExpression() { return expression; }
  Statement* getThen() { return thenPart; }
  Statement* getElse() { return elsePart; }

 private:
  Expression* expression;
  Statement* thenPart;
  Statement* elsePart;
};

class Abort : public Statement {
 public:
  Abort(const std::string& name, Expression* expression, Statement* body);
  void createEquations(Module* module, EquationTable* table) override;
  void complementary_check_syntax() override;
  void compile(Module* module, EquationTable* table) override;
  Statement* duplicate(Module* module, EquationTable* table) override;
  Statement* duplicate(int n) override;
  Expression* getExpression() { return expression; }
  Statement* getBody() { return body; }

 private:
  Expression* expression;
  Statement* body;
  Signal* actif = nullptr;
  Signal* actifplus = nullptr;
};

class StrongAbort : public Statement {
 public:
  StrongAbort(const std::string& name, Expression* expression, Statement* body);
  void createEquations(Module* module, EquationTable* table) override;
  void complementary_check_syntax() override;
  void compile(Module* module, EquationTable* table) override;
  Statement* duplicate(Module* module, EquationTable* table) override;
  Statement* duplicate(int n) override;
  Expression* getExpression() { return expression; }
  Statement* getBody() { return body; }

 private:
  Expression* expression;
  Statement* body;
  Signal* actif = nullptr;
  Signal* actifplus = nullptr;
};

class Loop : public Statement {
 public:
  Loop(const std::string& name, Statement* body);
  void createEquations(Module* module, EquationTable* table) override;
  void complementary_check_syntax() override;
  void compile(Module* module, EquationTable* table) override;
  bool reincarnate() override;
  Statement* duplicate(Module* module, EquationTable* table) override;
  Statement* duplicate(int n) override;
  Statement* getBody() { return body; }
  void setBody(Statement* s) { body = s; }

 private:
  Statement* body;
};

class Wait : public Statement {
 public:
  Wait(const std::string& name, Expression* expression);
  void createEquations(Module* module, EquationTable* table) override;
  void compile(Module* module, EquationTable* table) override;
  bool reincarnate() override { return false; }
  Statement* duplicate(Module* module, EquationTable* table) override;
  Statement* duplicate(int n) override;
  Expression* getExpression() { return expression; }

 private:
  Expression* expression;
  Signal* actif = nullptr;
  Signal* actifplus = nullptr;
};

class Pause : public Statement {
 public:
  explicit Pause(const std::string& name);
  void createEquations(Module* module, EquationTable* table) override;
  void compile(Module* module, EquationTable* table) override;
  bool reincarnate() override { return false; }
  Statement* duplicate(Module* module, EquationTable* table) override;
  Statement* duplicate(int n) override;

 private:
  Signal* actif = nullptr;
  Signal* actifplus = nullptr;
};

class Emit : public Statement {
 public:
  // A null clock is a pure emission.
  Emit(const std::string& name, Signal* signal, Signal* clock = nullptr);
  void createEquations(Module* module, EquationTable* table) override;
  void complementary_check_syntax() override;
  void compile(Module* module, EquationTable* table) override;
  Statement* duplicate(Module* module, EquationTable* table) override;
  Statement* duplicate(int n) override;
  Signal* getSignal() { return signal; }
  const std::string& getSignalName() const { return signalName; }
  Signal* getClock() { return clock; }

 private:
  Signal* signal;
  std::string signalName;
  Signal* clock;
};

class NoEmit : public Statement {
 public:
  NoEmit(const std::string& name, Signal* signal);
  void createEquations(Module* module, EquationTable* table) override;
  void complementary_check_syntax() override;
  void compile(Module* module, EquationTable* table) override;
  Statement* duplicate(Module* module, EquationTable* table) override;
  Statement* duplicate(int n) override;
  Signal* getSignal() { return signal; }
  const std::string& getSignalName() const { return signalName; }

 private:
  Signal* signal;
  std::string signalName;
  Signal* clock = nullptr;
};

class SustainUntil : public Statement {
 public:
  SustainUntil(const std::string& name, Signal* signal, Expression* until);
  void createEquations(Module* module, EquationTable* table) override;
  void complementary_check_syntax() override;
  void compile(Module* module, EquationTable* table) override;
  bool reincarnate() override { return false; }
  Statement* duplicate(Module* module, EquationTable* table) override;
  Statement* duplicate(int n) override;
  Signal* getSignal() { return signal; }
  const std::string& getSignalName() const { return signalName; }
  Signal* getClock() { return clock; }
  // The clock of a valued "sustain s(e) until x".
  void setClock(Signal* c) { clock = c; }
  Expression* getUntil() { return until; }

 private:
  Signal* signal;
  std::string signalName;
  Signal* clock = nullptr;
  Expression* until;
  Signal* actif = nullptr;
  Signal* actifplus = nullptr;
};

class Nothing : public Statement {
 public:
  explicit Nothing(const std::string& name);
  void createEquations(Module* module, EquationTable* table) override;
  void compile(Module* module, EquationTable* table) override;
  Statement* duplicate(Module* module, EquationTable* table) override;
  Statement* duplicate(int n) override;
};

class Halt : public Statement {
 public:
  explicit Halt(const std::string& name);
  void createEquations(Module* module, EquationTable* table) override;
  void compile(Module* module, EquationTable* table) override;
  bool reincarnate() override { return false; }
  Statement* duplicate(Module* module, EquationTable* table) override;
  Statement* duplicate(int n) override;
};

class Run : public Statement {
 public:
  Run(const std::string& name, const std::string& moduleName);
  void createEquations(Module* module, EquationTable* table) override;
  void complementary_check_syntax() override;
  void compile(Module* module, EquationTable* table) override;
  bool reincarnate() override;
  // Name "R_" + module->getName() + "_" + RunNumber.
  Statement* duplicate(Module* module, EquationTable* table) override;
  Statement* duplicate(int n) override;
  // compile, then the instance's outputs masked by Not(strong).
  void compile_with_preemption(Module* module, EquationTable* table, bdd strong);
  // Names of the caller's signals offered to a compiled module being read.
  void computeAwaitedNameList(std::list<std::string>* inputs, std::list<std::string>* outputs,
                              Module* module);

  const std::string& getModuleName() const { return moduleName; }
  Module* getModule() { return module; }
  void setModule(Module* m) { module = m; }
  std::string* getInstance() { return instance; }
  void setInstance(std::string* s) { instance = s; }
  Interface* getInterface() { return iface; }
  std::map<std::string, Signal*>* getRenamingTable() { return renamingTable; }
  void setRenamingTable(std::map<std::string, Signal*>* t) { renamingTable = t; }
  // Copies the parser's list; a name given twice is a HashTableAddException.
  void setRenamingTable(std::list<std::pair<char const*, Signal*>*>* l);
  // The table's entry, null if none or no table.
  Signal* getRenamingSignal(const std::string& name);

 private:
  std::string moduleName;
  Module* module = nullptr;
  std::map<std::string, Signal*>* renamingTable;
  std::string* instance = nullptr;
  // The interface of the included instance, set by compile.
  Interface* iface = nullptr;
};

class State {
 public:
  explicit State(const std::string& name) : name(name) {}
  const std::string& getName() const { return name; }
  Run* getRunModule() { return run; }
  void setRunModule(Run* r) { run = r; }
  std::vector<Signal*>& getMooreActions() { return mooreActions; }
  void addMooreAction(Signal* s) { mooreActions.push_back(s); }
  int getId() const { return id; }
  void setId(int i) { id = i; }
  int isFinal() const { return final; }
  void setFinal(int f) { final = f; }
  // x, y and a size; null if not given.
  double* getGeometry() { return geometry; }
  void setGeometry(double* g) { geometry = g; }

 private:
  std::string name;
  int id = 0;
  int final = 0;
  Run* run = nullptr;
  std::vector<Signal*> mooreActions;
  double* geometry = nullptr;
};

class Transition {
 public:
  // type: 1 "->", "strong->" or none, 2 "weak->", 3 "normalterm->".
  // priority: 0 if not given, -1 for "other". geometry: x, y or null.
  Transition(int type, int priority, Expression* trigger, std::vector<Signal*>* action,
             State* source, State* target, double* geometry, bool initial);
  int getType() const { return type; }
  Expression* getTrigger() { return trigger; }
  void setTrigger(Expression* e) { trigger = e; }
  std::vector<Signal*>* getAction() { return action; }
  State* getSource() { return source; }
  State* getTarget() { return target; }
  double* getGeometry() { return geometry; }
  bool isInitial() const { return initial; }
  int getPriority() const { return priority; }
  void setPriority(int p) { priority = p; }
  bdd triggerable_bdd(Module* module);

 private:
  int type;
  int priority;
  Expression* trigger;
  std::vector<Signal*>* action;
  State* source;
  State* target;
  double* geometry;
  bool initial;
};

// True when a goes first: ascending priority, -1 ("other") last.
bool priority_comp(Transition* a, Transition* b);
// A sorted copy of the list; ties keep their order.
std::list<Transition*>* priority_sort(std::list<Transition*>* l);

class Automaton : public Statement {
 public:
  Automaton(const std::string& name, double* geometry, std::map<std::string, State*>* stateTable,
            std::list<Transition*>* transitionList);
  void createEquations(Module* module, EquationTable* table) override;
  void complementary_check_syntax() override;
  void compile(Module* module, EquationTable* table) override;
  bool isAutomaton() override { return true; }
  std::list<Transition*>* getTransitionList() override { return transitionList; }
  std::map<std::string, State*>* getStateTable() override { return stateTable; }
  bool reincarnate() override { return false; }
  double* getGeometry() { return geometry; }

  static State* findState(std::map<std::string, State*>* table, const std::string& name);

  // Two transitions of one priority that can fire together are a fatal report.
  void check_determinism(Module* module, bddpp_manager* manager);
  // Makes the triggers of different priorities exclusive; all priorities become 0.
  void priority_integration();
  // Codes of the source (0 for an initial transition) and of the target of *it.
  void ident_states_transitions(std::list<Transition*>::iterator it, int b, long& sourceId,
                                long& targetId);

 private:
  double* geometry;
  std::map<std::string, State*>* stateTable;
  std::list<Transition*>* transitionList;
};

// One equation of a Mealy machine.
class Equation {
 public:
  Equation(Signal* left, Expression* right) : leftVar(left), rightExpr(right) {}
  Signal* getLeftVar() { return leftVar; }
  Expression* getRightExpr() { return rightExpr; }

 private:
  Signal* leftVar;
  Expression* rightExpr;
};

class MealyMachine : public Statement {
 public:
  explicit MealyMachine(const std::string& name);
  void createEquations(Module* module, EquationTable* table) override;
  void compile(Module* module, EquationTable* table) override;
  bool reincarnate() override { return false; }
  // Keyed by the left variable's internal name; a later equation replaces an earlier one.
  void setMachineTable(std::list<Equation*>* equations, Module* module);
  std::map<std::string, Equation*>* getMachineTable() { return machineTable; }
  // One equation of the table, active from the start instant on (actif or set).
  void createQuarncEquation(Equation* equation, Signal* actif, Signal* set, Module* module,
                            EquationTable* table);

 private:
  std::map<std::string, Equation*>* machineTable;
  Signal* actif = nullptr;
  Signal* actifplus = nullptr;
};

// Signals, their occurrences and the records that tie an occurrence to its pair of
// BDD variables "_s_" + name (over) and "_v_" + name (under) in each wood.
#pragma once

#include <iosfwd>
#include <list>
#include <map>
#include <set>
#include <string>
#include <utility>

#include "signals/expression.h"

class bdd;
class Bddexpressionwood;
class Module;
class SignalManager;
class SignalRef;

class Signal : public Expression {
 public:
  Signal(const std::string& name, Module* m, Bddexpressionwood* w);
  // reg: a register pair member (wire and register); a name that already has a
  // record leaves the occurrence table empty.
  Signal(const std::string& name, Module* m, Bddexpressionwood* w, bool reg);
  Signal(const std::string& original, const std::string& internal, Module* m,
         Bddexpressionwood* w);
  Signal(const std::string& original, const std::string& internal, Module* m,
         Bddexpressionwood* w, bool reg);
  // Shares the occurrence table with s; makes no record.
  Signal(Signal& s);
  // Copy for Module(Module&): the records of occurrences 0 up to the current one in
  // the old module's wood are made again in the new manager and wood.
  Signal(Signal& s, Module* newModule, Bddexpressionwood* newWood, Module* oldModule);

  const std::string& getOriginalName() const { return originalName; }
  const std::string& getInternalName() const { return internalName; }

  bool isLocal() const { return local; }
  bool isInput() const { return input; }
  bool isOutput() const { return output; }
  bool isWire() const { return wire; }
  bool isRegister() const { return reg; }
  bool isClock() const { return clock; }
  bool isValue() const { return value; }
  bool isPre() const { return pre; }
  void setLocal(bool b = true) { local = b; }
  void setInput(bool b = true) { input = b; }
  void setOutput(bool b = true) { output = b; }
  void setWire(bool b = true) { wire = b; }
  void setRegister(bool b = true) { reg = b; wire = wire || b; }
  void setClock(bool b = true) { clock = b; }
  void setValue(bool b = true) { value = b; }
  void setPre(bool b = true) { pre = b; }

  // User types of the over and under equations: input, output, register, clock, wire,
  // else STAT/VAL.
  int computeOverType() const;
  int computeUnderType() const;

  // Occurrences, per wood.
  std::map<Bddexpressionwood*, int>* getOccurrenceTable() const { return occurrences; }
  bool hasOccurrence(Bddexpressionwood* w) const;
  int getCurrentOccurrence(Bddexpressionwood* w);
  void setCurrentOccurrence(Bddexpressionwood* w, int n);
  void extendCurrentOccurrenceTable(Bddexpressionwood* w, int n);
  Signal* newOccurrence(Bddexpressionwood* w, Module* m);
  std::string getName(Module* m, Bddexpressionwood* w);
  std::string getName(Module* m);

  SignalRef* getSignalRef(SignalManager* sm, Bddexpressionwood* w);
  SignalRef* getSignalRef(Module* m, Bddexpressionwood* w);
  SignalRef* getSignalRef(Module* m);
  SignalRef* getCurrentSignalRef(Bddexpressionwood* w, Module* m);

  bool isValued(Module* m, Bddexpressionwood* w);
  bool isValued(Module* m);
  std::string getValueType(Module* m);
  std::string getValueType(Module* m, Bddexpressionwood* w);
  void setValueType(const std::string& type, Module* m);
  void setValueType(const std::string& type, Module* m, Bddexpressionwood* w);
  bool usedwithPre(Module* m);

  // Signals whose values the data expressions emitted on this one read.
  std::set<Signal*>* getValueDependencies() const { return valueDependencies; }
  void addValueDependency(Signal* s) { valueDependencies->insert(s); }

  // Leaf of the algebra: the over / under variable of the highest occurrence defined
  // for the wood; the initial forms read occurrence 0.
  bdd getOverBdd(Module* m, Bddexpressionwood* w) override;
  bdd getUnderBdd(Module* m, Bddexpressionwood* w) override;
  bdd getInitialOverBdd(Module* m, Bddexpressionwood* w) override;
  bdd getInitialUnderBdd(Module* m, Bddexpressionwood* w) override;
  bool isSignalExpr() override { return true; }
  Expression* duplicate() override;
  Expression* buildCurrentExpression(EquationTable* table, Module* m) override;
  std::ostream& print(std::ostream& out) override;

  // Variable indexes: the occurrence that the occurrence table names, or occurrence 0.
  long getOverBddId(Module* m, Bddexpressionwood* w);
  long getUnderBddId(Module* m, Bddexpressionwood* w);
  long getInitialOverBddId(Module* m, Bddexpressionwood* w);
  long getInitialUnderBddId(Module* m, Bddexpressionwood* w);
  std::string getOverName(Module* m);
  std::string getUnderName(Module* m);
  // Over then under index of every occurrence from 0 to the current one.
  std::list<long> getAllBddId(Module* m, Bddexpressionwood* w);

  void printSignalOccurrence(std::ostream& out);

  // prefix "_" suffix
  static std::string generateName(const std::string& prefix, const std::string& suffix);

 private:
  void initialise(Module* m, Bddexpressionwood* w, bool occurrenceWhenKnown);

  std::string originalName;
  std::string internalName;
  bool local = false, input = false, output = false, wire = false, reg = false, clock = false,
       value = false, pre = false;
  std::map<Bddexpressionwood*, int>* occurrences;
  std::set<Signal*>* valueDependencies;
};

// "{" internal name "}"
std::ostream& operator<<(std::ostream& out, Signal* s);

// One occurrence of a signal and, per wood, its over and under variable indexes.
class SignalRef {
 public:
  SignalRef(const std::string& name, Module* m, Bddexpressionwood* w);
  SignalRef(const std::string& original, const std::string& internal, Module* m,
            Bddexpressionwood* w);
  SignalRef(const std::string& original, const std::string& internal, Module* m,
            Bddexpressionwood* w, bool valued);
  SignalRef(const std::string& original, const std::string& internal,
            const std::string& current, int occurrence, Module* m, Bddexpressionwood* w);
  SignalRef(const std::string& original, const std::string& internal,
            const std::string& current, int occurrence, Module* m, Bddexpressionwood* w,
            bool valued);

  const std::string& getOriginalName() const { return originalName; }
  const std::string& getInternalName() const { return internalName; }
  const std::string& getCurrentName() const { return currentName; }
  int getCurrentOccurrence() const { return currentOccurrence; }
  const std::string& getType() const { return type; }
  void setType(const std::string& t) { type = t; }
  bool isValued() const { return valued; }
  void setIsValued(bool v = true) { valued = v; }
  bool getOccurrenceMark() const { return occurrenceMark; }
  void setOccurrenceMark(bool b = true) { occurrenceMark = b; }

  bool isDefinedWood(Bddexpressionwood* w) const;
  long getOverBddId(Bddexpressionwood* w);
  long getUnderBddId(Bddexpressionwood* w);
  void setOverBddId(long id, Bddexpressionwood* w);
  void setUnderBddId(long id, Bddexpressionwood* w);
  void addBddIds(long over, long under, Bddexpressionwood* w);
  const std::map<Bddexpressionwood*, std::pair<long, long>>& getIds() const { return ids; }
  void removeWood(Bddexpressionwood* w) { ids.erase(w); }

  // Index of the variable of that name in the wood, made at the end if unknown.
  static long computeId(const std::string& name, Bddexpressionwood* w);

 private:
  void initialise(Module* m, Bddexpressionwood* w);

  std::string originalName;
  std::string internalName;
  std::string currentName;
  int currentOccurrence;
  std::string type = "pure";
  std::map<Bddexpressionwood*, std::pair<long, long>> ids;
  bool occurrenceMark = false;
  bool valued;
};

std::ostream& operator<<(std::ostream& out, SignalRef* r);

// Records by BDD variable index in one wood; over and under index of an occurrence
// point to the same record.
struct SignalRefTable {
  explicit SignalRefTable(long n);
  ~SignalRefTable();
  SignalRefTable(const SignalRefTable&) = delete;
  SignalRefTable& operator=(const SignalRefTable&) = delete;
  long size;
  SignalRef** table;
};

// One "Pre:" declaration: pre carries the previous value of actual.
class memorizedSignal {
 public:
  memorizedSignal(Signal* pre, Signal* actual, const std::string& initialValue)
      : pre_(pre), actual_(actual), initialValue_(initialValue) {}

  Signal* getPre() const { return pre_; }
  Signal* getActual() const { return actual_; }
  const std::string& getInitialValue() const { return initialValue_; }

 private:
  Signal* pre_;
  Signal* actual_;
  std::string initialValue_;
};

// One per module: finds the records by current name and by variable index.
class SignalManager {
 public:
  SignalManager() = default;
  ~SignalManager();
  SignalManager(const SignalManager&) = delete;
  SignalManager& operator=(const SignalManager&) = delete;

  SignalRef* getSignalRefByName(const std::string& name);
  SignalRef* getSignalRefByOccurrence(Signal* s, int n);
  SignalRef* getSignalRefById(long id, Bddexpressionwood* w);
  // New list of the records of s defined for w, in current-name order.
  std::list<SignalRef*>* getAllSignalRef(Signal* s, Bddexpressionwood* w);
  // The record of s with the highest occurrence defined for w, or null.
  SignalRef* getCurrentOccurrence(Signal* s, Bddexpressionwood* w);

  void addSignalRef(SignalRef* ref);
  void addSignalRefIdTable(long over, long under, SignalRef* ref, Bddexpressionwood* w);
  void extendIdTable(Bddexpressionwood* w);
  void extendSignalRef(long over, long under, SignalRef* ref, Bddexpressionwood* w);
  void duplicate(Bddexpressionwood* newWood, Bddexpressionwood* oldWood);
  // Forgets w in every record and destroys it.
  void deleteWood(Bddexpressionwood* w);

  const std::map<std::string, SignalRef*>& getTableByName() const { return byName; }
  void printSignalTableByName(std::ostream& out);
  void printSignalTableById(std::ostream& out);

 private:
  // Makes w's id table at least n long, entries kept.
  void grow(Bddexpressionwood* w, long n);

  std::map<std::string, SignalRef*> byName;
  // internal name -> current name -> record: the records of one signal, in key order.
  std::map<std::string, std::map<std::string, SignalRef*>> byInternalName;
  std::map<Bddexpressionwood*, SignalRefTable*> idTables;
};

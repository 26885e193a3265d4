// The data layer: user types, methods and constants (run-wide tables), the value
// expressions carried by valued signals, and the bindings that tie an expression to
// the signal that carries it. The compiler never computes values: it types the
// expressions, renames them for instances and writes them in each target language.
#pragma once

#include <iosfwd>
#include <list>
#include <map>
#include <set>
#include <string>
#include <utility>

class Signal;
class Module;
class Interface;
class Bddexpressionwood;
class bdd;
struct socket_type;
class DataExpr;

// ---------------------------------------------------------------------------
// Tables (statics of Compilation: GDataTypeTable, GDataMethodTable, GDataConstantTable;
// null until the first declaration of their kind).

class DataTypeTable {
 public:
  DataTypeTable() = default;

  // Enters name with the next index (the number of types so far); a known name is kept.
  void addType(const std::string& name);
  bool isDefined(const std::string& name) const;
  int getIndex(const std::string& name) const;  // -1 when absent
  std::string getTypeById(int i) const;         // "undefined" when no type has index i
  const std::map<std::string, int>& getTypeTable() const { return table; }

  // "type:", then the types in index order (optionally numbered), then an empty line.
  void print(std::ostream& out, bool numbered) const;
  void C_put(std::ostream& out) const;
  void CSharp_put(std::ostream& out) const;
  void LUSTRE_put(std::ostream& out) const;

  // "false", "0", "0.0" for the Lustre types bool, int, real; "zero_" + T otherwise.
  static std::string zero_lustre(const std::string& type);

 private:
  std::map<std::string, int> table;
};

class MethodDecl {
 public:
  // A null return type or name becomes the empty string; the argument list is copied
  // (null when there are no arguments).
  MethodDecl(const std::string* returnType, const std::string* name,
             const std::list<std::string>* argTypes);
  MethodDecl(const std::string& returnType, const std::string& name,
             const std::list<std::string>* argTypes);

  const std::string& getReturnType() const { return returnType; }
  const std::string& getName() const { return name; }
  std::list<std::string>* getArgTypes() const { return argTypes; }  // null: no arguments
  int getIndex() const { return index; }
  void setIndex(int i) { index = i; }

  bool operator==(const MethodDecl& other) const;
  bool operator!=(const MethodDecl& other) const { return !(*this == other); }

  // return type, " ", name, "(", types joined by ", ", ")"
  void print(std::ostream& out) const;
  void C_put(std::ostream& out) const;
  void CSharp_put(std::ostream& out) const;
  void LUSTRE_put(std::ostream& out) const;

 private:
  std::string returnType;
  std::string name;
  std::list<std::string>* argTypes;
  int index;
};
std::ostream& operator<<(std::ostream& out, const MethodDecl& m);

class DataMethodTable {
 public:
  DataMethodTable();

  MethodDecl* getMethod(const std::string& name) const;  // null when absent
  int getMethodIndex(const std::string& name) const;     // negative when absent
  MethodDecl* getMethodById(int i) const;                // null when absent
  // No overloading: a known name is fatal. The index is the last entry's plus one.
  void addMethod(MethodDecl* decl);
  std::list<MethodDecl*>* getMethodList() const { return methods; }

  void print(std::ostream& out, bool numbered) const;
  void C_put(std::ostream& out) const;
  void CSharp_put(std::ostream& out) const;
  void LUSTRE_put(std::ostream& out) const;

 private:
  std::list<MethodDecl*>* methods;
};

class ConstantDecl {
 public:
  // values: target language key (TLanguage) to value expression; null when the constant
  // has no value in the program (the user's code defines it).
  ConstantDecl(const std::string& type, const std::string& name,
               std::map<int, DataExpr*>* values);

  const std::string& getType() const { return type; }
  const std::string& getName() const { return name; }
  std::map<int, DataExpr*>* getValueTable() const { return values; }
  int getConstantIndex() const { return constantIndex; }
  int getEvalIndex() const { return evalIndex; }
  void setIndex(int i) { constantIndex = i; }
  void setEvalIndex(int i) { evalIndex = i; }

  void print(std::ostream& out) const;
  void DEBUG_put(std::ostream& out, Module* module) const;
  void C_put(std::ostream& out, Module* module) const;
  void CSharp_put(std::ostream& out, Module* module) const;
  void LUSTRE_put(std::ostream& out, Module* module) const;
  void ESTEREL_put(std::ostream& out, Module* module) const;
  void VHDL_put(std::ostream& out, Module* module) const;

 private:
  // The value for language, else the DEFAULT one; fatal when neither is there.
  DataExpr* valueFor(int language, const char* languageName) const;

  std::string type;
  std::string name;
  std::map<int, DataExpr*>* values;
  int constantIndex;
  int evalIndex;
};

class DataConstantTable {
 public:
  DataConstantTable();

  ConstantDecl* getConstant(const std::string& name) const;  // null when absent
  int getConstantIndex(const std::string& name) const;       // negative when absent
  ConstantDecl* getConstantById(int i) const;                // by getConstantIndex of entries
  bool isAlreadyDefined(const std::string& name) const;
  // A known name is fatal. A constant whose values are not all literals keeps index -1.
  void addConstant(ConstantDecl* decl);
  std::list<ConstantDecl*>* getConstantList() const { return constants; }

  void print(std::ostream& out, bool numbered) const;
  void C_put(std::ostream& out, Module* module) const;
  void CSharp_put(std::ostream& out, Module* module) const;
  void LUSTRE_put(std::ostream& out, Module* module) const;
  void ESTEREL_put(std::ostream& out, Module* module) const;
  void VHDL_put(std::ostream& out, Module* module) const;

 private:
  std::list<ConstantDecl*>* constants;
};

// ---------------------------------------------------------------------------
// Value expressions.

// State of a valued simulation run (simulator link): constant name to (value expression
// or null when the server knows it, cached text); signal over id to value text ("--":
// unknown yet).
typedef std::map<std::string, std::pair<DataExpr*, std::string>> DataConstantValueMap;
typedef std::map<long, std::string> DataSignalValueMap;

class DataExpr {
 public:
  static const int Plus = 0, Minus = 1, Mult = 2, Div = 3, Uminus = 4, And = 5, Or = 6,
                   Not = 7, Eq = 8, Neq = 9, Inf = 10, Infe = 11, Sup = 12, Supe = 13,
                   SignalVal = 14;
  static const int NbPredefOp = 15;
  // Suffix counter of value signal names; never reset during a run.
  static int Indexation;

  DataExpr() = default;
  virtual ~DataExpr() = default;

  virtual std::string getType() { return type; }
  // Sets and returns the type field.
  virtual std::string computeType(Module* module) = 0;
  virtual void setIndex(int i) { index = i; }
  virtual int getIndex() { return index; }
  virtual bool hasIndex() { return index != -1; }
  virtual bool isDataValue() { return false; }
  virtual bool isDataConstant() { return false; }
  virtual bool isDataMethod() { return false; }
  virtual bool isDataSignalValue() { return false; }
  virtual bool isDataBinaryOp() { return false; }
  virtual bool isDataUnaryOp() { return false; }

  // Copy for a new instance of a compiled module: module is the caller, iface the
  // instance's interface, renaming the Run's table (original name to signal).
  virtual DataExpr* instanciate(Interface* iface, std::map<std::string, Signal*>* renaming,
                                Module* module) = 0;
  virtual DataExpr* applyRenaming(std::map<std::string, Signal*>* renaming, Interface* iface) = 0;
  virtual DataExpr* duplicate() = 0;
  // Deep copy whose signal values read the signals of the same internal name in newModule.
  virtual DataExpr* changeModule(Module* newModule, Module* oldModule) = 0;
  // New set of the signals read, or null when none.
  virtual std::set<Signal*>* computeDependencySet() { return nullptr; }
  virtual void computeValueSignalDependencies(std::set<Signal*>&) {}

  virtual void print_debug(std::ostream& out) = 0;
  // One entry of the .qnc evaluation table; top is 1 for an entry, 0 for an argument,
  // which is written as the index of a further entry pushed on list (next: next index).
  virtual void QNC_put(std::ostream& out, long* corres, Module* module,
                       std::list<DataExpr*>& list, int& next, int top) = 0;
  // The same walk for the debug trace of bindings.
  virtual void DEBUG_put(std::ostream& out, Module* module, std::list<DataExpr*>& list,
                         int& next, int top) = 0;
  virtual void C_put(std::ostream& out, Module* module) = 0;
  virtual void CSharp_put(std::ostream& out, Module* module) = 0;
  // Evaluates through the simulator link; the result is the value text.
  virtual std::string QUARNS_put(Module* module, DataConstantValueMap* constants,
                                 DataSignalValueMap* values, int* wires, socket_type* sock) = 0;
  virtual void LUSTRE_put(std::ostream& out, Module* module) = 0;
  virtual void ESTEREL_put(std::ostream& out, Module* module) = 0;
  virtual void VHDL_put(std::ostream& out, Module* module) = 0;
  virtual void DEBUG_put(std::ostream& out, Module* module) = 0;

  static std::string C_opname(int op, const std::string& type);
  static std::string QUARNS_opname(int op);
  static std::string CSharp_opname(int op);
  static std::string LUSTRE_opname(int op);
  static std::string ESTEREL_opname(int op);
  static std::string VHDL_opname(int op);
  static std::string DEBUG_opname(int op);

  void setType(const std::string& t) { type = t; }
  // The type field, computed first when it is empty.
  std::string getType(Module* module);

 protected:
  std::string type;
  int index = -1;
};

// A named constant of GDataConstantTable, by its constant index. (A literal in an
// expression is one of these.)
class DataConstant : public DataExpr {
 public:
  explicit DataConstant(int index);

  int getConstantIndex() const { return constantIndex; }
  ConstantDecl* getConstDecl() const;  // null when the table lacks the index

  std::string computeType(Module* module) override;
  void setIndex(int i) override;
  bool isDataConstant() override { return true; }
  DataExpr* instanciate(Interface*, std::map<std::string, Signal*>*, Module*) override;
  DataExpr* applyRenaming(std::map<std::string, Signal*>*, Interface*) override;
  DataExpr* duplicate() override;
  DataExpr* changeModule(Module*, Module*) override;
  void print_debug(std::ostream& out) override;
  void QNC_put(std::ostream& out, long* corres, Module* module, std::list<DataExpr*>& list,
               int& next, int top) override;
  void DEBUG_put(std::ostream& out, Module* module, std::list<DataExpr*>& list, int& next,
                 int top) override;
  void C_put(std::ostream& out, Module* module) override;
  void CSharp_put(std::ostream& out, Module* module) override;
  std::string QUARNS_put(Module*, DataConstantValueMap*, DataSignalValueMap*, int*,
                         socket_type*) override;
  void LUSTRE_put(std::ostream& out, Module* module) override;
  void ESTEREL_put(std::ostream& out, Module* module) override;
  void VHDL_put(std::ostream& out, Module* module) override;
  void DEBUG_put(std::ostream& out, Module* module) override;

 private:
  int constantIndex;
};

// A literal text; stands only in a constant's value table.
class DataValue : public DataExpr {
 public:
  explicit DataValue(const std::string& text);

  const std::string& getText() const { return text; }
  void setConstDecl(ConstantDecl* d) { constDecl = d; }
  ConstantDecl* getConstDecl() const { return constDecl; }

  std::string computeType(Module* module) override;
  bool isDataValue() override { return true; }
  DataExpr* instanciate(Interface*, std::map<std::string, Signal*>*, Module*) override;
  DataExpr* applyRenaming(std::map<std::string, Signal*>*, Interface*) override;
  DataExpr* duplicate() override;
  DataExpr* changeModule(Module*, Module*) override;
  void print_debug(std::ostream& out) override;
  void QNC_put(std::ostream& out, long* corres, Module* module, std::list<DataExpr*>& list,
               int& next, int top) override;
  void DEBUG_put(std::ostream& out, Module* module, std::list<DataExpr*>& list, int& next,
                 int top) override;
  void C_put(std::ostream& out, Module* module) override;
  void CSharp_put(std::ostream& out, Module* module) override;
  std::string QUARNS_put(Module*, DataConstantValueMap*, DataSignalValueMap*, int*,
                         socket_type*) override;
  void LUSTRE_put(std::ostream& out, Module* module) override;
  void ESTEREL_put(std::ostream& out, Module* module) override;
  void VHDL_put(std::ostream& out, Module* module) override;
  void DEBUG_put(std::ostream& out, Module* module) override;

 private:
  std::string text;
  ConstantDecl* constDecl = nullptr;
};

// A call of a user method of GDataMethodTable.
class DataMethodCall : public DataExpr {
 public:
  DataMethodCall(int method, std::list<DataExpr*>* args);

  int getMethodIndex() const { return method; }
  std::list<DataExpr*>* getArgList() const { return args; }  // null: no arguments
  MethodDecl* getMethodDecl() const;                          // null when unknown

  std::string computeType(Module* module) override;
  bool isDataMethod() override { return true; }
  DataExpr* instanciate(Interface*, std::map<std::string, Signal*>*, Module*) override;
  DataExpr* applyRenaming(std::map<std::string, Signal*>*, Interface*) override;
  DataExpr* duplicate() override;
  DataExpr* changeModule(Module*, Module*) override;
  std::set<Signal*>* computeDependencySet() override;
  void computeValueSignalDependencies(std::set<Signal*>& s) override;
  void print_debug(std::ostream& out) override;
  void QNC_put(std::ostream& out, long* corres, Module* module, std::list<DataExpr*>& list,
               int& next, int top) override;
  void DEBUG_put(std::ostream& out, Module* module, std::list<DataExpr*>& list, int& next,
                 int top) override;
  void C_put(std::ostream& out, Module* module) override;
  void CSharp_put(std::ostream& out, Module* module) override;
  std::string QUARNS_put(Module*, DataConstantValueMap*, DataSignalValueMap*, int*,
                         socket_type*) override;
  void LUSTRE_put(std::ostream& out, Module* module) override;
  void ESTEREL_put(std::ostream& out, Module* module) override;
  void VHDL_put(std::ostream& out, Module* module) override;
  void DEBUG_put(std::ostream& out, Module* module) override;

 private:
  int method;
  std::list<DataExpr*>* args;
};

class DataBinaryOp : public DataExpr {
 public:
  DataBinaryOp(int op, DataExpr* left, DataExpr* right);

  int getOperator() const { return op; }
  DataExpr* getLeft() const { return left; }
  DataExpr* getRight() const { return right; }

  // The left operand's type; a different right type gives "?type_error?" (not fatal).
  std::string computeType(Module* module) override;
  bool isDataBinaryOp() override { return true; }
  DataExpr* instanciate(Interface*, std::map<std::string, Signal*>*, Module*) override;
  DataExpr* applyRenaming(std::map<std::string, Signal*>*, Interface*) override;
  DataExpr* duplicate() override;
  DataExpr* changeModule(Module*, Module*) override;
  std::set<Signal*>* computeDependencySet() override;
  void computeValueSignalDependencies(std::set<Signal*>& s) override;
  void print_debug(std::ostream& out) override;
  void QNC_put(std::ostream& out, long* corres, Module* module, std::list<DataExpr*>& list,
               int& next, int top) override;
  void DEBUG_put(std::ostream& out, Module* module, std::list<DataExpr*>& list, int& next,
                 int top) override;
  void C_put(std::ostream& out, Module* module) override;
  void CSharp_put(std::ostream& out, Module* module) override;
  std::string QUARNS_put(Module*, DataConstantValueMap*, DataSignalValueMap*, int*,
                         socket_type*) override;
  void LUSTRE_put(std::ostream& out, Module* module) override;
  void ESTEREL_put(std::ostream& out, Module* module) override;
  void VHDL_put(std::ostream& out, Module* module) override;
  void DEBUG_put(std::ostream& out, Module* module) override;

 private:
  int op;
  DataExpr* left;
  DataExpr* right;
};

class DataUnaryOp : public DataExpr {
 public:
  DataUnaryOp(int op, DataExpr* operand);

  int getOperator() const { return op; }
  DataExpr* getOperand() const { return operand; }

  std::string computeType(Module* module) override;
  bool isDataUnaryOp() override { return true; }
  DataExpr* instanciate(Interface*, std::map<std::string, Signal*>*, Module*) override;
  DataExpr* applyRenaming(std::map<std::string, Signal*>*, Interface*) override;
  DataExpr* duplicate() override;
  DataExpr* changeModule(Module*, Module*) override;
  std::set<Signal*>* computeDependencySet() override;
  void computeValueSignalDependencies(std::set<Signal*>& s) override;
  void print_debug(std::ostream& out) override;
  void QNC_put(std::ostream& out, long* corres, Module* module, std::list<DataExpr*>& list,
               int& next, int top) override;
  void DEBUG_put(std::ostream& out, Module* module, std::list<DataExpr*>& list, int& next,
                 int top) override;
  void C_put(std::ostream& out, Module* module) override;
  void CSharp_put(std::ostream& out, Module* module) override;
  std::string QUARNS_put(Module*, DataConstantValueMap*, DataSignalValueMap*, int*,
                         socket_type*) override;
  void LUSTRE_put(std::ostream& out, Module* module) override;
  void ESTEREL_put(std::ostream& out, Module* module) override;
  void VHDL_put(std::ostream& out, Module* module) override;
  void DEBUG_put(std::ostream& out, Module* module) override;

 private:
  int op;
  DataExpr* operand;
};

// The value of a valued signal.
class DataSignalValue : public DataExpr {
 public:
  explicit DataSignalValue(Signal* signal);

  Signal* getSignal() const { return signal; }

  std::string computeType(Module* module) override;
  bool isDataSignalValue() override { return true; }
  DataExpr* instanciate(Interface*, std::map<std::string, Signal*>*, Module*) override;
  DataExpr* applyRenaming(std::map<std::string, Signal*>*, Interface*) override;
  DataExpr* duplicate() override;
  DataExpr* changeModule(Module*, Module*) override;
  std::set<Signal*>* computeDependencySet() override;
  void computeValueSignalDependencies(std::set<Signal*>& s) override;
  void print_debug(std::ostream& out) override;
  void QNC_put(std::ostream& out, long* corres, Module* module, std::list<DataExpr*>& list,
               int& next, int top) override;
  void DEBUG_put(std::ostream& out, Module* module, std::list<DataExpr*>& list, int& next,
                 int top) override;
  void C_put(std::ostream& out, Module* module) override;
  void CSharp_put(std::ostream& out, Module* module) override;
  std::string QUARNS_put(Module*, DataConstantValueMap*, DataSignalValueMap*, int*,
                         socket_type*) override;
  void LUSTRE_put(std::ostream& out, Module* module) override;
  void ESTEREL_put(std::ostream& out, Module* module) override;
  void VHDL_put(std::ostream& out, Module* module) override;
  void DEBUG_put(std::ostream& out, Module* module) override;

 private:
  Signal* signal;
};

// ---------------------------------------------------------------------------
// Bindings: a value expression, the signal that carries it and, usually, the clock (a
// pure signal whose presence says that the value is computed in the instant).
// A module's data table maps the bound signal's name to its binding; the operations on it
// (addSignalBinding, addBinding, getBinding, removeBinding, getSignalBindingByClock,
// getDataBindingByClock, printBinding, debugPrintBinding) are members of Module, with
// their bodies in data/module_bindings.cpp.

class DataBinding {
 public:
  DataBinding(Signal* signal, DataExpr* value);
  DataBinding(Signal* signal, DataExpr* value, Signal* clock);
  // Copy for a copied module: signal and clock by internal name in newModule, the value by
  // changeModule(newModule, oldModule).
  DataBinding(DataBinding& other, Module* newModule, Module* oldModule);

  Signal* getClock() const { return clock; }
  Signal* getSignal() const { return signal; }
  DataExpr* getValue() const { return value; }

  DataBinding* instanciate(Interface* iface, std::map<std::string, Signal*>* renaming,
                           Module* module);
  void print_debug(std::ostream& out);

 private:
  Signal* clock;
  Signal* signal;
  DataExpr* value;
};

// A Quarn module: its declared signals, its statement tree and, once compiled, its
// equations; the interface of an included instance; the table of modules by name.
#pragma once

#include <iosfwd>
#include <list>
#include <map>
#include <set>
#include <string>

class Signal;
class SignalRef;
class SignalManager;
class memorizedSignal;
class Expression;
class EquationTable;
class Bddexpressionwood;
class DataBinding;
class DataExpr;
class bdd;
class Statement;
class Run;
class Module;

// One register: the present value and the value of the next instant.
class regclass {
 public:
  regclass(Signal* actual, Signal* next, int initialy_true)
      : actual_var_(actual), next_var_(next), is_initialy_true_(initialy_true) {}

  Signal* actual_var() const { return actual_var_; }
  void actual_var(Signal* s) { actual_var_ = s; }
  Signal* next_var() const { return next_var_; }
  void next_var(Signal* s) { next_var_ = s; }
  int is_initialy_true() const { return is_initialy_true_; }
  void is_initialy_true(int v) { is_initialy_true_ = v; }

  bool operator==(const regclass& o) const {
    return actual_var_ == o.actual_var_ && next_var_ == o.next_var_ &&
           is_initialy_true_ == o.is_initialy_true_;
  }

 private:
  Signal* actual_var_;
  Signal* next_var_;
  int is_initialy_true_;
};

// "next actual 1": internal names, "? " for a null signal.
std::ostream& operator<<(std::ostream& out, const regclass& r);

// "pre actual initial;": internal names, "? " for a null signal.
std::ostream& operator<<(std::ostream& out, const memorizedSignal& m);

// Tables of one module instance while a compiled module is included: names inside the
// included module to the signals outside.
class Interface {
 public:
  Interface();

  void addInput(const std::string& name, Signal* s);
  void addOutput(const std::string& name, Signal* s);
  void addLocal(const std::string& name, Signal* s);
  void addData(const std::string& name, Signal* s);
  void addRegister(regclass* r);

  Signal* getInputSignal(const std::string& name);
  Signal* getOutputSignal(const std::string& name);
  Signal* getLocalSignal(const std::string& name);
  // Input, output, local, data tables in order; null if none has it.
  Signal* getSignal(const std::string& name);
  // Key of the signal with this internal name, same order; empty if none.
  std::string getOriginalSignalName(const std::string& internalName);

  std::map<std::string, Signal*>* getInputSignalTable() { return inputTable; }
  std::map<std::string, Signal*>* getOutputSignalTable() { return outputTable; }
  std::map<std::string, Signal*>* getLocalSignalTable() { return localTable; }
  std::map<std::string, Signal*>* getDataSignalTable() { return dataTable; }
  std::list<regclass*>* getRegisterList() { return registerList; }

 private:
  std::map<std::string, Signal*>* inputTable;
  std::map<std::string, Signal*>* outputTable;
  std::map<std::string, Signal*>* localTable;
  std::map<std::string, Signal*>* dataTable;
  std::list<regclass*>* registerList;
};

class Module {
 public:
  explicit Module(const std::string& name);
  // Deep copy for the generators: own BDD manager, no statement tree.
  Module(Module& m);
  ~Module();

  // Counters used in statement names; shared by all modules, never reset.
  static int PauseNumber, NothingNumber, HaltNumber, ParallelNumber, SequenceNumber,
      PresentNumber, AbsentNumber, LoopNumber, LocalNumber, WaitNumber, AbortNumber, EmitNumber,
      NoEmitNumber, SustainUntilNumber, RunNumber, SustainNumber, AutomatonNumber,
      MealyMachineNumber, TransitionNumber;
  static std::string SimulationDir;
  static std::string SimulationQncDir;
  static std::string OutputDir;
  static std::string OutputFile;
  static std::list<std::string>* CompilationFileList;

  // Module name, prefix, "_", counter; the counter goes up.
  std::string generateName(const std::string& prefix, int& counter);

  // --- Fields -----------------------------------------------------------------------
  const std::string& getName() const { return name; }
  Statement* getStatement() { return statement; }
  void setStatement(Statement* s) { statement = s; }

  std::list<Signal*>* getInputSignalList() { return inputList; }
  std::list<Signal*>* getOutputSignalList() { return outputList; }
  std::list<Signal*>* getLocalSignalList() { return localList; }
  std::list<memorizedSignal*>* getPreSignalList() { return preList; }
  std::list<Signal*>* getDataSignalList() { return dataSignalList; }
  std::list<regclass*>* getRegisterList() { return registerList; }
  void setInputSignalList(std::list<Signal*>* l) { inputList = l; }
  void setOutputSignalList(std::list<Signal*>* l) { outputList = l; }
  void setLocalSignalList(std::list<Signal*>* l) { localList = l; }
  void setPreSignalList(std::list<memorizedSignal*>* l) { preList = l; }
  void setDataSignalList(std::list<Signal*>* l) { dataSignalList = l; }
  void setRegisterList(std::list<regclass*>* l) { registerList = l; }
  std::map<std::string, std::string*>* getRunDeclTable() { return runDeclTable; }

  EquationTable* getCompilation() { return compilation; }
  void setCompilation(EquationTable* t) { compilation = t; }
  // compilation->getBddexpressionWood(), null without a table.
  Bddexpressionwood* getBddWood();

  Signal* getSet() { return set; }
  Signal* getReset() { return reset; }
  Signal* getRtl() { return rtl; }
  // These also mark the signal as a wire.
  void setSet(Signal* s);
  void setReset(Signal* s);
  void setRtl(Signal* s);

  bool getReincarnate() const { return reincarnate; }
  void setReincarnate(bool b) { reincarnate = b; }
  int getFinalised() const { return finalised; }
  void setFinalised(int f) { finalised = f; }
  int getCurrentInstance() const { return currentInstance; }
  void setCurrentInstance(int n) { currentInstance = n; }
  int incrCurrentInstance() { return ++currentInstance; }
  SignalManager* getSignalManager() { return signalManager; }
  std::map<std::string, DataBinding*>* getDataTable() { return dataTable; }
  void setDataTable(std::map<std::string, DataBinding*>* t) { dataTable = t; }

  // --- Signal lookup; null if not found ---------------------------------------------
  Signal* getInputSignal(const std::string& name);   // original name
  Signal* getOutputSignal(const std::string& name);  // original name
  Signal* getLocalSignal(const std::string& name);   // internal name
  Signal* getDataSignal(const std::string& name);    // internal name
  Signal* getPreSignal(const std::string& name);     // internal name of the pre signal
  Signal* getOutputLocalSignal(const std::string& name);
  Signal* getSignal(const std::string& name);
  Signal* getSignalFromInternalName(const std::string& name);

  // BDD identity lookup; a null wood means the module's own wood.
  Signal* getSignalById(long id, Bddexpressionwood* wood = nullptr);
  std::string getSignalNameById(long id, Bddexpressionwood* wood = nullptr);
  long getOtherBddId(long id, Bddexpressionwood* wood = nullptr);

  // --- Declarations -----------------------------------------------------------------
  void addInputSignal(Signal* s);
  void addOutputSignal(Signal* s);
  void addLocalSignal(Signal* s);
  void addWireSignal(Signal* s);
  void addDataSignal(Signal* s);
  void addPreSignal(Signal* pre, Signal* actual, const std::string& initialValue);
  void addRegisterDecl(const std::string& actualName, int initial, const std::string& nextName);
  void addRegisterSignal(Signal* actual, Signal* next);
  void addRegisterSignal(Signal* actual, Signal* next, int initial);
  // Stores directory + "/" + file for the module name.
  void addRunDecl(const std::string& moduleName, const std::string& file,
                  const std::string& directory);
  std::string* getModuleLocation(const std::string& moduleName);

  // --- Data bindings ----------------------------------------------------------------
  Signal* addSignalBinding(DataExpr* e, const std::string& base);
  Signal* addSignalBinding(DataExpr* e, const std::string& base, Signal* clock);
  Signal* addSignalBinding(DataExpr* e, Signal* clock, Bddexpressionwood* wood);
  Signal* addSignalBinding(DataExpr* e, Signal* s);
  Signal* addSignalBinding(DataExpr* e, Signal* s, Signal* clock);
  void addBinding(DataBinding* b, Bddexpressionwood* wood);
  void addBinding(DataBinding* b);
  DataBinding* getBinding(const std::string& name);
  void removeBinding(const std::string& name);
  std::list<Signal*>* getSignalBindingByClock(Signal* clock);
  std::list<DataBinding*>* getDataBindingByClock(Signal* clock);
  void printBinding(std::ostream& out, long* corres);
  void debugPrintBinding(std::ostream& out);

  // --- Checks and compilation -------------------------------------------------------
  void complementary_check_syntax();
  void compile();
  void createCompileEnv();
  void sortCode();
  long getPertLevel();
  Interface* includeCompiledModule(Module* called, EquationTable* table, Run* run,
                                   const std::string& instance);

  // --- Finalization and reductions --------------------------------------------------
  void finalize(int keep_rtl);
  void clean();
  void clean_locals();
  void update_user_type();
  void suppress_useless_registers();
  void constants_propagation();
  void check_over_knowledge();
  void learnOverWireAssertion();
  void loose_first_underscore_in_name_variables();
  std::set<long> get_really_used_wood_variables();

  // --- Compiled module --------------------------------------------------------------
  void save();
  void QNC_put(std::ostream& out, int version, int noWires, int forgetLocals);

  // --- Targets ----------------------------------------------------------------------
  void printC();
  void C_put(std::ostream& code, std::ostream& header);
  void C_put_equation(std::ostream& code, const std::string& node_array,
                      std::list<std::string>& pointer_wires);
  void printCSHARP();
  void CSharp_put(std::ostream& out);
  void CSharp_put_equation(std::ostream& out, const std::string& node_array, int indent);
  void printVHDL();
  void VHDL_put(std::ostream& out, std::istream& libs, int altera);
  void printSMV();
  void NUSMV_put(std::ostream& out, int version, int no_wires);
  void printBLIF();
  void BLIF_put(std::ostream& out, int no_wires);
  void LUSTRE_put(std::ostream& out, int mode);
  void LUSTRE_put_equation(std::ostream& out, const std::string& node_base,
                           std::list<std::string>& wires);
  void ESTEREL_put(std::ostream& out, int mode);
  void ESTEREL_put_equation(std::ostream& out, const std::string& node_base,
                            std::list<std::string>& wires, int mode);
  void SYSTEMC_put(std::ostream& code, std::ostream& header);
  void printENCAPSULATEDHOV();
  void ENCAPSULATEDHOV_put(std::ostream& out);
  void DOC_put(std::ostream& out, int mode);
  void printDebug();
  void DEBUG_put(std::ostream& out);
  void DEBUG_OneSignal_put(std::ostream& out, Signal* s);

  // --- Simulation -------------------------------------------------------------------
  void simulate();
  int real_possible_transitions(bdd state, bdd expected, bdd* results);
  bdd next_state(bdd state, bdd inputs);
  bdd state_corres(bdd next_state_cube);
  void save_quarns_code();
  void SIMUL_QNC_put(std::ostream& out);
  void SIMUL_QNC_put_predef_func(std::ostream& out);
  void SIMUL_QNC_put_method(std::ostream& out);
  void SIMUL_QNC_put_binary_op(std::ostream& out);
  void SIMUL_QNC_put_unary_op(std::ostream& out);
  void SIMUL_QNC_put_const(std::ostream& out);

 private:
  std::string name;
  Statement* statement;
  std::list<Signal*>* inputList;
  std::list<Signal*>* outputList;
  std::list<Signal*>* localList;
  std::list<memorizedSignal*>* preList;
  std::list<Signal*>* dataSignalList;
  std::map<std::string, std::string*>* runDeclTable;
  std::list<regclass*>* registerList;
  EquationTable* compilation;
  Signal* set;
  Signal* reset;
  Signal* rtl;
  bool reincarnate;
  int finalised;
  int currentInstance;
  SignalManager* signalManager;
  std::map<std::string, DataBinding*>* dataTable;

  // localList by internal name (first signal of a name), since every wire lands there.
  // Caught up with the list's new tail on a look-up; rebuilt when the list was replaced
  // or changed otherwise than at its end.
  struct NameIndex {
    const std::list<Signal*>* list = nullptr;
    size_t size = 0;
    Signal* front = nullptr;
    Signal* back = nullptr;
    std::map<std::string, Signal*> byName;
  };
  NameIndex localIndex;
  Signal* findLocal(const std::string& name);
};

// Modules by name.
class ModuleTable {
 public:
  ModuleTable();

  // A name already there is a fatal HashTableAddException.
  void add(Module* m);
  Module* get(const std::string& name);
  void print();

  std::map<std::string, Module*>* getTable() { return table; }
  void setOutput(std::ostream* o) { out = o; }

 private:
  std::map<std::string, Module*>* table;
  std::ostream* out;
};

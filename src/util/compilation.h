// The run's statics: flags, module and data tables, variable kinds, wire names,
// fatal reports and the parser entry points. No instances.
#pragma once

#include <exception>
#include <list>
#include <string>

class ModuleTable;
class Module;
class Signal;
class class_qn_parser;
class DataTypeTable;
class DataMethodTable;
class DataConstantTable;
struct socket_type;

// Target languages for per-language constant values and data expression printers.
class TLanguage {
 public:
  enum { VHDL = 0, C = 1, CSHARP = 2, SMV = 3, LUSTRE = 4, ESTEREL = 5, DEFAULT = 6 };
};

// Programming faults; thrown, never caught.
class IllegalOperationException : public std::exception {
 public:
  IllegalOperationException(const char* what, const char* reason) : what_(what), reason_(reason) {}
  const char* what() const noexcept override { return what_; }
  const char* reason() const noexcept { return reason_; }

 private:
  const char* what_;
  const char* reason_;
};

class StatementWireException : public std::exception {
 public:
  explicit StatementWireException(const char* wire) : wire_(wire) {}
  const char* what() const noexcept override { return wire_; }

 private:
  const char* wire_;
};

class Compilation {
 public:
  // Variable kinds (usertype of an equation): odd is status, even is value.
  static constexpr int STAT = 1, VAL = 2, SINPUT = 3, VINPUT = 4, SOUTPUT = 5, VOUTPUT = 6, SREG = 7,
                   VREG = 8, SWIRE = 9, VWIRE = 10, SCLOCK = 11, VCLOCK = 12, SUSEDPRE = 13,
                   VUSEDPRE = 14;
  static bool isStatusType(int k) { return (k & 1) != 0; }
  static bool isValueType(int k) { return (k & 1) == 0; }

  static ModuleTable* ModTable;
  static ModuleTable* QncModTable;
  static class_qn_parser* pqn_parser;
  static std::string* EmptyString;
  static DataTypeTable* GDataTypeTable;
  static DataMethodTable* GDataMethodTable;
  static DataConstantTable* GDataConstantTable;

  static bool DebugFlag, PureSimulFlag, ValuedSimulFlag, QuarnsFlag, MainFlag, SaveFlag, HelpFlag,
      VersionFlag, KeepWiresFlag, ForgetLocalsNameFlag, CheckOverKnowledgeFlag, SMVFlag, CFlag,
      CSHARPFlag, BLIFFlag, VHDLALTERAFlag;
  static bool LeanCFlag;  // lean C, an option of this compiler's own

  // Wire names: prefix followed by a statement or module name (and a number).
  static std::string createSETName(const std::string& s);
  static std::string createRESETName(const std::string& s);
  static std::string createRTLName(const std::string& s);
  static std::string createRTLName(const std::string& s, long n);
  static std::string createACTIFName(const std::string& s);
  static std::string createACTIFName(const std::string& s, long n);
  static std::string createACTIFPLUSName(const std::string& s);
  static std::string createACTIFPLUSName(const std::string& s, long n);
  static std::string createACTIFBISName(const std::string& s);
  static std::string createACTIFBISPLUSName(const std::string& s);

  // Fatal reports: box, error stream, exit(1). None returns.
  [[noreturn]] static void ModulePertFailureException();
  [[noreturn]] static void IllegalOperationException(const std::string& s);
  [[noreturn]] static void AbstractMethodCallException(const std::string& s);
  [[noreturn]] static void AlreadyDefinedException(const std::string& s);
  [[noreturn]] static void ModuleUndefinedConstantException(const std::string& s);
  [[noreturn]] static void UndefinedMethodException(const std::string& s);
  [[noreturn]] static void UndefinedTypeException(const std::string& s);
  [[noreturn]] static void HashTableAddException(const std::string& table, const std::string& key);

  // Shows text in an alert box (when a display is reachable), writes it and a line end to
  // the error stream, and ends the process with status 1.
  [[noreturn]] static void fatal(const std::string& text);

  // Parsers.
  static void qn_parse(const std::string& filename);

  // Starts a run afresh: empty module tables, no data tables, every flag false, statement
  // counters at zero, default output paths, no parser state. A second compilation in the
  // same process (the tests, a panel) calls it first.
  static void reset();
  static Module* qnc_parse(const std::string& file, std::string* instance,
                           std::list<std::string>* inputNames, std::list<std::string>* outputNames);
  static Module* qnc_parse(const std::string& file, std::string* instance, std::string* second,
                           std::list<std::string>* inputNames, std::list<std::string>* outputNames);

  // Compiled module search over Module::CompilationFileList.
  static std::string getQncFileName(const std::string& name);
  static long getReincarnateFromQncFile(const std::string& name);
  static Module* createModuleFromQncCode(const std::string& name, std::list<std::string>* inputNames,
                                         std::list<std::string>* outputNames);

  // Simulator link: sends buffer, logs "Socket_call buffer: " and it on the error stream,
  // returns one reply of at most 1023 bytes ("" once the peer has closed).
  static std::string Socket_call(const std::string& buffer, socket_type* s);
};

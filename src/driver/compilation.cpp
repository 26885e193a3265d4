#include "util/compilation.h"

#include <cstdlib>
#include <fstream>
#include <iostream>

#include "data/data.h"
#include "util/report.h"
#include "front/qnc_reader.h"
#include "model/module.h"
#include "util/Stringpp.h"

// Both tables exist, empty, before main; ModuleTable prints on standard output.
ModuleTable* Compilation::ModTable = new ModuleTable();
ModuleTable* Compilation::QncModTable = new ModuleTable();
class_qn_parser* Compilation::pqn_parser = nullptr;
std::string* Compilation::EmptyString = new std::string();
DataTypeTable* Compilation::GDataTypeTable = nullptr;
DataMethodTable* Compilation::GDataMethodTable = nullptr;
DataConstantTable* Compilation::GDataConstantTable = nullptr;

bool Compilation::DebugFlag = false, Compilation::PureSimulFlag = false,
     Compilation::ValuedSimulFlag = false, Compilation::QuarnsFlag = false,
     Compilation::MainFlag = false, Compilation::SaveFlag = false, Compilation::HelpFlag = false,
     Compilation::VersionFlag = false, Compilation::KeepWiresFlag = false,
     Compilation::ForgetLocalsNameFlag = false, Compilation::CheckOverKnowledgeFlag = false,
     Compilation::SMVFlag = false, Compilation::CFlag = false, Compilation::CSHARPFlag = false,
     Compilation::BLIFFlag = false, Compilation::VHDLALTERAFlag = false, Compilation::LeanCFlag = false;

void Compilation::reset() {
  ModTable = new ModuleTable();
  QncModTable = new ModuleTable();
  pqn_parser = nullptr;
  pqnc_parser = nullptr;
  GDataTypeTable = nullptr;
  GDataMethodTable = nullptr;
  GDataConstantTable = nullptr;
  for (bool* f : {&DebugFlag, &PureSimulFlag, &ValuedSimulFlag, &QuarnsFlag, &MainFlag, &SaveFlag,
                  &HelpFlag, &VersionFlag, &KeepWiresFlag, &ForgetLocalsNameFlag, &CheckOverKnowledgeFlag,
                  &SMVFlag, &CFlag, &CSHARPFlag, &BLIFFlag, &VHDLALTERAFlag, &LeanCFlag})
    *f = false;
  for (int* n : {&Module::PauseNumber, &Module::NothingNumber, &Module::HaltNumber, &Module::ParallelNumber,
                 &Module::SequenceNumber, &Module::PresentNumber, &Module::AbsentNumber, &Module::LoopNumber,
                 &Module::LocalNumber, &Module::WaitNumber, &Module::AbortNumber, &Module::EmitNumber,
                 &Module::NoEmitNumber, &Module::SustainUntilNumber, &Module::RunNumber, &Module::SustainNumber,
                 &Module::AutomatonNumber, &Module::MealyMachineNumber, &Module::TransitionNumber,
                 &DataExpr::Indexation})
    *n = 0;
  Module::SimulationQncDir = ".";
  Module::OutputDir = ".";
  Module::OutputFile.clear();
  Module::CompilationFileList = nullptr;
}

std::string Compilation::createSETName(const std::string& s) { return "SET" + s; }
std::string Compilation::createRESETName(const std::string& s) { return "RESET" + s; }
std::string Compilation::createRTLName(const std::string& s) { return "RTL" + s; }
std::string Compilation::createRTLName(const std::string& s, long n) {
  return "RTL" + s + std::to_string(n);
}
std::string Compilation::createACTIFName(const std::string& s) { return "ACTIF" + s; }
std::string Compilation::createACTIFName(const std::string& s, long n) {
  return "ACTIF" + s + std::to_string(n);
}
std::string Compilation::createACTIFPLUSName(const std::string& s) { return "ACTIFPLUS" + s; }
std::string Compilation::createACTIFPLUSName(const std::string& s, long n) {
  return "ACTIFPLUS" + s + std::to_string(n);
}
std::string Compilation::createACTIFBISName(const std::string& s) { return "ACTIFBIS" + s; }
std::string Compilation::createACTIFBISPLUSName(const std::string& s) {
  return "ACTIFBISPLUS" + s;
}

void Compilation::fatal(const std::string& text) {
  report_alert("", text, "");
  std::cerr << text << std::endl;
  std::exit(1);
}

void Compilation::ModulePertFailureException() { fatal("Error: PERT failure ... "); }
void Compilation::IllegalOperationException(const std::string& s) {
  fatal("Error: Illegal operation!\n" + s);
}
void Compilation::AbstractMethodCallException(const std::string& s) {
  fatal("Error: calling Abstract method: " + s);
}
void Compilation::AlreadyDefinedException(const std::string& s) {
  fatal("Error: Already defined : " + s);
}
void Compilation::ModuleUndefinedConstantException(const std::string& s) {
  fatal("Error: Undefined constant: " + s);
}
void Compilation::UndefinedMethodException(const std::string& s) {
  fatal("Error: Undefined method: " + s);
}
void Compilation::UndefinedTypeException(const std::string& s) {
  fatal("Error: Undefined type: " + s);
}
void Compilation::HashTableAddException(const std::string& table, const std::string& key) {
  std::string text = table.empty() ? "Exception in Hash Table:" : "Exception in Hash Table: " + table + ":";
  fatal(text + " add:" + key + " is already defined");
}

// Compilation::qn_parse is defined with the source parser, in front/parse_supl.cpp.

// The first line of a compiled module file, at most 256 characters; empty if the file
// can't be read.
static std::string qncFirstLine(const std::string& file) {
  std::ifstream in(file);
  if (!in.is_open()) return "";
  char line[257] = {0};
  in.getline(line, sizeof line);
  return line;
}

std::string Compilation::getQncFileName(const std::string& name) {
  std::list<std::string>* files = Module::CompilationFileList;
  if (files == nullptr) return "";
  for (const std::string& file : *files)
    if (contains(qncFirstLine(file), name)) return file;
  return "";
}

long Compilation::getReincarnateFromQncFile(const std::string& name) {
  std::list<std::string>* files = Module::CompilationFileList;
  if (files == nullptr) return -1;
  for (const std::string& file : *files) {
    std::string line = qncFirstLine(file);
    int at = find(line, name);
    if (at < 0) continue;
    // "module: NAME  R F": the flag is the word behind the one that holds the name.
    size_t p = static_cast<size_t>(at) + name.size();
    while (p < line.size() && line[p] != ' ') p++;
    while (p < line.size() && line[p] == ' ') p++;
    size_t e = p;
    while (e < line.size() && line[e] != ' ' && line[e] != '\r') e++;
    return Stol(line.substr(p, e - p));
  }
  return -1;
}

Module* Compilation::createModuleFromQncCode(const std::string& name,
                                             std::list<std::string>* inputNames,
                                             std::list<std::string>* outputNames) {
  std::string file = getQncFileName(name);
  {
    std::ifstream in(file);
    if (!in.is_open()) return nullptr;
  }
  return qnc_parse(file, EmptyString, inputNames, outputNames);
}

// Compilation::qnc_parse is defined with the compiled module reader, in front/qnc_reader.cpp.

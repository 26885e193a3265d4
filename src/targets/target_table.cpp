#include "targets/target_table.h"

#include "util/compilation.h"
#include "model/module.h"
#include "targets/debug_trace.h"
#include "targets/formats.h"
#include "targets/lean_c.h"
#include "targets/quarns_server.h"

namespace {

std::string generate(const std::string& files) { return "\n*** generate " + files + "\n"; }
std::string none(const std::string&) { return ""; }

std::vector<std::string> smvFiles(const std::string& m) { return {target_path(m, ".smv", true)}; }
std::vector<std::string> blifFiles(const std::string& m) { return {target_path(m, ".blif", true)}; }
std::vector<std::string> cFiles(const std::string& m) {
  const std::string code = target_path(m, ".c", false);
  return {code, code.substr(0, code.size() - 2) + ".h"};
}
std::vector<std::string> csharpFiles(const std::string& m) { return {target_path(m, ".cs", true)}; }
std::vector<std::string> vhdlFiles(const std::string& m) { return {target_path(m, ".vhd", false)}; }
std::vector<std::string> qncFiles(const std::string& m) { return {target_path(m, ".qnc", true)}; }
std::vector<std::string> debugFiles(const std::string& m) { return {debug_trace_path(m)}; }
std::vector<std::string> quarnsFiles(const std::string& m) {
  return {Module::SimulationQncDir + "/quarns_" + m + ".cc"};
}
std::vector<std::string> blifSimulationFiles(const std::string& m) {
  return {Module::SimulationDir + m + ".blif"};
}

}  // namespace

const std::vector<Target>& targetTable() {
  static const std::vector<Target> table = {
      {"-nusmv", &Compilation::SMVFlag, "the NuSMV model", true, none, smvFiles,
       [](Module& m) { m.printSMV(); }},
      {"-blif", &Compilation::BLIFFlag, "the BLIF netlist", true,
       [](const std::string& m) { return generate(m + ".blif"); }, blifFiles,
       [](Module& m) { m.printBLIF(); }},
      {"-c", &Compilation::CFlag, "the C code", true,
       [](const std::string& m) { return generate(m + ".c and " + m + ".h"); }, cFiles,
       [](Module& m) { m.printC(); }},
      {"-lean_c", &Compilation::LeanCFlag, "the lean C code", true,
       [](const std::string& m) { return generate(m + ".c and " + m + ".h (lean)"); }, cFiles, print_lean_c},
      {"-csharp", &Compilation::CSHARPFlag, "the C# component", true,
       [](const std::string& m) { return generate(m + ".cs"); }, csharpFiles,
       [](Module& m) { m.printCSHARP(); }},
      {"-vhdl_altera", &Compilation::VHDLALTERAFlag, "the VHDL entity", true,
       [](const std::string& m) { return generate(m + ".vhd"); }, vhdlFiles,
       [](Module& m) { m.printVHDL(); }},
      {"-qnc", &Compilation::SaveFlag, "the compiled module", false,
       [](const std::string& m) {
         return "\n**** Save " + target_file_name(m, Module::OutputFile, ".qnc") + "\n\n";
       },
       qncFiles, [](Module& m) { m.save(); }},
      {"-debug", &Compilation::DebugFlag, "the debug trace", false, none, debugFiles,
       [](Module& m) { m.printDebug(); }},
      {"-pure_simul", &Compilation::PureSimulFlag, "the pure simulation", false,
       [](const std::string& m) { return "\n*** Simulate " + m + "\n"; }, blifSimulationFiles,
       [](Module& m) { m.simulate(); }},
      {"-valued_simul", &Compilation::ValuedSimulFlag, "the valued simulation", false,
       [](const std::string&) { return std::string("\n*** Simulate  with valued simulator\n"); },
       quarnsFiles,
       [](Module& m) {
         m.save_quarns_code();
         runValuedSimulator(m.getName());
       }},
      {"-quarns", &Compilation::QuarnsFlag, "the simulation server source", false,
       [](const std::string& m) { return "\n*** Save File for quarns:" + m + "\n"; }, quarnsFiles,
       [](Module& m) { m.save_quarns_code(); }},
  };
  return table;
}

const Target* findTarget(const std::string& w) {
  for (const Target& t : targetTable())
    if (w == t.option) return &t;
  return nullptr;
}

std::string notBuiltText(const Target& t) {
  return std::string("quarnc: ") + t.option + ": " + t.title + " is not built in this version";
}

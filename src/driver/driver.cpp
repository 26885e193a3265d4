#include "driver/driver.h"

#include <cstdlib>
#include <fstream>
#include <iostream>

#include "data/data.h"
#include "driver/compilation.h"
#include "gui/formspp.h"
#include "model/module.h"
#include "sim/sim_support.h"
#include "util/g_time.h"
#include "util/version.h"

namespace {

// Flag options: the option word and the field it sets.
struct FlagOption {
  const char* word;
  bool CommandLine::*field;
};
const FlagOption kFlagOptions[] = {
    {"-debug", &CommandLine::debug},
    {"-pure_simul", &CommandLine::pureSimul},
    {"-valued_simul", &CommandLine::valuedSimul},
    {"-quarns", &CommandLine::quarns},
    {"-qnc", &CommandLine::save},
    {"-keep_wires", &CommandLine::keepWires},
    {"-forget_l_name", &CommandLine::forgetLocalsName},
    {"-check_overknowledge", &CommandLine::checkOverKnowledge},
    {"-h", &CommandLine::help},
    {"-v", &CommandLine::version},
    {"-c", &CommandLine::c},
    {"-csharp", &CommandLine::csharp},
    {"-blif", &CommandLine::blif},
    {"-nusmv", &CommandLine::smv},
    {"-vhdl_altera", &CommandLine::vhdlAltera},
};

// Where each field of the command line goes among Compilation's flags.
struct FlagTarget {
  bool CommandLine::*field;
  bool* flag;
};
const FlagTarget kFlagTargets[] = {
    {&CommandLine::debug, &Compilation::DebugFlag},
    {&CommandLine::pureSimul, &Compilation::PureSimulFlag},
    {&CommandLine::valuedSimul, &Compilation::ValuedSimulFlag},
    {&CommandLine::quarns, &Compilation::QuarnsFlag},
    {&CommandLine::main, &Compilation::MainFlag},
    {&CommandLine::save, &Compilation::SaveFlag},
    {&CommandLine::help, &Compilation::HelpFlag},
    {&CommandLine::version, &Compilation::VersionFlag},
    {&CommandLine::keepWires, &Compilation::KeepWiresFlag},
    {&CommandLine::forgetLocalsName, &Compilation::ForgetLocalsNameFlag},
    {&CommandLine::checkOverKnowledge, &Compilation::CheckOverKnowledgeFlag},
    {&CommandLine::smv, &Compilation::SMVFlag},
    {&CommandLine::c, &Compilation::CFlag},
    {&CommandLine::csharp, &Compilation::CSHARPFlag},
    {&CommandLine::blif, &Compilation::BLIFFlag},
    {&CommandLine::vhdlAltera, &Compilation::VHDLALTERAFlag},
};

// A wrong command line: message box, error stream, exit 1.
[[noreturn]] void commandLineFailure(const std::string& text) {
  fl_show_Smessages(text);
  std::cerr << text << std::endl;
  std::exit(1);
}

// Panel mode without a panel to show: the run stops at once instead of waiting.
int noPanel() {
  std::cerr << "quarnc: no display for the front panel; give the options and the file on the "
               "command line (quarnc -h)"
            << std::endl;
  return 1;
}

}  // namespace

CommandLine scanCommandLine(const std::vector<std::string>& args) {
  CommandLine cl;
  size_t n = args.size();
  for (size_t i = 0; i < n; i++) {
    const std::string& a = args[i];
    if (a.empty() || a[0] != '-') {
      cl.sourceFile = a;
      continue;
    }
    if (a == "-o" || a == "-D" || a == "-main") {
      if (i + 1 >= n) {
        cl.failure = a == "-o"   ? "error: no outfile name supplied\n"
                     : a == "-D" ? "error: no directory name supplied\n"
                                 : "error: no main module name supplied\n";
        return cl;
      }
      const std::string& value = args[++i];
      if (a == "-o") {
        cl.outputFile = value;
      } else if (a == "-D") {
        cl.outputDir = value;
      } else {
        cl.mainName = value;
        cl.main = true;
      }
      continue;
    }
    if (a == "-comp_files") {
      if (i + 1 >= n || args[i + 1] != "[") {
        cl.failure = "error: no beginning of compilation files list supplied\n";
        return cl;
      }
      i++;
      cl.compilationFiles.emplace();  // a second "-comp_files" drops the first list
      for (;;) {
        if (++i >= n) {
          cl.failure = "error: no end of compilation files list supplied\n";
          return cl;
        }
        if (args[i] == "]") break;
        cl.compilationFiles->push_back(args[i]);
      }
      continue;
    }
    bool known = false;
    for (const FlagOption& f : kFlagOptions) {
      if (a == f.word) {
        cl.*(f.field) = true;
        known = true;
        break;
      }
    }
    if (!known) cl.unknownOptions.push_back(a);
  }
  return cl;
}

void applyCommandLine(const CommandLine& cl) {
  for (const FlagTarget& t : kFlagTargets)
    if (cl.*(t.field)) *t.flag = true;
  if (cl.outputFile) Module::OutputFile = *cl.outputFile;
  if (cl.outputDir) Module::OutputDir = *cl.outputDir;
  if (cl.compilationFiles)
    Module::CompilationFileList = new std::list<std::string>(*cl.compilationFiles);
}

std::string usageText(bool amongOthers) {
  std::string s = "   quarnc [-h] [-v]";
  s += "    or\n";
  s += "   quarnc [-debug] [-pure_simul] [-valued_simul] [-qnc] [-D outdir] [-o file]\n";
  s += amongOthers ? "           [-keep_wires] [-forget_l_name]\n"
                   : "           [-keep_wires] [-forget_l_name] [-check_overknowledge]\n";
  s += "           [-comp_files \"[\" qnc file list \"]\" ] \n";
  s += "           [-main mainname] filename\n";
  s += "           [-template_valued_simul] [-c] [-csharp] [-blif] [-nusmv] [-vhdl_altera]\n";
  return s;
}

void showHelp(bool amongOthers) {
  std::string text = usageText(amongOthers);
  fl_show_Smessages(text);
  std::cerr << text << std::endl;
}

void showVersion() {
  std::cout << "   quarnc Compiler of Quarn Module version: " << quarn::kVersionText << "\n\n";
}

std::string mainNameFromPath(const std::string& path) {
  size_t at = path.find(".qn");
  if (at == std::string::npos) return "";
  std::string cut = path.substr(0, at);
  size_t slash = cut.rfind('/');
  if (slash == std::string::npos || slash < 2) return cut;
  return cut.substr(slash + 1);
}

std::string shownQncName(const std::string& moduleName, const std::string& outputFile) {
  if (outputFile.empty()) return moduleName + ".qnc";
  if (outputFile.find(".qnc") != std::string::npos) return outputFile;
  return outputFile + ".qnc";
}

std::string quarnsBuildCommand(const std::string& moduleName,
                               const std::list<std::string>& typeNames) {
  std::string command = "g++ quarns_" + moduleName + ".cc ";
  for (const std::string& t : typeNames) command += "quarns_data_user_" + t + ".cc ";
  command += "-o quarns_" + moduleName;
  return command;
}

// Builds the data server with the user's files and runs it; the server starts the
// simulator "quarns". A missing user file or a failed build ends the run with status 1.
void runValuedSimulator(const std::string& name) {
  std::list<std::string> types;  // ascending type names; none without a data section
  if (Compilation::GDataTypeTable != nullptr)
    for (const auto& [type, index] : Compilation::GDataTypeTable->getTypeTable()) types.push_back(type);
  for (const std::string& t : types)
    for (const char* ext : {".h", ".cc"}) {
      std::string file = "quarns_data_user_" + t + ext;
      if (!std::ifstream(file)) {
        std::cerr << "quarnc: -valued_simul: missing user file " << file << " (check_" << t << ", string_to_"
                  << t << ", " << t << "_to_string and the methods of " << t << ")" << std::endl;
        std::exit(1);
      }
    }
  std::string build = quarnsBuildCommand(name, types);
  std::cerr << "calling: " << build << std::endl;
  if (quarn_sim_run(build) != 0) {
    std::cerr << "quarnc: -valued_simul: the server quarns_" << name << " does not build" << std::endl;
    std::exit(1);
  }
  std::string run = "./quarns_" + name;
  std::cerr << "calling: " << run << std::endl;
  if (quarn_sim_run(run) != 0) {
    std::cerr << "quarnc: -valued_simul: the server quarns_" << name << " ended with a failure" << std::endl;
    std::exit(1);
  }
}

int runPipeline(const std::string& sourceFile, const std::string& mainName,
                bool helpAmongOthers) {
  if (Compilation::HelpFlag) showHelp(helpAmongOthers);
  if (Compilation::VersionFlag) showVersion();
  if (Compilation::HelpFlag || Compilation::VersionFlag) return 0;

  std::cerr << "***Parsing File: " << sourceFile << std::endl;
  Compilation::qn_parse(sourceFile);

  if (!Compilation::MainFlag) {
    fl_show_Salert("no main module supplied", "", "");
    // The box may be skipped (batch run, no display): the text stays on the error stream.
    std::cerr << "no main module supplied" << std::endl;
    std::exit(1);
  }

  Module* mainModule = Compilation::ModTable->get(mainName);
  if (mainModule == nullptr) {
    std::cerr << "Main module: " << mainName << " undefined\n";
    fl_show_Salert("Main module:", mainName, "undefined");
    std::exit(1);
  }
  const std::string& name = mainName;
  std::cerr << "\n*** Compile " << name << " into Equations\n";

  g_chrono chrono;
  chrono.Go();

  // Every module of the file is checked, used by the main module or not. A check may
  // parse another source file into the table; the map's iterators stay valid.
  for (auto& [moduleName, module] : *Compilation::ModTable->getTable())
    module->complementary_check_syntax();
  mainModule->complementary_check_syntax();
  mainModule->compile();
  if (Compilation::CheckOverKnowledgeFlag) {
    mainModule->check_over_knowledge();
  }

  bool anyTarget = Compilation::SMVFlag || Compilation::BLIFFlag || Compilation::CFlag ||
                   Compilation::CSHARPFlag || Compilation::VHDLALTERAFlag;
  if (anyTarget) {
    // The generators work on a finalized private copy; the main module stays as compiled.
    Module* copy = new Module(*mainModule);
    copy->finalize(0);
    if (Compilation::SMVFlag) {
      // TODO(targets): copy->printSMV();
    }
    if (Compilation::BLIFFlag) {
      std::cerr << "\n*** generate " << name << ".blif" << std::endl;
      // TODO(targets): copy->printBLIF();
    }
    if (Compilation::CFlag) {
      std::cerr << "\n*** generate " << name << ".c and " << name << ".h" << std::endl;
      copy->printC();
    }
    if (Compilation::CSHARPFlag) {
      std::cerr << "\n*** generate " << name << ".cs" << std::endl;
      // TODO(targets): copy->printCSHARP();
    }
    if (Compilation::VHDLALTERAFlag) {
      std::cerr << "\n*** generate " << name << ".vhd" << std::endl;
      // TODO(targets): copy->printVHDL();
    }
  }
  if (Compilation::SaveFlag) {
    std::cerr << "\n**** Save " << shownQncName(name, Module::OutputFile) << "\n\n";
    mainModule->save();
  }
  if (Compilation::DebugFlag) {
    // TODO(model): mainModule->printDebug();
  }
  if (Compilation::PureSimulFlag) {
    std::cerr << "\n*** Simulate " << name << std::endl;
    mainModule->simulate();
  }
  if (Compilation::ValuedSimulFlag) {
    std::cerr << "\n*** Simulate  with valued simulator" << std::endl;
    mainModule->save_quarns_code();
    runValuedSimulator(name);
  }
  if (Compilation::QuarnsFlag) {
    std::cerr << "\n*** Save File for quarns:" << name << std::endl;
    mainModule->save_quarns_code();
  }

  long ms = chrono.Stop();
  std::cout << "compilation finished in " << ms / 1000.0 << " seconds" << "\n\n";
  delete mainModule;
  return 0;
}

int quarnc_main(int argc, char** argv, PanelMode panel) {
  std::vector<std::string> args(argv + 1, argv + argc);
  if (args.size() == 1 && args[0] == "-h") {
    showHelp(false);
    return 0;
  }
  if (args.size() == 1 && args[0] == "-v") {
    showVersion();
    return 0;
  }
  if (args.size() <= 1) {
    PanelRun run;
    if (panel == nullptr || !panel(argc, argv, run)) return noPanel();
    return runPipeline(run.sourceFile, run.mainName, false);
  }

  CommandLine cl = scanCommandLine(args);
  for (const std::string& u : cl.unknownOptions)
    std::cerr << "unknown option: " << u << "  skipping ...\n";
  if (!cl.failure.empty()) commandLineFailure(cl.failure);
  applyCommandLine(cl);
  return runPipeline(cl.sourceFile, cl.mainName, true);
}

#include "driver/driver.h"

#include <cstdlib>
#include <iostream>

#include "data/data.h"
#include "util/compilation.h"
#include "util/report.h"
#include "model/module.h"
#include "targets/formats.h"
#include "targets/target_table.h"
#include "util/g_time.h"
#include "util/version.h"

namespace {

// Option words that set a flag of their own and start no stage; the stages' words come
// from the target table.
struct FlagOption {
  const char* word;
  bool* flag;
};
const FlagOption kFlagOptions[] = {
    {"-keep_wires", &Compilation::KeepWiresFlag},
    {"-forget_l_name", &Compilation::ForgetLocalsNameFlag},
    {"-check_overknowledge", &Compilation::CheckOverKnowledgeFlag},
    {"-h", &Compilation::HelpFlag},
    {"-v", &Compilation::VersionFlag},
};

bool* flagOf(const std::string& word) {
  for (const FlagOption& f : kFlagOptions)
    if (word == f.word) return f.flag;
  const Target* t = findTarget(word);
  return t ? t->flag : nullptr;
}

// A wrong command line: message box, error stream, exit 1.
[[noreturn]] void commandLineFailure(const std::string& text) {
  report_message(text);
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
    if (flagOf(a))
      cl.flags.insert(a);
    else
      cl.unknownOptions.push_back(a);
  }
  return cl;
}

void applyCommandLine(const CommandLine& cl) {
  for (const std::string& w : cl.flags) *flagOf(w) = true;
  if (cl.main) Compilation::MainFlag = true;
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
  report_message(text);
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

int runPipeline(const std::string& sourceFile, const std::string& mainName,
                bool helpAmongOthers) {
  if (Compilation::HelpFlag) showHelp(helpAmongOthers);
  if (Compilation::VersionFlag) showVersion();
  if (Compilation::HelpFlag || Compilation::VersionFlag) return 0;

  // A stage that is not built stops the run before anything is read or announced.
  for (const Target& t : targetTable()) {
    if (*t.flag && !t.write) {
      std::cerr << notBuiltText(t) << std::endl;
      return 1;
    }
  }

  std::cerr << "***Parsing File: " << sourceFile << std::endl;
  Compilation::qn_parse(sourceFile);

  if (!Compilation::MainFlag) {
    report_alert("no main module supplied", "", "");
    // The box may be skipped (batch run, no display): the text stays on the error stream.
    std::cerr << "no main module supplied" << std::endl;
    std::exit(1);
  }

  Module* mainModule = Compilation::ModTable->get(mainName);
  if (mainModule == nullptr) {
    std::cerr << "Main module: " << mainName << " undefined\n";
    report_alert("Main module:", mainName, "undefined");
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

  // The generators work on a finalized private copy; the main module stays as compiled.
  Module* copy = nullptr;
  for (const Target& t : targetTable()) {
    if (!*t.flag) continue;
    Module* on = mainModule;
    if (t.onFinalizedCopy) {
      if (!copy) {
        copy = new Module(*mainModule);
        copy->finalize(0);
      }
      on = copy;
    }
    std::cerr << t.progress(name) << std::flush;
    t.write(*on);
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

// Program entry of quarnc: mode choice, option scan, and the fixed compile pipeline.
#pragma once

#include <list>
#include <optional>
#include <set>
#include <string>
#include <vector>

// What a command line asks for. scanCommandLine fills it without touching the run's
// statics; applyCommandLine writes it into Compilation's flags and Module's file statics.
struct CommandLine {
  std::string sourceFile;  // the last argument that does not begin with "-"
  std::string mainName;
  std::optional<std::string> outputFile;                  // "-o"
  std::optional<std::string> outputDir;                   // "-D"
  std::optional<std::list<std::string>> compilationFiles;  // "-comp_files [ ... ]"

  bool main = false;                // "-main" was given
  std::set<std::string> flags;      // flag and stage option words given, e.g. "-c"
  bool has(const std::string& word) const { return flags.count(word) != 0; }

  std::vector<std::string> unknownOptions;  // in command-line order
  std::string failure;  // text of a wrong command line; the scan stopped there
};

// Scans the arguments behind the program name, left to right; later ones win.
CommandLine scanCommandLine(const std::vector<std::string>& args);
// Sets the flags (never clears one) and the output statics named by the command line.
void applyCommandLine(const CommandLine& cl);

// The usage text; amongOthers gives the short fourth piece of a "-h" among other arguments.
std::string usageText(bool amongOthers);
void showHelp(bool amongOthers = false);
void showVersion();

// The main module name the panel derives from a source path: the path cut at its first
// ".qn", behind the last "/" found at index 2 or higher. Empty without ".qn".
std::string mainNameFromPath(const std::string& path);

// Runs the pipeline from the flags already set: help/version, parse, checks, compile,
// targets, save, debug, simulation, timing line. Returns 0; failures exit(1).
int runPipeline(const std::string& sourceFile, const std::string& mainName, bool helpAmongOthers);

// What the front panel hands to the pipeline; the panel sets the flags and output
// statics itself.
struct PanelRun {
  std::string sourceFile;
  std::string mainName;
};
// Panel mode: shows the panel, polls it until compile (true) or quit (exit 0). Gives
// false at once when no panel can be shown. The panel lives above the driver, so the
// program's main hands it in.
using PanelMode = bool (*)(int argc, char** argv, PanelRun& run);

// The whole program: main(argc, argv) of quarnc.
int quarnc_main(int argc, char** argv, PanelMode panel = nullptr);

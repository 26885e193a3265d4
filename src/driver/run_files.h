// Output and compiled-file settings of the run.
// TODO(model): these are Module::OutputFile, Module::OutputDir and
// Module::CompilationFileList; switch to them when the module header lands.
#pragma once

#include <list>
#include <string>

struct RunFiles {
  static std::string OutputFile;                        // empty
  static std::string OutputDir;                         // "."
  static std::list<std::string>* CompilationFileList;  // null: no "-comp_files"
};

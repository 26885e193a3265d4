// What the unit tests share: a fresh run, modules from text, a scratch directory.
#pragma once

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "util/compilation.h"
#include "front/parse_supl.h"
#include "model/module.h"

namespace quarn_test {

// A run started afresh, without windows.
inline void fresh_run() {
  setenv("QUARN_BATCH", "1", 1);
  Compilation::reset();
}

// A directory of this process's own, made empty on first use.
inline std::string scratch_dir() {
  static const std::string dir = [] {
    std::string d = std::filesystem::temp_directory_path() / ("quarn_test_" + std::to_string(getpid()));
    std::filesystem::remove_all(d);
    std::filesystem::create_directories(d);
    return d;
  }();
  return dir;
}

// The text through the source parser in a fresh run; the named module, or null.
inline Module* module_from_text(const std::string& text, const std::string& name = "m") {
  fresh_run();
  const std::string file = scratch_dir() + "/module.qn";
  {
    std::ofstream out(file);
    out << text << "\n";
  }
  Compilation::qn_parse(file);
  return Compilation::ModTable->get(name);
}

// The same, checked and compiled.
inline Module* compiled_from_text(const std::string& text, const std::string& name = "m") {
  Module* m = module_from_text(text, name);
  if (!m) return nullptr;
  m->complementary_check_syntax();
  m->compile();
  return m;
}

}  // namespace quarn_test

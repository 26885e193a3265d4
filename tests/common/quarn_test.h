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
#include "signals/signal_manager.h"

// A compilation frees nothing by design: what it made stays until the process ends.
extern "C" __attribute__((used)) inline const char* __asan_default_options() {
  return "detect_leaks=0";
}

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

// A death-test pattern that matches the text literally.
inline std::string literally(const std::string& text) {
  std::string out;
  for (char c : text) {
    if (std::string("\\.^$|()[]{}*+?").find(c) != std::string::npos) out += '\\';
    out += c;
  }
  return out;
}

// Signals of a module built by hand, in no list or in the list of their kind; a type
// makes them valued.
inline Signal* new_signal(Module& m, const std::string& name, const std::string& type = "") {
  Signal* s = new Signal(name, &m, m.getBddWood());
  if (!type.empty()) s->setValueType(type, &m);
  return s;
}

inline Signal* input(Module& m, const std::string& name, const std::string& type = "") {
  Signal* s = new_signal(m, name, type);
  s->setInput();
  m.addInputSignal(s);
  return s;
}

inline Signal* output(Module& m, const std::string& name, const std::string& type = "") {
  Signal* s = new_signal(m, name, type);
  s->setOutput();
  m.addOutputSignal(s);
  return s;
}

inline Signal* local(Module& m, const std::string& name, const std::string& type = "") {
  Signal* s = new_signal(m, name, type);
  s->setLocal();
  m.addLocalSignal(s);
  return s;
}

}  // namespace quarn_test

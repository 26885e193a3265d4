// Helpers shared by the model tests.
#pragma once

#include <cstdlib>
#include <string>

#include "model/module.h"
#include "signals/signal_manager.h"

namespace model_test {

// Reports must not wait for a click on a box during tests.
inline const bool kBatch = (setenv("QUARN_BATCH", "1", 1), true);

// A death-test pattern that matches the text literally.
inline std::string literally(const std::string& text) {
  std::string out;
  for (char c : text) {
    if (std::string("\\.^$|()[]{}*+?").find(c) != std::string::npos) out += '\\';
    out += c;
  }
  return out;
}

inline Signal* newSignal(Module& m, const std::string& name, const std::string& type = "") {
  Signal* s = new Signal(name, &m, m.getBddWood());
  if (!type.empty()) s->setValueType(type, &m);
  return s;
}

inline Signal* input(Module& m, const std::string& name, const std::string& type = "") {
  Signal* s = newSignal(m, name, type);
  s->setInput();
  m.addInputSignal(s);
  return s;
}

inline Signal* output(Module& m, const std::string& name, const std::string& type = "") {
  Signal* s = newSignal(m, name, type);
  s->setOutput();
  m.addOutputSignal(s);
  return s;
}

inline Signal* local(Module& m, const std::string& name, const std::string& type = "") {
  Signal* s = newSignal(m, name, type);
  s->setLocal();
  m.addLocalSignal(s);
  return s;
}

}  // namespace model_test

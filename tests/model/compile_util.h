// Modules parsed from text and compiled, for the compile tests.
#pragma once

#include <cstdlib>
#include <fstream>
#include <string>
#include <unistd.h>

#include "util/compilation.h"
#include "model/module.h"
#include "common/quarn_test.h"

namespace compile_test {

// A fresh run state, the text through the source parser, the named module checked
// and compiled.
inline Module* compileText(const std::string& text, const std::string& name = "m") {
  return quarn_test::compiled_from_text(text, name);
}

}  // namespace compile_test

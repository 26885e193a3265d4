// The example programs compiled, saved and read back.
#include <gtest/gtest.h>
#include <unistd.h>

#include <fstream>
#include <sstream>

#include "common/quarn_test.h"
#include "util/compilation.h"
#include "equations/Bddexpression.h"
#include "model/module.h"

namespace {


Module* compileExample(const std::string& name) {
  quarn_test::fresh_run();
  Compilation::qn_parse(std::string(QUARN_SOURCE_DIR) + "/examples/" + name + ".qn");
  Module* m = Compilation::ModTable->get(name);
  if (!m) return nullptr;
  m->complementary_check_syntax();
  m->compile();
  return m;
}

std::string written(Module& m) {
  std::ostringstream out;
  m.QNC_put(out, 2, 1, 0);
  return out.str();
}

Module* readText(const std::string& text) {
  std::string path = std::string(QUARN_BINARY_DIR) + "/qnc_example_" + std::to_string(getpid()) + ".qnc";
  std::ofstream(path) << text;
  Module* m = Compilation::qnc_parse(path, Compilation::EmptyString, nullptr, nullptr);
  std::remove(path.c_str());
  std::remove((path + ".log").c_str());
  return m;
}

TEST(QncExamples, CompiledExamplesReadBackToAFixpoint) {
  for (const char* name : {"abro", "counter", "parity", "traffic"}) {
    SCOPED_TRACE(name);
    Module* m = compileExample(name);
    ASSERT_NE(m, nullptr);
    std::string first = written(*m);
    Module* r1 = readText(first);
    ASSERT_NE(r1, nullptr) << first;
    EXPECT_EQ(r1->getBddWood()->exp_number(), m->getBddWood()->exp_number());
    std::string second = written(*r1);
    Module* r2 = readText(second);
    ASSERT_NE(r2, nullptr) << second;
    EXPECT_EQ(written(*r2), second);
  }
}

}  // namespace

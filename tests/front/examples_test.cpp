// The example programs of examples/ parse into the modules they declare.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "common/quarn_test.h"
#include "util/compilation.h"
#include "model/module.h"
#include "model/statement.h"

namespace {

TEST(Examples, Parse) {
  struct Case {
    const char* file;
    const char* modules[2];
    bool (*root)(Statement*);
  } cases[] = {
      {"abro.qn", {"abro"}, [](Statement* s) { return dynamic_cast<Loop*>(s) != nullptr; }},
      {"counter.qn", {"counter"}, [](Statement* s) { return dynamic_cast<Sn*>(s) != nullptr; }},
      {"traffic.qn", {"traffic"}, [](Statement* s) { return s->isAutomaton(); }},
      {"parity.qn", {"parity"},
       [](Statement* s) { return dynamic_cast<MealyMachine*>(s) != nullptr; }},
      {"watchdog.qn", {"beat", "watchdog"},
       [](Statement* s) { return dynamic_cast<Pn*>(s) != nullptr; }},
  };
  for (const Case& c : cases) {
    quarn_test::fresh_run();
    Compilation::qn_parse(std::string(QUARN_SOURCE_DIR) + "/examples/" + c.file);
    const char* last = nullptr;
    for (const char* name : c.modules) {
      if (name == nullptr) break;
      ASSERT_NE(Compilation::ModTable->get(name), nullptr) << c.file << ": " << name;
      last = name;
    }
    // The last module of a file is its main one.
    EXPECT_TRUE(c.root(Compilation::ModTable->get(last)->getStatement())) << c.file;
  }
}

}  // namespace

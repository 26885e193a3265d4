// Large generated programs compile, and every member adds the same equations as the
// first ones: the count is affine in the number of members.
#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "equations/Bddexpression.h"
#include "model/statement.h"
#include "compile_util.h"

namespace {

int Serial = 0;

// The equations of the module made by text(name, n).
long Equations(const std::function<std::string(const std::string&, int)>& text, int n,
               Module** out = nullptr) {
  std::string name = "perf" + std::to_string(Serial++);
  Module* m = compile_test::compileText(text(name, n), name);
  EXPECT_NE(m, nullptr) << n;
  if (!m) return -1;
  if (out) *out = m;
  return m->getBddWood()->exp_number();
}

std::string Members(int n, const std::string& member, const std::string& separator) {
  std::string s;
  for (int k = 0; k < n; ++k) s += (k ? separator : std::string()) + member;
  return s;
}

TEST(PerfCompile, LargeProgramsGrowByTheSameEquationsPerMember) {
  struct Case {
    const char* what;
    std::function<std::string(const std::string&, int)> text;
    int large;
  } cases[] = {
      {"sequence of pauses",
       [](const std::string& name, int n) {
         return "module " + name + ": Output: O;\n" + Members(n, "pause", " >> ") +
                " >> emit O\nend";
       },
       600},
      {"sequence of emissions",
       [](const std::string& name, int n) {
         return "module " + name + ": Output: O;\n" + Members(n, "emit O", " >> ") + "\nend";
       },
       2000},
      {"parallel waits",
       [](const std::string& name, int n) {
         return "module " + name + ": Input: A; Output: O;\n" +
                Members(n, "{ wait A >> emit O }", "\n|| ") + "\nend";
       },
       200},
      {"nested aborts",
       [](const std::string& name, int n) {
         std::string s = "module " + name + ": Input: A; Output: O;\n";
         for (int k = 0; k < n; ++k) s += "strong abort {\n";
         s += "loop { pause >> emit O }\n";
         for (int k = 0; k < n; ++k) s += "} when A\n";
         return s + "end";
       },
       300},
  };
  for (const Case& c : cases) {
    long two = Equations(c.text, 2);
    long three = Equations(c.text, 3);
    long step = three - two;
    EXPECT_GT(step, 0) << c.what;
    EXPECT_EQ(Equations(c.text, c.large), two + (c.large - 2) * step) << c.what;
  }
}

TEST(PerfCompile, LongListsKeepEveryMemberInOrder) {
  Module* m = nullptr;
  Equations(
      [](const std::string& name, int n) {
        return "module " + name + ": Output: O;\n" + Members(n, "nothing", " >> ") + "\nend";
      },
      2000, &m);
  ASSERT_NE(m, nullptr);
  auto* seq = dynamic_cast<Sn*>(m->getStatement());
  ASSERT_NE(seq, nullptr);
  ASSERT_EQ(seq->getCount(), 2000);
  for (int i = 1; i < 2000; ++i)
    EXPECT_NE(seq->getArray()[i], seq->getArray()[i - 1]) << i;

  Equations(
      [](const std::string& name, int n) {
        return "module " + name + ": Output: O;\n" + Members(n, "nothing", " || ") + "\nend";
      },
      300, &m);
  auto* par = dynamic_cast<Pn*>(m->getStatement());
  ASSERT_NE(par, nullptr);
  EXPECT_EQ(par->getCount(), 300);
}

}  // namespace

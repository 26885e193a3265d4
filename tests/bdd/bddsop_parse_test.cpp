// The Boolean expression reader: word sets, precedence, failure words and
// round trips through the printers.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "bdd/bddpp.h"
#include "bdd/parse_exp_bdd.h"

namespace {

class SopParse : public ::testing::Test {
 protected:
  void SetUp() override {
    for (const char* name : {"a", "b", "c", "d", "e"}) v.push_back(m.New_var_last(name));
  }
  bdd n(const bdd& f) { return m.Bdd_not(f); }
  bdd And(const bdd& f, const bdd& g) { return m.Bdd_and(f, g); }
  bdd Or(const bdd& f, const bdd& g) { return m.Bdd_or(f, g); }

  bddpp_manager m;
  std::vector<bdd> v;
};

TEST_F(SopParse, WordsAndPrecedence) {
  bdd a = v[0], b = v[1], c = v[2];
  const struct {
    const char* text;
    bdd f;
  } cases[] = {
      {"a", a},
      {"a and b", And(a, b)},
      {"a AND b", And(a, b)},
      {"a . b", And(a, b)},
      {"a & b", And(a, b)},
      {"a&b", And(a, b)},
      {"a or b", Or(a, b)},
      {"a OR b", Or(a, b)},
      {"a + b", Or(a, b)},
      {"a | b", Or(a, b)},
      {"a|b", Or(a, b)},
      {"not a", n(a)},
      {"NOT a", n(a)},
      {"! a", n(a)},
      {"!a", n(a)},
      {"~a", n(a)},
      {"a xor b", m.Bdd_xor(a, b)},
      {"a XOR b", m.Bdd_xor(a, b)},
      {"a xnor b", m.Bdd_xnor(a, b)},
      {"a XNOR b", m.Bdd_xnor(a, b)},
      {"0", m.Bdd_zero()},
      {"1", m.Bdd_one()},
      {"[a]", a},
      {"(a] + [b)", Or(a, b)},
      {"   a   +   b  ", Or(a, b)},
      {"a + b . c", Or(a, And(b, c))},
      {"not a and b", And(n(a), b)},
      {"not (a or b)", n(Or(a, b))},
      {"a or b xor c", m.Bdd_xor(Or(a, b), c)},
      {"a xor b or c", Or(m.Bdd_xor(a, b), c)},
      {"a and not not b", And(a, b)},
      {"((a))", a},
      {"a and 1 or 0", a},
  };
  for (const auto& k : cases) {
    int error = 99;
    testing::internal::CaptureStderr();
    bdd f = m.Parse_expression(k.text, &error);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "") << k.text;
    EXPECT_EQ(f, k.f) << k.text;
    EXPECT_EQ(error, 0) << k.text;
  }
}

TEST_F(SopParse, FailuresGiveZeroAndTheirWords) {
  const std::string deep = std::string(12000, '(') + "a" + std::string(12000, ')');
  const struct {
    std::string text;
    std::string words;
    int error;  // 99: not written
  } cases[] = {
      {"", "", 99},
      {"a / b", "PARSING ERROR about expression: \"a / b\": / char detection!\n", 99},
      {"(a]", "PARSING ERROR about expression: \"(a]\": bad parenthesing!\n", 99},
      {"((a)", "PARSING ERROR about expression: \"((a)\": bad parenthesing!\n", 99},
      {"a.b",
       "parsing error in expression: name \"a.b\" not identificated ...\n"
       "PARSING ERROR about expression: \"a.b\"\n",
       1},
      {"And",
       "parsing error in expression: name \"And\" not identificated ...\n"
       "PARSING ERROR about expression: \"And\"\n",
       1},
      {"a +", "syntax error\nPARSING ERROR about expression: \"a +\"\n", 1},
      {"a b", "syntax error\nPARSING ERROR about expression: \"a b\"\n", 1},
      {"( )", "syntax error\nPARSING ERROR about expression: \"( )\"\n", 1},
      // a tab is a token of its own, so two names follow each other
      {"a\tb", "syntax error\nPARSING ERROR about expression: \"a\tb\"\n", 1},
      {"<1> a", "PARSING ERROR about expression: \"<1> a\": unknown symbols '<' and '>' \n", 0},
      {"<0> a",
       "parsing error in expression: \"0\" is not a correct priority value ...\n"
       "PARSING ERROR about expression: \"<0> a\"\n",
       1},
      {"<x> a",
       "parsing error in expression: name \"x\" is not a correct priority value ...\n"
       "PARSING ERROR about expression: \"<x> a\"\n",
       1},
      {"<-1> a",
       "parsing error in expression: name \"-1\" is not a correct priority value ...\n"
       "PARSING ERROR about expression: \"<-1> a\"\n",
       1},
      {"<1 a", "syntax error\nPARSING ERROR about expression: \"<1 a\"\n", 1},
      {deep, "memory exhausted\nPARSING ERROR about expression: \"" + deep + "\"\n", 2},
  };
  for (const auto& k : cases) {
    int error = 99;
    testing::internal::CaptureStderr();
    bdd f = m.Parse_expression(k.text, &error);
    std::string words = testing::internal::GetCapturedStderr();
    EXPECT_EQ(words, k.words) << k.text;
    EXPECT_EQ(f, m.Bdd_zero()) << k.text;
    EXPECT_EQ(error, k.error) << k.text;
  }
}

TEST_F(SopParse, PriorityPrefix) {
  const struct {
    const char* text;
    bdd f;
    int priority;
    int error;
  } cases[] = {
      {"a", v[0], 0, 0},
      {"<1> a", v[0], 1, 0},
      {"<default> a", v[0], -1, 0},
      {"<other> a", v[0], -1, 0},
      {"<12> a or b", Or(v[0], v[1]), 12, 0},
      {"<0> a", m.Bdd_zero(), 0, 1},
      {"<1> zz", m.Bdd_zero(), 0, 1},
  };
  for (const auto& k : cases) {
    int priority = 55, error = 99;
    testing::internal::CaptureStderr();
    bdd f = m.Parse_expression(k.text, &priority, &error);
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(f, k.f) << k.text;
    EXPECT_EQ(priority, k.priority) << k.text;
    EXPECT_EQ(error, k.error) << k.text;
  }
}

// Any text ends in a function and a code, never in a crash.
TEST_F(SopParse, ArbitraryTextIsHandled) {
  const std::vector<std::string> pieces = {"a", "b", "e", "zz", "(", ")", "[", "]", "<", ">", "!", "~", "&",
                                           "|", "+", ".", "0", "1", "12", "-3", " ", " ", "and", "or",
                                           "not", "xor", "XNOR", "default", "@", ",", "_", "\t", "'", "*"};
  std::mt19937 rng(99);
  for (int trial = 0; trial < 400; ++trial) {
    std::string text;
    int length = 1 + static_cast<int>(rng() % 12);
    for (int i = 0; i < length; ++i) text += pieces[rng() % pieces.size()];
    int error = 99, priority = 7;
    testing::internal::CaptureStderr();
    bdd f = m.Parse_expression(text, &error);
    bdd g = m.Parse_expression(text, &priority, &error);
    std::string words = testing::internal::GetCapturedStderr();
    EXPECT_TRUE(f.initialised()) << text;
    EXPECT_TRUE(g.initialised()) << text;
    EXPECT_TRUE(error == 0 || error == 1 || error == 99) << text;
    if (error == 1) {
      EXPECT_EQ(f, m.Bdd_zero()) << text;
      EXPECT_NE(words.find("PARSING ERROR about expression: \"" + text + "\""), std::string::npos) << text;
    }
  }
}

TEST_F(SopParse, ParserObject) {
  class_exp_bdd_parser parser(&m);
  EXPECT_EQ(pexp_bdd_parser, &parser);
  EXPECT_FALSE(parser.bddexpression().initialised());
  EXPECT_EQ(parser.parse("<3> a and b"), 0);
  EXPECT_EQ(parser.bddexpression(), And(v[0], v[1]));
  EXPECT_EQ(parser.prio(), 3);
  testing::internal::CaptureStderr();
  EXPECT_EQ(parser.parse("a and"), 1);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "syntax error\n");
}

TEST_F(SopParse, PrintedSumsReadBack) {
  struct Words {
    const char *or_word, *and_word, *not_word;
  };
  const Words words[] = {{" or ", " and ", "not "}, {" + ", " . ", "!"}, {" | ", " & ", "~"},
                         {" OR ", " AND ", "NOT "}, {" + ", " & ", "! "}};
  std::mt19937_64 rng(42);
  for (int trial = 0; trial < 40; ++trial) {
    uint64_t table = rng();
    bdd f = m.Bdd_zero();
    for (unsigned p = 0; p < 32; ++p) {
      if (!((table >> p) & 1)) continue;
      bdd cube = m.Bdd_one();
      for (int i = 0; i < 5; ++i) cube = And(cube, (p >> i) & 1 ? v[i] : n(v[i]));
      f = Or(f, cube);
    }
    for (int level = 0; level <= 3; ++level) {
      const Words& w = words[(trial + level) % 5];
      std::string text = m.Print_sop_to_String(w.or_word, w.and_word, w.not_word, "", f, level);
      int error = 99;
      EXPECT_EQ(m.Parse_expression(text, &error), f) << text;
      EXPECT_EQ(error, 0) << text;
    }
    std::string vhdl = m.Print_sop_to_VHDL_String(f, 1);
    int error = 99;
    EXPECT_EQ(m.Parse_expression(vhdl, &error), f) << vhdl;
  }
  for (const bdd& f : {m.Bdd_zero(), m.Bdd_one(), v[3], n(v[4])}) {
    int error = 99;
    EXPECT_EQ(m.Parse_expression(m.Print_sop_to_String(" or ", " and ", "not ", "", f, 1), &error), f);
  }
}

}  // namespace

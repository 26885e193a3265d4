#include "util/Stringpp.h"

#include <gtest/gtest.h>

TEST(Stringpp, Numbers) {
  struct Case {
    const char* in;
    long want;
  } cases[] = {
      {"", 0}, {"42", 42}, {"-17", -17}, {"-", 0},
      {"12a", 12 * 10 + ('a' - '0')},  // no error path: the letter's code is folded in
  };
  for (const Case& c : cases) EXPECT_EQ(Stol(c.in), c.want) << c.in;
  EXPECT_TRUE(checkuint("0123"));
  EXPECT_FALSE(checkuint(""));
  EXPECT_FALSE(checkuint("-1"));
  EXPECT_FALSE(checkuint("12a"));
}

TEST(Stringpp, Cutting) {
  EXPECT_EQ(my_before("module", 3), "mod");
  EXPECT_EQ(my_before("ab", 5), "ab");
  EXPECT_EQ(my_before("ab", 0), "");
  EXPECT_EQ(my_after("module", 3), "ule");
  EXPECT_EQ(my_after("ab", 2), "");
  struct Case {
    const char* in;
    const char *first, *rest;
  } next[] = {{"a:b:c", "a", "b:c"}, {"abc:", "abc", ""}, {"abc", "abc", ""}, {":x", "", "x"}};
  for (const Case& c : next) {
    std::string rest = "junk";
    EXPECT_EQ(next_record(c.in, ':', rest), c.first) << c.in;
    EXPECT_EQ(rest, c.rest) << c.in;
  }
  // The rest may be the same object as the input.
  std::string s = "x\ny\n";
  EXPECT_EQ(next_record(s, '\n', s), "x");
  EXPECT_EQ(s, "y\n");
  Case tokens[] = {{"  abc_1.x+y", "abc_1.x", "+y"}, {"-12.5abc", "-12.5", "abc"}, {"(a)", "(", "a)"},
                   {"   ", "", ""}, {"@v,w z", "@v,w", " z"}};
  for (const Case& c : tokens) {
    std::string rest = "junk";
    EXPECT_EQ(next_Stringtoken(c.in, ' ', &rest), c.first) << c.in;
    EXPECT_EQ(rest, c.rest) << c.in;
  }
}

TEST(Stringpp, SearchAndSubstitution) {
  // Matches never overlap: scanning resumes behind each replaced occurrence.
  EXPECT_EQ(substitute_string("___", "__", "_X_"), "_X__");
  EXPECT_EQ(substitute_string("abc", "", "x"), "abc");
  EXPECT_EQ(char_occurences("a.b.c.", '.'), 3);
  EXPECT_TRUE(contains("module_x", "le_"));
  EXPECT_EQ(find("module", "du"), 2);
  EXPECT_EQ(find("module", "x"), -1);
}

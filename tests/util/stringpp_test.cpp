#include "util/Stringpp.h"

#include <gtest/gtest.h>

#include <memory>

TEST(Stringpp, TextToNumber) {
  struct Case {
    const char* in;
    long want;
  };
  const Case cases[] = {
      {"", 0},    {"0", 0},     {"42", 42}, {"-17", -17},
      {"-", 0},   // a lone minus negates nothing
      {"12a", 12 * 10 + ('a' - '0')},  // no error path: the letter's code is folded in
  };
  for (const Case& c : cases) EXPECT_EQ(Stol(c.in), c.want) << c.in;
  EXPECT_EQ(Stoi("-5"), -5);
  EXPECT_EQ(unslong2S(0), "0");
  EXPECT_EQ(unslong2S(4294967295UL), "4294967295");
  EXPECT_EQ(long2S(-3), "-3");
  std::unique_ptr<char[]> a(Stoa("abc"));
  EXPECT_STREQ(a.get(), "abc");
}

TEST(Stringpp, Checks) {
  struct Case {
    const char* in;
    bool uint_ok, int_ok, var_ok;
  };
  const Case cases[] = {
      {"", false, false, false},     {"0123", true, true, false}, {"-12", false, true, false},
      {"12a", false, false, false},  {"a_1", false, false, true}, {"_a", false, false, false},
      {"a-b", false, false, false},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(checkuint(c.in), c.uint_ok) << c.in;
    EXPECT_EQ(checkint(c.in), c.int_ok) << c.in;
    EXPECT_EQ(checkvarname(c.in), c.var_ok) << c.in;
  }
  for (char ch : std::string("aZ09._,@")) EXPECT_TRUE(est_lc(ch)) << ch;
  for (char ch : std::string(" -+()!")) EXPECT_FALSE(est_lc(ch)) << ch;
}

TEST(Stringpp, Slices) {
  EXPECT_EQ(my_before("abc", 10), "abc");
  EXPECT_EQ(my_before("abc", 2), "ab");
  EXPECT_EQ(my_before("abc", 0), "");
  EXPECT_EQ(my_before("abc", -4), "");
  EXPECT_EQ(my_after("abcdef", 2), "cdef");
  EXPECT_EQ(my_after("abc", 3), "");
  EXPECT_EQ(my_after("abc", 7), "");
  EXPECT_EQ(my_at("abcdef", 1, 3), "bc");
  EXPECT_EQ(my_at("abcdef", 2, 100), "cdef");
  EXPECT_EQ(my_at("abcdef", 4, 4), "");
  EXPECT_EQ(my_at("abcdef", 9, 3), "");
  EXPECT_EQ(cancel_begin_end_spaces("  a b  "), "a b");
  EXPECT_EQ(cancel_begin_end_spaces("   "), "");
}

TEST(Stringpp, Records) {
  struct Case {
    const char* in;
    const char* first;
    const char* rest;
  };
  const Case next[] = {
      {"a:b:c", "a", "b:c"}, {"abc:", "abc", ""}, {"abc", "abc", ""}, {":x", "", "x"}, {"", "", ""},
  };
  for (const Case& c : next) {
    std::string rest = "junk";
    EXPECT_EQ(next_record(c.in, ':', rest), c.first) << c.in;
    EXPECT_EQ(rest, c.rest) << c.in;
  }
  std::string rest;
  EXPECT_EQ(last_record("a/b/c", '/', rest), "c");
  EXPECT_EQ(rest, "a/b");
  EXPECT_EQ(last_record("abc", '/', rest), "abc");
  EXPECT_EQ(rest, "");
  // The rest may be the same object as the input.
  std::string s = "x\ny\n";
  EXPECT_EQ(next_record(s, '\n', s), "x");
  EXPECT_EQ(s, "y\n");
  s = "p/q";
  EXPECT_EQ(last_record(s, '/', s), "q");
  EXPECT_EQ(s, "p");
}

TEST(Stringpp, Tokens) {
  struct Case {
    const char* in;
    const char* token;
    const char* rest;
  };
  const Case cases[] = {
      {"  abc_1.x+y", "abc_1.x", "+y"},
      {"-12.5abc", "-12.5", "abc"},
      {"-x", "-", "x"},
      {"(a)", "(", "a)"},
      {"   ", "", ""},
      {"@v,w z", "@v,w", " z"},
  };
  for (const Case& c : cases) {
    std::string rest = "junk";
    EXPECT_EQ(next_Stringtoken(c.in, ' ', &rest), c.token) << c.in;
    EXPECT_EQ(rest, c.rest) << c.in;
  }
  std::string s = "a b";
  EXPECT_EQ(next_Stringtoken(s, ' ', &s), "a");
  EXPECT_EQ(s, " b");
}

TEST(Stringpp, Substitution) {
  // Matches never overlap: scanning resumes behind each replaced occurrence.
  EXPECT_EQ(substitute_string("___", "__", "_X_"), "_X__");
  EXPECT_EQ(substitute_string("a.b.c", ".", "::"), "a::b::c");
  EXPECT_EQ(substitute_string("abc", "", "x"), "abc");
  EXPECT_EQ(substitute_string("", "a", "x"), "");
  EXPECT_EQ(substitute_char("a b c", ' ', '_'), "a_b_c");
  EXPECT_EQ(substitute_char("a b", ' ', std::string("%20")), "a%20b");
  EXPECT_EQ(char_occurences("a.b.c.", '.'), 3);
  EXPECT_TRUE(contains("module_x", "le_"));
  EXPECT_FALSE(contains("module", "x"));
  EXPECT_EQ(find("module", "du"), 2);
  EXPECT_EQ(find("module", "x"), -1);
  EXPECT_EQ(upcase("aB1"), "AB1");
  EXPECT_EQ(downcase("aB1"), "ab1");
}

TEST(Stringpp, Levenshtein) {
  EXPECT_EQ(levenshtein("", ""), 0);
  EXPECT_EQ(levenshtein("", "abc"), 3);
  EXPECT_EQ(levenshtein("kitten", "sitting"), 3);
  EXPECT_EQ(levenshtein("flaw", "lawn"), 2);
}

TEST(Stringpp, CarriedConversions) {
  EXPECT_EQ(hex2toS(0x3c), "3C");
  EXPECT_EQ(hex4toS(0x1ABCD), "ABCD");  // the low digits only
  EXPECT_EQ(hex8toS(255), "000000FF");
  EXPECT_EQ(hex1toS(10), "A");
  EXPECT_EQ(bin8toS(5), "00000101");
  EXPECT_EQ(Stouhex("ff"), 255u);
  EXPECT_EQ(Stouhex("1A"), 26u);
  EXPECT_EQ(dtoS(2.5), "2.5");
  EXPECT_EQ(ctoS('x'), "x");
  EXPECT_DOUBLE_EQ(Stod("-1.25"), -1.25);
  EXPECT_TRUE(checkdouble("1.5e3"));
  EXPECT_FALSE(checkdouble("1.5x"));
  EXPECT_FALSE(checkdouble(""));
  EXPECT_TRUE(checkhex("0aF"));
  EXPECT_FALSE(checkhex("0g"));
  EXPECT_TRUE(checkbin("0101"));
  EXPECT_FALSE(checkbin("012"));
  EXPECT_TRUE(beginbynumber("1a"));
  EXPECT_FALSE(beginbynumber("a1"));
}

TEST(Stringpp, TokensAndFileNames) {
  EXPECT_TRUE(contains_token("a + b_1", "b_1"));
  EXPECT_FALSE(contains_token("a + b_12", "b_1"));
  EXPECT_FALSE(contains_token("xa", "a"));
  EXPECT_EQ(substitute_token("a+aa+a", "a", "x"), "x+aa+x");
  EXPECT_EQ(substitute_token("aa", "a", "x"), "aa");
  EXPECT_EQ(extract_filename_name("dir/sub/m.qn"), "m.qn");
  EXPECT_EQ(extract_filename_name("m.qn"), "m.qn");
  EXPECT_EQ(extract_filename_path("dir/sub/m.qn"), "dir/sub");
  EXPECT_EQ(extract_filename_path("m.qn"), "");
  EXPECT_EQ(supress_filename_extension("dir/m.qnc"), "dir/m");
  EXPECT_EQ(supress_filename_extension("d.ir/m"), "d.ir/m");
  EXPECT_FALSE(my_current_directory().empty());
}

// Token streams of the Quarn scanner.
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "front/parse_supl.h"
#include "front/qn_lexer.h"
#include "parse_qn.tab.h"

namespace {

struct Tok {
  int kind;
  std::string text;  // the matched text; for STRING the value between the quotes
  bool operator==(const Tok& o) const { return kind == o.kind && text == o.text; }
};

std::ostream& operator<<(std::ostream& out, const Tok& t) {
  return out << "(" << t.kind << " \"" << t.text << "\")";
}

std::vector<Tok> scan(const std::string& source) {
  std::istringstream in(source);
  qnFlexLexer lexer(&in, nullptr);
  std::vector<Tok> toks;
  for (int k = lexer.yylex(); k != 0; k = lexer.yylex()) {
    toks.push_back({k, k == STRING ? std::string(qnlval.sval) : std::string(lexer.YYText())});
    if (toks.size() > 100) break;
  }
  return toks;
}

Tok ch(char c) { return {static_cast<unsigned char>(c), std::string(1, c)}; }

TEST(Scanner, WordsAndMarks) {
  struct Case {
    const char* text;
    int kind;
  } cases[] = {
      {"module", QN_MODULE}, {"data:", QN_DATA}, {"end data", QN_ENDDATA},
      {"Method:", QN_METHOD}, {"Type:", QN_TYPE}, {"Input:", QN_INPUT},
      {"Output:", QN_OUTPUT}, {"Local:", QN_LOCAL}, {"Pre:", QN_PRE},
      {"Constant:", QN_CONSTANT}, {"Run:", QN_RUN_DECL}, {"Register:", QN_REG_DECL},
      {"end", QN_END}, {"nothing", QN_NOTHING}, {"halt", QN_HALT}, {"present", QN_PRESENT},
      {"absent", QN_ABSENT}, {"if", QN_IF}, {"else", QN_ELSE}, {"loop", QN_LOOP},
      {"when", QN_WHEN}, {"wait", QN_WAIT}, {"emit", QN_EMIT}, {"repeat", QN_REPEAT},
      {"noemit", QN_NOEMIT}, {"sustain", QN_SUSTAIN}, {"until", QN_UNTIL}, {"weak", QN_WEAK},
      {"strong", QN_STRONG}, {"abort", QN_ABORT}, {"pause", QN_PAUSE}, {">>", QN_SEQUENCE},
      {"run", QN_RUN}, {"->", QN_ARROW}, {"strong->", QN_STRONGARROW},
      {"weak->", QN_WEAKARROW}, {"normalterm->", QN_NORMALTERMARROW},
      {"\\", QN_BACKSLASH}, {"automaton", QN_AUTOMATON}, {"Mealy Machine", QN_MEALY_MACHINE},
      {"initial->", QN_INIT}, {"final", QN_FINAL}, {"other", QN_OTHER},
      {"geometry:", QN_GEOMETRY}, {"state:", QN_STATE}, {"transition:", QN_TRANSITION},
      {"&", QN_AND}, {"and", QN_AND}, {"or", QN_OR}, {"|", QN_OR}, {"||", QN_PARALLEL},
      {"~", QN_NOT}, {"not", QN_NOT}, {"abs", QN_ABS}, {"nand", QN_NAND}, {"nor", QN_NOR},
      {"xor", QN_XOR}, {"FF", QN_FF}, {"TT", QN_TT}, {"==", QN_EQ_EG}, {"!=", QN_EQ_NEG},
      {"<", QN_EQ_INF}, {"<=", QN_EQ_INFE}, {">", QN_EQ_SUP}, {">=", QN_EQ_SUPE},
      {":=", QN_ASSIGN}, {":c=", QN_C_ASSIGN}, {":csharp=", QN_CSHARP_ASSIGN},
      {":vhdl=", QN_VHDL_ASSIGN}, {":lustre=", QN_LUSTRE_ASSIGN},
      {":esterel=", QN_ESTEREL_ASSIGN}, {":nusmv=", QN_NUSMV_ASSIGN},
      {":default=", QN_DEFAULT_ASSIGN}, {"value:", QN_VALUE}, {"$", QN_SIGVAL},
      {"#", QN_SIGVAL}, {"?", QN_SIGVAL},
  };
  for (const Case& c : cases) {
    std::vector<Tok> want = {{c.kind, c.text}};
    EXPECT_EQ(scan(c.text), want) << c.text;
  }
}

TEST(Scanner, LongestMatchAndSpacing) {
  struct Case {
    const char* source;
    std::vector<Tok> want;
  } cases[] = {
      {"endless", {{QN_ID, "endless"}}},
      {"modules", {{QN_ID, "modules"}}},
      {"android", {{QN_ID, "android"}}},
      {"end  data", {{QN_END, "end"}, {QN_ID, "data"}}},
      {"end\tdata", {{QN_END, "end"}, {QN_ID, "data"}}},
      {"end\ndata:", {{QN_END, "end"}, {QN_DATA, "data:"}}},
      {"Mealy  Machine", {{QN_ID, "Mealy"}, {QN_ID, "Machine"}}},
      {"strong->", {{QN_STRONGARROW, "strong->"}}},
      {"strong ->", {{QN_STRONG, "strong"}, {QN_ARROW, "->"}}},
      {"data :", {{QN_ID, "data"}, ch(':')}},
      {"x:state:", {{QN_ID, "x"}, ch(':'), {QN_STATE, "state:"}}},
      {"aPre:", {{QN_ID, "aPre"}, ch(':')}},
      {"_x", {ch('_'), {QN_ID, "x"}}},
      {"a_1b", {{QN_ID, "a_1b"}}},
      {">>>", {{QN_SEQUENCE, ">>"}, {QN_EQ_SUP, ">"}}},
      {"|||", {{QN_PARALLEL, "||"}, {QN_OR, "|"}}},
      {"a\\b", {{QN_ID, "a"}, {QN_BACKSLASH, "\\"}, {QN_ID, "b"}}},
      {": =", {ch(':'), ch('=')}},
      {"+-*/;,(){}[]=.", {ch('+'), ch('-'), ch('*'), ch('/'), ch(';'), ch(','), ch('('),
                          ch(')'), ch('{'), ch('}'), ch('['), ch(']'), ch('='), ch('.')}},
  };
  for (const Case& c : cases) EXPECT_EQ(scan(c.source), c.want) << c.source;
}

TEST(Scanner, Numbers) {
  struct Case {
    const char* source;
    std::vector<Tok> want;
  } cases[] = {
      {"007", {{INTEGER, "007"}}},
      {"x-1.5", {{QN_ID, "x"}, {REAL, "-1.5"}}},
      {"x - 1.5", {{QN_ID, "x"}, ch('-'), {REAL, "1.5"}}},
      {"-1", {ch('-'), {INTEGER, "1"}}},
      {".5", {ch('.'), {INTEGER, "5"}}},
      {"5.", {{REAL, "5."}}},
      {"1e5", {{INTEGER, "1"}, {QN_ID, "e5"}}},
      {"--1.5\n", {}},
      {"1.2.3", {{REAL, "1.2"}, ch('.'), {INTEGER, "3"}}},
  };
  for (const Case& c : cases) EXPECT_EQ(scan(c.source), c.want) << c.source;

  std::istringstream in("42 -2.25 99999999999999");
  qnFlexLexer lexer(&in, nullptr);
  ASSERT_EQ(lexer.yylex(), INTEGER);
  EXPECT_EQ(qnlval.inum.value, 42);
  ASSERT_EQ(lexer.yylex(), REAL);
  EXPECT_DOUBLE_EQ(qnlval.rnum.value, -2.25);
  EXPECT_STREQ(qnlval.rnum.text, "-2.25");
  ASSERT_EQ(lexer.yylex(), INTEGER);  // too big: saturated, never wrapped
  EXPECT_EQ(qnlval.inum.value, 2147483647);
}

TEST(Scanner, StringsAndComments) {
  struct Case {
    const char* source;
    std::vector<Tok> want;
  } cases[] = {
      {"\"\"", {{STRING, ""}}},
      {"\"a b\\c\"", {{STRING, "a b\\c"}}},
      {"\"two\nlines\"", {{STRING, "two\nlines"}}},
      {"\"open", {ch('"'), {QN_ID, "open"}}},
      {";; emit x\npause", {{QN_PAUSE, "pause"}}},
      {"-- emit x\npause", {{QN_PAUSE, "pause"}}},
      {"pause ;; last line", {{QN_PAUSE, "pause"}, ch(';'), ch(';'), {QN_ID, "last"},
                              {QN_ID, "line"}}},
      {"pause -- x", {{QN_PAUSE, "pause"}, ch('-'), ch('-'), {QN_ID, "x"}}},
  };
  for (const Case& c : cases) EXPECT_EQ(scan(c.source), c.want) << c.source;
}

TEST(Scanner, OtherBytesAreTokensOfTheirOwn) {
  std::string source = "a\xc3\xa9 \r";
  source += '\0';
  source += "b";
  std::vector<Tok> toks = scan(source);
  ASSERT_EQ(toks.size(), 6u);
  EXPECT_EQ(toks[1].kind, 0xc3);  // positive, never mistaken for the end of the file
  EXPECT_EQ(toks[2].kind, 0xa9);
  EXPECT_EQ(toks[3].kind, '\r');
  EXPECT_EQ(toks[4].kind, QNUNDEF);  // a NUL byte is not the end of the file either
  EXPECT_EQ(toks[5], (Tok{QN_ID, "b"}));
}

TEST(Scanner, LineCount) {
  // Newlines count in blanks, comments and strings.
  std::istringstream in("a\n;; c\n-- d\n\"s\n\n\" b\n\nc");
  qnFlexLexer lexer(&in, nullptr);
  std::vector<int> lines;
  while (lexer.yylex() != 0) lines.push_back(lexer.lineno());
  EXPECT_EQ(lines, (std::vector<int>{1, 6, 6, 8}));
}

}  // namespace

namespace {

TEST(Scanner, LongTokensSpanManyInputBlocks) {
  std::string name(300000, 'a');
  std::vector<Tok> toks = scan("module " + name + " \"" + name + "\"");
  ASSERT_EQ(toks.size(), 3u);
  EXPECT_EQ(toks[1].text.size(), name.size());
  EXPECT_EQ(toks[2].text.size(), name.size());
}

}  // namespace

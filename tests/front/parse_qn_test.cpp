// Trees built by the Quarn grammar, and its failures.
#include <gtest/gtest.h>
#include <gmock/gmock.h>

#include <cstdlib>
#include <sstream>
#include <string>

#include "common/quarn_test.h"
#include "data/data.h"
#include "util/compilation.h"
#include "front/parse_supl.h"
#include "model/module.h"
#include "model/statement.h"
#include "signals/expression.h"
#include "signals/signal_manager.h"

extern Module* TheModule;

namespace {

// A fresh run state, then the whole text through the parser; the named module.
Module* parse(const std::string& source, const std::string& name = "m") {
  quarn_test::fresh_run();
  std::istringstream in(source);
  class_qn_parser::parse_stream(in);
  return Compilation::ModTable->get(name);
}

std::string show(Expression* e) {
  if (auto* s = dynamic_cast<Signal*>(e)) return s->getOriginalName();
  if (auto* a = dynamic_cast<AndExpression*>(e))
    return "(" + show(a->getLeft()) + " and " + show(a->getRight()) + ")";
  if (auto* o = dynamic_cast<OrExpression*>(e))
    return "(" + show(o->getLeft()) + " or " + show(o->getRight()) + ")";
  if (auto* n = dynamic_cast<NotExpression*>(e)) return "abs " + show(n->getOperand());
  if (auto* n = dynamic_cast<NpExpression*>(e)) return "not " + show(n->getOperand());
  if (dynamic_cast<TrueExpression*>(e)) return "TT";
  if (dynamic_cast<FalseExpression*>(e)) return "FF";
  return "?";
}

std::string show(DataExpr* e) {
  if (auto* c = dynamic_cast<DataConstant*>(e)) {
    ConstantDecl* d = c->getConstDecl();
    return d ? d->getName() : "?const";
  }
  if (auto* b = dynamic_cast<DataBinaryOp*>(e))
    return "(" + show(b->getLeft()) + " " + std::to_string(b->getOperator()) + " " +
           show(b->getRight()) + ")";
  if (auto* u = dynamic_cast<DataUnaryOp*>(e))
    return "u" + std::to_string(u->getOperator()) + " " + show(u->getOperand());
  if (auto* s = dynamic_cast<DataSignalValue*>(e)) return "$" + s->getSignal()->getOriginalName();
  if (auto* m = dynamic_cast<DataMethodCall*>(e)) {
    std::string r = m->getMethodDecl() ? m->getMethodDecl()->getName() : "?method";
    r += "(";
    if (m->getArgList())
      for (DataExpr* a : *m->getArgList()) r += show(a) + ",";
    return r + ")";
  }
  return "?";
}

std::string show(Statement* s);

std::string members(Statement** a, int n) {
  std::string r;
  for (int i = 0; i < n; i++) r += (i ? "," : "") + show(a[i]);
  return r;
}

std::string show(Statement* s) {
  if (auto* x = dynamic_cast<Sn*>(s)) return "Sn(" + members(x->getArray(), x->getCount()) + ")";
  if (auto* x = dynamic_cast<Pn*>(s)) return "Pn(" + members(x->getArray(), x->getCount()) + ")";
  if (auto* x = dynamic_cast<Present*>(s))
    return "PR(" + show(x->getExpression()) + "," + show(x->getThen()) +
           (x->getElse() ? "," + show(x->getElse()) : "") + ")";
  if (auto* x = dynamic_cast<Absent*>(s))
    return "AB(" + show(x->getExpression()) + "," + show(x->getThen()) +
           (x->getElse() ? "," + show(x->getElse()) : "") + ")";
  if (auto* x = dynamic_cast<Loop*>(s)) return "L(" + show(x->getBody()) + ")";
  if (auto* x = dynamic_cast<Wait*>(s)) return "W(" + show(x->getExpression()) + ")";
  if (auto* x = dynamic_cast<Abort*>(s))
    return "A(" + show(x->getExpression()) + "," + show(x->getBody()) + ")";
  if (auto* x = dynamic_cast<StrongAbort*>(s))
    return "SA(" + show(x->getExpression()) + "," + show(x->getBody()) + ")";
  if (auto* x = dynamic_cast<Emit*>(s)) return "E(" + x->getSignalName() + ")";
  if (auto* x = dynamic_cast<NoEmit*>(s)) return "NE(" + x->getSignalName() + ")";
  if (auto* x = dynamic_cast<SustainUntil*>(s))
    return "SU(" + x->getSignalName() + "," + show(x->getUntil()) + ")";
  if (auto* x = dynamic_cast<Run*>(s)) return "R(" + x->getModuleName() + ")";
  if (dynamic_cast<Pause*>(s)) return "PS";
  if (dynamic_cast<Nothing*>(s)) return "N";
  if (dynamic_cast<Halt*>(s)) return "H";
  if (dynamic_cast<Automaton*>(s)) return "AUT";
  if (dynamic_cast<MealyMachine*>(s)) return "MM";
  return "?";
}

const char* Head = "module m: Input: i, j, k; Output: a, b, c; ";

TEST(Grammar, StatementTrees) {
  struct Case {
    const char* body;
    const char* tree;
  } cases[] = {
      {"", "N"},
      {"emit a || emit b || emit c", "Pn(E(a),E(b),E(c))"},
      {"{emit a || emit b} || emit c", "Pn(E(a),E(b),E(c))"},
      {"emit a || {emit b || emit c}", "Pn(E(a),Pn(E(b),E(c)))"},
      {"emit a || emit b >> emit c", "Pn(E(a),Sn(E(b),E(c)))"},
      {"{emit a || emit b} >> emit c", "Sn(Pn(E(a),E(b)),E(c))"},
      {"emit a >> emit b >> emit c", "Sn(E(a),E(b),E(c))"},
      {"{emit a >> emit b} >> emit c", "Sn(E(a),E(b),E(c))"},
      {"{{{pause}}}", "PS"},
      {"present i emit a >> emit b", "Sn(PR(i,E(a)),E(b))"},
      {"present i emit a else emit b >> emit c", "Sn(PR(i,E(a),E(b)),E(c))"},
      {"present i emit a || emit b", "Pn(PR(i,E(a)),E(b))"},
      {"present i present j emit a else emit b", "PR(i,PR(j,E(a),E(b)))"},
      {"present i {present j emit a} else emit b", "PR(i,PR(j,E(a)),E(b))"},
      {"absent i {emit a >> emit b}", "AB(i,Sn(E(a),E(b)))"},
      {"present i or j and k emit a", "PR((i or (j and k)),E(a))"},
      {"present (i or j) and not k emit a", "PR(((i or j) and not k),E(a))"},
      {"present abs i & ~j | TT emit a", "PR(((abs i and not j) or TT),E(a))"},
      {"present FF nothing else halt", "PR(FF,N,H)"},
      {"loop { pause >> emit a }", "L(Sn(PS,E(a)))"},
      {"weak abort { halt } when i", "A(i,H)"},
      {"strong abort { sustain a until j } when i", "SA(i,SU(a,j))"},
      {"wait i", "W(i)"},
      {"wait 1 i", "W(i)"},
      {"wait 3 i or j", "Sn(W((i or j)),W((i or j)),W((i or j)))"},
      {"wait 2 i >> emit a", "Sn(W(i),W(i),E(a))"},
      {"repeat 2 { pause }", "Sn(PS,PS)"},
      {"repeat 2 { emit a >> pause }", "Sn(Sn(E(a),PS),Sn(E(a),PS))"},
      {"noemit b", "NE(b)"},
      {"run sub", "R(sub)"},
  };
  for (const Case& c : cases) {
    Module* m = parse(std::string(Head) + c.body + " end");
    ASSERT_NE(m, nullptr) << c.body;
    EXPECT_EQ(show(m->getStatement()), c.tree) << c.body;
  }
}

TEST(Grammar, BracedModuleAndSections) {
  Module* m = parse(
      "module m: { Input: i : int; Output: o; Local: l, v : int; Pre: p : v $ zero;"
      " Run: \"dir/sub/file\" : s1; \"a\\b\" : f : s2; \"plain\" : s3;"
      " emit l }");
  ASSERT_NE(m, nullptr);
  EXPECT_EQ(show(m->getStatement()), "E(l)");
  ASSERT_EQ(m->getInputSignalList()->size(), 1u);
  Signal* i = m->getInputSignalList()->front();
  EXPECT_TRUE(i->isInput());
  EXPECT_EQ(i->getValueType(m), "int");
  EXPECT_TRUE(m->getOutputSignalList()->front()->isOutput());
  Signal* l = m->getLocalSignal("l");
  ASSERT_NE(l, nullptr);
  EXPECT_TRUE(l->isLocal());
  EXPECT_FALSE(l->isInput() || l->isOutput());

  ASSERT_EQ(m->getPreSignalList()->size(), 1u);
  memorizedSignal* pre = m->getPreSignalList()->front();
  EXPECT_EQ(pre->getPre()->getOriginalName(), "p");
  EXPECT_TRUE(pre->getPre()->isPre() && pre->getPre()->isInput());
  EXPECT_EQ(pre->getActual(), m->getLocalSignal("v"));
  EXPECT_EQ(pre->getInitialValue(), "zero");
  EXPECT_EQ(pre->getPre()->getValueType(m), "int");

  EXPECT_EQ(*m->getModuleLocation("s1"), "dir/sub/file");
  EXPECT_EQ(*m->getModuleLocation("s2"), "a/b/f");
  EXPECT_EQ(*m->getModuleLocation("s3"), "plain/");
}

TEST(Grammar, GeneratedNames) {
  Module* m = parse(
      "data: Type: int; Constant: int C__1 := 1; end data "
      "module m: Input: i; Output: a; "
      "present i {if 1 emit a} >> wait 2 i >> run sub [a \\ x, i \\ y] end");
  ASSERT_NE(m, nullptr);
  auto* seq = dynamic_cast<Sn*>(m->getStatement());
  ASSERT_NE(seq, nullptr);
  ASSERT_EQ(seq->getCount(), 3);
  auto* pr = dynamic_cast<Present*>(seq->getArray()[0]);
  ASSERT_NE(pr, nullptr);
  auto* ifs = dynamic_cast<Present*>(pr->getThen());
  ASSERT_NE(ifs, nullptr);
  // Bottom up: the inner if is named first, and both share the counter of present.
  EXPECT_EQ(ifs->getName(), "mIF_0");
  EXPECT_EQ(pr->getName(), "mPR_1");
  EXPECT_EQ(ifs->getThen()->getName(), "mE_0");
  // The if tests a data signal made for it: an input in the data signal list.
  auto* test = dynamic_cast<Signal*>(ifs->getExpression());
  ASSERT_NE(test, nullptr);
  EXPECT_TRUE(test->isInput());
  ASSERT_EQ(m->getDataSignalList()->size(), 1u);
  EXPECT_EQ(m->getDataSignalList()->front(), test);

  // The counted wait names its sequence before its waits; the outer sequence comes last.
  auto* waits = dynamic_cast<Sn*>(seq->getArray()[1]);
  ASSERT_NE(waits, nullptr);
  EXPECT_EQ(waits->getName(), "mSn_0");
  EXPECT_EQ(waits->getArray()[0]->getName(), "mW_0");
  EXPECT_EQ(waits->getArray()[1]->getName(), "mW_1");
  EXPECT_EQ(seq->getName(), "mSn_1");

  auto* run = dynamic_cast<::Run*>(seq->getArray()[2]);
  ASSERT_NE(run, nullptr);
  EXPECT_EQ(run->getName(), "mR_sub_0");
  EXPECT_EQ(run->getParentModule(), m);
  EXPECT_EQ(run->getRenamingSignal("x"), m->getOutputSignal("a"));
  EXPECT_EQ(run->getRenamingSignal("y"), m->getInputSignal("i"));
  EXPECT_EQ(run->getRenamingSignal("a"), nullptr);
}

TEST(Grammar, RepeatCopiesTheModel) {
  Module* m = parse("module m: repeat 3 { pause } end");
  auto* seq = dynamic_cast<Sn*>(m->getStatement());
  ASSERT_NE(seq, nullptr);
  ASSERT_EQ(seq->getCount(), 3);
  for (int i = 0; i < 3; i++) {
    EXPECT_EQ(seq->getArray()[i]->getName(), "mPS_0" + std::to_string(i));
    EXPECT_EQ(seq->getArray()[i]->getParentModule(), m);
  }
}

TEST(Grammar, DataExpressions) {
  const std::string data =
      "data: Type: int, bool; Method: int f(int, int); int g.h(); "
      "Constant: int zero := 0; int C__1 := 1; int C__2 := 2; end data ";
  struct Case {
    const char* exp;
    const char* tree;
  } cases[] = {
      // Comparisons bind tighter than arithmetic; "or" and "and" tighter still.
      {"$x + $y == zero", "($x 0 ($y 8 zero))"},
      {"$x * $y + 1", "(($x 2 $y) 0 C__1)"},
      {"$x + $y * 1", "($x 0 ($y 2 C__1))"},
      {"$x - $y - 2", "(($x 1 $y) 1 C__2)"},
      {"- $x == $y", "u4 ($x 8 $y)"},
      {"- $x * $y", "(u4 $x 2 $y)"},
      {"$x == $y or zero", "($x 8 ($y 6 zero))"},
      {"$x or $y and zero", "($x 6 ($y 5 zero))"},
      {"not $x == $y", "(u7 $x 8 $y)"},
      {"($x + $y) == zero", "(($x 0 $y) 8 zero)"},
      {"$x < $y", "($x 10 $y)"},
      {"$x != $y", "($x 9 $y)"},
      {"$x <= $y", "($x 11 $y)"},
      {"$x > $y", "($x 12 $y)"},
      {"$x >= $y", "($x 13 $y)"},
      {"$x / #y", "($x 3 $y)"},
      {"f(?x, 2)", "f($x,C__2,)"},
      {"g.h()", "g.h()"},
  };
  for (const Case& c : cases) {
    Module* m = parse(data + "module m: Input: x : int, y : int; Output: o : int; emit o(" +
                      c.exp + ") end");
    ASSERT_NE(m, nullptr) << c.exp;
    auto* e = dynamic_cast<Emit*>(m->getStatement());
    ASSERT_NE(e, nullptr);
    std::list<DataBinding*>* b = m->getDataBindingByClock(m->getOutputSignal("o"));
    ASSERT_TRUE(b != nullptr && b->size() == 1) << c.exp;
    EXPECT_EQ(show(b->front()->getValue()), c.tree) << c.exp;
  }
}

TEST(Grammar, ValuedEmissionAndSustain) {
  const std::string data = "data: Type: int; Constant: int C__1 := 1; end data ";
  Module* m = parse(data +
                    "module m: Input: x : int; Output: o : int; Local: l : int, w : int;"
                    " emit l($x + 1) >> sustain o($l) until x >> sustain w(1) until x end");
  ASSERT_NE(m, nullptr);
  auto* seq = dynamic_cast<Sn*>(m->getStatement());
  ASSERT_NE(seq, nullptr);
  auto* e = dynamic_cast<Emit*>(seq->getArray()[0]);
  ASSERT_NE(e, nullptr);
  Signal* l = m->getLocalSignal("l");
  EXPECT_EQ(e->getSignal(), l);
  ASSERT_NE(e->getClock(), nullptr);
  EXPECT_TRUE(e->getClock()->isLocal());
  EXPECT_FALSE(e->getClock()->isInput() || e->getClock()->isOutput());
  // The signals that the emitted value reads become dependencies of the emitted signal.
  ASSERT_NE(l->getValueDependencies(), nullptr);
  EXPECT_EQ(l->getValueDependencies()->count(m->getInputSignal("x")), 1u);

  auto* so = dynamic_cast<SustainUntil*>(seq->getArray()[1]);
  ASSERT_NE(so, nullptr);
  ASSERT_NE(so->getClock(), nullptr);
  EXPECT_TRUE(so->getClock()->isOutput());  // the clock of an output's value is an output
  EXPECT_EQ(m->getOutputSignalList()->back(), so->getClock());

  auto* sw = dynamic_cast<SustainUntil*>(seq->getArray()[2]);
  ASSERT_NE(sw, nullptr);
  ASSERT_NE(sw->getClock(), nullptr);
  EXPECT_TRUE(sw->getClock()->isLocal());
  EXPECT_EQ(m->getLocalSignalList()->back(), sw->getClock());
}

TEST(Grammar, Constants) {
  Module* m = parse(
      "data: Type: int; "
      "Constant: int C__007 := 007; int ext; int none := ; int multi :c= 1 :vhdl= \"x\"; "
      "int both :default= 1.5 :c= 2; int zeroes := 0; int sum := zeroes + C__007; "
      "end data module m: end");
  ASSERT_NE(m, nullptr);
  DataConstantTable* t = Compilation::GDataConstantTable;
  ASSERT_NE(t, nullptr);

  ConstantDecl* c = t->getConstant("C__007");
  ASSERT_NE(c, nullptr);
  ASSERT_NE(c->getValueTable(), nullptr);
  auto* v = dynamic_cast<DataValue*>(c->getValueTable()->at(TLanguage::DEFAULT));
  ASSERT_NE(v, nullptr);
  EXPECT_EQ(v->getText(), "007");  // the text as written, not the number
  EXPECT_EQ(v->getConstDecl(), c);
  EXPECT_EQ(v->getType(), "int");

  EXPECT_EQ(t->getConstant("ext")->getValueTable(), nullptr);
  EXPECT_EQ(t->getConstant("none")->getValueTable(), nullptr);

  auto* multi = t->getConstant("multi")->getValueTable();
  ASSERT_EQ(multi->size(), 2u);
  EXPECT_EQ(dynamic_cast<DataValue*>(multi->at(TLanguage::C))->getText(), "1");
  EXPECT_EQ(dynamic_cast<DataValue*>(multi->at(TLanguage::VHDL))->getText(), "x");
  EXPECT_EQ(t->getConstant("both")->getValueTable()->size(), 2u);
}

// Failures: the exact text on the error stream and exit status 1.
void expect_failure(const std::string& source, const std::string& text) {
  EXPECT_EXIT(parse(source), ::testing::ExitedWithCode(1), ::testing::HasSubstr(text))
      << source;
}

TEST(GrammarDeathTest, Failures) {
  const std::string data = "data: Type: int; Constant: int C__1 := 1; end data\n";
  struct Case {
    std::string source;
    std::string text;
  } cases[] = {
      {"module m: { Input: a; emit a }",
       "Parsing error: undeclared output or local signal \"a\" at line 1\nAbortion ...\n"},
      {"module m:\nOutput: a;\nemit b\nend",
       "Parsing error: undeclared output or local signal \"b\" at line 4\nAbortion ...\n"},
      {"module m:\nOutput: a;\npresent x emit a end",
       "Parsing error: undeclared signal \"x\" at line 3\nAbortion ...\n"},
      {"module m: Input: a; sustain a until a end", "undeclared signal \"a\" at line 1"},
      {"module m: Output: a; Pre: p : q; end", "undeclared signal \"q\""},
      {"module m: Output: a; run s [x \\ y] end", "undeclared signal \"x\""},
      {"module m: Output: a; run s [a \\ y, a \\ y] end",
       "add:y is already defined"},
      {"module m: end\nmodule m: end", "Exception in Hash Table: add:m is already defined"},
      {"module m: Output: a, b;\nemit a >> >> emit b end", "SYNTAX ERROR at line 2: last token read: \">>\"\n\n"},
      {"module m: pause", "SYNTAX ERROR at line 1: last token read: \"\""},
      {"", "SYNTAX ERROR at line 1"},
      {"module m: pause end ;; comment without newline",
       "SYNTAX ERROR at line 1: last token read: \";\""},
      {"module m:\n\"unclosed end", "SYNTAX ERROR at line 2: last token read: \"\"\""},
      {"module m: x := 1 end", "SYNTAX ERROR at line 1: last token read: \"x\""},
      {"module m: end data", "SYNTAX ERROR at line 1: last token read: \"end data\""},
      {"module m: Input: x;\nwait 0 x end", "Error at line2: 0 is a bad number for wait\nAbortion...\n"},
      {"module m:\nrepeat 0 { pause } end", "Error at line2: 0 is a bad number for repeat"},
      {"module m: repeat 99999999999 { pause } end", "is a bad number for repeat"},
      {"module m: Input: x; wait 99999999999 x end", "is a bad number for wait"},
      {"data: Type: int; end data\nmodule m: Output: o : int;\nemit o(3) end",
       "PARSE ERROR: empty constant table detected: C__3\n\nAbortion ..."},
      {data + "module m: Output: o : int;\nemit o(3) end",
       "PARSE ERROR at line 3: constant name awaited in place of : \"3\"\nor bad "
       "declaration\n\nAbortion ..."},
      {data + "module m: Output: o : int;\nemit o(k) end",
       "Parsing error: undeclared constant \"k\" at line 3\nAbortion ...\n"},
      {"module m: Output: o;\nemit o(k) end", "undeclared constant \"k\""},
      {data + "module m: Output: o : int;\nemit o(f(1)) end",
       "Parsing error: undeclared method \"f\" at line 3\nAbortion ...\n"},
      {"data: Type: int;\nMethod: real f(); end data module m: end",
       "Parsing error: undeclared type \"real\" at line 2\nAbortion ...\n"},
      {"data: Constant: int c := 1; end data module m: end", "undeclared type \"int\""},
      {"data: Type: int; Constant: int c := 1; int c := 2; end data module m: end",
       "*****error: constant: c is already declared"},
      {"data: Type: int; Constant: int c :c= 1 :c= 2; end data module m: end",
       "****error:constant: chas already a value for: C language"},
      {"data: Type: int; Constant: int c :vhdl= 1 :vhdl= 2; end data module m: end",
       "****error:constant: chas already a value for:  vhdl language"},
      {"data: Type: int; Constant: int c :default= 1; end data module m: end",
       "*****syntax error: constant declaration with only default target: c"},
      {"module m: Output: x;\nMealy Machine x = 2; end",
       "PARSE ERROR: at line 2: constant right part is not a Boolean value\nAbortion ...\n"},
      {"module m: Output: x; Mealy Machine x = y; end", "undeclared signal \"y\""},
      {"module m: Input: x; Mealy Machine x = 1; end", "undeclared signal \"x\""},
      {"module m: automaton state: s; state: s; transition: initial-> s; end",
       "ERROR: two states or more have the same name: s\n\nAbortion ..."},
      {"module m: automaton state: s / z; transition: initial-> s; end",
       "undeclared signal \"z\""},
      {"module m: automaton state: s; transition: initial-> s; emit a end",
       "SYNTAX ERROR at line 1: last token read: \"emit\""},
      {"module m: automaton state: s; transition: s strong -> s; end",
       "SYNTAX ERROR at line 1: last token read: \"strong\""},
  };
  for (const Case& c : cases) expect_failure(c.source, c.text);
}

TEST(GrammarDeathTest, OddBytesAreSyntaxErrors) {
  std::string nul = "module m:\n";
  nul += '\0';
  nul += " end";
  expect_failure(nul, "SYNTAX ERROR at line 2");
  expect_failure("module m: \xc3\xa9 end", "SYNTAX ERROR at line 1: last token read: \"\xc3\"");
  expect_failure("module m:\r\nend", "SYNTAX ERROR at line 1: last token read: \"\r\"");
}

TEST(Grammar, Automaton) {
  const std::string data = "data: Type: int; Constant: int C__1 := 1; end data ";
  Module* m = parse(data +
                    "module m: Input: i, j, v : int; Output: a, b, o : int;\n"
                    "automaton geometry: <1, 2.5>\n"
                    "state: s0 final / a, o($v) geometry: <3.0, 4> 5.5;\n"
                    "state: s1 run sub [a \\ x];\n"
                    "transition:\n"
                    "initial-> s0;\n"
                    "s0 2 [i and j] / b strong-> s1 geometry: <7, 8>;\n"
                    "s0 / a -> s2;\n"
                    "s1 other [] weak-> s0;\n"
                    "s2 [value: $v == 1] normalterm-> s0;\n"
                    "s2 other [value: $v] s3;\n"
                    "end");
  ASSERT_NE(m, nullptr);
  auto* aut = dynamic_cast<Automaton*>(m->getStatement());
  ASSERT_NE(aut, nullptr);
  ASSERT_NE(aut->getGeometry(), nullptr);
  EXPECT_DOUBLE_EQ(aut->getGeometry()[1], 2.5);

  std::map<std::string, State*>* states = aut->getStateTable();
  ASSERT_EQ(states->size(), 4u);
  State* s0 = states->at("s0");
  EXPECT_TRUE(s0->isFinal());
  ASSERT_EQ(s0->getMooreActions().size(), 3u);  // a, o, then the clock of o's value
  EXPECT_EQ(s0->getMooreActions()[0], m->getOutputSignal("a"));
  EXPECT_EQ(s0->getMooreActions()[1], m->getOutputSignal("o"));
  Signal* clock = s0->getMooreActions()[2];
  EXPECT_NE(clock->getInternalName().find("o_Val"), std::string::npos);
  EXPECT_TRUE(clock->isLocal());
  ASSERT_NE(s0->getGeometry(), nullptr);
  EXPECT_DOUBLE_EQ(s0->getGeometry()[2], 5.5);
  ASSERT_NE(states->at("s1")->getRunModule(), nullptr);
  EXPECT_EQ(states->at("s1")->getRunModule()->getModuleName(), "sub");
  // States named only in transitions exist, plain.
  State* s2 = states->at("s2");
  EXPECT_FALSE(s2->isFinal());
  EXPECT_TRUE(s2->getMooreActions().empty());
  EXPECT_EQ(s2->getGeometry(), nullptr);

  std::vector<Transition*> t(aut->getTransitionList()->begin(), aut->getTransitionList()->end());
  ASSERT_EQ(t.size(), 6u);
  EXPECT_TRUE(t[0]->isInitial());
  EXPECT_EQ(t[0]->getSource(), nullptr);
  EXPECT_EQ(t[0]->getTarget(), s0);
  EXPECT_EQ(show(t[0]->getTrigger()), "TT");

  EXPECT_FALSE(t[1]->isInitial());
  EXPECT_EQ(t[1]->getPriority(), 2);
  EXPECT_EQ(t[1]->getType(), 1);
  EXPECT_EQ(show(t[1]->getTrigger()), "(i and j)");
  ASSERT_NE(t[1]->getAction(), nullptr);
  EXPECT_EQ(t[1]->getAction()->front(), m->getOutputSignal("b"));
  ASSERT_NE(t[1]->getGeometry(), nullptr);
  EXPECT_DOUBLE_EQ(t[1]->getGeometry()[0], 7.0);

  EXPECT_EQ(t[2]->getPriority(), 0);
  EXPECT_EQ(show(t[2]->getTrigger()), "TT");
  EXPECT_EQ(t[2]->getTarget(), s2);

  EXPECT_EQ(t[3]->getPriority(), -1);
  EXPECT_EQ(t[3]->getType(), 2);
  EXPECT_EQ(show(t[3]->getTrigger()), "TT");
  EXPECT_EQ(t[3]->getAction(), nullptr);

  EXPECT_EQ(t[4]->getType(), 3);
  auto* valued = dynamic_cast<Signal*>(t[4]->getTrigger());
  ASSERT_NE(valued, nullptr);
  EXPECT_TRUE(valued->isInput());
  EXPECT_NE(valued->getInternalName().find("mTRANS_0"), std::string::npos);
  EXPECT_EQ(t[5]->getPriority(), -1);
  EXPECT_EQ(t[5]->getType(), 1);
  EXPECT_EQ(m->getDataSignalList()->size(), 2u);
}

TEST(Grammar, MealyMachine) {
  const std::string data = "data: Type: int; Constant: int C__1 := 1; end data ";
  struct Case {
    const char* right;
    const char* tree;
  } cases[] = {
      {"a nor b or c", "((abs a and abs b) or c)"},
      {"a or b nand c", "(a or (abs b or abs c))"},
      {"a and b or c", "((a and b) or c)"},
      {"a xor b", "((a and abs b) or (abs a and b))"},
      {"not a and abs b", "(not a and abs b)"},
      {"(a or b) and c", "((a or b) and c)"},
      {"1", "TT"},
      {"0", "FF"},
  };
  for (const Case& c : cases) {
    Module* m = parse("module m: Input: a, b, c; Output: x; Mealy Machine x = " +
                      std::string(c.right) + "; end");
    ASSERT_NE(m, nullptr) << c.right;
    auto* mm = dynamic_cast<MealyMachine*>(m->getStatement());
    ASSERT_NE(mm, nullptr);
    ASSERT_EQ(mm->getMachineTable()->size(), 1u);
    EXPECT_EQ(show(mm->getMachineTable()->begin()->second->getRightExpr()), c.tree) << c.right;
  }

  Module* m = parse(data +
                    "module m: Input: a, b; Output: x, y : int; Local: l : int;\n"
                    "Mealy Machine Register: r : 1 : rn, q : 0 : qn;\n"
                    "x = a; x = b; y(1) = a and r; l($y) = b; end");
  ASSERT_NE(m, nullptr);
  auto* mm = dynamic_cast<MealyMachine*>(m->getStatement());
  ASSERT_NE(mm, nullptr);
  std::map<std::string, Equation*>* table = mm->getMachineTable();
  ASSERT_EQ(table->size(), 5u);  // x (the last one), y and its clock, l and its clock
  EXPECT_EQ(show(table->at("x")->getRightExpr()), "b");
  ASSERT_EQ(m->getRegisterList()->size(), 2u);
  EXPECT_EQ(m->getRegisterList()->front()->actual_var()->getOriginalName(), "r");
  EXPECT_EQ(m->getRegisterList()->front()->next_var()->getOriginalName(), "rn");
  EXPECT_EQ(m->getRegisterList()->front()->is_initialy_true(), 1);
  int clocks = 0;
  for (auto& [name, eq] : *table) {
    if (name.find("y_value") != std::string::npos) {
      clocks++;
      EXPECT_TRUE(eq->getLeftVar()->isOutput());
      EXPECT_EQ(show(eq->getRightExpr()), "(a and r)");
    }
    if (name.find("l_value") != std::string::npos) {
      clocks++;
      EXPECT_TRUE(eq->getLeftVar()->isLocal());
    }
  }
  EXPECT_EQ(clocks, 2);
}

}  // namespace

// Behaviour of compiled statements, reaction by reaction, through the reference
// evaluator; and the causality cycles that stop a compilation.
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <set>
#include <string>
#include <vector>

#include "compile_eval.h"
#include "compile_util.h"
#include "util/compilation.h"
#include "equations/Bddexpression.h"
#include "model/statement.h"
#include "model_test_util.h"

using compile_eval::Reactor;
using compile_test::compileText;

namespace {

struct Step {
  std::set<std::string> inputs;
  std::string outputs;
};

struct TraceCase {
  const char* name;
  const char* declarations;
  const char* body;
  std::vector<Step> steps;
};

void runTrace(const TraceCase& c) {
  SCOPED_TRACE(c.name);
  Module* m = compileText(std::string("module m: ") + c.declarations + " " + c.body + " end");
  ASSERT_NE(m, nullptr);
  Reactor r(m);
  for (size_t i = 0; i < c.steps.size(); i++) {
    EXPECT_EQ(r.react(c.steps[i].inputs), c.steps[i].outputs) << "reaction " << i + 1;
    EXPECT_FALSE(r.unknownRead) << "reaction " << i + 1;
  }
}

const char* IO = "Input: a, b; Output: o, p, q;";

TEST(CompileTrace, Kernel) {
  std::vector<TraceCase> cases = {
      {"emit", IO, "emit o", {{{}, "o"}, {{}, ""}}},
      {"two emits", IO, "emit o >> emit p", {{{}, "o p"}, {{}, ""}}},
      {"nothing", IO, "nothing", {{{}, ""}}},
      {"pause", IO, "pause >> emit o", {{{}, ""}, {{}, "o"}, {{}, ""}}},
      {"halt", IO, "emit o >> halt >> emit p", {{{}, "o"}, {{}, ""}, {{}, ""}}},
      {"loop", IO, "loop { emit o >> pause }", {{{}, "o"}, {{}, "o"}, {{}, "o"}}},
      {"loop after pause", IO, "loop { pause >> emit o }", {{{}, ""}, {{}, "o"}, {{}, "o"}}},
      {"present with else", IO, "loop { present a emit o else emit p >> pause }",
       {{{"a"}, "o"}, {{}, "p"}, {{"a", "b"}, "o"}}},
      {"present without else", IO, "present a emit o >> emit p",
       {{{}, "p"}, {{}, ""}}},
      {"present taken", IO, "present a emit o >> emit p", {{{"a"}, "o p"}}},
      {"absent", IO, "loop { absent a emit o else emit p >> pause }",
       {{{"a"}, "p"}, {{}, "o"}}},
      {"present of an expression", IO, "loop { present a and not b emit o >> pause }",
       {{{"a"}, "o"}, {{"a", "b"}, ""}, {{}, ""}}},
      {"wait not tested at start", IO, "wait a >> emit o",
       {{{"a"}, ""}, {{}, ""}, {{"a"}, "o"}, {{"a"}, ""}}},
      {"wait twice", IO, "wait 2 a >> emit o",
       {{{}, ""}, {{"a"}, ""}, {{"a"}, "o"}}},
      {"local signal", "Output: o; Local: s;", "emit s || present s emit o",
       {{{}, "o"}}},
      {"local emitted later in the text", "Output: o; Local: s;",
       "present s emit o || { nothing >> emit s }", {{{}, "o"}}},
      {"local emitted in a later section of another branch", "Output: o; Local: s;",
       "loop { present s emit o >> pause } || { pause >> emit s }",
       {{{}, ""}, {{}, "o"}, {{}, ""}}},
  };
  for (const TraceCase& c : cases) runTrace(c);
}

TEST(CompileTrace, ParallelAndPreemption) {
  std::vector<TraceCase> cases = {
      {"both end at once", IO, "{ emit o || emit p } >> emit q", {{{}, "o p q"}, {{}, ""}}},
      {"left waits", IO, "{ pause >> emit o || emit p } >> emit q",
       {{{}, "p"}, {{}, "o q"}, {{}, ""}}},
      {"three branches", IO,
       "{ pause >> emit o || pause >> pause >> emit p || emit q } >> emit o",
       {{{}, "q"}, {{}, "o"}, {{}, "o p"}, {{}, ""}}},
      {"branch with a loop never ends", IO, "{ loop { emit o >> pause } || emit p } >> emit q",
       {{{}, "o p"}, {{}, "o"}, {{}, "o"}}},
      {"weak abort", IO, "weak abort { loop { emit o >> pause } } when a >> emit p",
       {{{"a"}, "o"}, {{}, "o"}, {{"a"}, "o p"}, {{"a"}, ""}}},
      {"strong abort", IO, "strong abort { loop { emit o >> pause } } when a >> emit p",
       {{{"a"}, "o"}, {{}, "o"}, {{"a"}, "p"}, {{"a"}, ""}}},
      {"abort whose body ends", IO, "weak abort { pause >> emit o } when a >> emit p",
       {{{}, ""}, {{"a"}, "o p"}, {{}, ""}}},
      {"abort of a parallel", IO,
       "weak abort { loop { emit o >> pause } || loop { emit p >> pause } } when a >> emit q",
       {{{}, "o p"}, {{"a"}, "o p q"}, {{}, ""}}},
      {"abort kills the waiting branch", IO,
       "loop { weak abort { pause || loop { emit o >> pause } } when a >> emit q >> pause }",
       {{{}, "o"}, {{}, "o"}, {{"a"}, "o q"}, {{}, "o"}, {{}, "o"}}},
      // Where it doesn't emit, the driver's under side (not A and not S, or the
      // condition) makes the signal false.
      {"sustain", IO, "sustain o until a >> emit p",
       {{{}, "o"}, {{}, "o"}, {{"a"}, "o=0 p"}, {{}, "o=0"}}},
      {"sustain ends at once", IO, "sustain o until a >> emit p",
       {{{"a"}, "o=0 p"}, {{}, "o=0"}}},
      {"sustain started later", IO, "pause >> sustain o until a",
       {{{}, "o=0"}, {{}, "o"}, {{"b"}, "o"}, {{"a"}, "o=0"}}},
      {"noemit", IO, "noemit o", {{{}, "o=0"}, {{}, ""}}},
      {"emit and noemit", IO, "emit o || noemit o", {{{}, "o=E"}}},
      {"strong abort cuts the sustain's value", IO,
       "strong abort { sustain o until b } when a",
       {{{}, "o"}, {{"a"}, "o"}, {{}, "o=0"}}},
      {"strong abort spares what the firing instant's successor emits", IO,
       "strong abort { loop { emit o >> pause } } when a >> loop { emit o >> pause }",
       {{{}, "o"}, {{"a"}, "o"}, {{}, "o"}}},
  };
  for (const TraceCase& c : cases) runTrace(c);
}

// The auxiliary wire "RTL" + name + 0 of the Pn copy 1 and the RTL wire of copy 10 are
// built from the same text; each must keep its own variables.
TEST(CompileTrace, CollidingWireNamesStayApart) {
  Module* m = compileText(std::string("module m: Input: a; Output: d; ") +
                          "repeat 11 { { wait a || nothing } } >> emit d end");
  ASSERT_NE(m, nullptr);
  std::set<std::string> names;
  for (Signal* s : *m->getLocalSignalList())
    EXPECT_TRUE(names.insert(s->getInternalName()).second) << s->getInternalName();
  auto* seq = dynamic_cast<Sn*>(m->getStatement());
  ASSERT_NE(seq, nullptr);
  ASSERT_EQ(seq->getCount(), 12);
  Statement* copy1 = seq->getArray()[1];
  Statement* copy10 = seq->getArray()[10];
  const std::string shared = Compilation::createRTLName(copy10->getStatementName());
  ASSERT_EQ(Compilation::createRTLName(copy1->getStatementName(), 0), shared);
  // The first one made keeps the plain name; the later one takes the suffix.
  EXPECT_NE(m->getLocalSignal(shared), nullptr);
  EXPECT_EQ(copy10->getRtl()->getInternalName(), shared + "_u1");
  EXPECT_EQ(copy10->getSet()->getInternalName(),
            Compilation::createSETName(copy10->getStatementName()));
  Reactor r(m);
  EXPECT_EQ(r.react({}), "");
  for (int i = 1; i <= 10; i++) EXPECT_EQ(r.react({"a"}), "") << "reaction " << i + 1;
  EXPECT_EQ(r.react({"a"}), "d");
  EXPECT_EQ(r.react({"a"}), "");
}

// A body that can end where it starts is doubled into a Sequence of the body and its
// "_bis" copy; a body that can't is left alone.
TEST(CompileTrace, LoopDoublesAReincarnatingBody) {
  Module* m = compileText("module m: Input: a; Output: o; loop { present a emit o >> pause } end");
  ASSERT_NE(m, nullptr);
  auto* loop = dynamic_cast<Loop*>(m->getStatement());
  ASSERT_NE(loop, nullptr);
  EXPECT_EQ(dynamic_cast<Sequence*>(loop->getBody()), nullptr);

  // Only the statement walk: the doubled loop still closes a cycle, which the dating
  // at the root would report.
  setenv("QUARN_BATCH", "1", 1);
  Compilation::ModTable = new ModuleTable();
  std::string file = "/tmp/compile_loop_" + std::to_string(getpid()) + ".qn";
  {
    std::ofstream out(file);
    out << "module m: Input: a; Output: o; loop { present a emit o } end\n";
  }
  Compilation::qn_parse(file);
  std::remove(file.c_str());
  Module* d = Compilation::ModTable->get("m");
  ASSERT_NE(d, nullptr);
  int before = Module::SequenceNumber;
  d->createCompileEnv();
  d->getStatement()->compile(d, d->getCompilation());
  auto* dl = dynamic_cast<Loop*>(d->getStatement());
  ASSERT_NE(dl, nullptr);
  auto* seq = dynamic_cast<Sequence*>(dl->getBody());
  ASSERT_NE(seq, nullptr);
  EXPECT_EQ(seq->getStatementName(), "S_" + std::to_string(before));
  EXPECT_EQ(Module::SequenceNumber, before + 1);
  EXPECT_EQ(seq->getRight()->getStatementName(), seq->getLeft()->getStatementName() + "_bis");
  EXPECT_EQ(seq->getParentModule(), d);
  // Both halves have wires of their own.
  EXPECT_NE(seq->getLeft()->getSet(), seq->getRight()->getSet());
  EXPECT_EQ(seq->getRight()->getSet()->getInternalName(),
            "SET" + seq->getLeft()->getStatementName() + "_bis");
}

// A program with every kind of statement of the kernel compiles into a dated wood.
TEST(CompileTrace, WholeProgramIsDated) {
  Module* m = compileText(
      "module m: Input: a, b; Output: o, p, q; Local: s;"
      " loop { weak abort { sustain o until b || loop { present a emit s else emit p >> pause } }"
      " when s >> strong abort { wait a >> emit q } when b >> noemit p >> pause } end");
  ASSERT_NE(m, nullptr);
  Bddexpressionwood* wood = m->getBddWood();
  EXPECT_GT(m->getStatement()->getPertLevel(), 0);
  EXPECT_TRUE(wood->loop_detection().empty());
  EXPECT_EQ(long(wood->earliest_sort().size()), wood->exp_number());
  Reactor r(m);
  r.react({});
  EXPECT_FALSE(r.unknownRead);
}

TEST(CompileTraceDeathTest, CausalityCycles) {
  const std::string atRoot = "ERROR in Module `m': detecting variables in a dependance cycle:";
  // A branch compiled in a copy of the table is dated there; the copy has no name.
  const std::string inBranch = "ERROR in Module `': detecting variables in a dependance cycle:";
  struct Case {
    const char* name;
    const char* program;
    const std::string& report;
  } cases[] = {
      {"loop over nothing", "module m: Output: o; loop { nothing } end", atRoot},
      {"signal against itself", "module m: Output: s; present s nothing else emit s end", atRoot},
      {"local against itself",
       "module m: Output: o; Local: s; present s emit o else emit s end", atRoot},
      {"loop over a test without else",
       "module m: Input: a; Output: o; loop { present a emit o } end", atRoot},
      {"loop over a sustain", "module m: Input: a; Output: o; loop { sustain o until a } end",
       atRoot},
      {"cycle in a second branch",
       "module m: Input: a; Output: o; nothing || loop { sustain o until a } end", inBranch},
      // A test dates its branch before its own equations exist: the cycle that these
      // close is found at the root.
      {"cycle through a test in a second branch",
       "module m: Output: o; Local: s; nothing || present s nothing else emit s end", atRoot},
  };
  for (const Case& c : cases)
    EXPECT_EXIT(compileText(c.program), testing::ExitedWithCode(1),
                model_test::literally(c.report) + "(.|\n)*when sorting equations")
        << c.name;
}

}  // namespace

namespace {

// A "repeat" copy of the second sequence is named like the eleventh sequence ("Sn_1"
// + "0" = "Sn_10"), and the two stand in different branches: each keeps its own wires.
TEST(CompileTrace, CopiesNamedLikeOtherStatementsInOtherBranches) {
  Module::SequenceNumber = 0;
  std::string branches = "{ pause >> pause } || { repeat 2 { pause >> pause } }";
  for (int i = 0; i < 8; i++) branches += " || { pause >> pause }";
  Module* m = compileText("module m: Output: o; { " + branches + " } >> emit o end");
  ASSERT_NE(m, nullptr);
  std::vector<Statement*> named;
  std::vector<Statement*> todo = {m->getStatement()};
  while (!todo.empty()) {
    Statement* s = todo.back();
    todo.pop_back();
    if (s->getStatementName() == "mSn_10") named.push_back(s);
    if (auto* sn = dynamic_cast<Sn*>(s))
      for (int i = 0; i < sn->getCount(); i++) todo.push_back(sn->getArray()[i]);
    if (auto* pn = dynamic_cast<Pn*>(s))
      for (int i = 0; i < pn->getCount(); i++) todo.push_back(pn->getArray()[i]);
  }
  ASSERT_EQ(named.size(), 2u);
  EXPECT_NE(named[0]->getSet()->getInternalName(), named[1]->getSet()->getInternalName());
  EXPECT_NE(named[0]->getRtl()->getInternalName(), named[1]->getRtl()->getInternalName());
  Reactor r(m);
  for (int i = 1; i <= 4; i++) EXPECT_EQ(r.react({}), "") << "reaction " << i;
  EXPECT_EQ(r.react({}), "o");
  EXPECT_EQ(r.react({}), "");
  EXPECT_FALSE(r.unknownRead);
}

}  // namespace

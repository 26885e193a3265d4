// Statement tree: names, copies for loops and "repeat", reincarnation, transition order.
#include "model/statement.h"

#include <gtest/gtest.h>

#include <functional>
#include <typeinfo>

#include "util/compilation.h"
#include "model/module.h"

namespace {

// Stand-ins for shared expressions and signals: copies must keep the very pointers.
Expression* const kExpr = reinterpret_cast<Expression*>(0x1000);
Expression* const kUntil = reinterpret_cast<Expression*>(0x2000);

Statement** members(std::initializer_list<Statement*> l) {
  Statement** a = new Statement*[l.size()];
  int i = 0;
  for (Statement* s : l) a[i++] = s;
  return a;
}

bool wiresEmpty(Statement* s) {
  try {
    s->getSet();
    return false;
  } catch (StatementWireException&) {
  }
  try {
    s->getReset();
    return false;
  } catch (StatementWireException&) {
  }
  try {
    s->getRtl();
    return false;
  } catch (StatementWireException&) {
  }
  return true;
}

struct CopyCase {
  const char* what;
  std::function<Statement*()> make;
  // Names of the direct sub-statements of a copy, in order.
  std::function<std::vector<std::string>(Statement*)> children;
};

std::vector<std::string> none(Statement*) { return {}; }

std::vector<std::string> arrayNames(Statement** a, int n) {
  std::vector<std::string> v;
  for (int i = 0; i < n; i++) v.push_back(a[i]->getName());
  return v;
}

std::vector<CopyCase> copyCases() {
  return {
      {"Sequence", [] { return new Sequence("S", new Pause("p1"), new Nothing("n1")); },
       [](Statement* s) {
         auto* q = dynamic_cast<Sequence*>(s);
         return std::vector<std::string>{q->getLeft()->getName(), q->getRight()->getName()};
       }},
      {"Sn", [] { return new Sn("Sn", 3, members({new Pause("a"), new Halt("b"), new Nothing("c")})); },
       [](Statement* s) {
         auto* q = dynamic_cast<Sn*>(s);
         return arrayNames(q->getArray(), q->getCount());
       }},
      {"Parallel", [] { return new Parallel("P", new Pause("p1"), new Halt("h1")); },
       [](Statement* s) {
         auto* q = dynamic_cast<Parallel*>(s);
         return std::vector<std::string>{q->getLeft()->getName(), q->getRight()->getName()};
       }},
      {"Pn", [] { return new Pn("Pn", 2, members({new Pause("a"), new Nothing("b")})); },
       [](Statement* s) {
         auto* q = dynamic_cast<Pn*>(s);
         return arrayNames(q->getArray(), q->getCount());
       }},
      {"Present", [] { return new Present("PR", kExpr, new Pause("t"), new Nothing("e")); },
       [](Statement* s) {
         auto* q = dynamic_cast<Present*>(s);
         EXPECT_EQ(q->getExpression(), kExpr);
         return std::vector<std::string>{q->getThen()->getName(), q->getElse()->getName()};
       }},
      {"Present without else", [] { return new Present("PR", kExpr, new Pause("t"), nullptr); },
       [](Statement* s) {
         auto* q = dynamic_cast<Present*>(s);
         EXPECT_EQ(q->getElse(), nullptr);
         return std::vector<std::string>{q->getThen()->getName()};
       }},
      {"Absent", [] { return new Absent("AB", kExpr, new Pause("t"), new Nothing("e")); },
       [](Statement* s) {
         auto* q = dynamic_cast<Absent*>(s);
         EXPECT_EQ(q->getExpression(), kExpr);
         return std::vector<std::string>{q->getThen()->getName(), q->getElse()->getName()};
       }},
      {"Abort", [] { return new Abort("A", kExpr, new Halt("h")); },
       [](Statement* s) {
         auto* q = dynamic_cast<Abort*>(s);
         EXPECT_EQ(q->getExpression(), kExpr);
         return std::vector<std::string>{q->getBody()->getName()};
       }},
      {"StrongAbort", [] { return new StrongAbort("SA", kExpr, new Halt("h")); },
       [](Statement* s) {
         auto* q = dynamic_cast<StrongAbort*>(s);
         EXPECT_EQ(q->getExpression(), kExpr);
         return std::vector<std::string>{q->getBody()->getName()};
       }},
      {"Loop", [] { return new Loop("L", new Pause("p")); },
       [](Statement* s) {
         return std::vector<std::string>{dynamic_cast<Loop*>(s)->getBody()->getName()};
       }},
      {"Wait", [] { return new Wait("W", kExpr); },
       [](Statement* s) {
         EXPECT_EQ(dynamic_cast<Wait*>(s)->getExpression(), kExpr);
         return std::vector<std::string>{};
       }},
      {"Pause", [] { return new Pause("PS"); }, none},
      {"Nothing", [] { return new Nothing("N"); }, none},
      {"Halt", [] { return new Halt("H"); }, none},
      {"Emit", [] { return new Emit("E", nullptr); },
       [](Statement* s) {
         EXPECT_EQ(dynamic_cast<Emit*>(s)->getClock(), nullptr);
         return std::vector<std::string>{};
       }},
      {"NoEmit", [] { return new NoEmit("NE", nullptr); }, none},
      {"SustainUntil", [] { return new SustainUntil("SU", nullptr, kUntil); },
       [](Statement* s) {
         EXPECT_EQ(dynamic_cast<SustainUntil*>(s)->getUntil(), kUntil);
         return std::vector<std::string>{};
       }},
  };
}

TEST(StatementCopy, BisCopyOfEveryClass) {
  Module m("M");
  for (const CopyCase& c : copyCases()) {
    SCOPED_TRACE(c.what);
    Statement* original = c.make();
    original->setParentModule(&m);
    original->setPertLevel(7);
    Statement* copy = original->duplicate(&m, nullptr);
    ASSERT_NE(copy, nullptr);
    EXPECT_NE(copy, original);
    EXPECT_EQ(typeid(*copy), typeid(*original));
    EXPECT_EQ(copy->getName(), original->getName() + "_bis");
    EXPECT_EQ(copy->getParentModule(), &m);
    EXPECT_EQ(copy->getPertLevel(), 0);
    EXPECT_TRUE(wiresEmpty(copy));
    std::vector<std::string> expected;
    for (const std::string& n : c.children(original)) expected.push_back(n + "_bis");
    EXPECT_EQ(c.children(copy), expected);
  }
}

TEST(StatementCopy, NumberedCopyOfEveryClass) {
  for (const CopyCase& c : copyCases()) {
    SCOPED_TRACE(c.what);
    Statement* original = c.make();
    for (int n : {0, 1, 12}) {
      Statement* copy = original->duplicate(n);
      ASSERT_NE(copy, nullptr);
      EXPECT_EQ(typeid(*copy), typeid(*original));
      EXPECT_EQ(copy->getName(), original->getName() + std::to_string(n));
      std::vector<std::string> expected;
      for (const std::string& name : c.children(original)) expected.push_back(name + std::to_string(n));
      EXPECT_EQ(c.children(copy), expected);
    }
  }
}

TEST(StatementCopy, CopiesShareSignalsAndClock) {
  Signal* clock = reinterpret_cast<Signal*>(0x4000);
  // The signal name is read from the signal only when there is one.
  Emit valued("E", nullptr, clock);
  auto* e = dynamic_cast<Emit*>(valued.duplicate(nullptr, nullptr));
  EXPECT_EQ(e->getClock(), clock);
  EXPECT_EQ(dynamic_cast<Emit*>(valued.duplicate(2))->getClock(), clock);

  SustainUntil sustain("SU", nullptr, kUntil);
  sustain.setClock(clock);
  EXPECT_EQ(dynamic_cast<SustainUntil*>(sustain.duplicate(nullptr, nullptr))->getClock(), clock);
  EXPECT_EQ(dynamic_cast<SustainUntil*>(sustain.duplicate(1))->getClock(), clock);
}

TEST(StatementCopy, RepeatGivesNumberedMembers) {
  // "repeat 3 { pause; emit }": member i is the body's duplicate(i).
  Statement* body = new Sn("MSn_4", 2, members({new Pause("MPS_1"), new Nothing("MN_2")}));
  std::vector<std::string> names;
  for (int i = 0; i < 3; i++) names.push_back(body->duplicate(i)->getName());
  EXPECT_EQ(names, (std::vector<std::string>{"MSn_40", "MSn_41", "MSn_42"}));
  auto* second = dynamic_cast<Sn*>(body->duplicate(1));
  EXPECT_EQ(arrayNames(second->getArray(), 2), (std::vector<std::string>{"MPS_11", "MN_21"}));
}

TEST(StatementCopy, RunCopyIsNamedAfterTheCallingModule) {
  Module caller("M");
  ::Run run("MR_Sub_0", "Sub");
  run.setParentModule(&caller);
  auto* table = run.getRenamingTable();
  ASSERT_NE(table, nullptr);

  int before = Module::RunNumber;
  auto* copy = dynamic_cast<::Run*>(run.duplicate(&caller, nullptr));
  EXPECT_EQ(copy->getName(), "R_M_" + std::to_string(before));
  EXPECT_EQ(Module::RunNumber, before + 1);
  EXPECT_EQ(copy->getModuleName(), "Sub");
  EXPECT_EQ(copy->getRenamingTable(), table);
  EXPECT_EQ(copy->getParentModule(), &caller);

  auto* numbered = dynamic_cast<::Run*>(run.duplicate(3));
  EXPECT_EQ(numbered->getName(), "MR_Sub_03");
  EXPECT_EQ(numbered->getRenamingTable(), table);
  EXPECT_EQ(Module::RunNumber, before + 1);
}

TEST(StatementCopy, AutomataAndMealyMachinesAreNotCopied) {
  Automaton a("AUT", nullptr, new std::map<std::string, State*>, new std::list<Transition*>);
  MealyMachine mm("MM");
  EXPECT_EQ(a.duplicate(nullptr, nullptr), nullptr);
  EXPECT_EQ(a.duplicate(1), nullptr);
  EXPECT_EQ(mm.duplicate(nullptr, nullptr), nullptr);
  EXPECT_EQ(mm.duplicate(1), nullptr);
}

TEST(StatementNaming, GenerateNameCountsUp) {
  Module m("Main");
  struct Case {
    const char* prefix;
    int* counter;
  } cases[] = {{"PS", &Module::PauseNumber},    {"N", &Module::NothingNumber},
               {"Pn", &Module::ParallelNumber}, {"Sn", &Module::SequenceNumber},
               {"IF", &Module::PresentNumber},  {"R_Sub", &Module::RunNumber},
               {"TRANS", &Module::TransitionNumber}};
  for (const Case& c : cases) {
    int start = *c.counter;
    EXPECT_EQ(m.generateName(c.prefix, *c.counter), "Main" + std::string(c.prefix) + "_" + std::to_string(start));
    EXPECT_EQ(m.generateName(c.prefix, *c.counter), "Main" + std::string(c.prefix) + "_" + std::to_string(start + 1));
    EXPECT_EQ(*c.counter, start + 2);
  }
  // Counters are shared by all modules.
  Module other("Other");
  int start = Module::EmitNumber;
  m.generateName("E", Module::EmitNumber);
  EXPECT_EQ(other.generateName("E", Module::EmitNumber), "OtherE_" + std::to_string(start + 1));
}

// ---------------------------------------------------------------------------------------

Statement* P() { return new Pause("p"); }     // never terminates at once
Statement* T() { return new Nothing("n"); }   // terminates at once

TEST(StatementReincarnate, ByClass) {
  Automaton aut("AUT", nullptr, new std::map<std::string, State*>, new std::list<Transition*>);
  struct Case {
    const char* what;
    Statement* s;
    bool expected;
  } cases[] = {
      {"Nothing", T(), true},
      {"Emit", new Emit("E", nullptr), true},
      {"NoEmit", new NoEmit("NE", nullptr), true},
      {"Abort of pause", new Abort("A", kExpr, P()), true},
      {"StrongAbort of pause", new StrongAbort("SA", kExpr, P()), true},
      {"Pause", P(), false},
      {"Wait", new Wait("W", kExpr), false},
      {"Halt", new Halt("H"), false},
      {"SustainUntil", new SustainUntil("SU", nullptr, kUntil), false},
      {"Automaton", &aut, false},
      {"MealyMachine", new MealyMachine("MM"), false},
      {"Sequence both", new Sequence("S", T(), T()), true},
      {"Sequence left stops", new Sequence("S", P(), T()), false},
      {"Sequence right stops", new Sequence("S", T(), P()), false},
      {"Sn all", new Sn("Sn", 3, members({T(), T(), T()})), true},
      {"Sn middle stops", new Sn("Sn", 3, members({T(), P(), T()})), false},
      {"Parallel one passes", new Parallel("P", P(), T()), true},
      {"Parallel none", new Parallel("P", P(), P()), false},
      {"Pn last passes", new Pn("Pn", 3, members({P(), P(), T()})), true},
      {"Pn none", new Pn("Pn", 2, members({P(), P()})), false},
      {"Present then passes", new Present("PR", kExpr, T(), P()), true},
      {"Present else passes", new Present("PR", kExpr, P(), T()), true},
      {"Present neither", new Present("PR", kExpr, P(), P()), false},
      {"Present no else", new Present("PR", kExpr, P(), nullptr), false},
      {"Absent no else passes", new Absent("AB", kExpr, T(), nullptr), true},
      {"Absent else passes", new Absent("AB", kExpr, P(), T()), true},
      {"Loop of pause", new Loop("L", P()), false},
      {"Loop of nothing", new Loop("L", T()), true},
  };
  for (const Case& c : cases) EXPECT_EQ(c.s->reincarnate(), c.expected) << c.what;
}

// Counts the questions, to see where Sn stops.
class Probe : public Statement {
 public:
  Probe(bool answer, std::vector<int>* log, int id) : Statement("probe"), answer(answer), log(log), id(id) {}
  bool reincarnate() override {
    log->push_back(id);
    return answer;
  }

 private:
  bool answer;
  std::vector<int>* log;
  int id;
};

TEST(StatementReincarnate, SnAsksFromTheLastAndStopsAtTheFirstFalse) {
  std::vector<int> log;
  Sn s("Sn", 3, members({new Probe(true, &log, 0), new Probe(false, &log, 1), new Probe(true, &log, 2)}));
  EXPECT_FALSE(s.reincarnate());
  EXPECT_EQ(log, (std::vector<int>{2, 1}));
}

// ---------------------------------------------------------------------------------------

TEST(Transitions, PrioritySortPutsOtherLast) {
  auto t = [](int p) { return new Transition(1, p, nullptr, nullptr, nullptr, nullptr, nullptr, false); };
  struct Case {
    std::vector<int> in, out;
  } cases[] = {
      {{-1, 3, 2}, {2, 3, -1}},
      {{3, -1, 2, 0}, {0, 2, 3, -1}},
      {{5}, {5}},
      {{}, {}},
      {{-1, -1, 1}, {1, -1, -1}},
  };
  for (const Case& c : cases) {
    std::list<Transition*> l;
    for (int p : c.in) l.push_back(t(p));
    std::list<Transition*>* sorted = priority_sort(&l);
    EXPECT_NE(sorted, &l);
    std::vector<int> got;
    for (Transition* x : *sorted) got.push_back(x->getPriority());
    EXPECT_EQ(got, c.out);
    EXPECT_EQ(l.size(), c.in.size());  // the original list is left as it was
    if (!c.in.empty()) {
      EXPECT_EQ(l.front()->getPriority(), c.in.front());
    }
  }
  // Ties keep their order.
  Transition* a = t(2);
  Transition* b = t(2);
  Transition* o1 = t(-1);
  Transition* o2 = t(-1);
  std::list<Transition*> l{o1, a, o2, b};
  std::list<Transition*>* sorted = priority_sort(&l);
  EXPECT_EQ(*sorted, (std::list<Transition*>{a, b, o1, o2}));
}

TEST(Transitions, PriorityComp) {
  auto t = [](int p) { return new Transition(1, p, nullptr, nullptr, nullptr, nullptr, nullptr, false); };
  EXPECT_TRUE(priority_comp(t(2), t(3)));
  EXPECT_FALSE(priority_comp(t(3), t(2)));
  EXPECT_TRUE(priority_comp(t(3), t(-1)));
  EXPECT_FALSE(priority_comp(t(-1), t(3)));
  EXPECT_FALSE(priority_comp(t(-1), t(-1)));
  EXPECT_FALSE(priority_comp(t(2), t(2)));
}

TEST(Automata, FindState) {
  std::map<std::string, State*> table;
  State* s0 = new State("s0");
  table["s0"] = s0;
  EXPECT_EQ(Automaton::findState(&table, "s0"), s0);
  EXPECT_EQ(Automaton::findState(&table, "s1"), nullptr);
  EXPECT_EQ(Automaton::findState(nullptr, "s0"), nullptr);
}

TEST(Parser, SnAndPnGrowByOne) {
  Pn p("Pn", 2, members({new Pause("a"), new Pause("b")}));
  p.addStatement(new Nothing("c"));
  EXPECT_EQ(arrayNames(p.getArray(), p.getCount()), (std::vector<std::string>{"a", "b", "c"}));
  Sn s("Sn", 2, members({new Pause("a"), new Pause("b")}));
  s.addStatement(new Nothing("c"));
  s.addStatement(new Halt("d"));
  EXPECT_EQ(arrayNames(s.getArray(), s.getCount()), (std::vector<std::string>{"a", "b", "c", "d"}));
  EXPECT_TRUE(s.isSequence());
  EXPECT_TRUE(p.isParallel());
  EXPECT_FALSE(s.isParallel());
}

TEST(Statement, WiresBeforeCreateWiresAreAFault) {
  Pause p("PS");
  try {
    p.getRtl();
    FAIL();
  } catch (StatementWireException& e) {
    EXPECT_STREQ(e.what(), "rtl");
  }
  try {
    p.getSet();
    FAIL();
  } catch (StatementWireException& e) {
    EXPECT_STREQ(e.what(), "set");
  }
}

}  // namespace

// Signals: occurrences, their records and BDD variable names, kinds, and the leaf
// functions of the algebra.
#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "common/quarn_test.h"
#include "bdd/bddpp.h"
#include "util/compilation.h"
#include "equations/Bddexpression.h"
#include "equations/equationtable.h"
#include "model/module.h"
#include "signals/expression.h"
#include "signals/signal_manager.h"

namespace {

class Signals : public ::testing::Test {
 protected:
  void SetUp() override { setenv("QUARN_BATCH", "1", 1); }

  Module* m = new Module("M");
  Bddexpressionwood* w = m->getBddWood();
  SignalManager* sm = m->getSignalManager();
  bddpp_manager* g = w->my_bdd_manager();

  std::string var(long index) { return g->Name_var_by_index(index); }
  Signal* local(const std::string& name) { return quarn_test::local(*m, name); }
};

TEST_F(Signals, OccurrencesHaveTheirRecordsAndVariables) {
  Signal* s = local("L");
  EXPECT_EQ(s->getCurrentOccurrence(w), 0);
  s->newOccurrence(w, m);
  EXPECT_EQ(s->newOccurrence(w, m), s);
  EXPECT_EQ(s->getCurrentOccurrence(w), 2);
  EXPECT_EQ(s->getName(m), "L_2");
  EXPECT_EQ(s->getName(m, w), "L_2");

  struct Row {
    int occurrence;
    const char* record;
    const char* over;
    const char* under;
    bool mark;
  };
  const Row rows[] = {{0, "L", "_s_L", "_v_L", false},
                      {1, "L_1", "_s_L_1", "_v_L_1", true},
                      {2, "L_2", "_s_L_2", "_v_L_2", true}};
  std::list<long> expectedIds;
  for (const Row& r : rows) {
    SignalRef* ref = sm->getSignalRefByOccurrence(s, r.occurrence);
    ASSERT_NE(ref, nullptr) << r.record;
    EXPECT_EQ(ref, sm->getSignalRefByName(r.record));
    EXPECT_EQ(ref->getCurrentName(), r.record);
    EXPECT_EQ(ref->getInternalName(), "L");
    EXPECT_EQ(ref->getCurrentOccurrence(), r.occurrence);
    EXPECT_EQ(ref->getOccurrenceMark(), r.mark) << r.record;
    EXPECT_EQ(ref->getType(), "pure");
    EXPECT_EQ(var(ref->getOverBddId(w)), r.over);
    EXPECT_EQ(var(ref->getUnderBddId(w)), r.under);
    // Over and under index of an occurrence lead to its record.
    EXPECT_EQ(sm->getSignalRefById(ref->getOverBddId(w), w), ref);
    EXPECT_EQ(sm->getSignalRefById(ref->getUnderBddId(w), w), ref);
    expectedIds.push_back(ref->getOverBddId(w));
    expectedIds.push_back(ref->getUnderBddId(w));
  }
  EXPECT_EQ(s->getAllBddId(m, w), expectedIds);
  EXPECT_EQ(s->getOverName(m), "_s_L_2");
  EXPECT_EQ(s->getUnderName(m), "_v_L_2");
  EXPECT_EQ(var(s->getInitialOverBddId(m, w)), "_s_L");
  EXPECT_EQ(var(s->getInitialUnderBddId(m, w)), "_v_L");

  // The leaf functions: current occurrence, or occurrence 0 for the initial forms.
  EXPECT_EQ(s->getOverBdd(m, w), g->Bdd_var_by_name("_s_L_2"));
  EXPECT_EQ(s->getUnderBdd(m, w), g->Bdd_var_by_name("_v_L_2"));
  EXPECT_EQ(s->getInitialOverBdd(m, w), g->Bdd_var_by_name("_s_L"));
  EXPECT_EQ(s->getInitialUnderBdd(m, w), g->Bdd_var_by_name("_v_L"));

  // A variable that no signal owns has no record.
  long other = w->Index_new_var_last("free");
  EXPECT_EQ(sm->getSignalRefById(other, w), nullptr);
  EXPECT_EQ(sm->getSignalRefById(other, new Bddexpressionwood()), nullptr);
}

// Only outputs and locals move on; wires and inputs keep occurrence 0.
TEST_F(Signals, WhichKindsMoveOn) {
  struct Kind {
    const char* name;
    void (*set)(Signal*);
    int after;
  };
  const Kind kinds[] = {
      {"plain", [](Signal*) {}, 0},
      {"input", [](Signal* s) { s->setInput(); }, 0},
      {"wire", [](Signal* s) { s->setWire(); }, 0},
      {"register", [](Signal* s) { s->setRegister(); }, 0},
      {"local", [](Signal* s) { s->setLocal(); }, 1},
      {"output", [](Signal* s) { s->setOutput(); }, 1},
  };
  for (const Kind& k : kinds) {
    auto* s = new Signal(std::string("K") + k.name, m, w);
    k.set(s);
    s->newOccurrence(w, m);
    EXPECT_EQ(s->getCurrentOccurrence(w), k.after) << k.name;
    EXPECT_EQ(sm->getSignalRefByOccurrence(s, 1) != nullptr, k.after == 1) << k.name;
  }
}

TEST_F(Signals, KindsGiveUserTypes) {
  struct Kind {
    const char* name;
    void (*set)(Signal*);
    int over, under;
  };
  const Kind kinds[] = {
      {"plain", [](Signal*) {}, Compilation::STAT, Compilation::VAL},
      {"local", [](Signal* s) { s->setLocal(); }, Compilation::STAT, Compilation::VAL},
      {"input", [](Signal* s) { s->setInput(); }, Compilation::SINPUT, Compilation::VINPUT},
      {"output", [](Signal* s) { s->setOutput(); }, Compilation::SOUTPUT, Compilation::VOUTPUT},
      {"register", [](Signal* s) { s->setRegister(); }, Compilation::SREG, Compilation::VREG},
      {"clock", [](Signal* s) { s->setClock(); }, Compilation::SCLOCK, Compilation::VCLOCK},
      {"wire", [](Signal* s) { s->setWire(); }, Compilation::SWIRE, Compilation::VWIRE},
      {"input output", [](Signal* s) { s->setOutput(); s->setInput(); }, Compilation::SINPUT,
       Compilation::VINPUT},
      {"output register", [](Signal* s) { s->setRegister(); s->setOutput(); },
       Compilation::SOUTPUT, Compilation::VOUTPUT},
      {"clock wire", [](Signal* s) { s->setWire(); s->setClock(); }, Compilation::SCLOCK,
       Compilation::VCLOCK},
  };
  for (const Kind& k : kinds) {
    auto* s = new Signal(std::string("T") + k.name, m, w);
    k.set(s);
    EXPECT_EQ(s->computeOverType(), k.over) << k.name;
    EXPECT_EQ(s->computeUnderType(), k.under) << k.name;
  }
  auto* r = new Signal("R", m, w, true);
  EXPECT_TRUE(r->isRegister());
  EXPECT_TRUE(r->isWire());
  auto* s = new Signal("S", m, w);
  s->setRegister();
  EXPECT_TRUE(s->isWire());
}

TEST_F(Signals, SameNameSharesOneRecord) {
  auto* a = new Signal("S", m, w);
  auto* b = new Signal("S", m, w);
  EXPECT_EQ(a->getOverBddId(m, w), b->getOverBddId(m, w));
  EXPECT_EQ(a->getSignalRef(m), b->getSignalRef(m));
  EXPECT_EQ(sm->getTableByName().size(), 1u);
  EXPECT_EQ(g->Nb_bdd_vars, 2);

  auto* c = new Signal("S", m, w, true);
  EXPECT_TRUE(c->getOccurrenceTable()->empty());
  EXPECT_EXIT(c->getOverBddId(m, w), ::testing::ExitedWithCode(1),
              "Signal::getOverBddId: no current occurrence for this woodS");
  auto* d = new Signal("S", "S", m, w);
  EXPECT_FALSE(d->hasOccurrence(w));
  auto* e = new Signal("X", "X__N_i0", m, w);
  EXPECT_EQ(e->getOriginalName(), "X");
  EXPECT_EQ(e->getInternalName(), "X__N_i0");
  EXPECT_EQ(var(e->getOverBddId(m, w)), "_s_X__N_i0");
}

// Two branch woods that reach the same occurrence share its record.
TEST_F(Signals, OneRecordForTheSameOccurrenceInTwoWoods) {
  Signal* s = local("L");
  w->Index_new_var_last("shift");  // the branch wood's indexes will differ
  auto* branch = new Bddexpressionwood(w);
  sm->duplicate(branch, w);
  s->extendCurrentOccurrenceTable(branch, s->getCurrentOccurrence(w));
  branch->Index_new_var_last("only_in_branch");

  s->newOccurrence(w, m);
  s->newOccurrence(branch, m);
  SignalRef* ref = sm->getSignalRefByName("L_1");
  ASSERT_NE(ref, nullptr);
  EXPECT_EQ(ref->getIds().size(), 2u);
  EXPECT_NE(ref->getOverBddId(w), ref->getOverBddId(branch));
  EXPECT_EQ(branch->my_bdd_manager()->Name_var_by_index(ref->getOverBddId(branch)), "_s_L_1");
  EXPECT_EQ(sm->getSignalRefById(ref->getUnderBddId(branch), branch), ref);

  // A record already made for this wood can't be made again.
  s->setCurrentOccurrence(branch, 0);
  EXPECT_EXIT(s->newOccurrence(branch, m), ::testing::ExitedWithCode(1),
              "Signal::newOccurrence: signal ref already exits for the current woodL");

  sm->deleteWood(branch);
  EXPECT_EQ(ref->getIds().size(), 1u);
  EXPECT_TRUE(ref->isDefinedWood(w));
  EXPECT_EQ(sm->getSignalRefById(ref->getOverBddId(w), w), ref);
}

TEST_F(Signals, ValueTypeFollowsTheOccurrences) {
  Signal* s = local("V");
  EXPECT_FALSE(s->isValued(m));
  EXPECT_EQ(s->getValueType(m), "pure");
  s->setValueType("integer", m);
  EXPECT_TRUE(s->isValued(m, w));
  s->newOccurrence(w, m);
  EXPECT_TRUE(s->isValued(m));
  EXPECT_EQ(s->getValueType(m, w), "integer");
  EXPECT_FALSE(s->usedwithPre(m));
  auto* p = new Signal("preV", m, w);
  m->addPreSignal(p, s, "");
  EXPECT_TRUE(s->usedwithPre(m));
  EXPECT_FALSE(p->usedwithPre(m));
}

TEST_F(Signals, CopyIntoAnotherModule) {
  Signal* s = local("L");
  s->setValueType("integer", m);
  s->newOccurrence(w, m);
  s->newOccurrence(w, m);
  s->addValueDependency(s);
  auto* m2 = new Module("M2");
  Bddexpressionwood* w2 = m2->getBddWood();
  auto* c = new Signal(*s, m2, w2, m);
  EXPECT_TRUE(c->isLocal());
  EXPECT_EQ(c->getCurrentOccurrence(w2), 2);
  EXPECT_EQ(c->getValueDependencies()->count(s), 1u);
  for (const char* name : {"L", "L_1", "L_2"}) {
    SignalRef* ref = m2->getSignalManager()->getSignalRefByName(name);
    ASSERT_NE(ref, nullptr) << name;
    EXPECT_TRUE(ref->isDefinedWood(w2));
    EXPECT_TRUE(ref->isValued());
    EXPECT_EQ(ref->getType(), "integer");
  }
  EXPECT_EQ(w2->my_bdd_manager()->Name_var_by_index(c->getOverBddId(m2, w2)), "_s_L_2");

  // The plain copy shares the occurrence table.
  auto* same = new Signal(*s);
  EXPECT_EQ(same->getOccurrenceTable(), s->getOccurrenceTable());
  EXPECT_EQ(same->getOverBdd(m, w), s->getOverBdd(m, w));
}

TEST_F(Signals, Printing) {
  Signal* s = local("L");
  s->newOccurrence(w, m);
  std::ostringstream a, b, c;
  a << s;
  EXPECT_EQ(a.str(), "{L}");
  s->print(b);
  EXPECT_EQ(b.str(), "L");
  s->printSignalOccurrence(c);
  std::ostringstream wood;
  wood << w;
  EXPECT_EQ(c.str(), "L:  wood:" + wood.str() + "  nb occurrence:1; \n");
  EXPECT_EQ(Signal::generateName("IData", "x3"), "IData_x3");

  auto* o = new Signal("O", m, w);
  std::ostringstream e;
  (new OrExpression(s, new NpExpression(new AndExpression(o, new NotExpression(s)))))->print(e);
  EXPECT_EQ(e.str(), "(L + np (O * ~L))");
  std::ostringstream f;
  (new CondExpression(new TrueExpression(), o))->print(f);
  EXPECT_EQ(f.str(), "(Cond( 1 , O))");
}

TEST_F(Signals, Failures) {
  auto* in = new Signal("I", m, w);
  in->setInput();
  auto* other = new Bddexpressionwood();
  SignalRef* ref = sm->getSignalRefByName("I");
  struct Case {
    const char* what;
    std::function<void()> run;
    const char* message;
  };
  const Case cases[] = {
      {"current occurrence", [&] { in->getCurrentOccurrence(other); },
       "Signal:getCurrentOccurrence: no current occurrence for the considered wood:.*  for "
       "signal:I"},
      {"set occurrence", [&] { in->setCurrentOccurrence(other, 1); },
       "Signal::setCurrentOccurrence: no wood for signalI"},
      {"all ids of an input", [&] { in->getAllBddId(m, w); }, "Signal::getAllBddIdI"},
      {"over of unknown wood", [&] { in->getOverBdd(m, other); },
       "Signal::getOverBdd:no signal ref for signal I"},
      {"under of unknown wood", [&] { in->getUnderBdd(m, other); },
       "Signal::getUnderBdd:no signal ref for signalI"},
      {"record over id", [&] { ref->getOverBddId(other); }, "SignalRef::getOverBddId:unknown woodI"},
      {"record under id", [&] { ref->getUnderBddId(other); },
       "SignalRef::getUnderBddId:unknown wood I"},
      {"record set id", [&] { ref->setOverBddId(3, other); },
       "SignalRef::setOverBddId: wood not found"},
      {"ids twice", [&] { ref->addBddIds(0, 1, w); }, "SignalRef::addBddIds: wood already addedI"},
      {"record twice", [&] { sm->addSignalRef(ref); },
       "SignalManager::addSignalRef.*add:I is already defined"},
      {"current record", [&] { in->getCurrentSignalRef(other, m); },
       "Internal error in Signal::getCurrentSignalRef about I\nWood:\n"},
  };
  for (const Case& c : cases)
    EXPECT_EXIT(c.run(), ::testing::ExitedWithCode(1), c.message) << c.what;
  EXPECT_EQ(in->getCurrentSignalRef(w, m), ref);
}

// Tree rebuilding keeps the leaves; gates and constants stay as they are.
TEST_F(Signals, BuildCurrentExpression) {
  auto* a = new Signal("A", m, w);
  auto* b = new Signal("B", m, w);
  auto* gate = new ThenExpression(a, new TrueExpression());
  auto* tree = new OrExpression(new NpExpression(a), new AndExpression(new NotExpression(b), gate));
  EquationTable* t = m->getCompilation();
  auto* r = static_cast<OrExpression*>(tree->buildCurrentExpression(t, m));
  ASSERT_NE(r, tree);
  auto* np = static_cast<NpExpression*>(r->getLeft());
  EXPECT_NE(np, tree->getLeft());
  EXPECT_EQ(np->getOperand(), a);
  auto* and_ = static_cast<AndExpression*>(r->getRight());
  EXPECT_EQ(static_cast<NotExpression*>(and_->getLeft())->getOperand(), b);
  EXPECT_EQ(and_->getRight(), gate);
  EXPECT_EQ(a->buildCurrentExpression(t, m), a);
  Expression* one = new TrueExpression();
  EXPECT_EQ(one->buildCurrentExpression(t, m), one);
  EXPECT_EQ(a->duplicate()->getOverBdd(m, w), a->getOverBdd(m, w));
}

// The connectives over signal leaves, as functions of their variables.
TEST_F(Signals, ConnectivesOverSignals) {
  Signal* a = local("A");
  Signal* b = local("B");
  a->newOccurrence(w, m);
  bdd oa = a->getOverBdd(m, w), ua = a->getUnderBdd(m, w);
  bdd ob = b->getOverBdd(m, w), ub = b->getUnderBdd(m, w);
  bdd oa0 = a->getInitialOverBdd(m, w), ua0 = a->getInitialUnderBdd(m, w);
  struct Case {
    const char* name;
    Expression* e;
    bdd over, under, initialOver, initialUnder;
  };
  const Case cases[] = {
      {"or", new OrExpression(a, b), g->Bdd_or(oa, ob), g->Bdd_and(ua, ub), g->Bdd_or(oa0, ob),
       g->Bdd_and(ua0, ub)},
      {"and", new AndExpression(a, b), g->Bdd_and(oa, ob), g->Bdd_or(ua, ub), g->Bdd_and(oa0, ob),
       g->Bdd_or(ua0, ub)},
      {"not", new NotExpression(a), ua, oa, ua0, oa0},
      {"np", new NpExpression(a), g->Bdd_or(g->Bdd_not(oa), g->Bdd_and(oa, ua)), oa,
       g->Bdd_or(g->Bdd_not(oa0), g->Bdd_and(oa0, ua0)), oa0},
      {"then", new ThenExpression(a, b), g->Bdd_and(oa, ob), g->Bdd_and(oa, ub),
       g->Bdd_and(oa0, ob), g->Bdd_and(oa0, ub)},
      {"else", new ElseExpression(a, b), g->Bdd_and(g->Bdd_not(oa), ob),
       g->Bdd_and(g->Bdd_not(oa), ub), g->Bdd_and(g->Bdd_not(oa0), ob),
       g->Bdd_and(g->Bdd_not(oa0), ub)},
      {"dthen", new DThenExpression(a, b), g->Bdd_and(ua, ob), g->Bdd_and(ua, ub),
       g->Bdd_and(ua0, ob), g->Bdd_and(ua0, ub)},
      {"delse", new DElseExpression(a, b), g->Bdd_and(g->Bdd_not(ua), ob),
       g->Bdd_and(g->Bdd_not(ua), ub), g->Bdd_and(g->Bdd_not(ua0), ob),
       g->Bdd_and(g->Bdd_not(ua0), ub)},
      // Cond reads the current forms in its initial functions too.
      {"cond", new CondExpression(b, a), g->Bdd_and(ob, oa), g->Bdd_and(ub, oa), g->Bdd_and(ob, oa),
       g->Bdd_and(ub, oa)},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(c.e->getOverBdd(m, w), c.over) << c.name;
    EXPECT_EQ(c.e->getUnderBdd(m, w), c.under) << c.name;
    EXPECT_EQ(c.e->getInitialOverBdd(m, w), c.initialOver) << c.name;
    EXPECT_EQ(c.e->getInitialUnderBdd(m, w), c.initialUnder) << c.name;
  }
  std::ostringstream over, under;
  (new OrExpression(a, b))->printUnderBdd(over, m, w);
  (new NotExpression(b))->printUnderBdd(under, m, w);
  EXPECT_EQ(under.str(), "_s_B");
  EXPECT_EQ(over.str(), "_v_B*_v_A_1");
  std::ostringstream np;
  (new NpExpression(b))->printUnderBdd(np, m, w);
  EXPECT_EQ(np.str(), "_s_B");
  std::ostringstream neg;
  (new ElseExpression(b, new TrueExpression()))->printOverBdd(neg, m, w);
  EXPECT_EQ(neg.str(), "!_s_B");
}

}  // namespace

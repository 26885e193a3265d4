// Branches: a duplicate of the table, compiled apart and or'ed back by unify.
#include <map>

#include "data/data.h"
#include "equationtable_fixture.h"

namespace {

using Branches = TableTest;

TEST_F(Branches, DuplicateCopiesWoodAndOccurrences) {
  Signal* a = input("A");
  Signal* o = emitted("O", true);
  Signal* k = wire("K");
  t->createEquation(k, a, m);
  EquationTable* b = t->duplicate(m);
  Bddexpressionwood* bw = b->getBddexpressionWood();
  EXPECT_EQ(b->getName(), "");
  EXPECT_EQ(t->getName(), "M");
  EXPECT_NE(bw, w);
  EXPECT_NE(bw->my_bdd_manager(), g);
  ASSERT_EQ(bw->Nb_bdd_vars(), w->Nb_bdd_vars());
  for (long i = 0; i < w->Nb_bdd_vars(); i++) EXPECT_EQ(bw->Name_var_by_index(i), w->Name_var_by_index(i));
  EXPECT_EQ(bw->exp_number(), w->exp_number());
  EXPECT_EQ(o->getCurrentOccurrence(bw), 1);
  EXPECT_EQ(a->getCurrentOccurrence(bw), 0);
  SignalRef* ref = m->getSignalManager()->getSignalRefByName("O_1");
  EXPECT_EQ(ref->getOverBddId(bw), ref->getOverBddId(w));
  EXPECT_EQ(m->getSignalManager()->getSignalRefById(ref->getOverBddId(bw), bw), ref);
  // Writing in the branch leaves the module's wood alone.
  b->createUnifyEquation(o, new TrueExpression(), m, false);
  EXPECT_EQ(rhs("_s_O_1"), g->Bdd_zero());
  t->unify(b, m);
  EXPECT_EQ(rhs("_s_O_1"), g->Bdd_one());
  EXPECT_FALSE(ref->isDefinedWood(bw));
  EXPECT_EQ(rhs("_s_K"), v("_s_A"));  // untouched by both: or'ed with itself
}

// Two branches that drive one signal in the same instant: over with over and under
// with under, which is the join of the two values.
TEST_F(Branches, UnifyJoinsTheDrivers) {
  enum V { NONE, TRU, FAL, ERR };
  const char* names[] = {"nothing", "true", "false", "error"};
  auto driver = [](V x) -> Expression* {
    switch (x) {
      case TRU: return new TrueExpression();
      case FAL: return new FalseExpression();
      case ERR: return new ErrorExpression();
      default: return nullptr;
    }
  };
  for (V x : {NONE, TRU, FAL, ERR})
    for (V y : {NONE, TRU, FAL, ERR}) {
      auto* mod = new Module("P");
      Bddexpressionwood* mw = mod->getBddWood();
      EquationTable* table = mod->getCompilation();
      auto* s = new Signal("S", mod, mw);
      s->setOutput();
      mod->addOutputSignal(s);
      s->newOccurrence(mw, mod);
      table->createBottomEquation(s, mod);
      EquationTable* left = table->duplicate(mod);
      EquationTable* right = table->duplicate(mod);
      if (Expression* e = driver(x)) left->createUnifyEquation(s, e, mod, false);
      if (Expression* e = driver(y)) right->createUnifyEquation(s, e, mod, false);
      table->unify(left, mod);
      table->unify(right, mod);
      bddpp_manager* mg = mw->my_bdd_manager();
      bool over = x == TRU || x == ERR || y == TRU || y == ERR;
      bool under = x == FAL || x == ERR || y == FAL || y == ERR;
      EXPECT_EQ(mw->exp_by_index(s->getOverBddId(mod, mw))->my_bdd_exp(),
                over ? mg->Bdd_one() : mg->Bdd_zero())
          << names[x] << " | " << names[y];
      EXPECT_EQ(mw->exp_by_index(s->getUnderBddId(mod, mw))->my_bdd_exp(),
                under ? mg->Bdd_one() : mg->Bdd_zero())
          << names[x] << " | " << names[y];
    }
}

// Each branch of a present gates its drivers, so over and under don't overlap.
TEST_F(Branches, PresentBranchesDoNotOverlap) {
  Signal* c = input("C");
  Signal* o = emitted("O", true);
  EquationTable* then_ = t->duplicate(m);
  EquationTable* else_ = t->duplicate(m);
  then_->createUnifyEquation(o, new ThenExpression(c, new TrueExpression()), m, false);
  else_->createUnifyEquation(o, new ElseExpression(c, new FalseExpression()), m, false);
  t->unify(then_, m);
  t->unify(else_, m);
  EXPECT_EQ(rhs("_s_O_1"), v("_s_C"));
  EXPECT_EQ(rhs("_v_O_1"), g->Bdd_not(v("_s_C")));
}

// A branch that pauses while the other doesn't: the higher occurrence survives.
TEST_F(Branches, HigherOccurrenceSurvives) {
  Signal* o = emitted("O", true);
  EquationTable* pausing = t->duplicate(m);
  EquationTable* quiet = t->duplicate(m);
  pausing->pre(m);
  pausing->createUnifyEquation(o, new TrueExpression(), m, false);
  quiet->createUnifyEquation(o, new FalseExpression(), m, false);
  t->unify(pausing, m);
  t->unify(quiet, m);
  EXPECT_EQ(o->getCurrentOccurrence(w), 2);
  EXPECT_EQ(o->getName(m), "O_2");
  EXPECT_EQ(rhs("_s_O_2"), g->Bdd_one());
  EXPECT_EQ(rhs("_v_O_2"), g->Bdd_zero());
  EXPECT_EQ(rhs("_v_O_1"), g->Bdd_one());
  EXPECT_EQ(rhs("_s_O"), g->Bdd_or(v("_s_O_1"), v("_s_O_2")));
  SignalRef* ref = m->getSignalManager()->getSignalRefByName("O_2");
  EXPECT_EQ(ref->getIds().size(), 1u);
  EXPECT_EQ(m->getSignalManager()->getSignalRefById(ref->getUnderBddId(w), w), ref);
  // The next emission in the module's table reaches the new occurrence.
  t->createUnifyEquation(o, new FalseExpression(), m, false);
  EXPECT_EQ(rhs("_v_O_2"), g->Bdd_one());
}

// Both branches pause: they share the new record and its equations are or'ed.
TEST_F(Branches, BothBranchesPause) {
  Signal* a = input("A");
  Signal* o = emitted("O", true);
  EquationTable* left = t->duplicate(m);
  EquationTable* right = t->duplicate(m);
  left->pre(m);
  right->pre(m);
  left->createUnifyEquation(o, new ThenExpression(a, new TrueExpression()), m, false);
  right->createUnifyEquation(o, new DThenExpression(a, new TrueExpression()), m, false);
  t->unify(left, m);
  t->unify(right, m);
  EXPECT_EQ(o->getCurrentOccurrence(w), 2);
  EXPECT_EQ(rhs("_s_O_2"), g->Bdd_or(v("_s_A"), v("_v_A")));
  EXPECT_EQ(rhs("_s_O"), g->Bdd_or(v("_s_O_1"), v("_s_O_2")));
}

// A wire made in a branch comes back with its equations and record.
TEST_F(Branches, NewSignalsOfABranchAreAdded) {
  Signal* a = input("A");
  EquationTable* b = t->duplicate(m);
  Bddexpressionwood* bw = b->getBddexpressionWood();
  auto* k = new Signal("K", m, bw);
  k->setWire();
  m->addWireSignal(k);
  b->createEquation(k, new NotExpression(a), m);
  t->unify(b, m);
  EXPECT_EQ(rhs("_s_K"), v("_v_A"));
  EXPECT_EQ(rhs("_v_K"), g->Bdd_not(v("_s_K")));
  EXPECT_EQ(eq("_s_K")->getUserType(), +Compilation::SWIRE);
  EXPECT_EQ(k->getCurrentOccurrence(w), 0);
  EXPECT_EQ(g->Name_var_by_index(k->getOverBddId(m, w)), "_s_K");
}

// A valued emission in a branch keeps its order behind the values it reads.
TEST_F(Branches, ValueDependencesSurviveUnify) {
  Signal* d = input("D");
  Signal* e = input("E");
  Signal* o = emitted("O", true);
  Signal* p = emitted("P", true);
  o->addValueDependency(d);
  p->addValueDependency(e);
  m->setDataTable(new std::map<std::string, DataBinding*>());
  EquationTable* left = t->duplicate(m);
  EquationTable* right = t->duplicate(m);
  left->createUnifyEquation(o, new TrueExpression(), m, false);   // or'ed with right's
  right->createUnifyEquation(o, new FalseExpression(), m, false);
  right->pre(m);
  right->createUnifyEquation(p, new TrueExpression(), m, false);  // a new occurrence: added
  t->unify(left, m);
  t->unify(right, m);
  EXPECT_EQ(rhs("_s_O_1"), g->Bdd_one());
  EXPECT_EQ(eq("_s_O_1")->getDependances().count(w->Index_var_by_name("_s_D")), 1u);
  EXPECT_EQ(eq("_v_O_1")->getDependances().count(w->Index_var_by_name("_v_D")), 1u);
  EXPECT_EQ(rhs("_s_P_2"), g->Bdd_one());
  EXPECT_EQ(eq("_s_P_2")->getDependances().count(w->Index_var_by_name("_s_E")), 1u);
  EXPECT_EQ(eq("_v_P_2")->getDependances().count(w->Index_var_by_name("_v_E")), 1u);
}

}  // namespace

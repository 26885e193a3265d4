// The wood's tables: equations by index, name and variable, readers, copies,
// removal, and the words of the lookups.
#include <gtest/gtest.h>

#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "equations/Bddexpression.h"

namespace {

struct Wood {
  Bddexpressionwood wood;
  bddpp_manager* m = wood.my_bdd_manager();
  explicit Wood(const std::vector<std::string>& names) {
    for (const auto& n : names) wood.New_var_last("_s_" + n);
  }
  bdd var(const std::string& n) { return m->Bdd_var_by_name("_s_" + n); }
  long at(const std::string& n) { return m->Index_var_by_name("_s_" + n); }
};

std::string Stderr_of(const std::function<void()>& f) {
  testing::internal::CaptureStderr();
  f();
  return testing::internal::GetCapturedStderr();
}

TEST(WoodTables, LookupsByIndexNameAndVariable) {
  Wood w({"x", "a", "b"});
  Bddexpression* a = new Bddexpression("a", &w.wood, w.var("a"), w.var("x"), 0, 0, 5);
  EXPECT_EQ(w.wood.exp_number(), 1);
  EXPECT_EQ(w.wood.Nb_bdd_vars(), 3);
  EXPECT_EQ(w.wood.getWoodSize(), 4);

  struct Case {
    const char* what;
    std::function<bool()> check;
    std::string words;
  };
  const std::vector<Case> cases = {
      {"by index", [&] { return w.wood.exp_by_index(1) == a; }, ""},
      {"by index, no equation", [&] { return w.wood.exp_by_index(0) == nullptr; }, ""},
      {"by index, out of range", [&] { return w.wood.exp_by_index(3) == nullptr; },
       "ERROR in Bddexpressionwood::exp_by_index : id `3' not found!\n"},
      {"by variable", [&] { return w.wood.exp_by_bdd(w.var("a")) == a; }, ""},
      {"by variable name", [&] { return w.wood.exp_by_bddname("_s_a") == a; }, ""},
      {"by unknown variable name", [&] { return w.wood.exp_by_bddname("_s_q") == nullptr; },
       "ERROR in Bddexpressionwood::exp_by_bddname : `_s_q' not found!\n"},
      {"by equation name", [&] { return w.wood.exp_by_name("a") == a; }, ""},
      {"by unknown equation name", [&] { return w.wood.exp_by_name("_s_a") == nullptr; },
       "ERROR in Bddexpressionwood::exp_by_name : `_s_a' not found!\n"},
      {"index by equation name", [&] { return w.wood.Index_exp_by_name("a") == 1; }, ""},
      {"index by unknown name", [&] { return w.wood.Index_exp_by_name("zz") == -1; },
       "ERROR in Bddexpressionwood::Index_exp_by_name : `zz' not found!\n"},
      {"name by index", [&] { return w.wood.Name_exp_by_index(1) == "a"; }, ""},
      {"name by index out of range", [&] { return w.wood.Name_exp_by_index(-2).empty(); },
       "ERROR: in Bddexpressionwood::Name_exp_by_index(): index -2 not found!\n"},
      {"variable name by index", [&] { return w.wood.Bddname_exp_by_index(1) == "_s_a"; }, ""},
      {"variable name out of range", [&] { return w.wood.Bddname_exp_by_index(9).empty(); },
       "ERROR: in Bddexpressionwood::Bddname_exp_by_index(): id 9 not found!\n"},
      {"name by variable", [&] { return w.wood.Name_exp_by_bdd(w.var("a")) == "a"; }, ""},
      {"first equation", [&] { return w.wood.exp(0) == a; }, ""},
      {"no second equation", [&] { return w.wood.exp(1) == nullptr; },
       "ERROR in Bddexpressionwood::exp(): 1 bad number ...\npossible: 1 \n"},
      {"record fields",
       [&] { return a->getUserType() == 5 && a->getW() == 1 && a->getAbstraction() == 0 && a->my_bddname() == "_s_a"; },
       ""},
  };
  for (const auto& c : cases) {
    bool ok = false;
    EXPECT_EQ(Stderr_of([&] { ok = c.check(); }), c.words) << c.what;
    EXPECT_TRUE(ok) << c.what;
  }
  // A new variable widens the tables; its entry is empty and silent.
  long q = w.wood.Index_new_var_last("_s_q");
  EXPECT_EQ(w.wood.Nb_bdd_vars(), w.m->Nb_bdd_vars);
  EXPECT_EQ(Stderr_of([&] { EXPECT_EQ(w.wood.exp_by_index(q), nullptr); }), "");
  for (int k = 0; k < 20; ++k) w.wood.New_var_last("_s_n" + std::to_string(k));
  EXPECT_EQ(w.wood.getWoodSize(), 32);
  EXPECT_EQ(w.wood.exp_by_index(1), a);
}

TEST(WoodTables, ReadersFollowEveryChange) {
  Wood w({"x", "y", "a", "b"});
  Bddexpression* a = new Bddexpression("a", &w.wood, w.var("a"), w.m->Bdd_and(w.var("x"), w.var("y")), 0, 0);
  EXPECT_EQ(w.wood.getReaders(w.at("x")), std::set<long>({w.at("a")}));
  // Learning the same record twice changes nothing.
  w.wood.learn_expression(a);
  EXPECT_EQ(w.wood.exp_number(), 1);
  EXPECT_EQ(w.wood.getReaders(w.at("y")), std::set<long>({w.at("a")}));
  // A second equation for the variable replaces the first.
  Bddexpression* a2 = new Bddexpression("a", &w.wood, w.var("a"), w.var("b"), 0, 0);
  EXPECT_EQ(w.wood.exp_number(), 1);
  EXPECT_EQ(w.wood.exp_by_index(w.at("a")), a2);
  EXPECT_TRUE(w.wood.getReaders(w.at("x")).empty());
  EXPECT_EQ(w.wood.getReaders(w.at("b")), std::set<long>({w.at("a")}));
  // setBddExp and the appends.
  a2->setBddExp(w.var("x"));
  EXPECT_TRUE(w.wood.getReaders(w.at("b")).empty());
  EXPECT_EQ(a2->getDependances(), std::set<long>({w.at("x")}));
  a2->append_or_exp(w.var("y"));
  EXPECT_EQ(w.wood.getReaders(w.at("y")), std::set<long>({w.at("a")}));
  a2->append_not_exp();
  EXPECT_EQ(a2->my_bdd_exp(), w.m->Bdd_not(w.m->Bdd_or(w.var("x"), w.var("y"))));
  EXPECT_EQ(a2->getDependances(), std::set<long>({w.at("x"), w.at("y")}));
  // A constant right member reads nothing.
  a2->append_and_exp(w.m->Bdd_zero());
  EXPECT_TRUE(a2->getDependances().empty());
  EXPECT_TRUE(w.wood.getReaders(w.at("x")).empty());
  // A specific dependence orders without a reader entry.
  a2->add_specific_var_dependance(w.at("b"));
  EXPECT_TRUE(w.wood.getReaders(w.at("b")).empty());
  EXPECT_EQ(a2->set_of_index_used_variables(), std::set<long>({w.at("b"), w.at("a")}));
}

TEST(WoodTables, AbstractEquationsAndTheirExtraReaders) {
  Wood w({"x", "y", "v", "c"});
  std::set<long> deps = {w.at("x")};
  std::set<long> extra = {w.at("y")};
  Bddexpression* v = new Bddexpression(w.at("v"), &w.wood, &extra, &deps, "VALUE_SIGNAL", 3, 4);
  EXPECT_EQ(v->getAbstraction(), 1);
  EXPECT_EQ(v->getExpDef(), "VALUE_SIGNAL");
  EXPECT_EQ(v->getName(), "_s_v");
  EXPECT_FALSE(v->my_bdd_exp().initialised());
  EXPECT_EQ(v->getLateDate(), 4);
  EXPECT_EQ(w.wood.Nb_level(), 3);  // learned before its late date is stored
  EXPECT_EQ(w.wood.getReaders(w.at("x")), std::set<long>({w.at("v")}));
  EXPECT_EQ(w.wood.getReaders(w.at("y")), std::set<long>({w.at("v")}));
  EXPECT_EQ(v->debug_in_string(), "<_s_v> _s_v = VALUE_SIGNAL()");
  // setExpDef("") leaves the abstraction as it was; a name makes it abstract.
  Bddexpression* c = new Bddexpression("c", &w.wood, w.var("c"), w.var("y"), 0, 0);
  c->setExpDef("");
  EXPECT_EQ(c->getAbstraction(), 0);
  c->setExpDef("F");
  EXPECT_EQ(c->getAbstraction(), 1);
  // The guarded removal that leaves the readers of the dependences.
  w.wood.absolute_forget_expression_by_bddid(w.at("x"));  // no equation there
  w.wood.absolute_forget_expression_by_bddid(w.at("c"));
  EXPECT_EQ(w.wood.exp_by_index(w.at("c")), nullptr);
  EXPECT_EQ(w.wood.getReaders(w.at("y")), std::set<long>({w.at("v"), w.at("c")}));
}

TEST(WoodTables, RecordsWithoutWoodRefuseTheWoodOperations) {
  bddpp_manager m;
  bdd x = m.New_var_last("x");
  Bddexpression e;
  EXPECT_EQ(e.getAbstraction(), 1);
  EXPECT_EQ(Stderr_of([&] { e.setBddExp(x); }),
            "In Bddexpression::setBddExp(): \n   no wood defined! Aborted  ...\n");
  EXPECT_EQ(Stderr_of([&] { e.append_or_exp(x); }),
            "In Bddexpression::append_or_exp(): \n   no wood defined! Aborted  ...\n");
  EXPECT_EQ(Stderr_of([&] { e.setLateDate(3); }),
            "internal error in Bddexpression::setLateDate(): no wood found!\n");
  e.setBddVar(&m, x);
  e.setBddExp(&m, m.Bdd_not(x));
  EXPECT_EQ(e.getAbstraction(), 0);
  EXPECT_EQ(e.getDependances(), std::set<long>({0}));
  EXPECT_EQ(e.my_bddname(), "");

  Bddexpressionwood wood;
  Bddexpression* in = new Bddexpression("x", &wood, wood.New_var_last("x"), wood.Bdd_one(), 0, 0);
  EXPECT_EQ(Stderr_of([&] { in->setBddVar(&m, x); }),
            "In Bddexpression::setBddVar(bddpp_manager *, bdd): \n   wood already defined! Aborted  ...\n");
  EXPECT_EQ(Stderr_of([&] { wood.learn_expression(nullptr); }),
            "INTERNAL ERROR in Bddexpressionwood::learn_expression():\nno expression !!!\n");
}

TEST(WoodTables, InsertingAVariableMovesTheTables) {
  Wood w({"x", "a"});
  new Bddexpression("a", &w.wood, w.var("a"), w.var("x"), 0, 0);
  w.wood.setLateDate(w.at("x"), 3);
  bdd n = w.wood.New_var_before_by_index(0, "_s_n");
  EXPECT_EQ(w.m->Index_var_by_bdd(n), 0);
  EXPECT_EQ(w.wood.Nb_bdd_vars(), 3);
  EXPECT_EQ(w.wood.exp_by_index(0), nullptr);
  ASSERT_NE(w.wood.exp_by_index(2), nullptr);
  EXPECT_EQ(w.wood.exp_by_index(2)->getDependances(), std::set<long>({1}));
  EXPECT_EQ(w.wood.getReaders(1), std::set<long>({2}));
  EXPECT_EQ(w.wood.getLateDate(1), 3);
  EXPECT_EQ(w.wood.getExpIds(), std::set<long>({2}));
}

TEST(WoodTables, CleanAndForget) {
  Wood w({"x", "k", "r", "u", "o"});
  new Bddexpression("k", &w.wood, w.var("k"), w.m->Bdd_one(), 0, 0);   // constant, read by r
  new Bddexpression("r", &w.wood, w.var("r"), w.var("k"), 0, 0);
  new Bddexpression("u", &w.wood, w.var("u"), w.m->Bdd_zero(), 0, 0);  // constant, unread
  new Bddexpression("o", &w.wood, w.var("o"), w.m->Bdd_zero(), 0, 0);  // constant, unread, kept
  w.wood.clean(std::list<long>{w.at("o")});
  EXPECT_EQ(w.wood.getExpIds(), std::set<long>({w.at("k"), w.at("r"), w.at("o")}));
  // An equation that is read stays.
  w.wood.forget_expression_by_bddid(w.at("k"));
  EXPECT_NE(w.wood.exp_by_index(w.at("k")), nullptr);
  w.wood.setLateDate(w.at("r"), 7);
  w.wood.forget_expression_by_bddid(w.at("r"));
  EXPECT_EQ(w.wood.exp_by_index(w.at("r")), nullptr);
  EXPECT_EQ(w.wood.getLateDate(w.at("r")), 0);
  EXPECT_TRUE(w.wood.getReaders(w.at("k")).empty());
  EXPECT_EQ(Stderr_of([&] { w.wood.forget_expression_by_bddid(40); }),
            "Error in Bddexpressionwood::forget_expression_by_bddid(): \n40 value not found ...\n");
  EXPECT_EQ(w.wood.Set_of_index_used_variables(), std::set<long>({w.at("k"), w.at("o")}));
}

TEST(WoodTables, CopiesHaveTheirOwnManagerAndEqualEquations) {
  Wood w({"x", "y", "a", "b"});
  new Bddexpression("a", &w.wood, w.var("a"), w.m->Bdd_or(w.var("x"), w.var("y")), 0, 0, 3);
  new Bddexpression("b", &w.wood, w.var("b"), w.m->Bdd_not(w.var("a")), 0, 0);
  w.wood.compute_dates();
  Bddexpressionwood copy(&w.wood);
  ASSERT_NE(copy.my_bdd_manager(), w.m);
  EXPECT_EQ(copy.Nb_level(), w.wood.Nb_level());
  EXPECT_EQ(copy.getExpIds(), w.wood.getExpIds());
  EXPECT_EQ(copy.getReaders(w.at("a")), w.wood.getReaders(w.at("a")));
  EXPECT_EQ(copy.getLateDate(w.at("x")), 2);
  for (long i : w.wood.getExpIds()) {
    Bddexpression* e = copy.exp_by_index(i);
    Bddexpression* o = w.wood.exp_by_index(i);
    EXPECT_EQ(e->my_bdd_exp().manager_ref(), copy.my_bdd_manager());
    EXPECT_EQ(e->getBddexpressionwood(), &copy);
    EXPECT_NE(*e, *o);  // handles of two managers
    EXPECT_EQ(e->debug_in_string(), o->debug_in_string());
    EXPECT_EQ(e->getEarlyDate(), o->getEarlyDate());
    EXPECT_EQ(e->getUserType(), o->getUserType());
    // Carried back, the copy equals its source.
    Bddexpression back(&w.wood, *e);
    EXPECT_EQ(back, *o);
  }
  // Changing the copy leaves the source alone.
  copy.exp_by_index(w.at("a"))->append_and_exp(copy.Bdd_var_by_index(w.at("b")));
  EXPECT_TRUE(w.wood.getReaders(w.at("b")).empty());

  // A copy on a shared manager uses the same handles.
  w.wood.set_common_bdd_manager(1);
  Bddexpressionwood shared(&w.wood);
  EXPECT_EQ(shared.my_bdd_manager(), w.m);
  EXPECT_EQ(*shared.exp_by_index(w.at("a")), *w.wood.exp_by_index(w.at("a")));
  w.wood.set_common_bdd_manager(0);
}

TEST(WoodTables, PrintingOfRecordsAndWood) {
  Wood w({"x", "a"});
  Bddexpression* a = new Bddexpression("a", &w.wood, w.var("a"), w.m->Bdd_not(w.var("x")), 0, 0, 9);
  w.wood.compute_dates();
  EXPECT_EQ(a->debug_in_string(), "<a> _s_a = !_s_x");
  std::ostringstream s;
  s << *a;
  std::string text = s.str();
  EXPECT_NE(text.find(") <a> [type:9]_s_a = !_s_x  weight: 1 usertype: 9"), std::string::npos) << text;
  std::string all = w.wood.debug_in_string();
  EXPECT_EQ(all.rfind("wood Bddexpression statistics:\n", 0), 0u);
  EXPECT_NE(all.find("Equations list:\n0: _s_x = - dates (0,1)\n1: ("), std::string::npos) << all;
  EXPECT_NE(all.find(" dates (1,0) from vars 0   to vars \n"), std::string::npos) << all;
}

}  // namespace

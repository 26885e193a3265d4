// Instantiation of a sub-wood in a parent wood.
#include <gtest/gtest.h>

#include <map>
#include <string>

#include "equations/Bddexpression.h"

namespace {

// Sub-module: output o = i and not l, local l = i, abstract value v reading o;
// a variable nobody uses.
struct Sub {
  Bddexpressionwood wood;
  bddpp_manager* m = wood.my_bdd_manager();
  Sub() {
    bdd i = wood.New_var_last("_s_i");
    bdd l = wood.New_var_last("_s_l");
    bdd o = wood.New_var_last("_s_o");
    bdd v = wood.New_var_last("_v_o");
    wood.New_var_last("_s_unused");
    new Bddexpression("l", &wood, l, i, 0, 0, 9);
    new Bddexpression("o", &wood, o, m->Bdd_and(i, m->Bdd_not(l)), 0, 0, 5);
    std::set<long> deps = {m->Index_var_by_bdd(o)};
    Bddexpression* abs = new Bddexpression(m->Index_var_by_bdd(v), &wood, deps, "VALUE_SIGNAL", 0, 0);
    abs->setUserType(6);
    wood.compute_dates();
  }
};

std::map<std::string, std::string> Names(const std::string& k) {
  return {{"_s_i", "_s_in"}, {"_s_l", "_s_l__M_i" + k}, {"_s_o", "_s_out" + k}, {"_v_o", "_v_out" + k},
          {"l", "l__M_i" + k},   {"o", "out" + k},         {"VALUE_SIGNAL", "x"}};
}

TEST(WoodInstance, DifferentManagersByMapTwice) {
  Sub sub;
  Bddexpressionwood parent;
  bddpp_manager* m = parent.my_bdd_manager();
  bdd in = parent.New_var_last("_s_in");
  long before = m->Nb_bdd_vars;
  auto names1 = Names("1");
  auto names2 = Names("2");
  testing::internal::CaptureStderr();
  parent.Include_wood_instance(sub.wood, &names1);
  parent.Include_wood_instance(sub.wood, &names2);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  // Four used variables, the input met by name: three new ones per instance.
  EXPECT_EQ(m->Nb_bdd_vars, before + 6);
  EXPECT_EQ(m->Index_var_by_name("_s_unused"), -1);
  EXPECT_EQ(parent.exp_number(), 6);
  for (const char* k : {"1", "2"}) {
    std::string s(k);
    Bddexpression* o = parent.exp_by_bddname("_s_out" + s);
    ASSERT_NE(o, nullptr);
    EXPECT_EQ(o->getName(), "out" + s);
    EXPECT_EQ(o->getUserType(), 5);
    EXPECT_EQ(o->my_bdd_exp(), m->Bdd_and(in, m->Bdd_not(m->Bdd_var_by_name("_s_l__M_i" + s))));
    EXPECT_EQ(o->getEarlyDate(), 2);
    Bddexpression* v = parent.exp_by_bddname("_v_out" + s);
    ASSERT_NE(v, nullptr);
    EXPECT_EQ(v->getExpDef(), "VALUE_SIGNAL");
    EXPECT_EQ(v->getUserType(), 6);
    EXPECT_EQ(v->getDependances(), std::set<long>({m->Index_var_by_name("_s_out" + s)}));
  }
  EXPECT_EQ(parent.getReaders(m->Index_var_by_bdd(in)).size(), 4u);  // o and l of each instance
  EXPECT_EQ(parent.Nb_level(), sub.wood.Nb_level());
  EXPECT_TRUE(parent.loop_detection().empty());
}

TEST(WoodInstance, MissingNamesWarnAndSuffixesDoNot) {
  Sub sub;
  Bddexpressionwood parent;
  std::map<std::string, std::string> names = Names("1");
  names.erase("l");
  testing::internal::CaptureStderr();
  parent.Include_wood_instance(sub.wood, &names);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "Warning: no renaming for : l\n");
  EXPECT_EQ(names.count("l"), 1u);  // the lookup entered the missing key

  Bddexpressionwood other;
  testing::internal::CaptureStderr();
  other.Include_wood_instance(sub.wood, std::string("_k"));
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  ASSERT_NE(other.exp_by_bddname("_s_o_k"), nullptr);
  EXPECT_EQ(other.exp_by_bddname("_s_o_k")->getName(), "o_k");

  Bddexpressionwood empty;
  long gc = parent.my_bdd_manager()->gc_calls;
  parent.Include_wood_instance(empty, std::string("_e"));
  EXPECT_EQ(parent.my_bdd_manager()->gc_calls, gc + 1);
  EXPECT_EQ(parent.exp_number(), 3);
}

TEST(WoodInstance, SameManagerWithIdentityRenaming) {
  Sub sub;
  Bddexpressionwood parent(sub.m);
  parent.set_common_bdd_manager(1);
  std::map<std::string, std::string> names;
  for (const char* n : {"_s_i", "_s_l", "_s_o", "_v_o", "l", "o"}) names[n] = n;
  testing::internal::CaptureStderr();
  parent.Include_wood_instance(sub.wood, &names);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "WOOD A INTEGRER avec meme Bdd_manager \n");
  EXPECT_EQ(parent.exp_number(), 3);
  for (long i : sub.wood.getExpIds()) {
    ASSERT_NE(parent.exp_by_index(i), nullptr);
    EXPECT_EQ(*parent.exp_by_index(i), *sub.wood.exp_by_index(i));
  }
}

}  // namespace

// Reductions of a wood: constants, wires, locals, assertions.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "util/compilation.h"
#include "equations/Bddexpression.h"

namespace {

struct Wood {
  Bddexpressionwood wood;
  bddpp_manager* m = wood.my_bdd_manager();
  explicit Wood(const std::vector<std::string>& names) {
    for (const auto& n : names) wood.New_var_last(n);
  }
  bdd var(const std::string& n) { return m->Bdd_var_by_name(n); }
  long at(const std::string& n) { return m->Index_var_by_name(n); }
  Bddexpression* eq(const std::string& n, const bdd& f, int type = 0) {
    return new Bddexpression(n, &wood, var(n), f, 0, 0, type);
  }
  Bddexpression* get(const std::string& n) { return wood.exp_by_index(at(n)); }
};

const std::list<int> kOutputs = {Compilation::SOUTPUT};

TEST(WoodReductions, WiresAreSubstitutedIntoTheirReaders) {
  Wood w({"c", "b", "a", "o", "lone", "abs", "k"});
  w.eq("b", w.m->Bdd_not(w.var("c")));
  w.eq("a", w.var("b"));
  w.eq("o", w.var("a"), Compilation::SOUTPUT);
  w.eq("lone", w.var("c"));  // a wire with no reader
  w.eq("k", w.var("c"));     // a wire read by an abstract equation
  std::set<long> deps = {w.at("k")};
  new Bddexpression(w.at("abs"), &w.wood, deps, "VALUE_SIGNAL", 0, 0);
  w.wood.suppress_wires(kOutputs);
  EXPECT_EQ(w.get("a"), nullptr);
  EXPECT_EQ(w.get("b"), nullptr);
  ASSERT_NE(w.get("o"), nullptr);
  EXPECT_EQ(w.get("o")->my_bdd_exp(), w.m->Bdd_not(w.var("c")));
  EXPECT_EQ(w.get("o")->getDependances(), std::set<long>({w.at("c")}));
  EXPECT_EQ(w.wood.getReaders(w.at("c")), std::set<long>({w.at("o"), w.at("lone"), w.at("k")}));
  EXPECT_NE(w.get("lone"), nullptr);
  EXPECT_NE(w.get("k"), nullptr);
  EXPECT_EQ(w.wood.Index_var_by_name("a"), w.at("a"));  // the variable stays in the manager
  // New dates from the heaviest paths: up_critical_path(i, 1, 1) counts the start twice.
  EXPECT_EQ(w.get("o")->getEarlyDate(), 2);
  EXPECT_EQ(w.get("k")->getEarlyDate(), 2);
  EXPECT_EQ(w.wood.getLateDate(w.at("k")), 1);
}

TEST(WoodReductions, ConstantsReachReadersOfReaders) {
  struct Case {
    const char* what;
    std::list<int> types;
    bool a_stays;
  };
  for (const Case& c : {Case{"unprotected", {}, false}, Case{"protected", {Compilation::STAT}, true}}) {
    SCOPED_TRACE(c.what);
    Wood w({"x", "a", "b", "c", "u"});
    w.eq("a", w.m->Bdd_one(), Compilation::STAT);
    w.eq("b", w.m->Bdd_and(w.var("a"), w.var("x")));
    w.eq("c", w.m->Bdd_not(w.var("b")));
    w.eq("u", w.m->Bdd_zero());  // constant that no one reads
    w.wood.constants_propagation(c.types);
    EXPECT_EQ(w.get("a") != nullptr, c.a_stays);
    EXPECT_EQ(w.get("b")->my_bdd_exp(), w.var("x"));
    EXPECT_EQ(w.get("c")->my_bdd_exp(), w.m->Bdd_not(w.var("b")));  // b is no constant
    EXPECT_TRUE(w.wood.getReaders(w.at("a")).empty());
    EXPECT_NE(w.get("u"), nullptr);
  }
  Wood w({"a", "b", "c"});
  w.eq("a", w.m->Bdd_one());
  w.eq("b", w.var("a"));
  w.eq("c", w.var("b"));
  w.wood.constants_propagation();
  EXPECT_EQ(w.get("c")->my_bdd_exp(), w.m->Bdd_one());
  EXPECT_EQ(w.get("b"), nullptr);
  EXPECT_TRUE(w.wood.global_tautology());
  EXPECT_EQ(w.wood.reduce_proposition_by_variable(), -1);
}

TEST(WoodReductions, LocalsAndSelfDependence) {
  Wood w({"x", "y", "l", "o", "s"});
  w.eq("l", w.m->Bdd_or(w.var("x"), w.var("y")));
  w.eq("o", w.m->Bdd_and(w.var("l"), w.var("x")), Compilation::SOUTPUT);
  Bddexpression* s = w.eq("s", w.m->Bdd_xor(w.var("s"), w.var("x")));
  w.eq("y", w.var("s"));
  testing::internal::CaptureStderr();
  w.wood.suppress_local(w.at("s"));
  std::string words = testing::internal::GetCapturedStderr();
  EXPECT_EQ(words.rfind("ERROR: detected self-dependance about variable : 4 !!!\nin associated expression: ", 0), 0u)
      << words;
  EXPECT_EQ(w.get("s"), s);
  w.wood.suppress_local(w.at("l"));
  EXPECT_EQ(w.get("l"), nullptr);
  EXPECT_EQ(w.get("o")->my_bdd_exp(), w.var("x"));  // (x + y) x
  EXPECT_EQ(w.wood.getReaders(w.at("x")), std::set<long>({w.at("o"), w.at("s")}));
}

TEST(WoodReductions, AssertionsAndQuantifiers) {
  Wood w({"x", "y", "a", "b"});
  w.eq("a", w.m->Bdd_and(w.var("x"), w.var("y")));
  w.eq("b", w.m->Bdd_or(w.var("a"), w.var("y")));
  w.wood.compute_dates();
  EXPECT_EQ(w.wood.reduce_proposition_by_variable(), w.at("x"));
  w.wood.reduce_expressions(w.m->Bdd_one());
  EXPECT_EQ(w.get("a")->my_bdd_exp(), w.m->Bdd_and(w.var("x"), w.var("y")));
  w.wood.reduce_expressions(w.var("x"));
  EXPECT_EQ(w.get("a")->my_bdd_exp(), w.var("y"));
  EXPECT_TRUE(w.wood.getReaders(w.at("x")).empty());
  w.wood.reduce_expressions_when_var_forgotten_by_forall_op(w.at("y"));
  // a became the constant zero and was propagated into b.
  EXPECT_EQ(w.get("a"), nullptr);
  ASSERT_NE(w.get("b"), nullptr);
  EXPECT_EQ(w.get("b")->my_bdd_exp(), w.m->Bdd_zero());
  EXPECT_EQ(w.wood.reduce_proposition_by_assertion(), w.m->Bdd_one());
}

}  // namespace

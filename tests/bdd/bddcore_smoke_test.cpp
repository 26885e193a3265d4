#include <gtest/gtest.h>
#include "bdd/bddpp.h"
TEST(BddSmoke, Builds) {
  bddpp_manager m;
  bdd a = m.New_var_last("a"), b = m.New_var_last("b");
  EXPECT_EQ(m.Bdd_and(a, m.Bdd_not(a)), m.Bdd_zero());
  EXPECT_EQ(m.Bdd_or(a, b), m.Bdd_not(m.Bdd_and(m.Bdd_not(a), m.Bdd_not(b))));
}

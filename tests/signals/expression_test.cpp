// The four-valued connectives against the algebra's truth tables, the folding
// constructors, and the printed forms.
#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "bdd/bddpp.h"
#include "equations/Bddexpression.h"
#include "signals/expression.h"

namespace {

enum V { BOT, TRU, FAL, ERR };
const V kAll[] = {BOT, TRU, FAL, ERR};
const char* kName[] = {"bottom", "true", "false", "error"};

Expression* constant(V v) {
  switch (v) {
    case BOT: return new BottomExpression();
    case TRU: return new TrueExpression();
    case FAL: return new FalseExpression();
    case ERR: return new ErrorExpression();
  }
  return nullptr;
}

class Algebra : public ::testing::Test {
 protected:
  Bddexpressionwood wood;

  // The value of a constant pair (over, under); -1 if a function is not constant.
  int valueOf(const bdd& over, const bdd& under) {
    bddpp_manager* g = wood.my_bdd_manager();
    bool o = over == g->Bdd_one(), u = under == g->Bdd_one();
    if (!o && !(over == g->Bdd_zero())) return -1;
    if (!u && !(under == g->Bdd_zero())) return -1;
    return o ? (u ? ERR : TRU) : (u ? FAL : BOT);
  }
  int current(Expression* e) {
    return valueOf(e->getOverBdd(nullptr, &wood), e->getUnderBdd(nullptr, &wood));
  }
  int initial(Expression* e) {
    return valueOf(e->getInitialOverBdd(nullptr, &wood), e->getInitialUnderBdd(nullptr, &wood));
  }
  static std::string text(Expression* e) {
    std::ostringstream out;
    e->print(out);
    return out.str();
  }
};

TEST_F(Algebra, ConstantsHoldTheirPairs) {
  for (V v : kAll) {
    EXPECT_EQ(current(constant(v)), v) << kName[v];
    EXPECT_EQ(initial(constant(v)), v) << kName[v];
  }
  EXPECT_EQ(text(new BottomExpression()), " bottom ");
  EXPECT_EQ(text(new TrueExpression()), " 1 ");
  EXPECT_EQ(text(new FalseExpression()), " 0 ");
  EXPECT_EQ(text(new ErrorExpression()), " error ");
}

// Row: first operand, column: second operand, in the order bottom, true, false, error.
TEST_F(Algebra, BinaryConnectivesFollowTheirTables) {
  const V orTable[4][4] = {{BOT, TRU, BOT, TRU},
                           {TRU, TRU, TRU, TRU},
                           {BOT, TRU, FAL, ERR},
                           {TRU, TRU, ERR, ERR}};
  const V andTable[4][4] = {{BOT, BOT, FAL, FAL},
                            {BOT, TRU, FAL, ERR},
                            {FAL, FAL, FAL, FAL},
                            {FAL, ERR, FAL, ERR}};
  for (V a : kAll)
    for (V b : kAll) {
      Expression* o = new OrExpression(constant(a), constant(b));
      Expression* n = new AndExpression(constant(a), constant(b), nullptr);
      EXPECT_EQ(current(o), orTable[a][b]) << kName[a] << " or " << kName[b];
      EXPECT_EQ(initial(o), orTable[a][b]) << kName[a] << " or " << kName[b];
      EXPECT_EQ(current(n), andTable[a][b]) << kName[a] << " and " << kName[b];
      EXPECT_EQ(initial(n), andTable[a][b]) << kName[a] << " and " << kName[b];
    }
}

TEST_F(Algebra, UnaryConnectivesFollowTheirTables) {
  const V notTable[4] = {BOT, FAL, TRU, ERR};
  const V npTable[4] = {TRU, FAL, TRU, ERR};
  for (V a : kAll) {
    Expression* n = new NotExpression(constant(a));
    Expression* p = new NpExpression(constant(a), nullptr);
    EXPECT_EQ(current(n), notTable[a]) << "abs " << kName[a];
    EXPECT_EQ(initial(n), notTable[a]) << "abs " << kName[a];
    EXPECT_EQ(current(p), npTable[a]) << "not " << kName[a];
    EXPECT_EQ(initial(p), npTable[a]) << "not " << kName[a];
  }
}

// Each gate passes its body when its test on the condition holds, else bottom.
TEST_F(Algebra, GatesPassTheBodyOnTheirHalfOfTheCondition) {
  struct Gate {
    const char* name;
    Expression* (*make)(Expression*, Expression*);
    bool passes[4];  // by condition value: bottom, true, false, error
  };
  const Gate gates[] = {
      {"then", [](Expression* k, Expression* x) -> Expression* { return new ThenExpression(k, x); },
       {false, true, false, true}},
      {"else", [](Expression* k, Expression* x) -> Expression* { return new ElseExpression(k, x); },
       {true, false, true, false}},
      {"dthen",
       [](Expression* k, Expression* x) -> Expression* { return new DThenExpression(k, x); },
       {false, false, true, true}},
      {"delse",
       [](Expression* k, Expression* x) -> Expression* { return new DElseExpression(k, x); },
       {true, true, false, false}},
  };
  for (const Gate& g : gates)
    for (V k : kAll)
      for (V x : kAll) {
        Expression* e = g.make(constant(k), constant(x));
        int expected = g.passes[k] ? x : BOT;
        EXPECT_EQ(current(e), expected) << g.name << "(" << kName[k] << ", " << kName[x] << ")";
        EXPECT_EQ(initial(e), expected) << g.name << "(" << kName[k] << ", " << kName[x] << ")";
      }
}

// The same values through the Module-taking constructors and deep copies.
TEST_F(Algebra, CopiesKeepTheirValue) {
  for (V a : kAll)
    for (V b : kAll) {
      Expression* trees[] = {
          new OrExpression(constant(a), constant(b), nullptr),
          new AndExpression(constant(a), constant(b)),
          new NotExpression(new OrExpression(constant(a), constant(b)), nullptr),
          new NpExpression(new AndExpression(constant(a), constant(b))),
          new ThenExpression(constant(a), constant(b), nullptr),
          new ElseExpression(constant(a), constant(b), nullptr),
          new DThenExpression(constant(a), constant(b), nullptr),
          new DElseExpression(constant(a), constant(b), nullptr),
      };
      for (Expression* t : trees) {
        Expression* copy = t->duplicate();
        ASSERT_NE(copy, nullptr);
        EXPECT_NE(copy, t);
        EXPECT_EQ(current(copy), current(t)) << text(t);
        EXPECT_EQ(text(copy), text(t));
      }
    }
  testing::internal::CaptureStderr();
  EXPECT_EQ(Expression(false).duplicate(), nullptr);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "abnormal use of expression::duplicate() ...\n");
}

TEST_F(Algebra, PrintedForms) {
  Expression* t = new TrueExpression();
  Expression* f = new FalseExpression(nullptr);
  struct Case {
    Expression* e;
    const char* text;
  };
  const Case cases[] = {
      {new OrExpression(t, f), "( 1  +  0 )"},
      {new AndExpression(t, f), "( 1  *  0 )"},
      {new NotExpression(t), "~ 1 "},
      {new NpExpression(new OrExpression(t, f)), "np ( 1  +  0 )"},
      {new ThenExpression(t, f), "(SET_then( 1 ,  0 ))"},
      {new ElseExpression(t, f), "(SET_else( 1 ,  0 ))"},
      {new DThenExpression(t, f), "(SET_dthen( 1 ,  0 ))"},
      {new DElseExpression(t, f), "(SET_delse( 1 ,  0 ))"},
      {new Expression(false), ""},
  };
  for (const Case& c : cases) EXPECT_EQ(text(c.e), c.text);
}

// x plus e and x mult e: join and meet of the order of knowledge on constants.
TEST_F(Algebra, FoldingConstructors) {
  // Expected result by (x, e): 'x' the receiver, 'e' the argument, 'E' a new error,
  // 'B' a new bottom, 'O' a new Or, 'A' a new And. Index 4 is a non-constant.
  const char plusTable[5][5] = {{'e', 'e', 'e', 'e', 'e'},
                                {'x', 'x', 'E', 'e', 'x'},
                                {'x', 'E', 'e', 'e', 'e'},
                                {'x', 'x', 'x', 'x', 'x'},
                                {'x', 'e', 'x', 'e', 'O'}};
  const char multTable[5][5] = {{'x', 'x', 'x', 'x', 'x'},
                                {'e', 'e', 'B', 'x', 'e'},
                                {'e', 'B', 'x', 'x', 'x'},
                                {'e', 'e', 'e', 'e', 'e'},
                                {'e', 'x', 'e', 'x', 'A'}};
  auto make = [](int i) -> Expression* {
    return i < 4 ? constant(static_cast<V>(i)) : new NotExpression(new TrueExpression());
  };
  for (int i = 0; i < 5; i++)
    for (int j = 0; j < 5; j++)
      for (int op = 0; op < 2; op++) {
        Expression* x = make(i);
        Expression* e = make(j);
        Expression* r = op == 0 ? x->plus(e, nullptr) : x->mult(e, nullptr);
        char want = op == 0 ? plusTable[i][j] : multTable[i][j];
        std::string where = std::string(op == 0 ? "plus " : "mult ") + std::to_string(i) + "," +
                            std::to_string(j);
        switch (want) {
          case 'x': EXPECT_EQ(r, x) << where; break;
          case 'e': EXPECT_EQ(r, e) << where; break;
          case 'E': EXPECT_TRUE(r != x && r != e && r->isErrorExpr()) << where; break;
          case 'B': EXPECT_TRUE(r != x && r != e && r->isBottomExpr()) << where; break;
          case 'O': EXPECT_EQ(text(r), "(" + text(x) + " + " + text(e) + ")") << where; break;
          case 'A': EXPECT_EQ(text(r), "(" + text(x) + " * " + text(e) + ")") << where; break;
        }
      }
  // The connectives and the folding differ on true and false.
  EXPECT_EQ(current(new OrExpression(new TrueExpression(), new FalseExpression())), TRU);
  EXPECT_EQ(current((new TrueExpression())->plus(new FalseExpression(), nullptr)), ERR);
  EXPECT_EQ(current(new AndExpression(new TrueExpression(), new FalseExpression())), FAL);
  EXPECT_EQ(current((new TrueExpression())->mult(new FalseExpression(), nullptr)), BOT);
}

TEST_F(Algebra, ClassTests) {
  for (V v : kAll) {
    Expression* e = constant(v);
    EXPECT_EQ(e->isBottomExpr(), v == BOT);
    EXPECT_EQ(e->isTrueExpr(), v == TRU);
    EXPECT_EQ(e->isFalseExpr(), v == FAL);
    EXPECT_EQ(e->isErrorExpr(), v == ERR);
    EXPECT_FALSE(e->isSignalExpr());
  }
}

TEST_F(Algebra, AbstractFunctionsEndTheCompilation) {
  Expression e(false);
  EXPECT_EXIT(e.getOverBdd(nullptr, &wood), ::testing::ExitedWithCode(1),
              "Expression::getOverBdd\\(\\)");
  EXPECT_EXIT(e.getInitialUnderBdd(nullptr, &wood), ::testing::ExitedWithCode(1),
              "Expression::getInitialUnderBdd\\(\\)");
}

}  // namespace

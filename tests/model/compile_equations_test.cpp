// The wires, registers and equations that each statement makes: their names, their
// number, their order and their right members, checked against hand-derived forms.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "bdd/bddpp.h"
#include "compile_util.h"
#include "util/compilation.h"
#include "equations/Bddexpression.h"
#include "equations/equationtable.h"
#include "model/module.h"
#include "model/statement.h"
#include "model_test_util.h"
#include "signals/expression.h"

using namespace model_test;

namespace {

// Right members written over the variables of one wood, by name.
struct Algebra {
  Bddexpressionwood* wood;
  bddpp_manager* g;
  explicit Algebra(Module& m) : wood(m.getBddWood()), g(m.getBddWood()->my_bdd_manager()) {}
  bdd v(const std::string& name) {
    long i = wood->Index_var_by_name(name);
    EXPECT_GE(i, 0) << name;
    return i >= 0 ? wood->Bdd_var_by_index(i) : g->Bdd_zero();
  }
  bdd And(const bdd& a, const bdd& b) { return g->Bdd_and(a, b); }
  bdd Or(const bdd& a, const bdd& b) { return g->Bdd_or(a, b); }
  bdd Not(const bdd& a) { return g->Bdd_not(a); }
  bdd zero() { return g->Bdd_zero(); }
  bdd one() { return g->Bdd_one(); }
  // The right member of the equation of a variable; zero and a failure if none.
  bdd rhs(const std::string& name) {
    long i = wood->Index_var_by_name(name);
    Bddexpression* e = i >= 0 ? wood->exp_by_index(i) : nullptr;
    EXPECT_NE(e, nullptr) << "no equation for " << name;
    return e ? e->my_bdd_exp() : g->Bdd_zero();
  }
  bool hasEquation(const std::string& name) {
    long i = wood->Index_var_by_name(name);
    return i >= 0 && wood->exp_by_index(i) != nullptr;
  }
};

Module* compiled(Module& m, Statement* root) {
  root->setParentModule(&m);
  m.setStatement(root);
  m.compile();
  return &m;
}

std::vector<std::string> localNames(Module& m) {
  std::vector<std::string> names;
  for (Signal* s : *m.getLocalSignalList()) names.push_back(s->getInternalName());
  return names;
}

// Variables of the named signals must stand in this order in the wood, over before
// under, without others between the over and under of one.
void expectVariableOrder(Module& m, const std::vector<std::string>& names) {
  Bddexpressionwood* w = m.getBddWood();
  long last = -1;
  for (const std::string& n : names) {
    long over = w->Index_var_by_name("_s_" + n);
    long under = w->Index_var_by_name("_v_" + n);
    EXPECT_GT(over, last) << n;
    EXPECT_EQ(under, over + 1) << n;
    last = under;
  }
}

TEST(CompileEquations, CountsPerStatement) {
  struct Case {
    const char* program;
    long equations;
  } cases[] = {
      // RTLm (2) + 2 per defined wire + 1 per register's under side + 4 per output and
      // 2 more per pause in its sections.
      {"module m: nothing end", 8},
      {"module m: halt end", 8},
      {"module m: pause end", 11},
      {"module m: pause >> nothing end", 23},
      {"module m: loop { pause } end", 17},
      {"module m: Input: a; wait a end", 11},
      {"module m: Input: a; present a pause end", 17},
      {"module m: Input: a; present a pause else nothing end", 23},
      {"module m: Input: a; absent a pause else nothing end", 23},
      {"module m: Input: a; weak abort { pause } when a end", 20},
      {"module m: Input: a; strong abort { pause } when a end", 20},
      {"module m: pause || nothing end", 33},
      {"module m: pause || nothing || halt end", 44},
      {"module m: Output: o; emit o end", 12},
      {"module m: Output: o; noemit o end", 12},
      {"module m: Output: o; emit o || emit o end", 2 + 16 + 6 + 6 + 4},
      {"module m: Output: o; pause >> emit o end", 29},
      {"module m: Input: a; Output: o; sustain o until a end", 14},
      {"module m: Local: s; emit s >> pause end", 29},
  };
  for (const Case& c : cases) {
    Module* m = compile_test::compileText(c.program);
    ASSERT_NE(m, nullptr) << c.program;
    EXPECT_EQ(m->getBddWood()->exp_number(), c.equations) << c.program;
  }
}

TEST(CompileEquations, PauseWiresRegisterAndEquations) {
  Module m("M");
  compiled(m, new Pause("P"));
  EXPECT_EQ(localNames(m), (std::vector<std::string>{"SETP", "RESETP", "RTLP", "ACTIFP", "ACTIFPLUSP"}));
  expectVariableOrder(m, {"SETP", "RESETP", "RTLP", "ACTIFP", "ACTIFPLUSP"});
  ASSERT_EQ(m.getRegisterList()->size(), 1u);
  regclass* r = m.getRegisterList()->front();
  EXPECT_EQ(r->actual_var()->getInternalName(), "ACTIFP");
  EXPECT_EQ(r->next_var()->getInternalName(), "ACTIFPLUSP");
  EXPECT_EQ(r->is_initialy_true(), 0);
  Algebra a(m);
  EXPECT_FALSE(a.hasEquation("_s_ACTIFP"));  // a state bit
  EXPECT_EQ(a.rhs("_v_ACTIFP"), a.Not(a.v("_s_ACTIFP")));
  EXPECT_EQ(a.rhs("_s_RTLP"), a.v("_s_ACTIFP"));
  // Not(R) of a wire reads its under variable.
  EXPECT_EQ(a.rhs("_s_ACTIFPLUSP"), a.And(a.v("_s_SETP"), a.v("_v_RESETP")));
  EXPECT_EQ(a.rhs("_v_ACTIFPLUSP"), a.Not(a.v("_s_ACTIFPLUSP")));
  // The module's wires: S and R of the root come from the module, its rtl from T.
  EXPECT_EQ(a.rhs("_s_SETP"), a.v("_s_SETM"));
  EXPECT_EQ(a.rhs("_s_RESETP"), a.v("_s_RESETM"));
  EXPECT_EQ(a.rhs("_s_RTLM"), a.v("_s_RTLP"));
  EXPECT_FALSE(a.hasEquation("_s_SETM"));
  EXPECT_EQ(m.getStatement()->getPertLevel(), m.getBddWood()->Nb_level());
}

TEST(CompileEquations, WaitTestsFromTheNextInstant) {
  Module m("M");
  Signal* in = input(m, "a");
  compiled(m, new Wait("W", in));
  Algebra a(m);
  bdd o = a.v("_s_a"), u = a.v("_v_a");
  bdd A = a.v("_s_ACTIFW"), S = a.v("_s_SETW"), nR = a.v("_v_RESETW");
  EXPECT_EQ(a.rhs("_s_RTLW"), a.And(A, o));
  bdd np = a.Or(a.Not(o), u);
  EXPECT_EQ(a.rhs("_s_ACTIFPLUSW"), a.Or(a.And(S, nR), a.And(a.And(A, nR), np)));
}

TEST(CompileEquations, TestsGateTheirBranches) {
  struct Case {
    bool absent;
    bool withElse;
  } cases[] = {{false, true}, {false, false}, {true, true}, {true, false}};
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.absent ? "absent" : "present") + (c.withElse ? " else" : ""));
    Module m("M");
    Signal* in = input(m, "a");
    Statement* t = new Pause("T");
    Statement* e = c.withElse ? new Nothing("E") : nullptr;
    if (c.absent)
      compiled(m, new Absent("X", in, t, e));
    else
      compiled(m, new Present("X", in, t, e));
    Algebra a(m);
    // Present enters on the over side of the condition, Absent on the under side.
    bdd enter = c.absent ? a.v("_v_a") : a.v("_s_a");
    bdd S = a.v("_s_SETX");
    EXPECT_EQ(a.rhs("_s_SETT"), a.And(enter, S));
    EXPECT_EQ(a.rhs("_s_RESETT"), a.v("_s_RESETX"));
    if (c.withElse) {
      EXPECT_EQ(a.rhs("_s_SETE"), a.And(a.Not(enter), S));
      EXPECT_EQ(a.rhs("_s_RESETE"), a.v("_s_RESETX"));
      EXPECT_EQ(a.rhs("_s_RTLX"), a.Or(a.v("_s_RTLT"), a.v("_s_RTLE")));
    } else {
      EXPECT_EQ(a.rhs("_s_RTLX"), a.Or(a.v("_s_RTLT"), a.And(a.Not(enter), S)));
    }
  }
}

TEST(CompileEquations, SequencesChainTheirChildren) {
  Module m("M");
  Statement** array = new Statement*[3]{new Nothing("N0"), new Pause("P1"), new Halt("H2")};
  compiled(m, new Sn("Q", 3, array));
  Algebra a(m);
  EXPECT_EQ(a.rhs("_s_SETN0"), a.v("_s_SETQ"));
  EXPECT_EQ(a.rhs("_s_SETP1"), a.v("_s_RTLN0"));
  EXPECT_EQ(a.rhs("_s_SETH2"), a.v("_s_RTLP1"));
  for (const char* child : {"_s_RESETN0", "_s_RESETP1", "_s_RESETH2"})
    EXPECT_EQ(a.rhs(child), a.v("_s_RESETQ")) << child;
  EXPECT_EQ(a.rhs("_s_RTLQ"), a.v("_s_RTLH2"));
  EXPECT_EQ(a.rhs("_s_RTLH2"), a.zero());
  EXPECT_EQ(a.rhs("_s_RTLN0"), a.v("_s_SETN0"));
}

TEST(CompileEquations, LoopRestartsItsBody) {
  Module m("M");
  compiled(m, new Loop("L", new Pause("P")));
  Algebra a(m);
  EXPECT_EQ(a.rhs("_s_SETP"), a.Or(a.v("_s_SETL"), a.v("_s_RTLP")));
  EXPECT_EQ(a.rhs("_s_RESETP"), a.v("_s_RESETL"));
  EXPECT_EQ(a.rhs("_s_RTLL"), a.zero());
}

TEST(CompileEquations, PnOfThree) {
  Module m("M");
  Statement** array = new Statement*[3]{new Pause("B0"), new Nothing("B1"), new Pause("B2")};
  compiled(m, new Pn("Q", 3, array));
  std::vector<std::string> names = localNames(m);
  std::vector<std::string> own(names.end() - 12, names.end());
  EXPECT_EQ(own, (std::vector<std::string>{"SETQ", "RESETQ", "RTLQ", "ACTIFQ0", "ACTIFPLUSQ0", "RTLQ0",
                                           "ACTIFQ1", "ACTIFPLUSQ1", "RTLQ1", "ACTIFQ2",
                                           "ACTIFPLUSQ2", "RTLQ2"}));
  expectVariableOrder(m, own);
  EXPECT_EQ(m.getRegisterList()->size(), 5u);  // two pauses and three branches
  Algebra a(m);
  bdd T0 = a.v("_s_RTLB0"), T1 = a.v("_s_RTLB1"), T2 = a.v("_s_RTLB2");
  bdd A0 = a.v("_s_ACTIFQ0"), A1 = a.v("_s_ACTIFQ1"), A2 = a.v("_s_ACTIFQ2");
  EXPECT_EQ(a.rhs("_s_RTLQ0"), a.Or(A0, T0));
  EXPECT_EQ(a.rhs("_s_RTLQ1"), a.And(a.Or(A1, T1), a.v("_s_RTLQ0")));
  EXPECT_EQ(a.rhs("_s_RTLQ2"), a.And(a.Or(A2, T2), a.v("_s_RTLQ1")));
  EXPECT_EQ(a.rhs("_s_RTLQ"), a.v("_s_RTLQ2"));
  bdd G = a.And(a.v("_v_RTLQ"), a.v("_v_RESETQ"));
  EXPECT_EQ(a.rhs("_s_ACTIFPLUSQ1"), a.And(a.Or(A1, T1), G));
  for (const char* b : {"B0", "B1", "B2"}) {
    EXPECT_EQ(a.rhs(std::string("_s_SET") + b), a.v("_s_SETQ")) << b;
    EXPECT_EQ(a.rhs(std::string("_s_RESET") + b), a.v("_s_RESETQ")) << b;
  }
  for (const char* r : {"ACTIFQ0", "ACTIFQ1", "ACTIFQ2"})
    EXPECT_EQ(a.rhs(std::string("_v_") + r), a.Not(a.v(std::string("_s_") + r))) << r;
}

TEST(CompileEquations, ParallelOfTwo) {
  Module m("M");
  compiled(m, new Parallel("Q", new Pause("L"), new Nothing("R")));
  std::vector<std::string> names = localNames(m);
  std::vector<std::string> own(names.end() - 7, names.end());
  EXPECT_EQ(own, (std::vector<std::string>{"SETQ", "RESETQ", "RTLQ", "ACTIFQ", "ACTIFPLUSQ",
                                           "ACTIFBISQ", "ACTIFBISPLUSQ"}));
  Algebra a(m);
  bdd A = a.v("_s_ACTIFQ"), nA = a.v("_v_ACTIFQ"), B = a.v("_s_ACTIFBISQ"), nB = a.v("_v_ACTIFBISQ");
  bdd tl = a.v("_s_RTLL"), ntl = a.v("_v_RTLL"), tr = a.v("_s_RTLR"), ntr = a.v("_v_RTLR");
  bdd nR = a.v("_v_RESETQ");
  EXPECT_EQ(a.rhs("_s_RTLQ"), a.Or(a.And(a.And(nA, nB), a.And(tr, tl)),
                                   a.Or(a.And(a.And(tr, nB), A), a.And(a.And(tl, nA), B))));
  EXPECT_EQ(a.rhs("_s_ACTIFPLUSQ"),
            a.Or(a.And(a.And(A, ntr), nR), a.And(a.And(a.And(ntr, nR), tl), nB)));
  EXPECT_EQ(a.rhs("_s_ACTIFBISPLUSQ"),
            a.Or(a.And(a.And(B, ntl), nR), a.And(a.And(a.And(tr, nR), ntl), nA)));
  EXPECT_EQ(a.rhs("_v_ACTIFBISQ"), a.Not(B));
  EXPECT_EQ(m.getBddWood()->exp_number(), 29);
}

TEST(CompileEquations, AbortionAndItsMask) {
  for (bool strong : {false, true}) {
    SCOPED_TRACE(strong ? "strong" : "weak");
    Module m("M");
    Signal* in = input(m, "a");
    output(m, "o");
    Signal* o = m.getOutputSignal("o");
    Statement** body = new Statement*[2]{new Emit("E", o), new Pause("P")};
    Statement* b = new Sn("B", 2, body);
    compiled(m, strong ? static_cast<Statement*>(new StrongAbort("X", in, b))
                       : static_cast<Statement*>(new Abort("X", in, b)));
    Algebra a(m);
    bdd A = a.v("_s_ACTIFX"), S = a.v("_s_SETX"), R = a.v("_s_RESETX"), nR = a.v("_v_RESETX");
    bdd k = a.v("_s_a"), ku = a.v("_v_a"), Tb = a.v("_s_RTLB"), nTb = a.v("_v_RTLB");
    EXPECT_EQ(a.rhs("_s_SETB"), S);
    EXPECT_EQ(a.rhs("_s_RESETB"), a.Or(a.And(A, a.And(nR, k)), R));
    EXPECT_EQ(a.rhs("_s_RTLX"), a.Or(Tb, a.And(k, A)));
    bdd np = a.Or(a.Not(k), ku);
    EXPECT_EQ(a.rhs("_s_ACTIFPLUSX"), a.And(nR, a.And(a.Or(a.And(A, np), S), nTb)));
    // Occurrence 1 of o holds the emission; the strong form masks it by
    // not (A and over(a) and not under(a)); occurrence 0 is left alone.
    bdd emitted = a.v("_s_RTLE");
    bdd g = a.Or(ku, a.Or(a.Not(k), a.Not(A)));
    EXPECT_EQ(a.rhs("_s_o_1"), strong ? a.And(g, emitted) : emitted);
    EXPECT_EQ(a.rhs("_s_o"), a.Or(a.v("_s_o_1"), a.v("_s_o_2")));
  }
}

TEST(CompileEquations, StrongAbortWithAConditionThatCantFire) {
  Module m("M");
  output(m, "o");
  Signal* o = m.getOutputSignal("o");
  compiled(m, new StrongAbort("X", new FalseExpression(), new Emit("E", o)));
  Algebra a(m);
  EXPECT_EQ(a.rhs("_s_o_1"), a.v("_s_RTLE"));
}

TEST(CompileEquations, Emissions) {
  Module m("M");
  Signal* in = input(m, "a");
  Signal* o = output(m, "o");
  Signal* p = output(m, "p");
  Signal* q = output(m, "q");
  Signal* clock = local(m, "ck");
  Statement** array = new Statement*[3]{new Emit("E", o, clock), new NoEmit("NE", p),
                                        new SustainUntil("SU", q, in)};
  compiled(m, new Pn("Q", 3, array));
  Algebra a(m);
  EXPECT_EQ(a.rhs("_s_RTLE"), a.v("_s_SETE"));
  EXPECT_EQ(a.rhs("_s_o_1"), a.v("_s_RTLE"));
  EXPECT_EQ(a.rhs("_v_o_1"), a.zero());
  EXPECT_EQ(a.rhs("_s_ck_1"), a.v("_s_RTLE"));
  // NoEmit: over 0 and under T.
  EXPECT_EQ(a.rhs("_s_p_1"), a.zero());
  EXPECT_EQ(a.rhs("_v_p_1"), a.v("_s_RTLNE"));
  // SustainUntil: three equations, no register equation for its A.
  bdd A = a.v("_s_ACTIFSU"), S = a.v("_s_SETSU"), nR = a.v("_v_RESETSU");
  bdd k = a.v("_s_a"), ku = a.v("_v_a");
  bdd np = a.Or(a.Not(k), ku);
  EXPECT_FALSE(a.hasEquation("_v_ACTIFSU"));
  EXPECT_EQ(a.rhs("_s_ACTIFPLUSSU"), a.And(a.Or(a.And(S, nR), a.And(A, nR)), np));
  EXPECT_EQ(a.rhs("_s_RTLSU"), a.And(a.Or(A, S), k));
  // Initial form: the over side goes to occurrence 0, the under side to the current.
  EXPECT_EQ(a.rhs("_s_q"), a.Or(a.v("_s_q_1"), a.And(a.Or(A, S), np)));
  EXPECT_EQ(a.rhs("_v_q_1"), a.Or(a.And(a.v("_v_ACTIFSU"), a.v("_v_SETSU")), k));
}

}  // namespace

namespace {

const char* Data = "data: Type: int; Constant: int C__1 := 1; end data ";

// Each valued emission has its own clock, true exactly when that emission runs; the
// signal is the or of both.
TEST(CompileEquations, ValuedEmissionsDriveTheirClocks) {
  Module* m = compile_test::compileText(std::string(Data) +
                                        "module m: Input: x : int; Output: o : int;"
                                        " emit o($x) || emit o(1) end");
  ASSERT_NE(m, nullptr);
  auto* pn = dynamic_cast<Pn*>(m->getStatement());
  ASSERT_NE(pn, nullptr);
  auto* e0 = dynamic_cast<Emit*>(pn->getArray()[0]);
  auto* e1 = dynamic_cast<Emit*>(pn->getArray()[1]);
  ASSERT_TRUE(e0 && e1 && e0->getClock() && e1->getClock());
  ASSERT_NE(e0->getClock(), e1->getClock());
  Algebra a(*m);
  bdd t0 = a.v("_s_" + e0->getRtl()->getInternalName());
  bdd t1 = a.v("_s_" + e1->getRtl()->getInternalName());
  // The clock is the binding's value signal, which stays at occurrence 0.
  EXPECT_TRUE(e0->getClock()->isValue());
  EXPECT_EQ(a.rhs("_s_" + e0->getClock()->getInternalName()), t0);
  EXPECT_EQ(a.rhs("_s_" + e1->getClock()->getInternalName()), t1);
  EXPECT_EQ(a.rhs("_s_o_1"), a.Or(t0, t1));
}

// A valued sustain drives its clock with the signal's own driver.
TEST(CompileEquations, ValuedSustainDrivesItsClock) {
  Module* m = compile_test::compileText(std::string(Data) +
                                        "module m: Input: a; Output: o : int;"
                                        " sustain o(1) until a end");
  ASSERT_NE(m, nullptr);
  auto* su = dynamic_cast<SustainUntil*>(m->getStatement());
  ASSERT_NE(su, nullptr);
  ASSERT_NE(su->getClock(), nullptr);
  Algebra a(*m);
  const std::string n = su->getStatementName();
  bdd active = a.Or(a.v("_s_ACTIF" + n), a.v("_s_SET" + n));
  bdd np = a.Or(a.Not(a.v("_s_a")), a.v("_v_a"));
  // The clock of an output's value is an output: occurrence 0 is the or of occurrence
  // 1 and the driver of the initial form.
  const std::string clock = su->getClock()->getInternalName();
  EXPECT_EQ(a.rhs("_s_" + clock), a.Or(a.v("_s_" + clock + "_1"), a.And(active, np)));
}

}  // namespace

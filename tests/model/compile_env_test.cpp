// The compile environment of a module, the copy for the generators, cleaning.
#include <gtest/gtest.h>

#include "bdd/bddpp.h"
#include "util/compilation.h"
#include "equations/Bddexpression.h"
#include "equations/equationtable.h"
#include "model/module.h"
#include "model/statement.h"
#include "model_test_util.h"

using namespace model_test;

namespace {

bool hasEquation(Module& m, const std::string& bddName) {
  Bddexpressionwood* wood = m.getBddWood();
  long i = wood->Index_var_by_name(bddName);
  return i >= 0 && wood->exp_by_index(i) != nullptr;
}

TEST(CompileEnv, ModuleWithoutSignalsStillHasItsWires) {
  Module m("Empty");
  m.createCompileEnv();
  ASSERT_NE(m.getSet(), nullptr);
  EXPECT_EQ(m.getSet()->getInternalName(), "SETEmpty");
  EXPECT_EQ(m.getReset()->getInternalName(), "RESETEmpty");
  EXPECT_EQ(m.getRtl()->getInternalName(), "RTLEmpty");
  EXPECT_EQ(m.getBddWood()->exp_number(), 0);
}

TEST(CompileEnv, OutputsAndLocalsOpenAnOccurrence) {
  Module m("M");
  Signal* o = output(m, "o");
  Signal* l = local(m, "l");
  Signal* q = nullptr;
  m.addRegisterDecl("q", 0, "qn");
  q = m.getLocalSignal("q");
  Signal* in = input(m, "i");
  m.createCompileEnv();
  Bddexpressionwood* wood = m.getBddWood();
  for (Signal* s : {o, l}) {
    SCOPED_TRACE(s->getInternalName());
    EXPECT_EQ(s->getCurrentOccurrence(wood), 1);
    const std::string n = s->getInternalName();
    // Occurrence 0 is defined by occurrence 1, which starts at bottom.
    EXPECT_TRUE(hasEquation(m, "_s_" + n));
    EXPECT_TRUE(hasEquation(m, "_v_" + n));
    EXPECT_TRUE(hasEquation(m, "_s_" + n + "_1"));
    EXPECT_TRUE(hasEquation(m, "_v_" + n + "_1"));
  }
  Bddexpression* e = wood->exp_by_index(wood->Index_var_by_name("_s_o"));
  EXPECT_EQ(e->getUserType(), int(Compilation::SOUTPUT));
  EXPECT_EQ(wood->exp_by_index(wood->Index_var_by_name("_v_o"))->getUserType(), int(Compilation::VOUTPUT));
  // Registers and inputs are left alone.
  EXPECT_FALSE(hasEquation(m, "_s_q"));
  EXPECT_FALSE(hasEquation(m, "_s_i"));
  (void)q;
  (void)in;
}

TEST(ModuleCopy, OwnManagerAndSameSignals) {
  Module m("M");
  input(m, "i");
  output(m, "o");
  local(m, "l");
  m.addRegisterDecl("q", 1, "qn");
  Signal* pre = new Signal("pi", "pi", &m, m.getBddWood());
  m.addPreSignal(pre, m.getInputSignal("i"), "C_0");
  m.createCompileEnv();
  m.setReincarnate(true);
  m.setFinalised(0);
  m.getBddWood()->set_common_bdd_manager(1);

  Module copy(m);
  EXPECT_EQ(copy.getName(), "M");
  EXPECT_EQ(copy.getStatement(), nullptr);
  EXPECT_TRUE(copy.getReincarnate());
  ASSERT_NE(copy.getBddWood(), nullptr);
  EXPECT_NE(copy.getBddWood(), m.getBddWood());
  EXPECT_NE(copy.getBddWood()->my_bdd_manager(), m.getBddWood()->my_bdd_manager());
  EXPECT_EQ(m.getBddWood()->get_common_bdd_manager(), 1);
  EXPECT_EQ(copy.getBddWood()->exp_number(), m.getBddWood()->exp_number());

  auto names = [](std::list<Signal*>* l) {
    std::vector<std::string> v;
    for (Signal* s : *l) v.push_back(s->getInternalName());
    return v;
  };
  EXPECT_EQ(names(copy.getInputSignalList()), names(m.getInputSignalList()));
  EXPECT_EQ(names(copy.getOutputSignalList()), names(m.getOutputSignalList()));
  EXPECT_EQ(names(copy.getLocalSignalList()), names(m.getLocalSignalList()));
  EXPECT_NE(copy.getInputSignal("i"), m.getInputSignal("i"));

  ASSERT_EQ(copy.getPreSignalList()->size(), 1u);
  memorizedSignal* p = copy.getPreSignalList()->front();
  EXPECT_EQ(p->getActual(), copy.getInputSignal("i"));
  EXPECT_EQ(p->getPre()->getInternalName(), "pi");
  EXPECT_EQ(p->getInitialValue(), "C_0");

  ASSERT_EQ(copy.getRegisterList()->size(), 1u);
  EXPECT_EQ(*copy.getRegisterList()->front(),
            regclass(copy.getLocalSignal("q"), copy.getLocalSignal("qn"), 1));
  ASSERT_NE(copy.getSet(), nullptr);
  EXPECT_EQ(copy.getSet()->getInternalName(), "SETM");
  EXPECT_TRUE(copy.getSet()->isWire());
}

// Kinds restored after a compiled module is read back: every equation of a register or
// a clock, the output pair, and the pre pair unless it is an input or output already.
TEST(ModuleUserType, RestoredFromTheLists) {
  Module m("M");
  Bddexpressionwood* wood = m.getBddWood();
  Signal* o = output(m, "o");
  m.addRegisterDecl("q", 0, "qn");
  Signal* q = m.getLocalSignal("q");
  Signal* clk = local(m, "clk");
  clk->setClock();
  Signal* i = input(m, "i");
  Signal* p = new Signal("p", &m, wood);
  Signal* p2 = new Signal("p2", &m, wood);
  m.addPreSignal(p, i, "");
  m.addPreSignal(p2, i, "");
  auto define = [&](Signal* s, int type) {
    for (long id : {s->getOverBddId(&m, wood), s->getUnderBddId(&m, wood)})
      new Bddexpression(wood->Name_var_by_index(id), wood, wood->Bdd_var_by_index(id),
                        wood->Bdd_zero(), 0, 0, type);
  };
  for (Signal* s : {o, q, clk, p}) define(s, 0);
  define(p2, Compilation::SINPUT);  // the under side stays 0: it isn't VINPUT or VOUTPUT
  m.update_user_type();
  auto type = [&](const std::string& name) {
    return wood->exp_by_index(wood->Index_var_by_name(name))->getUserType();
  };
  struct Case {
    const char* var;
    int expected;
  } cases[] = {{"_s_o", Compilation::SOUTPUT},   {"_v_o", Compilation::VOUTPUT},
               {"_s_q", Compilation::SREG},      {"_v_q", Compilation::VREG},
               {"_s_clk", Compilation::SCLOCK},  {"_v_clk", Compilation::VCLOCK},
               {"_s_p", Compilation::SUSEDPRE},  {"_v_p", Compilation::VUSEDPRE},
               {"_s_p2", Compilation::SINPUT},   {"_v_p2", Compilation::VUSEDPRE}};
  for (const Case& c : cases) EXPECT_EQ(type(c.var), c.expected) << c.var;
  // qn has no equation: skipped without a message.
  EXPECT_EQ(wood->exp_by_index(wood->Index_var_by_name("_s_qn")), nullptr);
}

TEST(ModuleClean, KeepWiresLeavesEverything) {
  Module m("M");
  output(m, "o");
  local(m, "l");
  m.createCompileEnv();
  long before = m.getBddWood()->exp_number();
  std::list<Signal*>* locals = m.getLocalSignalList();
  Compilation::KeepWiresFlag = true;
  m.clean();
  Compilation::KeepWiresFlag = false;
  EXPECT_EQ(m.getBddWood()->exp_number(), before);
  EXPECT_EQ(m.getLocalSignalList(), locals);
  EXPECT_EQ(locals->size(), 1u);
}

TEST(ModuleClean, LocalsKeepRegistersValuesAndClocks) {
  Module m("M");
  local(m, "plain");
  local(m, "valued", "int");
  Signal* clock = local(m, "clk");
  clock->setClock();
  m.addRegisterDecl("q", 0, "qn");
  m.createCompileEnv();
  m.clean_locals();
  std::vector<std::string> kept;
  for (Signal* s : *m.getLocalSignalList()) kept.push_back(s->getInternalName());
  EXPECT_EQ(kept, (std::vector<std::string>{"valued", "clk", "q", "qn"}));
}

}  // namespace

// What a module keeps of its locals when it is cleaned, and the kinds of equations given
// back to a module read from its compiled file: neither shows in a trace of its own.
#include <gtest/gtest.h>

#include "bdd/bddpp.h"
#include "common/quarn_test.h"
#include "equations/Bddexpression.h"
#include "model/module.h"
#include "util/compilation.h"

using namespace quarn_test;

namespace {

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

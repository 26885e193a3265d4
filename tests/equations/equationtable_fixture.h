// A module with a few signals for the equation table tests.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "bdd/bddpp.h"
#include "util/compilation.h"
#include "equations/Bddexpression.h"
#include "equations/equationtable.h"
#include "model/module.h"
#include "signals/expression.h"
#include "signals/signal_manager.h"
#include "common/quarn_test.h"

class TableTest : public ::testing::Test {
 protected:
  void SetUp() override { setenv("QUARN_BATCH", "1", 1); }

  Module* m = new Module("M");
  Bddexpressionwood* w = m->getBddWood();
  EquationTable* t = m->getCompilation();
  bddpp_manager* g = w->my_bdd_manager();

  Signal* input(const std::string& name) { return quarn_test::input(*m, name); }
  Signal* wire(const std::string& name) {
    auto* s = new Signal(name, m, w);
    s->setWire();
    m->addWireSignal(s);
    return s;
  }
  // An output or local as the compile environment leaves it: occurrence 1 starts
  // bottom and occurrence 0 is its variables.
  Signal* emitted(const std::string& name, bool output) {
    auto* s = new Signal(name, m, w);
    if (output) {
      s->setOutput();
      m->addOutputSignal(s);
    } else {
      s->setLocal();
      m->addLocalSignal(s);
    }
    s->newOccurrence(w, m);
    t->createBottomEquation(s, m);
    new Bddexpression(name, w, v("_s_" + name), v("_s_" + name + "_1"), 0, 0,
                      s->computeOverType());
    new Bddexpression(name, w, v("_v_" + name), v("_v_" + name + "_1"), 0, 0,
                      s->computeUnderType());
    return s;
  }

  bdd v(const std::string& name) { return g->Bdd_var_by_name(name); }
  // Right member of the equation of a variable, in the table's wood.
  Bddexpression* eq(const std::string& name, Bddexpressionwood* in = nullptr) {
    Bddexpressionwood* wood = in ? in : w;
    long i = wood->Index_var_by_name(name);
    return i < 0 ? nullptr : wood->exp_by_index(i);
  }
  bdd rhs(const std::string& name) {
    Bddexpression* e = eq(name);
    return e ? e->my_bdd_exp() : bdd();
  }
};

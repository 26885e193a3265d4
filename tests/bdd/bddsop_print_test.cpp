// Exact texts of the diagram listings, sum-of-products and cover printers.
#include <gtest/gtest.h>

#include <cstdio>
#include <sstream>
#include <string>
#include <vector>

#include "bdd/bddpp.h"

namespace {

class SopPrint : public ::testing::Test {
 protected:
  void SetUp() override {
    a = m.New_var_last("a");
    b = m.New_var_last("b");
    c = m.New_var_last("c");
    d = m.New_var_last("d");
    y = m.New_var_last("y");
  }
  bdd n(const bdd& f) { return m.Bdd_not(f); }
  bdd And(const bdd& f, const bdd& g) { return m.Bdd_and(f, g); }
  bdd Or(const bdd& f, const bdd& g) { return m.Bdd_or(f, g); }

  std::string Structure(const bdd& f) {
    std::ostringstream out;
    m.Print_bdd_structure(out, f);
    return out.str();
  }
  std::string Structure_file(const bdd& f) {
    FILE* file = std::tmpfile();
    m.Print_bdd_structure(file, f);
    std::string text;
    std::rewind(file);
    for (int ch; (ch = std::fgetc(file)) != EOF;) text += static_cast<char>(ch);
    std::fclose(file);
    return text;
  }

  bddpp_manager m;
  bdd a, b, c, d, y;
};

TEST_F(SopPrint, StructureListings) {
  // a ? c.d : b.c.d shares the node of c.d between the two branches.
  bdd shared = m.Bdd_ite(a, And(c, d), And(b, And(c, d)));
  const struct {
    const char* what;
    bdd f;
    const char* text;
  } cases[] = {
      {"one", m.Bdd_one(), "1 (node: 0,index: -1)\n"},
      {"zero", m.Bdd_zero(), "not(\n     1 (node: 0,index: -1)\n   )\n"},
      {"variable", c, "c (node: 0,index: 2)\n"},
      {"negated variable", n(a), "not(\n     a (node: 0,index: 0)\n   )\n"},
      {"conjunction", And(a, b),
       "if a (node: 0,index: 0)\n"
       "  b (node: 1,index: 1)\n"
       "else (not a)\n"
       "  not(\n"
       "      1 (node: 2,index: -1)\n"
       "     )\n"},
      {"disjunction", Or(a, b),
       "if a (node: 0,index: 0)\n"
       "  1 (node: 1,index: -1)\n"
       "else (not a)\n"
       "  b (node: 2,index: 1)\n"},
      {"shared node", shared,
       "if a (node: 0,index: 0)\n"
       "  if c (node: 1,index: 2)\n"
       "    d (node: 2,index: 3)\n"
       "  else (not c)\n"
       "    not(\n"
       "        1 (node: 3,index: -1)\n"
       "       )\n"
       "else (not a)\n"
       "  if b (node: 4,index: 1)\n"
       "    already found node: 1\n"
       "  else (not b)\n"
       "    not(\n"
       "        1 (node: 3,index: -1)\n"
       "       )\n"},
  };
  for (const auto& k : cases) {
    EXPECT_EQ(Structure(k.f), k.text) << k.what;
    EXPECT_EQ(Structure_file(k.f), k.text) << k.what;
  }
  // The listing leaves no mark behind: a second listing is the same.
  EXPECT_EQ(Structure(shared), Structure(shared));
}

TEST_F(SopPrint, GlobalStructureListsSharedNodesEverywhere) {
  bdd shared = m.Bdd_ite(a, And(c, d), And(b, And(c, d)));
  std::ostringstream out;
  m.Print_bdd_global_structure_loc(out, 0, shared.node());
  std::string text = out.str();
  EXPECT_EQ(text.find("already found"), std::string::npos);
  size_t first = text.find("if c (node: ");
  ASSERT_NE(first, std::string::npos);
  EXPECT_NE(text.find("if c (node: ", first + 1), std::string::npos);
  // Global ids: the terminal is 1 and the variables follow in creation order.
  std::ostringstream var;
  m.Print_bdd_global_structure_loc(var, 3, d.node());
  EXPECT_EQ(var.str(), "   d (node: 5,index: 3)\n");
  std::ostringstream terminal;
  m.Print_bdd_global_structure_loc(terminal, 0, m.Bdd_node_one());
  EXPECT_EQ(terminal.str(), "1 (node: 1,index: -1)\n");
}

TEST_F(SopPrint, SumsOfProducts) {
  const struct {
    std::string got, want;
  } cases[] = {
      {m.Print_sop_to_String(" + ", ".", "!", "", Or(a, b), 0), "a + !a.b"},
      {m.Print_sop_to_String(" + ", ".", "!", "", Or(a, b), 1), "a + b"},
      {m.Print_sop_to_String(" + ", ".", "!", "", m.Bdd_zero(), 0), "0"},
      {m.Print_sop_to_String(" + ", ".", "!", "", m.Bdd_zero(), 1), "0"},
      {m.Print_sop_to_String(" + ", ".", "!", "", m.Bdd_one(), 2), "1"},
      {m.Print_product_to_String(".", "!", "", And(a, n(c))), "a.!c"},
      {m.Print_product_to_String(".", "", "'", And(a, n(b))), "a.b'"},
      {m.Print_product_to_String(".", "!", "", m.Bdd_zero()), "0"},
      {m.Print_product_to_String(".", "!", "", m.Bdd_one()), "1"},
      {m.Print_product_to_String(" and ", "not ", "", n(d)), "not d"},
      {m.Print_sop_to_String_pref_suff(" + ", " * ", "!", "", And(a, n(b)), "s_", "_x", 0), "s_a_x * !s_b_x"},
      {m.Print_product_to_String_pref_suff(".", "not(", ")", And(n(a), b), "<", ">"), "not(<a>).<b>"},
      {m.Print_sop_to_ESTEREL_String(m.Bdd_zero()), "not tick"},
      {m.Print_sop_to_ESTEREL_String(m.Bdd_one()), "tick"},
      {m.Print_sop_to_ESTEREL_String(And(a, n(b))), "a and not b"},
      {m.Print_sop_to_ESTEREL_String(Or(a, b), 1), "a or b"},
      {m.Print_sop_to_VHDL_String(m.Bdd_zero()), "'0'"},
      {m.Print_sop_to_VHDL_String(m.Bdd_one()), "'1'"},
      {m.Print_sop_to_VHDL_String(And(a, b)), "a and b"},
      {m.Print_sop_to_VHDL_String(Or(a, b), 1), "(a) or (b)"},
      {m.Print_sop_to_VHDL_String(Or(a, b)), "(a) or (not a and b)"},
  };
  for (const auto& k : cases) EXPECT_EQ(k.got, k.want);

  std::ostringstream out;
  m.Print_sop(out, " or ", " and ", "not ", "", Or(a, n(c)), 1);
  out << "|";
  m.Print_product(out, ".", "!", "", And(n(a), d));
  out << "|";
  m.Print_sop_pref_suff(out, " + ", ".", "!", "", Or(a, b), "[", "]", 1);
  out << "|";
  m.Print_product_pref_suff(out, ".", "~", "", And(n(a), d), "p", "");
  EXPECT_EQ(out.str(), "a or not c|!a.d|[a] + [b]|~pa.pd");
}

TEST_F(SopPrint, CoversForLogicTools) {
  auto blif = [&](const bdd& f, int level) {
    std::ostringstream out;
    m.BLIF_print(out, y, f, level);
    return out.str();
  };
  EXPECT_EQ(blif(m.Bdd_one(), 0), ".names  y\n1\n");
  EXPECT_EQ(blif(m.Bdd_zero(), 1), ".names  y\n0\n");
  EXPECT_EQ(blif(And(a, n(b)), 0), ".names  a b y\n10 1\n");
  EXPECT_EQ(blif(Or(a, b), 1), ".names  a b y\n1- 1\n-1 1\n");
  EXPECT_EQ(blif(Or(a, c), 0), ".names  a c y\n1- 1\n01 1\n");

  const long corres[] = {10, 11, 12, 13, 14};
  auto qnc = [&](const bdd& f, int level) {
    std::ostringstream out;
    m.QNC_print(out, corres, y, f, level);
    return out.str();
  };
  EXPECT_EQ(qnc(And(a, n(b)), 0), "10 11 14:\n1 0  1;\n");
  EXPECT_EQ(qnc(Or(a, b), 1), "10 11 14:\n1 -  1,\n- 1  1;\n");
  EXPECT_EQ(qnc(m.Bdd_one(), 1), "14:\n1;\n");

  std::ostringstream pla;
  m.PLA_print_pref_suff(pla, y, And(a, n(b)), "<", ">", "HDR ", "=\n", "|", "$", ",", 0);
  EXPECT_EQ(pla.str(), "HDR <a> <b> <y>=\n1,0, 1$");
  std::ostringstream renamed;
  m.PLA_print_pref_suff_with_renaming(renamed, corres, y, Or(b, d), "v", "", "", " :", "/", ".", "", 1);
  EXPECT_EQ(renamed.str(), "v11 v13 v14 :1- 1/-1 1.");
}

TEST_F(SopPrint, FixedPointReports) {
  auto report = [&](const bdd& f) {
    std::ostringstream out;
    m.Print_Fixes_Points(out, f);
    return out.str();
  };
  // Every variable is its own association: the last variable read is the looped one.
  EXPECT_EQ(report(And(a, b)), "\n  ==> two stability points : b'= 0, b''= a\n");
  EXPECT_EQ(report(m.Bdd_one()), " = 1\n");

  m.Bdd_assoc_bdd_to_var(And(n(y), a), y);
  EXPECT_EQ(report(y), "\n  ==> oscillation on y  for a\n  ==> stabilisation when y = a'\n");

  bddpp_manager other;
  bdd p = other.New_var_last("p"), q = other.New_var_last("q");
  other.Bdd_assoc_bdd_to_var(other.Bdd_or(q, p), q);
  std::ostringstream out;
  other.Print_Fixes_Points(out, q);
  EXPECT_EQ(out.str(), "\n  ==> two stability points : q'= p, q''= 1\n");
}

TEST_F(SopPrint, DebugForms) {
  std::ostringstream vars;
  m.debug_variables(vars);
  EXPECT_EQ(vars.str(), "a --> a\nb --> b\nc --> c\nd --> d\ny --> y\n");
  m.Bdd_assoc_bdd_to_var(And(n(y), a), y);
  std::ostringstream after;
  m.debug_variables(after);
  EXPECT_EQ(after.str(), "a --> a\nb --> b\nc --> c\nd --> d\ny --> a and not y\n");

  std::ostringstream dbg;
  Print_debug_bdd(dbg, Or(a, b));
  EXPECT_EQ(dbg.str(), "a + !a . b\n");
}

}  // namespace

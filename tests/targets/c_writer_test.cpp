// The C writer: straight-line code of a shared BDD, one equation, and the two files.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "c_test_util.h"
#include "targets/formats.h"

using namespace c_test;

namespace {

std::string id(const bdd& f) { return std::to_string(f.node()->global_id()); }

std::string eval_text(bddpp_manager& mgr, const bdd& f) {
  std::ostringstream out;
  mgr.Bdd_global_clear_marks();
  mgr.Print_node_for_eval(" || ", " && ", "!", "", "", "", "0", ";", "m_node", out, f.node());
  return out.str();
}

TEST(CNodes, EachNodeOnceChildrenFirst) {
  bddpp_manager mgr;
  bdd x = mgr.New_var_last("x");
  bdd y = mgr.New_var_last("y");
  bdd f = mgr.Bdd_or(x, mgr.Bdd_not(y));  // x then 1, else !y
  ASSERT_EQ(mgr.Bdd_one().node()->global_id(), 1);
  EXPECT_EQ(eval_text(mgr, f), "   m_node[1]= !0;\n"
                               "  m_node[" + id(y) + "]= y;\n"
                               "  m_node[" + id(f) + "]= x && m_node[1] || !x && !m_node[" + id(y) + "];\n");
  // Marks are kept between equations of one step: nothing is printed twice.
  std::ostringstream again;
  mgr.Print_node_for_eval(" || ", " && ", "!", "", "", "", "0", ";", "m_node", again, f.node());
  EXPECT_EQ(again.str(), "");
  bdd g = mgr.Bdd_and(x, y);  // x then y, else 0
  EXPECT_EQ(eval_text(mgr, g), "  m_node[" + id(y) + "]= y;\n"
                               "   m_node[1]= !0;\n"
                               "  m_node[" + id(g) + "]= x && m_node[" + id(y) + "] || !x && !m_node[1];\n");
}

// One equation: a plain variable is assigned directly, anything else through the array;
// an output is written and read through its pointer.
TEST(CEquation, LeftAndRightSides) {
  Module m("m");
  Signal* a = input(m, "a");
  Signal* b = input(m, "b");
  Signal* o = output(m, "o");
  Bddexpressionwood* w = m.getBddWood();
  m.createCompileEnv();
  std::string on = w->Name_var_by_bdd(over(m, o));
  std::list<std::string> pointers = {on};
  struct Case {
    bdd variable, right;
    std::list<std::string> pointers;
    std::string text;
  };
  bdd ab = w->Bdd_and(over(m, a), over(m, b));
  bdd nab = w->Bdd_not(ab);
  std::list<std::string> none;
  std::vector<Case> cases = {
      {over(m, o), over(m, a), pointers, "  *" + on + "= _s_a;"},
      {over(m, o), over(m, a), none, "   " + on + "= _s_a;"},
      {under(m, o), nab, pointers,
       "  m_node[" + id(over(m, b)) + "]= _s_b;\n   m_node[1]= !0;\n  m_node[" + id(ab) + "]= _s_a && m_node[" +
           id(over(m, b)) + "] || !_s_a && !m_node[1];\n   " + w->Name_var_by_bdd(under(m, o)) + "= !m_node[" +
           id(ab) + "];"},
      {under(m, o), over(m, o), pointers, "   " + w->Name_var_by_bdd(under(m, o)) + "= (*" + on + ");"},
      {under(m, a), w->Bdd_one(), none, "   m_node[1]= !0;\n   _v_a= m_node[1];"},
      {under(m, a), w->Bdd_zero(), none, "   m_node[1]= !0;\n   _v_a= !m_node[1];"},
  };
  for (Case& c : cases) {
    SCOPED_TRACE(c.text);
    Bddexpression e;  // not entered in the wood
    e.setBddVar(w->my_bdd_manager(), c.variable);
    e.setBddExp(w->my_bdd_manager(), c.right);
    std::ostringstream out;
    w->my_bdd_manager()->Bdd_global_clear_marks();
    e.put_c(out, "m_node", c.pointers);
    EXPECT_EQ(out.str(), c.text);
  }
  Bddexpression empty;
  std::ostringstream out;
  empty.put_c(out, "m_node", pointers);
  EXPECT_EQ(out.str(), "");
}

TEST(CFiles, ModuleWithoutWood) {
  Module m("m");
  m.setCompilation(nullptr);
  Texts t = c_text(m);
  EXPECT_EQ(t.code, "#include \"m.h\"\n#define false 0\n#define true (!false)\n\n");
  EXPECT_EQ(t.header, "#ifndef m_H\n#define m_H\n#endif\n");
}

TEST(CFiles, NoInputsNoOutputs) {
  Module m("m");
  m.createCompileEnv();
  m.finalize(0);
  Texts t = c_text(m);
  EXPECT_EQ(t.header,
            "#ifndef m_H\n#define m_H\nextern void m_reset_automaton();\nextern void m_automaton();\n#endif\n");
  EXPECT_NE(t.code.find("\nvoid m_automaton()\n{\n"), std::string::npos) << t.code;
}

// Input a, output b, register r (initially true, next value a): b = r.
TEST(CFiles, RegistersInputsAndOutputs) {
  Module m("m");
  Signal* a = input(m, "a");
  input(m, "c");
  Signal* b = output(m, "b");
  output(m, "d");
  m.addRegisterDecl("r", 1, "rn");
  m.createCompileEnv();
  Bddexpressionwood* w = m.getBddWood();
  Signal* r = m.getLocalSignal("r");
  Signal* rn = m.getLocalSignal("rn");
  drive(m, b, over(m, r));
  new Bddexpression("rn", w, over(m, rn), over(m, a), 0, 0, Compilation::SREG);
  m.finalize(0);
  Texts t = c_text(m);
  EXPECT_EQ(t.header,
            "#ifndef m_H\n#define m_H\n"
            "extern void m_reset_automaton();\n"
            "extern void m_automaton(int a, int  c, int*b, int*d);\n"
            "#endif\n");
  const std::string head =
      "#include \"m.h\"\n#define false 0\n#define true (!false)\n\n"
      "/* global state variables */\n"
      "int v_s_r,\n    v_s_m_boot;\n\n"
      "void m_reset_automaton(){\n"
      "  /* global state variables initialisation */\n"
      "  v_s_r= 1;\n  v_s_m_boot= 1;\n"
      "}\n\n"
      "void m_automaton(int a, int c, int*b, int*d)\n{\n";
  EXPECT_EQ(t.code.substr(0, head.size()), head);
  const std::string tail =
      "\n  /* refresh registers */\n"
      "  v_s_r= v_s_rn;\n  v_s_m_boot= v_s_mbootplus;\n\n"
      "}\n\n";
  ASSERT_GE(t.code.size(), tail.size());
  EXPECT_EQ(t.code.substr(t.code.size() - tail.size()), tail);
  // Locals: what the equations use, less inputs, outputs and register values.
  EXPECT_NE(t.code.find("  int v_s_rn;\n"), std::string::npos);
  EXPECT_EQ(t.code.find("  int a;\n"), std::string::npos);
  EXPECT_EQ(t.code.find("  int b;\n"), std::string::npos);
  EXPECT_EQ(t.code.find("  int v_s_r;\n"), std::string::npos);
  EXPECT_NE(t.code.find("  int m_node[" + std::to_string(w->my_bdd_manager()->Bdd_total_size()) + "];\n"
                        "   /* outputs computing */\n"),
            std::string::npos);
  EXPECT_NE(t.code.find("  *b= v_s_r;\n"), std::string::npos);
  EXPECT_NE(t.code.find("   v_s_rn= a;\n"), std::string::npos);
  // d is never emitted: false.
  EXPECT_NE(t.code.find("  *d= !m_node[1];\n"), std::string::npos) << t.code;
}

TEST(CFiles, FileNames) {
  namespace fs = std::filesystem;
  fs::path dir = fs::temp_directory_path() / ("quarn_c_names_" + std::to_string(getpid()));
  fs::create_directories(dir);
  fs::path old = fs::current_path();
  fs::current_path(dir);
  std::string saved = Module::OutputFile;
  struct Case {
    std::string output_file, code, header;
  } cases[] = {{"", "m.c", "m.h"}, {"out", "out.c", "out.h"}, {"x.c", "x.c", "x.h"}, {"a.cfg", "a.cfg", "a.c.h"}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.output_file);
    Module m("m");
    m.setCompilation(nullptr);
    Module::OutputFile = c.output_file;
    m.printC();
    EXPECT_TRUE(fs::exists(c.code));
    EXPECT_TRUE(fs::exists(c.header));
    std::ifstream h(c.header);
    std::string first;
    std::getline(h, first);
    EXPECT_EQ(first, "#ifndef m_H");
  }
  Module::OutputFile = saved;
  fs::current_path(old);
  fs::remove_all(dir);
}

TEST(Frame, TargetFileNames) {
  EXPECT_EQ(target_file_name("m", "", ".vhd"), "m.vhd");
  EXPECT_EQ(target_file_name("m", "x.vhd.old", ".vhd"), "x.vhd.old");
  EXPECT_EQ(target_file_name("m", "x", ".vhd"), "x.vhd");
  std::list<std::string> l = {"a", "b"};
  EXPECT_TRUE(item_in(l, "b"));
  EXPECT_FALSE(item_in(l, "c"));
}

}  // namespace

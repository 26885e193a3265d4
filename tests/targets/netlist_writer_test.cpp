// The node lines of the BLIF and NuSMV writers, and a netlist that can't be written.
#include <gtest/gtest.h>

#include <filesystem>

#include "c_test_util.h"
#include "equations/equationtable.h"

using namespace c_test;

namespace {

std::string id(const bdd& f) { return std::to_string(f.node()->global_id()); }

TEST(NetlistNodes, MultiplexerPerNodeChildrenFirst) {
  bddpp_manager mgr;
  bdd x = mgr.New_var_last("x");
  bdd y = mgr.New_var_last("y");
  bdd f = mgr.Bdd_or(x, mgr.Bdd_not(y));  // x then 1, else !y
  bdd g = mgr.Bdd_and(x, y);              // x then y, else 0: reuses y and the terminal
  const std::string b = "m_node_";
  std::ostringstream blif, smv;
  mgr.Bdd_global_clear_marks();
  mgr.Print_node_for_eval_BLIF("", "", "m_node", blif, f.node());
  mgr.Print_node_for_eval_BLIF("", "", "m_node", blif, g.node());
  EXPECT_EQ(blif.str(), ".names " + b + "1\n1\n\n"
                        ".names y " + b + id(y) + "\n1 1\n\n"
                        ".names x " + b + "1 " + b + id(y) + " " + b + id(f) + "\n11- 1\n0-0 1\n\n"
                        ".names x " + b + id(y) + " " + b + "1 " + b + id(g) + "\n11- 1\n0-0 1\n\n");
  mgr.Bdd_global_clear_marks();
  mgr.Print_node_for_eval_NUSMV("", "", "   ", "node", smv, f.node());
  mgr.Print_node_for_eval_NUSMV("", "", "   ", "node", smv, g.node());
  EXPECT_EQ(smv.str(), "   node_1:= TRUE;\n"
                       "   node_" + id(y) + ":= y;\n"
                       "   node_" + id(f) + ":= x & node_1 | !x & !node_" + id(y) + ";\n"
                       "   node_" + id(g) + ":= x & node_" + id(y) + " | !x & !node_1;\n");
}

TEST(NetlistNodes, PositiveElseEdgeSelectsItsValue) {
  bddpp_manager mgr;
  bdd x = mgr.New_var_last("x");
  bdd y = mgr.New_var_last("y");
  bdd f = mgr.Bdd_or(x, y);  // written with a positive else edge or its complement
  std::ostringstream blif;
  mgr.Bdd_global_clear_marks();
  mgr.Print_node_for_eval_BLIF("", "", "m_node", blif, f.node());
  const char* row = f.node()->else_link_type == 1 ? "0-1 1\n" : "0-0 1\n";
  EXPECT_NE(blif.str().find(row), std::string::npos) << blif.str();
}

// The run ends with the message before the file is made.
TEST(NetlistFailure, NoEquationTableOrWood) {
  const std::string dir = testing::TempDir() + "netlist_failure";
  std::filesystem::create_directories(dir);
  Module::OutputDir = dir;
  Module without_table("nt");
  without_table.setCompilation(nullptr);
  EXPECT_EXIT(without_table.printBLIF(), testing::ExitedWithCode(1),
              "ERROR in Module::BLIF_put\\(\\): no equationtable defined!");
  Module without_wood("nw");
  without_wood.setCompilation(new EquationTable("nw", nullptr));
  EXPECT_EXIT(without_wood.printBLIF(), testing::ExitedWithCode(1),
              "ERROR in Module::BLIF_put\\(\\): no bdd manager defined!");
  EXPECT_FALSE(std::filesystem::exists(dir + "/nt.blif"));
  EXPECT_FALSE(std::filesystem::exists(dir + "/nw.blif"));
  Module::OutputDir = ".";
}

}  // namespace

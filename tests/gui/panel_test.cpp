#include "gui/panel.h"

#include <FL/Fl_Check_Button.H>
#include <FL/Fl_Input.H>
#include <FL/Fl_Output.H>
#include <gtest/gtest.h>

#include <cstdlib>

#include "util/compilation.h"
#include "model/module.h"
#include "gui/winquarnc_interface.h"

namespace {

// The panel's widgets are made without showing the window, so no display is needed.
class Panel : public ::testing::Test {
 protected:
  void SetUp() override {
    setenv("QUARN_BATCH", "1", 1);
    Compilation::MainFlag = false;
    Compilation::SaveFlag = false;
    Compilation::CFlag = false;
    Compilation::KeepWiresFlag = false;
    Module::OutputFile = "";
    Module::OutputDir = ".";
    Module::CompilationFileList = nullptr;
  }
  winquarnc_interface panel;
};

TEST_F(Panel, LoadFileProposesTheBaseName) {
  load_file("/home/u/abro.qn", &panel);
  EXPECT_STREQ(panel.file_field->value(), "/home/u/abro.qn");
  EXPECT_STREQ(panel.main_module_field->value(), "abro");
  EXPECT_TRUE(Compilation::MainFlag);
}

TEST_F(Panel, LoadFileWithoutQnSetsNothingElse) {
  load_file("notes.txt", &panel);
  EXPECT_STREQ(panel.file_field->value(), "notes.txt");
  EXPECT_STREQ(panel.main_module_field->value(), "");
  EXPECT_FALSE(Compilation::MainFlag);
}

TEST_F(Panel, ReadingTheFields) {
  panel.qnc_button->value(1);
  panel.c_button->value(1);
  panel.main_module_field->value("abro");
  panel.output_file_field->value("out");
  panel.output_directory_field->value("");
  panel.compiled_files_field->value(" a.qnc b.qnc");
  PanelRun run;
  readPanel(&panel, run);
  EXPECT_TRUE(Compilation::SaveFlag);
  EXPECT_TRUE(Compilation::CFlag);
  EXPECT_FALSE(Compilation::KeepWiresFlag);
  EXPECT_EQ(run.mainName, "abro");
  EXPECT_EQ(Module::OutputFile, "out");
  EXPECT_EQ(Module::OutputDir, ".") << "an empty field keeps the default";
  ASSERT_NE(Module::CompilationFileList, nullptr);
  // The field is cut at each blank: the blank that "Load qnc file" puts first gives an
  // empty record.
  EXPECT_EQ(*Module::CompilationFileList, (std::list<std::string>{"", "a.qnc", "b.qnc"}));

  panel.output_directory_field->value("gen");
  panel.compiled_files_field->value("");
  readPanel(&panel, run);
  EXPECT_EQ(Module::OutputDir, "gen");
  ASSERT_NE(Module::CompilationFileList, nullptr) << "an empty field is an empty list";
  EXPECT_TRUE(Module::CompilationFileList->empty());
}

TEST_F(Panel, NoDisplayNoPanel) {
  unsetenv("DISPLAY");
  PanelRun run;
  char arg0[] = "quarnc";
  char* argv[] = {arg0, nullptr};
  EXPECT_FALSE(panel_mode(1, argv, run));
}

}  // namespace

#include "gui/panel.h"

#include <FL/Fl.H>
#include <FL/Fl_Button.H>
#include <FL/Fl_Check_Button.H>
#include <FL/Fl_Double_Window.H>
#include <FL/Fl_Input.H>
#include <FL/Fl_Output.H>
#include <FL/forms.H>
#include <unistd.h>

#include <cstdlib>
#include <list>

#include "util/compilation.h"
#include "model/module.h"
#include "gui/formspp.h"
#include "gui/winquarnc_interface.h"
#include "util/Stringpp.h"
#include "util/version.h"

void load_file(const std::string& path, winquarnc_interface* panel) {
  panel->file_field->value(path.c_str());
  if (path.find(".qn") == std::string::npos) {
    fl_show_Smessages("ERROR IN LOADING FILE: " + path);
    return;
  }
  Compilation::MainFlag = true;
  panel->main_module_field->value(mainNameFromPath(path).c_str());
}

void readPanel(winquarnc_interface* panel, PanelRun& run) {
  const struct {
    Fl_Check_Button* button;
    bool* flag;
  } checks[] = {
      {panel->pure_simul_button, &Compilation::PureSimulFlag},
      {panel->valued_simul_button, &Compilation::ValuedSimulFlag},
      {panel->qnc_button, &Compilation::SaveFlag},
      {panel->debug_button, &Compilation::DebugFlag},
      {panel->forget_locals_name_button, &Compilation::ForgetLocalsNameFlag},
      {panel->keep_wires_button, &Compilation::KeepWiresFlag},
      {panel->check_overknowledge_button, &Compilation::CheckOverKnowledgeFlag},
      {panel->quarns_button, &Compilation::QuarnsFlag},
      {panel->nusmv_button, &Compilation::SMVFlag},
      {panel->c_button, &Compilation::CFlag},
      {panel->csharp_button, &Compilation::CSHARPFlag},
      {panel->blif_button, &Compilation::BLIFFlag},
      {panel->vhdl_altera_button, &Compilation::VHDLALTERAFlag},
  };
  for (const auto& c : checks)
    if (c.button->value()) *c.flag = true;
  run.mainName = panel->main_module_field->value();
  Module::OutputFile = panel->output_file_field->value();
  std::string dir = panel->output_directory_field->value();
  if (!dir.empty()) Module::OutputDir = dir;
  auto* files = new std::list<std::string>();
  std::string rest = panel->compiled_files_field->value();
  while (!rest.empty()) files->push_back(next_record(rest, ' ', rest));
  Module::CompilationFileList = files;
}

bool panel_mode(int argc, char** argv, PanelRun& run) {
  if (!quarn_display_reachable()) return false;
  winquarnc_interface panel;
  std::string preload = argc == 2 ? argv[1] : "";
  fl_initialize(&argc, argv, nullptr, nullptr, 0);
  panel.version_field->value(quarn::kVersionText);
  panel.window->show(argc, argv);
  if (!preload.empty()) {
    run.sourceFile = preload;
    load_file(run.sourceFile, &panel);
  }
  for (;;) {
    Fl::check();
    Fl_Widget* w = Fl::readqueue();
    if (w == panel.load_button) {
      const char* f = fl_show_file_selector("quarnc file selection", "", "*.qn", "");
      if (f != nullptr) {
        run.sourceFile = f;
        load_file(run.sourceFile, &panel);
      } else {
        fl_show_message("", "FILE NOT FOUND!", "");
      }
    } else if (w == panel.load_compiled_button) {
      const char* f = fl_show_file_selector("qnc file selection", "", "*.qnc", "");
      if (f != nullptr) {
        std::string files = std::string(panel.compiled_files_field->value()) + " " + f;
        panel.compiled_files_field->value(files.c_str());
      }
    } else if (w == panel.compile_button) {
      if (run.sourceFile.empty()) {
        fl_show_message("", "FILE NOT SELECTED!", "");
      } else {
        readPanel(&panel, run);
        break;
      }
    } else if (w == panel.quit_button || !panel.window->shown()) {
      // Closing the window is a quit too: polling a hidden panel would never end.
      std::exit(0);
    }
    usleep(1000);
  }
  panel.window->hide();
  Fl::check();
  return true;
}

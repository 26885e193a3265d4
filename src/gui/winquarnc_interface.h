// The front panel: one window with the fields and check buttons of a run.
// A plain record of widgets; the program reads them directly.
#pragma once

class Fl_Double_Window;
class Fl_Button;
class Fl_Output;
class Fl_Input;
class Fl_Check_Button;

class winquarnc_interface {
 public:
  winquarnc_interface();

  Fl_Double_Window* window;
  Fl_Button* load_button;
  Fl_Output* file_field;
  Fl_Output* version_field;
  Fl_Input* main_module_field;
  Fl_Input* output_file_field;
  Fl_Input* output_directory_field;
  Fl_Button* load_compiled_button;
  Fl_Input* compiled_files_field;
  Fl_Button* compile_button;
  Fl_Button* quit_button;

  // Options.
  Fl_Check_Button* pure_simul_button;
  Fl_Check_Button* valued_simul_button;
  Fl_Check_Button* debug_button;
  Fl_Check_Button* forget_locals_name_button;
  Fl_Check_Button* keep_wires_button;
  Fl_Check_Button* check_overknowledge_button;
  // Generations.
  Fl_Check_Button* qnc_button;
  Fl_Check_Button* quarns_button;
  Fl_Check_Button* c_button;
  Fl_Check_Button* csharp_button;
  Fl_Check_Button* blif_button;
  Fl_Check_Button* nusmv_button;
  Fl_Check_Button* vhdl_altera_button;
};

#include "gui/winquarnc_interface.h"

#include <FL/Fl_Box.H>
#include <FL/Fl_Button.H>
#include <FL/Fl_Check_Button.H>
#include <FL/Fl_Double_Window.H>
#include <FL/Fl_Input.H>
#include <FL/Fl_Output.H>

namespace {

Fl_Button* button(int x, int y, int w, int h, const char* label) {
  Fl_Button* b = new Fl_Button(x, y, w, h, label);
  b->labelfont(1);
  return b;
}

Fl_Output* output(int x, int y, int w, int h, const char* label) {
  Fl_Output* o = new Fl_Output(x, y, w, h, label);
  o->selection_color(50);
  o->labelfont(1);
  return o;
}

// An input with its label in a box on its left.
Fl_Input* labelledInput(int y, const char* label) {
  Fl_Box* b = new Fl_Box(15, y, 130, 35, label);
  b->labelfont(1);
  Fl_Input* i = new Fl_Input(160, y, 385, 35);
  i->selection_color(52);
  i->labelfont(1);
  return i;
}

Fl_Check_Button* check(int x, int y, int w, int h, const char* label) {
  Fl_Check_Button* c = new Fl_Check_Button(x, y, w, h, label);
  c->box(static_cast<Fl_Boxtype>(2));
  c->down_box(static_cast<Fl_Boxtype>(3));
  return c;
}

void frame(int x, int y, int w, int h, int hx, int hy, int hw, int hh, const char* heading) {
  Fl_Box* f = new Fl_Box(x, y, w, h);
  f->box(static_cast<Fl_Boxtype>(9));
  Fl_Box* t = new Fl_Box(hx, hy, hw, hh, heading);
  t->labelfont(1);
}

}  // namespace

winquarnc_interface::winquarnc_interface() {
  window = new Fl_Double_Window(565, 655, "winquarnc");
  window->user_data(this);

  load_button = button(15, 40, 130, 35, "Load");
  file_field = output(160, 40, 385, 35, nullptr);
  version_field = output(220, 10, 160, 25, "quarnc version");
  version_field->box(FL_NO_BOX);
  main_module_field = labelledInput(80, "Main module");
  output_file_field = labelledInput(120, "Output file");
  output_directory_field = labelledInput(165, "Output directory");
  load_compiled_button = button(15, 210, 130, 35, "Load qnc file");
  compiled_files_field = new Fl_Input(160, 210, 385, 35);
  compiled_files_field->selection_color(52);

  frame(15, 275, 245, 255, 27, 280, 223, 20, "Options");
  frame(298, 275, 247, 295, 310, 280, 225, 20, "Generations");

  pure_simul_button = check(27, 305, 223, 30, "Start pure simulator");
  valued_simul_button = check(27, 340, 223, 30, "Start valued simulator Quarns");
  debug_button = check(26, 377, 224, 30, "Debug");
  forget_locals_name_button = check(26, 414, 224, 30, "Forget locals name");
  keep_wires_button = check(26, 451, 224, 30, "Keep all locals");
  check_overknowledge_button = check(26, 488, 224, 30, "check Overknowledge");

  qnc_button = check(311, 305, 224, 30, "QNC");
  quarns_button = check(311, 341, 224, 29, "Quarns simulator");
  c_button = check(311, 377, 224, 30, "c");
  csharp_button = check(310, 414, 225, 30, "CSharp");
  blif_button = check(310, 451, 225, 30, "blif");
  nusmv_button = check(310, 487, 225, 30, "nusmv");
  vhdl_altera_button = check(310, 524, 225, 32, "vhdl altera");

  compile_button = button(75, 614, 130, 30, "Compile && Quit");
  quit_button = button(352, 614, 130, 30, "Quit");

  window->end();
}

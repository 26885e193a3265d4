#include "gui/formspp.h"

#include <FL/Fl_Input_.H>
#include <FL/forms.H>
#include <dlfcn.h>

#include <cstdlib>
#include <fstream>

#include "util/Stringpp.h"

// The X library is asked through dlopen so that a batch build links nothing more
// than the Forms layer; a missing library means no display.
static bool probe_display() {
  const char* name = std::getenv("DISPLAY");
  if (name == nullptr || *name == '\0') return false;
  void* x11 = dlopen("libX11.so.6", RTLD_LAZY | RTLD_LOCAL);
  if (x11 == nullptr) return false;
  using OpenFn = void* (*)(const char*);
  using CloseFn = int (*)(void*);
  auto open = reinterpret_cast<OpenFn>(dlsym(x11, "XOpenDisplay"));
  auto close = reinterpret_cast<CloseFn>(dlsym(x11, "XCloseDisplay"));
  bool ok = false;
  if (open != nullptr && close != nullptr) {
    void* d = open(name);
    if (d != nullptr) {
      ok = true;
      close(d);
    }
  }
  // The library stays loaded: FLTK uses the same one.
  return ok;
}

bool quarn_display_reachable() {
  const char* batch = std::getenv("QUARN_BATCH");
  if (batch != nullptr) return false;
  static const bool reachable = probe_display();
  return reachable;
}

void fl_show_Smessages(const std::string& s) {
  if (!quarn_display_reachable()) return;
  fl_show_message("", s.c_str(), "");
}

void fl_show_Salert(const std::string& s) {
  if (!quarn_display_reachable()) return;
  fl_show_alert("", s.c_str(), "", 0);
}

void fl_show_Salert(const std::string& a, const std::string& b, const std::string& c) {
  if (!quarn_display_reachable()) return;
  fl_show_alert(a.c_str(), b.c_str(), c.c_str(), 0);
}

void fl_show_Sbigmessages(const std::string& text, int width) {
  if (!quarn_display_reachable()) return;
  int w = 6 * width + 10;
  int h = 570;
  // Forms coordinates count y from the bottom: the buttons stand under the browser.
  FL_FORM* form = fl_bgn_form(FL_UP_BOX, w, h);
  Fl_Widget* browser = fl_add_browser(FL_NORMAL_BROWSER, 5, 40, w - 10, h - 45, "");
  Fl_Widget* quit = fl_add_button(FL_NORMAL_BUTTON, w - 85, 5, 80, 30, "Quit");
  Fl_Widget* save = fl_add_button(FL_NORMAL_BUTTON, 5, 5, 80, 30, "save");
  fl_end_form();
  string rest = text;
  while (!rest.empty()) {
    string line = next_record(rest, '\n', rest);
    fl_add_browser_line(static_cast<Fl_Browser*>(browser), line.c_str());
  }
  fl_show_form(form, FL_PLACE_MOUSE, FL_TRANSIENT, "Messages");
  for (;;) {
    Fl_Widget* o = fl_do_forms();
    if (o == quit || o == nullptr) break;
    if (o == save) {
      char* file = fl_show_file_selector("save message", "", "*.txt", "");
      if (file != nullptr) {
        std::ofstream out(file);
        out << text;
      }
    }
  }
  fl_hide_form(form);
  fl_free_form(form);
}

void fl_set_object_Slabel(Fl_Widget* w, const std::string& s, int max) {
  if (w == nullptr) return;
  w->copy_label(my_before(s, max).c_str());
  w->redraw();
}

void fl_set_Sinput(Fl_Widget* w, const std::string& s) {
  auto* input = dynamic_cast<Fl_Input_*>(w);
  if (input != nullptr) input->value(s.c_str());
}

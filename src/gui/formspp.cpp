#include "gui/formspp.h"

#include <FL/Fl.H>
#include <FL/Fl_Browser.H>
#include <FL/Fl_Button.H>
#include <FL/Fl_Check_Browser.H>
#include <FL/Fl_Window.H>
#include <FL/Fl_Input_.H>
#include <FL/forms.H>
#include <FL/x.H>
#include <dlfcn.h>

#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>

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

namespace {

// A text picture of a window and its widgets: kind, label, geometry, and the value of
// inputs, buttons and browsers (check browsers: each item and whether it is ticked), and
// the colour of an unlabelled flat box.
void describe(std::ostream& out, Fl_Widget* w, int depth) {
  std::string indent(2 * depth, ' ');
  const char* label = w->label() != nullptr ? w->label() : "";
  if (depth == 0) {
    out << "window \"" << label << "\" " << w->w() << "x" << w->h() << " xid "
        << static_cast<unsigned long>(fl_xid(static_cast<Fl_Window*>(w))) << "\n";
  } else {
    auto* input = dynamic_cast<Fl_Input_*>(w);
    auto* button = dynamic_cast<Fl_Button*>(w);
    auto* browser = dynamic_cast<Fl_Browser*>(w);
    auto* checks = dynamic_cast<Fl_Check_Browser*>(w);
    out << indent
        << (input ? "input" : button ? "button" : browser ? "browser" : checks ? "checks" : "widget") << " \""
        << label << "\" " << w->x() << "," << w->y() << " " << w->w() << "x" << w->h();
    if (input != nullptr) out << " value \"" << input->value() << "\"";
    if (button != nullptr) out << " value " << static_cast<int>(button->value());
    if (browser != nullptr) {
      out << " lines " << browser->size();
      if (browser->size() > 0) out << " first \"" << browser->text(1) << "\"";
    }
    if (checks != nullptr)
      for (int i = 1; i <= checks->nitems(); i++)
        out << " " << (checks->checked(i) ? "[x]" : "[ ]") << checks->text(i);
    if (w->box() == FL_FLAT_BOX && *label == '\0' && w->as_group() == nullptr)
      out << " colour " << static_cast<unsigned>(w->color());
    if (!w->visible()) out << " hidden";
    if (!w->active_r()) out << " inactive";
    out << "\n";
  }
  if (auto* g = w->as_group())
    for (int i = 0; i < g->children(); i++) describe(out, g->child(i), depth + 1);
}

// With QUARN_WIDGET_DUMP naming a file, every shown window is described there when it
// appears and again whenever its description changes: tests read the labels and values
// of the windows that a run opens.
std::map<Fl_Window*, std::string>& lastDescriptions() {
  static std::map<Fl_Window*, std::string> last;
  return last;
}

void dumpWindows(void*) {
  const char* path = std::getenv("QUARN_WIDGET_DUMP");
  if (path == nullptr) return;
  std::map<Fl_Window*, std::string> now;
  for (Fl_Window* w = Fl::first_window(); w != nullptr; w = Fl::next_window(w)) {
    if (!w->shown() || !w->visible()) continue;
    std::ostringstream s;
    describe(s, w, 0);
    now[w] = s.str();
    auto it = lastDescriptions().find(w);
    if (it == lastDescriptions().end() || it->second != now[w]) {
      std::ofstream out(path, std::ios::app);
      out << now[w] << "end window\n";
    }
  }
  lastDescriptions() = std::move(now);
}

}  // namespace

bool quarn_display_reachable() {
  const char* batch = std::getenv("QUARN_BATCH");
  if (batch != nullptr) return false;
  static const bool reachable = probe_display();
  static bool watching = false;
  if (reachable && !watching && std::getenv("QUARN_WIDGET_DUMP") != nullptr) {
    watching = true;
    Fl::add_check(dumpWindows);
  }
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

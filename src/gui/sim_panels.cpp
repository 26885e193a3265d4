#include "gui/sim_panels.h"

#include <FL/Enumerations.H>
#include <FL/Fl.H>
#include <FL/Fl_Box.H>
#include <FL/Fl_Browser.H>
#include <FL/Fl_Button.H>
#include <FL/Fl_Check_Browser.H>
#include <FL/Fl_Double_Window.H>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <iostream>

namespace {

int panelTimeout() {
  const char* env = std::getenv("QUARN_PANEL_TIMEOUT");
  int v = env ? std::atoi(env) : 0;
  return v > 0 ? v : 600;
}

Fl_Button* smallButton(int x, int y, const char* label) {
  Fl_Button* b = new Fl_Button(x, y, 60, 20, label);
  b->labelfont(8);
  b->labelsize(10);
  b->when(FL_WHEN_RELEASE);
  return b;
}

}  // namespace

OFD_simulator_input::OFD_simulator_input(int height) {
  form = new Fl_Double_Window(400, height, "Inputs Pannel");
  build(form, 0, height);
  form->end();
  form->show();
}

OFD_simulator_input::OFD_simulator_input(Fl_Window* window, int x, int height) {
  form = window;
  window->begin();
  build(window, x, height);
  window->end();
}

void OFD_simulator_input::build(Fl_Window*, int x, int height) {
  Fl_Box* l1 = new Fl_Box(x + 10, 10, 180, 20, "Signal");
  l1->align(FL_ALIGN_INSIDE | FL_ALIGN_LEFT);
  Fl_Box* l2 = new Fl_Box(x + 210, 10, 180, 20, "Sticky");
  l2->align(FL_ALIGN_INSIDE | FL_ALIGN_LEFT);
  signals = new Fl_Check_Browser(x + 10, 30, 180, height - 70);
  sticky = new Fl_Check_Browser(x + 210, 30, 180, height - 70);
  initButton = smallButton(x + 10, height - 30, "INIT");
  goButton = smallButton(x + 180, height - 30, "GO");
  quitButton = smallButton(x + 330, height - 30, "QUIT");
}

void OFD_simulator_input::add(const std::string& name) {
  names.push_back(name);
  number++;
  signals->add(names.back().c_str());
  sticky->add(names.back().c_str());
}

void OFD_simulator_input::check(int* init, int* quit, int* values) {
  auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(panelTimeout());
  for (;;) {
    Fl::check();
    Fl_Widget* w = Fl::readqueue();
    if (w == quitButton) {
      *quit = 1;
      return;
    }
    if (w == initButton) {
      *quit = 0;
      signals->check_none();
      *init = 1;
      return;
    }
    if (w == goButton) {
      *quit = 0;
      *init = 0;
      for (int i = 1; i <= number; i++) {
        values[i - 1] = signals->checked(i);
        if (!sticky->checked(i)) signals->checked(i, 0);
      }
      return;
    }
    if (!form->shown() || std::chrono::steady_clock::now() >= deadline) {
      if (form->shown())
        std::cerr << "Inputs Pannel: no button pressed within " << panelTimeout() << " seconds" << std::endl;
      timedOut = form->shown();
      *quit = 1;
      return;
    }
    usleep(1000);
  }
}

void OFD_simulator_input::eval(int* quit, int* values) {
  Fl::check();
  Fl_Widget* w = Fl::readqueue();
  if (w == quitButton) {
    *quit = 1;
  } else {
    *quit = 0;
    for (int i = 1; i <= number; i++) signals->checked(i, values[i - 1]);
  }
  usleep(1000);
}

OFD_simulator_output::OFD_simulator_output(int height, const char* title) {
  form = new Fl_Double_Window(240, height, title);
  build(form, 0, height, title);
  form->end();
  form->show();
}

OFD_simulator_output::OFD_simulator_output(Fl_Window* window, int x, int height, const char* title) {
  form = window;
  window->begin();
  build(window, x, height, title);
  window->end();
}

void OFD_simulator_output::build(Fl_Window*, int x, int height, const char*) {
  plus = new Fl_Button(x + 70, height - 30, 20, 20, "+");
  moins = new Fl_Button(x + 30, height - 30, 20, 20, "-");
  plus->callback([](Fl_Widget*, void* p) { static_cast<OFD_simulator_output*>(p)->next_page(); }, this);
  moins->callback([](Fl_Widget*, void* p) { static_cast<OFD_simulator_output*>(p)->previous_page(); }, this);
  browser = new Fl_Browser(x + 20, 30, 198, height - 68);
  linesPerPage = (height - 85) / 16;
  if (linesPerPage < 1) linesPerPage = 1;
  for (int i = 0; i < linesPerPage; i++) {
    Fl_Box* b = new Fl_Box(FL_FLAT_BOX, x + 7, 16 * i + 34, 10, 12, nullptr);
    b->hide();
    boxes.push_back(b);
  }
}

int OFD_simulator_output::colourOf(int state) const {
  if (state == 1) return FL_BLUE;
  if (state == 0) return FL_YELLOW;
  return FL_RED;
}

void OFD_simulator_output::add(const std::string& name) {
  if (number >= Capacity) return;
  names.push_back(name);
  states.push_back(2);
  number++;
  showPage((number - 1) / linesPerPage);
}

void OFD_simulator_output::showPage(int page) {
  currentPage = page;
  for (Fl_Box* b : boxes) b->hide();
  browser->clear();
  for (int line = 0; line < linesPerPage; line++) {
    int i = page * linesPerPage + line;
    if (i >= number) break;
    browser->add(names[i].c_str());
    boxes[line]->color(colourOf(states[i]), FL_BLACK);
    boxes[line]->show();
    boxes[line]->redraw();
  }
}

void OFD_simulator_output::next_page() {
  if (currentPage < (number - 1) / linesPerPage) currentPage++;
  showPage(currentPage);
}

void OFD_simulator_output::previous_page() {
  if (currentPage > 0) currentPage--;
  showPage(currentPage);
}

void OFD_simulator_output::eval(int* values) {
  for (int i = 0; i < number; i++) states[i] = values[i];
  for (int line = 0; line < linesPerPage; line++) {
    int i = currentPage * linesPerPage + line;
    if (i >= number) break;
    Fl_Color c = colourOf(states[i]);
    if (boxes[line]->color() != c) {
      boxes[line]->color(c, FL_BLACK);
      boxes[line]->redraw();
    }
  }
}

int OFD_simulator_output::box_colour(int line) const {
  if (line < 0 || line >= linesPerPage || !boxes[line]->visible()) return -1;
  return boxes[line]->color();
}

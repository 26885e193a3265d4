// The two small windows that drive a simulation by hand: input signals to set, with
// "sticky" marks for inputs that stay set, and output signals shown by coloured boxes.
#pragma once

#include <string>
#include <vector>

class Fl_Window;
class Fl_Button;
class Fl_Check_Browser;
class Fl_Browser;
class Fl_Box;

class OFD_simulator_input {
 public:
  explicit OFD_simulator_input(int height);
  OFD_simulator_input(Fl_Window* window, int x, int height);

  void add(const std::string& name);
  // Blocks until a button arrives. A wait longer than QUARN_PANEL_TIMEOUT seconds
  // (default 600) sets quit and timed_out.
  void check(int* init, int* quit, int* values);
  void eval(int* quit, int* values);
  bool timed_out() const { return timedOut; }

  Fl_Window* form;
  Fl_Button* quitButton;
  Fl_Button* goButton;
  Fl_Button* initButton;
  Fl_Check_Browser* signals;
  Fl_Check_Browser* sticky;
  std::vector<std::string> names;
  int number = 0;

 private:
  void build(Fl_Window* window, int x, int height);
  bool timedOut = false;
};

class OFD_simulator_output {
 public:
  static const int Capacity = 32768;
  OFD_simulator_output(int height, const char* title);
  OFD_simulator_output(Fl_Window* window, int x, int height, const char* title);

  void add(const std::string& name);
  void eval(int* values);
  void next_page();
  void previous_page();
  void check() {}
  Fl_Button* my_plus_button() { return plus; }
  Fl_Button* my_moins_button() { return moins; }
  int page() const { return currentPage; }
  int lines_per_page() const { return linesPerPage; }
  // Colour index of the box of line i on the page shown; -1 when hidden.
  int box_colour(int line) const;

  Fl_Window* form;
  std::vector<std::string> names;
  std::vector<int> states;
  int number = 0;

 private:
  void build(Fl_Window* window, int x, int height, const char* title);
  void showPage(int page);
  int colourOf(int state) const;
  int currentPage = 0;
  int linesPerPage = 1;
  Fl_Browser* browser;
  Fl_Button* plus;
  Fl_Button* moins;
  std::vector<Fl_Box*> boxes;
};

// The report display (a modal reader of long reports, page by page, with PDF and text
// output), the wait form and the drawing sheet.
#pragma once

#include <list>
#include <memory>
#include <string>
#include <vector>

#include "gui/afficheur_filtres.h"

class Fl_Window;
class Fl_Double_Window;
class Fl_Browser;
class Fl_Box;
class Fl_Button;
class Fl_Int_Input;

class OFD_afficheur {
 public:
  // Builds the hidden form of 920 by 700; english chooses the labels' language.
  OFD_afficheur(Fl_Window* parent, int english);
  ~OFD_afficheur();
  OFD_afficheur(const OFD_afficheur&) = delete;
  OFD_afficheur& operator=(const OFD_afficheur&) = delete;

  // The modal display: returns when the user cancels or closes the form. A null list
  // only reactivates the parent. Without a display the report goes to the error stream.
  void activation(std::string* lines, int count, std::string& title, std::string& viewer);
  void activation(std::list<std::string>* lines, std::string& title, std::string& viewer);

  void visu_page();
  void page_precedente();
  void page_suivante();
  // Pages are counted from 0; a number outside 0 .. nb_pages() is ignored.
  void page_numero(int page);
  // Writes tmp.pdf and, with a viewer command, shows it and removes it.
  void fichier_pdf();
  void fichier_texte();
  // Writes tmp.ps, converts it with "ps2pdf" and shows the result with "acroread".
  void imprime_tmp_ps();
  void imprime_tmp_pdf();

  // The first steps of activation without showing anything: filters, page 0, title.
  void charge(std::vector<std::string> lines, const std::string& title,
              const std::string& viewer);

  int page() const { return page_; }
  int nb_pages() const;
  Fl_Double_Window* form() const { return form_; }
  Fl_Browser* browser() const { return browser_; }
  // The lines of the current page as the browser shows them.
  const std::vector<std::string>& browser_lines() const { return lignes_; }
  Fl_Box* page_text() const { return page_text_; }
  Fl_Int_Input* page_input() const { return page_input_; }

 private:
  // A message in a box (when there is a display) and on the error stream.
  void message(const std::string& text);
  // Runs the poll until cancel or close.
  void boucle();

  Fl_Window* parent_;
  int english_;
  Fl_Double_Window* form_ = nullptr;
  Fl_Browser* browser_ = nullptr;
  Fl_Box* title_text_ = nullptr;
  Fl_Box* page_text_ = nullptr;
  Fl_Button* next_button_ = nullptr;
  Fl_Button* previous_button_ = nullptr;
  Fl_Button* cancel_button_ = nullptr;
  Fl_Button* pdf_button_ = nullptr;
  Fl_Button* text_button_ = nullptr;
  Fl_Int_Input* page_input_ = nullptr;
  Fl_Button* go_button_ = nullptr;

  int page_ = 0;
  std::vector<std::string> lignes_;
  std::string title_;
  std::string viewer_;
  std::unique_ptr<OFD_afficheur_filtre_affichage> affichage_;
  std::unique_ptr<OFD_afficheur_filtre_impression> impression_;
  std::unique_ptr<OFD_afficheur_filtre_texte> texte_;
};

// A small form "travail en cours ..." that shows a message while work goes on; it is
// hidden when destroyed. Without a display the message goes to the error stream.
class OFD_wait_form {
 public:
  explicit OFD_wait_form(std::string message);
  ~OFD_wait_form();
  OFD_wait_form(const OFD_wait_form&) = delete;
  OFD_wait_form& operator=(const OFD_wait_form&) = delete;

 private:
  Fl_Double_Window* form_ = nullptr;
  std::string message_;
};

// A drawing sheet: every operation clips to the sheet's rectangle (when it has one) and
// draws in the colour it is given. Call the operations from a widget's draw().
class OFL_vision_sheet {
 public:
  void define(int x, int y, int w, int h, int colour);
  void resize(int x, int y, int w, int h);

  void ofl_line(int x1, int y1, int x2, int y2, int colour);
  void ofl_dash_line(int x1, int y1, int x2, int y2, int colour);
  // Three segments from (x1, y1) to (x2, y2), bent like a lightning bolt.
  void ofl_break_line(int x1, int y1, int x2, int y2, int colour);
  void ofl_rect(int x, int y, int w, int h, int colour);
  void ofl_circ(int x, int y, int r, int colour);
  void ofl_rectf(int x, int y, int w, int h, int colour);
  void ofl_circf(int x, int y, int r, int colour);
  void ofl_rectbound(int x, int y, int w, int h, int fill, int border);
  void ofl_circbound(int x, int y, int r, int fill, int border);
  // A line with a filled head at (x2, y2), drawn as a pie from 160 to 200 degrees.
  void ofl_arrowbound(int x1, int y1, int x2, int y2, int size, int colour);
  void ofl_drw_String(const std::string& s, int x, int y, int colour);
  void ofl_drw_text(const std::string& s, int x, int y, int w, int h, int colour);
  // A line whose head has the given half-angle (degrees) and length.
  void ofl_drw_arrow_line(int x1, int y1, int x2, int y2, double angle, int length, int colour);

  // The two inner points of ofl_break_line.
  static void break_points(int x1, int y1, int x2, int y2, int* xa, int* ya, int* xb, int* yb);

  int x0() const { return x0_; }
  int y0() const { return y0_; }
  int x1() const { return x1_; }
  int y1() const { return y1_; }
  int colour() const { return colour_; }

 private:
  bool push();
  void pop(bool pushed);

  int x0_ = 0, y0_ = 0, x1_ = 0, y1_ = 0;
  int colour_ = 56;
};

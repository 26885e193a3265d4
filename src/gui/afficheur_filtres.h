// The line language of the report display and its three readers: screen, print
// (PostScript and PDF) and plain text. Pure text work: no window is involved.
//
// A line is a text line ("#" separates its columns), a column definition ("#C..."),
// a page mark ("#P...") or a rule ("#T..."). Text lines and rules take a line on the
// page; a page holds 76 of them.
#pragma once

#include <list>
#include <ostream>
#include <string>
#include <vector>

// Line types of typeligne.
enum { LIGNE_TEXTE = 0, LIGNE_COLONNES = 1, LIGNE_PAGE = 2, LIGNE_TRAIT = 3 };

constexpr int kReportLinesPerPage = 76;
constexpr int kReportMaxColumns = 15;

int report_line_type(const std::string& line);

class OFD_afficheur_filtre_affichage {
 public:
  explicit OFD_afficheur_filtre_affichage(std::vector<std::string> lines);
  virtual ~OFD_afficheur_filtre_affichage() = default;

  // The screen text of one page (from 0): its lines joined by line feeds.
  std::string visu_page(int page);
  int typeligne(const std::string& line) const { return report_line_type(line); }
  // The screen form of one line; a column definition is read and gives "".
  std::string visu_ligne(const std::string& line);
  // The number of the last page, from 0.
  int nb_pages() const;

  int nb_lignes() const { return static_cast<int>(lines_.size()); }
  const std::vector<int>& largeurs() const { return widths_; }
  const std::vector<bool>& traits() const { return bars_; }

 protected:
  // Reads "#C... w1 Tw2 ..." into the column widths and left-bar flags.
  void lire_colonnes(const std::string& definition);
  void reset_colonnes();
  int largeur_totale() const;
  // The x offset of a column, in characters.
  int debut_colonne(int column) const;

  std::vector<std::string> lines_;
  std::vector<int> widths_;
  std::vector<bool> bars_;
};

// PostScript and PDF. One character is 5 units wide, one line 10 high; line n of a
// page stands at y = origin - 10 n, the origin being 800 for PostScript, 780 for PDF.
class OFD_afficheur_filtre_impression : public OFD_afficheur_filtre_affichage {
 public:
  explicit OFD_afficheur_filtre_impression(std::vector<std::string> lines);

  void imprime_postscript(std::ostream& out);
  void begin_postscript(std::ostream& out);
  void next_page_postscript(std::ostream& out);
  void end_postscript(std::ostream& out);
  void postscript(std::ostream& out, const std::string& line);

  void imprime_pdf(std::ostream& out);
  void begin_pdf(std::ostream& out);
  void next_page_pdf(std::ostream& out);
  void end_pdf(std::ostream& out);
  void pdf(std::ostream& out, const std::string& line);

 private:
  enum class Format { PostScript, Pdf };

  void start(Format f);
  void ligne(std::ostream& out, const std::string& line);
  void texte(std::ostream& out, int x, int y, const std::string& text);
  void trait(std::ostream& out, int x1, int y1, int x2, int y2);
  // Draws the vertical lines of the current columns from where they began.
  void ferme_traits(std::ostream& out);
  // PDF: writes the page just finished as a page object and its content stream.
  void ecrit_page_pdf(std::ostream& out);

  Format format_ = Format::PostScript;
  int y_origin_ = 800;
  int x_origin_ = 40;
  int current_ = 0;    // lines already on the page
  int bar_start_ = 0;  // the line at which the vertical lines began
  int page_ = 0;
  // PDF only: the content of the current page, and the byte offset of each object.
  std::string content_;
  std::vector<std::pair<int, long>> offsets_;
};

class OFD_afficheur_filtre_texte {
 public:
  explicit OFD_afficheur_filtre_texte(std::vector<std::string> lines);

  int typeligne(const std::string& line) const { return report_line_type(line); }
  // Text lines unchanged; column definitions, page marks and rules as 55 dashes.
  void imprime(std::ostream& out);
  void imprime_ligne(std::ostream& out, const std::string& line);

 private:
  std::vector<std::string> lines_;
};

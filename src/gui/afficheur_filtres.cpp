#include "gui/afficheur_filtres.h"

#include <cstdio>
#include <utility>

int report_line_type(const std::string& line) {
  if (line.size() < 2 || line[0] != '#') return LIGNE_TEXTE;
  switch (line[1]) {
    case 'T':
      return LIGNE_TRAIT;
    case 'C':
      return LIGNE_COLONNES;
    case 'P':
      return LIGNE_PAGE;
    default:
      return LIGNE_TEXTE;
  }
}

namespace {

// The fields of a text line, cut at each "#".
std::vector<std::string> fields(const std::string& line) {
  std::vector<std::string> out(1);
  for (char c : line) {
    if (c == '#')
      out.emplace_back();
    else
      out.back() += c;
  }
  return out;
}

bool takesALine(int type) { return type == LIGNE_TEXTE || type == LIGNE_TRAIT; }

// A string literal of PostScript and PDF: parentheses and backslashes are escaped, so a
// cut line with one parenthesis alone still gives a well-formed file.
std::string literal(const std::string& text) {
  std::string out = "(";
  for (char c : text) {
    if (c == '(' || c == ')' || c == '\\') out += '\\';
    out += c;
  }
  return out + ")";
}

}  // namespace

// --- screen ---

OFD_afficheur_filtre_affichage::OFD_afficheur_filtre_affichage(std::vector<std::string> lines)
    : lines_(std::move(lines)) {}

void OFD_afficheur_filtre_affichage::reset_colonnes() {
  widths_.clear();
  bars_.clear();
}

void OFD_afficheur_filtre_affichage::lire_colonnes(const std::string& definition) {
  reset_colonnes();
  size_t blank = definition.find(' ');
  if (blank == std::string::npos) return;
  int width = -1;  // -1: no number being read
  bool bar = false;
  auto endColumn = [&] {
    if (width < 0) return;
    if (static_cast<int>(widths_.size()) < kReportMaxColumns) {
      widths_.push_back(width);
      bars_.push_back(bar);
    }
    width = -1;
    bar = false;
  };
  for (size_t i = blank + 1; i < definition.size(); i++) {
    char c = definition[i];
    if (c >= '0' && c <= '9') {
      if (width < 0) width = 0;
      if (width < 100000) width = width * 10 + (c - '0');
    } else if (c == 'T') {
      endColumn();
      bar = true;
    } else if (c == ' ') {
      endColumn();
    }
  }
  endColumn();  // a number at the end of the line counts too
}

int OFD_afficheur_filtre_affichage::largeur_totale() const {
  return debut_colonne(static_cast<int>(widths_.size()));
}

int OFD_afficheur_filtre_affichage::debut_colonne(int column) const {
  int x = 0;
  for (int i = 0; i < column; i++) x += widths_[i];
  return x;
}

std::string OFD_afficheur_filtre_affichage::visu_ligne(const std::string& line) {
  switch (typeligne(line)) {
    case LIGNE_COLONNES:
      lire_colonnes(line);
      return "";
    case LIGNE_PAGE:
      return "";
    case LIGNE_TRAIT:
      return "@f@S14 " + std::string(largeur_totale(), '-');
    default:
      break;
  }
  // Without a column definition the line shows as it stands.
  if (widths_.empty()) return "@f@S14 " + line;
  std::vector<std::string> f = fields(line);
  std::string out = "@f@S14 ";
  for (size_t i = 0; i < widths_.size(); i++) {
    std::string text = i < f.size() ? f[i] : "";
    size_t w = widths_[i];
    text.resize(w, ' ');
    out += text;
  }
  return out;
}

std::string OFD_afficheur_filtre_affichage::visu_page(int page) {
  reset_colonnes();
  std::string out;
  bool first = true;
  int current = 0, onPage = 0;
  for (const std::string& line : lines_) {
    int type = typeligne(line);
    if (type == LIGNE_COLONNES) {
      lire_colonnes(line);
      continue;
    }
    if (!takesALine(type)) continue;
    if (onPage == kReportLinesPerPage) {
      current++;
      onPage = 0;
    }
    onPage++;
    if (current > page) break;
    if (current < page) continue;
    if (!first) out += '\n';
    out += visu_ligne(line);
    first = false;
  }
  return out;
}

int OFD_afficheur_filtre_affichage::nb_pages() const {
  int count = 0;
  for (const std::string& line : lines_)
    if (takesALine(typeligne(line))) count++;
  return count == 0 ? 0 : (count - 1) / kReportLinesPerPage;
}

// --- print ---

OFD_afficheur_filtre_impression::OFD_afficheur_filtre_impression(std::vector<std::string> lines)
    : OFD_afficheur_filtre_affichage(std::move(lines)) {}

void OFD_afficheur_filtre_impression::start(Format f) {
  format_ = f;
  y_origin_ = f == Format::PostScript ? 800 : 780;
  x_origin_ = 40;
  current_ = 0;
  bar_start_ = 0;
  page_ = 0;
  content_.clear();
  offsets_.clear();
  reset_colonnes();
}

void OFD_afficheur_filtre_impression::texte(std::ostream& out, int x, int y,
                                            const std::string& text) {
  if (format_ == Format::PostScript) {
    out << x << " " << y << " moveto " << literal(text) << " show\n";
    return;
  }
  content_ += "   BT\n     /F1 7 Tf\n     " + std::to_string(x) + " " + std::to_string(y) +
              " Td\n" + literal(text) + " Tj\n   ET\n";
}

void OFD_afficheur_filtre_impression::trait(std::ostream& out, int x1, int y1, int x2, int y2) {
  if (format_ == Format::PostScript) {
    out << "newpath " << x1 << " " << y1 << " moveto " << x2 << " " << y2 << " lineto stroke \n";
    return;
  }
  content_ += "    " + std::to_string(x1) + " " + std::to_string(y1) + " m\n    " +
              std::to_string(x2) + " " + std::to_string(y2) + " l\n       S\n";
}

// Line k of a page spans from y(k) - 2 to y(k) + 8: a vertical line runs from the top
// of the first line of its columns to the bottom of the last one.
void OFD_afficheur_filtre_impression::ferme_traits(std::ostream& out) {
  if (current_ > bar_start_) {
    int top = y_origin_ - 10 * bar_start_ - 2;
    int bottom = y_origin_ - 10 * current_ - 2;
    for (size_t i = 0; i < widths_.size(); i++) {
      if (!bars_[i]) continue;
      int x = x_origin_ + 5 * debut_colonne(static_cast<int>(i)) - 2;
      trait(out, x, top, x, bottom);
    }
  }
  bar_start_ = current_;
}

void OFD_afficheur_filtre_impression::ligne(std::ostream& out, const std::string& line) {
  int type = typeligne(line);
  if (type == LIGNE_COLONNES) {
    ferme_traits(out);
    lire_colonnes(line);
    bar_start_ = current_;
    return;
  }
  if (!takesALine(type)) return;
  if (current_ == kReportLinesPerPage) {
    if (format_ == Format::PostScript)
      next_page_postscript(out);
    else
      next_page_pdf(out);
  }
  current_++;
  int y = y_origin_ - 10 * current_;
  if (type == LIGNE_TRAIT) {
    trait(out, x_origin_, y + 3, x_origin_ + 5 * largeur_totale(), y + 3);
    return;
  }
  if (widths_.empty()) {
    if (!line.empty()) texte(out, x_origin_, y, line);
    return;
  }
  std::vector<std::string> f = fields(line);
  for (size_t i = 0; i < widths_.size() && i < f.size(); i++) {
    std::string text = f[i].substr(0, widths_[i]);
    if (!text.empty()) texte(out, x_origin_ + 5 * debut_colonne(static_cast<int>(i)), y, text);
  }
}

namespace {
const char* const kPostScriptFont[] = {"a4", "/Times-Roman findfont", "7 scalefont", "setfont"};
}

void OFD_afficheur_filtre_impression::begin_postscript(std::ostream& out) {
  start(Format::PostScript);
  for (const char* l : {"%!PS-Adobe-2.0", "%%Creator: kinlines", "%%Title: tmp.ps", "%%Pages: 1",
                        "%%PageOrder: Ascend", "%%BoundingBox: 0 0 612 792",
                        "%%DocumentPaperSizes: a4", "%%EndComments"})
    out << l << "\n";
  for (const char* l : kPostScriptFont) out << l << "\n";
}

void OFD_afficheur_filtre_impression::next_page_postscript(std::ostream& out) {
  ferme_traits(out);
  out << "showpage\n";
  page_++;
  out << "%%page : " << page_ + 1 << " " << page_ + 1 << "\n";
  for (const char* l : kPostScriptFont) out << l << "\n";
  current_ = 0;
  bar_start_ = 0;
}

void OFD_afficheur_filtre_impression::end_postscript(std::ostream& out) {
  ferme_traits(out);
  out << "showpage\n";
}

void OFD_afficheur_filtre_impression::postscript(std::ostream& out, const std::string& line) {
  ligne(out, line);
}

void OFD_afficheur_filtre_impression::imprime_postscript(std::ostream& out) {
  begin_postscript(out);
  for (const std::string& line : lines_) postscript(out, line);
  end_postscript(out);
}

// The PDF frame: catalogue 1, outlines 2, pages 3, procedure set 4, font 5, and for
// page k the page object 10 + 2k with its content stream 11 + 2k. The cross-reference
// table is made from the offsets actually written, so it holds for any number of pages.
void OFD_afficheur_filtre_impression::begin_pdf(std::ostream& out) {
  start(Format::Pdf);
  int pages = nb_pages() + 1;
  auto object = [&](int n) { offsets_.emplace_back(n, static_cast<long>(out.tellp())); };
  out << "%PDF-1.4\n";
  object(1);
  out << "1 0 obj\n  << /Type /Catalog\n     /Outlines 2 0 R\n     /Pages 3 0 R\n  >>\nendobj\n";
  object(2);
  out << "2 0 obj\n  << /Type /Outlines\n     /Count 0\n  >>\nendobj\n";
  object(3);
  out << "3 0 obj\n  << /Type /Pages\n     /Kids [";
  for (int k = 0; k < pages; k++) out << (k ? " " : "") << 10 + 2 * k << " 0 R";
  out << "]\n     /Count " << pages << "\n  >>\nendobj\n";
  object(4);
  out << "4 0 obj\n  [/PDF /Text]\nendobj\n";
  object(5);
  out << "5 0 obj\n  << /Type /Font\n     /Subtype /Type1\n     /Name /F1\n"
         "     /BaseFont /Times-Roman\n     /Encoding /WinAnsiEncoding\n  >>\nendobj\n";
}

void OFD_afficheur_filtre_impression::ecrit_page_pdf(std::ostream& out) {
  int page = 10 + 2 * page_;
  offsets_.emplace_back(page, static_cast<long>(out.tellp()));
  out << page << " 0 obj\n  << /Type /Page\n     /Parent 3 0 R\n     /MediaBox [0 0 612 792]\n"
      << "     /Contents " << page + 1 << " 0 R\n"
      << "     /Resources << /ProcSet 4 0 R\n                   /Font << /F1 5 0 R >>\n"
      << "                >>\n  >>\nendobj\n";
  offsets_.emplace_back(page + 1, static_cast<long>(out.tellp()));
  out << page + 1 << " 0 obj\n  << /Length " << content_.size() << " >>\nstream\n"
      << content_ << "endstream\nendobj\n";
  content_.clear();
}

void OFD_afficheur_filtre_impression::next_page_pdf(std::ostream& out) {
  ferme_traits(out);
  ecrit_page_pdf(out);
  page_++;
  current_ = 0;
  bar_start_ = 0;
}

void OFD_afficheur_filtre_impression::end_pdf(std::ostream& out) {
  ferme_traits(out);
  ecrit_page_pdf(out);
  // Objects 6 to 9 are never used: they stand as free entries.
  int size = 0;
  for (const auto& [n, offset] : offsets_) size = std::max(size, n + 1);
  std::vector<long> at(size, -1);
  for (const auto& [n, offset] : offsets_) at[n] = offset;
  long xref = static_cast<long>(out.tellp());
  out << "xref\n0 " << size << "\n";
  char entry[32];
  for (int n = 0; n < size; n++) {
    if (at[n] >= 0) {
      std::snprintf(entry, sizeof entry, "%010ld 00000 n \n", at[n]);
    } else {
      int next = 0;  // the free list runs through the unused numbers and back to 0
      for (int m = n + 1; m < size; m++)
        if (at[m] < 0) {
          next = m;
          break;
        }
      std::snprintf(entry, sizeof entry, "%010d %05d f \n", next, n == 0 ? 65535 : 0);
    }
    out << entry;
  }
  out << "trailer\n  << /Size " << size << "\n     /Root 1 0 R\n  >>\nstartxref\n"
      << xref << "\n%%EOF\n";
}

void OFD_afficheur_filtre_impression::pdf(std::ostream& out, const std::string& line) {
  ligne(out, line);
}

void OFD_afficheur_filtre_impression::imprime_pdf(std::ostream& out) {
  begin_pdf(out);
  for (const std::string& line : lines_) pdf(out, line);
  end_pdf(out);
}

// --- plain text ---

OFD_afficheur_filtre_texte::OFD_afficheur_filtre_texte(std::vector<std::string> lines)
    : lines_(std::move(lines)) {}

void OFD_afficheur_filtre_texte::imprime_ligne(std::ostream& out, const std::string& line) {
  if (typeligne(line) == LIGNE_TEXTE)
    out << line << "\n";
  else
    out << std::string(55, '-') << "\n";
}

void OFD_afficheur_filtre_texte::imprime(std::ostream& out) {
  for (const std::string& line : lines_) imprime_ligne(out, line);
}

// Text forms of functions: diagram listings, sums of products with the
// caller's words, covers for two-level logic tools, fixed-point reports.
#include <cstdio>
#include <iostream>
#include <list>
#include <string>
#include <vector>

#include "bdd/bddpp.h"

// ---------------------------------------------------------------------------
// Diagram listings

void bddpp_manager::Print_bdd_structure(std::ostream& out, const bdd& f) {
  if (!f.node()) return;
  Bdd_clear_marks(f);
  Bdd_incremental_id(f.node(), 0);
  Bdd_clear_marks(f);
  if (f.link_type() == 1) {
    Print_bdd_structure_loc(out, 0, f.node());
  } else {
    out << "not(" << std::endl;
    Print_bdd_structure_loc(out, 5, f.node());
    out << "   )" << std::endl;
  }
  Bdd_clear_marks(f);
}

void bddpp_manager::Print_bdd_structure_loc(std::ostream& out, int indent, bdd_node* node) {
  if (!node) return;
  std::string blanks(indent, ' ');
  if (node->mark) {
    out << blanks << "already found node: " << node->print_number << std::endl;
    return;
  }
  if (node == one) {
    out << blanks << "1" << " (node: " << node->print_number << ",index: " << Index_of_node(node) << ")"
        << std::endl;
    return;
  }
  std::string name = Name_var_by_id(node->var_id);
  if (node->then_node == one && node->else_node == one && node->else_link_type == -1) {
    out << blanks << name << " (node: " << node->print_number << ",index: " << Index_of_node(node) << ")"
        << std::endl;
    return;
  }
  node->mark = 1;
  out << blanks << "if " << name << " (node: " << node->print_number << ",index: " << Index_of_node(node)
      << ")" << std::endl;
  Print_bdd_structure_loc(out, indent + 2, node->then_node);
  out << blanks << "else (not " << name << ")" << std::endl;
  if (node->else_link_type == 1) {
    Print_bdd_structure_loc(out, indent + 2, node->else_node);
  } else {
    out << blanks << "  " << "not(" << std::endl;
    Print_bdd_structure_loc(out, indent + 6, node->else_node);
    out << blanks << "  " << "   )" << std::endl;
  }
}

void bddpp_manager::Print_bdd_structure(FILE* out, const bdd& f) {
  if (!f.node()) return;
  Bdd_clear_marks(f);
  Bdd_incremental_id(f.node(), 0);
  Bdd_clear_marks(f);
  if (f.link_type() == 1) {
    Print_bdd_structure_loc(out, 0, f.node());
  } else {
    std::fprintf(out, "not(\n");
    Print_bdd_structure_loc(out, 5, f.node());
    std::fprintf(out, "   )\n");
  }
  Bdd_clear_marks(f);
}

void bddpp_manager::Print_bdd_structure_loc(FILE* out, int indent, bdd_node* node) {
  if (!node) return;
  if (node->mark) {
    std::fprintf(out, "%*s", indent, "");
    std::fprintf(out, "already found node: %ld\n", node->print_number);
    return;
  }
  std::fprintf(out, "%*s", indent, "");
  if (node == one) {
    std::fprintf(out, "1 (node: %ld,index: %ld)\n", node->print_number, Index_of_node(node));
    return;
  }
  std::string name = Name_var_by_id(node->var_id);
  if (node->then_node == one && node->else_node == one && node->else_link_type == -1) {
    std::fprintf(out, "%s", name.c_str());
    std::fprintf(out, " (node: %ld,index: %ld)\n", node->print_number, Index_of_node(node));
    return;
  }
  node->mark = 1;
  std::fprintf(out, "if %s", name.c_str());
  std::fprintf(out, " (node: %ld,index: %ld)\n", node->print_number, Index_of_node(node));
  Print_bdd_structure_loc(out, indent + 2, node->then_node);
  std::fprintf(out, "%*s", indent, "");
  std::fprintf(out, "else (not %s)\n", name.c_str());
  if (node->else_link_type == 1) {
    Print_bdd_structure_loc(out, indent + 2, node->else_node);
  } else {
    std::fprintf(out, "%*s", indent + 2, "");
    std::fprintf(out, "not(\n");
    Print_bdd_structure_loc(out, indent + 6, node->else_node);
    std::fprintf(out, "%*s", indent + 2, "");
    std::fprintf(out, "   )\n");
  }
}

// The listing of the statistics report: global ids in place of walk numbers,
// and a shared node listed wherever it stands.
void bddpp_manager::Print_bdd_global_structure_loc(std::ostream& out, int indent, bdd_node* node) {
  if (!node) return;
  std::string blanks(indent, ' ');
  if (node == one) {
    out << blanks << "1" << " (node: " << node->global_id() << ",index: " << Index_of_node(node) << ")"
        << std::endl;
    return;
  }
  std::string name = Name_var_by_id(node->var_id);
  if (node->then_node == one && node->else_node == one && node->else_link_type == -1) {
    out << blanks << name << " (node: " << node->global_id() << ",index: " << Index_of_node(node) << ")"
        << std::endl;
    return;
  }
  out << blanks << "if " << name << " (node: " << node->global_id() << ",index: " << Index_of_node(node)
      << ")" << std::endl;
  Print_bdd_global_structure_loc(out, indent + 2, node->then_node);
  out << blanks << "else (not " << name << ")" << std::endl;
  if (node->else_link_type == 1) {
    Print_bdd_global_structure_loc(out, indent + 2, node->else_node);
  } else {
    out << blanks << "  " << "not(" << std::endl;
    Print_bdd_global_structure_loc(out, indent + 6, node->else_node);
    out << blanks << "  " << "   )" << std::endl;
  }
}

// ---------------------------------------------------------------------------
// Sums of products

std::string bddpp_manager::Print_product_to_String_pref_suff(const std::string& and_word,
                                                             const std::string& not_word,
                                                             const std::string& not_end_word, const bdd& f,
                                                             const std::string& prefix,
                                                             const std::string& suffix) {
  if (Bdd_is_zero_tautologic(f)) return "0";
  if (Bdd_is_one_tautologic(f)) return "1";
  std::vector<int> literals(Nb_bdd_vars);
  Bdd_to_literals(f, literals.data());
  std::string text;
  bool first = true;
  for (long i = 0; i < Nb_bdd_vars; ++i) {
    if (literals[i] == 2) continue;
    if (!first) text += and_word;
    first = false;
    if (literals[i] == 0)
      text += not_word + prefix + Name_var_by_index(i) + suffix + not_end_word;
    else
      text += prefix + Name_var_by_index(i) + suffix;
  }
  return text;
}

std::string bddpp_manager::Print_sop_to_String_pref_suff(const std::string& or_word, const std::string& and_word,
                                                         const std::string& not_word,
                                                         const std::string& not_end_word, const bdd& f,
                                                         const std::string& prefix, const std::string& suffix,
                                                         int level) {
  std::list<bdd> cubes;
  Bdd_sop(f, cubes, level);
  if (cubes.empty()) return "0";
  std::string text;
  bool first = true;
  for (const bdd& c : cubes) {
    if (!first) text += or_word;
    first = false;
    text += Print_product_to_String_pref_suff(and_word, not_word, not_end_word, c, prefix, suffix);
  }
  return text;
}

std::string bddpp_manager::Print_product_to_String(const std::string& and_word, const std::string& not_word,
                                                   const std::string& not_end_word, const bdd& f) {
  return Print_product_to_String_pref_suff(and_word, not_word, not_end_word, f, "", "");
}

std::string bddpp_manager::Print_sop_to_String(const std::string& or_word, const std::string& and_word,
                                               const std::string& not_word, const std::string& not_end_word,
                                               const bdd& f, int level) {
  return Print_sop_to_String_pref_suff(or_word, and_word, not_word, not_end_word, f, "", "", level);
}

void bddpp_manager::Print_product(std::ostream& out, const std::string& and_word, const std::string& not_word,
                                  const std::string& not_end_word, const bdd& f) {
  out << Print_product_to_String_pref_suff(and_word, not_word, not_end_word, f, "", "");
}

void bddpp_manager::Print_sop(std::ostream& out, const std::string& or_word, const std::string& and_word,
                              const std::string& not_word, const std::string& not_end_word, const bdd& f,
                              int level) {
  out << Print_sop_to_String_pref_suff(or_word, and_word, not_word, not_end_word, f, "", "", level);
}

void bddpp_manager::Print_product_pref_suff(std::ostream& out, const std::string& and_word,
                                            const std::string& not_word, const std::string& not_end_word,
                                            const bdd& f, const std::string& prefix, const std::string& suffix) {
  out << Print_product_to_String_pref_suff(and_word, not_word, not_end_word, f, prefix, suffix);
}

void bddpp_manager::Print_sop_pref_suff(std::ostream& out, const std::string& or_word, const std::string& and_word,
                                        const std::string& not_word, const std::string& not_end_word,
                                        const bdd& f, const std::string& prefix, const std::string& suffix,
                                        int level) {
  out << Print_sop_to_String_pref_suff(or_word, and_word, not_word, not_end_word, f, prefix, suffix, level);
}

std::string bddpp_manager::Print_sop_to_ESTEREL_String(const bdd& f, int level) {
  if (Bdd_is_zero_tautologic(f)) return "not tick";
  if (Bdd_is_one_tautologic(f)) return "tick";
  return Print_sop_to_String(" or ", " and ", "not ", "", f, level);
}

std::string bddpp_manager::Print_sop_to_VHDL_String(const bdd& f, int level) {
  if (Bdd_is_zero_tautologic(f)) return "'0'";
  if (Bdd_is_one_tautologic(f)) return "'1'";
  std::string text = Print_sop_to_String(") or (", " and ", "not ", "", f, level);
  if (text.find(") or (") != std::string::npos) return "(" + text + ")";
  return text;
}

// ---------------------------------------------------------------------------
// Covers for two-level logic tools: one column per input the function reads,
// in index order, then the output.

namespace {

void Print_cover(bddpp_manager& m, std::ostream& out, const long* corres, const bdd& variable, const bdd& f,
                 const std::string& var_prefix, const std::string& var_suffix, const std::string& header,
                 const std::string& output_suffix, const std::string& cube_sep, const std::string& end_word,
                 const std::string& literal_sep, int level) {
  std::string output = m.Name_var_by_bdd(variable);
  if (corres) {
    long index = m.Index_var_by_bdd(variable);
    if (index >= 0) output = std::to_string(corres[index]);
  }
  long count = m.Nb_bdd_vars;
  std::vector<int> present(count);
  m.Present_variables(f, present.data());
  std::list<bdd> cubes;
  m.Bdd_sop(f, cubes, level);

  out << header;
  bool any_input = false;
  for (long i = 0; i < count; ++i) {
    if (!present[i]) continue;
    any_input = true;
    out << var_prefix << (corres ? std::to_string(corres[i]) : m.Name_var_by_index(i)) << var_suffix << " ";
  }
  out << var_prefix << output << var_suffix << output_suffix;
  if (!any_input) {
    out << (m.Bdd_is_zero_tautologic(f) ? "0" : "1") << end_word;
    return;
  }
  std::vector<int> literals(count);
  bool first = true;
  for (const bdd& c : cubes) {
    if (!first) out << cube_sep;
    first = false;
    m.Bdd_to_literals(c, literals.data());
    for (long i = 0; i < count; ++i) {
      if (!present[i]) continue;
      out << (literals[i] == 1 ? "1" : literals[i] == 0 ? "0" : "-") << literal_sep;
    }
    out << " 1";
  }
  out << end_word;
}

}  // namespace

void bddpp_manager::PLA_print_pref_suff(std::ostream& out, const bdd& variable, const bdd& f,
                                        const std::string& var_prefix, const std::string& var_suffix,
                                        const std::string& header, const std::string& output_suffix,
                                        const std::string& cube_sep, const std::string& end_word,
                                        const std::string& literal_sep, int level) {
  Print_cover(*this, out, nullptr, variable, f, var_prefix, var_suffix, header, output_suffix, cube_sep, end_word,
              literal_sep, level);
}

void bddpp_manager::PLA_print_pref_suff_with_renaming(std::ostream& out, const long* corres, const bdd& variable,
                                                      const bdd& f, const std::string& var_prefix,
                                                      const std::string& var_suffix, const std::string& header,
                                                      const std::string& output_suffix,
                                                      const std::string& cube_sep, const std::string& end_word,
                                                      const std::string& literal_sep, int level) {
  Print_cover(*this, out, corres, variable, f, var_prefix, var_suffix, header, output_suffix, cube_sep, end_word,
              literal_sep, level);
}

void bddpp_manager::BLIF_print(std::ostream& out, const bdd& variable, const bdd& f, int level) {
  PLA_print_pref_suff(out, variable, f, "", "", ".names  ", "\n", "\n", "\n", "", level);
}

void bddpp_manager::QNC_print(std::ostream& out, const long* corres, const bdd& variable, const bdd& f,
                              int level) {
  PLA_print_pref_suff_with_renaming(out, corres, variable, f, "", "", "", ":\n", ",\n", ";\n", " ", level);
}

// ---------------------------------------------------------------------------
// Reports

// How a variable looped on itself settles: g0 and g1 are the function with
// the variable false and true; where g0 and not g1 it oscillates.
void bddpp_manager::Print_Fixes_Points(std::ostream& out, const bdd& f) {
  long x = -1;
  bdd g = Bdd_follow_assoc(f, &x);
  auto sum = [&](const bdd& h) { return Print_sop_to_String(" + ", ".", "", "'", h, 1); };
  if (x < 0) {
    out << " = " << sum(g) << std::endl;
    return;
  }
  std::string n = Name_var_by_index(x);
  bdd v = Bdd_var_by_index(x);
  bdd g0 = Bdd_reduce(g, Bdd_not(v));
  bdd g1 = Bdd_reduce(g, v);
  bdd a = Bdd_and(g0, Bdd_not(g1));
  out << std::endl;
  if (Bdd_is_zero_tautologic(a)) {
    out << "  ==> two stability points : " << n << "'= " << sum(g0) << ", " << n << "''= " << sum(g1)
        << std::endl;
  } else {
    out << "  ==> oscillation on " << n << "  for " << sum(a) << std::endl;
    out << "  ==> stabilisation when " << n << " = " << sum(Bdd_not(a)) << std::endl;
  }
}

void bddpp_manager::debug_variables(std::ostream& out) {
  for (long i = 0; i < Nb_bdd_vars; ++i) {
    Print_product(out, " and ", "not ", "", Bdd_var_by_index(i));
    out << " --> ";
    const bdd& a = assoc_table[id_of_index[i]];
    if (a.initialised())
      Print_sop(out, " or ", " and ", "not ", "", a);
    else
      out << "NULL";
    out << std::endl;
  }
}

void Print_debug_bdd(std::ostream& out, const bdd& f) {
  if (!f.initialised()) {
    out << "NULL" << std::endl;
    return;
  }
  f.manager_ref()->Print_sop(out, " + ", " . ", "!", "", f, 0);
  out << std::endl;
}

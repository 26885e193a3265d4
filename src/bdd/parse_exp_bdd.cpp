#include "bdd/parse_exp_bdd.h"

#include <iostream>

#include "bdd/bddpp.h"
#include "util/Stringpp.h"

class_exp_bdd_parser* pexp_bdd_parser = nullptr;

class_exp_bdd_parser::class_exp_bdd_parser(bddpp_manager* m)
    : manager(m), priority(0), expression(nullptr) {
  pexp_bdd_parser = this;
}

class_exp_bdd_parser::~class_exp_bdd_parser() {
  delete expression;
  if (pexp_bdd_parser == this) pexp_bdd_parser = nullptr;
}

int class_exp_bdd_parser::parse(const std::string& t) {
  pexp_bdd_parser = this;
  text = t;
  return exp_bddparse();
}

bdd class_exp_bdd_parser::bddexpression() const { return expression ? *expression : bdd(); }

namespace {

// Both forms of Parse_expression; the prefix of a good parse goes to *priority.
bdd read_expression(bddpp_manager* m, const string& text, int* priority, int* error) {
  *priority = 0;
  if (text.empty()) return m->Bdd_zero();
  if (contains(text, "/")) {
    std::cerr << "PARSING ERROR about expression: \"" << text << "\": / char detection!" << std::endl;
    return m->Bdd_zero();
  }
  if (char_occurences(text, '(') != char_occurences(text, ')')) {
    std::cerr << "PARSING ERROR about expression: \"" << text << "\": bad parenthesing!" << std::endl;
    return m->Bdd_zero();
  }
  class_exp_bdd_parser parser(m);
  int code = parser.parse(text);
  if (error) *error = code;
  if (code != 0) {
    std::cerr << "PARSING ERROR about expression: \"" << text << "\"" << std::endl;
    return m->Bdd_zero();
  }
  *priority = parser.prio();
  return parser.bddexpression();
}

}  // namespace

bdd bddpp_manager::Parse_expression(const string& text, int* error) {
  int priority = 0;
  bdd result = read_expression(this, text, &priority, error);
  if (priority != 0) {
    std::cerr << "PARSING ERROR about expression: \"" << text
              << "\": unknown symbols '<' and '>' " << std::endl;
    return Bdd_zero();
  }
  return result;
}

bdd bddpp_manager::Parse_expression(const string& text, int* priority, int* error) {
  int p = 0;
  bdd result = read_expression(this, text, &p, error);
  if (priority) *priority = p;
  return result;
}

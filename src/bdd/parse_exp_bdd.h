// State of the Boolean expression reader (grammar in parse_exp_bdd.y).
// bddpp_manager::Parse_expression is the usual way in.
#pragma once

#include <string>

class bdd;
class bddpp_manager;

class class_exp_bdd_parser {
public:
  explicit class_exp_bdd_parser(bddpp_manager* manager);
  ~class_exp_bdd_parser();
  class_exp_bdd_parser(const class_exp_bdd_parser&) = delete;
  class_exp_bdd_parser& operator=(const class_exp_bdd_parser&) = delete;

  // Reads one line; 0 when accepted, 1 on a syntax or name error, 2 when
  // the parser's stack is exhausted.
  int parse(const std::string& text);
  // A copy of the result; an empty handle before a line was accepted.
  bdd bddexpression() const;
  int prio() const { return priority; }

  bddpp_manager* manager;  // not owned
  std::string text;        // input not yet scanned
  std::string name;        // token last scanned
  int priority;            // value of the "<...>" prefix, 0 without one
  bdd* expression;         // owned; null until a line was accepted
};

// The reader in use; set by the constructor.
extern class_exp_bdd_parser* pexp_bdd_parser;

int exp_bddparse();

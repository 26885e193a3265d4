/* Reader of Boolean expressions over the variables of a bddpp_manager:
     line       : prefix expression
     prefix     : | '<' priority '>'
     expression : expression (or|xor|xnor) term | term
     term       : term and factor | factor
     factor     : ( expression ) | not factor | name | 0 | 1
   The state is reached only through pexp_bdd_parser: one parse at a time. */
%define api.prefix {exp_bdd}
%define api.pure full
%define api.token.prefix {EXPTOK_}

%code requires {
class bdd;
}

%code {
#include <iostream>

#include "bdd/bddpp.h"
#include "bdd/parse_exp_bdd.h"
#include "util/Stringpp.h"

int exp_bddlex(YYSTYPE* lval);
void exp_bdderror(const char* message);
}

%union {
  int priority;
  bdd* exp;
}

%token OPEN CLOSE LT GT AND OR NOT XOR XNOR ZERO ONE NAME
%type <priority> prefix priority
%type <exp> expression term factor
%destructor { delete $$; } <exp>

%%

line
  : prefix expression {
      pexp_bdd_parser->priority = $1;
      delete pexp_bdd_parser->expression;
      pexp_bdd_parser->expression = $2;
    }
  ;

prefix
  : %empty { $$ = 0; }
  | LT priority GT { $$ = $2; }
  ;

priority
  : ZERO {
      std::cerr << "parsing error in expression: \"0\" is not a correct priority value ..." << std::endl;
      YYERROR;
    }
  | ONE { $$ = 1; }
  | NAME {
      const string& name = pexp_bdd_parser->name;
      if (name == "other" || name == "default") {
        $$ = -1;
      } else if (checkuint(name)) {
        $$ = static_cast<int>(Stol(name));
      } else {
        std::cerr << "parsing error in expression: name " << "\"" << name << "\""
                  << " is not a correct priority value ..." << std::endl;
        YYERROR;
      }
    }
  ;

expression
  : expression OR term {
      $$ = new bdd(pexp_bdd_parser->manager->Bdd_or(*$1, *$3));
      delete $1;
      delete $3;
    }
  | expression XOR term {
      $$ = new bdd(pexp_bdd_parser->manager->Bdd_xor(*$1, *$3));
      delete $1;
      delete $3;
    }
  | expression XNOR term {
      $$ = new bdd(pexp_bdd_parser->manager->Bdd_xnor(*$1, *$3));
      delete $1;
      delete $3;
    }
  | term { $$ = $1; }
  ;

term
  : term AND factor {
      $$ = new bdd(pexp_bdd_parser->manager->Bdd_and(*$1, *$3));
      delete $1;
      delete $3;
    }
  | factor { $$ = $1; }
  ;

factor
  : OPEN expression CLOSE { $$ = $2; }
  | NOT factor {
      $$ = new bdd(pexp_bdd_parser->manager->Bdd_not(*$2));
      delete $2;
    }
  | NAME {
      bddpp_manager* m = pexp_bdd_parser->manager;
      const string& name = pexp_bdd_parser->name;
      if (m->Id_var_by_name(name) < 0) {
        std::cerr << "parsing error in expression: name " << "\"" << name << "\""
                  << " not identificated ..." << std::endl;
        YYERROR;
      }
      $$ = new bdd(m->Bdd_var_by_name(name));
    }
  | ZERO { $$ = new bdd(pexp_bdd_parser->manager->Bdd_zero()); }
  | ONE { $$ = new bdd(pexp_bdd_parser->manager->Bdd_one()); }
  ;

%%

int exp_bddlex(YYSTYPE*) {
  class_exp_bdd_parser* p = pexp_bdd_parser;
  string rest;
  p->name = next_Stringtoken(p->text, ' ', &rest);
  p->text = rest;
  const string& t = p->name;
  if (t.empty()) return 0;
  if (t == "(" || t == "[") return EXPTOK_OPEN;
  if (t == ")" || t == "]") return EXPTOK_CLOSE;
  if (t == "<") return EXPTOK_LT;
  if (t == ">") return EXPTOK_GT;
  if (t == "and" || t == "AND" || t == "." || t == "&") return EXPTOK_AND;
  if (t == "or" || t == "OR" || t == "+" || t == "|") return EXPTOK_OR;
  if (t == "not" || t == "NOT" || t == "!" || t == "~") return EXPTOK_NOT;
  if (t == "xor" || t == "XOR") return EXPTOK_XOR;
  if (t == "xnor" || t == "XNOR") return EXPTOK_XNOR;
  if (t == "0") return EXPTOK_ZERO;
  if (t == "1") return EXPTOK_ONE;
  return EXPTOK_NAME;
}

void exp_bdderror(const char* message) { std::cerr << message << std::endl; }

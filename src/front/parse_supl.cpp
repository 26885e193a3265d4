#include "front/parse_supl.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>

#include "util/compilation.h"
#include "util/report.h"
#include "front/qn_lexer.h"
#include "parse_qn.tab.h"

int qnlex() { return Compilation::pqn_parser->getLexer()->yylex(); }

int qn_current_line() {
  if (Compilation::pqn_parser == nullptr) return 0;
  return Compilation::pqn_parser->getLexer()->lineno();
}

const char* qn_current_text() {
  if (Compilation::pqn_parser == nullptr) return "";
  return Compilation::pqn_parser->getLexer()->YYText();
}

int class_qn_parser::parse() { return qnparse(); }

void class_qn_parser::parse_stream(std::istream& in) {
  // The scanners are kept: a parse may begin after another one has ended.
  Compilation::pqn_parser = new class_qn_parser(new qnFlexLexer(&in, nullptr));
  Compilation::pqn_parser->parse();
}

void Compilation::qn_parse(const std::string& filename) {
  std::error_code ec;
  std::ifstream in;
  if (!std::filesystem::is_directory(filename, ec)) in.open(filename);
  if (!in.is_open()) {
    report_alert("Can not open input file:", filename, "");
    std::cerr << "Can not open input file: " << filename << std::endl;
    std::exit(1);
  }
  class_qn_parser::parse_stream(in);
  in.close();
}

namespace {
[[noreturn]] void undeclared(const char* what, const char* name) {
  Compilation::fatal(std::string("Parsing error: undeclared ") + what + " \"" + name +
                     "\" at line " + std::to_string(qn_current_line()) + "\nAbortion ...\n");
}
}  // namespace

void parse_qn_undeclarated_type_error(const char* name) { undeclared("type", name); }
void parse_qn_undeclarated_Signal_error(const char* name) { undeclared("signal", name); }
void parse_qn_undeclarated_LO_Signal_error(const char* name) {
  undeclared("output or local signal", name);
}
void parse_qn_undeclarated_constant_error(const char* name) { undeclared("constant", name); }
void parse_qn_undeclarated_method_error(const char* name) { undeclared("method", name); }

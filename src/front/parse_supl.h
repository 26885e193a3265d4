// The source parser object and what the Quarn grammar shares with its callers.
#pragma once

#include <iosfwd>

class qnFlexLexer;
class Expression;

// Condition of an automaton transition while it is read: priority (0 if not given,
// -1 for "other") and trigger.
class trigger_class {
 public:
  trigger_class(int priority, Expression* exp) : priority(priority), exp(exp) {}
  int priority;
  Expression* exp;
};

// Holds the scanner that qnlex() reads from. Compilation::pqn_parser is the current one.
class class_qn_parser {
 public:
  explicit class_qn_parser(qnFlexLexer* lexer) : lexer(lexer) {}
  // Runs qnparse(): the modules read go into Compilation::ModTable; an error ends the run.
  int parse();
  qnFlexLexer* getLexer() const { return lexer; }

  // Parses a whole Quarn text from a stream, as Compilation::qn_parse does for a file.
  static void parse_stream(std::istream& in);

 private:
  qnFlexLexer* lexer;
};

// Line and text of the last token read by the current scanner.
int qn_current_line();
const char* qn_current_text();

// Fatal reports of the parser: error stream, alert box, exit(1).
[[noreturn]] void parse_qn_undeclarated_type_error(const char* name);
[[noreturn]] void parse_qn_undeclarated_Signal_error(const char* name);
[[noreturn]] void parse_qn_undeclarated_LO_Signal_error(const char* name);
[[noreturn]] void parse_qn_undeclarated_constant_error(const char* name);
[[noreturn]] void parse_qn_undeclarated_method_error(const char* name);

// The reader of compiled modules (.qnc): the parser object that the grammar actions of
// parse_qnc.y fill, and the records that wait for the end of the file.
#pragma once

#include <deque>
#include <iosfwd>
#include <list>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "bdd/bddpp.h"

class qncFlexLexer;
class Module;
class Signal;
class Bddexpressionwood;
class DataExpr;
class regclass;
class memorizedSignal;

// One line of the node table: variable file number (-1: the terminal), children by node
// number, else link. `node` memoises build.
class parsed_nodes_class {
 public:
  parsed_nodes_class(long var, long then_id, long else_id, int else_link)
      : var_id(var), then_id(then_id), else_link_type(else_link), else_id(else_id) {}
  long var_id;
  long then_id;
  int else_link_type;
  long else_id;
  bdd_node* node = nullptr;
};

// Builds the node of table entry `id` in `manager` (children first, in any line order).
// False, with a message in `error`, when the table refers to a missing entry or variable,
// or loops.
bool build_parsed_node(bddpp_manager* manager, std::map<long, parsed_nodes_class>& table, long id,
                       std::string& error);

// One entry of the evaluation table. nodetype: 0 immediate, 1 reference, 2 operator,
// 3 method.
class evalnodeparse {
 public:
  long nodeident = -1;
  int nodetype = 0;
  long tableident = -1;
  long methodident = -1;
  std::list<long>* arguments = nullptr;
};

class couplelong {
 public:
  long premier = -1;
  long second = -1;
};

// One binding line; without clock the signal numbers are -1.
class bindingparse {
 public:
  long instance_over, instance_under, evaluation, signal_over = -1, signal_under = -1;
};

// The binding and evaluation sections, with the file-to-run maps of the data section.
class binding_declaration_parse {
 public:
  std::list<bindingparse> binding_list;
  std::map<long, evalnodeparse*> evalnode_list;
  std::vector<int> corres_method, corres_type, corres_constant;

  // Enters the bindings in the module; a missing signal or a malformed table is reported
  // and ends the run.
  void createbinding(Module* module, Bddexpressionwood* wood, const std::list<Signal*>& signals);
  DataExpr* dataexpr(evalnodeparse* node, Module* module, Bddexpressionwood* wood,
                     const std::list<Signal*>& signals, int depth = 0);
  evalnodeparse* get_evalnode(long id);
};

class class_qnc_parser {
 public:
  class_qnc_parser(qncFlexLexer* scanner, std::ostream* log);
  ~class_qnc_parser();

  int parse(std::ostream& log, int level, const std::string& instance);
  int parse(std::ostream& log, int level, const std::string& instance, const std::string& second);

  // Writes the label of a reduction to the log when the level allows it.
  void qnc_debuger_law(int level, const char* label);
  // Makes the equation of file variable `variable`; false with a message on failure.
  bool bddexpression_convert(Bddexpressionwood* wood, long early, long late, long variable, long node,
                             long link, const std::list<long>& dependences);
  // A string kept for the rest of the parse.
  const std::string* keep(const std::string& s);
  // A signal read from a section: original name, internal name with the instance. Null
  // (with a message) when its variables are not new: a name given twice.
  Signal* newSignal(const std::string& name, bool withInstance);
  Signal* findSignal(const std::string& internalName);
  // A constant of the data section: entered in the run's table unless known; the file
  // position maps to its run index.
  void addConstant(const std::string& type, const std::string& name, std::map<int, DataExpr*>* values);

  int level = 1;
  std::ostream* log;
  qncFlexLexer* scanner;
  Module* module = nullptr;
  std::string moduleName;
  std::string instance;
  std::string second;
  Bddexpressionwood* wood = nullptr;
  std::list<Signal*> signals;
  std::list<std::string>* inputNames = nullptr;
  std::list<std::string>* outputNames = nullptr;
  long reincarnate = 0, finalised = 0;
  long node_count = 0;
  std::map<long, parsed_nodes_class> node_table;
  binding_declaration_parse bindings;
  bool binding_read = false;
  std::list<Signal*> inputs, outputs, datas, locals, section;
  std::list<evalnodeparse*> pending_eval;

 private:
  std::deque<std::string> strings;
};

// The parser being run; the grammar actions and qnclex read it.
extern class_qnc_parser* pqnc_parser;

// Line of the last token of the current scanner.
int qnc_current_line();

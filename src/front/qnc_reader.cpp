// The compiled module reader: scanner glue, the parser object, the rebuilding of the
// node table in the module's own manager and of the bindings, and Compilation::qnc_parse.
#include "front/qnc_reader.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <fstream>
#include <iostream>

#include "data/data.h"
#include "util/compilation.h"
#include "equations/Bddexpression.h"
#include "front/qnc_lexer.h"
#include "model/module.h"
#include "parse_qnc.tab.h"
#include "signals/signal_manager.h"

class_qnc_parser* pqnc_parser = nullptr;

int qnc_current_line() {
  return pqnc_parser && pqnc_parser->scanner ? pqnc_parser->scanner->lineno() : 0;
}

int qnclex(QNCSTYPE* value) {
  int token = pqnc_parser->scanner->yylex();
  const char* text = pqnc_parser->scanner->YYText();
  if (token == TOKEN_NUMBER) {
    // Out-of-range numbers saturate; every use checks its range.
    errno = 0;
    value->num = std::strtol(text, nullptr, 10);
  } else if (token == TOKEN_IDENT || token == TOKEN_CHAINE_CARACTERES) {
    value->str = pqnc_parser->keep(text);
  }
  return token;
}

// ---------------------------------------------------------------------------------------
// Node table

bool build_parsed_node(bddpp_manager* manager, std::map<long, parsed_nodes_class>& table, long root,
                       std::string& error) {
  // Children before parents with an explicit stack: a deep or looping table must not
  // exhaust the call stack.
  std::vector<std::pair<long, bool>> stack{{root, false}};
  std::set<long> open;
  while (!stack.empty()) {
    auto [id, expanded] = stack.back();
    auto it = table.find(id);
    if (it == table.end()) {
      error = "node " + std::to_string(id) + " is not in the node table";
      return false;
    }
    parsed_nodes_class& entry = it->second;
    if (entry.node) {
      stack.pop_back();
      open.erase(id);
      continue;
    }
    if (entry.var_id == -1) {
      entry.node = manager->Bdd_node_one();
      stack.pop_back();
      open.erase(id);
      continue;
    }
    if (entry.var_id < 0 || entry.var_id >= manager->Nb_bdd_vars) {
      error = "node " + std::to_string(id) + " has an unknown variable " + std::to_string(entry.var_id);
      return false;
    }
    if (!expanded) {
      if (!open.insert(id).second) {
        error = "node " + std::to_string(id) + " is its own descendant";
        return false;
      }
      stack.back().second = true;
      stack.push_back({entry.then_id, false});
      stack.push_back({entry.else_id, false});
      continue;
    }
    parsed_nodes_class& t = table.at(entry.then_id);
    parsed_nodes_class& e = table.at(entry.else_id);
    bdd var = manager->Bdd_var_by_id(entry.var_id);
    bdd then_f(manager, 1, t.node);
    bdd else_f(manager, entry.else_link_type, e.node);
    bdd result = manager->Bdd_ite(var, then_f, else_f);
    if (result.link_type() != 1) {
      std::cerr << "internal error in parsed_nodes_class::build()" << std::endl;
      std::exit(1);
    }
    entry.node = result.node();
    ++entry.node->refs;  // the table holds it until the end of the run
    stack.pop_back();
    open.erase(id);
  }
  return true;
}

// ---------------------------------------------------------------------------------------
// Parser object

class_qnc_parser::class_qnc_parser(qncFlexLexer* scanner, std::ostream* log) : log(log), scanner(scanner) {
  pqnc_parser = this;
}

class_qnc_parser::~class_qnc_parser() {
  for (auto& [id, node] : bindings.evalnode_list) {
    delete node->arguments;
    delete node;
  }
  if (pqnc_parser == this) pqnc_parser = nullptr;
}

int class_qnc_parser::parse(std::ostream& l, int lvl, const std::string& inst) {
  return parse(l, lvl, inst, "");
}

int class_qnc_parser::parse(std::ostream& l, int lvl, const std::string& inst, const std::string& sec) {
  log = &l;
  level = lvl;
  instance = inst;
  second = sec;
  pqnc_parser = this;
  return qncparse();
}

void class_qnc_parser::qnc_debuger_law(int lvl, const char* label) {
  if (log && lvl <= level) *log << "qnc reader: " << label << " (line " << qnc_current_line() << ")" << std::endl;
}

const std::string* class_qnc_parser::keep(const std::string& s) {
  strings.push_back(s);
  return &strings.back();
}

Signal* class_qnc_parser::newSignal(const std::string& name, bool withInstance) {
  bddpp_manager* manager = wood->my_bdd_manager();
  long before = manager->Nb_bdd_vars;
  Signal* s = withInstance ? new Signal(name, name + instance, module, wood) : new Signal(name, module, wood);
  // The file numbers are the creation order of the variables: each name brings two new ones.
  SignalRef* ref = s->getSignalRef(module, wood);
  if (!ref || manager->Nb_bdd_vars != before + 2 || ref->getOverBddId(wood) != before ||
      ref->getUnderBddId(wood) != before + 1) {
    std::cerr << "line " << qnc_current_line() << ": signal \"" << name << "\" is declared twice"
              << std::endl;
    return nullptr;
  }
  signals.push_back(s);
  return s;
}

Signal* class_qnc_parser::findSignal(const std::string& internalName) {
  for (Signal* s : signals)
    if (s->getInternalName() == internalName) return s;
  return nullptr;
}

void class_qnc_parser::addConstant(const std::string& type, const std::string& name,
                                   std::map<int, DataExpr*>* values) {
  if (!Compilation::GDataConstantTable) Compilation::GDataConstantTable = new DataConstantTable();
  DataConstantTable* table = Compilation::GDataConstantTable;
  if (table->getConstantIndex(name) < 0 && !table->getConstant(name)) {
    ConstantDecl* decl = new ConstantDecl(type, name, values);
    decl->setIndex(-1);
    decl->setEvalIndex(-1);
    // A literal value names its declaration, as in a source file: the writer prints a
    // read-back constant by that declaration's index.
    if (values)
      for (auto& [language, value] : *values)
        if (value && value->isDataValue()) static_cast<DataValue*>(value)->setConstDecl(decl);
    table->addConstant(decl);
  }
  bindings.corres_constant.push_back(table->getConstantIndex(name));
}

bool class_qnc_parser::bddexpression_convert(Bddexpressionwood* w, long early, long late, long variable,
                                             long node, long link, const std::list<long>& dependences) {
  if (!w || !w->my_bdd_manager()) {
    std::cerr << "internal error in class_qnc_parser::bddexpression_convert(): no bdd manager !" << std::endl;
    std::exit(1);
  }
  bddpp_manager* manager = w->my_bdd_manager();
  auto bad = [&](const std::string& what) {
    std::cerr << "line " << qnc_current_line() << ": " << what << std::endl;
    return false;
  };
  // Dates are sums of weights along paths; a number far out of that range is damage and
  // would overflow the dating.
  const long dateBound = 1000000000L;
  if (early < -dateBound || early > dateBound || late < -dateBound || late > dateBound)
    return bad("date out of range");
  if (variable < 0 || variable >= manager->Nb_bdd_vars)
    return bad("equation of an unknown variable " + std::to_string(variable));
  if (node == -3) {
    std::set<long> deps;
    for (long d : dependences) {
      if (d < 0 || d >= manager->Nb_bdd_vars) return bad("dependence on an unknown variable " + std::to_string(d));
      deps.insert(d);
    }
    new Bddexpression(variable, w, deps, "VALUE_SIGNAL", early, late);
    return true;
  }
  if (link != 1 && link != -1) return bad("bad link type " + std::to_string(link));
  std::string error;
  if (!build_parsed_node(manager, node_table, node, error)) return bad(error);
  bdd right(manager, int(link), node_table.at(node).node);
  std::string name = manager->Name_var_by_index(variable);
  new Bddexpression(name, w, manager->Bdd_var_by_id(variable), right, early, late);
  return true;
}

// ---------------------------------------------------------------------------------------
// Bindings

evalnodeparse* binding_declaration_parse::get_evalnode(long id) {
  auto it = evalnode_list.find(id);
  if (it == evalnode_list.end())
    Compilation::IllegalOperationException("binding_declaration_parse::get_evalnode: node_not_found");
  return it->second;
}

static Signal* signalOfVariable(long id, Module* module, Bddexpressionwood* wood,
                                const std::list<Signal*>& signals, const std::string& first,
                                const std::string& second) {
  SignalRef* ref = module->getSignalManager()->getSignalRefById(id, wood);
  if (!ref) Compilation::fatal(first + std::to_string(id));
  for (Signal* s : signals)
    if (s->getInternalName() == ref->getInternalName()) return s;
  Compilation::fatal(second + ref->getInternalName());
}

DataExpr* binding_declaration_parse::dataexpr(evalnodeparse* node, Module* module, Bddexpressionwood* wood,
                                              const std::list<Signal*>& signals, int depth) {
  // Entries refer to entries: a chain longer than the table is a loop.
  if (depth > long(evalnode_list.size()) + 1)
    Compilation::fatal("binding_declaration_parse::dataexpr: the evaluation table loops");
  auto sub = [&](long id) { return dataexpr(get_evalnode(id), module, wood, signals, depth + 1); };
  switch (node->nodetype) {
    case 0:
      if (node->tableident < 0 || node->tableident >= long(corres_constant.size()))
        Compilation::ModuleUndefinedConstantException(std::to_string(node->tableident) + " " +
                                                      module->getName());
      return new DataConstant(corres_constant[node->tableident]);
    case 1:
      return sub(node->tableident);
    case 3: {
      if (node->methodident < 0 || node->methodident >= long(corres_method.size()))
        Compilation::UndefinedMethodException(std::to_string(node->methodident) + " " + module->getName());
      std::list<DataExpr*>* args = nullptr;
      if (node->arguments) {
        args = new std::list<DataExpr*>();
        for (long a : *node->arguments) args->push_back(sub(a));
      }
      return new DataMethodCall(corres_method[node->methodident], args);
    }
    case 2: {
      // The type part of the number is only informative; a writer without the type gives a
      // negative number, whose operator is still the remainder.
      int op = int(((node->methodident % DataExpr::NbPredefOp) + DataExpr::NbPredefOp) % DataExpr::NbPredefOp);
      size_t count = node->arguments ? node->arguments->size() : 0;
      if (op == DataExpr::SignalVal) {
        if (count < 1)
          Compilation::IllegalOperationException("binding_declaration_parse::dataexpr: invalid_operator");
        Signal* s = signalOfVariable(node->arguments->front(), module, wood, signals,
                                     "binding_declaration_parse::dataexpr: signal not found: ",
                                     "binding_declaration_parse::dataexpr2: signal not found: ");
        return new DataSignalValue(s);
      }
      if (count == 2) return new DataBinaryOp(op, sub(node->arguments->front()), sub(node->arguments->back()));
      if (count == 1) return new DataUnaryOp(op, sub(node->arguments->front()));
      Compilation::IllegalOperationException("binding_declaration_parse::dataexpr: invalid_operator");
    }
  }
  Compilation::IllegalOperationException("binding_declaration_parse::dataexpr: unknown_eval_type");
}

void binding_declaration_parse::createbinding(Module* module, Bddexpressionwood* wood,
                                              const std::list<Signal*>& signals) {
  for (const bindingparse& b : binding_list) {
    Signal* s = signalOfVariable(b.instance_over, module, wood, signals, "unknown data signal:",
                                 "unknown data signal:");
    DataExpr* expr = dataexpr(get_evalnode(b.evaluation), module, wood, signals);
    Signal* clock = nullptr;
    if (b.signal_over != -1) clock = module->getSignalById(b.signal_over, wood);
    // The equations of the bound variables are in the file already: the binding is
    // entered without making them again, which would lose their dates.
    module->addSignalBinding(expr, s, clock);
  }
}

// ---------------------------------------------------------------------------------------
// Entry

Module* Compilation::qnc_parse(const std::string& file, std::string* instance, std::list<std::string>* inputNames,
                               std::list<std::string>* outputNames) {
  return qnc_parse(file, instance, EmptyString, inputNames, outputNames);
}

Module* Compilation::qnc_parse(const std::string& file, std::string* instance, std::string* second,
                               std::list<std::string>* inputNames, std::list<std::string>* outputNames) {
  std::ifstream in(file);
  if (!in.is_open()) {
    std::cerr << "File: " << file << " does not exist" << std::endl;
    return nullptr;
  }
  std::ofstream logFile(file + ".log");
  // A log that can't be opened is no failure: its text goes nowhere.
  std::ostream nowhere(nullptr);
  std::ostream& log = logFile.is_open() ? static_cast<std::ostream&>(logFile) : nowhere;
  qncFlexLexer scanner(&in, &log);
  // The parser's records (signals, nodes, a module left half made by an error) live for
  // the run, as everything the parsers build.
  static auto* parsers = new std::list<class_qnc_parser*>();
  class_qnc_parser* parser = new class_qnc_parser(&scanner, &log);
  parsers->push_back(parser);
  std::list<std::string> noNames;
  parser->inputNames = inputNames ? inputNames : &noNames;
  parser->outputNames = outputNames ? outputNames : &noNames;
  int result = parser->parse(log, 1, instance ? *instance : "", second ? *second : "");
  parser->inputNames = parser->outputNames = nullptr;
  parser->scanner = nullptr;
  parser->log = nullptr;
  pqnc_parser = nullptr;
  if (result != 0) {
    std::cerr << "ERROR during loading file : " << file << std::endl;
    return nullptr;
  }
  return parser->module;
}

/* Grammar of Quarn source files. Each module of the file is built while it is read
   and entered into Compilation::ModTable; the first error ends the run. */

%define api.prefix {qn}
%define parse.trace

%code requires {
#include <list>
#include <map>
#include <string>
#include <utility>
#include <vector>

class Statement;
class Expression;
class Signal;
class DataExpr;
class State;
class Transition;
class Equation;
class Run;
class trigger_class;

// A number keeps the text it was written with.
struct qn_int_token {
  int value;
  char* text;
};
struct qn_real_token {
  double value;
  char* text;
};
}

%code provides {
int qnlex();
void qnerror(const char* message);
}

%{
#include <cstring>
#include <set>
#include <sstream>

#include "data/data.h"
#include "util/compilation.h"
#include "front/parse_supl.h"
#include "model/module.h"
#include "model/statement.h"
#include "signals/expression.h"
#include "signals/signal_manager.h"

Module* TheModule = nullptr;
std::map<std::string, State*>* TheCurrentStateTable = nullptr;

namespace {

// "repeat" and counted "wait" unroll their body; beyond this the program is refused
// rather than exhausting memory.
const int MaxUnrolledCount = 100000;

std::string line_text() { return std::to_string(qn_current_line()); }

Statement* owned(Statement* s) {
  s->setParentModule(TheModule);
  return s;
}

std::string make_name(const std::string& prefix, int& counter) {
  return TheModule->generateName(prefix, counter);
}

// A declared input, output or local signal, with its value type if one is given.
Signal* declared_signal(const char* name, const char* type) {
  Signal* s = new Signal(name, TheModule, TheModule->getBddWood());
  if (type != nullptr) s->setValueType(type, TheModule);
  return s;
}

Signal* known_signal(const char* name) {
  Signal* s = TheModule->getSignal(name);
  if (s == nullptr) parse_qn_undeclarated_Signal_error(name);
  return s;
}

Signal* known_output_local(const char* name) {
  Signal* s = TheModule->getOutputLocalSignal(name);
  if (s == nullptr) parse_qn_undeclarated_Signal_error(name);
  return s;
}

void check_type(const char* type) {
  if (Compilation::GDataTypeTable == nullptr || !Compilation::GDataTypeTable->isDefined(type))
    parse_qn_undeclarated_type_error(type);
}

void check_constant_name(const char* name) {
  if (Compilation::GDataConstantTable != nullptr &&
      Compilation::GDataConstantTable->isAlreadyDefined(name))
    Compilation::fatal(std::string("*****error: constant: ") + name + " is already declared");
}

// A value given to a constant takes the constant's type and knows its declaration.
void attach_value(DataExpr* value, ConstantDecl* decl) {
  value->setType(decl->getType());
  if (value->isDataValue()) static_cast<DataValue*>(value)->setConstDecl(decl);
}

ConstantDecl* enter_constant(ConstantDecl* decl) {
  if (Compilation::GDataConstantTable == nullptr)
    Compilation::GDataConstantTable = new DataConstantTable();
  Compilation::GDataConstantTable->addConstant(decl);
  return decl;
}

// "T c := v;"
void declare_constant(const char* type, const char* name, DataExpr* value) {
  check_type(type);
  check_constant_name(name);
  std::map<int, DataExpr*>* table = nullptr;
  // "T c := ;" gives no value, the same as "T c;".
  if (value != nullptr) table = new std::map<int, DataExpr*>{{TLanguage::DEFAULT, value}};
  ConstantDecl* decl = new ConstantDecl(type, name, table);
  if (value != nullptr) attach_value(value, decl);
  enter_constant(decl);
}

const char* language_word(int language) {
  switch (language) {
    case TLanguage::VHDL: return " vhdl language";
    case TLanguage::C: return "C language";
    case TLanguage::CSHARP: return "C# language";
    case TLanguage::SMV: return "Smv language";
    case TLanguage::DEFAULT: return "default language";
    default: return "";
  }
}

// "T c :c= 1 :vhdl= 2;"
void declare_constant(const char* type, const char* name,
                      std::list<std::pair<int, DataExpr*>*>* values) {
  check_type(type);
  check_constant_name(name);
  std::map<int, DataExpr*>* table = nullptr;
  if (!values->empty()) {
    table = new std::map<int, DataExpr*>;
    for (auto* p : *values) {
      if (table->count(p->first) != 0)
        Compilation::fatal(std::string("****error:constant: ") + name +
                           "has already a value for: " + language_word(p->first));
      (*table)[p->first] = p->second;
    }
    if (table->size() == 1 && table->count(TLanguage::DEFAULT) == 1)
      Compilation::fatal(
          std::string("*****syntax error: constant declaration with only default target: ") +
          name);
  }
  ConstantDecl* decl = new ConstantDecl(type, name, table);
  if (table != nullptr)
    for (auto& entry : *table) attach_value(entry.second, decl);
  enter_constant(decl);
}

// A literal in a data expression names the constant "C__" + literal.
DataExpr* literal_constant(const char* literal) {
  std::string name = std::string("C__") + literal;
  if (Compilation::GDataConstantTable == nullptr)
    Compilation::fatal("PARSE ERROR: empty constant table detected: " + name +
                       "\n\nAbortion ...");
  ConstantDecl* decl = Compilation::GDataConstantTable->getConstant(name);
  if (decl == nullptr)
    Compilation::fatal("PARSE ERROR at line " + line_text() +
                       ": constant name awaited in place of : \"" + literal +
                       "\"\nor bad declaration" + "\n\nAbortion ...");
  return new DataConstant(decl->getConstantIndex());
}

DataExpr* named_constant(const char* name) {
  ConstantDecl* decl = Compilation::GDataConstantTable == nullptr
                           ? nullptr
                           : Compilation::GDataConstantTable->getConstant(name);
  if (decl == nullptr) parse_qn_undeclarated_constant_error(name);
  return new DataConstant(decl->getConstantIndex());
}

DataExpr* method_call(const char* name, std::list<DataExpr*>* args) {
  MethodDecl* decl = Compilation::GDataMethodTable == nullptr
                         ? nullptr
                         : Compilation::GDataMethodTable->getMethod(name);
  if (decl == nullptr) parse_qn_undeclarated_method_error(name);
  return new DataMethodCall(decl->getIndex(), args);
}

void declare_method(const char* type, const char* name, std::list<std::string>* args) {
  check_type(type);
  if (Compilation::GDataMethodTable == nullptr)
    Compilation::GDataMethodTable = new DataMethodTable();
  Compilation::GDataMethodTable->addMethod(new MethodDecl(std::string(type), name, args));
}

Statement* sequence_of(Statement** members, int count) {
  return owned(new Sn(make_name("Sn", Module::SequenceNumber), count, members));
}

void check_count(int n, const char* what) {
  if (n < 1 || n > MaxUnrolledCount)
    Compilation::fatal("Error at line" + line_text() + ": " + std::to_string(n) +
                       " is a bad number for " + what + "\nAbortion...\n");
}

// "if e": the presence of a signal bound to e.
Statement* if_statement(DataExpr* condition, Statement* thenPart, Statement* elsePart) {
  std::string name = make_name("IF", Module::PresentNumber);
  Signal* test = TheModule->addSignalBinding(condition, name);
  test->setInput();
  TheModule->addDataSignal(test);
  return owned(new Present(name, test, thenPart, elsePart));
}

Signal* local_clock(Signal* clock) {
  TheModule->addLocalSignal(clock);
  clock->setLocal();
  clock->setInput(false);
  clock->setOutput(false);
  return clock;
}

// The clock of a value carried by an output is an output; otherwise it is local.
Signal* output_or_local_clock(Signal* clock, Signal* carrier) {
  if (carrier->isOutput()) {
    TheModule->addOutputSignal(clock);
    clock->setOutput();
    return clock;
  }
  return local_clock(clock);
}

State* state_named(const char* name) {
  State* s = Automaton::findState(TheCurrentStateTable, name);
  if (s == nullptr) {
    s = new State(name);
    (*TheCurrentStateTable)[name] = s;
  }
  return s;
}

// s(e) in an action list: s, then the clock of its value.
void add_valued_action(std::vector<Signal*>* list, const char* name, DataExpr* value) {
  Signal* s = known_output_local(name);
  list->push_back(s);
  Signal* clock = TheModule->addSignalBinding(value, s->getInternalName() + "_Val", s);
  list->push_back(local_clock(clock));
}

trigger_class* valued_trigger(int priority, DataExpr* value) {
  std::string name = make_name("TRANS", Module::TransitionNumber);
  Signal* s = TheModule->addSignalBinding(value, name);
  s->setInput();
  TheModule->addDataSignal(s);
  return new trigger_class(priority, s);
}

double* pair_of(double x, double y) { return new double[2]{x, y}; }

char* joined(const char* a, const char* sep, const char* b) {
  std::string s = std::string(a) + sep + b;
  return strdup(s.c_str());
}

}  // namespace
%}

%union {
  qn_int_token inum;
  qn_real_token rnum;
  char* sval;
  int ival;
  double dval;
  double* geom;
  Statement* stmt;
  Run* run;
  Expression* expr;
  Signal* sig;
  DataExpr* dexp;
  std::list<std::string>* strlist;
  std::list<DataExpr*>* dexplist;
  std::pair<int, DataExpr*>* langval;
  std::list<std::pair<int, DataExpr*>*>* langvals;
  std::pair<char const*, Signal*>* ren;
  std::list<std::pair<char const*, Signal*>*>* renlist;
  std::vector<Signal*>* sigvec;
  Transition* trans;
  std::list<Transition*>* translist;
  trigger_class* trig;
  std::list<Equation*>* eqlist;
}

%token <sval> QN_ID STRING
%token <inum> INTEGER
%token <rnum> REAL
%token QN_MODULE QN_DATA QN_ENDDATA QN_METHOD QN_TYPE QN_INPUT QN_OUTPUT QN_LOCAL QN_PRE
%token QN_CONSTANT QN_RUN_DECL QN_REG_DECL QN_END QN_NOTHING QN_HALT QN_PRESENT QN_ABSENT
%token QN_IF QN_ELSE QN_LOOP QN_WHEN QN_WAIT QN_EMIT QN_REPEAT QN_NOEMIT QN_SUSTAIN QN_UNTIL
%token QN_WEAK QN_STRONG QN_ABORT QN_PAUSE QN_SEQUENCE QN_PARALLEL QN_RUN QN_ARROW
%token QN_STRONGARROW QN_WEAKARROW QN_NORMALTERMARROW QN_BACKSLASH QN_AUTOMATON
%token QN_MEALY_MACHINE QN_INIT QN_FINAL QN_OTHER QN_GEOMETRY QN_STATE QN_TRANSITION
%token QN_AND QN_OR QN_NOT QN_ABS QN_NAND QN_NOR QN_XOR QN_FF QN_TT
%token QN_EQ_EG QN_EQ_NEG QN_EQ_INF QN_EQ_INFE QN_EQ_SUP QN_EQ_SUPE
%token QN_ASSIGN QN_C_ASSIGN QN_CSHARP_ASSIGN QN_VHDL_ASSIGN QN_LUSTRE_ASSIGN
%token QN_ESTEREL_ASSIGN QN_NUSMV_ASSIGN QN_DEFAULT_ASSIGN QN_VALUE QN_SIGVAL

/* Statements: ">>" binds tighter than "||". A present, absent or if ends with its
   branch (BRANCH_END beats both), and an else goes to the nearest one. */
%left QN_PARALLEL
%left QN_SEQUENCE
%precedence BRANCH_END
%precedence QN_ELSE

/* Data expressions, loosest first; the comparisons bind tighter than the arithmetic.
   The Boolean words share their levels with the operators of Mealy right parts. */
%left '+' '-'
%left '*' '/'
%precedence UMINUS
%left QN_EQ_EG QN_EQ_NEG QN_EQ_INF QN_EQ_INFE QN_EQ_SUP QN_EQ_SUPE
%left QN_OR QN_NOR QN_XOR
%left QN_AND QN_NAND
%precedence QN_NOT QN_ABS

/* "module m: {" opens a braced module body, not a braced first statement. */
%precedence NO_SECTION
%precedence '{'

%type <sval> ident type_name constant_name method_name module_name file_name signal_name
%type <sval> opt_type_decl opt_const_decl basic_value state_name
%type <strlist> ident_list
%type <dexp> constant_value data_exp data_exp_not_basic const_expr method_call
%type <dexp> binary_func_call unary_func_call signal_value
%type <dexplist> data_exp_list
%type <langval> s_assign
%type <langvals> assign_value_list
%type <stmt> module_body instruction operator parallel sequence pause nothing halt present
%type <stmt> absent if_inst loop repeat wait abort strongabort emit noemit sustain_until
%type <stmt> automaton mealy_machine
%type <run> run opt_run
%type <renlist> opt_renaming renaming_list
%type <ren> renaming
%type <expr> quadrival_exp quadrival_term quadrival_factor quadrival_signal right_part
%type <geom> aut_geometry pair_geometry real_pair opt_geometry trans_geometry
%type <dval> geo_number
%type <ival> opt_final tpe
%type <sigvec> action valued_signal_list
%type <translist> transition_def transition_list
%type <trans> transition
%type <trig> trigger
%type <eqlist> equation_decl_list equation
%type <sig> variable

%start entry

%%

/* ---- File and data section ------------------------------------------------------ */

entry
  : data_part module_list
  | module_list
  ;

data_part
  : QN_DATA type_decl method_decl constant_decl QN_ENDDATA
  ;

type_decl
  : %empty
  | QN_TYPE { Compilation::GDataTypeTable = new DataTypeTable(); } type_name_list ';'
  ;

type_name_list
  : type_name                     { Compilation::GDataTypeTable->addType($1); }
  | type_name_list ',' type_name  { Compilation::GDataTypeTable->addType($3); }
  ;

method_decl
  : %empty
  | QN_METHOD { Compilation::GDataMethodTable = new DataMethodTable(); } method_decl_list
  ;

method_decl_list
  : method
  | method_decl_list method
  ;

method
  : type_name method_name '(' ident_list ')' ';'  { declare_method($1, $2, $4); }
  | type_name method_name '(' ')' ';'             { declare_method($1, $2, nullptr); }
  ;

ident_list
  : ident                 { $$ = new std::list<std::string>{$1}; }
  | ident_list ',' ident  { $1->push_back($3); $$ = $1; }
  ;

constant_decl
  : %empty
  | QN_CONSTANT { Compilation::GDataConstantTable = new DataConstantTable(); }
    ne_constant_decl_list
  ;

ne_constant_decl_list
  : constant
  | ne_constant_decl_list constant
  ;

constant
  : type_name constant_name QN_ASSIGN constant_value ';'  { declare_constant($1, $2, $4); }
  | type_name constant_name assign_value_list ';'         { declare_constant($1, $2, $3); }
  ;

assign_value_list
  : %empty                        { $$ = new std::list<std::pair<int, DataExpr*>*>; }
  | assign_value_list s_assign    { $1->push_back($2); $$ = $1; }
  ;

s_assign
  : QN_CSHARP_ASSIGN basic_value   { $$ = new std::pair<int, DataExpr*>(TLanguage::CSHARP, new DataValue($2)); }
  | QN_VHDL_ASSIGN basic_value     { $$ = new std::pair<int, DataExpr*>(TLanguage::VHDL, new DataValue($2)); }
  | QN_C_ASSIGN basic_value        { $$ = new std::pair<int, DataExpr*>(TLanguage::C, new DataValue($2)); }
  | QN_NUSMV_ASSIGN basic_value    { $$ = new std::pair<int, DataExpr*>(TLanguage::SMV, new DataValue($2)); }
  | QN_LUSTRE_ASSIGN basic_value   { $$ = new std::pair<int, DataExpr*>(TLanguage::LUSTRE, new DataValue($2)); }
  | QN_ESTEREL_ASSIGN basic_value  { $$ = new std::pair<int, DataExpr*>(TLanguage::ESTEREL, new DataValue($2)); }
  | QN_DEFAULT_ASSIGN basic_value  { $$ = new std::pair<int, DataExpr*>(TLanguage::DEFAULT, new DataValue($2)); }
  ;

constant_value
  : %empty              { $$ = nullptr; }
  | data_exp_not_basic  { $$ = $1; }
  | basic_value         { $$ = new DataValue($1); }
  ;

basic_value
  : INTEGER  { $$ = $1.text; }
  | REAL     { $$ = $1.text; }
  | STRING   { $$ = $1; }
  ;

type_name     : ident ;
constant_name : ident ;

/* ---- Modules -------------------------------------------------------------------- */

module_list
  : program
  | module_list program
  ;

program
  : QN_MODULE module_name ':' { TheModule = new Module($2); } corps
  ;

corps
  : module_interface module_body QN_END
    {
      TheModule->setStatement($2);
      if (Compilation::ModTable == nullptr) Compilation::ModTable = new ModuleTable();
      Compilation::ModTable->add(TheModule);
    }
  | '{' module_interface module_body '}'
    {
      TheModule->setStatement($3);
      if (Compilation::ModTable == nullptr) Compilation::ModTable = new ModuleTable();
      Compilation::ModTable->add(TheModule);
    }
  ;

module_interface
  : input_signal_list output_signal_list local_signal_list sigpre_signal_list run_decl_list
  ;

input_signal_list
  : %empty %prec NO_SECTION
  | QN_INPUT ne_input_signal_list ';'
  ;

ne_input_signal_list
  : input_signal
  | ne_input_signal_list ',' input_signal
  ;

input_signal
  : signal_name opt_type_decl
    {
      Signal* s = declared_signal($1, $2);
      s->setInput();
      TheModule->addInputSignal(s);
    }
  ;

output_signal_list
  : %empty
  | QN_OUTPUT ne_output_signal_list ';'
  ;

ne_output_signal_list
  : output_signal
  | ne_output_signal_list ',' output_signal
  ;

output_signal
  : signal_name opt_type_decl
    {
      Signal* s = declared_signal($1, $2);
      s->setOutput();
      TheModule->addOutputSignal(s);
    }
  ;

local_signal_list
  : %empty
  | QN_LOCAL ne_local_signal_list ';'
  ;

ne_local_signal_list
  : local_signal
  | ne_local_signal_list ',' local_signal
  ;

local_signal
  : signal_name opt_type_decl
    {
      Signal* s = declared_signal($1, $2);
      s->setLocal();
      s->setInput(false);
      s->setOutput(false);
      TheModule->addLocalSignal(s);
    }
  ;

sigpre_signal_list
  : %empty
  | QN_PRE ne_sigpre_signal_list ';'
  ;

ne_sigpre_signal_list
  : sigpre_signal
  | ne_sigpre_signal_list ',' sigpre_signal
  ;

sigpre_signal
  : signal_name ':' signal_name opt_const_decl
    {
      Signal* pre = new Signal($1, TheModule, TheModule->getBddWood());
      pre->setPre();
      pre->setInput();
      Signal* actual = known_signal($3);
      if (actual->isValued(TheModule))
        pre->setValueType(actual->getValueType(TheModule), TheModule);
      TheModule->addPreSignal(pre, actual, $4 == nullptr ? "" : $4);
    }
  ;

opt_type_decl
  : %empty     { $$ = nullptr; }
  | ':' ident  { $$ = $2; }
  ;

opt_const_decl
  : %empty           { $$ = nullptr; }
  | QN_SIGVAL ident  { $$ = $2; }
  ;

run_decl_list
  : %empty
  | QN_RUN_DECL ne_run_decl_list ';'
  ;

ne_run_decl_list
  : run_decl
  | ne_run_decl_list ';' run_decl
  ;

run_decl
  : STRING ':' module_name
    {
      // "dir/file": directory before the last "/", file after it; no "/": all directory.
      std::string location = $1;
      std::string directory = location, file;
      size_t slash = location.rfind('/');
      if (slash != std::string::npos) {
        directory = location.substr(0, slash);
        file = location.substr(slash + 1);
      }
      TheModule->addRunDecl($3, file, directory);
    }
  | STRING ':' file_name ':' module_name
    {
      std::string directory = $1;
      for (char& c : directory)
        if (c == '\\') c = '/';
      TheModule->addRunDecl($5, $3, directory);
    }
  ;

file_name   : ident ;
module_name : ident ;

module_body
  : instruction    { $$ = $1; }
  | automaton      { $$ = $1; }
  | mealy_machine  { $$ = $1; }
  | %empty         { $$ = owned(new Nothing(make_name("N", Module::NothingNumber))); }
  ;

signal_name : ident ;

ident
  : QN_ID  { $$ = $1; }
  ;

/* ---- Statements ----------------------------------------------------------------- */

instruction
  : operator                 { $$ = $1; }
  | parallel                 { $$ = $1; }
  | sequence                 { $$ = $1; }
  | '{' instruction '}'      { $$ = $2; }
  ;

operator
  : present | absent | if_inst | loop | sustain_until | wait | emit | noemit | abort
  | strongabort | nothing | pause | halt | run { $$ = $1; } | repeat
  ;

parallel
  : instruction QN_PARALLEL instruction
    {
      if (Pn* p = dynamic_cast<Pn*>($1)) {
        p->addStatement($3);
        $$ = p;
      } else {
        $$ = owned(new Pn(make_name("Pn", Module::ParallelNumber), 2,
                          new Statement*[2]{$1, $3}));
      }
    }
  ;

sequence
  : instruction QN_SEQUENCE instruction
    {
      if (Sn* s = dynamic_cast<Sn*>($1)) {
        s->addStatement($3);
        $$ = s;
      } else {
        $$ = sequence_of(new Statement*[2]{$1, $3}, 2);
      }
    }
  ;

pause   : QN_PAUSE    { $$ = owned(new Pause(make_name("PS", Module::PauseNumber))); } ;
nothing : QN_NOTHING  { $$ = owned(new Nothing(make_name("N", Module::NothingNumber))); } ;
halt    : QN_HALT     { $$ = owned(new Halt(make_name("H", Module::HaltNumber))); } ;

present
  : QN_PRESENT quadrival_exp instruction QN_ELSE instruction
    { $$ = owned(new Present(make_name("PR", Module::PresentNumber), $2, $3, $5)); }
  | QN_PRESENT quadrival_exp instruction %prec BRANCH_END
    { $$ = owned(new Present(make_name("PR", Module::PresentNumber), $2, $3, nullptr)); }
  ;

absent
  : QN_ABSENT quadrival_exp instruction QN_ELSE instruction
    { $$ = owned(new Absent(make_name("AB", Module::AbsentNumber), $2, $3, $5)); }
  | QN_ABSENT quadrival_exp instruction %prec BRANCH_END
    { $$ = owned(new Absent(make_name("AB", Module::AbsentNumber), $2, $3, nullptr)); }
  ;

if_inst
  : QN_IF data_exp instruction QN_ELSE instruction  { $$ = if_statement($2, $3, $5); }
  | QN_IF data_exp instruction %prec BRANCH_END      { $$ = if_statement($2, $3, nullptr); }
  ;

loop
  : QN_LOOP '{' instruction '}'
    { $$ = owned(new Loop(make_name("L", Module::LoopNumber), $3)); }
  ;

repeat
  : QN_REPEAT INTEGER '{' instruction '}'
    {
      // The braced statement is only a model: the tree holds its numbered copies.
      int n = $2.value;
      check_count(n, "repeat");
      Statement** members = new Statement*[n];
      for (int i = 0; i < n; i++) members[i] = owned($4->duplicate(i));
      $$ = sequence_of(members, n);
    }
  ;

wait
  : QN_WAIT quadrival_exp
    { $$ = owned(new Wait(make_name("W", Module::WaitNumber), $2)); }
  | QN_WAIT INTEGER quadrival_exp
    {
      int n = $2.value;
      check_count(n, "wait");
      if (n == 1) {
        $$ = owned(new Wait(make_name("W", Module::WaitNumber), $3));
      } else {
        std::string name = make_name("Sn", Module::SequenceNumber);
        Statement** members = new Statement*[n];
        for (int i = 0; i < n; i++)
          members[i] = owned(new Wait(make_name("W", Module::WaitNumber), $3));
        $$ = owned(new Sn(name, n, members));
      }
    }
  ;

abort
  : QN_WEAK QN_ABORT '{' instruction '}' QN_WHEN quadrival_exp
    { $$ = owned(new Abort(make_name("A", Module::AbortNumber), $7, $4)); }
  ;

strongabort
  : QN_STRONG QN_ABORT '{' instruction '}' QN_WHEN quadrival_exp
    { $$ = owned(new StrongAbort(make_name("SA", Module::AbortNumber), $7, $4)); }
  ;

emit
  : QN_EMIT signal_name
    {
      Signal* s = TheModule->getOutputLocalSignal($2);
      if (s == nullptr) parse_qn_undeclarated_LO_Signal_error($2);
      $$ = owned(new Emit(make_name("E", Module::EmitNumber), s));
    }
  | QN_EMIT signal_name '(' data_exp ')'
    {
      Signal* s = TheModule->getOutputLocalSignal($2);
      if (s == nullptr) parse_qn_undeclarated_LO_Signal_error($2);
      std::set<Signal*> read;
      $4->computeValueSignalDependencies(read);
      for (Signal* r : read) s->addValueDependency(r);
      std::string name = make_name("E", Module::EmitNumber);
      Signal* clock = local_clock(TheModule->addSignalBinding($4, name, s));
      $$ = owned(new Emit(name, s, clock));
    }
  ;

noemit
  : QN_NOEMIT signal_name
    {
      Signal* s = TheModule->getOutputLocalSignal($2);
      if (s == nullptr) parse_qn_undeclarated_LO_Signal_error($2);
      $$ = owned(new NoEmit(make_name("NE", Module::NoEmitNumber), s));
    }
  ;

sustain_until
  : QN_SUSTAIN signal_name QN_UNTIL quadrival_exp
    {
      Signal* s = known_output_local($2);
      $$ = owned(new SustainUntil(make_name("SU", Module::SustainUntilNumber), s, $4));
    }
  | QN_SUSTAIN signal_name '(' data_exp ')' QN_UNTIL quadrival_exp
    {
      Signal* s = known_output_local($2);
      std::string name = make_name("SU", Module::SustainUntilNumber);
      Signal* clock = output_or_local_clock(TheModule->addSignalBinding($4, name, s), s);
      SustainUntil* su = new SustainUntil(name, s, $7);
      su->setClock(clock);
      $$ = owned(su);
    }
  ;

run
  : QN_RUN QN_ID opt_renaming
    {
      Run* r = new Run(make_name(std::string("R_") + $2, Module::RunNumber), $2);
      if ($3 != nullptr) r->setRenamingTable($3);
      owned(r);
      $$ = r;
    }
  ;

opt_renaming
  : %empty                 { $$ = nullptr; }
  | '[' renaming_list ']'  { $$ = $2; }
  ;

renaming_list
  : renaming                    { $$ = new std::list<std::pair<char const*, Signal*>*>{$1}; }
  | renaming_list ',' renaming  { $1->push_back($3); $$ = $1; }
  ;

renaming
  : signal_name QN_BACKSLASH signal_name
    { $$ = new std::pair<char const*, Signal*>($3, known_signal($1)); }
  ;

/* ---- Signal expressions --------------------------------------------------------- */

quadrival_exp
  : quadrival_exp QN_OR quadrival_term  { $$ = new OrExpression($1, $3); }
  | quadrival_term                      { $$ = $1; }
  ;

quadrival_term
  : quadrival_term QN_AND quadrival_factor  { $$ = new AndExpression($1, $3); }
  | quadrival_factor                        { $$ = $1; }
  ;

quadrival_factor
  : '(' quadrival_exp ')'      { $$ = $2; }
  | QN_NOT quadrival_factor    { $$ = new NpExpression($2); }
  | QN_ABS quadrival_factor    { $$ = new NotExpression($2); }
  | quadrival_signal           { $$ = $1; }
  | QN_FF                      { $$ = new FalseExpression(); }
  | QN_TT                      { $$ = new TrueExpression(); }
  ;

quadrival_signal
  : signal_name  { $$ = known_signal($1); }
  ;

/* ---- Data expressions ----------------------------------------------------------- */

data_exp
  : data_exp_not_basic    { $$ = $1; }
  | basic_value           { $$ = literal_constant($1); }
  | '(' data_exp ')'      { $$ = $2; }
  ;

data_exp_not_basic
  : const_expr | method_call | binary_func_call | unary_func_call | signal_value
  ;

const_expr
  : ident  { $$ = named_constant($1); }
  ;

method_call
  : method_name '(' data_exp_list ')'  { $$ = method_call($1, $3); }
  | method_name '(' ')'                { $$ = method_call($1, nullptr); }
  ;

method_name
  : ident                  { $$ = $1; }
  | method_name '.' ident  { $$ = joined($1, ".", $3); }
  ;

data_exp_list
  : data_exp                    { $$ = new std::list<DataExpr*>{$1}; }
  | data_exp_list ',' data_exp  { $1->push_back($3); $$ = $1; }
  ;

binary_func_call
  : data_exp '+' data_exp         { $$ = new DataBinaryOp(DataExpr::Plus, $1, $3); }
  | data_exp '-' data_exp         { $$ = new DataBinaryOp(DataExpr::Minus, $1, $3); }
  | data_exp '*' data_exp         { $$ = new DataBinaryOp(DataExpr::Mult, $1, $3); }
  | data_exp '/' data_exp         { $$ = new DataBinaryOp(DataExpr::Div, $1, $3); }
  | data_exp QN_AND data_exp      { $$ = new DataBinaryOp(DataExpr::And, $1, $3); }
  | data_exp QN_OR data_exp       { $$ = new DataBinaryOp(DataExpr::Or, $1, $3); }
  | data_exp QN_EQ_EG data_exp    { $$ = new DataBinaryOp(DataExpr::Eq, $1, $3); }
  | data_exp QN_EQ_NEG data_exp   { $$ = new DataBinaryOp(DataExpr::Neq, $1, $3); }
  | data_exp QN_EQ_INF data_exp   { $$ = new DataBinaryOp(DataExpr::Inf, $1, $3); }
  | data_exp QN_EQ_INFE data_exp  { $$ = new DataBinaryOp(DataExpr::Infe, $1, $3); }
  | data_exp QN_EQ_SUP data_exp   { $$ = new DataBinaryOp(DataExpr::Sup, $1, $3); }
  | data_exp QN_EQ_SUPE data_exp  { $$ = new DataBinaryOp(DataExpr::Supe, $1, $3); }
  ;

unary_func_call
  : '-' data_exp %prec UMINUS  { $$ = new DataUnaryOp(DataExpr::Uminus, $2); }
  | QN_NOT data_exp            { $$ = new DataUnaryOp(DataExpr::Not, $2); }
  ;

signal_value
  : QN_SIGVAL signal_name  { $$ = new DataSignalValue(known_signal($2)); }
  ;

/* ---- Automata ------------------------------------------------------------------- */

automaton
  : QN_AUTOMATON { TheCurrentStateTable = new std::map<std::string, State*>; }
    aut_geometry state_list transition_def
    {
      $$ = owned(new Automaton(make_name("AUT", Module::AutomatonNumber), $3,
                               TheCurrentStateTable, $5));
    }
  ;

aut_geometry : pair_geometry ;

pair_geometry
  : %empty                 { $$ = nullptr; }
  | QN_GEOMETRY real_pair  { $$ = $2; }
  ;

real_pair
  : QN_EQ_INF geo_number ',' geo_number QN_EQ_SUP  { $$ = pair_of($2, $4); }
  ;

geo_number
  : REAL     { $$ = $1.value; }
  | INTEGER  { $$ = $1.value; }
  ;

state_list
  : state
  | state_list state
  ;

state
  : QN_STATE QN_ID opt_final opt_run action opt_geometry ';'
    {
      if (Automaton::findState(TheCurrentStateTable, $2) != nullptr)
        Compilation::fatal(std::string("ERROR: two states or more have the same name: ") + $2 +
                           "\n\nAbortion ...");
      State* s = new State($2);
      (*TheCurrentStateTable)[$2] = s;
      s->setRunModule($4);
      if ($5 != nullptr)
        for (Signal* a : *$5) s->addMooreAction(a);
      s->setGeometry($6);
      s->setFinal($3);
    }
  ;

opt_geometry
  : %empty                      { $$ = nullptr; }
  | QN_GEOMETRY real_pair REAL  { $$ = new double[3]{$2[0], $2[1], $3.value}; }
  ;

opt_run
  : %empty  { $$ = nullptr; }
  | run     { $$ = $1; }
  ;

opt_final
  : %empty    { $$ = 0; }
  | QN_FINAL  { $$ = 1; }
  ;

transition_def
  : QN_TRANSITION transition_list  { $$ = $2; }
  ;

transition_list
  : transition                  { $$ = new std::list<Transition*>{$1}; }
  | transition_list transition  { $1->push_back($2); $$ = $1; }
  ;

transition
  : state_name trigger action tpe state_name trans_geometry ';'
    {
      // A state named only here exists from now on; the checks look at it later.
      bool initial = std::strcmp($1, "I->") == 0;
      State* source = initial ? nullptr : state_named($1);
      State* target = state_named($5);
      $$ = new Transition($4, $2->priority, $2->exp, $3, source, target, $6, initial);
    }
  ;

trans_geometry : pair_geometry ;

state_name
  : QN_INIT  { $$ = strdup("I->"); }
  | QN_ID    { $$ = $1; }
  ;

tpe
  : %empty              { $$ = 1; }
  | QN_ARROW            { $$ = 1; }
  | QN_STRONGARROW      { $$ = 1; }
  | QN_WEAKARROW        { $$ = 2; }
  | QN_NORMALTERMARROW  { $$ = 3; }
  ;

trigger
  : %empty                                     { $$ = new trigger_class(0, new TrueExpression()); }
  | '[' ']'                                    { $$ = new trigger_class(0, new TrueExpression()); }
  | INTEGER '[' ']'                            { $$ = new trigger_class($1.value, new TrueExpression()); }
  | QN_OTHER '[' ']'                           { $$ = new trigger_class(-1, new TrueExpression()); }
  | '[' quadrival_exp ']'                      { $$ = new trigger_class(0, $2); }
  | INTEGER '[' quadrival_exp ']'              { $$ = new trigger_class($1.value, $3); }
  | QN_OTHER '[' quadrival_exp ']'             { $$ = new trigger_class(-1, $3); }
  | '[' QN_VALUE data_exp ']'                  { $$ = valued_trigger(0, $3); }
  | INTEGER '[' QN_VALUE data_exp ']'          { $$ = valued_trigger($1.value, $4); }
  | QN_OTHER '[' QN_VALUE data_exp ']'         { $$ = valued_trigger(-1, $4); }
  ;

action
  : %empty                  { $$ = nullptr; }
  | '/' valued_signal_list  { $$ = $2; }
  ;

valued_signal_list
  : signal_name
    { $$ = new std::vector<Signal*>{known_output_local($1)}; }
  | signal_name '(' data_exp ')'
    {
      $$ = new std::vector<Signal*>;
      add_valued_action($$, $1, $3);
    }
  | valued_signal_list ',' signal_name
    { $1->push_back(known_output_local($3)); $$ = $1; }
  | valued_signal_list ',' signal_name '(' data_exp ')'
    { add_valued_action($1, $3, $5); $$ = $1; }
  ;

/* ---- Mealy machines ------------------------------------------------------------- */

mealy_machine
  : QN_MEALY_MACHINE register_decl_list equation_decl_list
    {
      MealyMachine* m = new MealyMachine(make_name("MM", Module::MealyMachineNumber));
      m->setMachineTable($3, TheModule);
      $$ = owned(m);
    }
  ;

register_decl_list
  : %empty
  | QN_REG_DECL ne_register_list ';'
  ;

ne_register_list
  : reg
  | ne_register_list ',' reg
  ;

reg
  : ident ':' INTEGER ':' ident  { TheModule->addRegisterDecl($1, $3.value, $5); }
  ;

equation_decl_list
  : equation ';'                     { $$ = $1; }
  | equation_decl_list equation ';'  { $1->splice($1->end(), *$2); $$ = $1; }
  ;

equation
  : variable '=' right_part
    { $$ = new std::list<Equation*>{new Equation($1, $3)}; }
  | variable '(' data_exp ')' '=' right_part
    {
      // The value's clock follows the same right part.
      Signal* clock = TheModule->addSignalBinding($3, $1->getInternalName() + "_value", $1);
      output_or_local_clock(clock, $1);
      $$ = new std::list<Equation*>{new Equation($1, $6), new Equation(clock, $6)};
    }
  ;

variable
  : ident  { $$ = known_output_local($1); }
  ;

right_part
  : ident                      { $$ = known_signal($1); }
  | right_part QN_AND right_part   { $$ = new AndExpression($1, $3); }
  | right_part QN_OR right_part    { $$ = new OrExpression($1, $3); }
  | right_part QN_NOR right_part
    { $$ = new AndExpression(new NotExpression($1), new NotExpression($3)); }
  | right_part QN_XOR right_part
    {
      $$ = new OrExpression(new AndExpression($1, new NotExpression($3)),
                            new AndExpression(new NotExpression($1), $3));
    }
  | right_part QN_NAND right_part
    { $$ = new OrExpression(new NotExpression($1), new NotExpression($3)); }
  | QN_NOT right_part          { $$ = new NpExpression($2); }
  | QN_ABS right_part          { $$ = new NotExpression($2); }
  | INTEGER
    {
      if ($1.value == 1) {
        $$ = new TrueExpression();
      } else if ($1.value == 0) {
        $$ = new FalseExpression();
      } else {
        Compilation::fatal("PARSE ERROR: at line " + line_text() +
                           ": constant right part is not a Boolean value\nAbortion ...\n");
      }
    }
  | '(' right_part ')'         { $$ = $2; }
  ;

%%

void qnerror(const char*) {
  Compilation::fatal("SYNTAX ERROR at line " + std::to_string(qn_current_line()) +
                     ": last token read: \"" + qn_current_text() + "\"\n\n");
}

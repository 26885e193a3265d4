/* Grammar of compiled module files (.qnc). The actions build the module through the
   parser object pqnc_parser; what needs the whole file is done at its end. */

%define api.prefix {qnc}
%define api.pure full

%code requires {
#include <list>
#include <string>
class evalnodeparse;
class couplelong;
}

%union {
  long num;
  const std::string* str;
  std::list<long>* nums;
  std::list<const std::string*>* strs;
  evalnodeparse* eval;
  couplelong* couple;
  std::map<int, const std::string*>* assigns;
}

%code requires {
#include <map>
}

%code provides {
int qnclex(QNCSTYPE* value);
void qncerror(const char* message);
}

%{
#include <climits>
#include <cstdlib>
#include <iostream>

#include "data/data.h"
#include "util/compilation.h"
#include "equations/Bddexpression.h"
#include "front/qnc_reader.h"
#include "model/module.h"
#include "signals/signal_manager.h"
#include "util/report.h"
#include "util/Stringpp.h"

namespace {

class_qnc_parser* P() { return pqnc_parser; }

// The signals of an input or output section must be awaited by the caller, or valued.
void checkAwaited(std::list<Signal*>& signals, std::list<std::string>* awaited, const char* kind) {
  if (!awaited || awaited->empty()) return;
  for (Signal* s : signals) {
    if (s->isValued(P()->module, P()->wood)) continue;
    bool found = false;
    for (const std::string& n : *awaited) found = found || n == s->getOriginalName();
    if (found) continue;
    std::string text = P()->moduleName.empty() ? "" : P()->moduleName + ":";
    text += std::string("PARSING ERROR: ") + kind + " signal \"" + s->getOriginalName() +
            "\" is unknown in main module!\n  --> authorised signals:\n";
    for (const std::string& n : *awaited) text += n + "\n";
    Compilation::fatal(text);
  }
}

}  // namespace
%}

%token TOKEN_MODULE TOKEN_INPUTS TOKEN_OUTPUTS TOKEN_LOCALS TOKEN_DATA_SIGNAL TOKEN_REGISTERS
%token TOKEN_MEMORIZED TOKEN_CONNEXION TOKEN_EQUATION_DEF TOKEN_EXPRESSION_DEF TOKEN_END
%token TOKEN_BINDING TOKEN_EVALTABLE TOKEN_VALUE TOKEN_CLOCK TOKEN_CONSTANT TOKEN_DATA
%token TOKEN_QNC_TYPE TOKEN_METHOD TOKEN_DOUBLEPOURCENT TOKEN_POURCENT TOKEN_IMMEDIAT
%token TOKEN_DEUX_POINTS TOKEN_VIRGULE TOKEN_SEP TOKEN_POUVRANTE TOKEN_PFERMANTE
%token TOKEN_C_ASSIGN TOKEN_CSHARP_ASSIGN TOKEN_VHDL_ASSIGN TOKEN_LUSTRE_ASSIGN
%token TOKEN_ESTEREL_ASSIGN TOKEN_NUSMV_ASSIGN TOKEN_DEFAULT_ASSIGN TOKEN_EGAL
%token <num> TOKEN_NUMBER
%token TOKEN_REAL
%token <str> TOKEN_IDENT TOKEN_CHAINE_CARACTERES

%type <num> number reincarnate finalised initial_value assign_token
%type <str> ident possibletype initial_constant_value constant_string
%type <nums> number_list evalargument_list
%type <num> evalargument evalconstante
%type <eval> evaluation
%type <couple> doublenumber
%type <strs> argument_list
%type <assigns> constant_assign_list

%destructor { delete $$; } <nums> <strs> <couple> <assigns>
%destructor { if ($$) delete $$->arguments; delete $$; } <eval>

%start module_compile

%%

module_compile
  : name_declaration reincarnate finalised
      {
        P()->reincarnate = $2;
        P()->finalised = $3;
        P()->module = new Module(P()->moduleName);
        P()->wood = P()->module->getBddWood();
        P()->qnc_debuger_law(1, "module");
      }
    input_declarations output_declarations data_declarations local_declarations
    register_declarations
      {
        Module* m = P()->module;
        *m->getInputSignalList() = P()->inputs;
        *m->getOutputSignalList() = P()->outputs;
        *m->getDataSignalList() = P()->datas;
        *m->getLocalSignalList() = P()->locals;
      }
    memorized_declarations connexion_declarations wood_declaration binding_declaration
    data_declaration
      {
        Module* m = P()->module;
        m->setReincarnate(P()->reincarnate != 0);
        m->setFinalised(P()->finalised != 0);
        if (P()->binding_read) {
          P()->bindings.createbinding(m, P()->wood, P()->signals);
          std::list<long> ids;
          for (Signal* s : P()->locals)
            for (long id : s->getAllBddId(m, P()->wood)) ids.push_back(id);
          for (Signal* s : P()->outputs)
            for (long id : s->getAllBddId(m, P()->wood)) ids.push_back(id);
          P()->wood->compute_dates(ids);
        }
        m->update_user_type();
        P()->qnc_debuger_law(1, "end of module");
      }
  ;

name_declaration
  : TOKEN_MODULE ident { P()->moduleName = *$2; }
  ;
reincarnate : number { $$ = $1; } ;
finalised : number { $$ = $1; } ;

input_declarations
  : %empty
  | TOKEN_INPUTS { P()->section.clear(); } iol_list TOKEN_SEP
      {
        checkAwaited(P()->section, P()->inputNames, "input");
        for (Signal* s : P()->section) s->setInput();
        P()->inputs = P()->section;
        P()->qnc_debuger_law(1, "input");
      }
  ;
output_declarations
  : %empty
  | TOKEN_OUTPUTS { P()->section.clear(); } iol_list TOKEN_SEP
      {
        checkAwaited(P()->section, P()->outputNames, "output");
        for (Signal* s : P()->section) s->setOutput();
        P()->outputs = P()->section;
        P()->qnc_debuger_law(1, "output");
      }
  ;
data_declarations
  : %empty
  | TOKEN_DATA_SIGNAL { P()->section.clear(); } iol_list TOKEN_SEP
      {
        for (Signal* s : P()->section) s->setInput();
        P()->datas = P()->section;
        P()->qnc_debuger_law(1, "data signal");
      }
  ;
local_declarations
  : %empty
  | TOKEN_LOCALS { P()->section.clear(); } iol_list TOKEN_SEP
      {
        for (Signal* s : P()->section) {
          s->setLocal();
          s->setInput(false);
          s->setOutput(false);
        }
        P()->locals = P()->section;
        P()->qnc_debuger_law(1, "local");
      }
  ;

iol_list : iol | iol_list iol ;

iol
  : ident possibletype
      {
        Signal* s = P()->newSignal(*$1, true);
        if (!s) YYABORT;
        if ($2) s->setValueType(*$2, P()->module, P()->wood);
        P()->section.push_back(s);
      }
  ;
possibletype
  : %empty { $$ = nullptr; }
  | TOKEN_DEUX_POINTS ident { $$ = $2; }
  ;

register_declarations
  : %empty
  | TOKEN_REGISTERS register_list
  ;
register_list : register | register_list register ;
register
  : ident ident initial_value TOKEN_SEP
      {
        Signal* next = P()->findSignal(*$1 + P()->instance);
        Signal* actual = P()->findSignal(*$2 + P()->instance);
        if (!next) std::cerr << "register " << *$1 << " not defined as local ..." << std::endl;
        if (!actual) std::cerr << "register " << *$2 << " not defined as local ..." << std::endl;
        if (next && actual) {
          next->setRegister();
          actual->setRegister();
          P()->module->getRegisterList()->push_back(new regclass(actual, next, $3 != 0));
        }
        P()->qnc_debuger_law(1, "register");
      }
  ;
initial_value
  : TOKEN_NUMBER
      {
        $$ = $1;
        if ($1 > 1) {
          report_message("Warning: Boolean value expected to initialize register value\n");
          std::cerr << "Warning: Boolean value expected to initialize register value\n";
        }
      }
  ;

memorized_declarations
  : %empty
  | TOKEN_MEMORIZED memorized_list
  ;
memorized_list : memorized | memorized_list memorized ;
memorized
  : ident ident initial_constant_value TOKEN_SEP
      {
        Signal* pre = P()->findSignal(*$1 + P()->instance);
        if (!pre) {
          pre = P()->newSignal(*$1, true);
          if (!pre) YYABORT;
        }
        pre->setPre();
        pre->setInput();
        Signal* actual = P()->findSignal(*$2 + P()->instance);
        if (!actual) {
          std::cerr << " undeclared signal \"" << *$2 << "\" at line " << qnc_current_line()
                    << std::endl;
          YYABORT;
        }
        if (actual->isValued(P()->module, P()->wood))
          pre->setValueType(actual->getValueType(P()->module, P()->wood), P()->module, P()->wood);
        P()->module->getPreSignalList()->push_back(new memorizedSignal(pre, actual, $3 ? *$3 : ""));
        P()->qnc_debuger_law(1, "memorized");
      }
  ;
initial_constant_value
  : %empty { $$ = nullptr; }
  | ident { $$ = $1; }
  | TOKEN_NUMBER { $$ = P()->keep(std::to_string($1)); }
  ;

connexion_declarations
  : TOKEN_CONNEXION ident ident ident TOKEN_SEP
      {
        Signal* wires[3];
        const std::string* names[3] = {$2, $3, $4};
        for (int i = 0; i < 3; i++) {
          wires[i] = P()->newSignal(*names[i], false);
          if (!wires[i]) YYABORT;
          wires[i]->setWire();
        }
        P()->module->setSet(wires[0]);
        P()->module->setReset(wires[1]);
        P()->module->setRtl(wires[2]);
        P()->qnc_debuger_law(1, "connexion");
      }
  ;

wood_declaration
  : TOKEN_EQUATION_DEF number { P()->node_count = $2; }
    equations_list TOKEN_EXPRESSION_DEF expressions_list TOKEN_END
  ;
equations_list : %empty | equations_list equation ;
equation
  : number TOKEN_DEUX_POINTS number TOKEN_DEUX_POINTS number TOKEN_DEUX_POINTS number
    TOKEN_VIRGULE number
      {
        if ($1 < 0 || $1 >= P()->node_count || ($9 != 1 && $9 != -1)) {
          std::cerr << "detecting bad indice about parsed_nodes_table[]! skipping ..." << std::endl;
        } else {
          P()->node_table.erase($1);
          P()->node_table.emplace($1, parsed_nodes_class($3, $5, $7, int($9)));
        }
      }
  ;
expressions_list : %empty | expressions_list expression_bool ;
expression_bool
  : number number number TOKEN_DEUX_POINTS number TOKEN_VIRGULE number TOKEN_VIRGULE
    TOKEN_POUVRANTE number_list TOKEN_PFERMANTE
      {
        bool ok = P()->bddexpression_convert(P()->wood, $1, $2, $3, $5, $7, *$10);
        delete $10;
        if (!ok) YYABORT;
      }
  ;
number_list
  : %empty { $$ = new std::list<long>(); }
  | number_list number { $$ = $1; $$->push_back($2); }
  ;

binding_declaration
  : %empty
  | TOKEN_BINDING binding_list TOKEN_END TOKEN_EVALTABLE evaltable_list TOKEN_END
      { P()->binding_read = true; }
  ;
binding_list : %empty | binding_list binding ;
binding
  : doublenumber TOKEN_DEUX_POINTS TOKEN_VALUE number TOKEN_SEP
      {
        P()->bindings.binding_list.push_back(bindingparse{$1->premier, $1->second, $4, -1, -1});
        delete $1;
      }
  | doublenumber TOKEN_DEUX_POINTS TOKEN_VALUE number TOKEN_CLOCK doublenumber TOKEN_SEP
      {
        P()->bindings.binding_list.push_back(
            bindingparse{$1->premier, $1->second, $4, $6->premier, $6->second});
        delete $1;
        delete $6;
      }
  ;
doublenumber
  : TOKEN_POUVRANTE number TOKEN_VIRGULE number TOKEN_PFERMANTE
      {
        $$ = new couplelong();
        $$->premier = $2;
        $$->second = $4;
      }
  ;
evaltable_list : %empty | evaltable_list evaltable ;
evaltable
  : number TOKEN_DEUX_POINTS evaluation TOKEN_SEP
      {
        $3->nodeident = $1;
        auto& table = P()->bindings.evalnode_list;
        auto old = table.find($1);
        if (old != table.end()) {
          delete old->second->arguments;
          delete old->second;
          table.erase(old);
        }
        table[$1] = $3;
      }
  ;
evaluation
  : evalconstante { $$ = new evalnodeparse(); $$->nodetype = 0; $$->tableident = $1; }
  | number { $$ = new evalnodeparse(); $$->nodetype = 1; $$->tableident = $1; }
  | TOKEN_POURCENT number TOKEN_POUVRANTE evalargument_list TOKEN_PFERMANTE
      {
        $$ = new evalnodeparse();
        $$->nodetype = 3;
        $$->methodident = $2;
        $$->arguments = $4;
      }
  | TOKEN_DOUBLEPOURCENT number TOKEN_POUVRANTE evalargument_list TOKEN_PFERMANTE
      {
        $$ = new evalnodeparse();
        $$->nodetype = 2;
        $$->methodident = $2;
        $$->arguments = $4;
      }
  ;
evalconstante : TOKEN_IMMEDIAT number { $$ = $2; } ;
evalargument_list
  : %empty { $$ = nullptr; }
  | evalargument { $$ = new std::list<long>(); $$->push_back($1); }
  | evalargument_list TOKEN_VIRGULE evalargument
      {
        $$ = $1 ? $1 : new std::list<long>();
        $$->push_back($3);
      }
  ;
evalargument : number { $$ = $1; } | evalconstante { $$ = $1; } ;

data_declaration
  : %empty
  | TOKEN_DATA TOKEN_QNC_TYPE typedata_list method_declaration constant_declaration TOKEN_END
  ;
typedata_list : %empty | typedata_list typedata ;
typedata
  : ident TOKEN_SEP
      {
        if (!Compilation::GDataTypeTable) Compilation::GDataTypeTable = new DataTypeTable();
        if (Compilation::GDataTypeTable->getIndex(*$1) < 0) Compilation::GDataTypeTable->addType(*$1);
        P()->bindings.corres_type.push_back(Compilation::GDataTypeTable->getIndex(*$1));
      }
  ;
method_declaration : %empty | TOKEN_METHOD method_list ;
method_list : %empty | method_list met ;
met
  : ident ident TOKEN_POUVRANTE argument_list TOKEN_PFERMANTE TOKEN_SEP
      {
        std::list<std::string> args;
        if ($4)
          for (const std::string* a : *$4) args.push_back(*a);
        delete $4;
        if (!Compilation::GDataMethodTable) Compilation::GDataMethodTable = new DataMethodTable();
        if (Compilation::GDataMethodTable->getMethodIndex(*$2) < 0)
          Compilation::GDataMethodTable->addMethod(new MethodDecl(*$1, *$2, args.empty() ? nullptr : &args));
        P()->bindings.corres_method.push_back(Compilation::GDataMethodTable->getMethodIndex(*$2));
      }
  ;
argument_list
  : %empty { $$ = nullptr; }
  | ident { $$ = new std::list<const std::string*>(); $$->push_back($1); }
  | argument_list TOKEN_VIRGULE ident
      {
        $$ = $1 ? $1 : new std::list<const std::string*>();
        $$->push_back($3);
      }
  ;
constant_declaration : %empty | TOKEN_CONSTANT constant_list ;
constant_list : %empty | constant_list constant ;
constant
  : ident ident constant_string TOKEN_SEP
      {
        auto* values = new std::map<int, DataExpr*>();
        (*values)[TLanguage::DEFAULT] = new DataValue(*$3);
        P()->addConstant(*$1, *$2, values);
      }
  | ident ident constant_assign_list TOKEN_SEP
      {
        std::map<int, DataExpr*>* values = nullptr;
        if (!$3->empty()) {
          values = new std::map<int, DataExpr*>();
          for (const auto& [language, text] : *$3) (*values)[language] = new DataValue(*text);
        }
        delete $3;
        P()->addConstant(*$1, *$2, values);
      }
  ;
constant_string
  : TOKEN_CHAINE_CARACTERES
      {
        // Between the quotes, \" and \\ stand for a double quote and a backslash; any
        // other backslash is itself.
        std::string text;
        for (size_t i = 1; i + 1 < $1->size(); i++) {
          char c = (*$1)[i];
          if (c == '\\' && i + 2 < $1->size() && ((*$1)[i + 1] == '"' || (*$1)[i + 1] == '\\')) c = (*$1)[++i];
          text += c;
        }
        $$ = P()->keep(text);
      }
  ;
constant_assign_list
  : %empty { $$ = new std::map<int, const std::string*>(); }
  | constant_assign_list assign_token constant_string { $$ = $1; (*$$)[int($2)] = $3; }
  | constant_assign_list assign_token { $$ = $1; }
  ;
assign_token
  : TOKEN_C_ASSIGN { $$ = TLanguage::C; }
  | TOKEN_CSHARP_ASSIGN { $$ = TLanguage::CSHARP; }
  | TOKEN_VHDL_ASSIGN { $$ = TLanguage::VHDL; }
  | TOKEN_LUSTRE_ASSIGN { $$ = TLanguage::LUSTRE; }
  | TOKEN_ESTEREL_ASSIGN { $$ = TLanguage::ESTEREL; }
  | TOKEN_NUSMV_ASSIGN { $$ = TLanguage::SMV; }
  | TOKEN_DEFAULT_ASSIGN { $$ = TLanguage::DEFAULT; }
  ;

ident : TOKEN_IDENT { $$ = $1; } ;
number : TOKEN_NUMBER { $$ = $1; } ;

%%

void qncerror(const char* message) {
  std::cerr << "line " << qnc_current_line() << ": " << message << std::endl;
}

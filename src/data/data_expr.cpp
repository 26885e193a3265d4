// Value expressions other than signal values: typing, copies, dependencies and the
// text of each target language.
#include <iostream>

#include "data/data.h"
#include "data/data_links.h"
#include "util/compilation.h"

int DataExpr::Indexation = 0;

std::string DataExpr::getType(Module* module) {
  if (type.empty()) computeType(module);
  return type;
}

// ---------------------------------------------------------------------------
// Operator texts. Blanks are part of them.

std::string DataExpr::C_opname(int op, const std::string& t) {
  switch (op) {
    case Plus: return " add_" + t;
    case Minus: return " sub_" + t;
    case Mult: return " mult_" + t;
    case Div: return " div_" + t;
    case Uminus: return " neg_" + t;
    case And: return " && ";
    case Or: return " || ";
    case Not: return " !";
    case Eq: return " eq_" + t;
    case Neq: return " neq_" + t;
    case Inf: return " less_" + t;
    case Infe: return " lesseq_" + t;
    case Sup: return " sup_" + t;
    case Supe: return " supeq_" + t;
  }
  Compilation::IllegalOperationException("DataExpr::C_opname: invalid_operator");
}

// C# and the simulator's server share their operators.
static const char* csharpOperator(int op) {
  switch (op) {
    case DataExpr::Plus: return " + ";
    case DataExpr::Minus: return " - ";
    case DataExpr::Mult: return " * ";
    case DataExpr::Div: return " / ";
    case DataExpr::Uminus: return " -";
    case DataExpr::And: return " && ";
    case DataExpr::Or: return " | ";
    case DataExpr::Not: return " !";
    case DataExpr::Eq: return " == ";
    case DataExpr::Neq: return " != ";
    case DataExpr::Inf: return " < ";
    case DataExpr::Infe: return " <= ";
    case DataExpr::Sup: return " > ";
    case DataExpr::Supe: return " >= ";
  }
  return nullptr;
}

std::string DataExpr::CSharp_opname(int op) {
  const char* text = csharpOperator(op);
  if (!text) Compilation::IllegalOperationException("DataExpr::CShap_opname: invalid_operator");
  return text;
}

std::string DataExpr::QUARNS_opname(int op) {
  const char* text = csharpOperator(op);
  if (!text) Compilation::IllegalOperationException("DataExpr::QUARNS_opname: invalid_operator");
  return text;
}

// Lustre, Esterel and VHDL share their operators.
static const char* synchronousOperator(int op) {
  switch (op) {
    case DataExpr::Plus: return " + ";
    case DataExpr::Minus: return " - ";
    case DataExpr::Mult: return " * ";
    case DataExpr::Div: return " / ";
    case DataExpr::Uminus: return " -";
    case DataExpr::And: return " and ";
    case DataExpr::Or: return " or ";
    case DataExpr::Not: return " not";
    case DataExpr::Eq: return " = ";
    case DataExpr::Neq: return " <> ";
    case DataExpr::Inf: return " < ";
    case DataExpr::Infe: return " <= ";
    case DataExpr::Sup: return " > ";
    case DataExpr::Supe: return " >= ";
  }
  return nullptr;
}

std::string DataExpr::LUSTRE_opname(int op) {
  const char* text = synchronousOperator(op);
  if (!text) Compilation::IllegalOperationException("DataExpr::LUSTRE_opname: invalid_operator");
  return text;
}

std::string DataExpr::ESTEREL_opname(int op) {
  const char* text = synchronousOperator(op);
  if (!text) Compilation::IllegalOperationException("DataExpr::ESTEREL_opname: invalid_operator");
  return text;
}

std::string DataExpr::VHDL_opname(int op) {
  const char* text = synchronousOperator(op);
  if (!text) Compilation::IllegalOperationException("DataExpr::VHDL_opname: invalid_operator");
  return text;
}

std::string DataExpr::DEBUG_opname(int op) {
  switch (op) {
    case Plus: return " + ";
    case Minus: return " - ";
    case Mult: return " * ";
    case Div: return " / ";
    case Uminus: return " -";
    case And: return " and ";
    case Or: return " or ";
    case Not: return " not";
    case Eq: return " == ";
    case Neq: return " <> ";
    case Inf: return " < ";
    case Infe: return " <= ";
    case Sup: return " > ";
    case Supe: return " >= ";
  }
  std::cerr << "in DataExpr::_opname():" << op << " is an invalid_operator" << std::endl;
  return "";
}

static bool isComparison(int op) {
  return op == DataExpr::Eq || op == DataExpr::Neq || op == DataExpr::Inf ||
         op == DataExpr::Infe || op == DataExpr::Sup || op == DataExpr::Supe;
}

static int typeIndex(const std::string& type) {
  return Compilation::GDataTypeTable ? Compilation::GDataTypeTable->getIndex(type) : -1;
}

// Pushes e as a further entry of a flat evaluation table and writes its number.
static void pushEntry(std::ostream& out, DataExpr* e, std::list<DataExpr*>& list, int& next) {
  e->setIndex(next++);
  list.push_back(e);
  out << e->getIndex();
}

// Union of the children's sets; the first non-null one takes the others in.
static std::set<Signal*>* joinDependencies(std::set<Signal*>* into, std::set<Signal*>* more) {
  if (!into) return more;
  if (more) {
    into->insert(more->begin(), more->end());
    delete more;
  }
  return into;
}

// ---------------------------------------------------------------------------
// DataConstant

DataConstant::DataConstant(int index) : constantIndex(index) {}

ConstantDecl* DataConstant::getConstDecl() const {
  return Compilation::GDataConstantTable
             ? Compilation::GDataConstantTable->getConstantById(constantIndex)
             : nullptr;
}

// The declaration, or the fatal report of an index the table doesn't have.
static ConstantDecl* declarationOf(const DataConstant* c, const std::string& report) {
  ConstantDecl* decl = c->getConstDecl();
  if (!decl) Compilation::ModuleUndefinedConstantException(report);
  return decl;
}

std::string DataConstant::computeType(Module* module) {
  type = declarationOf(this, "constant: " + dataModuleName(module))->getType();
  return type;
}

void DataConstant::setIndex(int i) {
  DataExpr::setIndex(i);
  ConstantDecl* decl =
      declarationOf(this, std::to_string(constantIndex) + ": constant_table");
  if (decl->getEvalIndex() == -1) decl->setEvalIndex(i);
}

DataExpr* DataConstant::instanciate(Interface*, std::map<std::string, Signal*>*, Module*) {
  return new DataConstant(constantIndex);
}
DataExpr* DataConstant::applyRenaming(std::map<std::string, Signal*>*, Interface*) {
  return new DataConstant(constantIndex);
}
DataExpr* DataConstant::duplicate() { return new DataConstant(constantIndex); }
DataExpr* DataConstant::changeModule(Module*, Module*) { return new DataConstant(constantIndex); }

void DataConstant::print_debug(std::ostream& out) { out << "C: " << constantIndex; }

void DataConstant::QNC_put(std::ostream& out, long*, Module* module, std::list<DataExpr*>& list,
                           int& next, int top) {
  ConstantDecl* decl =
      declarationOf(this, std::to_string(constantIndex) + " " + dataModuleName(module));
  if (top) {
    out << "$" << decl->getConstantIndex();
    return;
  }
  if (decl->getEvalIndex() == -1) {
    int i = next++;
    std::map<int, DataExpr*>* values = decl->getValueTable();
    if (values && values->size() == 1 && values->begin()->first == TLanguage::DEFAULT) {
      DataExpr* value = values->begin()->second;
      value->setIndex(i);
      decl->setEvalIndex(i);
      list.push_back(value);
    } else {
      setIndex(i);
      list.push_back(this);
    }
  }
  out << decl->getEvalIndex();
}

// Constants stay in place in the debug trace: numbering them would take the evaluation
// numbers of their declarations away from .qnc writing.
void DataConstant::DEBUG_put(std::ostream& out, Module*, std::list<DataExpr*>&, int&, int top) {
  ConstantDecl* decl = getConstDecl();
  if (!decl) {
    out << "ERROR: should be a constant declaration ... : " << constantIndex;
    return;
  }
  out << "CONSTANT " << decl->getName() << (top ? " is root " : " is not root ") << "getIndex: "
      << decl->getConstantIndex();
}

void DataConstant::C_put(std::ostream& out, Module* module) {
  out << declarationOf(this, "constant: " + dataModuleName(module))->getName();
}
void DataConstant::CSharp_put(std::ostream& out, Module* module) { C_put(out, module); }
void DataConstant::LUSTRE_put(std::ostream& out, Module* module) { C_put(out, module); }
void DataConstant::ESTEREL_put(std::ostream& out, Module* module) { C_put(out, module); }
void DataConstant::VHDL_put(std::ostream& out, Module* module) { C_put(out, module); }

void DataConstant::DEBUG_put(std::ostream& out, Module* module) {
  ConstantDecl* decl = declarationOf(this, "constant: " + dataModuleName(module));
  out << "CONSTANT " << decl->getName();
  std::map<int, DataExpr*>* values = decl->getValueTable();
  if (!values) return;
  auto it = values->find(TLanguage::DEFAULT);
  if (it == values->end()) it = values->begin();
  out << "$(";
  it->second->DEBUG_put(out, module);
  out << ")";
}

// ---------------------------------------------------------------------------
// DataValue

DataValue::DataValue(const std::string& text) : text(text) {}

static DataValue* copyValue(const DataValue* v) {
  DataValue* copy = new DataValue(v->getText());
  copy->setConstDecl(v->getConstDecl());
  return copy;
}

std::string DataValue::computeType(Module*) { Compilation::UndefinedTypeException(text); }

DataExpr* DataValue::instanciate(Interface*, std::map<std::string, Signal*>*, Module*) {
  return copyValue(this);
}
DataExpr* DataValue::applyRenaming(std::map<std::string, Signal*>*, Interface*) {
  return copyValue(this);
}
DataExpr* DataValue::duplicate() { return copyValue(this); }
DataExpr* DataValue::changeModule(Module*, Module*) { return copyValue(this); }

void DataValue::print_debug(std::ostream& out) { out << text; }

void DataValue::QNC_put(std::ostream& out, long*, Module*, std::list<DataExpr*>&, int&, int) {
  out << "$" << (constDecl ? constDecl->getConstantIndex() : -1);
}

void DataValue::DEBUG_put(std::ostream& out, Module* module, std::list<DataExpr*>&, int&, int) {
  DEBUG_put(out, module);
}

void DataValue::C_put(std::ostream& out, Module*) { out << text; }
void DataValue::CSharp_put(std::ostream& out, Module*) { out << text; }
void DataValue::LUSTRE_put(std::ostream& out, Module*) { out << text; }
void DataValue::ESTEREL_put(std::ostream& out, Module*) { out << text; }
void DataValue::VHDL_put(std::ostream& out, Module*) { out << text; }

void DataValue::DEBUG_put(std::ostream& out, Module*) {
  out << "number:" << index << " (value=\"" << text << "\")";
}

// ---------------------------------------------------------------------------
// DataMethodCall

DataMethodCall::DataMethodCall(int method, std::list<DataExpr*>* args)
    : method(method), args(args) {}

MethodDecl* DataMethodCall::getMethodDecl() const {
  return Compilation::GDataMethodTable ? Compilation::GDataMethodTable->getMethodById(method)
                                       : nullptr;
}

static MethodDecl* methodOf(const DataMethodCall* call) {
  MethodDecl* decl = call->getMethodDecl();
  if (!decl) Compilation::UndefinedMethodException("method");
  return decl;
}

std::string DataMethodCall::computeType(Module*) {
  type = methodOf(this)->getReturnType();
  return type;
}

// A copy of the argument list through one operation on each argument.
template <class F>
static std::list<DataExpr*>* mapArgs(std::list<DataExpr*>* args, F f) {
  if (!args) return nullptr;
  auto* copy = new std::list<DataExpr*>();
  for (DataExpr* a : *args) copy->push_back(f(a));
  return copy;
}

DataExpr* DataMethodCall::instanciate(Interface* iface, std::map<std::string, Signal*>* renaming,
                                      Module* module) {
  return new DataMethodCall(
      method, mapArgs(args, [&](DataExpr* a) { return a->instanciate(iface, renaming, module); }));
}
DataExpr* DataMethodCall::applyRenaming(std::map<std::string, Signal*>* renaming,
                                        Interface* iface) {
  return new DataMethodCall(
      method, mapArgs(args, [&](DataExpr* a) { return a->applyRenaming(renaming, iface); }));
}
DataExpr* DataMethodCall::duplicate() {
  return new DataMethodCall(method, mapArgs(args, [](DataExpr* a) { return a->duplicate(); }));
}
DataExpr* DataMethodCall::changeModule(Module* newModule, Module* oldModule) {
  return new DataMethodCall(
      method, mapArgs(args, [&](DataExpr* a) { return a->changeModule(newModule, oldModule); }));
}

std::set<Signal*>* DataMethodCall::computeDependencySet() {
  std::set<Signal*>* deps = nullptr;
  if (args)
    for (DataExpr* a : *args) deps = joinDependencies(deps, a->computeDependencySet());
  return deps;
}

void DataMethodCall::computeValueSignalDependencies(std::set<Signal*>& s) {
  if (args)
    for (DataExpr* a : *args) a->computeValueSignalDependencies(s);
}

void DataMethodCall::print_debug(std::ostream& out) {
  MethodDecl* decl = getMethodDecl();
  if (decl)
    out << decl->getName();
  else
    out << "method " << method;
  out << "(";
  if (args) {
    bool first = true;
    for (DataExpr* a : *args) {
      if (!first) out << ", ";
      first = false;
      a->print_debug(out);
    }
  }
  out << ")";
}

void DataMethodCall::QNC_put(std::ostream& out, long* corres, Module* module,
                             std::list<DataExpr*>& list, int& next, int top) {
  if (!hasIndex() && !top) {
    pushEntry(out, this, list, next);
    return;
  }
  out << "%" << method << "(";
  if (args) {
    bool first = true;
    for (DataExpr* a : *args) {
      if (!first) out << ", ";
      first = false;
      a->QNC_put(out, corres, module, list, next, 0);
    }
  }
  out << ")";
}

void DataMethodCall::DEBUG_put(std::ostream& out, Module* module, std::list<DataExpr*>& list,
                               int& next, int top) {
  if (!hasIndex() && !top) {
    pushEntry(out, this, list, next);
    return;
  }
  out << "PREDEFINE METHOD number:" << method << "(";
  if (args) {
    bool first = true;
    for (DataExpr* a : *args) {
      if (!first) out << ", ";
      first = false;
      a->DEBUG_put(out, module, list, next, 0);
    }
  }
  out << ")";
}

// Name, "(", the arguments in one language joined by ", ", ")".
template <class F>
static void putCall(std::ostream& out, const DataMethodCall* call, F put) {
  out << methodOf(call)->getName() << "(";
  if (call->getArgList()) {
    bool first = true;
    for (DataExpr* a : *call->getArgList()) {
      if (!first) out << ", ";
      first = false;
      put(a);
    }
  }
  out << ")";
}

void DataMethodCall::C_put(std::ostream& out, Module* module) {
  putCall(out, this, [&](DataExpr* a) { a->C_put(out, module); });
}
void DataMethodCall::CSharp_put(std::ostream& out, Module* module) {
  putCall(out, this, [&](DataExpr* a) { a->CSharp_put(out, module); });
}
void DataMethodCall::LUSTRE_put(std::ostream& out, Module* module) {
  putCall(out, this, [&](DataExpr* a) { a->LUSTRE_put(out, module); });
}
void DataMethodCall::ESTEREL_put(std::ostream& out, Module* module) {
  putCall(out, this, [&](DataExpr* a) { a->ESTEREL_put(out, module); });
}
void DataMethodCall::VHDL_put(std::ostream& out, Module* module) {
  putCall(out, this, [&](DataExpr* a) { a->VHDL_put(out, module); });
}

void DataMethodCall::DEBUG_put(std::ostream& out, Module* module) {
  out << "METHOD number" << method << "(";
  if (args) {
    bool first = true;
    for (DataExpr* a : *args) {
      if (!first) out << ", ";
      first = false;
      a->DEBUG_put(out, module);
    }
  }
  out << ")";
}

// ---------------------------------------------------------------------------
// DataBinaryOp

DataBinaryOp::DataBinaryOp(int op, DataExpr* left, DataExpr* right)
    : op(op), left(left), right(right) {}

// The type of an operation, comparisons included, is that of its left operand.
std::string DataBinaryOp::computeType(Module* module) {
  std::string leftType = left->getType(module);
  std::string rightType = right->getType(module);
  if (leftType != rightType) {
    std::cerr << "*** Type check error in binary operator: " << "type: \"" << leftType
              << "\" differs from type: \"" << rightType << "\" --> return \"?type_error?\""
              << std::endl;
    type = "?type_error?";
  } else {
    type = leftType;
  }
  return type;
}

DataExpr* DataBinaryOp::instanciate(Interface* iface, std::map<std::string, Signal*>* renaming,
                                    Module* module) {
  return new DataBinaryOp(op, left->instanciate(iface, renaming, module),
                          right->instanciate(iface, renaming, module));
}
DataExpr* DataBinaryOp::applyRenaming(std::map<std::string, Signal*>* renaming,
                                      Interface* iface) {
  return new DataBinaryOp(op, left->applyRenaming(renaming, iface),
                          right->applyRenaming(renaming, iface));
}
DataExpr* DataBinaryOp::duplicate() {
  return new DataBinaryOp(op, left->duplicate(), right->duplicate());
}
DataExpr* DataBinaryOp::changeModule(Module* newModule, Module* oldModule) {
  return new DataBinaryOp(op, left->changeModule(newModule, oldModule),
                          right->changeModule(newModule, oldModule));
}

std::set<Signal*>* DataBinaryOp::computeDependencySet() {
  return joinDependencies(left->computeDependencySet(), right->computeDependencySet());
}

void DataBinaryOp::computeValueSignalDependencies(std::set<Signal*>& s) {
  left->computeValueSignalDependencies(s);
  right->computeValueSignalDependencies(s);
}

void DataBinaryOp::print_debug(std::ostream& out) {
  out << "(";
  left->print_debug(out);
  out << DEBUG_opname(op);
  right->print_debug(out);
  out << ")";
}

void DataBinaryOp::QNC_put(std::ostream& out, long* corres, Module* module,
                           std::list<DataExpr*>& list, int& next, int top) {
  if (!hasIndex() && !top) {
    pushEntry(out, this, list, next);
    return;
  }
  out << "%%" << op + NbPredefOp * typeIndex(getType(module)) << "(";
  left->QNC_put(out, corres, module, list, next, 0);
  out << ", ";
  right->QNC_put(out, corres, module, list, next, 0);
  out << ")";
}

void DataBinaryOp::DEBUG_put(std::ostream& out, Module* module, std::list<DataExpr*>& list,
                             int& next, int top) {
  if (!hasIndex() && !top) {
    pushEntry(out, this, list, next);
    return;
  }
  if (op >= 0 && op < SignalVal)
    out << "PREDEFINE BINARY OP: \"" << DEBUG_opname(op) << "\"(";
  else
    out << "USER BINARY OP number: " << op << "(";
  if (left)
    left->DEBUG_put(out, module, list, next, 0);
  else
    out << "abnormal null! Left argument of a binary operator have to be defined ...";
  out << ", ";
  if (right)
    right->DEBUG_put(out, module, list, next, 0);
  else
    out << "abnormal null! Right argument of a binary operator have to be defined ...";
  out << ")";
}

void DataBinaryOp::C_put(std::ostream& out, Module* module) {
  if (op == And || op == Or) {
    left->C_put(out, module);
    out << C_opname(op, "");
    right->C_put(out, module);
    return;
  }
  out << C_opname(op, left->getType(module)) << "(";
  left->C_put(out, module);
  out << ",";
  right->C_put(out, module);
  out << ")";
}

void DataBinaryOp::CSharp_put(std::ostream& out, Module* module) {
  out << "(";
  left->CSharp_put(out, module);
  out << CSharp_opname(op);
  right->CSharp_put(out, module);
  out << ")";
}

void DataBinaryOp::LUSTRE_put(std::ostream& out, Module* module) {
  out << "(";
  left->LUSTRE_put(out, module);
  out << LUSTRE_opname(op);
  right->LUSTRE_put(out, module);
  out << ")";
}

void DataBinaryOp::ESTEREL_put(std::ostream& out, Module* module) {
  out << "(";
  left->ESTEREL_put(out, module);
  out << ESTEREL_opname(op);
  right->ESTEREL_put(out, module);
  out << ")";
}

// A comparison gives a bit in VHDL.
void DataBinaryOp::VHDL_put(std::ostream& out, Module* module) {
  out << (isComparison(op) ? "'1' when (" : "(");
  left->VHDL_put(out, module);
  out << VHDL_opname(op);
  right->VHDL_put(out, module);
  out << (isComparison(op) ? ") else '0'" : ")");
}

void DataBinaryOp::DEBUG_put(std::ostream& out, Module* module) {
  out << "PREDEFINE BINARY OP:" << DEBUG_opname(op) << "(";
  if (left)
    left->DEBUG_put(out, module);
  else
    out << "abnormal null! Left argument of a binary operator have to be defined ...";
  out << ", ";
  if (right)
    right->DEBUG_put(out, module);
  else
    out << "abnormal null! Right argument of a binary operator have to be defined ...";
  out << ")";
}

// ---------------------------------------------------------------------------
// DataUnaryOp

DataUnaryOp::DataUnaryOp(int op, DataExpr* operand) : op(op), operand(operand) {}

std::string DataUnaryOp::computeType(Module* module) {
  type = operand->getType(module);
  return type;
}

DataExpr* DataUnaryOp::instanciate(Interface* iface, std::map<std::string, Signal*>* renaming,
                                   Module* module) {
  return new DataUnaryOp(op, operand->instanciate(iface, renaming, module));
}
DataExpr* DataUnaryOp::applyRenaming(std::map<std::string, Signal*>* renaming, Interface* iface) {
  return new DataUnaryOp(op, operand->applyRenaming(renaming, iface));
}
DataExpr* DataUnaryOp::duplicate() { return new DataUnaryOp(op, operand->duplicate()); }
DataExpr* DataUnaryOp::changeModule(Module* newModule, Module* oldModule) {
  return new DataUnaryOp(op, operand->changeModule(newModule, oldModule));
}

std::set<Signal*>* DataUnaryOp::computeDependencySet() { return operand->computeDependencySet(); }

void DataUnaryOp::computeValueSignalDependencies(std::set<Signal*>& s) {
  operand->computeValueSignalDependencies(s);
}

void DataUnaryOp::print_debug(std::ostream& out) {
  out << DEBUG_opname(op) << "(";
  operand->print_debug(out);
  out << ")";
}

void DataUnaryOp::QNC_put(std::ostream& out, long* corres, Module* module,
                          std::list<DataExpr*>& list, int& next, int top) {
  if (!hasIndex() && !top) {
    pushEntry(out, this, list, next);
    return;
  }
  out << "%%" << op + NbPredefOp * typeIndex(getType(module)) << "(";
  operand->QNC_put(out, corres, module, list, next, 0);
  out << ")" << std::endl;
}

void DataUnaryOp::DEBUG_put(std::ostream& out, Module* module, std::list<DataExpr*>& list,
                            int& next, int top) {
  if (!hasIndex() && !top) {
    pushEntry(out, this, list, next);
    return;
  }
  out << "PREDEFINE UNARY OP number: " << op << "(";
  if (operand)
    operand->DEBUG_put(out, module, list, next, 0);
  else
    out << "abnormal null! Argument of an unary operator have to be defined ...";
  out << ")";
}

void DataUnaryOp::C_put(std::ostream& out, Module* module) {
  out << C_opname(op, operand->getType(module)) << "(";
  operand->C_put(out, module);
  out << ")";
}

void DataUnaryOp::CSharp_put(std::ostream& out, Module* module) {
  out << CSharp_opname(op);
  operand->CSharp_put(out, module);
}

// The word " not" would stick to a name behind it ("not" and "x" make "notx").
static std::string separated(const std::string& opname) {
  return opname == " not" ? opname + " " : opname;
}

void DataUnaryOp::LUSTRE_put(std::ostream& out, Module* module) {
  out << separated(LUSTRE_opname(op));
  operand->LUSTRE_put(out, module);
}

void DataUnaryOp::ESTEREL_put(std::ostream& out, Module* module) {
  out << separated(ESTEREL_opname(op));
  operand->ESTEREL_put(out, module);
}

void DataUnaryOp::VHDL_put(std::ostream& out, Module* module) {
  out << separated(VHDL_opname(op));
  operand->VHDL_put(out, module);
}

void DataUnaryOp::DEBUG_put(std::ostream& out, Module* module) {
  out << "UNARY OP number:" << op << "(";
  if (operand)
    operand->DEBUG_put(out, module);
  else
    out << "abnormal null! Argument of an unary operator have to be defined ...";
  out << ")";
}

#include "data/data.h"

#include <cstdlib>
#include <iostream>

#include "data/data_links.h"
#include "util/compilation.h"

// ===========================================================================
// Types

void DataTypeTable::addType(const std::string& name) {
  if (table.count(name) == 0) {
    int next = static_cast<int>(table.size());
    table[name] = next;
  }
}

bool DataTypeTable::isDefined(const std::string& name) const { return table.count(name) != 0; }

int DataTypeTable::getIndex(const std::string& name) const {
  auto it = table.find(name);
  return it == table.end() ? -1 : it->second;
}

std::string DataTypeTable::getTypeById(int i) const {
  for (const auto& [name, index] : table)
    if (index == i) return name;
  return "undefined";
}

void DataTypeTable::print(std::ostream& out, bool numbered) const {
  out << "type:" << std::endl;
  for (int i = 0; i < static_cast<int>(table.size()); i++) {
    if (numbered) out << "   " << i << ": ";
    out << getTypeById(i) << ";" << std::endl;
  }
  out << std::endl;
}

void DataTypeTable::C_put(std::ostream& out) const {
  for (const auto& entry : table)
    out << "extern const " << entry.first << " zero_" << entry.first << ";" << std::endl;
}

void DataTypeTable::CSharp_put(std::ostream& out) const {
  for (const auto& entry : table)
    out << "public const " << entry.first << " zero_" << entry.first << ";" << std::endl;
}

void DataTypeTable::LUSTRE_put(std::ostream& out) const {
  for (const auto& entry : table)
    out << "const " << entry.first << " " << zero_lustre(entry.first) << ";" << std::endl;
}

std::string DataTypeTable::zero_lustre(const std::string& type) {
  if (type == "bool") return "false";
  if (type == "int") return "0";
  if (type == "real") return "0.0";
  return "zero_" + type;
}

// ===========================================================================
// Methods

MethodDecl::MethodDecl(const std::string* returnType, const std::string* name,
                       const std::list<std::string>* argTypes)
    : returnType(returnType ? *returnType : std::string()),
      name(name ? *name : std::string()),
      argTypes(argTypes ? new std::list<std::string>(*argTypes) : nullptr),
      index(-1) {}

MethodDecl::MethodDecl(const std::string& returnType, const std::string& name,
                       const std::list<std::string>* argTypes)
    : MethodDecl(&returnType, &name, argTypes) {}

bool MethodDecl::operator==(const MethodDecl& other) const {
  if (returnType != other.returnType || name != other.name || index != other.index) return false;
  if (!argTypes || !other.argTypes) return argTypes == other.argTypes;
  return *argTypes == *other.argTypes;
}

static void putArgTypes(std::ostream& out, const std::list<std::string>* types) {
  if (!types) return;
  bool first = true;
  for (const auto& t : *types) {
    if (!first) out << ", ";
    out << t;
    first = false;
  }
}

void MethodDecl::print(std::ostream& out) const {
  out << returnType << " " << name << "(";
  putArgTypes(out, argTypes);
  out << ")";
}

std::ostream& operator<<(std::ostream& out, const MethodDecl& m) {
  m.print(out);
  return out;
}

void MethodDecl::C_put(std::ostream& out) const {
  out << "extern " << returnType << " " << name << "(";
  putArgTypes(out, argTypes);
  out << ");" << std::endl;
}

void MethodDecl::CSharp_put(std::ostream& out) const {
  out << "public " << returnType << " " << name << "(";
  putArgTypes(out, argTypes);
  out << ");" << std::endl;
}

// Lustre has the user's methods from its own imported declarations.
void MethodDecl::LUSTRE_put(std::ostream&) const {}

DataMethodTable::DataMethodTable() : methods(new std::list<MethodDecl*>()) {}

MethodDecl* DataMethodTable::getMethod(const std::string& name) const {
  if (!methods) return nullptr;
  for (MethodDecl* m : *methods)
    if (m->getName() == name) return m;
  return nullptr;
}

int DataMethodTable::getMethodIndex(const std::string& name) const {
  MethodDecl* m = getMethod(name);
  return m ? m->getIndex() : -1;
}

MethodDecl* DataMethodTable::getMethodById(int i) const {
  if (!methods) return nullptr;
  for (MethodDecl* m : *methods)
    if (m->getIndex() == i) return m;
  return nullptr;
}

void DataMethodTable::addMethod(MethodDecl* decl) {
  if (!methods) methods = new std::list<MethodDecl*>();
  if (getMethod(decl->getName()))
    Compilation::AlreadyDefinedException(decl->getName() +
                                         ": overloading_of_method_not_yet_implemented");
  decl->setIndex(methods->empty() ? 0 : methods->back()->getIndex() + 1);
  methods->push_back(decl);
}

void DataMethodTable::print(std::ostream& out, bool numbered) const {
  if (!methods) return;
  out << "method:" << std::endl;
  for (MethodDecl* m : *methods) {
    if (numbered) out << "   " << m->getIndex() << ": ";
    m->print(out);
    out << ";" << std::endl;
  }
  out << std::endl;
}

void DataMethodTable::C_put(std::ostream& out) const {
  if (methods)
    for (MethodDecl* m : *methods) m->C_put(out);
}

void DataMethodTable::CSharp_put(std::ostream& out) const {
  if (methods)
    for (MethodDecl* m : *methods) m->CSharp_put(out);
}

void DataMethodTable::LUSTRE_put(std::ostream& out) const {
  if (methods)
    for (MethodDecl* m : *methods) m->LUSTRE_put(out);
}

// ===========================================================================
// Constants

// A declaration "T c := ;" brings a null value: it is a constant without value.
ConstantDecl::ConstantDecl(const std::string& type, const std::string& name,
                           std::map<int, DataExpr*>* values)
    : type(type), name(name), values(values), constantIndex(-1), evalIndex(-1) {
  if (!values) return;
  for (auto it = values->begin(); it != values->end();)
    it = it->second ? std::next(it) : values->erase(it);
  if (values->empty()) this->values = nullptr;
}

DataExpr* ConstantDecl::valueFor(int language, const char* languageName) const {
  auto it = values->find(language);
  if (it == values->end()) it = values->find(TLanguage::DEFAULT);
  if (it == values->end())
    Compilation::fatal(std::string("ERROR: no initial value provided for ") + languageName +
                       " language for the constant: \"" + name + "\"");
  return it->second;
}

void ConstantDecl::C_put(std::ostream& out, Module* module) const {
  if (!values) out << "extern ";
  out << "const " << type << " " << name;
  if (values) {
    out << " = ";
    valueFor(TLanguage::C, "C")->C_put(out, module);
  }
  out << ";";
}

// A constant without value is set by the user's code: a static field, since a C# const
// needs its value in the declaration.
void ConstantDecl::CSharp_put(std::ostream& out, Module* module) const {
  if (!values) {
    out << "public static " << type << " " << name << ";";
    return;
  }
  out << "private const " << type << " " << name << " = ";
  valueFor(TLanguage::CSHARP, "CSharp")->CSharp_put(out, module);
  out << ";";
}

void ConstantDecl::LUSTRE_put(std::ostream& out, Module* module) const {
  out << "const " << " " << name;
  if (values) {
    out << " = ";
    valueFor(TLanguage::LUSTRE, "LUSTRE")->LUSTRE_put(out, module);
  }
  out << ";";
}

void ConstantDecl::ESTEREL_put(std::ostream& out, Module*) const {
  out << "constant " << " " << name << ": " << type << ";";
}

void ConstantDecl::VHDL_put(std::ostream& out, Module* module) const {
  out << "constant" << " " << name << " : " << type;
  if (values) {
    out << " := ";
    valueFor(TLanguage::VHDL, "VHDL")->VHDL_put(out, module);
  }
  out << ";";
}

void ConstantDecl::print(std::ostream& out) const {
  out << type << " " << name;
  if (!values) return;
  out << " value: ";
  bool only = values->size() == 1;
  bool first = true;
  for (const auto& [language, value] : *values) {
    if (!first) out << " ";
    first = false;
    switch (language) {
      case TLanguage::VHDL: out << "vhdl:"; break;
      case TLanguage::C: out << "C:"; break;
      case TLanguage::CSHARP: out << "C#:"; break;
      case TLanguage::SMV: out << "NuSmv:"; break;
      case TLanguage::LUSTRE: out << "Lustre:"; break;
      case TLanguage::ESTEREL: out << "Esterel:"; break;
      case TLanguage::DEFAULT:
        if (!only) out << "default:";
        break;
      default:
        std::cerr << "****error:ConstantDecl:print: constant:" << name
                  << " : wrong target language\n";
        std::exit(1);
    }
    value->print_debug(out);
  }
}

// An Esterel value is a legal declaration, so it has its label here too.
void ConstantDecl::DEBUG_put(std::ostream& out, Module* module) const {
  if (!values) out << "extern ";
  out << type << " " << name;
  if (!values) return;
  for (const auto& [language, value] : *values) {
    switch (language) {
      case TLanguage::C: out << ":c="; break;
      case TLanguage::CSHARP: out << ":csharp="; break;
      case TLanguage::VHDL: out << ":vhdl="; break;
      case TLanguage::LUSTRE: out << ":lustre="; break;
      case TLanguage::ESTEREL: out << ":esterel="; break;
      case TLanguage::SMV: out << ":nusmv="; break;
      case TLanguage::DEFAULT: out << ":default="; break;
      default:
        std::cerr << "*****internal error: ConstantDecl::DEBUG_put: constant " << name
                  << " wrong target language specification\n";
        std::exit(1);
    }
    value->DEBUG_put(out, module);
  }
}

DataConstantTable::DataConstantTable() : constants(new std::list<ConstantDecl*>()) {}

ConstantDecl* DataConstantTable::getConstant(const std::string& name) const {
  if (!constants) return nullptr;
  for (ConstantDecl* c : *constants)
    if (c->getName() == name) return c;
  return nullptr;
}

int DataConstantTable::getConstantIndex(const std::string& name) const {
  ConstantDecl* c = getConstant(name);
  return c ? c->getConstantIndex() : -1;
}

ConstantDecl* DataConstantTable::getConstantById(int i) const {
  if (!constants || i < 0) return nullptr;
  for (ConstantDecl* c : *constants)
    if (c->getConstantIndex() == i) return c;
  return nullptr;
}

bool DataConstantTable::isAlreadyDefined(const std::string& name) const {
  return getConstant(name) != nullptr;
}

void DataConstantTable::addConstant(ConstantDecl* decl) {
  if (!constants) constants = new std::list<ConstantDecl*>();
  int highest = -1;
  for (ConstantDecl* c : *constants) {
    if (c->getName() == decl->getName()) {
      std::cerr << "Warning: constant " << decl->getName() << " already defined!" << std::endl;
      Compilation::AlreadyDefinedException(decl->getName() + ": constant");
    }
    if (c->getConstantIndex() > highest) highest = c->getConstantIndex();
  }
  bool literal = true;
  if (decl->getValueTable())
    for (const auto& entry : *decl->getValueTable())
      if (!entry.second->isDataValue()) literal = false;
  // A computed constant has no number: getConstantById doesn't reach it.
  if (literal) decl->setIndex(highest + 1);
  constants->push_back(decl);
}

void DataConstantTable::print(std::ostream& out, bool numbered) const {
  if (!constants) return;
  out << "constant:" << std::endl;
  for (ConstantDecl* c : *constants) {
    if (c->getConstantIndex() == -1) continue;
    if (numbered) out << "   " << c->getConstantIndex() << ": ";
    c->print(out);
    out << ";" << std::endl;
  }
  out << std::endl;
}

void DataConstantTable::C_put(std::ostream& out, Module* module) const {
  if (constants)
    for (ConstantDecl* c : *constants) {
      c->C_put(out, module);
      out << std::endl;
    }
}

void DataConstantTable::CSharp_put(std::ostream& out, Module* module) const {
  if (constants)
    for (ConstantDecl* c : *constants) {
      c->CSharp_put(out, module);
      out << std::endl;
    }
}

void DataConstantTable::LUSTRE_put(std::ostream& out, Module* module) const {
  if (constants)
    for (ConstantDecl* c : *constants) {
      c->LUSTRE_put(out, module);
      out << std::endl;
    }
}

void DataConstantTable::ESTEREL_put(std::ostream& out, Module* module) const {
  if (constants)
    for (ConstantDecl* c : *constants) {
      c->ESTEREL_put(out, module);
      out << std::endl;
    }
}

void DataConstantTable::VHDL_put(std::ostream& out, Module* module) const {
  if (constants)
    for (ConstantDecl* c : *constants) {
      c->VHDL_put(out, module);
      out << std::endl;
    }
}

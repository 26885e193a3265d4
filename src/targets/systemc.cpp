// The step function of a module in C form for a SystemC wrapper: user types come from
// M_typedecl.h, data actions are collected behind the equations, pre signals are left out.
#include <iostream>
#include <map>
#include <set>
#include <vector>

#include "bdd/bddpp.h"
#include "data/data.h"
#include "util/compilation.h"
#include "equations/Bddexpression.h"
#include "model/module.h"
#include "signals/signal_manager.h"
#include "targets/formats.h"

namespace {

// The heads of both files, and the user's types, methods and constants: a constant with
// a value table goes to the code, every other declaration to the header.
void systemcOpening(std::ostream& code, std::ostream& header, Module* mod, const std::string& m) {
  code << "#include \"" << m << "_sc.h\"" << "\n" << "#define false 0" << "\n" << "#define true (!false)" << "\n"
       << "\n";
  header << "#ifndef " << m << "_H" << "\n" << "#define " << m << "_H" << "\n";
  if (Compilation::GDataTypeTable) {
    code << "/* Following types should be defined in file " << "\"" << m << "_typedecl.h\":" << "\n";
    bool first = true;
    for (const auto& entry : Compilation::GDataTypeTable->getTypeTable()) {
      code << (first ? "" : ", ") << entry.first;
      first = false;
    }
    code << ";" << "\n" << "*/" << "\n";
    header << "#include \"" << m << "_typedecl.h\"" << "\n";
    Compilation::GDataTypeTable->C_put(header);
  }
  if (Compilation::GDataMethodTable) Compilation::GDataMethodTable->C_put(header);
  if (Compilation::GDataConstantTable && Compilation::GDataConstantTable->getConstantList())
    for (ConstantDecl* c : *Compilation::GDataConstantTable->getConstantList()) {
      std::cerr << c->getName() << "\n";
      std::ostream& out = c->getValueTable() ? code : header;
      c->C_put(out, mod);
      out << "\n";
    }
}

// The step's data: the values of unclocked bindings before the equations, then each
// clocked output's value after them, chosen by the first of its bindings that is present.
void systemcData(std::ostream& code, Module* mod, Bddexpressionwood* wood, const std::string& n,
                 std::list<std::string>& pointer_wires) {
  auto wire = [&](long id) { return wood->Name_var_by_index(id); };
  code << "//Data Handling" << "\n" << "//-------------" << "\n";
  std::vector<Signal*> clocks;
  std::map<Signal*, std::vector<DataBinding*>> by_clock;
  for (auto& [key, b] : *mod->getDataTable()) {
    Signal* c = b->getClock();
    if (!c) {
      // The equations read the over wire of the bound signal.
      code << wire(b->getSignal()->getOverBddId(mod, wood)) << " = ";
      b->getValue()->C_put(code, mod);
      code << ";" << "\n";
      continue;
    }
    if (!by_clock.count(c)) clocks.push_back(c);
    by_clock[c].push_back(b);
  }
  code << "  " << "/* outputs computing */" << "\n";
  wood->Put_c(code, n, pointer_wires);
  for (Signal* c : clocks) {
    const std::string s = c->isOutput() ? "*" : "";
    const std::string w = wire(c->getInitialOverBddId(mod, wood));
    code << "if (" << s << w << ")  {" << "\n";
    bool first_binding = true;
    for (DataBinding* b : by_clock[c]) {
      if (!first_binding) code << "   else";
      first_binding = false;
      code << "  if (" << wire(b->getSignal()->getOverBddId(mod, wood)) << ") {" << s << w << "_val = ";
      b->getValue()->C_put(code, mod);
      code << ";}" << "\n";
    }
    const std::string t = c->getValueType(mod);
    code << "   else { " << s << w << "_val = " << "zero_" << t << ";}" << "\n" << "}" << "\n";
  }
}

}  // namespace

void Module::SYSTEMC_put(std::ostream& code, std::ostream& header) {
  const std::string& m = name;
  const std::string n = m + "_node";
  systemcOpening(code, header, this, m);

  Bddexpressionwood* wood = getBddWood();
  if (!wood) {
    header << "#endif\n";
    return;
  }
  auto wire = [&](long id) { return wood->Name_var_by_index(id); };
  auto has_id = [](long id) { return id >= 0; };
  auto bound = [&](Signal* s) { return getBinding(s->getOriginalName()) != nullptr; };
  std::list<regclass*> registers = registerList ? *registerList : std::list<regclass*>();
  std::list<Signal*> inputs = inputList ? *inputList : std::list<Signal*>();
  std::list<Signal*> outputs = outputList ? *outputList : std::list<Signal*>();
  std::list<Signal*> locals = localList ? *localList : std::list<Signal*>();
  auto actual = [&](regclass* r) { return wire(r->actual_var()->getOverBddId(this, wood)); };

  if (!registers.empty()) {
    code << "/* global state variables */" << "\n" << "int ";
    bool first = true;
    for (regclass* r : registers) {
      if (!first) code << "," << "\n" << "    ";
      first = false;
      code << actual(r);
    }
    code << ";" << "\n" << "\n";
  }
  header << "extern void " << m << "_reset_automaton();" << "\n";
  code << "void " << m << "_reset_automaton()" << "{" << "\n";
  for (regclass* r : registers) code << "  " << actual(r) << "= " << r->is_initialy_true() << ";" << "\n";
  code << "}" << "\n" << "\n";

  code << "void " << m << "_automaton(";
  header << "extern void " << m << "_automaton(";
  std::list<std::string> pointer_wires;
  bool first = true;
  for (Signal* s : inputs) {
    long over = s->getOverBddId(this, wood);
    if (!has_id(over) || bound(s)) continue;
    const std::string w = wire(over);
    code << (first ? "int " : ", int ") << w;
    header << (first ? "int " : ", int  ") << w;
    first = false;
    if (s->isValued(this)) {
      const std::string t = s->getValueType(this);
      code << ", " << t << " " << w << "_val";
      header << ", " << t << " " << w << "_val";
    }
  }
  // An output's final value is written to its initial occurrence, as in C.
  for (Signal* s : outputs) {
    long over = s->getInitialOverBddId(this, wood);
    if (!has_id(s->getOverBddId(this, wood)) || bound(s)) continue;
    const std::string w = wire(over);
    const std::string sep = first ? "int* " : ", int*";
    first = false;
    code << sep << w;
    header << sep << w;
    if (s->isValued(this)) {
      const std::string t = s->getValueType(this);
      code << ", " << t << "* " << w << "_val";
      header << ", " << t << "* " << w << "_val";
    }
    pointer_wires.push_back(w);
  }
  code << ")" << "\n" << "{" << "\n";
  header << ");" << "\n";

  std::set<long> used = wood->Set_of_index_used_variables();
  for (Signal* s : inputs) used.erase(s->getOverBddId(this, wood));
  for (regclass* r : registers) used.erase(r->actual_var()->getOverBddId(this, wood));
  // An output's under wire is no parameter: it stays a local of the step.
  for (Signal* s : outputs) used.erase(s->getInitialOverBddId(this, wood));
  for (long id : used)
    if (has_id(id)) code << "  int " << wire(id) << ";" << "\n";
  for (Signal* s : locals) {
    if (!s->isValued(this) || getBinding(s->getName(this))) continue;
    long over = s->getInitialOverBddId(this, wood);
    if (!has_id(over)) continue;
    // The value of a local is written and read under its over wire.
    const std::string t = s->getValueType(this);
    code << "  " << t << "  " << wire(over) << "_val" << " = zero_" << t << ";" << "\n";
  }
  code << "  int " << n << "[" << wood->my_bdd_manager()->Bdd_total_size() << "];" << "\n" << "\n";

  if (!dataTable) {
    wood->Put_c(code, n, pointer_wires);
  } else {
    systemcData(code, this, wood, n, pointer_wires);
  }

  if (!registers.empty()) {
    code << "\n" << "  " << "/* refresh registers */" << "\n";
    for (regclass* r : registers)
      code << "  " << actual(r) << "= " << wire(r->next_var()->getOverBddId(this, wood)) << ";" << "\n";
    code << "\n";
  }
  code << "}" << "\n" << "\n";
  header << "#endif\n";
}

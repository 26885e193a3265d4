// The C target: a header and a code file that define the step function of a finalized
// module, its initialisation and its global state.
#include <cstdlib>
#include <fstream>
#include <functional>
#include <iostream>
#include <map>
#include <set>
#include <type_traits>

#include "bdd/bddpp.h"
#include "data/data.h"
#include "util/compilation.h"
#include "equations/Bddexpression.h"
#include "model/module.h"
#include "signals/signal_manager.h"
#include "targets/formats.h"

namespace {

// The step reads an output back through its pointer parameter.
std::string read_name(const std::string& name, std::list<std::string>& pointer_wires) {
  return item_in(pointer_wires, name) ? "(*" + name + ")" : name;
}

bool has_id(long id) { return id >= 0; }

}  // namespace

void bddpp_manager::Print_node_for_eval(const std::string& or_op, const std::string& and_op,
                                        const std::string& not_op, const std::string& close_not,
                                        const std::string& var_prefix, const std::string& var_suffix,
                                        const std::string& zero, const std::string& end_of_line,
                                        const std::string& node_array, std::ostream& out, bdd_node* n) {
  print_nodes(out, n, one, {or_op, and_op, not_op, close_not, var_prefix, var_suffix, zero, end_of_line, node_array},
              [this](long id) { return Name_var_by_id(id); });
}

void Bddexpression::put_c(std::ostream& out, const std::string& node_array, std::list<std::string>& pointer_wires) {
  if (!variable.initialised() || !right.initialised()) return;
  bddpp_manager* manager = right.manager_ref();
  const std::string w = manager->Name_var_by_bdd(variable);
  const std::string left = item_in(pointer_wires, w) ? "  *" + w : "   " + w;
  if (manager->Bdd_is_var(right)) {
    out << left << "= " << read_name(manager->Name_var_by_bdd(right), pointer_wires) << ";";
    return;
  }
  bdd_node* terminal = manager->Bdd_one().node();
  print_nodes(out, right.node(), terminal, {" || ", " && ", "!", "", "", "", "0", ";", node_array},
              [&](long id) { return read_name(manager->Name_var_by_id(id), pointer_wires); });
  out << left << (right.link_type() == 1 ? "= " : "= !") << node_array << "[" << right.node()->global_id()
      << "];";
}

void Bddexpressionwood::Put_c(std::ostream& out, const std::string& node_array,
                              std::list<std::string>& pointer_wires) {
  manager->Bdd_global_clear_marks();
  for (long id : earliest_sort()) {
    Bddexpression* e = exp_by_index(id);
    if (!e) continue;
    e->put_c(out, node_array, pointer_wires);
    out << "\n";
  }
}

void Module::C_put_equation(std::ostream& code, const std::string& node_array,
                            std::list<std::string>& pointer_wires) {
  Bddexpressionwood* wood = getBddWood();
  if (!wood) return;
  wood->my_bdd_manager()->Bdd_global_clear_marks();
  for (long id : wood->earliest_sort()) {
    Bddexpression* e = wood->exp_by_index(id);
    if (!e) continue;
    SignalRef* ref = signalManager->getSignalRefById(id, wood);
    const std::string signal_name = ref ? ref->getCurrentName() : e->my_bddname();
    if (e->getAbstraction()) {
      DataBinding* b = ref ? getBinding(signal_name) : nullptr;
      if (!b) {
        std::cerr << "***error: abstract equation without bindind for:" << signal_name << std::endl;
        exit(1);
      }
      code << "  " << e->my_bddname() << " = ";
      b->getValue()->C_put(code, this);
      code << ";" << "\n";
      continue;
    }
    e->put_c(code, node_array, pointer_wires);
    code << "\n";
    DataBinding* b = ref ? getBinding(signal_name) : nullptr;
    if (!b || !b->getClock()) continue;
    Signal* clock = b->getClock();
    const std::string s = clock->isOutput() ? "*" : "";
    const std::string c = wood->Name_var_by_index(clock->getInitialOverBddId(this, wood));
    const std::string t = b->getSignal()->getValueType(this);
    code << "   if (" << e->my_bddname() << ") " << "\n";
    code << "   {" << "\n";
    code << "         " << s << c << "_val = copy_" << t << "(";
    b->getValue()->C_put(code, this);
    code << ")" << ";" << "\n";
    code << "   }" << "\n";
  }
}

namespace {

// The pieces of one module's C text, in the order C_put writes them.
struct CWriter {
  Module* mod;
  std::ostream& code;
  std::ostream& header;
  Bddexpressionwood* wood;
  std::string m;
  std::list<regclass*> registers;
  std::list<memorizedSignal*> pres;
  std::list<Signal*> inputs, outputs, locals;
  std::list<std::string> pointer_wires;

  CWriter(Module* module, std::ostream& c, std::ostream& h)
      : mod(module), code(c), header(h), wood(module->getBddWood()), m(module->getName()) {
    auto copy = [](auto* l) { return l ? *l : std::remove_pointer_t<decltype(l)>(); };
    registers = copy(mod->getRegisterList());
    pres = copy(mod->getPreSignalList());
    inputs = copy(mod->getInputSignalList());
    outputs = copy(mod->getOutputSignalList());
    locals = copy(mod->getLocalSignalList());
  }

  std::string wire(long id) const { return wood->Name_var_by_index(id); }
  bool bound(Signal* s) const { return mod->getBinding(s->getOriginalName()) != nullptr; }

  void openingAndData() {
    code << "#include \"" << m << ".h\"" << "\n" << "#define false 0" << "\n" << "#define true (!false)" << "\n"
         << "\n";
    header << "#ifndef " << m << "_H" << "\n" << "#define " << m << "_H" << "\n";
    if (Compilation::GDataTypeTable) {
      for (const auto& entry : Compilation::GDataTypeTable->getTypeTable())
        header << "#include \"C_data_user_" << entry.first << ".h\"" << "\n";
      Compilation::GDataTypeTable->C_put(header);
    }
    if (Compilation::GDataMethodTable) Compilation::GDataMethodTable->C_put(header);
    if (Compilation::GDataConstantTable && Compilation::GDataConstantTable->getConstantList())
      for (ConstantDecl* c : *Compilation::GDataConstantTable->getConstantList()) {
        std::ostream& out = c->getValueTable() ? code : header;
        c->C_put(out, mod);
        out << "\n";
      }
  }

  void globals() {
    if (!registers.empty()) {
      code << "/* global state variables */" << "\n" << "int ";
      bool first = true;
      for (regclass* r : registers) {
        if (!first) code << "," << "\n" << "    ";
        first = false;
        code << wire(r->actual_var()->getOverBddId(mod, wood));
      }
      code << ";" << "\n" << "\n";
    }
    if (!pres.empty()) {
      code << "/* global pre variables */" << "\n";
      for (memorizedSignal* p : pres) {
        Signal* pre = p->getPre();
        code << "int " << m << "_" << pre->getOriginalName() << ";" << "\n";
        if (pre->isValued(mod))
          code << pre->getValueType(mod) << " " << m << "_" << pre->getOriginalName() << "_val;" << "\n";
      }
      code << "\n";
    }
  }

  void resetFunction() {
    header << "extern void " << m << "_reset_automaton();" << "\n";
    code << "void " << m << "_reset_automaton()" << "{" << "\n";
    if (!registers.empty()) {
      code << "  /* global state variables initialisation */" << "\n";
      for (regclass* r : registers)
        code << "  " << wire(r->actual_var()->getOverBddId(mod, wood)) << "= " << r->is_initialy_true() << ";"
             << "\n";
    }
    if (!pres.empty()) {
      code << "  /* pre variables initialisation */" << "\n";
      for (memorizedSignal* p : pres) {
        Signal* pre = p->getPre();
        const std::string& pn = pre->getOriginalName();
        code << "  " << m << "_" << pn << "= 0;" << "\n";
        if (pre->isValued(mod) && has_id(pre->getOverBddId(mod, wood))) {
          const std::string t = pre->getValueType(mod);
          code << "  " << m << "_" << pn << "_val = copy_" << t << "(" << p->getInitialValue() << ");" << "\n";
        }
      }
      code << "\n";
    }
    code << "}" << "\n" << "\n";
  }

  // Inputs by value, outputs through pointers; a bound signal has no parameter.
  void stepHead() {
    code << "void " << m << "_automaton(";
    header << "extern void " << m << "_automaton(";
    bool first = true;
    auto input_parameter = [&](const std::string& w, Signal* s) {
      if (first) {
        code << "int ";
        header << "int ";
      } else {
        code << ", int ";
        header << ", int  ";
      }
      first = false;
      code << w;
      header << w;
      if (s->isValued(mod)) {
        const std::string t = s->getValueType(mod);
        code << ", " << t << " " << w << "_val";
        header << ", " << t << " " << w << "_val";
      }
    };
    auto output_parameter = [&](const std::string& w, Signal* s) {
      const std::string sep = first ? "int* " : ", int*";
      first = false;
      code << sep << w;
      header << sep << w;
      if (s->isValued(mod)) {
        const std::string t = s->getValueType(mod);
        code << ", " << t << "* " << w << "_val";
        header << ", " << t << "* " << w << "_val";
      }
      pointer_wires.push_back(w);
    };
    const bool finalised = mod->getFinalised();
    for (Signal* s : inputs) {
      long over = s->getOverBddId(mod, wood);
      if (!has_id(over) || bound(s)) continue;
      input_parameter(wire(over), s);
      long under = s->getUnderBddId(mod, wood);
      if (!finalised && has_id(under)) input_parameter(wire(under), s);
    }
    for (Signal* s : outputs) {
      long over = s->getInitialOverBddId(mod, wood);
      if (!has_id(over) || bound(s)) continue;
      output_parameter(wire(over), s);
      long under = s->getInitialUnderBddId(mod, wood);
      if (!finalised && has_id(under)) output_parameter(wire(under), s);
    }
    code << ")" << "\n" << "{" << "\n";
    header << ");" << "\n";
  }

  void stepLocals() {
    std::set<long> used = wood->Set_of_index_used_variables();
    for (Signal* s : inputs)
      if (has_id(s->getOverBddId(mod, wood))) used.erase(s->getInitialOverBddId(mod, wood));
    for (memorizedSignal* p : pres)
      if (has_id(p->getPre()->getOverBddId(mod, wood))) used.erase(p->getPre()->getInitialOverBddId(mod, wood));
    for (Signal* s : outputs)
      if (has_id(s->getOverBddId(mod, wood))) used.erase(s->getInitialOverBddId(mod, wood));
    for (regclass* r : registers) used.erase(r->actual_var()->getOverBddId(mod, wood));
    if (!mod->getFinalised())
      for (Signal* s : outputs)
        if (has_id(s->getUnderBddId(mod, wood))) used.erase(s->getInitialUnderBddId(mod, wood));
    for (long id : used)
      if (id >= 0) code << "  int " << wire(id) << ";" << "\n";
    for (Signal* s : locals) {
      long over = s->getInitialOverBddId(mod, wood);
      if (!has_id(over) || !s->isValued(mod) || mod->getBinding(s->getName(mod))) continue;
      const std::string t = s->getValueType(mod);
      code << "  " << t << " " << wire(over) << "_val" << " = copy_" << t << "(zero_" << t << ");" << "\n";
    }
    code << "  int " << m << "_node" << "[" << wood->my_bdd_manager()->Bdd_total_size() << "];" << "\n";
    for (Signal* s : outputs) {
      long over = s->getInitialOverBddId(mod, wood);
      if (!has_id(over) || bound(s) || !s->isValued(mod)) continue;
      const std::string t = s->getValueType(mod);
      code << "  *" << wire(over) << "_val = " << "copy_" << t << "(zero_" << t << ");" << "\n";
    }
    if (!pres.empty()) {
      for (memorizedSignal* p : pres) {
        Signal* pre = p->getPre();
        const std::string& pn = pre->getOriginalName();
        code << "  int " << pn << "= " << m << "_" << pn << ";" << "\n";
        if (pre->isValued(mod)) {
          const std::string t = pre->getValueType(mod);
          code << "  " << t << " " << pn << "_val= copy_" << t << "(" << m << "_" << pn << "_val);" << "\n";
        }
      }
      code << "\n";
    }
    // An absent valued input carries the zero of its type.
    for (Signal* s : inputs) {
      long over = s->getOverBddId(mod, wood);
      if (!has_id(over) || bound(s) || !s->isValued(mod)) continue;
      const std::string w = wire(over), t = s->getValueType(mod);
      code << "  if (" << w << " == 0)" << "\n" << "     {" << "\n"
           << "          " << w << "_val= " << "copy_" << t << "(zero_" << t << ");" << "\n"
           << "     }" << "\n";
    }
  }

  // A valued output that stayed absent carries the zero of its type.
  void absentOutputValues() {
    std::map<std::string, Signal*> clocks;
    for (Signal* s : outputs) {
      std::list<DataBinding*>* bindings = mod->getDataBindingByClock(s);
      if (bindings && !bindings->empty()) clocks[s->getInternalName()] = s;
      delete bindings;
    }
    for (auto& [x, s] : clocks) {
      const std::string t = s->getValueType(mod);
      code << "   if (! *" << x << ")" << "\n" << "   {" << "\n"
           << "      *" << x << "_val = copy_" << t << "(zero_" << t << ");" << "\n" << "   }" << "\n";
    }
  }

  void refreshState() {
    if (!registers.empty()) {
      code << "\n" << "  " << "/* refresh registers */" << "\n";
      for (regclass* r : registers)
        code << "  " << wire(r->actual_var()->getOverBddId(mod, wood)) << "= "
             << wire(r->next_var()->getOverBddId(mod, wood)) << ";" << "\n";
      code << "\n";
    }
    if (!pres.empty()) {
      code << "  /* refresh global pre variables */" << "\n";
      for (memorizedSignal* p : pres) {
        Signal* pre = p->getPre();
        Signal* a = p->getActual();
        const std::string& pn = pre->getOriginalName();
        const std::string r = a->isLocal() ? wire(a->getInitialOverBddId(mod, wood)) : a->getOriginalName();
        const std::string prefix = a->isOutput() ? "*" : "";
        code << "  " << m << "_" << pn << "= " << prefix << r << ";" << "\n";
        if (pre->isValued(mod))
          code << "  " << m << "_" << pn << "_val= copy_" << pre->getValueType(mod) << "(" << prefix << r
               << "_val);" << "\n";
      }
      code << "\n";
    }
  }
};

}  // namespace

void Module::C_put(std::ostream& code, std::ostream& header) {
  CWriter w(this, code, header);
  w.openingAndData();
  if (!w.wood) {
    header << "#endif\n";
    return;
  }
  w.globals();
  w.resetFunction();
  w.stepHead();
  w.stepLocals();
  code << "  " << " /* outputs computing */" << "\n";
  C_put_equation(code, name + "_node", w.pointer_wires);
  w.absentOutputValues();
  w.refreshState();
  code << "}" << "\n" << "\n";
  header << "#endif\n";
}

void Module::printC() {
  // The header is the code file's name less its last two characters, plus ".h".
  const std::string code_name = target_path(name, ".c", false);
  const std::string header_name = code_name.substr(0, code_name.size() - 2) + ".h";
  std::ofstream code(code_name);
  std::ofstream header(header_name);
  C_put(code, header);
}

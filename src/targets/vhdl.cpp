// The VHDL target: one entity and one architecture per module. A step takes one period
// of clk: inputs are sampled and the state refreshed on the rising edge, the node array
// settles between the edges, outputs are taken from it on the falling edge.
#include <cctype>
#include <fstream>
#include <iostream>
#include <set>
#include <string>

#include "bdd/bddpp.h"
#include "data/data.h"
#include "util/compilation.h"
#include "equations/Bddexpression.h"
#include "model/module.h"
#include "signals/signal_manager.h"
#include "targets/formats.h"
#include "util/Stringpp.h"
#include "util/version.h"

namespace {

bool has_id(long id) { return id >= 0; }

std::string element(const std::string& node_array, long gid) {
  return node_array + "(" + std::to_string(gid) + ")";
}

// Element of the variable at `index`: the global id of the variable's own node.
long var_element(bddpp_manager* manager, long index) {
  if (index < 0 || index >= manager->Nb_bdd_vars) return 0;
  return manager->var_nodes[manager->id_of_index[index]]->global_id();
}

}  // namespace

std::string bdd::vhdl_node_name(const std::string& node_array) const {
  return std::string(link_ == 1 ? "" : "not ") + node_array + "(" + std::to_string(node_ ? node_->global_id() : 0) +
         ")";
}

// The neutral value of a value type in VHDL. The logic types take the literal of their
// zero, since VHDL gives no meaning to "false" as a std_logic or a bit.
std::string zero_vhdl(const std::string& type) {
  if (type == "std_logic" || type == "bit") return "'0'";
  if (type == "int") return "0";
  if (type == "real") return "0.0";
  return "zero_" + type;
}

void bddpp_manager::Print_node_for_eval_VHDL(const std::string& node_array, std::ostream& out, bdd_node* n) {
  if (!n || n->mark) return;
  n->mark = 1;
  if (n == one) {
    out << "      " << element(node_array, n->global_id()) << " <= '1';" << "\n";
    return;
  }
  if (n->then_node == one && n->else_node == one && n->else_link_type == -1) return;
  Print_node_for_eval_VHDL(node_array, out, n->then_node);
  Print_node_for_eval_VHDL(node_array, out, n->else_node);
  const std::string c = element(node_array, var_nodes[n->var_id]->global_id());
  out << "      " << element(node_array, n->global_id()) << " <= " << "(" << c << " and "
      << element(node_array, n->then_node->global_id()) << ")";
  if (n->else_node)
    out << " or " << "(not " << c << " and " << (n->else_link_type == 1 ? "" : "not ")
        << element(node_array, n->else_node->global_id()) << ")";
  out << ";" << "\n";
}

void Bddexpression::put_vhdl_quarnc(std::ostream& out, const std::string& node_array,
                                    std::list<std::string>& outputs) {
  if (!variable.initialised() || !right.initialised()) return;
  bddpp_manager* manager = right.manager_ref();
  const std::string w = manager->Name_var_by_bdd(variable);
  const std::string v = element(node_array, variable.node()->global_id());
  const bool output = item_in(outputs, w);
  if (!manager->Bdd_is_var(right)) {
    manager->Print_node_for_eval_VHDL(node_array, out, right.node());
    // An output is also kept in the array, where the module reads it back.
    out << "      " << v << (right.link_type() == 1 ? " <= " : " <= not ")
        << element(node_array, right.node()->global_id()) << ";";
  } else {
    out << "      " << v << " <= " << element(node_array, right.node()->global_id()) << ";";
  }
  if (output) out << "\n" << "      -- final output evaluation of " << w << " in process";
}

namespace {

// A source name that is a reserved word of VHDL is written as an extended identifier.
std::string vhdl_name(const std::string& name) {
  static const std::set<std::string> reserved = {
      "abs", "access", "after", "alias", "all", "and", "architecture", "array", "assert", "attribute",
      "begin", "block", "body", "buffer", "bus", "case", "component", "configuration", "constant",
      "disconnect", "downto", "else", "elsif", "end", "entity", "exit", "file", "for", "function",
      "generate", "generic", "group", "guarded", "if", "impure", "in", "inertial", "inout", "is",
      "label", "library", "linkage", "literal", "loop", "map", "mod", "nand", "new", "next", "nor",
      "not", "null", "of", "on", "open", "or", "others", "out", "package", "port", "postponed",
      "procedure", "process", "pure", "range", "record", "register", "reject", "rem", "report",
      "return", "rol", "ror", "select", "severity", "signal", "shared", "sla", "sll", "sra", "srl",
      "subtype", "then", "to", "transport", "type", "unaffected", "units", "until", "use",
      "variable", "wait", "when", "while", "with", "xnor", "xor"};
  std::string lower = name;
  for (char& c : lower) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return reserved.count(lower) ? "\\" + name + "\\" : name;
}

// Writes a module as one VHDL entity and its architecture, phase by phase: the heading
// and libraries, the entity, the declarations, the clocked process (reset, rising edge,
// falling edge) and the concurrent assignments.
struct VhdlWriter {
  Module* mod;
  std::ostream& out;
  Bddexpressionwood* wood;
  bddpp_manager* manager;
  const std::string m, l, n;
  std::list<regclass*> registers;
  std::list<memorizedSignal*> pres;
  std::list<Signal*> inputs, outputs, locals;
  std::list<std::string> output_names;
  long nb_vars;

  VhdlWriter(Module* module, std::ostream& o, int altera)
      : mod(module),
        out(o),
        wood(module->getBddWood()),
        manager(wood->my_bdd_manager()),
        m(module->getName()),
        l(altera ? "std_logic" : "bit"),
        n(m + "_node"),
        nb_vars(manager->Nb_bdd_vars) {
    if (module->getRegisterList()) registers = *module->getRegisterList();
    if (module->getPreSignalList()) pres = *module->getPreSignalList();
    if (module->getInputSignalList()) inputs = *module->getInputSignalList();
    if (module->getOutputSignalList()) outputs = *module->getOutputSignalList();
    if (module->getLocalSignalList()) locals = *module->getLocalSignalList();
    for (Signal* s : outputs) output_names.push_back(s->getOriginalName());
  }

  std::string wire(long id) const { return wood->Name_var_by_index(id); }
  long var_gid(long id) const { return var_element(manager, id); }
  // Element of an input: the node of its over variable.
  std::string input_element(Signal* s) const { return element(n, var_gid(s->getOverBddId(mod, wood))); }
  bool valued(Signal* s) const { return s->isValued(mod); }
  std::string type(Signal* s) const { return s->getValueType(mod); }
  Bddexpression* equation(long id) const { return id < wood->Nb_bdd_vars() ? wood->Exp_table()[id] : nullptr; }

  void heading(std::istream& libs) {
    out << "-- VHDL generation by QUARNF version " << quarn::kVersionText << "-4" << " from " << m
        << " Quarn compiled code" << "\n" << "\n";
    if (libs) {
      std::string line;
      while (std::getline(libs, line)) out << line << "\n";
    } else {
      out << "-- no vhdl_libs.inc file found ..." << "\n" << "\n";
    }
  }

  void entity() {
    out << "entity " << m << " is" << "\n" << "  port(" << "\n";
    if (!mod->getFinalised()) {
      out << "       s_SET" << m << " : in " << l << ";" << "\n";
      out << "       s_RESET" << m << " : in " << l << ";" << "\n";
    }
    for (Signal* s : inputs) {
      out << "       " << vhdl_name(s->getOriginalName()) << " : in " << l << ";" << "\n";
      long under = s->getUnderBddId(mod, wood);
      if (!mod->getFinalised() && has_id(under)) out << "       " << wire(under) << " : in " << l << ";" << "\n";
      if (valued(s)) out << "       " << s->getOriginalName() << "_val : in " << type(s) << ";" << "\n";
    }
    // A port list cannot end with a separator: without outputs, clk is the last port.
    out << "       reset : in " << l << ";" << "\n" << "       clk : in " << l << (outputs.empty() ? "" : ";")
        << "\n";
    std::list<std::string> ports;
    for (Signal* s : outputs) {
      ports.push_back("       " + vhdl_name(s->getOriginalName()) + " : out " + l);
      long under = s->getInitialUnderBddId(mod, wood);
      if (!mod->getFinalised() && has_id(under)) ports.push_back("       " + wire(under) + " : out " + l);
      if (valued(s)) ports.push_back("       " + s->getOriginalName() + "_val : out " + type(s));
    }
    bool first = true;
    for (const std::string& p : ports) {
      if (!first) out << ";" << "\n";
      first = false;
      out << p;
    }
    if (!ports.empty()) out << "\n";
    out << "     );" << "\n" << "end " << m << ";" << "\n" << "\n";
  }

  void declarations() {
    out << "architecture " << m << "_a of " << m << " is" << "\n" << "\n";
    out << "TYPE array_" << n << " IS ARRAY (" << manager->Bdd_total_size() << " downto 0) OF " << l << " ;"
        << "\n";
    if (Compilation::GDataConstantTable) Compilation::GDataConstantTable->VHDL_put(out, mod);
    out << "\n";

    // Signals of the architecture; a local without a wire in this wood has none. A value is
    // read and written under the signal's first occurrence.
    auto declare = [&](const std::string& w, const std::string& t) {
      out << "signal " << w << " : " << t << ";" << "\n";
    };
    for (Signal* s : inputs)
      if (valued(s)) declare(wire(s->getOverBddId(mod, wood)) + "_locval", type(s));
    for (Signal* s : locals) {
      long over = s->getOverBddId(mod, wood);
      if (!has_id(over)) continue;
      declare(wire(over), l);
      if (valued(s)) declare(wire(s->getInitialOverBddId(mod, wood)) + "_locval", type(s));
    }
    for (Signal* s : outputs)
      if (valued(s)) declare(wire(s->getInitialOverBddId(mod, wood)) + "_locval", type(s));
    for (memorizedSignal* p : pres) {
      Signal* pre = p->getPre();
      declare(vhdl_name(pre->getOriginalName()), l);
      if (valued(pre)) declare(pre->getOriginalName() + "_locval", type(pre));
    }
    out << "signal " << n << "_starter : " << l << ";" << "\n";
    out << "signal " << n << " : array_" << n << ";" << "\n" << "\n";
  }

  void resetBranch() {
    out << "begin" << "\n" << "-- state and output computation" << "\n" << "process (reset,clk)" << "\n"
        << "begin" << "\n";

    // Reset.
    out << "  if (reset = '0') then" << "\n";
    for (regclass* r : registers)
      out << "      " << wire(r->actual_var()->getOverBddId(mod, wood)) << " <= "
          << (r->is_initialy_true() ? "'1'" : "'0'") << ";" << "\n";
    for (memorizedSignal* p : pres) {
      Signal* pre = p->getPre();
      out << "      " << vhdl_name(pre->getOriginalName()) << " <= '0';" << "\n";
      if (valued(pre)) out << "      " << pre->getOriginalName() << "_locval <= " << p->getInitialValue() << ";" << "\n";
    }
    for (Signal* s : inputs) {
      out << "      " << input_element(s) << " <= " << "'0';" << "\n";
      if (valued(s)) out << "      " << s->getOriginalName() << "_locval <= zero_" << type(s) << ";" << "\n";
    }
    for (long id = 0; id < nb_vars; ++id)
      if (equation(id) && item_in(output_names, wire(id))) out << "      " << vhdl_name(wire(id)) << " <= '0';" << "\n";
    for (Signal* s : outputs)
      if (valued(s)) out << "      " << s->getOriginalName() << "_val <= " << zero_vhdl(type(s)) << ";" << "\n";
    out << "      " << n << "_starter <= '1';" << "\n";
  }

  void sampleInputs() {
    for (Signal* s : inputs) {
      out << "        " << input_element(s) << " <= " << vhdl_name(s->getOriginalName()) << ";" << "\n";
      if (valued(s)) out << "        " << s->getOriginalName() << "_locval <= " << s->getOriginalName() << "_val;" << "\n";
    }
  }

  void risingEdge() {
    // Rising edge.
    out << "  elsif ( clk'event and clk='1') then" << "\n" << "     if(" << n << "_starter = '1') then" << "\n";
    sampleInputs();
    out << "        " << n << "_starter <= '0';" << "\n" << "     else" << "\n";
    for (regclass* r : registers)
      out << "        " << wire(r->actual_var()->getOverBddId(mod, wood)) << " <= "
          << wire(r->next_var()->getOverBddId(mod, wood)) << ";" << "\n";
    for (memorizedSignal* p : pres) {
      Signal* pre = p->getPre();
      Signal* a = p->getActual();
      std::string r;
      if (a->isLocal()) {
        // The presence of a local is its first occurrence, read where the array holds it.
        r = element(n, var_gid(a->getInitialOverBddId(mod, wood)));
        if (valued(pre)) output_names.push_back(wire(a->getOverBddId(mod, wood)));
      } else if (a->isOutput()) {
        Bddexpression* e = equation(a->getInitialOverBddId(mod, wood));
        r = e && e->my_bdd_exp().initialised() ? e->my_bdd_exp().vhdl_node_name(n) : vhdl_name(a->getOriginalName());
      } else {
        // An input is read where it was sampled: its port already holds the next instant.
        r = input_element(a);
      }
      out << "        " << vhdl_name(pre->getOriginalName()) << " <= " << r << ";" << "\n";
      if (valued(pre)) {
        // The value of a local lives under its first occurrence, where it is assigned.
        const std::string rv = a->isLocal() ? wire(a->getInitialOverBddId(mod, wood)) : a->getOriginalName();
        out << "        " << pre->getOriginalName() << "_locval <= " << rv << "_locval" << ";" << "\n";
      }
    }
    sampleInputs();
    out << "     end if;" << "\n";
  }

  void fallingEdge() {
    // Falling edge.
    out << "  elsif ( clk'event and clk='0') then" << "\n" << "     if(" << n << "_starter = '0') then" << "\n";
    for (long id = 0; id < nb_vars; ++id) {
      Bddexpression* e = equation(id);
      if (e && e->my_bdd_exp().initialised() && item_in(output_names, wire(id)))
        out << "         " << vhdl_name(wire(id)) << " <= " << e->my_bdd_exp().vhdl_node_name(n) << ";" << "\n";
    }
    for (Signal* s : outputs)
      if (valued(s)) out << "         " << s->getOriginalName() << "_val <= " << s->getOriginalName() << "_locval;" << "\n";
    out << "     end if;" << "\n" << "  end if;" << "\n" << "end process;" << "\n" << "\n";
  }

  void concurrent() {
    // Concurrent part.
    out << "-- actualisation" << "\n";
    manager->Bdd_global_clear_marks();
    for (long id = 0; id < nb_vars; ++id)
      if (Bddexpression* e = equation(id)) {
        e->put_vhdl_quarnc(out, n, output_names);
        out << "\n";
      }
    for (regclass* r : registers) {
      const long a = var_gid(r->actual_var()->getInitialOverBddId(mod, wood));
      const long x = var_gid(r->next_var()->getInitialOverBddId(mod, wood));
      out << "      " << wire(r->next_var()->getOverBddId(mod, wood)) << " <= " << element(n, x) << ";" << "\n";
      out << "      " << element(n, a) << " <= " << wire(r->actual_var()->getOverBddId(mod, wood)) << ";" << "\n";
    }
    // A pre signal is read by the equations through its element.
    for (memorizedSignal* p : pres) {
      long id = p->getPre()->getOverBddId(mod, wood);
      if (has_id(id)) out << "      " << element(n, var_gid(id)) << " <= " << vhdl_name(p->getPre()->getOriginalName()) << ";" << "\n";
    }
    std::list<Signal*> clocks;
    for (long id : wood->earliest_sort()) {
      Bddexpression* e = equation(id);
      if (!e) continue;
      const std::string signal_name = mod->getSignalNameById(id, wood);
      DataBinding* b = mod->getBinding(signal_name);
      if (e->getAbstraction()) {
        if (!b) {
          std::cerr << "***error: abstract equation without bindind for:" << signal_name << std::endl;
          exit(1);
        }
        out << "      " << element(n, e->my_bdd_var().node()->global_id()) << " <= ";
        b->getValue()->VHDL_put(out, mod);
        out << ";" << "\n";
      } else if (b && b->getClock()) {
        bool known = false;
        for (Signal* c : clocks) known = known || c == b->getClock();
        if (!known) clocks.push_back(b->getClock());
      }
    }
    for (Signal* s : clocks) {
      out << "      " << wire(s->getInitialOverBddId(mod, wood)) << "_locval <=" << "\n";
      std::list<DataBinding*>* bindings = mod->getDataBindingByClock(s);
      if (bindings)
        for (DataBinding* b : *bindings) {
          out << "         ";
          b->getValue()->VHDL_put(out, mod);
          out << " when (" << element(n, var_gid(b->getSignal()->getInitialOverBddId(mod, wood))) << " = '1') else"
              << "\n";
        }
      delete bindings;
      out << "           " << zero_vhdl(s->getValueType(mod)) << ";" << "\n";
    }
    out << "end " << m << "_a;" << "\n" << "\n";
  }
};

}  // namespace

void Module::VHDL_put(std::ostream& out, std::istream& libs, int altera) {
  if (!getBddWood()) return;
  VhdlWriter w(this, out, altera);
  w.heading(libs);
  w.entity();
  w.declarations();
  w.resetBranch();
  w.risingEdge();
  w.fallingEdge();
  w.concurrent();
}

void Module::printVHDL() {
  const std::string file = target_path(name, ".vhd", false);
  {
    std::ofstream tmp(file + "_tmp");
    std::ifstream libs("vhdl_libs.inc");
    VHDL_put(tmp, libs, Compilation::VHDLALTERAFlag ? 1 : 0);
  }
  std::ifstream in(file + "_tmp");
  if (!in) return;
  std::ofstream out(file);
  std::string line;
  // A VHDL identifier has no two underscores in a row: three in a row need a second pass.
  while (std::getline(in, line)) {
    line = substitute_string(line, "__", "_X_");
    while (line.find("__") != std::string::npos) line = substitute_string(line, "__", "_X_");
    out << line << "\n";
  }
}

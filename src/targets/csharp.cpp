// The C# target: one component class whose step method takes the events of an instant
// as a string, computes the equations and fires the serialised output events.
#include <fstream>
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

bool has_id(long id) { return id >= 0; }

// Value types that the class knows by itself: it has a zero field for each.
const std::set<std::string>& base_types() {
  static const std::set<std::string> types = {"byte", "int", "float", "long", "short", "string", "bool"};
  return types;
}

// Text that turns the text of an event's value into a value of type t.
std::string conversion(const std::string& t) {
  // Convert.ToUInt32 gives a uint, which C# does not assign to an int.
  if (t == "int") return "Convert.ToInt32(evts[i].evtValeur ) ";
  if (t == "float") return "Convert.ToSingle(evts[i].evtValeur ) ";
  if (t == "byte") return " Convert.ToSByte(evts[i].evtValeur ) ";
  if (t == "bool") return " Convert.ToBoolean(evts[i].evtValeur ) ";
  if (t == "long") return " Convert.ToInt64(evts[i].evtValeur ) ";
  if (t == "short") return " Convert.ToInt16(evts[i].evtValeur ) ";
  if (t == "string") return "evts[i].evtValeur";
  return t + ".To(evts[i].evtValeur)";
}

// User types and methods need a second part of the class that holds their zeros and
// the methods, which a C# class can only reach as its own members.
bool needs_user_part() {
  if (Compilation::GDataMethodTable && Compilation::GDataMethodTable->getMethodList() &&
      !Compilation::GDataMethodTable->getMethodList()->empty())
    return true;
  if (Compilation::GDataTypeTable)
    for (const auto& entry : Compilation::GDataTypeTable->getTypeTable())
      if (!base_types().count(entry.first)) return true;
  return false;
}

}  // namespace

void bddpp_manager::Print_node_for_eval(const std::string& or_op, const std::string& and_op,
                                        const std::string& not_op, const std::string& close_not,
                                        const std::string& var_prefix, const std::string& var_suffix,
                                        const std::string& zero, const std::string& end_of_line,
                                        const std::string& line_prefix, const std::string& node_array,
                                        std::ostream& out, bdd_node* n) {
  if (!n || n->mark) return;
  n->mark = 1;
  const std::string lead = line_prefix + node_array + "[";
  if (n == one) {
    out << lead << n->global_id() << "]= " << not_op << zero << close_not;
  } else if (n->then_node == one && n->else_node == one && n->else_link_type == -1) {
    out << lead << n->global_id() << "]= " << var_prefix << Name_var_by_id(n->var_id) << var_suffix;
  } else {
    Print_node_for_eval(or_op, and_op, not_op, close_not, var_prefix, var_suffix, zero, end_of_line, line_prefix,
                        node_array, out, n->then_node);
    Print_node_for_eval(or_op, and_op, not_op, close_not, var_prefix, var_suffix, zero, end_of_line, line_prefix,
                        node_array, out, n->else_node);
    const std::string name = Name_var_by_id(n->var_id);
    out << lead << n->global_id() << "]= " << var_prefix << name << var_suffix << and_op << node_array << "["
        << n->then_node->global_id() << "]";
    if (n->else_node) {
      out << or_op << not_op << var_prefix << name << var_suffix << close_not << and_op;
      if (n->else_link_type == 1)
        out << node_array << "[" << n->else_node->global_id() << "]";
      else
        out << not_op << node_array << "[" << n->else_node->global_id() << "]" << close_not;
    }
  }
  out << end_of_line << "\n";
}

void Bddexpression::put_csharp(std::ostream& out, const std::string& node_array, int indent) {
  if (!variable.initialised() || !right.initialised()) return;
  bddpp_manager* manager = right.manager_ref();
  // An indentation of 0 stands for two blanks.
  const std::string p(indent ? indent : 2, ' ');
  const std::string w = manager->Name_var_by_bdd(variable);
  if (manager->Bdd_is_var(right)) {
    out << p << w << "= " << manager->Name_var_by_bdd(right) << ";";
    return;
  }
  manager->Print_node_for_eval(" || ", " && ", "!", "", "", "", "false", ";", p, node_array, out, right.node());
  out << p << w << (right.link_type() == 1 ? "= " : "= !") << node_array << "[" << right.node()->global_id()
      << "];";
}

void Module::CSharp_put_equation(std::ostream& out, const std::string& node_array, int indent) {
  Bddexpressionwood* wood = getBddWood();
  if (!wood) return;
  wood->my_bdd_manager()->Bdd_global_clear_marks();
  for (const SortedEquation& q : sorted_equations(*this, wood)) {
    Bddexpression* e = q.exp;
    const std::string& signal_name = q.signal_name;
    DataBinding* b = q.binding;
    if (e->getAbstraction()) {
      out << std::string(indent, ' ');
      if (!b) {
        report_unbound_abstraction(signal_name);
        // The class lacks this value: the C# compiler must refuse it.
        out << "#error abstract equation without binding for: " << signal_name << "\n";
        continue;
      }
      out << " " << e->my_bddname() << " = ";
      b->getValue()->CSharp_put(out, this);
      out << ";" << "\n";
      continue;
    }
    e->put_csharp(out, node_array, indent);
    out << "\n" << "\n";
    if (!b || !b->getClock() || b->getClock()->isOutput()) continue;
    Signal* clock = b->getClock();
    const std::string c = wood->Name_var_by_index(clock->getOverBddId(this, wood));
    const std::string t = clock->getValueType(this);
    // The clock's presence comes later in the sort: its emission wire guards the action.
    out << "   if (" << e->my_bddname() << ") " << "\n" << "      {" << "\n";
    out << "          if (" << e->my_bddname() << ") " << "\n" << "            {" << "\n";
    out << "               " << c << "_val = ";
    b->getValue()->CSharp_put(out, this);
    out << ";" << "\n" << "            }" << "\n";
    out << "         else" << "\n" << "            {" << "\n"
        << "               " << c << "_val = " << "zero_" << t << ";" << "\n" << "            }" << "\n";
    out << "         }" << "\n";
  }
}

namespace {

// The usings, the class head, the zero fields and the constants.
void csharpHeading(std::ostream& out, Module* mod, const std::string& m) {
  out << " using System; " << "\n" << " using WComp.Beans; " << "\n" << " using System.Collections.Generic; "
      << "\n" << " using System.Threading; " << "\n" << "using WComp.Util;" << "\n" << "\n";
  out << " namespace GenEntree" << "\n" << " " << "{" << "\n";
  out << "    [Bean(Category=\"" << m << "\")]" << "\n" << "\n";
  out << "     public " << (needs_user_part() ? "partial " : "") << "class " << m << "\n" << "     " << "{"
      << "\n";
  out << "        private byte zero_byte = 0 ;" << "\n"
      << "        private int zero_int = 0 ;" << "\n"
      << "        private float zero_float = 0;" << "\n"
      << "        private long zero_long = 0;" << "\n"
      << "        private short zero_short = 0;" << "\n"
      << "        private string zero_string =" << "\"" << "\"" << ";" << "\n"
      << "        private bool zero_bool = false;" << "\n";
  out << "        // private constants:" << "\n";
  if (Compilation::GDataConstantTable && Compilation::GDataConstantTable->getConstantList())
    for (ConstantDecl* c : *Compilation::GDataConstantTable->getConstantList()) {
      out << "        ";
      c->CSharp_put(out, mod);
      out << "\n";
    }
}

// The values of the outputs, by their clocks: the first binding present gives the value.
void csharpClockedValues(std::ostream& out, Module* mod, Bddexpressionwood* wood) {
  auto wire = [&](long id) { return wood->Name_var_by_index(id); };
  // Values of the outputs, by their clocks.
  std::map<std::string, std::pair<Signal*, std::vector<DataBinding*>>> clocked;
  if (std::map<std::string, DataBinding*>* dataTable = mod->getDataTable())
    for (auto& [key, b] : *dataTable) {
      Signal* c = b->getClock();
      if (!c || !c->isOutput()) continue;
      auto& entry = clocked[c->getInternalName()];
      entry.first = c;
      entry.second.push_back(b);
    }
  for (auto& [x, entry] : clocked) {
    out << "           if (" << x << ")" << "\n" << "              {" << "\n";
    bool first = true;
    for (DataBinding* b : entry.second) {
      out << (first ? "                  " : "                  else");
      first = false;
      out << " if (" << wire(b->getSignal()->getOverBddId(mod, wood)) << ") {" << x << "_val = ";
      b->getValue()->CSharp_put(out, mod);
      out << ";}" << "\n";
    }
    out << "                else { " << x << "_val = " << "zero_" << entry.first->getValueType(mod) << ";}" << "\n"
        << "              }" << "\n";
  }
}

// The output events, serialised and fired, and the delegate that fires them.
void csharpOutputEvents(std::ostream& out, Module* mod, Bddexpressionwood* wood, const std::list<Signal*>& outputs) {
  // Output events.
  out << "            /*-----------------------partie evt/outputs_signals-----------------------------------------*/"
      << "\n";
  out << "           List<MyEvent> outputEvts = new List<MyEvent>(255);   " << "\n";
  int c = 0;
  for (Signal* s : outputs) {
    if (!has_id(s->getOverBddId(mod, wood)) || s->isValue()) continue;
    const std::string x = s->getInternalName();
    if (s->isValued(mod))
      out << "           MyEvent evt" << c << "= new MyEvent( " << "\"" << x << "\"" << "," << "\""
          << s->getValueType(mod) << "\"" << "," << " Convert.ToString(" << x << "_val)" << ","
          << "Convert.ToString(" << x << "));" << "\n";
    else
      out << "            MyEvent evt" << c << " = new MyEvent( " << "\"" << x << "\"" << ","
          << " Convert.ToString(" << x << "));" << "\n";
    out << "            outputEvts.Add(evt" << c << ");" << "\n";
    c++;
  }
  if (!outputs.empty())
    out << "            string format =" << "\"" << "\"" << ";" << "\n"
        << "            format = GA.serialize(outputEvts);" << "\n"
        << "            FiresendEvent(format);" << "\n";
  out << "        }" << "\n";

  out << "        /*-----------Delegate Methods & Events-------------------*/" << "\n" << "\n";
  out << "        public delegate void StringValueEventHandler(string evt );" << "\n"
      << "        public event StringValueEventHandler" << " " << "SendEventList;" << "\n" << "\n";
  out << "       private void FiresendEvent(string evtFormat)" << "\n" << "       {" << "\n"
      << "            if(" << "SendEventList" << " != null" << ")" << "\n" << "            { " << "\n"
      << "                SendEventList" << "(evtFormat);" << "\n" << "           }" << "\n" << "        }" << "\n"
      << "\n";
  out << "    }" << "\n" << "\n" << "}" << "\n";
}

}  // namespace

void Module::CSharp_put(std::ostream& out) {
  const std::string& m = name;
  const std::string n = m + "_node";
  csharpHeading(out, this, m);

  Bddexpressionwood* wood = getBddWood();
  if (!wood) return;
  auto wire = [&](long id) { return wood->Name_var_by_index(id); };
  std::list<regclass*> registers = registerList ? *registerList : std::list<regclass*>();
  std::list<Signal*> inputs = inputList ? *inputList : std::list<Signal*>();
  std::list<Signal*> outputs = outputList ? *outputList : std::list<Signal*>();
  std::list<Signal*> locals = localList ? *localList : std::list<Signal*>();
  auto bound = [&](Signal* s) { return getBinding(s->getOriginalName()) != nullptr; };
  auto actual = [&](regclass* r) { return wire(r->actual_var()->getOverBddId(this, wood)); };

  if (!registers.empty()) {
    out << "        /* global state variables */" << "\n";
    for (regclass* r : registers)
      out << "        bool  " << actual(r) << " = " << (r->is_initialy_true() ? "true;" : "false;") << "\n";
    out << "\n";
  }
  out << "        private void " << m << "_reset_automaton(";
  if (!finalised) out << " bool _s_SET" << m << ", bool _s_RESET" << m;
  out << ")" << "\n" << "        {" << "\n";
  for (regclass* r : registers)
    out << "            " << actual(r) << "= " << (r->is_initialy_true() ? "true;" : "false;") << "\n";
  out << "        }" << "\n" << "\n";

  out << "        public void " << m << "_automaton(string s)" << "\n" << "        {" << "\n";
  std::set<std::string> register_names;
  for (regclass* r : registers) register_names.insert(actual(r));
  for (long id : wood->Set_of_index_used_variables()) {
    if (id < 0) continue;
    const std::string v = wire(id);
    if (v.rfind("v_s_", 0) == 0 && register_names.count(v)) continue;
    out << "            bool " << v;
    Signal* s = v.rfind("v_v_", 0) == 0 ? nullptr : getSignalById(id, wood);
    if (s && (s->isInput() || s->isOutput() || s->isRegister())) out << "  =  false";
    out << ";" << "\n";
  }
  for (Signal* s : locals) {
    if (!s->isValued(this) || !has_id(s->getOverBddId(this, wood))) continue;
    const std::string t = s->getValueType(this);
    out << "            " << t << "  " << s->getUnderName(this) << "_val" << " = zero_" << t << ";" << "\n";
    out << "            " << t << "  " << s->getOverName(this) << "_val" << " = zero_" << t << ";" << "\n";
  }
  out << "\n";
  for (Signal* s : inputs) {
    long over = s->getOverBddId(this, wood);
    if (!has_id(over) || bound(s) || !s->isValued(this)) continue;
    const std::string t = s->getValueType(this);
    out << "            " << t << " " << wire(over) << "_val " << " = zero_" << t << ";" << "\n";
  }
  for (Signal* s : outputs) {
    long over = s->getInitialOverBddId(this, wood);
    if (!has_id(s->getOverBddId(this, wood)) || s->isValue() || !s->isValued(this)) continue;
    const std::string t = s->getValueType(this);
    out << "            " << t << " " << wire(over) << "_val " << " = zero_" << t << ";" << "\n";
  }
  out << "            bool[]  " << n << "  =  new bool[" << wood->my_bdd_manager()->Bdd_total_size() << "];" << "\n"
      << "\n";

  // Input events.
  out << "/*-----------------------partie evt/input_signals-----------------------------------------*/" << "\n";
  out << "            GrammaireA GA = new GrammaireA();" << "\n"
      << "             List<MyEvent> evts =  new List<MyEvent>(255);" << "\n"
      << "            evts= GA.deserialize(s);" << "\n";
  out << "            foreach (MyEvent evtL in evts)" << "\n" << "                {" << "\n"
      << "                    Logger.Info(\"alarmDeserialize: \" + evtL.nameEvt + \" \" + evtL.valPresenceEvt + "
         "\" \" + evtL.evTypeValue + \" \" + evtL.evtValeur + \";\");"
      << "\n" << "                }" << "\n";
  if (!inputs.empty()) {
    out << "            for(int i = 0; i<evts.Count;i++)" << "\n" << "           {" << "\n";
    for (Signal* s : inputs) {
      long over = s->getOverBddId(this, wood);
      if (!has_id(over) || bound(s)) continue;
      const std::string w = wire(over);
      out << "                if(evts[i].nameEvt == " << "\"" << w << "\"" << ")" << "\n" << "                {" << "\n"
          << "                     " << w << "= true;" << "\n";
      if (s->isValued(this))
        out << "                     " << w << "_val = " << conversion(s->getValueType(this)) << ";" << "\n";
      // An event that names another input leaves this one as it is: every input of the
      // instant stays present, whatever the order of the events.
      out << "                }" << "\n";
    }
    out << "            }" << "\n";
  }

  out << "  " << " /* outputs computing */" << "\n";
  CSharp_put_equation(out, n, 12);

  csharpClockedValues(out, this, wood);

  if (!registers.empty()) {
    out << "\n" << "         " << "/* refresh registers */" << "\n";
    for (regclass* r : registers)
      out << "           " << actual(r) << "= " << wire(r->next_var()->getOverBddId(this, wood)) << ";" << "\n";
    out << "\n";
  }

  csharpOutputEvents(out, this, wood, outputs);
}

void Module::printCSHARP() {
  std::ofstream out;
  open_target(out, target_path(name, ".cs", true), false);
  CSharp_put(out);
}

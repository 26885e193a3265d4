// What the target generators share: file names, the node walk, wire lists, the queries on
// a right side in the two-wire code.
#include <algorithm>
#include <fstream>
#include <iostream>

#include "bdd/bddpp.h"
#include "equations/Bddexpression.h"
#include "model/module.h"
#include "signals/signal_manager.h"
#include "util/report.h"
#include "targets/formats.h"

std::vector<SortedEquation> sorted_equations(Module& m, Bddexpressionwood* wood) {
  std::vector<SortedEquation> sorted;
  for (long id : wood->earliest_sort()) {
    Bddexpression* e = wood->exp_by_index(id);
    if (!e) continue;
    SignalRef* ref = m.getSignalManager()->getSignalRefById(id, wood);
    const std::string name = ref ? ref->getCurrentName() : e->my_bddname();
    sorted.push_back({id, e, ref, name, ref ? m.getBinding(name) : nullptr});
  }
  return sorted;
}

void report_unbound_abstraction(const std::string& signal_name) {
  std::cerr << "***error: abstract equation without bindind for:" << signal_name << std::endl;
}

std::string target_file_name(const std::string& module, const std::string& output_file,
                             const std::string& ext) {
  if (output_file.empty()) return module + ext;
  if (output_file.find(ext) != std::string::npos) return output_file;
  return output_file + ext;
}

std::string target_path(const std::string& module, const std::string& ext, bool inDir) {
  std::string file = target_file_name(module, Module::OutputFile, ext);
  return inDir ? Module::OutputDir + "/" + file : file;
}

bool open_target(std::ofstream& out, const std::string& path, bool warnExisting) {
  if (warnExisting && std::ifstream(path).is_open())
    std::cerr << "File: " << path << " already exists. File rewrited." << std::endl;
  out.open(path);
  if (out.is_open()) return true;
  const std::string text = "Cannot open output file: " + path;
  report_message(text);
  std::cerr << text << std::endl;
  return false;
}

void print_nodes(std::ostream& out, bdd_node* n, bdd_node* terminal, const NodeSyntax& x,
                 const VarNamer& name_of) {
  if (!n || n->mark) return;
  n->mark = 1;
  if (n == terminal) {
    out << "   " << x.node_array << "[" << n->global_id() << "]= " << x.not_op << x.zero << x.close_not;
  } else if (n->then_node == terminal && n->else_node == terminal && n->else_link_type == -1) {
    out << "  " << x.node_array << "[" << n->global_id() << "]= " << x.var_prefix << name_of(n->var_id)
        << x.var_suffix;
  } else {
    print_nodes(out, n->then_node, terminal, x, name_of);
    print_nodes(out, n->else_node, terminal, x, name_of);
    const std::string name = name_of(n->var_id);
    out << "  " << x.node_array << "[" << n->global_id() << "]= " << x.var_prefix << name << x.var_suffix
        << x.and_op << x.node_array << "[" << n->then_node->global_id() << "]";
    if (n->else_node) {
      out << x.or_op << x.not_op << x.var_prefix << name << x.var_suffix << x.close_not << x.and_op;
      if (n->else_link_type == 1)
        out << x.node_array << "[" << n->else_node->global_id() << "]";
      else
        out << x.not_op << x.node_array << "[" << n->else_node->global_id() << "]" << x.close_not;
    }
  }
  out << x.end_of_line << "\n";
}

void walk_nodes(bdd_node* n, const std::function<void(bdd_node*)>& visit) {
  if (!n || n->mark) return;
  n->mark = 1;
  walk_nodes(n->then_node, visit);
  walk_nodes(n->else_node, visit);
  visit(n);
}

bool item_in(std::list<std::string>& list, const std::string& item) {
  return std::find(list.begin(), list.end(), item) != list.end();
}

namespace {

int awaited(Module* m, bdd f, Signal* s, bool value) {
  Bddexpressionwood* wood = m->getBddWood();
  if (!wood || !f.initialised()) return 0;
  bddpp_manager* manager = wood->my_bdd_manager();
  bdd over = s->getOverBdd(m, wood);
  bdd under = s->getUnderBdd(m, wood);
  if (!over.initialised()) return 0;
  // Two-wire code: the under wire is the negation of the over wire.
  if (under.initialised() && manager->Bdd_depends_on(f, under)) f = manager->Bdd_compose(f, under, manager->Bdd_not(over));
  if (!manager->Bdd_depends_on(f, over)) return 0;
  bdd r = manager->Bdd_cube_reduce(f, value ? over : manager->Bdd_not(over));
  return r == manager->Bdd_zero() ? 0 : 1;
}

}  // namespace

int quadrival_var_true_awaited(Module* m, bdd f, Signal* s) { return awaited(m, f, s, true); }
int quadrival_var_false_awaited(Module* m, bdd f, Signal* s) { return awaited(m, f, s, false); }

// What the target generators share: the file a generator writes, the walk that turns a BDD
// into straight-line code, list membership of wire names, and the two queries on a right
// side in the two-wire code. The generators themselves are members of Module, one file each.
#pragma once

#include <functional>
#include <iosfwd>
#include <list>
#include <string>
#include <vector>

class Module;
class Signal;
class SignalRef;
class DataBinding;
class Bddexpression;
class Bddexpressionwood;
class bdd;
class bdd_node;

// Name of a generated file: O empty gives module + ext; O that contains ext anywhere
// (a search, not a test of the end) is used as it is; otherwise O + ext.
std::string target_file_name(const std::string& module, const std::string& output_file,
                             const std::string& ext);
// The same name under Module::OutputDir when inDir is set ("D/name"), else as it stands,
// with Module::OutputFile as O.
std::string target_path(const std::string& module, const std::string& ext, bool inDir);

// Opens a generated file: "File: P already exists. File rewrited." first when warnExisting
// and P exists; "Cannot open output file: P" (message box and error stream) when it
// can't be opened. The stream is returned either way: the generator still runs.
bool open_target(std::ofstream& out, const std::string& path, bool warnExisting);

// The words of the straight-line code of a BDD in one target language.
struct NodeSyntax {
  std::string or_op, and_op, not_op, close_not, var_prefix, var_suffix, zero, end_of_line,
      node_array;
};
using VarNamer = std::function<std::string(long var_id)>;

// One assignment per node into the node array, children first. A node marked by an earlier
// equation of the same step was written already and is skipped; callers clear the marks
// (Bdd_global_clear_marks) once per step.
void print_nodes(std::ostream& out, bdd_node* n, bdd_node* terminal, const NodeSyntax& syntax,
                 const VarNamer& name_of);
// Visits every unmarked node under n once, children before parents, marking it: the walk
// of targets whose node lines have their own shape (netlists, hardware processes).
void walk_nodes(bdd_node* n, const std::function<void(bdd_node*)>& visit);

// One equation of a step in the order the writers take them (earliest_sort): its signal
// reference (null for a wire of no signal), the name the binding table knows it by, and
// the binding under that name, if any.
struct SortedEquation {
  long id;
  Bddexpression* exp;
  SignalRef* ref;
  std::string signal_name;
  DataBinding* binding;
};
std::vector<SortedEquation> sorted_equations(Module& m, Bddexpressionwood* wood);
// "***error: abstract equation without bindind for:" and the name on the error stream.
void report_unbound_abstraction(const std::string& signal_name);

bool item_in(std::list<std::string>& list, const std::string& item);

// Can the function still be true when the signal holds true (false)? The under variable
// is read as the negation of the over variable; 0 when f doesn't read the signal.
int quadrival_var_true_awaited(Module* m, bdd f, Signal* s);
int quadrival_var_false_awaited(Module* m, bdd f, Signal* s);

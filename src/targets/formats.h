// What the target generators share: the file a generator writes, list membership of
// wire names, and the two queries on a right side in the two-wire code. The generators
// themselves are members of Module, Bddexpression, Bddexpressionwood and bddpp_manager.
#pragma once

#include <list>
#include <string>

class Module;
class Signal;
class bdd;

// Name of a generated file: O empty gives module + ext; O that contains ext anywhere
// (a search, not a test of the end) is used as it is; otherwise O + ext.
std::string target_file_name(const std::string& module, const std::string& output_file,
                             const std::string& ext);

bool item_in(std::list<std::string>& list, const std::string& item);

// Can the function still be true when the signal holds true (false)? The under variable
// is read as the negation of the over variable; 0 when f doesn't read the signal.
int quadrival_var_true_awaited(Module* m, bdd f, Signal* s);
int quadrival_var_false_awaited(Module* m, bdd f, Signal* s);

// Lean C: the step of the C target with scalar temporaries and no dead assignments.
#pragma once

#include <string>

class Module;

// The C target's code text of `module` made lean: the step's node array becomes one
// scalar per node it uses, and every assignment to a local of the step that nothing
// reads, directly or through other locals, goes with its declaration.
std::string lean_c_code(const std::string& code, const std::string& module);

// Writes M.c (lean) and M.h, where and as the C target names them.
void print_lean_c(Module& m);

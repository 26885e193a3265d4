// Running the simulation programs from the compiler.
#pragma once

#include <string>

// Puts the directory of the running program in front of PATH, so that the simulators
// built beside the compiler ("tarvix", "quarns") are found first.
void quarn_sim_path();

// Runs the command through the shell, like system(), with the compiler's directory on
// the path. A command that has not ended after QUARN_CHILD_TIMEOUT seconds (default
// 600) is stopped with a message. Gives the exit status, -1 when stopped or not run.
int quarn_sim_run(const std::string& command);

// The valued simulation: the data server's build command and its run.
#pragma once

#include <list>
#include <string>

// The host compiler command that builds the valued simulation server.
std::string quarnsBuildCommand(const std::string& moduleName, const std::list<std::string>& typeNames);

// Builds quarns_M.cc with the user's files for the run's types and runs the server, which
// starts the simulator "quarns". A missing user file, a failed build or a failed server
// ends the run with status 1.
void runValuedSimulator(const std::string& moduleName);

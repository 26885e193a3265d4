// Where the debug trace of a module goes.
#pragma once

#include <string>

// OutputDir + "/" + (module + ".dbg", or the -o name as it is); a -o name that an earlier
// stage of this run wrote gets ".dbg" appended, so that the trace never replaces it.
std::string debug_trace_path(const std::string& module);

// Reaction traces read by the simulators: one reaction a line, "inputs / outputs";
// NAME=value gives a valued signal its value; "#" starts a comment.
#pragma once

#include <string>
#include <utility>
#include <vector>

struct TraceReaction {
  std::vector<std::pair<std::string, std::string>> inputs;  // name, value text ("" none)
};

// False with a message in `error` for a file that cannot be read or a line without "/".
bool read_trace(const std::string& file, std::vector<TraceReaction>& reactions, std::string& error);

#include "sim/trace.h"

#include <fstream>
#include <sstream>

bool read_trace(const std::string& file, std::vector<TraceReaction>& reactions, std::string& error) {
  std::ifstream in(file);
  if (!in) {
    error = "cannot read trace file " + file;
    return false;
  }
  std::string line;
  int number = 0;
  while (std::getline(in, line)) {
    number++;
    line = line.substr(0, line.find('#'));
    if (line.find_first_not_of(" \t\r") == std::string::npos) continue;
    size_t slash = line.find('/');
    if (slash == std::string::npos) {
      error = file + ":" + std::to_string(number) + ": line without '/': " + line;
      return false;
    }
    TraceReaction r;
    std::istringstream words(line.substr(0, slash));
    std::string w;
    while (words >> w) {
      size_t eq = w.find('=');
      if (eq == std::string::npos)
        r.inputs.emplace_back(w, "");
      else
        r.inputs.emplace_back(w.substr(0, eq), w.substr(eq + 1));
    }
    reactions.push_back(r);
  }
  return true;
}

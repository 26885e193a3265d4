// A small reader of Value Change Dump files: the variables of the header and the value
// of each at each time step.
#pragma once

#include <fstream>
#include <map>
#include <sstream>
#include <string>

struct Vcd {
  bool ok = false;
  std::string scope;
  std::map<std::string, std::string> code_of;      // name -> code
  std::map<long, std::map<std::string, int>> at;   // time -> name -> value (all names)

  explicit Vcd(const std::string& file) {
    std::ifstream in(file);
    std::string w;
    std::map<std::string, std::string> name_of;
    bool defs = true;
    long time = -1;
    std::map<std::string, int> current;
    while (in >> w) {
      if (defs) {
        if (w == "$scope") {
          in >> w >> scope;
        } else if (w == "$var") {
          std::string type, width, code, name;
          in >> type >> width >> code >> name;
          if (type != "wire" || width != "1") return;
          code_of[name] = code;
          name_of[code] = name;
        } else if (w == "$enddefinitions") {
          defs = false;
          in >> w;  // $end
        }
        continue;
      }
      if (w[0] == '#') {
        if (time >= 0) at[time] = current;
        time = std::stol(w.substr(1));
      } else if (w[0] == '0' || w[0] == '1') {
        auto it = name_of.find(w.substr(1));
        if (it == name_of.end()) return;
        current[it->second] = w[0] - '0';
      } else if (w != "$dumpvars" && w != "$end") {
        return;
      }
    }
    ok = !defs;
  }
};

// Lean C: the C target's step with its node array turned into scalar temporaries and
// every assignment to a local of the step that nothing reads taken out. The header and
// the functions are those of the C target, so a program built on one links the other.
#include "targets/lean_c.h"

#include <cctype>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "model/module.h"
#include "targets/formats.h"

namespace {

bool identChar(char c) { return std::isalnum(static_cast<unsigned char>(c)) || c == '_'; }

// The identifiers of a line, in order, with repeats.
std::vector<std::string> identifiers(const std::string& line) {
  std::vector<std::string> ids;
  for (size_t i = 0; i < line.size();) {
    if (std::isalpha(static_cast<unsigned char>(line[i])) || line[i] == '_') {
      size_t j = i;
      while (j < line.size() && identChar(line[j])) j++;
      ids.push_back(line.substr(i, j - i));
      i = j;
    } else if (std::isdigit(static_cast<unsigned char>(line[i]))) {
      while (i < line.size() && identChar(line[i])) i++;  // a number, suffix included
    } else {
      i++;
    }
  }
  return ids;
}

// "  NAME= ...;" on one line: NAME, else "".
std::string assigned(const std::string& line) {
  size_t i = line.find_first_not_of(' ');
  if (i == std::string::npos || !(std::isalpha(static_cast<unsigned char>(line[i])) || line[i] == '_'))
    return "";
  size_t j = i;
  while (j < line.size() && identChar(line[j])) j++;
  if (line.compare(j, 2, "= ") != 0 || line.back() != ';') return "";
  return line.substr(i, j - i);
}

// "  int NAME;": NAME, else "".
std::string declared(const std::string& line) {
  if (line.rfind("  int ", 0) != 0 || line.back() != ';') return "";
  std::string name = line.substr(6, line.size() - 7);
  for (char c : name)
    if (!identChar(c)) return "";
  return name;
}

// Turns "ARRAY[k]" into "ARRAY_k"; records each k.
std::string scalarNodes(const std::string& line, const std::string& array, std::set<long>& used) {
  const std::string open = array + "[";
  std::string out;
  size_t i = 0;
  for (size_t at; (at = line.find(open, i)) != std::string::npos;) {
    bool whole = at == 0 || !identChar(line[at - 1]);
    size_t k = at + open.size(), e = k;
    while (e < line.size() && std::isdigit(static_cast<unsigned char>(line[e]))) e++;
    if (!whole || e == k || e >= line.size() || line[e] != ']') {
      out += line.substr(i, k - i);
      i = k;
      continue;
    }
    used.insert(std::stol(line.substr(k, e - k)));
    out += line.substr(i, at - i) + array + "_" + line.substr(k, e - k);
    i = e + 1;
  }
  return out + line.substr(i);
}

std::string replaceAll(std::string text, const std::string& from, const std::string& to) {
  for (size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size())
    text.replace(at, from.size(), to);
  return text;
}

// The presence inputs of the step's head "void M_automaton(int A, ..., int*O)": the int
// parameters passed by value that carry no value.
std::vector<std::string> presenceInputs(const std::string& head) {
  std::vector<std::string> names;
  size_t open = head.find('('), close = head.rfind(')');
  if (open == std::string::npos || close == std::string::npos || close < open) return names;
  std::istringstream params(head.substr(open + 1, close - open - 1));
  for (std::string p; std::getline(params, p, ',');) {
    std::vector<std::string> ids = identifiers(p);
    if (p.find('*') != std::string::npos || ids.size() != 2 || ids[0] != "int") continue;
    const std::string& n = ids[1];
    if (n.size() < 4 || n.compare(n.size() - 4, 4, "_val") != 0) names.push_back(n);
  }
  return names;
}

// The step function's body: the lines after "void M_automaton(...)" and its "{", up to the
// closing "}" at the start of a line.
void leanStep(std::vector<std::string>& lines, size_t first, size_t last, const std::string& array) {
  std::set<long> nodes;
  std::set<std::string> locals;
  size_t arrayLine = last;
  for (size_t i = first; i < last; i++) {
    if (lines[i].rfind("  int " + array + "[", 0) == 0) {
      arrayLine = i;
      continue;
    }
    std::string d = declared(lines[i]);
    if (!d.empty()) locals.insert(d);
    lines[i] = scalarNodes(lines[i], array, nodes);
    // A node is 0 or 1 and so are its operands: bitwise operators spare the branches.
    if (assigned(lines[i]).rfind(array + "_", 0) == 0) {
      lines[i] = replaceAll(lines[i], " && ", " & ");
      lines[i] = replaceAll(lines[i], " || ", " | ");
    }
  }
  for (long k : nodes) locals.insert(array + "_" + std::to_string(k));

  // Reads of each local: its occurrences less its declarations and assignments.
  std::map<std::string, int> reads;
  std::map<std::string, std::vector<size_t>> writes;
  for (size_t i = first; i < last; i++) {
    if (i == arrayLine || !declared(lines[i]).empty()) continue;
    std::string a = assigned(lines[i]);
    bool skipped = false;
    for (const std::string& id : identifiers(lines[i])) {
      if (!locals.count(id)) continue;
      if (id == a && !skipped) {
        skipped = true;
        continue;
      }
      reads[id]++;
    }
    if (!a.empty() && locals.count(a)) writes[a].push_back(i);
  }
  std::vector<bool> gone(lines.size(), false);
  std::vector<std::string> work;
  for (const std::string& l : locals)
    if (reads[l] == 0) work.push_back(l);
  std::set<std::string> dropped;
  while (!work.empty()) {
    std::string l = work.back();
    work.pop_back();
    if (!dropped.insert(l).second) continue;
    for (size_t i : writes[l]) {
      if (gone[i]) continue;
      gone[i] = true;
      bool skipped = false;
      for (const std::string& id : identifiers(lines[i])) {
        if (id == l && !skipped) {
          skipped = true;
          continue;
        }
        if (locals.count(id) && --reads[id] == 0) work.push_back(id);
      }
    }
  }
  for (size_t i = first; i < last; i++) {
    std::string d = declared(lines[i]);
    if (!d.empty() && dropped.count(d)) gone[i] = true;
  }
  if (arrayLine < last) {
    std::string decls;
    for (long k : nodes) {
      std::string n = array + "_" + std::to_string(k);
      if (!dropped.count(n)) decls += (decls.empty() ? "" : "\n") + std::string("  int ") + n + ";";
    }
    lines[arrayLine] = decls;
    if (decls.empty()) gone[arrayLine] = true;
  }
  std::vector<std::string> kept;
  for (size_t i = 0; i < lines.size(); i++)
    if (!gone[i]) kept.push_back(lines[i]);
  lines.swap(kept);
}

}  // namespace

std::string lean_c_code(const std::string& code, const std::string& module) {
  std::vector<std::string> lines;
  std::istringstream in(code);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  const std::string head = "void " + module + "_automaton(";
  for (size_t i = 0; i < lines.size(); i++) {
    if (lines[i].rfind(head, 0) != 0) continue;
    size_t open = i + 1;
    if (open >= lines.size() || lines[open] != "{") break;
    size_t close = open + 1;
    while (close < lines.size() && lines[close] != "}") close++;
    if (close < lines.size()) leanStep(lines, open + 1, close, module + "_node");
    // Any non-zero int says present: made 0 or 1 for the bitwise nodes.
    std::vector<std::string> inputs = presenceInputs(lines[i]);
    for (auto it = inputs.rbegin(); it != inputs.rend(); ++it)
      lines.insert(lines.begin() + long(open) + 1, "  " + *it + "= " + *it + " != 0;");
    break;
  }
  std::string out;
  for (const std::string& l : lines) out += l + "\n";
  return out;
}

void print_lean_c(Module& m) {
  const std::string code_name = target_path(m.getName(), ".c", false);
  const std::string header_name = code_name.substr(0, code_name.size() - 2) + ".h";
  std::ostringstream code;
  std::ofstream header(header_name);
  m.C_put(code, header);
  std::ofstream(code_name) << lean_c_code(code.str(), m.getName());
}

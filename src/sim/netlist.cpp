#include "sim/netlist.h"

#include <istream>
#include <ostream>
#include <sstream>
#include <stdexcept>

namespace {

std::vector<std::string> words(const std::string& line) {
  std::istringstream in(line);
  std::vector<std::string> w;
  std::string s;
  while (in >> s) w.push_back(s);
  return w;
}

}  // namespace

bool read_blif(std::istream& in, Netlist& net, std::string& error) {
  std::string raw, line;
  int number = 0, start = 0;
  Netlist::Table* table = nullptr;
  bool model = false, ended = false;
  auto fail = [&](const std::string& text) {
    error = "line " + std::to_string(start) + ": " + text;
    return false;
  };
  while (std::getline(in, raw)) {
    number++;
    if (line.empty()) start = number;
    raw = raw.substr(0, raw.find('#'));
    if (!raw.empty() && raw.back() == '\r') raw.pop_back();
    if (!raw.empty() && raw.back() == '\\') {
      line += raw.substr(0, raw.size() - 1) + " ";
      continue;
    }
    line += raw;
    std::vector<std::string> w = words(line);
    line.clear();
    if (w.empty() || ended) continue;
    const std::string& key = w[0];
    if (key[0] == '.') table = nullptr;
    if (key == ".model") {
      if (w.size() < 2) return fail(".model without a name");
      net.model = w[1];
      model = true;
    } else if (key == ".inputs") {
      net.inputs.insert(net.inputs.end(), w.begin() + 1, w.end());
    } else if (key == ".outputs") {
      net.outputs.insert(net.outputs.end(), w.begin() + 1, w.end());
    } else if (key == ".latch") {
      if (w.size() < 3) return fail(".latch needs an input and an output");
      Netlist::Latch l{w[1], w[2], 0};
      if (w.size() != 3 && w.size() != 4 && w.size() != 6) return fail("bad .latch line");
      const std::string init = w.size() == 3 ? "0" : w.back();
      if (init.size() != 1 || init.find_first_not_of("0123") != std::string::npos)
        return fail("bad initial value " + init);
      l.initial = init == "1" ? 1 : 0;
      net.latches.push_back(l);
    } else if (key == ".names") {
      if (w.size() < 2) return fail(".names without an output");
      Netlist::Table t;
      t.inputs.assign(w.begin() + 1, w.end() - 1);
      t.output = w.back();
      if (net.tables.count(t.output)) return fail(t.output + " is defined twice");
      table = &(net.tables[t.output] = t);
    } else if (key == ".end") {
      ended = true;
    } else if (key[0] == '.') {
      return fail("unknown construct " + key);
    } else {
      if (!table) return fail("a table row outside .names: " + key);
      size_t n = table->inputs.size();
      std::string cube = n == 0 ? "" : w[0];
      std::string out = n == 0 ? w[0] : (w.size() > 1 ? w[1] : "");
      if (w.size() != (n == 0 ? 1u : 2u) || cube.size() != n || out.size() != 1 ||
          (out[0] != '0' && out[0] != '1') || cube.find_first_not_of("01-") != std::string::npos)
        return fail("bad row of " + table->output + ": " + raw);
      table->rows.emplace_back(cube, out[0]);
    }
  }
  if (!model) {
    error = "no .model";
    return false;
  }
  return true;
}

NetlistSim::NetlistSim(const Netlist& n) : net(n) {
  inputSet.insert(net.inputs.begin(), net.inputs.end());
  reset();
}

void NetlistSim::reset() {
  state.clear();
  for (const Netlist::Latch& l : net.latches) state[l.output] = l.initial;
}

int NetlistSim::value(const std::string& name) {
  auto known = values.find(name);
  if (known != values.end()) return known->second;
  if (inputSet.count(name)) return values[name] = present.count(name) ? 1 : 0;
  auto latch = state.find(name);
  if (latch != state.end()) return values[name] = latch->second;
  auto t = net.tables.find(name);
  if (t == net.tables.end()) throw std::runtime_error("signal " + name + " has no definition");
  if (!pending.insert(name).second) throw std::runtime_error("combinational loop through " + name);
  const Netlist::Table& table = t->second;
  std::vector<int> in;
  for (const std::string& i : table.inputs) in.push_back(value(i));
  // Rows give the on-set (output 1) or the off-set (output 0); no row is constant 0.
  bool onSet = table.rows.empty() || table.rows.front().second == '1';
  bool match = false;
  for (const auto& [cube, out] : table.rows) {
    bool all = true;
    for (size_t k = 0; k < cube.size() && all; k++)
      all = cube[k] == '-' || (cube[k] == '1') == (in[k] == 1);
    if (all) {
      match = true;
      break;
    }
  }
  pending.erase(name);
  return values[name] = (match == onSet) ? 1 : 0;
}

std::map<std::string, int> NetlistSim::react(const std::set<std::string>& given) {
  present = given;
  values.clear();
  pending.clear();
  std::map<std::string, int> shown;
  for (const std::string& i : net.inputs) shown[i] = value(i);
  for (const std::string& o : net.outputs) shown[o] = value(o);
  for (const Netlist::Latch& l : net.latches) shown[l.output] = value(l.output);
  std::map<std::string, int> next;
  for (const Netlist::Latch& l : net.latches) next[l.output] = value(l.input);
  state = next;
  return shown;
}

VcdWriter::VcdWriter(std::ostream& o, const Netlist& net) : out(o) {
  auto add = [&](const std::string& name) {
    for (const auto& v : vars)
      if (v.first == name) return;
    std::string code;
    size_t n = vars.size();
    do {
      code += char('!' + n % 94);
      n /= 94;
    } while (n > 0);
    vars.emplace_back(name, code);
  };
  for (const std::string& i : net.inputs) add(i);
  for (const std::string& o2 : net.outputs) add(o2);
  for (const Netlist::Latch& l : net.latches) add(l.output);
  out << "$date reactions $end\n$version tarvix $end\n$timescale 1 ns $end\n";
  out << "$scope module " << (net.model.empty() ? "top" : net.model) << " $end\n";
  for (const auto& [name, code] : vars) out << "$var wire 1 " << code << " " << name << " $end\n";
  out << "$upscope $end\n$enddefinitions $end\n";
}

void VcdWriter::sample(long time, const std::map<std::string, int>& values) {
  out << "#" << time << "\n";
  if (first) out << "$dumpvars\n";
  for (const auto& [name, code] : vars) {
    auto it = values.find(name);
    int v = it == values.end() ? 0 : it->second;
    auto old = last.find(name);
    if (first || old == last.end() || old->second != v) out << v << code << "\n";
    last[name] = v;
  }
  if (first) out << "$end\n";
  first = false;
}

void VcdWriter::finish(long time) { out << "#" << time << "\n"; }

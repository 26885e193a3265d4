// tarvix: the netlist simulator. Reads BASE.blif and runs it reaction by reaction, from
// a trace file (batch) or from the input and output panels (under a display), and
// writes the waveforms of the run in Value Change Dump form.
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <memory>
#include <stdexcept>

#include "gui/formspp.h"
#include "sim/netlist.h"
#include "gui/sim_panels.h"
#include "sim/trace.h"

namespace {

const char* const Usage =
    "usage: tarvix [-t TRACE] [-w WAVES.vcd] BASE\n"
    "  Simulates the netlist BASE.blif.\n"
    "  -t TRACE  runs the reactions of TRACE (\"inputs / outputs\" lines) and prints\n"
    "            \"N / outputs\" for each; also TARVIX_TRACE=TRACE\n"
    "  -w FILE   writes the waveforms there (default BASE.vcd); also TARVIX_VCD=FILE\n"
    "  -o FILE   writes the reactions there (default: standard output); also TARVIX_OUTPUT=FILE\n"
    "  Without a trace the input and output panels drive the run; they need a display.\n";

int usage() {
  std::cerr << Usage;
  return 2;
}

std::string outputsText(const Netlist& net, const std::map<std::string, int>& values) {
  std::string text;
  for (const std::string& o : net.outputs)
    if (values.at(o)) text += " " + o;
  return text;
}

int runPanels(NetlistSim& sim, VcdWriter& vcd, std::ostream& out) {
  const Netlist& net = sim.netlist();
  OFD_simulator_input inputs(400);
  for (const std::string& i : net.inputs) inputs.add(i);
  OFD_simulator_output outputs(400, "Outputs Pannel");
  for (const std::string& o : net.outputs) outputs.add(o);
  std::vector<int> chosen(net.inputs.size() + 1, 0), shown(net.outputs.size() + 1, 2);
  long n = 0;
  for (;;) {
    int init = 0, quit = 0;
    inputs.check(&init, &quit, chosen.data());
    if (quit) {
      vcd.finish(n);
      return inputs.timed_out() ? 1 : 0;
    }
    if (init) {
      sim.reset();
      continue;
    }
    std::set<std::string> present;
    for (size_t i = 0; i < net.inputs.size(); i++)
      if (chosen[i]) present.insert(net.inputs[i]);
    std::map<std::string, int> values = sim.react(present);
    vcd.sample(n++, values);
    out << n << " /" << outputsText(net, values) << std::endl;
    for (size_t i = 0; i < net.outputs.size(); i++) shown[i] = values[net.outputs[i]];
    outputs.eval(shown.data());
  }
}

}  // namespace

int main(int argc, char** argv) {
  std::string trace = std::getenv("TARVIX_TRACE") ? std::getenv("TARVIX_TRACE") : "";
  std::string waves = std::getenv("TARVIX_VCD") ? std::getenv("TARVIX_VCD") : "";
  std::string output = std::getenv("TARVIX_OUTPUT") ? std::getenv("TARVIX_OUTPUT") : "";
  std::string base;
  for (int i = 1; i < argc; i++) {
    std::string a = argv[i];
    if ((a == "-t" || a == "-w" || a == "-o") && i + 1 < argc)
      (a == "-t" ? trace : a == "-w" ? waves : output) = argv[++i];
    else if (a.empty() || a[0] == '-' || !base.empty())
      return usage();
    else
      base = a;
  }
  if (base.empty()) return usage();
  if (base.size() > 5 && base.compare(base.size() - 5, 5, ".blif") == 0) base.resize(base.size() - 5);
  // Without a display the panels are skipped, as every window is: not a failure.
  if (trace.empty() && !quarn_display_reachable()) {
    std::cerr << "tarvix: no trace and no display: nothing to run" << std::endl;
    usage();
    return 0;
  }
  std::ifstream in(base + ".blif");
  if (!in) {
    std::cerr << "tarvix: cannot read " << base << ".blif" << std::endl;
    return 1;
  }
  Netlist net;
  std::string error;
  if (!read_blif(in, net, error)) {
    std::cerr << "tarvix: " << base << ".blif: " << error << std::endl;
    return 1;
  }
  std::vector<TraceReaction> reactions;
  if (!trace.empty() && !read_trace(trace, reactions, error)) {
    std::cerr << "tarvix: " << error << std::endl;
    return 1;
  }
  if (waves.empty()) waves = base + ".vcd";
  std::ofstream wave(waves);
  if (!wave) {
    std::cerr << "tarvix: cannot write " << waves << std::endl;
    return 1;
  }
  std::ofstream outFile;
  if (!output.empty()) {
    outFile.open(output);
    if (!outFile) {
      std::cerr << "tarvix: cannot write " << output << std::endl;
      return 1;
    }
  }
  std::ostream& out = output.empty() ? std::cout : outFile;
  NetlistSim sim(net);
  VcdWriter vcd(wave, net);
  std::set<std::string> inputs(net.inputs.begin(), net.inputs.end());
  try {
    if (trace.empty()) return runPanels(sim, vcd, out);
    long n = 0;
    for (const TraceReaction& r : reactions) {
      std::set<std::string> present;
      for (const auto& [name, value] : r.inputs) {
        if (!inputs.count(name)) {
          std::cerr << "tarvix: " << name << " is not an input of " << net.model << std::endl;
          return 1;
        }
        present.insert(name);
      }
      std::map<std::string, int> values = sim.react(present);
      vcd.sample(n++, values);
      out << n << " /" << outputsText(net, values) << std::endl;
    }
    vcd.finish(n);
  } catch (const std::exception& e) {
    std::cerr << "tarvix: " << base << ".blif: " << e.what() << std::endl;
    return 1;
  }
  std::cerr << "tarvix: waveforms in " << waves << std::endl;
  return 0;
}

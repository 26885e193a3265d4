// Netlists in the Berkeley Logic Interchange Format and their cycle-by-cycle
// simulation: latches hold the state, ".names" tables compute everything else.
#pragma once

#include <iosfwd>
#include <map>
#include <set>
#include <string>
#include <vector>

struct Netlist {
  struct Latch {
    std::string input, output;
    int initial = 0;
  };
  struct Table {
    std::vector<std::string> inputs;
    std::string output;
    std::vector<std::pair<std::string, char>> rows;  // input cube, output value
  };
  std::string model;
  std::vector<std::string> inputs, outputs;
  std::vector<Latch> latches;
  std::map<std::string, Table> tables;  // by output
};

// False with "line N: ..." in `error` for a text that is not a netlist.
bool read_blif(std::istream& in, Netlist& net, std::string& error);

class NetlistSim {
 public:
  explicit NetlistSim(const Netlist& net);
  // Latches back to their initial values.
  void reset();
  // One cycle: the inputs named are 1, the others 0. Gives the value of every input,
  // output and latch of the cycle, then moves the latches on. Throws std::runtime_error
  // on an undefined signal or a combinational loop.
  std::map<std::string, int> react(const std::set<std::string>& present);
  const Netlist& netlist() const { return net; }

 private:
  int value(const std::string& name);
  const Netlist& net;
  std::map<std::string, int> state;   // latch outputs
  std::map<std::string, int> values;  // this cycle
  std::set<std::string> pending;
  std::set<std::string> present;
  std::set<std::string> inputSet;
};

// Waveforms of a run in Value Change Dump form: one variable per input, output and
// latch, one time step per reaction.
class VcdWriter {
 public:
  VcdWriter(std::ostream& out, const Netlist& net);
  void sample(long time, const std::map<std::string, int>& values);
  void finish(long time);

 private:
  std::ostream& out;
  std::vector<std::pair<std::string, std::string>> vars;  // name, code
  std::map<std::string, int> last;
  bool first = true;
};

// The netlist simulator: reading netlists, one cycle at a time, waveforms.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "sim/netlist.h"
#include "vcd_reader.h"

namespace {

Netlist parse(const std::string& text) {
  Netlist net;
  std::istringstream in(text);
  std::string error;
  EXPECT_TRUE(read_blif(in, net, error)) << error;
  return net;
}

// A toggle: t flips each cycle where a is present, o shows t; the constant tables
// as the compiler writes them.
const char* const Toggle =
    ".model tog\n.inputs a\n.outputs o\n.latch n t 0 \n\n"
    ".names tog_node_1\n1\n\n"
    ".names a t n\n10 1\n01 1\n\n"
    ".names t \\\n o\n1 1\n"
    ".names tog_node_1 k\n0 1\n"
    ".end\n";

TEST(Netlist, CyclesOfAToggle) {
  Netlist net = parse(Toggle);
  NetlistSim sim(net);
  const struct {
    bool a;
    int o;
  } steps[] = {{false, 0}, {true, 0}, {false, 1}, {true, 1}, {true, 0}, {false, 1}};
  for (const auto& s : steps) {
    auto v = sim.react(s.a ? std::set<std::string>{"a"} : std::set<std::string>{});
    EXPECT_EQ(v.at("o"), s.o);
  }
  sim.reset();
  EXPECT_EQ(sim.react({}).at("o"), 0);
}

TEST(Netlist, BadTextsAreRefused) {
  const struct {
    const char* text;
    const char* error;
  } cases[] = {
      {".inputs a\n", "no .model"},
      {".model m\n.names a b\n1x 1\n", "line 3: bad row of b"},
      {".model m\n11 1\n", "line 2: a table row outside .names"},
      {".model m\n.latch a\n", "line 2: .latch needs an input and an output"},
      {".model m\n.latch a b 7\n", "line 2: bad initial value 7"},
      {".model m\n.names a b\n1 1\n.names c b\n1 1\n", "line 4: b is defined twice"},
      {".model m\n.gate x\n", "line 2: unknown construct .gate"},
  };
  for (const auto& c : cases) {
    Netlist net;
    std::istringstream in(c.text);
    std::string error;
    EXPECT_FALSE(read_blif(in, net, error)) << c.text;
    EXPECT_EQ(error.substr(0, std::string(c.error).size()), c.error) << error;
  }
}

TEST(Netlist, UndefinedSignalsAndLoopsFailTheCycle) {
  Netlist undefined = parse(".model m\n.outputs o\n.names x o\n1 1\n");
  NetlistSim a(undefined);
  EXPECT_THROW(a.react({}), std::runtime_error);
  Netlist loop = parse(".model m\n.outputs o\n.names p o\n1 1\n.names o p\n1 1\n");
  NetlistSim b(loop);
  EXPECT_THROW(b.react({}), std::runtime_error);
}

TEST(Netlist, WaveformsReadBack) {
  Netlist net = parse(Toggle);
  NetlistSim sim(net);
  const std::string file = testing::TempDir() + "tog.vcd";
  {
    std::ofstream out(file);
    VcdWriter vcd(out, net);
    long n = 0;
    for (bool a : {true, false, true, true}) vcd.sample(n++, sim.react(a ? std::set<std::string>{"a"} : std::set<std::string>{}));
    vcd.finish(n);
  }
  Vcd vcd(file);
  ASSERT_TRUE(vcd.ok);
  EXPECT_EQ(vcd.scope, "tog");
  EXPECT_EQ(vcd.code_of.size(), 3u);  // a, o, t
  ASSERT_EQ(vcd.at.size(), 4u);
  const int a[] = {1, 0, 1, 1}, o[] = {0, 1, 1, 0};
  for (long t = 0; t < 4; t++) {
    EXPECT_EQ(vcd.at[t]["a"], a[t]) << t;
    EXPECT_EQ(vcd.at[t]["o"], o[t]) << t;
    EXPECT_EQ(vcd.at[t]["t"], o[t]) << t;
  }
}

}  // namespace

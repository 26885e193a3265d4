// Module::simulate: the netlist beside the dumps of finalization.
#include <gtest/gtest.h>

#include <fstream>

#include "common/quarn_test.h"

namespace {

TEST(Simulate, DumpsAroundFinalizationAndWritesTheNetlist) {
  Module* m = quarn_test::compiled_from_text("module m: Input: a; Output: o; loop { wait a >> emit o } end");
  ASSERT_NE(m, nullptr);
  Module::SimulationDir = testing::TempDir();
  const std::string blif = Module::SimulationDir + "m.blif";
  std::remove(blif.c_str());
  const std::string path = std::getenv("PATH") ? std::getenv("PATH") : "";
  setenv("PATH", "/nonexistent", 1);  // no simulator to run: the compiler goes on
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  m->simulate();
  std::string out = testing::internal::GetCapturedStdout();
  std::string err = testing::internal::GetCapturedStderr();
  size_t before = out.find("AVANT FINALISATION\n");
  size_t after = out.find("APRES FINALISATION\n");
  EXPECT_NE(before, std::string::npos);
  EXPECT_NE(after, std::string::npos);
  EXPECT_LT(before, after);
  EXPECT_EQ(err.find("already exists"), std::string::npos);
  std::ifstream in(blif);
  std::string first;
  std::getline(in, first);
  EXPECT_EQ(first, ".model m");

  // Finalized now: no dumps; the netlist is written again over the first.
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  m->simulate();
  out = testing::internal::GetCapturedStdout();
  err = testing::internal::GetCapturedStderr();
  EXPECT_EQ(out.find("FINALISATION"), std::string::npos);
  EXPECT_NE(err.find("File: m.blif already exists. File rewrited.\n"), std::string::npos) << err;
  std::remove(blif.c_str());
  Module::SimulationDir = "./";
  setenv("PATH", path.c_str(), 1);
}

TEST(Simulate, RequiresCompilation) {
  Module m("raw");
  m.setCompilation(nullptr);
  EXPECT_EXIT(m.simulate(), testing::ExitedWithCode(1), "Simulation requires compilation");
}

}  // namespace

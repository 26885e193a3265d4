#include "util/compilation.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <unistd.h>

#include "model/module.h"

namespace {

// Compiled module search over the -comp_files list: the first file whose first line
// names the module, by substring, in list order.
class QncSearch : public ::testing::Test {
 protected:
  void SetUp() override {
    dir = std::filesystem::temp_directory_path() /
          ("quarn_qnc_search_" + std::to_string(::getpid()));
    std::filesystem::create_directories(dir);
    write("abc.qnc", "module: abc  1 0\nrest\n");
    write("ab.qnc", "module: ab  0 1\n");
    write("xyz.qnc", "module: xyz  0 0\n");
    saved = Module::CompilationFileList;
  }
  void TearDown() override {
    Module::CompilationFileList = saved;
    std::filesystem::remove_all(dir);
  }
  void write(const std::string& name, const std::string& text) {
    std::ofstream(dir / name) << text;
  }
  std::string path(const std::string& name) { return (dir / name).string(); }

  std::filesystem::path dir;
  std::list<std::string>* saved = nullptr;
};

TEST_F(QncSearch, AbsentOrEmptyListFindsNothing) {
  Module::CompilationFileList = nullptr;
  EXPECT_EQ(Compilation::getQncFileName("abc"), "");
  EXPECT_EQ(Compilation::getReincarnateFromQncFile("abc"), -1);
  std::list<std::string> none;
  Module::CompilationFileList = &none;
  EXPECT_EQ(Compilation::getQncFileName("abc"), "");
  EXPECT_EQ(Compilation::getReincarnateFromQncFile("abc"), -1);
}

TEST_F(QncSearch, FirstLineMatchInListOrder) {
  std::list<std::string> files = {path("missing.qnc"), path("abc.qnc"), path("ab.qnc"),
                                  path("xyz.qnc")};
  Module::CompilationFileList = &files;
  struct Case {
    const char* name;
    std::string file;
    long reincarnate;
  };
  const Case cases[] = {
      {"abc", path("abc.qnc"), 1},
      {"ab", path("abc.qnc"), 1},  // a substring: list order decides
      {"xyz", path("xyz.qnc"), 0},
      {"rest", "", -1},  // only the first line counts
      {"nomodule", "", -1},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(Compilation::getQncFileName(c.name), c.file) << c.name;
    EXPECT_EQ(Compilation::getReincarnateFromQncFile(c.name), c.reincarnate) << c.name;
  }
  files = {path("ab.qnc"), path("abc.qnc")};
  EXPECT_EQ(Compilation::getQncFileName("ab"), path("ab.qnc"));
  EXPECT_EQ(Compilation::getReincarnateFromQncFile("ab"), 0);
}

TEST_F(QncSearch, NoFileNoModule) {
  std::list<std::string> files = {path("missing.qnc")};
  Module::CompilationFileList = &files;
  EXPECT_EQ(Compilation::createModuleFromQncCode("abc", nullptr, nullptr), nullptr);
}

}  // namespace

#include "util/compilation.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <unistd.h>

#include "model/module.h"

namespace {

// Fatal reports end the process: each runs in a death test, with boxes off.
class Reports : public ::testing::Test {
 protected:
  void SetUp() override { setenv("QUARN_BATCH", "1", 1); }
};

TEST_F(Reports, TextsOnTheErrorStreamAndExitOne) {
  EXPECT_EXIT(Compilation::HashTableAddException("", "x"), ::testing::ExitedWithCode(1),
              "^Exception in Hash Table: add:x is already defined\n$");
  EXPECT_EXIT(Compilation::HashTableAddException("modules", "abro"), ::testing::ExitedWithCode(1),
              "^Exception in Hash Table: modules: add:abro is already defined\n$");
  EXPECT_EXIT(Compilation::ModulePertFailureException(), ::testing::ExitedWithCode(1),
              "^Error: PERT failure \\.\\.\\. \n$");
  EXPECT_EXIT(Compilation::IllegalOperationException("op"), ::testing::ExitedWithCode(1),
              "^Error: Illegal operation!\nop\n$");
  EXPECT_EXIT(Compilation::AlreadyDefinedException("m"), ::testing::ExitedWithCode(1),
              "^Error: Already defined : m\n$");
  EXPECT_EXIT(Compilation::UndefinedTypeException("T"), ::testing::ExitedWithCode(1),
              "^Error: Undefined type: T\n$");
}

TEST_F(Reports, SourceFileThatCanNotBeOpened) {
  EXPECT_EXIT(Compilation::qn_parse("/nonexistent/dir/x.qn"), ::testing::ExitedWithCode(1),
              "Can not open input file:");
  EXPECT_EXIT(Compilation::qn_parse("/"), ::testing::ExitedWithCode(1), "Can not open input file:");
}

TEST(Tables, ExistEmptyBeforeAnyParse) {
  ASSERT_NE(Compilation::ModTable, nullptr);
  ASSERT_NE(Compilation::QncModTable, nullptr);
  EXPECT_TRUE(Compilation::ModTable->getTable()->empty());
  EXPECT_TRUE(Compilation::QncModTable->getTable()->empty());
  EXPECT_EQ(Compilation::ModTable->get("m"), nullptr);
}

TEST(Wires, Names) {
  EXPECT_EQ(Compilation::createSETName("m"), "SETm");
  EXPECT_EQ(Compilation::createRTLName("p", 12), "RTLp12");
  EXPECT_EQ(Compilation::createACTIFPLUSName("s", 0), "ACTIFPLUSs0");
  EXPECT_EQ(Compilation::createACTIFBISPLUSName("s"), "ACTIFBISPLUSs");
  EXPECT_TRUE(Compilation::isStatusType(Compilation::SREG));
  EXPECT_TRUE(Compilation::isValueType(Compilation::VUSEDPRE));
  EXPECT_FALSE(Compilation::isStatusType(-2));
  EXPECT_TRUE(Compilation::isStatusType(-3));
}

// Compiled module search over the -comp_files list.
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

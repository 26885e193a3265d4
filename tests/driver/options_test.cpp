#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "driver/driver.h"
#include "targets/formats.h"
#include "targets/quarns_server.h"

namespace {

CommandLine scan(const std::vector<std::string>& args) { return scanCommandLine(args); }

TEST(Options, FilesNamesAndLaterOptionsWin) {
  CommandLine cl = scan({"foo.qn", "bar.qn", "-main", "a", "-main", "b", "-o", "x", "-o", "y",
                         "-D", "d1", "-D", "d2"});
  EXPECT_EQ(cl.failure, "");
  EXPECT_EQ(cl.sourceFile, "bar.qn");
  EXPECT_TRUE(cl.main);
  EXPECT_EQ(cl.mainName, "b");
  ASSERT_TRUE(cl.outputFile);
  EXPECT_EQ(*cl.outputFile, "y");
  ASSERT_TRUE(cl.outputDir);
  EXPECT_EQ(*cl.outputDir, "d2");
  EXPECT_FALSE(cl.compilationFiles);
  EXPECT_TRUE(cl.unknownOptions.empty());
}

TEST(Options, ValueOptionsTakeANextArgumentBeginningWithMinus) {
  CommandLine cl = scan({"-o", "-qnc", "-D", "-x", "-main", "-c", "f.qn"});
  EXPECT_EQ(cl.failure, "");
  EXPECT_EQ(*cl.outputFile, "-qnc");
  EXPECT_EQ(*cl.outputDir, "-x");
  EXPECT_EQ(cl.mainName, "-c");
  EXPECT_FALSE(cl.has("-qnc"));
  EXPECT_FALSE(cl.has("-c"));
  EXPECT_TRUE(cl.unknownOptions.empty());
  EXPECT_EQ(cl.sourceFile, "f.qn");
}

TEST(Options, CompilationFileLists) {
  CommandLine empty = scan({"-comp_files", "[", "]", "f.qn"});
  EXPECT_EQ(empty.failure, "");
  ASSERT_TRUE(empty.compilationFiles) << "an empty list is not an absent one";
  EXPECT_TRUE(empty.compilationFiles->empty());
  EXPECT_EQ(empty.sourceFile, "f.qn");

  CommandLine two = scan({"-comp_files", "[", "a.qnc", "-qnc", "]", "-comp_files", "[", "b.qnc",
                          "c.qnc", "]", "-c"});
  EXPECT_EQ(two.failure, "");
  ASSERT_TRUE(two.compilationFiles);
  EXPECT_EQ(*two.compilationFiles, (std::list<std::string>{"b.qnc", "c.qnc"}));
  EXPECT_FALSE(two.has("-qnc")) << "an argument inside the list is a file, not an option";
  EXPECT_TRUE(two.has("-c"));
  EXPECT_EQ(two.sourceFile, "");
}

TEST(Options, Flags) {
  const char* words[] = {"-debug", "-pure_simul", "-valued_simul", "-quarns", "-qnc",
                         "-keep_wires", "-forget_l_name", "-check_overknowledge", "-h", "-v",
                         "-c", "-csharp", "-blif", "-nusmv", "-vhdl_altera"};
  for (const char* w : words) {
    CommandLine cl = scan({w, "f.qn"});
    EXPECT_EQ(cl.flags, (std::set<std::string>{w})) << w << " sets exactly one flag";
    EXPECT_TRUE(cl.unknownOptions.empty()) << w;
    EXPECT_FALSE(cl.main) << w;
  }
}

TEST(Options, UnknownOptionsAreSkippedInOrder) {
  CommandLine cl = scan({"-zz", "-template_valued_simul", "-", "-C", "f.qn", "-qnc"});
  EXPECT_EQ(cl.failure, "");
  EXPECT_EQ(cl.unknownOptions,
            (std::vector<std::string>{"-zz", "-template_valued_simul", "-", "-C"}));
  EXPECT_TRUE(cl.has("-qnc"));
  EXPECT_EQ(cl.sourceFile, "f.qn");
}

TEST(Options, WrongCommandLines) {
  struct Case {
    std::vector<std::string> args;
    const char* failure;
  };
  const Case cases[] = {
      {{"f.qn", "-o"}, "error: no outfile name supplied\n"},
      {{"f.qn", "-D"}, "error: no directory name supplied\n"},
      {{"f.qn", "-main"}, "error: no main module name supplied\n"},
      {{"-comp_files", "a.qnc", "]"}, "error: no beginning of compilation files list supplied\n"},
      {{"f.qn", "-comp_files"}, "error: no beginning of compilation files list supplied\n"},
      {{"-comp_files", "[", "a.qnc"}, "error: no end of compilation files list supplied\n"},
      {{"-comp_files", "["}, "error: no end of compilation files list supplied\n"},
  };
  for (const Case& c : cases) EXPECT_EQ(scan(c.args).failure, c.failure) << c.args.back();

  // The scan stops at the failure: what follows is not read.
  CommandLine cl = scan({"-zz", "-o"});
  EXPECT_EQ(cl.unknownOptions, (std::vector<std::string>{"-zz"}));
}

TEST(Options, ShownQncName) {
  struct Case {
    const char* module;
    const char* outputFile;
    const char* shown;
  };
  const Case cases[] = {
      {"abro", "", "abro.qnc"},
      {"abro", "out", "out.qnc"},
      {"abro", "out.qnc", "out.qnc"},
      {"abro", "a.qnc.old", "a.qnc.old"},  // ".qnc" anywhere keeps the name as it stands
      {"abro", "a.qn", "a.qn.qnc"},
  };
  for (const Case& c : cases) EXPECT_EQ(target_file_name(c.module, c.outputFile, ".qnc"), c.shown);
}

TEST(Options, UsageText) {
  const std::string fourthLong = "           [-keep_wires] [-forget_l_name] [-check_overknowledge]\n";
  const std::string fourthShort = "           [-keep_wires] [-forget_l_name]\n";
  std::string lone = usageText(false);
  std::string among = usageText(true);
  EXPECT_EQ(lone.rfind("   quarnc [-h] [-v]    or\n   quarnc [-debug]", 0), 0u);
  EXPECT_NE(lone.find(fourthLong), std::string::npos);
  EXPECT_EQ(among.find("-check_overknowledge"), std::string::npos);
  EXPECT_NE(among.find(fourthShort), std::string::npos);
  EXPECT_EQ(lone.size() - among.size(), fourthLong.size() - fourthShort.size());
  EXPECT_EQ(lone.substr(lone.size() - 24), "[-nusmv] [-vhdl_altera]\n");
}

TEST(Options, MainNameFromPath) {
  struct Case {
    const char* path;
    const char* main;
  };
  const Case cases[] = {
      {"abro.qn", "abro"},
      {"/home/u/abro.qn", "abro"},
      {"dir/sub/abro.qnc", "abro"},  // the first ".qn" cuts, whatever follows
      {"ab/x.qn", "x"},             // "/" at index 2
      {"a/x.qn", "a/x"},            // a "/" before index 2 is not looked at
      {"./x.qn", "./x"},
      {"abro.txt", ""},
      {"", ""},
  };
  for (const Case& c : cases) EXPECT_EQ(mainNameFromPath(c.path), c.main) << c.path;
}

TEST(Options, QuarnsBuildCommand) {
  EXPECT_EQ(quarnsBuildCommand("m", {}), "g++ quarns_m.cc -o quarns_m");
  EXPECT_EQ(quarnsBuildCommand("m", {"T", "U"}),
            "g++ quarns_m.cc quarns_data_user_T.cc quarns_data_user_U.cc -o quarns_m");
}

}  // namespace

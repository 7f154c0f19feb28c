// Parameter files: reading, writing, several sets.
#include <clocale>
#include <cstdlib>
#include <fstream>
#include <vector>

#include "base/random.h"
#include "env_fixture.h"

namespace {

using tarvik_test::EnvTest;
using tarvik_test::readFile;

class ParamFileTest : public EnvTest {};

TEST_F(ParamFileTest, LinesAreReadInTheirForms) {
  start();
  write("a.prm",
        "# comment\n\n \t TimeLimit = 100  ignored\r\nthreads\t2\nMIP_GAP=0.5\n"
        "NodefileDir  =  dir\nCutoff -inf\n\r\nHeuristics 0.25");
  EXPECT_EQ(TVKreadparams(env_, "a.prm"), 0);
  EXPECT_EQ(dblParam("TimeLimit"), 100);
  EXPECT_EQ(intParam("Threads"), 2);
  EXPECT_EQ(dblParam("MIPGap"), 0.5);
  EXPECT_EQ(dblParam("Cutoff"), -1e100);
  EXPECT_EQ(dblParam("Heuristics"), 0.25);
  EXPECT_EQ(strParam("NodefileDir"), "dir");
  EXPECT_EQ(takeLog(),
            "Set parameter TimeLimit to value 100\nSet parameter Threads to value 2\n"
            "Set parameter MIPGap to value 0.5\nSet parameter NodefileDir to value \"dir\"\n"
            "Set parameter Cutoff to value -1e+100\nSet parameter Heuristics to value 0.25\n"
            "Read parameters from file a.prm\n");
}

TEST_F(ParamFileTest, BadLinesAreReportedAndSkipped) {
  start();
  write("b.prm", "nonsense 1\nThreads 2.5\nJobID x\nThreadLimit 3\nbogus\nMIPGap\n= 3\nMethod 2\n" +
                     std::string(30000, 'z') + "\n");
  EXPECT_EQ(TVKreadparams(env_, "b.prm"), 0);
  EXPECT_EQ(message(), "");
  const std::string log = takeLog();
  for (const char *line :
       {"Warning: unknown parameter nonsense in b.prm\n",
        "Error 10008: Failed to set parameter Threads to value 2.5 (ignored)\n",
        "Error 10003: Parameter JobID is fixed, cannot be set to x (ignored)\n",
        "Error 10003: Parameter ThreadLimit should be set before start (ignored)\n",
        "Warning: unknown parameter bogus in b.prm\n",
        "Error 10008: Failed to set parameter MIPGap to value  (ignored)\n",
        "Warning: unknown parameter  in b.prm\n", "Set parameter Method to value 2\n",
        "6 warnings while reading parameter file b.prm\n"})
    EXPECT_NE(log.find(line), std::string::npos) << line << log.substr(0, 2000);
}

TEST_F(ParamFileTest, FilesThatCannotBeUsed) {
  start();
  EXPECT_EQ(TVKreadparams(env_, "missing.prm"), TVK_ERROR_INVALID_ARGUMENT);
  EXPECT_EQ(message(), "Unable to read parameter file missing.prm");
  EXPECT_EQ(TVKreadparams(env_, nullptr), TVK_ERROR_NULL_ARGUMENT);
  EXPECT_EQ(message(), "No 'filename' argument supplied");
  EXPECT_EQ(TVKwriteparams(env_, "no/such/directory/x.prm"), TVK_ERROR_INVALID_ARGUMENT);
  EXPECT_EQ(message(), "Unable to write to parameter file no/such/directory/x.prm");
  EXPECT_EQ(TVKwriteparams(env_, nullptr), TVK_ERROR_NULL_ARGUMENT);
  EXPECT_EQ(TVKreadtunebasesettings(env_, "missing.prm"), TVK_ERROR_INVALID_ARGUMENT);
  EXPECT_EQ(TVKreadtunebasesettings(env_, nullptr), TVK_ERROR_NULL_ARGUMENT);
}

TEST_F(ParamFileTest, WrittenFilesReadBack) {
  start();
  TVKsetintparam(env_, "Threads", 2);
  TVKsetdblparam(env_, "MIPGap", 1.0 / 3);
  TVKsetdblparam(env_, "TimeLimit", 100);
  TVKsetdblparam(env_, "TARV_PAR_ZERO", 1e-12);
  TVKsetstrparam(env_, "NodefileDir", "/tmp");
  TVKsetintparam(env_, "ObjNumber", 3);
  for (const char *name : {"c.prm", "c.prm.gz"}) {
    ASSERT_EQ(TVKwriteparams(env_, name), 0) << message();
    ASSERT_EQ(TVKresetparams(env_), 0);
    EXPECT_EQ(dblParam("MIPGap"), 0.0001);
    ASSERT_EQ(TVKreadparams(env_, name), 0) << message();
    EXPECT_EQ(intParam("Threads"), 2);
    EXPECT_EQ(dblParam("MIPGap"), 1.0 / 3);
    EXPECT_EQ(dblParam("TARV_PAR_ZERO"), 1e-12);
  }
  EXPECT_EQ(readFile("c.prm"),
            "TimeLimit  100\nMIPGap  3.3333333333333331e-01\nLogToConsole  0\nThreads  2\n"
            "TARV_PAR_ZERO  1e-12\n");
}

TEST_F(ParamFileTest, SetsAreSeparated) {
  start();
  write("sets.prm",
        "parameterset\nThreads 1\nPARAMETERSET two\nThreads 2\nPARAMETERSET\nThreads 3\n");
  EXPECT_EQ(TVKreadparams(env_, "sets.prm"), 0);
  EXPECT_EQ(intParam("Threads"), 1);
  takeLog();
  ASSERT_NE(TVKgettuneenv(env_, 1), nullptr);
  EXPECT_EQ(TVKreadtunebasesettings(env_, "sets.prm"), 0);
  EXPECT_NE(takeLog().find("Read tune base setting 2: sets.prm\n"), std::string::npos);
  for (int set = 1; set <= 3; ++set) {
    int threads = 0;
    EXPECT_EQ(TVKgetintparam(TVKgettuneenv(env_, set + 1), "Threads", &threads), 0);
    EXPECT_EQ(threads, set);
  }
  // An empty file holds no set at all.
  write("empty.prm", "# nothing\n");
  EXPECT_EQ(TVKreadtunebasesettings(env_, "empty.prm"), 0);
  EXPECT_EQ(takeLog(), "");
}

TEST_F(ParamFileTest, AnyBytesEndInAReadOrAReport) {
  start();
  ASSERT_EQ(TVKsetintparam(env_, "OutputFlag", 0), 0);
  const std::vector<std::string> pieces = {"TimeLimit",
                                           "Threads",
                                           "Dummy",
                                           "nonsense",
                                           " ",
                                           "\t",
                                           "=",
                                           "\n",
                                           "\r",
                                           std::string(1, '\0'),
                                           "1e5",
                                           "-inf",
                                           "nan",
                                           "PARAMETERSET",
                                           "#",
                                           "%s%n",
                                           std::string(11000, '_'),
                                           "\xff",
                                           "1",
                                           "MIPGap 2e400"};
  tarvik::Random random(5);
  for (int round = 0; round < 300; ++round) {
    std::string text;
    for (int k = random.below(60); k > 0; --k)
      text += pieces[static_cast<std::size_t>(random.below(static_cast<int>(pieces.size())))];
    write("random.prm", text);
    ASSERT_EQ(TVKreadparams(env_, "random.prm"), 0) << round;
    ASSERT_EQ(TVKreadtunebasesettings(env_, "random.prm"), 0) << round;
    TVKdiscardtuneenvs(env_);
  }
}

// Switches to a locale with a decimal comma, made in the test's folder: which ones a machine has
// installed does not matter.
void useDecimalComma() {
  std::ofstream("comma.src") << "LC_NUMERIC\ndecimal_point \",\"\nthousands_sep \"\"\ngrouping -1\n"
                                "END LC_NUMERIC\n";
  // The tool warns of the categories that are left out, and says so in its exit code.
  static_cast<void>(std::system("localedef -c -i comma.src ./comma > localedef.log 2>&1"));
  setenv("LOCPATH", ".", 1);
  ASSERT_NE(std::setlocale(LC_NUMERIC, "comma"), nullptr) << readFile("localedef.log");
  ASSERT_STREQ(std::localeconv()->decimal_point, ",");
}

TEST_F(ParamFileTest, AnotherLocaleDoesNotMatter) {
  start();
  ASSERT_NO_FATAL_FAILURE(useDecimalComma());
  write("d.prm", "MIPGap 0.5\n");
  EXPECT_EQ(TVKreadparams(env_, "d.prm"), 0);
  EXPECT_EQ(dblParam("MIPGap"), 0.5);
  EXPECT_EQ(TVKwriteparams(env_, "e.prm"), 0);
  EXPECT_NE(readFile("e.prm").find("MIPGap  0.5\n"), std::string::npos);
  EXPECT_EQ(TVKsetparam(env_, "MIPGap", "0.25"), 0);
  EXPECT_EQ(dblParam("MIPGap"), 0.25);
  EXPECT_STREQ(std::localeconv()->decimal_point, ",") << "the caller's locale changed";
  std::setlocale(LC_NUMERIC, "C");
  unsetenv("LOCPATH");
}

}  // namespace

// Setting, reading and describing parameters through the C interface.
#include <cmath>
#include <cstring>
#include <set>

#include "env_fixture.h"

namespace {

using tarvik_test::EnvTest;
using tarvik_test::readFile;

class ParamTest : public EnvTest {};

TEST_F(ParamTest, NamesAreFoundWhateverTheirCaseAndInnerUnderscores) {
  start();
  for (const char *name : {"threads", "THREADS", "Thr_eads", "T_H_R_E_A_D_S_"}) {
    ASSERT_EQ(TVKsetintparam(env_, "Threads", 1), 0);
    EXPECT_EQ(TVKsetintparam(env_, name, 4), 0) << name;
    EXPECT_EQ(intParam("Threads"), 4) << name;
  }
  EXPECT_EQ(TVKsetintparam(env_, "_Threads", 4), TVK_ERROR_UNKNOWN_PARAMETER);
  EXPECT_EQ(message(), "Unknown parameter: _Threads");
  EXPECT_EQ(TVKsetintparam(env_, nullptr, 4), TVK_ERROR_UNKNOWN_PARAMETER);
  EXPECT_EQ(TVKsetintparam(env_, "", 4), TVK_ERROR_UNKNOWN_PARAMETER);
  EXPECT_EQ(TVKsetintparam(env_, std::string(100000, 'x').c_str(), 4), TVK_ERROR_UNKNOWN_PARAMETER);
  for (const char *marker : {"EndPublic", "End"})
    EXPECT_EQ(TVKsetintparam(env_, marker, 1), TVK_ERROR_UNKNOWN_PARAMETER) << marker;
}

TEST_F(ParamTest, EveryPublicParameterDescribesItself) {
  create();
  const int count = TVKgetnumparams(env_);
  ASSERT_GT(count, 150);
  std::set<std::string> names;
  for (int i = 0; i < count; ++i) {
    char *name = nullptr;
    ASSERT_EQ(TVKgetparamname(env_, i, &name), 0);
    names.insert(name);
    int ints[4];
    double dbls[4];
    char texts[2][512];
    switch (TVKgetparamtype(env_, name)) {
      case TVK_PARTYPE_INT:
        ASSERT_EQ(TVKgetintparaminfo(env_, name, ints, ints + 1, ints + 2, ints + 3), 0);
        if (std::strcmp(name, "LogToConsole") != 0) {
          EXPECT_EQ(ints[0], ints[3]) << name;
        }
        EXPECT_LE(ints[1], ints[3]) << name;
        EXPECT_LE(ints[3], ints[2]) << name;
        break;
      case TVK_PARTYPE_DBL:
        ASSERT_EQ(TVKgetdblparaminfo(env_, name, dbls, dbls + 1, dbls + 2, dbls + 3), 0);
        EXPECT_EQ(dbls[0], dbls[3]) << name;
        EXPECT_LE(dbls[1], dbls[3]) << name;
        EXPECT_LE(dbls[3], dbls[2]) << name;
        break;
      case TVK_PARTYPE_STR:
        ASSERT_EQ(TVKgetstrparaminfo(env_, name, texts[0], texts[1]), 0);
        EXPECT_STREQ(texts[0], texts[1]) << name;
        EXPECT_STREQ(texts[0], std::strcmp(name, "NodefileDir") == 0 ? "." : "") << name;
        break;
      default:
        ADD_FAILURE() << name;
    }
  }
  EXPECT_EQ(static_cast<int>(names.size()), count);
  char *name = nullptr;
  ASSERT_EQ(TVKgetparamname(env_, 0, &name), 0);
  EXPECT_STREQ(name, "Cutoff");
  ASSERT_EQ(TVKgetparamname(env_, count - 1, &name), 0);
  EXPECT_STREQ(name, "OutputFlag");
  EXPECT_EQ(TVKgetparamname(env_, count, &name), TVK_ERROR_INVALID_ARGUMENT);
  EXPECT_EQ(TVKgetparamname(env_, -1, &name), TVK_ERROR_INVALID_ARGUMENT);
  EXPECT_EQ(TVKgetparamname(env_, 0, nullptr), TVK_ERROR_NULL_ARGUMENT);
  EXPECT_EQ(TVKgetparamtype(env_, "nonsense"), -1);
  EXPECT_EQ(message(), "Unknown parameter: nonsense");
  EXPECT_EQ(TVKgetparamtype(env_, "TARV_PAR_ZERO"), TVK_PARTYPE_DBL);
  EXPECT_EQ(TVKgetnumparams(nullptr), 0);
}

TEST_F(ParamTest, WrongTypesAndNullOutputsAreRefused) {
  start();
  int i;
  double d;
  char text[512];
  EXPECT_EQ(TVKgetdblparam(env_, "Threads", &d), TVK_ERROR_UNKNOWN_PARAMETER);
  EXPECT_EQ(message(), "Wrong type for parameter: Threads");
  EXPECT_EQ(TVKgetintparam(env_, "MIPGap", &i), TVK_ERROR_UNKNOWN_PARAMETER);
  EXPECT_EQ(TVKgetstrparam(env_, "MIPGap", text), TVK_ERROR_UNKNOWN_PARAMETER);
  EXPECT_EQ(TVKsetstrparam(env_, "MIPGap", "1"), TVK_ERROR_UNKNOWN_PARAMETER);
  EXPECT_EQ(TVKgetintparam(env_, "Threads", nullptr), TVK_ERROR_NULL_ARGUMENT);
  EXPECT_EQ(message(), "NULL argument for required parameter");
  EXPECT_EQ(TVKgetdblparam(env_, "MIPGap", nullptr), TVK_ERROR_NULL_ARGUMENT);
  EXPECT_EQ(TVKgetstrparam(env_, "LogFile", nullptr), TVK_ERROR_NULL_ARGUMENT);
  EXPECT_EQ(TVKgetparamflags(env_, "Threads", nullptr), TVK_ERROR_INVALID_ARGUMENT);
  EXPECT_EQ(TVKgetintparaminfo(env_, "Threads", nullptr, nullptr, nullptr, nullptr), 0);
  EXPECT_EQ(message(), "");
}

TEST_F(ParamTest, RangesAreCheckedWithTheirMessages) {
  start();
  EXPECT_EQ(TVKsetdblparam(env_, "MIPGap", -1), TVK_ERROR_VALUE_OUT_OF_RANGE);
  EXPECT_EQ(message(), "Unable to set parameter MIPGap to value -1 (minimum is 0)");
  EXPECT_EQ(TVKsetdblparam(env_, "FeasibilityTol", 0.5), TVK_ERROR_VALUE_OUT_OF_RANGE);
  EXPECT_EQ(message(), "Unable to set parameter FeasibilityTol to value 0.5 (maximum is 0.01)");
  EXPECT_EQ(TVKsetintparam(env_, "Threads", 1025), TVK_ERROR_VALUE_OUT_OF_RANGE);
  EXPECT_EQ(message(), "Unable to set parameter Threads to value 1025 (maximum is 1024)");
  EXPECT_EQ(TVKsetintparam(env_, "Method", -2147483647 - 1), TVK_ERROR_VALUE_OUT_OF_RANGE);
  EXPECT_EQ(message(), "Unable to set parameter Method to value -2000000000 (minimum is -1)");
  EXPECT_EQ(TVKsetintparam(env_, "SolutionLimit", 2147483647), 0);
  EXPECT_EQ(intParam("SolutionLimit"), 2000000000);
  EXPECT_EQ(TVKsetdblparam(env_, "TimeLimit", std::nan("")), TVK_ERROR_VALUE_OUT_OF_RANGE);
  EXPECT_EQ(TVKsetdblparam(env_, "TimeLimit", INFINITY), 0);
  EXPECT_EQ(TVKsetdblparam(env_, "Cutoff", -INFINITY), 0);
  EXPECT_EQ(dblParam("TimeLimit"), 1e100);
  EXPECT_EQ(dblParam("Cutoff"), -1e100);
  EXPECT_EQ(intParam("Threads"), 0);
}

TEST_F(ParamTest, TextIsReadForEveryType) {
  start();
  struct Case {
    const char *name, *text;
    double value;
  };
  for (const Case &c :
       {Case{"TimeLimit", "infinity", 1e100}, Case{"TimeLimit", "information", 1e100},
        Case{"Cutoff", "-inf", -1e100}, Case{"Cutoff", "1.#INF", 1e100},
        Case{"MIPGap", "0.25", 0.25}, Case{"MIPGap", " 5e-1x", 0.5}}) {
    EXPECT_EQ(TVKsetparam(env_, c.name, c.text), 0) << c.text;
    EXPECT_EQ(dblParam(c.name), c.value) << c.text;
  }
  EXPECT_EQ(TVKsetparam(env_, "Threads", "3"), 0);
  EXPECT_EQ(TVKsetparam(env_, "SolutionLimit", "inf"), 0);
  EXPECT_EQ(intParam("Threads"), 3);
  EXPECT_EQ(intParam("SolutionLimit"), 2000000000);
  EXPECT_EQ(TVKsetparam(env_, "NodefileDir", "inf"), 0);
  EXPECT_EQ(strParam("NodefileDir"), "inf");
  EXPECT_EQ(TVKsetparam(env_, "Threads", "inf"), TVK_ERROR_VALUE_OUT_OF_RANGE);
  EXPECT_EQ(message(), "Unable to set parameter Threads to value 2000000000 (maximum is 1024)");
  for (const char *bad : {"2.5", "3e9", "nan", "many", ""}) {
    EXPECT_EQ(TVKsetparam(env_, "Threads", bad), TVK_ERROR_VALUE_OUT_OF_RANGE) << bad;
    EXPECT_EQ(message(), "Invalid value '" + std::string(bad) + "' for parameter 'Threads'");
  }
  EXPECT_EQ(TVKsetparam(env_, "nonsense", "1"), TVK_ERROR_UNKNOWN_PARAMETER);
  EXPECT_EQ(message(), "Unknown parameter: 'nonsense'");
  EXPECT_EQ(TVKsetparam(env_, "Threads", nullptr), TVK_ERROR_NULL_ARGUMENT);
  EXPECT_EQ(intParam("Threads"), 3);
}

TEST_F(ParamTest, ChangesAreLoggedOnceAndInTheirForm) {
  start();
  TVKsetintparam(env_, "Threads", 2);
  TVKsetdblparam(env_, "TimeLimit", 100);
  TVKsetdblparam(env_, "MIPGap", 0.1);
  TVKsetdblparam(env_, "MIPGap", 1.0 / 3);
  TVKsetdblparam(env_, "NodeLimit", 3e9);
  TVKsetstrparam(env_, "NodefileDir", "/tmp");
  TVKsetintparam(env_, "ObjNumber", 3);
  TVKsetstrparam(env_, "WorkerPassword", "secret");
  EXPECT_EQ(takeLog(),
            "Set parameter Threads to value 2\n"
            "Set parameter TimeLimit to value 100\n"
            "Set parameter MIPGap to value 0.1\n"
            "Set parameter MIPGap to value 3.3333333333333331e-01\n"
            "Set parameter NodeLimit to value 3000000000\n"
            "Set parameter NodefileDir to value \"/tmp\"\n"
            "Set parameter WorkerPassword\n");
  EXPECT_EQ(TVKsetintparam(env_, "Threads", 2), 0);
  EXPECT_EQ(TVKsetstrparam(env_, "NodefileDir", "/tmp"), 0);
  EXPECT_EQ(takeLog(), "");
}

TEST_F(ParamTest, FlagWordsTellWhatHappened) {
  start();
  EXPECT_EQ(flagsOf("Method"), 0u);
  EXPECT_EQ(flagsOf("TimeLimit"), 0x800u);
  EXPECT_EQ(TVKsetintparam(env_, "Method", -1), 0);
  EXPECT_EQ(flagsOf("Method"), 0x8400u);  // set, although nothing changed
  EXPECT_EQ(TVKresetparams(env_), 0);
  EXPECT_EQ(flagsOf("Method"), 0x400u);
  EXPECT_EQ(TVKsetintparam(env_, "Method", 1), 0);
  EXPECT_EQ(TVKresetparams(env_), 0);
  EXPECT_EQ(flagsOf("Method"), 0x10400u);
  EXPECT_EQ(flagsOf("Username") & 0x10u, 0x10u);
}

TEST_F(ParamTest, FixedParametersStay) {
  start();
  EXPECT_EQ(TVKsetstrparam(env_, "JobID", "x"), TVK_ERROR_INVALID_ARGUMENT);
  EXPECT_EQ(message(), "Unable to modify fixed parameter JobID");
  EXPECT_EQ(TVKsetintparam(env_, "ThreadLimit", 2), TVK_ERROR_INVALID_ARGUMENT);
  EXPECT_EQ(message(), "Unable to modify parameter ThreadLimit after environment started");
  EXPECT_EQ(TVKsetintparam(env_, "ThreadLimit", 0), 0);
  EXPECT_EQ(TVKsetintparam(env_, "Record", 1), TVK_ERROR_INVALID_ARGUMENT);
}

TEST_F(ParamTest, DummySetsAnotherParameter) {
  start();
  EXPECT_EQ(TVKsetstrparam(env_, "Dummy", "MIPGap 0.5"), 0);
  EXPECT_EQ(TVKsetparam(env_, "Dummy", "threads 2"), 0);
  EXPECT_EQ(dblParam("MIPGap"), 0.5);
  EXPECT_EQ(intParam("Threads"), 2);
  EXPECT_EQ(strParam("Dummy"), "");
  EXPECT_EQ(takeLog(), "Set parameter MIPGap to value 0.5\nSet parameter Threads to value 2\n");
  for (const char *bad : {"MIPGap", "nonsense 1", "LogFile 1", "1"})
    EXPECT_EQ(TVKsetstrparam(env_, "Dummy", bad), TVK_ERROR_UNKNOWN_PARAMETER) << bad;
}

TEST_F(ParamTest, LongTextsKeepTheBufferRules) {
  start();
  const std::string text(600, 'a');
  ASSERT_EQ(TVKsetstrparam(env_, "ResultFile", text.c_str()), 0);
  char buffer[700];
  std::memset(buffer, 'z', sizeof buffer);
  EXPECT_EQ(TVKgetstrparam(env_, "ResultFile", buffer), 0);
  EXPECT_EQ(std::string(buffer), text.substr(0, 511));
  EXPECT_EQ(buffer[512], 'z');
  int length = 0;
  EXPECT_EQ(TVKgetlongstrparam(env_, "ResultFile", nullptr, 0, &length), 0);
  EXPECT_EQ(length, 600);
  EXPECT_EQ(TVKgetlongstrparam(env_, "ResultFile", buffer, 10, &length), 0);
  EXPECT_STREQ(buffer, "aaaaaaaaa");
  EXPECT_EQ(length, 600);
  EXPECT_EQ(TVKgetlongstrparam(env_, "ResultFile", buffer, 700, &length), 0);
  EXPECT_EQ(std::string(buffer), text);
  EXPECT_EQ(TVKgetlongstrparam(env_, "ResultFile", buffer, 0, &length), 0);
  EXPECT_EQ(buffer[0], '\0');
  EXPECT_EQ(buffer[1], 'a');
  std::memset(buffer, 'z', sizeof buffer);
  EXPECT_EQ(TVKgetstrparaminfo(env_, "ResultFile", buffer, nullptr), 0);
  EXPECT_EQ(std::string(buffer, 513), std::string(512, 'a') + "z");
  EXPECT_EQ(TVKsetstrparam(env_, "ResultFile", nullptr), 0);
  EXPECT_EQ(strParam("ResultFile"), "");
}

TEST_F(ParamTest, ResetRestoresDefaultsInSilence) {
  start();
  TVKsetintparam(env_, "Threads", 2);
  TVKsetdblparam(env_, "MIPGap", 0.5);
  TVKsetstrparam(env_, "NodefileDir", "/tmp");
  TVKsetstrparam(env_, "LogFile", "a.log");
  takeLog();
  EXPECT_EQ(TVKresetparams(env_), 0);
  EXPECT_EQ(takeLog(), "");
  EXPECT_EQ(intParam("Threads"), 0);
  EXPECT_EQ(dblParam("MIPGap"), 0.0001);
  EXPECT_EQ(strParam("NodefileDir"), ".");
  EXPECT_EQ(strParam("LogFile"), "");
  EXPECT_EQ(intParam("OutputFlag"), 1);
  const std::string before = readFile("a.log");
  EXPECT_EQ(TVKsetintparam(env_, "LogToConsole", 0), 0);
  EXPECT_EQ(readFile("a.log"), before);
}

TEST_F(ParamTest, CopyTakesWhatDiffersFromTheDefault) {
  start();
  TVKenv *other = nullptr;
  ASSERT_EQ(TVKemptyenv(&other), 0);
  ASSERT_EQ(TVKsetintparam(other, "OutputFlag", 0), 0);
  ASSERT_EQ(TVKstartenv(other), 0);
  TVKsetintparam(other, "Method", 2);
  TVKsetdblparam(other, "MIPGap", 0.5);
  TVKsetstrparam(other, "NodefileDir", "elsewhere");
  TVKsetstrparam(other, "LogFile", "other.log");
  TVKsetintparam(other, "LogToConsole", 0);
  TVKsetintparam(env_, "Threads", 2);
  takeLog();
  EXPECT_EQ(TVKcopyparams(env_, other), 0);
  EXPECT_EQ(takeLog(),
            "Set parameter MIPGap to value 0.5\nSet parameter Method to value 2\n"
            "Set parameter NodefileDir to value \"elsewhere\"\n"
            "Set parameter LogToConsole to value 0\n");
  EXPECT_EQ(intParam("Threads"), 0);
  EXPECT_EQ(strParam("LogFile"), "");
  EXPECT_EQ(intParam("OutputFlag"), 0);
  EXPECT_EQ(TVKcopyparams(env_, nullptr), TVK_ERROR_NULL_ARGUMENT);
  EXPECT_EQ(TVKcopyparams(nullptr, env_), TVK_ERROR_NULL_ARGUMENT);
  EXPECT_EQ(TVKcopyparams(env_, env_), 0);
  EXPECT_EQ(intParam("Method"), 2);
  EXPECT_EQ(TVKfreeenv(other), 0);
}

}  // namespace

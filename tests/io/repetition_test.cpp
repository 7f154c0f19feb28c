// Files that say the same thing a hundred thousand times are read in time that grows with their
// length: no reader looks through all that came before.
#include <ctime>
#include <functional>

#include "file_fixture.h"

namespace tarvik {
namespace {

constexpr int kTimes = 100000;
// Instrumented code is slower by about ten times.
#ifdef __SANITIZE_ADDRESS__
constexpr double kSeconds = 20;
#else
constexpr double kSeconds = 2;
#endif

class Repetition : public FileTest {
 protected:
  static std::string repeat(const std::function<std::string(int)> &line, int times = kTimes) {
    std::string text;
    for (int k = 0; k < times; ++k) text += line(k);
    return text;
  }
  static std::string repeat(const std::string &line, int times = kTimes) {
    return repeat([&](int) { return line; }, times);
  }

  template <class Run>
  static void expectQuick(const char *what, Run &&run) {
    const std::clock_t begin = std::clock();
    run();
    EXPECT_LT(static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC, kSeconds) << what;
  }
  // Every text is read, or fails, in time.
  void expectQuickModels(const std::string &name,
                         const std::vector<std::pair<const char *, std::string>> &texts) {
    for (const auto &[what, text] : texts) expectQuick(what, [&] { tryRead(name, text); });
  }
  void expectQuickValues(TVKmodel *model, const std::string &name, const std::string &text) {
    const std::string file = write(name, text);
    expectQuick(name.c_str(), [&] { TVKread(model, file.c_str()); });
  }
};

TEST_F(Repetition, LpFiles) {
  const auto many = [](const char *before, const char *after) {
    return repeat([=](int k) { return before + std::to_string(k) + after; });
  };
  const std::string head = "min\n x + y\nst\n c: x + y >= 1\n";
  expectQuickModels(
      "m.lp",
      {{"terms", "min\n" + repeat(" + x\n") + "st\n c:" + repeat(" + x\n") + ">= 1\nend\n"},
       {"products", "min\n [" + repeat(" + x * y\n") + "] / 2\nend\n"},
       {"names of rows", head + repeat(" c: x + y >= 1\n") + "end\n"},
       {"rows of other variables", head + many(" x", " >= 1\n") + "end\n"},
       {"sections", head + repeat("bounds\n x <= 4\nst\n d: x >= 1\nbinary\n y\nsemi\n x\n")},
       {"objectives", head + repeat("min\n x\nmax\n y\n")},
       {"lists", head + "bounds\n" + repeat(" 1 <= x <= 4\n") + "generals\n" + repeat(" x y\n")},
       {"unknown names", head + "bounds\n" + repeat(" z <= 4\n") + "generals\n" + repeat(" z\n")},
       {"sets", head + "sos\n" + repeat(" s: S1 :: x:1 y:2\n")},
       {"members", head + "sos\n s: S1 ::" + repeat(" x:1\n")},
       {"points", head + "pwlobj\n x:" + many(" (", ", 1)\n")},
       {"pwl objectives", head + "pwlobj\n" + repeat(" x: (0, 0) (1, 1)\n")},
       {"general constraints", head + "gencons\n" + repeat(" g: x = MAX ( x , y , 1 )\n")},
       {"operands", head + "gencons\n g: x = MAX ( x" + repeat(" , y") + " )\n"},
       {"polynomials", head + "gencons\n" + repeat(" g: x = POLY ( 2 y ^ 9 )\n")},
       {"indicators", "min\n b\nst\n" + repeat(" i: b = 1 -> x + y <= 1\n")},
       {"cones", head + "cones\n" + repeat(" k: [ - x ^2 + y ^2 ] <= 0\n")},
       {"lazy rows", head + repeat("lazy constraints\n c: x >= 1\nuser cuts\n u: x <= 8\n")},
       {"scenarios", head + repeat("scenario\nmin\n x 2\nst\n c: >= 2\nbounds\n y <= 3\n", 20000)},
       {"settings", "min multi-objectives\n" +
                        repeat(" o: priority=1 weight=1 abstol=0 reltol=0\n x\n", 20000)}});
}

TEST_F(Repetition, MpsFiles) {
  const std::string rows = "NAME\nROWS\n N  OBJ\n L  r\n L  q\n";
  const std::string head = rows + "COLUMNS\n    x OBJ 1 r 1\n    y r 1 q 1\n";
  const std::string end = "ENDATA\n";
  expectQuickModels(
      "m.mps",
      {{"columns", rows + "COLUMNS\n" + repeat([](int k) {
                     return "    x" + std::to_string(k % 50000) + "  OBJ  1  r  1\n";
                   }) + end},
       {"rows", rows + repeat(" N free\n") + head + end},
       {"free rows", rows + repeat([](int k) { return " N f" + std::to_string(k) + "\n"; }) +
                         "COLUMNS\n" + repeat("    x r 1\n") + end},
       {"sections",
        head + repeat("RHS\n    RHS1 r 1\nRANGES\n    R r 1\nBOUNDS\n UP B x 4\n") + end},
       {"markers", rows + "COLUMNS\n" + repeat("    M 'MARKER' 'INTORG'\n    x r 1\n") + end},
       {"sets", head + "SOS\n" + repeat(" S1 s\n    x 1\n    y 2\n") + end},
       {"quadratic objective", head + repeat("QUADOBJ\n    x x 1\n") + end},
       {"quadratic entries", head + "QMATRIX\n" + repeat("    x y 1\n    y x 1\n") + end},
       {"quadratic rows", head + repeat("QCMATRIX q\n    x x 1\n") + end},
       {"indicators", head + "INDICATORS\n" + repeat(" IF r x 1\n") + end},
       {"general constraints", head + "GENCONS\n" + repeat(" MAX g\n    x\n    y\n    1\n") + end},
       {"points", head + "PWLOBJ\n" + repeat("    x 1 1\n") + end},
       {"objectives",
        "NAME\nROWS\n" +
            repeat([](int k) { return " N o" + std::to_string(k) + " 1 1 0 0\n"; }, 20000) +
            " L r\nCOLUMNS\n    x o1 1 r 1\n" + end},
       {"scenarios", head + "SCENARIOS 20000\n" +
                         repeat(" NAME\n COLUMNS\n    x OBJ 3\n RHS\n    R r 2\n", 20000) + end}});
}

TEST_F(Repetition, OpbFiles) {
  expectQuickModels("m.opb", {{"terms", "min:" + repeat(" +1 x +2 y\n") + ";\n"},
                              {"rows", repeat("+1 x +1 ~y >= 1 ;\n")},
                              {"products", repeat("+1 x ~y z >= 1 ;\n+1 x y >= 0 ;\n")},
                              {"literals", "+1" + repeat(" x ~y") + " >= 1 ;\n"},
                              {"empty rows", repeat(";\n* comment\n")}});
}

TEST_F(Repetition, ValueAndAttributeFiles) {
  TVKmodel *model = read("m.lp", "min\n x + y\nst\n c: x + y >= 1\nbinary\n x y\nend\n");
  int fingerprint = 0;
  ASSERT_EQ(TVKgetintattr(model, "Fingerprint", &fingerprint), 0);
  char head[80];
  std::snprintf(head, sizeof head, "SECTION FINGERPRINT\n0x%08x\n",
                static_cast<unsigned>(fingerprint));
  expectQuickValues(model, "a.mst", repeat("x 1\nz 2\n"));
  expectQuickValues(model, "b.mst", repeat("# MIP start\nx 1\n"));
  expectQuickValues(model, "a.hnt", repeat("x 1 2\nz 1\n"));
  expectQuickValues(model, "a.ord", repeat("x 1\nz 1\n"));
  expectQuickValues(model, "a.bas", "NAME\n" + repeat(" XL x c\n UL y\n") + "ENDATA\n");
  expectQuickValues(model, "a.attr", head + repeat("SECTION VARHINTS\nx 1 2\nz 1\n"));
  expectQuickValues(model, "b.attr", head + repeat("SECTION MIPSTART\nx 1\n"));
  expectQuickValues(model, "c.attr", head + std::string("SECTION VTAG\n") + repeat("x \"tag\"\n"));
  expectQuickValues(model, "d.attr", head + repeat("SECTION BASIS\nV x 0\nC c -1\n"));
}

}  // namespace
}  // namespace tarvik

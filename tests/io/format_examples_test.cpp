// The examples in docs/formats.md are read as they stand there.
#include "file_fixture.h"

namespace tarvik {
namespace {

class FormatExamples : public FileTest {
 protected:
  static std::string example(const std::string &language) {
    const std::string text = contents(TARVIK_SOURCE_DIR "/docs/formats.md");
    const std::size_t start = text.find("```" + language + "\n");
    if (start == std::string::npos) return "";
    const std::size_t begin = text.find('\n', start) + 1;
    return text.substr(begin, text.find("```", begin) - begin);
  }
};

TEST_F(FormatExamples, AreReadAndSurviveRewriting) {
  const std::pair<const char *, const char *> cases[] = {
      {"mps", "a.mps"}, {"lp", "a.lp"}, {"opb", "a.opb"}};
  for (const auto &[language, name] : cases) {
    TVKmodel *model = read(name, example(language));
    ASSERT_NE(model, nullptr) << language;
    const std::string once = written(model, "once.mps");
    EXPECT_EQ(written(read("back.mps", once), "twice.mps"), once) << language;
  }
  EXPECT_EQ(models_[0]->data().numVars(), 3);  // with the range's auxiliary column
  EXPECT_EQ(models_[0]->data().objCon, -10);   // stored negated for maximization
}

// What is read and written again is the example itself, but for what the model fills in.
TEST_F(FormatExamples, OfValuesBelongToTheLpExample) {
  for (const char *kind : {"sol", "mst", "hnt", "ord", "bas", "attr"}) {
    TVKmodel *model = read("a.lp", example("lp"));
    ASSERT_NE(model, nullptr);
    log_.clear();
    const std::string suffix = std::string(".") + kind, text = example(kind);
    ASSERT_EQ(TVKread(model, write("a" + suffix, text).c_str()), 0)
        << TVKgeterrormsg(TVKgetenv(model)) << text;
    EXPECT_TRUE(logged("Read ")) << log_;
    EXPECT_FALSE(logged("nknown") || logged("ignor")) << log_;
    if (suffix == ".sol")
      EXPECT_EQ(model->data().starts.at(0), (Vec<double>{0, 1, 0, 1, 0}));
    else
      EXPECT_EQ(written(model, "b" + suffix), text);
  }
}

TEST_F(FormatExamples, OfParametersAreRead) {
  TVKmodel *model = read("a.lp", example("lp"));
  ASSERT_EQ(TVKread(model, write("a.prm", example("prm")).c_str()), 0);
  double limit = 0, gap = 0;
  EXPECT_EQ(TVKgetdblparam(TVKgetenv(model), "TimeLimit", &limit), 0);
  EXPECT_EQ(TVKgetdblparam(TVKgetenv(model), "MIPGap", &gap), 0);
  EXPECT_EQ(limit, 100);
  EXPECT_EQ(gap, 0.01);
  // Told once, although the parameter reader tells it, too.
  const std::size_t told = log_.find("Read parameters from file ");
  EXPECT_NE(told, std::string::npos);
  EXPECT_EQ(log_.find("Read parameters from file ", told + 1), std::string::npos) << log_;
}

// The keys of the examples of what is only written are those of a solved model, in their order.
TEST_F(FormatExamples, OfReportsHoldWhatIsWritten) {
  TVKmodel *model = read("a.lp", "max\n 3 x + y\nst\n c: x + y <= 4\n d: x <= 2.5\nend\n");
  ASSERT_EQ(TVKoptimize(model), 0);
  const auto keys = [](const std::string &text, const std::string &marks) {
    std::vector<std::string> found;
    for (std::size_t at = 0; (at = text.find(marks, at)) != std::string::npos; ++at) {
      std::size_t begin = at;
      while (begin > 0 && text[begin - 1] != '\n' && text[begin - 1] != '"') --begin;
      found.push_back(text.substr(begin, at - begin));
    }
    return found;
  };
  EXPECT_EQ(keys(written(model, "a.sum"), "="), keys(example("sum"), "="));
  EXPECT_EQ(keys(written(model, "a.json"), "\": "), keys(example("json"), "\": "));
  char *text = nullptr;
  ASSERT_EQ(TVKloadjson(env_, write("b.json", example("json")).c_str(), &text), 0);
  EXPECT_EQ(text, example("json"));
  TVKfree(text);
}

}  // namespace
}  // namespace tarvik

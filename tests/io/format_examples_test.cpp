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

}  // namespace
}  // namespace tarvik

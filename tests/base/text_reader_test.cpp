#include "base/text_reader.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tarvik {
namespace {

std::vector<std::string> linesOf(std::string_view text, std::size_t block) {
  MemorySource source(text);
  TextReader reader(source, block);
  std::vector<std::string> lines;
  for (std::string_view line; reader.nextLine(line);) {
    lines.emplace_back(line);
    EXPECT_EQ(reader.lineNumber(), static_cast<int>(lines.size()));
  }
  return lines;
}

TEST(TextReader, LinesDoNotDependOnTheBlockSize) {
  std::string text = "first\n\n" + std::string(5000, 'x') + "\n\nlast without end";
  const std::vector<std::string> expected = {"first", "", std::string(5000, 'x'), "",
                                             "last without end"};
  for (const std::size_t block :
       {std::size_t{1}, std::size_t{16}, std::size_t{17}, std::size_t{4096}, std::size_t{1} << 16})
    EXPECT_EQ(linesOf(text, block), expected) << block;
  EXPECT_EQ(linesOf("a\n", 16).size(), 1u);
  EXPECT_TRUE(linesOf("", 16).empty());
}

TEST(TextReader, SkipsAByteOrderMark) {
  EXPECT_EQ(linesOf("\xef\xbb\xbfNAME\nB", 16), (std::vector<std::string>{"NAME", "B"}));
}

TEST(TextReader, FieldsAreCutAtWhiteSpace) {
  std::string_view line = "\t a  bc\rd \r";
  std::vector<std::string> fields;
  for (std::string_view field; nextField(line, field);) fields.emplace_back(field);
  EXPECT_EQ(fields, (std::vector<std::string>{"a", "bc", "d"}));
  EXPECT_EQ(trimmed(" \tx y\r"), "x y");
  EXPECT_TRUE(equalIgnoringCase("BoUnds", "bounds"));
  EXPECT_FALSE(equalIgnoringCase("bound", "bounds"));
}

}  // namespace
}  // namespace tarvik

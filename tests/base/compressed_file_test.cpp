#include "base/compressed_file.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "base/text_writer.h"

namespace tarvik {
namespace {

// A folder of its own for each test, removed afterwards.
class CompressedFile : public testing::Test {
 protected:
  void SetUp() override {
    std::string pattern = testing::TempDir() + "tarvikXXXXXX";
    ASSERT_TRUE(mkdtemp(pattern.data()));
    folder_ = pattern;
  }
  void TearDown() override { std::filesystem::remove_all(folder_); }

  std::string path(const std::string &name) const { return folder_ + "/" + name; }

  static std::string readAll(const std::string &name) {
    InputFile file;
    if (!file.open(name)) return "cannot open: " + file.error();
    std::string text;
    char block[1000];
    while (const std::size_t count = file.read(block, sizeof block)) text.append(block, count);
    EXPECT_TRUE(file.close());
    return text;
  }
  static bool hasTool(const char *name) {
    return system((std::string("command -v ") + name + " > /dev/null").c_str()) == 0;
  }

  std::string folder_;
};

TEST_F(CompressedFile, WhatIsWrittenIsReadBack) {
  std::string text;
  for (int k = 0; k < 30000; ++k) text += "line " + std::to_string(k) + "\n";
  const std::pair<const char *, const char *> cases[] = {
      {"plain", "sh"},  {"a.gz", "gzip"}, {"b.bz2", "bzip2"},
      {"c.zip", "zip"}, {"d.7z", "7z"},   {"blank $HOME `x` \"q\" \\ ; 'e'.gz", "gzip"}};
  for (const auto &[name, tool] : cases) {
    if (!hasTool(tool)) continue;
    OutputFile file;
    ASSERT_TRUE(file.open(path(name))) << name << file.error();
    TextWriter writer(&file);
    writer.put(text);
    writer.flush();
    ASSERT_TRUE(file.close());
    ASSERT_TRUE(std::filesystem::exists(path(name)));
    EXPECT_EQ(readAll(path(name)), text) << name;
  }
}

TEST_F(CompressedFile, ReaderMayStopEarly) {
  ASSERT_TRUE(hasTool("gzip"));
  OutputFile out;
  ASSERT_TRUE(out.open(path("big.gz")));
  for (int k = 0; k < 200000; ++k) out.write("0123456789abcdef", 16);
  ASSERT_TRUE(out.close());
  InputFile file;
  ASSERT_TRUE(file.open(path("big.gz")));
  char block[10];
  EXPECT_EQ(file.read(block, sizeof block), 10u);
  EXPECT_TRUE(file.close());
}

TEST_F(CompressedFile, DamageIsReported) {
  ASSERT_TRUE(hasTool("gzip"));
  std::ofstream(path("bad.gz")) << "this is not compressed";
  InputFile file;
  ASSERT_TRUE(file.open(path("bad.gz")));
  char block[10];
  EXPECT_EQ(file.read(block, sizeof block), 0u);
  EXPECT_FALSE(file.close());
}

TEST_F(CompressedFile, WritingIntoADeadToolFailsAndNothingElse) {
#ifdef __linux__
  OutputFile file;
  ASSERT_TRUE(file.open("/dev/full"));
  file.write("x", 1);
  EXPECT_FALSE(file.close());
#endif

  const std::string bin = path("bin");
  std::filesystem::create_directory(bin);
  std::ofstream(bin + "/gzip") << "#!/bin/sh\nexit 3\n";
  std::filesystem::permissions(bin + "/gzip", std::filesystem::perms::all);
  const std::string previous = getenv("PATH");
  setenv("PATH", bin.c_str(), 1);
  OutputFile dead;
  ASSERT_TRUE(dead.open(path("x.gz")));
  for (int k = 0; k < 200000; ++k) dead.write("0123456789abcdef", 16);
  EXPECT_FALSE(dead.close());
  setenv("PATH", previous.c_str(), 1);
}

TEST_F(CompressedFile, MissingToolsAreNamed) {
  const std::string previous = getenv("PATH");
  setenv("PATH", "/nonexistent", 1);
  const std::string names[] = {"x.gz", "x.bz2", "x.zip", "x.7z"};
  const char *reading[] = {"\"gzip\" or \"7-zip\"", "\"bzip2\" or \"7-zip\"",
                           "\"unzip\" or \"7-zip\"", "\"7-zip\""};
  const char *writing[] = {"\"gzip\"", "\"bzip2\"", "\"zip\"", "\"7-zip\""};
  for (int k = 0; k < 4; ++k) {
    const std::string name = path(names[k]);
    std::ofstream(name) << "x";
    const std::string start = "No compression tool available to open " + name + ", please install ";
    InputFile in;
    EXPECT_FALSE(in.open(name));
    EXPECT_EQ(in.error(), start + reading[k]);
    OutputFile out;
    EXPECT_FALSE(out.open(name));
    EXPECT_EQ(out.error(), start + writing[k]);
  }
  setenv("PATH", previous.c_str(), 1);
}

TEST_F(CompressedFile, RefusesWhatCannotBeOpened) {
  InputFile in;
  EXPECT_FALSE(in.open(path("missing")));
  EXPECT_FALSE(in.open(path("missing.gz")));
  EXPECT_TRUE(in.error().empty());
  EXPECT_FALSE(in.open(folder_));
  EXPECT_FALSE(isReadableFile(folder_));
  OutputFile out;
  EXPECT_FALSE(out.open(path("no/such/folder/x")));
  const std::string name = path("no/such/folder/x.gz");
  EXPECT_FALSE(out.open(name));
  EXPECT_EQ(out.error(), "Cannot write to file " + name + ": Permission denied");
  std::ofstream(path(std::string(230, 'n') + ".gz")) << "x";
  EXPECT_FALSE(in.open(path(std::string(230, 'n') + ".gz")));
  EXPECT_NE(in.error().find("too long"), std::string::npos);
}

TEST_F(CompressedFile, SuffixesAreComparedExactly) {
  EXPECT_EQ(compressionOf("a.gz"), 1);
  EXPECT_EQ(compressionOf("a.b.bz2"), 2);
  EXPECT_EQ(compressionOf("a.zip"), 3);
  EXPECT_EQ(compressionOf("a.7z"), 4);
  EXPECT_EQ(compressionOf("a.GZ"), 0);
  EXPECT_EQ(compressionOf(".gz"), 0);
}

}  // namespace
}  // namespace tarvik

// The gzip replacements as child processes, fed and read through files.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace {

class Tvkzip : public testing::Test {
 protected:
  void SetUp() override {
    std::string name = std::filesystem::temp_directory_path() / "tvkzip_XXXXXX";
    ASSERT_NE(mkdtemp(name.data()), nullptr);
    directory_ = name;
  }
  void TearDown() override { std::filesystem::remove_all(directory_); }

  // The exit code of a tool with redirections, run in the test's own directory.
  int run(const std::string &command) const {
    const std::string line =
        "cd " + directory_.string() + " && " TARVIK_BIN_DIR "/" + command + " 2>err";
    const int status = std::system(line.c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }
  void write(const char *name, const std::string &bytes) const {
    std::ofstream(directory_ / name, std::ios::binary) << bytes;
  }
  std::string read(const char *name) const {
    std::ifstream file(directory_ / name, std::ios::binary);
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
  }

  std::filesystem::path directory_;
};

TEST_F(Tvkzip, BytesComeBack) {
  std::string large;
  for (unsigned k = 0; k < 300000; ++k) large += static_cast<char>((k * 2654435761u) >> 24);
  for (const std::string &bytes : {std::string(), std::string("NAME x\n"), large}) {
    write("in", bytes);
    ASSERT_EQ(run("tvkzip \"a b.gz\" < in"), 0) << read("err");
    ASSERT_EQ(run("tvkunzip \"a b.gz\" > out"), 0) << read("err");
    EXPECT_TRUE(read("out") == bytes) << bytes.size();
    EXPECT_EQ(read("a b.gz").substr(0, 2), "\x1f\x8b");
  }
}

TEST_F(Tvkzip, FailuresAreTold) {
  write("in", std::string(200000, 'x') + "end");
  ASSERT_EQ(run("tvkzip whole.gz < in"), 0);
  const std::string whole = read("whole.gz");
  write("cut.gz", whole.substr(0, whole.size() - 9));
  std::string damaged = whole;
  damaged[damaged.size() - 6] ^= 0x55;  // of the checksum
  write("damaged.gz", damaged);
  write("plain.gz", "no gzip\n");
  write("empty.gz", "");
  for (const char *name : {"cut.gz", "damaged.gz", "plain.gz", "empty.gz", "missing.gz"}) {
    EXPECT_EQ(run(std::string("tvkunzip ") + name + " > out"), 1) << name;
    EXPECT_NE(read("err").find(name), std::string::npos);
  }
  EXPECT_EQ(run("tvkzip no/folder.gz < in"), 1);
  EXPECT_EQ(run("tvkzip < in"), 2);
  EXPECT_EQ(run("tvkunzip > out"), 2);
}

}  // namespace

#include <cerrno>

#include "file_fixture.h"

namespace tarvik {
namespace {

class ValueFiles : public FileTest {
 protected:
  void SetUp() override {
    FileTest::SetUp();
    model_ =
        read("m.lp", "min\n x + y + z\nst\n c: x + y >= 1\n d: y - z <= 3\nbinaries\n x\nend\n");
    log_.clear();
  }
  int readText(const std::string &name, const std::string &text) {
    return TVKread(model_, write(name, text).c_str());
  }
  std::string modelMessage() const { return TVKgeterrormsg(model_->envHandle()); }

  TVKmodel *model_ = nullptr;
};

TEST_F(ValueFiles, Starts) {
  ASSERT_EQ(readText("a.mst", "# MIP start\n x 1\n\n\"y\" 2.5\nq 3\n# MIP start\nz 4\n"), 0);
  EXPECT_TRUE(logged("Unknown variable 'q' in MIP start 0 - ignored\n"));
  EXPECT_TRUE(logged("Read MIP start from file " + path("a.mst") + "\n"));
  ASSERT_EQ(model_->data().starts.size(), 2u);
  EXPECT_EQ(model_->data().starts[0], (Vec<double>{1, 2.5, kUndefined}));
  EXPECT_EQ(written(model_, "b.mst"), "# MIP start\nx 1\ny 2.5\n# MIP start\nz 4\n");
  EXPECT_EQ(readText("c.sol", "# Solution for model\nx 0\n"), 0);
  EXPECT_TRUE(logged("Read solution from file "));
  EXPECT_EQ(model_->data().starts.size(), 3u);
  const std::pair<std::string, std::string> bad[] = {
      {"x\n", "'x'"}, {"x y\n", "'x y'"}, {"x y z\n", "'x y z'"}, {"x 1 z u\n", "'x 1 z ...'"}};
  for (const auto &[text, found] : bad) {
    EXPECT_EQ(readText("d.mst", text), 10012);
    EXPECT_EQ(modelMessage(), "Expected format '[var_name] [float_value]', found " + found);
  }
  EXPECT_EQ(readText("e.mst", std::string(20751, 'x')), 10012);
  EXPECT_EQ(modelMessage(), "Unable to parse long line (length 20751 > limit 20750)");
}

TEST_F(ValueFiles, HintsAndPriorities) {
  ASSERT_EQ(readText("a.hnt", "x 1 5\ny 0.25\nq 1 1\n"), 0);
  EXPECT_TRUE(logged("Unknown variable 'q' in MIP hint - ignored\n"));
  EXPECT_EQ(written(model_, "b.hnt"), "# MIP variable hints\nx 1 5\ny 0.25 0\n");
  ASSERT_EQ(readText("a.ord", "x 7\ny 2.5\nq 1\n"), 0);
  EXPECT_TRUE(logged("Warning: Branch priority must be integral - ignoring value '2.5'\n"));
  EXPECT_TRUE(logged("Unknown variable 'q' in priority file - ignored\n"));
  EXPECT_EQ(written(model_, "b.ord"), "# MIP branch priorities\nx 7\ny 0\nz 0\n");
}

TEST_F(ValueFiles, Bases) {
  TVKmodel *lp =
      read("l.lp", "min\n x + y\nst\n c: x + y >= 1\n d: x - y <= 3\nbounds\n y <= 4\nend\n");
  const std::string text =
      "NAME  2 Variables 2 Constraints\n XL x         c       \n UL y       \nENDATA\n";
  ASSERT_EQ(TVKread(lp, write("a.bas", text).c_str()), 0) << TVKgeterrormsg(lp->envHandle());
  EXPECT_EQ(written(lp, "b.bas"), text);
  EXPECT_EQ(TVKread(lp, write("c.bas", "NAME 3 Variables 2 Constraints\nENDATA\n").c_str()), 10012);
  EXPECT_EQ(TVKread(lp, write("d.bas", "NAME x 3 Variables 2 Constraints\nENDATA\n").c_str()),
            10012);
  EXPECT_STREQ(TVKgeterrormsg(lp->envHandle()),
               "Cannot read a basis for a model with 3 cols and 2 rows");
  EXPECT_EQ(TVKread(lp, write("e.bas", " UL zz\nENDATA\n").c_str()), 10003);
  EXPECT_STREQ(TVKgeterrormsg(lp->envHandle()), "MPS reader: variable name zz doesn't exist");
}

TEST_F(ValueFiles, Attributes) {
  ASSERT_EQ(TVKsetintattrelement(model_, "Partition", 1, 4), 0);
  ASSERT_EQ(TVKsetintattrelement(model_, "BranchPriority", 2, -3), 0);
  ASSERT_EQ(TVKsetstrattrelement(model_, "VTag", 0, "tag of x"), 0);
  ASSERT_EQ(TVKsetdblattrelement(model_, "Start", 0, 1), 0);
  ASSERT_EQ(TVKupdatemodel(model_), 0);
  const std::string text = written(model_, "a.attr");
  TVKmodel *other = read("o.lp", written(model_, "o2.lp"));
  ASSERT_EQ(TVKread(other, path("a.attr").c_str()), 0) << TVKgeterrormsg(other->envHandle());
  EXPECT_TRUE(logged("Fingerprint check OK\n"));
  EXPECT_EQ(other->data().partition, (Vec<int>{0, 4, 0}));
  EXPECT_EQ(other->data().branchPriority, (Vec<int>{0, 0, -3}));
  EXPECT_STREQ(other->data().varTags.get(0), "tag of x");
  EXPECT_EQ(written(other, "b.attr"), text);
  TVKmodel *foreign = read("f.lp", "min\n x\nst\n c: x >= 1\nend\n");
  EXPECT_EQ(TVKread(foreign, path("a.attr").c_str()), 10012);
  EXPECT_NE(std::string(TVKgeterrormsg(foreign->envHandle())).find(" mismatch"), std::string::npos);
  const std::size_t body = text.find("SECTION");
  EXPECT_EQ(readText("c.attr", text.substr(body)), 0);
  EXPECT_TRUE(logged("Warning: no TVK_ATTR_FILE_VERSION header in file"));
  EXPECT_EQ(readText("d.attr", text + "SECTION FOO\nx 1\n"), 10012);
  EXPECT_EQ(modelMessage(), "Unrecognized SECTION type `FOO`");
  EXPECT_EQ(readText("e.attr", "TVK_ATTR_FILE_VERSION 110003\n"), 10012);
  EXPECT_EQ(modelMessage(), "Attribute file lacks fingerprint");
}

// Names that begin like a comment, a quoted field or a section, and tags with anything in them.
TEST_F(ValueFiles, OddNamesAndTags) {
  TVKmodel *model = nullptr;
  ASSERT_EQ(TVKnewmodel(env_, &model, "odd", 0, nullptr, nullptr, nullptr, nullptr, nullptr), 0);
  models_.push_back(model);
  const char *const names[] = {"#x", "\"y\"", "SECTION", "z\"", "\"", "'q'"};
  const int count = static_cast<int>(std::size(names));
  for (const char *name : names)
    ASSERT_EQ(TVKaddvar(model, 0, nullptr, nullptr, 1, 0, 1, 'B', name), 0);
  ASSERT_EQ(TVKaddconstr(model, 0, nullptr, nullptr, '<', 1, "#row"), 0);
  ASSERT_EQ(TVKupdatemodel(model), 0);
  const char *const tags[] = {"a \"b\" c",
                              "\"",
                              "# no comment",
                              "  ",
                              "a\nb",
                              "\" \" \" \" \" \" \" \""
                              " \" \" \" \" \" \" \" \" \" \""};
  for (int j = 0; j < count; ++j) {
    ASSERT_EQ(TVKsetdblattrelement(model, "Start", j, j % 2), 0);
    ASSERT_EQ(TVKsetdblattrelement(model, "VarHintVal", j, 1), 0);
    ASSERT_EQ(TVKsetintattrelement(model, "BranchPriority", j, j), 0);
    ASSERT_EQ(TVKsetintattrelement(model, "Partition", j, j), 0);
    ASSERT_EQ(TVKsetstrattrelement(model, "VTag", j, tags[j]), 0);
  }
  ASSERT_EQ(TVKsetstrattrelement(model, "CTag", 0, "tag"), 0);
  ASSERT_EQ(TVKupdatemodel(model), 0);
  written(model, "m.mps");
  TVKmodel *back = readFile(path("m.mps"));
  ASSERT_NE(back, nullptr);
  for (const char *file : {"a.mst", "a.hnt", "a.ord", "a.attr"}) {
    const std::string text = written(model, file);
    ASSERT_EQ(TVKread(back, path(file).c_str()), 0) << TVKgeterrormsg(TVKgetenv(back)) << text;
  }
  ASSERT_EQ(back->data().starts.size(), 2u);
  EXPECT_EQ(back->data().starts[0], model->data().starts[0]);
  EXPECT_EQ(back->data().starts[1], model->data().starts[0]);
  EXPECT_EQ(back->data().hintVal, model->data().hintVal);
  EXPECT_EQ(back->data().branchPriority, model->data().branchPriority);
  EXPECT_EQ(back->data().partition, model->data().partition);
  for (int j = 0; j < count; ++j)
    EXPECT_STREQ(back->data().varTags.get(j), j == 4 ? "a b" : tags[j]);
  EXPECT_STREQ(back->data().constrTags.get(0), "tag");
  EXPECT_FALSE(logged("not found in model")) << log_;
}

// Hints without priorities are hints of priority 0.
TEST_F(ValueFiles, HintsWithoutPriorities) {
  ASSERT_EQ(TVKsetdblattrelement(model_, "VarHintVal", 1, 2.5), 0);
  EXPECT_EQ(written(model_, "a.hnt"), "# MIP variable hints\ny 2.5 0\n");
}

// A file system without room, and folders in the way of files.
TEST_F(ValueFiles, WriteFailures) {
  std::filesystem::create_directory(path("d.attr"));
  EXPECT_EQ(TVKwrite(model_, path("d.attr").c_str()), 10013);
  EXPECT_EQ(modelMessage(), "Unable to open file '" + path("d.attr") + "' for output");
  if (!std::filesystem::exists("/dev/full")) return;
  for (const char *name : {"f.mps", "f.sum", "f.attr"}) {
    std::filesystem::create_symlink("/dev/full", path(name));
    EXPECT_EQ(TVKwrite(model_, path(name).c_str()), 10013) << name;
    EXPECT_EQ(modelMessage(), std::string(name) == "f.attr"
                                  ? "System error " + std::to_string(ENOSPC) + " at file close"
                                  : "Failed to write '" + path(name) + "'");
  }
}

TEST_F(ValueFiles, NothingToWrite) {
  EXPECT_EQ(TVKwrite(model_, path("x.sol").c_str()), 10005);
  EXPECT_EQ(TVKwrite(model_, path("x.mst").c_str()), 10005);
  EXPECT_EQ(modelMessage(), "No MIP start available");
  EXPECT_EQ(TVKwrite(model_, path("x.bas").c_str()), 10005);
  EXPECT_EQ(modelMessage(), "Unable to retrieve basis for current model");
  EXPECT_FALSE(std::filesystem::exists(path("x.sol")));
  char *text = nullptr;
  EXPECT_EQ(TVKgetjsonsolution(model_, &text), 10003);
  EXPECT_EQ(modelMessage(), "Model not optimized or recently updated");
  ASSERT_EQ(TVKloadjson(env_, write("j.json", "{ \"a\": 1 }").c_str(), &text), 0);
  EXPECT_STREQ(text, "{ \"a\": 1 }");
  EXPECT_EQ(TVKloadjson(env_, path("j.json").c_str(), &text), 10003);
  EXPECT_EQ(message(), "Expected *buffP = NULL");
  TVKfree(text);
}

}  // namespace
}  // namespace tarvik

#include "io/file_types.h"

#include "file_fixture.h"

namespace tarvik {
namespace {

constexpr const char *kSmall =
    "NAME small\nROWS\n N  OBJ\n L  r\nCOLUMNS\n    x  OBJ  -1  r  1\nRHS\n    RHS1  r  "
    "4\nENDATA\n";

TEST(FileTypes, SuffixesTellTheType) {
  EXPECT_EQ(TVKfiletype("a.LP"), 3);
  EXPECT_EQ(TVKfiletype("a.lp.gz"), 3);
  EXPECT_EQ(TVKfiletype("a.Lp.bz2"), 3);
  EXPECT_EQ(TVKfiletype("a.lp.GZ"), -1);
  EXPECT_EQ(TVKfiletype(".lp"), -1);
  EXPECT_EQ(TVKfiletype(".lp.gz"), -1);
  EXPECT_EQ(TVKfiletype("lp"), -1);
  EXPECT_EQ(TVKfiletype(nullptr), -1);
  for (const FileTypeRow &row : kFileTypes) {
    if (row.type == 0) continue;
    EXPECT_EQ(TVKfiletype((std::string("m") + row.upper).c_str()), row.type);
    const std::string name = std::string("m") + row.lower + ".7z";
    const bool model = row.type <= 5 || row.type == 10 || row.type == 13 || row.type >= 17;
    EXPECT_EQ(TVKismodelfile(name.c_str()), model ? 1 : 0) << name;
    const bool side = !model && row.type != 9 && row.type != 12;
    EXPECT_EQ(TVKisattrfile(name.c_str()), side ? 1 : 0) << name;
  }
}

TEST_F(FileTest, ModelsAreFoundUnderShortNames) {
  write("m.MPS", kSmall);
  EXPECT_NE(readFile(path("m")), nullptr);
  EXPECT_TRUE(logged("Read MPS format model from file " + path("m.MPS")));
  EXPECT_TRUE(logged("small: 1 rows, 1 columns, 1 nonzeros\n"));
  ASSERT_EQ(TVKwrite(models_.back(), path("packed.mps.gz").c_str()), 0) << message();
  EXPECT_NE(readFile(path("packed")), nullptr);
}

TEST_F(FileTest, ReadingFailuresAreTold) {
  TVKmodel *model = nullptr;
  EXPECT_EQ(TVKreadmodel(env_, nullptr, &model), 10002);
  EXPECT_EQ(message(), "No 'filename' argument supplied");
  EXPECT_EQ(TVKreadmodel(env_, "x", nullptr), 10002);
  EXPECT_EQ(message(), "No 'modelP' argument supplied");
  EXPECT_EQ(TVKreadmodel(env_, path("none").c_str(), &model), 10003);
  EXPECT_EQ(message(), "Unable to open file '" + path("none") + "' for input");
  EXPECT_EQ(tryRead("m.txt", kSmall), 10012);
  EXPECT_EQ(message(), "Unknown file type for file '" + path("m.txt") + "'");
  EXPECT_EQ(tryRead("damaged.mps.gz", kSmall), 10012);  // gzip says so on standard error, too
  EXPECT_EQ(message(), "Unable to read file '" + path("damaged.mps.gz") + "'");
}

TEST_F(FileTest, WrongTypesAreRefused) {
  TVKmodel *model = read("m.mps", kSmall);
  const auto fails = [&](int code, int expected, const std::string &text) {
    EXPECT_EQ(code, expected);
    EXPECT_EQ(TVKgeterrormsg(model->envHandle()), text);
  };
  fails(TVKwrite(model, path("x.qps").c_str()), 10013,
        "Unknown file type for file '" + path("x.qps") + "'");
  fails(TVKwrite(model, nullptr), 10002, "No 'filename' argument supplied");
  fails(TVKwrite(model, path("x.ilp").c_str()), 10005, "No IIS available for current model");
  fails(TVKwrite(model, path("no/folder/x.sum").c_str()), 10013,
        "Unable to open file '" + path("no/folder/x.sum") + "' for output");
  for (const char *name : {"x.json", "x.lp", "x.sum"})
    fails(TVKread(model, write(name, "{}").c_str()), 10012,
          "Can't import file '" + path(name) + "' into a model");
  fails(TVKread(model, write("x.foo", "").c_str()), 10012,
        "Unknown file type for file '" + path("x.foo") + "'");
  fails(TVKread(model, path("gone.mst").c_str()), 10003,
        "Unable to open file '" + path("gone.mst") + "' for input");
}

// The files of the dual hold what a file of the dual model holds.
TEST_F(FileTest, DualModelsAreWritten) {
  TVKmodel *model =
      read("m.lp", "max\n 3 x + 2 y\nst\n c: x + y <= 4\n d: x - y >= -2\nbounds\n y <= 3\nend\n");
  TVKmodel *dual = nullptr;
  ASSERT_EQ(TVKdualmodel(model, &dual), 0) << TVKgeterrormsg(model->envHandle());
  models_.push_back(dual);
  EXPECT_EQ(written(model, "d.dua"), written(dual, "e.mps"));
  EXPECT_EQ(written(model, "d.dlp"), written(dual, "e.rlp"));
  for (const char *name : {"d.dua", "d.dlp"}) {
    TVKmodel *back = readFile(path(name));
    ASSERT_NE(back, nullptr);
    EXPECT_EQ(back->data().numVars(), dual->data().numVars());
    EXPECT_EQ(back->data().numConstrs(), dual->data().numConstrs());
  }
  TVKmodel *mixed = read("m.lp", "min\n x\nst\n c: x >= 1\ngenerals\n x\nend\n");
  EXPECT_NE(TVKwrite(mixed, path("f.dua").c_str()), 0);
  EXPECT_NE(TVKgeterrormsg(mixed->envHandle()), std::string());
  EXPECT_FALSE(std::filesystem::exists(path("f.dua")));
}

TEST_F(FileTest, SummaryHoldsWhatIsKnown) {
  TVKmodel *model = read("m.mps", kSmall);
  const std::string before = written(model, "s.sum");
  EXPECT_NE(before.find("STATUS=1\n"), std::string::npos);
  EXPECT_EQ(before.find("OBJVAL"), std::string::npos);
}

}  // namespace
}  // namespace tarvik

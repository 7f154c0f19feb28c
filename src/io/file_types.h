// What a file is, told by the end of its name alone.
#pragma once

#include <string>

namespace tarvik {

// One row of the file-type table: the type number (TVK_FILETYPE_...) and its suffix. The first
// row is the bare name; the rows up to kNumModelSuffixes are model files, in the order in which
// they are tried when a name is given without a suffix.
struct FileTypeRow {
  int type;
  const char *lower;
  const char *upper;
};

inline constexpr FileTypeRow kFileTypes[] = {
    {0, "", ""},          {1, ".mps", ".MPS"},    {2, ".rew", ".REW"},   {10, ".qps", ".QPS"},
    {17, ".dua", ".DUA"}, {3, ".lp", ".LP"},      {4, ".rlp", ".RLP"},   {5, ".ilp", ".ILP"},
    {18, ".dlp", ".DLP"}, {13, ".opb", ".OPB"},   {6, ".mst", ".MST"},   {7, ".sol", ".SOL"},
    {8, ".bas", ".BAS"},  {9, ".prm", ".PRM"},    {11, ".ord", ".ORD"},  {12, ".sum", ".SUM"},
    {14, ".hnt", ".HNT"}, {15, ".attr", ".ATTR"}, {16, ".json", ".JSON"}};
inline constexpr int kNumModelSuffixes = 9;

// The type of a file, -1 when the name does not tell. The type suffix is compared without
// regard to case, the compression suffix behind it exactly.
int fileType(const std::string &name);
bool isModelType(int type);
// Solutions, starts, bases and the like.
bool isAttributeType(int type);

// The file that a model name stands for: the name itself, or with a suffix of a model file, each
// also compressed. Empty when there is none. `row` receives the row of the table.
std::string findModelFile(const std::string &name, int &row);
// The same for files that belong to a model: only compression suffixes are tried.
std::string findCompressedFile(const std::string &name);

}  // namespace tarvik

// Runs a fuzz target over files, and over all files of folders, for builds without a fuzzer.
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "fuzz_files.h"

namespace fs = std::filesystem;

int main(int argc, char **argv) {
  std::vector<fs::path> files;
  for (int k = 1; k < argc; ++k) {
    if (!fs::is_directory(argv[k])) {
      files.emplace_back(argv[k]);
      continue;
    }
    for (const auto &entry : fs::directory_iterator(argv[k])) files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  for (const fs::path &path : files) {
    std::ifstream file(path, std::ios::binary);
    const std::vector<char> bytes((std::istreambuf_iterator<char>(file)),
                                  std::istreambuf_iterator<char>());
    std::fprintf(stderr, "%s\n", path.c_str());
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t *>(bytes.data()), bytes.size());
  }
  std::printf("%zu inputs\n", files.size());
  return files.empty() ? 1 : 0;
}

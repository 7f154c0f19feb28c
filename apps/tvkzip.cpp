// tvkzip FILE: compresses standard input into FILE in gzip format. The library calls it where no
// gzip is installed. A file that could not be written whole is removed.
#include <zlib.h>

#include <cstdio>
#include <vector>

namespace {

constexpr unsigned kBlock = 1u << 16;

int fail(const char *file, const char *what) {
  std::fprintf(stderr, "tvkzip: %s: %s\n", file, what);
  return 1;
}

// Copies until the end of standard input; what went wrong, or null.
const char *compress(gzFile out) {
  std::vector<char> block(kBlock);
  for (;;) {
    const std::size_t size = std::fread(block.data(), 1, block.size(), stdin);
    if (size > 0 && gzwrite(out, block.data(), static_cast<unsigned>(size)) <= 0)
      return "cannot write";
    if (size == 0) return std::ferror(stdin) ? "cannot read standard input" : nullptr;
  }
}

}  // namespace

int main(int argc, char **argv) {
  if (argc != 2) {
    std::fprintf(stderr, "Usage: tvkzip FILE < input\n");
    return 2;
  }
  const gzFile out = gzopen(argv[1], "wb");
  if (!out) return fail(argv[1], "cannot create");
  const char *problem = compress(out);
  if (gzclose(out) != Z_OK && !problem) problem = "cannot write";
  if (!problem) return 0;
  std::remove(argv[1]);
  return fail(argv[1], problem);
}

// tvkunzip FILE: decompresses FILE, which is in gzip format, to standard output. The library calls
// it where no gzip is installed. Anything but a whole gzip file ends with exit code 1.
#include <zlib.h>

#include <cstdio>
#include <vector>

namespace {

constexpr unsigned kBlock = 1u << 16;

int fail(const char *file, const char *what) {
  std::fprintf(stderr, "tvkunzip: %s: %s\n", file, what);
  return 1;
}

// Copies until the end of the file; what went wrong, or null.
const char *decompress(gzFile in) {
  if (gzdirect(in)) return "not in gzip format";
  std::vector<char> block(kBlock);
  for (;;) {
    const int size = gzread(in, block.data(), kBlock);
    if (size < 0) return "damaged";
    if (size == 0) return nullptr;
    const auto bytes = static_cast<std::size_t>(size);
    if (std::fwrite(block.data(), 1, bytes, stdout) != bytes) return "cannot write output";
  }
}

}  // namespace

int main(int argc, char **argv) {
  if (argc != 2) {
    std::fprintf(stderr, "Usage: tvkunzip FILE > output\n");
    return 2;
  }
  const gzFile in = gzopen(argv[1], "rb");
  if (!in) return fail(argv[1], "cannot open");
  const char *problem = decompress(in);
  if (gzclose(in) != Z_OK && !problem) problem = "ends too early";
  if (std::fflush(stdout) != 0 && !problem) problem = "cannot write output";
  return problem ? fail(argv[1], problem) : 0;
}

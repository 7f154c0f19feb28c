// Any bytes as a compressed model; the first byte chooses the compression and the format.
#include <algorithm>

#include "fuzz_files.h"

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  constexpr const char *kFormats[] = {"c.lp", "c.mps"};
  constexpr const char *kSuffixes[] = {".gz", ".bz2", ".zip", ".7z"};
  if (size == 0) return 0;
  const std::string name =
      std::string(kFormats[data[0] / 4 % 2]) + kSuffixes[data[0] % std::size(kSuffixes)];
  TVKmodel *model = tarvik::fuzz::Session::get().read(name, tarvik::fuzz::text(data + 1, size - 1));
  TVKfreemodel(model);
  return 0;
}

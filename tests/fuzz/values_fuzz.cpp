// Any bytes as a solution, start, hint, priority or basis file of a fixed model; the first byte
// chooses the kind.
#include <algorithm>

#include "fuzz_files.h"

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  constexpr const char *kNames[] = {"v.sol", "v.mst", "v.hnt", "v.ord", "v.bas"};
  if (size == 0) return 0;
  const auto &session = tarvik::fuzz::Session::get();
  const std::string name = kNames[data[0] % std::size(kNames)];
  TVKmodel *model = tarvik::fuzz::sampleModel();
  const std::string file = session.put(name, tarvik::fuzz::text(data + 1, size - 1));
  if (TVKread(model, file.c_str()) == 0 && name != "v.sol" && TVKwrite(model, file.c_str()) == 0) {
    const std::string first = session.contents(name);
    TVKmodel *other = tarvik::fuzz::sampleModel();
    tarvik::fuzz::require(TVKread(other, file.c_str()) == 0, "values are not read back", first);
    if (TVKwrite(other, file.c_str()) == 0)
      tarvik::fuzz::require(session.contents(name) == first, "values change", first,
                            session.contents(name));
    TVKfreemodel(other);
  }
  TVKfreemodel(model);
  return 0;
}

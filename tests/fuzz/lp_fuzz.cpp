// Any bytes as an LP file.
#include "fuzz_files.h"

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  const auto &session = tarvik::fuzz::Session::get();
  TVKmodel *model = session.read("m.lp", tarvik::fuzz::text(data, size));
  if (!model) return 0;
  session.requireStable(model, "back.lp", false);
  session.requireStable(model, "back.mps", true);
  TVKfreemodel(model);
  return 0;
}

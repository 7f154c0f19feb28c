// Any bytes as an OPB file.
#include "fuzz_files.h"

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  const auto &session = tarvik::fuzz::Session::get();
  TVKmodel *model = session.read("m.opb", tarvik::fuzz::text(data, size));
  if (!model) return 0;
  session.requireStable(model, "back.mps", true);
  // Only models without products can be written in this format.
  const std::string back = session.path("back.opb");
  if (TVKwrite(model, back.c_str()) == 0) session.requireStable(model, "back.opb", false);
  TVKfreemodel(model);
  return 0;
}

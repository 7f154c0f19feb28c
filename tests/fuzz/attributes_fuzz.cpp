// Any bytes as an attribute file of a fixed model. When the first byte is even the rest follows
// the right fingerprint, which a fuzzer would hardly find.
#include <cstdio>

#include "fuzz_files.h"

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  if (size == 0) return 0;
  const auto &session = tarvik::fuzz::Session::get();
  TVKmodel *model = tarvik::fuzz::sampleModel();
  std::string bytes(tarvik::fuzz::text(data + 1, size - 1));
  if (data[0] % 2 == 0) {
    int fingerprint = 0;
    TVKgetintattr(model, "Fingerprint", &fingerprint);
    char header[80];
    std::snprintf(header, sizeof header, "SECTION FINGERPRINT\n0x%08x\n",
                  static_cast<unsigned>(fingerprint));
    bytes = header + bytes;
  }
  const std::string file = session.put("a.attr", bytes);
  if (TVKread(model, file.c_str()) == 0 && TVKwrite(model, file.c_str()) == 0) {
    const std::string first = session.contents("a.attr");
    TVKmodel *other = tarvik::fuzz::sampleModel();
    tarvik::fuzz::require(TVKread(other, file.c_str()) == 0, "attributes are not read back", first);
    tarvik::fuzz::require(session.written(other, "a.attr") == first, "attributes change", first,
                          session.contents("a.attr"));
    TVKfreemodel(other);
  }
  TVKfreemodel(model);
  return 0;
}

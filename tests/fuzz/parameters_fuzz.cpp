// Any bytes as a parameter file. Inputs that name a log file are left out: they would create
// files wherever they say.
#include <algorithm>
#include <cctype>

#include "fuzz_files.h"

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  std::string lower(tarvik::fuzz::text(data, size));
  std::transform(lower.begin(), lower.end(), lower.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  if (lower.find("logfile") != std::string::npos) return -1;
  const auto &session = tarvik::fuzz::Session::get();
  TVKenv *env = nullptr;
  tarvik::fuzz::require(TVKemptyenv(&env) == 0, "no environment");
  TVKsetintparam(env, "LogToConsole", 0);
  const std::string file = session.put("p.prm", tarvik::fuzz::text(data, size));
  const bool fine = TVKreadparams(env, file.c_str()) == 0;
  TVKsetintparam(env, "LogToConsole", 0);
  if (fine && TVKwriteparams(env, file.c_str()) == 0) {
    const std::string first = session.contents("p.prm");
    tarvik::fuzz::require(TVKresetparams(env) == 0, "parameters are not reset", first);
    tarvik::fuzz::require(TVKreadparams(env, file.c_str()) == 0, "parameters are not read back",
                          first, TVKgeterrormsg(env));
    TVKwriteparams(env, file.c_str());
    tarvik::fuzz::require(session.contents("p.prm") == first, "parameters change", first,
                          session.contents("p.prm"));
  }
  TVKfreeenv(env);
  return 0;
}

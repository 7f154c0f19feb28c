#include "opt/result_file.h"

#include <string>

namespace tarvik {

namespace {

bool isIisFile(const std::string &name) {
  for (const char *suffix : {".ilp", ".ilp.gz", ".ilp.bz2"})
    if (name.ends_with(suffix)) return true;
  return false;
}

}  // namespace

void writeResultFile(Model &model) {
  Env &env = model.env();
  const std::string name = env.get(Str::ResultFile);
  if (name.empty()) return;
  TVKmodel *handle = static_cast<TVKmodel *>(&model);
  const int status = model.solution().status;
  int code = 0;
  if (isIisFile(name) && (status == TVK_INFEASIBLE || status == TVK_INF_OR_UNBD)) {
    code = TVKcomputeIIS(handle);
    if (code != 0) {
      env.log("Error: IIS computation stopped with error code %d\n", code);
      env.log("\nWarning: unable to write requested result file '%s'\n", name.c_str());
      return;
    }
  }
  code = TVKwrite(handle, name.c_str());
  env.log(code == 0 ? "\nWrote requested result file '%s'\n\n"
                    : "\nWarning: unable to write requested result file '%s'\n\n",
          name.c_str());
}

}  // namespace tarvik

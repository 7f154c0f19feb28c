#include "opt/result_file.h"

#include <new>
#include <string>

#include "io/dispatch.h"

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
  const int status = model.solution().status;
  if (isIisFile(name) && (status == TVK_INFEASIBLE || status == TVK_INF_OR_UNBD)) {
    const int code = TVKcomputeIIS(static_cast<TVKmodel *>(&model));
    if (code != 0) {
      env.log("Error: IIS computation stopped with error code %d\n", code);
      env.log("\nWarning: unable to write requested result file '%s'\n", name.c_str());
      return;
    }
  }
  bool written = true;
  try {
    writeFromModel(model, name.c_str());
  } catch (const Error &) {
    written = false;
  } catch (const std::bad_alloc &) {
    written = false;
  }
  env.log(written ? "\nWrote requested result file '%s'\n\n"
                  : "\nWarning: unable to write requested result file '%s'\n\n",
          name.c_str());
}

}  // namespace tarvik

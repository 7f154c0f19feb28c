#include <cstdlib>
#include <cstring>
#include <new>
#include <string_view>

#include "base/locale_scope.h"
#include "env/exported_call.h"
#include "io/dispatch.h"
#include "io/file_types.h"
#include "io/json_report.h"
#include "model/model_call.h"
#include "tarvik.h"

using tarvik::Env;
using tarvik::Error;
using tarvik::Model;

namespace {

// A NUL-terminated copy that the caller gives back with TVKfree.
char *copyForCaller(std::string_view text) {
  char *copy = static_cast<char *>(std::malloc(text.size() + 1));
  if (!copy) throw std::bad_alloc();
  std::memcpy(copy, text.data(), text.size());
  copy[text.size()] = '\0';
  return copy;
}

}  // namespace

int TVKfiletype(const char *filename) {
  return filename ? tarvik::fileType(filename) : TVK_FILETYPE_UNKNOWN;
}

int TVKismodelfile(const char *filename) {
  return filename && tarvik::isModelType(tarvik::fileType(filename)) ? 1 : 0;
}

int TVKisattrfile(const char *filename) {
  return filename && tarvik::isAttributeType(tarvik::fileType(filename)) ? 1 : 0;
}

int TVKreadmodel(TVKenv *env, const char *filename, TVKmodel **modelP) {
  if (modelP) *modelP = nullptr;
  return tarvik::envCall(env, nullptr, [&](Env &e) {
    if (!e.started()) throw Error(TVK_ERROR_NOT_STARTED);
    if (!filename) throw Error(TVK_ERROR_NULL_ARGUMENT, "No 'filename' argument supplied");
    if (!modelP) throw Error(TVK_ERROR_NULL_ARGUMENT, "No 'modelP' argument supplied");
    *modelP = tarvik::readModelFile(e, filename);
  });
}

int TVKread(TVKmodel *model, const char *filename) {
  return tarvik::modelCall(model, nullptr, [&](Model &m) {
    if (!filename) throw Error(TVK_ERROR_NULL_ARGUMENT, "No 'filename' argument supplied");
    tarvik::readIntoModel(m, filename);
  });
}

int TVKwrite(TVKmodel *model, const char *filename) {
  return tarvik::modelCall(model, nullptr, [&](Model &m) {
    if (!filename) throw Error(TVK_ERROR_NULL_ARGUMENT, "No 'filename' argument supplied");
    tarvik::writeFromModel(m, filename);
  });
}

int TVKgetjsonsolution(TVKmodel *model, char **buffP) {
  if (model && buffP && TVKcheckmodel(model) == TVK_ERROR_OPTIMIZATION_IN_PROGRESS) {
    model->env().recordError(TVK_ERROR_INVALID_ARGUMENT, true, "Optimization in progress");
    return TVK_ERROR_INVALID_ARGUMENT;
  }
  return tarvik::modelCall(model, nullptr, [&](Model &m) {
    if (!buffP) throw Error(TVK_ERROR_NULL_ARGUMENT);
    if (*buffP) throw Error(TVK_ERROR_INVALID_ARGUMENT, "Expected *buffP = NULL");
    const tarvik::LocaleScope locale;
    tarvik::TextWriter report;
    tarvik::buildJsonReport(m, report);
    *buffP = copyForCaller(report.text());
  });
}

int TVKloadjson(TVKenv *env, const char *filename, char **buffP) {
  return tarvik::envCall(env, nullptr, [&](Env &) {
    if (!filename) throw Error(TVK_ERROR_INVALID_ARGUMENT, "No 'filename' argument supplied");
    if (!buffP) throw Error(TVK_ERROR_NULL_ARGUMENT);
    if (*buffP) throw Error(TVK_ERROR_INVALID_ARGUMENT, "Expected *buffP = NULL");
    const tarvik::Vec<char> text = tarvik::loadJsonFile(filename);
    *buffP = copyForCaller({text.data(), text.size() - 1});
  });
}

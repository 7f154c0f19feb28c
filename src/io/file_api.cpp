#include "env/exported_call.h"
#include "io/dispatch.h"
#include "io/file_types.h"
#include "model/model_call.h"
#include "tarvik.h"

using tarvik::Env;
using tarvik::Error;
using tarvik::Model;

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

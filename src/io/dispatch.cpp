#include "io/dispatch.h"

#include <string>

#include "base/locale_scope.h"
#include "base/random.h"
#include "base/solve_control.h"
#include "io/attribute_file.h"
#include "io/attributes.h"
#include "io/basis_file.h"
#include "io/file_streams.h"
#include "io/file_types.h"
#include "io/json_report.h"
#include "io/lp/lp_reader.h"
#include "io/lp/lp_writer.h"
#include "io/mps/mps_reader.h"
#include "io/mps/mps_writer.h"
#include "io/opb/opb_reader.h"
#include "io/opb/opb_writer.h"
#include "io/permutation.h"
#include "io/value_files.h"

namespace tarvik {

namespace {

// A derived model that lives while it is written.
class DerivedModel {
 public:
  DerivedModel() = default;
  ~DerivedModel() { TVKfreemodel(handle); }
  DerivedModel(const DerivedModel &) = delete;
  DerivedModel &operator=(const DerivedModel &) = delete;

  TVKmodel *handle = nullptr;
};

const char *formatWord(int type) {
  switch (type) {
    case TVK_FILETYPE_MPS:
    case TVK_FILETYPE_REW:
    case TVK_FILETYPE_QPS:
    case TVK_FILETYPE_DUA:
      return "MPS";
    case TVK_FILETYPE_LP:
    case TVK_FILETYPE_RLP:
    case TVK_FILETYPE_ILP:
    case TVK_FILETYPE_DLP:
      return "LP";
    case TVK_FILETYPE_OPB:
      return "OPB";
    default:
      return nullptr;
  }
}

// Fails when the file could not be read or decompressed to where reading stopped.
void requireWhole(InputFile &file, const std::string &name) {
  if (!file.close()) throw Error(TVK_ERROR_FILE_READ, "Unable to read file '%s'", name.c_str());
}

ParsedModel parseModelFile(Env &env, const std::string &name, const std::string &word) {
  InputFile file;
  if (!file.open(name)) {
    if (!file.error().empty()) throw Error(TVK_ERROR_FILE_READ, "%s", file.error().c_str());
    if (word == "MPS") env.log("Error: Unable to open file %s\n", name.c_str());
    throw Error(TVK_ERROR_INVALID_ARGUMENT, "Unable to open file %s", name.c_str());
  }
  TextReader text(file);
  ParsedModel parsed;
  try {
    parsed = word == "MPS"  ? readMps(env, text)
             : word == "LP" ? readLp(env, text, name)
                            : readOpb(env, text, name);
  } catch (const std::bad_alloc &) {
    if (word == "MPS") env.log("Error: out of memory.\n");
    env.recordError(TVK_ERROR_OUT_OF_MEMORY, true, "Out of memory in %s reader", word.c_str());
    throw;
  } catch (const Error &) {
    requireWhole(file, name);  // damage explains what the reader missed
    throw;
  }
  requireWhole(file, name);
  return parsed;
}

void writeModelFile(Model &model, const char *filename, int type) {
  WriteStream stream(filename, kCannotWrite);
  if (type == TVK_FILETYPE_MPS || type == TVK_FILETYPE_REW || type == TVK_FILETYPE_DUA)
    writeMps(model, stream.text(), type == TVK_FILETYPE_REW);
  else
    writeLp(model, stream.text(), type);
  stream.close();
}

void writeDualFile(Model &model, const char *filename, int type) {
  DerivedModel dual;
  checkCall(model, TVKdualmodel(handleOf(model), &dual.handle));
  writeModelFile(*dual.handle, filename, type);
}

void writeIisFile(Model &model, const char *filename) {
  int status = 0;
  if (!tryInt(model, "Status", status) || status != TVK_INFEASIBLE || !model.solution().hasIis)
    throw Error(TVK_ERROR_DATA_NOT_AVAILABLE, "No IIS available for current model");
  DerivedModel iis;
  checkCall(model, TVKiismodel(handleOf(model), &iis.handle));
  writeModelFile(*iis.handle, filename, TVK_FILETYPE_ILP);
}

void writeByType(Model &model, const char *filename, int type) {
  switch (type) {
    case TVK_FILETYPE_MPS:
    case TVK_FILETYPE_REW:
    case TVK_FILETYPE_LP:
    case TVK_FILETYPE_RLP:
      return writeModelFile(model, filename, type);
    case TVK_FILETYPE_ILP:
      return writeIisFile(model, filename);
    case TVK_FILETYPE_MST:
      return writeStartFile(model, filename);
    case TVK_FILETYPE_SOL:
      return writeSolutionFile(model, filename);
    case TVK_FILETYPE_BAS:
      return writeBasisFile(model, filename);
    case TVK_FILETYPE_PRM:
      return checkCall(model, TVKwriteparams(model.envHandle(), filename));
    case TVK_FILETYPE_ORD:
      return writePriorityFile(model, filename);
    case TVK_FILETYPE_SUM:
      return writeSummaryFile(model, filename);
    case TVK_FILETYPE_OPB:
      return writeOpb(model, filename);
    case TVK_FILETYPE_HNT:
      return writeHintFile(model, filename);
    case TVK_FILETYPE_ATTR:
      return writeAttributeFile(model, filename);
    case TVK_FILETYPE_JSON:
      return writeJsonFile(model, filename);
    case TVK_FILETYPE_DUA:
    case TVK_FILETYPE_DLP:
      return writeDualFile(model, filename, type);
    default:
      throw Error(TVK_ERROR_FILE_WRITE, "Unknown file type for file '%s'", filename);
  }
}

// What is logged once a file of the type is read; null for types that cannot be read.
const char *readAnnouncement(int type) {
  switch (type) {
    case TVK_FILETYPE_MST:
      return "Read MIP start from file %s\n";
    case TVK_FILETYPE_SOL:
      return "Read solution from file %s\n";
    case TVK_FILETYPE_BAS:
      return "Read basis from file %s\n";
    case TVK_FILETYPE_PRM:
      return "Read parameters from file %s\n";
    case TVK_FILETYPE_ORD:
      return "Read branching order from file %s\n";
    case TVK_FILETYPE_HNT:
      return "Read hints from file %s\n";
    case TVK_FILETYPE_ATTR:
      return "Read attributes from file %s\n";
    default:
      return nullptr;
  }
}

void readByType(Model &model, const char *filename, int type) {
  switch (type) {
    case TVK_FILETYPE_MST:
    case TVK_FILETYPE_SOL:
      return readStartFile(model, filename);
    case TVK_FILETYPE_BAS:
      return readBasisFile(model, filename);
    case TVK_FILETYPE_PRM:
      return checkCall(model, TVKreadparams(model.envHandle(), filename));
    case TVK_FILETYPE_ORD:
      return readPriorityFile(model, filename);
    case TVK_FILETYPE_HNT:
      return readHintFile(model, filename);
    default:
      return readAttributeFile(model, filename);
  }
}

}  // namespace

TVKmodel *readModelFile(Env &env, const char *filename) {
  const double start = wallSeconds();
  const LocaleScope locale;
  int row = 0;
  const std::string name = findModelFile(filename, row);
  if (name.empty())
    throw Error(TVK_ERROR_INVALID_ARGUMENT, "Unable to open file '%s' for input", filename);
  const char *word = formatWord(row > 0 ? kFileTypes[row].type : fileType(name));
  if (!word) throw Error(TVK_ERROR_FILE_READ, "Unknown file type for file '%s'", filename);
  ParsedModel parsed = parseModelFile(env, name, word);
  permuteForTest(env, parsed);
  TVKmodel *model = buildModel(env, std::move(parsed));
  const ModelData &data = model->data();
  env.log("Read %s format model from file %s\n", word, name.c_str());
  env.log("Reading time = %.2f seconds\n", wallSeconds() - start);
  env.log("%s: %d rows, %d columns, %lu nonzeros\n", data.name.c_str(), data.numConstrs(),
          data.numVars(), static_cast<unsigned long>(data.a.numNz()));
  if (env.get(Int::TARV_PAR_LOGMODELS))
    env.log("MODEL LOG: TVKreadmodel %p\n", static_cast<const void *>(model));
  return model;
}

void readIntoModel(Model &model, const char *filename) {
  const LocaleScope locale;
  const std::string name = findCompressedFile(filename);
  if (name.empty())
    throw Error(TVK_ERROR_INVALID_ARGUMENT, "Unable to open file '%s' for input", filename);
  const int type = fileType(name);
  if (type == TVK_FILETYPE_UNKNOWN)
    throw Error(TVK_ERROR_FILE_READ, "Unknown file type for file '%s'", filename);
  const char *announcement = readAnnouncement(type);
  if (!announcement)
    throw Error(TVK_ERROR_FILE_READ, "Can't import file '%s' into a model", filename);
  readByType(model, name.c_str(), type);
  if (type != TVK_FILETYPE_PRM) {  // the reader of parameters tells it itself
    const std::string text(announcement, std::string_view(announcement).find("%s"));
    model.env().log("%s%s\n", text.c_str(), name.c_str());
  }
  model.update();
}

void writeFromModel(Model &model, const char *filename) {
  const LocaleScope locale;
  const int type = fileType(filename);
  if (isModelType(type) || isAttributeType(type)) model.update();
  try {
    writeByType(model, filename, type);
  } catch (const Error &error) {
    // What an attribute that is not available left behind does not explain this failure.
    model.env().clearErrorAtEntry();
    if (!error.message().empty()) throw;
    if (error.code() == TVK_ERROR_FILE_WRITE)
      throw Error(error.code(), kCannotOpenForOutput, filename);
    throw Error(error.code(), "Failed to write '%s'", filename);
  }
}

void dumpModel(Model &model, const char *base) {
  const bool optimizing = model.optimizing;
  model.optimizing = false;
  try {
    for (const char *suffix : {"mps", "prm", "attr"}) {
      try {
        writeFromModel(model, (std::string(base) + "." + suffix).c_str());
      } catch (const Error &error) {
        if (error.code() != TVK_ERROR_DATA_NOT_AVAILABLE || std::string_view(suffix) != "attr")
          throw;
      }
    }
  } catch (...) {
    model.optimizing = optimizing;
    throw;
  }
  model.optimizing = optimizing;
}

}  // namespace tarvik

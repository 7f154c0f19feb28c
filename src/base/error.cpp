#include "base/error.h"

#include <cstdarg>
#include <cstdio>

#include "tarvik.h"

namespace tarvik {

Error::Error(int code, const char *format, ...) : code_(code) {
  char text[1024];
  va_list args;
  va_start(args, format);
  std::vsnprintf(text, sizeof text, format, args);
  va_end(args);
  message_ = text;
}

const char *defaultErrorText(int code) {
  switch (code) {
    case TVK_ERROR_OUT_OF_MEMORY:
      return "Out of memory";
    case TVK_ERROR_NULL_ARGUMENT:
      return "NULL argument for required parameter";
    case TVK_ERROR_INVALID_ARGUMENT:
      return "Invalid argument value for required parameter";
    case TVK_ERROR_UNKNOWN_ATTRIBUTE:
      return "Unknown attribute";
    case TVK_ERROR_DATA_NOT_AVAILABLE:
      return "Requested data not available";
    case TVK_ERROR_INDEX_OUT_OF_RANGE:
      return "Index is out of range";
    case TVK_ERROR_UNKNOWN_PARAMETER:
      return "Unknown parameter requested";
    case TVK_ERROR_VALUE_OUT_OF_RANGE:
      return "Tried to set parameter to value outside its valid range";
    case TVK_ERROR_NOT_STARTED:
      return "Environment not started";
    case TVK_ERROR_CALLBACK:
      return "Problem with callback";
    case TVK_ERROR_FILE_READ:
      return "Unable to read file";
    case TVK_ERROR_FILE_WRITE:
      return "Unable to write file";
    case TVK_ERROR_NUMERIC:
      return "Numerical error encountered";
    case TVK_ERROR_NOT_FOR_MIP:
      return "Not available for MIP models";
    case TVK_ERROR_OPTIMIZATION_IN_PROGRESS:
      return "Attempted to access a model while optimization is in progress";
    case TVK_ERROR_DUPLICATES:
      return "Duplicates present and not allowed";
    case TVK_ERROR_NODEFILE:
      return "Trouble reading or writing a MIP node file";
    case TVK_ERROR_Q_NOT_PSD:
      return "Q matrix is not positive semi-definite (PSD). Set NonConvex parameter to -1 or 2 to "
             "solve model.";
    case TVK_ERROR_QCP_EQUALITY_CONSTRAINT:
      return "Quadratic equality constraints are non-convex. Set NonConvex parameter to -1 or 2 to "
             "solve model.";
    case TVK_ERROR_NETWORK:
      return "Network error";
    case TVK_ERROR_JOB_REJECTED:
      return "Job rejected by compute server";
    case TVK_ERROR_NOT_SUPPORTED:
      return "Unsupported operation";
    case TVK_ERROR_EXCEED_2B_NONZEROS:
      return "Coefficient or LU matrix has more than two billion nonzeros";
    case TVK_ERROR_INVALID_PIECEWISE_OBJ:
      return "Invalid piecewise-linear objective";
    case TVK_ERROR_UPDATEMODE_CHANGE:
      return "Invalid change to UpdateMode parameter";
    case TVK_ERROR_CLOUD:
      return "Cloud error";
    case TVK_ERROR_MODEL_MODIFICATION:
      return "Model modification error";
    case TVK_ERROR_CSWORKER:
      return "Client-server application error";
    case TVK_ERROR_TUNE_MODEL_TYPES:
      return "Unable to tune models of different type";
    default:
      return nullptr;
  }
}

}  // namespace tarvik

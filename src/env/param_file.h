// Parameter files: one setting a line, a name and a value between blanks and at most one equals
// sign; lines that begin with '#' are comments, a line "PARAMETERSET" begins a new set. A line
// that cannot be applied is reported in the log and skipped; it never fails the file.
#pragma once

#include <optional>

#include "base/text_reader.h"
#include "env/env.h"

namespace tarvik {

// Reads the sets of a file one after the other.
class ParamFileReader {
 public:
  explicit ParamFileReader(const char *fileName);

  bool isOpen() const { return reader_.has_value(); }
  // Why the file could not be opened; may be empty.
  const std::string &error() const { return file_.error(); }
  // Applies the next set to env; false when the file holds no further set.
  bool readSet(Env &env);
  // Throws Error 10012 when reading failed.
  void close();

 private:
  static constexpr std::size_t kPieceBytes = 10239;

  bool nextPiece(std::string_view &piece);
  // Both return the number of warnings.
  int applyLine(Env &env, std::string_view line) const;
  int applySetting(Env &env, const char *name, const char *value) const;

  std::string fileName_;
  InputFile file_;
  std::optional<TextReader> reader_;
  std::string_view rest_;  // of a line that is longer than a piece
  bool setBegun_ = false;  // the line that begins the next set has been read
};

// Reads the first set of a file into env; throws Error.
void readParamFile(Env &env, const char *fileName);
// Reads every set of a file into a new tuning environment each.
void readTuneBaseSettings(Env &env, const char *fileName);
// Writes the numbers that differ from their defaults; throws Error.
void writeParamFile(const Env &env, const char *fileName);
// The same lines to the log.
void logChangedParams(Env &env);

}  // namespace tarvik

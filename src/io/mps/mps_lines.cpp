// Lines and fields of MPS files, and how failures are told.
#include <cmath>
#include <cstdarg>
#include <cstdio>

#include "io/mps/mps_parser.h"

namespace tarvik {

namespace {

// First column and width of the six fields of a fixed-format line.
constexpr struct {
  std::size_t start, width;
} kFixedFields[] = {{1, 2}, {4, 8}, {14, 8}, {24, 12}, {39, 8}, {49, 12}};

std::string formatted(const char *format, va_list args) {
  char text[1024];
  std::vsnprintf(text, sizeof text, format, args);
  return text;
}

}  // namespace

bool MpsParser::nextLine() {
  while (reader_.nextLine(line_)) {
    while (!line_.empty() && isBlank(line_.back())) line_.remove_suffix(1);
    if (line_.empty() || line_.front() == '*') continue;
    return true;
  }
  line_ = {};
  return false;
}

bool MpsParser::nextDataLine() {
  if (!nextLine()) return false;
  pendingHeader_ = isHeader();
  return !pendingHeader_;
}

int MpsParser::splitFree() {
  std::string_view rest = line_;
  int count = 0;
  for (Field field; count < kMaxFields && nextField(rest, field); ++count) {
    if (field.size() > kMaxFieldLength) {
      std::printf("WARNING: MPS data field too long, cut field \"%.*s\"\n",
                  static_cast<int>(line_.size()), line_.data());
      field = field.substr(0, kMaxFieldLength);
    }
    fields_[count] = field;
  }
  return nextField(rest, fields_[kMaxFields - 1]) ? kMaxFields + 1 : count;
}

bool MpsParser::cutFixed(Field (&six)[6]) const {
  const auto gap = [&](std::size_t from, std::size_t to) {
    for (std::size_t k = from; k < to && k < line_.size(); ++k)
      if (line_[k] != ' ') return false;
    return true;
  };
  if (!gap(0, 1) || !gap(3, 4) || !gap(12, 14) || !gap(22, 24) || !gap(36, 39) || !gap(47, 49) ||
      line_.size() > 61)
    return false;
  for (int k = 0; k < 6; ++k) {
    const auto [start, width] = kFixedFields[k];
    six[k] = start < line_.size() ? trimmed(line_.substr(start, width)) : Field();
  }
  return true;
}

bool MpsParser::takeFixedRow() {
  Field six[6];
  if (line_.size() > 12 || !cutFixed(six) || six[0].empty() || six[1].empty()) return false;
  fields_[0] = six[0];
  fields_[1] = six[1];
  return true;
}

int MpsParser::takeFixedEntry() {
  Field six[6];
  if (!cutFixed(six) || !six[0].empty() || six[2].empty()) return 0;
  for (int k = 0; k < 5; ++k) fields_[k] = six[k + 1];
  return fields_[4].empty() ? 3 : 5;
}

int MpsParser::splitRowLine() {
  if (fixed_ && takeFixedRow()) return 2;
  const int count = splitFree();
  if (count <= 2 || count == 6) return count;
  double value = 0;
  const bool objectiveData = equalIgnoringCase(fields_[0], "N") && parseNumber(fields_[2], value);
  if (objectiveData || !takeFixedRow()) return count;
  fixed_ = true;
  return 2;
}

bool MpsParser::numbersFit(int count) const {
  double value = 0;
  if (count != 3 && count != 5) return false;
  return parseNumber(fields_[2], value) && (count == 3 || parseNumber(fields_[4], value));
}

int MpsParser::splitEntryLine(bool setMayMiss) {
  if (fixed_) {
    if (const int count = takeFixedEntry(); numbersFit(count)) return count;
  }
  int count = splitFree();
  if (numbersFit(count)) return count;
  if (setMayMiss && (count == 2 || count == 4)) {
    for (int k = count; k > 0; --k) fields_[k] = fields_[k - 1];
    fields_[0] = {};
    if (numbersFit(count + 1)) return count + 1;
  }
  if (count = takeFixedEntry(); numbersFit(count)) {
    fixed_ = true;
    return count;
  }
  if (splitFree() < 2)
    failWith("MPS reader: not free format", "Error: not free format mps file.\n");
  failLine();
}

double MpsParser::number(Field field) {
  double value = 0;
  if (!parseNumber(field, value)) failLine();
  return value;
}

std::string MpsParser::lineText() const { return std::string(line_.substr(0, 300)); }

void MpsParser::failLine() {
  failWith("", "Error at line %d:\n%s\n", reader_.lineNumber(), lineText().c_str());
}

void MpsParser::fail(const char *logFormat, ...) {
  va_list args;
  va_start(args, logFormat);
  const std::string text = formatted(logFormat, args);
  va_end(args);
  failWith("", "%s", text.c_str());
}

void MpsParser::failAtLine(const char *logFormat) {
  char text[600];
  std::snprintf(text, sizeof text, "Error at line %d, %s:\n%s\n", reader_.lineNumber(), logFormat,
                lineText().c_str());
  failWith("", "%s", text);
}

void MpsParser::failWith(const std::string &message, const char *logFormat, ...) {
  va_list args;
  va_start(args, logFormat);
  env_.log("%s", formatted(logFormat, args).c_str());
  va_end(args);
  if (!message.empty()) throw Error(TVK_ERROR_FILE_READ, "%s", message.c_str());
  if (atEnd_) throw Error(TVK_ERROR_FILE_READ, "Error in MPS file");
  throw Error(TVK_ERROR_FILE_READ, "MPS read error at line %d:\n%s", reader_.lineNumber(),
              lineText().c_str());
}

void MpsParser::warn(const char *format, ...) {
  if (!env_.logReachesAnybody()) return;
  va_list args;
  va_start(args, format);
  env_.vlog(format, args);
  va_end(args);
}

}  // namespace tarvik

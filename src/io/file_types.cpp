#include "io/file_types.h"

#include <cstring>

#include "base/compressed_file.h"
#include "base/text_reader.h"
#include "tarvik.h"

namespace tarvik {

namespace {

constexpr const char *kUpperCompression[] = {"", ".GZ", ".BZ2", ".ZIP", ".7Z"};

// The compression suffix in lower case, empty for none.
const char *compressionSuffix(const std::string &name) {
  const std::size_t dot = name.rfind('.');
  if (dot == std::string::npos) return "";
  for (int k = 1; k <= 4; ++k)
    if (equalIgnoringCase(std::string_view(name).substr(dot), kCompressionSuffixes[k]))
      return kCompressionSuffixes[k];
  return "";
}

}  // namespace

int fileType(const std::string &name) {
  const std::string_view text = name;
  const std::size_t packed = std::strlen(compressionSuffix(name));
  if (text.substr(text.size() - packed) != compressionSuffix(name)) return TVK_FILETYPE_UNKNOWN;
  const std::string_view plain = text.substr(0, text.size() - packed);
  for (std::size_t row = 1; row < std::size(kFileTypes); ++row) {
    const std::size_t length = std::strlen(kFileTypes[row].lower);
    if (plain.size() > length &&
        equalIgnoringCase(plain.substr(plain.size() - length), kFileTypes[row].lower))
      return kFileTypes[row].type;
  }
  return TVK_FILETYPE_UNKNOWN;
}

bool isModelType(int type) {
  switch (type) {
    case TVK_FILETYPE_MPS:
    case TVK_FILETYPE_REW:
    case TVK_FILETYPE_LP:
    case TVK_FILETYPE_RLP:
    case TVK_FILETYPE_ILP:
    case TVK_FILETYPE_QPS:
    case TVK_FILETYPE_OPB:
    case TVK_FILETYPE_DUA:
    case TVK_FILETYPE_DLP:
      return true;
    default:
      return false;
  }
}

bool isAttributeType(int type) {
  switch (type) {
    case TVK_FILETYPE_MST:
    case TVK_FILETYPE_SOL:
    case TVK_FILETYPE_BAS:
    case TVK_FILETYPE_ORD:
    case TVK_FILETYPE_HNT:
    case TVK_FILETYPE_ATTR:
    case TVK_FILETYPE_JSON:
      return true;
    default:
      return false;
  }
}

std::string findModelFile(const std::string &name, int &row) {
  for (row = 0; row <= kNumModelSuffixes; ++row) {
    const std::string stems[] = {name + kFileTypes[row].lower, name + kFileTypes[row].upper};
    for (const std::string &stem : stems)
      if (isReadableFile(stem)) return stem;
    for (const std::string &stem : stems)
      for (int k = 1; k <= 4; ++k)
        for (const char *packed : {kCompressionSuffixes[k], kUpperCompression[k]})
          if (isReadableFile(stem + packed)) return stem + packed;
  }
  return "";
}

std::string findCompressedFile(const std::string &name) {
  for (const char *packed : kCompressionSuffixes)
    if (isReadableFile(name + packed)) return name + packed;
  return "";
}

}  // namespace tarvik

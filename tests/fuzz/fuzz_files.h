// What the fuzz targets share: an environment whose log goes nowhere but is formatted, a folder
// for files, and the oracles. The targets see the library as its callers do, through the C
// interface. An oracle that fails ends the process, which a fuzzer and the replay both report.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "tarvik.h"

namespace tarvik::fuzz {

class Session {
 public:
  // The one session of the process.
  static Session &get();
  ~Session();
  Session(const Session &) = delete;
  Session &operator=(const Session &) = delete;

  TVKenv *env() const { return env_; }
  std::string path(const std::string &name) const { return folder_ + "/" + name; }
  std::string put(const std::string &name, std::string_view bytes) const;
  std::string contents(const std::string &name) const;

  // Reads bytes as a file of that name; null when they make no model.
  TVKmodel *read(const std::string &name, std::string_view bytes) const;
  // The text of a model, or of what is attached to it, in the format of the name.
  std::string written(TVKmodel *model, const std::string &name) const;

  // Writes a model and reads it back, twice: reading must succeed, and from the second text on
  // nothing may change. With `exact` the first text must already be the last.
  void requireStable(TVKmodel *model, const std::string &name, bool exact) const;

 private:
  Session();

  TVKenv *env_ = nullptr;
  std::string folder_;
};

// Ends the process with a message when the condition does not hold.
void require(bool condition, const char *what, std::string_view first = {},
             std::string_view second = {});

inline std::string_view text(const std::uint8_t *data, std::size_t size) {
  return {reinterpret_cast<const char *>(data), size};
}

// A mixed-integer model with two variables of every type and a row, a quadratic and a general
// constraint, whose names are x0, x1, ... and r0, q0, g0: what the files around a model refer to.
TVKmodel *sampleModel();

}  // namespace tarvik::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

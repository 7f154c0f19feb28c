// Parameters that a solve changes for its own duration: each set() remembers the value it
// replaces, and the destructor puts all of them back, on every exit path. Writes go to the store
// itself: some of these values lie outside of what callers may set.
#pragma once

#include <utility>
#include <variant>
#include <vector>

#include "env/env.h"

namespace tarvik {

class ParamScope {
 public:
  explicit ParamScope(Env &env) : params_(env.params()) {}
  ~ParamScope() {
    for (auto entry = saved_.rbegin(); entry != saved_.rend(); ++entry)
      std::visit([&](const auto &old) { write(old.first, old.second); }, *entry);
  }
  ParamScope(const ParamScope &) = delete;
  ParamScope &operator=(const ParamScope &) = delete;

  void set(Int id, int value) {
    saved_.emplace_back(std::pair(id, params_.getInt(static_cast<int>(id))));
    write(id, value);
  }
  void set(Dbl id, double value) {
    saved_.emplace_back(std::pair(id, params_.getDbl(static_cast<int>(id))));
    write(id, value);
  }

 private:
  void write(Int id, int value) { params_.setInt(static_cast<int>(id), value); }
  void write(Dbl id, double value) { params_.setDbl(static_cast<int>(id), value); }

  ParamStore &params_;
  std::vector<std::variant<std::pair<Int, int>, std::pair<Dbl, double>>> saved_;
};

}  // namespace tarvik

// Marks a model as being optimized, with fresh stop flags, until the scope ends; then the
// interrupt signal is given back, if the model had taken it.
#pragma once

#include "env/interrupt.h"
#include "model/model.h"

namespace tarvik {

class RunningScope {
 public:
  explicit RunningScope(Model &model) : model_(model) {
    model.env().resetTermination();
    model.optimizing = true;
  }
  ~RunningScope() {
    restoreInterrupt(model_.env());
    model_.optimizing = false;
  }
  RunningScope(const RunningScope &) = delete;
  RunningScope &operator=(const RunningScope &) = delete;

 private:
  Model &model_;
};

}  // namespace tarvik

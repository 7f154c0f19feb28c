// The model handle: a private environment copy, the model data of the last update, the record of
// pending changes and the store of results.
#pragma once

#include <memory>

#include "env/exported_call.h"
#include "model/model_data.h"
#include "model/model_input.h"
#include "model/solution_store.h"

namespace tarvik {

class PendingChanges;

class Model {
 public:
  // Makes a model in a private copy of env; throws Error.
  static TVKmodel *create(Env &env, ModelInput &&input, bool warn);
  ~Model();

  std::uint32_t marker() const { return marker_; }
  Env &env() const { return *env_; }
  ModelData &data() { return data_; }
  const ModelData &data() const { return data_; }
  SolutionStore &solution() { return solution_; }
  const SolutionStore &solution() const { return solution_; }

  // Applies the pending changes; strong guarantee.
  void update();
  bool hasPending() const { return pending_ != nullptr; }
  // Discards every result of previous solves; with clearAll the start vectors too.
  void reset(bool clearAll);

  bool optimizing = false;      // an optimization runs: modifying calls get 10017
  bool insideCallback = false;  // a user callback of it runs

 protected:
  Model() = default;

  std::uint32_t marker_ = kModelMarker;
  TVKenv *env_ = nullptr;
  ModelData data_;
  SolutionStore solution_;
  std::unique_ptr<PendingChanges> pending_;
};

// The check every exported function on a model begins with: 0, 10002, 10003, 10009 or 10017.
int checkModel(TVKmodel *model);

}  // namespace tarvik

struct TVKmodel : public tarvik::Model {};

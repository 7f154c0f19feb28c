// The model handle: a private environment copy, the model data of the last update, the record of
// pending changes and the store of results.
#pragma once

#include <atomic>
#include <memory>
#include <optional>
#include <type_traits>

#include "env/exported_call.h"
#include "model/measures.h"
#include "model/model_data.h"
#include "model/model_input.h"
#include "model/name_index.h"
#include "model/pending_changes.h"
#include "model/solution_store.h"

namespace tarvik {

struct EnvReleaser {
  void operator()(TVKenv *env) const { releaseEnv(env); }
};

// The entries of the matrix by rows: where the rows start once a row was asked for, the entries
// once a part of the rows was.
struct RowEntries {
  Vec<NzIndex> start;
  Vec<int> index;
  Vec<double> value;
};

// Values derived from the model data, made on demand and dropped when the data changes.
struct DerivedData {
  NameIndex varNames, constrNames, qconstrNames;
  // Default texts of elements without a name, as long as the kind has unnamed elements.
  NameList defaultVarNames, defaultConstrNames, defaultQConstrNames, defaultGenConstrNames;
  RowEntries rows;
  bool hasFingerprint = false;
  int fingerprint = 0;
  std::optional<ModelStatistics> statistics;
  std::optional<QualityReport> quality;
  bool searchFits = false;  // what an interrupted search has kept is about this very data
};

// A solve that runs in the background. Destroying it ends the solve and waits for it; wait()
// waits for its end and throws its error.
class BackgroundSolve {
 public:
  virtual ~BackgroundSolve() = default;
  virtual void wait() = 0;
};

class Model {
 public:
  // Makes a model in a private copy of env; throws Error.
  static TVKmodel *create(Env &env, ModelInput &&input, bool warn);
  // The same from complete model data, as copies and derived models do.
  static TVKmodel *createFromData(Env &env, ModelData &&data);
  // Ends a model; the environment copy goes last. Null is ignored.
  static void destroy(TVKmodel *model) noexcept;
  ~Model();
  Model(const Model &) = delete;
  Model &operator=(const Model &) = delete;

  std::uint32_t marker() const { return marker_; }
  bool hasEnv() const { return env_ != nullptr; }
  Env &env() const { return *env_; }
  TVKenv *envHandle() const { return env_.get(); }
  ModelData &data() { return data_; }
  const ModelData &data() const { return data_; }
  SolutionStore &solution() { return solution_; }
  const SolutionStore &solution() const { return solution_; }
  DerivedData &derived() { return derived_; }

  // Calls from inside a callback may look at a model that is being optimized; what would move the
  // ground under the solve throws here.
  void requireIdle() const {
    if (optimizing) throw Error(TVK_ERROR_OPTIMIZATION_IN_PROGRESS);
  }

  // Runs change(PendingChanges &), making the record when there is none yet; when change throws,
  // a record made for it disappears again.
  template <class Change>
  void edit(Change &&change) {
    requireIdle();
    const bool fresh = !pending_;
    if (fresh) openPending();
    try {
      change(*pending_);
    } catch (...) {
      if (fresh) pending_.reset();
      throw;
    }
  }
  const PendingChanges *pending() const { return pending_.get(); }
  bool hasPending() const { return pending_ != nullptr; }
  // The addition functions refuse to mix update modes in one record.
  void checkUpdateMode() const;

  // Applies the pending changes; strong guarantee.
  void update();
  // Applies pending changes and discards every result of previous solves and the warm-start
  // data; with clearAll the MIP start vectors too.
  void reset(bool clearAll);
  // To be called after data() was changed directly; a finished change has no way to fail.
  void dataChanged() noexcept {
    static_assert(std::is_nothrow_default_constructible_v<DerivedData>);
    derived_ = DerivedData();
  }

  // Names as attributes show them: the stored one, else the default; owned by the model.
  const char *varName(int var);
  const char *constrName(int constr);
  const char *qconstrName(int qconstr);
  const char *genConstrName(int genConstr);

  // An optimization runs: modifying calls get 10017.
  std::atomic<bool> optimizing{false};
  std::atomic<bool> insideCallback{false};      // a user callback of it runs
  std::unique_ptr<BackgroundSolve> background;  // of the last asynchronous call, until its sync
  bool solvesInBackground() const { return background && optimizing; }

 protected:
  Model() = default;

 private:
  static TVKmodel *open(Env &env);
  void openPending();

  std::uint32_t marker_ = kModelMarker;
  std::unique_ptr<TVKenv, EnvReleaser> env_;  // first, so that it is released last
  ModelData data_;
  SolutionStore solution_;
  DerivedData derived_;
  std::unique_ptr<PendingChanges> pending_;
};

// The check every exported function on a model begins with: 0, 10002, 10003, 10009 or 10017.
int checkModel(TVKmodel *model);

}  // namespace tarvik

struct TVKmodel : public tarvik::Model {};

#include "model/model.h"

#include <algorithm>
#include <numeric>

#include "model/update.h"
#include "model/validate.h"

namespace tarvik {

const PwlObjective *ModelData::pwlOf(int var) const {
  const auto it = std::lower_bound(pwl.begin(), pwl.end(), var,
                                   [](const PwlObjective &p, int v) { return p.var < v; });
  return it != pwl.end() && it->var == var ? &*it : nullptr;
}

const double *SparseChanges::find(int i) const {
  const auto it = std::lower_bound(index_.begin(), index_.end(), i);
  return it != index_.end() && *it == i ? &value_[it - index_.begin()] : nullptr;
}

void SparseChanges::merge(const Vec<int> &index, const Vec<double> &value, double factor) {
  if (index.empty()) return;
  Vec<int> allIndex = index_;
  Vec<double> allValue = value_;
  allIndex.insert(allIndex.end(), index.begin(), index.end());
  for (const double v : value) allValue.push_back(factor * v);
  Vec<int> order(allIndex.size());
  std::iota(order.begin(), order.end(), 0);
  std::stable_sort(order.begin(), order.end(),
                   [&](int x, int y) { return allIndex[x] < allIndex[y]; });
  index_.clear();
  value_.clear();
  for (std::size_t k = 0; k < order.size(); ++k) {
    if (k + 1 < order.size() && allIndex[order[k + 1]] == allIndex[order[k]]) continue;
    index_.push_back(allIndex[order[k]]);
    value_.push_back(allValue[order[k]]);
  }
}

void SparseChanges::renumber(const Vec<int> &newIndex) noexcept {
  std::size_t kept = 0;
  for (std::size_t k = 0; k < index_.size(); ++k) {
    if (newIndex[index_[k]] < 0) continue;
    index_[kept] = newIndex[index_[k]];
    value_[kept++] = value_[k];
  }
  index_.resize(kept);
  value_.resize(kept);
}

Model::~Model() {
  background.reset();
  marker_ = 0;
}

TVKmodel *Model::open(Env &env) {
  auto model = std::make_unique<TVKmodel>();
  model->env_.reset(copyEnv(env, true));
  return model.release();
}

TVKmodel *Model::createFromData(Env &env, ModelData &&data) {
  TVKmodel *model = open(env);
  model->data_ = std::move(data);
  return model;
}

void Model::destroy(TVKmodel *model) noexcept {
  // The environment copy is a member declared before everything that is charged to its account.
  const std::unique_ptr<TVKmodel> ending(model);
}

void Model::openPending() {
  pending_ = std::make_unique<PendingChanges>(data_, env().get(Int::UpdateMode));
}

void Model::checkUpdateMode() const {
  if (!pending_ || pending_->mode == env().get(Int::UpdateMode)) return;
  env().log("Model update mode is changed between the update calls\n");
  throw Error(TVK_ERROR_UPDATEMODE_CHANGE, "Model update mode change between the update calls");
}

void Model::update() {
  if (!pending_) return;
  Update update(*this, *pending_);
  update.prepare();
  update.commit();
  pending_.reset();
  dataChanged();
  update.logWarnings();
}

void Model::reset(bool clearAll) {
  requireIdle();
  update();
  solution_.clearAll();
  if (clearAll) data_.starts = {};
}

namespace {

// The stored text of element k or, for a blank one, its default, made for the whole kind once.
const char *nameOf(const NameList &stored, NameList &defaults, int k, int count,
                   const char *prefix) {
  if (k < stored.size() && !stored.isBlank(k)) return stored.get(k);
  if (defaults.size() != count) {
    NameList made;
    completeNames(made, count, prefix, 0);
    defaults = std::move(made);
  }
  return defaults.get(k);
}

}  // namespace

const char *Model::varName(int var) {
  return nameOf(data_.varNames, derived_.defaultVarNames, var, data_.numVars(), "C");
}

const char *Model::constrName(int constr) {
  return nameOf(data_.constrNames, derived_.defaultConstrNames, constr, data_.numConstrs(), "R");
}

const char *Model::qconstrName(int qconstr) {
  return nameOf(data_.qconstrNames, derived_.defaultQConstrNames, qconstr, data_.numQConstrs(),
                "QC");
}

const char *Model::genConstrName(int genConstr) {
  return nameOf(data_.genConstrNames, derived_.defaultGenConstrNames, genConstr,
                data_.numGenConstrs(), "GC");
}

int checkModel(TVKmodel *model) {
  if (!model) return TVK_ERROR_NULL_ARGUMENT;
  if (model->marker() != kModelMarker) return TVK_ERROR_INVALID_ARGUMENT;
  if (model->optimizing && !model->insideCallback) return TVK_ERROR_OPTIMIZATION_IN_PROGRESS;
  if (!model->hasEnv()) return TVK_ERROR_NULL_ARGUMENT;
  if (const int code = checkEnv(model->envHandle())) return code;
  return model->env().started() ? 0 : TVK_ERROR_NOT_STARTED;
}

}  // namespace tarvik

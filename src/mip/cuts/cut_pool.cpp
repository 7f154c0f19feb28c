#include "mip/cuts/cut_pool.h"

#include <algorithm>
#include <cmath>

namespace tarvik {

namespace {

constexpr int kMostAge = 10;
constexpr double kLeastEfficacy = 1e-4;
constexpr std::size_t kBuckets = 1024;
// Scaled coefficients that are as near as this are equal; the hash takes them in coarser steps.
constexpr double kSame = 1e-9;
constexpr double kHashSteps = 1e5;

double scaleOf(const Cut &cut) { return 1 / std::fabs(cut.value.front()); }

std::uint64_t hashOf(const Cut &cut) {
  const double scale = scaleOf(cut);
  std::uint64_t hash = 1469598103934665603ULL;
  const auto mix = [&hash](std::uint64_t value) { hash = (hash ^ value) * 1099511628211ULL; };
  for (std::size_t k = 0; k < cut.index.size(); ++k) {
    mix(static_cast<std::uint64_t>(cut.index[k]));
    // Coefficients of a cut are within a range of 1e6.
    mix(static_cast<std::uint64_t>(std::llround(cut.value[k] * scale * kHashSteps)));
  }
  return hash;
}

bool areParallel(const Cut &a, const Cut &b) {
  if (a.index != b.index) return false;
  const double scaleA = scaleOf(a), scaleB = scaleOf(b);
  for (std::size_t k = 0; k < a.index.size(); ++k) {
    const double valueA = a.value[k] * scaleA, valueB = b.value[k] * scaleB;
    if (std::fabs(valueA - valueB) > kSame * std::fabs(valueA)) return false;
  }
  return true;
}

// What the fresh cuts reach on average, and no less than what every cut must.
double leastEfficacy(const Vec<Cut> &fresh, const Vec<double> &x) {
  double sum = 0;
  for (const Cut &cut : fresh) sum += efficacy(cut, x);
  const double mean = fresh.empty() ? 0 : sum / static_cast<double>(fresh.size());
  return std::max(mean, kLeastEfficacy);
}

}  // namespace

void CutPool::enter(Pooled &&pooled) {
  if (buckets_.empty()) buckets_.assign(kBuckets, -1);
  int &first = buckets_[pooled.hash % kBuckets];
  pooled.next = first;
  first = static_cast<int>(pooled_.size());
  pooled_.push_back(std::move(pooled));
}

void CutPool::add(const std::shared_ptr<const Cut> &cut) {
  const std::uint64_t hash = hashOf(*cut);
  for (int k = buckets_.empty() ? -1 : buckets_[hash % kBuckets]; k >= 0; k = pooled_[k].next) {
    Pooled &other = pooled_[k];
    if (other.hash != hash || !areParallel(*other.cut, *cut)) continue;
    if (cut->rhs * scaleOf(*cut) < other.cut->rhs * scaleOf(*other.cut)) other.cut = cut;
    other.age = 0;
    return;
  }
  if (pooled_.size() < capacity_) enter({cut, hash, 0, -1});
}

int CutPool::separate(const Vec<double> &x, WorkMeter &work, Vec<Cut> &cuts) {
  if (pooled_.empty()) return 0;
  const std::size_t fresh = cuts.size();
  const double least = leastEfficacy(cuts, x);
  Vec<Pooled> all;
  all.swap(pooled_);
  buckets_.clear();
  double entries = 0;
  for (Pooled &pooled : all) {
    entries += static_cast<double>(pooled.cut->index.size());
    if (efficacy(*pooled.cut, x) >= least)
      cuts.push_back(*pooled.cut);
    else if (++pooled.age <= kMostAge)
      enter(std::move(pooled));
  }
  work.charge(3 * entries);
  return static_cast<int>(cuts.size() - fresh);
}

}  // namespace tarvik

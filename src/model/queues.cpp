// Queues of attribute values. A queue that outgrows its kind is thinned out to the last value of
// each element, so that setting values again and again costs amortised constant time and space.
#include <cstring>

#include "model/edits.h"
#include "model/growth.h"

namespace tarvik {

namespace {

bool outgrown(std::size_t queued, std::size_t added, int limit) {
  return queued + added > 2 * static_cast<std::size_t>(limit) + 64;
}

// Positions of the last value of each element, in queue order.
Vec<int> lastPositions(const Vec<int> &index, int limit) {
  Vec<int> last(limit, -1);
  for (int k = 0; k < static_cast<int>(index.size()); ++k) last[index[k]] = k;
  Vec<int> kept;
  kept.reserve(std::min<std::size_t>(limit, index.size()));
  for (int k = 0; k < static_cast<int>(index.size()); ++k)
    if (last[index[k]] == k) kept.push_back(k);
  return kept;
}

template <class T>
void thinOut(ValueQueue<T> &queue, int limit) {
  const Vec<int> kept = lastPositions(queue.index, limit);
  for (std::size_t k = 0; k < kept.size(); ++k) {
    queue.index[k] = queue.index[kept[k]];
    queue.value[k] = queue.value[kept[k]];
  }
  queue.index.resize(kept.size());
  queue.value.resize(kept.size());
}

void thinOut(TextQueue &queue, int limit) {
  const Vec<int> kept = lastPositions(queue.index, limit);
  TextQueue fresh;
  fresh.index.reserve(kept.size());
  for (const int k : kept) {
    fresh.index.push_back(queue.index[k]);
    fresh.text.append(queue.text.get(k));
  }
  queue = std::move(fresh);
}

}  // namespace

template <class T>
void queueValues(ValueQueue<T> &queue, const Elements &elements, const T *values, int limit) {
  const std::size_t added = elements.len;
  if (outgrown(queue.index.size(), added, limit)) thinOut(queue, limit);
  makeRoom(queue.index, added);
  makeRoom(queue.value, added);
  for (int k = 0; k < elements.len; ++k) queue.index.push_back(elements[k]);
  queue.value.insert(queue.value.end(), values, values + added);
}

template void queueValues(ValueQueue<char> &, const Elements &, const char *, int);
template void queueValues(ValueQueue<int> &, const Elements &, const int *, int);
template void queueValues(ValueQueue<double> &, const Elements &, const double *, int);

void queueTexts(TextQueue &queue, const Elements &elements, const char *const *texts, int limit) {
  if (outgrown(queue.index.size(), elements.len, limit)) thinOut(queue, limit);
  std::size_t bytes = 0;
  for (int k = 0; k < elements.len; ++k) bytes += texts[k] ? std::strlen(texts[k]) + 1 : 1;
  makeRoom(queue.index, elements.len);
  queue.text.reserve(queue.text.size() + static_cast<std::size_t>(elements.len),
                     queue.text.poolBytes() + bytes);
  for (int k = 0; k < elements.len; ++k) {
    queue.index.push_back(elements[k]);
    queue.text.append(texts[k] ? texts[k] : "");
  }
}

}  // namespace tarvik

#include "mip/symmetry/column_matrices.h"

#include <algorithm>

namespace tarvik {

namespace {

// -1: the column stays.
int imageOf(const Permutation &permutation, int col) {
  const auto found = std::lower_bound(permutation.from.begin(), permutation.from.end(), col);
  if (found == permutation.from.end() || *found != col) return -1;
  return permutation.to[found - permutation.from.begin()];
}

bool isInvolution(const Permutation &permutation) {
  for (int k = 0; k < permutation.size(); ++k)
    if (imageOf(permutation, permutation.to[k]) != permutation.from[k]) return false;
  return true;
}

class MatrixFinder {
 public:
  MatrixFinder(const Vec<Permutation> &generators, int numCols)
      : generators_(generators), free_(generators.size()), inMatrix_(numCols, 0) {
    starts_.assign(static_cast<std::size_t>(numCols) + 1, 0);
    for (const Permutation &g : generators)
      for (const int j : g.from) ++starts_[j + 1];
    for (int j = 0; j < numCols; ++j) starts_[j + 1] += starts_[j];
    movers_.resize(starts_.back());
    Vec<NzIndex> next(starts_.begin(), starts_.end() - 1);
    for (std::size_t g = 0; g < generators.size(); ++g) {
      free_[g] = isInvolution(generators[g]);
      for (const int j : generators[g].from) movers_[next[j]++] = static_cast<int>(g);
    }
  }

  // Matrices of three places and more; tells which generators they take.
  Vec<char> run(Vec<ColumnMatrix> &matrices) {
    Vec<char> taken(generators_.size(), 0);
    for (std::size_t g = 0; g < generators_.size(); ++g) {
      if (!free_[g]) continue;
      ColumnMatrix matrix;
      Vec<int> members;
      if (begin(static_cast<int>(g), matrix, members))
        for (std::size_t p = 0; p < matrix.places.size(); ++p) extend(matrix, p, members);
      for (const int member : members) {
        free_[member] = 0;
        taken[member] = 1;
      }
      for (const Vec<int> &place : matrix.places)
        for (const int j : place) inMatrix_[j] = 0;
      if (!members.empty()) matrices.push_back(std::move(matrix));
    }
    return taken;
  }

 private:
  // A generator that shares one place with the first makes it a place to begin with.
  bool begin(int first, ColumnMatrix &matrix, Vec<int> &members) {
    const Permutation &a = generators_[first];
    for (const int shared : {a.from[0], a.to[0]})
      for (NzIndex k = starts_[shared]; k < starts_[shared + 1]; ++k) {
        const int second = movers_[k];
        if (second == first || !free_[second] || generators_[second].size() != a.size()) continue;
        const Permutation &b = generators_[second];
        Vec<int> both;
        std::set_intersection(a.from.begin(), a.from.end(), b.from.begin(), b.from.end(),
                              std::back_inserter(both));
        if (2 * static_cast<int>(both.size()) != a.size()) continue;
        matrix.rows = static_cast<int>(both.size());
        addPlace(std::move(both), matrix);
        if (addImage(0, first, matrix, members) && addImage(0, second, matrix, members))
          return true;
        for (const Vec<int> &place : matrix.places)
          for (const int j : place) inMatrix_[j] = 0;
        matrix.places.clear();
        members.clear();
      }
    return false;
  }

  void extend(ColumnMatrix &matrix, std::size_t place, Vec<int> &members) {
    const int first = matrix.places[place][0];
    for (NzIndex k = starts_[first]; k < starts_[first + 1]; ++k)
      if (free_[movers_[k]] &&
          std::find(members.begin(), members.end(), movers_[k]) == members.end())
        addImage(place, movers_[k], matrix, members);
  }

  void addPlace(Vec<int> &&place, ColumnMatrix &matrix) {
    for (const int j : place) inMatrix_[j] = 1;
    matrix.places.push_back(std::move(place));
  }

  // A new place that the generator exchanges with the given one, moving nothing else.
  bool addImage(std::size_t place, int generator, ColumnMatrix &matrix, Vec<int> &members) {
    if (generators_[generator].size() != 2 * matrix.rows) return false;
    Vec<int> image;
    for (const int j : matrix.places[place]) {
      const int to = imageOf(generators_[generator], j);
      if (to < 0 || inMatrix_[to]) return false;
      image.push_back(to);
    }
    addPlace(std::move(image), matrix);
    members.push_back(generator);
    return true;
  }

  const Vec<Permutation> &generators_;
  Vec<char> free_, inMatrix_;
  Vec<NzIndex> starts_;
  Vec<int> movers_;  // generators by column
};

}  // namespace

Vec<ColumnMatrix> extractMatrices(Vec<Permutation> &generators, int numCols) {
  Vec<ColumnMatrix> matrices;
  const Vec<char> taken = MatrixFinder(generators, numCols).run(matrices);
  Vec<Permutation> others;
  for (std::size_t g = 0; g < generators.size(); ++g)
    if (!taken[g]) others.push_back(std::move(generators[g]));
  generators = std::move(others);
  return matrices;
}

}  // namespace tarvik

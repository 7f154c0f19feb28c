// Adds and removes rows of a mixed-integer model, and adds binary columns behind the others, in
// one rewriting of its matrix. Columns keep their places.
#pragma once

#include "mip/mip_model.h"

namespace tarvik {

class ModelEditor {
 public:
  explicit ModelEditor(MipModel &model) : model_(model) {}

  // Returns the number of the new column.
  int addBinary();
  void addRow(const Vec<int> &cols, const Vec<double> &values, double lower, double upper);
  // A row that the model had before.
  void removeRow(int row);
  // Carries out all of it; the editor is used up.
  void apply();

 private:
  MipModel &model_;
  int newCols_ = 0;
  Vec<char> removed_;
  Vec<NzIndex> start_{0};
  Vec<int> cols_;
  Vec<double> values_, lower_, upper_;
};

}  // namespace tarvik

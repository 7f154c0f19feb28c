// Applying the pending changes. prepare() does everything that may fail: it checks what can only
// be checked now, makes room in every array and builds replacements for the parts that are
// rebuilt. commit() cannot fail: in the extended numbering of the pending record it appends what
// was added and stores the values that were set, then removes what is marked and renumbers
// everything that refers to it. So an update either happens completely or not at all.
#pragma once

#include <optional>
#include <string_view>

#include "model/edits.h"
#include "model/update_matrix.h"

namespace tarvik {

// Marks and new numbers of one kind of element.
struct Renumbering {
  Vec<char> drop;     // empty: nothing is removed
  Vec<int> newIndex;  // by old index, -1 for removed ones; empty: nothing changes
  int count = 0;      // before the removal
  int kept = 0;

  bool removes() const { return !drop.empty(); }
  bool isDropped(int k) const { return !drop.empty() && drop[k]; }
  void prepare(const Vec<char> &marks, int numElements, bool keepMap);
};

// The names of one kind; they are stored from the first given name of the model on.
class NamesUpdate {
 public:
  void prepare(NameList &stored, bool store, int base, int firstNumber, const NameList &given,
               int added, const TextQueue &set, const char *prefix);
  // Room for names that follow the pending ones.
  void reserveMore(NameList &stored, int count, std::size_t bytes);
  // Brings the list to the extended numbering.
  void extend(NameList &stored, const NameList &given) noexcept;
  // Appends a name that follows the pending ones.
  void appendLast(NameList &stored, std::string_view name) noexcept;
  // Stores the names that were set and removes those of dropped elements.
  void commit(NameList &stored, const TextQueue &set, const Renumbering &elements) noexcept;
  bool active() const { return active_; }

 private:
  bool active_ = false;
  bool replaces_ = false;
  int added_ = 0, firstNumber_ = 0;
  const char *prefix_ = "";
  NameList fresh_;
};

class Update {
 public:
  Update(Model &model, PendingChanges &pending);
  void prepare();
  void commit() noexcept;
  // What commit() noticed; logged when all is done.
  void logWarnings();

 private:
  // update.cpp
  bool affectsSolution() const;
  void prepareColumns();
  void prepareRows();
  void prepareNames();
  void commitColumns() noexcept;
  void commitRows() noexcept;
  void commitNames() noexcept;
  void applyColumnValues() noexcept;
  void applyRowValues() noexcept;
  void flipSense() noexcept;
  void removeColumns() noexcept;
  void removeRows() noexcept;
  void countTypes() noexcept;

  // update_parts.cpp
  void prepareParts();
  void prepareQuadObjective();
  void prepareQConstrs();
  void checkGenConstrs();
  void preparePwl();
  void prepareObjectives();
  void prepareScenarios();
  void commitParts() noexcept;
  void commitConstrValues() noexcept;
  void sortByWeight(Sos &sos);
  void renumberVarsInParts() noexcept;
  void removeParts() noexcept;

  // update_settings.cpp
  void prepareSettings();
  void checkTags();
  void prepareStarts();
  void commitSettings() noexcept;
  void prepareWarmStart();
  void commitWarmStart() noexcept;
  void commitLpStart() noexcept;
  void commitBasis() noexcept;
  void balanceBasis() noexcept;
  const Renumbering &renumbering(ElementKind kind) const;

  Model &model_;
  ModelData &data_;
  PendingChanges &p_;
  SolutionStore &solution_;

  int sense_;           // after the update
  double toNew_;        // -1 when the stored sense flips, else 1
  Vec<int> rangeRows_;  // surviving pending range rows, extended numbering
  int extVars_ = 0;     // variables before the removal, auxiliary ones included
  Renumbering vars_, constrs_, sos_, qconstrs_, genConstrs_;
  MatrixUpdate matrix_;
  NamesUpdate varNames_, constrNames_, qconstrNames_, genConstrNames_;

  std::optional<QuadTerms> newQ_;
  std::optional<Vec<PwlObjective>> newPwl_;
  std::optional<Vec<Objective>> newObjectives_;
  std::optional<Vec<Scenario>> newScenarios_;
  std::optional<Vec<Vec<double>>> newStarts_;

  bool duplicateSosWeights_ = false;
  int conesLost_ = 0;
  bool badStart_ = false, badBasis_ = false;
};

}  // namespace tarvik

// The pending-change record: every edit since the last update, validated when it was made.
// Indices count the elements of the model as it is plus the pending additions of the same kind
// in order (the extended numbering); deletions mark entries of the extended numbering. In update
// mode 0 the extended part is not addressable before the update. Values are in the caller's sense.
#pragma once

#include <optional>

#include "base/sparse_matrix.h"
#include "model/model_data.h"

namespace tarvik {

// Values set for single elements, the last one of an element wins.
template <class T>
struct ValueQueue {
  Vec<int> index;
  Vec<T> value;

  bool empty() const { return index.empty(); }
};

struct TextQueue {
  Vec<int> index;
  NameList text;

  bool empty() const { return index.empty(); }
};

struct PendingColumns {
  SparseMatrix a;  // by columns; numMinor is not kept
  Vec<double> obj, lb, ub;
  Vec<char> vtype;
  NameList names;  // empty, or one text a column, empty for a default name
  bool warnedSmall = false;

  int count() const { return a.numMajor; }
};

struct PendingRows {
  SparseMatrix a;  // by rows; numMinor is not kept
  Vec<double> rhs;
  Vec<double> lower;  // above -1e100: a range lower <= expression <= rhs
  Vec<char> sense;
  NameList names;
  bool warnedSmall = false;

  int count() const { return a.numMajor; }
};

struct CoefChanges {
  Vec<int> row, col;
  Vec<double> val;
};

struct PendingStart {
  int number = 0;
  ValueQueue<double> values;
};

// Changes of one further objective or of one scenario; what is not set keeps its value.
struct PendingObjective {
  int number = 0;
  bool replaceCoef = false;  // coefficients not in the queue become zero
  ValueQueue<double> coef;
  std::optional<double> con, weight, absTol, relTol;
  std::optional<int> priority;
  std::optional<std::string> name;
};

struct PendingScenario {
  int number = 0;
  ValueQueue<double> obj, lb, ub, rhs;
  std::optional<std::string> name;
};

class PendingChanges {
 public:
  PendingChanges(const ModelData &data, int updateMode)
      : mode(updateMode),
        baseVars(data.numVars()),
        baseConstrs(data.numConstrs()),
        baseSos(data.numSos()),
        baseQConstrs(data.numQConstrs()),
        baseGenConstrs(data.numGenConstrs()) {}

  int mode;
  int baseVars, baseConstrs, baseSos, baseQConstrs, baseGenConstrs;

  PendingColumns cols;
  PendingRows rows;
  CoefChanges coefs;
  bool deleteQ = false;
  QuadTerms q;  // the caller's coefficients
  Vec<QConstr> qconstrs;
  NameList qconstrNames;  // one text a pending constraint, empty for a default name
  bool warnedSmallQ = false;
  Vec<Cone> cones;
  Vec<Sos> sos;
  Vec<GenConstr> genConstrs;
  NameList genConstrNames;
  Vec<PwlObjective> pwl;  // the last one of a variable wins
  std::int64_t pwlPoints = 0;

  // Deletion marks in the extended numbering; shorter than the count where nothing is marked.
  Vec<char> dropVar, dropConstr, dropSos, dropQConstr, dropGenConstr;

  // Attribute values.
  ValueQueue<double> obj, lb, ub, rhs, qcRhs;
  ValueQueue<char> vtype, sense, qcSense;
  TextQueue varNames, constrNames, qconstrNamesSet, genConstrNamesSet;
  TextQueue varTags, constrTags, qconstrTags;
  ValueQueue<double> hintVal, pstart, dstart, vDualNorm, cDualNorm;
  ValueQueue<int> hintPri, branchPriority, partition, poolIgnore, iisLBForce, iisUBForce;
  ValueQueue<int> lazy, iisConstrForce, iisSosForce, iisQConstrForce, iisGenConstrForce;
  ValueQueue<int> vbasis, cbasis;
  ValueQueue<int> funcPieces, funcNonlinear;
  ValueQueue<double> funcPieceError, funcPieceLength, funcPieceRatio;
  std::optional<int> objSense, numStart, numObj, numScenarios;
  std::optional<double> objCon;
  std::optional<std::string> name;
  // Of the model's own starts, objectives and scenarios, so many survive.
  int keptStarts = kMaxInt, keptObjectives = kMaxInt, keptScenarios = kMaxInt;
  Vec<PendingStart> starts;
  Vec<PendingObjective> objectives;
  Vec<PendingScenario> scenarios;

  // Marks for duplicate checks: an entry equal to the current stamp was seen.
  Vec<unsigned> rowMarks, colMarks;
  unsigned rowStamp = 0, colStamp = 0;

  // All elements, pending ones included.
  int allVars() const { return baseVars + cols.count(); }
  int allConstrs() const { return baseConstrs + rows.count(); }
  int allSos() const { return baseSos + static_cast<int>(sos.size()); }
  int allQConstrs() const { return baseQConstrs + static_cast<int>(qconstrs.size()); }
  int allGenConstrs() const { return baseGenConstrs + static_cast<int>(genConstrs.size()); }
  // The elements that edits may refer to, by update mode.
  int currentVars() const { return mode ? allVars() : baseVars; }
  int currentConstrs() const { return mode ? allConstrs() : baseConstrs; }
  int currentSos() const { return mode ? allSos() : baseSos; }
  int currentQConstrs() const { return mode ? allQConstrs() : baseQConstrs; }
  int currentGenConstrs() const { return mode ? allGenConstrs() : baseGenConstrs; }
};

}  // namespace tarvik

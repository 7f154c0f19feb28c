// The BOUNDS section of MPS files and the default bounds of integer columns.
//
// A negative upper bound makes a lower bound infinite that was not given before. A column
// between integer markers without any bound line has the upper bound 1; with one, its upper bound
// is infinite unless given. A binary column keeps bounds that were given and must end in [0, 1].
#include <cmath>

#include "io/mps/mps_parser.h"

namespace tarvik {

namespace {

constexpr const char *kBoundNames[] = {"LO", "UP", "FX", "FR", "MI", "PL",
                                       "BV", "LI", "UI", "SC", "SI"};

}  // namespace

int MpsParser::boundCode(Field text) {
  for (int k = 0; k < kNumBoundCodes; ++k)
    if (equalIgnoringCase(text, kBoundNames[k])) return k;
  return -1;
}

bool MpsParser::boundNeedsValue(int code) {
  return code != FR && code != MI && code != PL && code != BV && code != SC && code != SI;
}

// Leaves type, set, column and perhaps value in the fields and returns their count.
int MpsParser::splitBoundLine(int &code) {
  double value = 0;
  const auto complete = [&](int count) {
    code = count > 0 ? boundCode(fields_[0]) : -1;
    if (code < 0) return false;
    if (count == 4) return parseNumber(fields_[3], value);
    return count == 3 && !boundNeedsValue(code);
  };
  Field six[6];
  if (fixed_ && cutFixed(six) && !six[2].empty()) {
    for (int k = 0; k < 4; ++k) fields_[k] = six[k];
    if (const int count = six[3].empty() ? 3 : 4; complete(count)) return count;
  }
  const int count = splitFree();
  code = count > 0 ? boundCode(fields_[0]) : -1;
  // The set name may be missing: then the column comes second and the value, if any, third.
  const bool setMissing = code >= 0 && ((count == 2 && !boundNeedsValue(code)) ||
                                        (count == 3 && parseNumber(fields_[2], value) &&
                                         (boundNeedsValue(code) || findColumn(fields_[2]) < 0)));
  if (setMissing) {
    for (int k = count; k > 1; --k) fields_[k] = fields_[k - 1];
    fields_[1] = {};
    return count + 1;
  }
  if (complete(count)) return count;
  if (cutFixed(six) && !six[2].empty()) {
    for (int k = 0; k < 4; ++k) fields_[k] = six[k];
    if (const int fixedCount = six[3].empty() ? 3 : 4; complete(fixedCount)) {
      fixed_ = true;
      return fixedCount;
    }
  }
  failLine();
}

void MpsParser::parseBounds() {
  boundsSeen_.resize(columns_.size());
  while (nextDataLine()) {
    int code = -1;
    const int count = splitBoundLine(code);
    if (boundSet_.empty()) {
      boundSet_ = fields_[1];
    } else if (!fields_[1].empty() && boundSet_ != fields_[1] && !warnedBoundSets_) {
      warn("Warning: found different names for bound vectors (%s and %.*s), names are ignored\n",
           boundSet_.c_str(), static_cast<int>(fields_[1].size()), fields_[1].data());
      warnedBoundSets_ = true;
    }
    const Field name = fields_[2];
    const int column = findColumn(name);
    if (column < 0) {
      warn("Warning: column name %.*s in bound section not defined\n",
           static_cast<int>(name.size()), name.data());
      continue;
    }
    if (boundsSeen_[column] & (1u << code))
      warn("Warning: duplicate bounds for column %s.\n", columns_.get(column));
    boundsSeen_[column] |= 1u << code;
    applyBound(code, column, count == 4 ? number(fields_[3]) : kUserInf);
  }
}

void MpsParser::applyBound(int code, int column, double value) {
  double &lower = model_.linear.lb[column];
  double &upper = model_.linear.ub[column];
  unsigned &flags = boundFlags_[column];
  const auto setLower = [&](double bound) {
    lower = bound;
    flags |= kLowerSet;
  };
  const auto setUpper = [&](double bound) {
    upper = bound;
    flags |= kUpperSet;
  };
  switch (code) {
    case LI:
      setType(column, 'I');
      [[fallthrough]];
    case LO:
      setLower(value);
      break;
    case UI:
      setType(column, 'I');
      [[fallthrough]];
    case UP:
      if (value < 0 && !(flags & kLowerSet)) lower = -kUserInf;
      setUpper(value);
      break;
    case FX:
      setLower(value);
      setUpper(value);
      break;
    case FR:
      setLower(-kUserInf);
      setUpper(kUserInf);
      break;
    case MI:
      setLower(-kUserInf);
      break;
    case PL:
      setUpper(kUserInf);
      break;
    case BV:
      setType(column, 'B');
      if (!(flags & kLowerSet)) lower = 0;
      if (!(flags & kUpperSet)) upper = 1;
      break;
    default:
      setType(column, code == SI || (flags & kMarkerInteger) ? 'N' : 'S');
      setUpper(value);
  }
}

void MpsParser::setType(int column, char type) {
  Vec<char> &types = model_.linear.vtype;
  if (static_cast<int>(types.size()) <= column) {
    if (types.capacity() <= static_cast<std::size_t>(column))
      types.reserve(2 * static_cast<std::size_t>(column) + 64);
    types.resize(column + 1, 'C');
  }
  types[column] = type;
}

void MpsParser::finishBounds() {
  ModelInput &linear = model_.linear;
  boundsSeen_.resize(columns_.size());
  for (int j = 0; j < columns_.size(); ++j) {
    if ((boundFlags_[j] & kMarkerInteger) && boundsSeen_[j] == 0) linear.ub[j] = 1;
    if (linear.vtype.empty() || j >= static_cast<int>(linear.vtype.size())) continue;
    if (linear.vtype[j] == 'B' && (linear.lb[j] < 0 || linear.ub[j] > 1)) {
      char text[600];
      std::snprintf(text, sizeof text, "MPS reader: invalid bounds [%g, %g] for binary variable %s",
                    linear.lb[j], linear.ub[j], columns_.get(j));
      failWith(text, "%s\n", text);
    }
  }
  if (!linear.vtype.empty()) linear.vtype.resize(columns_.size(), 'C');
}

}  // namespace tarvik

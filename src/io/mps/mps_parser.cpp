// The linear sections of MPS files: NAME, OBJSENSE, ROWS, COLUMNS, RHS and RANGES.
#include "io/mps/mps_parser.h"

#include <cmath>

#include "io/mps/mps_reader.h"

namespace tarvik {

ParsedModel readMps(Env &env, TextReader &reader) { return MpsParser(env, reader).parse(); }

MpsParser::MpsParser(Env &env, TextReader &reader)
    : env_(env), reader_(reader), zeroTol_(env.get(Dbl::TARV_PAR_ZERO)) {}

ParsedModel MpsParser::parse() {
  for (;;) {
    if (!pendingHeader_ && !nextLine()) line_ = {};
    pendingHeader_ = false;
    std::string_view rest = line_;
    Field keyword;
    if (line_.empty() || !isHeader() || !nextField(rest, keyword)) break;
    if (keyword == "ENDATA") {
      finish();
      return std::move(model_);
    }
    parseSection(keyword, trimmed(rest));
  }
  const int line = reader_.lineNumber();
  failWith("MPS reader: line " + std::to_string(line) + " not right or no ENDATA",
           "Error: line %d not right or no ENDATA.\n", line);
}

bool MpsParser::isSectionKeyword() const {
  Field keyword;
  std::string_view rest = line_;
  nextField(rest, keyword);
  for (const char *known :
       {"NAME",       "OBJSENSE", "ROWS",    "LAZYCONS",  "USERCUTS", "COLUMNS",
        "RHS",        "RANGES",   "BOUNDS",  "SOS",       "SETS",     "SOS1",
        "SOS2",       "QUADOBJ",  "QMATRIX", "QSECTION",  "QCMATRIX", "BILINEAR",
        "INDICATORS", "GENCONS",  "PWLOBJ",  "SCENARIOS", "ENDATA"})
    if (keyword == known) return true;
  return false;
}

void MpsParser::parseSection(Field keyword, std::string_view rest) {
  if (keyword == "NAME") {
    model_.linear.name = rest;
  } else if (keyword == "OBJSENSE") {
    parseObjSense(rest);
  } else if (keyword == "ROWS") {
    sawRows_ = true;
    parseRows(0);
  } else if (keyword == "LAZYCONS" || keyword == "USERCUTS") {
    parseLazyRows(keyword, rest);
  } else if (keyword == "COLUMNS") {
    if (!sawRows_) failWith("MPS reader: no row section", "Error: no row section.\n");
    sawColumns_ = true;
    parseColumns();
  } else if (keyword == "RHS") {
    parseRhs();
  } else if (keyword == "RANGES") {
    parseRanges();
  } else if (keyword == "BOUNDS") {
    parseBounds();
  } else if (keyword == "SOS" || keyword == "SETS" || keyword == "SOS1" || keyword == "SOS2") {
    parseSos();
  } else if (keyword == "QUADOBJ" || keyword == "QMATRIX" || keyword == "QSECTION") {
    parseQuadObj(keyword == "QUADOBJ"   ? QuadForm::Triangle
                 : keyword == "QMATRIX" ? QuadForm::Full
                                        : QuadForm::Either);
  } else if (keyword == "QCMATRIX") {
    parseQcMatrix(rest);
  } else if (keyword == "BILINEAR") {
    parseBilinear(rest);
  } else if (keyword == "INDICATORS") {
    parseIndicators();
  } else if (keyword == "GENCONS") {
    parseGenCons();
  } else if (keyword == "PWLOBJ") {
    parsePwlObj();
  } else if (keyword == "SCENARIOS") {
    parseScenarios(rest);
  } else {
    const int line = reader_.lineNumber();
    failWith("MPS reader: line " + std::to_string(line) + " not right or no ENDATA",
             "Error: line %d not right or no ENDATA.\n", line);
  }
}

void MpsParser::parseObjSense(std::string_view rest) {
  const auto apply = [&](Field word) {
    for (const char *name : {"MAX", "MAXIMIZE", "MAXIMISE", "MAXIMUM"})
      if (equalIgnoringCase(word, name)) {
        model_.linear.objSense = -1;
        return;
      }
    for (const char *name : {"MIN", "MINIMIZE", "MINIMISE", "MINIMUM"})
      if (equalIgnoringCase(word, name)) {
        model_.linear.objSense = 1;
        return;
      }
    failLine();
  };
  if (!rest.empty()) {
    apply(rest);
    return;
  }
  while (nextDataLine()) apply(trimmed(line_));
}

void MpsParser::parseLazyRows(Field keyword, std::string_view rest) {
  if (keyword == "USERCUTS") {
    if (sawUserCuts_)
      fail("Error at line %d (second USERCUTS section):\n %s\n", reader_.lineNumber(),
           lineText().c_str());
    sawUserCuts_ = true;
    parseRows(-1);
    return;
  }
  int level = 1;
  if (!rest.empty() && (!parseInteger(rest, level) || level < 1 || level > 3)) failLine();
  if (sawLazy_[level])
    fail("Error at line %d (second LAZYCONS section with same lazyness):\n %s\n",
         reader_.lineNumber(), lineText().c_str());
  sawLazy_[level] = true;
  parseRows(level);
}

void MpsParser::parseRows(int lazy) {
  ModelInput &linear = model_.linear;
  while (nextDataLine()) {
    const int count = splitRowLine();
    if (count < 2 || fields_[0].size() != 1) failLine();
    const char letter = static_cast<char>(fields_[0].front() & ~0x20);
    if (letter == 'N') {
      addObjectiveRow(count);
      continue;
    }
    const char sense = letter == 'L' ? '<' : letter == 'G' ? '>' : letter == 'E' ? '=' : '\0';
    if (sense == '\0' || count != 2) failLine();
    if (rows_.findOrAdd(fields_[1]) != static_cast<int>(rowTarget_.size()))
      failLine();  // the name is taken
    rowTarget_.push_back(linear.numConstrs++);
    rowName_.push_back(rows_.size() - 1);
    linear.sense.push_back(sense);
    if (lazy != 0) lazy_.resize(linear.numConstrs);
    if (!lazy_.empty()) {
      lazy_.resize(linear.numConstrs);
      lazy_.back() = lazy;
    }
  }
}

void MpsParser::addObjectiveRow(int count) {
  if (rows_.findOrAdd(fields_[1]) != static_cast<int>(rowTarget_.size())) failLine();
  if (count == 2 && !multiObjective_) {
    if (numObjectives_ > 0 && !warnedObjectiveRows_) {
      warn("Warning: more than one unconstrained row,\n");
      warn("         using the first one as the objective.\n");
      warnedObjectiveRows_ = true;
    }
    rowTarget_.push_back(numObjectives_ > 0 ? kDroppedRow : objectiveRow(0));
    numObjectives_ = 1;
    return;
  }
  ParsedObjective objective;
  objective.name = fields_[1];
  double priority = 0;
  if (count != 6 || !parseNumber(fields_[2], priority) || priority != std::trunc(priority) ||
      std::fabs(priority) > kMaxInt || !parseNumber(fields_[3], objective.weight) ||
      !parseNumber(fields_[4], objective.absTol) || !parseNumber(fields_[5], objective.relTol) ||
      (numObjectives_ > 0 && !multiObjective_))
    fail("Missing priority, weight, absolute or relative tolerance in multi-objective line\n");
  objective.priority = static_cast<int>(priority);
  multiObjective_ = true;
  rowTarget_.push_back(objectiveRow(numObjectives_++));
  model_.objectives.push_back(std::move(objective));
}

void MpsParser::parseColumns() {
  seenBy_.assign(rows_.size(), -1);
  column_ = -1;
  while (nextDataLine()) {
    // The common line is a known column, a row and a value; everything else takes the long way.
    const int count = splitEntryOrMarker();
    if (count == 0) continue;
    if (column_ < 0 || !columns_.matches(column_, fields_[0])) beginColumn(fields_[0]);
    addEntry(fields_[1], numbers_[0]);
    if (count == 5) addEntry(fields_[3], numbers_[1]);
  }
  if (inSos_) closeSosMarker();
  inInteger_ = inSos_ = false;
}

int MpsParser::splitEntryOrMarker() {
  if (!fixed_) {
    const int count = splitFree();
    if ((count == 3 || count == 5) && parseNumber(fields_[2], numbers_[0]) &&
        (count == 3 || parseNumber(fields_[4], numbers_[1])))
      return count;
    for (int k = 1; k <= 2 && k < count; ++k)
      if (fields_[k] == "'MARKER'") {
        parseMarker(count, k);
        return 0;
      }
  } else if (line_.find("'MARKER'") != std::string_view::npos) {
    const int count = splitFree();
    parseMarker(count, count > 1 && fields_[1] == "'MARKER'" ? 1 : 2);
    return 0;
  }
  const int count = splitEntryLine(false);
  numbers_[0] = number(fields_[2]);
  if (count == 5) numbers_[1] = number(fields_[4]);
  return count;
}

void MpsParser::parseMarker(int count, int at) {
  const Field word = at + 1 < count ? fields_[at + 1] : Field();
  bool right = true;
  if (word == "'INTORG'") {
    right = !inInteger_;
    inInteger_ = true;
  } else if (word == "'INTEND'") {
    right = inInteger_;
    inInteger_ = false;
  } else if (word == "'SOSORG'") {
    right = !inSos_;
    if (right) {
      model_.sos.emplace_back();
      model_.sos.back().type = fields_[0] == "S2" ? 2 : 1;
    }
    inSos_ = true;
  } else if (word == "'SOSEND'") {
    right = inSos_;
    if (right) closeSosMarker();
    inSos_ = false;
  } else {
    right = false;
  }
  if (!right) warn("Warning: marker at line %d is wrong.\n", reader_.lineNumber());
}

void MpsParser::closeSosMarker() {
  if (model_.sos.back().ind.empty()) model_.sos.pop_back();
}

void MpsParser::beginColumn(Field name) {
  ModelInput &linear = model_.linear;
  const int known = columns_.size();
  const int column = columns_.findOrAdd(name);
  const bool fresh = column == known;
  if (fresh) {
    linear.obj.push_back(0);
    linear.lb.push_back(0);
    linear.ub.push_back(kUserInf);
    boundFlags_.push_back(inInteger_ ? unsigned{kMarkerInteger} : 0u);
    if (inInteger_) setType(column, 'I');
    if (inSos_) {
      Sos &set = model_.sos.back();
      set.ind.push_back(column);
      set.weight.push_back(static_cast<double>(set.ind.size()));
    }
  }
  if (!fresh && ordered_) {
    ordered_ = false;
    for (int k = 0; k < known; ++k) runColumn_.push_back(k);
  }
  if (!ordered_) runColumn_.push_back(column);
  linear.a.start.back() = static_cast<NzIndex>(linear.a.index.size());
  linear.a.start.push_back(linear.a.start.back());
  column_ = column;
}

void MpsParser::addEntry(Field rowName, double value) {
  const int row = findRow(rowName);
  if (row < 0) {
    warn("Warning: row name %.*s in column section at line %d not defined.\n",
         static_cast<int>(rowName.size()), rowName.data(), reader_.lineNumber());
    return;
  }
  if (!std::isfinite(value)) failLine();
  if (seenBy_[row] == column_) {
    warn("Warning: duplicate nonzeros for column %s and row %s.\n", columns_.get(column_),
         rows_.get(row));
    return;
  }
  seenBy_[row] = column_;
  const int target = rowTarget_[row];
  if (target >= 0) {
    if (std::fabs(value) <= zeroTol_) {
      smallEntries_ = true;
      return;
    }
    model_.linear.a.index.push_back(target);
    model_.linear.a.value.push_back(value);
  } else if (isObjective(target)) {
    if (multiObjective_)
      model_.objectives[objectiveOf(target)].terms.append(column_, value);
    else
      model_.linear.obj[column_] = value;
  }
}

void MpsParser::parseRhs() {
  rhsSeen_.resize(rows_.size());
  model_.linear.rhs.resize(model_.linear.numConstrs);
  while (nextDataLine()) {
    const int count = splitEntryLine(true);
    for (int k = 1; k < count; k += 2) {
      const Field name = fields_[k];
      const double value = number(fields_[k + 1]);
      const int row = findRow(name);
      if (row < 0) {
        warn("Warning: row name %.*s in rhs section not defined.\n", static_cast<int>(name.size()),
             name.data());
        continue;
      }
      if (rhsSeen_[row]) {
        warn("Warning: duplicate row %s in rhs section.\n", rows_.get(row));
        continue;
      }
      rhsSeen_[row] = 1;
      const int target = rowTarget_[row];
      if (target >= 0)
        model_.linear.rhs[target] = value;
      else if (isObjective(target))
        setObjectiveConstant(target, value);
    }
  }
}

// A right-hand side of an objective is the constant on the other side of the equation.
void MpsParser::setObjectiveConstant(int target, double rhs) {
  if (!std::isfinite(rhs)) failLine();
  const double constant = 0 - rhs;
  if (multiObjective_)
    model_.objectives[objectiveOf(target)].constant = constant;
  else
    model_.linear.objCon = constant;
}

void MpsParser::parseRanges() {
  rangeOf_.resize(model_.linear.numConstrs, -1);
  while (nextDataLine()) {
    const int count = splitEntryLine(true);
    for (int k = 1; k < count; k += 2) addRange(fields_[k], number(fields_[k + 1]));
  }
}

void MpsParser::addRange(Field name, double value) {
  const int row = findRow(name);
  if (row < 0) {
    warn("Warning: range row %.*s isn't defined in row section.\n", static_cast<int>(name.size()),
         name.data());
  } else if (rowTarget_[row] < 0) {
    warn("Warning: range row %s for objective isn't supported.\n", rows_.get(row));
  } else if (rangeOf_[rowTarget_[row]] >= 0) {
    warn("Warning: duplicate range row %s.\n", rows_.get(row));
  } else {
    rangeOf_[rowTarget_[row]] = static_cast<int>(ranges_.size());
    rangeRows_.push_back(rowTarget_[row]);
    ranges_.push_back(value);
  }
}

}  // namespace tarvik

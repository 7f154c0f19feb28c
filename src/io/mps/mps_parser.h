// The state of one reading of an MPS file: a streaming parser that goes through the lines once,
// section by section, and keeps the matrix by columns as the file gives it.
//
// Lines are split at white space. A line that makes no sense that way, but fits the classic
// columns (fields at columns 2, 5, 15, 25, 40 and 50), turns the reader to those columns for the
// rest of the file, so that names with blanks are read in fixed-format files.
#pragma once

#include <string>
#include <string_view>

#include "base/number_format.h"
#include "base/text_reader.h"
#include "io/name_table.h"
#include "io/parsed_model.h"

namespace tarvik {

class MpsParser {
 public:
  MpsParser(Env &env, TextReader &reader);
  ParsedModel parse();

 private:
  using Field = std::string_view;
  static constexpr int kMaxFields = 8;
  static constexpr std::size_t kMaxFieldLength = 499;

  // What a row of the ROWS section becomes; values from 0 on are constraints.
  static constexpr int kDroppedRow = -1;
  static int objectiveRow(int k) { return -2 - k; }
  static bool isObjective(int target) { return target <= -2; }
  static int objectiveOf(int target) { return -2 - target; }

  // What follows the name of a constraint elsewhere in the file.
  enum class Role : char { Linear, Quadratic, Indicator };

  // What a quadratic objective section lists: one triangle, the full matrix, or either.
  enum class QuadForm { Triangle, Full, Either };
  enum class ScenarioPart { None, Name, Obj, Rhs, Bounds };

  enum BoundCode { LO, UP, FX, FR, MI, PL, BV, LI, UI, SC, SI, kNumBoundCodes };

  enum BoundFlag : unsigned { kLowerSet = 1, kUpperSet = 2, kMarkerInteger = 4 };

  // --- lines (mps_lines.cpp) ---
  // The next line that is neither empty nor a comment; false at the end of the file.
  bool nextLine();
  // As nextLine(), but false also at a section header, which is kept for the main loop.
  bool nextDataLine();
  // True when the header line at hand names a section.
  bool isSectionKeyword() const;
  bool isHeader() const { return !isBlank(line_.front()); }
  int splitFree();
  // Cuts the six fields of the classic columns; false when the line does not fit them.
  bool cutFixed(Field (&six)[6]) const;
  bool takeFixedRow();
  int takeFixedEntry();
  int splitRowLine();
  // Splits name, name, number [, name, number]; the count is 3 or 5, or the call fails.
  int splitEntryLine(bool setMayMiss);
  bool numbersFit(int count) const;
  double number(Field field);
  std::string lineText() const;
  [[noreturn]] void failLine();
  [[noreturn]] void fail(const char *logFormat, ...) __attribute__((format(printf, 2, 3)));
  // Fails with a text for the log that says "line %d ...:\n%s\n" and the line's message.
  [[noreturn]] void failAtLine(const char *logFormat);
  [[noreturn]] void failWith(const std::string &message, const char *logFormat, ...)
      __attribute__((format(printf, 3, 4)));
  void warn(const char *format, ...) __attribute__((format(printf, 2, 3)));

  // --- linear sections (mps_parser.cpp) ---
  void parseSection(Field keyword, std::string_view rest);
  void parseObjSense(std::string_view rest);
  void parseLazyRows(Field keyword, std::string_view rest);
  void parseRows(int lazy);
  void addObjectiveRow(int count);
  void parseColumns();
  // Splits a line of COLUMNS and reads its numbers; deals with a marker line and returns 0.
  int splitEntryOrMarker();
  void parseMarker(int count, int at);
  void beginColumn(Field name);
  void addEntry(Field rowName, double value);
  void closeSosMarker();
  void parseRhs();
  void setObjectiveConstant(int target, double rhs);
  void parseRanges();
  void addRange(Field name, double value);
  int findRow(Field name) {
    lastRow_ = rows_.find(name, lastRow_);
    return lastRow_;
  }
  int findColumn(Field name) {
    lastColumn_ = columns_.find(name, lastColumn_);
    return lastColumn_;
  }

  // --- bounds (mps_bounds.cpp) ---
  void parseBounds();
  // The number of a bound type, -1 for none.
  static int boundCode(Field text);
  static bool boundNeedsValue(int code);
  int splitBoundLine(int &code);
  void applyBound(int code, int column, double value);
  void setType(int column, char type);
  void finishBounds();

  // --- quadratic sections, SOS, piecewise-linear objectives (mps_quadratic.cpp) ---
  void parseSos();
  void parseQuadObj(QuadForm form);
  bool hasMirroredPair(QuadTerms terms);
  void parseQcMatrix(std::string_view rest);
  void parseBilinear(std::string_view rest);
  // The quadratic constraint that a row becomes.
  QConstr &beginQuadraticRow(Field name, bool bilinear);
  // Splits column, column, value and fails when the line is no such thing.
  void splitQuadLine(int &i, int &j, double &value, const char *unknownName);
  // Leaves one entry i <= j a pair, with the value of one of its two mirror images.
  void symmetrize(QuadTerms &terms);
  void sortPairs(QuadTerms &terms);
  void parsePwlObj();

  // --- indicators and general constraints (mps_general.cpp) ---
  void parseIndicators();
  void addIndicator();
  void parseGenCons();
  bool isGenHeader() const;
  void beginGenConstr(int count);
  void finishGenConstr();
  void readGenLine(int count);
  void readOperand(Field field);
  void readPwlLine(int count);
  void readFunctionLine(int count);
  void readFunctionOptions(int count);
  void readPower(int count);
  void checkOperands();

  // --- scenarios (mps_scenarios.cpp) ---
  void parseScenarios(std::string_view rest);
  void beginScenario(int count, int expected);
  void beginScenarioPart(ScenarioPart part, const char *name);
  void readScenarioObj(int count);
  void readScenarioRhs(int count);
  void readScenarioBound(int count);

  // --- the end (mps_finish.cpp) ---
  void finish();
  void regroupColumns();
  void addRangeColumns();
  void dropSmallQuadratics();
  void extractRows();
  void checkCounts();

  Env &env_;
  TextReader &reader_;
  const double zeroTol_;
  ParsedModel model_;

  std::string_view line_;
  bool pendingHeader_ = false;
  bool atEnd_ = false;  // behind ENDATA, where no line explains a failure
  bool fixed_ = false;
  Field fields_[kMaxFields];
  double numbers_[2] = {0, 0};

  NameTable rows_, columns_;
  int lastRow_ = -1, lastColumn_ = -1;  // where the last lookup ended
  Vec<int> rowTarget_;                  // per name in rows_
  Vec<int> rowName_;                    // per constraint, its position in rows_
  Vec<int> lazy_;                       // per constraint, or empty
  Vec<Role> role_;                      // per constraint
  Vec<int> roleIndex_;                  // per constraint, its quadratic or general constraint
  bool sawRows_ = false, sawColumns_ = false, sawQuadObj_ = false, sawUserCuts_ = false;
  bool sawLazy_[4] = {false, false, false, false};
  bool warnedObjectiveRows_ = false;
  int numObjectives_ = 0;
  bool multiObjective_ = false;

  // Entries by runs of lines that belong to one column. Runs and columns are the same until a
  // column appears again behind another one; only then runColumn_ is filled.
  int column_ = -1;
  bool ordered_ = true;
  Vec<int> runColumn_;
  Vec<int> seenBy_;  // per name in rows_: the column that had an entry there last
  bool smallEntries_ = false;
  bool inInteger_ = false, inSos_ = false;
  Vec<unsigned> boundFlags_;  // per column
  Vec<unsigned> boundsSeen_;  // per column, one bit a bound type
  std::string boundSet_;
  bool warnedBoundSets_ = false;
  Vec<int> rhsSeen_;  // per name in rows_

  Vec<int> rangeOf_;  // per constraint, its position in ranges_, -1 without
  Vec<int> rangeRows_;
  Vec<double> ranges_;

  int numQuadSections_ = 0;
  Vec<char> pwlSeen_;  // per column

  GenConstr gen_;  // the general constraint that is being read
  std::string genName_;
  bool inGen_ = false, genHasOptions_ = false, genHasVars_ = false, genHasParameter_ = false;
  bool genHasConstant_ = false;
  int lastPower_ = 0;
  Vec<double> powers_;  // of the polynomial's coefficients

  ScenarioPart scenarioPart_ = ScenarioPart::None;
  unsigned scenarioParts_ = 0;    // parts seen of this scenario, one bit each
  Vec<unsigned> scenarioBounds_;  // per column, the bound kinds this scenario gave
  Vec<int> scenarioTouched_;      // the columns with entries in scenarioBounds_
};

}  // namespace tarvik

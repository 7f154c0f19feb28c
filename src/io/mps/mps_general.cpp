// INDICATORS and GENCONS of MPS files.
//
// A general constraint begins with its keyword right behind one blank; its lines are indented
// further. The resultant comes first, on a line with the argument where there are two variables.
#include <cmath>

#include "io/general_keywords.h"
#include "io/mps/mps_parser.h"

namespace tarvik {

void MpsParser::parseIndicators() {
  bool any = false;
  while (nextDataLine()) {
    any = true;
    if (splitFree() != 4) failAtLine("expected indicator constraint");
    if (!equalIgnoringCase(fields_[0], "IF")) {
      fail("Error at line %d, expected indicator keyword 'IF'\n%s\n", reader_.lineNumber(),
           lineText().c_str());
    }
    addIndicator();
  }
  if (!any) warn("Warning: empty indicator section skipped\n");
}

void MpsParser::addIndicator() {
  const Field name = fields_[1];
  const int length = static_cast<int>(name.size());
  const int row = findRow(name);
  const int binary = findColumn(fields_[2]);
  double value = 0;
  if (binary < 0) failAtLine("unknown indicator variable name");
  if (!parseNumber(fields_[3], value) || (value != 0 && value != 1))
    failAtLine("indicator variable value incorrect");
  if (row < 0) {
    warn("Warning: indicator row %.*s isn't defined in row section and will be skipped.\n", length,
         name.data());
    return;
  }
  const int constr = rowTarget_[row];
  if (constr < 0) {
    warn("Warning: indicator row %s for objective isn't supported and will be skipped\n",
         rows_.get(row));
    return;
  }
  if (!rangeOf_.empty() && rangeOf_[constr] >= 0) {
    warn("Warning: range row as indicator row %s not supported and will be skipped\n",
         rows_.get(row));
    return;
  }
  role_.resize(model_.linear.numConstrs, Role::Linear);
  roleIndex_.resize(model_.linear.numConstrs, -1);
  if (role_[constr] != Role::Linear) failAtLine("expected indicator constraint");
  if (!lazy_.empty() && constr < static_cast<int>(lazy_.size()) && lazy_[constr] != 0)
    warn("Warning: indicator constraint %s cannot be lazy (lazyness removed)\n", rows_.get(row));
  role_[constr] = Role::Indicator;
  roleIndex_[constr] = static_cast<int>(model_.genConstrs.size());
  model_.genConstrs.emplace_back();
  GenConstr &g = model_.genConstrs.back();
  g.type = TVK_GENCONSTR_INDICATOR;
  g.resVar = binary;
  g.binVal = value == 1;
  model_.genConstrNames.append(rows_.get(row));
}

bool MpsParser::isGenHeader() const {
  if (generalConstraintType(fields_[0]) < 0) return false;
  return (line_.size() > 1 && !isBlank(line_[1])) || columns_.find(fields_[0]) < 0;
}

void MpsParser::parseGenCons() {
  while (nextDataLine()) {
    const int count = splitFree();
    if (isGenHeader()) {
      finishGenConstr();
      beginGenConstr(count);
    } else if (!inGen_) {
      failAtLine("expected general constraint");
    } else {
      readGenLine(count);
    }
  }
  if (pendingHeader_ && inGen_ && !isSectionKeyword())
    fail(
        "Error at line %d, space at beginning of line in general function constraint section "
        "missing.\n%s\n",
        reader_.lineNumber(), lineText().c_str());
  finishGenConstr();
}

void MpsParser::beginGenConstr(int count) {
  gen_ = GenConstr();
  gen_.type = generalConstraintType(fields_[0]);
  if (gen_.type == TVK_GENCONSTR_INDICATOR)
    failAtLine("parsing general constraint type not implemented");
  int nameAt = 1;
  if (gen_.type == TVK_GENCONSTR_NORM) {
    double order = 0;
    if (count < 2 || !parseNumber(fields_[1], order)) failAtLine("expected general constraint");
    gen_.constant = order >= kUserInf ? kUserInf : order;
    nameAt = 2;
  } else if (gen_.type == TVK_GENCONSTR_MAX) {
    gen_.constant = -kUserInf;
  } else if (gen_.type == TVK_GENCONSTR_MIN) {
    gen_.constant = kUserInf;
  }
  if (count > nameAt + 1) failAtLine("expected general constraint");
  genName_ = count > nameAt ? std::string(fields_[nameAt]) : std::string();
  inGen_ = true;
  genHasOptions_ = genHasVars_ = genHasParameter_ = genHasConstant_ = false;
  powers_.clear();
}

void MpsParser::readGenLine(int count) {
  if (gen_.isFunction())
    readFunctionLine(count);
  else if (gen_.type == TVK_GENCONSTR_PWL)
    readPwlLine(count);
  else
    for (int k = 0; k < count; ++k) readOperand(fields_[k]);
}

void MpsParser::readOperand(Field field) {
  const int column = findColumn(field);
  if (column >= 0) {
    if (gen_.resVar < 0)
      gen_.resVar = column;
    else
      gen_.vars.push_back(column);
    return;
  }
  double value = 0;
  if (!parseNumber(field, value)) failAtLine("unknown variable name");
  if (gen_.resVar < 0)
    failAtLine(
        "general constraint has to start with known resultant variable, not with a constant");
  const bool takesConstant = gen_.type == TVK_GENCONSTR_MAX || gen_.type == TVK_GENCONSTR_MIN;
  if (!takesConstant) {
    fail("Error at line %d, general constraint of type %s does not support constants:\n%s\n",
         reader_.lineNumber(), generalConstraintKeyword(gen_.type), lineText().c_str());
  }
  gen_.constant = gen_.type == TVK_GENCONSTR_MAX ? std::max(gen_.constant, value)
                                                 : std::min(gen_.constant, value);
  genHasConstant_ = genHasConstant_ || std::fabs(value) < kInf;
}

void MpsParser::readPwlLine(int count) {
  if (!genHasVars_) {
    const int y = count == 2 ? findColumn(fields_[0]) : -1;
    const int x = count == 2 ? findColumn(fields_[1]) : -1;
    if (count != 2) failAtLine("expecting two variable");
    if (x < 0 || y < 0) failAtLine("unknown variable name");
    gen_.resVar = y;
    gen_.vars.push_back(x);
    genHasVars_ = true;
    return;
  }
  double x = 0, y = 0;
  if (count != 2 || !parseNumber(fields_[0], x) || !parseNumber(fields_[1], y))
    failAtLine("expecting a pair of values");
  gen_.coef.push_back(x);
  gen_.pwlY.push_back(y);
}

void MpsParser::readFunctionLine(int count) {
  if (!genHasOptions_) {
    readFunctionOptions(count);
    return;
  }
  if (!genHasVars_) {
    if (count != 2) failAtLine("expecting two variable in general function constraint section");
    const int y = findColumn(fields_[0]), x = findColumn(fields_[1]);
    if (x < 0 || y < 0) failAtLine("unknown variable names in general function constraint section");
    gen_.resVar = y;
    gen_.vars.push_back(x);
    genHasVars_ = true;
  } else if (gen_.type == TVK_GENCONSTR_POLY) {
    readPower(count);
  } else if (functionTakesParameter(gen_.type) && !genHasParameter_) {
    if (count != 1 || !parseNumber(fields_[0], gen_.constant))
      failAtLine("expecting function base a");
    genHasParameter_ = true;
  } else {
    failAtLine("expected general constraint");
  }
}

void MpsParser::readFunctionOptions(int count) {
  FuncOptions &o = gen_.options;
  if (count != 6 || !equalIgnoringCase(fields_[0], "Options") ||
      !parseInteger(fields_[1], o.pieces) || !parseNumber(fields_[2], o.length) ||
      !parseNumber(fields_[3], o.error) || !parseNumber(fields_[4], o.ratio) ||
      !parseInteger(fields_[5], o.nonlinear))
    failAtLine("expecting general function options");
  genHasOptions_ = true;
}

void MpsParser::readPower(int count) {
  constexpr int kMaxPower = 10000;
  int power = 0;
  double value = 0;
  if (count != 2 || !parseInteger(fields_[0], power) || power < 0 || power > kMaxPower ||
      !parseNumber(fields_[1], value) || !std::isfinite(value))
    failAtLine(
        "expecting a pair of integer and float for polynom in general function constraint section");
  if (gen_.coef.empty()) {
    gen_.coef.assign(static_cast<std::size_t>(power) + 1, 0.0);
  } else if (power >= lastPower_) {
    failAtLine("wrong term order for polynomial function");
  }
  lastPower_ = power;
  gen_.coef[gen_.coef.size() - 1 - power] = value;
}

void MpsParser::checkOperands() {
  const auto name = genName_.c_str();
  if (gen_.resVar < 0) failAtLine("no variables nor constants read");
  if (gen_.type == TVK_GENCONSTR_ABS) {
    if (gen_.vars.empty()) failAtLine("ABS constraint without argument variable");
    if (gen_.vars.size() > 1) failAtLine("ABS constraint with multiple argument variables");
  }
  const bool extremum = gen_.type == TVK_GENCONSTR_MAX || gen_.type == TVK_GENCONSTR_MIN;
  if (!gen_.vars.empty()) return;
  if (extremum && !genHasConstant_)
    fail("Error, read general MIN or MAX constraint with no operands and no finite constant\n");
  if (extremum)
    warn("Warning: resultant variable of general constraint <%s> depends only on constants\n",
         name);
  else
    warn("Warning: general constraint <%s> has nothing but a resultant variable\n", name);
}

void MpsParser::finishGenConstr() {
  if (!inGen_) return;
  inGen_ = false;
  if (gen_.isFunction()) {
    if (!genHasOptions_) failAtLine("expecting general function options");
    if (!genHasVars_) failAtLine("expecting two variable in general function constraint section");
    if (functionTakesParameter(gen_.type) && !genHasParameter_)
      failAtLine("expecting function base a");
    if (gen_.type == TVK_GENCONSTR_POLY && gen_.coef.empty())
      failAtLine(
          "expecting a pair of integer and float for polynom in general function constraint "
          "section");
  } else if (gen_.type == TVK_GENCONSTR_PWL) {
    if (!genHasVars_) failAtLine("expecting two variable");
    if (gen_.coef.size() < 2)
      fail(
          "Error around line %d, less than 2 points in PWL constraint or missing white space\n%s\n",
          reader_.lineNumber(), lineText().c_str());
  } else {
    checkOperands();
  }
  model_.genConstrs.push_back(std::move(gen_));
  model_.genConstrNames.append(genName_);
}

}  // namespace tarvik

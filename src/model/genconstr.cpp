#include "model/genconstr.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>

#include "model/growth.h"
#include "model/validate.h"

namespace tarvik {

namespace {

constexpr int kMaxPieces = 20000000;
constexpr double kMinPieceLength = 1e-5;
constexpr double kMinPieceError = 1e-6;
constexpr double kSmallCoef = 1e-13;
constexpr std::size_t kMaxItemLength = 50;

[[noreturn]] void invalidOptions(const char *text) {
  throw Error(TVK_ERROR_INVALID_ARGUMENT, "invalid options '%s' for function constraint", text);
}

bool isPrefix(std::string_view key, std::string_view keyword) {
  if (key.empty() || key.size() > keyword.size()) return false;
  for (std::size_t k = 0; k < key.size(); ++k) {
    const char c = key[k];
    if ((c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c) != keyword[k]) return false;
  }
  return true;
}

bool parseNumber(std::string_view text, double &value) {
  if (!text.empty() && text[0] == '+') text.remove_prefix(1);
  const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
  return result.ec == std::errc() && result.ptr == text.data() + text.size() && !std::isnan(value);
}

bool toInteger(double value, int &result) {
  if (std::abs(value) > 2e9 || std::abs(value - std::round(value)) > 1e-10) return false;
  result = static_cast<int>(std::round(value));
  return true;
}

bool applyItem(std::string_view item, FuncOptions &options) {
  const std::size_t equals = item.find('=');
  double value = 0;
  if (equals == std::string_view::npos || item.size() > kMaxItemLength ||
      !parseNumber(item.substr(equals + 1), value)) {
    return false;
  }
  const std::string_view key = item.substr(0, equals);
  if (isPrefix(key, "FUNCPIECES")) return toInteger(value, options.pieces);
  if (isPrefix(key, "FUNCPIECELENGTH")) {
    options.length = value;
  } else if (isPrefix(key, "FUNCPIECEERROR")) {
    options.error = value;
  } else if (isPrefix(key, "FUNCPIECERATIO")) {
    options.ratio = value;
  } else if (isPrefix(key, "FUNCNONLINEAR")) {
    return toInteger(value, options.nonlinear);
  } else {
    return false;
  }
  return true;
}

void checkOptions(Env &env, FuncOptions &options) {
  checkFuncPieces(env, options.pieces);
  if (options.pieces == 1) checkFuncPieceLength(env, options.length);
  if (options.pieces < 0) checkFuncPieceError(env, options.error);
  checkFuncPieceRatio(env, options.ratio);
  checkFuncNonlinear(env, options.nonlinear);
}

void checkBase(const GenConstr &g) {
  const bool isExp = g.type == TVK_GENCONSTR_EXPA, isLog = g.type == TVK_GENCONSTR_LOGA;
  if (isExp || isLog || g.type == TVK_GENCONSTR_POW) checkNoNanValue(g.constant);
  if (isExp && g.constant <= 0) {
    throw Error(TVK_ERROR_INVALID_ARGUMENT,
                "non-positive base for exponential function not supported");
  }
  if (isLog && g.constant <= 0) {
    throw Error(TVK_ERROR_INVALID_ARGUMENT, "non-positive base for log function not supported");
  }
  if (isLog && g.constant == 1)
    throw Error(TVK_ERROR_INVALID_ARGUMENT, "base 1 for log function not supported");
}

void cleanPolynomial(Env &env, Vec<double> &coef) {
  if (coef.empty()) throw Error(TVK_ERROR_INVALID_ARGUMENT, "empty polynomial function");
  checkFinite(coef.data(), coef.size());
  std::size_t lead = 0;
  while (lead + 1 < coef.size() && std::abs(coef[lead]) < kSmallCoef) ++lead;
  if (lead > 0) {
    coef.erase(coef.begin(), coef.begin() + static_cast<std::ptrdiff_t>(lead));
    env.log(
        "Warning: zero or small (< %g) coefficient for the highest term of polynomial function.\n",
        kSmallCoef);
  }
  if (coef.size() < 3) env.log("Warning: no quadratic or higher terms for polynomial function.\n");
}

void checkVariables(const GenConstr &g, int numVars) {
  const auto check = [&](int j) {
    if (j < 0 || j >= numVars) throw Error(TVK_ERROR_INDEX_OUT_OF_RANGE);
  };
  check(g.resVar);
  for (const int j : g.vars) check(j);
}

}  // namespace

void checkFuncPieces(Env &env, int &pieces) {
  if (pieces < -2)
    throw Error(TVK_ERROR_INVALID_ARGUMENT, "FuncPieces < -2 for function constraint");
  if (pieces <= kMaxPieces) return;
  pieces = kMaxPieces;
  env.log("Warning: FuncPieces too large, set to %d\n", kMaxPieces);
}

void checkFuncPieceLength(Env &env, double &length) {
  if (!(length > 0)) {
    throw Error(TVK_ERROR_INVALID_ARGUMENT, "non-positive FuncPieceLen for function constraint");
  }
  if (length >= kMinPieceLength) return;
  length = kMinPieceLength;
  env.log("Warning: FuncPieceLength too small, set to 1E-5\n");
}

void checkFuncPieceError(Env &env, double &error) {
  if (!(error > 0)) {
    throw Error(TVK_ERROR_INVALID_ARGUMENT, "non-postive FuncPieceError for function constraint");
  }
  if (error >= kMinPieceError) return;
  error = kMinPieceError;
  env.log("Warning: FuncPieceError too small, set to 1E-6\n");
}

void checkFuncPieceRatio(Env &, double &ratio) {
  if (ratio == -1 || ratio == -2 || (ratio >= 0 && ratio <= 1)) return;
  throw Error(TVK_ERROR_INVALID_ARGUMENT, "FuncPieceRatio either = -2, -1 or in [0, 1]");
}

void checkFuncNonlinear(Env &, int &nonlinear) {
  if (nonlinear < -1 || nonlinear > 1)
    throw Error(TVK_ERROR_INVALID_ARGUMENT, "FuncNonlinear either = -1, 0 or 1");
}

FuncOptions parseFuncOptions(const char *text) {
  FuncOptions options;
  if (!text) return options;
  constexpr const char *kSpace = " \t\r\n\v\f";
  int numItems = 0;
  for (const char *at = text + std::strspn(text, kSpace); *at; at += std::strspn(at, kSpace)) {
    const std::size_t length = std::strcspn(at, kSpace);
    if (++numItems > 5 || !applyItem({at, length}, options)) invalidOptions(text);
    at += length;
  }
  return options;
}

std::string formatFuncOptions(const FuncOptions &options) {
  const FuncOptions defaults;
  std::string text;
  char number[64];
  const auto add = [&](const char *keyword, double value, double standard) {
    if (value == standard) return;
    const auto end = std::to_chars(number, number + sizeof number, value).ptr;
    if (!text.empty()) text += ' ';
    text.append(keyword).append("=").append(number, end);
  };
  add("FuncPieces", options.pieces, defaults.pieces);
  add("FuncPieceLength", options.length, defaults.length);
  add("FuncPieceError", options.error, defaults.error);
  add("FuncPieceRatio", options.ratio, defaults.ratio);
  add("FuncNonlinear", options.nonlinear, defaults.nonlinear);
  return text;
}

Vec<int> operandList(int count, const int *vars) {
  if (count < 0) throw Error(TVK_ERROR_INVALID_ARGUMENT);
  requireArgument(count == 0 || vars);
  return Vec<int>(vars, vars + count);
}

void addGenConstr(Model &model, GenConstr &&constr, const char *name) {
  const bool named = name && *name && !model.env().get(Int::IgnoreNames);
  if (named) checkName(name);
  model.edit([&](PendingChanges &p) {
    checkVariables(constr, p.currentVars());
    const std::size_t count = p.genConstrs.size();
    makeRoom(p.genConstrs, 1);
    const bool keepNames = named || !p.genConstrNames.empty();
    if (keepNames) {
      p.genConstrNames.reserve(count + 1, std::max(p.genConstrNames.poolBytes(), count) + 1 +
                                              (named ? std::strlen(name) : 0));
    }
    model.checkUpdateMode();

    while (keepNames && p.genConstrNames.size() < static_cast<int>(count))
      p.genConstrNames.append("");
    if (keepNames) p.genConstrNames.append(named ? name : "");
    p.genConstrs.push_back(std::move(constr));
  });
}

void addFuncConstr(Model &model, GenConstr &&constr, const char *options, const char *name) {
  const PendingChanges *p = model.pending();
  checkVariables(constr, p ? p->currentVars() : model.data().numVars());
  constr.options = parseFuncOptions(options);
  checkOptions(model.env(), constr.options);
  checkBase(constr);
  if (constr.type == TVK_GENCONSTR_POLY) cleanPolynomial(model.env(), constr.coef);
  addGenConstr(model, std::move(constr), name);
}

}  // namespace tarvik

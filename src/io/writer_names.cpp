#include "io/writer_names.h"

#include <cstdio>
#include <cstring>

#include "base/text_reader.h"
#include "io/name_table.h"

namespace tarvik {

namespace {

struct KindTexts {
  const char *unnamed;  // with the index
  const char *bad;      // with the name, followed by what is wrong
  const char *word;     // in messages on two constraints
};

constexpr KindTexts kTexts[] = {{"Warning: variable %i doesn't have a name\n",
                                 "Warning: variable name \"%s\" has ", "variable"},
                                {"Warning: constraint %i doesn't have a name\n",
                                 "Warning: constraint name \"%s\" has ", "linear"},
                                {"Warning: Q constraint %i doesn't have a name\n",
                                 "Warning: Q constraint name \"%s\" has ", "quadratic"},
                                {"Warning: general constraint %d doesn't have a name\n",
                                 "Warning: general constraint name \"%s\" has ", "general"}};

std::string_view numbered(std::string &text, const char *word, int number) {
  text = word;
  text += std::to_string(number);
  return text;
}

}  // namespace

WriterNames::WriterNames(Model &model, bool generic, bool constraints)
    : model_(model), data_(model.data()), checked_(!generic) {
  if (generic) {
    check_.varsUsable = check_.constrsUsable = false;
    check_.qconstrsUsable = check_.genConstrsUsable = false;
    return;
  }
  checkVars();
  if (constraints) checkConstrs();
}

const char *WriterNames::nameOf(NameKind kind, int k) {
  switch (kind) {
    case NameKind::Var:
      return model_.varName(k);
    case NameKind::Constr:
      return model_.constrName(k);
    case NameKind::QConstr:
      return model_.qconstrName(k);
    default:
      return model_.genConstrName(k);
  }
}

// No name may hold what separates fields; the first offender is logged.
bool WriterNames::checkTexts(NameKind kind, int count) {
  const KindTexts &texts = kTexts[static_cast<int>(kind)];
  for (const bool colon : {false, true})
    for (int k = 0; k < count; ++k) {
      const char *name = nameOf(kind, k);
      const bool bad = colon ? std::strchr(name, ':') != nullptr : holdsBlank(name);
      if (!bad) continue;
      model_.env().log(texts.bad, name);
      model_.env().log(colon ? "a colon\n" : "a space\n");
      return false;
    }
  return true;
}

void WriterNames::checkVars() {
  const int count = data_.numVars();
  check_.varsUnnamed = count > 0 && data_.varNames.empty();
  if (check_.varsUnnamed) {
    model_.env().log(kTexts[0].unnamed, 0);
    return;
  }
  check_.varsUsable = checkTexts(NameKind::Var, count);
  if (check_.varsUsable) checkUniqueVars();
}

void WriterNames::checkUniqueVars() {
  NameTable table;
  for (int j = 0; j < data_.numVars(); ++j) {
    const int first = table.findOrAdd(model_.varName(j));
    if (first == j) continue;
    model_.env().log("Warning: variables %d and %d have the same name \"%s\"\n", first, j,
                     model_.varName(j));
    check_.varsUsable = false;
    return;
  }
}

void WriterNames::checkConstrs() {
  check_.constrsUnnamed = data_.numConstrs() > 0 && data_.constrNames.empty();
  if (check_.constrsUnnamed)
    model_.env().log(kTexts[1].unnamed, 0);
  else
    check_.constrsUsable = checkTexts(NameKind::Constr, data_.numConstrs());
  check_.qconstrsUsable = checkTexts(NameKind::QConstr, data_.numQConstrs());
  check_.genConstrsUsable = checkTexts(NameKind::GenConstr, data_.numGenConstrs());
  checkUniqueConstrs();
}

// Constraint names must be unique over all kinds; the later kind loses its names.
void WriterNames::checkUniqueConstrs() {
  NameTable table;
  Vec<std::pair<NameKind, int>> owner;
  const auto check = [&](NameKind kind, int count, bool &usable) {
    const bool counted = usable;
    for (int k = 0; counted && k < count; ++k) {
      const char *name = nameOf(kind, k);
      const int first = table.findOrAdd(name);
      if (first == static_cast<int>(owner.size())) {
        owner.emplace_back(kind, k);
      } else if (usable) {
        model_.env().log(
            "Warning: %s constraint %d and %s constraint %d have the same name \"%s\"\n",
            kTexts[static_cast<int>(owner[first].first)].word, owner[first].second,
            kTexts[static_cast<int>(kind)].word, k, name);
        usable = false;
      }
    }
  };
  check(NameKind::Constr, data_.numConstrs(), check_.constrsUsable);
  check(NameKind::QConstr, data_.numQConstrs(), check_.qconstrsUsable);
  check(NameKind::GenConstr, data_.numGenConstrs(), check_.genConstrsUsable);
  // Generic names of one kind might meet own names of another.
  if (!check_.constrsUsable || !check_.qconstrsUsable || !check_.genConstrsUsable)
    check_.constrsUsable = check_.qconstrsUsable = check_.genConstrsUsable = false;
}

void WriterNames::rejectVars(const char *kind, std::string_view name) {
  model_.env().log("Warning: %s name \"%s\" cannot be read back\n", kind,
                   std::string(name).c_str());
  check_.varsUsable = false;
}

void WriterNames::rejectConstrs(const char *kind, std::string_view name) {
  model_.env().log("Warning: %s name \"%s\" cannot be read back\n", kind,
                   std::string(name).c_str());
  check_.constrsUsable = check_.qconstrsUsable = check_.genConstrsUsable = false;
}

int WriterNames::entriesOf(int j) {
  if (quadraticEntries_.empty()) {
    quadraticEntries_.assign(data_.numVars(), 0);
    for (const Vec<int> *side : {&data_.q.row, &data_.q.col})
      for (const int var : *side) ++quadraticEntries_[var];
    for (int k = 0; k < data_.q.count(); ++k)
      if (data_.q.row[k] == data_.q.col[k]) --quadraticEntries_[data_.q.row[k]];
  }
  return data_.a.length(j) + quadraticEntries_[j];
}

std::string_view WriterNames::var(int j) {
  if (check_.varsUsable) return model_.varName(j);
  char text[48];
  if (data_.vtype.empty())
    std::snprintf(text, sizeof text, "x%d", j);
  else
    std::snprintf(text, sizeof text, "%c%d(%d)", data_.vtype[j], j, entriesOf(j));
  return text_[0] = text;
}

std::string_view WriterNames::constr(int i) {
  if (check_.constrsUsable) return model_.constrName(i);
  return numbered(text_[1], "c", i);
}

std::string_view WriterNames::qconstr(int k) {
  if (check_.qconstrsUsable) return model_.qconstrName(k);
  return numbered(text_[2], "qc", k);
}

std::string_view WriterNames::genConstr(int k) {
  if (check_.genConstrsUsable) return model_.genConstrName(k);
  return numbered(text_[3], "gen", k);
}

bool WriterNames::genConstrHasName(int k) const {
  return check_.genConstrsUsable && !data_.genConstrNames.empty() &&
         !data_.genConstrNames.isBlank(k);
}

void WriterNames::announce(const char *what, bool constraints) const {
  const auto tell = [&](bool differs, const char *kind) {
    if (differs) model_.env().log("Warning: default %s names used to write %s file\n", kind, what);
  };
  if (!checked_) return;
  tell(!check_.varsUsable || check_.varsUnnamed, "variable");
  if (!constraints) return;
  tell(!check_.constrsUsable || check_.constrsUnnamed, "constraint");
  tell(!check_.qconstrsUsable, "Q constraint");
}

}  // namespace tarvik

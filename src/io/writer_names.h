// The names that files show for variables and constraints: the model's own when they pass the
// checks of a format that splits at blanks and colons, else generic ones that tell the type and
// the density of a variable at a glance.
#pragma once

#include <string>
#include <string_view>

#include "model/model.h"

namespace tarvik {

enum class NameKind { Var, Constr, QConstr, GenConstr };

// What to check a model's names for; each failing kind is logged with its first problem.
struct NameCheck {
  bool varsUsable = true, constrsUsable = true, qconstrsUsable = true, genConstrsUsable = true;
  // True when a kind has no names at all: default names are used, which is worth a remark only.
  bool varsUnnamed = false, constrsUnnamed = false;
};

class WriterNames {
 public:
  // generic asks for generic names throughout. Otherwise the model's names are checked: those of
  // variables, and with constraints those of all constraint kinds too.
  WriterNames(Model &model, bool generic, bool constraints = true);

  // Each view stays valid until the next call for the same kind.
  std::string_view var(int j);
  std::string_view constr(int i);
  std::string_view qconstr(int k);
  std::string_view genConstr(int k);
  // True when the general constraint has a name of its own to show.
  bool genConstrHasName(int k) const;

  // Generic names from now on, because a format cannot hold this name; the reason is logged.
  void rejectVars(const char *kind, std::string_view name);
  void rejectConstrs(const char *kind, std::string_view name);

  // True when a check failed and names of the model are replaced by generic ones.
  bool replacesVars() const { return checked_ && !check_.varsUsable; }
  bool replacesConstrs() const { return checked_ && !check_.constrsUsable; }
  bool replacesQConstrs() const { return checked_ && !check_.qconstrsUsable; }
  bool replacesGenConstrs() const { return checked_ && !check_.genConstrsUsable; }
  // Logs "Warning: default <kind> names used to write <what> file" for each kind that is written
  // with other names than its own.
  void announce(const char *what, bool constraints = true) const;

 private:
  struct Kind;
  void checkVars();
  void checkConstrs();
  const char *nameOf(NameKind kind, int k);
  bool checkTexts(NameKind kind, int count);
  void checkUniqueVars();
  void checkUniqueConstrs();
  int entriesOf(int j);

  Model &model_;
  const ModelData &data_;
  bool checked_;
  NameCheck check_;
  Vec<int> quadraticEntries_;  // per variable, made when a generic name is asked for
  std::string text_[4];
};

}  // namespace tarvik

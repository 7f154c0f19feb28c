// The parameter table as the library's own code sees it: ids checked at compile time. C++ code
// reads env.get(Dbl::TimeLimit), an array access; names exist at the C boundary only.
#pragma once

#include <cstdint>

namespace tarvik {

// Row numbers in table order; one enum a type, so that a wrong type does not compile.
enum class Param : int {
#define TVK_INT(name, def, min, max, flags) name,
#define TVK_DBL(name, def, min, max, flags) name,
#define TVK_STR(name, def, flags) name,
#define TVK_END_PUBLIC() EndPublic, AfterPublic_ = EndPublic - 1,
#include "env/param_table.def"
#undef TVK_INT
#undef TVK_DBL
#undef TVK_STR
#undef TVK_END_PUBLIC
  Count
};

enum class Int : int {
#define TVK_INT(name, def, min, max, flags) name = static_cast<int>(Param::name),
#define TVK_DBL(name, def, min, max, flags)
#define TVK_STR(name, def, flags)
#define TVK_END_PUBLIC()
#include "env/param_table.def"
#undef TVK_INT
#undef TVK_DBL
#undef TVK_STR
#undef TVK_END_PUBLIC
};

enum class Dbl : int {
#define TVK_INT(name, def, min, max, flags)
#define TVK_DBL(name, def, min, max, flags) name = static_cast<int>(Param::name),
#define TVK_STR(name, def, flags)
#define TVK_END_PUBLIC()
#include "env/param_table.def"
#undef TVK_INT
#undef TVK_DBL
#undef TVK_STR
#undef TVK_END_PUBLIC
};

enum class Str : int {
#define TVK_INT(name, def, min, max, flags)
#define TVK_DBL(name, def, min, max, flags)
#define TVK_STR(name, def, flags) name = static_cast<int>(Param::name),
#define TVK_END_PUBLIC()
#include "env/param_table.def"
#undef TVK_INT
#undef TVK_DBL
#undef TVK_STR
#undef TVK_END_PUBLIC
};

inline constexpr int kNumParams = static_cast<int>(Param::Count);
inline constexpr int kNumPublicParams = static_cast<int>(Param::EndPublic);

}  // namespace tarvik

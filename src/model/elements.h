// Which elements of a kind an access touches: a range, or a list of indices.
#pragma once

namespace tarvik {

struct Elements {
  int first = 0;
  int len = 0;
  const int *list = nullptr;  // when given, first is ignored

  int operator[](int k) const { return list ? list[k] : first + k; }
};

}  // namespace tarvik

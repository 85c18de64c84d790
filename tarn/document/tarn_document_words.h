#pragma once
/// Names that are one in any letter case, as columns and hosts are.

#include <strings.h>

#include <string_view>

namespace tarn {

/// Letters of ASCII count in either case.
inline bool sameWord(std::string_view one, std::string_view other) {
  return one.size() == other.size() && strncasecmp(one.data(), other.data(), one.size()) == 0;
}

}  // namespace tarn

#pragma once

#include <string>

/// Commands that print `size` characters: in lines of 60, or in one.
inline std::string shortLines(long size) {
  return "yes " + std::string(59, 'x') + " | head -c " + std::to_string(size);
}
inline std::string oneLine(long size) {
  return "head -c " + std::to_string(size) + " /dev/zero | tr '\\0' x";
}

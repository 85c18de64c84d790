#pragma once

#include <string>

/// A command that prints `size` characters in lines of a length.
inline std::string output(long size, const char* lineLength) {
  return "head -c " + std::to_string(size) + " /dev/zero | tr '\\0' x | fold -b -w " + lineLength;
}

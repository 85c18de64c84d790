#pragma once
/// The documents that a command line names.

#include <string>
#include <vector>

namespace tarn {

class Console;

/// The names as they were given; a folder stands for the files below it in the order of their names, without
/// those that begin with a dot. A folder that cannot be read is told to the console.
std::vector<std::string> documentsOf(const std::vector<std::string>& names, Console& console);

}  // namespace tarn

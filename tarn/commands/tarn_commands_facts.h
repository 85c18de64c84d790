#pragma once
/// The option --facts of the commands that ask what members mean.

#include <optional>
#include <string>
#include <vector>

#include "tarn/facts/tarn_facts_table.h"

namespace tarn {

class CommandLine;
class Console;

void declareFacts(CommandLine& line, std::vector<std::string>& files);

/// The built-in facts and those of the files. Nothing when one cannot be read or is not in the table's form;
/// the console was told.
std::optional<Facts> loadFacts(const std::vector<std::string>& files, Console& console);

}  // namespace tarn

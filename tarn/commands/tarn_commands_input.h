#pragma once
/// Input that a command needs whole.

#include <optional>
#include <string>

namespace tarn {

class Console;

/// The bytes of a file, or of the console's input for "-". What cannot be read is told the console, and
/// nothing comes back.
std::optional<std::string> readWhole(const std::string& file, Console& console);

}  // namespace tarn

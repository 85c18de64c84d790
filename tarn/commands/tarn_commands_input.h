#pragma once
/// Input that a command needs whole.

#include <optional>
#include <string>

#include "tarn/template/tarn_template_source.h"

namespace tarn {

class Console;

/// The bytes of a file, or of the console's input for "-". What cannot be read is told the console, and
/// nothing comes back.
std::optional<std::string> readWhole(const std::string& file, Console& console);

/// Whether the template has no syntax error. One that has is told as tarn check does.
bool isTemplate(const TemplateSource& source, const std::string& file, Console& console);

}  // namespace tarn

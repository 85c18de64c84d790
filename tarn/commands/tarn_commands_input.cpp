#include "tarn/commands/tarn_commands_input.h"

#include "tarn/commands/tarn_commands_console.h"
#include "tarn/commands/tarn_commands_reading.h"
#include "tarn/template/tarn_template_check.h"

namespace tarn {

std::optional<std::string> readWhole(const std::string& file, Console& console) {
  Source source;
  if (!openSource(console, file, Source::Passes::one, source)) {
    return std::nullopt;
  }
  std::string bytes;
  for (std::string_view block; !(block = nextBlock(console, file, source)).empty();) {
    bytes += block;
  }
  return source.problem() ? std::nullopt : std::optional(std::move(bytes));
}

bool isTemplate(const TemplateSource& source, const std::string& file, Console& console) {
  if (!source.error()) {
    return true;
  }
  for (const Finding& finding : check(source, {})) {
    if (finding.offset == source.error()->offset) {
      console.problem(file, source.place(finding.offset), asText(finding));
    }
  }
  return false;
}

}  // namespace tarn

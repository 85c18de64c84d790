#include "tarn/commands/tarn_commands_input.h"

#include "tarn/commands/tarn_commands_reading.h"

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

}  // namespace tarn

#include <memory>

#include "generator/mirel_generator_template.h"
#include "json/mirel_json_parser.h"
#include "json/mirel_json_value.h"
#include "tarn/commands/tarn_commands_command.h"
#include "tarn/commands/tarn_commands_console.h"
#include "tarn/commands/tarn_commands_line.h"

namespace tarn {

namespace {

struct TemplateOptions {};

Outcome printTemplate(const TemplateOptions&, Console& console) {
  JsonParser parser;
  const std::unique_ptr<Value> root(parser.parse(kDefaultTemplate));
  console.bytes(root->stringify(0).c_str());
  console.bytes("\n");
  return Outcome::nothing;
}

}  // namespace

Command templateCommand() {
  return {.name = "template",
          .sentence = "Print the built-in template, ready to be changed",
          .text = "",
          .examples = {{"tarn template | head -3",
                        "{\n  \"tarn_version\": \"1.1\",\n"
                        "  \"tarn_collection_time\": \"sql value time select CURRENT_TIMESTAMP as time from "
                        "syszent.sysdummy1\","}},
          .bind = bindTo<TemplateOptions>([](CommandLine&, TemplateOptions&) {}, printTemplate)};
}

}  // namespace tarn

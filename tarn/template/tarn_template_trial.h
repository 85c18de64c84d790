#pragma once
/// A run of a template here and now, member by member: what a member gave, and beside it what the document
/// does not say.

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "common/mirel_string.h"
#include "tarn/template/tarn_template_source.h"

class CustomerCollector;
class Value;

namespace tarn {

/// One command and its answer.
struct Attempt {
  std::string pointer;  ///< of the member in the result; empty for the connection
  std::string command;
  const Value* answer = nullptr;  ///< not owned; null where a value has none
  double seconds = 0;
  std::optional<int> status;         ///< exit status of a shell command, 128 and the signal that ended it
  std::optional<std::string> error;  ///< what it wrote to standard error
  std::vector<std::string> diagnostics;
  std::vector<std::string> notes;
};

struct TrialSettings {
  std::string database;
  CustomerCollector* customer;  ///< not owned
};

/// Runs the template, a source without syntax errors, through the core, and tells each command as it is done.
/// The text is that of the document which mirel would write; nothing when memory ran out.
///
/// An interrupt ends the command at work, a second one the program.
std::optional<std::string> tryTemplate(const TemplateSource& source, const TrialSettings& settings,
                                       const std::function<void(const Attempt&)>& tell);

}  // namespace tarn

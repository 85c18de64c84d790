#pragma once
/// What a run of a template would do to the host, in order: the core at work with nobody answering.

#include <functional>
#include <string>

#include "tarn/template/tarn_template_source.h"

namespace tarn {

struct Step {
  const char* kind;     ///< "connect", "sql", "execute" or "read"
  std::string text;     ///< data source, statement, command, or path as the template has it
  std::string pointer;  ///< of the member in the result
  bool implied;         ///< no member says it in so many words
};

/// Nothing is run or opened. With a database's name the connection is taken to succeed. The source has no
/// syntax error. False when memory ran out on the way.
bool plan(const TemplateSource& source, const std::string& database,
          const std::function<void(const Step&)>& tell);

}  // namespace tarn

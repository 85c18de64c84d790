#include <signal.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <cmath>
#include <filesystem>

#include "collectors/mirel_collectors_customer.h"
#include "json/mirel_json_value.h"
#include "platform/services.h"
#include "tarn/commands/tarn_commands_command.h"
#include "tarn/commands/tarn_commands_console.h"
#include "tarn/commands/tarn_commands_input.h"
#include "tarn/commands/tarn_commands_line.h"
#include "tarn/commands/tarn_commands_members.h"
#include "tarn/document/tarn_document_output.h"
#include "tarn/template/tarn_template_trial.h"

namespace tarn {

namespace {

constexpr std::size_t kLinesShown = 10;

struct TryOptions {
  std::string file, database, outfile;
  std::string name, company, email, country, address, telephone, icn;
  bool json = false, watch = false;
};

void appendAnswer(const Value* value, JsonText& json) {
  if (const auto* text = dynamic_cast<const PrimitiveValue*>(value)) {
    json.element(std::string_view(text->text().c_str(), text->text().length()));
  } else if (const auto* array = dynamic_cast<const ArrayValue*>(value)) {
    json.array();
    for (unsigned long index = 0; index < array->size(); ++index) {
      appendAnswer((*array)[index], json);
    }
    json.end();
  } else if (const auto* object = dynamic_cast<const ObjectValue*>(value)) {
    json.object();
    for (const KeyValuePair* const member : object->getValues()) {
      appendAnswer(member->getValue(), json.key(member->getKey().c_str()));
    }
    json.end();
  } else {
    json.element("null");  // as the document has it
  }
}

void appendTexts(const std::vector<std::string>& texts, JsonText& json) {
  json.array();
  for (const std::string& text : texts) {
    json.element(text);
  }
  json.end();
}

using One = const Attempt&;

constexpr Member<Attempt> kMembers[] = {
    {"pointer", "The member's place in the result, a JSON Pointer; \"\" for the connection.",
     [](One one, JsonText& json) { json.element(one.pointer); }},
    {"command", "The command of the template; \"connect NAME\" for the connection.",
     [](One one, JsonText& json) { json.element(one.command); }},
    {"answer", "What stands in the result.", [](One one, JsonText& json) { appendAnswer(one.answer, json); }},
    {"seconds", "How long it took.",
     [](One one, JsonText& json) { json.element(std::round(one.seconds * 1e6) / 1e6); }},
    {"status", "Exit status of the shell command, 128 and the signal that ended it; null for other commands.",
     [](One one, JsonText& json) {
       one.status ? json.element(static_cast<std::uint64_t>(*one.status)) : json.null();
     }},
    {"stderr",
     "What the shell command wrote to standard error, 64 KiB of it at most; null for other commands.",
     [](One one, JsonText& json) { one.error ? json.element(*one.error) : json.null(); }},
    {"diagnostics", "What the driver manager, the driver and the engine said.",
     [](One one, JsonText& json) { appendTexts(one.diagnostics, json); }},
    {"notes",
     "What the answer does not tell: rows, NULLs, values that were cut and what they were, columns there "
     "are, "
     "what tarn check says.",
     [](One one, JsonText& json) { appendTexts(one.notes, json); }},
};

/// The first lines of a text, each indented, and how many are left out.
void showLines(const std::vector<Shown>& lines, Console& console) {
  for (std::size_t index = 0; index < std::min(lines.size(), kLinesShown); ++index) {
    console.line("  " + lines[index]);
  }
  if (lines.size() > kLinesShown) {
    console.line(say("  … {} more", lines.size() - kLinesShown));
  }
}

std::vector<Shown> linesOf(std::string_view text) {
  std::vector<Shown> lines;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    lines.push_back(shownLines(text.substr(0, end)));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return lines;
}

/// A text line by line, rows one a line.
std::vector<Shown> answerLines(const Value* answer) {
  std::vector<Shown> lines;
  if (const auto* text = dynamic_cast<const PrimitiveValue*>(answer)) {
    lines = linesOf(text->text().c_str());
  } else if (const auto* array = dynamic_cast<const ArrayValue*>(answer)) {
    for (unsigned long index = 0; index < array->size(); ++index) {
      JsonText json;
      appendAnswer((*array)[index], json);
      lines.push_back(shown(json.text()));
    }
  } else if (answer != nullptr) {
    JsonText json;
    appendAnswer(answer, json);
    lines.push_back(shown(json.text()));
  } else {
    lines.push_back("null");
  }
  if (lines.empty()) {
    lines.push_back("(empty)");
  }
  return lines;
}

void show(const Attempt& attempt, Console& console) {
  const Shown time = attempt.seconds < 1 ? Shown() : say(" ({:.1f} s)", attempt.seconds);
  const Shown place = attempt.pointer.empty() ? Shown() : shown(attempt.pointer) + ": ";
  console.line(place + shown(attempt.command) + time);
  showLines(answerLines(attempt.answer), console);
  if (attempt.status.value_or(0) != 0) {
    console.line(say("  ! status {}", *attempt.status));
  }
  if (attempt.error) {
    for (const Shown& line : linesOf(*attempt.error)) {
      console.line("  ! standard error: " + line);
    }
  }
  for (const std::string& text : attempt.diagnostics) {
    console.line("  ! " + shown(text));
  }
  for (const std::string& text : attempt.notes) {
    console.line("  - " + shown(text));
  }
}

/// Ends the program silently when nobody reads its output any more, which the platform's handler would keep
/// from happening.
void flushFor(Console& console) {
  struct sigaction before = {};
  struct sigaction action = {};
  action.sa_handler = SIG_DFL;
  sigaction(SIGPIPE, &action, &before);
  console.flush();
  sigaction(SIGPIPE, &before, nullptr);
}

void write(const std::string& document, const TryOptions& options, Console& console) {
  OutputFile output;
  std::optional<std::string> problem = sameFile(options.file, options.outfile)
                                           ? std::optional<std::string>("is the template")
                                           : output.open(options.outfile);
  problem = problem ? problem : output.write(document);
  problem = problem ? problem : output.finish(0600);
  if (problem) {
    console.trouble(options.outfile, shown(*problem));
  }
}

Outcome tryOnce(const TryOptions& options, Console& console) {
  std::optional<std::string> bytes = readWhole(options.file, console);
  if (!bytes) {
    return Outcome::nothing;
  }
  const TemplateSource source(*std::move(bytes));
  if (!isTemplate(source, options.file, console)) {
    return Outcome::something;
  }
  CustomerCollector customer;
  customer.setCustomerInfo(options.name.c_str(), options.company.c_str(), options.email.c_str(),
                           options.country.c_str(), options.address.c_str(), options.telephone.c_str());
  const std::optional<std::string> document =
      tryTemplate(source, {options.database, &customer}, [&](const Attempt& attempt) {
        if (options.json) {
          console.bytes(asJsonLine(kMembers, attempt));
        } else {
          show(attempt, console);
        }
        flushFor(console);
      });
  if (!document) {
    console.trouble("out of memory");
  } else if (!options.outfile.empty()) {
    write(*document, options, console);
  }
  return Outcome::nothing;
}

/// Waits until a file is written or another one takes its name. False when that cannot be waited for.
class FileWatch {
 public:
  explicit FileWatch(const std::filesystem::path& file)
      : m_name(file.filename()), m_queue(inotify_init1(IN_CLOEXEC)) {
    const std::filesystem::path folder = file.has_parent_path() ? file.parent_path() : ".";
    m_isWatching = inotify_add_watch(m_queue, folder.c_str(), IN_CLOSE_WRITE | IN_MOVED_TO) != -1;
  }
  ~FileWatch() { close(m_queue); }
  FileWatch(const FileWatch&) = delete;
  FileWatch& operator=(const FileWatch&) = delete;

  bool wait() {
    while (m_isWatching) {
      alignas(inotify_event) char events[4096];
      const ssize_t length = read(m_queue, events, sizeof events);
      if (length <= 0) {
        return false;
      }
      for (ssize_t at = 0; at < length;) {
        const auto* const event = reinterpret_cast<const inotify_event*>(events + at);
        if (event->len > 0 && m_name == event->name) {
          return true;
        }
        at += static_cast<ssize_t>(sizeof(inotify_event) + event->len);
      }
    }
    return false;
  }

 private:
  std::string m_name;
  int m_queue;
  bool m_isWatching;
};

Outcome tryTemplates(const TryOptions& options, Console& console) {
  ossOneTimeOnly();
  if (!options.watch) {
    return tryOnce(options, console);
  }
  FileWatch saved(options.file);
  do {
    tryOnce(options, console);
    console.flush();
    console.note("waiting for " + shown(options.file) + " to be saved");
  } while (saved.wait());
  console.trouble(options.file, "cannot be watched");
  return Outcome::nothing;
}

void declareOptions(CommandLine& line, TryOptions& options) {
  line.argument("TEMPLATE", options.file, "The template; - is standard input").required().type("FILE");
  line.option("-d,--database", options.database, "Data source to connect to").type("NAME");
  line.option("-o,--outfile", options.outfile, "Write the document that mirel would make").type("FILE");
  line.flag("--json", options.json, "One JSON object a line");
  line.flag("--watch", options.watch, "Run it again each time the file is saved");
  line.option("-n,--name", options.name, "The customer's name").type("TEXT");
  line.option("-c,--company", options.company, "Company").type("TEXT");
  line.option("-e,--email", options.email, "E-mail address").type("TEXT");
  line.option("-r,--country", options.country, "Country").type("TEXT");
  line.option("-a,--address", options.address, "Address").type("TEXT");
  line.option("-t,--telephone", options.telephone, "Telephone number").type("TEXT");
  line.option("-i,--icn", options.icn, "Customer number; no member asks for it").type("TEXT");
}

}  // namespace

Command tryCommand() {
  return {
      .name = "try",
      .sentence = "Run a template here, and show what each member gives and why",
      .text =
          "Runs the commands of the template on this machine, as you, through the core of mirel, and shows "
          "each with its answer. Beside it stands what the document does not say: status and standard "
          "error of a shell command, what the database said of a query, rows, NULLs, values that were "
          "cut with what they were, the columns there are, words that mirel does not know.\n\n"
          "A text of many lines, and an answer of many rows, is shown by its first ten; --json has all. "
          "A member that takes longer than a second says so.\n\n"
          "With -o the document is written, byte for byte the one that mirel would have made.\n\n"
          "Ctrl-C ends the shell command at work, and the run goes on with the next member; the second one "
          "ends the run. A query that the engine is still working on cannot be ended.",
      .examples = {{"echo '{\"a\": \"execute echo hello\", \"b\": \"execute false\"}' | tarn try -",
                    "/a: execute echo hello\n  hello\n/b: execute false\n  (empty)\n  ! status 1"}},
      .lists = {membersList(kMembers)},
      .bind = bindTo(declareOptions, tryTemplates)};
}

}  // namespace tarn

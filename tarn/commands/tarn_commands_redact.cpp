#include <sys/stat.h>
#include <unistd.h>

#include <deque>
#include <set>

#include "tarn/commands/tarn_commands_command.h"
#include "tarn/commands/tarn_commands_console.h"
#include "tarn/commands/tarn_commands_line.h"
#include "tarn/commands/tarn_commands_outputs.h"
#include "tarn/commands/tarn_commands_reading.h"
#include "tarn/redact/tarn_redact_collector.h"
#include "tarn/redact/tarn_redact_mapfile.h"
#include "tarn/redact/tarn_redact_rewriter.h"

namespace tarn {

namespace {

struct RedactOptions {
  std::vector<std::string> files, only, keep, also;
  std::string out, map;
};

RedactKinds kindsOf(const std::vector<std::string>& names) {
  RedactKinds kinds;
  for (const std::string& name : names) {
    kinds.set(indexOf(*redactKindOf(name)));  // the parser takes no other names
  }
  return kinds;
}

RedactKinds wantedKinds(const RedactOptions& options) {
  const RedactKinds all = RedactKinds().set();
  return (options.only.empty() ? all : kindsOf(options.only)) & ~kindsOf(options.keep);
}

/// "12 ipv4, 3 host"
Shown counted(const RedactCounts& counts) {
  Shown text;
  for (const RedactKindRow& row : kRedactKinds) {
    if (const std::uint64_t count = counts[indexOf(row.kind)]; count > 0) {
      text += say("{}{} {}", text.text().empty() ? Shown() : Shown(", "), count, shown(row.name));
    }
  }
  return text.text().empty() ? Shown("nothing") : text;
}

void add(const RedactCounts& more, RedactCounts& counts) {
  for (std::size_t kind = 0; kind < counts.size(); ++kind) {
    counts[kind] += more[kind];
  }
}

/// One call: all files are looked through before one of them is rewritten, and nothing appears before all are
/// done.
class Redaction {
 public:
  Redaction(const RedactOptions& options, Console& console)
      : m_options(options), m_console(console), m_wanted(wantedKinds(options)), m_outputs(console) {}

  Outcome run() {
    const bool ready = m_outputs.open(m_options.files, m_options.out, m_options.map) && loadMap();
    if (!ready || !collectAll() || m_outcome == Outcome::something || !rewriteAll() || !saveMap() ||
        !m_outputs.finish()) {
      return m_outcome;
    }
    m_console.note(say("redacted {}", counted(m_counts)));
    return m_outcome;
  }

 private:
  bool loadMap() {
    if (const auto reason = m_options.map.empty() ? std::nullopt : m_mapFile.load(m_options.map, &m_map)) {
      m_console.trouble(m_options.map, shown(*reason));
      return false;
    }
    for (const RedactMap::Pair& pair : m_map.pairs()) {
      if (pair.kind >= RedactKind::host && m_wanted[indexOf(pair.kind)]) {
        m_words.add(pair.kind, pair.original);
      }
    }
    for (const std::string& word : m_options.also) {
      m_words.add(RedactKind::customer, asInDocument(word));
    }
    return true;
  }

  /// What somebody types, as mirel writes it.
  static std::string asInDocument(std::string_view text) {
    std::string result;
    for (const char byte : text) {
      result += byte == '\\' || byte == '"' ? "\\" : "";
      result += byte;
    }
    return result;
  }

  bool collectAll() {
    for (const std::string& file : m_options.files) {
      if (!collect(file)) {
        return false;
      }
    }
    return true;
  }

  bool collect(const std::string& file) {
    Source& source = m_sources.emplace_back();
    if (!openSource(m_console, file, Source::Passes::several, source)) {
      return false;
    }
    Collector collector(Facts::builtIn(), m_patterns, m_wanted, &m_words, &m_map);
    std::string_view block;
    do {
      block = nextBlock(m_console, file, source);
    } while (!block.empty() && collector.feed(block));
    const Ending ending = collector.finish();
    m_redacted.push_back(collector.redacted());
    m_logs.push_back(collector.takeLog());
    if (!source.problem() && ending.state != State::whole) {
      m_console.problem(file, ending.place, troubleOf(ending));
      m_outcome = Outcome::something;
    }
    return !source.problem();
  }

  bool rewriteAll() {
    for (std::size_t at = 0; at < m_options.files.size(); ++at) {
      if (!rewrite(at, m_options.files[at], m_sources[at], m_outputs.at(at))) {
        return false;
      }
    }
    return true;
  }

  bool rewrite(std::size_t at, const std::string& file, Source& source, Output& output) {
    // What --also names is a customer's, and no form finds any other.
    const RedactKinds wanted = RedactKinds(m_wanted).set(indexOf(RedactKind::customer));
    Rewriter rewriter(m_patterns, m_words, wanted, m_redacted[at], &m_map,
                      [&output](std::string_view bytes) { output.write(bytes); });
    rewriter.replay(m_logs[at]);
    source.rewind();
    for (std::string_view block = nextBlock(m_console, file, source); !block.empty() && !output.problem();
         block = nextBlock(m_console, file, source)) {
      rewriter.feed(block);
    }
    rewriter.finish();
    add(rewriter.counts(), m_counts);
    return !source.problem() && m_outputs.flush(output) && isClean(file, rewriter);
  }

  bool isClean(const std::string& file, const Rewriter& rewriter) {
    if (rewriter.leftOver()) {
      m_console.trouble(file, say("an original is left at byte {} of the output; nothing was written",
                                  *rewriter.leftOver()));
    } else if (rewriter.usedUp()) {
      m_console.trouble(file, "more addresses than there are pseudonyms; nothing was written");
    }
    return !rewriter.leftOver() && !rewriter.usedUp();
  }

  /// Before the documents: one that cannot be restored is worse than a pair too many.
  bool saveMap() {
    const auto reason = m_options.map.empty() ? std::nullopt : m_mapFile.save(m_options.map, m_map);
    if (reason) {
      m_console.trouble(m_options.map, shown(*reason));
    }
    return !reason;
  }

  const RedactOptions& m_options;
  Console& m_console;
  RedactKinds m_wanted;
  const Patterns m_patterns;
  Words m_words;
  RedactMap m_map;
  RedactMapFile m_mapFile;
  std::deque<Source> m_sources;
  std::vector<RedactKinds> m_redacted;  ///< by file
  std::vector<SpanLog> m_logs;          ///< by file
  Outputs m_outputs;
  RedactCounts m_counts = {};
  Outcome m_outcome = Outcome::nothing;
};

Outcome redact(const RedactOptions& options, Console& console) {
  return Redaction(options, console).run();
}

Outcome restore(const RedactOptions& options, Console& console) {
  RedactMap map;
  Outputs outputs(console);
  RedactMapFile mapFile;
  if (const auto reason = mapFile.loadExisting(options.map, &map)) {
    console.trouble(options.map, shown(*reason));
    return Outcome::nothing;
  }
  if (!outputs.open(options.files, options.out, options.map)) {
    return Outcome::nothing;
  }
  const Patterns patterns;
  RedactCounts counts = {};
  std::uint64_t unknown = 0;
  for (std::size_t at = 0; at < options.files.size(); ++at) {
    Source source;
    Output& output = outputs.at(at);
    Restorer restorer(patterns, map, [&output](std::string_view bytes) { output.write(bytes); });
    if (!openSource(console, options.files[at], Source::Passes::one, source)) {
      return Outcome::nothing;
    }
    for (std::string_view block = nextBlock(console, options.files[at], source); !block.empty();
         block = nextBlock(console, options.files[at], source)) {
      restorer.feed(block);
    }
    restorer.finish();
    if (source.problem() || !outputs.flush(output)) {
      return Outcome::nothing;
    }
    add(restorer.counts(), counts);
    unknown += restorer.unknown();
  }
  if (outputs.finish()) {
    console.note(say("restored {}", counted(counts)));
  }
  if (unknown > 0) {
    console.note(say("{} pseudonyms are not in the map and stay", unknown));
  }
  return unknown > 0 ? Outcome::something : Outcome::nothing;
}

void declareFiles(CommandLine& line, RedactOptions& options) {
  line.argument("FILE", options.files, "Documents; - for standard input").type("").required();
  line.option("-o,--output", options.out,
              "File for one document, directory for several; standard output without it")
      .type("OUT");
}

void declareRedact(CommandLine& line, RedactOptions& options) {
  std::set<std::string> names;
  for (const RedactKindRow& row : kRedactKinds) {
    names.emplace(row.name);
  }
  declareFiles(line, options);
  line.option("--map", options.map, "File that keeps originals and pseudonyms from call to call").type("MAP");
  line.option("--only", options.only, "Redact this kind and no other; may be given again")
      .type("KIND")
      .oneOf(names);
  line.option("--keep", options.keep, "Leave this kind as it is; may be given again")
      .type("KIND")
      .oneOf(names);
  line.option("--also", options.also, "Redact this text, too, as a customer's; may be given again")
      .type("TEXT");
}

void declareRestore(CommandLine& line, RedactOptions& options) {
  declareFiles(line, options);
  line.option("--map", options.map, "The map that redact wrote").type("MAP").required();
}

constexpr char kRedactText[] =
    "Writes each document with pseudonyms in the place of host names, account names, the customer's facts, "
    "addresses "
    "and credentials, and with every other byte as it was. A first pass gathers what the documents declare: "
    "the facts "
    "table knows the members that name the host and the customer, and forms like \"HOME=/home/ann\" or "
    "\"PWD=tiger1\" declare the rest. Those words are then found wherever they stand, in keys, URLs and "
    "listings, in "
    "any letter case; addresses and credentials also by their form alone.\n\n"
    "One original has one pseudonym in all documents of a call, and two never share one. Addresses stay "
    "addresses, "
    "and neighbours stay neighbours. With a map the same holds from call to call, and restore can undo it; "
    "without one "
    "nothing is kept. A map tells everything that was hidden: it has mode 0600, and one that others could "
    "read is "
    "refused.\n\n"
    "The outputs are searched for every original before one of them appears, and have mode 0600. What was "
    "replaced is counted "
    "by kind on standard error. When a document is not whole, nothing is written.";

constexpr char kRestoreText[] =
    "Puts the originals of a map back where their pseudonyms stand, so that a document that redact wrote is "
    "again what "
    "it was, byte for byte; it works on other texts that speak of the pseudonyms, too.";

List kindsList() {
  List list = {.title = "Kinds", .type = "KIND", .entries = {}};
  for (const RedactKindRow& row : kRedactKinds) {
    list.entries.push_back({std::string(row.name), std::string(row.sentence)});
  }
  return list;
}

}  // namespace

Command redactCommand() {
  return {.name = "redact",
          .sentence = "Replace what gives hosts, people and secrets away by pseudonyms",
          .text = kRedactText,
          .examples = {{"tarn redact sample.json | jq .customerInfo.email",
                        "tarn: redacted 2 ipv4, 1 ipv6, 1 mac, 1 email, 2 host, 5 user, 3 customer\n"
                        "\"redacted-1@mail.invalid\""},
                       {"tarn redact --only host sample.json | jq .instanceInfo.nodesRaw",
                        "tarn: redacted 2 host\n\"0 redacted-host-1 0\\n\""}},
          .lists = {kindsList()},
          .bind = bindTo<RedactOptions>(declareRedact, redact)};
}

Command restoreCommand() {
  return {.name = "restore",
          .sentence = "Put back what redact has replaced",
          .text = kRestoreText,
          .examples = {{"tarn redact sample.json --map s.map -o r.json && tarn restore r.json --map s.map | "
                        "cmp - sample.json",
                        "tarn: redacted 2 ipv4, 1 ipv6, 1 mac, 1 email, 2 host, 5 user, 3 customer\n"
                        "tarn: restored 2 ipv4, 1 ipv6, 1 mac, 1 email, 2 host, 5 user, 3 customer"}},
          .bind = bindTo<RedactOptions>(declareRestore, restore)};
}

}  // namespace tarn

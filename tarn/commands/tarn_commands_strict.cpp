#include <memory>

#include "tarn/commands/tarn_commands_command.h"
#include "tarn/commands/tarn_commands_console.h"
#include "tarn/commands/tarn_commands_line.h"
#include "tarn/commands/tarn_commands_reading.h"
#include "tarn/document/tarn_document_strict.h"

namespace tarn {

namespace {

struct StrictOptions {
  std::vector<std::string> files;
  bool lines = false, unique = false, mend = false;
};

constexpr char kText[] =
    "Bytes below 0x20 inside strings become \\b, \\t, \\n, \\f, \\r or \\u00xx; what is no UTF-8 becomes "
    "U+FFFD, "
    "one for each maximal subpart; a leading byte order mark goes. Everything else stays byte for byte, and "
    "exactly "
    "one line feed ends the document. So a document without such bytes is unchanged, and strict of strict is "
    "itself.\n\n"
    "A document is read to its end before anything of it is written: of one that is not whole (cut or "
    "damaged) "
    "nothing is, unless --mend asks for every complete member and element, containers closed. Standard input "
    "is "
    "kept in a file without a name meanwhile, in TMPDIR or /tmp. Documents may be of any size.\n\n"
    "With --unique the second member of one name in an object is named NAME#2, the third NAME#3, or the next "
    "number "
    "that is free so far. Names are the same when they are the same in the output, escapes undone. Memory "
    "does "
    "not grow with the document: where objects have more than half a million names at once, all names are "
    "sorted in a file without a name beforehand, 48 bytes for each. Only names of one object that differ in "
    "nothing but numbers behind # at their end are in memory together then, 35 bytes for each.\n\n"
    "An escape of half a surrogate pair, which RFC 8259 allows and several readers refuse, stays as it is; "
    "mirel "
    "writes none.";

using enum Path::Repeated;

constexpr std::string_view kMark = "\xEF\xBB\xBF";

/// What the first pass found.
struct Findings {
  Ending ending;
  bool isStrict = true;
  std::uint64_t names = 0;  ///< most of them at once, where later ones are named anew
  std::uint64_t from = 0;   ///< behind a byte order mark
  std::uint64_t until = 0;  ///< before the line feeds at the end
};

/// Whether a document would be changed, and how many names of open objects there are at most.
class StrictNames : public StrictCheck {
 public:
  bool open(Kind, const Place&) override {
    m_counts.push_back(0);
    return true;
  }
  bool close(Kind, const Place&) override {
    m_now -= m_counts.back();
    m_counts.pop_back();
    return true;
  }
  bool key(const Piece& piece, const Place& place) override {
    if (piece.ends) {
      ++m_counts.back();
      most = std::max(most, ++m_now);
    }
    return StrictCheck::key(piece, place);
  }

  std::uint64_t most = 0;

 private:
  std::vector<std::uint64_t> m_counts;  ///< of the containers that are open
  std::uint64_t m_now = 0;
};

/// Nothing when the file cannot be read.
std::optional<Findings> inspect(Console& console, const std::string& file, Source& source, bool countNames) {
  Findings found;
  StrictCheck check;
  StrictNames names;
  Reader reader(countNames ? names : check);
  std::uint64_t offset = 0;
  bool goOn = true;
  while (goOn) {
    const std::string_view block = nextBlock(console, file, source);
    if (offset == 0 && block.starts_with(kMark)) {
      found.from = kMark.size();
    }
    const std::size_t last = block.find_last_not_of('\n');
    found.until = last == std::string_view::npos ? found.until : offset + last + 1;
    offset += block.size();
    goOn = !block.empty() && reader.feed(block);
  }
  found.ending = reader.finish();
  found.isStrict = check.isStrict() && names.isStrict();
  found.names = names.most;
  return source.problem() ? std::nullopt : std::optional(found);
}

/// What is written behind the last whole value of a document that is not whole, laid out as mirel does where
/// the document has lines.
std::string closersOf(const Ending& ending, bool lines) {
  std::string closers;
  for (std::size_t level = ending.closers.size(); level > 0; --level) {
    closers += lines || ending.place.line == 1 ? "" : "\n" + std::string(2 * (level - 1), ' ');
    closers += ending.closers[ending.closers.size() - level];
  }
  return closers;
}

/// The blocks of the second pass, from one offset to another.
class Part {
 public:
  Part(Console& console, const std::string& file, Source& source, std::uint64_t until)
      : m_console(console), m_file(file), m_source(source), m_until(until) {
    source.rewind();
  }
  /// Offset of the last block.
  std::uint64_t offset() const { return m_offset; }
  std::string_view next() {
    m_offset = m_source.position();
    const std::string_view block =
        m_offset < m_until ? nextBlock(m_console, m_file, m_source).substr(0, m_until - m_offset) : "";
    if (block.empty() && m_offset < m_until && !m_source.problem()) {
      m_console.trouble(m_file, "changed while it was read");
    }
    return block;
  }
  /// What the system copies by itself of the blocks that come next.
  void passOn() { tarn::passOn(m_console, m_file, m_source, m_until); }

 private:
  Console& m_console;
  const std::string& m_file;
  Source& m_source;
  std::uint64_t m_until, m_offset = 0;
};

void copy(Console& console, Part& part, std::uint64_t from) {
  for (std::string_view block = part.next(); !block.empty(); block = part.next()) {
    console.bytes(block.substr(part.offset() == 0 ? from : 0));
    part.passOn();
  }
}

void rewrite(Console& console, Part& part, Path path, const StrictOptions& options, std::uint64_t from) {
  StrictLine line(path);
  StrictLayout layout(path, from);
  StrictWriter* const writer = options.lines ? static_cast<StrictWriter*>(&line) : &layout;
  Reader reader(*writer, path);
  for (std::string_view block = part.next(); !block.empty(); block = part.next()) {
    writer->begin(block, part.offset());
    reader.feed(block);
    writer->end(reader.told());
    console.bytes(writer->out);
    writer->out.clear();
  }
  reader.finish();
  console.bytes(writer->out);
}

void write(Console& console, const std::string& file, Source& source, const StrictOptions& options,
           const Findings& found) {
  const bool whole = found.ending.state == State::whole;
  if (!whole && found.ending.wholeUntil == 0) {
    return;
  }
  std::optional<Repeats> repeats;
  if (found.names > kNamesAtMost) {
    source.rewind();
    repeats = surveyRepeats(console, file, source);
    if (!repeats) {
      return;
    }
  }
  Part part(console, file, source, whole ? found.until : found.ending.wholeUntil);
  if (found.isStrict && !options.lines && !options.unique) {
    copy(console, part, found.from);
  } else {
    rewrite(console, part, repeats ? Path(*repeats) : Path(options.unique ? numbered : ignored), options,
            found.from);
  }
  console.bytes((whole ? "" : closersOf(found.ending, options.lines)) + "\n");
}

/// What the first pass found wrong, with repeated names told apart.
Ending troubleIn(Console& console, const std::string& file, Source& source, Ending found) {
  source.rewind();
  numberedPass(console, file, source, [&](Path& path) {
    DocumentSink nothing;
    Reader reader(nothing, path);
    const PassEnd end = readNumbered(console, file, source, reader, path);
    found = reader.finish();
    return end;
  });
  return found;
}

Outcome strictOne(const StrictOptions& options, const std::string& file, Console& console) {
  Source source;
  const std::optional<Findings> found = openSource(console, file, Source::Passes::several, source)
                                            ? inspect(console, file, source, options.unique)
                                            : std::nullopt;
  if (!found) {
    return Outcome::nothing;
  }
  const bool whole = found->ending.state == State::whole;
  if (!whole) {
    const Ending ending = troubleIn(console, file, source, found->ending);
    console.problem(file, ending.place, troubleOf(ending));
  }
  if (whole || options.mend) {
    write(console, file, source, options, *found);
  }
  return whole ? Outcome::nothing : Outcome::something;
}

Outcome strict(const StrictOptions& options, Console& console) {
  Outcome outcome = Outcome::nothing;
  for (const std::string& file : options.files) {
    outcome = std::max(outcome, strictOne(options, file, console));
  }
  return outcome;
}

void declare(CommandLine& line, StrictOptions& options) {
  options.files = {"-"};
  line.argument("FILE", options.files, "Documents; - or nothing for standard input").type("");
  line.flag("--lines", options.lines, "One line a document, without blanks between its tokens");
  line.flag("--unique", options.unique, "Name later members of one name NAME#2, NAME#3 and so on");
  line.flag("--mend", options.mend, "Of a document that is not whole, write what is");
}

}  // namespace

Command strictCommand() {
  return {.name = "strict",
          .sentence = "Write documents as JSON that every reader takes",
          .text = kText,
          .examples = {{"tarn strict binary.json | jq .rows[0]", "{\n  \"command\": \"\\t\"\n}"},
                       {"tarn strict --mend --lines cut.json | jq -c .databaseInfo[0].bufferpools",
                        "tarn: cut.json:53:31: cut in /databaseInfo/0/bufferpools/0: ends inside an object\n"
                        "[{\"BPNAME\":\"main\",\"BUFFERPOOLID\":\"0\"}]"}},
          .bind = bindTo<StrictOptions>(declare, strict)};
}

}  // namespace tarn

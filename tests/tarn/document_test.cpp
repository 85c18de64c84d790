#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <random>
#include <sstream>

#include "tarn/document/tarn_document_strict.h"
#include "tarn/document/tarn_document_survey.h"
#include "tarn/document/tarn_document_tree.h"
#include "tarn/document/tarn_document_utf8.h"
#include "tests/cases.h"
#include "tests/tarn/session.h"
#include "tests/unit/values.h"

using namespace tarn;

namespace {

std::string at(const Place& place) {
  return std::to_string(place.line) + ":" + std::to_string(place.column) + " ";
}

/// Writes down what a reader tells.
struct Recorder : DocumentSink {
  explicit Recorder(const Path& of) : path(of) {}

  bool open(Kind kind, const Place& place) override {
    events += (kind == Kind::object ? "{" : "[") + at(place);
    return value();
  }
  bool close(Kind kind, const Place& place) override {
    events += (kind == Kind::object ? "}" : "]") + at(place);
    return true;
  }
  bool key(const Piece& piece, const Place& place) override { return part(piece, "", ":" + at(place)); }
  bool text(const Piece& piece, const Place& place) override {
    return part(piece, "\"", "\"" + at(place)) && (!piece.begins || value());
  }
  bool scalar(const Piece& piece, const Place& place) override {
    return part(piece, "", " " + at(place)) && (!piece.begins || value());
  }

  bool value() {
    pointers += path.pointer().empty() ? "" : " " + path.pointer();
    return true;
  }
  bool part(const Piece& piece, const char* quote, const std::string& behind) {
    EXPECT_EQ(piece.plain, piece.raw.find('\\') == piece.raw.npos) << piece.raw;
    EXPECT_TRUE(!piece.ascii ||
                std::all_of(piece.raw.begin(), piece.raw.end(), [](char c) { return c >= ' '; }));
    unfinished = (piece.begins ? quote : unfinished) + std::string(piece.raw);
    if (piece.ends) {
      events += unfinished + behind;
      unfinished.clear();
    } else {
      unfinishedAt = "…" + behind.substr(behind.find_first_of("0123456789"));
    }
    return true;
  }

  const Path& path;
  std::string events, pointers, unfinished, unfinishedAt;
};

struct Reading {
  explicit Reading(std::string_view document, std::size_t block = std::string_view::npos) {
    Reader reader(recorder, path);
    while (!document.empty() && reader.feed(document.substr(0, block))) {
      document.remove_prefix(std::min(block, document.size()));
    }
    ending = reader.finish();
    recorder.events += recorder.unfinished.empty() ? "" : recorder.unfinished + recorder.unfinishedAt;
  }
  std::string told() const {
    const char* const states[] = {"whole ", "cut ", "damaged ", "stopped "};
    return recorder.events + states[static_cast<int>(ending.state)] + at(ending.place) + ending.innermost +
           ": " + ending.problem;
  }

  Path path = Path(Path::Repeated::numbered);
  Recorder recorder = Recorder(path);
  Ending ending;
};

std::string events(const Arguments& words) {
  const std::string told = Reading(words[0]).told();
  for (const std::size_t block : {1UL, 2UL, 3UL, 7UL})
    EXPECT_EQ(told, Reading(words[0], block).told()) << block;
  return told;
}

/// The pointers when repeated names are found on disk, beforehand.
std::string surveyed(std::string_view document) {
  RepeatSurvey survey;
  Reader(survey).feed(document);
  Repeats repeats = survey.finish();
  Path path(repeats);
  Recorder recorder(path);
  Reader(recorder, path).feed(document);
  return recorder.pointers;
}

std::string pointersOf(const Arguments& words) {
  const Tree tree(words[0]);
  std::string all;
  for (const Node& node : tree.nodes()) {
    const std::string pointer = tree.pointer(node);
    EXPECT_EQ(&node, tree.find(pointer)) << pointer;
    all += pointer.empty() ? "" : " " + pointer;
  }
  EXPECT_EQ(all, Reading(words[0], 1).recorder.pointers);
  EXPECT_EQ(all, surveyed(words[0]));
  return all.substr(1);
}

/// A document without byte order mark and line feeds behind it, the layout kept.
std::string rewritten(std::string_view document, std::size_t size) {
  const std::size_t from = document.starts_with("\xEF\xBB\xBF") ? 3 : 0;
  document = document.substr(0, document.find_last_not_of('\n') + 1);
  Path path;
  StrictLayout writer(path, from);
  Reader reader(writer, path);
  for (std::size_t at = 0; at < document.size(); at += size) {
    writer.begin(document.substr(at, size), at);
    reader.feed(document.substr(at, size));
    writer.end(reader.told());
  }
  return writer.out + "\n";
}

/// Strict output is its own strict output, in blocks of any size.
std::string strict(const Arguments& words) {
  std::vector<std::string> line = {"strict"};
  std::istringstream options(words[0]);
  std::copy(std::istream_iterator<std::string>(options), {}, std::back_inserter(line));
  const Session run(line, words[1]);
  const bool whole = Reading(words[1]).ending.state == State::whole;
  EXPECT_EQ(whole ? 0 : 1, run.status) << run.errors;
  EXPECT_EQ(whole, run.errors.empty()) << run.errors;
  EXPECT_EQ(run.output, run.output.empty() ? "" : Session(line, run.output).output);
  for (const std::size_t size : {1UL, 2UL, 3UL, 7UL})
    EXPECT_TRUE(!whole || words[0] != "" || run.output == rewritten(words[1], size))
        << rewritten(words[1], size);
  std::string shown = run.output;
  for (std::size_t found = 0; (found = shown.find(kReplacement)) != shown.npos;)
    shown.replace(found, kReplacement.size(), "<FFFD>");
  return shown;
}

}  // namespace

TEST(Document, ReadsAsItsTableSays) {
  expectCases(MIREL_TARN "/documents.txt", {{"read", events}, {"pointers", pointersOf}, {"strict", strict}});
}

namespace {

/// A tree of texts of any bytes but NUL, half of them short of the characters that count.
class RandomTree {
 public:
  explicit RandomTree(unsigned int seed) : m_random(seed) {}

  std::unique_ptr<Value> value(int depth) {
    if (m_random() % 8 < 3U + static_cast<unsigned int>(depth))
      return std::make_unique<PrimitiveValue>(text());
    if (m_random() % 3 == 0) {
      auto elements = std::make_unique<ArrayValue>();
      for (auto count = m_random() % 4; count > 0; --count)
        elements->push_back(value(depth + 1).release());
      return elements;
    }
    auto members = std::make_unique<ObjectValue>("");
    for (auto count = m_random() % 5; count > 0; --count)
      members->addValue(new KeyValuePair(text(), value(depth + 1).release()));
    return members;
  }

 private:
  mirel_string text() {
    const std::string_view some =
        m_random() % 2 == 0 ? "\\\\nrut\"\"\n\r/\b\xC3\xA9{}[]:, " : "abc\xE2\x82\xAC\xF0";
    std::string bytes;
    for (auto length = m_random() % 40; length > 0; --length)
      bytes += m_random() % 9 == 0 ? static_cast<char>(m_random() % 255 + 1) : some[m_random() % some.size()];
    return {bytes.data(), bytes.size()};
  }

  std::mt19937 m_random;
};

/// As `compact` shows the tree that it was written from.
std::string shownTree(const Tree& tree, const Node& node) {
  const bool isObject = node.kind == NodeKind::object;
  std::string all;
  if (node.kind == NodeKind::text)
    return '"' + std::string(node.text) + '"';
  for (const Node& child : tree.children(node)) {
    all += all.empty() ? "" : ", ";
    all += (isObject ? '"' + std::string(child.key) + "\": " : "") + shownTree(tree, child);
  }
  return (isObject ? '{' : '[') + all + (isObject ? '}' : ']');
}

}  // namespace

TEST(Document, ReadsBackWhatMirelWrites) {
  for (unsigned int seed = 0; seed < 200; ++seed) {
    const std::unique_ptr<Value> written = RandomTree(seed).value(0);
    const std::string document = written->stringify(0).c_str();
    const Tree tree(document);
    ASSERT_EQ(compact(written.get()), shownTree(tree, tree.root())) << document;
  }
}

// Ended at any byte: everything before is told, and what is whole of it closes to a document.
TEST(Document, IsCutAtEveryByte) {
  for (unsigned int seed = 0; seed < 20; ++seed) {
    const std::string document = RandomTree(seed).value(-1)->stringify(0).c_str();
    const Reading whole(document);
    for (std::size_t length = 1; length < document.size(); ++length) {
      const std::string begun = document.substr(0, length);
      const Reading cut(begun);
      const std::string events = cut.recorder.events.substr(0, cut.recorder.events.find("…"));
      ASSERT_EQ(State::cut, cut.ending.state) << begun;
      EXPECT_EQ(length, cut.ending.place.offset);
      EXPECT_TRUE(whole.recorder.events.starts_with(events)) << begun;
      const Reading mended(begun.substr(0, cut.ending.wholeUntil) + cut.ending.closers);
      EXPECT_TRUE(mended.ending.state == State::whole || cut.ending.wholeUntil == 0) << begun;
      EXPECT_TRUE(cut.recorder.pointers.starts_with(mended.recorder.pointers)) << begun;
    }
  }
}

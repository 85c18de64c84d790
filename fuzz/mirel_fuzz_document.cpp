// A document of a stranger, in blocks of any size: what is told of it, the tree, and what becomes of it as
// strict JSON.

#include <algorithm>
#include <string>
#include <string_view>

#include "fuzz/mirel_fuzz.h"
#include "tarn/document/tarn_document_strict.h"
#include "tarn/document/tarn_document_tree.h"

using namespace tarn;

namespace {

/// Writes down all events, whatever pieces they come in.
struct Recorder : DocumentSink {
  bool open(Kind kind, const Place& place) override {
    return tell(kind == Kind::object ? "{" : "[", place.offset);
  }
  bool close(Kind kind, const Place& place) override {
    return tell(kind == Kind::object ? "}" : "]", place.offset);
  }
  bool key(const Piece& piece, const Place&) override { return part(piece, "k"); }
  bool text(const Piece& piece, const Place&) override { return part(piece, "t"); }
  bool scalar(const Piece& piece, const Place&) override { return part(piece, "s"); }

  bool tell(std::string_view what, std::uint64_t offset) {
    events.append(what).append(std::to_string(offset));
    return true;
  }
  bool part(const Piece& piece, const char* what) {
    if (piece.begins) {
      tell(what, piece.offset);
    }
    events.append(piece.raw).append(piece.ends ? "." : "");
    values += piece.ends && *what != 'k' ? 1 : 0;
    return true;
  }
  std::string events;
  std::size_t values = 0;
};

Ending read(std::string_view document, std::size_t block, Path& path, DocumentSink& sink) {
  Reader reader(sink, path);
  auto* const writer = dynamic_cast<StrictWriter*>(&sink);
  std::size_t at = 0;
  for (bool goOn = true; goOn && at < document.size(); at += block) {
    const std::string own(document.substr(at, block));  // nothing may be looked at behind or afterwards
    if (writer != nullptr) {
      writer->begin(own, at);
    }
    goOn = reader.feed(own);
    if (writer != nullptr) {
      writer->end(reader.told());
    }
  }
  return reader.finish();
}

bool same(const Ending& one, const Ending& other) {
  return one.state == other.state && one.place.offset == other.place.offset &&
         one.place.line == other.place.line && one.place.column == other.place.column &&
         one.problem == other.problem && one.innermost == other.innermost &&
         one.wholeUntil == other.wholeUntil && one.closers == other.closers;
}

std::string strict(std::string_view document, std::size_t block, bool lines, bool unique) {
  Path path(unique ? Path::Repeated::numbered : Path::Repeated::ignored);
  StrictLine line(path);
  StrictLayout layout(path, document.starts_with("\xEF\xBB\xBF") ? 3 : 0);
  StrictWriter& writer = lines ? static_cast<StrictWriter&>(line) : layout;
  require(read(document, block, path, writer).state == State::whole, "what was whole is whole");
  return writer.out;
}

void checkStrict(std::string_view document, std::size_t block) {
  for (const bool lines : {false, true}) {
    for (const bool unique : {false, true}) {
      const std::string out = strict(document, block, lines, unique);
      require(out == strict(out, out.size(), lines, unique), "strict of strict is itself");
      StrictCheck check;
      Path path;
      require(read(out, out.size(), path, check).state == State::whole && check.isStrict(), "it is strict");
    }
  }
}

void checkTree(std::string_view document, std::size_t values) {
  const Tree tree{std::string(document)};
  std::size_t found = 0;
  for (const Node& node : tree.nodes()) {
    require(tree.find(tree.pointer(node)) == &node, "a pointer leads to its node");
    found += node.kind == NodeKind::text || node.kind == NodeKind::scalar ? 1 : 0;
  }
  require(found == values, "a node for each value");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) {
    return 0;
  }
  const std::size_t block = data[0] % 16U + 1U;
  const std::string_view document(reinterpret_cast<const char*>(data) + 1, size - 1);
  Path path;
  Recorder whole;
  const Ending ending = read(document, std::max<std::size_t>(1, document.size()), path, whole);
  Path other;
  Recorder blocks;
  require(same(ending, read(document, block, other, blocks)) && whole.events == blocks.events,
          "any blocks do");
  checkTree(document, whole.values);
  const std::string mended = std::string(document.substr(0, ending.wholeUntil)) + ending.closers;
  if (ending.state == State::whole) {
    checkStrict(document, block);
  } else if (ending.wholeUntil > 0) {
    checkStrict(mended, block);
  }
  return 0;
}

#pragma once
/// Where a reader is in its document: the containers that are open and the member or element of each that is
/// being read. A sink that holds the path that its reader was given can ask at any event:
///
///     Path path(Path::Repeated::numbered);
///     MySink sink(path);
///     Reader reader(sink, path);
///     ... bool MySink::text(...) { ... m_path.pointer() ... }
///
/// Within `open`, `close`, `text` and `scalar` the innermost member is the value at hand, within a `key` that
/// has ended the member that it names.

#include <algorithm>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>

#include "tarn/document/tarn_document_names.h"

namespace tarn {

enum class Kind : unsigned char { object, array };

class Repeats;

class Path {
 public:
  /// Whether members of one name are told apart as `NAME#2`, `NAME#3`. It costs a hash of each name, and
  /// memory for each name of the objects that are open, about 35 bytes.
  enum class Repeated { ignored, numbered };
  explicit Path(Repeated repeated = Repeated::ignored) : m_numbered(repeated == Repeated::numbered) {}
  /// The numbers are known from a pass before (tarn_document_survey.h). They are not owned.
  explicit Path(Repeats& known) : m_known(&known) {}

  /// How many containers are open.
  std::size_t depth() const { return m_depth; }
  /// JSON Pointer (RFC 6901) of the innermost member or element that is open; of a name of more than 1,024
  /// bytes its beginning and "…".
  std::string pointer() const;
  /// The name of the innermost member, escapes undone, shortened likewise; empty for an element and the root.
  std::string name() const;
  /// Of the innermost member among those of its name: 2 means `NAME#2`. 1 when it is alone so far, or not
  /// counted.
  std::uint32_t number() const { return m_depth == 0 ? 1 : m_top->number; }
  /// How many names are remembered.
  std::size_t remembered() const { return m_names.size(); }

 private:
  friend class Reader;

  struct Level {
    std::string_view key;     ///< raw; in the reader's block until it is kept
    std::string kept;         ///< where it lies then
    std::uint64_t count = 0;  ///< elements that have begun
    std::uint32_t number = 1;
    Kind kind = Kind::object;
    bool isOpen = false;  ///< a member or element is being read
  };

  void push(Kind kind);
  void pop();
  /// A value begins in the innermost container, and ends.
  void valueBegins() {
    if (m_depth != 0 && m_top->kind == Kind::array) {
      ++m_top->count;
      m_top->isOpen = true;
    }
  }
  void valueEnds() {
    if (m_depth != 0) {
      m_top->isOpen = false;
    }
  }
  /// A key whose raw bytes lie in the block, or a part of one that goes over several; `clean` when its bytes
  /// are its strict text.
  void keyWhole(std::string_view raw, bool clean) {
    m_top->key = raw;
    m_top->isOpen = true;
    m_firstInBlock = std::min(m_firstInBlock, m_depth - 1);
    if (m_numbered) {
      m_hash = NameHash();
      m_hash.addRaw(raw, clean);
    }
    m_top->number = nextNumber();
  }
  void keyPart(std::string_view raw, bool clean, bool begins);
  void keyEnds();
  /// The block goes away: keeps the keys that lie in it.
  void keepKeys();
  std::uint32_t nextNumber();
  std::string nameOf(const Level& level) const;

  std::deque<Level> m_levels;  ///< those from `m_depth` on are spare
  std::size_t m_depth = 0, m_firstInBlock = 0;
  Level* m_top = nullptr;  ///< the innermost
  Names m_names;
  NameHash m_hash;  ///< of the key being read
  bool m_numbered = false;
  Repeats* m_known = nullptr;
};

/// Appends a name as a part of a JSON Pointer: "~" and "/" become "~0" and "~1".
void appendToken(std::string_view name, std::string& pointer);

}  // namespace tarn

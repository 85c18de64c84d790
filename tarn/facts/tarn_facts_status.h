#pragma once
/// What a document is, and what is silent in it: counted as it is read, in memory that does not grow with it.
///
/// A member is asked when its value is a text or an array. Objects are looked into, and so are arrays that
/// the facts call containers and arrays that hold an object with a member that is no text: they do not count
/// themselves. A member is silent when it is "null", "", an empty array or an empty object.

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tarn/document/tarn_document_reader.h"
#include "tarn/document/tarn_document_strict.h"
#include "tarn/facts/tarn_facts_silent.h"
#include "tarn/facts/tarn_facts_table.h"

namespace tarn {

/// What of the document plays a role, nothing where no member does or none of them answered.
class Roles {
 public:
  /// The fact that the table has first wins. Blanks and line feeds at the end of a text go.
  void offer(const Fact& fact, std::string_view text);
  const std::optional<std::string>& operator[](Role role) const { return at(role).text; }

 private:
  struct Player {
    const Fact* fact = nullptr;
    std::optional<std::string> text;
  };
  const Player& at(Role role) const { return m_players[static_cast<std::size_t>(role)]; }

  std::array<Player, 6> m_players;
};

/// Why a member is silent, as far as its fact, which may be null, tells.
std::string reasonOf(const Fact* fact, Silence silence);

class StatusSink : public DocumentSink {
 public:
  /// The path has to be the reader's, and to number repeated names.
  StatusSink(const Facts& facts, const Path& path) : m_facts(facts), m_path(path) {}

  bool open(Kind kind, const Place& place) override;
  bool close(Kind kind, const Place& place) override;
  bool key(const Piece& piece, const Place& place) override;
  bool text(const Piece& piece, const Place& place) override;
  bool scalar(const Piece& piece, const Place& place) override;
  /// The document is over: counts what it left open.
  void finish();

  std::uint64_t asked() const { return m_counts.asked; }
  std::uint64_t answered() const { return m_counts.answered; }
  const SilentMembers& silent() const { return m_silent; }
  /// Pointers of the members whose name stood before in their object.
  const SilentMembers& repeated() const { return m_repeated; }
  const Roles& roles() const { return m_roles; }
  /// Whether the strings are strict JSON.
  bool isStrict() const { return m_strict.isStrict(); }
  /// Whether the root is an object that holds a text, an array or an object.
  bool isDocument() const { return m_isDocument; }

 private:
  struct Counts {
    std::uint64_t asked = 0, answered = 0;
  };
  /// A container that is open.
  struct Level {
    Kind kind;
    Facts::Step step;
    bool isMember;         ///< of an object
    bool isLookedInto;     ///< rather than counted as one
    bool hasMore = false;  ///< of an object: a member that is no text
    bool isEmpty = true;
    Counts counts = {};        ///< of what it holds
    std::uint64_t silentFrom;  ///< where its silent members begin
  };

  enum class Value : unsigned char { text, scalar, container };

  bool inObject() const { return !m_levels.empty() && m_levels.back().kind == Kind::object; }
  Counts& counts() { return m_levels.empty() ? m_counts : m_levels.back().counts; }
  Facts::Step stepHere() const;
  /// A value stands in the innermost container.
  void begin(Value value);
  void ask(std::optional<Silence> silence);
  void leave(bool isClosed);
  void play();

  const Facts& m_facts;
  const Path& m_path;
  StrictCheck m_strict;
  std::vector<Level> m_levels;
  Counts m_counts;
  std::string m_text;  ///< the beginning of the text that is being read
  SilentMembers m_silent, m_repeated;
  Roles m_roles;
  bool m_isDocument = false;
};

}  // namespace tarn

#pragma once
/// Finds out before a document is read which of its members have a name that another one before them has, and
/// which number each gets, in memory that does not grow with the document: all names are sorted on disk, 48
/// bytes for each.
///
///     RepeatSurvey survey;
///     Reader first(survey);
///     ...
///     Repeats repeats = survey.finish();
///     Path path(repeats);
///     Reader second(sink, path);
///
/// Names that differ in nothing but numbers behind "#" at their end ("a", "a#2", "a#2#3") decide together who
/// is called what, so those of one object are in memory at once, about 35 bytes for each.

#include "tarn/document/tarn_document_reader.h"
#include "tarn/document/tarn_document_sorter.h"

namespace tarn {

/// The numbers of the members of a document, one after the other.
class Repeats {
 public:
  void add(std::uint64_t ordinal, std::uint32_t number) { m_repeats.add({ordinal, number}); }
  /// All were added.
  void sort();
  /// The number of the member that comes next in the document, 1 for the first of its name.
  std::uint32_t next();
  /// Whether they could not be kept in a temporary file: the numbers are wrong then.
  bool lost() const { return m_lost || m_repeats.lost(); }
  void lose() { m_lost = true; }

 private:
  struct Repeat {
    std::uint64_t ordinal;
    std::uint32_t number;
    bool operator<(const Repeat& other) const { return ordinal < other.ordinal; }
  };

  Sorter<Repeat> m_repeats;
  const Repeat* m_next = nullptr;
  std::uint64_t m_ordinal = 0;
  bool m_lost = false;
};

class RepeatSurvey : public DocumentSink {
 public:
  bool open(Kind kind, const Place& place) override;
  bool close(Kind kind, const Place& place) override;
  bool key(const Piece& piece, const Place& place) override;
  /// The document is over.
  Repeats finish();

 private:
  /// A member. Those of one object whose names can meet follow each other, in the document's order.
  struct Member {
    std::array<std::uint64_t, 2> root;
    std::uint64_t ordinal;
    NameId name;
    bool operator<(const Member& other) const {
      return root != other.root ? root < other.root : ordinal < other.ordinal;
    }
  };

  Sorter<Member> m_members;
  std::uint64_t m_count = 0, m_objects = 0;  ///< so far
  std::vector<std::uint64_t> m_open;         ///< which objects are
  NameHash m_hash;
};

}  // namespace tarn

#pragma once
/// Tells the members of one name in an object apart: the first keeps it, a later one is `NAME#2` or the next
/// number whose name is free so far, be it that a member was called that.
///
/// Names are told apart by hashes under a key of the process (SipHash), so that nobody can make two names
/// meet. `Names` remembers those of the objects that are open, 64 bits of each; where memory must not grow
/// with the document, tarn_document_survey.h does the same beforehand, on disk.

#include <array>
#include <cstdint>
#include <string_view>
#include <vector>

#include "tarn/document/tarn_document_siphash.h"

namespace tarn {

/// As many names of open objects as a pass may remember whose memory is bounded: about 20 MB of them.
constexpr std::size_t kNamesAtMost = 1 << 19;

/// SipHash-1-3 under the key of the process, of texts that follow a seed.
class KeyedHash : public SipHash<1, 3> {
 public:
  explicit KeyedHash(std::uint64_t seed);
};

/// Stands for a name. One that ends in "#NUMBER", from 2 on, may be met by a number that is given to a later
/// member of the name before it.
struct NameId {
  std::uint64_t id = 0;
  std::uint64_t base = 0;    ///< stands for the name before "#NUMBER"
  std::uint32_t number = 0;  ///< 0: no such end
};

/// Makes one of a name that comes in parts.
class NameHash {
 public:
  /// Names under different seeds are different.
  explicit NameHash(std::uint64_t seed = 0) : m_text(seed) {}
  /// Raw bytes between the quotes; `clean` when they are their strict text. Names are the same when they will
  /// be once they are written strictly.
  void addRaw(std::string_view raw, bool clean);
  void add(std::string_view text);
  NameId value() const;
  /// Stands for what is before all numbers at the end: "a" of "a#2#3". Only names that have it in common
  /// meet.
  std::array<std::uint64_t, 2> root() const { return isNumbered() ? m_root : m_text.wide(); }

 private:
  void follow(char byte);
  bool isNumbered() const { return m_inNumber && m_number > 1; }

  KeyedHash m_text;
  bool m_inNumber = false;     ///< behind a '#' there are only digits so far
  std::uint32_t m_number = 0;  ///< what they are
  std::uint64_t m_base = 0;    ///< stands for what is before that '#'
  std::array<std::uint64_t, 2> m_root = {};
};

class Names {
 public:
  /// An object begins, or ends.
  void open();
  void close();
  /// The number of the next member of the innermost object, 1 for the first of its name.
  std::uint32_t numberOf(const NameId& name);
  /// How many names are remembered.
  std::size_t size() const { return m_entries.size(); }

 private:
  struct Entry {
    std::uint64_t id;
    std::uint32_t last;  ///< number given under this name; all before are taken
  };

  Entry* find(std::uint64_t id);
  bool wasGiven(const NameId& name);
  void insert(std::uint64_t id);
  void place(std::uint32_t entry);
  void grow();

  std::vector<Entry> m_entries;        ///< of all open objects, the innermost last
  std::vector<std::size_t> m_objects;  ///< where the entries of each begin
  std::vector<std::uint32_t> m_slots;  ///< 1 + index of an entry, at its id or behind; 0: free
};

}  // namespace tarn

#pragma once
/// Tells the members of one name in an object apart: the first keeps it, a later one is `NAME#2` or the next
/// number whose name is free so far, be it that a member was called that.
///
/// Names are remembered by a 64-bit hash under a key of the process (SipHash), about 35 bytes for each name
/// of the objects that are open: nobody can make two names meet, and chance does so once in a hundred
/// thousand objects of ten million members.

#include <cstdint>
#include <string_view>
#include <vector>

#include "tarn/document/tarn_document_siphash.h"

namespace tarn {

/// SipHash-1-3 under the key of the process.
class NameHash : public SipHash<1, 3> {
 public:
  NameHash();
};

class Names {
 public:
  /// An object begins, or ends.
  void open();
  void close();
  /// The number of the next member of the innermost object, 1 for the first of its name.
  std::uint32_t numberOf(const NameHash& name);

 private:
  struct Entry {
    std::uint64_t hash;
    std::uint32_t last;  ///< number given under this name
  };

  Entry* find(std::uint64_t hash);
  void insert(std::uint64_t hash);
  void place(std::uint32_t entry);
  void grow();

  std::vector<Entry> m_entries;        ///< of all open objects, the innermost last
  std::vector<std::size_t> m_objects;  ///< where the entries of each begin
  std::vector<std::uint32_t> m_slots;  ///< 1 + index of an entry, at its hash or behind; 0: free
};

}  // namespace tarn

#pragma once
/// A document as places and values.
///
/// Every text and every scalar is a fact, and so is a container that is empty (`[]`, `{}`). Rows of an array
/// have names: by the columns that the facts table gives, else by the one that TARN_OBJECTIFY speaks of, else
/// by all their texts and scalars that do not change by themselves. A row whose name stood in its array
/// before gets `#2` behind it, or the next number that is free. An element that is a text or a scalar is
/// named by itself, `[=VALUE]`; arrays within arrays, and rows without a name of the table's in what changes
/// by itself, go by number.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tarn/document/tarn_document_tree.h"
#include "tarn/fleet/load/tarn_fleet_places.h"

namespace tarn {

struct FlatFact {
  const KnownPlace* place = nullptr;
  std::uint64_t value = 0;             ///< sipHash of the value
  std::size_t offset = 0, length = 0;  ///< of the value in `FlatDocument::texts`
};

/// Places live as long as those that they came from.
struct FlatDocument {
  std::vector<FlatFact> facts, latest;    ///< `latest`: what changes by itself
  std::vector<const KnownPlace*> scopes;  ///< each once
  std::string texts;

  std::string_view valueOf(const FlatFact& fact) const {
    return std::string_view(texts).substr(fact.offset, fact.length);
  }
};

/// Of a tree that is not empty. What it gives for a document depends on nothing but the document and the
/// facts; `places` remembers what documents have in common.
FlatDocument flattened(const Tree& tree, FleetPlaces& places);

}  // namespace tarn

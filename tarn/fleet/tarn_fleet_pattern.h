#pragma once
/// A pointer as people write it, for the places of the database: elements by number, by `*` or by name.

#include <string>
#include <string_view>

namespace tarn {

struct PlacePattern {
  /// With `*` for every element: what `FleetPlace::pointer` has to be. `*` alone: any.
  std::string pointer;
  /// What `FleetPlace::text` has to be, for SQLite's GLOB and for LIKE with a backslash before what it would
  /// take for its own: `*` and `%` when no element has a name.
  std::string glob, like;
};

/// `/databaseInfo/0/bufferpools[BPNAME=main]/NPAGES`: buffer pools of that name, of any database.
PlacePattern placePattern(std::string_view pointer);

}  // namespace tarn

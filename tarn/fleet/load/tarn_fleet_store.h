#pragma once
/// The files of a store, and the documents in them. A store is only read.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tarn {

/// A document's file: `*.json`, or `*.json.zst`, which is compressed by zstd.
struct StoreFile {
  std::string path;  ///< absolute
  std::uint64_t size = 0;
  std::int64_t seen = 0;  ///< tells path, size and time of the last change
};

/// What could not be read, and why, in the system's words.
struct StoreTrouble {
  std::string path, text;
};

/// Goes through stores in the order of their names, so that days come one behind the other. Names that begin
/// with a dot and folders called "incoming" are left out; links to folders are not followed. A store may be a
/// single file. Keeps the names of the folders at hand, not more.
class StoreWalk {
 public:
  explicit StoreWalk(const std::vector<std::string>& stores);

  /// Nothing when there is no further one.
  std::optional<StoreFile> next();
  /// What could not be read since the last call.
  std::vector<StoreTrouble> takeTroubles();

 private:
  void open(const std::string& path);
  void list(const std::string& folder);

  std::vector<std::string> m_waiting;  ///< the next one last; folders end in a slash
  std::vector<StoreTrouble> m_troubles;
};

/// Whether a file is there.
bool isThere(const std::string& path);

/// The most that a document may have.
constexpr std::size_t kLargestDocument = 64 << 20;

/// What a file holds.
struct StoreBytes {
  std::string bytes;       ///< of a large document its beginning; of damaged ones those of the file
  bool isLarge = false;    ///< more than `kLargestDocument`: not read further
  bool isDamaged = false;  ///< compressed, and not whole
  std::optional<std::string> problem;  ///< the system's, when it cannot be read
};
StoreBytes readStoreFile(const StoreFile& file);

}  // namespace tarn

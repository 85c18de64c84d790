#pragma once
/// A map's file: read, and replaced as a whole. It tells everything that redaction hides, so it has mode
/// 0600, and one that others could have read or written is refused.
///
/// One JSON object a line with the members `kind`, `original`, `pseudonym`. Originals are as they stand in
/// documents, with JSON's escapes; a byte that is no UTF-8 is `\xNN` there, which is no escape of JSON's.

#include <sys/stat.h>

#include <optional>
#include <string>

#include "tarn/redact/tarn_redact_map.h"

namespace tarn {

class RedactMapFile {
 public:
  /// Messages in our own words or the system's when something fails. No file yet is an empty map.
  std::optional<std::string> load(const std::string& path, RedactMap* map);
  /// The same for one that has to be there.
  std::optional<std::string> loadExisting(const std::string& path, RedactMap* map);
  /// Refuses when the file is not the one that was loaded any more: pairs of another call would be lost.
  std::optional<std::string> save(const std::string& path, const RedactMap& map) const;

 private:
  struct stat m_loaded = {};  ///< zeros while there is no file
};

}  // namespace tarn

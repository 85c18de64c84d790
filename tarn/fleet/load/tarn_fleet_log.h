#pragma once
/// What the collection server's access log tells of the documents that it stored: who sent them, and when.
///
/// Lines are in the form `exchange` of deploy/collection-server/nginx.conf; others are passed over.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace tarn {

class ExchangeLog {
 public:
  struct Entry {
    std::int64_t seconds = 0;
    std::string host;  ///< of the Host header, without its port; empty when it is none
  };

  /// Reads a file, which may be compressed. A sentence when that fails.
  std::optional<std::string> add(const std::string& file);
  void addLine(std::string_view line);
  /// The entry of a request by its ID, which is a part of the stored file's name. Null when there is none.
  const Entry* find(std::string_view request) const;

 private:
  std::unordered_map<std::string, Entry> m_entries;
};

/// Whether two names can be one host's: letter case counts for nothing, and a name without a domain agrees
/// with one that has one.
bool isSameHost(std::string_view one, std::string_view other);

}  // namespace tarn

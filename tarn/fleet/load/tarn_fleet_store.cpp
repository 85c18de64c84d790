#include "tarn/fleet/load/tarn_fleet_store.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <utility>

#include "tarn/document/tarn_document_siphash.h"
#include "tarn/fleet/load/tarn_fleet_zstd.h"

namespace tarn {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view kCompressed = ".zst";

bool isDocument(std::string_view name) {
  return name.ends_with(".json") || name.ends_with(".json.zst");
}

bool isLeftOut(std::string_view name) {
  return name.starts_with('.') || name == "incoming";
}

std::string absolute(const std::string& path) {
  std::error_code failed;
  const fs::path found = fs::absolute(path, failed).lexically_normal();
  return failed ? path : found.native();
}

std::int64_t seenOf(const std::string& path, const struct stat& about) {
  return static_cast<std::int64_t>(
      sipHash(fmt::format("{} {} {} {}", about.st_size, about.st_mtim.tv_sec, about.st_mtim.tv_nsec, path)));
}

/// Reads on until the end, or until so many bytes are there.
std::optional<std::string> readAtMost(int descriptor, std::size_t most, std::string* bytes) {
  constexpr std::size_t kBlock = 256 << 10;
  std::size_t length = 0;
  while (length < most) {
    bytes->resize(std::min(most, std::max(bytes->capacity(), length + kBlock)));
    const ssize_t count = read(descriptor, bytes->data() + length, bytes->size() - length);
    if (count < 0 && errno != EINTR) {
      return strerror(errno);
    }
    length += static_cast<std::size_t>(std::max<ssize_t>(count, 0));
    if (count == 0) {
      break;
    }
  }
  bytes->resize(length);
  return std::nullopt;
}

/// What the frames hold, at most one byte more than a document may have. Nothing when they are not whole.
std::optional<std::string> decompressed(const std::string& bytes) {
  ZstdReader reader;
  std::string out;
  const bool isGood = reader.add(bytes, [&out](std::string_view piece) {
    out += piece.substr(0, kLargestDocument + 1 - out.size());
    return out.size() <= kLargestDocument;
  });
  const bool isWhole = reader.isWhole() || out.size() > kLargestDocument;
  return isGood && isWhole ? std::optional(std::move(out)) : std::nullopt;
}

}  // namespace

StoreWalk::StoreWalk(const std::vector<std::string>& stores) {
  for (auto store = stores.rbegin(); store != stores.rend(); ++store) {
    open(*store);
  }
}

/// What is named is taken whatever its name is.
void StoreWalk::open(const std::string& path) {
  std::error_code failed;
  const bool isFolder = fs::is_directory(path, failed);
  m_waiting.push_back(absolute(path));
  if (isFolder && !m_waiting.back().ends_with('/')) {
    m_waiting.back() += '/';
  }
}

void StoreWalk::list(const std::string& folder) {
  const auto first = static_cast<std::ptrdiff_t>(m_waiting.size());
  std::error_code failed;
  for (fs::directory_iterator entry(folder, failed); !failed && entry != fs::directory_iterator();
       entry.increment(failed)) {
    const std::string name = entry->path().filename().native();
    std::error_code unknown;
    const bool isFolder = entry->symlink_status(unknown).type() == fs::file_type::directory;
    if (!isLeftOut(name) && (isFolder || isDocument(name))) {
      m_waiting.push_back(folder + name + (isFolder ? "/" : ""));
    }
  }
  if (failed) {
    m_troubles.push_back({folder, failed.message()});
  }
  std::sort(m_waiting.begin() + first, m_waiting.end(), std::greater<>());
}

std::optional<StoreFile> StoreWalk::next() {
  while (!m_waiting.empty()) {
    StoreFile file = {std::move(m_waiting.back())};
    m_waiting.pop_back();
    struct stat about = {};
    if (file.path.ends_with('/')) {
      list(file.path);
    } else if (stat(file.path.c_str(), &about) != 0) {
      m_troubles.push_back({file.path, strerror(errno)});
    } else if (S_ISREG(about.st_mode)) {
      file.size = static_cast<std::uint64_t>(about.st_size);
      file.seen = seenOf(file.path, about);
      return file;
    }
  }
  return std::nullopt;
}

std::vector<StoreTrouble> StoreWalk::takeTroubles() {
  return std::exchange(m_troubles, {});
}

bool isThere(const std::string& path) {
  return access(path.c_str(), F_OK) == 0;
}

StoreBytes readStoreFile(const StoreFile& file) {
  StoreBytes result;
  const int descriptor = ::open(file.path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
  if (descriptor == -1) {
    result.problem = strerror(errno);
    return result;
  }
  constexpr std::size_t kBeginning = 1 << 20;  // of what is too large
  result.isLarge = file.size > kLargestDocument;
  result.bytes.reserve(std::min<std::uint64_t>(file.size, kLargestDocument) + 1);
  result.problem = readAtMost(descriptor, result.isLarge ? kBeginning : kLargestDocument, &result.bytes);
  close(descriptor);
  if (result.isLarge || result.problem || !file.path.ends_with(kCompressed)) {
    return result;
  }
  if (std::optional<std::string> plain = decompressed(result.bytes)) {
    result.isLarge = plain->size() > kLargestDocument;
    plain->resize(std::min(plain->size(), result.isLarge ? kBeginning : plain->size()));
    result.bytes = *std::move(plain);
  } else {
    result.isDamaged = true;
  }
  return result;
}

}  // namespace tarn

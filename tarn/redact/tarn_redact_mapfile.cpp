#include "tarn/redact/tarn_redact_mapfile.h"

#include <fmt/format.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>

#include "tarn/document/tarn_document_json.h"
#include "tarn/document/tarn_document_output.h"
#include "tarn/document/tarn_document_tree.h"
#include "tarn/document/tarn_document_utf8.h"

namespace tarn {

namespace {

constexpr std::size_t kBlock = 64 << 10;

/// For the file: bytes that are no UTF-8 as `\xNN`.
std::string printable(std::string_view original) {
  std::string text;
  while (!original.empty()) {
    const Utf8 next = nextUtf8(original);
    for (const char byte : original.substr(0, next.length)) {
      text += next.valid ? std::string(1, byte) : fmt::format("\\x{:02x}", static_cast<unsigned char>(byte));
    }
    original.remove_prefix(next.length);
  }
  return text;
}

std::string fromPrintable(std::string_view text) {
  std::string original;
  while (!text.empty()) {
    if (text.size() >= 4 && text.starts_with("\\x")) {
      original += static_cast<char>(strtoul(std::string(text.substr(2, 2)).c_str(), nullptr, 16));
      text.remove_prefix(4);
    } else {
      const std::size_t length = text.size() > 1 && text[0] == '\\' ? 2 : 1;
      original += text.substr(0, length);
      text.remove_prefix(length);
    }
  }
  return original;
}

std::optional<std::string> whyNotTrusted(const struct stat& file) {
  if (!S_ISREG(file.st_mode)) {
    return "not an ordinary file";
  }
  if (file.st_uid != geteuid()) {
    return "belongs to another user";
  }
  return (file.st_mode & 077) == 0
             ? std::nullopt
             : std::optional<std::string>("others have rights on it; a map has mode 0600");
}

bool isSame(const struct stat& one, const struct stat& other) {
  return one.st_ino == other.st_ino && one.st_size == other.st_size &&
         one.st_mtim.tv_sec == other.st_mtim.tv_sec && one.st_mtim.tv_nsec == other.st_mtim.tv_nsec;
}

std::optional<std::string> readLine(std::string line, RedactMap* map) {
  const Tree tree(std::move(line));
  std::array<std::string_view, 3> values;
  std::size_t found = 0;
  for (const std::string_view name : {"kind", "original", "pseudonym"}) {
    const Node* const node = tree.ending().state == State::whole ? tree.member(tree.root(), name) : nullptr;
    if (node == nullptr || node->kind != NodeKind::text || node->text.empty()) {
      return "not a line of a map";
    }
    values[found++] = node->text;
  }
  const auto kind = redactKindOf(values[0]);
  if (!kind) {
    return "not a kind";
  }
  const bool isNew = map->learn(*kind, fromPrintable(values[1]), std::string(values[2]));
  return isNew ? std::nullopt : std::optional<std::string>("stands twice");
}

std::string lineOf(const RedactMap::Pair& pair) {
  JsonText json;
  json.object()
      .member("kind", nameOf(pair.kind))
      .member("original", std::string_view(printable(pair.original)));
  return json.member("pseudonym", std::string_view(pair.pseudonym)).end().text() + "\n";
}

std::optional<std::string> writeAll(const RedactMap& map, OutputFile* output) {
  std::string block;
  for (const RedactMap::Pair& pair : map.pairs()) {
    block += lineOf(pair);
    if (block.size() >= kBlock) {
      if (auto reason = output->write(block)) {
        return reason;
      }
      block.clear();
    }
  }
  return output->write(block);
}

}  // namespace

std::optional<std::string> RedactMapFile::load(const std::string& path, RedactMap* map) {
  const bool there = access(path.c_str(), F_OK) == 0 || errno != ENOENT;
  return there ? loadExisting(path, map) : std::nullopt;
}

std::optional<std::string> RedactMapFile::loadExisting(const std::string& path, RedactMap* map) {
  if (stat(path.c_str(), &m_loaded) != 0) {
    return strerror(errno);
  }
  if (auto reason = whyNotTrusted(m_loaded)) {
    return reason;
  }
  std::ifstream file(path);
  std::size_t number = 0;
  for (std::string line; std::getline(file, line);) {
    ++number;
    if (auto reason = readLine(std::move(line), map)) {
      return fmt::format("line {}: {}", number, *reason);
    }
  }
  return file.eof() ? std::nullopt : std::optional<std::string>("cannot be read");
}

std::optional<std::string> RedactMapFile::save(const std::string& path, const RedactMap& map) const {
  struct stat there = {};
  stat(path.c_str(), &there);
  if (!isSame(there, m_loaded)) {
    return "was changed meanwhile; nothing was written";
  }
  OutputFile output;
  if (auto reason = output.open(path)) {
    return reason;
  }
  if (auto reason = writeAll(map, &output)) {
    return reason;
  }
  return output.finish(0600);
}

}  // namespace tarn

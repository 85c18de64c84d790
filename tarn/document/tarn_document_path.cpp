#include "tarn/document/tarn_document_path.h"

#include <algorithm>

#include "tarn/document/tarn_document_escape.h"
#include "tarn/document/tarn_document_survey.h"
#include "tarn/document/tarn_document_utf8.h"

namespace tarn {

namespace {

constexpr std::size_t kKeptAtMost = 1024;

/// What of the raw bytes is shown: whole characters and escapes.
std::string_view shownPart(std::string_view raw) {
  raw = raw.substr(0, kKeptAtMost);
  std::size_t at = 0;
  while (at < raw.size()) {
    const Escape escape = raw[at] == '\\' ? escapeAt(raw.substr(at)) : Escape{Escape::Kind::known, 1, 0};
    if (escape.kind == Escape::Kind::unfinished) {
      break;
    }
    at += escape.length;
  }
  raw = raw.substr(0, at);
  raw.remove_suffix(unfinishedUtf8(raw));
  return raw;
}

}  // namespace

void appendToken(std::string_view name, std::string& pointer) {
  for (const char byte : name) {
    if (byte == '~' || byte == '/') {
      pointer += byte == '~' ? "~0" : "~1";
    } else {
      pointer += byte;
    }
  }
}

std::string Path::nameOf(const Level& level) const {
  std::string name;
  appendUnescaped(level.key.size() > kKeptAtMost ? shownPart(level.key) : level.key, name);
  return level.key.size() > kKeptAtMost ? name + "…" : name;
}

std::string Path::name() const {
  return m_depth == 0 || m_top->kind == Kind::array ? "" : nameOf(*m_top);
}

std::string Path::pointer() const {
  std::string result;
  for (std::size_t depth = 0; depth < m_depth && m_levels[depth].isOpen; ++depth) {
    const Level& level = m_levels[depth];
    result += '/';
    if (level.kind == Kind::array) {
      result += std::to_string(level.count - 1);
      continue;
    }
    appendToken(nameOf(level), result);
    result += level.number > 1 ? "#" + std::to_string(level.number) : "";
  }
  return result;
}

void Path::push(Kind kind) {
  if (m_depth == m_levels.size()) {
    m_levels.emplace_back();
  }
  m_top = &m_levels[m_depth++];
  m_top->key = {};
  m_top->count = 0;
  m_top->number = 1;
  m_top->kind = kind;
  m_top->isOpen = false;
  if (m_numbered && kind == Kind::object) {
    m_names.open();
  }
}

void Path::pop() {
  if (m_numbered && m_top->kind == Kind::object) {
    m_names.close();
  }
  --m_depth;
  m_top = m_depth == 0 ? nullptr : &m_levels[m_depth - 1];
}

std::uint32_t Path::nextNumber() {
  return m_numbered ? m_names.numberOf(m_hash.value()) : m_known == nullptr ? 1 : m_known->next();
}

/// One byte more than what is shown tells that there are more.
void Path::keyPart(std::string_view raw, bool clean, bool begins) {
  std::string& kept = m_top->kept;
  if (begins) {
    kept.clear();
    m_hash = NameHash();
  }
  kept += raw.substr(0, kKeptAtMost + 1 - std::min(kKeptAtMost + 1, kept.size()));
  m_top->key = kept;
  if (m_numbered) {
    m_hash.addRaw(raw, clean);
  }
}

void Path::keyEnds() {
  m_top->isOpen = true;
  m_top->number = nextNumber();
}

void Path::keepKeys() {
  for (; m_firstInBlock < m_depth; ++m_firstInBlock) {
    Level& level = m_levels[m_firstInBlock];
    if (level.key.data() != level.kept.data()) {
      level.kept = level.key.substr(0, kKeptAtMost + 1);
      level.key = level.kept;
    }
  }
  m_firstInBlock = m_depth;
}

}  // namespace tarn

#pragma once
/// ClickHouse's RowBinary: numbers as they lie in memory (little endian), texts behind their length (LEB128).

#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <type_traits>

namespace tarn {

class RowBinaryWriter {
 public:
  template <class Number, class = std::enable_if_t<std::is_arithmetic_v<Number>>>
  void number(Number number) {
    char bytes[sizeof number];
    std::memcpy(bytes, &number, sizeof number);
    fixed({bytes, sizeof number});
  }
  void flag(bool flag) { m_bytes += flag ? '\1' : '\0'; }
  /// The count of an array's elements, or of a text's bytes.
  void count(std::uint64_t count) {
    for (; count >= 0x80; count >>= 7) {
      m_bytes += static_cast<char>(count | 0x80);
    }
    m_bytes += static_cast<char>(count);
  }
  void text(std::string_view text) {
    count(text.size());
    fixed(text);
  }
  /// A FixedString.
  void fixed(std::string_view bytes) { m_bytes += bytes; }

  std::string_view bytes() const { return m_bytes; }
  void clear() { m_bytes.clear(); }

 private:
  std::string m_bytes;
};

/// Reads what is there. Behind the end everything is empty, and `ended` tells.
class RowBinaryReader {
 public:
  explicit RowBinaryReader(std::string_view bytes) : m_rest(bytes) {}

  bool atEnd() const { return m_rest.empty(); }
  bool ended() const { return m_ended; }

  template <class Number, class = std::enable_if_t<std::is_arithmetic_v<Number>>>
  Number number() {
    Number number = 0;
    const std::string_view bytes = fixed(sizeof number);
    std::memcpy(&number, bytes.data(), bytes.size());
    return number;
  }
  std::uint64_t count() {
    std::uint64_t count = 0;
    for (unsigned shift = 0; shift < 64; shift += 7) {
      const auto byte = number<unsigned char>();
      count |= std::uint64_t{byte & 0x7fU} << shift;
      if (byte < 0x80) {
        break;
      }
    }
    return count;
  }
  std::string_view text() { return fixed(count()); }
  std::string_view fixed(std::uint64_t size) {
    if (size > m_rest.size()) {
      m_ended = true;
      m_rest = {};
      return {};
    }
    const std::string_view bytes = m_rest.substr(0, size);
    m_rest.remove_prefix(size);
    return bytes;
  }

 private:
  std::string_view m_rest;
  bool m_ended = false;
};

}  // namespace tarn

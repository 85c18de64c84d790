#pragma once
/// SipHash (Aumasson and Bernstein, 2012) of a text that comes in parts, 64 bits or 128.
///
/// With a secret key nobody can make two texts meet. Without one (`sipHash`) it is the same number in every
/// process and on every machine, and only as hard to meet as 64 bits are.

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace tarn {

struct SipKey {
  std::uint64_t first = 0, second = 0;
};

/// SipHash-c-d: `perWord` rounds for each eight bytes, `atEnd` when all have come.
template <int perWord, int atEnd>
class SipHash {
 public:
  explicit SipHash(const SipKey& key = {})
      : m_a(key.first ^ 0x736f6d6570736575),
        m_b(key.second ^ 0x646f72616e646f6d),
        m_c(key.first ^ 0x6c7967656e657261),
        m_d(key.second ^ 0x7465646279746573) {}

  void add(std::string_view part) {
    for (; !part.empty() && m_length % 8 != 0; part.remove_prefix(1)) {
      keep(part[0]);
      if (m_length % 8 == 0) {
        word(m_pending);
        m_pending = 0;
      }
    }
    for (; part.size() >= 8; part.remove_prefix(8), m_length += 8) {
      std::uint64_t bytes = 0;
      memcpy(&bytes, part.data(), sizeof bytes);
      word(bytes);
    }
    for (const char byte : part) {
      keep(byte);
    }
  }

  /// Of all that has come so far; more may come.
  std::uint64_t value() const {
    SipHash end = *this;
    return end.finish();
  }
  /// 128 bits of it, the first 64 being the value.
  std::array<std::uint64_t, 2> wide() const {
    SipHash end = *this;
    const std::uint64_t first = end.finish();
    end.m_b ^= 0xDD;
    end.rounds(atEnd);
    return {first, end.folded()};
  }

 private:
  void keep(char byte) {
    m_pending |= std::uint64_t{static_cast<unsigned char>(byte)} << (m_length++ % 8 * 8);
  }

  void word(std::uint64_t bytes) {
    m_d ^= bytes;
    rounds(perWord);
    m_a ^= bytes;
  }

  std::uint64_t finish() {
    word(m_length << 56 | m_pending);
    m_c ^= 0xFF;
    rounds(atEnd);
    return folded();
  }

  std::uint64_t folded() const { return m_a ^ m_b ^ m_c ^ m_d; }

  void rounds(int count) {
    for (int round = 0; round < count; ++round) {
      m_a += m_b;
      m_b = std::rotl(m_b, 13) ^ m_a;
      m_a = std::rotl(m_a, 32);
      m_c += m_d;
      m_d = std::rotl(m_d, 16) ^ m_c;
      m_a += m_d;
      m_d = std::rotl(m_d, 21) ^ m_a;
      m_c += m_b;
      m_b = std::rotl(m_b, 17) ^ m_c;
      m_c = std::rotl(m_c, 32);
    }
  }

  std::uint64_t m_a, m_b, m_c, m_d;
  std::uint64_t m_pending = 0;  ///< the bytes behind the last whole word
  std::uint64_t m_length = 0;
};

/// SipHash-2-4 of a whole text, without a key: a name for it that everybody computes alike.
inline std::uint64_t sipHash(std::string_view text) {
  SipHash<2, 4> hash;
  hash.add(text);
  return hash.value();
}

}  // namespace tarn

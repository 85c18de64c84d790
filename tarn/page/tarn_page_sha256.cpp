#include "tarn/page/tarn_page_sha256.h"

#include <array>
#include <bit>
#include <cstdint>

namespace tarn {

namespace {

using Word = std::uint32_t;
using State = std::array<Word, 8>;

constexpr std::size_t kBlock = 64;  // bytes

/// Of the cube roots of the first primes, what stands behind the point.
constexpr std::array<Word, 64> kRounds = {
    0x428A2F98, 0x71374491, 0xB5C0FBCF, 0xE9B5DBA5, 0x3956C25B, 0x59F111F1, 0x923F82A4, 0xAB1C5ED5,
    0xD807AA98, 0x12835B01, 0x243185BE, 0x550C7DC3, 0x72BE5D74, 0x80DEB1FE, 0x9BDC06A7, 0xC19BF174,
    0xE49B69C1, 0xEFBE4786, 0x0FC19DC6, 0x240CA1CC, 0x2DE92C6F, 0x4A7484AA, 0x5CB0A9DC, 0x76F988DA,
    0x983E5152, 0xA831C66D, 0xB00327C8, 0xBF597FC7, 0xC6E00BF3, 0xD5A79147, 0x06CA6351, 0x14292967,
    0x27B70A85, 0x2E1B2138, 0x4D2C6DFC, 0x53380D13, 0x650A7354, 0x766A0ABB, 0x81C2C92E, 0x92722C85,
    0xA2BFE8A1, 0xA81A664B, 0xC24B8B70, 0xC76C51A3, 0xD192E819, 0xD6990624, 0xF40E3585, 0x106AA070,
    0x19A4C116, 0x1E376C08, 0x2748774C, 0x34B0BCB5, 0x391C0CB3, 0x4ED8AA4A, 0x5B9CCA4F, 0x682E6FF3,
    0x748F82EE, 0x78A5636F, 0x84C87814, 0x8CC70208, 0x90BEFFFA, 0xA4506CEB, 0xBEF9A3F7, 0xC67178F2};

/// Of their square roots.
constexpr State kBegin = {0x6A09E667, 0xBB67AE85, 0x3C6EF372, 0xA54FF53A,
                          0x510E527F, 0x9B05688C, 0x1F83D9AB, 0x5BE0CD19};

Word wordAt(std::string_view bytes, std::size_t at) {
  Word word = 0;
  for (std::size_t byte = 0; byte < 4; ++byte) {
    word = word << 8 | static_cast<unsigned char>(bytes[at + byte]);
  }
  return word;
}

std::array<Word, 64> scheduleOf(std::string_view block) {
  std::array<Word, 64> words = {};
  for (std::size_t at = 0; at < 16; ++at) {
    words.at(at) = wordAt(block, 4 * at);
  }
  for (std::size_t at = 16; at < 64; ++at) {
    const Word early = words.at(at - 15);
    const Word late = words.at(at - 2);
    words.at(at) = words.at(at - 16) + (std::rotr(early, 7) ^ std::rotr(early, 18) ^ early >> 3) +
                   words.at(at - 7) + (std::rotr(late, 17) ^ std::rotr(late, 19) ^ late >> 10);
  }
  return words;
}

void take(std::string_view block, State& state) {
  const std::array<Word, 64> words = scheduleOf(block);
  auto [a, b, c, d, e, f, g, h] = state;
  for (std::size_t round = 0; round < 64; ++round) {
    const Word first = h + (std::rotr(e, 6) ^ std::rotr(e, 11) ^ std::rotr(e, 25)) + ((e & f) ^ (~e & g)) +
                       kRounds.at(round) + words.at(round);
    const Word second =
        (std::rotr(a, 2) ^ std::rotr(a, 13) ^ std::rotr(a, 22)) + ((a & b) ^ (a & c) ^ (b & c));
    h = g, g = f, f = e, e = d + first, d = c, c = b, b = a, a = first + second;
  }
  const State done = {a, b, c, d, e, f, g, h};
  for (std::size_t at = 0; at < state.size(); ++at) {
    state.at(at) += done.at(at);
  }
}

/// The message, a bit, zeros, and its length in bits.
std::string padded(std::string_view message) {
  std::string text(message);
  text += '\x80';
  text.append((2 * kBlock - 8 - text.size() % kBlock) % kBlock, '\0');
  const std::uint64_t bits = std::uint64_t{8} * message.size();
  for (int shift = 56; shift >= 0; shift -= 8) {
    text += static_cast<char>(bits >> shift);
  }
  return text;
}

}  // namespace

std::string sha256(std::string_view message) {
  State state = kBegin;
  const std::string text = padded(message);
  for (std::size_t at = 0; at < text.size(); at += kBlock) {
    take(std::string_view(text).substr(at, kBlock), state);
  }
  std::string digest;
  for (const Word word : state) {
    for (int shift = 24; shift >= 0; shift -= 8) {
      digest += static_cast<char>(word >> shift);
    }
  }
  return digest;
}

}  // namespace tarn

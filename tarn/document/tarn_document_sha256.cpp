#include "tarn/document/tarn_document_sha256.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

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

Word wordAt(const char* bytes) {
  Word word = 0;
  memcpy(&word, bytes, sizeof word);
  return __builtin_bswap32(word);
}

Word early(Word word) {
  return std::rotr(word, 7) ^ std::rotr(word, 18) ^ word >> 3;
}

Word late(Word word) {
  return std::rotr(word, 17) ^ std::rotr(word, 19) ^ word >> 10;
}

/// One round. The eight words do not move: the next round takes them one place further on.
inline void turn(Word* state, std::size_t round, Word word) {
  const auto at = [state, round](std::size_t place) -> Word& { return state[(place - round) & 7]; };
  const Word a = at(0);
  const Word e = at(4);
  const Word first = at(7) + (std::rotr(e, 6) ^ std::rotr(e, 11) ^ std::rotr(e, 25)) +
                     (at(6) ^ (e & (at(5) ^ at(6)))) + word;
  at(3) += first;
  at(7) =
      first + (std::rotr(a, 2) ^ std::rotr(a, 13) ^ std::rotr(a, 22)) + ((a & at(1)) | (at(2) & (a | at(1))));
}

/// The rounds of sixteen words of the schedule, which become the next sixteen.
inline void turnSixteen(Word* state, Word* words, const Word* constants) {
#pragma GCC unroll 16
  for (std::size_t round = 0; round < 16; ++round) {
    turn(state, round, constants[round] + words[round]);
    words[round] += early(words[(round + 1) & 15]) + words[(round + 9) & 15] + late(words[(round + 14) & 15]);
  }
}

void take(const char* block, State& state) {
  Word words[16];
  for (std::size_t at = 0; at < 16; ++at) {
    words[at] = wordAt(block + 4 * at);
  }
  Word turned[8];
  std::copy(state.begin(), state.end(), turned);
  for (std::size_t round = 0; round < kRounds.size(); round += 16) {
    turnSixteen(turned, words, kRounds.data() + round);
  }
  for (std::size_t at = 0; at < state.size(); ++at) {
    state.at(at) += turned[at];
  }
}

/// What stands behind the last whole block: the rest, a bit, zeros, and the length in bits.
std::string endingOf(std::string_view message) {
  std::string text(message.substr(message.size() / kBlock * kBlock));
  text += '\x80';
  text.append((2 * kBlock - 8 - text.size() % kBlock) % kBlock, '\0');
  const std::uint64_t bits = std::uint64_t{8} * message.size();
  for (int shift = 56; shift >= 0; shift -= 8) {
    text += static_cast<char>(bits >> shift);
  }
  return text;
}

void takeBlocks(std::string_view text, State& state) {
  for (std::size_t at = 0; at + kBlock <= text.size(); at += kBlock) {
    take(text.data() + at, state);
  }
}

}  // namespace

std::string sha256(std::string_view message) {
  State state = kBegin;
  takeBlocks(message, state);
  takeBlocks(endingOf(message), state);
  std::string digest;
  for (const Word word : state) {
    for (int shift = 24; shift >= 0; shift -= 8) {
      digest += static_cast<char>(word >> shift);
    }
  }
  return digest;
}

}  // namespace tarn

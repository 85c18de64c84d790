#pragma once
/// The bytes of a file in blocks, from the beginning as often as wanted.
///
/// What cannot be read twice (a pipe) is kept in a file without a name beside, unless it fits into one block:
/// that is at hand still.

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace tarn {

class Source {
 public:
  enum class Passes { one, several };

  Source() = default;
  Source(const Source&) = delete;
  Source& operator=(const Source&) = delete;
  ~Source();

  /// Opens a file; "-" is the descriptor `input`, from where it stands. A message of the system's when that
  /// fails. With one pass `rewind` is not called.
  std::optional<std::string> open(const std::string& path, int input, Passes passes);

  /// The next bytes, valid until the next call; none at the end, and where reading failed.
  std::string_view next();
  /// Writes bytes that `next` would give to a descriptor, at most `count`, without reading them. How many
  /// they were, 0 where the system cannot do that with these two files, or failed.
  std::size_t send(int output, std::size_t count);
  /// Begins again, also before the end was reached. What no pass has read yet is not kept.
  void rewind();
  /// A message of the system's when reading, or keeping what was read, failed.
  const std::optional<std::string>& problem() const { return m_problem; }

  /// How many bytes `next` has given in this pass, and how many there are, 0 where nobody knows.
  std::uint64_t position() const { return m_position; }
  std::uint64_t size() const { return m_size; }

 private:
  bool fill();
  bool keep();
  void fail();
  void closeOwn();

  int m_input = -1;  ///< closed at the end unless it is the caller's
  int m_spool = -1;  ///< of a pipe's earlier blocks
  bool m_isOwn = false, m_again = false, m_canSeek = false;
  bool m_isFirst = true, m_isLast = false;  ///< the block in the buffer
  bool m_isKept = true, m_isReplayed = false;
  std::int64_t m_start = 0;          ///< where the first pass began
  std::unique_ptr<char[]> m_buffer;  ///< what a short document does not need of it is not touched
  std::size_t m_length = 0;          ///< of the block in the buffer
  std::uint64_t m_position = 0, m_size = 0;
  std::optional<std::string> m_problem;
};

}  // namespace tarn

#pragma once
/// Sorts more records than there is memory for: parts of them are sorted and written to a file without a
/// name, and read back side by side.
///
///     Sorter<Record> sorter;
///     ... sorter.add(record);
///     sorter.sort();
///     while (const Record* record = sorter.next()) { ... }
///     if (sorter.lost()) { ... }  // the file could not be made, written or read: records are missing
///
/// Records are plain bytes with an order (`<`). Memory: 6 MB, and 4 KiB more for each 6 MB of records.

#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <type_traits>
#include <vector>

#include "tarn/document/tarn_document_nameless.h"

namespace tarn {

template <class Record>
class Sorter {
 public:
  static_assert(std::is_trivially_copyable_v<Record>);

  Sorter() = default;
  Sorter(Sorter&& other) noexcept { swap(other); }
  Sorter& operator=(Sorter&& other) noexcept {
    swap(other);
    return *this;
  }
  ~Sorter() {
    if (m_file != -1) {
      close(m_file);
    }
  }

  void add(const Record& record) {
    m_kept.push_back(record);
    if (m_kept.size() == kKept) {
      spill();
    }
  }
  /// No record is added from here on.
  void sort();
  /// Records from the least to the greatest, each valid until the next call; null at the end.
  const Record* next();
  bool lost() const { return m_lost; }

 private:
  static constexpr std::size_t kKept = (6 << 20) / sizeof(Record);
  static constexpr std::size_t kBlock = (4 << 10) / sizeof(Record);

  /// What was sorted at once, and is being read.
  struct Part {
    std::uint64_t at, end;  ///< what is left of it in the file, in records
    std::vector<Record> block;
    std::size_t index = 0;
  };

  void swap(Sorter& other) {
    std::swap(m_kept, other.m_kept);
    std::swap(m_parts, other.m_parts);
    std::swap(m_order, other.m_order);
    std::swap(m_file, other.m_file);
    std::swap(m_written, other.m_written);
    std::swap(m_started, other.m_started);
    std::swap(m_lost, other.m_lost);
  }
  void spill();
  bool refill(Part& part);
  /// Of a heap whose top is the part with the least record.
  auto isLater() const {
    return [this](std::size_t one, std::size_t other) {
      return m_parts[other].block[m_parts[other].index] < m_parts[one].block[m_parts[one].index];
    };
  }

  std::vector<Record> m_kept;
  std::vector<Part> m_parts;
  std::vector<std::size_t> m_order;  ///< the heap, of parts that have records left
  int m_file = -1;
  std::uint64_t m_written = 0;
  bool m_started = false, m_lost = false;
};

template <class Record>
void Sorter<Record>::spill() {
  std::sort(m_kept.begin(), m_kept.end());
  m_file = m_file == -1 ? namelessFile() : m_file;
  const auto* const bytes = reinterpret_cast<const char*>(m_kept.data());
  m_lost = m_lost || m_file == -1 || !writeAll(m_file, {bytes, m_kept.size() * sizeof(Record)});
  m_parts.push_back({m_written, m_written + m_kept.size(), {}});
  m_written += m_kept.size();
  m_kept.clear();
}

template <class Record>
void Sorter<Record>::sort() {
  if (m_parts.empty()) {  // nothing was written: the part at hand is the only one
    std::sort(m_kept.begin(), m_kept.end());
    m_parts.push_back({0, 0, std::move(m_kept)});
  } else {
    spill();
    std::vector<Record>().swap(m_kept);
  }
  for (std::size_t part = 0; part < m_parts.size(); ++part) {
    if (!m_parts[part].block.empty() || refill(m_parts[part])) {
      m_order.push_back(part);
    }
  }
  std::make_heap(m_order.begin(), m_order.end(), isLater());
}

template <class Record>
bool Sorter<Record>::refill(Part& part) {
  part.block.resize(std::min<std::uint64_t>(kBlock, part.end - part.at));
  part.index = 0;
  auto* const bytes = reinterpret_cast<char*>(part.block.data());
  m_lost = m_lost || !readAll(m_file, part.at * sizeof(Record), bytes, part.block.size() * sizeof(Record));
  part.at += part.block.size();
  return !m_lost && !part.block.empty();
}

/// The record given last is stepped over only now, since it is valid until now.
template <class Record>
const Record* Sorter<Record>::next() {
  if (m_started && !m_order.empty()) {
    std::pop_heap(m_order.begin(), m_order.end(), isLater());
    Part& part = m_parts[m_order.back()];
    if (++part.index < part.block.size() || refill(part)) {
      std::push_heap(m_order.begin(), m_order.end(), isLater());
    } else {
      m_order.pop_back();
    }
  }
  m_started = true;
  if (m_order.empty()) {
    return nullptr;
  }
  const Part& part = m_parts[m_order.front()];
  return &part.block[part.index];
}

}  // namespace tarn

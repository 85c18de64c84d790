#include "tarn/facts/tarn_facts_silent.h"

#include <cstring>

namespace tarn {

namespace {

constexpr std::size_t kInMemory = 1 << 20;
constexpr std::size_t kHead = 1 + sizeof(std::uint32_t);

std::uint32_t lengthAt(const char* head) {
  std::uint32_t length = 0;
  std::memcpy(&length, head + 1, sizeof length);
  return length;
}

}  // namespace

void SilentMembers::add(Silence silence, std::string_view pointer) {
  const auto length = static_cast<std::uint32_t>(pointer.size());
  char head[kHead] = {static_cast<char>(silence)};
  std::memcpy(head + 1, &length, sizeof length);
  m_text.append(head, kHead).append(pointer);
  if (m_text.size() > kInMemory) {
    moveToFile();
  }
}

void SilentMembers::moveToFile() {
  if (!m_file) {
    m_file.reset(std::tmpfile());
  }
  m_lost = m_lost || !m_file || std::fseek(m_file.get(), static_cast<long>(m_fileSize), SEEK_SET) != 0 ||
           std::fwrite(m_text.data(), 1, m_text.size(), m_file.get()) != m_text.size();
  m_fileSize += m_text.size();
  m_text.clear();
}

void SilentMembers::backTo(std::uint64_t end) {
  if (end >= m_fileSize) {
    m_text.resize(end - m_fileSize);
  } else {
    m_fileSize = end;  // what lies behind in the file is written over
    m_text.clear();
  }
}

void SilentMembers::forEach(const std::function<void(Silence, std::string_view)>& take) const {
  if (m_file && !m_lost) {
    std::rewind(m_file.get());
    std::string pointer;
    char head[kHead];
    for (std::uint64_t at = 0; at < m_fileSize && !m_lost; at += kHead + pointer.size()) {
      m_lost = std::fread(head, 1, kHead, m_file.get()) != kHead;
      pointer.resize(m_lost ? 0 : lengthAt(head));
      m_lost = m_lost || std::fread(pointer.data(), 1, pointer.size(), m_file.get()) != pointer.size();
      take(static_cast<Silence>(head[0]), pointer);
    }
  }
  for (std::size_t at = 0; at < m_text.size(); at += kHead + lengthAt(m_text.data() + at)) {
    take(static_cast<Silence>(m_text[at]),
         std::string_view(m_text).substr(at + kHead, lengthAt(m_text.data() + at)));
  }
}

}  // namespace tarn

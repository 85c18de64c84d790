#include "http/mirel_http_response.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace {

constexpr unsigned long kLargest = ~0UL / 2;

/// The value of a header line when its name is `name`, else null.
const char* valueOf(const char* line, const char* name) {
  const unsigned long length = strlen(name);
  if (strncasecmp(line, name, length) != 0 || line[length] != ':') {
    return nullptr;
  }
  const char* value = line + length + 1;
  return value + strspn(value, " \t");
}

/// Reads a whole unsigned number and nothing else, trailing blanks apart; false when there is none or it is
/// out of any sense.
bool readNumber(const char* text, int base, const char* mayFollow, unsigned long* number) {
  if (strchr("0123456789abcdefABCDEF", *text) == nullptr || *text == '\0') {
    return false;
  }
  char* end = nullptr;
  *number = strtoul(text, &end, base);
  end += strspn(end, " \t");
  return end != text && *number <= kLargest && (*end == '\0' || strchr(mayFollow, *end) != nullptr);
}

}  // namespace

unsigned long HttpResponse::receive(const char* bytes, unsigned long count) {
  unsigned long taken = 0;
  while (taken < count && m_state != State::complete && m_state != State::untilClose) {
    if (m_state != State::body && m_state != State::chunk) {
      receiveByte(bytes[taken++]);
      continue;
    }
    const unsigned long part = std::min(count - taken, m_remaining);
    taken += part;
    m_remaining -= part;
    if (m_remaining == 0) {
      m_state = m_state == State::body ? State::complete : State::chunkEnd;
    }
  }
  return m_state == State::untilClose ? count : taken;
}

void HttpResponse::receiveByte(char byte) {
  if (byte == '\n') {
    if (m_lineLength > 0 && m_lineLength < kLineKept && m_line[m_lineLength - 1] == '\r') {
      --m_lineLength;
    }
    m_line[m_lineLength < kLineKept ? m_lineLength : kLineKept - 1] = '\0';
    endLine();
    m_lineLength = 0;
    return;
  }
  if (m_lineLength < kLineKept - 1) {
    m_line[m_lineLength] = byte;
  }
  if (m_lineLength < kLineKept) {
    ++m_lineLength;
  }
}

void HttpResponse::endLine() {
  const bool empty = m_lineLength == 0;
  switch (m_state) {
    case State::statusLine:
      readStatus();
      break;
    case State::header:
      if (empty) {
        endHead();
      } else {
        readHeader();
      }
      break;
    case State::chunkSize:
      readChunkSize();
      break;
    case State::chunkEnd:
      m_state = empty ? State::chunkSize : State::untilClose;
      break;
    case State::trailer:
      if (empty) {
        m_state = State::complete;
      }
      break;
    default:
      break;
  }
}

void HttpResponse::readStatus() {
  if (strncmp(m_line, "HTTP/1.", 7) != 0 || m_line[7] == '\0' || m_line[8] != ' ') {
    m_state = State::untilClose;
    return;
  }
  m_status = atoi(m_line + 9);
  m_chunked = m_hasLength = m_contradictory = false;
  m_state = State::header;
}

void HttpResponse::readHeader() {
  if (const char* value = valueOf(m_line, "Transfer-Encoding")) {
    m_chunked = strncasecmp(value, "chunked", 7) == 0 && value[7 + strspn(value + 7, " \t")] == '\0';
    m_contradictory = m_contradictory || !m_chunked;
  } else if (const char* length = valueOf(m_line, "Content-Length")) {
    unsigned long bytes = 0;
    m_contradictory =
        m_contradictory || !readNumber(length, 10, "", &bytes) || (m_hasLength && bytes != m_remaining);
    m_hasLength = true;
    m_remaining = bytes;
  }
}

void HttpResponse::endHead() {
  if (m_status >= 100 && m_status < 200) {
    m_state = State::statusLine;
  } else if (m_status == 204 || m_status == 304) {
    m_state = State::complete;
  } else if (m_contradictory || (!m_chunked && !m_hasLength)) {
    m_state = State::untilClose;
  } else if (m_chunked) {
    m_state = State::chunkSize;
  } else {
    m_state = m_remaining == 0 ? State::complete : State::body;
  }
}

void HttpResponse::readChunkSize() {
  unsigned long size = 0;
  if (!readNumber(m_line, 16, ";", &size)) {
    m_state = State::untilClose;
  } else {
    m_state = size == 0 ? State::trailer : State::chunk;
  }
  m_remaining = size;
}

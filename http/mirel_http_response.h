#pragma once
/// Tells when an HTTP/1.x response is complete (RFC 9112, section 6), while its bytes come in.
///
/// It is complete once Content-Length bytes of body have come, at the end of a chunked body, and right
/// behind the head of a response that has no body (204, 304). Interim responses (1xx) are passed over.
/// A response that tells no length, or contradicts itself, or is no HTTP at all, ends when the peer closes.
/// Nothing is kept of the bytes but the beginning of the current line.

class HttpResponse {
 public:
  /// Looks at the next bytes; how many of them belong to the response. What follows them is behind its end.
  unsigned long receive(const char* bytes, unsigned long count);
  bool complete() const { return m_state == State::complete; }
  /// How many more bytes of the body, or of its current chunk, are announced.
  unsigned long announced() const {
    return m_state == State::body || m_state == State::chunk ? m_remaining : 0;
  }

 private:
  enum class State { statusLine, header, body, chunkSize, chunk, chunkEnd, trailer, untilClose, complete };

  void receiveByte(char byte);
  void endLine();
  void readStatus();
  void readHeader();
  void endHead();
  void readChunkSize();

  static constexpr unsigned long kLineKept = 256;

  State m_state = State::statusLine;
  char m_line[kLineKept] = {};  ///< the beginning of the current line, NUL-terminated
  unsigned long m_lineLength = 0;
  unsigned long m_remaining = 0;  ///< bytes of the body or chunk still to come
  int m_status = 0;
  bool m_chunked = false;
  bool m_hasLength = false;
  bool m_contradictory = false;
};

// HTTP responses in pieces of any size.

#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <cstring>
#include <string>

#include "fuzz/mirel_fuzz.h"
#include "http/mirel_http_client.h"
#include "http/mirel_http_response.h"

namespace {

constexpr std::size_t kChunk = 1024;
constexpr std::size_t npos = std::string::npos;

std::string s_response;  // what the peer has left to send
std::string s_sizes;     // how long its pieces are, from the back

std::size_t nextSize() {
  if (s_sizes.empty()) {
    return kChunk;
  }
  const std::size_t size = static_cast<unsigned char>(s_sizes.back());
  s_sizes.pop_back();
  return size < 16 ? size : 4 * size;
}

/// How many bytes it takes until the response is complete; npos when it never is.
std::size_t endOf(const std::string& text) {
  HttpResponse response;
  std::size_t end = 0;
  while (end < text.size() && !response.complete()) {
    require(response.receive(&text[end++], 1) == 1, "a response that goes on takes what comes");
  }
  return response.complete() ? end : npos;
}

/// The body that arrives. Of each piece that is what stands before its first NUL, and nothing follows the
/// byte that completes the response.
std::string bodyOf(const std::string& text) {
  const std::size_t end = endOf(text);
  HttpResponse response;
  std::string whole;
  for (std::size_t position = 0; position < text.size();) {
    const std::string piece = text.substr(position, nextSize());
    const std::size_t taken = response.receive(piece.data(), piece.size());
    require(taken == std::min(piece.size(), end - std::min(position, end)), "it ends where it ends");
    whole += piece.substr(0, taken).c_str();
    position += piece.size();
  }
  const std::size_t head = whole.find("\r\n\r\n");
  return whole.substr(std::min(head == npos ? 3 : head + 4, whole.size()));
}

void check(const std::string& text) {
  const std::string sizes = s_sizes;
  const std::string body = bodyOf(text);
  s_response = text;
  s_sizes = sizes;
  require(HttpClient("host", 80).get("/") == body.c_str(), "the client takes the body");
}

/// A response with this body, its length told or in chunks.
std::string responseWith(const std::string& body, bool chunked) {
  std::string text = "HTTP/1.1 200 OK\r\n";
  if (!chunked) {
    return text + "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
  }
  text += "Transfer-Encoding: chunked\r\n\r\n";
  for (std::size_t position = 0, size = 0; position < body.size(); position += size) {
    size = std::clamp(nextSize(), 1UL, body.size() - position);
    char head[20];
    std::snprintf(head, sizeof head, "%zX\r\n", size);
    text += head + body.substr(position, size) + "\r\n";
  }
  return text + "0\r\n\r\n";
}

}  // namespace

unsigned int sqloPdbSendBuffer(int, const void*, unsigned int count, unsigned int* sent) {
  *sent = count;
  return 0;
}

unsigned int sqloPdbRecvBuffer(int, void* buffer, unsigned int, unsigned int* count, int, int) {
  const bool closed = s_response.empty();
  *count = static_cast<unsigned int>(s_response.copy(static_cast<char*>(buffer), nextSize()));
  s_response.erase(0, *count);
  return closed ? SQLO_PDB_PEER_CLOSED : 0;
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider input(data, size);
  s_sizes = input.ConsumeRandomLengthString();
  const bool chunked = input.ConsumeBool();
  const std::string bytes = input.ConsumeRemainingBytesAsString();
  check(bytes);
  const std::string whole = responseWith(bytes, chunked);
  require(endOf(whole + bytes) == whole.size(), "a well-formed response ends where it says");
  check(whole + bytes);
  return 0;
}

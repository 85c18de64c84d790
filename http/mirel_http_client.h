#pragma once

#include "common/mirel_string.h"
#include "http/mirel_http_socket.h"

/// A minimal HTTP/1.1 client (RFC 9112): one request per connection, no redirects, no TLS, and the status
/// is not looked at. The Host header carries this machine's own name, by which the collection server tells
/// its collectors apart.
///
/// A request that cannot be made gives the empty text; see `Socket` for what is told about it.
class HttpClient {
 public:
  HttpClient(mirel_string host, unsigned long port);

  /// The body of the response: what follows its first empty line. Without one, the text from its fourth
  /// character on.
  mirel_string get(const mirel_string& path);

  /// The whole response, head and body as they came.
  mirel_string post(const mirel_string& path, const mirel_string& body);

 private:
  /// Connects, sends the request in its two parts, receives the response, closes.
  mirel_string exchange(const mirel_string& head, const mirel_string& body);

  Socket m_socket;
  mirel_string m_host;
  mirel_string m_localName;
  unsigned long m_port;
};

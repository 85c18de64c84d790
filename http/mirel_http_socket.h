#pragma once

#include "common/mirel_string.h"
#include "platform/sockets.h"

/// A TCP client endpoint: `open`, any number of `send`, `recv`, `close`; then it may be opened anew.
///
/// The socket layer must be set up (`sqloPdbCommFncInit`). What fails is told in one line on standard error.
/// Destruction closes nothing; what a failed `open` leaves is released with the layer.
class Socket {
 public:
  bool open(const mirel_string& host, unsigned long port);

  /// Sends both texts as one in chunks of at most 1,024 bytes. A chunk that cannot be sent is shown on
  /// standard output and ends the sending.
  bool send(const mirel_string& head, const mirel_string& body = "");

  /// One HTTP response, as it came: everything until it is complete, the peer closes, or the connection
  /// fails; what came behind its end is dropped. A NUL byte costs the rest of its read (at most 1,024 bytes).
  /// Waits as long as the peer lives.
  mirel_string recv();

  bool close();

 private:
  int m_socket = 0;
  SqloNodeAddress m_addr = {};
};

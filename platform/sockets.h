#pragma once
/// Socket layer: one TCP endpoint at a time, blocking.
///
/// Functions return 0 on success, otherwise the platform's error code.

/// Returned by `sqloPdbRecvBuffer` once the peer has closed the connection.
inline constexpr unsigned int SQLO_PDB_PEER_CLOSED = 0x810F0021;

/// What a host name resolved to; its contents are the layer's own.
struct SqloHostAddress {
  alignas(8) unsigned char bytes[2056];
};

/// A host address and a port, ready to connect to; its contents are the layer's own.
struct SqloNodeAddress {
  alignas(8) unsigned char bytes[2064];
};

extern "C" {

/// Sets the layer up, once before the first socket; `sqloPdbCommFncTerm` ends it, once after the last,
/// and releases the sockets that were left open.
unsigned int sqloPdbCommFncInit();
unsigned int sqloPdbCommFncTerm();

unsigned int sqloPdbCreateSocket(int* handle, int options);
/// Resolves a host name or a numeric address; no name at all is an error, not this machine. The last two
/// arguments are 10 and 1.
unsigned int sqloPdbTcpIpResolveHostName(const char* host, SqloHostAddress* address, int retries,
                                         int options);
/// Builds a node address from a resolved host; `type` is 0. Valid ports are 1 to 65535.
unsigned int sqloPdbInitNodeAddrHndl(int type, SqloNodeAddress* node, const SqloHostAddress* address,
                                     unsigned int port);
/// Connects; tries every address that the host name resolved to, in order, for half a minute in all. A
/// failed try leaves the socket ready for the next one.
unsigned int sqloPdbConnectSocket(int handle, const SqloNodeAddress* node);
/// Sends up to `count` bytes; `*sent` tells how many went. Waits while the peer takes nothing, for about two
/// minutes at most. Never raises SIGPIPE.
unsigned int sqloPdbSendBuffer(int handle, const void* data, unsigned int count, unsigned int* sent);
/// Receives up to `size` bytes, waiting at most `waitSeconds`. A wait that runs out succeeds with a count
/// of 0; SQLO_PDB_PEER_CLOSED tells the orderly end; any other code is an error that will not pass. A peer
/// that vanished is such an error, after about two minutes. `*received` is set in every case.
unsigned int sqloPdbRecvBuffer(int handle, void* buffer, unsigned int size, unsigned int* received,
                               int waitSeconds, int options);
unsigned int sqloPdbCloseSocket(int handle);

}  // extern "C"

#pragma once
/// Environments, connections and statements: the records behind the handles of the SQL call-level
/// interface, each with the driver manager's handle that it stands for.
///
/// The records are made here and freed here; a function that takes a handle answers SQL_INVALID_HANDLE for
/// one that is not alive, without a word to the driver manager.

#include <memory>

#include "platform/host/sqlcli/mirel_host_block.h"
#include "platform/host/sqlcli/mirel_host_engine.h"
#include "platform/host/sqlcli/mirel_host_handles.h"
#include "platform/host/sqlcli/mirel_host_odbc.h"
#include "platform/host/sqlcli/mirel_host_statement.h"
#include "platform/sqlcli.h"

namespace host {

/// A problem of our own making, reported in place of a diagnostic of the driver manager.
struct Complaint {
  const char* state;  ///< SQLSTATE, 5 characters
  const char* text;   ///< one line; in static storage
};

struct Environment {
  static constexpr short kType = SQL_HANDLE_ENV;
  OdbcHandle native;
  int connections = 0;
  bool released = false;  ///< its handle is gone; it goes with its last connection
};

struct Connection {
  static constexpr short kType = SQL_HANDLE_DBC;
  OdbcHandle native;
  Environment* environment;
  unsigned long connected = 0;  ///< 0: not; otherwise grows with each connection opened
  Engine engine{};
};

struct Statement {
  static constexpr short kType = SQL_HANDLE_STMT;
  OdbcHandle native;
  Connection* connection;
  QuotedNames quotedNames{};
  const Complaint* complaint = nullptr;  ///< about the last call, if we refused it ourselves
  std::unique_ptr<RowBlock> block{};     ///< serves the rows; null: they are fetched one at a time
  int fetches = 0;                       ///< of the current result; not counted beyond 2
  bool unfinished = false;               ///< a call on it did not end

  /// Passes the code of a call on this statement through, and remembers one that is unfinished.
  SQLRETURN noted(SQLRETURN code);
  /// Leaves the result of the last statement.
  void leaveResult();
};

inline constexpr Complaint kOutOfMemory{"HY001", "Out of memory"};

/// All handles of the process.
HandleTable& handles();

/// Make a record and its handle; `*output` is SQL_NULL_HANDLE on failure. The first environment opens the
/// driver manager.
SQLRETURN allocateEnvironment(SQLHANDLE* output);
SQLRETURN allocateConnection(SQLHANDLE environment, SQLHANDLE* output);
SQLRETURN allocateStatement(SQLHANDLE connection, SQLHANDLE* output);

/// Why the last allocation of this type failed: a complaint, else a handle that the driver manager keeps
/// the reason under; neither when it did not fail.
struct AllocationFailure {
  const Complaint* complaint;
  SQLHANDLE parent;
};
AllocationFailure allocationFailure(short type);

/// Free a record and what is below it: the statements of a connection, which is disconnected first; the
/// connections of an environment keep it alive behind the scenes.
SQLRETURN freeEnvironment(SQLHANDLE handle);
SQLRETURN freeConnection(SQLHANDLE handle);
SQLRETURN freeStatement(SQLHANDLE handle);

/// Connects, waiting 30 seconds at most where the driver can limit that, and gets to know the engine.
SQLRETURN openSession(Connection* connection, const char* dataSource, short dataSourceLength,
                      const char* user, short userLength, const char* password, short passwordLength);

/// Frees the connection's statements and disconnects.
SQLRETURN closeSession(Connection* connection);

/// The engine of the connection opened last among those still open; null when there is none.
const Engine* connectedEngine();

}  // namespace host

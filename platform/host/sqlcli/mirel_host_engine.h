#pragma once
/// The engine behind a connection, as it and its driver describe themselves.

#include <array>

#include "platform/host/sqlcli/mirel_host_odbc.h"
#include "platform/host/sqlcli/mirel_host_statement.h"

namespace host {

/// A text is empty where nothing is told.
struct Engine {
  using Text = std::array<char, 256>;
  Text name{};
  Text version{};  ///< as the engine prints it itself, where it is known how to ask; else the driver's
  Text driver{};
  Text driverVersion{};
  bool reportsUpperCase = false;  ///< unquoted column names come in upper case already
  bool givesBlocks = false;       ///< its driver reads every value of a block of rows, also one by one
  const Dialect* dialect = &dialectOf({}, {});
};

/// Begins the session of a new connection and learns what stands behind it. What fails leaves its text empty,
/// or the driver's; such a session is still good for most queries.
Engine meetEngine(OdbcHandle connection);

}  // namespace host

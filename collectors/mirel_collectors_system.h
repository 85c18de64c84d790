#pragma once
/// Ways to reach the host: shell commands, and the paths and names that the product knows.
///
/// Nothing here prints. A failure is a fixed answer, which ends up in the result document as it is.

#include "common/mirel_string.h"
#include "platform/admin.h"

/// What a shell command (sh -c) writes to its standard output, or "ERROR" when it cannot be started.
/// A lost text is not run. Blocks until the command closes its output. A NUL byte costs the rest of its line,
/// at most 127 bytes.
mirel_string executeGet(const mirel_string& command);

/// The product's install path, without a slash at its end, or "".
mirel_string getInstallDirectory();

/// The account that owns the instance, at most 8 characters.
mirel_string getInstName();

/// The global path of a database, whatever the letter case of its name, or "".
mirel_string getGdbPath(const mirel_string& database);

/// The path of this member's share of a database, by its global path, ending with a slash, or "".
mirel_string getDbPath(const mirel_string& globalPath);

/// Reads a database's configuration file into `configuration`, which keeps what it held where the file
/// does not fill it. Returns the platform's code of closing the file: 0 on success.
long getDbCfd(const mirel_string& database, sqlf_dbcfd* configuration);

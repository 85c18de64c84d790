#pragma once
/// What the fleet's database keeps: documents, and the facts that they tell.
///
/// A fact is (host, place, value, since): "from this moment on, the host's documents show this value there",
/// until the next moment that the host and the place have. A row is kept where a document differs from the
/// host's document before it, not for each document. Rows are true one by one, whatever the order in which
/// documents came; loading only adds rows, and never asks what they were before.
///
/// What changes by itself (the volatile facts of the table) is kept once a host and place, the newest.

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tarn {

/// Microseconds since 1970-01-01 00:00 UTC. The seconds are the document's time; what is below a second is
/// drawn from the document's bytes, so that two documents of one second keep apart, in the same order
/// wherever they are loaded.
using Moment = std::int64_t;

/// SHA-256 of a document's bytes.
using DocumentHash = std::array<unsigned char, 32>;

/// A place of the database: a JSON Pointer in which rows have names instead of numbers.
struct FleetPlace {
  /// `/databaseInfo[name=SALES]/bufferpools[BPNAME=main]/NPAGES`. Within brackets `~0`, `~1`, `~2`, `~3` and
  /// `~4` stand for "~", "/", "]", "=" and ",".
  std::string text;
  /// The same with `*` for every element: `/databaseInfo/*/bufferpools/*/NPAGES`.
  std::string pointer;
  /// The outermost row that is a part of the document itself: `/databaseInfo[name=SALES]`; else empty.
  /// Documents that do not hold it say nothing about this place.
  std::string scope;
};

/// A document that was found in a store, whatever it is.
struct FleetDocument {
  DocumentHash hash = {};
  std::string file;         ///< absolute path
  std::uint64_t bytes = 0;  ///< of the document itself, where the file is compressed
  std::int64_t seen = 0;    ///< tells path, size and time of the file; the same file is not read again

  std::string state;  ///< `whole`, `cut`, `damaged`, `foreign`
  /// Why its facts are not taken; empty when they are. `not whole`, `no host`, `no time`, `future`, `large`,
  /// `other host` (the server's log knows another name), `same moment` (as
  /// another document of the host)
  std::string problem;
  std::uint64_t line = 0, column = 0;  ///< of the trouble, 0 when there is none

  std::string host;                       ///< empty when nothing tells
  std::string hostFrom;                   ///< `document`, `log`
  Moment moment = 0;                      ///< 0 when nothing tells
  std::string timeFrom;                   ///< `document`, `file`, `log`
  std::string engine, version, database;  ///< empty when there is none
  std::uint64_t answered = 0, asked = 0;
  std::vector<std::string> scopes;  ///< those that it holds; "" is not among them
};

/// One row: from this moment on, at this place of this host.
struct FleetFact {
  std::string_view host;
  const FleetPlace* place = nullptr;
  Moment since = 0;
  std::optional<std::string_view> value;  ///< none: the place went away
  /// A document that came late shows that nothing changed here after all: the row before has the same value.
  bool isVoid = false;
  bool isNewest = false;  ///< no row of that host and place is later
};

}  // namespace tarn

#pragma once
/// What a document of a store is: whose, of when, whole or not, and its facts.

#include <cstdint>

#include "tarn/facts/tarn_facts_table.h"
#include "tarn/fleet/load/tarn_fleet_flatten.h"
#include "tarn/fleet/load/tarn_fleet_log.h"
#include "tarn/fleet/load/tarn_fleet_store.h"
#include "tarn/fleet/tarn_fleet_record.h"

namespace tarn {

struct ReadDocument {
  FleetDocument about;
  FlatDocument flat;  ///< nothing in it when there is a problem
};

/// What there is beside the document itself.
struct ReadContext {
  const Facts& facts;
  const ExchangeLog& log;
  std::int64_t now = 0;  ///< seconds since 1970; documents of more than a day later are from the future
};

/// A document's time is what it says itself; of a date alone the file's name may know more; where it says
/// none, the file's name tells, else the server's log. The host is what it says, else the log's.
ReadDocument readDocument(const StoreFile& file, StoreBytes content, const ReadContext& context,
                          FleetPlaces& places);

}  // namespace tarn

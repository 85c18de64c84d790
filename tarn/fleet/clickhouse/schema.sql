-- The database of a fleet on one ClickHouse server. On a cluster the tables have other engines, and the same columns:
-- deploy/fleet/clickhouse/.

-- Tells that the database is one of a fleet, and of which form.
CREATE VIEW IF NOT EXISTS tarn_fleet AS SELECT 1 AS form;

-- From the moment `since` on, this host shows this value at this place, until the next `since` that it has there. With
-- `there` = 0 the place went away, with `void` = 1 a late document showed that nothing changed then, the row before has the
-- same value. A row that is written again has a higher `version`. In the order that questions ask for:
CREATE TABLE IF NOT EXISTS fact (
  host String, pointer String, place String, since Int64, value String, there UInt8, void UInt8, version UInt64
) ENGINE = ReplacingMergeTree(version) ORDER BY (pointer, place, host, since);

-- The same rows by host, for the loader and for the history of a host.
CREATE TABLE IF NOT EXISTS history (
  host String, pointer String, place String, scope String, since Int64, value String, there UInt8, void UInt8,
  version UInt64
) ENGINE = ReplacingMergeTree(version) ORDER BY (host, place, since) SETTINGS index_granularity = 1024;

-- What changes by itself, such as free memory: the newest value only.
CREATE TABLE IF NOT EXISTS latest (
  host String, pointer String, place String, since Int64, value String
) ENGINE = ReplacingMergeTree(since) ORDER BY (pointer, place, host);

-- Every document that was found, whatever it is; `hash` is SHA-256. Where `problem` is not empty its facts were not taken.
-- `scopes`: sipHash64 of each part of a document that speaks for itself, such as `/databaseInfo[name=SALES]`.
CREATE TABLE IF NOT EXISTS document (
  hash FixedString(32), host String, moment Int64, file String, bytes UInt64, seen Int64, state String, problem String,
  line UInt64, column UInt64, hostFrom String, timeFrom String, engine String, version String, database String,
  answered UInt64, asked UInt64, scopes Array(UInt64), written UInt64
) ENGINE = ReplacingMergeTree(written) ORDER BY (host, moment, hash) SETTINGS index_granularity = 1024;

-- Files that need not be read while another one is there, which has the same document. On a cluster only loaders ask for
-- it, so it stays on the server that they speak to.
CREATE TABLE IF NOT EXISTS copy (seen Int64, other String) ENGINE = ReplacingMergeTree ORDER BY seen;

-- The database of a fleet on a cluster, to be run on each of its servers:
--   clickhouse-client --multiquery <shards.sql
-- NAME_shard holds a server's own rows, NAME speaks for all of them. A host's rows are on one shard, always.
CREATE DATABASE IF NOT EXISTS fleet;
CREATE VIEW IF NOT EXISTS fleet.tarn_fleet AS SELECT 1 AS form;

CREATE TABLE IF NOT EXISTS fleet.fact_shard (
  host String, pointer String, place String, since Int64, value String, there UInt8, void UInt8, version UInt64
) ENGINE = ReplacingMergeTree(version) ORDER BY (pointer, place, host, since);
CREATE TABLE IF NOT EXISTS fleet.fact AS fleet.fact_shard
  ENGINE = Distributed(fleet, fleet, fact_shard, sipHash64(host));

CREATE TABLE IF NOT EXISTS fleet.history_shard (
  host String, pointer String, place String, scope String, since Int64, value String, there UInt8, void UInt8,
  version UInt64
) ENGINE = ReplacingMergeTree(version) ORDER BY (host, place, since) SETTINGS index_granularity = 1024;
CREATE TABLE IF NOT EXISTS fleet.history AS fleet.history_shard
  ENGINE = Distributed(fleet, fleet, history_shard, sipHash64(host));

CREATE TABLE IF NOT EXISTS fleet.latest_shard (
  host String, pointer String, place String, since Int64, value String
) ENGINE = ReplacingMergeTree(since) ORDER BY (pointer, place, host);
CREATE TABLE IF NOT EXISTS fleet.latest AS fleet.latest_shard
  ENGINE = Distributed(fleet, fleet, latest_shard, sipHash64(host));

CREATE TABLE IF NOT EXISTS fleet.document_shard (
  hash FixedString(32), host String, moment Int64, file String, bytes UInt64, seen Int64, state String, problem String,
  line UInt64, column UInt64, hostFrom String, timeFrom String, engine String, version String, database String,
  answered UInt64, asked UInt64, scopes Array(UInt64), written UInt64
) ENGINE = ReplacingMergeTree(written) ORDER BY (host, moment, hash) SETTINGS index_granularity = 1024;
CREATE TABLE IF NOT EXISTS fleet.document AS fleet.document_shard
  ENGINE = Distributed(fleet, fleet, document_shard, sipHash64(host));

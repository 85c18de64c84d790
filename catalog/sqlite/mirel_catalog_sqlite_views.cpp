#include "catalog/sqlite/mirel_catalog_sqlite_views.h"

// The columns of each view follow, every one under a line that says which fact of the engine it stands for.
// In the expressions, t is one of the main database's objects and d one of the connection's databases. The
// engine's own tables (sqlite_sequence, sqlite_stat1) are left out.

namespace {

constexpr const char* kRows =
    "case when t.stored then coalesce((select n from analyzed where tbl = t.name), "
    "case when (select enough from small) then mirel_rows(t.name) end, -1) else -1 end";
constexpr const char* kPages = "coalesce((select n from pages where pages.name = t.name), -1)";
// The primary key of a table WITHOUT ROWID is listed as an index that has no entry of its own.
constexpr const char* kClustered =
    "case when not t.stored then null "
    "when exists (select 1 from pragma_index_list(t.name, 'main') where origin = 'pk' "
    "and name not in (select name from main.sqlite_schema where type = 'index')) then 'Y' "
    "when mirel_grows(t.name, (select name from pragma_table_xinfo(t.name, 'main') where pk = 1)) then 'T' "
    "end";

constexpr Column kTables[] = {
    // Schema name of the database.
    {"tabschema", "VARCHAR", "'main'"},
    // Name of the table or view.
    {"tabname", "VARCHAR", "t.name"},
    // T: table, V: view, N: virtual table, whose rows come from a module.
    {"type", "CHAR(1)", "case when t.stored then 'T' when t.type = 'view' then 'V' else 'N' end"},
    // N: usable, X: the engine cannot resolve it (a view on a missing table, a module that is not loaded).
    {"status", "CHAR(1)", "case when t.usable is null then 'X' else 'N' end"},
    // Columns that a query sees, generated ones included.
    {"colcount", "INTEGER", "(select count(*) from pragma_table_xinfo(t.usable, 'main') where hidden <> 1)"},
    // Columns of the primary key.
    {"keycolumns", "INTEGER", "(select count(*) from pragma_table_xinfo(t.usable, 'main') where pk > 0)"},
    // Foreign keys that the table declares.
    {"parents", "INTEGER", "(select count(distinct id) from pragma_foreign_key_list(t.usable, 'main'))"},
    // The database file that holds its rows.
    {"tbspace", "VARCHAR", "case when t.stored then 'main' end"},
    // Rows as ANALYZE last counted them, counted now where it never did; -1: unknown.
    {"card", "INTEGER", kRows},
    // Pages of the table's b-tree, overflow pages included, indexes not; -1: unknown.
    {"npages", "INTEGER", kPages},
    // Latest time at which ANALYZE can have seen the table: the file's last change (UTC). The engine keeps
    // no time of its own. NULL: never analyzed, or found empty.
    {"stats_time", "VARCHAR",
     "case when t.name in (select tbl from analyzed) "
     "then strftime('%Y-%m-%dT%H:%M:%SZ', mirel_changed(), 'unixepoch') end"},
    // R: b-tree of rows, N: nothing stored.
    {"tableorg", "CHAR(1)", "case when t.stored then 'R' else 'N' end"},
    // N: stored as it is; the engine compresses nothing. Empty: nothing stored.
    {"compression", "CHAR(1)", "case when t.stored then 'N' else '' end"},
    // Empty: no row compression.
    {"rowcompmode", "CHAR(1)", "''"},
    // -1: no row compression to measure.
    {"avgrowcompressionratio", "REAL", "-1"},
    // Y: rows lie in the order of the primary key (WITHOUT ROWID), T: in order of insertion (AUTOINCREMENT).
    {"clustered", "CHAR(1)", kClustered},
    // Empty: the engine has no security labels.
    {"protectiongranularity", "CHAR(1)", "''"},
    // Empty: the engine has no access control for rows or columns.
    {"control", "CHAR(1)", "''"},
};

// The tables of type T in syscat.tables: views and virtual tables have no statistics.
constexpr Column kTableStatistics[] = {
    // As in syscat.tables.
    {"tabschema", "VARCHAR", "'main'"},
    // As in syscat.tables.
    {"tabname", "VARCHAR", "t.name"},
    // As in syscat.tables.
    {"card", "INTEGER", kRows},
    // As in syscat.tables.
    {"npages", "INTEGER", kPages},
};

constexpr Column kColumns[] = {
    // As in syscat.tables.
    {"tabschema", "VARCHAR", "'main'"},
    // Table or view that the column belongs to.
    {"tabname", "VARCHAR", "t.name"},
    // Name of the column.
    {"colname", "VARCHAR", "c.name"},
    // Position of the column, from 0.
    {"colno", "INTEGER", "c.cid"},
    // Declared type without its arguments, in upper case; empty where none was declared.
    {"typename", "VARCHAR", "upper(rtrim(substr(c.type, 1, instr(c.type || '(', '(') - 1)))"},
    // First argument of the declared type.
    {"length", "INTEGER",
     "case when instr(c.type, '(') then cast(substr(c.type, instr(c.type, '(') + 1) as integer) end"},
    // Second argument of the declared type.
    {"scale", "INTEGER",
     "case when instr(c.type, ',') then cast(substr(c.type, instr(c.type, ',') + 1) as integer) end"},
    // N: declared NOT NULL.
    {"nulls", "CHAR(1)", "case when c.\"notnull\" then 'N' else 'Y' end"},
    // Expression of the DEFAULT clause.
    {"default", "VARCHAR", "c.dflt_value"},
    // Position in the primary key, from 1.
    {"keyseq", "INTEGER", "nullif(c.pk, 0)"},
    // A: generated from other columns.
    {"generated", "CHAR(1)", "case when c.hidden in (2, 3) then 'A' else '' end"},
};

constexpr Column kBufferPools[] = {
    // Each open database has one page cache, named like it.
    {"bpname", "VARCHAR", "d.name"},
    // Number of the database on the connection.
    {"bufferpoolid", "INTEGER", "d.seq"},
    // PRAGMA cache_size in pages; the engine takes a negative one in KiB.
    {"npages", "INTEGER",
     "case when mirel_setting(d.name, 'cache_size') >= 0 then mirel_setting(d.name, 'cache_size') "
     "else mirel_setting(d.name, 'cache_size') * -1024 / mirel_setting(d.name, 'page_size') end"},
    // PRAGMA page_size, in bytes.
    {"pagesize", "INTEGER", "mirel_setting(d.name, 'page_size')"},
    // PRAGMA cache_spill: pages beyond which changed ones are written early; 0: never.
    {"spillpages", "INTEGER", "mirel_setting(d.name, 'cache_spill')"},
    // PRAGMA mmap_size: bytes of the file that are mapped instead of read.
    {"mmapsize", "INTEGER", "mirel_setting(d.name, 'mmap_size')"},
};

constexpr Column kTableSpaces[] = {
    // Each open database file, by its schema name.
    {"tbspace", "VARCHAR", "d.name"},
    // Number of the database on the connection.
    {"tbspaceid", "INTEGER", "d.seq"},
    // S: the file grows as the operating system gives room.
    {"tbspacetype", "CHAR(1)", "'S'"},
    // A: permanent data of all types, T: temporary tables.
    {"datatype", "CHAR(1)", "case when d.name = 'temp' then 'T' else 'A' end"},
    // The page cache of this database.
    {"bufferpoolid", "INTEGER", "d.seq"},
    // PRAGMA page_size, in bytes.
    {"pagesize", "INTEGER", "mirel_setting(d.name, 'page_size')"},
    // Pages that the file grows by.
    {"extentsize", "INTEGER", "1"},
    // PRAGMA page_count.
    {"totalpages", "INTEGER", "mirel_setting(d.name, 'page_count')"},
    // PRAGMA freelist_count.
    {"freepages", "INTEGER", "mirel_setting(d.name, 'freelist_count')"},
    // Path of the file; empty for a database in memory.
    {"container", "VARCHAR", "d.file"},
};

// The engine has no security labels.
constexpr Column kSecurityLabels[] = {
    // Name of the label.
    {"seclabelname", "VARCHAR", "null"},
    // Policy that the label belongs to.
    {"secpolicyname", "VARCHAR", "null"},
};

// Triggers: the only statements that the engine keeps.
constexpr Column kStatements[] = {
    // Schema name of the database.
    {"pkgschema", "VARCHAR", "'main'"},
    // Name of the trigger.
    {"pkgname", "VARCHAR", "t.name"},
    // Table or view that it belongs to.
    {"tabname", "VARCHAR", "t.tbl_name"},
    // The CREATE TRIGGER statement.
    {"text", "VARCHAR", "t.sql"},
};

// The engine does not partition tables.
constexpr Column kDataPartitions[] = {
    // As in syscat.tables.
    {"tabschema", "VARCHAR", "null"},
    // As in syscat.tables.
    {"tabname", "VARCHAR", "null"},
    // Number of the partition in its table.
    {"datapartitionid", "INTEGER", "null"},
    // Name of the partition.
    {"datapartitionname", "VARCHAR", "null"},
};

constexpr Column kConfiguration[] = {
    // Name of a PRAGMA, of an option that the library was compiled with, sqlite_version, or hadr_role: the
    // engine knows no replication, so a database stands alone.
    {"name", "VARCHAR", "s.name"},
    // Its present value; ON for a compile option without one.
    {"value", "VARCHAR", "s.value"},
    // Where it was asked: PRAGMA, COMPILATION, LIBRARY, ENGINE.
    {"source", "VARCHAR", "s.source"},
    // The member to ask: there is only 0, and -2 stands for all.
    {"member", "INTEGER HIDDEN", "?1"},
};
// The settings that can be read without changing anything or reading the whole file.
constexpr const char* kSettings =
    "from (with pragma(name) as (values ('analysis_limit'), ('application_id'), ('auto_vacuum'), "
    "('automatic_index'), ('busy_timeout'), ('cache_size'), ('cache_spill'), ('cell_size_check'), "
    "('checkpoint_fullfsync'), ('data_version'), ('defer_foreign_keys'), ('encoding'), ('foreign_keys'), "
    "('freelist_count'), ('fullfsync'), ('hard_heap_limit'), ('ignore_check_constraints'), ('journal_mode'), "
    "('journal_size_limit'), ('legacy_alter_table'), ('locking_mode'), ('max_page_count'), ('mmap_size'), "
    "('page_count'), ('page_size'), ('query_only'), ('read_uncommitted'), ('recursive_triggers'), "
    "('reverse_unordered_selects'), ('schema_version'), ('secure_delete'), ('soft_heap_limit'), "
    "('synchronous'), ('temp_store'), ('threads'), ('trusted_schema'), ('user_version'), "
    "('wal_autocheckpoint'), ('writable_schema')) "
    "select name, mirel_setting('main', name) as value, 'PRAGMA' as source from pragma "
    "union all select substr(o, 1, instr(o || '=', '=') - 1), "
    "case when instr(o, '=') then substr(o, instr(o, '=') + 1) else 'ON' end, 'COMPILATION' "
    "from (select compile_options as o from pragma_compile_options) "
    "union all select 'sqlite_version', sqlite_version(), 'LIBRARY' "
    "union all select 'hadr_role', 'STANDARD', 'ENGINE') as s "
    "where s.value is not null and ifnull(?1, -2) in (-2, 0) order by s.source, s.name";

constexpr Column kEncryption[] = {
    // Path of the database file; empty for a database in memory.
    {"object_name", "VARCHAR", "d.file"},
    // Files are encrypted as a whole or not at all.
    {"object_type", "VARCHAR", "'DATABASE'"},
    // NULL: the file could be opened without a key.
    {"algorithm", "VARCHAR", "null"},
    // NULL: the file could be opened without a key.
    {"key_length", "INTEGER", "null"},
    // Bytes at the end of each page that an encrypting extension would use for its own.
    {"reserved_bytes", "INTEGER", "mirel_reserved()"},
    // Y: the library was compiled with a codec, so that it could open encrypted files.
    {"codec", "CHAR(1)",
     "case when exists (select 1 from pragma_compile_options where compile_options like 'HAS_CODEC%') "
     "then 'Y' else 'N' end"},
};

// A table of one row, to evaluate expressions on.
constexpr Column kOneRow[] = {
    // Y.
    {"dummy", "CHAR(1)", "'Y'"},
};

constexpr View kAllViews[] = {
    {"syscat", "tables", kTables, "from objects as t order by t.name"},
    {"syscat", "columns", kColumns,
     "from objects as t join pragma_table_xinfo(t.usable, 'main') as c where c.hidden <> 1 "
     "order by t.name, c.cid"},
    {"syscat", "bufferpools", kBufferPools, "from databases as d order by d.seq"},
    {"syscat", "tablespaces", kTableSpaces, "from databases as d order by d.seq"},
    {"syscat", "securitylabels", kSecurityLabels, "where 0"},
    {"syscat", "statements", kStatements,
     "from main.sqlite_schema as t where t.type = 'trigger' order by t.name"},
    {"syscat", "datapartitions", kDataPartitions, "where 0"},
    {"sysstat", "tables", kTableStatistics, "from objects as t where t.stored order by t.name"},
    {"syszent", "sysdummy1", kOneRow, ""},
    {"sysproc", "db_get_cfg", kConfiguration, kSettings},
    {"sysproc", "admin_get_encryption_info", kEncryption, "from databases as d where d.name = 'main'"},
};
constexpr const char* kAllSchemas[] = {"syscat", "sysstat", "syszent", "sysproc"};

}  // namespace

const std::span<const View> kViews = kAllViews;
const std::span<const char* const> kSchemas = kAllSchemas;

// objects: tables and views. A table is stored when it has a root page; an object is usable when the engine
// can resolve it, as asking for the columns of a broken view would fail the whole query.
// analyzed: rows per table. In sqlite_stat1 each index has a text of numbers, the first of them the rows it
// covers; a partial index covers fewer than its table has.
// pages: pages per table. Counting rows and pages reads the whole file, so it is left where the file has
// more than 1 GiB: a collector must not be felt on the host that it describes.
const char* const kCommon =
    "with objects as (select name, type, type = 'table' and rootpage > 0 as stored, "
    "case when type = 'table' and rootpage > 0 or mirel_readable(name) then name end as usable "
    "from main.sqlite_schema where type in ('table', 'view') and name not glob 'sqlite_*'), "
    "databases as (select name, file, seq from pragma_database_list "
    "where name not in ('syscat', 'sysstat', 'syszent', 'sysproc')), "
    "analyzed as materialized (select tbl, max(cast(stat as integer)) as n from %s group by tbl), "
    "small as (select mirel_setting('main', 'page_count') * mirel_setting('main', 'page_size') <= 1 << 30 "
    "as enough), "
    "pages as materialized (select name, pageno as n from small cross join sysstat.dbstat "
    "where enough and aggregate = 1) ";

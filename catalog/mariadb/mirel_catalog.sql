-- What a MariaDB server (10.11 or later) needs to answer the default template.
--
--   mariadb < mirel_catalog.sql                     installs the catalog, or replaces an older one
--   mariadb -e 'call syscat.mirel_remove()'         removes it
--
-- Run it as root@localhost or another account that may do everything: the views read information_schema and the
-- engine's own tables with the rights of the account that made them, and tell of the database that the session is
-- in, so nobody learns about a database that they cannot enter. Everybody may read the views and nothing else; they
-- hold no data.
--
-- Where the engine has no such thing, a text is empty and a statistic -1. Beside each column stands the fact of the
-- engine that it tells. The rows of a view come by name, and the engine sorts the groups of a query by their key.
set names utf8mb4;
set sql_mode = 'STRICT_TRANS_TABLES,NO_ENGINE_SUBSTITUTION';

delimiter //

-- Never touch what somebody else has made under the same names, nor a server that lacks what is used below.
begin not atomic
  declare foreign_names text;
  if substring_index(version(), '.', 1) * 100 + substring_index(substring_index(version(), '.', 2), '.', -1) < 1011 then
    signal sqlstate '45000' set message_text = 'the mirel catalog needs MariaDB 10.11 or later';
  end if;
  select group_concat(schema_name order by schema_name separator ', ') into foreign_names
  from information_schema.schemata
  where schema_name in ('syscat', 'sysstat', 'syszent', 'sysproc') and schema_comment <> 'mirel catalog';
  if foreign_names is not null then
    set foreign_names = concat('already in use and not the mirel catalog: ', foreign_names);
    signal sqlstate '45000' set message_text = foreign_names;
  end if;
end //

create database if not exists syscat character set utf8mb4 comment 'mirel catalog' //
create database if not exists sysstat character set utf8mb4 comment 'mirel catalog' //
create database if not exists syszent character set utf8mb4 comment 'mirel catalog' //
create database if not exists sysproc character set utf8mb4 comment 'mirel catalog' //

-- Takes the catalog off again, for an account that may drop databases.
create or replace procedure syscat.mirel_remove()
sql security invoker modifies sql data
begin
  declare foreign_names text;
  declare continue handler for 1141 begin end;  -- a grant that is gone already
  select group_concat(name order by name separator ', ') into foreign_names
  from (
    select concat(table_schema, '.', table_name) as name from information_schema.tables
    where table_schema in ('syscat', 'sysstat', 'syszent', 'sysproc')
    union all
    select concat(routine_schema, '.', routine_name) from information_schema.routines
    where routine_schema in ('syscat', 'sysstat', 'syszent', 'sysproc')) as made
  where name not in (
    'syscat.mirel_columns', 'syscat.mirel_file_name', 'syscat.mirel_other_engine', 'syscat.mirel_partitions',
    'syscat.mirel_relations', 'syscat.mirel_remove',
    'syscat.bufferpools', 'syscat.columns', 'syscat.datapartitions', 'syscat.securitylabels', 'syscat.statements',
    'syscat.tables', 'syscat.tablespaces', 'sysstat.tables', 'syszent.sysdummy1', 'sysproc.db_get_cfg',
    'sysproc.admin_get_encryption_info');
  if foreign_names is not null then
    set foreign_names = concat('somebody has built on the mirel catalog: ', foreign_names);
    signal sqlstate '45000' set message_text = foreign_names;
  end if;
  revoke select on syscat.* from public;
  revoke select on sysstat.* from public;
  revoke select on syszent.* from public;
  revoke select on sysproc.* from public;
  drop database sysproc;
  drop database syszent;
  drop database sysstat;
  drop database syscat;
end //

-- A name as the engine spells it in a file's name (@0020 is a blank), spelt as in a query.
create or replace function syscat.mirel_file_name(name varchar(512) character set utf8mb3) returns varchar(64)
sql security invoker deterministic no sql
return convert(cast(cast(name as binary) as char character set filename) using utf8mb4) //

-- What a table of an engine other than InnoDB tells when it is opened: rows, pages, whether it is packed, and its
-- partitions, as a JSON array. Only engines that keep their rows on this host are asked.
create or replace function syscat.mirel_other_engine(
  db varchar(64) character set utf8mb3, name varchar(64) character set utf8mb3, engine varchar(64)) returns longtext
sql security definer reads sql data
begin
  declare found longtext;
  if engine not in ('Aria', 'MyISAM', 'MEMORY', 'CSV', 'ARCHIVE', 'MRG_MyISAM') then
    return '[-1, -1, 0, []]';
  end if;
  select json_array(
    coalesce(sum(p.table_rows), -1),
    case engine when 'Aria' then coalesce(sum(p.data_length) div 8192, -1) else -1 end,
    (select t.row_format = 'Compressed' from information_schema.tables t
     where t.table_schema = db and t.table_name = name),
    json_compact(coalesce(json_arrayagg(p.partition_name), '[]')))
  into found
  from information_schema.partitions p where p.table_schema = db and p.table_name = name;
  return found;
end //

-- The relations of a database by name, as a JSON array of one array each:
-- name, type, compression, storage, pages, rows, time of the statistics, ratio, clustering, grants.
-- It takes a file opened for each table, so the session keeps the answer for two seconds, or for ten times as long as
-- it took, and those of mirel_columns and mirel_partitions with it: the queries of one document share them.
create or replace function syscat.mirel_relations(db varchar(64) character set utf8mb3) returns longtext
sql security definer reads sql data
begin
  declare listed, packed_columns, columns_of, partitions_of, relations longtext;
  declare began datetime(6) default sysdate(6);
  if db is null then
    return '[]';
  end if;
  if @mirel_relations_of is null or @mirel_relations_of <> db
      or @mirel_relations_until < began then
    -- group_concat_max_len bounds json_arrayagg, too.
    set statement group_concat_max_len = 4294967295 for
    select coalesce(json_arrayagg(json_array(
      table_name,
      case table_type when 'VIEW' then 'V' when 'SEQUENCE' then 'Q' else 'T' end,
      engine,
      json_compact(case when table_type not in ('VIEW', 'SEQUENCE') and engine <> 'InnoDB'
        then syscat.mirel_other_engine(db, table_name, engine) else '[]' end))), '[]')
    into listed
    from information_schema.tables where table_schema = db;

    -- The columns of sequences are the engine's own.
    set statement group_concat_max_len = 4294967295 for
    select
      coalesce(json_arrayagg(json_array(c.table_name, c.ordinal_position, c.column_name, upper(c.data_type))
        order by c.table_name collate utf8mb3_bin, c.ordinal_position), '[]'),
      concat('[', coalesce(group_concat(distinct
        if(c.column_type like '%/*M!100301 COMPRESSED*/', json_quote(c.table_name), null)), ''), ']')
    into columns_of, packed_columns
    from information_schema.columns as c
    left join (
      select distinct l.name
      from json_table(listed, '$[*]' columns (
        name varchar(64) character set utf8mb3 collate utf8mb3_bin path '$[0]', type char(1) path '$[1]')) as l
      where l.type = 'Q') as q
      on q.name = c.table_name collate utf8mb3_bin
    where c.table_schema = db and q.name is null;

    -- TABLE#P#PARTITION or TABLE#P#PARTITION#SP#SUBPARTITION; what else has a # is there while a table is rebuilt.
    set statement group_concat_max_len = 4294967295 for
    select coalesce(json_arrayagg(json_array(p.name, p.part)), '[]')
    into partitions_of
    from (
      select
        syscat.mirel_file_name(substring_index(substring_index(name, '/', -1), '#P#', 1)) as name,
        syscat.mirel_file_name(substring_index(name, '#', -1)) as part
      from information_schema.innodb_sys_tables
      where name like concat(replace(cast(convert(db using filename) as binary), '_', '\_'), '/%')
        and name regexp '/[^#]+#P#[^#]+(#SP#[^#]+)?$'
      union all
      select l.name, l.part
      from json_table(listed, '$[*]' columns (
        name varchar(64) path '$[0]', nested path '$[3][3][*]' columns (part varchar(140) path '$'))) as l
      where l.part is not null) as p;

    -- What the engine's tables tell is brought together by grouping: of a join between them the optimizer knows
    -- nothing, and would compare each with each. No long text passes through it, which would go by way of the disk.
    set statement group_concat_max_len = 4294967295 for
    select coalesce(json_arrayagg(json_array(
      t.name,
      t.type,
      case when t.packed and t.packed_columns then 'B' when t.packed then 'R' when t.packed_columns then 'V' else 'N'
      end,
      case when t.type <> 'T' then 'N' when t.engine in ('InnoDB', 'Aria', 'MyISAM') then 'R' else upper(t.engine)
      end,
      if(t.type = 'T', coalesce(t.npages, -1), -1),
      if(t.type = 'T', coalesce(t.card, -1), -1),
      t.last_update,
      coalesce(t.ratio, -1),
      case when t.type = 'T' and t.engine = 'InnoDB' then if(t.keyless, 'T', 'Y') else '' end,
      if(t.granted, 'C', '')) order by t.name), '[]')
    into relations
    from (
      select
        f.name, max(f.type) as type, max(f.engine) as engine, max(f.packed_columns) as packed_columns,
        max(f.last_update) as last_update, max(f.card) as card, max(f.npages) as npages, max(f.keyless) as keyless,
        max(f.packed) as packed, max(f.ratio) as ratio, max(f.granted) as granted
      from (
        select
          name collate utf8mb3_bin as name, type, engine, null as packed_columns, null as last_update, card, npages,
          null as keyless, packed, null as ratio, null as granted
        from json_table(listed, '$[*]' columns (
          name varchar(64) character set utf8mb3 path '$[0]', type char(1) path '$[1]',
          engine varchar(64) character set utf8mb3 path '$[2]', card bigint path '$[3][0]',
          npages bigint path '$[3][1]', packed boolean path '$[3][2]')) as l
        union all
        select name collate utf8mb3_bin, null, null, true, null, null, null, null, null, null, null
        from json_table(packed_columns, '$[*]' columns (name varchar(64) character set utf8mb3 path '$')) as c
        -- Of a partitioned table each partition has a row of its own, TABLE#P#PARTITION. A table that is called so
        -- without being one remains without statistics.
        union all
        select
          substring_index(table_name, '#P#', 1) collate utf8mb3_bin as name, null, null, null,
          max(last_update), sum(n_rows), sum(clustered_index_size), null, null, null, null
        from mysql.innodb_table_stats where database_name = db group by name
        union all
        select
          substring_index(table_name, '#P#', 1) collate utf8mb3_bin, null, null, null, null, null, null, true, null,
          null, null
        from mysql.innodb_index_stats where database_name = db and index_name = 'GEN_CLUST_INDEX'
        union all
        select
          convert(syscat.mirel_file_name(substring_index(substring_index(i.name, '/', -1), '#P#', 1)) using utf8mb3)
            collate utf8mb3_bin as name,
          null, null, null, null, null, null, null, true,
          max(case when zip_page_size > 0 then p.size / zip_page_size end), null
        from information_schema.innodb_sys_tables as i,
          (select variable_value as size from information_schema.global_variables
           where variable_name = 'INNODB_PAGE_SIZE') as p
        where i.name like concat(replace(cast(convert(db using filename) as binary), '_', '\_'), '/%')
          and i.name not like '%/#%' and (row_format = 'Compressed' or flag & 128 <> 0)
        group by 1
        union all
        select
          table_name collate utf8mb3_bin, null, null, null, null, null, null, null, null, null, true
        from mysql.columns_priv where columns_priv.db = db) as f
      group by f.name
      having type is not null) as t;
    set @mirel_relations = relations, @mirel_columns = columns_of, @mirel_partitions = partitions_of,
      @mirel_relations_of = db, @mirel_relations_until = sysdate(6)
        + interval greatest(2000000, 10 * timestampdiff(microsecond, began, sysdate(6))) microsecond;
  end if;
  return @mirel_relations;
end //

-- The columns of the tables and views of a database, likewise: name of the table, position, name, type.
create or replace function syscat.mirel_columns(db varchar(64) character set utf8mb3) returns longtext
sql security definer reads sql data
begin
  declare relations longtext default syscat.mirel_relations(db);
  return if(db is null, relations, @mirel_columns);
end //

-- The partitions of its tables, likewise: name of the table, name of the partition.
create or replace function syscat.mirel_partitions(db varchar(64) character set utf8mb3) returns longtext
sql security definer reads sql data
begin
  declare relations longtext default syscat.mirel_relations(db);
  return if(db is null, relations, @mirel_partitions);
end //
delimiter ;

-- One row, for facts that need no table.
create or replace view syszent.sysdummy1 as
select
  'Y' as present;  -- always Y

-- Tables, views and sequences of the session's database. A partitioned table is one table; a version of a table's
-- past is no table. There are no materialized views.
create or replace view syscat.tables as
select
  database() as tabschema,       -- the session's database
  r.tabname,                     -- TABLES.TABLE_NAME
  r.type,                        -- TABLES.TABLE_TYPE: T table, V view, Q sequence
  r.stats_time,                  -- innodb_table_stats.last_update, when InnoDB last counted; null for other engines
  r.card,                        -- innodb_table_stats.n_rows as last estimated, PARTITIONS.TABLE_ROWS of other
                                 -- engines; -1 unknown
  r.npages,                      -- innodb_table_stats.clustered_index_size; Aria: DATA_LENGTH in blocks; -1 unknown
  r.tableorg,                    -- R rows (InnoDB, Aria, MyISAM), else TABLES.ENGINE; N no storage of its own
  r.compression,                 -- R rows packed: ROW_FORMAT=COMPRESSED, PAGE_COMPRESSED or myisampack; V columns
                                 -- with COMPRESSED; B both; N none
  '' as rowcompmode,             -- empty: the engine packs pages, and knows no modes
  r.avgrowcompressionratio,      -- size of a page by the size that KEY_BLOCK_SIZE gives it; -1 unknown
  r.clustered,                   -- InnoDB: Y rows lie in the order of a key, T in that of their insertion
  '' as protectiongranularity,   -- empty: the engine has no security labels
  r.control                      -- C column grants (columns_priv)
from json_table(syscat.mirel_relations(database()), '$[*]' columns (
  tabname varchar(64) path '$[0]',
  type char(1) path '$[1]',
  compression char(1) path '$[2]',
  tableorg varchar(64) path '$[3]',
  npages bigint path '$[4]',
  card bigint path '$[5]',
  stats_time datetime path '$[6]',
  avgrowcompressionratio float path '$[7]',
  clustered char(1) path '$[8]',
  control char(1) path '$[9]')) as r;

-- The statistics of the tables alone: of those that are of type T in syscat.tables.
create or replace view sysstat.tables as
select
  tabschema,  -- the session's database
  tabname,    -- TABLES.TABLE_NAME
  card,       -- as in syscat.tables; -1 unknown
  npages      -- as in syscat.tables; -1 unknown
from syscat.tables
where type = 'T';

-- The columns of tables and views; those of sequences are the engine's own.
create or replace view syscat.columns as
select
  database() as tabschema,   -- the session's database
  r.tabname,                 -- COLUMNS.TABLE_NAME
  r.colname,                 -- COLUMNS.COLUMN_NAME
  r.colno,                   -- COLUMNS.ORDINAL_POSITION, from 1
  r.typename                 -- COLUMNS.DATA_TYPE in upper case: INT, VARCHAR, LONGTEXT (JSON is one)
from json_table(syscat.mirel_columns(database()), '$[*]' columns (
  tabname varchar(64) path '$[0]',
  colno integer path '$[1]',
  colname varchar(64) path '$[2]',
  typename varchar(64) path '$[3]')) as r;

-- The partitions of tables; of a table with subpartitions those.
create or replace view syscat.datapartitions as
select
  database() as tabschema,                             -- the session's database
  r.tabname,                                           -- TABLES.TABLE_NAME
  concat(r.tabname, '.', r.name) as datapartitionid,   -- unique in the database: the engine has no number for it
  r.name as datapartitionname                          -- PARTITIONS.PARTITION_NAME
from json_table(syscat.mirel_partitions(database()), '$[*]' columns (
  tabname varchar(64) path '$[0]',
  name varchar(140) path '$[1]')) as r
order by r.tabname, r.name;

-- The caches that the server is set to; innodb_buffer_pool is the one that InnoDB's tablespaces use.
create or replace view syscat.bufferpools as
select
  elt(v.bufferpoolid, 'innodb_buffer_pool', 'aria_pagecache', 'key_buffer') as bpname,  -- name of the cache
  v.bufferpoolid,                         -- 1 InnoDB, 2 Aria, 3 MyISAM (indexes only)
  max(v.size) div max(v.page) as npages,  -- its size in pages
  max(v.page) as pagesize                 -- in bytes
from (
  -- Of one reading, since a join would read all variables again for each row.
  select
    field(substring_index(variable_name, '_', 1), 'INNODB', 'ARIA', 'KEY') as bufferpoolid,
    if(variable_name like '%_BUFFER_%', cast(variable_value as unsigned), null) as size,
    if(variable_name like '%_BUFFER_%', null, cast(variable_value as unsigned)) as page
  from information_schema.global_variables
  where variable_name in (
    'INNODB_BUFFER_POOL_SIZE', 'INNODB_PAGE_SIZE', 'ARIA_PAGECACHE_BUFFER_SIZE', 'ARIA_BLOCK_SIZE',
    'KEY_BUFFER_SIZE', 'KEY_CACHE_BLOCK_SIZE')) as v
group by v.bufferpoolid
order by v.bufferpoolid;

-- InnoDB's tablespaces: the shared ones by name, and the files that hold one table each as one line for each size
-- of page.
create or replace view syscat.tablespaces as
select
  t.tbspace,                            -- innodb_system, innodb_temporary, file_per_table
  'D' as tbspacetype,                   -- D, extents managed by the engine
  1 as bufferpoolid,                    -- innodb_buffer_pool
  t.datatype,                           -- T temporary tables, A any
  t.pagesize,                           -- INNODB_SYS_TABLES.ZIP_PAGE_SIZE where rows are packed, else innodb_page_size
  greatest(1048576 div t.pagesize, 64) as extentsize  -- pages that are allocated together
from (
  select distinct s.tbspace, s.datatype, if(s.zip > 0, s.zip, cast(v.variable_value as unsigned)) as pagesize
  from (
    select 'innodb_system' as tbspace, 'A' as datatype, 0 as zip
    union all select 'innodb_temporary', 'T', 0
    union all select distinct 'file_per_table', 'A', zip_page_size
    from information_schema.innodb_sys_tables where space_type = 'Single') as s
  join information_schema.global_variables as v on v.variable_name = 'INNODB_PAGE_SIZE') as t
order by t.tbspace, t.pagesize;

-- Security labels: the engine has none.
create or replace view syscat.securitylabels as
select
  '' as seclabelname,   -- name of the label
  '' as secpolicyname   -- policy that it belongs to
from dual where false;

-- Statements that the server keeps: routines, triggers and events of the session's database.
create or replace view syscat.statements as
select
  s.pkgschema,  -- the session's database
  s.pkgname,    -- ROUTINES.ROUTINE_NAME, TRIGGERS.TRIGGER_NAME or EVENTS.EVENT_NAME
  s.kind,       -- FUNCTION, PROCEDURE, PACKAGE, TRIGGER, EVENT
  s.text        -- its body
from (
  select routine_schema as pkgschema, routine_name as pkgname, routine_type as kind, routine_definition as text
  from information_schema.routines where routine_schema = database()
  union all
  select trigger_schema, trigger_name, 'TRIGGER', action_statement
  from information_schema.triggers where trigger_schema = database()
  union all
  select event_schema, event_name, 'EVENT', event_definition
  from information_schema.events where event_schema = database()) as s
order by s.pkgname, s.kind;

-- The configuration. The engine has no functions that answer with rows, so table(db_get_cfg(-2)) is this view: a
-- server is one member.
--   name   GLOBAL_VARIABLES.VARIABLE_NAME in lower case; the settings of replication once more under "hadr_"
--   value  GLOBAL_VARIABLES.VARIABLE_VALUE
-- hadr_role is PEER in a Galera cluster, STANDBY with a replication of its own set up, PRIMARY with a replica
-- connected, otherwise STANDARD; hadr_standbys counts the replicas, hadr_cluster_size the members (GLOBAL_STATUS).
-- Settings that may hold a password are left out.
create or replace view sysproc.db_get_cfg as
select c.name, c.value
from (
  select lower(variable_name) as name, variable_value as value from information_schema.global_variables
  union all
  select concat('hadr_', lower(variable_name)), variable_value from information_schema.global_variables
  where variable_name in (
    'BINLOG_FORMAT', 'GTID_DOMAIN_ID', 'GTID_STRICT_MODE', 'LOG_BIN', 'READ_ONLY', 'RPL_SEMI_SYNC_MASTER_ENABLED',
    'RPL_SEMI_SYNC_SLAVE_ENABLED', 'SERVER_ID', 'SYNC_BINLOG', 'WSREP_CLUSTER_NAME', 'WSREP_ON')
  union all
  select 'hadr_role', case
    when max(if(variable_name = 'WSREP_CLUSTER_SIZE', variable_value, 0)) > 0 then 'PEER'
    when max(if(variable_name = 'SLAVE_CONNECTIONS', variable_value, 0)) > 0 then 'STANDBY'
    when max(if(variable_name = 'SLAVES_CONNECTED', variable_value, 0)) > 0 then 'PRIMARY'
    else 'STANDARD' end
  from information_schema.global_status
  where variable_name in ('WSREP_CLUSTER_SIZE', 'SLAVE_CONNECTIONS', 'SLAVES_CONNECTED')
  union all
  select if(variable_name = 'SLAVES_CONNECTED', 'hadr_standbys', 'hadr_cluster_size'), variable_value
  from information_schema.global_status where variable_name in ('SLAVES_CONNECTED', 'WSREP_CLUSTER_SIZE')) as c
where c.name not regexp '_(password|passphrase|secret|token|auth|cmd|filekey|secret_key|access_key|http_proxy)$'
  and c.name not in ('wsrep_provider_options', 'init_connect', 'init_slave')
order by c.name;

-- What the server knows of encryption.
--   name   GLOBAL_VARIABLES.VARIABLE_NAME in lower case; connection_... tells of this session (SESSION_STATUS);
--          encrypted_tablespaces counts those of INNODB_TABLESPACES_ENCRYPTION, key_management names the plugin
--   value  its value; null if the connection is not encrypted or there is no such plugin
create or replace view sysproc.admin_get_encryption_info as
select c.name, c.value
from (
  select lower(variable_name) as name, variable_value as value from information_schema.global_variables
  where variable_name in (
    'ARIA_ENCRYPT_TABLES', 'ENCRYPT_BINLOG', 'ENCRYPT_TMP_DISK_TABLES', 'ENCRYPT_TMP_FILES', 'HAVE_SSL',
    'INNODB_ENCRYPT_LOG', 'INNODB_ENCRYPT_TABLES', 'INNODB_ENCRYPT_TEMPORARY_TABLES', 'INNODB_ENCRYPTION_THREADS',
    'TLS_VERSION', 'VERSION_SSL_LIBRARY')
  union all
  select if(variable_name = 'SSL_VERSION', 'connection_tls_version', 'connection_tls_cipher'),
    nullif(variable_value, '')
  from information_schema.session_status where variable_name in ('SSL_VERSION', 'SSL_CIPHER')
  union all
  select 'encrypted_tablespaces', count(*) from information_schema.innodb_tablespaces_encryption
  where encryption_scheme > 0
  union all
  select 'key_management', group_concat(plugin_name order by plugin_name) from information_schema.plugins
  where plugin_type = 'ENCRYPTION' and plugin_status = 'ACTIVE') as c
order by c.name;

grant select on syscat.* to public;
grant select on sysstat.* to public;
grant select on syszent.* to public;
grant select on sysproc.* to public;

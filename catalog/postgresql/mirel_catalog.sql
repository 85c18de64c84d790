-- What a PostgreSQL database (14 or later) needs to answer the default template.
--
--   psql -d NAME -f mirel_catalog.sql               installs the catalog, or replaces an older one
--   psql -d NAME -v remove=1 -f mirel_catalog.sql   removes it
--
-- Run it as the owner of the database or as a superuser, with psql 14 or later. Everything happens in one
-- transaction. The views and functions read the engine's own catalogs with the rights that every user has
-- and hold no data; PUBLIC may read them and nothing else.
--
-- The catalog speaks of the users' relations, those that pg_stat_user_tables and its like tell of: the
-- engine's own stay in pg_catalog and information_schema, and the catalog does not count itself. A partitioned
-- table is one table; its leaf partitions are in syscat.datapartitions. Where the engine has no such thing, a
-- text is empty and a statistic -1. Beside each column stands the fact of the engine that it tells. Rows come
-- ordered by name, byte by byte, so that the answers of two days can be compared.
\set ON_ERROR_STOP on
begin;
set local search_path = pg_catalog;
set local client_min_messages = warning;

-- Never touch what somebody else has made under the same names, nor a server that lacks what is used below.
do $$
declare
  foreign_names text;
begin
  if current_setting('server_version_num')::integer < 140000 then
    raise exception 'the mirel catalog needs PostgreSQL 14 or later';
  end if;
  select string_agg(name, ', ') into foreign_names
  from (select nspname::text, obj_description(oid, 'pg_namespace') from pg_namespace
        where nspname in ('syscat', 'sysstat', 'syszent', 'sysproc')
        union all
        select oid::regprocedure::text, obj_description(oid, 'pg_proc') from pg_proc
        where oid = to_regprocedure('public.db_get_cfg(integer)')) as taken (name, mark)
  where mark is distinct from 'mirel catalog';
  if foreign_names is not null then
    raise exception 'already in use and not the mirel catalog: %', foreign_names;
  end if;
end $$;

-- Whatever else depends on the catalog makes this fail, and nothing happens.
drop view if exists syszent.sysdummy1, sysstat.tables, syscat.tables, syscat.columns, syscat.datapartitions,
  syscat.tablespaces, syscat.bufferpools, syscat.securitylabels, syscat.statements, syscat.schemata;
drop function if exists public.db_get_cfg(integer), sysproc.admin_get_encryption_info();
drop schema if exists syscat, sysstat, syszent, sysproc;

\if :{?remove}
commit;
\quit
\endif

create schema syscat;
create schema sysstat;
create schema syszent;
create schema sysproc;
comment on schema syscat is 'mirel catalog';
comment on schema sysstat is 'mirel catalog';
comment on schema syszent is 'mirel catalog';
comment on schema sysproc is 'mirel catalog';

-- One row, for facts that need no table.
create view syszent.sysdummy1 as
select
  'Y' as present;  -- always Y

-- The users' schemas. Those of temporary tables begin with pg_ and are left out like the engine's.
create view syscat.schemata as
select
  oid as schemaid,                         -- pg_namespace.oid
  nspname::text collate "C" as schemaname  -- pg_namespace.nspname, spelt as stored
from pg_namespace
where nspname !~ '^pg_'
  and nspname not in ('information_schema', 'syscat', 'sysstat', 'syszent', 'sysproc')
order by nspname;

-- Tables, views, materialized views and foreign tables, by name. A partition is no row of its own: what it holds
-- is gathered under the table at the root. A sequence is none of these.
create view syscat.tables as
select
  s.schemaname as tabschema,     -- pg_namespace.nspname
  t.relname::text as tabname,    -- pg_class.relname
  case when t.reloftype <> 0 then 'U' when t.relkind in ('r', 'p') then 'T'
    else upper(t.relkind::text)
  end as type,                   -- T table, U typed table (pg_class.reloftype), else pg_class.relkind: V view,
                                 -- M materialized view, F foreign table
  greatest(pg_stat_get_last_analyze_time(t.oid), pg_stat_get_last_autoanalyze_time(t.oid), p.stats_time)
    as stats_time,               -- last ANALYZE, by hand or by autovacuum; null if never
  -- Leaves are kept up to date by autovacuum, the partitioned table above them by ANALYZE only.
  case when p.counted then p.card else t.reltuples::bigint
  end as card,                   -- pg_class.reltuples, rows at the last VACUUM or ANALYZE; -1 unknown
  case when p.counted then p.npages when t.relkind <> 'p' and t.reltuples >= 0 then t.relpages else -1
  end::bigint as npages,         -- pg_class.relpages, likewise
  coalesce(p.tableorg, case m.amname when 'heap' then 'R' else upper(m.amname::text) end, 'N')
    as tableorg,                 -- R rows (access method heap), else pg_am.amname; N no storage of its own
  case when z.tabid is not null then 'V' else 'N'
  end as compression,            -- V a column has a compression method of its own (pg_attribute.attcompression)
  '' as rowcompmode,             -- empty: the engine compresses values, never rows
  (-1)::real as avgrowcompressionratio,  -- -1: likewise
  case when i.tabid is not null then 'Y' else ''
  end as clustered,              -- Y ordered by CLUSTER along an index (pg_index.indisclustered)
  case when l.on_table and l.on_column then 'B' when l.on_table then 'T' when l.on_column then 'C' else ''
  end as protectiongranularity,  -- pg_seclabel: labels on the table T, on columns C, on both B
  case when t.relrowsecurity and g.attrelid is not null then 'B' when t.relrowsecurity then 'R'
    when g.attrelid is not null then 'C' else ''
  end as control                 -- R row security (pg_class.relrowsecurity), C column grants (pg_attribute.attacl)
from pg_class t
join syscat.schemata s on s.schemaid = t.relnamespace
left join pg_am m on m.oid = t.relam
-- Each of the following has one row for a table, so the planner leaves out those that a query does not use.
left join (
  select
    pg_partition_root(c.oid)::oid as tabid,
    max(greatest(pg_stat_get_last_analyze_time(c.oid), pg_stat_get_last_autoanalyze_time(c.oid))) as stats_time,
    bool_and(c.reltuples >= 0) filter (where c.relkind <> 'p') as counted,
    sum(c.reltuples::bigint) filter (where c.relkind <> 'p')::bigint as card,
    sum(c.relpages) filter (where c.relkind <> 'p') as npages,
    max(case m.amname when 'heap' then 'R' else upper(m.amname::text) end) as tableorg
  from pg_class c
  left join pg_am m on m.oid = c.relam
  where c.relispartition and c.relkind in ('r', 'p', 'f')
  group by 1) p
  on p.tabid = t.oid
left join (
  select distinct case when c.relispartition then pg_partition_root(c.oid)::oid else c.oid end as tabid
  from pg_attribute a join pg_class c on c.oid = a.attrelid
  where a.attcompression <> '' and not a.attisdropped) z
  on z.tabid = t.oid
left join (
  select distinct case when c.relispartition then pg_partition_root(c.oid)::oid else c.oid end as tabid
  from pg_index x join pg_class c on c.oid = x.indrelid
  where x.indisclustered) i
  on i.tabid = t.oid
left join (select distinct attrelid from pg_attribute where attacl is not null and not attisdropped) g
  on g.attrelid = t.oid
left join (
  select objoid, bool_or(objsubid = 0) as on_table, bool_or(objsubid <> 0) as on_column
  from pg_seclabel where classoid = 'pg_class'::regclass group by objoid) l
  on l.objoid = t.oid
where t.relkind in ('r', 'p', 'v', 'm', 'f') and not t.relispartition
order by t.relname, s.schemaname;

-- The statistics of the tables alone: of those that are of type T or U in syscat.tables. A view has none, and the
-- rows of a materialized view or a foreign table are those of other tables.
create view sysstat.tables as
select
  tabschema,  -- pg_namespace.nspname
  tabname,    -- pg_class.relname
  card,       -- pg_class.reltuples; -1 unknown
  npages      -- pg_class.relpages; -1 unknown
from syscat.tables
where type in ('T', 'U');

-- The columns of the relations in syscat.tables.
create view syscat.columns as
select
  s.schemaname as tabschema,           -- pg_namespace.nspname
  t.relname::text as tabname,          -- pg_class.relname
  a.attname::text as colname,          -- pg_attribute.attname
  a.attnum as colno,                   -- pg_attribute.attnum, from 1; dropped columns leave gaps
  upper(y.typname::text) as typename   -- pg_type.typname in upper case: XML, VARCHAR, INT4; _INT4 is an array
from pg_attribute a
join pg_class t on t.oid = a.attrelid
join syscat.schemata s on s.schemaid = t.relnamespace
join pg_type y on y.oid = a.atttypid
where t.relkind in ('r', 'p', 'v', 'm', 'f') and not t.relispartition and a.attnum > 0 and not a.attisdropped
order by t.relname, s.schemaname, a.attnum;

-- The leaf partitions of partitioned tables.
create view syscat.datapartitions as
select
  s.schemaname as tabschema,             -- pg_namespace.nspname of the table at the root
  t.relname::text as tabname,            -- pg_class.relname of the table at the root
  p.oid::bigint as datapartitionid,      -- pg_class.oid of the partition, unique in the database
  p.relname::text as datapartitionname   -- pg_class.relname of the partition
from pg_class p
join pg_class t on t.oid = pg_partition_root(p.oid)
join syscat.schemata s on s.schemaid = t.relnamespace
where p.relispartition and p.relkind in ('r', 'f')
order by s.schemaname, t.relname, p.relname, p.oid;

-- The buffers that the server is set to; shared_buffers is the one that every tablespace uses.
create view syscat.bufferpools as
select
  b.name as bpname,                    -- name of the setting
  b.number::integer as bufferpoolid,   -- 1 shared_buffers, 2 temp_buffers (each session), 3 wal_buffers
  g.setting::bigint as npages,         -- pg_settings.setting
  pg_size_bytes(g.unit) as pagesize    -- pg_settings.unit, in bytes
from unnest(array['shared_buffers', 'temp_buffers', 'wal_buffers']) with ordinality as b (name, number)
join pg_settings g on g.name = b.name
order by b.number;

-- The tablespaces of the server.
create view syscat.tablespaces as
select
  spcname::text as tbspace,    -- pg_tablespace.spcname
  'S' as tbspacetype,          -- S, files in a directory of the operating system: the only kind there is
  1 as bufferpoolid,           -- shared_buffers
  'A' as datatype,             -- A, any: no tablespace is kept for one sort of data
  current_setting('block_size')::integer as pagesize,  -- block_size, in bytes
  pg_size_bytes(current_setting('segment_size')) / current_setting('block_size')::integer
    as extentsize              -- segment_size: pages in one file of a relation
from pg_tablespace
order by spcname;

-- The security labels in use in this database.
create view syscat.securitylabels as
select
  provider,                 -- pg_seclabel.provider
  label as seclabelname,    -- pg_seclabel.label
  count(*) as objects       -- number of objects and columns that bear it
from pg_seclabel
group by provider, label
order by provider collate "C", label collate "C";

-- The configuration, of all members (-2) or of one; a server is one member, number 0. It lives in public,
-- where the search path of an ordinary user finds it without a schema name.
--   name   pg_settings.name; the settings of replication once more under "hadr_" and their name
--   value  pg_settings.setting
--   unit   pg_settings.unit
-- hadr_role is STANDBY in recovery, PRIMARY with a standby connected, otherwise STANDARD; hadr_standbys counts
-- them (pg_stat_replication); hadr_primary_host and _port (pg_stat_wal_receiver) are a standby's.
-- Settings that may hold a password are left out: connection strings, shell commands, and what an extension calls
-- a secret.
create function public.db_get_cfg(member integer) returns table (name text, value text, unit text)
language sql stable parallel restricted
begin atomic
  select c.name, c.value, c.unit
  from (
    select g.name, g.setting, g.unit from pg_settings g
    where g.name !~* '(conninfo|_command$|passphrase)'
      and (g.name !~ '[.]' or g.name !~* '(pass|pwd|cred|secret|token|key|auth|conn|dsn|ur[il])')
    union all
    select 'hadr_' || g.name, g.setting, g.unit from pg_settings g
    where g.name in (
      'hot_standby', 'max_replication_slots', 'max_wal_senders', 'primary_slot_name', 'recovery_min_apply_delay',
      'synchronous_commit', 'synchronous_standby_names', 'wal_keep_size', 'wal_level', 'wal_receiver_timeout',
      'wal_sender_timeout')
    union all
    select 'hadr_role',
      case when pg_is_in_recovery() then 'STANDBY' when r.standbys > 0 then 'PRIMARY' else 'STANDARD' end, null
    from (select count(*) as standbys from pg_stat_replication) r
    union all
    select 'hadr_standbys', count(*)::text, null from pg_stat_replication
    union all
    select 'hadr_primary_host', sender_host, null from pg_stat_wal_receiver
    union all
    select 'hadr_primary_port', sender_port::text, null from pg_stat_wal_receiver) as c (name, value, unit)
  where db_get_cfg.member in (-2, 0)
  order by c.name collate "C";
end;
comment on function public.db_get_cfg(integer) is 'mirel catalog';

-- What the server knows of encryption; it has none of the data at rest.
--   name   pg_settings.name; connection_... tells of this session (pg_stat_ssl, pg_stat_gssapi); pgcrypto is the
--          extension
--   value  its value; null if the connection is not encrypted or the extension is not installed
create function sysproc.admin_get_encryption_info() returns table (name text, value text)
language sql stable parallel restricted
begin atomic
  select c.name, c.value
  from (
    select g.name, g.setting from pg_settings g
    where g.name in ('data_checksums', 'password_encryption', 'ssl', 'ssl_library')
    union all
    select f.name, f.value
    from pg_stat_ssl t, pg_stat_gssapi k,
      lateral (values ('connection_tls_version', t.version), ('connection_tls_cipher', t.cipher),
        ('connection_tls_bits', t.bits::text), ('connection_gss_encrypted', k.encrypted::text)) as f (name, value)
    where t.pid = pg_backend_pid() and k.pid = pg_backend_pid()
    union all
    select 'pgcrypto', (select extversion from pg_extension where extname = 'pgcrypto')) as c (name, value)
  order by c.name collate "C";
end;

-- Statements that the server keeps: the body of each routine that is not compiled, and what this session
-- has prepared.
create view syscat.statements as
select
  s.schemaname as pkgschema,   -- pg_namespace.nspname of the routine; null for a prepared statement
  p.proname::text as pkgname,  -- pg_proc.proname, or pg_prepared_statements.name
  coalesce(pg_get_function_sqlbody(p.oid), p.prosrc) as text  -- pg_proc.prosrc, or pg_prepared_statements.statement
from pg_proc p
join pg_language l on l.oid = p.prolang and l.lanname not in ('c', 'internal')
join syscat.schemata s on s.schemaid = p.pronamespace
where p.oid <> 'public.db_get_cfg(integer)'::regprocedure
union all
select null, name, statement from pg_prepared_statements
order by pkgschema, pkgname, text;

grant usage on schema syscat, sysstat, syszent, sysproc to public;
grant select on all tables in schema syscat, sysstat, syszent to public;
grant execute on function public.db_get_cfg(integer), sysproc.admin_get_encryption_info() to public;
commit;

"""The default template against a real PostgreSQL server, and what is left of a run when the server fails it."""
import json
import os
import pwd
import shlex
import shutil
import subprocess
import tempfile
from pathlib import Path

import pytest
from conftest import ROOT, members
from conftest import server as collection_server
from servers import PostgreSQL

CATALOG = ROOT / "catalog/postgresql/mirel_catalog.sql"
USER = pwd.getpwuid(os.geteuid()).pw_name

# The collector's user may connect and owns nothing; the labels are entered by hand, for want of a provider.
SHOP = f"""
create role "{USER}" login;
create role clerk;
create extension pgcrypto;
create table customer (id integer primary key, name text compression pglz, doc xml);
insert into customer select i, case when i % 3 > 0 then 'Zoë ' || i end from generate_series(1, 700) i;
grant select (id) on customer to clerk;
cluster customer using customer_pkey;
create table sale (id bigint, day date) partition by range (day);
create table sale_1 partition of sale for values from ('2026-01-01') to ('2026-02-01');
create table sale_2 partition of sale for values from ('2026-02-01') to ('2026-03-01') partition by hash (id);
create table sale_2a partition of sale_2 for values with (modulus 2, remainder 0);
create table sale_2b partition of sale_2 for values with (modulus 2, remainder 1);
insert into sale select i, '2026-01-01'::date + i % 59 from generate_series(1, 5000) i;
create table ledger (id integer, pin text);
alter table ledger enable row level security;
create type point3 as (x integer, y integer, z integer);
create table corner of point3;
create view "Schöne Kunden" as select id, name from customer;
create materialized view total as select count(*) from sale;
create function two() returns integer language sql as 'select 2';
analyze customer;
vacuum sale_1, sale_2a, sale_2b;
analyze sale_1;
set allow_system_table_mods = on;
insert into pg_seclabel select c, 'pg_class'::regclass, n, 'test', l from (values ('customer'::regclass, 0, 'secret'),
  ('customer', 2, 'top secret'), ('ledger', 0, 'secret')) as v (c, n, l);
"""

# By member: what psql answers alike, from the engine's own catalogs.
FACTS = [line.split(": ", 1) for line in (Path(__file__).parent / "golden/postgresql.txt").read_text().splitlines()[1:]]
PAGES = """with pages (pages) as (select pg_relation_size('customer') / 8192 union all
  select sum(pg_relation_size(relid))::bigint / 8192 from pg_partition_tree('sale')) """


class Server(PostgreSQL):
    """With a second place to store tables, and data sources."""

    def __init__(self, folder):
        (folder / "größe").mkdir()
        if os.geteuid() == 0:
            shutil.chown(folder / "größe", "postgres", "postgres")
        super().__init__(folder)
        self.sources = {"ODBCSYSINI": str(folder), "ODBCINI": str(folder / "odbc.ini"),
                        "PATH": f"{folder}:{os.environ['PATH']}"}
        (folder / "odbcinst.ini").write_text("[PostgreSQL]\nDriver = psqlodbcw.so\nDebug = 0\nCommLog = 0\n")
        common = "Driver = PostgreSQL\nDatabase = shop\nServername ="
        (folder / "odbc.ini").write_text(
            f"[SHOP]\n{common} {folder}\n[CURSOR]\n{common} {folder}\nUseDeclareFetch = 1\nFetch = 100\n"
            f"[NOWHERE]\n{common} {folder}/none\n")
        for name in "kato", "katolevel", "katoset":
            (folder / name).symlink_to("/bin/true")

    def psql(self, script, *arguments, database="shop"):
        return super().psql(script, *arguments, database=database)

    def catalog(self, *arguments, database="shop"):
        return self.psql(CATALOG.read_text("utf-8"), *arguments, database=database)

    def rows(self, query):
        """The answer as the document has it: names in upper case, values up to their first blank."""
        names, *rows = self.psql(query, "-P", "footer=off", "-P", "null=NULL").splitlines()
        return [[(name.upper(), cell.split(" ")[0]) for name, cell in zip(names.split("|"), row.split("|"))]
                for row in rows]

    def dump(self, database):
        dump = subprocess.run([f"{self.programs}/pg_dump", "-h", self.folder, "-U", "admin", database],
                              check=True, capture_output=True).stdout
        return [line for line in dump.splitlines() if b"restrict" not in line]  # its key is a random one


@pytest.fixture(scope="module")
def server():
    with tempfile.TemporaryDirectory(prefix="mirel-postgresql-") as folder:
        one = Server(Path(folder))
        try:
            one.psql(f"create tablespace größe location '{folder}/größe'; create database shop", database="postgres")
            one.psql(SHOP)
            one.catalog()
            yield one
        finally:
            subprocess.run(one.stop(), cwd=folder, check=False)


def test_default_template_as_an_ordinary_user(mirel, server):
    today = server.rows("select current_date as time")[0]
    result = mirel("-z", "-d", "SHOP", env=server.sources)
    document = dict(members(result.stdout))
    facts = [(key, value) for key, value in document["databaseInfo"][0]
             if key not in ("seed", "name", "configRaw", "sizeOnDisk")]
    expected = []
    for (_, value), (key, query) in zip(facts, FACTS, strict=True):
        rows = server.rows(PAGES + query)
        if isinstance(value, str):
            rows = rows[0][0][1]
        elif "order by" not in query:
            value.sort()
            rows.sort()
        expected.append((key, rows))
    assert facts == expected
    assert ("TIME", document["tarn_collection_time"]) in today + server.rows("select current_date as time")[0]
    assert (result.returncode, result.stderr.decode()) == (0, "")


def test_catalog_leaves_no_trace(server):
    server.psql("create database spare template shop", database="postgres")
    remove = ["-v", "remove=1"]
    server.catalog(*remove, database="spare")
    without = server.dump("spare")
    for arguments in [], [], remove, remove:
        server.catalog(*arguments, database="spare")
    assert server.dump("spare") == without


def test_public_may_only_read(server):
    assert server.rows("""
      select string_agg(distinct privilege_type, ',') as rights from (
        select (aclexplode(nspacl)).* from pg_namespace where nspname ~ '^sys(cat|stat|zent|proc)$' union all
        select (aclexplode(relacl)).* from pg_class where relnamespace::regnamespace::text ~ '^sys' union all
        select (aclexplode(proacl)).* from pg_proc where proname in ('db_get_cfg', 'admin_get_encryption_info')) a
      where grantee = 0""") == [[("RIGHTS", "EXECUTE,SELECT,USAGE")]]


ENDS_ITSELF = ("sql array select i, case i when 250 then pg_terminate_backend(pg_backend_pid()) end as gone"
           " from generate_series(1, 500) as i")
FAILURES = {  # data source, the command in the middle, its value, the value behind it, each report and how it begins
    "refused for lack of rights": ("SHOP", "sql array select pin from ledger", [], "2", [
        "Exec Direct\nERROR: permission denied for table ledger; Error while executing the query\n"]),
    "gone in the middle of a fetch": (
        "CURSOR", ENDS_ITSELF, [[("I", str(i)), ("GONE", "NULL")] for i in range(1, 201)], "null", [
            "Exec Direct\nSQLExecDirect unable due to the connection lost\n"]),
    "server stopped between two commands": ("SHOP", "execute {stop}", "", "null", [
        "Exec Direct\nserver closed the connection unexpectedly"]),
    "server not there": ("NOWHERE", "sql one select 1 as a", [], "null", [
        "Connect\n[unixODBC]connection to server on socket"]),
}


@pytest.mark.parametrize("case", FAILURES)
def test_failure_costs_its_member_only(mirel, server, case):
    source, command, value, after, reports = FAILURES[case]
    command = command.format(folder=server.folder, stop=f"cd {server.folder}; {shlex.join(server.stop())}")
    template = {"during": command, "after": "sql value b select 2 as b", "rest": {"user": "native customer name"}}
    answer = [b"HTTP/1.0 200 OK\r\n\r\n" + json.dumps(template, ensure_ascii=False).encode()]
    with collection_server(answer, []) as (port, requests):
        result = mirel("-z", "-s", "-h", "127.0.0.1", "-p", str(port), "-n", "Zoë", "-d", source, env=server.sources)
    if not (server.folder / "data/postmaster.pid").exists():
        server.start()
    assert members(requests[1].partition(b"\r\n\r\n")[2]) == [("during", value), ("after", after), ("rest", [("user", "Zoë")])]
    beginning, *reported = result.stderr.decode().split("Trying to run: ")
    assert (result.returncode, beginning) == (0, "")
    assert [text[:len(start)] for text, start in zip(reported, reports, strict=True)] == reports

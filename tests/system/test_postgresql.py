"""The default template against a real PostgreSQL server, and what is left of a run when the server fails it."""
import os
import pwd
import shlex
import subprocess
import tempfile
from pathlib import Path

import pytest
from conftest import CUSTOMER, ROOT, check_answers, check_facts, facts, instance, members
from conftest import server as collection_server
from servers import PostgreSQL

GOLDEN = Path(__file__).parent / "golden"
CATALOG = (ROOT / "catalog/postgresql/mirel_catalog.sql").read_text()
FAILURES = dict(members((GOLDEN / "postgresql_failures.json").read_text()))
SECRETS = """alter system set primary_conninfo = 'password=hunter2'; alter system set archive_command = 'hunter2';
  alter role :"collector" set vault.api_key = 'hunter2'; grant pg_read_all_settings to :"collector";
  select pg_reload_conf();"""
PAGES = """with pages (pages) as (select pg_relation_size('customer') / 8192 union all
  select sum(pg_relation_size(relid))::bigint / 8192 from pg_partition_tree('sale')) """


class Server(PostgreSQL):
    """With a second place to store tables, and data sources."""

    def __init__(self, folder):
        super().__init__(folder)
        subprocess.run([*self.account, "mkdir", folder / "größe"], check=True)
        self.sources = {"ODBCSYSINI": str(folder), "ODBCINI": str(folder / "odbc.ini"),
                        "PATH": os.environ["PATH"]}
        (folder / "odbcinst.ini").write_text("[PostgreSQL]\nDriver = psqlodbcw.so\nDebug = 0\nCommLog = 0\n")
        sources = (GOLDEN / "postgresql_odbc.ini").read_text()
        (folder / "odbc.ini").write_text(sources.replace("FOLDER", str(folder)))

    def psql(self, script, *arguments, database="shop"):
        return super().psql(script, *arguments, database=database)

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
            user = pwd.getpwuid(os.geteuid()).pw_name
            one.psql((GOLDEN / "postgresql_shop.txt").read_text(), "-v", f"collector={user}")
            one.psql(CATALOG)
            one.psql(SECRETS, "-v", f"collector={user}")
            yield one
        finally:
            subprocess.run(one.stop(), cwd=folder, check=False)


def test_default_template_as_an_ordinary_user(mirel, server):
    folder, where = server.folder / "in stance", {"PGHOST": str(server.folder), "PGDATABASE": "shop"}
    instance("catalog/postgresql/instance/create", folder, **where)
    seed = (folder / "databases/SHOP/member0000/SQLDBCONF").read_bytes()[36:40]
    environment = instance("catalog/postgresql/instance/create", folder, **where)
    today = server.rows("select current_date as time")[0]
    result = mirel("-z", "-d", "SHOP", *CUSTOMER, env=environment)
    document = dict(members(result.stdout))
    check_answers(members(result.stdout), "PostgreSQL")
    check_facts(document, facts("postgresql.txt"), lambda query: server.rows(PAGES + query),
                lambda query: server.psql(query, "-t").splitlines())
    assert dict(document["databaseInfo"][0])["seed"] == str(int.from_bytes(seed, "little")) != "0"
    assert ("TIME", document["tarn_collection_time"]) in today + server.rows("select current_date as time")[0]
    assert (result.returncode, result.stderr.decode()) == (0, "")
    assert b"hunter2" not in result.stdout
    # Those rows came in blocks. A driver that fetches as it goes gives them one by one.
    with open(environment["ODBCINI"], "a", encoding="utf-8") as sources:
        sources.write("UseDeclareFetch = 1\nFetch = 2\n")
    assert dict(members(mirel("-z", "-d", "SHOP", env=environment).stdout))["databaseInfo"] == document["databaseInfo"]


def test_catalog_leaves_no_trace(server):
    server.psql("create database spare template shop", database="postgres")
    remove = ["-v", "remove=1"]
    server.psql(CATALOG, *remove, database="spare")
    without = server.dump("spare")
    for arguments in [], [], remove, remove:
        server.psql(CATALOG, *arguments, database="spare")
    assert server.dump("spare") == without


def test_public_may_only_read(server):
    assert server.rows("""
      select string_agg(distinct privilege_type, ',') as rights from (
        select (aclexplode(nspacl)).* from pg_namespace where nspname ~ '^sys(cat|stat|zent|proc)$' union all
        select (aclexplode(relacl)).* from pg_class where relnamespace::regnamespace::text ~ '^sys' union all
        select (aclexplode(proacl)).* from pg_proc where proname in ('db_get_cfg', 'admin_get_encryption_info')) a
      where grantee = 0""") == [[("RIGHTS", "EXECUTE,SELECT,USAGE")]]


@pytest.mark.parametrize("case", FAILURES)
def test_failure_costs_its_member_only(mirel, server, case):
    failure = dict(FAILURES[case])
    command = failure["command"].replace("STOP", f"cd {server.folder}; {shlex.join(server.stop())}")
    template = f'{{"during": "{command}", "after": "sql value b select 2 as b", "user": "native customer name"}}'
    with collection_server([b"HTTP/1.0 200 OK\r\n\r\n" + template.encode()], []) as (port, requests):
        result = mirel("-z", "-s", "-h", "127.0.0.1", "-p", str(port), "-n", "Zoë", "-d", failure["source"],
                       env=server.sources)
    if not (server.folder / "data/postmaster.pid").exists():
        server.start()
    assert members(requests[1].partition(b"\r\n\r\n")[2]) == failure["document"]
    beginning, *reported = result.stderr.decode().split("Trying to run: ")
    assert (result.returncode, beginning) == (0, "")
    reports = failure["reports"]
    assert [text[:len(start)] for text, start in zip(reported, reports, strict=True)] == reports

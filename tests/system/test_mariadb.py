"""The default template against a real MariaDB server."""
import os
import pwd
import tempfile
from pathlib import Path

import pytest
from conftest import CUSTOMER, ROOT, check_answers, check_facts, facts, instance, members
from servers import MariaDB

SHOP = (Path(__file__).parent / "golden/mariadb_shop.txt").read_text()
CATALOG = (ROOT / "catalog/mariadb/mirel_catalog.sql").read_text()
COLLECTOR = pwd.getpwuid(os.geteuid()).pw_name
RIGHTS = f"""create user `{COLLECTOR}`@localhost identified via unix_socket;
  grant select on shop.* to `{COLLECTOR}`@localhost; create database secret;
  set global init_connect = 'set @hunter2 = 1'; set global wsrep_sst_auth = 'hunter2';"""


@pytest.fixture(scope="module")
def server():
    with tempfile.TemporaryDirectory(prefix="mirel-mariadb-") as folder:
        one = MariaDB(Path(folder))
        try:
            one.client(SHOP)
            one.client(CATALOG)
            one.client(RIGHTS)
            yield one
        finally:
            one.stop()


def test_default_template_as_an_ordinary_user(mirel, server, tmp_path):
    def rows(query):
        """The answer as the document has it: names in upper case, values up to their first blank."""
        names, *rows = [line.split("\t") for line in server.client(query).splitlines()] or [[]]
        return [[(name.upper(), cell.split(" ")[0]) for name, cell in zip(names, row)] for row in rows]

    create = "catalog/mariadb/instance/create", tmp_path / "in stance", f"--socket={server.socket}"
    seeds = [instance(*create), (create[1] / "databases/SHOP/member0000/SQLDBCONF").read_bytes()[36:40]]
    result = mirel("-z", "-d", "SHOP", *CUSTOMER, env=instance(*create))
    assert (result.returncode, result.stderr.decode()) == (0, "")
    document = dict(members(result.stdout))
    check_answers(members(result.stdout), "MariaDB")
    check_facts(document, facts("mariadb.txt"), rows, lambda query: server.client(query, "-N").splitlines())
    assert dict(document["databaseInfo"][0])["seed"] == str(int.from_bytes(seeds[1], "little")) != "0"
    assert ("TIME", document["tarn_collection_time"]) in rows("select current_date as time")[0]
    assert b"hunter2" not in result.stdout and b"secret" not in result.stdout


@pytest.mark.parametrize("attempt", [
    "drop view syscat.tables", "create table syscat.mine (i int)", "call syscat.mirel_remove()",
    "select syscat.mirel_relations('secret')", "use secret", "create or replace view sysstat.tables as select 1"])
def test_everybody_may_only_read(server, attempt):
    with pytest.raises(RuntimeError, match="denied"):
        server.client(attempt, user=COLLECTOR)


def test_catalog_leaves_no_trace_and_touches_nothing_else(server):
    def everything():
        return server.client("""select schema_name, schema_comment from information_schema.schemata;
          select db, user from mysql.db order by db; select db, name from mysql.proc order by name""")

    server.client(CATALOG)
    installed = everything()
    server.client("create table sysproc.mine (i int)")
    with pytest.raises(RuntimeError, match="built on the mirel catalog: sysproc.mine"):
        server.client("call syscat.mirel_remove()")
    assert everything() == installed
    server.client("drop table sysproc.mine; call syscat.mirel_remove()")
    removed = everything()
    assert "mirel" not in removed and "sysstat" not in removed
    server.client("create database sysstat")
    with pytest.raises(RuntimeError, match="not the mirel catalog: sysstat"):
        server.client(CATALOG)
    server.client("drop database sysstat")
    assert everything() == removed
    server.client(CATALOG)
    assert everything() == installed

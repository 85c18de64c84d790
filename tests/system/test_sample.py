"""The embedded sample instance, and the SQLite catalog on other databases.

MIREL_UPDATE_GOLDEN=1 writes golden/sample.json anew; review its difference.
"""
import hashlib
import os
import re
import shutil
import sqlite3
import subprocess
from contextlib import closing
from pathlib import Path

import pytest
from conftest import BUILD, ROOT, members

GOLDEN = Path(__file__).parent / "golden" / "sample.json"


@pytest.fixture
def sample(tmp_path):
    """A fresh instance, in a folder whose name needs quoting: its folder and its environment."""
    target = tmp_path / "my sämple"
    subprocess.run([ROOT / "sample/create", target, BUILD], check=True, stdout=subprocess.DEVNULL)
    shown = subprocess.check_output(["bash", "-c", '. "$1"; env -0', "-", target / "env"], text=True)
    variables = dict(entry.split("=", 1) for entry in shown.split("\0") if entry)
    return target, {name: variables[name] for name in ("PATH", "ODBCINI", "ODBCSYSINI")}


def digest(path):
    return hashlib.sha256(Path(path).read_bytes()).hexdigest()


def collect(mirel, sample, database=None):
    """The facts of a database as collected through the sample's data source; standard error must be empty."""
    target, environment = sample
    if database is not None:
        source = (target / "odbc.ini").read_text()
        (target / "odbc.ini").write_text(re.sub("Database = .*", f"Database = {database}", source))
    run = mirel("-z", "-d", "SAMPLE", env=environment)
    assert (run.returncode, run.stderr) == (0, b"")
    return dict(dict(members(run.stdout))["databaseInfo"][0])


def masked(text, target):
    """The document without what differs between hosts, folders and runs."""
    text = text.replace(str(target.parent), "FOLDER")
    head, platform, tail = re.split(r'(?s)(?<="platformInfo": \{\n)(.*?)(?=  \},)', text)
    platform = re.sub(r'(": )"[^"\n]+"', r'\1"*"', platform)
    for key in ("tarn_collection_time", "STATS_TIME", "seed", "codeRelease", "version", "buildLevel",
                "versionRaw", "environmentVarsRaw", "nodesRaw"):
        head = re.sub(rf'("{key}": )"[^"\n]+"', r'\1"*"', head)
    return head + platform + tail


def test_the_document(mirel, sample):
    target, environment = sample
    before = digest(target / "sample.db")
    run = mirel("-z", "-d", "SAMPLE", env=environment)
    assert (run.returncode, run.stderr, digest(target / "sample.db")) == (0, b"", before)
    document = masked(run.stdout.decode(), target)
    if os.environ.get("MIREL_UPDATE_GOLDEN"):
        GOLDEN.write_text(document)
    assert document == GOLDEN.read_text()


@pytest.mark.parametrize("hold", [
    "",
    "begin immediate",  # another process is about to write
    "pragma journal_mode = wal; insert into stock values('West', 1, 1, null)"])
@pytest.mark.parametrize("address", ["{}", "file:{}?mode=ro"])
def test_the_database_is_only_read(mirel, sample, tmp_path, hold, address):
    file = tmp_path / "copy.db"
    shutil.copy(sample[0] / "sample.db", file)
    with closing(sqlite3.connect(file, isolation_level=None)) as writer:
        writer.executescript(hold)
        # What a crashed writer leaves behind: a log that nobody has copied back.
        if "wal" in hold:
            for name in (file, Path(f"{file}-wal")):
                shutil.copy(name, tmp_path / name.name.replace("copy", "left"))
            file = tmp_path / "left.db"
        files = [name for name in (file, Path(f"{file}-wal")) if name.exists()]
        before = [digest(name) for name in files]
        assert collect(mirel, sample, address.format(file))["numberOfTables"] == "9"
        assert [digest(name) for name in files] == before


# Other people's databases: how they are made, and what is known of them.
UNKNOWN = {"averageNPages": "NULL", "averageNumberOfRowsInTables": "NULL", "runstatsTiming": []}
STRANGERS = {
    "nothing": ("", {**UNKNOWN, "numberOfTables": "0", "databaseTableObjectCounts": [],
                     "columnTypeDistrobution": []}),
    "never analyzed": (
        "create table t(a, b); insert into t values(1, 2), (3, 4); create table u(a integer primary key);",
        {"averageNumberOfRowsInTables": "1.0", "maxNumberOfRowsInTables": "2", "runstatsTiming": []}),
    "odd names": (
        """create table ""("" text); create table "tables"(type); create table dbstat(x);
           create table "a""b'c[d]`%w%s;--"(k primary key, rowid, oid, _rowid_) without rowid;
           create table "größe"("ä ö" varchar ( 3 )); insert into "a""b'c[d]`%w%s;--"(k) values(1);""",
        {"numberOfTables": "5", "numberOfTablesClusteredByDimension": "1", "averageNPages": "1.0",
         "averageNumberOfRowsInTables": "0.2"}),
    "broken": (
        """create view v as select * from nowhere; create view self as select * from self;
           create view f as select missing(1) as x; create table t(a int); pragma writable_schema = on;
           insert into sqlite_schema values('table', 'm', 'm', 0, 'create virtual table m using gone(x)');""",
        {"numberOfTables": "1", "numberOfTablesClusteredByInsert": "0", "databaseTableObjectCounts": [
            [("TARN_OBJECTIFY", "type"), ("COUNT", count), ("TYPE", kind)]
            for kind, count in (("N", "1"), ("T", "1"), ("V", "3"))]}),
}


@pytest.mark.parametrize("name", STRANGERS)
def test_strangers(mirel, sample, tmp_path, name):
    script, expected = STRANGERS[name]
    file = tmp_path / "stranger.db"
    with closing(sqlite3.connect(file)) as db:
        db.executescript(script)
    facts = collect(mirel, sample, file)
    assert {key: facts[key] for key in expected} == expected

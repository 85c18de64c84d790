"""The embedded sample instance, and the SQLite catalog on other databases.

MIREL_UPDATE_GOLDEN=1 writes golden/sample.json anew; review its difference.
"""
import os
import re
import shutil
import sqlite3
import subprocess
from contextlib import closing
from pathlib import Path

import pytest
from conftest import BUILD, CUSTOMER, check_answers, check_facts, facts, instance, members

GOLDEN = Path(__file__).parent / "golden" / "sample.json"
# Other people's databases: how they are made, and what is known of them.
STRANGERS = dict(members(GOLDEN.with_name("strangers.json").read_text()))


@pytest.fixture
def sample(tmp_path):
    """A fresh instance, in a folder whose name needs quoting: its folder and its environment."""
    target = tmp_path / "my sämple"
    return target, instance("sample/create", target, BUILD)


def collect(mirel, sample, database):
    """The facts of a database as collected through the sample's data source; standard error must be empty."""
    target, environment = sample
    source = (target / "odbc.ini").read_text()
    (target / "odbc.ini").write_text(re.sub("Database = .*", f"Database = {database}", source))
    run = mirel("-z", "-d", "SAMPLE", env=environment)
    assert (run.returncode, run.stderr) == (0, b"")
    return dict(dict(members(run.stdout))["databaseInfo"][0])


def masked(text, target):
    """The document without what differs between hosts, folders and runs."""
    text = text.replace(str(target.parent), "FOLDER").replace(f'{sqlite3.sqlite_version}"', 'VERSION"')
    head, platform, tail = re.split(r'(?s)(?<="platformInfo": \{\n)(.*?)(?=  \},)', text)
    platform = re.sub(r'(": )"[^"\n]+"', r'\1"*"', platform)
    for key in ("tarn_collection_time", "STATS_TIME", "seed", "buildLevel", "versionRaw",
                "environmentVarsRaw", "nodesRaw"):
        head = re.sub(rf'("{key}": )"[^"\n]+"', r'\1"*"', head)
    return head + platform + tail


def test_the_document(mirel, sample):
    target, environment = sample
    before = (target / "sample.db").read_bytes()
    run = mirel("-z", "-d", "SAMPLE", *CUSTOMER, env=environment)
    assert (run.returncode, run.stderr) == (0, b"")
    check_answers(members(run.stdout), "SQLite")

    def lines(query, *options):
        shown = ["sqlite3", "-batch", "-init", "/dev/null", *options, target / "sample.db", query]
        return subprocess.check_output(shown, text=True).splitlines()

    def rows(query):
        names, *cells = [line.split("|") for line in lines(query, "-header")]
        return [list(zip(map(str.upper, names), row)) for row in cells]

    check_facts(dict(members(run.stdout)), facts("sqlite.txt"), rows, lines)
    assert (target / "sample.db").read_bytes() == before
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
        before = [name.read_bytes() for name in files]
        assert collect(mirel, sample, address.format(file))["numberOfTables"] == "9"
        assert [name.read_bytes() for name in files] == before


@pytest.mark.parametrize("name", STRANGERS)
def test_strangers(mirel, sample, tmp_path, name):
    stranger = dict(STRANGERS[name])
    file = tmp_path / "stranger.db"
    with closing(sqlite3.connect(file)) as db:
        db.executescript("".join(stranger["sql"]))
    found = collect(mirel, sample, file)
    assert [(key, found[key]) for key, _ in stranger["facts"]] == stranger["facts"]

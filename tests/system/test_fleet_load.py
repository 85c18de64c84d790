"""fleet load: late documents, kills, a full disk, two at once, and stores that mean no good come to the same database."""
import gzip
import json
import os
import random
import sqlite3
import subprocess
from pathlib import Path

import pytest
from conftest import BUILD

TARN = BUILD / "tarn"
TRACED = Path(os.environ.get("MIREL_RELEASE_DIR", BUILD)) / "tarn"  # sanitizers do not bear to be traced
HOSTS, DAYS = 40, 60
ROWS = """SELECT host.name, place.text, since, value.text FROM fact JOIN host ON host.id = host JOIN place ON place.id = place
          LEFT JOIN value ON value.id = value WHERE NOT void ORDER BY 1, 2, 3"""
LATEST = """SELECT host.name, place.text, since, latest.text FROM latest JOIN host ON host.id = host
            JOIN place ON place.id = place ORDER BY 1, 2"""
DOCUMENTS = """SELECT value.text, file, document.hash, moment, host.name, problem FROM document
               LEFT JOIN host ON host.id = host JOIN value ON value.id = folder ORDER BY 1, 2"""
NEWEST = "SELECT place, host, value FROM (SELECT place, host, value, max(since) FROM fact GROUP BY 1, 2) WHERE value IS NOT NULL"


def document(host, day, **members):
    return {"tarn_collection_time": day, "platformInfo": {"osSystemName": host, "physMemFree": str(random.random())}, **members}


@pytest.fixture(name="store", scope="module")
def fixture_store(tmp_path_factory):
    """A day a folder; facts come, change and go, and now and then a host has no database."""
    random.seed(3)
    store = tmp_path_factory.mktemp("store")
    for day in range(DAYS):
        name = f"2026-{day // 28 + 5:02}-{day % 28 + 1:02}"
        (store / name).mkdir()
        for host in range(HOSTS):
            rows = [{"BPNAME": f"p{row}", "NPAGES": str(random.randrange(3))} for row in range(6) if random.random() < 0.9]
            databases = [{"name": "S", "bufferpools": rows}] if random.random() < 0.8 else []
            text = json.dumps(document(f"h{host}", name, databaseInfo=databases, setting=str(random.randrange(4))))
            (store / name / f"{host:06}-{random.getrandbits(128):032x}.json").write_text(text)
    return store


def load(database, *stores, tracing=()):
    call = [*tracing, TRACED if tracing else TARN, "fleet", "load", "--into", database, *stores]
    return subprocess.run(call, capture_output=True, text=True, check=False, timeout=300)


def contents(database):
    with sqlite3.connect(database) as connection:
        assert connection.execute("PRAGMA integrity_check").fetchall() == [("ok",)]
        assert connection.execute("SELECT * FROM present").fetchall() == connection.execute(NEWEST).fetchall()
        return [connection.execute(query).fetchall() for query in (ROWS, LATEST, DOCUMENTS)]


@pytest.fixture(name="whole", scope="module")
def fixture_whole(store, tmp_path_factory):
    """What one load in order comes to."""
    database = tmp_path_factory.mktemp("whole") / "db"
    ended = load(database, store)
    assert (ended.returncode, ended.stderr) == (0, "")
    assert ended.stdout.startswith(f"{HOSTS * DAYS} new documents, 0 of them")
    return contents(database)


@pytest.mark.parametrize("seed", range(4))
def test_order_does_not_matter(store, whole, tmp_path, seed):
    days = sorted(store.iterdir(), reverse=seed == 0)
    if seed:
        random.Random(seed).shuffle(days)
    for part in range(3):
        assert load(tmp_path / "db", *days[part::3]).returncode == 0
    assert contents(tmp_path / "db") == whole
    assert load(tmp_path / "db", store).stdout.startswith("0 new documents")


@pytest.mark.parametrize("call", [1, 2, 7, 20, 60, 150, 300, 450])
@pytest.mark.parametrize("fault", ["signal=SIGKILL:when={}", "signal=SIGTERM:when={}", "error=ENOSPC:when={}+"])
def test_a_load_that_was_ended_is_made_whole_by_the_next(store, whole, tmp_path, call, fault):
    inject = f"inject=pwrite64,fdatasync,ftruncate:{fault.format(call)}"
    ended = load(tmp_path / "db", store, tracing=["strace", "-f", "-qq", "-o", "/dev/null", "-e", "trace=pwrite64,fdatasync,ftruncate", "-e", inject])
    if "KILL" not in fault and ended.returncode != 0:
        assert ended.returncode == 2 and ended.stderr.startswith("tarn: ") and ended.stderr.count("\n") == 1, ended.stderr
    again = load(tmp_path / "db", store)
    assert again.returncode == 0
    if "KILL" not in fault:  # what is told to be loaded is
        assert sum(int(told.stdout.split()[0]) for told in (ended, again) if told.stdout) == HOSTS * DAYS
    assert contents(tmp_path / "db") == whole


def test_two_at_once_do_no_harm(store, whole, tmp_path):
    days = sorted(store.iterdir())
    call = [TARN, "fleet", "load", "--into", tmp_path / "db"]
    loaders = [subprocess.Popen([*call, *part], stdout=subprocess.DEVNULL) for part in (days, days[::-1])]
    assert [loader.wait(300) for loader in loaders] == [0, 0]
    assert contents(tmp_path / "db") == whole


SAMPLE = json.dumps(document("good", "2026-11-21"))
OTHERS = """2026-11-21T10:00:00Z 192.0.2.7 "mine.example:8081" "POST /tarn HTTP/1.0" 201 99 {0}
2026-11-21T10:00:00Z 192.0.2.7 "Good" "POST /tarn HTTP/1.0" 201 99 {1}
"""
HOSTILE = {  # content: state, problem, host
    "whole": (SAMPLE, ("whole", "", "good")),
    "sql": (json.dumps(document("x'); DROP TABLE fact; --", "2026-11-21")), ("whole", "", "x'); DROP TABLE fact; --")),
    "cut": (SAMPLE[:-20], ("cut", "not whole", "good")),
    "binary": (random.Random(1).randbytes(5000), ("damaged", "not whole", None)),
    "empty": ("", ("cut", "not whole", None)),
    "foreign": ("[1, 2]", ("foreign", "not whole", None)),
    "deep": ('{"a":' * 20_000, ("damaged", "not whole", None)),
    "values": (json.dumps({"a": [0] * 1_100_000}), ("whole", "large", None)),
    "future": (json.dumps(document("good", "2099-01-01")), ("whole", "future", "good")),
    "nobody": (json.dumps({"tarn_collection_time": "2026-11-21", "a": "b"}), ("whole", "no host", None)),
    "other": (json.dumps(document("yours", "2026-11-21")), ("whole", "other host", "yours")),
    "logged": (json.dumps({"tarn_collection_time": "2026-11-21", "a": "c"}), ("whole", "", "Good")),
}


def test_what_is_wrong_is_told_and_harms_nothing(tmp_path):
    day = tmp_path / "store/2026-11-21"
    day.mkdir(parents=True)
    for number, (name, (content, _)) in enumerate(HOSTILE.items()):
        (day / f"{number:06}-{name}.json").write_bytes(content if isinstance(content, bytes) else content.encode())
    subprocess.run(["zstd", "-q", "-o", day / "000100-packed.json.zst"], input=SAMPLE.replace("good", "packed").encode(), check=True)
    (day / "000101-torn.json.zst").write_bytes((day / "000100-packed.json.zst").read_bytes()[:-9])
    with (day / "000102-sparse.json").open("wb") as large:
        large.truncate(100 << 20)
    subprocess.run(["zstd", "-q", day / "000102-sparse.json", "-o", day / "000103-bomb.json.zst"], check=True)
    (day / "000104-copy.json").write_text(SAMPLE)
    (day / "000105-gone.json").symlink_to("nowhere")
    (day / "loop").symlink_to("..")
    (day / ".hidden.json").write_text("{}")
    os.mkfifo(day / "000106-fifo.json")
    (tmp_path / "store/incoming").mkdir()
    (tmp_path / "store/incoming/0.json").write_text(SAMPLE[:9])
    plain, gzipped, zipped = logs = [tmp_path / name for name in ("access.log", "access.log.2.gz", "access.log.3.zst")]
    lines = OTHERS.format("other", "logged").splitlines(keepends=True)
    plain.write_text(lines[0])
    gzipped.write_bytes(gzip.compress(b"no line\n") + gzip.compress(lines[1].encode()))
    subprocess.run(["zstd", "-q", plain, "-o", zipped], check=True)
    for log in (gzipped, zipped):
        (tmp_path / "torn").write_bytes(log.read_bytes()[:-3])
        assert load(tmp_path / "none", tmp_path, "--log", tmp_path / "torn").stderr == (
            f"tarn: {tmp_path}/torn: compressed, and not whole\n")

    before = subprocess.check_output(["ls", "-lR", "--full-time", tmp_path / "store"])
    ended = load(tmp_path / "db", tmp_path / "store", *(f"--log={log}" for log in logs))
    assert subprocess.check_output(["ls", "-lR", "--full-time", tmp_path / "store"]) == before
    assert (ended.returncode, ended.stderr) == (2, f"tarn: {day}/000105-gone.json: No such file or directory\n")
    with sqlite3.connect(tmp_path / "db") as database:
        told = {file.split("-")[-1].split(".")[0]: tuple(rest) for file, *rest in database.execute(
            "SELECT file, state, problem, name FROM document LEFT JOIN host ON host.id = host")}
        hosts = database.execute("SELECT DISTINCT name FROM fact JOIN host ON host.id = host ORDER BY 1").fetchall()
    expected = {name: told for name, (_, told) in HOSTILE.items()} | {
        "packed": ("whole", "", "packed"), "torn": ("damaged", "not whole", None),
        "sparse": ("whole", "large", None), "bomb": ("whole", "large", None)}
    assert told == expected
    assert hosts == [("Good",), ("good",), ("packed",), ("x'); DROP TABLE fact; --",)]


@pytest.mark.parametrize("content", [b"", b"no database", "CREATE TABLE fact (a)", "PRAGMA application_id = 0x7461726E; PRAGMA user_version = 1; CREATE TABLE fact (a)"])
def test_only_a_fleet_is_written_to(tmp_path, content):
    database = tmp_path / "db"
    if isinstance(content, str):
        with sqlite3.connect(database) as other:
            other.executescript(content)
    else:
        database.write_bytes(content)
    (tmp_path / "a.json").write_text(SAMPLE)
    before = database.read_bytes()
    ended = load(database, tmp_path / "a.json")
    if content:
        assert ended.returncode == 2 and ended.stderr.startswith(f"tarn: {database}: ") and ended.stderr.count("\n") == 1
        assert database.read_bytes() == before
    else:
        assert ended.returncode == 0

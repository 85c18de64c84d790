"""The fleet's engines held to each other: SQLite, one ClickHouse server, and a cluster of two; and what kills them."""
import json
import os
import shutil
import socket
import subprocess
import time
from pathlib import Path

import pytest
import servers
from conftest import BUILD

ROOT = servers.ROOT
CLUSTER = ROOT / "deploy/fleet/clickhouse"
GOLDEN = Path(__file__).parent / "golden/fleet.txt"
DAYS = 6


def document(host, day):
    """What a host shows on a day: most stays, a version rises, a pool comes and goes, one text is hostile."""
    pools = [{"BPNAME": name, "NPAGES": str(500 + day // 3 * n)} for n, name in enumerate(["main", "tem'p", "x=,]/~y"])
             if n != 1 or day % 4 < 2]
    return {
        "tarn_collection_time": f"2026-11-{day + 1:02}T10:00:00Z",
        "instanceInfo": {"codeRelease": "SQLite 3", "version": f"3.{9 + (day + host) // 4}.{day // 2}"},
        "databaseInfo": [{"name": name, "bufferpools": pools, "minNPages": str(day),
                          "note": f"line\n\ttab\\ '{host}' {{pointer}} é\x01"}
                         for name in ["SALES", "HR"][:1 + (host + day) % 2]],
        "platformInfo": {"osSystemName": f"host{host}.example.org"},
        "items": ["a", "a", "b"] if day < 3 else []}


@pytest.fixture(scope="module")
def store(tmp_path_factory):
    folder = tmp_path_factory.mktemp("store")
    for host in range(8):
        for day in range(DAYS):
            text = json.dumps(document(host, day), ensure_ascii=False)
            (folder / f"{day}").mkdir(exist_ok=True)
            (folder / f"{day}/{host}.json").write_text(text[:-9] if (host, day) == (3, 4) else text)
    return folder


@pytest.fixture(scope="module")
def shards(tmp_path_factory):
    with servers.clickhouse(tmp_path_factory.mktemp("clickhouse")) as running:
        for shard in running:
            for statement in (CLUSTER / "shards.sql").read_text().split(";\n"):
                if statement.strip():
                    shard.ask(statement)
        yield running


def start(*arguments, **environment):
    return subprocess.Popen([BUILD / "tarn", "fleet", *arguments], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                            stderr=subprocess.PIPE, text=True, env={"PATH": os.environ["PATH"], **environment})


def tarn(*arguments, **environment):
    process = start(*map(str, arguments), **environment)
    out, err = process.communicate(timeout=60)
    return process.returncode, out, err


def load(database, *stores):
    assert tarn("load", "--into", database, *stores)[::2] == (0, "")


QUESTIONS = [line.removeprefix("$ ") for line in GOLDEN.read_text().splitlines() if line.startswith("$ ")]


def answers(database, store):
    """Every question of the golden file with its answer."""
    result = ""
    for question in QUESTIONS:
        status, out, err = tarn(*json.loads(f"[{question}]"), "--json", "--db", database)
        result += f"$ {question}\n{out}{err}[{status}]\n"
    return result.replace(str(store), "STORE")


@pytest.fixture(scope="module")
def expected(store, tmp_path_factory):
    database = tmp_path_factory.mktemp("sqlite") / "fleet.db"
    load(database, store)
    return answers(database, store)


def test_sqlite_answers_as_expected(expected):
    if os.environ.get("MIREL_UPDATE_GOLDEN"):
        GOLDEN.write_text(expected)
    assert expected == GOLDEN.read_text()


def test_one_server_answers_alike_whatever_the_order(shards, store, expected):
    database = shards[0].name("backwards")
    for day in reversed(range(DAYS)):
        load(database, store / str(day))
    assert answers(database, store) == expected


def test_a_cluster_answers_alike_from_each_of_its_servers(shards, store, expected):
    load(shards[0].name("fleet"), store)
    assert [answers(shard.name("fleet"), store) for shard in shards] == [expected] * 2
    assert all(int(shard.ask("SELECT count() FROM fleet.fact_shard")) for shard in shards)


def test_a_file_moves_to_a_server(shards, store, expected, tmp_path):
    load(tmp_path / "fleet.db", store)
    database = shards[1].name("moved")
    load(database, tmp_path)
    subprocess.run([CLUSTER / "move", tmp_path / "fleet.db", f"http://127.0.0.1:{shards[1].port}", "moved"], check=True)
    assert answers(database, store) == expected
    shutil.copytree(store, tmp_path / "twice")
    told = [tarn("load", "--into", database, store, tmp_path / "twice")[1] for _ in range(2)]
    assert [line.split("; ")[1].split(" ")[0] for line in told] == ["48", "0"], told


def test_a_loader_that_is_killed_goes_on(shards, store, expected):
    database = shards[0].name("killed")
    for pause in range(1, 16):
        loader = start("load", "--into", database, str(store))
        time.sleep(0.01 * pause)
        loader.kill()
        loader.communicate()
    load(database, store)
    assert answers(database, store) == expected


def test_a_batch_that_broke_off_is_finished_before_others(shards, store, expected):
    database = shards[0].name("broken")
    load(database, store / "5")
    for statement in ("RENAME TABLE broken.fact TO broken.away", "CREATE VIEW broken.fact AS SELECT 1"):
        shards[0].ask(statement)
    status, _, err = tarn("load", "--into", database, store / "2")
    assert (status, err.count("\n")) == (2, 1)
    for statement in ("DROP TABLE broken.fact", "RENAME TABLE broken.away TO broken.fact"):
        shards[0].ask(statement)
    load(database, store / "3")
    load(database, store)
    assert answers(database, store) == expected


def test_two_loaders_at_once(shards, store, expected):
    database = shards[0].name("two")
    load(database, store / "0")
    loaders = [start("load", "--into", database, *(str(store / str(day)) for day in days))
               for days in (range(DAYS), reversed(range(DAYS)))]
    assert [(loader.communicate(timeout=60)[1], loader.returncode) for loader in loaders] == [("", 0)] * 2
    assert answers(database, store) == expected


def test_what_a_dead_loader_sent_is_waited_for(shards, store, expected):
    database = shards[0].name("slow")
    load(database, store / "5")
    rows = (bytes(8) + b"\x01x") * 150_000
    query = "database=slow&max_query_size=10000&query_id=tarn.slow.dead.1&query=INSERT+INTO+copy+FORMAT+RowBinary"
    with socket.create_connection(("127.0.0.1", shards[0].port)) as dead:
        dead.sendall(f"POST /?{query} HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\n{len(rows):x}\r\n".encode() + rows)
        loader = start("load", "--into", database, str(store))
        time.sleep(1)
        assert loader.poll() is None and shards[0].ask("SELECT count() FROM slow.document") == "8\n"
    assert (loader.communicate(timeout=60)[1], loader.returncode) == ("", 0)
    assert answers(database, store) == expected


def test_a_server_that_is_killed_loses_nothing(shards, store, expected):
    database = shards[1].name("gone")
    load(database, store / "5")
    for pause in range(4):
        loader = start("load", "--into", database, str(store))
        time.sleep(0.03 * pause)
        shards[1].kill()
        _, err = loader.communicate(timeout=60)
        assert (loader.returncode, err.count("\n")) in [(2, 1), (0, 0)]
        shards[1].start()
    load(database, store)
    assert answers(database, store) == expected


@pytest.mark.parametrize("name, user, error", [
    ("fleet", {"TARN_FLEET_USER": "fleet", "TARN_FLEET_PASSWORD": "no"},
     "wrong user or password (TARN_FLEET_USER, TARN_FLEET_PASSWORD)"),
    ("nothing", {}, "there is no database nothing"),
    ("default", {}, "the database default is not one of a fleet"),
    ("fleet", {"TARN_FLEET_USER": "fleet", "TARN_FLEET_PASSWORD": "secret"}, ""),
])
def test_troubles_are_one_line(shards, name, user, error):
    status, _, err = tarn("hosts", "--db", shards[0].name(name), **user)
    assert (status, error in err, err.count("\n")) == ((2, True, 1) if error else (0, True, 0))

"""A fleet's database: what loading costs, what it keeps, and how long questions take, on SQLite and on ClickHouse."""
import shutil
import statistics
import subprocess
import sys
import tempfile
import time
from pathlib import Path

sys.path.append(str(Path(__file__).resolve().parents[1] / "tests/system"))
from servers import clickhouse  # noqa: E402

DAYS = 20
QUESTIONS = {
    "where, two conditions": (["where", "/platformInfo/osRelease=6.1.0-7-amd64", "/instanceInfo/version<15.0.4"], 0.1),
    "where '*~TEXT'": (["where", "*~6.1.0-7-amd64"], 2),
    "spread": (["spread", "/instanceInfo/codeRelease"], 0.5),
    "history of a host": (["history", "db000001.example.org"], 0.05),
    "drift since a week": (["drift", "--since", "2026-10-14"], 3),
    "hosts": (["hosts"], None),
}


def seconds(*command):
    begin = time.perf_counter()
    assert subprocess.run(command, stdout=subprocess.DEVNULL, check=False).returncode < 2  # 1: something was found
    return time.perf_counter() - begin


def median(*command):
    return statistics.median(seconds(*command) for _ in range(3))


def sqlite_bytes(folder):
    return sum(file.stat().st_size for file in folder.glob("fleet.db*"))


def clickhouse_bytes(server):
    return int(server.ask("SELECT sum(bytes_on_disk) FROM system.parts WHERE active AND database = 'fleet'"))


def print_engine(engine, tarn, database, size_of, store, documents):
    loading = seconds(tarn, "fleet", "load", "--into", database, store)
    print(f"{f'load, documents a second, {engine}':40}{documents / loading:12.0f}{2000:12}")
    print(f"{f'bytes a document, {engine}':40}{size_of() / documents:12.0f}{1024:12}")
    for name, (words, wanted) in QUESTIONS.items():
        taken = median(tarn, "fleet", *words, "--from", database)
        print(f"{f'{name}, seconds, {engine}':40}{taken:12.3f}{wanted or '':>12}")


def print_fleet(programs, folder, documents):
    """A store of so many documents in the folder, and both engines on it. A start of tarn is in every time."""
    store = folder / "store"
    subprocess.run([programs / "mirel_bench_fleet", store, str(documents // DAYS), str(DAYS)], check=True)
    documents = documents // DAYS * DAYS
    print(f"\n{f'fleet, {documents} documents':40}{'':12}{'wanted':>12}")
    tarn = programs.parent / "tarn"
    print_engine("SQLite", tarn, folder / "fleet.db", lambda: sqlite_bytes(folder), store, documents)
    with clickhouse(folder / "clickhouse") as servers:
        servers[0].ask("CREATE DATABASE IF NOT EXISTS fleet")
        print_engine("ClickHouse", tarn, servers[0].name("fleet"), lambda: clickhouse_bytes(servers[0]), store, documents)
    shutil.rmtree(store)


if __name__ == "__main__":  # fleet.py BENCH-FOLDER-OF-THE-BUILD DOCUMENTS: that it still works
    with tempfile.TemporaryDirectory(prefix="mirel-bench-") as made:
        print_fleet(Path(sys.argv[1]), Path(made), int(sys.argv[2]))

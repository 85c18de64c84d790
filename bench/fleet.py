"""A fleet's database: what loading costs, what it keeps, and how long questions take, on SQLite and on ClickHouse."""
import datetime
import shutil
import statistics
import subprocess
import sys
import tempfile
import time
from pathlib import Path

sys.path.append(str(Path(__file__).resolve().parents[1] / "tests/system"))
from servers import clickhouse  # noqa: E402

HOST_DAYS = 20
DOCUMENTS_AT_ONCE = 100_000
FIRST_DAY = datetime.date(2026, 10, 1)
QUESTIONS = {  # and the seconds that are wanted
    "where, two conditions": (["where", "/platformInfo/osRelease=6.1.0-7-amd64", "/instanceInfo/version<15.0.4"], 0.1),
    "where '*~TEXT'": (["where", "*~6.1.0-7-amd64"], 2),
    "spread": (["spread", "/instanceInfo/codeRelease"], 0.5),
    "history of a host": (["history", "db000001.example.org"], 0.05),
    "drift since a week": (["drift", "--since", "{week}"], 3),
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


class Engine:
    def __init__(self, name, tarn, database, size):
        self.name, self.command, self.size = name, [tarn, "fleet"], size
        self.database, self.loading = database, 0

    def load(self, store):
        self.loading += seconds(*self.command, "load", "--into", self.database, store)

    def print(self, documents, week):
        print(f"{f'load, documents a second, {self.name}':40}{documents / self.loading:12.0f}{2000:12}")
        print(f"{f'bytes a document, {self.name}':40}{self.size() / documents:12.0f}{1024:12}")
        for name, (words, wanted) in QUESTIONS.items():
            words = [word.format(week=week) for word in words]
            taken = median(*self.command, *words, "--from", self.database)
            print(f"{f'{name}, seconds, {self.name}':40}{taken:12.3f}{wanted or '':>12}", flush=True)


def load_days(generator, store, hosts, days, engines):
    """So many documents are on the disk at a time, and both engines load them."""
    at_once = max(1, DOCUMENTS_AT_ONCE // hosts)
    for first in range(0, days, at_once):
        end = min(first + at_once, days)
        for day in range(first, end):
            subprocess.run([generator, store, str(hosts), str(day)], check=True)
        for engine in engines:
            engine.load(store)
        shutil.rmtree(store)
        loading = ", ".join(f"{engine.name} {engine.loading:.0f}" for engine in engines)
        print(f"{end} of {days} days, seconds of loading: {loading}", file=sys.stderr, flush=True)


def print_fleet(programs, folder, documents, hosts=None):
    """So many documents, of so many hosts, in both engines. A start of tarn is in every time."""
    hosts = hosts or documents // HOST_DAYS
    days = documents // hosts
    documents = days * hosts
    print(f"\n{f'fleet, {documents} documents of {hosts} hosts':40}{'':12}{'wanted':>12}", flush=True)
    tarn = programs.parent / "tarn"
    with clickhouse(folder / "clickhouse") as servers:
        servers[0].ask("CREATE DATABASE IF NOT EXISTS fleet")
        engines = [Engine("SQLite", tarn, folder / "fleet.db", lambda: sqlite_bytes(folder)),
                   Engine("ClickHouse", tarn, servers[0].name("fleet"), lambda: clickhouse_bytes(servers[0]))]
        load_days(programs / "mirel_bench_fleet", folder / "store", hosts, days, engines)
        week = FIRST_DAY + datetime.timedelta(max(1, days - 7))
        for engine in engines:
            engine.print(documents, week)


if __name__ == "__main__":  # fleet.py BENCH-FOLDER-OF-THE-BUILD DOCUMENTS: that it still works
    with tempfile.TemporaryDirectory(prefix="mirel-bench-") as made:
        print_fleet(Path(sys.argv[1]), Path(made), int(sys.argv[2]))

"""A plan and a trial against the run itself, over random templates: what a run starts, reads and sends is what the
plan says, in that order, and a trial writes the run's document."""
import json
import os
import random
import re
import subprocess
from pathlib import Path

import pytest
from conftest import BUILD, server

RELEASE = Path(os.environ.get("MIREL_RELEASE_DIR", BUILD))  # sanitizers do not bear to be traced
STRACE = ["strace", "-f", "-qq", "-s", "9999", "-e", "trace=execve,openat,write"]
TEMPLATES = 150
FEATURES = """
native os name
native network any
native db cfgRaw
native db name
native table rows
native readFile
native readFile {home}/read-{n} and more
native readFile $HOME/read-{n}
native readFile $home/read-{n}
native READFILE /read-{n}
execute echo {n}
execute  printf 'a\\\\b %s' "{n}" | cat
execute cat read-{n} 2>/dev/null
execute
execute false {n}
Execute echo {n}
sql array select {n} as n, 'x' as "q"
sql one select name, {n} as n from shop
sql value n select {n} as n
sql value other select {n}
sql  value  n   select '  ' || {n} as n
sql array selec {n}
sql table select {n}
sql array
sql value n
1.1
two words""".strip().splitlines()
KEYS = ["a", "b c", "~/", "a", "$foreach", "$foreach db", "$FOREACH db [x]", "é"]
REPEATS = ["$foreach db [d{n}]", "$foreach table [t]", "$foreach other [o]", " $foreach  db  xdx and more", "$foreach db x"]


def value(dice, depth):
    """Objects and arrays down to `depth`, with a command or a text at each end."""
    if depth == 0 or dice.random() < 0.5:
        return dice.choice(FEATURES).replace("{n}", str(dice.randrange(10**9)))
    if dice.random() < 0.3:
        return [value(dice, depth - 1) for _ in range(dice.randint(1, 3))]
    keys = [dice.choice(REPEATS if dice.random() < 0.4 else KEYS).replace("{n}", str(number))
            for number in range(dice.randint(1, 5))]
    return Members((key, value(dice, depth - 1)) for key in keys)


class Members(list):
    """An object whose names may repeat."""


def written(tree):
    if isinstance(tree, Members):
        return "{" + ",".join(f"{written(key)}: {written(member)}" for key, member in tree) + "}"
    if isinstance(tree, list):
        return "[" + ", ".join(map(written, tree)) + "]"
    return '"' + tree.replace('"', '\\"') + '"'


def passed(trace):
    """Commands, files and statements of the traced process in order; the driver manager writes down the latter."""
    main = trace.split(" ", 1)[0]
    for line in trace.splitlines():
        process, call = line.split(None, 1)
        if command := re.match(r'execve\("/bin/sh", \["sh", "-c",(?: "--",)? (".*")\], ', call):
            yield "execute", plain(command[1])
        elif process == main and (file := re.match(r'openat\(AT_FDCWD, ("(?:|[^"]*read-\d+|[^"]*SQLDBCONF)"), O_RDONLY\|O_NOCTTY', call)):
            yield "read", plain(file[1])
        elif process == main and (statement := re.search(r'SQLExecDirect\w*\.c\].*?SQL = \[(.*?)\]\[length = ', call)):
            if "sqlite_version" not in statement[1]:  # asked by the platform, of every connection
                yield "sql", plain(f'"{statement[1]}"')


def plain(quoted):
    """The text that strace shows."""
    return quoted[1:-1].encode().decode("unicode_escape").encode("latin-1").decode()


@pytest.fixture
def world(tmp_path, commands):
    """A database, a product with a command, and files: folder and environment."""
    subprocess.run(["sqlite3", "shop.db", "create table shop (name); insert into shop values ('Ada Example')"],
                   cwd=tmp_path, check=True)
    (tmp_path / "odbc.ini").write_text("[SHOP]\nDriver = SQLite3\nDatabase = shop.db\n")
    (tmp_path / "odbcinst.ini").write_text(
        f"[SQLite3]\nDriver = libsqlite3odbc.so\n[ODBC]\nTrace = Yes\nTraceFile = odbc.log\n")
    environment = {**os.environ, **commands(kato='echo "$@"', ifconfig="echo net"), "HOME": str(tmp_path),
                   "ODBCINI": f"{tmp_path}/odbc.ini", "ODBCSYSINI": str(tmp_path)}
    return tmp_path, environment


def call(world, *command):
    folder, environment = world
    return subprocess.run(command, cwd=folder, env=environment, stdin=subprocess.DEVNULL, capture_output=True,
                          timeout=60, check=False)


def planned(world, *arguments):
    """The plan's steps with paths as the run opens them."""
    folder, _ = world
    run = call(world, BUILD / "tarn", "plan", "--json", "template.json", *arguments)
    assert (run.returncode, run.stderr) == (0, b"")
    for line in run.stdout.decode().splitlines():
        step = json.loads(line)
        text = re.sub(r"\$home", str(folder), step["text"], flags=re.I)
        if step["kind"] != "connect":
            implied = step["implied"] and step["kind"] == "read"
            yield step["kind"], f"{folder}/databases/SHOP/member0000/SQLDBCONF" if implied else text


@pytest.mark.parametrize("database", [[], ["-d", "SHOP"]], ids=["alone", "connected"])
def test_a_run_does_what_its_plan_says(world, database):
    folder, _ = world
    dice = random.Random(len(database))
    for _ in range(TEMPLATES):
        template = written(Members([("root", value(dice, 5)), ("root", value(dice, 5))])).replace("{home}", str(folder))
        (folder / "template.json").write_text(template)
        with server([b"HTTP/1.1 200 OK\r\n\r\n" + template.encode()], [b"HTTP/1.1 200 OK\r\n\r\n"]) as (port, requests):
            run = call(world, *STRACE, "-o", "trace", RELEASE / "mirel", "-z", "-s", "-h", "127.0.0.1", "-p", str(port),
                       *database)
        assert run.returncode == 0, run.stdout.decode() + template
        trace = (folder / "trace").read_text()
        assert list(passed(trace)) == list(planned(world, *database)), template

        trial = call(world, BUILD / "tarn", "try", "template.json", "-o", "result.json", *database)
        assert (trial.returncode, trial.stderr) == (0, b""), template
        assert requests[1].partition(b"\r\n\r\n")[2] == (folder / "result.json").read_bytes(), template


def test_planning_starts_and_opens_nothing(world):
    folder, _ = world
    run = call(world, *STRACE, "-o", "trace", RELEASE / "tarn", "plan", "--default", "-d", "SHOP")
    assert (run.returncode, run.stdout.count(b"\n")) == (0, 41)
    calls = [line.split(None, 1)[1] for line in (folder / "trace").read_text().splitlines()]
    assert [line for line in calls if "/lib/" not in line and "/etc/ld.so" not in line and not line.startswith("write(1,")
            and "/tarn" not in line] == []

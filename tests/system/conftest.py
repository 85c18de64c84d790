"""What the system tests share: the built program and a way to run it."""
import json
import os
import socket
import subprocess
import threading
import time
from contextlib import contextmanager
from pathlib import Path

import pytest

ROOT = Path(__file__).resolve().parents[2]
BUILD = Path(os.environ.get("MIREL_BUILD_DIR", ROOT / "build"))


@pytest.fixture
def mirel(tmp_path):
    """Runs the program in an empty directory: mirel("-z", env={...}) -> CompletedProcess of bytes."""

    def run(*arguments, env=None, timeout=120, **popen):
        environment = {"PATH": os.environ["PATH"], "HOME": str(tmp_path), **(env or {})}
        popen.setdefault("stdout", subprocess.PIPE)
        popen.setdefault("stderr", subprocess.PIPE)
        return subprocess.run([BUILD / "mirel", *arguments], cwd=tmp_path, env=environment,
                              stdin=subprocess.DEVNULL, timeout=timeout, check=False, **popen)

    return run


CUSTOMER = "-n", "Zoë", "-c", "Shop", "-e", "zoë@shop.example", "-r", "AT", "-a", "Ring 1", "-t", "+43 1"


@pytest.fixture
def commands(tmp_path):
    """Makes commands of shell texts in the empty directory; gives the environment that finds them."""

    def make(**texts):
        (tmp_path / "bin").mkdir(exist_ok=True)
        for name, text in texts.items():
            (tmp_path / "bin" / name).write_text(f"#!/bin/sh\n{text}\n")
            (tmp_path / "bin" / name).chmod(0o755)
        return {"PATH": f"{tmp_path}/bin:{os.environ['PATH']}"}

    return make


def instance(create, *arguments, **variables):
    """Makes an instance folder, the first of the arguments; gives the environment that uses it."""
    subprocess.run([ROOT / create, *arguments], env={**os.environ, **variables}, check=True, stdout=subprocess.DEVNULL)
    names = ["PATH", "ODBCINI", "ODBCSYSINI"]
    shown = subprocess.check_output(["bash", "-c", '. "$0"; printenv "$@"', arguments[0] / "env", *names], text=True)
    return dict(zip(names, shown.splitlines(), strict=True))


def facts(name):
    """Members of a document, each with a query for the engine's own client, from a golden file."""
    lines = (Path(__file__).parent / "golden" / name).read_text().splitlines()
    return [line.split(": ", 1) for line in lines if not line.startswith("#")]


def check_facts(document, expected, rows, lines):
    """Holds a document against what the engine's own client prints: rows(query), or the lines of a listing."""
    asked = dict(expected)
    found = [fact for fact in document["instanceInfo"] + document["databaseInfo"][0] if fact[0] in asked]
    for (key, value), (name, query) in zip(found, expected, strict=True):
        if key.endswith("Raw"):
            assert (key, [line for line in lines(query) if f"{line}\n" not in value]) == (name, [])
        else:
            answer = rows(query)
            assert (key, value) == (name, answer[0][0][1] if isinstance(value, str) else answer)


def places(document, prefix=""):
    """The facts of a document with their JSON Pointers; the second member of one name in an object is NAME#2."""
    keys = []
    for key, value in document:
        keys.append(key)
        place = f"{prefix}/{key}" + (f"#{keys.count(key)}" if keys.count(key) > 1 else "")
        if key == "databaseInfo":
            yield from places(value[0], f"{place}/0")
        elif isinstance(value, list) and value and isinstance(value[0], tuple):
            yield from places(value, place)
        else:
            yield place, value


def check_answers(document, engine):
    """Holds a document of a database with everything in it against docs/answers.md; of the host no more is known."""
    table = [line.strip("| ").split(" | ") for line in (ROOT / "docs/answers.md").read_text().splitlines()
             if line.startswith("| ")]
    column = table[0].index(engine)
    expected = {row[0].strip("`"): row[column].startswith("answered") for row in table[1:]}
    found = {place: value not in ("null", "NULL", "", []) for place, value in places(document)}
    of_host = {place: True for place in found if place.startswith("/platformInfo/")}
    assert found | of_host == expected


def members(text):
    """A result document as nested lists of (key, value) pairs: order and duplicate keys are kept."""
    return json.loads(text, object_pairs_hook=list, strict=False)


@contextmanager
def server(*answers, whole=True):
    """Answers one request per connection: with bytes, pauses and deeds in turn. Yields port and requests."""
    requests = []

    def serve():
        for answer in answers:
            peer, _ = listener.accept()
            with peer:
                peer.settimeout(30)
                request = b""
                head, body, length = b"", b"", 1
                while len(body) < length:
                    request += peer.recv(1 << 16)
                    head, end, body = request.partition(b"\r\n\r\n")
                    length = whole * int(head.partition(b"Content-Length: ")[2] or 0) if end else 1
                requests.append(request)
                for step in answer:
                    if callable(step):
                        step(peer)
                    elif isinstance(step, bytes):
                        peer.sendall(step)
                    else:
                        time.sleep(step)
        listener.close()

    with socket.create_server(("127.0.0.1", 0)) as listener:
        thread = threading.Thread(target=serve, daemon=True)
        thread.start()
        yield listener.getsockname()[1], requests
        thread.join()

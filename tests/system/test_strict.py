"""What tarn strict writes is taken by other readers, whatever a document holds and however large it is."""
import json
import os
import random
import subprocess
import tempfile
from pathlib import Path

import pytest
from conftest import BUILD
from servers import PostgreSQL

ESCAPES = {byte: f"\\u{byte:04x}" for byte in range(32)} | dict(zip(b"\b\t\n\f\r", [r"\b", r"\t", r"\n", r"\f", r"\r"]))
WHOLE = [br"\\", br"\"", br"\n", br"\u00e9", br"\ud83d\ude00", br"\/", "é€😀".encode(), b"{}[]:, ", b"a", b"b#2"]
PARTS = [b"\xc3", b"\xe2\x82", b"\xf0\x9f\x98", b"\xed\xa0\x80", b"\xf4\x90\x80\x80", b"\xc0\xaf", b"\xff", b"\x80"]
SCALARS = [b"0", b"-1.5e+10", b"true", b"false", b"null", b'""']
RELEASE = Path(os.environ.get("MIREL_RELEASE_DIR", BUILD))  # sanitizers take memory of their own
PEAK = 60 << 20


def string(chance):
    raw = b"".join(chance.choice([*WHOLE, *PARTS, bytes([chance.randrange(1, 32)])]) for _ in range(chance.randrange(9)))
    return b'"%s"' % raw, b'"%s"' % raw.decode("utf-8", "replace").translate(ESCAPES).encode()


def value(chance, depth=0):
    """A document full of what strict JSON does not know, and what is to become of it."""
    kind = chance.randrange(4) if depth < 6 else 2
    if kind == 3:
        return (chance.choice(SCALARS),) * 2
    if kind == 2:
        return string(chance)
    parts = []
    for _ in range(chance.randrange(5)):
        blank = chance.choice([b"", b"\n  ", b"\t\r\n"])
        name = [text + blank + b": " for text in string(chance)] if kind == 1 else [b"", b""]
        parts.append([blank + name + part for name, part in zip(name, value(chance, depth + 1))])
    opening, closing = (b"{", b"\n}") if kind == 1 else (b"[", b"\n]")
    return tuple(opening + b",".join(part[side] for part in parts) + closing for side in (0, 1))


def strict(*words, **options):
    return subprocess.run([BUILD / "tarn", "strict", *words], capture_output=True, check=False, **options)


def names_once(pairs):
    assert len(dict(pairs)) == len(pairs), pairs
    return dict(pairs)


@pytest.fixture(scope="module")
def documents(tmp_path_factory):
    folder = tmp_path_factory.mktemp("documents")
    chance = random.Random(1)
    wanted = {}
    for number in range(300):
        document, expected = value(chance)
        wanted[folder / str(number)] = expected + b"\n"
        (folder / str(number)).write_bytes(chance.choice([b"", b"\xef\xbb\xbf"]) + document + b"\n" * chance.randrange(3))
    return wanted


def test_nothing_but_what_must_is_changed(documents):
    run = strict(*documents)
    assert (run.returncode, run.stderr) == (0, b"")
    assert run.stdout == b"".join(documents.values())


def test_other_readers_accept_it(documents):
    text = strict("--lines", "--unique", *documents).stdout.decode()
    lines = text.splitlines(keepends=True)
    assert len(lines) == len(documents)
    for line in lines:
        json.loads(line, object_pairs_hook=names_once)
    assert subprocess.run(["jq", "-c", "0"], input=text, capture_output=True, text=True, check=True).stdout.count("0") == 300
    assert subprocess.run([BUILD / "tests/system/mirel_accepts"], input=text, capture_output=True, text=True,
                          check=True).stdout == ""
    with tempfile.TemporaryDirectory(prefix="mirel-strict-") as folder:
        server = PostgreSQL(Path(folder))
        try:
            script = "".join(f"select $document${line}$document$::jsonb is null;\n" for line in lines)
            assert server.psql(script, "-t").count("f") == 300
        finally:
            subprocess.run(server.stop(), check=True)


@pytest.mark.parametrize(("piece", "count"), [
    pytest.param(b"\x01" * 1000, 200_000, id="a long text"),
    pytest.param(b'", "', 4_000_000, id="many elements"),
    pytest.param(b'", {"a": ["b", ', 9_000, id="deep, and cut")])
def test_memory_does_not_grow_with_the_document(piece, count):
    """From a pipe, so that it is spooled."""
    process = subprocess.Popen([RELEASE / "tarn", "strict", "--mend"], stdin=subprocess.PIPE, stdout=subprocess.DEVNULL,
                               stderr=subprocess.PIPE)
    process.stdin.write(b'["')
    for _ in range(count // 1000):
        process.stdin.write(piece * 1000)
    process.stdin.write(b'"]')
    process.stdin.close()
    process.stderr.read()
    assert os.wait4(process.pid, 0)[2].ru_maxrss << 10 < PEAK

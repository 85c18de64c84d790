"""Each call of the system that the program itself makes fails once, in turn, through a preloaded library."""
import re
import subprocess
from errno import EACCES, EAGAIN, ECONNRESET, EINTR, EIO, EMFILE, ENOMEM, ENOSPC
from http.server import BaseHTTPRequestHandler, HTTPServer
from threading import Thread

import pytest
from conftest import BUILD, members

HALF = 0
UNNOTICED = (EINTR, EAGAIN, HALF)  # what the program has to take in its stride
HOST = {"open": [EINTR, EACCES, EMFILE], "read": [EINTR, HALF, EIO], "close": [EINTR, EIO], "popen": [ENOMEM],
        "fgets": [EINTR], "write": [EINTR, HALF, ENOSPC], "fsync": [EINTR, EIO]}
NETWORK = {"socket": [EMFILE], "connect": [EINTR, ECONNRESET], "send": [EINTR, EAGAIN, HALF, ECONNRESET],
           "recv": [EINTR, EAGAIN, HALF, ECONNRESET], "poll": [EINTR, ENOMEM], "popen": [ENOMEM]}
MEMORY = {"_Znwm": [ENOMEM], "malloc": [ENOMEM]}


@pytest.fixture
def torture(mirel, tmp_path, capsys):
    """Yields what failed, whether nobody may notice, and how the run ended, until no call is left to fail."""
    def runs(faults, *arguments):
        passed = 0
        for function, error in ((function, error) for function in faults for error in faults[function]):
            for call in range(1, 1000, 7 if function in MEMORY else 1):
                fault = f"{function} {call} {error}"
                result = mirel(*arguments, timeout=20, env={
                    "LD_PRELOAD": f"{BUILD}/tests/system/libmirel_interposer.so", "MIREL_FAULT": fault,
                    "ASAN_OPTIONS": "verify_asan_link_order=0"})
                if not (tmp_path / "hit").exists():
                    break
                (tmp_path / "hit").unlink()
                yield fault, error in UNNOTICED, result
                passed += 1
        with capsys.disabled():
            print(f"\nFaults: {passed} runs passed")
        assert passed > 50
    return runs


def keys(document):
    assert members(document)
    return re.findall(r'^ +"(\w+)": ', document, re.MULTILINE)


def stable(text):
    return [line for line in text.decode().splitlines()
            if not re.search("physMem|virtMem|swapMem|diskInfoFree|networkInfoRaw|cpuSpeed", line)]


def test_printing_and_writing(mirel, torture, tmp_path):
    out = tmp_path / "out"
    expected = mirel("-z", "-o", "out")
    document = out.read_text()
    for fault, unnoticed, result in torture(HOST, "-z", "-o", "out"):
        printed, _, message = result.stdout.decode().rpartition("\n\n")
        written = out.read_text() if out.exists() else ""
        out.unlink(missing_ok=True)
        assert (result.returncode, keys(printed)) == (0, keys(document)), fault
        assert message in ("Written to file: out\n", "There was an error writing to file.\n"), fault
        assert printed.startswith(written), fault
        if unnoticed:
            assert (written, stable(result.stdout), result.stderr) == (
                printed, stable(expected.stdout), expected.stderr), fault


# The facts of the host are gathered in standard containers, below what the torture of the core reaches. Where the
# program brings its own memory (all builds but the one with sanitizers), nothing of that can be made to fail one by one.
@pytest.mark.skipif(" U _Znwm" not in subprocess.run(["nm", "-D", BUILD / "mirel"], capture_output=True, text=True,
                                                     check=False).stdout, reason="has an operator new of its own")
def test_collecting_without_memory(torture):
    delivered = 0
    for fault, _, result in torture(MEMORY, "-z", "-d", "NONE"):
        assert result.returncode == 0, fault
        assert keys(result.stdout.decode()) if result.stdout else result.stderr.endswith(b"out of memory\n"), fault
        delivered += b"out of memory\n" in result.stderr and result.stdout != b""
    assert delivered > 10


class Collection(BaseHTTPRequestHandler):
    timeout = 0.3  # of a request that falls short
    posted = []

    def do_GET(self):
        self.posted.clear()
        self.wfile.write(b'HTTP/1.0 200 OK\r\n\r\n{"a": "execute seq 2000", "b": "execute cat missing", "c": "d"}')

    def do_POST(self):
        body = self.rfile.read(int(self.headers["Content-Length"]))
        self.posted += [body] if len(body) == int(self.headers["Content-Length"]) else []
        self.wfile.write(b"HTTP/1.0 201 Created\r\n\r\n")

    def log_message(self, *_):
        pass


def test_sending(torture):
    document = b'{\n  "a": "' + b"".join(b"%d\\n" % n for n in range(1, 2001)) + b'",\n  "b": "",\n  "c": "d"\n}'
    with HTTPServer(("127.0.0.1", 0), Collection) as server:
        Thread(target=server.serve_forever, daemon=True).start()
        for fault, unnoticed, result in torture(NETWORK, "-zsh", "127.0.0.1", "-p", str(server.server_port)):
            assert result.returncode == 0 or (result.returncode == 255 and not unnoticed), fault
            if unnoticed:
                assert Collection.posted == [document], fault
            assert all(keys(body.decode()) == ["a", "b", "c"] for body in Collection.posted), fault
            Collection.posted.clear()
        server.shutdown()

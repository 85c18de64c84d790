"""Send mode: with the collection server's own nginx configuration, and with servers that misbehave."""
import base64
import json
import os
import socket
import struct
import time
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

import pytest
import servers
from conftest import server

RULE = "-" * 30
DOWNLOAD = "Downloading tarnconfig.json from 127.0.0.1...\nDone.\n"
RAW = base64.b64encode(os.urandom(37_500_000))


def upload(response, failed=""):
    return (f"Sending result to 127.0.0.1...\n{failed}Sent result to 127.0.0.1.\n"
            f"Response\n{RULE}\n{response}\n{RULE}\n")


def outcome(finished):
    return finished.returncode, finished.stdout.decode(), finished.stderr.decode()


@pytest.fixture
def nginx():
    with servers.nginx() as server_of_its_own:
        yield server_of_its_own


@pytest.mark.parametrize("size", [0, 1000, 3_000_000, 50_000_000])
def test_what_is_stored_is_what_was_posted(mirel, nginx, tmp_path, size):
    (tmp_path / "facts").write_bytes(RAW)
    nginx.template.write_text(f'{{"a": "execute head -c {size} facts"}}')

    status, out, err = outcome(mirel("-zsh", "127.0.0.1", "-p", str(nginx.port)))

    document = b'{\n  "a": "' + RAW[:size] + b'"\n}'
    response = out.removeprefix(DOWNLOAD).split(RULE)[1][1:-1]
    assert (status, out, err) == (0, DOWNLOAD + upload(response), "")
    head, _, receipt = response.partition("\r\n\r\n")
    name = json.loads(receipt)["stored"]
    assert (head.split("\r\n")[0], json.loads(receipt)) == (
        "HTTP/1.1 201 Created", {"stored": name, "bytes": len(document)})
    assert nginx.stored() == {nginx.store / name: document}


def test_two_hundred_collectors_at_once_lose_nothing(mirel, nginx, tmp_path):
    (tmp_path / "facts").write_bytes(RAW[:100_000])
    nginx.template.write_text('{"a": "execute touch ready.$N; until [ -e go ]; do sleep 0.2; done; echo $N; cat facts"}')
    with ThreadPoolExecutor(200) as pool:
        runs = [pool.submit(mirel, "-zsh", "127.0.0.1", "-p", str(nginx.port), env={"N": str(n)})
                for n in range(200)]
        while len(list(tmp_path.glob("ready.*"))) < 200 and not any(run.done() for run in runs):
            time.sleep(0.1)
        (tmp_path / "go").touch()

    assert [run.result().returncode for run in runs] == [0] * 200
    assert sorted(nginx.stored().values()) == sorted(
        b'{\n  "a": "%d\\n%s"\n}' % (n, RAW[:100_000]) for n in range(200))


def hang_up_hard(peer):
    peer.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))


def wait_for_the_other_end(peer):
    assert peer.recv(1) == b""


DOCUMENT = b'{\n  "a": "b"\n}'
PLAIN = b'HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\n{"a": "b"}'
NO_JSON = 'Expecting one of: ("{", "["); Actual: string "" on line 1 column 1\n'

# What a server does: texts that it sends, pauses, and deeds; the report when it does so to the download, "" when
# that serves.
MANNERS = json.loads((Path(__file__).parent / "golden/manners.json").read_text())
DEEDS = {"hang up": hang_up_hard, "wait": wait_for_the_other_end}


@pytest.mark.parametrize("manner", MANNERS)
def test_servers_that_misbehave(mirel, manner):
    steps, report = MANNERS[manner].values()
    steps = [DEEDS.get(step) or step.encode() if isinstance(step, str) else step for step in steps]
    response = b"".join(step for step in steps if isinstance(step, bytes))
    host = socket.gethostname().encode()
    get = b"GET /config HTTP/1.1\r\nHost: " + host + b"\r\n\r\n"
    post = b"POST /tarn HTTP/1.1\r\nHost: " + host + b"\r\nContent-Length: 14\r\n\r\n" + DOCUMENT

    with server([PLAIN], steps) as (port, requests):
        sent = outcome(mirel("-zsh", "127.0.0.1", "-p", str(port)))
    assert (sent, requests) == ((0, DOWNLOAD + upload(response.decode()), ""), [get, post])

    answers = [steps] if report else [steps, [PLAIN]]
    with server(*answers) as (port, requests):
        fetched = outcome(mirel("-zsh", "127.0.0.1", "-p", str(port)))
    assert (fetched, requests) == (
        ((255, DOWNLOAD + report, ""), [get]) if report else
        ((0, DOWNLOAD + upload(PLAIN.decode()), ""), [get, post]))


def test_refusal_before_the_body_is_read(mirel, tmp_path):
    (tmp_path / "facts").write_bytes(b"x" * 30_000_000)
    refusal = b"HTTP/1.1 413 Too Large\r\nContent-Length: 0\r\n\r\n"
    template = b'HTTP/1.1 200 OK\r\n\r\n{"a": "execute cat facts"}'
    with server([template], [refusal, 0.5], whole=False) as (port, _):
        sent = outcome(mirel("-zsh", "127.0.0.1", "-p", str(port)))
    assert sent == (0, DOWNLOAD + upload(refusal.decode(), f"failed to send: {'x' * 1024}\n"), "")


@pytest.mark.parametrize("host, port, error", [
    ("127.0.0.1", "1", "failed to connect"),
    ("", "8081", "failed to get hostname"),
    ("127.0.0.1", "abc", "failed to init node addr handle"),
])
def test_unreachable_servers(mirel, host, port, error):
    assert outcome(mirel("-zsh", host, "-p", port)) == (
        255, DOWNLOAD.replace("127.0.0.1", host) + NO_JSON, error + "\n")

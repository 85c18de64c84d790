"""Redaction that is killed, or refused by the system, at any of its calls: documents and maps appear whole or not at all."""
import os
import re
import subprocess
from collections import Counter
from pathlib import Path

import pytest
from conftest import BUILD

TARN = Path(os.environ.get("MIREL_RELEASE_DIR", BUILD)) / "tarn"  # sanitizers do not bear to be traced
DOCUMENT = '{"platformInfo": {"osSystemName": "%s"}, "list": "db01 10.1.2.%d\\n%s"}'
FAILING = {"write": "ENOSPC", "openat": "ENOSPC", "linkat": "ENOSPC", "rename": "EACCES", "fsync": "EIO", "mkdir": "EDQUOT"}
BEGIN = 'openat(AT_FDCWD, "in'  # what comes before is the loader's


class Place:
    """A folder with two documents, the second one larger than a block, and a map from before when there is one."""

    def __init__(self, folder, known):
        self.folder, self.known = folder, known
        for number, filler in (1, ""), (2, "x" * 300_000):
            (folder / f"in{number}.json").write_text(DOCUMENT % ("db01", number, filler))
        self.call = [TARN, "redact", "in1.json", "in2.json", "-o", "out", "--map", "map"]
        if known:
            (folder / "old.json").write_text(DOCUMENT % ("old", 9, ""))
            subprocess.run([TARN, "redact", "old.json", "--map", "map"], cwd=folder, check=True, capture_output=True)
            (folder / "old.json").unlink()
        self.before = self.files()
        subprocess.run(self.call, cwd=folder, check=True, capture_output=True)
        self.after = self.files()
        self.clean()

    def files(self):
        return {path.relative_to(self.folder).as_posix(): path.read_bytes() for path in self.folder.rglob("*") if path.is_file()}

    def clean(self):
        for path in sorted(self.folder.rglob("*"), reverse=True):
            path.rmdir() if path.is_dir() else path.unlink()
        for name, text in self.before.items():
            (self.folder / name).write_bytes(text)
            (self.folder / name).chmod(0o600)


    def traced(self, *tracing):
        """The calls of the system, and how the run ended."""
        read, write = os.pipe()
        process = subprocess.Popen(["strace", "-f", "-qq", "-o", f"/dev/fd/{write}", *tracing, *self.call], cwd=self.folder,
                                   pass_fds=[write], stderr=subprocess.PIPE, text=True)
        os.close(write)
        with os.fdopen(read) as trace:
            calls = trace.read()
        return calls, process.communicate()[1], process.returncode

    def calls(self):
        """(call, how many of it there are before the documents are opened, and in all)"""
        text = self.traced()[0]
        self.clean()
        count = lambda part: Counter(re.findall(r"^\d+ +(\w+)\(", part, re.MULTILINE))  # noqa: E731
        early, every = count(text[:text.index(BEGIN)]), count(text)
        return [(call, early[call], every[call]) for call in every]

    def expect_whole(self, what, names):
        """Every file is as it was or as it will be; an output needs its map. Only these names may be new."""
        found = self.files()
        for name, text in found.items():
            assert text in (self.before.get(name), self.after.get(name)) or re.fullmatch(names, name), (what, name)
        assert "out/in1.json" not in found or found["map"] == self.after["map"], what
        assert not self.known or "map" in found, what
        self.clean()


@pytest.fixture(params=[False, True], ids=["new map", "map from before"])
def place(request, tmp_path):
    return Place(tmp_path, request.param)


def test_killed_at_any_call(place):
    # What stands there is replaced by two calls: between them the new map has another name.
    killed, names = 0, r"\.tarn-\d+-0" if place.known else "-"
    for call, early, every in place.calls():
        for number in range(early + 1, every + 1):
            _, _, status = place.traced("-e", f"inject={call}:signal=KILL:when={number}")
            temporary = [text for name, text in place.files().items() if name.startswith(".")]
            assert all(text == place.after["map"] for text in temporary), (call, number)
            place.expect_whole((call, number), names)
            killed += status != 0
    assert killed > 50


def test_refused_any_call(place):
    refused = 0
    for call, early, every in place.calls():
        for number in range(early + 1, every + 1) if call in FAILING else ():
            _, told, status = place.traced("-e", f"inject={call}:error={FAILING[call]}:when={number}")
            assert told.startswith("tarn: ") if status else place.files() == place.after, (call, number, told)
            place.expect_whole((call, number), "-")
            refused += status == 2
    assert refused > 5


@pytest.mark.skipif(os.geteuid() != 0, reason="mounts file systems")
@pytest.mark.parametrize("full", ["documents", "maps"])
def test_full_disk(tmp_path, full):
    place = Place(tmp_path, False)
    script = ("mkdir documents maps && mount -t tmpfs -o size=4k none $0 && "
              f"{TARN} redact in1.json in2.json -o documents --map maps/map; find documents maps -type f")
    (tmp_path / "in1.json").write_text("[" + ",".join(f'"10.1.{n}.1"' for n in range(200)) + "]")
    run = subprocess.run(["unshare", "--mount", "sh", "-c", script, full], cwd=tmp_path, capture_output=True, text=True,
                         check=True)
    assert run.stdout == ""
    assert re.fullmatch(r"tarn: (documents/in2.json|maps/map): No space left on device\n", run.stderr)
    assert place.before["in2.json"] == place.files()["in2.json"]


@pytest.mark.skipif(os.geteuid() != 0, reason="becomes another user")
@pytest.mark.parametrize("owner, mode, complaint", [
    (0, 0o600, "Permission denied|belongs to another user"), (65534, 0o640, "others have rights"),
    (65534, 0o602, "others have rights"), (0, 0o666, "belongs to another user"), (65534, 0o600, None)])
def test_maps_of_others_and_for_others_are_refused(tmp_path, owner, mode, complaint):
    place = Place(tmp_path, True)
    os.chown(tmp_path, 65534, 65534)
    os.chown(tmp_path / "map", owner, 65534)
    (tmp_path / "map").chmod(mode)
    for name in "in1.json", "in2.json":
        (tmp_path / name).chmod(0o644)
    for parent in (tmp_path, *tmp_path.parents[:-2]):
        parent.chmod(parent.stat().st_mode | 0o011)
    for call in place.call, [TARN, "restore", "in1.json", "--map", "map"]:
        run = subprocess.run(["setpriv", "--reuid=65534", "--regid=65534", "--clear-groups", *call], cwd=tmp_path,
                             capture_output=True, text=True, check=False)
        if complaint:
            assert run.returncode == 2 and re.search(f"^tarn: map: ({complaint})", run.stderr)
        else:
            assert run.returncode == 0, run.stderr
    assert (tmp_path / "out").exists() == (complaint is None)

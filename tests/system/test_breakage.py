"""Hosts on which something is broken: the run ends well, and the document says what there was to say."""
import os
import subprocess
from pathlib import Path

import pytest
from conftest import BUILD, members
from test_faults import keys

RELEASE = Path(os.environ.get("MIREL_RELEASE_DIR", BUILD))  # sanitizers do not bear limits
BYTES = bytes(range(256))


@pytest.fixture
def host(tmp_path, commands):
    """An instance whose commands are these shell texts; runs something there and gives what it printed."""
    def run(*command, **texts):
        variables = commands(**{"kato": "", "katolevel": "", "katoset": "", "ifconfig": "", **texts})
        result = subprocess.run(command, cwd=tmp_path, env=variables, capture_output=True, timeout=60, check=True)
        return result.stdout.decode(errors="surrogateescape"), result.stderr.decode()
    return run


def facts(document):
    return {key: value for group in members(document)[2:] for key, value in group[1]}


def test_commands_that_misbehave(host, tmp_path):
    (tmp_path / "bytes").write_bytes(BYTES)
    printed, _ = host(BUILD / "mirel", "-z", katolevel="cat bytes", katoset="echo half; kill -SEGV $$",
                      kato="kill -9 $$", ifconfig="exec >&-; sleep 0.1")
    # A NUL byte costs the rest of its line.
    assert [facts(printed)[name] for name in ("versionRaw", "environmentVarsRaw", "numberOfDatabasesRaw", "networkInfoRaw")] \
        == [BYTES[11:].decode(errors="surrogateescape"), "half\n", "", ""]


@pytest.mark.parametrize("megabytes, kept", [(900, 200_000_000), (450, None), (150, 0), (20, 0)])
def test_endless_output_costs_its_member_where_memory_is_short(host, tmp_path, megabytes, kept):
    printed, errors = host("prlimit", f"--as={megabytes}000000", RELEASE / "mirel", "-z", "-o", "out",
                           katolevel="head -c 200000000 /dev/zero | tr '\\0' x", katoset="echo next")
    assert errors == ("" if kept else "out of memory\n")
    assert (tmp_path / "out").exists() == bool(printed) == (kept is not None)
    if printed:
        document = facts(printed.removesuffix("\n\nWritten to file: out\n"))
        assert (document["versionRaw"], document["environmentVarsRaw"]) == ("x" * kept, "next\n")


@pytest.mark.parametrize("make", [
    "true", "mkdir", "mkfifo", "truncate -s 4T", "ln -s /dev/zero", "ln -s /proc/self/mem",
    "ln -s /proc/self/pagemap"])
def test_files_that_cannot_be_read(host, make):
    host("sh", "-c", make + " katonodes.cfg")
    printed, errors = host("prlimit", "--as=1000000000", RELEASE / "mirel", "-z")
    assert (facts(printed)["nodesRaw"], errors) == ("", "out of memory\n" if "4T" in make else "")


@pytest.mark.parametrize("variable", ["HOME=", "HOME=long", "-uPATH", "PATH="])
def test_environment(host, variable):
    expected, _ = host(BUILD / "mirel", "-z")
    printed, errors = host("env", variable.replace("long", "/h" * 50_000), BUILD / "mirel", "-z")
    assert keys(printed) == keys(expected)
    assert errors == "" or "PATH" in variable


def test_long_option_values(host):
    value = "\\\"" * 5000
    printed, errors = host(BUILD / "mirel", "-z", *(f"-{letter}{value}" for letter in "dohpencirta"))
    document, end = printed.rsplit("\n\n", 1)
    assert end == "There was an error writing to file.\n" and errors.startswith("Trying to run: Connect\n")
    assert [fact for _, fact in members(document)[5][1]] == [value] * 6 + ["null"] * 2


@pytest.mark.parametrize("files", [4, 5, 6])
def test_no_file_descriptors_left(host, tmp_path, files):
    expected, _ = host(BUILD / "mirel", "-z")
    printed, _ = host("prlimit", f"--nofile={files}", RELEASE / "mirel", "-z", "-o", "out")
    document = (tmp_path / "out").read_text()
    assert (printed, keys(document)) == (f"{document}\n\nWritten to file: out\n", keys(expected))


@pytest.mark.skipif(os.geteuid() != 0, reason="mounts file systems")
@pytest.mark.parametrize("limit, end, complaint", [
    ("mount --bind . . && mount -o remount,bind,ro . && mount -o remount,bind,ro /", "There was an error writing to file.\n0\n", ""),
    ("mount -t tmpfs -o size=4k none .", "Written to file: out\n4096\n", "failed to write to the result file\n"),
    ("ulimit -f 8", "Written to file: out\n4096\n", "failed to write to the result file\n"),  # in blocks of 512 bytes; the signal must not end the run
])
def test_file_systems_that_take_nothing_more(host, limit, end, complaint):
    printed, errors = host("unshare", "--mount", "sh", "-c",
                      f"{limit} && cd $PWD && {BUILD}/mirel -z -a {'x' * 5000} -o out; cat out | wc -c")
    document, told = printed.rsplit("\n\n", 1)
    assert (told, facts(document)["address"]) == (end, "x" * 5000)
    assert errors.endswith(complaint)

"""The command line, standard output and the result file, on the real host without a database."""
import os
import re
import subprocess
from contextlib import suppress

import pytest
from conftest import BUILD, members, server


@pytest.fixture
def instance(tmp_path, commands):
    """An instance directory whose commands answer quickly; gives the environment to run in."""
    (tmp_path / "katonodes.cfg").write_text('0 "host" 0\n')
    return commands(kato='echo "kato $*"', katolevel="yes | head -1; grep SigIgn /proc/self/status",
                    katoset="printf 'a=1\\tb\\n'")


@pytest.mark.parametrize("arguments, output", [
    ([], ""),
    (["-d", "SAMPLE", "-o", "f", "--send", "--host=h"], ""),
    (["operand", "--bogus", "-x", "--outfile"],
     "unknown argument: --bogus\nunknown argument: -x\nunknown argument: --outfile\n"),
])
def test_without_support_nothing_is_collected(mirel, tmp_path, arguments, output):
    result = mirel(*arguments)
    assert (result.returncode, result.stdout.decode(), result.stderr) == (0, output, b"")
    assert list(tmp_path.iterdir()) == []


def test_default_document(mirel, instance):
    result = mirel("-z", env=instance)
    document = dict(members(result.stdout))
    assert (result.returncode, result.stderr) == (0, b"")
    assert document["tarn_collection_time"] == "null" and document["databaseInfo"] == []
    facts = dict(document["instanceInfo"])
    assert facts["versionRaw"].splitlines()[0] == "y"
    # SIGPIPE is number 13: commands see its default action, whatever the collector does for itself.
    assert int(facts["versionRaw"].split()[-1], 16) & 1 << 12 == 0
    assert facts["environmentVarsRaw"] == "a=1\tb\n" and b"a=1\tb\\n" in result.stdout
    assert facts["numberOfDatabasesRaw"] == "kato list database directory\n"
    assert facts["nodesRaw"] == '0 "host" 0\n'
    host = dict(document["platformInfo"])
    assert host["osName"] == os.uname().sysname and host["osSystemName"] == os.uname().nodename
    assert int(host["cpuOnline"]) == os.cpu_count()
    assert int(host["diskInfoTotal"]) == os.statvfs("/").f_blocks * os.statvfs("/").f_frsize
    assert "lo" in host["networkInfoRaw"]
    assert [key for key, value in document["platformInfo"] if value == ""] == []


LOST = b"failed to write to standard output\n"


@pytest.mark.parametrize("command, status, told", [
    ("-z -o out >&-", 0, LOST), ("-z -o out >/dev/full", 0, LOST), ("-z -o out | head -c 1 >/dev/null", 0, LOST),
    ("-z -o out <&- >&- 2>&-", 0, b""), (">/dev/full", 0, b""), ("--bogus >/dev/full", 0, LOST),
    ("-zsh 127.0.0.1 -p 1 >/dev/full", 255, b"failed to connect\n" + LOST)])
def test_losing_standard_output_is_told_and_costs_neither_file_nor_status(tmp_path, instance, command, status, told):
    run = subprocess.run(["bash", "-c", f"set -o pipefail; {BUILD}/mirel {command}"], cwd=tmp_path, env=instance,
                         timeout=60, stderr=subprocess.PIPE, check=False)
    assert (run.returncode, run.stderr) == (status, told)
    if "out" in command:
        document = (tmp_path / "out").read_text()
        assert dict(members(document))["tarn_version"] == "1.1" and document.endswith("}")


@pytest.fixture
def watched(mirel):
    """Runs the program with its standard error on a terminal; gives what it showed there, too."""
    def run(*arguments, **options):
        terminal, side = os.openpty()
        result = mirel(*arguments, stderr=side, **options)
        os.close(side)
        shown = ""
        with suppress(OSError):  # the end of what was written
            while True:
                shown += os.read(terminal, 10_000).decode()
        os.close(terminal)
        return result, shown
    return run


def test_waiting_for_the_server_shows(watched):
    with server([2.5, b"no template"]) as (port, _):
        result, line = watched("-zsh", "127.0.0.1", "-p", str(port))
    assert re.fullmatch(r"(\r\[\d s\] 4: waiting for the server\x1b\[K\r)+\r\x1b\[K", line)
    assert result.returncode == 255


def test_long_work_shows_on_a_terminal_only(mirel, watched, instance, commands):
    commands(katolevel="sleep 2.5; echo 1")
    shown, line = watched("-z", env=instance)
    hidden = mirel("-z", env=instance)
    assert re.fullmatch(r"(\r\[\d s\] \d+: versionRaw\x1b\[K\r)+\r\x1b\[K", line)
    assert (shown.returncode, hidden.returncode, hidden.stderr) == (0, 0, b"")
    assert [line.split(b":")[0] for line in shown.stdout.splitlines()] == \
        [line.split(b":")[0] for line in hidden.stdout.splitlines()]


def test_missing_driver_manager_is_told(mirel, instance, tmp_path):
    (tmp_path / "libodbc.so.2").touch()
    result = mirel("-z", "-d", "SAMPLE", env={**instance, "LD_LIBRARY_PATH": str(tmp_path)})
    assert result.returncode == 0 and dict(members(result.stdout))["databaseInfo"] == []
    assert re.fullmatch(r"Trying to run: Alloc m_env\nlibodbc.so.2, the ODBC driver manager, cannot be used: "
                        r"install unixODBC .*\n", result.stderr.decode())

"""The Debian packages: the same from any folder, sound for lintian, whole when installed, gone when removed."""
import os
import re
import subprocess
from pathlib import Path
from tempfile import TemporaryDirectory

import pytest

from conftest import ROOT, members

RELEASE = Path(os.environ.get("MIREL_RELEASE_DIR", ROOT / "build"))
COPY = """
  tar -C "$0" --exclude=./.git --exclude=./build -c . | tar -C "$1" --no-same-permissions -x &&
  touch -d 2001-01-01 "$1/README.md" &&
  cmake -S "$1" -B "$1/build" -DCMAKE_BUILD_TYPE=Release && cmake --build "$1/build" """
PATH = os.environ["PATH"] + ":/usr/sbin:/sbin"
EXAMPLES = "usr/share/doc/mirel/examples"


def run(*command, **options):
    done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False, **options)
    assert done.returncode == 0, done.stdout
    return done.stdout


def pack(build, target, **options):
    run("cpack", "-G", "DEB", "--config", build / "CPackConfig.cmake", "-B", target, **options)
    return {deb.name.split("_")[0]: deb for deb in target.glob("*.deb")}


@pytest.fixture(scope="module")
def packages(tmp_path_factory):
    """Both packages by name, made of the release and of a copy of its sources: folder, umask, a file's time, time zone,
    and the file system of the packing differ."""
    copy = tmp_path_factory.mktemp("another")
    differing = {"umask": 0o077, "env": {"PATH": PATH, "TZ": "Asia/Tokyo"}}
    with TemporaryDirectory(dir="/dev/shm") as memory:
        run("sh", "-c", COPY, ROOT, copy, **differing)
        yield [pack(RELEASE, tmp_path_factory.mktemp("package"), umask=0o022, env={"PATH": PATH, "TZ": "UTC"}),
               pack(copy / "build", Path(memory), **differing)]


@pytest.fixture(scope="module")
def root(packages, tmp_path_factory):
    """A scratch root with the packages installed. Removing them has to leave nothing."""
    folder = tmp_path_factory.mktemp("root")
    for part in ("info", "updates", "triggers"):
        (folder / "var/lib/dpkg" / part).mkdir(parents=True)
    (folder / "var/lib/dpkg/status").touch()
    dpkg = ("dpkg", f"--root={folder}", "--log=/dev/null", "--path-include=/usr/*", "--force-depends")
    run(*dpkg, "--install", *packages[0].values(), env={"PATH": PATH})
    yield folder
    run(*dpkg, "--purge", "mirel", "tarn", env={"PATH": PATH})
    assert os.listdir(folder) == ["var"]


@pytest.mark.parametrize("name", ["mirel", "tarn"])
def test_packages_are_the_same_and_sound(packages, name):
    assert packages[0][name].read_bytes() == packages[1][name].read_bytes()
    run("lintian", "--fail-on=error,warning", "--suppress-tags=initial-upload-closes-no-bugs", packages[0][name])


def test_the_collector_needs_nothing_but_its_language(packages):
    depends = run("dpkg-deb", "-f", packages[0]["mirel"], "Depends")
    assert {"libc6"} <= set(re.findall(r"(\S+) \(", depends)) <= {"libc6", "libgcc-s1", "libstdc++6"}


def test_installed_programs_collect_from_the_installed_sample_and_read(root, tmp_path):
    run(root / EXAMPLES / "sample/create", tmp_path, root / "usr/lib/mirel")
    text = run("bash", "-c", '. "$0/env" && "$1" -z -d SAMPLE', tmp_path, root / "usr/bin/mirel")
    assert dict(dict(members(text))["databaseInfo"][0])["numberOfTables"].isdigit()
    assert re.match(r"whole +\d+ of  82 answered  SAMPLE ", run(root / "usr/bin/tarn", "status", input=text))


def test_installed_texts_name_what_is_installed(root):
    for document in (root / "usr/share/doc").rglob("*.md"):
        text = document.read_text()
        links = re.findall(r"\]\((?!https?:)([^)#]+)\)", text)
        paths = re.findall(r"(?<![\w/~$])/usr/(?:lib|share)/[\w./-]*mirel[\w./-]*[\w/]", text)
        missing = [name for name in links if not (document.parent / name).exists()]
        missing += [name for name in paths if not (root / name.strip("/")).exists()]
        assert missing == [], document


def test_scripts_can_be_run(root):
    scripts = [file for file in (root / EXAMPLES).rglob("*") if file.is_file() and file.read_bytes().startswith(b"#!")]
    assert {"move", "mirel-compress-store", "create"} <= {file.name for file in scripts}
    assert [file for file in scripts if file.stat().st_mode & 0o777 != 0o755] == []


def test_units_are_valid_and_confined(root, tmp_path):
    timed = {"mirel": "systemd", "mirel-fleet-load": "collection-server", "mirel-store-compress": "collection-server"}
    units = [tmp_path / f"{name}.{kind}" for name in timed for kind in ("service", "timer")]
    for unit in units:
        folder = root / EXAMPLES / timed[unit.stem]
        text = (folder / unit.name).read_text().replace("=/usr/bin/", f"={root}/usr/bin/")
        unit.write_text(text.replace("=/usr/local/libexec/", f"={ROOT}/deploy/collection-server/"))
    assert run("systemd-analyze", "verify", "--man=no", "--recursive-errors=no", *units) == ""
    for service in units[::2]:
        run("systemd-analyze", "security", "--offline=true", "--threshold=28", service)
    (tmp_path / "etc").mkdir()
    run("systemd-sysusers", f"--root={tmp_path}", root / EXAMPLES / "systemd/mirel.sysusers")
    assert re.match(r"mirel:x:\d+:\d+:.*:/usr/sbin/nologin\n$", (tmp_path / "etc/passwd").read_text())

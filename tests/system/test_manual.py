"""The manual page and the guides: they render, name everything there is, and their examples give what they show.

An example is a line "$ command" with its output below it. A file that an example shows with `cat` is made first.
"""
import os
import re
import subprocess

import pytest
from conftest import BUILD, ROOT

DOCS = ROOT / "docs"
PAGE = DOCS / "mirel.1"


def read(*parts):
    return ROOT.joinpath(*parts).read_text()


def rendered():
    text = subprocess.run(["mandoc", "-Tutf8", PAGE], capture_output=True, text=True, check=True).stdout
    return re.sub(".\b", "", text)


def examples(path):
    """All (command, output) pairs of a document."""
    text = path.read_text()
    if path.suffix == ".md":
        blocks = re.findall(r"^```console\n(.*?)^```$", text, re.M | re.S)
    else:
        for escape, character in ((r"\-", "-"), (r"\(aq", "'"), (r"\e", "\\")):
            text = text.replace(escape, character)
        blocks = re.findall(r"^\.Bd -literal -offset indent\n(.*?)^\.Ed$", text, re.M | re.S)
    return re.findall(r"^\$ (.*)\n((?:(?!\$ ).*\n)*)", "".join(blocks), re.M)


def test_page_renders_without_a_warning_and_bears_the_version():
    # What mandoc says of the machine's index of manual pages goes to standard error.
    lint = subprocess.run(["mandoc", "-Tlint", PAGE], capture_output=True, text=True, check=False)
    groff = subprocess.run(["groff", "-mdoc", "-Tutf8", "-ww", PAGE], capture_output=True, text=True, check=False)
    assert (lint.stdout, groff.stderr, groff.returncode) == ("", "", 0)
    version = re.search(r"project\(mirel VERSION (\S+)", read("CMakeLists.txt"))[1]
    assert f"This page describes version {version}.\n" in PAGE.read_text()


def test_page_documents_every_option_in_both_spellings():
    table = re.findall(r'\{"(\w+)", (true|false), \'(\w)\'\}', read("driver", "mirel_driver_options.cpp"))
    documented = re.findall(r"^ +-(\w)( \w+)?, --(\w+)(=\w+)?$", rendered(), re.M)
    assert {(name, "true" if one and other else "false", letter) for letter, one, name, other in documented} == \
        set(table) and len(table) == 13


@pytest.mark.parametrize("document", [PAGE, DOCS / "templates.md"], ids=lambda path: path.name)
def test_examples_give_what_they_show(document, tmp_path):
    pairs = examples(document)
    for command, shown in pairs:
        if file := re.fullmatch(r"cat ([\w.-]+)", command):
            (tmp_path / file[1]).write_text(shown)
    script = "".join(f"{command}\nprintf '\\036'\n" for command, _ in pairs)
    environment = {"PATH": f"{BUILD}:{tmp_path}:{os.environ['PATH']}", "HOME": str(tmp_path), "LC_ALL": "C.UTF-8",
                   "ODBCINI": str(tmp_path / "odbc.ini")}
    run = subprocess.run(["bash", "-c", f"exec 2>&1\n{script}"], cwd=tmp_path, env=environment, timeout=120,
                         stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, check=False)
    outputs = run.stdout.decode().split("\x1e")[:-1]
    given = [(command, output) for (command, _), output in zip(pairs, outputs, strict=True)]
    assert given == pairs

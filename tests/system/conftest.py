"""What the system tests share: the built program and a way to run it."""
import json
import os
import subprocess
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


def members(text):
    """A result document as nested lists of (key, value) pairs: order and duplicate keys are kept."""
    return json.loads(text, object_pairs_hook=list, strict=False)

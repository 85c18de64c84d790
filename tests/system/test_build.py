"""What the built files must and must not contain: the seam to the machine, direction of includes, linkage."""
import os
import platform
import re
import subprocess
from pathlib import Path

from conftest import ROOT

RELEASE = Path(os.environ.get("MIREL_RELEASE_DIR", ROOT / "build"))

# The only functions of the machine that the core may call by itself.
SYSTEM_LIBRARY = set("popen fgets feof pclose getenv gethostname strcasestr toupper".split())
LANGUAGE_RUNTIME = re.compile(
    r"_Z(n[aw]|d[al])|_ZS|_ZNS|_ZNKS|_ZTVN10__cxxabiv|_ZT[IV]S|__cxa_|__gxx_|_Unwind_|__dso_handle|__dynamic_cast"
    r"|__stack_chk_fail|__(mem|str|fgets|gethostname)\w*_chk$|_GLOBAL_OFFSET_TABLE_|__isoc23_strtoul|__libc_single_threaded"
    r"|(mem(chr|cmp|cpy|move|set)|str(chr|cmp|cspn|len|ncmp|nlen|spn|casecmp|ncasecmp)|strtoul|strtol|atexit|exit)$")


def tool(*command):
    return subprocess.run(command, capture_output=True, text=True, check=True).stdout


def symbols(archive, *options):
    return {line.split()[-1] for line in tool("nm", *options, archive).splitlines() if len(line.split()) > 1}


def test_core_reaches_the_machine_only_through_the_platform():
    core = RELEASE / "libmirel_core.a"
    outside = symbols(core, "--undefined-only") - symbols(core, "--defined-only")
    headers = "".join(path.read_text() for path in (ROOT / "platform").glob("*.h"))
    strangers = {name for name in outside
                 if name not in SYSTEM_LIBRARY and not LANGUAGE_RUNTIME.match(name)
                 and not re.search(rf"\b{name}\b", headers) and not name.startswith("_ZN8OSSHFile")}
    assert strangers == set()
    assert "_ossMemAlloc" in outside, "nm told nothing"


def test_includes_go_down_only():
    layers = (ROOT / "tests/system/golden/layers.txt").read_text().splitlines()[1:]
    upward = []
    for folder, allowed in (line.split(":") for line in layers):
        for path in (ROOT / folder).glob("*.*"):
            included = re.findall(r'#include "(.+)/', path.read_text())
            upward += [f"{path.name} includes {target}/" for target in included if target not in allowed.split()]
    rooms = {str(path.parent.relative_to(ROOT)) for path in [*ROOT.glob("platform/*/*/*.cpp"), *ROOT.glob("tarn/**/*.cpp")]}
    assert (upward, rooms - {line.split(":")[0] for line in layers}) == ([], set())


def test_binary_needs_the_language_runtime_only_and_hides_its_call_level_interface():
    needed = re.findall(r"NEEDED.*\[(?!ld-linux)(\S+?)\.so", tool("readelf", "-dW", RELEASE / "mirel"))
    assert set(needed) <= {"libc", "libstdc++", "libm", "libgcc_s"} and "libc" in needed
    exported = tool("nm", "-D", "--defined-only", RELEASE / "mirel")
    assert not re.search(r"\bSQL[A-Z]", exported)  # or drivers call ours instead of their own


def test_release_is_hardened():
    module = [r"Type:\s+DYN", "GNU_RELRO", r"\(FLAGS_1\).* NOW", "GNU_STACK .* RW ", "__stack_chk_fail@"]
    program = [*module, r"\(FLAGS_1\).* PIE", r"__\w+_chk@"]
    for name, wanted in (("mirel", program), ("mirel_catalog_sqlite.so", module)):
        text = tool("readelf", "--dyn-syms", "-hldW", RELEASE / name)
        assert [feature for feature in wanted if not re.search(feature, text)] == [], name
    if platform.machine() == "x86_64":
        notes = tool("readelf", "-nW", RELEASE / "libmirel_core.a")
        assert 0 < notes.count("IBT, SHSTK") == notes.count("File: ")

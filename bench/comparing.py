"""tarn diff and tarn page as whole processes: seconds, peaks of memory and bytes of output on documents of 15 and 150 MB,
beside jsondiffpatch, which is told by a function how rows are named; and how soon a page shows its first table."""
import json
import multiprocessing
import os
import random
import re
import statistics
import subprocess
import tempfile
import time
import zlib
from pathlib import Path

ROOT = Path(__file__).resolve().parents[1]
TARN = ROOT / "build/release/tarn"
TIMES = 5
MIB = 1 << 20
PATIENCE, LONG = 60, 5  # seconds for one run: what needs more has no figures, or those of a single run
SMALL, LARGE = "15 MB, 55,000 rows", "150 MB, 550,000 rows"
REFERENCE = """
import {readFileSync} from 'fs';
import * as jsondiffpatch from 'jsondiffpatch';
const [before, after] = process.argv.slice(2).map((file) => JSON.parse(readFileSync(file)));
const differ = jsondiffpatch.create({objectHash: (row) => row.TABNAME ?? JSON.stringify(row)});
process.stdout.write(JSON.stringify(differ.diff(before, after)));
"""
# Notes when a frame with rows of a table in it was drawn, counted from when the page was asked for.
FIRST_TABLE = """
const look = () => requestAnimationFrame(document.querySelector('.rows tbody tr') ? () => { window.stood = performance.now(); } : look);
look();
"""


def row(number, chance):
    return {"TABSCHEMA": f"SCHEMA{number % 97}", "TABNAME": f"TABLE_{number:06}", "TYPE": "T", "STATUS": "N",
            "COLCOUNT": str(number % 72), "CARD": str(chance.randrange(10**6)), "NPAGES": str(chance.randrange(10**4)),
            "STATS_TIME": "2026-11-21-02.44.01", "REMARKS": "what it is for " * (number % 7)}


def changed(rows, chance):
    """1 % of the rows have another value, 0.5 % are gone, and as many are new."""
    count = len(rows)
    new = [dict(one) for one in rows]
    for number in chance.sample(range(count), count // 100):
        new[number]["CARD"] += "9"
    gone = set(chance.sample(range(count), count // 200))
    return [one for number, one in enumerate(new) if number not in gone] \
        + [row(count + number, chance) for number in range(count // 200)]


def unnamed(count, chance):
    return [{name: str(chance.randrange(3)) for name in "ABCD"} for _ in range(count)]


def tables(count, chance):
    rows = [row(number, chance) for number in range(count)]
    return {"rows": rows}, {"rows": changed(rows, chance)}


def listings(count, _):
    return ({"list": "\n".join(f"{side} {number}" for number in range(count))} for side in ("old", "new"))


# Each makes OLD and NEW.
DOCUMENTS = {
    SMALL: lambda chance: tables(55_000, chance), LARGE: lambda chance: tables(550_000, chance),
    "20,000 rows without names": lambda chance: ({"rows": unnamed(20_000, chance)} for _ in range(2)),
    "100,000 lines, all changed": lambda chance: listings(100_000, chance)}


def write(name, files):
    """In a process of its own: a child begins with the peak of the one that starts it."""
    def make():
        for file, document in zip(files, DOCUMENTS[name](random.Random(7)), strict=True):
            file.write_text(json.dumps(document, indent=2))
    process = multiprocessing.Process(target=make)
    process.start()
    process.join()


def once(command):
    """Seconds, bytes of output and the peak of memory; nothing when it was given up or fell."""
    with tempfile.TemporaryFile() as output:
        begin = time.perf_counter()
        process = subprocess.Popen(["timeout", "--signal=KILL", str(PATIENCE), *command], stdout=output, stderr=subprocess.DEVNULL)
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
        return (time.perf_counter() - begin, os.fstat(output.fileno()).st_size, usage.ru_maxrss << 10) \
            if process.returncode in (0, 1) else None


def measured(command):
    if (warm_up := once(command)) is None or warm_up[0] > LONG:
        return warm_up
    runs = [once(command) for _ in range(TIMES)]
    return statistics.median(run[0] for run in runs), *warm_up[1:]


def print_run(name, work, figures, seconds="", mebibytes="", kilobytes=""):
    if figures is None:
        print(f"{name:28}{work:16}{f'over {PATIENCE}, or fell':>18}")
        return
    print(f"{name:28}{work:16}{figures[0]:10.3f}{seconds:>8}{figures[2] / MIB:10.1f}{mebibytes:>8}"
          f"{figures[1] / 1000:10.0f}{kilobytes:>8}")


def title(name):
    print(f"\n{name:28}{'':16}{'seconds':>10}{'reach':>8}{'peak, MiB':>10}{'reach':>8}{'out, KB':>10}{'reach':>8}")


def reference(folder):
    subprocess.run(["npm", "install", "--silent", "--no-audit", "--no-fund", "--ignore-scripts", "--prefix", folder,
                    "jsondiffpatch@0.7.7"], check=True, stdout=subprocess.DEVNULL)
    (folder / "reference.mjs").write_text(REFERENCE)
    return ["node", folder / "reference.mjs"]


def print_differences(folder):
    title("diff")
    other, ours = reference(folder), {}
    files = folder / "before.json", folder / "after.json"
    for name in DOCUMENTS:
        write(name, files)
        ours[name] = measured([TARN, "diff", *files])
        reach = {SMALL: ("0.35", "200", "250"), LARGE: (f"{11 * ours[SMALL][0]:.3f}",)}.get(name, ())
        print_run(name, "tarn diff", ours[name], *reach)
        print_run(name, "tarn diff --json", measured([TARN, "diff", "--json", *files]))
        if name != LARGE:
            print_run(name, "jsondiffpatch", measured([*other, *files]))


def first_table(page):
    """Seconds from asking for the page to the frame with its first table, in Chromium."""
    from browsers import chromium  # its packages are there when the programs were built
    with chromium() as driver:
        driver.execute_cdp_cmd("Page.addScriptToEvaluateOnNewDocument", {"source": FIRST_TABLE})
        times = []
        for _ in range(TIMES + 1):
            driver.get(page.as_uri())
            while (stood := driver.execute_script("return window.stood")) is None:
                time.sleep(0.05)
            times.append(stood / 1000)
    return statistics.median(times[1:])


def print_pages(folder):
    title("page")
    document, page = folder / "document.json", folder / "page.html"
    write(SMALL, (document, folder / "after.json"))
    seconds, _, peak = measured([TARN, "page", document, "-o", page])
    print_run(SMALL, "tarn page", (seconds, page.stat().st_size, peak), kilobytes="1500")
    print(f"{'':28}{'first table':16}{first_table(page):10.3f}{'0.5':>8}")
    code = b"".join(re.findall(rb"<style>.*?</style>|<script>.*?</script>", page.read_bytes(), re.DOTALL))
    print(f"{'':28}{'code, compressed':16}{'':36}{len(zlib.compress(code, 9)) / 1000:10.0f}{'60':>8}")

"""What tarn page writes, opened as a file in Chromium and Firefox: no script error, no request, nothing that axe complains
of, whatever the document holds; found by roles and names, as who uses it finds it."""
import json
import subprocess
from datetime import datetime, timedelta, timezone

import pytest
from browsers import chromium, firefox
from conftest import BUILD, ROOT
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys
from selenium.webdriver.support.ui import WebDriverWait

FIXTURES = ROOT / "tests/tarn/fixtures"
ROWS = 55_000
HOSTS = 10_000
ATTACK = """</script><script>hacked=1</script><img src=x onerror=hacked=1> "' onload=hacked=1 javascript:hacked=1 {data}"""


def breaking_out():
    """Markup, quotes, addresses, names of 1 MB and turned text wherever a document has a place for them."""
    texts = [ATTACK, "javascript:hacked=1", "\u202etxt.exe\u2066", "--><!--", "]]>", "${hacked=1}", "\ud800", "__proto__"]
    inner = {text: text for text in texts} | {"n" * 1_000_000: "v", "__proto__": {"constructor": "x"}}
    return {"tarn_collection_time": ATTACK, "instanceInfo": inner | {"version": ATTACK},
            "platformInfo": {"osSystemName": ATTACK, "networkInfoRaw": f"{ATTACK}\n" * 30},
            "databaseInfo": [inner | {"rows": [{text: text for text in texts}] * 20, ATTACK: ATTACK.split()}],
            "many": {f"{ATTACK}{number}": str(number) for number in range(1000)}, "deep": deep(200)}


def deep(levels):
    return {"deeper": deep(levels - 1)} if levels else ATTACK


def large():
    rows = [{"TABSCHEMA": f"SCHEMA{n % 97}", "TABNAME": f"TABLE_{n:06}", "COLCOUNT": str(n % 72), "TYPE": "T",
             "CARD": str(n * 7919 % 999_983), "NPAGES": str(n * 31 % 9973), "STATS_TIME": "2026-11-21-02.44.01",
             "REMARKS": "what it is for " * (n % 4)} for n in range(ROWS)]
    return {"tarn_version": "1.1", "databaseInfo": [{"name": "SHOP", "tables": rows}]}


def fleet(folder):
    """The page of 10,000 hosts, some of whose names are hostile; a hundred are silent, and one has changed."""
    now = datetime.now(timezone.utc)
    store = folder / "store"
    store.mkdir()
    for number in range(HOSTS):
        host = f"{ATTACK}{number}" if number % 1000 == 7 else f"db{number:05}"
        for days in (30,) if number % 100 == 99 else (30, 1) if number == 1 else (1,):
            made = (now - timedelta(days=days)).isoformat(timespec="seconds")
            (store / f"{number}-{days}.json").write_text(json.dumps({
                "collected": made, "platformInfo": {"osSystemName": host, "osRelease": f"6.1.{days}{ATTACK}"},
                "instanceInfo": {"codeRelease": f"PostgreSQL 15.0.{number % 9}"}}))
    (store / "cut.json").write_text('{"a": ')
    for arguments in ("load", "--into", folder / "fleet.db", store), ("page", "--from", folder / "fleet.db", "-o", folder / "fleet.html"):
        subprocess.run([BUILD / "tarn", "fleet", *arguments], check=True, stdout=subprocess.DEVNULL)


@pytest.fixture(scope="module")
def pages(tmp_path_factory):
    folder = tmp_path_factory.mktemp("pages")
    for name, made in ("hostile", breaking_out()), ("large", large()):
        (folder / f"{name}.json").write_text(json.dumps(made, indent=2))
    sources = {"sample": [FIXTURES / "sample.json"], "postgresql": [FIXTURES / "postgresql.json"],
               "cut": [FIXTURES / "cut.json"], "two": [FIXTURES / "sample.json", FIXTURES / "later.json"],
               "hostile": [folder / "hostile.json"], "changed": [FIXTURES / "sample.json", folder / "hostile.json"],
               "large": [folder / "large.json"]}
    for name, files in sources.items():
        subprocess.run([BUILD / "tarn", "page", *files, "-o", folder / f"{name}.html"], check=name != "cut")
    fleet(folder)
    return folder


@pytest.fixture(scope="module")
def axe():
    folder = BUILD / "axe"
    subprocess.run([ROOT / "tools/fetch-axe", folder], check=True)
    return (folder / "node_modules/axe-core/axe.min.js").read_text()


@pytest.fixture(scope="module", params=[chromium, firefox], ids=["chromium", "firefox"])
def browser(request):
    with request.param() as driver:
        driver.set_window_size(1280, 900)
        yield driver


class Page:
    def __init__(self, driver, path, wait=True):
        self.driver = driver
        driver.get("about:blank")
        driver.get(path.as_uri())
        if wait:
            self.until("return document.documentElement.dataset.ready")

    def run(self, script, *arguments):
        return self.driver.execute_script(script, *arguments)

    def until(self, script):
        return WebDriverWait(self.driver, 60).until(lambda driver: driver.execute_script(script))

    def find(self, selector):
        return self.driver.find_element(By.CSS_SELECTOR, selector)

    def named(self, xpath):
        return self.driver.find_element(By.XPATH, xpath)

    def expect_clean(self, axe):
        """What every page has to be: run at the end of each test."""
        assert self.run("return performance.getEntriesByType('resource').map(entry => entry.name)") == []
        assert self.run("return document.getElementById('trouble').hidden")
        assert self.run("return [typeof hacked, document.querySelectorAll('script, img, iframe, object, base').length]") \
            == ["undefined", 1]
        assert self.run("return [...document.querySelectorAll('[href]')].every(a => a.getAttribute('href')[0] === '#')")
        if "chrome" in self.driver.capabilities.get("browserName", ""):
            assert self.driver.get_log("browser") == []
        self.run(axe)
        found = self.driver.execute_async_script(
            "const done = arguments[0]; axe.run().then(result => done(result.violations.map("
            "one => [one.id, one.nodes.length, one.nodes[0].html.slice(0, 300), one.nodes[0].failureSummary])))")
        assert found == []


@pytest.mark.parametrize("name", ["sample", "postgresql", "cut", "two", "hostile", "changed", "large", "fleet"])
def test_nothing_is_wrong_with_the_page(browser, pages, axe, name):
    Page(browser, pages / f"{name}.html").expect_clean(axe)


def test_nothing_is_wrong_in_the_dark_and_on_a_phone(pages, axe):
    with chromium() as driver:
        driver.execute_cdp_cmd("Emulation.setEmulatedMedia", {"features": [{"name": "prefers-color-scheme", "value": "dark"}]})
        driver.set_window_size(500, 900)
        page = Page(driver, pages / "two.html")
        assert page.run("return document.documentElement.scrollWidth <= innerWidth")
        page.expect_clean(axe)


def test_a_large_table_sorts_filters_and_keeps_little_in_the_page(browser, pages, axe):
    page = Page(browser, pages / "large.html")
    assert (pages / "large.html").stat().st_size < 1_500_000
    first = "return document.querySelector('.rows tbody:not([aria-hidden]) tr')?.textContent"
    assert page.run("return document.querySelectorAll('tr').length") < 100
    page.named("//th//button[.='CARD']").click()
    assert page.run("return document.querySelector('[aria-sort=ascending]').textContent") == "CARD"
    assert page.run(first).startswith("SCHEMA0TABLE_000000")
    page.named("//th//button[.='CARD']").click()
    assert "999982" in page.run(first)
    page.named("//label[contains(., 'Filter')]//input").send_keys("table_0499")
    page.until("return document.querySelector('.rows .tools .count').textContent === '100 of 55,000 rows'")
    page.run("location.hash = '#/databaseInfo/0/tables/54321'")
    page.until("return document.querySelector('tr.marked')?.textContent.includes('TABLE_054321')")
    page.expect_clean(axe)


def test_the_search_finds_everything_and_leads_there_by_keyboard(browser, pages, axe):
    page = Page(browser, pages / "sample.html")
    page.find("body").send_keys("/")
    assert page.run("return document.activeElement.id") == "search"
    page.find("#search").send_keys("journal_mode")
    page.until("return document.querySelectorAll('#found li').length === 1")
    page.find("#search").send_keys(Keys.ENTER)
    assert page.run("return document.activeElement.textContent") == "/databaseInfo/0/configRaw"
    page.run("document.activeElement.click()")
    page.until("return document.querySelector('details.target[open] pre')?.textContent.includes('journal_mode')")
    page.expect_clean(axe)


def test_what_changed_stands_on_top(browser, pages):
    page = Page(browser, pages / "two.html")
    text = page.run("return document.getElementById('changes').innerText")
    assert "Since 2026-11-21: 4 changed, 1 added, 1 removed." in text
    assert "/databaseInfo/0/bufferpools[BPNAME=main]/NPAGES" in text and "+ cache_size                   = -8000" in text


def test_a_fleet_of_10000_hosts_stands_on_one_page(browser, pages, axe):
    page = Page(browser, pages / "fleet.html")
    assert (pages / "fleet.html").stat().st_size < 500_000
    figures = page.find("header").text
    assert all(part in figures for part in ("10000", "Silent for 7 days\n100", "10001", "Problems\n1")), figures
    tables = [table.get_attribute("aria-label") for table in browser.find_elements(By.CSS_SELECTOR, ".scroller")]
    assert tables == [f"{name}, rows" for name in ("Silent hosts", "Drift", "Engines", "States", "Hosts", "Problems")]
    assert "/platformInfo/osRelease" in page.named("//*[@aria-label='Drift, rows']").text
    page.named("//section[.//h2[contains(., 'Hosts') and not(contains(., 'Silent'))]]//input").send_keys("</SCRIPT>")
    page.until("return [...document.querySelectorAll('.tools .count')].some(one => one.textContent === '10 of 10,000 rows')")
    assert ATTACK[:40] in page.named("//*[@aria-label='Hosts, rows']").text
    page.expect_clean(axe)


def test_without_scripts_the_summary_is_there(pages):
    with chromium(javascript=False) as driver:
        text = Page(driver, pages / "two.html", wait=False).find("body").text
        fleet_text = Page(driver, pages / "fleet.html", wait=False).find("body").text
    assert all(part in fleet_text for part in ("10000", "db00099", "/platformInfo/osRelease (hosts: 1, changes: 1)", "PostgreSQL 15.0.3: 1111"))
    assert all(part in text for part in ("db1", "SQLite 3.40.1", "71 of 82", "4 changed", "The option was not given",
                                         "JavaScript, which is turned off"))

"""Debian's Chromium and Firefox, driven by Selenium.

Debian has no geckodriver, which only translates between WebDriver and what Firefox itself speaks (Marionette: packets
of "length:[kind, number, command, parameters]" on a socket). So we translate here, and Selenium is none the wiser.
"""
import json
import shutil
import socket
import subprocess
import tempfile
import time
from contextlib import contextmanager
from pathlib import Path

from selenium import webdriver
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.remote.command import Command
from selenium.webdriver.remote.errorhandler import ErrorHandler

NAMES = {
    Command.NEW_SESSION: "NewSession", Command.GET: "Navigate", Command.GET_TITLE: "GetTitle",
    Command.GET_CURRENT_URL: "GetCurrentURL", Command.W3C_EXECUTE_SCRIPT: "ExecuteScript",
    Command.W3C_EXECUTE_SCRIPT_ASYNC: "ExecuteAsyncScript", Command.SCREENSHOT: "TakeScreenshot",
    Command.FIND_ELEMENT: "FindElement", Command.FIND_ELEMENTS: "FindElements", Command.CLICK_ELEMENT: "ElementClick",
    Command.SEND_KEYS_TO_ELEMENT: "ElementSendKeys", Command.SET_WINDOW_RECT: "SetWindowRect",
    Command.W3C_ACTIONS: "PerformActions", Command.SET_TIMEOUTS: "SetTimeouts", Command.PRINT_PAGE: "Print",
    Command.W3C_GET_ACTIVE_ELEMENT: "GetActiveElement", Command.GET_ELEMENT_TEXT: "GetElementText"}


class Marionette:
    """What Selenium takes for its connection to a driver."""
    w3c = True
    browser_name = "firefox"

    def __init__(self, port):
        deadline = time.monotonic() + 60
        while True:
            try:
                self.socket = socket.create_connection(("127.0.0.1", port), timeout=120)
                break
            except ConnectionRefusedError:
                if time.monotonic() > deadline:
                    raise
                time.sleep(0.2)
        self.stream = self.socket.makefile("rb")
        self.number = 0
        self.packet()  # the greeting

    def packet(self):
        length = b""
        while (byte := self.stream.read(1)) != b":":
            length += byte
        return json.loads(self.stream.read(int(length)))

    def execute(self, command, params):
        if command == Command.QUIT:
            return {"value": None}
        params = {key: value for key, value in params.items() if key != "sessionId"}
        if command == Command.GET_TITLE:
            params = {}
        self.number += 1
        text = json.dumps([0, self.number, f"WebDriver:{NAMES[command]}", params]).encode()
        self.socket.sendall(b"%d:%s" % (len(text), text))
        _, _, error, result = self.packet()
        if error:
            ErrorHandler().check_response({"status": 500, "value": json.dumps({"value": error})})
        if command == Command.NEW_SESSION:
            return {"value": result}
        return result if isinstance(result, dict) and "value" in result else {"value": result}

    def close(self):
        self.socket.close()


@contextmanager
def firefox(**preferences):
    with tempfile.TemporaryDirectory(prefix="tarn-firefox-") as profile:
        with socket.create_server(("127.0.0.1", 0)) as free:
            port = free.getsockname()[1]
        quiet = {"marionette.port": port, "datareporting.policy.dataSubmissionEnabled": False,
                 "browser.shell.checkDefaultBrowser": False, "network.captive-portal-service.enabled": False,
                 "network.connectivity-service.enabled": False, "services.settings.server": "data:,", **preferences}
        Path(profile, "user.js").write_text(
            "".join(f"user_pref({json.dumps(key)}, {json.dumps(value)});\n" for key, value in quiet.items()))
        process = subprocess.Popen(["firefox-esr", "--headless", "--marionette", "--no-remote", "--profile", profile],
                                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        try:
            driver = webdriver.Remote(command_executor=Marionette(port), options=webdriver.FirefoxOptions())
            yield driver
            driver.command_executor.close()
        finally:
            process.terminate()
            process.wait(60)


@contextmanager
def chromium(**preferences):
    options = webdriver.ChromeOptions()
    options.binary_location = shutil.which("chromium")
    for argument in ("--headless=new", "--no-sandbox", "--disable-dev-shm-usage", "--hide-scrollbars"):
        options.add_argument(argument)
    if not preferences.get("javascript", True):
        options.add_experimental_option("prefs", {"profile.managed_default_content_settings.javascript": 2})
    options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
    driver = webdriver.Chrome(service=Service(shutil.which("chromedriver")), options=options)
    try:
        yield driver
    finally:
        driver.quit()

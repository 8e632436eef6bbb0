"""A camera report in a real browser: headless, with its network seen and its console read."""

import base64
import json
import os
import pathlib
import shutil
import sys

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "tools"))

import qrx_case  # noqa: E402
from selenium import webdriver  # noqa: E402
from selenium.webdriver.chrome.service import Service  # noqa: E402

ARGUMENTS = [
    "--headless=new", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage",
    "--window-size=1400,1000", "--no-first-run", "--disable-background-networking",
    "--disable-component-update", "--disable-sync", "--disable-default-apps",
    "--host-resolver-rules=MAP * ~NOTFOUND, EXCLUDE 127.0.0.1",  # loopback for the driver alone
]


def program(*names):
    for name in names:
        path = shutil.which(name)
        if path:
            return path
    raise FileNotFoundError(" or ".join(names))


class BrowserCase(qrx_case.QrxCase):
    """One browser for each test."""

    def open(self, path, dark=False, script=True):
        options = webdriver.ChromeOptions()
        options.binary_location = program("chromium", "chromium-browser")
        for argument in ARGUMENTS:
            options.add_argument(argument)
        options.add_argument(f"--user-data-dir={self.folder}/profile")
        options.set_capability("goog:loggingPrefs", {"browser": "ALL", "performance": "ALL"})
        self.driver = webdriver.Chrome(options=options,
                                       service=Service(program("chromedriver")))
        self.addCleanup(self.driver.quit)
        self.driver.set_page_load_timeout(120)
        self.driver.set_script_timeout(120)
        self.command("Emulation.setEmulatedMedia", features=[
            {"name": "prefers-color-scheme", "value": "dark" if dark else "light"}])
        if not script:
            self.command("Emulation.setScriptExecutionDisabled", value=True)
        self.driver.get(pathlib.Path(path).as_uri())
        return self.driver

    def command(self, name, **parameters):
        return self.driver.execute_cdp_cmd(name, parameters)

    def run_script(self, text, *arguments):
        return self.driver.execute_script(text, *arguments)

    def requests(self):
        """Addresses that the page asked for, its own and pictures inside it left out."""
        asked = []
        for entry in self.driver.get_log("performance"):
            message = json.loads(entry["message"])["message"]
            if message["method"] == "Network.requestWillBeSent":
                asked.append(message["params"]["request"]["url"])
        return [url for url in asked if not url.startswith(("data:", "file:///", "chrome:"))]

    def complaints(self):
        return [entry["message"] for entry in self.driver.get_log("browser")]

    def printed(self):
        told = self.command("Page.printToPDF", preferCSSPageSize=True, printBackground=True)
        return base64.b64decode(told["data"])

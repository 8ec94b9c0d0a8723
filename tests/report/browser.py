"""Chromium without a window, with a page in it, watched: what it asks for, what it says, and what its scripts do."""

import base64
import json
import os
import pathlib
import shutil
import tempfile

from selenium import webdriver
from selenium.webdriver.chrome.options import Options
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.common.by import By

ARGUMENTS = ["--headless", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run", "--disable-sync",
             "--disable-background-networking", "--disable-component-update", "--force-device-scale-factor=1",
             "--font-render-hinting=none"]


class Browser:
    """One Chromium, its settings and cache in a new folder that goes with it."""

    def __init__(self, width=1280, height=800):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="report-browser-"))
        options = Options()
        options.binary_location = shutil.which("chromium") or "chromium"
        for argument in [*ARGUMENTS, f"--user-data-dir={self.folder / 'data'}", f"--window-size={width},{height}"]:
            options.add_argument(argument)
        options.set_capability("goog:loggingPrefs", {"browser": "ALL", "performance": "ALL"})
        options.add_experimental_option("perfLoggingPrefs", {"enableNetwork": True, "enablePage": False})
        service = Service(shutil.which("chromedriver") or "chromedriver", log_path=os.devnull)
        self.driver = webdriver.Chrome(service=service, options=options)
        self.driver.set_script_timeout(30)
        self.command("Performance.enable", timeDomain="threadTicks")
        self.opened = 0
        self.logs()  # what the browser asked for its own first page

    def close(self):
        self.driver.quit()
        shutil.rmtree(self.folder, ignore_errors=True)

    def page(self, text):
        """A new file with this text, as an address."""
        path = self.folder / f"page-{len(list(self.folder.glob('*.html')))}.html"
        path.write_text(text, encoding="utf-8")
        return path.as_uri()

    def open(self, address, hash=""):
        """Opens the page anew, also where the address differs behind '#' alone."""
        self.opened += 1
        self.driver.get(f"{address}?{self.opened}{hash}")
        self.settle()

    def go(self, hash):
        """Follows a link within the page. It would do so in its own time, but for the event."""
        self.run("location.hash = arguments[0]; dispatchEvent(new Event('hashchange'))", hash)

    def logs(self):
        """What the console says since the last time, and the addresses asked for."""
        said = [entry["message"] for entry in self.driver.get_log("browser")]
        asked = []
        for entry in self.driver.get_log("performance"):
            message = json.loads(entry["message"])["message"]
            if message["method"] == "Network.requestWillBeSent":
                asked.append(message["params"]["request"]["url"])
        return said, asked

    def run(self, script, *arguments):
        return self.driver.execute_script(script, *arguments)

    def command(self, name, **arguments):
        return self.driver.execute_cdp_cmd(name, arguments)

    def work(self):
        """Seconds of processor time that the page has taken since it was asked for, whatever else the machine did."""
        metrics = self.command("Performance.getMetrics")["metrics"]
        return next(one["value"] for one in metrics if one["name"] == "TaskDuration")

    def all(self, selector):
        return self.driver.find_elements(By.CSS_SELECTOR, selector)

    def one(self, selector):
        return self.driver.find_element(By.CSS_SELECTOR, selector)

    def texts(self, selector):
        return self.run("return [...document.querySelectorAll(arguments[0])].map((e) => e.textContent)", selector)

    def look(self, width=1280, height=800, dark=False, media=""):
        """The size of the page, its colours, and what it is shown on when that is no screen."""
        self.command("Emulation.setDeviceMetricsOverride", width=width, height=height, deviceScaleFactor=1, mobile=False)
        self.command("Emulation.setEmulatedMedia", media=media,
                     features=[{"name": "prefers-color-scheme", "value": "dark" if dark else "light"}])
        self.settle()

    def settle(self):
        """Waits until what was asked for is drawn."""
        self.driver.execute_async_script(
            "const done = arguments[0]; requestAnimationFrame(() => requestAnimationFrame(() => setTimeout(done)))")

    def picture(self, path):
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(base64.b64decode(self.command("Page.captureScreenshot", format="png")["data"]))

"""A headless browser that shows pages of mlktree report, for tests and for the pictures of the guide."""

import contextlib
import os
import tempfile
from pathlib import Path

from selenium import webdriver
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.support.ui import WebDriverWait

# Generous: other tests run beside this one.
WAIT = 60

ARGUMENTS = (
    "--headless=new",
    "--no-sandbox",  # which a container forbids to root
    "--disable-dev-shm-usage",
    "--disable-gpu",
    "--disable-extensions",
    "--disable-background-networking",
    "--no-first-run",
    "--no-default-browser-check",
    "--force-device-scale-factor=1",
    "--hide-scrollbars",
    "--disable-ipc-flooding-protection",  # a test follows hundreds of links
)


@contextlib.contextmanager
def browser():
    """A driver with a profile of its own, which both end with the block."""
    with tempfile.TemporaryDirectory(ignore_cleanup_errors=True) as profile:
        options = webdriver.ChromeOptions()
        options.binary_location = "/usr/bin/chromium"
        for argument in (*ARGUMENTS, f"--user-data-dir={profile}"):
            options.add_argument(argument)
        options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
        # The driver takes a free port; its home must not be that of the user.
        service = Service("/usr/bin/chromedriver", env={**os.environ, "HOME": profile, "XDG_CONFIG_HOME": profile})
        driver = webdriver.Chrome(options=options, service=service)
        try:
            driver.set_page_load_timeout(WAIT)
            driver.set_script_timeout(WAIT)
            yield driver
        finally:
            driver.quit()


class Page:
    """A report in the browser."""

    def __init__(self, driver, path):
        self.driver = driver
        self.uri = Path(path).resolve().as_uri()

    def open(self, route="", until="ready"):
        """Loads the page anew, and waits until its data is unpacked."""
        self.driver.get("about:blank")
        self.driver.get(self.uri + route)
        self.wait(lambda: self.run("return document.documentElement.dataset.state") in (until, "failed"))
        self.settle()
        return self

    def go(self, route):
        """Goes to another view of the page, as a link does."""
        self.run("""
            if (location.hash === arguments[0]) { return; }
            window.__gone = false;
            addEventListener("hashchange", () => { window.__gone = true; }, {once: true});
            location.hash = arguments[0];
        """, route)
        self.wait(lambda: self.run("return window.__gone !== false"))
        self.settle()
        return self

    def follow(self, link):
        """Clicks a link, and waits for the view that it leads to."""
        self.run("window.__gone = false; addEventListener('hashchange', () => { window.__gone = true; }, {once: true});")
        link.click()
        self.wait(lambda: self.run("return window.__gone"))
        self.settle()

    def settle(self):
        """Waits until what was asked for in this frame is drawn."""
        self.driver.execute_async_script(
            "const done = arguments[0]; requestAnimationFrame(() => requestAnimationFrame(() => setTimeout(done)));")

    def run(self, script, *arguments):
        return self.driver.execute_script(script, *arguments)

    def wait(self, condition):
        return WebDriverWait(self.driver, WAIT, poll_frequency=0.05).until(lambda _: condition())

    def all(self, selector):
        return self.driver.find_elements("css selector", selector)

    def one(self, selector):
        return self.driver.find_element("css selector", selector)

    def text(self):
        return self.run("return document.body.innerText")

    def console(self):
        """What the browser complained about since the last question."""
        return [entry for entry in self.driver.get_log("browser") if entry["level"] in ("SEVERE", "WARNING")]

    def size(self, width, height):
        self.driver.execute_cdp_cmd("Emulation.setDeviceMetricsOverride",
                                    {"width": width, "height": height, "deviceScaleFactor": 1, "mobile": width < 600})
        self.settle()

    def media(self, scheme="light", medium=""):
        self.driver.execute_cdp_cmd("Emulation.setEmulatedMedia", {
            "media": medium, "features": [{"name": "prefers-color-scheme", "value": scheme}]})
        self.settle()

    def picture(self, path):
        """Saves what is in the window."""
        self.driver.save_screenshot(str(path))

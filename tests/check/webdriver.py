# SPDX-License-Identifier: GPL-3.0-or-later
"""A headless Chromium, driven through chromedriver by WebDriver's plain HTTP."""
import base64
import json
import re
import shutil
import subprocess
import tempfile
import urllib.error
import urllib.request

ELEMENT = "element-6066-11e4-a52e-4f735466cecf"  # WebDriver's name for a reference to an element
KEYS = {
    "Tab": "\ue004", "Enter": "\ue007", "End": "\ue010", "Home": "\ue011",
    "ArrowLeft": "\ue012", "ArrowUp": "\ue013", "ArrowRight": "\ue014", "ArrowDown": "\ue015",
}
# As root there is no sandbox; the rest keeps the browser from asking the network for anything.
ARGUMENTS = [
    "--headless", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
    "--disable-background-networking", "--disable-component-update", "--disable-sync", "--disable-dev-shm-usage",
]


def programs():
    """The browser and its driver, or None where one is missing."""
    found = [shutil.which("chromium"), shutil.which("chromedriver")]
    return found if all(found) else None


class Browser:
    """One window. Used as a context manager; nothing of it is left behind."""

    def __init__(self, width=1280, height=1000):
        chromium, driver = programs()
        self.profile = tempfile.TemporaryDirectory(prefix="kestrum-browser-", ignore_cleanup_errors=True)
        # Port 0: the driver takes a free one and says which.
        self.driver = subprocess.Popen([driver, "--port=0"], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
        for line in self.driver.stdout:
            said = re.search(r"started successfully on port (\d+)", line)
            if said:
                self.base = f"http://127.0.0.1:{said[1]}"
                break
        else:
            raise RuntimeError("chromedriver did not start")
        options = {
            "binary": chromium,
            "args": ARGUMENTS + [f"--user-data-dir={self.profile.name}", f"--window-size={width},{height}"],
        }
        capabilities = {"browserName": "chrome", "goog:chromeOptions": options, "goog:loggingPrefs": {"browser": "ALL"}}
        session = self._send("POST", "/session", {"capabilities": {"alwaysMatch": capabilities}})
        self.base += "/session/" + session["sessionId"]
        self._send("POST", "/timeouts", {"script": 120000, "pageLoad": 120000})

    def __enter__(self):
        return self

    def __exit__(self, *_):
        try:
            self._send("DELETE", "")
        finally:
            self.driver.terminate()
            self.driver.wait()
            self.driver.stdout.close()
            self.profile.cleanup()

    def _send(self, method, path, body=None):
        data = json.dumps(body).encode() if body is not None else None
        request = urllib.request.Request(self.base + path, data, {"Content-Type": "application/json"}, method=method)
        try:
            with urllib.request.urlopen(request, timeout=180) as answer:
                return json.load(answer)["value"]
        except urllib.error.HTTPError as error:
            raise RuntimeError(json.load(error)["value"]["message"]) from error

    def open(self, url):
        self._send("POST", "/url", {"url": url})

    def resize(self, width, height):
        """Sets the size of the page's view, which on narrow screens is less than a window's least width."""
        self._send("POST", "/goog/cdp/execute", {
            "cmd": "Emulation.setDeviceMetricsOverride",
            "params": {"width": width, "height": height, "deviceScaleFactor": 1, "mobile": False}})

    def before_every_page(self, script):
        """Runs a script in every page that is opened, before the page's own. Returns a name for forget()."""
        return self._send("POST", "/goog/cdp/execute", {
            "cmd": "Page.addScriptToEvaluateOnNewDocument", "params": {"source": script}})["identifier"]

    def forget(self, script):
        self._send("POST", "/goog/cdp/execute", {
            "cmd": "Page.removeScriptToEvaluateOnNewDocument", "params": {"identifier": script}})

    def run(self, script, *arguments):
        """The value that a function body returns, or that its promise comes to."""
        wrapped = ("const done = arguments[arguments.length - 1]; const given = Array.from(arguments).slice(0, -1);"
                   "(async () => {" + script + "})()"
                   ".then((value) => done({ value }), (error) => done({ error: String(error && error.stack || error) }));")
        answer = self._send("POST", "/execute/async", {"script": wrapped, "args": list(arguments)})
        if "error" in answer:
            raise RuntimeError(answer["error"])
        return answer.get("value")

    def find(self, selector):
        return self._send("POST", "/element", {"using": "css selector", "value": selector})[ELEMENT]

    def click(self, selector):
        self._send("POST", f"/element/{self.find(selector)}/click", {})

    def press(self, key):
        """Presses and lets go a key where the focus is."""
        value = KEYS.get(key, key)
        actions = [{"type": "keyDown", "value": value}, {"type": "keyUp", "value": value}]
        self._send("POST", "/actions", {"actions": [{"type": "key", "id": "keys", "actions": actions}]})

    def click_at(self, selector, x, y):
        """Clicks at a place given as shares of the element's width and height from its centre, -0.5 to 0.5."""
        box = self.run("const box = document.querySelector(given[0]).getBoundingClientRect();"
                       "return [box.width, box.height];", selector)
        origin = {ELEMENT: self.find(selector)}
        actions = [
            {"type": "pointerMove", "duration": 0, "origin": origin, "x": round(x * box[0]), "y": round(y * box[1])},
            {"type": "pointerDown", "button": 0}, {"type": "pointerUp", "button": 0}]
        self._send("POST", "/actions", {"actions": [
            {"type": "pointer", "id": "mouse", "parameters": {"pointerType": "mouse"}, "actions": actions}]})

    def log(self):
        """What the page wrote to its console since the last call, errors of the browser among it."""
        return self._send("POST", "/se/log", {"type": "browser"})

    def screenshot(self, path):
        with open(path, "wb") as file:
            file.write(base64.b64decode(self._send("GET", "/screenshot")))

"""A browser without a window, spoken to in the WebDriver protocol."""

import base64
import json
import pathlib
import re
import shutil
import subprocess
import tempfile
import urllib.error
import urllib.request

ELEMENT = "element-6066-11e4-a52e-4f735466cecf"  # the protocol's key of an element
ENTER, ESCAPE = "\ue007", "\ue00c"
LEFT, RIGHT, UP, DOWN = "\ue012", "\ue014", "\ue013", "\ue015"
HOME, END, PAGE_DOWN = "\ue011", "\ue010", "\ue00f"
TIMEOUT = 120  # seconds for one command

ARGUMENTS = ["--headless", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
             "--disable-background-networking", "--disable-component-update", "--disable-sync"]


class WebDriver:
    """One session; the browser and its folder go with it."""

    def __init__(self):
        self.folder = tempfile.mkdtemp()
        self.process = subprocess.Popen(["chromedriver", "--port=0"], stdout=subprocess.PIPE,
                                        stderr=subprocess.DEVNULL, text=True)
        try:
            self.address = f"http://127.0.0.1:{self._port()}"
            self.address += f"/session/{self._begin()}"
        except BaseException:
            self._clean()
            raise

    def _port(self):
        for line in self.process.stdout:
            found = re.search(r"started successfully on port (\d+)", line)
            if found:
                return int(found[1])
        raise RuntimeError("chromedriver does not start")

    def _begin(self):
        chrome = {"args": [*ARGUMENTS, f"--user-data-dir={self.folder}"]}
        wanted = {"goog:chromeOptions": chrome, "goog:loggingPrefs": {"browser": "ALL"}}
        answer = self.post("/session", {"capabilities": {"alwaysMatch": wanted}})
        return answer["sessionId"]

    def end(self):
        try:
            self._send("DELETE", "", None)
        finally:
            self._clean()

    def _clean(self):
        self.process.terminate()
        self.process.wait()
        self.process.stdout.close()
        shutil.rmtree(self.folder, ignore_errors=True)

    def _send(self, method, path, body):
        data = None if body is None else json.dumps(body).encode()
        request = urllib.request.Request(self.address + path, data, method=method,
                                         headers={"Content-Type": "application/json"})
        try:
            with urllib.request.urlopen(request, timeout=TIMEOUT) as answer:
                return json.load(answer)["value"]
        except urllib.error.HTTPError as error:
            raise RuntimeError(json.load(error)["value"]["message"]) from error

    def post(self, path, body=None):
        return self._send("POST", path, body or {})

    def get(self, path):
        return self._send("GET", path, None)

    def open(self, path):
        self.post("/url", {"url": pathlib.Path(path).resolve().as_uri()})

    def run(self, script, *arguments):
        """What the script returns."""
        return self.post("/execute/sync", {"script": script, "args": arguments})

    def find(self, css):
        return self.post("/element", {"using": "css selector", "value": css})[ELEMENT]

    def find_all(self, css):
        found = self.post("/elements", {"using": "css selector", "value": css})
        return [element[ELEMENT] for element in found]

    def click(self, css):
        self.post(f"/element/{self.find(css)}/click")

    def type(self, css, text):
        self.post(f"/element/{self.find(css)}/value", {"text": text})

    def clear(self, css):
        self.post(f"/element/{self.find(css)}/clear")

    def keys(self, text):
        """Pressed one after the other, wherever the focus is."""
        actions = [{"type": kind, "value": key} for key in text for kind in ("keyDown", "keyUp")]
        self.post("/actions", {"actions": [{"type": "key", "id": "keyboard", "actions": actions}]})

    def drag(self, css, begin, end):
        """From one share of the element's width to another."""
        element = self.find(css)
        box = self.get(f"/element/{element}/rect")

        def move(share):
            return {"type": "pointerMove", "duration": 50, "origin": {ELEMENT: element},
                    "x": round((share - 0.5) * box["width"]), "y": 0}
        actions = [move(begin), {"type": "pointerDown", "button": 0}, move((begin + end) / 2),
                   move(end), {"type": "pointerUp", "button": 0}]
        self.post("/actions", {"actions": [{"type": "pointer", "id": "mouse", "actions": actions}]})

    def text(self, css):
        return self.run("return document.querySelector(arguments[0]).textContent", css)

    def label(self, element):
        """The name that an assistive program hears."""
        return self.get(f"/element/{element}/computedlabel")

    def resize(self, width, height):
        self.command("Emulation.setDeviceMetricsOverride", width=width, height=height,
                     deviceScaleFactor=1, mobile=False)

    def prefer(self, scheme):
        self.command("Emulation.setEmulatedMedia",
                     features=[{"name": "prefers-color-scheme", "value": scheme}])

    def command(self, name, **parameters):
        return self.post("/goog/cdp/execute", {"cmd": name, "params": parameters})

    def messages(self):
        """What the browser complained of since the last call."""
        return [entry["message"] for entry in self.post("/se/log", {"type": "browser"})]

    def shoot(self, path):
        pathlib.Path(path).write_bytes(base64.b64decode(self.get("/screenshot")))

"""Drives a headless Chromium over its DevTools pipe: nothing beside Python's own library is needed.

The protocol: https://chromedevtools.github.io/devtools-protocol/. Messages are JSON, ended by a NUL, written to the
browser's descriptor 3 and read from its descriptor 4.
"""

import base64
import json
import os
import shutil
import subprocess
import tempfile
import time

# --no-sandbox: containers refuse the sandbox, and the pages are our own.
FLAGS = ["--headless", "--no-sandbox", "--disable-gpu", "--no-first-run", "--disable-background-networking",
         "--disable-component-update", "--disable-sync", "--disable-dev-shm-usage", "--hide-scrollbars",
         "--force-device-scale-factor=1", "--remote-debugging-pipe"]


class Browser:
    """One browser with one page. Use it in a with statement: it ends with the block."""

    def __init__(self, program="chromium", timeout=60):
        self.timeout = timeout
        self.console = []   # what the page printed or failed with
        self.requests = []  # addresses that the page asked for
        self._last_id = 0
        self._rest = b""
        self._profile = tempfile.mkdtemp(prefix="fenn-browser-")
        to_browser, self._input = os.pipe()
        self._output, from_browser = os.pipe()
        # Descriptors 3 and 4 of the browser, whatever they are here.
        command = ["sh", "-c", f'exec "$@" 3<&{to_browser} 4>&{from_browser}', "sh", program, *FLAGS,
                   f"--user-data-dir={self._profile}", "about:blank"]
        self._process = subprocess.Popen(command, pass_fds=(to_browser, from_browser), stdin=subprocess.DEVNULL,
                                         stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(to_browser)
        os.close(from_browser)
        target = self._send("Target.createTarget", {"url": "about:blank"}, None)["targetId"]
        self._session = self._send("Target.attachToTarget", {"targetId": target, "flatten": True}, None)["sessionId"]
        for domain in ["Page", "Runtime", "Log", "Network"]:
            self.send(domain + ".enable")

    def __enter__(self):
        return self

    def __exit__(self, *unused):
        try:
            self._send("Browser.close", {}, None)
        except (OSError, EOFError, TimeoutError):
            pass
        try:
            self._process.wait(10)
        except subprocess.TimeoutExpired:
            self._process.kill()
            self._process.wait()
        os.close(self._input)
        os.close(self._output)
        shutil.rmtree(self._profile, ignore_errors=True)

    def send(self, method, **parameters):
        """Calls a method of the page and returns its result."""
        return self._send(method, parameters, self._session)

    def _send(self, method, parameters, session):
        self._last_id += 1
        message = {"id": self._last_id, "method": method, "params": parameters}
        if session:
            message["sessionId"] = session
        os.write(self._input, json.dumps(message).encode() + b"\0")
        while True:
            answer = self._read()
            if answer.get("id") == self._last_id:
                if "error" in answer:
                    raise RuntimeError(f"{method}: {answer['error']}")
                return answer.get("result", {})
            self._note(answer)

    def _read(self):
        while b"\0" not in self._rest:
            block = os.read(self._output, 1 << 20)
            if not block:
                raise EOFError("the browser has ended")
            self._rest += block
        message, self._rest = self._rest.split(b"\0", 1)
        return json.loads(message)

    def _note(self, event):
        method, parameters = event.get("method"), event.get("params", {})
        if method == "Runtime.consoleAPICalled":
            self.console.append(" ".join(str(a.get("value", a.get("description"))) for a in parameters["args"]))
        elif method == "Runtime.exceptionThrown":
            details = parameters["exceptionDetails"]
            self.console.append(details.get("exception", {}).get("description", details["text"]))
        elif method == "Log.entryAdded":
            self.console.append(parameters["entry"]["text"])
        elif method == "Network.requestWillBeSent":
            self.requests.append(parameters["request"]["url"])

    def open(self, path, width=1280, height=900):
        """Loads a file at a size of the window, and waits until it is there."""
        self.console.clear()
        self.requests.clear()
        self.resize(width, height)
        self.send("Page.navigate", url="file://" + os.path.abspath(path))
        self.wait_until("document.readyState === 'complete'")

    def resize(self, width, height):
        self.send("Emulation.setDeviceMetricsOverride", width=width, height=height, deviceScaleFactor=1, mobile=False)

    def use(self, scheme="light", media=""):
        """Light or dark; media: "print" or as on a screen."""
        self.send("Emulation.setEmulatedMedia", media=media,
                  features=[{"name": "prefers-color-scheme", "value": scheme}])

    def evaluate(self, expression):
        """The value of a JavaScript expression, of a promise what it comes to."""
        answer = self.send("Runtime.evaluate", expression=expression, returnByValue=True, awaitPromise=True)
        if "exceptionDetails" in answer:
            raise RuntimeError(answer["exceptionDetails"].get("exception", {}).get("description", expression))
        return answer["result"].get("value")

    def wait_until(self, expression):
        end = time.monotonic() + self.timeout
        while not self.evaluate(expression):
            if time.monotonic() > end:
                raise TimeoutError(f"in vain: {expression}")
            time.sleep(0.02)

    def move_to(self, x, y):
        """Moves the mouse to a place of the window."""
        self.send("Input.dispatchMouseEvent", type="mouseMoved", x=x, y=y)

    def click(self, x, y):
        for kind in ["mousePressed", "mouseReleased"]:
            self.send("Input.dispatchMouseEvent", type=kind, x=x, y=y, button="left", clickCount=1)

    def save_picture(self, path):
        """Of the whole page."""
        size = self.evaluate("[document.documentElement.scrollWidth, document.documentElement.scrollHeight]")
        clip = {"x": 0, "y": 0, "width": size[0], "height": size[1], "scale": 1}
        data = self.send("Page.captureScreenshot", captureBeyondViewport=True, clip=clip)["data"]
        with open(path, "wb") as file:
            file.write(base64.b64decode(data))

    def save_pdf(self, path):
        """On A4 paper, by the page's own rules for print."""
        data = self.send("Page.printToPDF", printBackground=False, preferCSSPageSize=False, paperWidth=8.27,
                         paperHeight=11.69)["data"]
        with open(path, "wb") as file:
            file.write(base64.b64decode(data))

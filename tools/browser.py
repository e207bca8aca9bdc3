"""A browser without a window, told what to do through a pipe: nothing of it comes from a network."""
import base64
import json
import os
import select
import shutil
import subprocess
import sys
import tempfile
import time

PATIENCE_SECONDS = 120
# Width, height, and whether a finger works it.
SIZES = {"desk": (1280, 1600, False), "telephone": (390, 844, True)}


class Browser:
    """One tab, spoken to over file 3 and heard over file 4, with a zero byte behind each message."""

    def __init__(self):
        self.profile = tempfile.mkdtemp()
        to_browser, from_browser = os.pipe(), os.pipe()

        def give_files():
            os.dup2(to_browser[0], 3)
            os.dup2(from_browser[1], 4)

        # 3 and 4 may be the pipes themselves, so they are moved away first.
        to_browser = tuple(os.dup2(file, 20 + i) for i, file in enumerate(to_browser))
        from_browser = tuple(os.dup2(file, 22 + i) for i, file in enumerate(from_browser))
        self.process = subprocess.Popen(
            ["chromium-headless-shell", "--no-sandbox", "--disable-gpu", "--hide-scrollbars",
             "--disable-background-networking", "--remote-debugging-pipe", f"--user-data-dir={self.profile}"],
            preexec_fn=give_files, pass_fds=(3, 4), stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
            stderr=subprocess.DEVNULL)
        os.close(to_browser[0])
        os.close(from_browser[1])
        self.to_browser, self.from_browser = to_browser[1], from_browser[0]
        self.waiting, self.number, self.events, self.session = b"", 0, [], None

    def read_message(self):
        deadline = time.monotonic() + PATIENCE_SECONDS
        while b"\0" not in self.waiting:
            left = deadline - time.monotonic()
            if left <= 0 or not select.select([self.from_browser], [], [], left)[0]:
                sys.exit("the browser says nothing")
            piece = os.read(self.from_browser, 1 << 20)
            if not piece:
                sys.exit("the browser has ended")
            self.waiting += piece
        message, self.waiting = self.waiting.split(b"\0", 1)
        return json.loads(message)

    def ask(self, method, **parameters):
        """The answer, which may be an error."""
        self.number += 1
        message = {"id": self.number, "method": method, "params": parameters}
        if self.session:
            message["sessionId"] = self.session
        os.write(self.to_browser, json.dumps(message).encode() + b"\0")
        while True:
            answer = self.read_message()
            if answer.get("id") == self.number:
                return answer
            self.events.append(answer)

    def call(self, method, **parameters):
        answer = self.ask(method, **parameters)
        if "error" in answer:
            sys.exit(f"{method}: {answer['error']}")
        return answer["result"]

    def wait_for(self, method):
        while True:
            for i, event in enumerate(self.events):
                if event["method"] == method:
                    return self.events.pop(i)["params"]
            self.events.append(self.read_message())

    def open_tab(self, downloads):
        target = self.call("Target.createTarget", url="about:blank")["targetId"]
        self.session = self.call("Target.attachToTarget", targetId=target, flatten=True)["sessionId"]
        for domain in ("Page", "Network", "Log", "Runtime"):
            self.call(f"{domain}.enable")
        self.call("Browser.setDownloadBehavior", behavior="allow", downloadPath=str(downloads), eventsEnabled=True)

    def visit(self, address):
        self.leave_page(lambda: self.call("Page.navigate", url=address))

    def follow(self, element):
        self.leave_page(lambda: self.click(element))

    def leave_page(self, act):
        """Does what brings another page, and waits until that one is whole."""
        self.look("window.isOld = true")
        act()
        deadline = time.monotonic() + PATIENCE_SECONDS
        while not self.is_true("!window.isOld && document.readyState === 'complete'"):
            if time.monotonic() > deadline:
                sys.exit("no other page comes")
            time.sleep(0.02)

    def is_true(self, expression):
        """False also between two pages, where there is nothing to ask."""
        answer = self.ask("Runtime.evaluate", expression=expression, returnByValue=True)
        return answer.get("result", {}).get("result", {}).get("value") is True

    def look(self, expression):
        result = self.call("Runtime.evaluate", expression=expression, returnByValue=True)
        if "exceptionDetails" in result:
            sys.exit(f"{expression}: {result['exceptionDetails']}")
        return result["result"].get("value")

    def click(self, expression):
        """With a mouse, where the element of an expression is seen."""
        place = self.look(f"(() => {{ const e = {expression}; e.scrollIntoView({{block: 'center'}});"
                          "const r = e.getBoundingClientRect();"
                          "return [r.x + Math.min(r.width, 20) / 2, r.y + Math.min(r.height, 20) / 2]; })()")
        for kind in ("mousePressed", "mouseReleased"):
            self.call("Input.dispatchMouseEvent", type=kind, x=place[0], y=place[1], button="left", clickCount=1)

    def resize(self, width, height, is_telephone):
        self.call("Emulation.setDeviceMetricsOverride", width=width, height=height, deviceScaleFactor=1,
                  mobile=is_telephone)

    def take_picture(self, path):
        picture = self.call("Page.captureScreenshot", format="png", captureBeyondViewport=True)["data"]
        path.write_bytes(base64.b64decode(picture))

    def requests(self):
        return [event["params"]["request"]["url"] for event in self.events
                if event["method"] == "Network.requestWillBeSent"]

    def close(self):
        self.session = None
        os.write(self.to_browser, json.dumps({"id": 0, "method": "Browser.close"}).encode() + b"\0")
        self.process.wait()
        shutil.rmtree(self.profile, ignore_errors=True)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()


SUMMARY = "[...document.querySelectorAll('summary')].find(s => s.querySelector('bdi').textContent === {})"
LINK = "[...document.querySelectorAll('a')].find(a => a.textContent === {})"


def summary(name):
    return SUMMARY.format(json.dumps(name))


def link(name):
    return LINK.format(json.dumps(name))

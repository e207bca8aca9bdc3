#!/usr/bin/env python3
"""browse.py ADDRESS FOLDER: works the pages of a site in a browser without a window and prints what it saw as
JSON. The browser is told what to do through a pipe; nothing of it comes from a network. FOLDER takes what it
saves, and pictures of the first page at the widths of a desk and a telephone."""
import base64
import json
import os
import pathlib
import select
import shutil
import subprocess
import sys
import tempfile
import time

PATIENCE_SECONDS = 120
SIZES = {"desk": (1280, 1600, False), "telephone": (390, 844, True)}


class Browser:
    """One tab, spoken to over file 3 and heard over file 4, with a zero byte behind each message."""

    def __init__(self, profile):
        to_browser, from_browser = os.pipe(), os.pipe()

        def give_files():
            os.dup2(to_browser[0], 3)
            os.dup2(from_browser[1], 4)

        # 3 and 4 may be the pipes themselves, so they are moved away first.
        to_browser = tuple(os.dup2(file, 20 + i) for i, file in enumerate(to_browser))
        from_browser = tuple(os.dup2(file, 22 + i) for i, file in enumerate(from_browser))
        self.process = subprocess.Popen(
            ["chromium-headless-shell", "--no-sandbox", "--disable-gpu", "--hide-scrollbars",
             "--disable-background-networking", "--remote-debugging-pipe", f"--user-data-dir={profile}"],
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

    def call(self, method, **parameters):
        self.number += 1
        message = {"id": self.number, "method": method, "params": parameters}
        if self.session:
            message["sessionId"] = self.session
        os.write(self.to_browser, json.dumps(message).encode() + b"\0")
        while True:
            answer = self.read_message()
            if answer.get("id") == self.number:
                if "error" in answer:
                    sys.exit(f"{method}: {answer['error']}")
                return answer["result"]
            self.events.append(answer)

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
        self.call("Page.navigate", url=address)
        self.wait_for("Page.loadEventFired")

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

    def take_picture(self, path, width, height, is_telephone):
        self.call("Emulation.setDeviceMetricsOverride", width=width, height=height, deviceScaleFactor=1,
                  mobile=is_telephone)
        picture = self.call("Page.captureScreenshot", format="png", captureBeyondViewport=True)["data"]
        path.write_bytes(base64.b64decode(picture))

    def requests(self):
        return [event["params"]["request"]["url"] for event in self.events
                if event["method"] == "Network.requestWillBeSent"]

    def close(self):
        self.session = None
        os.write(self.to_browser, json.dumps({"id": 0, "method": "Browser.close"}).encode() + b"\0")
        self.process.wait()


SUMMARY = "[...document.querySelectorAll('summary')].find(s => s.querySelector('bdi').textContent === {})"
LINK = "[...document.querySelectorAll('a')].find(a => a.textContent === {})"


def summary(name):
    return SUMMARY.format(json.dumps(name))


def link(name):
    return LINK.format(json.dumps(name))


def open_and_look(browser, names, leaf):
    """Whether an item can be seen before and after those above it are opened one by one."""
    is_seen = f"{leaf}.checkVisibility()"
    before = browser.look(is_seen)
    for name in names:
        if not browser.look(f"{summary(name)}.parentElement.open"):
            browser.click(summary(name))
    return [before, browser.look(is_seen)]


def follow(browser, element):
    browser.click(element)
    browser.wait_for("Page.loadEventFired")


def save(browser, element):
    browser.click(element)
    name = browser.wait_for("Browser.downloadWillBegin")["suggestedFilename"]
    while browser.wait_for("Browser.downloadProgress")["state"] == "inProgress":
        pass
    return name


def work(browser, address, folder):
    seen = {}
    browser.visit(address)
    seen["title"] = browser.look("document.title")
    seen["style"] = browser.look("getComputedStyle(document.querySelector('.tiles')).display")
    seen["images"] = browser.look("document.images.length + document.scripts.length")
    for name, size in SIZES.items():
        browser.take_picture(folder / f"{name}.png", *size)
        seen[f"too_wide_on_{name}"] = browser.look("document.documentElement.scrollWidth > innerWidth")
    browser.call("Emulation.clearDeviceMetricsOverride")

    follow(browser, "document.querySelector('td a[href=\"state-2\"]')")
    seen["tree"] = open_and_look(browser, ["Files", "My Documents"], link("letter.txt"))
    browser.take_picture(folder / "state.png", *SIZES["telephone"])
    browser.call("Emulation.clearDeviceMetricsOverride")
    seen["saved"] = save(browser, "document.querySelector('a[href^=\"file-2-\"]')")

    browser.visit(address)
    browser.look("document.querySelector('[name=older]').value = '1', "
                 "document.querySelector('[name=newer]').value = '3'")
    follow(browser, "document.querySelector('button')")
    seen["compared"] = browser.look("document.querySelector('h1').textContent")
    leaf = "[...document.querySelectorAll('li.d')].find(l => l.textContent.startsWith('notes.txt'))"
    seen["differences"] = open_and_look(browser, ["Files", "My Documents"], leaf)

    browser.visit(address + "state-4")
    seen["hostile_images"] = browser.look("document.images.length + document.scripts.length")
    seen["hostile_title"] = browser.look("document.title")
    seen["hostile_names"] = browser.look("[...document.querySelectorAll('bdi')].map(b => b.textContent)")
    seen["requests"] = browser.requests()
    return seen


def main():
    address, folder = sys.argv[1], pathlib.Path(sys.argv[2])
    profile = tempfile.mkdtemp()
    browser = Browser(profile)
    try:
        browser.open_tab(folder)
        print(json.dumps(work(browser, address, folder)))
    finally:
        browser.close()
        shutil.rmtree(profile, ignore_errors=True)


main()

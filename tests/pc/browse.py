#!/usr/bin/env python3
"""browse.py ADDRESS FOLDER: works the pages of a site in a browser and prints what it saw as JSON. FOLDER takes what
the browser saves."""
import json
import pathlib
import sys

sys.path.insert(0, str(pathlib.Path(__file__).parents[2] / "tools"))
from browser import SIZES, Browser, link, summary


def open_and_look(browser, names, leaf):
    """Whether an item can be seen before and after those above it are opened one by one."""
    is_seen = f"{leaf}.checkVisibility()"
    before = browser.look(is_seen)
    for name in names:
        if not browser.look(f"{summary(name)}.parentElement.open"):
            browser.click(summary(name))
    return [before, browser.look(is_seen)]


def save(browser, element):
    browser.click(element)
    name = browser.wait_for("Browser.downloadWillBegin")["suggestedFilename"]
    while browser.wait_for("Browser.downloadProgress")["state"] == "inProgress":
        pass
    return name


def work(browser, address):
    seen = {}
    browser.visit(address)
    seen["title"] = browser.look("document.title")
    seen["style"] = browser.look("getComputedStyle(document.querySelector('.tiles')).display")
    seen["images"] = browser.look("document.images.length + document.scripts.length")
    for name, size in SIZES.items():
        browser.resize(*size)
        seen[f"too_wide_on_{name}"] = browser.look("document.documentElement.scrollWidth > innerWidth")
    browser.call("Emulation.clearDeviceMetricsOverride")

    browser.follow("document.querySelector('td a[href=\"state-2\"]')")
    seen["tree"] = open_and_look(browser, ["Files", "My Documents"], link("letter.txt"))
    seen["saved"] = save(browser, "document.querySelector('a[href^=\"file-2-\"]')")

    browser.visit(address)
    browser.look("document.querySelector('[name=older]').value = '1', "
                 "document.querySelector('[name=newer]').value = '3'")
    browser.follow("document.querySelector('button')")
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
    with Browser() as browser:
        browser.open_tab(folder)
        print(json.dumps(work(browser, address)))


main()

"""A device's screen, worked as a user does, with pictures of what is on it."""
import json
import pathlib
import select
import subprocess
import time

PROGRAM = "\\Program Files\\Tolvenar\\Tolvenar.exe"
OWN_SETTINGS = "HKCU\\Software\\Kestrin2\\Tolvenar"
PATIENCE_S = 20


class Screen:
    """One cedev that reads commands as long as it is needed: a start of its own for each would be slow."""

    def __init__(self, command, device, pictures):
        self.pictures = pathlib.Path(pictures)
        self.pictures.mkdir(parents=True, exist_ok=True)
        self.command, self.device = command, device
        self.reopen()

    def reopen(self):
        """cedev ends with the first command that fails; what runs on the device goes on."""
        self.cedev = subprocess.Popen([self.command, self.device, "-"], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                      text=True)

    def ask(self, *words):
        """Runs a command; what it answered."""
        line = " ".join(f'"{w}"' if " " in w or not w else w for w in map(str, words))
        self.cedev.stdin.write(line + "\n")
        self.cedev.stdin.flush()
        # Programs that it has started keep its output open, so its end alone tells of a failure.
        while not select.select([self.cedev.stdout], [], [], 1)[0]:
            if self.cedev.poll() is not None:
                raise RuntimeError(f"{line}: failed")
        answer = self.cedev.stdout.readline()
        if not answer:
            raise RuntimeError(f"{line}: failed")
        return json.loads(answer)

    def windows(self):
        return [w for w in self.ask("window", "list") if w["visible"]]

    def top(self, caption):
        return next((w for w in self.windows() if w["parent"] == 0 and w["text"] == caption), None)

    def control(self, number):
        return next((w for w in self.windows() if w["parent"] != 0 and w["id"] == number), None)

    def text(self, number):
        control = self.control(number)
        return control["text"] if control else ""

    def states(self):
        """The items of the restore page's list."""
        states = self.control(1014)
        return states["items"] if states else []

    def wait(self, condition, what):
        end = time.monotonic() + PATIENCE_S
        while time.monotonic() < end:
            found = condition()
            if found:
                return found
            time.sleep(0.05)
        raise RuntimeError(f"{what}: waited in vain")

    def wait_top(self, caption):
        return self.wait(lambda: self.top(caption), caption)

    def wait_gone(self, caption):
        self.wait(lambda: not self.top(caption), f"the end of {caption}")

    def wait_box(self):
        """A message box, whatever it says."""
        self.wait(lambda: next((w for w in self.windows() if w["class"] == "#32770"), None), "a message box")

    def wait_idle(self):
        """The dialog can be worked again, and nothing stands before it."""
        def is_idle():
            tops = [w for w in self.windows() if w["parent"] == 0 and w["class"] in ("Dialog", "#32770")]
            return len(tops) == 1 and tops[0]["enabled"]
        self.wait(is_idle, "the end of an operation")

    def press(self, number):
        self.wait(lambda: self.control(number), f"control {number}")
        self.ask("window", "press", number)

    def keys(self, *keys):
        for key in keys:
            self.ask("window", "key", key)

    def focus_tree(self):
        """The keyboard goes to the difference tree. What stands between it and the states depends on the screen."""
        self.keys("alt+s")
        for _ in range(8):
            tree = next(w for w in self.windows() if w["class"] == "SysTreeView32")
            if tree["focused"]:
                return
            self.keys("tab")
            time.sleep(0.2)
        raise RuntimeError("the tree does not get the keyboard")

    def page(self, name):
        self.ask("window", "select", 1000, name)
        self.wait(lambda: (tabs := self.control(1000)) and tabs["items"][tabs["selected"]] == name, name)

    def start(self, arguments=""):
        return self.ask("start", PROGRAM, *([arguments] if arguments else []))["id"]

    def set_dword(self, name, value):
        self.ask("reg-set", OWN_SETTINGS, name, "REG_DWORD", value)

    def picture(self, name):
        """Takes a picture when the screen has come to rest."""
        time.sleep(0.3)
        self.ask("screenshot", self.pictures / f"{name}.png")

    def end(self):
        """Ends what still runs on the device."""
        self.cedev.stdin.close()
        self.cedev.wait()
        subprocess.run([self.command, self.device, "kill", "all"], check=True, stdout=subprocess.DEVNULL)

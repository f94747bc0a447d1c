"""Drives a workbench on the screen as a user does, with keys and mouse of the X server, and looks into it by automation."""

import pathlib
import shutil
import subprocess
import sys
import unittest

import screen
from screen import Failure, xdotool

ROOT = pathlib.Path(__file__).resolve().parents[2]
BUILD = pathlib.Path(sys.argv.pop(1))  # with the programs for 64-bit Windows
PREFIX = BUILD / "wine-desktop"
KEY = r"Software\Vantrel\Office Addins\Rowlark\1.0"
DEADLINE = 15  # seconds that a state may take to come about on a busy machine


def wine(*arguments):
    """The command that runs a program for Windows."""
    return [ROOT / "cmake" / "wine.sh", PREFIX, *arguments]


def windows_path(path):
    return "Z:" + str(path)


class Window:
    """A window as the probe lists it; places are pixels of the screen."""

    def __init__(self, line):
        handle, parent, self.kind, self.text, *place, flags = line.split("\t")
        self.handle, self.parent = int(handle), int(parent)
        self.left, self.top, self.width, self.height = map(int, place)
        self.enabled, self.focused, self.checked = ("E" in flags, "F" in flags, "C" in flags)

    @property
    def caption(self):
        return self.text.replace("&", "")

    def click(self, x=None, y=None):
        """At that place of the window, or in its middle."""
        x = self.width // 2 if x is None else x
        y = self.height // 2 if y is None else y
        xdotool("mousemove", self.left + x, self.top + y, "click", 1)


class Probe:
    """The program that answers questions about the workbench."""

    def __init__(self):
        self.process = subprocess.Popen(
            wine(BUILD / "end_to_end_probe.exe"), stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True, encoding="utf-8"
        )

    def ask(self, request):
        self.process.stdin.write(request + "\n")
        self.process.stdin.flush()
        answer = self.process.stdout.readline().rstrip("\r\n")
        if not answer.startswith("="):
            raise Failure(f"{request}: {answer}")
        return answer[2:]

    def windows(self):
        count = int(self.ask("windows"))
        return [Window(self.process.stdout.readline().rstrip("\r\n")) for _ in range(count)]

    def close(self):
        self.process.stdin.close()
        self.process.wait(DEADLINE)
        self.process.stdout.close()


def wait_until(condition, what):
    """The first true value that `condition` gives; the probe may refuse meanwhile."""
    return screen.wait_until(condition, what, DEADLINE, Failure)


class WorkbenchTest(unittest.TestCase):
    """Each test has a workbench of its own, with the add-in as it is when it has just been installed."""

    table = None  # a CSV file instead of the example

    @classmethod
    def setUpClass(cls):
        cls.probe = Probe()

    @classmethod
    def tearDownClass(cls):
        cls.probe.close()

    def setUp(self):
        for hive in ("HKCU", "HKLM"):
            subprocess.run(wine("reg", "delete", hive + "\\" + KEY, "/f"), capture_output=True)
        for folder in PREFIX.glob("drive_c/users/*/AppData/Roaming/Vantrel"):
            shutil.rmtree(folder)
        self.workbench = None
        self.addCleanup(self.stop)
        self.start()

    def start(self):
        tables = [windows_path(self.table)] if self.table else []
        self.workbench = subprocess.Popen(wine(BUILD / "workbench.exe", *tables))
        wait_until(lambda: self.probe.ask("connect"), "the workbench does not start")
        wait_until(lambda: self.get('CommandBars("Worksheet Menu Bar").Controls.Count') == "1", "there is no menu")
        wait_until(lambda: self.window(kind="RowlarkGrid").focused, "the sheet has no focus")

    def stop(self):
        """As the user closes it; the program must end by itself."""
        if self.workbench is None:
            return
        workbench, self.workbench = self.workbench, None

        def end():
            self.activate()
            self.keys("alt+F4")
            workbench.wait(DEADLINE)

        screen.end_program(self, BUILD, end, workbench.kill)

    # What the user does.
    def keys(self, *keys):
        xdotool("key", "--delay", 20, *keys)

    def type(self, text, delay=20):
        xdotool("type", "--delay", delay, text)

    def activate(self, workbook=""):
        main = xdotool("search", "--onlyvisible", "--name", f"{workbook}.*Rowlark Workbench$").split()[-1]
        xdotool("windowactivate", "--sync", main)

    # What there is to see.
    def get(self, expression):
        return self.probe.ask("? Application." + expression)

    def do(self, statement):
        self.probe.ask("Application." + statement)

    def expect(self, expression, value):
        last = None

        def holds():
            nonlocal last
            last = self.get(expression)
            return last == str(value)

        wait_until(holds, lambda: f"{expression} is {last!r} instead of {value!r}")

    def visible_rows(self):
        """Addresses of the blocks of rows that are on the screen."""
        return self.get("ActiveSheet.UsedRange.Columns(1).SpecialCells(12).Address").replace("$", "")

    def find_windows(self, caption=None, kind=None, inside=None):
        return [
            window
            for window in self.probe.windows()
            if (caption is None or window.caption.startswith(caption))
            and (kind is None or window.kind.lower() == kind.lower())
            and (inside is None or window.parent == inside.handle)
        ]

    def window(self, caption=None, kind=None, inside=None):
        found = self.find_windows(caption, kind, inside)
        if not found:
            raise Failure(f"there is no {kind or 'window'} {caption or ''}")
        return found[0]

    def wait_for_window(self, caption=None, kind=None, inside=None):
        return wait_until(lambda: self.window(caption, kind, inside), f"there is no {kind or 'window'} {caption or ''}")

    def wait_until_gone(self, caption):
        wait_until(lambda: not self.find_windows(caption), f"{caption} is still there")

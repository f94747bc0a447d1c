"""Drives Calc with the extension on the screen as a user does, with keys and mouse of the X server, and looks into it from
outside, by UNO: at documents, and at windows as a screen reader sees them."""

import os
import pathlib
import shutil
import signal
import subprocess
import sys
import tempfile
import threading
import unittest

sys.path.append(str(pathlib.Path(__file__).resolve().parents[2] / "end_to_end"))
sys.path.append("/usr/lib/python3/dist-packages")
import screen  # noqa: E402
import uno  # noqa: E402
from com.sun.star.accessibility import AccessibleRole, AccessibleStateType  # noqa: E402
from com.sun.star.awt import Key, KeyEvent, KeyModifier  # noqa: E402
from com.sun.star.beans import PropertyValue  # noqa: E402
from screen import Failure, xdotool  # noqa: E402

ROOT = pathlib.Path(__file__).resolve().parents[3]
BUILD = pathlib.Path(sys.argv.pop(1)).resolve()  # of the preset calc
CUSTOMERS = ROOT / "examples" / "customers.csv"
CSV = "Text - txt - csv (StarCalc)"
DEADLINE = 30  # seconds that a state may take to come about on a busy machine


def keys(*names):
    xdotool("key", "--delay", 20, *names)


def typed(text, delay=20):
    xdotool("type", "--delay", delay, text)


def option(name, value):
    return PropertyValue(name, 0, value, uno.Enum("com.sun.star.beans.PropertyState", "DIRECT_VALUE"))


def wait_until(condition, what):
    """The first true value that `condition` gives. What is looked at may go meanwhile; UNO's exceptions for that have no
    base in common."""
    return screen.wait_until(condition, what, DEADLINE, Exception)


class Element:
    """A window, or something in it."""

    def __init__(self, context):
        self.context = context
        self.name = context.getAccessibleName()
        self.role = context.getAccessibleRole()

    def has(self, state):
        return self.context.getAccessibleStateSet().contains(state)

    @property
    def showing(self):
        return self.has(AccessibleStateType.SHOWING)

    @property
    def focused(self):
        return self.has(AccessibleStateType.FOCUSED)

    @property
    def checked(self):
        return self.has(AccessibleStateType.CHECKED)

    @property
    def text(self):
        return self.context.getText()

    def elements(self):
        for i in range(self.context.getAccessibleChildCount()):
            child = Element(self.context.getAccessibleChild(i).getAccessibleContext())
            yield child
            yield from child.elements()

    def find(self, role, name=None):
        """The first one that shows."""
        for element in self.elements():
            if element.role == role and (name is None or element.name == name) and element.showing:
                return element
        raise Failure(f"there is no {name or role} in {self.name}")

    def edit(self):
        """The box that is edited. One of several lines is told as what scrolls, without its text."""
        for element in self.elements():
            if element.role in (AccessibleRole.TEXT, AccessibleRole.SCROLL_PANE) and element.showing:
                return element
        raise Failure(f"there is no box in {self.name}")

    def click(self):
        place, size = self.context.getLocationOnScreen(), self.context.getSize()
        xdotool("mousemove", place.X + size.Width // 2, place.Y + size.Height // 2, "click", 1)


class CalcTest(unittest.TestCase):
    """Each test has an office of its own, on a copy of a profile that has been used once: an office takes seconds to make
    a new one."""

    profile = None

    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.folder, True)
        self.process = None
        self.addCleanup(self.stop)
        if CalcTest.profile is None:
            self.start()
            self.open()
            self.stop()
            CalcTest.profile = tempfile.mkdtemp()
            unittest.addModuleCleanup(shutil.rmtree, CalcTest.profile)
            shutil.copytree(self.folder / "profile", CalcTest.profile, dirs_exist_ok=True)
            shutil.rmtree(self.folder / "config", True)
        else:
            shutil.copytree(CalcTest.profile, self.folder / "profile")
        self.start()

    def start(self):
        pipe = f"rowlark{os.getpid()}-{self._testMethodName}"
        environment = os.environ | {
            "XDG_CONFIG_HOME": str(self.folder / "config"),
            "SAL_USE_VCLPLUGIN": "gen",
            "LC_ALL": "C.UTF-8",
            "ROWLARK_TRACE": str(BUILD / f"trace-{self._testMethodName}"),
        }
        self.process = subprocess.Popen(
            ["soffice", "--norestore", "--nologo", "--nodefault", "--nolockcheck", f"--accept=pipe,name={pipe};urp",
             f"-env:UserInstallation={(self.folder / 'profile').as_uri()}",
             f"-env:BUNDLED_EXTENSIONS={(BUILD / 'extensions').as_uri()}"],
            env=environment, start_new_session=True,
        )
        local = uno.getComponentContext()
        resolver = local.ServiceManager.createInstanceWithContext("com.sun.star.bridge.UnoUrlResolver", local)
        self.context = wait_until(
            lambda: resolver.resolve(f"uno:pipe,name={pipe};urp;StarOffice.ComponentContext"), "the office does not start")
        self.desktop = self.service("com.sun.star.frame.Desktop")
        self.toolkit = self.service("com.sun.star.awt.Toolkit")

    def service(self, name):
        return self.context.ServiceManager.createInstanceWithContext(name, self.context)

    def stop(self):
        """The office must end by itself."""
        if self.process is None:
            return
        process, self.process = self.process, None

        def kill():
            if process.poll() is None:
                os.killpg(process.pid, signal.SIGKILL)
            process.wait()

        hangs = threading.Timer(2 * DEADLINE, kill)  # in a question, for one
        hangs.start()
        try:
            screen.end_program(self, BUILD, lambda: self.terminate(process), kill)
        finally:
            hangs.cancel()

    def terminate(self, process):
        components = self.desktop.Components.createEnumeration()
        while components.hasMoreElements():
            components.nextElement().setModified(False)
        try:
            self.desktop.terminate()
        except Exception:  # the connection ends with the office
            pass
        self.assertEqual(process.wait(DEADLINE), 0)

    # Documents.
    def open(self, name="customers.csv"):
        """A copy of the example of that name, in front, with the add-in."""
        path = self.folder / name
        shutil.copy(CUSTOMERS, path)
        options = [option("FilterName", CSV), option("FilterOptions", "44,34,76,1")]
        document = self.desktop.loadComponentFromURL(path.as_uri(), "_blank", 0, tuple(options))
        # The add-in begins some messages after the first document.
        wait_until(lambda: self.command_of(Key.F, KeyModifier.MOD1).startswith("org.rowlark:"), "there is no add-in")
        self.activate(document)
        return document

    def command_of(self, code, modifiers):
        """What a key does in spreadsheets."""
        managers = self.context.getValueByName("/singletons/com.sun.star.ui.theModuleUIConfigurationManagerSupplier")
        manager = managers.getUIConfigurationManager("com.sun.star.sheet.SpreadsheetDocument")
        return manager.getShortCutManager().getCommandByKeyEvent(KeyEvent(Modifiers=modifiers, KeyCode=code))

    def activate(self, document):
        title = document.Title + " — LibreOffice Calc|" + document.Title + " - LibreOffice Calc"

        def in_front():
            window = xdotool("search", "--onlyvisible", "--name", title).split()[-1]
            xdotool("windowactivate", window)
            return (xdotool("getactivewindow").strip() == window
                    and self.desktop.getCurrentComponent().Title == document.Title)

        wait_until(in_front, f"{title} is not in front")

    @staticmethod
    def sheet(document):
        return document.CurrentController.ActiveSheet

    def visible_rows(self, document, last):
        """Those of the first rows of the sheet that are on the screen."""
        cells = self.sheet(document).getCellRangeByPosition(0, 0, 0, last - 1).queryVisibleCells()
        return [row + 1 for area in cells.RangeAddresses for row in range(area.StartRow, area.EndRow + 1)]

    def expect_rows(self, document, rows, last):
        wait_until(lambda: self.visible_rows(document, last) == rows,
                   lambda: f"the rows {str(self.visible_rows(document, last))[:90]} are visible instead of {str(rows)[:90]}")

    @staticmethod
    def active_cell(document):
        """Its column and row, from 1."""
        data = document.CurrentController.ViewData.split(";")
        index = int(data[1])
        column, row = data[3 + index].replace("+", "/").split("/")[:2]
        return int(column) + 1, int(row) + 1

    # Windows.
    def windows(self):
        for i in range(self.toolkit.getTopWindowCount()):
            window = self.toolkit.getTopWindow(i)
            if window is not None and window.isVisible():
                yield Element(window.getAccessibleContext())

    def find_window(self, title):
        for window in self.windows():
            if window.name.startswith(title):
                return window
        raise Failure(f"there is no window {title}")

    def window(self, title):
        return wait_until(lambda: self.find_window(title), f"there is no window {title}")

    def active(self, title):
        """That window, when it has the keyboard."""
        return wait_until(lambda: any(e.focused for e in self.window(title).elements()) and self.window(title),
                          f"{title} has not got the keyboard")

    def wait_until_gone(self, title):
        wait_until(lambda: not [w for w in self.windows() if w.name.startswith(title)], f"{title} is still there")

    def element(self, title, role, name=None):
        return wait_until(lambda: self.window(title).find(role, name), f"there is no {name or role} in {title}")

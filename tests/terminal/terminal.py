"""A user at a terminal: runs a program on a pseudo-terminal, types, and reads what the screen shows."""

import codecs
import fcntl
import os
import pty
import select
import signal
import struct
import termios
import time

import pyte

KEYS = {
    "Up": "\x1bOA", "Down": "\x1bOB", "Right": "\x1bOC", "Left": "\x1bOD",
    "Home": "\x1bOH", "End": "\x1bOF", "PgUp": "\x1b[5~", "PgDn": "\x1b[6~",
    "Insert": "\x1b[2~", "Delete": "\x1b[3~", "Backspace": "\x7f", "Tab": "\t", "Enter": "\r", "Esc": "\x1b",
    "F1": "\x1bOP", "F2": "\x1bOQ", "F3": "\x1bOR", "F4": "\x1bOS", "F5": "\x1b[15~", "F6": "\x1b[17~",
    "F7": "\x1b[18~", "F10": "\x1b[21~", "F12": "\x1b[24~",
    "S-Right": "\x1b[1;2C", "S-Down": "\x1b[1;2B", "S-Tab": "\x1b[Z", "C-End": "\x1b[1;5F", "C-Home": "\x1b[1;5H",
    "C-PgDn": "\x1b[6;5~", "C-S-f": "\x1b[27;6;70~",
}


class Screen(pyte.Screen):
    """The emulator's, with the two commands that move lines within the margins, which it does not know."""

    def scroll_up(self, count=1, **_):
        self._at_margin(self.index, count, bottom=True)

    def scroll_down(self, count=1, **_):
        self._at_margin(self.reverse_index, count, bottom=False)

    def _at_margin(self, move, count, bottom):
        margins = self.margins or pyte.screens.Margins(0, self.lines - 1)
        at, self.cursor.y = self.cursor.y, margins.bottom if bottom else margins.top
        for _ in range(count or 1):
            move()
        self.cursor.y = at


class Stream(pyte.Stream):
    csi = {**pyte.Stream.csi, "S": "scroll_up", "T": "scroll_down"}
    events = pyte.Stream.events | {"scroll_up", "scroll_down"}


DEADLINE = 30  # seconds that anything may take, on a slow machine under sanitizers


class Terminal:
    def __init__(self, command, columns=80, rows=24, cwd=None, **environment):
        self.columns, self.rows = columns, rows
        self.screen = Screen(columns, rows)
        self.screen.set_mode(pyte.modes.LNM)
        self.stream = Stream(self.screen)
        self._decoder = codecs.getincrementaldecoder("utf-8")("replace")
        self.output = ""
        variables = {k: v for k, v in os.environ.items() if k not in ("NO_COLOR", "COLUMNS", "LINES", "ESCDELAY")}
        variables.update({"TERM": "xterm-256color", "LC_ALL": "C.UTF-8"}, **environment)
        self.pid, self.fd = pty.fork()
        if self.pid == 0:
            if cwd:
                os.chdir(cwd)
            self._set_size(0)
            os.execvpe(command[0], command, variables)
        self._set_size(self.fd)

    def _set_size(self, fd):
        fcntl.ioctl(fd, termios.TIOCSWINSZ, struct.pack("HHHH", self.rows, self.columns, 0, 0))

    def resize(self, columns, rows):
        self.columns, self.rows = columns, rows
        self.screen.resize(rows, columns)
        self._set_size(self.fd)
        return self

    def press(self, *keys):
        """Names of keys, "C-x" and "M-x" for a letter with Ctrl or Alt, or a text to type."""
        for key in keys:
            if key in KEYS:
                key = KEYS[key]
            elif len(key) == 3 and key.startswith("C-"):
                key = chr(ord(key[2].upper()) & 31)
            elif len(key) == 3 and key.startswith("M-"):
                key = "\x1b" + key[2]
            os.write(self.fd, key.encode())
        return self

    def mouse(self, column, row, button=0, release=True):
        """Presses a button (0: left, 64 and 65: the wheel) in a cell; both count from 0."""
        os.write(self.fd, f"\x1b[<{button};{column + 1};{row + 1}M".encode())
        if release:
            os.write(self.fd, f"\x1b[<{button};{column + 1};{row + 1}m".encode())
        return self

    def lines(self):
        return [line.rstrip() for line in self.screen.display]

    def text(self):
        return "\n".join(self.lines())

    def styles(self, row, column):
        """The cell's colours and attributes, as a set: {"reverse", "bold", "fg:red" ...}."""
        cell = self.screen.buffer[row][column]
        found = {name for name in ("bold", "underscore", "reverse") if getattr(cell, name)}
        return found | {f"{name}:{value}" for name, value in (("fg", cell.fg), ("bg", cell.bg)) if value != "default"}

    def find(self, text):
        """Row and column of a text on the screen."""
        for row, line in enumerate(self.screen.display):
            if text in line:
                return row, line.index(text)
        raise AssertionError(f"{text!r} is not on the screen:\n{self.text()}")

    def wait(self, condition):
        """Until the screen shows a text, or a function of the terminal says yes."""
        holds = (lambda: condition in self.text()) if isinstance(condition, str) else (lambda: condition(self))
        deadline = time.monotonic() + DEADLINE
        while not holds():
            if time.monotonic() > deadline or not self._read(0.1) and self.pid is None:
                raise AssertionError(f"waited in vain for {condition!r}:\n{self.text()}")
        return self

    def wait_gone(self, text):
        return self.wait(lambda terminal: text not in terminal.text())

    def _read(self, seconds):
        if self.fd is None or not select.select([self.fd], [], [], seconds)[0]:
            return True
        try:
            data = os.read(self.fd, 65536)
        except OSError:
            data = b""
        if not data:
            return False
        text = self._decoder.decode(data)
        self.output += text
        self.stream.feed(text)
        return True

    def kill(self, number):
        os.kill(self.pid, number)

    def end(self):
        """Waits for the program's end; its exit status."""
        deadline = time.monotonic() + DEADLINE
        while time.monotonic() < deadline:
            more = self._read(0.05)
            pid, status = os.waitpid(self.pid, os.WNOHANG)
            if pid:
                while more and select.select([self.fd], [], [], 0)[0]:
                    more = self._read(0)
                os.close(self.fd)
                self.pid = self.fd = None
                return os.waitstatus_to_exitcode(status)
        self.close()
        raise AssertionError(f"the program does not end:\n{self.text()}")

    def hang_up(self):
        """The terminal goes."""
        os.close(self.fd)
        os.waitpid(self.pid, 0)
        self.pid = self.fd = None

    def close(self):
        if self.pid is not None:
            os.kill(self.pid, signal.SIGKILL)
            os.waitpid(self.pid, 0)
            os.close(self.fd)
            self.pid = self.fd = None

"""The program as its users meet it on a terminal: keys and mouse in, drawn screens out. TerminalTest.py PROGRAM"""

import base64
import os
import re
import signal
import sys
import tempfile
import unittest
from pathlib import Path

from terminal import Terminal

PROGRAM = sys.argv.pop(1) if len(sys.argv) > 1 else "rowlark"
TABLE = "name,city,amount\nann,Köln,12\nbob,Αθήνα,7\ncid,KÖLN,130\ndan,Praha,5\neve,Kiel,41\nfay,Köln-Süd,8\n"


class Session(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        self.file("t.csv", TABLE)

    def file(self, name, text):
        (self.folder / name).write_text(text, encoding="utf-8")

    def start(self, *arguments, columns=80, rows=24, program=PROGRAM, **environment):
        terminal = Terminal([program, *(arguments or ["t.csv"])], columns, rows, self.folder,
                            XDG_CONFIG_HOME=str(self.folder / "config"), **environment)
        self.addCleanup(terminal.close)
        return terminal

    def assert_shows(self, terminal, picture, top=0):
        """The lines as drawn, from a row of the screen on."""
        expected = picture.strip("\n").split("\n")
        terminal.wait(lambda t: t.lines()[top:top + len(expected)] == expected)


class Table(Session):
    def test_fits_the_screen(self):
        picture = """
      A     B         C
   1│ name  city      amount
   2│ ann   Köln          12
   3│ bob   Αθήνα          7
   4│ cid   KÖLN         130
   5│ dan   Praha          5
   6│ eve   Kiel          41
   7│ fay   Köln-Süd       8"""
        for columns, rows, search in ((80, 24, "6 of 6 rows │ A2:C7"), (40, 12, "A2:C7"),
                                      (120, 40, "6 of 6 rows │ A2:C7")):
            terminal = self.start(columns=columns, rows=rows)
            self.assert_shows(terminal, picture)
            status = " t.csv │ A1 name".ljust(columns - len(search) - 1) + search
            self.assert_shows(terminal, status, rows - (1 if rows < 16 else 2))
            terminal.close()

    def test_moves_and_scrolls_below_the_header(self):
        self.file("long.csv", "n,text\n" + "".join(f"{i},row {i}\n" for i in range(1, 2001)))
        terminal = self.start("long.csv").wait("row 20")
        terminal.press("PgDn", "PgDn").wait("│ A39 38")
        terminal.press("C-End").wait("│ B2001 row 2000")
        self.assertIn("   1│ n", terminal.text())
        terminal.press("Home", "Up").wait("│ A2000 1999")
        terminal.press("C-Home").wait("│ A1 n")
        terminal.mouse(14, 5).wait("│ B5 row 4")
        terminal.mouse(14, 5, button=65).wait_gone("row 1 ").press("Down").wait("│ B6 row 5")

    def test_hides_rows_while_the_user_types(self):
        terminal = self.start().wait("6 of 6 rows")
        terminal.press("köln").wait("3 of 6 rows")
        self.assert_shows(terminal, """
      A     B         C
   1│ name  city      amount
   2│ ann   Köln          12
   4╪ cid   KÖLN         130
   7╪ fay   Köln-Süd       8""")
        terminal.press("\x1b[?62;22c\x1b[99;5~\x1b]11;rgb:0/0/0\x1b\\", "-").wait("1 of 6 rows")
        terminal.press("xyz").wait("Text not found")
        terminal.press("Esc").wait_gone("Search -").wait("6 of 6 rows")
        terminal.press("/", "F4").wait("│  köln-xyz").press("Enter").wait("Text not found")  # the history
        terminal.press("Esc").wait_gone("Search -").press("\x1b[200~?\x1b[201~").wait("│ ?")
        terminal.press("\x1b[200~praha\r\n\x1b[201~").wait("?praha").press("Home", "Delete").wait("1 of 6 rows")

    def test_goes_from_match_to_match(self):
        self.file("wide.csv", "n,first,second,third\n" + "".join(
            f"{i},{'koh' if i % 10 == 5 else 'x' * 60},{'y' * 60},{'a koh' if i % 10 < 6 else 'z'}\n" for i in range(1, 41)))
        terminal = self.start("wide.csv").wait("40 of 40 rows").press("koh").wait("│ 28 matches in 24 rows")
        terminal.wait("   2│ yyy").wait("a koh").wait("   6‹ yyy")  # where a match is, also off the screen
        terminal.press("F3").wait("│ D2 a koh").wait("match 1 of 28 in 24 rows").press("F3", "F3").wait("match 3 of 28")
        terminal.press("\x1b[1;2R", "\x1b[1;2R", "\x1b[1;2R").wait("match 28 of 28 in 24 rows").wait("│ D41 a koh")
        terminal.press("Enter").wait_gone("Search -").wait("40 of 40 rows").wait("  41│ ")
        terminal.press("C-g", "c9", "Enter").wait("│ C9 yy").press("C-g", "ZZ9", "Enter").wait("No such place: ZZ9")
        terminal.press("M-h").wait("│ D9 z").wait_gone("yyy").press("\x1b[1;3C").press("M-u").wait("yyy")
        terminal.press("M-f", "Home").wait("   9│   8  xx")

        def copied():
            return base64.b64decode(terminal.output.split("\x1b]52;c;")[-1].split("\a")[0]).decode()

        terminal.press("M-c").wait("Visible rows").press("r").wait("Copied")
        self.assertEqual(copied(), f"8\t{'x' * 60}\t{'y' * 60}\tz")
        # Blocks as they stand, but for what is between them.
        terminal.press("C-g", "d3", "Enter").wait("│ D3").press("S-Down", "Insert", "C-g", "a4", "Enter").wait("│ A4")
        terminal.press("\x1b[2;5~").wait("Copied")
        self.assertEqual(copied(), "\ta koh\n3\ta koh")
        self.assertEqual(self.start("--header", "no", "t.csv").press("name").wait("1 of 7 rows").text().count("cid"), 0)

    def test_looks_for_a_match_in_a_large_table_until_stopped(self):
        self.file("large.csv", "n,text\n" + "".join(f"{i},a text for row {i}\n" for i in range(600_000)))
        terminal = self.start("large.csv", ESCDELAY="1").wait("600000 of 600000 rows").press("none").wait("Text not found")
        terminal.press("F3").wait(lambda t: "Looking: row" in t.output).press("Esc").wait_gone("Looking: row")
        self.assertEqual((terminal.text().count("Search -"), terminal.output.count("\a")), (1, 0))
        terminal.press("F3").wait(lambda t: t.output.count("\a") == 1)

    def test_edits_in_place(self):
        terminal = self.start().wait("6 of 6 rows")
        terminal.press("Down", "Right", "F2").wait("─ B2 ─").press("-Ehrenfeld", "Enter")
        terminal.wait("   2│ ann   Köln-Ehrenfeld      12").wait("t.csv * │ B3 Αθήνα")
        terminal.press("Enter", "xx").wait("Αθήναxx").press("Esc").wait_gone("─ B3 ─")
        self.assertIn("   3│ bob   Αθήνα ", terminal.text())
        terminal.press("Enter", "😀😀x", "Left", "Backspace", "Enter").wait("bob   Αθήνα😀x")
        terminal.press("ehrenfeld").wait("1 of 6 rows")

    def test_switches_tables(self):
        self.file("other.csv", "x\n1\n")
        terminal = self.start("t.csv", "other.csv").wait("t.csv (1/2)")
        terminal.press("F7").wait("other.csv (2/2)").wait("1 of 1 rows").press("C-PgDn").wait("t.csv (1/2)")

    def test_goes_through_the_sheets_of_a_workbook(self):
        sheet = '<Worksheet ss:Name="{0}"><Table><Row><Cell><Data ss:Type="String">{0}</Data></Cell></Row></Table></Worksheet>'
        self.file("w.xml", '<?xml version="1.0"?><Workbook xmlns="urn:schemas-microsoft-com:office:spreadsheet" '
                  'xmlns:ss="urn:schemas-microsoft-com:office:spreadsheet">' + sheet.format("One") + sheet.format("Two") +
                  "</Workbook>")
        terminal = self.start("w.xml").wait("w.xml: One (1/2) │ A1 One").press("F7").wait("w.xml: Two (2/2) │ A1 Two")
        terminal.press("F2").wait("─ A1 ─").press("!", "Enter").wait("Two *").press("C-q")
        terminal.wait("Save the changes in w.xml as w.Two.csv?").press("Enter").end()
        self.assertIn("Two!", (self.folder / "w.Two.csv").read_text(encoding="utf-8-sig"))
        self.file("w.xml", (self.folder / "w.xml").read_text().replace(">Two<", ">" + "x" * 32768 + "<"))
        self.start("w.xml").wait("│ too long texts cut: 1 │")

    def test_tells_its_keys_in_every_language(self):
        self.file("other.csv", "x\n1\n")
        for file in sorted((Path(PROGRAM).parent / "languages").glob("*.lng")):
            lines = file.read_text(encoding="utf-8").splitlines()
            texts = {key[14:]: text for key, _, text in (line.partition(" = ") for line in lines)
                     if key.startswith("Terminal.Keys.")}
            texts["ToForm"], texts["ToTable"] = texts["Form"].split("/")

            def bar(between):
                names = f"F1 Help F2 Edit {between} ^S Save ^Q Quit".split()
                words = [f"{key} {texts[name]}" for key, name in zip(names[::2], names[1::2])]
                return lambda terminal: re.split(r" {1,2}(?=F\d|\^)", terminal.lines()[-1].strip()) == words

            terminal = self.start("t.csv", "other.csv", "--language", file.stem)
            terminal.wait(bar("F7 NextTable F10 Menu ^F Search"))
            terminal.press("C-f").wait(bar("F6 ToTable F7 NextTable F10 Menu"))
            terminal.press("F6").wait(bar("F6 ToForm F7 NextTable F10 Menu")).close()

    def test_shows_any_text_harmlessly(self):
        self.file("odd.csv", 'a,b\n漢字かな,x\ne\u0301te\u0301,y\n"two\nlines",\x1b[31mred\u202eleft\n')
        self.assert_shows(self.start("odd.csv"), """
      A          B
   1│ a          b
   2│ 漢字かな   x
   3│ été        y
   4│ two↵lines  ␛[31mred�left""")


class Forms(Session):
    def test_search_form_fits_narrow_screens(self):
        terminal = self.start().wait("6 of 6 rows").press("C-f")
        self.assert_shows(terminal, """
─ Search - [entire sheet] ────────────────────────────────────────────────── × ─
  ┌ Find what: ───────────────────────────────────────────────────────────┐
  │                                                                   ▾   │
  └───────────────────────────────────────────────────────────────────────┘
  (•) Any part of cells   [ ] Match case        [    Goto    ] [ Show All ]
  ( ) Entire cells only   [x] AutoFilter mode   [ Options... ] [  Close   ]
  ( ) Any of words        [ ] Edit mode""", 15)
        terminal.resize(40, 12)
        self.assert_shows(terminal, """
─ Search - [entire sheet] ────────── × ─
  Find what:                        ▾
 (•) Any part of cells
 ( ) Entire cells only ( ) Any of words
 [ ] Match case [x] AutoFilter mode
 [ ] Edit mode [ Goto ] [ Show All ]
 [ Options... ] [ Close ]""", 4)
        terminal.press("M-m").wait("[x] Match case")
        terminal.resize(80, 24).wait(lambda t: t.lines()[15].startswith("─ Search"))
        terminal.mouse(26, 19).wait("[ ] Match case")
        terminal.mouse(76, 15).wait_gone("Search -")

    def test_options_language_and_hotkeys(self):
        terminal = self.start().wait("6 of 6 rows").press("F10").wait("Technical Support").press("o")
        terminal.wait("[x] Show All after Search form closed").press("Down").wait("<All workbooks>")
        self.assert_shows(terminal, """
  ┌ Options ───────────────────────────────────────────────────────────── × ┐
  │  Common              ┌ Books ─────────────────────────────────────────┐ │
  │  Excel workbooks     │ Add   Del   Reset                              │ │
  │  Keyboard            │  <All workbooks>                               │ │
  │  Edit mode           │                                                │ │""", 3)
        terminal.press("M-a").wait("Do you want to add workbook [t.csv] in this list ?").press("Enter")
        terminal.wait("t.csv    ").press("Down").wait("Form 'Search'")
        row, column = terminal.find("Ctrl + f")
        terminal.mouse(column, row).press("C-g").wait("Ctrl + g").press("Tab", "Esc").wait_gone("Options ─")
        terminal.press("C-g").wait("Search -").press("Esc").wait_gone("Search -")
        terminal.press("F10", "o").wait("Language info:")
        row, column = terminal.find("<Default>")
        terminal.mouse(column, row).wait("German (Deutsch)")
        row, column = terminal.find("German (Deutsch)")
        terminal.mouse(column, row).wait("Optionen").press("Tab", "Esc").wait("6 von 6 Zeilen")

    def test_opens_the_help(self):
        terminal = self.start().wait("6 of 6 rows").press("C-f").wait("Search -").press("F1").wait("The search form")
        terminal.press("PgDn", "PgDn", "PgDn").wait("Ctrl+Backspace - deletes").press("Home").wait("The search form")
        terminal.press("Esc").wait_gone("The search form").press("Esc").wait_gone("Search -")
        terminal.press("F10", "t").wait("info@rowlark.example.com").press("Esc").wait_gone("info@")
        terminal.press("F10", "h").wait("Installing").press("h", "Enter").wait("Two keys work").press("Esc")
        terminal.wait("Installing").press("Esc").wait_gone("Installing").press("F10", "o").wait("Language info:")
        terminal.press("F1").wait("Every change counts at once").press("Esc").wait_gone("Every change").close()
        terminal = self.start("t.csv", "--language", "german").wait("6 von 6").press("C-f").wait("Suchen -")
        terminal.press("F1").wait("schwebt über dem Blatt")

    def test_picks_a_range_with_the_cell_cursor(self):
        terminal = self.start().wait("6 of 6 rows").press("F10", "o").wait("Options ─").press("Down")
        row, column = terminal.wait("Search range:").find("[ ... ]")
        terminal.mouse(column + 1, row).wait("─ Range select ─").press("Down", "S-Down", "S-Right").wait(" A2:B3 ")
        terminal.press("Enter").wait("Search range:       A2:B3").press("Tab", "Esc").wait_gone("Options ─")
        terminal.press("8").wait("Text not found")

    def test_edit_mode_walks_the_rows_found(self):
        terminal = self.start().wait("6 of 6 rows").press("köln").wait("3 of 6 rows")
        terminal.press("M-d", "M-t").wait("Edit mode - ").press("Down").wait("─" * 40).wait("A4")
        terminal.press("zoe", "Enter").wait("   4╪ zoe").press("Esc").wait("Search -")


class Looks(Session):
    def looks(self, **environment):
        terminal = self.start(**environment).wait("6 of 6 rows").press("praha").wait("1 of 6 rows")
        terminal.close()
        return terminal, terminal.styles(*terminal.find("Praha"))

    def test_marks_matches_with_many_colours_few_and_none(self):
        self.assertEqual(self.looks()[1], {"fg:000000", "bg:ffd75f"})
        self.assertEqual(self.looks(TERM="xterm")[1], {"fg:black", "bg:brown"})
        for environment in ({"NO_COLOR": "1"}, {"TERM": "vt100"}):
            terminal, styles = self.looks(**environment)
            self.assertEqual(styles, {"bold", "underscore"})
            self.assertNotRegex(terminal.output, r"\x1b\[[0-9;]*[34][0-8]m")
        self.assertIn("reverse", terminal.styles(*terminal.find("dan")) | terminal.styles(1, 6))


class Input(Session):
    """What does not stand in a file; keys come from the terminal all the same."""

    def shell(self, command):
        return self.start("-c", command, program="/bin/sh")

    def test_reads_standard_input(self):
        for command in (f"cat t.csv | {PROGRAM}", f"{PROGRAM} - < t.csv", f"gzip -c t.csv | {PROGRAM} -"):
            terminal = self.shell(command).wait("- │ A1 name").wait("6 of 6 rows").press("köln").wait("3 of 6 rows")
            terminal.press("Esc").wait_gone("Search -").press("F2").wait("─ A1 ─").press("!", "Enter").wait("name!")
            terminal.press("C-s").wait("Saved: stdin.csv").press("C-q")
            self.assertEqual(terminal.end(), 0)
            saved = self.folder / "stdin.csv"
            self.assertEqual(saved.read_text(), TABLE.replace("name", "name!"))
            saved.unlink()
        self.assertIn("once only", self.shell(f"cat t.csv | {PROGRAM} - -").wait("once only").text())
        self.start("-").wait("nothing to read")

    def test_shows_what_comes_slowly_and_never_waits(self):
        os.mkfifo(self.folder / "pipe")
        for end, status in ((lambda t: t.press("C-c"), 0), (lambda t: t.kill(signal.SIGTERM), 143)):
            terminal = self.start("pipe").wait("Reading: 0 rows so far")  # nobody has opened the other end
            end(terminal)
            self.assertEqual(terminal.end(), status)
        terminal = self.start("pipe").wait("Reading: 0 rows so far")
        with open(self.folder / "pipe", "w", buffering=1) as pipe:
            pipe.write("name;age\nann;30\n")
            terminal.wait("   2│ ann").press("Down", "F2").wait("─ A2 ─").press("!", "Enter").wait("ann!")
            pipe.write("bob;40\n")
            terminal.wait("   3│ bob").press("Esc").wait("not loaded to its end")
        terminal.press("C-s").wait("Saved: pipe.csv").press("C-q").end()
        self.assertEqual((self.folder / "pipe.csv").read_text(), "name;age\nann!;30\nbob;40\n")


class Life(Session):
    def assert_restored(self, terminal):
        self.assertGreater(terminal.output.rfind("\x1b[?1049l"), terminal.output.rfind("\x1b[?1049h"))
        self.assertIn("\x1b[?1000;1002;1006l", terminal.output)

    def test_ends_and_restores_the_terminal(self):
        for number, status in ((None, 0), (signal.SIGTERM, 143), (signal.SIGHUP, 129)):
            terminal = self.start().wait("6 of 6 rows").press("F1").wait("Ctrl+Q")
            terminal.press("Enter").wait_gone("Ctrl+Q").press("ann").wait("1 of 6 rows")
            if number is None:
                terminal.press("C-q")
            else:
                terminal.kill(number)
            self.assertEqual(terminal.end(), status)
            self.assert_restored(terminal)

    def edit(self, terminal, text):
        terminal.wait("6 of 6 rows").press("Down", "F2").wait("─ A2 ─").press(text, "Enter").wait("t.csv *")
        return terminal

    def table(self, name="t.csv"):
        return (self.folder / name).read_text(encoding="utf-8")

    def recoveries(self, folder="config"):
        return [file for file in (self.folder / folder).rglob("*.recovery") if file.stat().st_size]

    def test_loses_no_changes(self):
        self.edit(self.start(), "-1").press("C-s").wait("Saved: t.csv").press("C-q").end()
        self.assertEqual(self.table(), TABLE.replace("ann", "ann-1"))
        terminal = self.edit(self.start(), "-2").press("C-q").wait("Save the changes in t.csv?")
        terminal.press("Esc").wait_gone("Save the changes").kill(signal.SIGTERM)
        self.assertEqual(terminal.end(), 143)
        [kept] = self.recoveries()
        self.assertIn(f"rowlark: t.csv: unsaved changes are kept in {kept}", terminal.output.replace("\r\n", ""))
        # Whatever ends the question but Discard leaves them.
        question = "t.csv: unsaved changes: 1. Restore them?"
        for end in (lambda t: t.press("Esc").wait_gone(question).press("C-q"), lambda t: t.kill(signal.SIGTERM),
                    lambda t: t.kill(signal.SIGHUP), Terminal.close, Terminal.hang_up):
            terminal = self.start().wait(question)
            end(terminal)
            terminal.pid and terminal.end()
            self.assertEqual(self.recoveries(), [kept])
        # Those that were restored and killed once more are the same.
        terminal = self.start().wait(question).press("Enter").wait("ann-1-2").wait("t.csv *")
        self.assertEqual(len(self.recoveries()), 1)
        terminal.close()
        terminal = self.start().wait(question).press("Enter").wait("ann-1-2").press("C-q").wait("[ Discard")
        self.assertEqual(terminal.press("Right", "Enter").end(), 0)
        self.assertEqual((self.table(), self.recoveries()), (TABLE.replace("ann", "ann-1"), []))
        self.start().wait("│ A1 name").press("C-q").end()

    def test_tells_that_a_table_is_open_elsewhere(self):
        first = self.edit(self.start(), "-1")
        second = self.start().wait("is open in another").press("Enter").wait_gone("is open")
        self.edit(second, "-2").close()
        first.close()
        terminal = self.start().wait("unsaved changes: 1").press("Enter").wait("ann-1").wait("unsaved changes: 1")
        terminal.press("Enter").wait("ann-2").wait_gone("unsaved changes")
        self.assertEqual(len(self.recoveries()), 1)

    def test_saves_elsewhere(self):
        self.file("u.csv", "old")
        terminal = self.edit(self.start(), "-1").press("F12").wait("Save as ─").press(*["Backspace"] * 5)
        terminal.press("u.csv", "Enter").wait("exists. Overwrite it?").press("Enter").wait("Saved: ")
        terminal.wait(" u.csv │")
        self.assertEqual((self.table(), self.table("u.csv")), (TABLE, TABLE.replace("ann", "ann-1")))
        terminal.press("C-z").wait("│ A2 ann").wait("u.csv *").press("C-y").wait_gone("u.csv *").press("C-q").end()

    def test_reads_anew_what_has_changed(self):
        terminal = self.edit(self.start(), "-1")
        self.file("t.csv", TABLE + "gil,Bonn,1\n")
        terminal.wait("changed on disk: F5").press("F5").wait("unsaved changes: 1").press("Enter")
        terminal.wait("7 of 7 rows").wait("ann-1").wait("gil").wait("t.csv *").wait_gone("changed on disk")
        terminal.close()
        terminal = self.start("--follow", "t.csv").wait("unsaved changes: 1").press("Right", "Enter").wait("│ A8 gil")
        with (self.folder / "t.csv").open("a", buffering=1) as file:
            file.write("hal,Ulm,1\n")
            terminal.wait("│ A9 hal").press("C-g", "3", "Enter").wait("│ A3 bob")
            file.write("ida,Ulm,2\n")
            terminal.wait("  10│ ida").wait("│ A3 bob")
        terminal.close()
        # What the user has set and found stays, though the search form has gone.
        self.file("t.csv", TABLE)
        terminal = self.start().wait("6 of 6 rows").press("F10", "o").wait("Language info:")
        row, column = terminal.find("[x] Show All after")
        terminal.mouse(column, row).wait("[ ] Show All after").press("Tab", "Esc").wait_gone("Options ─")
        terminal.press("Right", "M-h").wait_gone("city").press("köln").wait("3 of 6 rows").press("Esc").wait_gone("Search -")
        for rows in "4 of 7 rows", "5 of 8 rows":
            with (self.folder / "t.csv").open("a", encoding="utf-8") as file:
                file.write("gil,Köln,1\n")
            terminal.wait("changed on disk: F5").press("F5").wait(rows)
        self.assertNotIn("city", terminal.text())

    def test_comes_back_after_a_stop(self):
        terminal = self.start().wait("6 of 6 rows")
        terminal.kill(signal.SIGTSTP)
        terminal.wait(lambda t: t.output.count("\x1b[?1049h") == 2).press("Down").wait("A2 ann")
        terminal.press("F10", "b").wait(lambda t: t.output.count("\x1b[?1049h") == 3).press("Down").wait("A3 bob")

    def test_says_what_it_can_not_open(self):
        terminal = self.start("none.csv")
        self.assertEqual(terminal.end(), 2)
        self.assertIn("rowlark: none.csv: No such file or directory", terminal.output)
        terminal = self.start(TERM="dumb")
        self.assertEqual(terminal.end(), 2)
        self.assertIn("rowlark search", terminal.output)


if __name__ == "__main__":
    unittest.main()

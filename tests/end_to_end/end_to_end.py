"""The whole add-in in the workbench, driven from outside, on a display with a window manager:

    cmake/xvfb.sh python3 tests/end_to_end/end_to_end.py BUILD-FOLDER [TEST...]
"""

import csv
import pathlib
import random
import subprocess
import tempfile
import unittest

from desktop import BUILD, ROOT, WorkbenchTest, wait_until, windows_path, wine, xdotool

with open(ROOT / "examples" / "customers.csv", encoding="utf-8", newline="") as file:
    CUSTOMERS = list(csv.reader(file))


def setUpModule():
    subprocess.run(wine("regsvr32", "/s", windows_path(BUILD / "vtrlk_runtime.dll")), check=True)


def rows_with(*texts):
    """Rows of the example in which a cell holds one of the texts, letter case ignored."""
    folded = [text.casefold() for text in texts]
    return [
        number
        for number, row in enumerate(CUSTOMERS, 1)
        if any(text in cell.casefold() for text in folded for cell in row)
    ]


ALL = list(range(1, len(CUSTOMERS) + 1))


class AddInTest(WorkbenchTest):
    def expect_rows(self, rows):
        """That these rows of the table, and no others, are on the screen."""

        def visible():
            blocks = [block.replace("A", "").split(":") for block in self.visible_rows().split(",")]
            return [row for block in blocks for row in range(int(block[0]), int(block[-1]) + 1)]

        wait_until(lambda: visible() == rows, lambda: f"the rows {visible()} are visible instead of {rows}")

    def open_search(self):
        self.keys("ctrl+f")
        form = self.wait_for_window("Search - ")
        wait_until(lambda: self.text_field().focused, "the search text has no focus")
        return form

    def text_field(self):
        box = self.window(kind="ComboBox", inside=self.window("Search - "))
        return self.window(kind="Edit", inside=box)

    def expect_text(self, text):
        wait_until(lambda: self.text_field().text == text, lambda: f"the search text is {self.text_field().text!r}")

    def search(self, text, rows=None):
        """Types over what stands in the search form, and awaits the result."""
        self.text_field().click()
        self.keys("ctrl+a")
        self.type(text)
        self.expect_text(text)
        self.expect_rows(rows_with(text) if rows is None else rows)

    def close_form(self, caption="Search - "):
        self.keys("Escape")
        self.wait_until_gone(caption)

    def open_options(self, page):
        """The options form with the page of that number."""
        self.keys("alt+r", "o")
        form = self.wait_for_window("Options")
        wait_until(lambda: self.window(kind="SysTreeView32").focused, "the list of pages has no focus")
        if page > 0:
            self.keys(*["Down"] * page)
        return form

    def press(self, caption, inside):
        """The first button of that caption."""
        self.wait_for_window(caption, "Button", inside).click()

    def pick_range(self, options, workbook=""):
        """Has the search range of the options picked on that workbook's sheet; its address."""
        self.press("Select the search range on the sheet", options)
        self.wait_for_window("Range select")
        self.activate(workbook)
        address = self.drag_over_cells()
        self.wait_for_window(address).click()
        self.keys("Return")
        self.wait_until_gone("Range select")
        self.wait_for_window(address, kind="Edit", inside=options)
        return address

    def drag_over_cells(self):
        """Selects a block of cells with the mouse, below the row of column names; its address."""
        before = self.get("Selection.Address")
        grid = self.window(kind="RowlarkGrid")
        xdotool("mousemove", grid.left + 60, grid.top + 27, "mousedown", 1)
        xdotool("mousemove", grid.left + 240, grid.top + 43, "mouseup", 1)
        wait_until(lambda: ":" in self.get("Selection.Address") != before, "nothing has been selected")
        return self.get("Selection.Address").replace("$", "")


class Workbench(AddInTest):
    def test_keys_and_mouse_select(self):
        self.keys("ctrl+End")
        self.expect("ActiveCell.Address", "$K$361")
        self.keys("ctrl+Home", "Down", "Right", "shift+Down", "shift+Right")
        self.expect("Selection.Address", "$B$2:$C$3")
        self.expect("ActiveCell.Address", "$B$2")
        self.do('Range("A3:A360").EntireRow.Hidden = True')
        self.keys("Down")
        self.expect("ActiveCell.Address", "$B$361")
        self.assertRegex(self.drag_over_cells(), "A1:[B-D]2")

    def test_each_workbook_has_its_window(self):
        first = self.window("customers.csv - ", "XLMAIN")
        self.expect("Hwnd", first.handle)
        self.keys("ctrl+n")
        second = self.wait_for_window("Book1 - ", "XLMAIN")
        self.expect("Hwnd", second.handle)
        wait_until(lambda: self.window(kind="RowlarkGrid", inside=second).focused, "the new sheet has no focus")
        for text in ("lyon", "praha", "lyon"):
            self.type(text)
            self.keys("Return")
        self.expect('Range("A3").Value', "lyon")
        self.expect("ActiveCell.Address", "$A$4")

        options = self.open_options(1)  # a profile for the second one alone
        self.window(kind="ToolbarWindow32", inside=options).click(20, 10)
        self.keys("Return")
        self.window(kind="SysListView32").click(60, 27)
        address = self.pick_range(options, "Book1")
        self.press("Close", options)
        self.wait_until_gone("Options")
        self.open_search()
        self.window(f"Search - [{address}]")
        self.search("praha", [2, 3])  # the third lies beyond the range

        self.activate("customers")
        self.expect("Hwnd", first.handle)
        self.expect_rows(ALL)
        self.activate("Book1")
        self.keys("alt+F4")
        self.wait_until_gone("Book1 - ")
        self.wait_until_gone("Search - ")
        self.expect("ActiveWorkbook.Name", "customers.csv")
        self.expect("Workbooks.Count", 1)
        self.open_search()
        self.window("Search - [entire sheet]")
        self.search("germany")


class Search(AddInTest):
    def test_rows_vanish_while_the_user_types(self):
        self.open_search()
        self.search("germany")
        self.search("heike")
        self.type("x")
        self.wait_for_window("Text not found")
        self.expect_rows(ALL)
        self.keys("BackSpace")
        self.expect_rows(rows_with("heike"))
        self.wait_until_gone("Text not found")
        self.keys("alt+a")
        self.search("praha lyon", rows_with("praha", "lyon"))
        self.close_form()
        self.expect_rows(ALL)
        wait_until(lambda: self.window(kind="RowlarkGrid").focused, "the sheet has not got the focus back")

    def test_keys_of_the_form(self):
        self.open_search()
        self.search("germany")
        self.keys("ctrl+f")  # means another thing here than on the sheet: rows are hidden no more
        wait_until(lambda: not self.window("AutoFilter mode").checked, "Ctrl+F does nothing")
        self.keys("alt+s")
        self.expect_rows(ALL)
        self.search("lyon", ALL)
        self.expect("ActiveCell.Row", rows_with("lyon")[0])
        self.keys("ctrl+f")
        self.expect_rows(rows_with("lyon"))
        self.keys("ctrl+e")
        wait_until(lambda: self.window("Edit mode").checked, "Ctrl+E does nothing")
        self.wait_for_window("Edit", kind="Button")
        self.type(" x")
        self.keys("ctrl+BackSpace")
        self.expect_text("lyon ")

    def test_going_to_a_match_and_editing(self):
        first, second = rows_with("praha")[:2]
        self.open_search()
        self.keys("ctrl+f")  # no rows are hidden: closing the form shows none and goes nowhere
        self.search("praha", ALL)
        self.expect("ActiveCell.Row", first)
        self.keys("alt+t")
        self.wait_until_gone("Search - ")
        self.expect("ActiveCell.Row", first)

        self.open_search()
        self.keys("ctrl+f", "ctrl+e")
        self.search("praha")
        self.keys("alt+t")
        form = self.wait_for_window("Edit mode - ")
        self.assertEqual(self.find_windows("Search - "), [])
        self.wait_for_window(f"A{first}", inside=form)
        self.keys("Down")
        self.wait_for_window(f"A{second}", inside=form)
        self.keys("Right")
        self.wait_for_window(f"B{second}", inside=form)
        self.type("edited")
        self.keys("alt+k")
        self.expect(f'Range("B{second}").Value', "edited")
        self.keys("Escape")
        self.wait_until_gone("Edit mode - ")
        self.wait_for_window("Search - ")
        self.close_form()

        options = self.open_options(3)
        self.press("Auto close this form", options)
        self.press("Close", options)
        self.wait_until_gone("Options")
        self.open_search()
        self.search("edited", [second])
        self.keys("alt+t")
        self.wait_for_window("Edit mode - ")
        self.type("again")
        self.keys("alt+k")
        self.wait_until_gone("Edit mode - ")
        self.expect(f'Range("A{second}").Value', "again")

    def test_hotkeys(self):
        self.do('Range("A5:A9").EntireRow.Hidden = True')
        self.keys("ctrl+shift+f")
        self.expect_rows(ALL)
        options = self.open_options(2)
        self.wait_for_window("Form 'Search'", "Button", options)
        field = wait_until(lambda: self.find_windows(kind="Edit", inside=options), "there is no field for a key")[0]
        field.click()
        self.keys("ctrl+shift+g")
        self.wait_for_window("Ctrl + Shift + g")
        self.press("Close", options)
        self.wait_until_gone("Options")
        self.keys("ctrl+f", "ctrl+shift+g")
        self.wait_for_window("Search - ")
        self.assertEqual(len(self.find_windows("Search - ")), 1)

    def test_forms_follow_the_minimised_window(self):
        self.open_search()
        self.search("germany")
        self.probe.ask("minimise")
        self.wait_until_gone("Search - ")
        self.probe.ask("restore")
        self.wait_for_window("Search - ")
        self.expect_rows(rows_with("germany"))
        self.expect_text("germany")


class Options(AddInTest):
    def test_another_language(self):
        options = self.open_options(0)
        self.window(kind="ComboBox", inside=options).click()
        self.type("g")
        self.expect('CommandBars("Worksheet Menu Bar").Controls(1).Controls(1).Caption', "&Suchen...")
        self.wait_for_window("Optionen")
        self.press("Schließen", options)
        self.wait_until_gone("Optionen")
        self.keys("alt+r", "s")
        self.wait_for_window("Suche")


class LargeTable(AddInTest):
    ROWS = 200_000

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.table = pathlib.Path(folder.name) / "large.csv"
        draw = random.Random(1)
        words = ["alpha", "beta", "gamma", "delta", "epsilon"]
        with open(cls.table, "w", encoding="utf-8") as table:
            for row in range(1, cls.ROWS + 1):
                table.write(f"row {row},{draw.choice(words)},{draw.choice(words)},{draw.random()}\n")

    def test_typing_stays_responsive(self):
        self.open_search()
        self.do("CountCalls = True")
        text = "row 123456, the text of a user who does not pause"
        self.type(text)
        self.expect_text(text)
        self.wait_for_window("Text not found")
        # One search, or a few where the machine made the user pause; never one for every key.
        self.assertIn(int(self.get('CallCount("Range.Find")')), range(1, 5))

        self.keys("ctrl+a")
        self.type("row 123456", delay=330)  # each key comes while the search for the text before it runs
        self.expect_text("row 123456")
        wait_until(lambda: self.visible_rows() == "A123456", lambda: f"{self.visible_rows()[:100]} are visible")


if __name__ == "__main__":
    unittest.main(verbosity=2)

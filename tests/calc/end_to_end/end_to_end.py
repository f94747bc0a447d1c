"""The extension in Calc, driven from outside, on a display with a window manager:

    cmake/xvfb.sh python3 tests/calc/end_to_end/end_to_end.py BUILD-FOLDER [TEST...]
"""

import csv
import unittest

from office import CUSTOMERS, AccessibleRole, CalcTest, keys, typed, wait_until

with open(CUSTOMERS, encoding="utf-8", newline="") as file:
    ROWS = list(csv.reader(file))
ALL = list(range(1, len(ROWS) + 1))


def rows_with(text):
    """Rows of the example in which a cell holds the text, letter case ignored."""
    return [number for number, row in enumerate(ROWS, 1) if any(text.casefold() in cell.casefold() for cell in row)]


class AddIn(CalcTest):
    def rows_are(self, document, rows):
        self.expect_rows(document, rows, len(ROWS))

    def open_search(self):
        keys("ctrl+f")
        wait_until(lambda: self.window("Search - ").edit().focused, "the search text has no focus")

    def search(self, document, text):
        """Types over what stands in the search form, and awaits the result."""
        keys("ctrl+a")
        typed(text)
        wait_until(lambda: self.window("Search - ").edit().text == text, f"the search text is not {text}")
        self.rows_are(document, rows_with(text))

    def close_search(self):
        keys("Escape")
        self.wait_until_gone("Search - ")

    def press(self, title, name):
        self.element(title, AccessibleRole.PUSH_BUTTON, name).click()

    def configuration(self):
        file = self.folder / "config/vantrel/rowlark/rowlark.cfg"
        return file.read_text(encoding="utf-8") if file.exists() else ""


class Searching(AddIn):
    def test_rows_go_while_typing_and_come_back(self):
        document = self.open()
        self.open_search()
        self.search(document, "germany")
        self.search(document, "paris")
        keys("ctrl+BackSpace")
        self.rows_are(document, ALL)
        self.search(document, "overdue")
        self.press("Search - ", "Show All")
        self.rows_are(document, ALL)
        keys("alt+Down", "Escape")  # an open list keeps the key
        self.search(document, "praha")
        typed("x")
        self.element("Search - ", AccessibleRole.SCROLL_PANE)  # the error
        self.close_search()
        self.rows_are(document, ALL)
        self.assertIn("prahax", self.configuration())

    def test_goes_to_the_found_cell(self):
        document = self.open()
        typed("Key")  # into the first cell, which is still being edited when the search begins
        self.open_search()
        self.search(document, "K10484")
        self.search(document, "K10485")
        keys("Return")
        self.wait_until_gone("Search - ")
        self.rows_are(document, ALL)
        wait_until(lambda: self.active_cell(document) == (1, rows_with("K10485")[0]), "another cell is active")
        self.assertEqual(self.sheet(document).getCellByPosition(0, 0).String, "Key")

    def test_keys_are_those_of_the_options(self):
        document = self.open()
        keys("alt+r", "o")
        wait_until(lambda: self.window("Options").find(AccessibleRole.LIST).focused, "the pages have no focus")
        keys("Down", "Down")
        box = self.element("Options", AccessibleRole.CHECK_BOX, "Form 'Search'")
        keys("Tab", "space")
        wait_until(lambda: not box.checked, "the hotkey is still on")
        keys("Escape")
        self.wait_until_gone("Options")
        self.activate(document)
        keys("ctrl+f")  # the office's own find bar
        layout = document.CurrentController.Frame.LayoutManager
        wait_until(lambda: layout.isElementVisible("private:resource/toolbar/findbar"), "the find bar does not show")
        keys("ctrl+shift+f")
        self.assertFalse([w for w in self.windows() if w.name.startswith("Search - ")])


class Editing(AddIn):
    def test_edits_one_row_after_the_other(self):
        document = self.open()
        self.open_search()
        self.search(document, "cancelled")
        keys("ctrl+e", "Return")
        rows = rows_with("cancelled")
        for place, row in enumerate(rows[:3]):
            self.element("Edit mode", AccessibleRole.LABEL, f"A{row}")
            wait_until(lambda: self.window("Edit mode").edit().focused, "the text has no focus")
            typed(f"Edited {place}")
            keys("Return")
            wait_until(lambda: self.sheet(document).getCellByPosition(0, row - 1).String == f"Edited {place}",
                       f"row {row} has not been written")
            keys("Down")
        keys("Escape")
        self.wait_until_gone("Edit mode")
        wait_until(lambda: self.window("Search - ").edit().focused, "the search form does not come back")
        self.close_search()
        self.rows_are(document, ALL)


class Options(AddIn):
    def test_language_is_chosen_at_run_time(self):
        self.open()
        self.open_search()
        keys("alt+o")
        self.element("Options", AccessibleRole.COMBO_BOX).click()
        self.element("Options", AccessibleRole.LIST_ITEM, "German (Deutsch)").click()
        self.element("Optionen", AccessibleRole.LIST_ITEM, "Tastatur")
        self.element("Suchen - ", AccessibleRole.PUSH_BUTTON, "Schließen")
        self.press("Optionen", "Schließen")
        self.wait_until_gone("Optionen")
        self.assertIn("german.lng", self.configuration())

    def test_range_is_picked_on_the_sheet(self):
        document = self.open()
        keys("alt+r", "o")
        self.element("Options", AccessibleRole.LIST_ITEM, "Excel workbooks").click()
        for answer in ("Escape", "Return"):  # keys of the box, not of the form below it
            self.press("Options", "Add")
            self.active("Vantrel Rowlark")
            keys(answer)
            self.wait_until_gone("Vantrel Rowlark")
        self.element("Options", AccessibleRole.LIST_ITEM, "customers.csv").click()
        button = wait_until(self.pick_button, "there is no button to pick with")
        button.click()
        self.window("Range select")
        cells = self.sheet(document).getCellRangeByName("B2:C5")
        document.CurrentController.select(cells)
        wait_until(lambda: self.active("Range select").edit().text == "B2:C5", "the selection does not show")
        keys("Return")
        self.wait_until_gone("Range select")
        wait_until(lambda: [e for e in self.window("Options").elements() if e.role == AccessibleRole.TEXT and e.showing and
                            e.text == "B2:C5"], "the range does not show")
        self.active("Options")
        keys("Escape")
        self.wait_until_gone("Options")

    def pick_button(self):
        buttons = [e for e in self.window("Options").elements() if e.showing and e.role == AccessibleRole.PUSH_BUTTON]
        return next(e for e in buttons if not e.name or e.name.startswith("Select the search range"))


class Documents(AddIn):
    def test_form_goes_over_to_another_document(self):
        first = self.open()
        self.open_search()
        self.search(first, "paris")
        second = self.open("second.csv")
        self.open_search()
        self.search(second, "germany")
        self.rows_are(first, rows_with("paris"))
        second.close(True)
        self.wait_until_gone("Search - ")
        self.activate(first)
        self.open_search()
        self.search(first, "wien")
        self.close_search()
        self.rows_are(first, ALL)

    def test_document_closes_while_it_is_searched(self):
        document = self.open()
        other = self.open("other.csv")
        self.activate(document)
        sheet = self.sheet(document)
        values = tuple((f"text {row % 7}", row) for row in range(100000))
        sheet.getCellRangeByPosition(0, 0, 1, len(values) - 1).setDataArray(values)
        self.open_search()
        typed("text 3")
        document.close(True)
        self.wait_until_gone("Search - ")
        self.activate(other)
        self.open_search()
        self.search(other, "paris")
        self.close_search()

    def test_office_ends_with_forms_open(self):
        document = self.open()
        self.open_search()
        self.search(document, "paris")
        keys("ctrl+e", "Return")
        self.active("Edit mode")
        keys("alt+F4")  # a form hears of it like any other window
        self.wait_until_gone("Edit mode")
        self.activate(document)
        keys("alt+r", "a")
        self.window("About")


if __name__ == "__main__":
    unittest.main()

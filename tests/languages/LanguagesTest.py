"""The language files that are delivered: each complete, all of one shape, and English true to the sources.
LanguagesTest.py PROJECT"""

import re
import sys
import unittest
from pathlib import Path

PROJECT = Path(sys.argv.pop(1))
LATIN = "abcdefghijklmnopqrstuvwxyz"
# Name, own name, what the help's name ends with, and the letters that the language's keyboard types without AltGr, so that
# Alt reaches them.
LANGUAGES = {"english": ("English", "English", "en", LATIN), "french": ("French", "Français", "fr", LATIN),
             "german": ("German", "Deutsch", "de", LATIN), "polish": ("Polish", "Polski", "pl", LATIN),
             "russian": ("Russian", "Русский", "ru", "абвгдежзийклмнопрстуфхцчшщъыьэюя"),
             "spanish": ("Spanish", "Español", "es", LATIN)}
# Captions that are on the screen together, by their keys.
TOGETHER = (r"(Terminal\.)?Menu\.(?!Root).*",
            r"Search\.UI\.(?!BtnMode\.Edit).*",  # the mode button goes to the cell
            r"Search\.UI\.(?!BtnMode\.Jump).*",  # or edits it
            r"Edit\.UI\..*",                     # also the buttons of every question
            r"Options\.UI\.Toolbar\..*\.Caption",
            r"Terminal\.Copy\..*",
            r"Terminal\.Save\..*|Edit\.UI\.BtnClose",
            r"Terminal\.Reload\..*|Terminal\.Save\.Discard|Edit\.UI\.BtnClose",
            r"Terminal\.Recovery\..*|Terminal\.Save\.Discard")
# The sources give these keys two default texts; this one is not the file's.
OTHER_DEFAULTS = {("Err.SearchHide", "Error #%1: Can't show/hide rows %2"), ("Options.UI.Tree.Books", "Books"),
                  ("Options.UI.Tree.Edit", "Edit")}


def accelerator(key, text):
    """The letter that chooses a caption with Alt. On a terminal buttons of a tool bar are chosen by their first letter."""
    _, mark, marked = text.partition("&")
    if not mark and not key.startswith("Options.UI.Toolbar."):
        return None
    return (marked if mark else text)[:1].lower()


class Languages(unittest.TestCase):
    def texts(self, language):
        """Key and text of every line that is not a comment. One text has no key and begins with the "="."""
        content = (PROJECT / f"languages/{language}.lng").read_bytes().decode()
        self.assertTrue(content.endswith("\n") and not content.startswith("\ufeff"))
        texts = []
        for line in content.split("\n"):
            if match := re.fullmatch(r"(?:([A-Za-z0-9_.]+) )?= ([^ ;\t\r](?:[^;\t\r]*[^ ;\t\r])?)", line):
                texts.append((match[1] or "", match[2]))
            else:
                self.assertRegex(line, r"^(; .*)?$", language)
        return texts

    def test_have_the_same_keys_and_shapes(self):
        self.assertEqual({file.stem for file in (PROJECT / "languages").glob("*.lng")}, set(LANGUAGES))
        english = self.texts("english")
        self.assertEqual(len({key.lower() for key, _ in english}), len(english))
        for language, (name, own_name, end, _) in LANGUAGES.items():
            texts = self.texts(language)
            self.assertEqual([key for key, _ in texts], [key for key, _ in english], "the order is English's")
            for (key, text), (_, twin) in zip(texts, english):  # placeholders, line breaks, accelerators
                shape, expected = (sorted(re.findall(r"%\d*|\\.?|&", some)) for some in (text, twin))
                self.assertEqual(shape, expected, f"{language} {key}")
            header = dict(texts)
            self.assertEqual([header[key] for key in ("PRG_KEY", "LANGUAGE_NAME_ENG", "LANGUAGE_NAME", "HELP_FILE_NAME")],
                             ["VTRLK 1.x", name, own_name, f"vt_rlk_{end}.chm"])

    def test_accelerators_of_a_form_are_typeable_and_differ(self):
        for language, (*_, letters) in LANGUAGES.items():
            texts = self.texts(language)
            alone = {key for key, text in texts if "&" in text} - {"Menu.Root"}  # between the host's own menus
            for group in TOGETHER:
                letter_of = {key: accelerator(key, text) for key, text in texts if re.fullmatch(group, key)}
                taken = [letter for letter in letter_of.values() if letter is not None]
                self.assertEqual(len(set(taken)), len(taken), f"{language}: {letter_of}")
                self.assertLessEqual(set(taken), set(letters), f"{language}: {letter_of}")
                alone -= set(letter_of)
            self.assertEqual(alone, set(), "stand with which others?")

    def test_keep_to_the_spelling_of_excel(self):
        """What Excel's texts in the language look like, and translators forget."""
        for key, text in self.texts("french"):
            self.assertNotRegex(text, r"(?<!\u00A0)([?!]|:(?!//))", key)
        for key, text in self.texts("russian"):
            self.assertNotIn("ё", text.lower(), key)

    def test_english_is_what_the_sources_say(self):
        """In the sources a key and its default text stand side by side, in calls of GetText and in tables."""
        pair = re.compile(r'(?:GetText\(\s*u?"([^"]*)"|u"((?:[A-Z][A-Za-z0-9]*\.)+[A-Z][A-Za-z0-9]*)"),'
                          r'\s*u?"((?:[^"\\]|\\.|"\s+u")*)"')
        texts = self.texts("english")
        used = {key for key, _ in texts if "." not in key}  # those tell what the file is
        for file in (file for folder in ("src", "apps", "addin") for file in (PROJECT / folder).rglob("*")):
            for match in pair.finditer(file.read_text(encoding="utf-8")) if file.suffix in (".cpp", ".h", ".bas") else ():
                key, text = (match[1] or "") + (match[2] or ""), re.sub(r'"\s+u"', "", match[3])
                self.assertIn((key, re.sub(r"\\(.)", r"\1", text)), {*texts, *OTHER_DEFAULTS}, file)
                used.add(key)
        self.assertEqual({key for key, _ in texts} - used, set())


if __name__ == "__main__":
    unittest.main()

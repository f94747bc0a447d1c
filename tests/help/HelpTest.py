"""The help as scripts/help.sh makes it. HelpTest.py PROJECT PROGRAM"""

import os
import re
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree
from html.parser import HTMLParser
from pathlib import Path

PROJECT, PROGRAM = Path(sys.argv.pop(1)), sys.argv.pop(1)
PAGES = PROJECT / "docs/help"
LANGUAGES = ("en", "de")
CONTENTS = list(ElementTree.parse(PAGES / "contents.xml").iter("page"))
NAMES = {page.get("name") for page in CONTENTS}
CONTEXTS = {int(page.get("context")): page.get("name") for page in CONTENTS if page.get("context")}


def output(*command, **options):
    return subprocess.run(command, capture_output=True, text=True, check=True, **options).stdout


def spaced(text):
    return re.sub(r"\s+", " ", text).strip()


class Links(HTMLParser):
    """Where a page leads, and what of a page can be led to."""

    def __init__(self, file):
        super().__init__()
        self.targets = []
        self.feed(file.read_text(encoding="cp1252" if "windows-1252" in file.read_text("latin-1") else "utf-8"))

    def handle_starttag(self, tag, attributes):
        found = [value for name, value in attributes if name in ("href", "src")]
        self.targets += [target for target in found if not re.match(r"(https|mailto):", target)]


class Help(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.made = Path(folder.name) / "made"
        cls.again = Path(folder.name) / "again"
        for made in (cls.made, cls.again):
            output(PROJECT / "scripts/help.sh", made, env=os.environ | {"SOURCE_DATE_EPOCH": "1700000000"})

    def unpacked(self, language):
        folder = self.made / f"unpacked-{language}"
        if not folder.exists():
            output("chmls", "extractall", self.made / f"vt_rlk_{language}.chm", folder)
        return folder

    def test_compiled_help_opens_at_every_context(self):
        for language in LANGUAGES:
            chm = self.made / f"vt_rlk_{language}.chm"
            listed = set(output("chmls", "--name-only", "list", chm).split())
            self.assertLessEqual({f"/{name}.html" for name in NAMES} | {"/$FIftiMain", "/contents.hhc", "/index.hhk"}, listed)
            output("chmls", "extractalias", chm.name, cwd=self.made)
            numbers = dict(re.findall(r"#define (\w+) (\d+)", chm.with_suffix(".h").read_text()))
            topics = re.findall(r"(\w+)=(.*)", chm.with_suffix(".ali").read_text())
            self.assertEqual({int(numbers[symbol]): topic for symbol, topic in topics},
                             {context: f"{name}.html" for context, name in CONTEXTS.items()})
            system = output("chmls", "printsystem", chm)
            for line in (r"fullttext search is on *: 1", r"Default topic.*:index\.html",
                         r"LCID from HHP file *: " + {"en": "1033", "de": "1031"}[language]):
                self.assertRegex(system, line)
            for file in ("contents.hhc", "index.hhk"):
                places = re.findall(r'name="Local" value="(.*?)\.html"', (self.unpacked(language) / file).read_text("cp1252"))
                self.assertEqual(set(places), NAMES, file)

    def test_every_link_leads_somewhere(self):
        for folder, pages in ((self.made / "web", 2), *((self.unpacked(language), 1) for language in LANGUAGES)):
            files = list(folder.rglob("*.html"))
            self.assertEqual(len(files), pages * len(NAMES))
            for file in files:
                for target in Links(file).targets:
                    self.assertTrue((file.parent / target).is_file(), f"{file}: {target}")

    def test_every_language_has_every_page(self):
        for language in LANGUAGES:
            self.assertEqual({file.stem for file in (PAGES / language).iterdir()}, NAMES)
            texts = (self.made / f"text/vt_rlk_{language}.txt").read_text(encoding="utf-8")
            self.assertEqual([int(number) for number in re.findall("\f(\\d+)\n", texts)],
                             [int(page.get("context", 0)) for page in CONTENTS])

    def test_every_form_and_message_has_its_page(self):
        topics = re.findall(r"^  (\w+) = (\d+),$", (PROJECT / "src/runtime/HelpTopic.h").read_text(), re.M)
        self.assertEqual({int(number) for _, number in topics}, set(CONTEXTS))
        sources = "".join(file.read_text() for file in (PROJECT / "src/forms").glob("*.cpp"))
        forms = re.findall(r'BaseForm\(shared, u"frm(\w+)", HelpTopic::(\w+)\)', sources)
        self.assertEqual(len(forms), 5)
        for form, topic in forms:
            self.assertEqual(form, topic)
        # Messages are quoted as they are.
        for language, name in (("en", "english"), ("de", "german")):
            known = (PROJECT / f"languages/{name}.lng").read_text("utf-8") + (PROJECT / "addin/Rowlark.bas").read_text()
            headings = ElementTree.parse(PAGES / language / "troubleshooting.html").iter("{http://www.w3.org/1999/xhtml}h2")
            for quoted in re.findall('["„](.*?)["“]', "".join(heading.text for heading in headings)):
                self.assertIn(quoted, known)

    def test_web_pages_have_their_numbers_for_programs(self):
        with tempfile.TemporaryDirectory() as folder:
            subprocess.run([sys.executable, PROJECT / "scripts/help.py", folder, "web"], check=True)
            for place in Path(folder), Path(folder) / "de":
                self.assertEqual({place.joinpath(f"{number}.html").read_text() == place.joinpath(f"{name}.html").read_text()
                                  for number, name in CONTEXTS.items() if number}, {True})

    def test_man_page_renders(self):
        page = self.made / "rowlark.1"
        groff = subprocess.run(["groff", "-man", "-Tutf8", "-ww", "-Kutf8", page], capture_output=True, text=True)
        self.assertEqual((groff.returncode, groff.stderr), (0, ""))
        lines = re.sub("(.\b|\x1b\\[[0-9;]*m)", "", groff.stdout).split("\n")  # without bold letters
        for heading in ("NAME", "SYNOPSIS", "OPTIONS", "KEYS", "EXIT STATUS", "FILES", "EXAMPLES"):
            self.assertIn(heading, lines)

    def test_options_are_those_of_the_program(self):
        told = {}
        section = ""
        for element in ElementTree.parse(PAGES / "en/command.html").iter():
            tag, text = element.tag.split("}")[1], spaced("".join(element.itertext()))
            if tag == "h2":
                section = text
            elif tag == "dt":
                term = text
            elif tag == "dd":
                told.setdefault(section, {})[term] = text
        everywhere = {"-h, --help", "--config FILE", "--language NAME"}
        for section, command in (("Options", ()), ("rowlark search", ("search",)), ("rowlark profiles", ("profiles", "set"))):
            lines = output(PROGRAM, *command, "--help").split("\nExamples:")[0].split("Subcommands:")[0]
            entries = re.findall(r"^  (\S.*?)(?: REQUIRED)?(?:  +|\n {20,})(.*)$", lines, re.M)
            real = {name.replace("-h,--help", "-h, --help"): text for name, text in entries}
            missing = everywhere if command else set()
            self.assertEqual(told[section], {name: text for name, text in real.items() if name not in missing})

        # Other languages say it in their words.
        for page in (PAGES / "en/command.html", PAGES / "de/command.html"):
            named = set(re.findall(r"--[a-z-]+", page.read_text("utf-8")))
            self.assertEqual(named, {option for options in told.values() for term in options for option in
                                     re.findall(r"--[a-z-]+", term)}, page)

    def test_makes_the_same_bytes_again(self):
        files = [file for file in self.again.rglob("*") if file.is_file()]
        self.assertGreater(len(files), 2 * len(NAMES))
        for file in files:
            self.assertEqual(file.read_bytes(), (self.made / file.relative_to(self.again)).read_bytes(), file.name)


if __name__ == "__main__":
    unittest.main()

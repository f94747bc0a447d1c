"""Makes the help in all its forms from the pages in docs/help: help.py OUTPUT_DIR [text|web]

vt_rlk_LANGUAGE.chm for Windows, web/ for browsers, the man page rowlark.1, and text/vt_rlk_LANGUAGE.txt for the program
in a terminal. With "text" or "web" only those, into OUTPUT_DIR itself, which takes nothing but this interpreter; pages
that have a number are then there under it as well, for programs that ask by it.
"""

import html
import os
import re
import shutil
import struct
import subprocess
import sys
import tempfile
import time
import xml.etree.ElementTree as ElementTree
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
SOURCES = ROOT / "docs/help"
LANGUAGES = {"en": ("English", 0x409), "de": ("Deutsch", 0x407)}
TITLES = {"en": "Rowlark Help", "de": "Rowlark-Hilfe"}
XHTML = "{http://www.w3.org/1999/xhtml}"
# The same in every run from the same commit.
EPOCH = int(os.environ.get("SOURCE_DATE_EPOCH", "0"))


def local(href):
    return not re.match(r"[a-z]+:", href)


class Page:
    def __init__(self, language, name, context, level):
        self.language, self.name, self.context, self.level = language, name, context, level
        root = ElementTree.parse(SOURCES / language / f"{name}.html").getroot()
        for element in root.iter():
            element.tag = element.tag.removeprefix(XHTML)
        self.title = root.findtext("head/title")
        self.keywords = root.find("head/meta[@name='keywords']").get("content").split("; ")
        self.body = root.find("body")

    def pictures(self):
        return [SOURCES / self.language / image.get("src") for image in self.body.iter("img")]

    def markup(self, to_pictures=""):
        """The body as HTML, its pictures in that folder."""
        text = "".join(ElementTree.tostring(child, "unicode", "html") for child in self.body)
        return re.sub(r'src="[^"]*/', f'src="{to_pictures}', text)


def read(language):
    pages = []

    def walk(element, level):
        for child in element:
            context = int(child.get("context", -1))
            pages.append(Page(language, child.get("name"), context if context >= 0 else None, level))
            walk(child, level + 1)

    walk(ElementTree.parse(SOURCES / "contents.xml").getroot(), 0)
    return pages


def nested(pages, entry, begin="<ul>\n", end="</ul>\n"):
    """A list in lists, an entry a page."""
    lines, level = [begin], 0
    for page in pages:
        lines += [begin] * (page.level - level) + [end] * (level - page.level) + [entry(page)]
        level = page.level
    return "".join(lines + [end] * (level + 1))


# ---- web pages


def write_web(books, folder):
    pictures = folder / "pictures"
    pictures.mkdir(parents=True)
    shutil.copyfile(SOURCES / "style.css", folder / "style.css")
    for language, pages in books.items():
        up = "" if language == "en" else "../"
        place = folder if language == "en" else folder / language
        place.mkdir(exist_ok=True)
        for page in pages:
            for picture in page.pictures():
                shutil.copyfile(picture, pictures / picture.name)
            links = nested(pages, lambda p, here=page: '<li><a href="{}.html"{}>{}</a>\n'.format(
                p.name, ' aria-current="page"' if p is here else "", html.escape(p.title)))
            others = "".join(
                f'<p><a lang="{code}" href="{up}{"" if code == "en" else code + "/"}{page.name}.html">{name}</a></p>\n'
                for code, (name, _) in LANGUAGES.items() if code != language)
            (place / f"{page.name}.html").write_text(
                f'<!DOCTYPE html>\n<html lang="{language}">\n<head>\n<meta charset="utf-8">\n'
                '<meta name="viewport" content="width=device-width, initial-scale=1">\n'
                '<meta name="color-scheme" content="light dark">\n'
                f'<title>{html.escape(page.title)} - {TITLES[language]}</title>\n'
                f'<link rel="stylesheet" href="{up}style.css">\n</head>\n<body class="with-nav">\n<main>\n'
                f'<h1>{html.escape(page.title)}</h1>{page.markup(up + "pictures/")}</main>\n'
                f'<nav>\n{links}{others}</nav>\n</body>\n</html>\n', encoding="utf-8")


# ---- plain text


def words(element):
    return re.sub(r"\s+", " ", "".join(element.itertext())).strip()


def plain(page):
    """The title and the body, a paragraph a line."""
    lines = [page.title, ""]

    def walk(parent):
        term = ""
        for child in parent:
            if child.tag == "h2":
                lines.extend(["", words(child), ""])
            elif child.tag in ("ul", "ol", "dl"):
                walk(child)
                lines.append("")
            elif child.tag == "dt":
                term = words(child)
            elif child.tag == "dd":
                lines.append(f"{term} - {words(child)}")
            elif child.tag == "li":
                lines.append(f"• {words(child)}")
            elif child.tag == "pre":
                lines.extend(child.text.split("\n"))
            elif words(child):
                lines.extend([words(child), ""])

    walk(page.body)
    return re.sub(r"\n{3,}", "\n\n", "\n".join(lines)).strip() + "\n"


def write_text(pages, file):
    """A form feed begins a page, its context number is a line of its own; 0 where it has none."""
    file.write_text("".join(f"\f{page.context or 0}\n{plain(page)}" for page in pages), encoding="utf-8")


# ---- man page


def roff(text):
    text = text.replace("\\", "\\e").replace("-", "\\-").replace("~", "\\(ti").replace("^", "\\(ha")
    return text.replace("`", "\\(ga").replace("'", "\\(aq")


def inline(element):
    def part(text):
        return roff(re.sub(r"\s+", " ", text or ""))

    fonts = {"code": "B", "kbd": "B", "strong": "B", "em": "I"}
    out = part(element.text)
    for child in element:
        font = fonts.get(child.tag)
        out += (f"\\f{font}{inline(child)}\\fR" if font else inline(child)) + part(child.tail)
    return out


def line(text):
    text = text.strip()
    return ("\\&" + text if text[:1] in (".", "'") else text) + "\n"


def man_blocks(elements):
    out = ""
    for child in elements:
        if child.tag == "h2":
            out += f'.SH "{roff(words(child).upper())}"\n'
        elif child.tag == "p":
            out += ".PP\n" + line(inline(child))
        elif child.tag == "pre":
            out += ".PP\n.nf\n" + "".join(line(roff(text)) for text in child.text.split("\n")) + ".fi\n"
        elif child.tag == "dl":
            out += man_blocks(child)
        elif child.tag == "dt":
            out += ".TP\n" + line("\\fB" + inline(child).replace("\\fR", "\\fB") + "\\fR")
        elif child.tag == "dd":
            out += line(inline(child))
        else:
            raise ValueError(f"man page: no way to write <{child.tag}>")
    return out


def write_man(pages, file):
    named = {page.name: page for page in pages}
    purpose, *body = named["command"].body
    keys = named["terminal"].body.find("dl")
    version = subprocess.run([ROOT / "scripts/version.sh"], capture_output=True, text=True, check=True).stdout.strip()
    date = time.strftime("%Y-%m-%d", time.gmtime(EPOCH)) if EPOCH else ""
    at = next(i for i, element in enumerate(body) if words(element) == "Exit status")
    file.write_text(
        f'\'\\" -*- coding: UTF-8 -*-\n.TH ROWLARK 1 "{date}" "Rowlark {version}" "User Commands"\n'
        f".SH NAME\nrowlark \\- {inline(purpose)}\n{man_blocks(body[:at])}"
        f".SH KEYS\n{man_blocks(keys)}{man_blocks(body[at:])}", encoding="utf-8")


# ---- compiled HTML help


def sitemap(body):
    return ('<!DOCTYPE HTML PUBLIC "-//IETF//DTD HTML//EN">\n<HTML>\n<HEAD></HEAD>\n<BODY>\n' + body + "</BODY>\n</HTML>\n")


def entry(*parameters):
    lines = "".join(f'<param name="{name}" value="{html.escape(value)}">\n' for name, value in parameters)
    return f'<LI><OBJECT type="text/sitemap">\n{lines}</OBJECT>\n'


def index(pages):
    places = {}
    for page in pages:
        for keyword in page.keywords:
            places.setdefault(keyword, []).append(page)
    body = ""
    for keyword in sorted(places, key=str.casefold):
        found = [pair for page in places[keyword] for pair in (("Name", page.title), ("Local", f"{page.name}.html"))]
        body += entry(("Name", keyword), *found)
    return sitemap(f"<UL>\n{body}</UL>\n")


def write_chm(pages, file):
    language = pages[0].language
    title, code = TITLES[language], LANGUAGES[language][1]
    with tempfile.TemporaryDirectory() as name:
        folder = Path(name)

        def put(file_name, text):
            # The compiler and the help window know the code page of the language, and no UTF-8 outside pages.
            (folder / file_name).write_bytes(text.encode("cp1252", "xmlcharrefreplace"))

        files = ["style.css"]
        shutil.copyfile(SOURCES / "style.css", folder / "style.css")
        for page in pages:
            for picture in page.pictures():
                if picture.name not in files:
                    files.append(picture.name)
                    shutil.copyfile(picture, folder / picture.name)
            files.append(f"{page.name}.html")
            put(f"{page.name}.html",
                '<!DOCTYPE html PUBLIC "-//W3C//DTD HTML 4.01//EN" "http://www.w3.org/TR/html4/strict.dtd">\n'
                f'<html lang="{language}">\n<head>\n<meta http-equiv="Content-Type" content="text/html; charset=windows-1252">\n'
                f"<title>{html.escape(page.title)}</title>\n"
                '<link rel="stylesheet" type="text/css" href="style.css">\n</head>\n<body>\n'
                f"<h1>{html.escape(page.title)}</h1>{page.markup()}</body>\n</html>\n")
        put("contents.hhc", sitemap(nested(
            pages, lambda page: entry(("Name", page.title), ("Local", f"{page.name}.html")), "<UL>\n", "</UL>\n")))
        put("index.hhk", index(pages))
        first = f"{pages[0].name}.html"
        put("help.hhp",
            "[OPTIONS]\nCompatibility=1.1 or later\nCompiled file=help.chm\nContents file=contents.hhc\n"
            f"Index file=index.hhk\nDefault topic={first}\nDefault Window=main\nFull-text search=Yes\n"
            f"Language=0x{code:x}\nTitle={title}\nBinary TOC=No\nBinary Index=No\n\n"
            f'[WINDOWS]\nmain="{title}","contents.hhc","index.hhk","{first}","{first}",,,,,0x63520,220,0x387e,,,,,,,,0\n\n'
            "[FILES]\n" + "".join(f"{one}\n" for one in files))
        run = subprocess.run(["chmcmd", "--no-html-scan", "help.hhp"], cwd=folder, capture_output=True, text=True)
        if run.returncode != 0 or not (folder / "help.chm").exists():
            raise SystemExit(f"chmcmd failed:\n{run.stdout}{run.stderr}")
        subprocess.run(["chmls", "extractall", "help.chm", "parts"], cwd=folder, check=True, capture_output=True)
        contexts = {page.context: f"{page.name}.html" for page in pages if page.context is not None}
        archive = Archive((folder / "help.chm").read_bytes())
        archive.set_contexts(contexts, (folder / "parts/#STRINGS").read_bytes())
        archive.set_time(EPOCH)
        file.write_bytes(archive.bytes())


class Archive:
    """A compiled help file, for what its compiler can not do: it gives contexts the paths of the machine that it runs
    on, and writes the time of day. Both are put right here: files can lie uncompressed behind the compressed ones."""

    CHUNK = 0x1000
    STEP = 5  # entries of a chunk between those that its table of offsets names

    def __init__(self, data):
        self.header = bytearray(data[:0x60])
        tail, _, directory, self.content_at = struct.unpack_from("<QQQ8xQ", data, 0x38)
        self.tail = bytearray(data[tail:tail + 0x18])
        self.itsp = bytearray(data[directory:directory + 0x54])
        self.content = bytearray(data[self.content_at:])
        first, last = struct.unpack_from("<II", self.itsp, 0x20)
        self.entries = {}  # name: section, offset, length
        for number in range(first, last + 1):
            at = directory + 0x54 + number * self.CHUNK
            free, = struct.unpack_from("<I", data, at + 4)
            end, at = at + self.CHUNK - free, at + 20
            while at < end:
                size, at = self.take(data, at)
                name, at = data[at:at + size].decode(), at + size
                numbers = []
                for _ in range(3):
                    number_, at = self.take(data, at)
                    numbers.append(number_)
                self.entries[name] = tuple(numbers)

    @staticmethod
    def take(data, at):
        value = 0
        while True:
            value = value << 7 | data[at] & 0x7F
            at += 1
            if data[at - 1] < 0x80:
                return value, at

    @staticmethod
    def number(value):
        groups = [value & 0x7F]
        while value := value >> 7:
            groups.append(value & 0x7F | 0x80)
        return bytes(reversed(groups))

    def put(self, name, data):
        self.entries[name] = (0, len(self.content), len(data))
        self.content += data

    def set_contexts(self, contexts, strings):
        table = b""
        for context, topic in sorted(contexts.items()):
            name = topic.encode() + b"\0"
            if len(strings) % 0x1000 + len(name) > 0x1000:  # no text lies in two blocks
                strings += bytes(-len(strings) % 0x1000)
            table += struct.pack("<II", context, len(strings))
            strings += name
        self.put("/#STRINGS", strings)
        self.put("/#IVB", struct.pack("<I", len(table)) + table)

    def set_time(self, seconds):
        struct.pack_into(">I", self.header, 0x10, seconds & 0xFFFFFFFF)
        _, at, _ = self.entries["/#SYSTEM"]
        if struct.unpack_from("<HH", self.content, at + 4) != (10, 4):
            raise ValueError("the time is not the first entry of #SYSTEM")
        struct.pack_into("<I", self.content, at + 8, seconds & 0xFFFFFFFF)

    def chunks(self, entries, header):
        """Entries, each with its name first, in chunks behind a header of that many bytes."""
        filled, names, offsets = [], [], []
        for name, entry_ in entries:
            table = 2 + 2 * (len(offsets) // self.STEP)
            if not filled or header + len(filled[-1][0]) + len(entry_) + table > self.CHUNK:
                filled.append([b"", offsets := []])
                names.append(name)
            offsets.append(len(filled[-1][0]))
            filled[-1][0] += entry_
        result = []
        for body, at in filled:
            table = struct.pack("<H", len(at))
            for offset in at[self.STEP::self.STEP]:
                table = struct.pack("<H", offset) + table
            free = self.CHUNK - header - len(body)
            result.append((free, body + bytes(free - len(table)) + table))
        return names, result

    def bytes(self):
        # As readers look for them: by names without regard to case, those of the system's own files last.
        order = sorted(self.entries, key=lambda name: (name.startswith("::"), name.lower()))
        texts = {name: name.encode() for name in order}
        names, leaves = self.chunks(
            [(texts[name], self.number(len(texts[name])) + texts[name] + b"".join(map(self.number, self.entries[name])))
             for name in order], 20)
        parts = [struct.pack("<4sIIii", b"PMGL", free, 0, i - 1, i + 1 if i + 1 < len(leaves) else -1) + body
                 for i, (free, body) in enumerate(leaves)]
        if len(leaves) > 1:
            _, roots = self.chunks(
                [(name, self.number(len(name)) + name + self.number(i)) for i, name in enumerate(names)], 8)
            (free, body), = roots
            parts.append(struct.pack("<4sI", b"PMGI", free) + body)
        struct.pack_into("<IiII", self.itsp, 0x18, 1 + (len(leaves) > 1), len(leaves) if len(leaves) > 1 else -1, 0,
                         len(leaves) - 1)
        struct.pack_into("<I", self.itsp, 0x2C, len(parts))
        directory = bytes(self.itsp) + b"".join(parts)
        start = len(self.header) + len(self.tail)
        struct.pack_into("<QQQQQ", self.header, 0x38, len(self.header), len(self.tail), start, len(directory),
                         start + len(directory))
        struct.pack_into("<Q", self.tail, 8, start + len(directory) + len(self.content))
        return bytes(self.header) + bytes(self.tail) + directory + bytes(self.content)


def main(output, only=None):
    output = Path(output)
    books = {language: read(language) for language in LANGUAGES}
    if only == "web":
        write_web(books, output)
        for page in books["en"]:
            if page.context:
                for place in output, *(output / language for language in LANGUAGES if language != "en"):
                    shutil.copyfile(place / f"{page.name}.html", place / f"{page.context}.html")
        return
    texts = output if only else output / "text"
    texts.mkdir(parents=True, exist_ok=True)
    for language, pages in books.items():
        write_text(pages, texts / f"vt_rlk_{language}.txt")
    if only:
        return
    for language, pages in books.items():
        write_chm(pages, output / f"vt_rlk_{language}.chm")
    shutil.rmtree(output / "web", ignore_errors=True)
    write_web(books, output / "web")
    write_man(books["en"], output / "rowlark.1")


if __name__ == "__main__":
    if len(sys.argv) not in (2, 3) or sys.argv[2:] not in ([], ["text"], ["web"]):
        raise SystemExit(__doc__)
    main(*sys.argv[1:])

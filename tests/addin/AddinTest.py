"""The add-in workbook, read back by others: the compound file by olefile, the sources by libgsf, what the program compresses
by the format's description. AddinTest.py PROJECT_FOLDER"""

import io
import os
import random
import re
import shutil
import struct
import subprocess
import sys
import tempfile
import unittest
import zipfile
from pathlib import Path
from xml.etree import ElementTree

try:
    import olefile
except ImportError:
    olefile = None
if not olefile or not shutil.which("gsf-vba-dump"):
    sys.exit(77)  # skipped, without the packages of [packages]

PROJECT = Path(sys.argv.pop(1))
sys.path.insert(0, str(PROJECT / "addin"))
sys.dont_write_bytecode = True
import compound_file  # noqa: E402
import vba_project  # noqa: E402
from compression import compress  # noqa: E402


def decompress(container):
    assert container[0] == 1
    result, at = bytearray(), 1
    while at < len(container):
        header = int.from_bytes(container[at:at + 2], "little")
        end, at, start = at + (header & 0xFFF) + 3, at + 2, len(result)
        assert header >> 12 & 7 == 3 and end <= len(container)
        if not header >> 15:
            result += container[at:end]
            at = end
        while at < end:
            flags, at = container[at], at + 1
            for bit in range(8):
                if at < end and not flags >> bit & 1:
                    result.append(container[at])
                    at += 1
                elif at < end:
                    token, at = int.from_bytes(container[at:at + 2], "little"), at + 2
                    length_bits = next(12 - bits for bits in range(9) if 16 << bits >= len(result) - start)
                    for _ in range((token & (1 << length_bits) - 1) + 3):
                        assert len(result) - (token >> length_bits) - 1 >= start
                        result.append(result[-(token >> length_bits) - 1])
        assert len(result) - start == 4096 or at == len(container) and len(result) - start < 4096
    return bytes(result)


def streams(file):
    with olefile.OleFileIO(io.BytesIO(file), raise_defects=olefile.DEFECT_POTENTIAL) as ole:
        return {"/".join(path): ole.openstream(path).read() for path in ole.listdir()}


def sources(path):
    """The modules as libgsf reads them; its program may print a few bytes more behind the end of each."""
    dump = subprocess.run(["gsf-vba-dump", path], capture_output=True, check=True).stdout.decode("latin-1")
    return dict(re.findall(r'<module name="(.*?)">\s*<!\[CDATA\[(.*?)\]\]>', dump.replace("\r\n", "\n"), re.DOTALL))


class Formats(unittest.TestCase):
    def test_compression_is_undone(self):
        dice = random.Random(1)
        noise = dice.randbytes(3 * 4096)
        inputs = [b"", noise, noise[:4096] + b"a" * 4096, noise[:3000], b"ab" * 100 + noise[:2000]]
        inputs += [text[:length] for length in (1, 2, 3, 4, 15, 16, 17, 33, 4095, 4096, 4097, 8192, 10000)
                   for text in (b"a" * 10000, b"abc" * 4000, bytes(range(256)) * 40)]
        inputs += [bytes(dice.choices(b"abcd\r\n", k=dice.randrange(9000))) for _ in range(20)]
        for data in inputs:
            self.assertEqual(decompress(compress(data)), data)
        self.assertLess(len(compress(b"a" * 4096)), 10)
        with self.assertRaises(ValueError):
            compress(noise[:4000])  # would get zeros at its end

    def test_compound_files_know_their_sectors(self):
        for sectors in (1, *range(120, 130), 1000):
            file = compound_file.write({"stream": bytes(512 * sectors)})
            count, = struct.unpack_from("<I", file, 44)
            places = struct.unpack_from("<109I", file, 76)
            table = [entry for place in places[:count] for entry in struct.unpack_from("<128I", file, 512 * (place + 1))]
            self.assertEqual(set(places[count:]), {0xFFFFFFFF})
            self.assertEqual([at for at, entry in enumerate(table) if entry == 0xFFFFFFFD], list(places[:count]))
            self.assertEqual(table.index(0xFFFFFFFF) if 0xFFFFFFFF in table else len(table), len(file) // 512 - 1)

    def test_compound_files_hold_streams_of_all_sizes(self):
        sizes = (0, 1, 63, 64, 65, 511, 512, 4095, 4096, 4097, 70000, 200000)
        content = {f"{'s' * (size % 5)}tream {size}": random.Random(size).randbytes(size) for size in sizes}
        file = compound_file.write({**content, "deep": {"deeper": {"B": b"B", "a": b"a"}}, "empty": {}})
        self.assertEqual(streams(file), {**content, "deep/deeper/B": b"B", "deep/deeper/a": b"a"})
        with olefile.OleFileIO(io.BytesIO(file)) as ole:
            def names(entry):
                if entry == 0xFFFFFFFF:
                    return []
                entry = ole.direntries[entry]
                return [*names(entry.sid_left), (len(entry.name), entry.name.upper()), *names(entry.sid_right)]
            for storage in ole.direntries:
                if storage:
                    self.assertEqual(names(storage.sid_child), sorted(names(storage.sid_child)))
        for wrong in ({"a/b": b""}, {"": b""}, {"a" * 32: b""}, {"large": bytes(8 << 20)}):
            with self.assertRaises(ValueError):
                compound_file.write(wrong)


class Addin(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(cls.folder.cleanup)
        cls.path = cls.make("a", TZ="Asia/Tokyo", PYTHONHASHSEED="1")
        cls.parts = {entry: zipfile.ZipFile(cls.path).read(entry) for entry in zipfile.ZipFile(cls.path).namelist()}
        cls.source = (PROJECT / "addin/Rowlark.bas").read_text("ascii")

    @classmethod
    def make(cls, name, **environment):
        output = Path(cls.folder.name) / name / "deep"
        subprocess.run([PROJECT / "scripts/addin.sh", output], check=True, cwd="/", env={**os.environ, **environment})
        return output / "vt_rowlark.xlam"

    def test_two_builds_are_equal(self):
        again = self.make("b", TZ="America/Lima", PYTHONHASHSEED="2", SOURCE_DATE_EPOCH="1000000000")
        later = self.make("c", SOURCE_DATE_EPOCH="1700000000")
        self.assertEqual(self.make("d", SOURCE_DATE_EPOCH="1000000000").read_bytes(), again.read_bytes())
        self.assertEqual(zipfile.ZipFile(later).infolist()[0].date_time, (2023, 11, 14, 22, 13, 20))

    def test_parts_are_linked_and_have_types(self):
        trees = {part: ElementTree.fromstring(content) for part, content in self.parts.items()
                 if part.endswith((".xml", ".rels"))}
        types = {element.get("PartName", element.get("Extension")): element.get("ContentType")
                 for element in trees["[Content_Types].xml"]}
        self.assertEqual(types["/xl/workbook.xml"], "application/vnd.ms-excel.addin.macroEnabled.main+xml")
        linked = {"[Content_Types].xml"} | {part for part in trees if part.endswith(".rels")}
        for part in linked - {"[Content_Types].xml"}:
            linked |= {os.path.normpath(f"{part}/../../{link.get('Target')}") for link in trees[part]}
        self.assertEqual(linked, set(self.parts))
        self.assertLessEqual({f"/{part}" for part in self.parts if part.startswith(("xl/w", "xl/v"))}, set(types))
        names = re.findall(rb'codeName="(\w+)"', self.parts["xl/workbook.xml"] + self.parts["xl/worksheets/sheet1.xml"])
        self.assertEqual(names, [b"ThisWorkbook", b"Sheet1"])
        core = {element.tag.split("}")[1]: element.text for element in trees["docProps/core.xml"]}
        version = subprocess.run([PROJECT / "scripts/version.sh"], capture_output=True, text=True).stdout.strip()
        self.assertEqual((core["title"], core["version"]), ("Vantrel Rowlark", version))

    def test_the_project_holds_the_source_for_any_excel_to_compile(self):
        modules = sources(self.path)
        self.assertEqual(modules.pop("Rowlark")[:len(self.source)], self.source)
        for name, base in (("ThisWorkbook", "0{00020819-"), ("Sheet1", "0{00020820-")):
            self.assertRegex(modules.pop(name), rf'^Attribute VB_Name = "{name}"\nAttribute VB_Base = "{re.escape(base)}')
        self.assertEqual(modules, {})
        project = streams(self.parts["xl/vbaProject.bin"])
        self.assertEqual(project["VBA/_VBA_PROJECT"], b"\xCC\x61\xFF\xFF\0\0\0")
        self.assertEqual(decompress(project["VBA/Rowlark"]).decode(), self.source.replace("\n", "\r\n"))
        for name in ("Rowlark", "Sheet1", "ThisWorkbook"):
            self.assertIn(name.encode() + b"\0" + name.encode("utf-16-le") + b"\0\0", project["PROJECTwm"])
        # Each record of the directory but the version tells its length.
        directory, records, at = decompress(project["VBA/dir"]), [], 0
        while at < len(directory):
            kind, length = int.from_bytes(directory[at:at + 2], "little"), int.from_bytes(directory[at + 2:at + 6], "little")
            records.append((kind, directory[at + 6:at + 6 + length]))
            at += 6 + length + (2 if kind == 9 else 0)
        self.assertEqual((records[0], records[-1]), ((1, b"\1\0\0\0"), (0x10, b"")))
        self.assertEqual([data for kind, data in records if kind == 0x19], [b"ThisWorkbook", b"Sheet1", b"Rowlark"])
        self.assertEqual([kind for kind, _ in records if kind in (0x21, 0x22)], [0x22, 0x22, 0x21])
        self.assertEqual({data for kind, data in records if kind == 0x31}, {bytes(4)})

    def test_the_project_is_open_to_all(self):
        text = streams(self.parts["xl/vbaProject.bin"])["PROJECT"].decode("cp1252")
        self.assertTrue(all(line.endswith("\r") for line in text.split("\n")[:-1]))
        fields = dict(re.findall(r'^(\w+)="(.*)"\r$', text, re.MULTILINE))
        # As the format's own example has them, which protects nothing either.
        example = {"ID": "{917DED54-440B-4FD1-A5C1-74ACF261E600}", "CMG": "0705D8E3D8EDDBF1DBF1DBF1DBF1",
                   "DPB": "0E0CD1ECDFF4E7F5E7F5E7", "GC": "1517CAF1D6F9D7F9D706"}
        for field in ("CMG", "DPB", "GC"):
            self.assertEqual(self.reveal(fields["ID"], fields[field]), self.reveal(example["ID"], example[field]))

    def reveal(self, project_id, field):
        """What tells how a project is protected."""
        data = bytes.fromhex(field)
        seed, version, key = data[0], data[0] ^ data[1], data[0] ^ data[2]
        self.assertEqual((version, key), (2, sum(project_id.encode()) & 0xFF))
        plain, last, last_but_one = [key], data[2], data[1]
        for byte in data[3:]:
            plain.append(byte ^ (last_but_one + plain[-1] & 0xFF))
            last, last_but_one = byte, last
        plain = bytes(plain[1 + (seed & 6) // 2:])
        self.assertEqual(int.from_bytes(plain[:4], "little"), len(plain) - 4)
        return plain[4:]

    def test_the_ribbon_runs_the_macros_of_the_menu(self):
        old, new = (self.parts[f"customUI/customUI{number}.xml"].decode() for number in ("", "14"))
        self.assertEqual(old.replace("2006/01/customui", "2009/07/customui"), new)
        self.assertNotEqual(old, new)
        subs = re.findall(r"^Sub (\w+)\(", self.source, re.MULTILINE)
        self.assertLessEqual(set(re.findall(r'(?:onLoad|getLabel|onAction)="(\w+)"', new)), set(subs))
        buttons = re.findall(r'<button id="(\w+)" tag="(.*?)\|(.*?)"', new)
        self.assertLessEqual({macro for macro, _, _ in buttons}, set(subs))
        menu = (PROJECT / "src/runtime/Menu.h").read_text()
        entries = re.findall(r'\{u"(Menu\.\w+)", u"(.*?)", Macro::(\w+)', menu)
        self.assertEqual([(key, text.replace("&amp;", "&"), macro) for macro, key, text in buttons],
                         [(key, text, f"VantrelRLK_{macro}") for key, text, macro in entries])

    def test_refuses_what_no_excel_would_take(self):
        module = vba_project.Module("A", 'Attribute VB_Name = "A"\n')
        for name, source in (("A", ""), ("B", module.source)):
            with self.assertRaises(ValueError):
                vba_project.Module(name, source)
        with self.assertRaises(ValueError):
            vba_project.write("a", "{}", [module])


if __name__ == "__main__":
    unittest.main()

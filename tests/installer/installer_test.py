"""Set-up under Wine: install, use, upgrade, refuse, remove, for one user and for everybody. Registry and files are compared
before and after.

    cmake/xvfb.sh python3 tests/installer/installer_test.py BUILD-FOLDER [TEST...]

ROWLARK_SETUP is the kind of program that set-up is, by NSIS's name; the one that is shipped (x86-unicode) needs a Wine for
32-bit programs. ROWLARK_CHROOT is a command that runs another one where such a Wine is, with the same files in sight.
"""

import os
import pathlib
import re
import shlex
import shutil
import subprocess
import sys
import tempfile
import time
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
BUILD = pathlib.Path(sys.argv.pop(1)).resolve()
TARGET = os.environ.get("ROWLARK_SETUP", "amd64-unicode")
CHROOT = shlex.split(os.environ.get("ROWLARK_CHROOT", ""))
PREFIX = BUILD / f"wine-installer-{TARGET}"
# The folders of the system's programs, by the bitness of the library that they load.
SYSTEMS = {"x64": "system32"} if TARGET == "amd64-unicode" else {"x64": "system32", "x86": "syswow64"}
WINE = [*CHROOT, ROOT / "cmake/wine.sh", PREFIX]
DRIVE = PREFIX / "drive_c"

PRODUCT = r"Software\Vantrel\Office Addins\Rowlark\1.0"
UNINSTALL = r"Software\Microsoft\Windows\CurrentVersion\Uninstall\Vantrel Rowlark"
CLASS_ID = "{5082DB8A-0A28-4C7F-BCB4-39A3E8746B0A}"

# Exit statuses of set-up.
FAILED, NEWER, IN_USE, USAGE, OTHER_SCOPE = 2, 3, 4, 6, 7


def wine(*arguments, **options):
    return subprocess.run([*WINE, *arguments], timeout=120, capture_output=True, text=True, **options)


def on_windows(path):
    return "C:\\" + str(pathlib.Path(path).relative_to(DRIVE)).replace("/", "\\")


def set_value(key, name, text, kind="REG_SZ"):
    wine("reg", "add", key, *(("/v", name) if name else ("/ve",)), "/t", kind, "/d", text, "/f", check=True)


def delete_key(key):
    wine("reg", "delete", key, "/f", check=True)


def end_system():
    """With its end it writes its registry."""
    for switch in "-k", "-w":
        subprocess.run([*CHROOT, "env", f"WINEPREFIX={PREFIX}", "/usr/lib/wine/wineserver", switch], timeout=60)


def registry():
    """The keys of the user, and those of programs of the machine, with their values: {key: {name: value}}."""
    end_system()
    keys = {}
    for hive, file in ("HKLM", "system.reg"), ("HKCU", "user.reg"):
        for line in (PREFIX / file).read_text(encoding="utf-8", errors="replace").replace("\\\n  ", "").splitlines():
            if line.startswith("["):
                values = keys.setdefault(hive + "\\" + unescaped(line[1 : line.rindex("]")]), {})
            elif match := re.match(r'("(?:[^"\\]|\\.)*"|@)=(.*)', line):
                values[unescaped(match[1].strip('"'))] = unescaped(match[2][1:-1]) if match[2][0] == '"' else match[2]
    return {key: values for key, values in keys.items() if not key.startswith(r"HKLM\System")}


def unescaped(text):
    return re.sub(r"\\(.)", r"\1", text)


def state():
    """The registry, and what lies on the drive but for the system's own and temporary files."""
    files = (str(path.relative_to(DRIVE)) for path in DRIVE.rglob("*"))
    return registry() | {file: {} for file in files if not re.match(r"windows/|users/\w+/Temp/", file)}


def stage(folder):
    """What scripts/installer.sh gathers. Set-up looks into none of it, nor does 64-bit Wine load the 32-bit library."""
    built_32 = BUILD.parent / "win32/vtrlk_runtime.dll"
    built_64 = BUILD / "vtrlk_runtime.dll"
    for cpu, library in ("x64", built_64), ("x86", built_32 if built_32.exists() else built_64):
        (folder / cpu).mkdir(parents=True)
        shutil.copy(library, folder / cpu)
        for language in ROOT.glob("languages/*.lng"):
            shutil.copy(language, folder / cpu)
    for name in "vt_rowlark.xlam", "vt_rlk_en.chm":
        (folder / name).write_text(name)


class Excel:
    """An Excel that runs, with files open."""

    def __init__(self, *open_files):
        self.command = [*WINE, BUILD / "installer_excel.exe", *map(on_windows, open_files)]

    def __enter__(self):
        self.process = subprocess.Popen(self.command, stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
        assert self.process.stdout.readline() == "open\n"

    def __exit__(self, *_):
        self.process.communicate()


class InstallerTest(unittest.TestCase):
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        unfinished = PREFIX / ".unfinished"
        if unfinished.exists():
            end_system()
            shutil.rmtree(PREFIX)
        cls.own = own_folder() / "AppData/Local/Programs/Vantrel Rowlark"
        cls.common = DRIVE / "Program Files/Vantrel Rowlark"
        unfinished.touch()
        # Excel 2010, of which a set-up for everybody finds no folder.
        set_value(r"HKLM\Software\Microsoft\Office\14.0\Excel\InstallRoot", "Path", "C:\\Office14\\")
        cls.folder = pathlib.Path(cls.enterClassContext(tempfile.TemporaryDirectory(dir=BUILD)))
        cls.setups = {}
        for version in "1.2.0", "1.10.0":
            contents = cls.folder / version
            stage(contents)
            name = "dropped.txt" if version == "1.2.0" else "added.txt"
            (contents / name).write_text("only in this version")
            cls.setups[version] = cls.folder / f"rowlark-{version}.exe"
            make = [ROOT / "packaging/windows/make-setup.sh", contents, cls.setups[version], version, TARGET]
            subprocess.run(make, check=True)

    def install(self, *switches, version="1.10.0", expect=0):
        self.assertEqual(wine(self.setups[version], "/S", *switches).returncode, expect)

    def remove(self, folder, *switches):
        """As the system's list of programs does it: the uninstaller goes on as a copy of itself."""
        self.assertEqual(wine(folder / "uninstall.exe", "/S", *switches).returncode, 0)
        end = time.monotonic() + 60
        while folder.exists() and time.monotonic() < end:
            time.sleep(0.05)
        self.assertFalse(folder.exists())

    def expect_same(self, found, expected):
        def lines(keys):
            return {(key, *value) for key, values in keys.items() for value in (("", ""), *values.items())}

        self.assertEqual((lines(found) - lines(expected), lines(expected) - lines(found)), (set(), set()))

    def expect_installed(self, hive, folder):
        """Every file, and both libraries with the keys that programs of each bitness look for; returns the registry."""
        found = {path.relative_to(folder) for path in folder.rglob("*") if path.is_file()}
        staged = {path.relative_to(self.folder / "1.10.0") for path in (self.folder / "1.10.0").rglob("*") if path.is_file()}
        self.assertEqual(found, staged | {pathlib.Path("uninstall.exe")})
        keys = registry()
        for cpu, view in ("x64", ""), ("x86", "Wow6432Node\\"):
            server = keys[rf"{hive}\Software\Classes\{view}CLSID\{CLASS_ID}\InprocServer32"]
            self.assertEqual(server["@"], on_windows(folder / cpu / "vtrlk_runtime.dll"))
        entry = keys[hive + "\\" + UNINSTALL]
        self.assertEqual((entry["DisplayVersion"], entry["Publisher"]), ("1.10.0", "Vantrel"))
        size = sum(path.stat().st_size for path in folder.rglob("*") if path.is_file()) / 1024
        self.assertAlmostEqual(int(entry["EstimatedSize"].removeprefix("dword:"), 16), size, delta=size / 10)
        return keys

    def expect_to_work(self, folder, language, cpus):
        for cpu in cpus:
            told = use(SYSTEMS[cpu])
            self.assertEqual(told.returncode, 42, told.stdout)
            library, help_file = on_windows(folder / cpu) + "\\", on_windows(folder / "vt_rlk_en.chm")
            self.assertEqual(told.stdout.split("\n"), [library, language + ".lng", help_file, ""])

    def test_brings_nothing_of_where_it_was_built(self):
        self.assertNotIn(os.fsencode(ROOT), (BUILD / "vtrlk_runtime.dll").read_bytes())

    def test_for_one_user(self):
        office = r"HKCU\Software\Microsoft\Office"
        set_value(office + r"\15.0\Excel\Options", "FirstRun", "0")
        options = office + r"\16.0\Excel\Options"
        set_value(options, "OPEN", '/R "solver.xlam"')
        set_value(options, "OPEN1", "%APPDATA%\\tools.xlam", "REG_EXPAND_SZ")
        # With this key the user's classes have a part for 32-bit programs here, as they have on Windows.
        wine("reg", "add", r"HKCU\Software\Classes\Wow6432Node", "/f", check=True)
        before = state()
        entry = f'/R "{on_windows(self.own)}\\vt_rowlark.xlam"'

        # What can not be written is no installation, and leaves nothing behind, of an older version either.
        self.install(version="1.2.0")
        self.assertTrue((self.own / "dropped.txt").exists())
        stumbling_block = self.own / "added.txt"
        stumbling_block.symlink_to("/no/such/folder/file")
        self.install(expect=FAILED)
        self.assertEqual(list(self.own.rglob("*")), [stumbling_block])
        shutil.rmtree(self.own.parent)
        self.expect_same(state(), before)

        self.install("/Language=german", version="1.2.0")
        set_value(options, "OPEN3", "later.xlam", "REG_EXPAND_SZ")
        set_value(options, "OPEN4", '/R "D:\\vt_rowlark.xla"')  # switched on by hand
        set_value(options, "OPEN5", "last.xlam")
        self.install()  # over the older version, in its language
        keys = self.expect_installed("HKCU", self.own)
        others = {name: before[options][name] for name in ("OPEN", "OPEN1")}
        later = 'str(2):"later.xlam"'
        self.assertEqual(keys[options], {**others, "OPEN2": later, "OPEN3": "last.xlam", "OPEN4": entry})
        for version in "14.0", "15.0":
            self.assertEqual(keys[rf"{office}\{version}\Excel\Options"]["OPEN"], entry)

        # Windows shows the classes of the user among those of the machine; here they are not looked for.
        classes = [rf"HKLM\Software\Classes\CLSID\{CLASS_ID}", r"HKLM\Software\Classes\vtrlk_runtime.clsVTRLKRuntime"]
        for key, name in zip(classes, ("InprocServer32", "Clsid")):
            key = key + "\\" + name
            set_value(key, "", keys[key.replace("HKLM", "HKCU")]["@"])
        self.expect_to_work(self.own, "german", ["x64"])
        for key in classes:
            delete_key(key)

        self.install(version="1.2.0", expect=NEWER)
        self.install("/AllUsers", expect=OTHER_SCOPE)
        self.install("/Language=klingon", expect=USAGE)
        self.install("/D=C:\\Rowlark", expect=USAGE)
        with Excel():
            self.install(expect=IN_USE)
        with Excel(self.own / "vt_rowlark.xlam"):
            self.install(expect=IN_USE)
        self.expect_same(registry(), keys)

        # Switched off by the user, the add-in stays among those that Excel knows.
        set_value(office + r"\15.0\Excel\Add-in Manager", on_windows(self.own / "vt_rowlark.xlam"), "")
        set_value("HKCU\\" + PRODUCT, "SearchFormPosSize", "1;2")
        configuration = own_folder() / "AppData/Roaming/Vantrel/Rowlark/rowlark.cfg"
        configuration.parent.mkdir(parents=True, exist_ok=True)
        configuration.write_text("")
        self.remove(self.own)
        after = state()
        self.assertEqual(after.pop("HKCU\\" + PRODUCT), {"SearchFormPosSize": "1;2"})
        self.assertIn(str(configuration.relative_to(DRIVE)), after)
        self.install()
        for name in "OPEN2", "OPEN3":
            wine("reg", "delete", options, "/v", name, "/f", check=True)
        self.remove(self.own, "/RemoveSettings")
        self.expect_same(state(), before)

    def test_for_everybody(self):
        start_up = DRIVE / "Program Files/Office/XLSTART"
        start_up.mkdir(parents=True, exist_ok=True)
        set_value(r"HKLM\Software\Microsoft\Office\16.0\Excel\InstallRoot", "Path", on_windows(start_up.parent))
        options = r"HKCU\Software\Microsoft\Office\16.0\Excel\Options"
        set_value(options, "OPEN", '/R "solver.xlam"')
        before = state()

        set_value(options, "OPEN1", '/R "D:\\vt_rowlark.xlam"')  # switched on by hand
        self.install("/AllUsers", "/Language=french", version="1.2.0")
        self.assertEqual(registry()[options], {"OPEN": '/R "solver.xlam"'})
        self.install("/Language=polish")  # for everybody again
        keys = self.expect_installed("HKLM", self.common)
        self.assertTrue((start_up / "vt_rowlark.xlam").exists())
        for view in "", "Wow6432Node\\":
            chosen = keys[PRODUCT.replace("Software\\", "HKLM\\Software\\" + view)]
            self.assertEqual((chosen["SetupLanguage"], chosen["HelpPath"]), ("polish", on_windows(self.common) + "\\"))
        self.expect_to_work(self.common, "polish", SYSTEMS)
        # The library itself would have written the same.
        wine("regsvr32", "/s", on_windows(self.common / "x64/vtrlk_runtime.dll"), check=True)
        self.expect_same(registry(), keys)

        self.install("/CurrentUser", expect=OTHER_SCOPE)
        for file in self.common / "x64/vtrlk_runtime.dll", start_up / "vt_rowlark.xlam":
            with Excel(file):
                self.install("/AllUsers", expect=IN_USE)
        self.remove(self.common)
        self.expect_same(state(), before)


def use(system):
    """Creates the library's object by its registered class; the first use of scripts writes into the registry itself."""
    return wine(rf"C:\windows\{system}\cscript.exe", "//nologo", f"Z:{ROOT}/tests/installer/use.vbs")


def own_folder():
    assert 42 not in [use(system).returncode for system in SYSTEMS.values()]  # makes the prefix as well
    return next(path for path in (DRIVE / "users").iterdir() if path.name != "Public")


result = unittest.main(failfast=True, exit=False).result
if not result.wasSuccessful():
    sys.exit(1)
(PREFIX / ".unfinished").unlink()

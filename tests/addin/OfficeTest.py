"""The add-in workbook in another office, LibreOffice, which reads it, compiles its macros and runs them with fakes in the
place of Excel and the library. OfficeTest.py PROJECT_FOLDER"""

import os
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path
from xml.sax.saxutils import escape

if not shutil.which("soffice"):
    sys.exit(77)  # skipped
PROJECT = Path(sys.argv.pop(1))
HERE = Path(__file__).resolve().parent
SOURCE = (PROJECT / "addin/Rowlark.bas").read_text("ascii").split("\n", 1)[1]  # without the module's name
# The office's Basic lets no class have members of these names.
RENAMED = re.sub(r"(?<=ThisWorkbook\.)(?=Name|Close)", "Book", SOURCE)

SETTINGS = """<oor:items xmlns:oor="http://openoffice.org/2001/registry">
<item oor:path="/org.openoffice.Setup/Office"><prop oor:name="ooSetupInstCompleted"><value>true</value></prop></item>
</oor:items>"""
LIBRARIES = """<library:libraries xmlns:library="http://openoffice.org/2000/library">
<library:library library:name="Standard" library:link="false"/></library:libraries>"""
LIBRARY = """<library:library xmlns:library="http://openoffice.org/2000/library" library:name="Standard">
{}</library:library>"""
MODULE = """<script:module xmlns:script="http://openoffice.org/2000/script" script:name="{}"
 script:language="StarBasic">{}</script:module>"""

NO_LIBRARY = ("message 16 Vantrel Rowlark: The add-in's library is missing or not registered for 32-bit Excel.|"
              "(Can not create vtrlk_runtime.clsVTRLKRuntime)||"
              "Run Rowlark's set-up again; or run in the folder of the 32-bit library|"
              "for yourself: regsvr32 /n /i:user vtrlk_runtime.dll|"
              "or for all users, as an administrator: regsvr32 vtrlk_runtime.dll\n")
STARTED = """ExcelApp set
Init
MenuCreate
"""
RELEASED = """MenuRemove
DoStop
Ribbon gone
ExcelApp gone
menu deleted
"""
SESSION = f"""== Without the library
menu deleted
{NO_LIBRARY}-- chosen by the user
menu deleted
{NO_LIBRARY}Show All
-- with the library at last
{STARTED}key ^f VantrelRLK_ShowSearch
key +^f VantrelRLK_Unhide
Ribbon set
ShowSearch
== A second start
OnAddinInstall
== The ribbon
Text of Menu.Unhide
run 'vt_rowlark.xlam'!VantrelRLK_Unhide
message 48 Vantrel Rowlark: Protected
== The end, and a start with a hotkey that is refused
key ^f is Excel's
key +^f is Excel's
{RELEASED}{STARTED}key +^f VantrelRLK_Unhide
message 48 Vantrel Rowlark: Excel refuses the hotkey ^f. Choose another one in the options.
Ribbon set
ShowSearch
key +^f is Excel's
{RELEASED}== A start that fails later
{STARTED}{RELEASED}message 16 Vantrel Rowlark: No menu
== A second copy
message 48 Vantrel Rowlark: Rowlark is open already:|C:\\vt_rowlark.xla||Excel has opened a second copy, which is closed \
again now:|C:\\vt_rowlark.xla||To open only one from now on, choose File, Options, Add-ins, Go... and switch the other one \
off.
close False
"""


def run(folder):
    """The log of a session of the office with a profile of its own below the folder."""
    basic = folder / "profile/user/basic/Standard"
    basic.mkdir(parents=True)
    modules = {"Rowlark": RENAMED + (HERE / "Builtins.bas").read_text(), "Session": (HERE / "Session.bas").read_text(),
               "Fake": "Option ClassModule\n" + (HERE / "Fake.bas").read_text()}
    for name, source in modules.items():
        (basic / f"{name}.xba").write_text(MODULE.format(name, escape("Option VBASupport 1\n" + source)))
    (basic / "script.xlb").write_text(
        LIBRARY.format("".join(f'<library:element library:name="{name}"/>\n' for name in modules)))
    (basic.parent / "script.xlc").write_text(LIBRARIES)
    (folder / "profile/user/registrymodifications.xcu").write_text(SETTINGS)
    subprocess.run([PROJECT / "scripts/addin.sh", folder], check=True)
    log = folder / "log"
    environment = dict(os.environ, ROWLARK_LOG=str(log), ROWLARK_WORKBOOK=(folder / "vt_rowlark.xlam").as_uri())
    with subprocess.Popen(["soffice", f"-env:UserInstallation={(folder / 'profile').as_uri()}", "--headless",
                           "--norestore", "--nologo", "macro:///Standard.Session.Main"], env=environment,
                          stdin=subprocess.DEVNULL, stderr=subprocess.DEVNULL, start_new_session=True) as office:
        try:
            office.wait(120)
        except subprocess.TimeoutExpired:  # waits for an answer that nobody gives
            os.killpg(office.pid, signal.SIGKILL)
    return log.read_text()


class Office(unittest.TestCase):
    maxDiff = None

    def test_reads_the_workbook_and_runs_its_macros(self):
        with tempfile.TemporaryDirectory() as folder:
            workbook, played, session = run(Path(folder)).partition("== ")
        self.assertRegex(workbook, r"^Vantrel Rowlark: Type .*\nmodule Rowlark\nmodule Sheet1\nmodule ThisWorkbook\n")
        self.assertIn(SOURCE, workbook)
        self.assertEqual(played + session, SESSION)


if __name__ == "__main__":
    unittest.main()

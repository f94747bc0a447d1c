#!/usr/bin/env python3
"""Kills the office in the middle of searches, and looks whether the document on disk is as it was.

kill.py OFFICE_PROGRAM_FOLDER EXTENSIONS_FOLDER
"""

import os
import signal
import subprocess
import sys
import tempfile
import time
from pathlib import Path

ROUNDS = 3


def main(program, extensions):
    with tempfile.TemporaryDirectory(prefix="rowlark-kill-") as folder:
        table = Path(folder, "table.csv")
        text = "".join(f"name {row},{'odd' if row % 2 else 'even'},{row * 7 % 11}\n" for row in range(20000))
        table.write_text(text, encoding="ascii")
        environment = dict(os.environ, ROWLARK_TEST_ARGUMENTS="--gtest_also_run_disabled_tests\n--gtest_filter=CalcKill.*",
                           ROWLARK_TEST_RESULT=f"{folder}/result", ROWLARK_TEST_FOLDER=folder, XDG_CONFIG_HOME=folder,
                           SAL_USE_VCLPLUGIN="svp", LC_ALL="C.UTF-8")
        command = [f"{program}/soffice.bin", "--headless", "--norestore", "--nologo", "--nodefault", "--nolockcheck",
                   f"-env:UserInstallation=file://{folder}/profile", f"-env:BUNDLED_EXTENSIONS=file://{extensions}",
                   "service:org.rowlark.CalcTests?run"]
        for killed in range(ROUNDS):
            searching = Path(folder, "searching")
            searching.unlink(missing_ok=True)
            while True:  # a new profile makes the office ask to be started again
                office = subprocess.Popen(command, env=environment, stdout=subprocess.DEVNULL)
                while office.poll() is None and not searching.exists():
                    time.sleep(0.01)
                if searching.exists():
                    break
                if office.returncode != 81:
                    print(f"The office has ended with status {office.returncode}.")
                    return 1
            time.sleep(0.1 * killed)
            if office.poll() is not None:
                print("The searches have ended by themselves.")
                return 1
            office.send_signal(signal.SIGKILL)
            office.wait()
            if table.read_text(encoding="ascii") != text:
                print("The table is not what it was.")
                return 1
    return 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))

#!/usr/bin/env python3
"""Runs the tests of a component inside the office, headless, on a throwaway profile.

run.py OFFICE_PROGRAM_FOLDER EXTENSIONS_FOLDER [--gtest_...]: the exit status is that of the tests; an office that ends
without one, or hangs, has failed.
"""

import os
import subprocess
import sys
import tempfile
from pathlib import Path

RESTART = 81  # asked for when a profile is new
TIMEOUT = 900  # seconds


def main(program, extensions, *arguments):
    with tempfile.TemporaryDirectory(prefix="rowlark-calc-") as folder:
        result = Path(folder, "result")
        environment = dict(os.environ, ROWLARK_TEST_ARGUMENTS="\n".join(arguments), ROWLARK_TEST_RESULT=str(result),
                           ROWLARK_TEST_FOLDER=folder, XDG_CONFIG_HOME=folder, SAL_USE_VCLPLUGIN="svp", LC_ALL="C.UTF-8")
        command = [f"{program}/soffice.bin", "--headless", "--norestore", "--nologo", "--nodefault", "--nolockcheck",
                   f"-env:UserInstallation=file://{folder}/profile", f"-env:BUNDLED_EXTENSIONS=file://{extensions}",
                   "service:org.rowlark.CalcTests?run"]
        office = subprocess.run(command, env=environment, timeout=TIMEOUT, check=False)
        if office.returncode == RESTART:
            office = subprocess.run(command, env=environment, timeout=TIMEOUT, check=False)
        if not result.exists() or office.returncode != 0:
            print(f"The office has ended with status {office.returncode}, its tests {'not ' * (not result.exists())}done.")
            return 1
        return int(result.read_text(encoding="ascii"))


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))

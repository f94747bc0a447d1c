#!/usr/bin/env python3
"""Makes the add-in workbook: make_addin.py VERSION OUTPUT.xlam"""

import sys
from pathlib import Path

sys.dont_write_bytecode = True
import vba_project  # noqa: E402
import workbook  # noqa: E402

# The project has the product's name with its maker's, since its module has the product's alone.
PROJECT, PROJECT_ID = "VantrelRowlark", "{8000243A-2E53-48D3-9CD7-1DBBAA40CB2A}"
FOLDER = Path(__file__).resolve().parent


def make(version):
    modules = [
        vba_project.document_module(workbook.WORKBOOK, vba_project.WORKBOOK_CLASS),
        vba_project.document_module(workbook.WORKSHEET, vba_project.WORKSHEET_CLASS),
        vba_project.Module("Rowlark", (FOLDER / "Rowlark.bas").read_text("ascii")),
    ]
    properties = workbook.Properties(
        title="Vantrel Rowlark",
        comments="Type into a small form, and the sheet keeps only the rows that match.",
        author="Vantrel",
        version=version)
    return workbook.write(vba_project.write(PROJECT, PROJECT_ID, modules), (FOLDER / "ribbon.xml").read_text("utf-8"),
                          properties)


if __name__ == "__main__":
    Path(sys.argv[2]).write_bytes(make(sys.argv[1]))

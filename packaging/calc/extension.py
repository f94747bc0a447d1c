#!/usr/bin/env python3
"""Makes the extension for LibreOffice Calc from the built library.

extension.py LIBRARY VERSION TARGET: TARGET is a folder, or a file that ends in .oxt. A package is the same for the same
library, whenever it is made: its files have the time that SOURCE_DATE_EPOCH names, or else 1980.
"""

import os
import re
import shutil
import subprocess
import sys
import tempfile
import time
import zipfile
from pathlib import Path
from xml.sax.saxutils import escape

HERE = Path(__file__).resolve().parent
ROOT = HERE.parents[1]
DOCUMENT = "com.sun.star.sheet.SpreadsheetDocument"


def menu_entries():
    """(key, English caption, macro, begins a group) of every menu item, as the library has them."""
    source = (ROOT / "src/runtime/Menu.h").read_text(encoding="utf-8")
    found = re.findall(r'\{u"([\w.]+)", u"([^"]+)", Macro::(\w+), (true|false)\}', source)
    assert found, "there are no menu entries in src/runtime/Menu.h"
    return [(key, caption, macro, begins == "true") for key, caption, macro, begins in found]


def languages():
    """The texts of every language file, by the code of the language."""
    source = (ROOT / "src/lang/Locales.h").read_text(encoding="utf-8")
    found = {}
    for code, name in re.findall(r'\{"(\w\w)", u"(\w+)"\}', source):
        lines = (ROOT / "languages" / f"{name}.lng").read_text(encoding="utf-8-sig").splitlines()
        found[code] = dict(line.split(" = ", 1) for line in lines if " = " in line and not line.startswith(";"))
    assert found, "there are no languages in src/lang/Locales.h"
    return found


def addons():
    """The menu: its captions are those of the language files, "&" written as the office does."""
    texts = languages()

    def titles(key, default):
        for code in sorted(texts):
            text = texts[code].get(key, default).replace("&", "~")
            yield f'<value xml:lang="{"en-US" if code == "en" else code}">{escape(text)}</value>'

    def prop(name, *values):
        return f'<prop oor:name="{name}">{"".join(values)}</prop>'

    def node(name, *content):
        return f'<node oor:name="{name}" oor:op="replace">\n' + "\n".join(content) + "\n</node>"

    context = prop("Context", f"<value>{DOCUMENT}</value>")
    items = []
    for key, caption, macro, begins_group in menu_entries():
        if begins_group:
            items.append(node(f"m{len(items):02}", prop("URL", "<value>private:separator</value>")))
        url = f"<value>org.rowlark:VantrelRLK_{macro}</value>"
        items.append(node(f"m{len(items):02}", prop("URL", url), prop("Title", *titles(key, caption)),
                          prop("Target", "<value>_self</value>"), context))
    return f"""<?xml version="1.0" encoding="UTF-8"?>
<oor:component-data xmlns:oor="http://openoffice.org/2001/registry" oor:name="Addons" oor:package="org.openoffice.Office">
<node oor:name="AddonUI">
<node oor:name="OfficeMenuBar">
{node("org.rowlark", prop("Title", *titles("Menu.Root", "&Rowlark")), prop("Target", "<value>_self</value>"), context,
      '<node oor:name="Submenu">', *items, "</node>")}
</node>
</node>
</oor:component-data>
"""


def content(library, version):
    """What the package holds, by name."""
    files = {
        "META-INF/manifest.xml": (HERE / "manifest.xml").read_bytes(),
        "Addons.xcu": addons().encode(),
        "rowlarkcalc.uno.so": Path(library).read_bytes(),
    }
    description = (HERE / "description.xml").read_text(encoding="utf-8")
    files["description.xml"] = description.replace("@VERSION@", version).encode()
    for name in ("description.txt", "Jobs.xcu", "ProtocolHandler.xcu", "rowlark.components"):
        files[name] = (HERE / name).read_bytes()
    for file in (ROOT / "languages").glob("*.lng"):
        files[f"languages/{file.name}"] = file.read_bytes()
    with tempfile.TemporaryDirectory() as folder:
        subprocess.run([sys.executable, ROOT / "scripts/help.py", f"{folder}/help", "web"], check=True)
        for file in Path(folder).rglob("*.*"):
            files[str(file.relative_to(folder))] = file.read_bytes()
    for file in (ROOT / "assets/icons").glob("*.svg"):
        drawing = file.read_bytes()
        files[f"icons/{file.name}"] = drawing
        # Lists and buttons show drawings in their own size.
        files[f"icons/small/{file.name}"] = drawing.replace(b'width="32" height="32"', b'width="16" height="16"', 1)
    return files


def main(library, version, target):
    target = Path(target)
    files = content(library, version)
    if target.suffix != ".oxt":
        shutil.rmtree(target, ignore_errors=True)
        for name, data in files.items():
            file = target / name
            file.parent.mkdir(parents=True, exist_ok=True)
            file.write_bytes(data)
        return
    moment = time.gmtime(max(int(os.environ.get("SOURCE_DATE_EPOCH", "0")), 315532800))[:6]  # a zip begins in 1980
    target.parent.mkdir(parents=True, exist_ok=True)
    with zipfile.ZipFile(target, "w") as package:
        for name in sorted(files, key=lambda name: (name != "META-INF/manifest.xml", name)):
            info = zipfile.ZipInfo(name, moment)
            info.compress_type = zipfile.ZIP_DEFLATED
            info.external_attr = (0o100755 if name.endswith(".so") else 0o100644) << 16
            package.writestr(info, files[name], compresslevel=9)


if __name__ == "__main__":
    main(*sys.argv[1:])

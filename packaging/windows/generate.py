#!/usr/bin/env python3
"""Writes what the set-up program's script takes from elsewhere: generate.py STAGE INTERFACES.idl CONTENTS.nsh

From the folder STAGE the files to install, each named so that removal takes away what set-up has brought and nothing
else; from the interface definitions the identifiers to register.
"""
import pathlib
import re
import sys

DUAL = "{00020424-0000-0000-C000-000000000046}"  # the system's marshalling of dual interfaces
EVENTS = "{00020420-0000-0000-C000-000000000046}"  # and of dispatch interfaces


def attribute(attributes, name):
    return re.search(rf"\b{name}\(\"?([^)\"]*)", attributes)[1]


def definitions(idl):
    """(kind, name, attributes) of everything that has an identifier."""
    for attributes, kind, name in re.findall(r"\[([^\]]*)\]\s*(library|interface|dispinterface|coclass)\s+(\w+)", idl):
        if "uuid(" in attributes:
            yield kind, name, attributes


def identifier(attributes):
    return "{" + attribute(attributes, "uuid").upper() + "}"


def macro(name, calls):
    return [f"!macro {name} ACTION", *(f'  !insertmacro "${{ACTION}}" {call}' for call in calls), "!macroend"]


def main(stage, idl, output):
    interfaces = []
    lines = []
    for kind, name, attributes in definitions(pathlib.Path(idl).read_text(encoding="utf-8")):
        if kind == "library":
            lines.append(f'!define LIBRARY_ID "{identifier(attributes)}"')
            lines.append(f'!define LIBRARY_VERSION "{attribute(attributes, "version")}"')
            lines.append(f'!define LIBRARY_TITLE "{attribute(attributes, "helpstring")}"')
        elif kind == "coclass" and "noncreatable" not in attributes:
            lines.append(f'!define CLASS_ID "{identifier(attributes)}"')
            lines.append(f'!define CLASS_VERSION "{attribute(attributes, "version")}"')
        elif kind != "coclass":
            interfaces.append(f'"{identifier(attributes)}" "{name}" "{DUAL if kind == "interface" else EVENTS}"')
    lines += macro("ForEachInterface", interfaces)
    for part, folder in (("Common", ""), ("X86", "x86\\"), ("X64", "x64\\")):
        files = sorted(path.name for path in pathlib.Path(stage, folder.rstrip("\\")).iterdir() if path.is_file())
        lines += macro(f"ForEach{part}File", (f'"{folder}{name}"' for name in files))
    pathlib.Path(output).write_text("\n".join(lines) + "\n", encoding="utf-8")


main(*sys.argv[1:])

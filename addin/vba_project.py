"""Makes the macro project of a workbook (vbaProject.bin) from the sources of its modules.

It holds no compiled code and says that it is of no version, so that every Excel, of 32 and 64 bits, compiles the
sources when it opens the workbook. It refers to no library: Excel itself adds Visual Basic's and its own.
"""

import struct
from dataclasses import dataclass

import compound_file
from compression import compress

CODE_PAGE = 1252
ENCODING = "cp1252"
LANGUAGE = 0x0409
ANY_VERSION = 0xFFFF
NO_COOKIE = 0xFFFF  # stands for what only compiled code has
WIN32 = 1  # the only kind of system that every Excel on Windows takes, of 64 bits too
PROTECTION_VERSION = 2

# The classes of Excel's own objects, as modules name them.
WORKBOOK_CLASS = "{00020819-0000-0000-C000-000000000046}"
WORKSHEET_CLASS = "{00020820-0000-0000-C000-000000000046}"

DOCUMENT_ATTRIBUTES = """\
Attribute VB_Name = "{name}"
Attribute VB_Base = "0{base}"
Attribute VB_GlobalNameSpace = False
Attribute VB_Creatable = False
Attribute VB_PredeclaredId = True
Attribute VB_Exposed = True
Attribute VB_TemplateDerived = False
Attribute VB_Customizable = True
"""


@dataclass(frozen=True)
class Module:
    name: str
    source: str
    is_document: bool = False  # the module of the workbook or of a sheet

    def __post_init__(self):
        if not self.source.startswith(f'Attribute VB_Name = "{self.name}"\n'):
            raise ValueError(f"the source of module {self.name} must begin with its name")

    def encoded(self):
        return self.source.replace("\n", "\r\n").encode(ENCODING)


def document_module(name, base):
    """The module, without code, of the workbook or of a sheet; the workbook's other parts call it `name` as well."""
    return Module(name, DOCUMENT_ATTRIBUTES.format(name=name, base=base), True)


def _record(kind, data):
    return struct.pack("<HI", kind, len(data)) + data


def _number(kind, value, form="<I"):
    return _record(kind, struct.pack(form, value))


def _text(kind, unicode_kind, text):
    return _record(kind, text.encode(ENCODING)) + _record(unicode_kind, text.encode("utf-16-le"))


def _directory(project, modules):
    """What the project consists of, for the compiler."""
    records = [
        _number(0x0001, WIN32),
        _number(0x0002, LANGUAGE),
        _number(0x0014, LANGUAGE),
        _number(0x0003, CODE_PAGE, "<H"),
        _record(0x0004, project.encode(ENCODING)),
        _text(0x0005, 0x0040, ""),  # description
        _record(0x0006, b"") + _record(0x003D, b""),  # help file
        _number(0x0007, 0),  # help context
        _number(0x0008, 0),  # flags
        struct.pack("<HIIH", 0x0009, 4, 1, 0),  # version 1.0; the length leaves out the second part
        _text(0x000C, 0x003C, ""),  # constants of conditional compilation
        _number(0x000F, len(modules), "<H"),
        _number(0x0013, NO_COOKIE, "<H"),
    ]
    for module in modules:
        records += [
            _text(0x0019, 0x0047, module.name),
            _text(0x001A, 0x0032, module.name),  # stream
            _text(0x001C, 0x0048, ""),  # description
            _number(0x0031, 0),  # where the source begins in the stream, behind compiled code
            _number(0x001E, 0),  # help context
            _number(0x002C, NO_COOKIE, "<H"),
            _record(0x0022 if module.is_document else 0x0021, b""),
            _record(0x002B, b""),
        ]
    return b"".join(records) + _record(0x0010, b"")


def _obscure(project_id, data):
    """The form in which the project tells how it is protected. The seed is free; a fixed one gives fixed bytes."""
    seed, key = 0, sum(project_id.encode(ENCODING)) & 0xFF
    result = bytearray([seed, seed ^ PROTECTION_VERSION, seed ^ key])
    last, last_but_one, plain = result[2], result[1], key
    for byte in struct.pack("<I", len(data)) + data:
        result.append(byte ^ (last_but_one + plain) & 0xFF)
        last, last_but_one, plain = result[-1], last, byte
    return result.hex().upper()


def _project(project, project_id, modules):
    """What the project consists of, for the editor."""
    items = [f"Document={module.name}/&H00000000" if module.is_document else f"Module={module.name}"
             for module in modules]
    lines = [
        f'ID="{project_id}"',
        *items,
        f'Name="{project}"',
        'HelpContextID="0"',
        'VersionCompatible32="393222000"',
        f'CMG="{_obscure(project_id, bytes(4))}"',  # protected from nobody
        f'DPB="{_obscure(project_id, bytes(1))}"',  # without a password
        f'GC="{_obscure(project_id, bytes([0xFF]))}"',  # visible
        "",
        "[Host Extender Info]",
        "&H00000001={3832D640-CF90-11CF-8E43-00A0C911005A};VBE;&H00000000",
        "",
        "[Workspace]",
        *(f"{module.name}=0, 0, 0, 0, C" for module in modules),
    ]
    return "".join(line + "\r\n" for line in lines).encode(ENCODING)


def _names(modules):
    """The names of the modules in the code page and in Unicode, which must be the same."""
    return b"".join(module.name.encode(ENCODING) + b"\0" + module.name.encode("utf-16-le") + b"\0\0"
                    for module in modules) + b"\0\0"


def write(project, project_id, modules):
    """The file of a project of that name and identifier ("{...}"). The name must not be one of a module's."""
    if project.lower() in (module.name.lower() for module in modules):
        raise ValueError(f"a module has the project's name: {project}")
    streams = {module.name: compress(module.encoded()) for module in modules}
    streams["dir"] = compress(_directory(project, modules))
    streams["_VBA_PROJECT"] = struct.pack("<HHBH", 0x61CC, ANY_VERSION, 0, 0)
    return compound_file.write({
        "PROJECT": _project(project, project_id, modules),
        "PROJECTwm": _names(modules),
        "VBA": streams,
    })

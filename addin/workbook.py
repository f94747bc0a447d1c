"""Makes an Excel add-in (.xlam, Office Open XML) of a macro project and a ribbon: a workbook of one empty sheet."""

import io
import os
import time
import zipfile
from dataclasses import dataclass
from xml.sax.saxutils import escape, quoteattr

XML = '<?xml version="1.0" encoding="UTF-8" standalone="yes"?>\n'
SPREADSHEET = "http://schemas.openxmlformats.org/spreadsheetml/2006/main"
PACKAGE = "http://schemas.openxmlformats.org/package/2006"
OFFICE = "http://schemas.openxmlformats.org/officeDocument/2006"
MICROSOFT = "http://schemas.microsoft.com/office"

# The names by which the macro project knows the workbook and its sheet.
WORKBOOK, WORKSHEET = "ThisWorkbook", "Sheet1"

# Excel 2007 reads the first, later ones the second; they differ in the name space alone.
RIBBONS = (
    ("customUI/customUI.xml", f"{MICROSOFT}/2006/01/customui", f"{MICROSOFT}/2006/relationships/ui/extensibility"),
    ("customUI/customUI14.xml", f"{MICROSOFT}/2009/07/customui", f"{MICROSOFT}/2007/relationships/ui/extensibility"),
)

CONTENT_TYPES = {
    "docProps/core.xml": "application/vnd.openxmlformats-package.core-properties+xml",
    "xl/vbaProject.bin": "application/vnd.ms-office.vbaProject",
    # That the workbook is an add-in is said here alone.
    "xl/workbook.xml": "application/vnd.ms-excel.addin.macroEnabled.main+xml",
    "xl/worksheets/sheet1.xml": "application/vnd.openxmlformats-officedocument.spreadsheetml.worksheet+xml",
}


@dataclass(frozen=True)
class Properties:
    """What the list of add-ins and the file's properties show."""
    title: str
    comments: str
    author: str
    version: str


def _content_types():
    parts = "".join(f'<Override PartName="/{part}" ContentType="{kind}"/>' for part, kind in CONTENT_TYPES.items())
    return (f'{XML}<Types xmlns="{PACKAGE}/content-types">'
            '<Default Extension="rels" ContentType="application/vnd.openxmlformats-package.relationships+xml"/>'
            f'<Default Extension="xml" ContentType="application/xml"/>{parts}</Types>')


def _relationships(pairs):
    links = "".join(f'<Relationship Id="rId{number}" Type="{kind}" Target="{target}"/>'
                    for number, (kind, target) in enumerate(pairs, 1))
    return f'{XML}<Relationships xmlns="{PACKAGE}/relationships">{links}</Relationships>'


def _core_properties(properties):
    return (f'{XML}<cp:coreProperties xmlns:cp="{PACKAGE}/metadata/core-properties"'
            ' xmlns:dc="http://purl.org/dc/elements/1.1/">'
            f'<dc:title>{escape(properties.title)}</dc:title><dc:creator>{escape(properties.author)}</dc:creator>'
            f'<dc:description>{escape(properties.comments)}</dc:description>'
            f'<cp:version>{escape(properties.version)}</cp:version></cp:coreProperties>')


def _workbook():
    return (f'{XML}<workbook xmlns="{SPREADSHEET}" xmlns:r="{OFFICE}/relationships">'
            f'<workbookPr codeName={quoteattr(WORKBOOK)}/>'
            f'<sheets><sheet name={quoteattr(WORKSHEET)} sheetId="1" r:id="rId1"/></sheets></workbook>')


def _worksheet():
    return (f'{XML}<worksheet xmlns="{SPREADSHEET}"><sheetPr codeName={quoteattr(WORKSHEET)}/>'
            '<sheetData/></worksheet>')


def _ribbon(ribbon, name_space):
    newest = RIBBONS[-1][1]
    if ribbon.count(newest) != 1:
        raise ValueError("the ribbon must be of the newest name space")
    return ribbon.replace(newest, name_space)


def _zip(parts):
    """An archive with the times that SOURCE_DATE_EPOCH tells, or none."""
    seconds = max(int(os.environ.get("SOURCE_DATE_EPOCH", 0)), 315532800)  # archives know no time before 1980
    archive = io.BytesIO()
    with zipfile.ZipFile(archive, "w") as file:
        for name, content in parts.items():
            entry = zipfile.ZipInfo(name, time.gmtime(seconds)[:6])
            entry.compress_type, entry.create_system = zipfile.ZIP_DEFLATED, 0
            file.writestr(entry, content)
    return archive.getvalue()


def write(vba_project, ribbon, properties):
    """The file of the add-in; `ribbon` is the XML of what it adds to the ribbon."""
    package_links = [
        (f"{OFFICE}/relationships/officeDocument", "xl/workbook.xml"),
        (f"{PACKAGE}/relationships/metadata/core-properties", "docProps/core.xml"),
        *((kind, part) for part, _, kind in RIBBONS),
    ]
    workbook_links = [
        (f"{OFFICE}/relationships/worksheet", "worksheets/sheet1.xml"),
        (f"{MICROSOFT}/2006/relationships/vbaProject", "vbaProject.bin"),
    ]
    return _zip({
        "[Content_Types].xml": _content_types(),
        "_rels/.rels": _relationships(package_links),
        **{part: _ribbon(ribbon, name_space) for part, name_space, _ in RIBBONS},
        "docProps/core.xml": _core_properties(properties),
        "xl/_rels/workbook.xml.rels": _relationships(workbook_links),
        "xl/vbaProject.bin": vba_project,
        "xl/workbook.xml": _workbook(),
        "xl/worksheets/sheet1.xml": _worksheet(),
    })

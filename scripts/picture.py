"""Records a session of rowlark on a pseudo-terminal and draws its screen as SVG: picture.py PROGRAM FILE.svg"""

import sys
import tempfile
from html import escape
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
sys.path.insert(0, str(ROOT / "tests" / "terminal"))
from terminal import Terminal  # noqa: E402

CELL_WIDTH, CELL_HEIGHT, MARGIN = 8.4, 18, 14
FOREGROUND, BACKGROUND = "#d8dee9", "#1d2330"
COLOURS = {"black": "#000000", "red": "#e06c75", "green": "#98c379", "brown": "#e5c07b", "blue": "#4f7ac0",
           "magenta": "#c678dd", "cyan": "#56b6c2", "white": "#ffffff"}


def colour(name, default):
    if name == "default":
        return default
    return COLOURS.get(name, f"#{name}")


def looks(cell):
    """Foreground, background, and whether bold and underlined."""
    front, back = colour(cell.fg, FOREGROUND), colour(cell.bg, BACKGROUND)
    if cell.reverse:
        front, back = back, front
    return front, back, cell.bold, cell.underscore


def runs(cells):
    """Neighbouring cells that look the same: (column, texts of the cells)."""
    start = 0
    for column in range(1, len(cells) + 1):
        if column == len(cells) or looks(cells[column]) != looks(cells[start]):
            yield start, cells[start:column]
            start = column


def words(cells):
    """What stands between blanks: (offset, texts of the cells). Each is placed by itself, whatever the font."""
    start = None
    for column, text in enumerate([cell.data for cell in cells] + [" "]):
        if not text.strip() and start is not None:
            yield start, [cell.data for cell in cells[start:column]]
            start = None
        elif text.strip() and start is None:
            start = column


def draw(screen):
    width = screen.columns * CELL_WIDTH + 2 * MARGIN
    height = screen.lines * CELL_HEIGHT + 2 * MARGIN
    shapes = []
    for row in range(screen.lines):
        top = MARGIN + row * CELL_HEIGHT
        for column, cells in runs([screen.buffer[row][column] for column in range(screen.columns)]):
            front, back, bold, underlined = looks(cells[0])
            left = MARGIN + column * CELL_WIDTH
            if back != BACKGROUND:
                shapes.append(f'<rect x="{left:.1f}" y="{top}" width="{len(cells) * CELL_WIDTH + 0.3:.1f}" '
                              f'height="{CELL_HEIGHT}" fill="{back}"/>')
            if underlined:
                shapes.append(f'<rect x="{left:.1f}" y="{top + CELL_HEIGHT - 3}" '
                              f'width="{len(cells) * CELL_WIDTH:.1f}" height="1" fill="{front}"/>')
            weight = ' font-weight="bold"' if bold else ""
            for at, word in words(cells):
                shapes.append(f'<text x="{left + at * CELL_WIDTH:.1f}" y="{top + 13.5}" fill="{front}"{weight} '
                              f'textLength="{len(word) * CELL_WIDTH:.1f}">{escape("".join(word))}</text>')
    cursor = screen.cursor
    if not cursor.hidden:
        shapes.append(f'<rect x="{MARGIN + cursor.x * CELL_WIDTH:.1f}" y="{MARGIN + cursor.y * CELL_HEIGHT + 1}" '
                      f'width="2" height="{CELL_HEIGHT - 2}" fill="{FOREGROUND}"/>')
    return (f'<svg xmlns="http://www.w3.org/2000/svg" width="{width:.0f}" height="{height}" '
            f'viewBox="0 0 {width:.0f} {height}" font-size="14" '
            f'font-family="DejaVu Sans Mono, Menlo, Consolas, monospace">\n'
            f'<rect width="100%" height="100%" rx="8" fill="{BACKGROUND}"/>\n' + "\n".join(shapes) + "\n</svg>\n")


def main(program, picture):
    with tempfile.TemporaryDirectory() as folder:
        terminal = Terminal([program, "customers.csv"], 112, 30, cwd=ROOT / "examples", XDG_CONFIG_HOME=folder)
        terminal.wait("360 of 360 rows")
        terminal.press("köhler kranich", "M-a").wait(lambda t: " ms " in t.text() and "360 of 360" not in t.text())
        Path(picture).write_text(draw(terminal.screen), encoding="utf-8")
        terminal.press("M-w", "End").wait(lambda t: "reverse" not in t.styles(*t.find("Any of words")))
        terminal.press("C-q")
        terminal.end()


if __name__ == "__main__":
    main(*sys.argv[1:])

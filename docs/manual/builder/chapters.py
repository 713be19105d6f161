# SPDX-License-Identifier: GPL-3.0-or-later
"""Fills the chapters' placeholders: a line `{{ word argument | caption }}` stands for a table or a picture."""

import re
import shutil
from html import escape

from . import layouts, scenes, window
from .svg import ManualError

PLACEHOLDER = re.compile(r"^\{\{\s*([a-z-]+)\s*(.*?)\s*\}\}$", re.MULTILINE)


def marked_part(path, name):
    """What stands between `<!-- begin NAME -->` and `<!-- end NAME -->`."""
    words = path.read_text(encoding="utf-8")
    found = re.search(rf"<!-- begin {re.escape(name)} -->\n(.*?)<!-- end {re.escape(name)} -->", words, re.DOTALL)
    if not found or not found.group(1).strip():
        raise ManualError(f'{path.name} has no part "{name}": it is written by benchmarks/report.')
    return found.group(1).strip()


def rows_of(table):
    """Cells of a Markdown table, its heading first and its rule left out."""
    rows = [[cell.strip() for cell in row.strip().strip("|").split("|")] for row in table.splitlines() if row.startswith("|")]
    return [row for number, row in enumerate(rows) if number != 1]


def worst_blocks(path, scene):
    """Median and worst block of the playing path in one Scene, a row per movement and a column per block."""
    head, *rows = rows_of(marked_part(path, "evenness"))
    try:
        median, worst = head.index("median"), head.index("worst of all runs")
    except ValueError:
        raise ManualError(f"{path.name}: the table of evenness has other columns than the manual reads.") from None
    cells = {}
    for row in rows:
        words = [part.strip() for part in row[0].split(",")]
        if row[1] == "fast" and len(words) == 3 and words[1] == scene:
            cells.setdefault(words[2], {})[words[0]] = f"{row[median]} / {row[worst]}"
    if not cells:
        raise ManualError(f'{path.name}: no rows for "{scene}" among the figures of evenness.')
    blocks = list(dict.fromkeys(block for line in cells.values() for block in line))
    lines = ["| " + " | ".join(["Movement", *(f"{block} samples" for block in blocks)]) + " |", "| --- |" + " ---: |" * len(blocks)]
    for movement, line in cells.items():
        lines.append("| " + " | ".join([movement, *(line.get(block, "") for block in blocks)]) + " |")
    return "\n".join(lines)


class Chapters:
    """@param root the checkout, @param report measured figures, @param work folder that the pictures are written to."""

    def __init__(self, root, report, work):
        self.root, self.report, self.work = root, report, work
        self.manual = root / "docs" / "manual"
        self.makers = {"layout-table": self.layout_table, "layout-plans": self.layout_plans, "scene-table": self.scene_table,
                       "scene-map": self.scene_map, "scene": self.scene, "part": self.part, "worst-blocks": self.worst_blocks,
                       "figure": self.figure, "picture": self.picture, "window": self.window}

    def write(self, name, words):
        (self.work / name).write_text(words, encoding="utf-8")
        return name

    def text(self):
        paths = sorted((self.manual / "chapters").glob("*.md"))
        if not paths:
            raise ManualError("docs/manual/chapters is empty.")
        return "\n\n".join(self.fill(path) for path in paths)

    def fill(self, path):
        def put(found):
            maker = self.makers.get(found.group(1))
            if maker is None:
                raise ManualError(f'{path.name}: "{found.group(1)}" is no placeholder.')
            return maker(*filter(None, (part.strip() for part in found.group(2).split("|"))))
        return PLACEHOLDER.sub(put, path.read_text(encoding="utf-8"))

    def layouts(self):
        return layouts.read_layouts((self.root / "README.md").read_text(encoding="utf-8"))

    def layout_table(self, heading):
        return layouts.table(self.layouts(), heading)

    def layout_plans(self):
        return layouts.plans(self.layouts(), self.write)

    def scene_table(self):
        return scenes.table(self.report)

    def scene_map(self, caption):
        return self.framed(self.write("scene-map.svg", scenes.room_map(self.report)), caption)

    def scene(self, name):
        return scenes.card_figures(self.report, name) + "\n\n" + scenes.card_pictures(self.report, name, self.write)

    def part(self, place):
        path, name = place.split()
        return marked_part(self.root / path, name)

    def worst_blocks(self, scene):
        return worst_blocks(self.root / "docs" / "performance.md", scene)

    def existing(self, folder, name):
        source = self.root / "docs" / folder / name
        if not source.is_file():
            raise ManualError(f"docs/{folder}/{name} is not there.")
        return source

    def figure(self, name, caption):
        shutil.copy(self.existing("manual/figures", name), self.work / name)
        return self.framed(name, caption)

    def picture(self, name, caption, width="100%"):
        """A screenshot so wide, by its path in docs/images."""
        source = self.existing("images", name)
        shutil.copy(source, self.work / source.name)
        return self.framed(source.name, caption, "screenshot", width)

    def window(self, caption):
        drawing = window.drawing(self.existing("images", "mix-room.png").read_bytes())
        return self.framed(self.write("window.svg", drawing), caption, "window", "91%")

    @staticmethod
    def framed(address, caption, kind="drawing", width="100%"):
        words = escape(re.sub("<[^>]+>", "", caption))
        return (f'<figure class="{kind}" style="width: {width}"><img src="{address}" alt="{words}">'
                f"<figcaption>{caption}</figcaption></figure>")

# SPDX-License-Identifier: GPL-3.0-or-later
"""What `kestrum data report` measured, Scene by Scene."""

import subprocess
from html.parser import HTMLParser
from pathlib import Path

from .svg import ManualError


def make_report(program, data, folder):
    """Lets the program measure the data folder into `folder`."""
    if not Path(program).is_file():
        raise ManualError(f"{program} is not there: build the project first, or name a report with --report.")
    done = subprocess.run([program, "data", "report", data, folder], capture_output=True, text=True, check=False)
    if done.returncode:
        raise ManualError(f"kestrum data report: {done.stderr.strip()}")


class FirstTable(HTMLParser):
    """Rows of the first table, cells with their column spans."""

    def __init__(self):
        super().__init__()
        self.rows, self.cell, self.ended = [], None, False

    def handle_starttag(self, tag, attrs):
        if self.ended:
            return
        if tag == "tr":
            self.rows.append([])
        elif tag in ("td", "th") and self.rows:
            values = dict(attrs)
            self.cell = [int(values.get("colspan", 1)), int(values.get("rowspan", 1)), ""]

    def handle_data(self, data):
        if self.cell is not None and not self.ended:
            self.cell[2] += data

    def handle_endtag(self, tag):
        if self.ended:
            return
        if tag in ("td", "th") and self.cell is not None:
            self.rows[-1].append(self.cell)
            self.cell = None
        elif tag == "table":
            self.ended = True


def column_names(upper, lower):
    """("T60, s", "goal") for each column; a heading over both rows stands alone."""
    below = iter(lower)
    names = []
    for span, rows, words in upper:
        names += [(words, "")] if rows == 2 else [(words, next(below)[2]) for _ in range(span)]
    return names


class Report:
    """Figures as the page prints them, and the numbers of its plots."""

    def __init__(self, folder):
        self.folder = Path(folder)
        page = self.folder / "index.html"
        if not page.is_file():
            raise ManualError(f"{page} is not there: make it with kestrum data report.")
        table = FirstTable()
        table.feed(page.read_text(encoding="utf-8"))
        if len(table.rows) < 3:
            raise ManualError(f"{page} has no table of Scenes: is the data folder complete?")
        names = column_names(table.rows[0], table.rows[1])
        self.figures = {}
        for row in table.rows[2:]:
            values = [words for _, _, words in row]
            if len(values) != len(names):
                raise ManualError(f"The row of {values[0]} in {page} does not fit its headings.")
            self.figures[values[0]] = dict(zip(names, values))

    @property
    def scenes(self):
        return list(self.figures)

    def figure(self, scene, column, part=""):
        try:
            return self.figures[scene][column, part]
        except KeyError:
            raise ManualError(f'The report has no "{column}" ({part}) for "{scene}".') from None

    def series(self, scene, kind):
        """Blocks of rows of numbers; none when the Scene has no such plot."""
        path = self.folder / "plots" / f"{scene.lower().replace(' ', '-')}.{kind}.txt"
        if not path.is_file():
            return []
        blocks, rows = [], []
        for words in path.read_text(encoding="utf-8").splitlines():
            if words.strip():
                rows.append([float(number) for number in words.split()])
            elif rows:
                blocks.append(rows)
                rows = []
        return [*blocks, rows] if rows else blocks

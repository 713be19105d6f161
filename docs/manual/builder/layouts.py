# SPDX-License-Identifier: GPL-3.0-or-later
"""The layouts, read from README.md's table, which a test compares with the plug-in's own."""

import math
import re
from dataclasses import dataclass
from html import escape

from .svg import (DARK, DEEP, GREY, INK, LINE, PALE, TEAL, ManualError, element, line, picture, text)

# The first layout under each heading of the plug-in's menu.
SECTIONS = {"1.0": "Mono/Stereo", "LRCS": "Horizontal Plane", "5.0.2": "With Heights"}
LAYOUT_COUNT = 32


@dataclass(frozen=True)
class Speaker:
    """Degrees; azimuth positive to the right, elevation positive up."""
    azimuth: int = 0
    elevation: int = 0
    low_frequency: bool = False


@dataclass(frozen=True)
class Layout:
    name: str
    menu_name: str
    speakers: tuple


def read_speaker(words):
    if words == "LFE":
        return Speaker(low_frequency=True)
    azimuth, _, elevation = words.replace("\u2212", "-").partition("/")
    return Speaker(int(azimuth), int(elevation or 0))


def read_layouts(readme):
    """All layouts in the menu's order."""
    heading = readme.find("| Layout | Menu name |")
    rows = readme[heading:].split("\n\n", 1)[0].splitlines()[2:] if heading >= 0 else []
    layouts = []
    for row in rows:
        name, menu_name, count, order = (cell.strip() for cell in row.strip("|").split("|"))
        speakers = tuple(read_speaker(words) for words in re.split(r",\s*", order))
        if len(speakers) != int(count):
            raise ManualError(f'README.md lists {len(speakers)} channels for "{name}" and counts {count}: mend the row.')
        layouts.append(Layout(name, menu_name, speakers))
    if len(layouts) != LAYOUT_COUNT:
        raise ManualError(f"README.md's table of layouts has {len(layouts)} rows instead of {LAYOUT_COUNT}: mend it.")
    return layouts


def minus(number):
    return str(number).replace("-", "\u2212")


def cell(speaker):
    if speaker.low_frequency:
        return '<td class="low">LFE</td>'
    if speaker.elevation:
        return f'<td class="high">{minus(speaker.azimuth)}<span>{speaker.elevation}\u25b2</span></td>'
    return f"<td>{minus(speaker.azimuth)}</td>"


def title(layout):
    """The name in the plug-in's menu, with the host's where that is another one."""
    if layout.menu_name == layout.name:
        return f"<b>{escape(layout.name)}</b>"
    return f"<b>{escape(layout.menu_name)}</b> <span>{escape(layout.name)}</span>"


def section(layouts, heading):
    """The layouts under one heading of the plug-in's menu."""
    members, found = [], False
    for layout in layouts:
        if layout.name in SECTIONS:
            found = SECTIONS[layout.name] == heading
        if found:
            members.append(layout)
    if not members:
        raise ManualError(f'There is no heading "{heading}" among the layouts.')
    return members


def table(layouts, heading):
    """A row per layout, a column per channel of the bus."""
    members = section(layouts, heading)
    width = max(len(layout.speakers) for layout in members)
    head = "".join(f"<th>{channel}</th>" for channel in range(1, width + 1))
    rows = []
    for layout in members:
        cells = "".join(cell(speaker) for speaker in layout.speakers) + "<td></td>" * (width - len(layout.speakers))
        rows.append(f"<tr><th>{title(layout)}</th>{cells}</tr>")
    return (f'<table class="orders w{width}"><thead><tr><th>{escape(heading)}</th>{head}</tr></thead><tbody>{"".join(rows)}'
            "</tbody></table>")


def head(x, y, radius, fill=DARK):
    """A head from above that looks up the page."""
    nose = f"M {x - radius * 0.3:.2f} {y - radius * 0.9:.2f} L {x:.2f} {y - radius * 1.4:.2f} L {x + radius * 0.3:.2f} {y - radius * 0.9:.2f} Z"
    ears = [element("ellipse", cx=round(x + side * radius, 2), cy=y, rx=round(radius * 0.22, 2), ry=round(radius * 0.38, 2),
                    fill=fill) for side in (-1, 1)]
    return "".join([element("path", d=nose, fill=fill), *ears, element("circle", cx=x, cy=y, r=radius, fill=fill)])


def place(speaker, x, y, radius):
    """Where a loudspeaker stands on a plan: ahead is up, overhead is the middle, heights in between by their angle."""
    angle = math.radians(speaker.azimuth)
    reach = radius * (1 - speaker.elevation / 90)
    return x + reach * math.sin(angle), y - reach * math.cos(angle)


def marker(x, y, number, kind, size):
    """A square for ear height, a round one for above, a dashed one for low frequencies."""
    half = size / 2
    looks = {"ear": (DEEP, DEEP, "white"), "height": (TEAL, DEEP, INK), "low": ("white", GREY, INK)}
    fill, stroke, ink = looks[kind]
    corner = half if kind == "height" else size * 0.16
    shape = element("rect", x=round(x - half, 2), y=round(y - half, 2), width=size, height=size, rx=round(corner, 2), fill=fill,
                    stroke=stroke, stroke_width=0.8)
    return shape + text(x, y + size * 0.27, number, size * 0.74, fill=ink, weight=700)


def plan(layout, width=116, height=122):
    """The layout from above, each loudspeaker with the channel that feeds it."""
    x, y, radius, size = width / 2, 53, 48, 9.8  # so large and small that markers 15 degrees apart stand free
    shapes = [element("circle", cx=x, cy=y, r=radius, fill="none", stroke=LINE, stroke_width=0.8),
              element("circle", cx=x, cy=y, r=round(radius / 2, 2), fill="none", stroke=PALE, stroke_width=0.8)]
    shapes.append(line(x, y, x, y - radius, LINE, 0.6, stroke_dasharray="1.5 2"))
    shapes.append(head(x, y, 7.5, GREY))
    places = {}
    for number, speaker in enumerate(layout.speakers, 1):
        if speaker.low_frequency:
            shapes.append(marker(width - 9, 92, str(number), "low", size))
            shapes.append(text(width - 9, 106, "LFE", 6.5, fill=GREY))
            continue
        where = place(speaker, x, y, radius)
        key = (round(where[0]), round(where[1]))
        places.setdefault(key, []).append((number, speaker, where))
    for members in places.values():  # two at one place stand side by side
        for index, (number, speaker, where) in enumerate(members):
            shift = (index - (len(members) - 1) / 2) * (size + 1)
            shapes.append(marker(where[0] + shift, where[1], str(number), "height" if speaker.elevation else "ear", size))
    shapes.append(text(width / 2, height - 3.5, layout.menu_name, 10, weight=700))
    return picture(width, height, shapes)


def plans(layouts, write):
    """A sheet of all plans. `write(name, svg)` keeps a picture and returns its address."""
    figures = []
    for number, layout in enumerate(layouts):
        address = write(f"layout-{number:02}.svg", plan(layout))
        words = f"Plan of {layout.menu_name} with channel numbers"
        figures.append(f'<img class="plan" src="{address}" alt="{escape(words)}">')
    return f'<div class="plans">{"".join(figures)}</div>'

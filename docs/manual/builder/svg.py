# SPDX-License-Identifier: GPL-3.0-or-later
"""The few shapes that the manual's drawings are made of, and its one palette."""

from html import escape

INK = "#14262b"
GREY = "#6c7f84"
LINE = "#c9d6d8"
PALE = "#e6f7f5"
TEAL = "#51e8d8"
DEEP = "#0d857d"
DARK = "#0f1d21"
AMBER = "#d9822b"
BLUE = "#3c6fb0"


class ManualError(Exception):
    """Something that the manual is made from is missing or not as expected; the message names the remedy."""


def attributes(values):
    """`stroke_width=2` becomes `stroke-width="2"`."""
    return "".join(f' {name.rstrip("_").replace("_", "-")}="{escape(str(value))}"' for name, value in values.items())


def element(name, content="", **values):
    return f"<{name}{attributes(values)}>{content}</{name}>" if content else f"<{name}{attributes(values)}/>"


def text(x, y, words, size=9, anchor="middle", fill=INK, weight=400, **values):
    return element("text", escape(words), x=round(x, 2), y=round(y, 2), font_size=size, text_anchor=anchor, fill=fill,
                   font_weight=weight, **values)


def line(x1, y1, x2, y2, stroke=INK, width=1.0, **values):
    return element("line", x1=round(x1, 2), y1=round(y1, 2), x2=round(x2, 2), y2=round(y2, 2), stroke=stroke,
                   stroke_width=width, **values)


def polyline(points, stroke, width=1.2, **values):
    joined = " ".join(f"{x:.2f},{y:.2f}" for x, y in points)
    return element("polyline", points=joined, fill="none", stroke=stroke, stroke_width=width, stroke_linejoin="round",
                   **values)


def picture(width, height, shapes):
    body = "\n".join(shapes)
    return (f'<svg xmlns="http://www.w3.org/2000/svg" xmlns:xlink="http://www.w3.org/1999/xlink" width="{width}" '
            f'height="{height}" viewBox="0 0 {width} {height}" font-family="Lato">\n{body}\n</svg>\n')

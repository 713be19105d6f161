# SPDX-License-Identifier: GPL-3.0-or-later
"""The window with a number on each control: over a screenshot where there is one, else over a line drawing."""

from base64 import b64encode

from .svg import DARK, INK, TEAL, element, picture, text

WIDTH, HEIGHT = 1080, 660
# Name, and x, y, width, height in the window.
CONTROLS = [("SPEAKER SETUP", 12, 571, 107, 24), ("SCENE", 282, 571, 107, 24), ("", 391, 570, 48, 24), ("AMBIENCE", 460, 569, 156, 24),
            ("FOCUS", 640, 569, 156, 24), ("HEAD ROTATION", 864, 558, 72, 72), ("MASTER", 990, 558, 72, 72),
            ("", 892, 10, 180, 70), ("", 0, 636, 120, 24), ("", 1056, 636, 24, 24)]
# Where the numbers stand, in the order of the list above.
NUMBERS = [(65, 532), (335, 532), (415, 532), (520, 532), (700, 532), (900, 532), (1026, 532), (872, 45), (140, 648), (1036, 648)]


def outline():
    """The window's controls as boxes, where no screenshot has been taken."""
    shapes = [element("rect", x=0, y=0, width=WIDTH, height=HEIGHT, fill=DARK),
              element("rect", x=0, y=504, width=WIDTH, height=132, fill="#162a30"),
              element("rect", x=0, y=636, width=WIDTH, height=24, fill="black"),
              text(540, 260, "picture of the speaker setup", 26, fill="#5d7a80")]
    for name, x, y, width, height in CONTROLS:
        radius = width / 2 if width == height == 72 else 4
        shapes.append(element("rect", x=x + 1, y=y + 1, width=width - 2, height=height - 2, rx=radius, fill="none", stroke=TEAL,
                              stroke_width=1.5))
        if name:
            shapes.append(text(x + width / 2, y + height + 20 if height < 72 else y + height - 30, name, 12 if height < 72 else 9,
                               fill="#b8cfd2"))
    return shapes


def badges():
    shapes = []
    for number, (x, y) in enumerate(NUMBERS, 1):
        shapes.append(element("circle", cx=x, cy=y, r=14, fill=TEAL, stroke=INK, stroke_width=2))
        shapes.append(text(x, y + 6, str(number), 17, fill=INK, weight=700))
    return shapes


def drawing(screenshot):
    """@param screenshot path of a PNG of the whole window, or None."""
    if screenshot:
        data = b64encode(screenshot.read_bytes()).decode()
        under = [f'<image x="0" y="0" width="{WIDTH}" height="{HEIGHT}" xlink:href="data:image/png;base64,{data}"/>']
    else:
        under = outline()
    return picture(WIDTH, HEIGHT, [*under, *badges()])

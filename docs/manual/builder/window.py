# SPDX-License-Identifier: GPL-3.0-or-later
"""The window with a number on each control."""

from base64 import b64encode

from .svg import INK, TEAL, element, picture, text

WIDTH, HEIGHT = 1080, 660
# Where the numbers stand in the window, in the order of the list below the picture.
NUMBERS = [(65, 532), (335, 532), (415, 532), (520, 532), (700, 532), (900, 532), (1026, 532), (872, 45), (140, 648), (1036, 648)]


def badges():
    shapes = []
    for number, (x, y) in enumerate(NUMBERS, 1):
        shapes.append(element("circle", cx=x, cy=y, r=14, fill=TEAL, stroke=INK, stroke_width=2))
        shapes.append(text(x, y + 6, str(number), 17, fill=INK, weight=700))
    return shapes


def drawing(screenshot):
    """@param screenshot a PNG of the whole window, as bytes."""
    data = b64encode(screenshot).decode()
    under = f'<image x="0" y="0" width="{WIDTH}" height="{HEIGHT}" xlink:href="data:image/png;base64,{data}"/>'
    return picture(WIDTH, HEIGHT, [under, *badges()])

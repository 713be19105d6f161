# SPDX-License-Identifier: GPL-3.0-or-later
"""The cover: a layout from the product's own table, seen from behind and above the listener."""

import math

from .svg import DARK, TEAL, element, picture

WIDTH, HEIGHT = 840, 1188
CENTRE_X, CENTRE_Y, RADIUS = 420, 440, 300
TILT, LIFT, EYE = 0.36, 0.85, 2.6
PAPER_TEAL = "#2b8f89"


def project(azimuth, elevation, reach=1.0):
    """@return x, y on the page and how large a thing is there; the unit is the ring's radius."""
    a, e = math.radians(azimuth), math.radians(elevation)
    x, y, z = math.sin(a) * math.cos(e) * reach, math.sin(e) * reach, math.cos(a) * math.cos(e) * reach
    size = EYE / (EYE + 0.55 * z)
    return CENTRE_X + RADIUS * x * size, CENTRE_Y - RADIUS * (z * TILT + y * LIFT) * size, size


def ring(elevation, reach, stroke, width, opacity, dash=None):
    points = [project(azimuth, elevation, reach) for azimuth in range(0, 360, 4)]
    outline = " ".join(f"{x:.1f},{y:.1f}" for x, y, _ in points)
    values = {"stroke_dasharray": dash} if dash else {}
    return element("polygon", points=outline, fill="none", stroke=stroke, stroke_width=width, stroke_opacity=opacity, **values)


def box(x, y, size, high):
    """A loudspeaker as an outlined box with its two drivers."""
    width, height = (30 * size, 30 * size) if high else (32 * size, 46 * size)
    stroke = TEAL if high else "#d9f4f1"
    shapes = [element("rect", x=f"{x - width / 2:.1f}", y=f"{y - height / 2:.1f}", width=f"{width:.1f}", height=f"{height:.1f}",
                      rx=f"{width * 0.14:.1f}", fill="#12262b", stroke=stroke, stroke_width=f"{2 * size:.1f}")]
    drivers = [(0, 0.34)] if high else [(-0.24, 0.16), (0.16, 0.29)]
    for down, radius in drivers:
        shapes.append(element("circle", cx=f"{x:.1f}", cy=f"{y + down * height:.1f}", r=f"{radius * width:.1f}", fill="none",
                              stroke=stroke, stroke_width=f"{1.5 * size:.1f}"))
    return "".join(shapes)


def listener():
    """A head with headphones, from behind."""
    x, y = CENTRE_X, CENTRE_Y + 4
    return "".join([
        element("ellipse", cx=x, cy=y + 80, rx=92, ry=22, fill="#0a1518", fill_opacity=0.55),
        element("path", d=f"M {x - 74} {y + 74} C {x - 70} {y + 46} {x - 30} {y + 44} {x - 17} {y + 34} L {x + 17} {y + 34} "
                          f"C {x + 30} {y + 44} {x + 70} {y + 46} {x + 74} {y + 74} Q {x} {y + 96} {x - 74} {y + 74} Z", fill="#26444b"),
        element("ellipse", cx=x, cy=y, rx=33, ry=41, fill="#34585f"),
        element("path", d=f"M {x - 37} {y + 6} C {x - 40} {y - 62} {x + 40} {y - 62} {x + 37} {y + 6}", fill="none", stroke=TEAL,
                stroke_width=6, stroke_linecap="round"),
        element("rect", x=x - 46, y=y - 10, width=16, height=34, rx=7, fill=TEAL),
        element("rect", x=x + 30, y=y - 10, width=16, height=34, rx=7, fill=TEAL)])


def drawing(layout):
    shapes = ['<defs><radialGradient id="glow" cx="0.5" cy="0.37" r="0.62"><stop offset="0" stop-color="#1f4a50"/>'
              f'<stop offset="1" stop-color="{DARK}"/></radialGradient></defs>',
              element("rect", x=0, y=0, width=WIDTH, height=HEIGHT, fill="url(#glow)")]
    for step in range(1, 7):
        shapes.append(ring(0, step / 6, PAPER_TEAL, 1.1, 0.16 + 0.05 * step))
    shapes.append(ring(45, 1.0, TEAL, 1.1, 0.35, "3 6"))
    seen = []
    for speaker in layout.speakers:
        if speaker.low_frequency:
            continue
        x, y, size = project(speaker.azimuth, speaker.elevation)
        depth = math.cos(math.radians(speaker.azimuth)) * math.cos(math.radians(speaker.elevation))
        seen.append((depth, x, y, size, speaker.elevation > 0))
    rays = [f'<path d="M {x:.1f} {y:.1f} L {CENTRE_X} {CENTRE_Y}" stroke="{TEAL}" stroke-width="0.9" stroke-opacity="0.22"/>'
            for _, x, y, _, _ in seen]
    far = [box(*rest) for depth, *rest in sorted(seen, reverse=True) if depth > 0]
    near = [box(*rest) for depth, *rest in sorted(seen, reverse=True) if depth <= 0]
    return picture(WIDTH, HEIGHT, [*shapes, *rays, *far, listener(), *near])

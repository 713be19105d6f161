# SPDX-License-Identifier: GPL-3.0-or-later
"""Line charts in the manual's looks."""

import math

from .svg import GREY, INK, LINE, element, line, picture, polyline, text


class Axis:
    """Maps values to a span of the page."""

    def __init__(self, low, high, start, end, logarithmic=False):
        self.low, self.high, self.start, self.end, self.logarithmic = low, high, start, end, logarithmic

    def __call__(self, value):
        value = min(max(value, self.low), self.high)
        if self.logarithmic:
            share = math.log(value / self.low) / math.log(self.high / self.low)
        else:
            share = (value - self.low) / (self.high - self.low)
        return self.start + share * (self.end - self.start)


class Chart:
    """A frame with two axes; everything that is added lies inside it."""

    left, right, top, bottom = 34, 8, 8, 30

    def __init__(self, width, height, x_range, y_range, logarithmic=False):
        self.width, self.height = width, height
        self.x = Axis(*x_range, self.left, width - self.right, logarithmic)
        self.y = Axis(*y_range, height - self.bottom, self.top)
        self.under, self.over = [], []

    def axes(self, x_ticks, y_ticks, x_title, y_title):
        """@param x_ticks pairs of value and words; y_ticks values."""
        base = self.height - self.bottom
        for value, words in x_ticks:
            at = self.x(value)
            self.under.append(line(at, self.top, at, base, LINE, 0.5))
            self.under.append(text(at, base + 10, words, 7.5, fill=GREY))
        for value in y_ticks:
            at = self.y(value)
            self.under.append(line(self.left, at, self.width - self.right, at, LINE, 0.5))
            self.under.append(text(self.left - 4, at + 2.6, str(value).replace("-", "\u2212"), 7.5, "end", GREY))
        self.under.append(text((self.left + self.width - self.right) / 2, self.height - 6, x_title, 8, fill=INK))
        middle = (self.top + base) / 2
        self.under.append(text(9, middle, y_title, 8, fill=INK, transform=f"rotate(-90 9 {middle})"))
        return self

    def curve(self, points, stroke, width=1.2, **values):
        """A line through the points; what lies below the frame ends at its edge."""
        kept = [(self.x(x), self.y(y)) for x, y in points if y >= self.y.low]
        if len(kept) > 1:
            self.over.append(polyline(kept, stroke, width, **values))
        return self

    def area(self, points, fill):
        """The space between the points and the bottom of the frame."""
        base = self.y.start
        outline = " ".join(f"{self.x(x):.2f},{self.y(y):.2f}" for x, y in points)
        first, last = self.x(points[0][0]), self.x(points[-1][0])
        self.over.append(element("polygon", points=f"{first:.2f},{base:.2f} {outline} {last:.2f},{base:.2f}", fill=fill))
        return self

    def key(self, entries):
        """Names of the curves at the top right, over one another, on paper of their own."""
        reach = 26 + max(len(words) for words, _, _ in entries) * 3.9
        x, y = self.width - self.right - reach - 3, self.top + 4
        self.over.append(element("rect", x=round(x, 2), y=y, width=round(reach, 2), height=len(entries) * 10 + 4, fill="white",
                                 fill_opacity=0.9))
        for number, (words, stroke, values) in enumerate(entries):
            at = y + 7 + number * 10
            self.over.append(line(x + 3, at, x + 18, at, stroke, **{"width": 1.6, **values}))
            self.over.append(text(x + 22, at + 2.6, words, 7.5, "start"))
        return self

    def drawing(self):
        frame = element("rect", x=self.left, y=self.top, width=self.width - self.left - self.right,
                        height=self.height - self.top - self.bottom, fill="none", stroke=GREY, stroke_width=0.7)
        return picture(self.width, self.height, [*self.under, *self.over, frame])

# SPDX-License-Identifier: GPL-3.0-or-later
"""The Scenes' figures and plots."""

from html import escape

from .charts import Chart
from .svg import AMBER, BLUE, DEEP, GREY, INK, TEAL, ManualError, line, text

SHOWN_AS = {"Mix Room": "Mix Room A", "Mix Room Small": "Mix Room B"}
SHORT_SECONDS, LONG_SECONDS = 0.6, 2.5
WIDTH, HEIGHT = 258, 122
FLOOR_DB = -70


def decibels(words):
    """A printed figure as a number."""
    return float(words.replace("\u2212", "-"))


def thinned(points, most=220):
    step = max(1, len(points) // most)
    return points[::step]


def decay_chart(report, scene):
    """Energy still to come, whole and in octaves."""
    blocks = report.series(scene, "decay")
    if not blocks:
        return None
    ends = next((seconds for seconds, level in blocks[0] if level < FLOOR_DB), LONG_SECONDS)
    seconds = SHORT_SECONDS if ends <= SHORT_SECONDS * 1.3 else LONG_SECONDS
    ticks = [0, 0.2, 0.4, 0.6] if seconds == SHORT_SECONDS else [0, 0.5, 1, 1.5, 2, 2.5]
    chart = Chart(WIDTH, HEIGHT, (0, seconds), (FLOOR_DB, 2))
    chart.axes([(tick, f"{tick:g}") for tick in ticks], [0, -20, -40, -60], "time (s)", "level (dB)")
    looks = [("whole", INK, {"width": 1.6}), ("125 Hz", BLUE, {"stroke_dasharray": "4 2"}),
             ("1 kHz", DEEP, {}), ("8 kHz", AMBER, {"stroke_dasharray": "1.5 1.5"})]
    for (_, stroke, values), block in [*zip(looks[1:], (blocks[1], blocks[2], blocks[4])), (looks[0], blocks[0])]:
        chart.curve(thinned([(x, y) for x, y in block if x <= seconds]), stroke, **{"width": 1.1, **values})
    return chart.key(looks).drawing()


def arrival_chart(report, scene):
    """The first 100 ms at the left ear, taken apart."""
    rows = report.series(scene, "waveform")[0]
    chart = Chart(WIDTH, HEIGHT, (0, 100), (FLOOR_DB, 3))
    chart.axes([(tick, str(tick)) for tick in (0, 20, 40, 60, 80, 100)], [0, -20, -40, -60], "time (ms)", "level (dB)")
    parts = [("reverb", 3, "#a9dcd7"), ("reflections", 6, DEEP), ("direct", 9, INK)]
    present = [part for part in parts if any(row[part[1]] > FLOOR_DB for row in rows)]
    for _, column, fill in present:
        chart.area([(row[0], row[column]) for row in rows], fill)
    return chart.key([(words, fill, {"width": 4}) for words, _, fill in reversed(present)]).drawing()


def spectrum_chart(report, scene):
    rows = report.series(scene, "spectrum")[0]
    chart = Chart(WIDTH, HEIGHT, (90, 18000), (-40, 20), logarithmic=True)
    chart.axes([(100, "100"), (200, "200"), (500, "500"), (1000, "1k"), (2000, "2k"), (5000, "5k"), (10000, "10k")],
               [-40, -20, 0, 20], "frequency (Hz)", "level (dB)")
    looks = [("direct", INK, {"width": 1.6}), ("reflections", DEEP, {"stroke_dasharray": "4 2"}), ("reverb", "#58b9b1", {})]
    shown = []
    for (words, stroke, values), column in zip(looks, (3, 2, 1)):
        points = [(row[0], row[column]) for row in rows if len(row) > column and row[column] > -40]
        if points:
            chart.curve(points, stroke, **{"width": 1.1, **values})
            shown.append((words, stroke, values))
    return chart.key(shown).drawing()


def against_default(report, scene):
    """Loudness beside the default Scene's, in LU."""
    default = report.scenes[0]
    column = ("Loudness, LUFS", "2.0")
    change = decibels(report.figure(scene, *column)) - decibels(report.figure(default, *column))
    return "0" if abs(change) < 0.05 else f"{change:+.1f}".replace("-", "\u2212")


FIGURES = [("T60", lambda report, scene: report.figure(scene, "T60, s", "whole"), "s"),
           ("C50", lambda report, scene: report.figure(scene, "C50, dB", "is"), "dB"),
           ("Direct : room", lambda report, scene: report.figure(scene, "Direct over the rest, dB", "is"), "dB"),
           ("Loudness", against_default, "LU")]


def card_figures(report, scene):
    """The four figures under a Scene's name."""
    boxes = []
    for name, value, unit in FIGURES:
        words = value(report, scene)
        shown = "\u2013" if words == "\u2013" else f"{escape(words)}<small>\u202f{unit}</small>"
        boxes.append(f"<div><b>{shown}</b>{name}</div>")
    return f'<div class="figures">{"".join(boxes)}</div>'


def card_pictures(report, scene, write):
    """Two plots beside each other. A Scene without reverb has no decay and shows its spectrum instead."""
    if scene not in report.figures:
        raise ManualError(f'The report knows no Scene "{scene}".')
    stem = scene.lower().replace(" ", "-")
    decay = decay_chart(report, scene)
    second = ("Energy still to come", decay) if decay else ("Level by frequency", spectrum_chart(report, scene))
    pictures = [("The first 100 ms", arrival_chart(report, scene), "arrivals"), (*second, "decay")]
    figures = []
    for caption, drawing, kind in pictures:
        address = write(f"{stem}-{kind}.svg", drawing)
        figures.append(f'<figure><img src="{address}" alt="{escape(scene)}: {caption.lower()}">'
                       f"<figcaption>{caption}</figcaption></figure>")
    return f'<div class="plots">{"".join(figures)}</div>'


def table(report):
    """All Scenes in the menu's order."""
    columns = [("T60", "s", "T60, s", "whole"), ("C50", "dB", "C50, dB", "is"), ("C80", "dB", "C80, dB", "is"),
               ("Direct : room", "dB", "Direct over the rest, dB", "is"), ("Loudness 2.0", "LUFS", "Loudness, LUFS", "2.0"),
               ("Loudness 5.1", "LUFS", "Loudness, LUFS", "5.1")]
    head = "".join(f"<th>{name}<span>{unit}</span></th>" for name, unit, _, _ in columns)
    rows = []
    for scene in report.scenes:
        cells = "".join(f"<td>{escape(report.figure(scene, column, part))}</td>" for _, _, column, part in columns)
        rows.append(f"<tr><th>{escape(SHOWN_AS.get(scene, scene))}</th>{cells}</tr>")
    return (f'<table class="scenes"><thead><tr><th>Scene</th>{head}</tr></thead><tbody>{"".join(rows)}</tbody></table>')


# Names that would lie on a neighbour's: where they go instead, as (anchor, right, down).
BESIDE = {"Home Theater": ("end", -6, 3), "Van": ("start", 6, 9), "Car": ("start", 6, -2), "Cinema": ("start", 6, 3),
          "Club Large": ("end", -6, -3), "Mix Room": ("end", -6, 3), "Living Room": ("start", 6, 3)}


def room_map(report):
    """Every Scene with a reverb by decay and dryness."""
    chart = Chart(520, 212, (0.06, 4), (-8, 12), logarithmic=True)
    chart.axes([(value, f"{value:g}") for value in (0.1, 0.2, 0.5, 1, 2)], [-5, 0, 5, 10], "T60 (s)", "direct : room (dB)")
    for scene in report.scenes:
        seconds, ratio = report.figure(scene, "T60, s", "whole"), report.figure(scene, "Direct over the rest, dB", "is")
        if "\u2013" in (seconds, ratio):
            continue
        x, y = chart.x(decibels(seconds)), chart.y(decibels(ratio))
        anchor, right, down = BESIDE.get(scene, ("start", 6, 3))
        chart.over.append(f'<circle cx="{x:.2f}" cy="{y:.2f}" r="3.4" fill="{TEAL}" stroke="{DEEP}" stroke-width="1"/>')
        chart.over.append(text(x + right, y + down, SHOWN_AS.get(scene, scene), 8.5, anchor))
    chart.under.append(text(chart.width - 12, 18, "drier", 8, "end", GREY, font_style="italic"))
    chart.under.append(text(chart.width - 12, chart.height - 36, "longer, more room", 8, "end", GREY, font_style="italic"))
    middle = chart.y(0)
    chart.under.append(line(chart.left, middle, chart.width - chart.right, middle, GREY, 0.7, stroke_dasharray="3 2"))
    return chart.drawing()

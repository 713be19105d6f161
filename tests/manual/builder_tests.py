# SPDX-License-Identifier: GPL-3.0-or-later
"""The manual's builder on inputs that are written here; expected values are worked out by hand."""

import re
import tempfile
import unittest
from itertools import combinations
from pathlib import Path
from xml.etree import ElementTree

from builder import charts, chapters, cover, layouts, scenes, window
from builder.report import Report
from builder.svg import ManualError

ROOT = Path(__file__).resolve().parents[2]

REPORT = """<html><table><tr><th rowspan="2">Scene</th><th colspan="2">T60, s</th><th>C80, dB</th></tr>
<tr><th>goal</th><th>whole</th><th>is</th></tr>
<tr><td><a href="#mix-room">Mix Room</a></td><td>0.28</td><td>0.30</td><td>27.2</td></tr></table>
<table><tr><td>another table</td></tr></table></html>"""

EVENNESS = """<!-- begin evenness -->
| block, room, movement | path | mean | median | worst of all runs |
| --- | ---: | ---: | ---: | ---: |
| 32, Club Large, at rest | plain | 1 | 2 | 3 |
| 32, Club Large, at rest | fast | 4 | 5 | 6 |
| 64, Club Large, at rest | fast | 7 | 8 | 9 |
| 64, longest reverb, at rest | fast | 1 | 1 | 1 |
<!-- end evenness -->
"""


class Readme(unittest.TestCase):
    def setUp(self):
        self.layouts = layouts.read_layouts((ROOT / "README.md").read_text(encoding="utf-8"))

    def test_gives_all_layouts_in_the_menus_order(self):
        self.assertEqual((len(self.layouts), self.layouts[0].name, self.layouts[-1].name), (32, "1.0", "13.1"))

    def test_tells_azimuth_elevation_and_low_frequencies_apart(self):
        by_name = {layout.name: layout for layout in self.layouts}
        self.assertEqual(by_name["2.0 +/-30°"].menu_name, "Stereo")
        self.assertEqual([speaker.azimuth for speaker in by_name["2.0 +/-30°"].speakers], [-35, 35])
        self.assertEqual(by_name["5.1.2"].speakers[3], layouts.Speaker(low_frequency=True))
        self.assertEqual(by_name["5.1.2"].speakers[6], layouts.Speaker(-80, 45))

    def test_falls_into_the_three_sections_of_the_menu(self):
        counts = [len(layouts.section(self.layouts, heading)) for heading in ("Mono/Stereo", "Horizontal Plane", "With Heights")]
        self.assertEqual(counts, [4, 14, 14])

    def test_with_a_missing_row_is_refused(self):
        readme = (ROOT / "README.md").read_text(encoding="utf-8")
        shortened = "\n".join(line for line in readme.splitlines() if not line.startswith("| Quad |"))
        with self.assertRaisesRegex(ManualError, "31 rows instead of 32"):
            layouts.read_layouts(shortened)

    def test_with_a_wrong_count_is_refused(self):
        readme = (ROOT / "README.md").read_text(encoding="utf-8").replace("| Quad | Quad | 4 |", "| Quad | Quad | 5 |")
        with self.assertRaisesRegex(ManualError, '4 channels for "Quad" and counts 5'):
            layouts.read_layouts(readme)

    def test_without_the_table_is_refused(self):
        with self.assertRaises(ManualError):
            layouts.read_layouts("# Nothing\n")


class Plans(unittest.TestCase):
    def test_put_ahead_up_right_to_the_right_and_overhead_into_the_middle(self):
        for speaker, expected in ((layouts.Speaker(0), (10, 6)), (layouts.Speaker(90), (14, 10)), (layouts.Speaker(180), (10, 14)),
                                  (layouts.Speaker(-90, 45), (8, 10)), (layouts.Speaker(0, 90), (10, 10))):
            where = layouts.place(speaker, 10, 10, 4)
            self.assertAlmostEqual(where[0], expected[0], places=6)
            self.assertAlmostEqual(where[1], expected[1], places=6)

    def test_number_every_channel_once(self):
        for layout in layouts.read_layouts((ROOT / "README.md").read_text(encoding="utf-8")):
            words = [node.text for node in ElementTree.fromstring(layouts.plan(layout)).iter("{http://www.w3.org/2000/svg}text")]
            numbers = [word for word in words[:-1] if word.isdigit()]
            self.assertEqual(sorted(numbers, key=int), [str(channel) for channel in range(1, len(layout.speakers) + 1)], layout.name)


    def test_let_no_marker_hide_another(self):
        for layout in layouts.read_layouts((ROOT / "README.md").read_text(encoding="utf-8")):
            boxes = [{name: float(node.get(name)) for name in ("x", "y", "width", "height")}
                     for node in ElementTree.fromstring(layouts.plan(layout)).iter("{http://www.w3.org/2000/svg}rect")]
            self.assertEqual(len(boxes), len(layout.speakers))
            for one, other in combinations(boxes, 2):
                apart = max(abs(one["x"] - other["x"]) - one["width"], abs(one["y"] - other["y"]) - one["height"])
                self.assertGreaterEqual(apart, 0, layout.name)


class Pictures(unittest.TestCase):
    def test_are_well_formed(self):
        layout = layouts.Layout("x", "A & B", (layouts.Speaker(30), layouts.Speaker(-30, 45)))
        for picture in (cover.drawing(layout), layouts.plan(layout), window.drawing(b"picture")):
            ElementTree.fromstring(picture)

    def test_that_are_drawn_by_hand_are_well_formed(self):
        for path in (ROOT / "docs/manual/figures").glob("*.svg"):
            ElementTree.parse(path)

    def test_of_the_window_carry_a_number_for_every_control_of_the_list_below(self):
        chapter = (ROOT / "docs/manual/chapters/02-window.md").read_text(encoding="utf-8")
        listed = re.findall(r"^(\d+)\. ", chapter.split("::: callouts")[1].split(":::")[0], re.MULTILINE)
        self.assertEqual(listed, [str(number) for number in range(1, len(window.NUMBERS) + 1)])


class Axes(unittest.TestCase):
    def test_map_ends_and_middle(self):
        axis = charts.Axis(0, 10, 100, 200)
        self.assertEqual([axis(0), axis(5), axis(10)], [100, 150, 200])
        decades = charts.Axis(1, 100, 0, 50, logarithmic=True)
        self.assertAlmostEqual(decades(10), 25)

    def test_keep_what_lies_outside_at_the_edge(self):
        axis = charts.Axis(0, 10, 100, 200)
        self.assertEqual([axis(-1), axis(11)], [100, 200])


class Reports(unittest.TestCase):
    def report(self, page=REPORT):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        (Path(folder.name) / "plots").mkdir()
        (Path(folder.name) / "index.html").write_text(page, encoding="utf-8")
        (Path(folder.name) / "plots" / "mix-room.decay.txt").write_text("0 0\n1 -20\n\n\n0 -1\n", encoding="utf-8")
        return Report(folder.name)

    def test_are_read_by_heading_and_scene(self):
        report = self.report()
        self.assertEqual(report.scenes, ["Mix Room"])
        self.assertEqual(report.figure("Mix Room", "T60, s", "whole"), "0.30")
        self.assertEqual(report.figure("Mix Room", "C80, dB", "is"), "27.2")

    def test_give_the_blocks_of_a_plot(self):
        report = self.report()
        self.assertEqual(report.series("Mix Room", "decay"), [[[0, 0], [1, -20]], [[0, -1]]])
        self.assertEqual(report.series("Mix Room", "density"), [])

    def test_refuse_a_column_that_is_not_there(self):
        with self.assertRaisesRegex(ManualError, "no \"Warmth\""):
            self.report().figure("Mix Room", "Warmth")

    def test_without_scenes_are_refused(self):
        with self.assertRaisesRegex(ManualError, "no table of Scenes"):
            self.report("<html><table><tr><td>head only</td></tr></table></html>")

    def test_that_do_not_exist_are_refused(self):
        with self.assertRaisesRegex(ManualError, "kestrum data report"):
            Report("/nowhere")

    def test_figures_with_a_typographic_minus_are_numbers(self):
        self.assertEqual(scenes.decibels("\u22125.5"), -5.5)


class Placeholders(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = Path(folder.name)
        (self.root / "docs").mkdir()
        (self.root / "docs" / "images").mkdir()
        self.work = self.root / "work"
        self.work.mkdir()
        self.chapters = chapters.Chapters(self.root, None, self.work)

    def filled(self, words):
        path = self.root / "chapter.md"
        path.write_text(words, encoding="utf-8")
        return self.chapters.fill(path)

    def test_for_a_screenshot_that_is_not_there_are_refused(self):
        with self.assertRaisesRegex(ManualError, "docs/images/help-menu.png is not there"):
            self.filled("{{ picture help-menu.png | The menu. }}")

    def test_for_a_screenshot_show_it_with_its_caption(self):
        (self.root / "docs" / "images" / "help-menu.png").write_bytes(b"picture")
        words = self.filled('{{ picture help-menu.png | The "help" menu. }}')
        self.assertIn('src="help-menu.png"', words)
        self.assertIn('<figcaption>The "help" menu.</figcaption>', words)
        self.assertEqual((self.work / "help-menu.png").read_bytes(), b"picture")

    def test_that_nobody_knows_are_refused(self):
        with self.assertRaisesRegex(ManualError, '"weather" is no placeholder'):
            self.filled("{{ weather today }}")

    def test_for_a_figure_that_is_missing_are_refused(self):
        with self.assertRaisesRegex(ManualError, "flow.svg is not there"):
            self.filled("{{ figure flow.svg | Flow. }}")

    def test_for_a_part_of_a_page_take_what_stands_between_its_marks(self):
        (self.root / "page.md").write_text("x\n<!-- begin speed -->\n| fast |\n<!-- end speed -->\ny", encoding="utf-8")
        self.assertEqual(self.filled("{{ part page.md speed }}"), "| fast |")

    def test_for_a_part_that_is_empty_are_refused(self):
        (self.root / "page.md").write_text("<!-- begin speed -->\n<!-- end speed -->", encoding="utf-8")
        with self.assertRaisesRegex(ManualError, 'no part "speed"'):
            self.filled("{{ part page.md speed }}")

    def test_for_worst_blocks_show_the_playing_path_in_one_scene(self):
        (self.root / "docs" / "performance.md").write_text(EVENNESS, encoding="utf-8")
        self.assertEqual(self.filled("{{ worst-blocks Club Large }}").splitlines(),
                         ["| Movement | 32 samples | 64 samples |", "| --- | ---: | ---: |", "| at rest | 5 / 6 | 8 / 9 |"])


if __name__ == "__main__":
    unittest.main()

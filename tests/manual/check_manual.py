# SPDX-License-Identifier: GPL-3.0-or-later
"""Builds the manual and reads it back: pages, headings, contents, letters, and words that the window shows too.

check_manual.py KESTRUM FOLDER; exit status 77 where the programs for it are not installed.
"""

import re
import shutil
import subprocess
import sys
from html import unescape
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
SKIPPED = 77
FEWEST_PAGES = 20
CONTROLS = ("Speaker Setup", "Scene", "Ambience", "Focus", "Head Rotation", "Master")
SHOWN_AS = {"Mix Room": "Mix Room A", "Mix Room Small": "Mix Room B"}  # as the plug-in's menu has them
# The letters that it may be set in, by the beginning of their names.
FACES = ("Lato", "DejaVu-Sans")


def say(program, *words):
    return subprocess.run([program, *map(str, words)], capture_output=True, text=True, check=True).stdout


def plain(words):
    """Words alone: one blank between them, hyphenation and quotation marks' shapes out of the way."""
    words = words.replace("\u00a0", " ").replace("\u202f", " ")
    return re.sub(r"\s+", " ", words.translate(str.maketrans("\u2018\u2019\u201c\u201d", "''\"\""))).strip()


def headings(page):
    """(anchor, words) of every entry of the contents; there is one for each heading of the text."""
    contents, body = page.split("<main>")
    entries = re.findall(r'<li><a href="#([^"]+)">(.*?)</a>', contents, re.DOTALL)
    bare = [(name, plain(unescape(re.sub(r'<span class="toc-section-number">.*?</span>|<[^>]+>', "", words))))
            for name, words in entries]
    count = len(re.findall(r"<h[12]\b", body))
    if count != len(bare):
        raise SystemExit(f"{count} headings and {len(bare)} entries in the contents")
    return bare


def destinations(pdf):
    """The page of every anchor."""
    return {name: int(page) for page, name in re.findall(r'^\s*(\d+) \[.*\] "(.*)"$', say("pdfinfo", "-dests", pdf), re.MULTILINE)}


def literals(path):
    """What a source's string literals spell, one after another."""
    lines = [line for line in path.read_text(encoding="utf-8").splitlines() if not line.startswith("#include")]
    found = re.findall(r'"((?:[^"\\]|\\.)*)"', "\n".join(lines))
    return plain("".join(found).replace("\\n", " "))


class Checks:
    def __init__(self):
        self.failures = []

    def that(self, true, complaint):
        if not true:
            self.failures.append(complaint)

    def pages(self, pages, page):
        self.that(len(pages) >= FEWEST_PAGES, f"{len(pages)} pages instead of {FEWEST_PAGES} or more")
        for number, words in enumerate(pages, 1):
            self.that(len(words) > 40, f"page {number} is empty")
        self.that("{{" not in page, "a placeholder was not filled")

    def contents(self, pages, page, pdf):
        """Each heading stands on the page that its anchor and the contents tell."""
        places = destinations(pdf)
        listed = " ".join(pages[1:places[headings(page)[0][0]] - 1])
        for name, words in headings(page):
            number = places.get(name)
            self.that(number is not None, f'no anchor for "{words}"')
            if number is None:
                continue
            self.that(words in pages[number - 1], f'"{words}" is not on page {number}')
            self.that(re.search(rf"{re.escape(words)}[ .]*\b{number}\b", listed), f'the contents lack "{words}", page {number}')

    def letters(self, pdf):
        for line in say("pdffonts", pdf).splitlines()[2:]:
            name = line.split()[0].partition("+")[2]
            self.that(name.startswith(FACES), f"set in {name}")

    def names(self, text, page):
        """Every setup in the tables, every Scene and control with a section of its own."""
        readme = (ROOT / "README.md").read_text(encoding="utf-8")
        rows = readme[readme.index("| Layout | Menu name |"):].split("\n\n", 1)[0].splitlines()[2:]
        for row in rows:
            name = row.split("|")[2].strip()
            self.that(name in text, f"the setup {name} is missing")
        source = (ROOT / "src/parameters/core/Scene.cpp").read_text(encoding="utf-8")
        scenes = re.findall(r'^    \{"([^"]+)",\s+Room', source, re.MULTILINE)
        self.that(len(scenes) == 16, f"{len(scenes)} Scenes in the source")
        sections = [words for _, words in headings(page)]
        for name in [*(SHOWN_AS.get(scene, scene) for scene in scenes), *CONTROLS]:
            self.that(name in sections, f"{name} has no section")

    def claims(self, page):
        """What the Scenes' sections say of the loudest, the longest and the driest is true of the figures beside them."""
        table = page[page.index('<table class="scenes">'):].split("</table>", 1)[0]
        figures = {}
        for name, cells in re.findall(r"<tr>\s*<th>([^<]+)</th>(.*?)</tr>", table.split("<tbody>")[1], re.DOTALL):
            values = [words.strip().replace("\u2212", "-") for words in re.findall(r"<td>([^<]*)</td>", cells)]
            figures[plain(name)] = [float(words) if re.fullmatch(r"-?[\d.]+", words) else float("-inf") for words in values]
        self.that(len(figures) == 16, f"figures of {len(figures)} Scenes")
        for column, (claim, name) in ((0, ("longest decay", "Stadium")), (3, ("least room of those with a reverb", "Mix Room B")),
                                      (4, ("loudest", "Stadium"))):
            with_reverb = {scene: values for scene, values in figures.items() if values[0] > 0}
            most = max(with_reverb, key=lambda scene: with_reverb[scene][column])
            self.that(most == name, f"the {claim} is that of {most}, not of {name}")

    def warning(self):
        """The warning is quoted as the window shows it."""
        shown = literals(ROOT / "src/ui/WarningOverlay.cpp")
        chapter = (ROOT / "docs/manual/chapters/12-troubleshooting.md").read_text(encoding="utf-8")
        quoted = plain(" ".join(line[1:] for line in chapter.splitlines() if line.startswith(">")).replace("\\.", "."))
        self.that("An error has occurred" in quoted, "the warning is not quoted")
        for part in re.split(r"\*[^*]+\*", quoted):
            self.that(part.strip() in shown, f'the window does not say "{part.strip()}"')


def main(program, folder):
    missing = [name for name in ("pandoc", "weasyprint", "pdfinfo", "pdftotext", "pdffonts", "gnuplot") if not shutil.which(name)]
    if missing:
        print(f"Skipped: {', '.join(missing)} not installed; scripts/setup --manual does it.")
        return SKIPPED
    folder.mkdir(parents=True, exist_ok=True)
    say(ROOT / "scripts/build-manual", folder, "--program", program, "--keep", folder / "pages")
    pdf = folder / "Orvane KESTRUM Manual.pdf"
    page = (folder / "pages" / "manual.html").read_text(encoding="utf-8")
    pages = [plain(words) for words in say("pdftotext", "-layout", pdf, "-").split("\f")[:-1]]
    checks = Checks()
    checks.pages(pages, page)
    checks.contents(pages, page, pdf)
    checks.letters(pdf)
    checks.names(" ".join(pages), page)
    checks.claims(page)
    checks.warning()
    for failure in checks.failures:
        print(f"The manual: {failure}.")
    print(f"{len(pages)} pages, {len(headings(page))} headings, {pdf.stat().st_size // 1024} KiB.")
    return 1 if checks.failures else 0


if __name__ == "__main__":
    try:
        sys.exit(main(Path(sys.argv[1]), Path(sys.argv[2])))
    except subprocess.CalledProcessError as error:
        sys.exit(f"{error.cmd[0]}: {error.stderr}")

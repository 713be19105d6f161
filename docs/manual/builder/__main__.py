# SPDX-License-Identifier: GPL-3.0-or-later
"""See scripts/build-manual."""

import argparse
import re
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

from . import cover
from .chapters import Chapters
from .report import Report, make_report
from .svg import ManualError

ROOT = Path(__file__).resolve().parents[3]
NAME = "Orvane KESTRUM Manual.pdf"
COVER_LAYOUT = "9.1.6"
FONT_DATE = "'created' timestamp seems very low"  # said of Debian's Lato, and of no consequence
DATA = "/opt/Tenmarsh/OrvaneVSTPlugin/data"


def version():
    found = re.search(r"project\(OrvaneKestrum VERSION ([\d.]+)", (ROOT / "CMakeLists.txt").read_text(encoding="utf-8"))
    return found.group(1)


def run(command, words=None):
    """@return what the program said. Any complaint of it is an error: a link to nowhere, a picture that is not there."""
    try:
        done = subprocess.run(command, input=words, capture_output=True, text=True, check=False)
    except FileNotFoundError:
        raise ManualError(f"{command[0]} is not installed: run scripts/setup --manual.") from None
    complaints = [line for line in done.stderr.splitlines() if line.strip() and not line.startswith(FONT_DATE)]
    if done.returncode or complaints:
        raise ManualError(f"{command[0]}: {' '.join(complaints) or done.returncode}")
    return done.stdout


def build(out, report, work):
    manual = ROOT / "docs" / "manual"
    chapters = Chapters(ROOT, report, work)
    words = chapters.text()
    chapters.write("cover.svg", cover.drawing(next(layout for layout in chapters.layouts() if layout.name == COVER_LAYOUT)))
    shutil.copy(manual / "manual.css", work / "manual.css")
    page = run(["pandoc", "--from", "markdown-implicit_figures", "--to", "html5", "--standalone", "--toc", "--toc-depth", "2",
                "--number-sections", "--columns", "1000", "--template", str(manual / "manual.html"), "--variable", f"version={version()}",
                "--metadata", "title=Orvane KESTRUM Manual"], words)
    (work / "manual.html").write_text(page, encoding="utf-8")
    pdf = work / NAME
    run(["weasyprint", str(work / "manual.html"), str(pdf)])
    out.parent.mkdir(parents=True, exist_ok=True)
    shutil.copy(pdf, out)


def arguments():
    parser = argparse.ArgumentParser(prog="build-manual", description=f"Makes the manual, \"{NAME}\".")
    parser.add_argument("out", nargs="?", default=ROOT / "build", type=Path,
                        help="where it goes: a file that ends in .pdf, else a folder; default: build/")
    parser.add_argument("--report", metavar="DIR", help="figures of an earlier kestrum data report; default: measured now")
    parser.add_argument("--program", default=ROOT / "build" / "bin" / "kestrum", metavar="FILE", help="the built kestrum")
    parser.add_argument("--data", default=DATA, metavar="DIR", help=f"the data folder; default: {DATA}")
    parser.add_argument("--keep", metavar="DIR", type=Path, help="leave the page and its pictures here")
    return parser.parse_args()


def main():
    options = arguments()
    out = options.out if options.out.suffix == ".pdf" else options.out / NAME
    with tempfile.TemporaryDirectory() as place:
        work = options.keep or Path(place) / "pages"
        work.mkdir(parents=True, exist_ok=True)
        folder = options.report or str(Path(place) / "report")
        if not options.report:
            make_report(str(options.program), options.data, folder)
        build(out, Report(folder), work)
    print(f"Manual: {out}")


if __name__ == "__main__":
    try:
        main()
    except ManualError as error:
        sys.exit(f"build-manual: {error}")

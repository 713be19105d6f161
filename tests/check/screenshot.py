#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Takes the picture that docs/tools/kestrum-check.md shows. Usage: screenshot.py OUTDIR/index.html PICTURE.png"""
import pathlib
import sys

from webdriver import Browser

page, picture = sys.argv[1:]
with Browser() as browser:
    browser.resize(1360, 1180)
    browser.open(pathlib.Path(page).resolve().as_uri())
    browser.run("""
        document.documentElement.style.scrollbarWidth = "none";
        const { player, facts } = mixCheck;
        await player.seek(0.4 * facts.seconds);
        document.getElementById("track-6").click();
        await document.fonts.ready;
        await new Promise(requestAnimationFrame);""")
    browser.screenshot(picture)

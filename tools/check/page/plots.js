// SPDX-License-Identifier: GPL-3.0-or-later
"use strict";

/** Drawing on canvases that keep sharp at every width. Colours come from the style sheet. */
const plots = (() => {
    const colour = (name) => getComputedStyle(document.documentElement).getPropertyValue(name).trim();

    /** @return the 2d context of a cleared canvas and its size in CSS pixels. */
    function begin(canvas) {
        const { width, height } = canvas.getBoundingClientRect();
        const ratio = window.devicePixelRatio || 1;
        canvas.width = Math.round(width * ratio);
        canvas.height = Math.round(height * ratio);
        const pen = canvas.getContext("2d");
        pen.scale(ratio, ratio);
        pen.font = "12px Lato, sans-serif";
        pen.textBaseline = "middle";
        return { pen, width, height };
    }

    function line(pen, points, style, width, dash = []) {
        pen.beginPath();
        points.forEach(([x, y], index) => (index ? pen.lineTo(x, y) : pen.moveTo(x, y)));
        pen.strokeStyle = style;
        pen.lineWidth = width;
        pen.setLineDash(dash);
        pen.lineJoin = "round";
        pen.stroke();
        pen.setLineDash([]);
    }

    /** The matched waveform, and over it the short-term loudness. `share` of it, 0 to 1, has been played. */
    function waveform(canvas, track, { peak, seconds, share, loudness }) {
        const { pen, width, height } = begin(canvas);
        const middle = height / 2, scale = (height / 2 - 6) / peak;
        const columns = track.lowest.length;
        const bars = Math.floor(width / 3);
        for (let bar = 0; bar < bars; ++bar) {
            const from = Math.floor((bar * columns) / bars);
            const to = Math.max(from + 1, Math.floor(((bar + 1) * columns) / bars));
            const high = Math.max(...track.highest.slice(from, to)), low = Math.min(...track.lowest.slice(from, to));
            pen.fillStyle = colour(bar / bars < share ? "--lit" : "--rest");
            const top = Math.min(middle - high * scale, middle - 0.5);
            pen.fillRect(bar * 3, top, 2, Math.max(middle - low * scale - top, 1));
        }
        // Ten values a second; the first three seconds of a short-term loudness are not whole yet.
        const level = (value) => height - 6 - ((Math.max(value, loudness - 24) - loudness + 24) / 36) * (height - 12);
        const curve = track.shortTerm.map((value, index) => [((index + 1) / 10 / seconds) * width, level(value)]);
        line(pen, curve.slice(Math.min(29, curve.length - 1)), colour("--amber"), 1.5);
        const x = share * width;
        line(pen, [[x, 0], [x, height]], colour("--hot"), 1.5);
    }

    const frequencies = [31.5, 63, 125, 250, 500, 1000, 2000, 4000, 8000, 16000];
    const named = (hz) => (hz >= 1000 ? hz / 1000 + "k" : String(hz));
    const left = 40, right = 10, bottom = 22, top = 10;

    function axes(pen, width, height, bandsHz, low, high, step, unit) {
        const first = Math.log2(bandsHz[0]), last = Math.log2(bandsHz[bandsHz.length - 1]);
        const x = (hz) => left + ((Math.log2(hz) - first) / (last - first)) * (width - left - right);
        const y = (db) => top + ((high - db) / (high - low)) * (height - top - bottom);
        pen.fillStyle = colour("--label");
        pen.textAlign = "right";
        for (let db = Math.ceil(low / step) * step; db <= high; db += step) {
            line(pen, [[left, y(db)], [width - right, y(db)]], colour(db === 0 && low < 0 && high > 0 ? "--rest" : "--grid"), 1);
            pen.fillText((unit && db > 0 ? "+" : "") + String(db).replace("-", "−"), left - 6, y(db));
        }
        pen.textAlign = "center";
        const sparse = width < 480;
        frequencies.forEach((hz, index) => {
            line(pen, [[x(hz), top], [x(hz), height - bottom]], colour("--grid"), 1);
            if (!sparse || index % 2 === 1) pen.fillText(named(hz), x(hz), height - bottom / 2 + 2);
        });
        return { x, y };
    }

    /** Long-term spectra of a track and of those it is compared with. */
    function spectrum(canvas, bandsHz, curves) {
        const { pen, width, height } = begin(canvas);
        const all = curves.flatMap((curve) => curve.levels).filter((level) => level > -150);
        const high = Math.ceil((Math.max(...all) + 3) / 10) * 10, low = Math.max(high - 60, Math.floor(Math.min(...all) / 10) * 10);
        const { x, y } = axes(pen, width, height, bandsHz, low, high, 10, false);
        pen.save();
        pen.beginPath();
        pen.rect(left, top, width - left - right, height - top - bottom);
        pen.clip();
        for (const curve of curves)
            line(pen, curve.levels.map((level, band) => [x(bandsHz[band]), y(level)]), colour(curve.colour), curve.width, curve.dash);
        pen.restore();
    }

    /** What a track has more or less than the reference, band by band. */
    function difference(canvas, bandsHz, levels, reach) {
        const { pen, width, height } = begin(canvas);
        const { x, y } = axes(pen, width, height, bandsHz, -reach, reach, 6, true);
        const inside = (db) => y(Math.max(-reach, Math.min(reach, db)));
        const step = x(bandsHz[1]) - x(bandsHz[0]);
        levels.forEach((db, band) => {
            pen.fillStyle = colour(db >= 0 ? "--lit" : "--amber");
            pen.fillRect(x(bandsHz[band]) - step * 0.36, Math.min(y(0), inside(db)), step * 0.72, Math.abs(inside(db) - y(0)));
        });
    }

    /** The same in a table's cell. */
    function sparkline(canvas, levels, reach) {
        const { pen, width, height } = begin(canvas);
        const middle = height / 2, step = width / levels.length;
        line(pen, [[0, middle], [width, middle]], colour("--rest"), 1);
        levels.forEach((db, band) => {
            const size = (Math.max(-reach, Math.min(reach, db)) / reach) * (height / 2);
            pen.fillStyle = colour(db >= 0 ? "--lit" : "--amber");
            pen.fillRect(band * step, Math.min(middle, middle - size), Math.max(1, step * 0.8), Math.abs(size));
        });
    }

    return { waveform, spectrum, difference, sparkline };
})();

// SPDX-License-Identifier: GPL-3.0-or-later
"use strict";

(() => {
    const facts = JSON.parse(document.getElementById("facts").textContent);
    const element = (id) => document.getElementById(id);
    const reference = 0; // "Mix Room", the first Scene
    const downmix = facts.tracks.length - 1;
    const referenceName = facts.tracks[reference].shownAs;
    const seekSeconds = 5;
    let scene = reference; // what A stands for

    /** Says once that the sound cannot be played here; without sound there is nothing to press. */
    let refused = false;
    function refuse() {
        refused = true;
        element("refusal").hidden = false;
        element("play").disabled = true;
    }

    // Sound lies behind this script in the page; until all of it is there, what is missing is waited for.
    const loaded = new Promise((resolve) => {
        if (document.readyState !== "loading") resolve();
        else document.addEventListener("DOMContentLoaded", resolve);
    });
    async function textOf(track, window) {
        const id = `sound-${track}-${window}`;
        if (!element(id)) await loaded;
        return element(id).textContent;
    }
    if (!window.AudioContext || !window.OfflineAudioContext) return refuse();
    const context = new AudioContext({ sampleRate: facts.sound.sampleRate, latencyHint: "interactive" });
    const player = new Player(context, facts.sound, facts.tracks, textOf, facts.seconds);
    player.failed = () => {
        refuse();
        if (player.playing) player.pause(), showPlaying();
    };
    const track = () => facts.tracks[player.wanted ?? player.selected];

    // Numbers as people read them.
    const fixed = (number, digits = 1) => {
        const text = Math.abs(number).toFixed(digits);
        return (number < 0 && Number(text) !== 0 ? "−" : "") + text;
    };
    const signed = (number, digits = 1) => (number > 0 && Number(number.toFixed(digits)) !== 0 ? "+" : "") + fixed(number, digits);
    const clock = (seconds, digits = 1) => {
        const tenth = 10 ** digits, whole = Math.floor(seconds * tenth + 1e-6) / tenth;
        return `${Math.floor(whole / 60)}:${(whole % 60).toFixed(digits).padStart(digits ? 3 + digits : 2, "0")}`;
    };
    const make = (name, attributes = {}, ...children) => {
        const made = Object.assign(document.createElement(name), attributes);
        made.append(...children);
        return made;
    };

    // The parts that never change.
    const kHz = facts.sampleRate / 1000;
    document.title = `${facts.mix} – Mix check`;
    element("mix").textContent = facts.mix;
    element("about").textContent = `Mix check · ${facts.layout} · ${facts.channelCount} channels · ${kHz} kHz · ${clock(facts.mixSeconds, 0)}`;
    element("length").textContent = clock(facts.seconds);
    element("timeline").setAttribute("aria-valuemax", facts.seconds.toFixed(1));
    for (const place of document.querySelectorAll(".reference")) place.textContent = referenceName;
    element("matching").textContent =
        `Every copy was brought to ${fixed(facts.loudness)} LUFS integrated (EBU R 128) by gain alone, without a limiter.` +
        (facts.limitedBy ? ` Louder was not possible: “${facts.limitedBy}” would peak above ${fixed(facts.highestTruePeakDb)} dBTP.` : "");
    const decibels = (gain) => (gain ? `${fixed(20 * Math.log10(gain))} dB` : "–");
    facts.downmix.forEach(([name, left, right], index) => element("downmix").append(make("tr", {},
        make("td", {}, `${index + 1} ${name}`), make("td", { className: "number" }, decibels(left)), make("td", { className: "number" }, decibels(right)))));

    const differenceOf = (index) => facts.tracks[index].spectrumDb.map((level, band) => {
        const against = facts.tracks[reference].spectrumDb[band];
        return level < -150 || against < -150 ? 0 : level - against; // beyond what this sample rate holds
    });

    // One scale for the large plot of every Scene: 12 dB, or as many sixes as the greatest difference needs, to 24.
    const greatest = Math.max(...facts.tracks.flatMap((_, index) => differenceOf(index).map(Math.abs)));
    const reach = Math.min(24, Math.max(12, Math.ceil(greatest / 6) * 6));

    function trackRow(index) {
        const { shownAs, loudness, truePeakDb, loudnessRange, gainDb, file } = facts.tracks[index];
        const radio = make("input", { type: "radio", name: "track", value: index, id: `track-${index}`, checked: index === reference });
        radio.addEventListener("change", () => choose(index));
        const curve = make("canvas", { ariaHidden: "true" });
        const number = (text, more = "") => make("td", { className: "number " + more }, text);
        const row = make("tr", { className: "track", id: `row-${index}` },
            make("td", {}, make("label", {}, radio, shownAs)),
            number(fixed(loudness)), number(fixed(truePeakDb), "wide"), number(fixed(loudnessRange), "wide"), number(signed(gainDb)),
            make("td", {}, curve),
            make("td", { className: "wide" }, make("a", { href: encodeURI(file), ariaLabel: `${shownAs} as FLAC` }, "FLAC")));
        row.addEventListener("click", (event) => { if (!event.target.closest("a, label")) radio.click(); });
        return row;
    }
    let section = "";
    facts.tracks.forEach((entry, index) => {
        if (entry.section !== section)
            element("tracks").append(make("tr", { className: "heading" }, make("th", { colSpan: 7, scope: "colgroup" }, entry.section)));
        section = entry.section;
        element("tracks").append(trackRow(index));
    });

    // Everything that a choice changes.
    function choose(index) {
        if (index !== downmix) scene = index;
        player.choose(index);
        element(`track-${index}`).checked = true;
        for (const row of document.querySelectorAll("tr.track")) row.classList.toggle("chosen", row.id === `row-${index}`);
        element("now").textContent = track().shownAs;
        element("name-a").textContent = facts.tracks[scene].shownAs;
        element("choose-a").setAttribute("aria-pressed", index !== downmix);
        element("choose-b").setAttribute("aria-pressed", index === downmix);
        showFigures();
        drawSpectra();
        drawWaveform();
    }

    function showFigures() {
        const { loudness, loudnessRange, truePeakDb, gainDb } = track();
        const figures = [
            ["Loudness as rendered", fixed(loudness), "LUFS"], ["Gain to match", signed(gainDb), "dB"], ["Matched", fixed(loudness + gainDb), "LUFS"],
            ["True peak, rendered", fixed(truePeakDb), "dBTP"], ["True peak, matched", fixed(truePeakDb + gainDb), "dBTP"], ["Loudness range", fixed(loudnessRange), "LU"]];
        element("figures").replaceChildren(...figures.map(([name, value, unit]) =>
            make("div", {}, make("dt", {}, name), make("dd", {}, value + " ", make("small", {}, unit)))));
    }

    function drawSpectra() {
        const index = player.wanted ?? player.selected, difference = differenceOf(index);
        element("spectrum-name").textContent = track().shownAs;
        element("spectrum-against").hidden = index === reference;
        plots.spectrum(element("spectrum"), facts.bandsHz, [
            { levels: facts.tracks[reference].spectrumDb, colour: "--label", width: 1.5, dash: [5, 4] },
            { levels: track().spectrumDb, colour: "--lit", width: 2 }]);
        plots.difference(element("difference"), facts.bandsHz, difference, reach);
        const words = index === reference ? "This is the Scene that the others are compared with."
            : `${track().shownAs}: ${bandWords(difference)}.`;
        element("spectrum-words").textContent = words;
        element("spectrum").setAttribute("aria-label", `Long-term spectrum of ${track().shownAs} and ${referenceName}`);
        element("difference").setAttribute("aria-label", words);
    }

    /** The difference in three numbers: mean level of bass, middle and treble. */
    function bandWords(difference) {
        const mean = (low, high) => {
            const inside = difference.filter((_, band) => facts.bandsHz[band] >= low && facts.bandsHz[band] < high);
            return inside.reduce((sum, value) => sum + value, 0) / inside.length;
        };
        return `${signed(mean(20, 250))} dB below 250 Hz, ${signed(mean(250, 4000))} dB to 4 kHz, ${signed(mean(4000, 20000))} dB above`;
    }

    const peak = Math.max(...facts.tracks.map((entry) => Math.max(...entry.highest, ...entry.lowest.map(Math.abs))), 0.001);
    function drawWaveform() {
        const place = player.place;
        plots.waveform(element("waveform"), track(), { peak, seconds: facts.seconds, share: place / facts.seconds, loudness: facts.loudness });
        element("place").textContent = clock(place);
        const timeline = element("timeline");
        timeline.setAttribute("aria-valuenow", place.toFixed(1));
        timeline.setAttribute("aria-valuetext", `${clock(place, 0)} of ${clock(facts.seconds, 0)}`);
    }

    function drawAll() {
        drawWaveform();
        drawSpectra();
        document.querySelectorAll("#tracks canvas").forEach((canvas, index) => plots.sparkline(canvas, differenceOf(index), 12));
    }

    // Playing.
    function showPlaying() {
        element("play").classList.toggle("playing", player.playing);
        element("play").setAttribute("aria-label", player.playing ? "Pause" : "Play");
    }
    async function playOrPause() {
        if (refused) return;
        if (player.playing) {
            player.pause();
        } else {
            await context.resume();
            await player.play();
        }
        showPlaying();
    }
    // While nothing plays, the window at the playhead is decoded ahead, so that playing begins at once: where a drag or a
    // held key comes to rest, and not in every window that it passes.
    const restMilliseconds = 150;
    let rest;
    async function seek(seconds) {
        const moved = player.seek(seconds);
        clearTimeout(rest);
        rest = setTimeout(() => { if (!player.playing) player.decode(player.windowHere); }, restMilliseconds);
        drawWaveform();
        await moved;
    }
    const toggleDownmix = () => choose(track() === facts.tracks[downmix] ? scene : downmix);
    const step = (by) => {
        const next = Math.min(Math.max((player.wanted ?? player.selected) + by, 0), facts.tracks.length - 1);
        choose(next);
        if (document.activeElement.name === "track") element(`track-${next}`).focus();
    };

    element("play").addEventListener("click", playOrPause);
    element("choose-a").addEventListener("click", () => choose(scene));
    element("choose-b").addEventListener("click", () => choose(downmix));
    element("volume").addEventListener("input", (event) =>
        player.volume.gain.setTargetAtTime(Number(event.target.value) ** 2, context.currentTime, 0.01));

    const placeAt = (event) => {
        const box = element("timeline").getBoundingClientRect();
        return ((event.clientX - box.left) / box.width) * facts.seconds;
    };
    element("timeline").addEventListener("pointerdown", (event) => {
        element("timeline").setPointerCapture(event.pointerId);
        seek(placeAt(event));
    });
    element("timeline").addEventListener("pointermove", (event) => {
        if (element("timeline").hasPointerCapture(event.pointerId) && event.buttons) seek(placeAt(event));
    });

    const keys = {
        " ": playOrPause,
        ArrowLeft: () => seek(player.place - seekSeconds),
        ArrowRight: () => seek(player.place + seekSeconds),
        ArrowUp: () => step(-1),
        ArrowDown: () => step(1),
        Home: () => seek(0),
        b: toggleDownmix,
        B: toggleDownmix,
    };
    document.addEventListener("keydown", (event) => {
        const action = keys[event.key];
        if (!action || event.ctrlKey || event.altKey || event.metaKey) return;
        const onVolume = event.target === element("volume") && event.key !== " " && event.key.toLowerCase() !== "b";
        const pressesIt = event.key === " " && event.target.closest("button, a, summary");
        if (onVolume || pressesIt) return; // what these keys do there by themselves
        event.preventDefault();
        action();
    });

    setInterval(() => {
        const wasPlaying = player.playing;
        player.follow();
        if (wasPlaying && !player.playing) showPlaying(), drawWaveform();
    }, 200);
    const animate = () => {
        if (player.playing) drawWaveform();
        requestAnimationFrame(animate);
    };
    requestAnimationFrame(animate);
    new ResizeObserver(drawAll).observe(document.body);
    document.fonts.ready.then(drawAll);

    choose(reference);
    Promise.resolve(player.decode(0)[reference]).then(() => (element("play").disabled = refused));
    window.mixCheck = { facts, player, context, textOf }; // for the browser's console, and for tests
})();

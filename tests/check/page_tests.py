#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""The page of a mix check in a real browser, opened from disk as a user opens it.

Usage: page_tests.py KESTRUM [unittest's options]. Exit status 77 where there is no browser.
The mix holds a gliding tone on the left, so that every moment of the plain downmix is known by formula.
"""
import array
import math
import os
import pathlib
import random
import subprocess
import sys
import tempfile
import unittest
import wave

from webdriver import Browser, programs

RATE = 48000
SECONDS = 13  # four windows, the last one not full
DOWNMIX = 16


def tone(frame):
    """300 Hz, rising by 40 Hz a second; the same formula stands in the page's tests below."""
    place = frame / RATE
    return 0.4 * math.sin(2 * math.pi * (300 + 40 * place) * place)


def write_mix(path):
    noise = random.Random(7)
    frames = SECONDS * RATE
    samples = array.array("h", bytes(2 * 6 * frames))
    for frame in range(frames):
        samples[6 * frame] = round(32767 * tone(frame))
        samples[6 * frame + 1] = round(3000 * (noise.random() - 0.5))
        samples[6 * frame + 5] = round(6000 * (noise.random() - 0.5))
    with wave.open(str(path), "wb") as file:
        file.setnchannels(6)
        file.setsampwidth(2)
        file.setframerate(RATE)
        file.writeframes(samples.tobytes())


# Waits for a condition that a script states, by the page's own clock.
UNTIL = """
const until = (condition) => new Promise((resolve, reject) => {
    const end = performance.now() + 30000;
    const look = () => condition() ? resolve() : performance.now() > end ? reject(Error("waited in vain for " + condition)) : setTimeout(look, 10);
    look();
});
const { player, facts, context } = mixCheck;
"""

# Renders part of the music in an offline context, with switches at given times. Returns both channels.
OFFLINE = """
const offline = async (from, seconds, first, switches) => {
    const start = 0.05;
    const quiet = new OfflineAudioContext(2, Math.round((start + seconds) * 48000), 48000);
    const other = new Player(quiet, facts.sound, facts.tracks, mixCheck.textOf, facts.seconds);
    other.selected = first;
    other.gains.forEach((gain, index) => { gain.gain.value = index === first ? 1 : 0; });
    other.position = from;
    await other.play(start);
    for (let window = other.windowHere + 1; window * other.windowSeconds < from + seconds; ++window)
        await Promise.all(other.start(window));
    for (const [track, when] of switches) other.select(track, start + when);
    const rendered = await quiet.startRendering();
    return [0, 1].map((channel) => rendered.getChannelData(channel).slice(start * 48000));
};
const greatest = (from, to, value) => { let most = 0; for (let index = from; index < to; ++index) most = Math.max(most, Math.abs(value(index))); return most; };
"""


class PageTests(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory(prefix="kestrum-page-")
        folder = pathlib.Path(cls.folder.name)
        mix = folder / "Night & <Drive>.wav"
        write_mix(mix)
        subprocess.run([PROGRAM, "check", mix, folder / "out", "--layout", "5.1 ITU"], check=True,
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        cls.url = (folder / "out" / "index.html").as_uri()
        cls.browser = Browser()

    @classmethod
    def tearDownClass(cls):
        cls.browser.__exit__()
        cls.folder.cleanup()

    def setUp(self):
        self.browser.resize(1280, 1000)
        self.browser.open(self.url)
        self.script("await until(() => !document.getElementById('play').disabled)")

    def tearDown(self):
        self.assertEqual([], self.browser.log(), "the console stays empty")

    def script(self, body, *given):
        return self.browser.run(UNTIL + body, *given)

    def offline(self, body, *given):
        return self.browser.run(UNTIL + OFFLINE + body, *given)

    def heard(self):
        return self.script("return document.getElementById('now').textContent")

    def start_playing(self):
        self.browser.click("#play")
        self.script("await until(() => player.playing && player.place > 0.1)")

    def test_shows_the_mix_and_all_its_tracks(self):
        rows, name, about = self.script(
            "return [document.querySelectorAll('tr.track').length, document.getElementById('mix').textContent,"
            " document.getElementById('about').textContent]")
        self.assertEqual(17, rows)
        self.assertEqual("Night & <Drive>.wav", name)
        self.assertIn("5.1 ITU · 6 channels · 48 kHz · 0:13", about)

    def test_needs_nothing_but_itself(self):
        loaded = self.script("return performance.getEntriesByType('resource').map((entry) => entry.name)")
        self.assertEqual([], [name for name in loaded if not name.startswith("data:")])

    def test_plays_sound_and_pauses(self):
        self.start_playing()
        level = self.script("""
            const ear = context.createAnalyser(), samples = new Float32Array(2048);
            player.volume.connect(ear);
            const level = () => { ear.getFloatTimeDomainData(samples); return Math.max(...samples.map(Math.abs)); };
            await until(() => level() > 0.01);
            return level();""")
        self.assertGreater(level, 0.01)
        self.assertEqual("Pause", self.script("return document.getElementById('play').getAttribute('aria-label')"))
        self.browser.click("#play")
        first, second = self.script("const first = player.place, then = context.currentTime;"
                                    "await until(() => context.currentTime > then + 0.3); return [first, player.place]")
        self.assertEqual(first, second)
        self.assertEqual("Play", self.script("return document.getElementById('play').getAttribute('aria-label')"))

    def test_switches_scenes_while_the_music_goes_on_at_its_place(self):
        self.start_playing()
        before = self.script("return context.currentTime - player.place")
        for track in (5, 1, 15, DOWNMIX, 0):
            self.browser.click(f"label:has(#track-{track})")
            self.script("await until(() => player.selected === given[0] && player.gains[given[0]].gain.value === 1)", track)
            sounding = self.script("return player.gains.map((gain) => gain.gain.value)")
            self.assertEqual([float(index == track) for index in range(17)], [float(value) for value in sounding])
        self.assertAlmostEqual(before, self.script("return context.currentTime - player.place"), places=6)

    def test_seeks_by_clicks_in_the_waveform_playing_or_not(self):
        seconds = self.script("return facts.seconds")
        self.browser.click_at("#timeline", 0.25, 0)
        self.assertAlmostEqual(0.75 * seconds, self.script("return player.place"), delta=0.02 * seconds)
        self.start_playing_from_here()
        self.browser.click_at("#timeline", -0.25, 0)
        place = self.script("await until(() => player.playing && player.startedAt < context.currentTime); return player.place")
        self.assertGreaterEqual(place, 0.24 * seconds)
        self.assertLess(place, 0.5 * seconds)

    def start_playing_from_here(self):
        self.browser.click("#play")
        self.script("const here = player.place; await until(() => player.playing && player.place > here)")

    def test_obeys_the_keyboard_alone(self):
        self.browser.press("Tab")
        self.assertEqual("play", self.script("return document.activeElement.id"))
        self.browser.press("Enter")
        self.script("await until(() => player.playing && player.place > 0)")
        self.browser.press(" ")
        self.assertFalse(self.script("return player.playing"))
        self.browser.press("Home")
        self.assertEqual(0, self.script("return player.place"))
        self.browser.press("ArrowRight")
        self.assertEqual(5, self.script("return player.place"))
        self.browser.press("ArrowLeft")
        self.assertEqual(0, self.script("return player.place"))
        self.browser.press("ArrowDown")
        self.assertEqual("Mix Room B", self.heard())
        self.browser.press("b")
        self.assertEqual("Plain downmix", self.heard())
        self.browser.press("b")
        self.assertEqual("Mix Room B", self.heard())
        self.browser.press("ArrowUp")
        self.browser.press("ArrowUp")
        self.assertEqual("Mix Room A", self.heard())

    def test_keeps_little_sound_while_somebody_looks_for_a_place(self):
        """A decoded window of all tracks has 26 MB."""
        for _ in range(10):
            self.browser.press("ArrowRight")
        kept = self.script("await until(() => player.buffers.has(player.windowHere)); return [...player.buffers.keys()]")
        self.assertLessEqual(len(kept), 2)
        self.assertIn(3, kept)

    def test_decodes_where_a_held_key_comes_to_rest_and_not_on_the_way(self):
        decoded = self.script("""
            const decoded = [], decode = player.decode.bind(player);
            player.decode = (window) => { decoded.push(window); return decode(window); };
            const press = () => document.dispatchEvent(new KeyboardEvent("keydown", { key: "ArrowRight" }));
            for (let count = 0; count < 3; ++count) press();
            await until(() => decoded.length > 0 && player.buffers.has(3));
            return decoded;""")
        self.assertEqual([3], decoded)

    def test_says_in_a_sentence_that_a_browser_cannot_decode_its_sound(self):
        self.assertEqual("none", self.script("return getComputedStyle(document.getElementById('refusal')).display"))
        script = self.browser.before_every_page("""
            OfflineAudioContext.prototype.decodeAudioData = () => Promise.reject(new DOMException("no decoder", "EncodingError"));""")
        try:
            self.browser.open(self.url)
            self.script("await until(() => !document.getElementById('refusal').hidden)")
            said, disabled, name = self.script("""
                return [document.getElementById('refusal').innerText, document.getElementById('play').disabled,
                        document.getElementById('name-a').textContent];""")
            self.assertIn("This browser cannot decode the sound in this page (Ogg Opus): open the page in another one", said)
            self.assertTrue(disabled)
            self.assertEqual("Mix Room A", name, "the figures are shown all the same")
            self.browser.press(" ")
            self.assertFalse(self.script("return player.playing"))
        finally:
            self.browser.forget(script)

    def test_says_the_same_in_a_browser_without_audio(self):
        script = self.browser.before_every_page("delete window.AudioContext;")
        try:
            self.browser.open(self.url)
            self.assertFalse(self.browser.run("return document.getElementById('refusal').hidden"))
        finally:
            self.browser.forget(script)

    def test_leaves_the_keys_of_the_volume_to_it(self):
        self.script("document.getElementById('volume').focus()")
        self.browser.press("ArrowLeft")
        volume, place = self.script("return [document.getElementById('volume').value, player.place]")
        self.assertEqual("0.99", volume)
        self.assertEqual(0, place)

    def test_names_every_control_for_those_who_do_not_see_it(self):
        nameless = self.script("""
            const name = (element) => element.getAttribute('aria-label') || element.labels?.[0]?.textContent || element.textContent;
            return [...document.querySelectorAll('button, a, input, [tabindex], canvas[role], summary')]
                .filter((element) => !name(element)?.trim()).map((element) => element.outerHTML);""")
        self.assertEqual([], nameless)
        self.browser.press("ArrowRight")
        self.assertEqual("0:05 of", self.script("return document.getElementById('timeline').getAttribute('aria-valuetext')")[:7])

    def test_fits_narrow_screens(self):
        for width in (320, 390, 768):
            self.browser.resize(width, 800)
            needed = self.script("return document.documentElement.scrollWidth")
            self.assertLessEqual(needed, width)

    def test_stops_at_the_end_and_starts_anew_from_there(self):
        self.script("await player.seek(facts.seconds - 0.3)")
        self.browser.click("#play")
        self.script("await until(() => !player.playing && player.place === facts.seconds)")
        self.assertEqual("Play", self.script("return document.getElementById('play').getAttribute('aria-label')"))
        self.browser.click("#play")
        self.assertLess(self.script("await until(() => player.playing && player.startedAt < context.currentTime); return player.place"), 5)

    def test_draws_the_difference_to_the_first_scene(self):
        drawn = """
            const canvas = document.getElementById('difference');
            const copy = new OffscreenCanvas(canvas.width, canvas.height).getContext('2d', { willReadFrequently: true });
            copy.drawImage(canvas, 0, 0);
            const pixels = copy.getImageData(0, 0, canvas.width, canvas.height).data;
            let coloured = 0;
            for (let index = 0; index < pixels.length; index += 4)
                if (pixels[index + 3] > 200 && Math.max(pixels[index], pixels[index + 1]) > 180 && Math.abs(pixels[index] - pixels[index + 2]) > 60) ++coloured;
            return coloured;"""
        self.assertEqual(0, self.script(drawn))
        self.browser.press("ArrowDown")
        self.assertGreater(self.script(drawn), 50)

    def test_a_switch_is_a_fade_between_both_tracks_at_the_same_sample(self):
        """Exact reference: both tracks rendered alone, and the straight line from one to the other."""
        before, inside, after, apart = self.offline("""
            const fade = Player.switchSeconds * 48000, moment = 0.5 * 48000;
            const [one] = await offline(1, 1, 0, []), [two] = await offline(1, 1, 6, []), [both] = await offline(1, 1, 0, [[6, 0.5]]);
            return [greatest(0, moment, (n) => both[n] - one[n]),
                    greatest(moment, moment + fade, (n) => both[n] - (one[n] + (two[n] - one[n]) * (n - moment) / fade)),
                    greatest(moment + fade + 1, both.length, (n) => both[n] - two[n]),
                    greatest(0, both.length, (n) => one[n] - two[n])];""")
        self.assertEqual(0, before)
        self.assertLess(inside, 1e-5)
        self.assertEqual(0, after)
        self.assertGreater(apart, 0.05, "the two tracks differ, or nothing was shown")

    def test_switching_by_hand_leaves_no_hole_in_what_is_heard(self):
        """Everything that leaves the player is recorded while real clicks change the track at their own time."""
        self.start_playing()
        self.script("""
            const recorder = `registerProcessor("recorder", class extends AudioWorkletProcessor {
                process([input]) { if (input[0]) this.port.postMessage(input[0].slice()); return true; } })`;
            await context.audioWorklet.addModule("data:text/javascript," + encodeURIComponent(recorder));
            const node = new AudioWorkletNode(context, "recorder");
            window.heard = [];
            node.port.onmessage = ({ data }) => window.heard.push(data);
            player.volume.connect(node);
            await until(() => window.heard.length > 100);""")
        for track in (5, DOWNMIX, 9):
            self.browser.click(f"label:has(#track-{track})")
            self.script("await until(() => player.selected === given[0] && player.gains[given[0]].gain.value === 1)", track)
        longest, step, length = self.script("""
            const samples = new Float32Array(window.heard.length * 128);
            window.heard.forEach((block, index) => samples.set(block, 128 * index));
            let silent = 0, longest = 0, step = 0;
            for (let index = 1; index < samples.length; ++index) {
                silent = Math.abs(samples[index]) < 1e-4 ? silent + 1 : 0;
                longest = Math.max(longest, silent);
                step = Math.max(step, Math.abs(samples[index] - samples[index - 1]));
            }
            return [longest, step, samples.length];""")
        self.assertGreater(length, 0.3 * RATE)
        self.assertLess(longest, 20, "a tone crosses zero, it does not rest there")
        self.assertLess(step, 0.15, "nor does it jump; at 800 Hz and full scale its own steepest step is 0.1")

    def test_switches_in_quick_succession_never_jump(self):
        """No step from sample to sample is greater than the music's own by more than the fades' slope."""
        switched, alone = self.offline("""
            const plays = await Promise.all([0, 6, 16, 3].map((track) => offline(1, 1, track, [])));
            const step = (samples) => greatest(1, samples.length, (n) => samples[n] - samples[n - 1]);
            const [quick] = await offline(1, 1, 0, [[6, 0.3], [16, 0.307], [3, 0.311], [6, 0.32], [0, 0.321]]);
            return [step(quick), Math.max(...plays.map(([left]) => step(left)))];""")
        self.assertLess(switched, alone + 1 / (0.02 * RATE))

    def test_windows_follow_each_other_without_a_seam(self):
        """The downmix is a known tone: round the seams its error is no greater than elsewhere."""
        for from_second in (3.5, 7.5):
            seam, elsewhere, level = self.offline("""
                const [from] = given;
                const [left] = await offline(from, 1, 16, []);
                const gain = 10 ** (facts.tracks[16].gainDb / 20);
                const error = (n) => { const at = from + n / 48000; return left[n] - gain * 0.4 * Math.sin(2 * Math.PI * (300 + 40 * at) * at); };
                const effective = (a, b) => { let sum = 0; for (let n = a; n < b; ++n) sum += error(n) ** 2; return Math.sqrt(sum / (b - a)); };
                return [effective(23520, 25440), Math.max(effective(4800, 20000), effective(28000, 43000)), gain * 0.4];""", from_second)
            self.assertLess(seam, 1.5 * elsewhere)
            self.assertLess(elsewhere, 0.03 * level, "the music lies at its place, to a fraction of a sample")

    def test_every_scene_and_the_downmix_share_one_clock(self):
        """Seeking offline to any place and playing gives the same samples as playing up to it."""
        difference = self.offline("""
            const [long] = await offline(2, 3, 6, []), [late] = await offline(4.25, 0.5, 6, []);
            return greatest(480, late.length, (n) => late[n] - long[n + 2.25 * 48000]);""")
        self.assertLess(difference, 1e-6)


if __name__ == "__main__":
    if programs() is None:
        print("skipped: chromium and chromium-driver are not installed")
        sys.exit(77)
    PROGRAM = os.path.abspath(sys.argv.pop(1))
    unittest.main()

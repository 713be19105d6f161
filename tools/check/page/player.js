// SPDX-License-Identifier: GPL-3.0-or-later
"use strict";

/**
 * Plays one of several tracks that run side by side, and changes between them without a gap.
 *
 * Every track plays at all times, through a gain of its own: one is at 1, the rest are at 0. A switch only moves two gains,
 * so it happens at the same sample of the music in both tracks and cannot leave a hole.
 *
 *   windows of track 0 ──► gain 0 ─┐
 *   windows of track 1 ──► gain 1 ─┼─► volume ─► output
 *   windows of track n ──► gain 0 ─┘
 *
 * Sound comes in windows that overlap by a trail; each fades out over its trail while the next fades in, both holding the
 * same music. Windows are decoded shortly before they are needed and dropped when they have passed.
 */
class Player {
    static switchSeconds = 0.02; // short enough to compare by, too long to click
    static edgeSeconds = 0.005; // of starting and stopping
    static ahead = 0.01; // what is asked for now has to lie before the block that is being rendered

    /**
     * @param context  any audio context of the sound's rate, an offline one too.
     * @param sound    { sampleRate, windowFrames, leadFrames, trailFrames }.
     * @param tracks   per track { windowCount }.
     * @param textOf   (track, window) gives the base64 text of that window, or a promise of it.
     * @param seconds  length of the whole.
     */
    constructor(context, sound, tracks, textOf, seconds) {
        this.context = context;
        this.sound = sound;
        this.tracks = tracks;
        this.textOf = textOf;
        this.seconds = seconds;
        this.windowSeconds = sound.windowFrames / sound.sampleRate;
        this.windowCount = Math.max(...tracks.map((track) => track.windowCount));
        this.decoder = new OfflineAudioContext(2, 1, sound.sampleRate); // decodes before a person has touched the page
        this.volume = context.createGain();
        this.volume.connect(context.destination);
        this.gains = tracks.map((_, index) => {
            const gain = context.createGain();
            gain.gain.value = index === 0 ? 1 : 0;
            gain.connect(this.volume);
            return gain;
        });
        this.selected = 0;
        this.lastSwitch = { track: -1, when: -Infinity, from: 0, to: 1 };
        this.position = 0; // where the playhead rests while nothing plays
        this.playing = false;
        this.buffers = new Map(); // window -> one promise of a buffer per track
        this.sources = new Map(); // window -> one promise of a running source per track
        this.failed = () => {}; // called with the error when a window cannot be decoded; it stays silent then
        this.run = 0; // counts starts, so that what was decoded for an earlier one is dropped
    }

    /** Seconds from the start of the music. */
    get place() {
        if (!this.playing) return this.position;
        return Math.min(this.seconds, this.startedFrom + Math.max(0, this.context.currentTime - this.startedAt));
    }

    get windowHere() {
        return Math.floor(this.place / this.windowSeconds);
    }

    /** Switches as soon as the other track runs at the playhead; what plays goes on until then. */
    async choose(track) {
        this.wanted = track;
        if (this.playing) await this.decode(this.windowHere)[track];
        await this.sources.get(this.windowHere)?.[track];
        if (this.wanted === track) this.select(track);
    }

    /** Moves the sound to another track at `when`, a time of the context. */
    select(track, when = this.context.currentTime + Player.ahead) {
        if (track === this.selected) return;
        const from = this.gainAt(this.selected, when), to = this.gainAt(track, when);
        this.ramp(this.selected, from, 0, when);
        this.ramp(track, to, 1, when);
        this.lastSwitch = { track: this.selected, when, from, to };
        this.selected = track;
    }

    ramp(track, from, to, when) {
        const parameter = this.gains[track].gain;
        if (parameter.cancelAndHoldAtTime) parameter.cancelAndHoldAtTime(when);
        else parameter.cancelScheduledValues(when);
        parameter.setValueAtTime(from, when);
        parameter.linearRampToValueAtTime(to, when + Player.switchSeconds);
    }

    /** The gain of a track as the last switch moves it, so that a switch during a switch does not jump. */
    gainAt(track, when) {
        const last = this.lastSwitch;
        const share = Math.min(1, Math.max(0, (when - last.when) / Player.switchSeconds));
        if (track === this.selected) return last.to + (1 - last.to) * share;
        return track === last.track ? last.from * (1 - share) : 0;
    }

    /** Starts at the playhead as soon as the selected track is decoded there. @param when a time of the context. */
    async play(when) {
        if (this.playing) return;
        const run = ++this.run;
        this.playing = true;
        this.startedFrom = this.inWholeFrames(this.position >= this.seconds ? 0 : this.position);
        this.startedAt = Infinity; // holds the playhead until there is sound
        const first = Math.floor(this.startedFrom / this.windowSeconds);
        const decoded = this.decode(first);
        await decoded[this.selected];
        if (run !== this.run) return;
        this.startedAt = this.inWholeFrames(when ?? this.context.currentTime + 0.02);
        await Promise.all(this.start(first));
    }

    inWholeFrames(seconds) {
        return Math.round(seconds * this.sound.sampleRate) / this.sound.sampleRate;
    }

    /** Stops with a short fade; the playhead stays. */
    pause() {
        this.position = this.place;
        this.playing = false;
        ++this.run;
        const now = this.context.currentTime;
        for (const pending of [...this.sources.values()].flat())
            pending.then((source) => {
                if (!source) return;
                source.edge.gain.setTargetAtTime(0, now, Player.edgeSeconds / 4);
                source.stop(now + 3 * Player.edgeSeconds);
            });
        this.sources.clear();
    }

    /** Moves the playhead; what plays goes on from there. */
    async seek(seconds) {
        const wasPlaying = this.playing;
        if (wasPlaying) this.pause();
        this.position = Math.min(Math.max(seconds, 0), this.seconds);
        if (wasPlaying) await this.play();
    }

    /** To be called several times a second: keeps the next window ready, lets go what has passed, stops at the end. */
    follow() {
        if (!this.playing || this.startedAt === Infinity) return;
        if (this.place >= this.seconds) {
            this.pause();
            this.position = this.seconds;
            return;
        }
        const here = this.windowHere;
        for (const window of this.sources.keys()) if (window < here - 1) this.sources.delete(window);
        this.start(here);
        this.start(here + 1);
    }

    /** Decodes a window of every track, once, the selected one first; lets go those far from the playhead. @return one promise per track. */
    decode(window) {
        this.letGo(window);
        if (!this.buffers.has(window)) {
            const promises = [];
            const order = [this.selected, ...this.tracks.keys()];
            for (const track of order)
                promises[track] ??= this.bufferOf(track, window).catch((error) => {
                    this.failed(error);
                    return null;
                });
            this.buffers.set(window, promises);
        }
        return this.buffers.get(window);
    }

    /** Keeps what is decoded of the window at the playhead, of the next one, and of `wanted`. */
    letGo(wanted) {
        const here = this.windowHere;
        for (const window of this.buffers.keys())
            if (window !== wanted && (window < here || window > here + 1)) this.buffers.delete(window);
    }

    /** @return null behind a track's end. */
    async bufferOf(track, window) {
        if (window >= this.tracks[track].windowCount) return null;
        const bytes = Uint8Array.from(atob(await this.textOf(track, window)), (letter) => letter.charCodeAt(0));
        const decoded = await this.decoder.decodeAudioData(bytes.buffer);
        const { leadFrames, windowFrames, trailFrames, sampleRate } = this.sound;
        const length = windowFrames + trailFrames;
        const buffer = new AudioBuffer({ numberOfChannels: 2, length, sampleRate });
        for (let channel = 0; channel < 2; ++channel) {
            const samples = decoded.getChannelData(channel).subarray(leadFrames, leadFrames + length);
            Player.shape(samples, window > 0 ? trailFrames : 0, windowFrames);
            buffer.copyToChannel(samples, channel);
        }
        return buffer;
    }

    /** Fades a window in over `rise` samples and out from sample `fall` on; two neighbours add up to 1. */
    static shape(samples, rise, fall) {
        for (let index = 0; index < rise; ++index) samples[index] *= (index + 0.5) / rise;
        const length = samples.length - fall;
        for (let index = 0; index < length; ++index) samples[fall + index] *= 1 - (index + 0.5) / length;
    }

    /** Sets a window of all tracks going at its time, once. @return one promise of a source per track. */
    start(window) {
        if (window >= this.windowCount) return [];
        if (!this.sources.has(window)) {
            const run = this.run;
            const promises = this.decode(window).map((decoding, track) =>
                decoding.then((buffer) => (buffer && run === this.run ? this.startBuffer(buffer, window, track) : null)));
            this.sources.set(window, promises);
        }
        return this.sources.get(window);
    }

    /** A window whose time has come already is entered in its middle. */
    startBuffer(buffer, window, track) {
        const begin = this.startedAt + window * this.windowSeconds - this.startedFrom;
        const earliest = Math.max(this.startedAt, this.context.currentTime + (this.startedAt > this.context.currentTime ? 0 : Player.ahead));
        const skipped = Math.max(0, this.inWholeFrames(earliest - begin));
        if (skipped >= buffer.duration) return null;
        const source = this.context.createBufferSource();
        source.buffer = buffer;
        source.edge = this.context.createGain();
        if (skipped > 0) {
            source.edge.gain.setValueAtTime(0, begin + skipped);
            source.edge.gain.linearRampToValueAtTime(1, begin + skipped + Player.edgeSeconds);
        }
        source.connect(source.edge).connect(this.gains[track]);
        source.start(begin + skipped, skipped);
        return source;
    }
}

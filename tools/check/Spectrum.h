// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <vector>

namespace orvane::kestrum::check {

/// Centres of the bands, from 20 Hz to 20 kHz, six to the octave.
std::vector<double> bandCentresHz();

/// Long-term average spectrum of a stereo signal: mean power per band, both channels summed.
///
///     segments of about a third of a second, half overlapping ─ Hann window ─ |FFT|² ─ mean ─ bands
///
/// Units   samples relative to full scale 1; a band's level in dB, a full-scale sine in one channel being -3.01 dB.
/// Source  Welch, IEEE Trans. Audio Electroacoustics 15, 1967.
class LongTermSpectrum {
public:
    explicit LongTermSpectrum(double sampleRate);
    ~LongTermSpectrum();

    /// Takes the next frames, [frames][2] interleaved.
    void add(std::span<const float> interleaved);

    /// @return one level per band; silence is -200 dB, as are bands beyond half the sample rate. What lies behind the last
    ///         whole segment does not count: its sudden end would be a sound of its own. Only a signal shorter than one
    ///         segment is filled up with zeros.
    std::vector<double> bandLevelsDb();

private:
    struct State;
    std::unique_ptr<State> state;
};

} // namespace orvane::kestrum::check

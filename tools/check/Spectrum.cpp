// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/Spectrum.h"

#include "data/Spectra.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace orvane::kestrum::check {

namespace {

constexpr double lowestHz = 20, bandsPerOctave = 6;
constexpr std::size_t bandCount = 61; // to 20.5 kHz
constexpr double segmentSeconds = 0.3;
constexpr double silenceDb = -200;

} // namespace

std::vector<double> bandCentresHz() {
    std::vector<double> centres;
    centres.reserve(bandCount);
    for (std::size_t band = 0; band < bandCount; ++band)
        centres.push_back(lowestHz * std::exp2(static_cast<double>(band) / bandsPerOctave));
    return centres;
}

struct LongTermSpectrum::State {
    explicit State(double sampleRate)
        : sampleRate(sampleRate),
          transform(tools::powerOfTwoFrom(static_cast<std::size_t>(segmentSeconds * sampleRate))),
          window(transform.size()),
          power(transform.binCount()) {
        for (std::size_t index = 0; index < window.size(); ++index)
            window[index] = 0.5 - 0.5 * std::cos(2 * std::numbers::pi * static_cast<double>(index) /
                                                 static_cast<double>(window.size()));
    }

    void takeSegment() {
        for (const auto& channel : held) {
            tools::Samples segment(channel.begin(),
                                   channel.begin() + static_cast<std::ptrdiff_t>(window.size()));
            for (std::size_t index = 0; index < segment.size(); ++index)
                segment[index] *= window[index];
            const tools::Spectrum spectrum = transform.forward(segment);
            for (std::size_t bin = 0; bin < power.size(); ++bin)
                power[bin] += std::norm(spectrum[bin]);
        }
        ++segmentCount;
    }

    void dropHalf() {
        for (auto& channel : held)
            channel.erase(channel.begin(), channel.begin() + static_cast<std::ptrdiff_t>(window.size() / 2));
    }

    double sampleRate;
    tools::RealTransform transform;
    tools::Samples window;
    tools::Samples power; ///< Sum over segments and channels, one per bin.
    std::array<std::vector<double>, 2> held;
    std::size_t segmentCount = 0;
};

LongTermSpectrum::LongTermSpectrum(double sampleRate) : state(std::make_unique<State>(sampleRate)) {}
LongTermSpectrum::~LongTermSpectrum() = default;

void LongTermSpectrum::add(std::span<const float> interleaved) {
    for (std::size_t index = 0; index + 1 < interleaved.size(); index += 2) {
        state->held[0].push_back(interleaved[index]);
        state->held[1].push_back(interleaved[index + 1]);
        if (state->held[0].size() == state->window.size()) {
            state->takeSegment();
            state->dropHalf();
        }
    }
}

std::vector<double> LongTermSpectrum::bandLevelsDb() {
    if (state->segmentCount == 0) {
        for (auto& channel : state->held)
            channel.resize(state->window.size());
        state->takeSegment();
    }
    // A sine of amplitude a leaves (a²/4) N sum(w²) in all bins of one side; scaled to its mean power a²/2.
    double windowPower = 0;
    for (const double value : state->window)
        windowPower += value * value;
    const double scale = 2 / (windowPower * static_cast<double>(state->window.size()) *
                              static_cast<double>(state->segmentCount));
    const double binHz = state->sampleRate / static_cast<double>(state->window.size());
    const double halfBand = std::exp2(0.5 / bandsPerOctave);

    std::vector<double> levels;
    for (const double centre : bandCentresHz()) {
        const double low = centre / halfBand / binHz, high = centre * halfBand / binHz; // in bins
        double sum = 0;
        if (high < static_cast<double>(state->power.size()))
            for (auto bin = static_cast<std::size_t>(std::lround(low)); static_cast<double>(bin) - 0.5 < high;
                 ++bin) {
                // A bin stands for the width of one bin round it; at band edges the part inside counts.
                const double from = std::max(low, static_cast<double>(bin) - 0.5);
                const double to = std::min(high, static_cast<double>(bin) + 0.5);
                sum += state->power[bin] * std::max(0.0, to - from);
            }
        levels.push_back(std::max(silenceDb, 10 * std::log10(sum * scale + 1e-30)));
    }
    return levels;
}

} // namespace orvane::kestrum::check

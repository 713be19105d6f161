// SPDX-License-Identifier: GPL-3.0-or-later
#include "room/ImpulseFile.h"

#include "data/DataError.h"
#include "data/head/MeasuredSet.h"
#include "data/measures/Rendering.h"
#include "data/reports/ReportPage.h"
#include "data/rooms/LateReverb.h"

#include <sndfile.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <string>
#include <vector>

namespace orvane::kestrum::tools {

namespace {

constexpr double longestSeconds = 15; ///< Used of a file: no response of the plug-in lasts half as long.
constexpr double shortestSeconds = 0.1;

std::string named(const std::filesystem::path& file) { return "\"" + file.string() + "\""; }

/// The file's channels at its own rate.
struct RawFile {
    std::vector<Samples> channels;
    double sampleRate = 0;
    std::size_t frameCount = 0; ///< Of the whole file.
};

void requireUsable(const SF_INFO& info, const std::filesystem::path& file) {
    constexpr int lowestRate = 24000; // below it nothing of the octave at 8 kHz is left
    constexpr int highestRate = 768000;
    if (info.channels != 1 && info.channels != 2)
        throw DataError(named(file) + " has " + std::to_string(info.channels) +
                        " channels: give an impulse response of one or two.");
    if (info.samplerate < lowestRate || info.samplerate > highestRate)
        throw DataError(named(file) + " has a rate of " + std::to_string(info.samplerate) +
                        " Hz: give an impulse response of 24000 Hz or more, best 48000.");
}

RawFile readRaw(const std::filesystem::path& file) {
    SF_INFO info{};
    const std::unique_ptr<SNDFILE, int (*)(SNDFILE*)> opened(sf_open(file.c_str(), SFM_READ, &info),
                                                             sf_close);
    if (!opened)
        throw DataError(named(file) + " cannot be read as sound (" + sf_strerror(nullptr) +
                        "): give the impulse response as a WAV file.");
    requireUsable(info, file);
    const auto frames = static_cast<std::size_t>(std::max<sf_count_t>(info.frames, 0));
    const auto wanted = std::min(frames, static_cast<std::size_t>((longestSeconds + 5) * info.samplerate));
    const auto channelCount = static_cast<std::size_t>(info.channels);
    std::vector<double> samples(wanted * channelCount);
    const sf_count_t got = sf_readf_double(opened.get(), samples.data(), static_cast<sf_count_t>(wanted));
    if (got < static_cast<sf_count_t>(wanted))
        throw DataError(named(file) + " ends before its header says: give a file that is whole.");
    RawFile raw{std::vector<Samples>(channelCount, Samples(wanted)), static_cast<double>(info.samplerate),
                frames};
    for (std::size_t frame = 0; frame < wanted; ++frame)
        for (std::size_t channel = 0; channel < channelCount; ++channel)
            raw.channels[channel][frame] = samples[frame * channelCount + channel];
    return raw;
}

double peakOf(const Samples& samples) {
    double peak = 0;
    for (const double sample : samples)
        peak = std::max(peak, std::abs(sample));
    return peak;
}

/// Most samples in a row that stand at the channel's peak.
std::size_t longestTop(const Samples& samples, double peak) {
    constexpr double atTop = 0.9999;
    std::size_t longest = 0;
    std::size_t here = 0;
    double before = 0;
    for (const double sample : samples) {
        const bool top = std::abs(sample) >= atTop * peak;
        here = top ? (sample * before > 0 ? here + 1 : 1) : 0;
        before = top ? sample : 0;
        longest = std::max(longest, here);
    }
    return longest;
}

void requireSound(const RawFile& raw, const std::filesystem::path& file) {
    constexpr double silence = 1e-6;
    constexpr double oneSided = 1e-3;
    constexpr std::size_t cutTop = 4; // no resampled or filtered peak is as flat
    std::vector<double> peaks;
    for (const Samples& channel : raw.channels) {
        if (!std::ranges::all_of(channel, [](double sample) { return std::isfinite(sample); }))
            throw DataError(named(file) +
                            " holds samples that are no numbers: export the impulse response anew.");
        peaks.push_back(peakOf(channel));
    }
    const auto [softest, loudest] = std::ranges::minmax(peaks);
    if (loudest < silence)
        throw DataError(named(file) + " is silent: give the file that holds the impulse response.");
    if (softest < oneSided * loudest)
        throw DataError(named(file) + " is silent in its " + (peaks.front() == softest ? "first" : "second") +
                        " channel: give the other one alone, as a mono file.");
    for (std::size_t channel = 0; channel < peaks.size(); ++channel)
        if (const std::size_t top = longestTop(raw.channels[channel], peaks[channel]); top >= cutTop)
            throw DataError(named(file) + " has its tops cut off (" + std::to_string(top) +
                            " samples in a row at the peak): measure anew at a lower level.");
}

Samples atMasterRate(const Samples& samples, double sampleRate) {
    if (sampleRate == masterSampleRate)
        return samples;
    const ResponseResampler resampler(sampleRate, masterSampleRate);
    Samples padded(samples.size() + 2 * resampler.leadIn());
    std::ranges::copy(samples, padded.begin() + static_cast<std::ptrdiff_t>(resampler.leadIn()));
    const double length = static_cast<double>(samples.size()) * masterSampleRate / sampleRate;
    return resampler.resample(padded, static_cast<std::size_t>(length));
}

bool alike(const Samples& one, const Samples& other) {
    constexpr double close = 1e-4;
    const double limit = close * peakOf(one);
    for (std::size_t frame = 0; frame < one.size(); ++frame)
        if (std::abs(one[frame] - other[frame]) > limit)
            return false;
    return true;
}

} // namespace

ImpulseFile readImpulseFile(const std::filesystem::path& file) {
    const RawFile raw = readRaw(file);
    requireSound(raw, file);
    ImpulseFile result;
    result.sampleRate = raw.sampleRate;
    result.seconds = static_cast<double>(raw.frameCount) / raw.sampleRate;
    result.dualMono = raw.channels.size() == 2 && alike(raw.channels[0], raw.channels[1]);
    result.binaural = raw.channels.size() == 2 && !result.dualMono;
    result.ears = {atMasterRate(raw.channels.front(), raw.sampleRate),
                   atMasterRate(raw.channels.back(), raw.sampleRate)};
    const std::size_t onset = onsetOf(result.ears);
    result.secondsToOnset = static_cast<double>(onset) / masterSampleRate;
    for (Samples& ear : result.ears) {
        ear.erase(ear.begin(), ear.begin() + static_cast<std::ptrdiff_t>(onset));
        if (static_cast<double>(ear.size()) > longestSeconds * masterSampleRate) {
            ear.resize(static_cast<std::size_t>(longestSeconds * masterSampleRate));
            result.cutAtSeconds = longestSeconds;
        }
    }
    if (const double left = static_cast<double>(result.ears[leftEar].size()) / masterSampleRate;
        left < shortestSeconds)
        throw DataError(named(file) + " goes on for " + fixedText(1000 * left, 0) +
                        " ms only behind the direct sound: give at least 100 ms, best the whole decay.");
    return result;
}

} // namespace orvane::kestrum::tools

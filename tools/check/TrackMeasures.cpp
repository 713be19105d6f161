// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/TrackMeasures.h"

#include "check/CheckError.h"
#include "check/Spectrum.h"
#include "render/AudioStreams.h"

#include <ebur128.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <span>

namespace orvane::kestrum::check {

namespace {

constexpr double silenceDb = -200;

struct MeterEnd {
    void operator()(ebur128_state* meter) const { ebur128_destroy(&meter); }
};
using Meter = std::unique_ptr<ebur128_state, MeterEnd>;

/// Lowest and highest sample per column of the waveform.
class Waveform {
public:
    explicit Waveform(double frameCount)
        : columnsPerFrame(waveformColumns / frameCount), lowest(waveformColumns), highest(waveformColumns) {}

    void add(std::span<const float> interleaved) {
        for (std::size_t index = 0; index + 1 < interleaved.size(); index += 2, ++position) {
            const auto column =
                std::min(waveformColumns - 1,
                         static_cast<std::size_t>(static_cast<double>(position) * columnsPerFrame));
            lowest[column] = std::min({lowest[column], interleaved[index], interleaved[index + 1]});
            highest[column] = std::max({highest[column], interleaved[index], interleaved[index + 1]});
        }
    }

    double columnsPerFrame;
    std::uint64_t position = 0;
    std::vector<float> lowest;
    std::vector<float> highest;
};

double decibels(double value) { return value > 0 ? 20 * std::log10(value) : silenceDb; }

void readMeter(ebur128_state& meter, TrackMeasures& measures) {
    double loudness = 0;
    if (ebur128_loudness_global(&meter, &loudness) == EBUR128_SUCCESS && std::isfinite(loudness))
        measures.loudness = loudness;
    ebur128_loudness_range(&meter, &measures.loudnessRange);
    double peak = 0;
    for (unsigned channel = 0; channel < 2; ++channel) {
        double ofChannel = 0;
        ebur128_true_peak(&meter, channel, &ofChannel);
        peak = std::max(peak, ofChannel);
    }
    measures.truePeakDb = decibels(peak);
}

} // namespace

TrackMeasures measureTrack(const std::filesystem::path& path, double timelineSeconds) {
    render::SoundFileSource source(path);
    if (source.channelCount() != 2)
        throw CheckError("\"" + path.string() + "\" is not stereo: remove it and check again.");
    const Meter meter(ebur128_init(
        2, source.sampleRate(), EBUR128_MODE_I | EBUR128_MODE_LRA | EBUR128_MODE_S | EBUR128_MODE_TRUE_PEAK));
    if (!meter)
        throw CheckError("The loudness meter does not work at " + std::to_string(source.sampleRate()) +
                         " Hz: resample the mix.");
    TrackMeasures measures;
    LongTermSpectrum spectrum(source.sampleRate());
    Waveform waveform(timelineSeconds * source.sampleRate());

    const std::uint64_t step = source.sampleRate() / 10;
    std::array<std::vector<float>, 2> ears{std::vector<float>(step), std::vector<float>(step)};
    const std::array<float*, 2> pointers{ears[0].data(), ears[1].data()};
    std::vector<float> interleaved;
    for (std::uint64_t first = 0; first < source.frameCount(); first += step) {
        const std::uint64_t frames = std::min(step, source.frameCount() - first);
        source.read(pointers, frames);
        interleaved.resize(2 * frames);
        for (std::size_t frame = 0; frame < frames; ++frame) {
            interleaved[2 * frame] = ears[0][frame];
            interleaved[2 * frame + 1] = ears[1][frame];
        }
        if (ebur128_add_frames_float(meter.get(), interleaved.data(), frames) != EBUR128_SUCCESS)
            throw CheckError("The loudness meter ran out of memory: close other programs.");
        double shortTerm = 0;
        ebur128_loudness_shortterm(meter.get(), &shortTerm);
        measures.shortTerm.push_back(std::isfinite(shortTerm) ? shortTerm : silenceDb);
        spectrum.add(interleaved);
        waveform.add(interleaved);
    }
    readMeter(*meter, measures);
    measures.spectrumDb = spectrum.bandLevelsDb();
    measures.lowest = std::move(waveform.lowest);
    measures.highest = std::move(waveform.highest);
    return measures;
}

} // namespace orvane::kestrum::check

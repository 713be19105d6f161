// SPDX-License-Identifier: GPL-3.0-or-later
#include "identify/Voices.h"

#include "render/RenderError.h"

#include <ebur128.h>
#include <soxr.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <numbers>
#include <string>
#include <utility>

namespace orvane::kestrum::identify {

namespace {

constexpr std::array<std::pair<std::string_view, std::string_view>, 8> recorded{{{"L", "Front_Left.wav"},
                                                                                 {"R", "Front_Right.wav"},
                                                                                 {"C", "Front_Center.wav"},
                                                                                 {"Lss", "Side_Left.wav"},
                                                                                 {"Rss", "Side_Right.wav"},
                                                                                 {"Lrs", "Rear_Left.wav"},
                                                                                 {"Rrs", "Rear_Right.wav"},
                                                                                 {"Cs", "Rear_Center.wav"}}};

constexpr float highestPeak = 0.89f;  ///< -1 dB.
constexpr float silenceShare = 0.01f; ///< Of the peak: what lies below it at both ends is cut off.
constexpr double edgeSeconds = 0.02;  ///< Kept on both sides of what is heard, and faded.
constexpr double fadeSeconds = 0.05;  ///< Of the tone.

std::vector<float> resampled(const render::Recording& recording, unsigned sampleRate) {
    if (recording.sampleRate == sampleRate)
        return recording.samples;
    const double ratio = static_cast<double>(sampleRate) / recording.sampleRate;
    std::vector<float> result(
        static_cast<std::size_t>(std::ceil(static_cast<double>(recording.samples.size()) * ratio)));
    std::size_t made = 0;
    const soxr_error_t error =
        soxr_oneshot(recording.sampleRate, sampleRate, 1, recording.samples.data(), recording.samples.size(),
                     nullptr, result.data(), result.size(), &made, nullptr, nullptr, nullptr);
    if (error != nullptr)
        throw render::RenderError(std::string("A voice cannot be resampled (") + error +
                                  "): choose another --rate.");
    result.resize(made);
    return result;
}

/// Raised cosine from 0 to 1 over the first samples, and back over the last.
void fadeEnds(std::vector<float>& samples, std::size_t length) {
    length = std::min(length, samples.size() / 2);
    for (std::size_t index = 0; index < length; ++index) {
        const double way = (static_cast<double>(index) + 0.5) / static_cast<double>(length);
        const auto gain = static_cast<float>(0.5 - 0.5 * std::cos(std::numbers::pi * way));
        samples[index] *= gain;
        samples[samples.size() - 1 - index] *= gain;
    }
}

std::size_t inSamples(double seconds, unsigned sampleRate) {
    return static_cast<std::size_t>(std::lround(seconds * sampleRate));
}

float peakOf(const std::vector<float>& samples) {
    float peak = 0;
    for (const float sample : samples)
        peak = std::max(peak, std::abs(sample));
    return peak;
}

std::vector<float> trimmed(const std::vector<float>& samples, unsigned sampleRate) {
    const float threshold = silenceShare * peakOf(samples);
    const auto heard = [threshold](float sample) { return std::abs(sample) > threshold; };
    const auto first = std::ranges::find_if(samples, heard);
    if (first == samples.end())
        return {};
    const auto last = std::find_if(samples.rbegin(), samples.rend(), heard).base();
    const auto edge = static_cast<std::ptrdiff_t>(inSamples(edgeSeconds, sampleRate));
    std::vector<float> result(first - std::min(edge, first - samples.begin()),
                              last + std::min(edge, samples.end() - last));
    fadeEnds(result, static_cast<std::size_t>(edge));
    return result;
}

/// Loudness of a sound in silence; the meter's first gate needs 0.4 s, which a short word does not fill by itself.
double loudnessLufs(const std::vector<float>& samples, unsigned sampleRate) {
    const auto destroy = [](ebur128_state* state) { ebur128_destroy(&state); };
    const std::unique_ptr<ebur128_state, decltype(destroy)> meter(ebur128_init(1, sampleRate, EBUR128_MODE_I),
                                                                  destroy);
    const std::vector<float> silence(sampleRate / 2);
    double loudness = 0;
    if (!meter || ebur128_add_frames_float(meter.get(), samples.data(), samples.size()) != EBUR128_SUCCESS ||
        ebur128_add_frames_float(meter.get(), silence.data(), silence.size()) != EBUR128_SUCCESS ||
        ebur128_loudness_global(meter.get(), &loudness) != EBUR128_SUCCESS)
        throw render::RenderError("The loudness meter does not work at " + std::to_string(sampleRate) +
                                  " Hz: choose another --rate.");
    return loudness;
}

} // namespace

std::string_view recordingOf(std::string_view briefName) {
    const auto found = std::ranges::find(recorded, briefName, &decltype(recorded)::value_type::first);
    return found != recorded.end() ? found->second : std::string_view{};
}

std::vector<float> preparedVoice(const render::Recording& recording, unsigned sampleRate) {
    std::vector<float> voice = trimmed(resampled(recording, sampleRate), sampleRate);
    const float peak = peakOf(voice);
    const double loudness = peak > 0 ? loudnessLufs(voice, sampleRate) : 0;
    if (peak == 0 || !std::isfinite(loudness))
        return {};
    const auto wanted = static_cast<float>(std::pow(10, (voiceLoudnessLufs - loudness) / 20));
    const float gain = std::min(wanted, highestPeak / peak);
    for (float& sample : voice)
        sample *= gain;
    return voice;
}

std::vector<float> lowFrequencyTone(unsigned sampleRate) {
    std::vector<float> tone(inSamples(toneSeconds, sampleRate));
    const double step = 2 * std::numbers::pi * toneFrequencyHz / sampleRate;
    for (std::size_t index = 0; index < tone.size(); ++index)
        tone[index] = static_cast<float>(toneAmplitude * std::sin(step * static_cast<double>(index)));
    fadeEnds(tone, inSamples(fadeSeconds, sampleRate));
    return tone;
}

Voices::Voices(std::filesystem::path recordings, ISpeech& speech, unsigned sampleRate)
    : recordings(std::move(recordings)), speech(speech), sampleRate(sampleRate) {}

std::vector<float> Voices::soundOf(const channels::Channel& channel) const {
    if (channel.speaker.lowFrequency)
        return lowFrequencyTone(sampleRate);
    const std::string_view recording = channel.unique ? recordingOf(channel.brief) : std::string_view{};
    std::vector<float> voice =
        preparedVoice(recording.empty() ? speech.say(channel.spoken)
                                        : render::readRecording(recordings / recording,
                                                                "install Debian's package alsa-utils"),
                      sampleRate);
    if (voice.empty())
        throw render::RenderError("The voice that says \"" + channel.spoken +
                                  "\" is silent: install Debian's packages alsa-utils and espeak-ng anew.");
    return voice;
}

} // namespace orvane::kestrum::identify

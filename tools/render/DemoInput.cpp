// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/DemoInput.h"

#include "render/AudioStreams.h"
#include "render/RenderError.h"

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace orvane::kestrum::render {

namespace {

/// Entry i is channel i.
constexpr std::array<const char*, 6> recordingOfChannel{
    "Front_Left.wav", "Front_Right.wav", "Front_Center.wav", "Noise.wav", "Rear_Left.wav", "Rear_Right.wav"};
constexpr double gapSeconds = 0.25;

struct Recording {
    unsigned sampleRate = 0;
    std::vector<float> samples;
};

Recording readMono(const std::filesystem::path& path) {
    if (!std::filesystem::exists(path))
        throw RenderError("The recording \"" + path.string() +
                          "\" is missing: install Debian's package alsa-utils.");
    SoundFileSource file(path);
    if (file.channelCount() != 1)
        throw RenderError("The recording \"" + path.string() +
                          "\" is not mono: install Debian's package alsa-utils.");
    Recording recording{file.sampleRate(), std::vector<float>(file.frameCount())};
    float* const channel = recording.samples.data();
    file.read({&channel, 1}, file.frameCount());
    return recording;
}

} // namespace

void writeDemoInput(const std::filesystem::path& path, const std::filesystem::path& recordings) {
    constexpr std::size_t channelCount = recordingOfChannel.size();
    std::array<Recording, channelCount> voices;
    for (std::size_t channel = 0; channel < channelCount; ++channel) {
        voices[channel] = readMono(recordings / recordingOfChannel[channel]);
        if (voices[channel].sampleRate != voices[0].sampleRate)
            throw RenderError("The recordings in \"" + recordings.string() +
                              "\" differ in sample rate: install Debian's package alsa-utils.");
    }
    const unsigned sampleRate = voices[0].sampleRate;
    SoundFileSink sink(path, sampleRate, channelCount);
    const std::vector<float> gap(channelCount * static_cast<std::size_t>(gapSeconds * sampleRate));
    for (std::size_t channel = 0; channel < channelCount; ++channel) {
        std::vector<float> frames(channelCount * voices[channel].samples.size());
        for (std::size_t frame = 0; frame < voices[channel].samples.size(); ++frame)
            frames[frame * channelCount + channel] = voices[channel].samples[frame];
        sink.write(frames);
        sink.write(gap);
    }
    sink.close();
}

} // namespace orvane::kestrum::render

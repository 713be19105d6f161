// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/DemoInput.h"

#include "render/AudioStreams.h"
#include "render/RenderError.h"

#include <array>
#include <vector>

namespace orvane::kestrum::render {

namespace {

/// Entry i is channel i.
constexpr std::array<const char*, 6> recordingOfChannel{
    "Front_Left.wav", "Front_Right.wav", "Front_Center.wav", "Noise.wav", "Rear_Left.wav", "Rear_Right.wav"};
constexpr double gapSeconds = 0.25;
constexpr const char* remedy = "install Debian's package alsa-utils";

} // namespace

void writeDemoInput(const std::filesystem::path& path, const std::filesystem::path& recordings) {
    std::vector<std::vector<float>> voices;
    unsigned sampleRate = 0;
    for (const char* const name : recordingOfChannel) {
        Recording recording = readRecording(recordings / name, remedy);
        if (sampleRate != 0 && recording.sampleRate != sampleRate)
            throw RenderError("The recordings in \"" + recordings.string() +
                              "\" differ in sample rate: " + remedy + ".");
        sampleRate = recording.sampleRate;
        const auto gap = static_cast<std::size_t>(gapSeconds * sampleRate);
        recording.samples.resize(recording.samples.size() + gap);
        voices.push_back(std::move(recording.samples));
    }
    SoundFileSink sink(path, sampleRate, static_cast<unsigned>(voices.size()));
    writeInTurn(sink, voices);
    sink.close();
}

} // namespace orvane::kestrum::render

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "identify/ISpeech.h"
#include "render/AudioStreams.h"
#include "support/ScratchFolder.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <numbers>
#include <string>
#include <utility>
#include <vector>

namespace test {

/// A tone between two silences, as a recorded voice stands in its file.
inline std::vector<float> spokenTone(double frequency, unsigned sampleRate, double seconds = 0.6,
                                     double amplitude = 0.05) {
    const auto length = static_cast<std::size_t>(seconds * sampleRate);
    const std::size_t silence = sampleRate / 10;
    std::vector<float> samples(length + 2 * silence);
    for (std::size_t index = 0; index < length; ++index)
        samples[silence + index] = static_cast<float>(
            amplitude * std::sin(2 * std::numbers::pi * frequency * static_cast<double>(index) / sampleRate));
    return samples;
}

/// Every recording by the frequency of the tone that stands for it.
inline const std::vector<std::pair<std::string, double>> standInRecordings{
    {"Front_Left", 300}, {"Front_Right", 350}, {"Front_Center", 400}, {"Side_Left", 450},
    {"Side_Right", 500}, {"Rear_Left", 550},   {"Rear_Right", 600},   {"Rear_Center", 650}};

inline void writeSound(const std::filesystem::path& path, const std::vector<float>& samples,
                       unsigned sampleRate) {
    orvane::kestrum::render::SoundFileSink file(path, sampleRate, 1);
    file.write(samples);
    file.close();
}

inline void writeStandInRecordings(const std::filesystem::path& folder, unsigned sampleRate) {
    for (const auto& [name, frequency] : standInRecordings)
        writeSound(folder / (name + ".wav"), spokenTone(frequency, sampleRate), sampleRate);
}

/// Answers the n-th request with a tone of its own and remembers what it was asked to say.
class StandInSpeech final : public orvane::kestrum::identify::ISpeech {
public:
    explicit StandInSpeech(unsigned sampleRate) : sampleRate(sampleRate) {}

    static double frequencyOf(std::size_t request) { return 1000 + 50 * static_cast<double>(request); }

    orvane::kestrum::render::Recording say(const std::string& words) override {
        said.push_back(words);
        return {sampleRate, spokenTone(frequencyOf(said.size() - 1), sampleRate)};
    }

    std::vector<std::string> said;

private:
    unsigned sampleRate;
};

/// A tone's frequency by the times at which it swings up, from well below zero to well above it.
/// @return hertz.
inline double frequencyOf(const std::vector<float>& samples, unsigned sampleRate) {
    float threshold = 0;
    for (const float sample : samples)
        threshold = std::max(threshold, std::abs(sample) / 4);
    std::vector<std::size_t> swings;
    bool below = false;
    for (std::size_t index = 0; index < samples.size(); ++index) {
        if (below && samples[index] > threshold)
            swings.push_back(index);
        below = samples[index] < -threshold || (below && samples[index] <= threshold);
    }
    if (swings.size() < 2)
        return 0;
    return static_cast<double>(swings.size() - 1) * sampleRate /
           static_cast<double>(swings.back() - swings.front());
}

/// A whole file. @return [channels][frames].
inline std::vector<std::vector<float>> readChannels(const std::filesystem::path& path) {
    orvane::kestrum::render::SoundFileSource file(path);
    std::vector<std::vector<float>> channels(file.channelCount(), std::vector<float>(file.frameCount()));
    std::vector<float*> pointers(channels.size());
    std::ranges::transform(channels, pointers.begin(), [](auto& channel) { return channel.data(); });
    file.read(pointers, file.frameCount());
    return channels;
}

} // namespace test

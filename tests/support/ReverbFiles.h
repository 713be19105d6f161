// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/Signals.h"
#include "support/WaveFile.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace test {

/// Where the reverb container keeps what it keeps: two bytes, the table, then stereo frames of floats.
inline constexpr std::size_t reverbTableEntries = 60;

/// A container whose entries all begin at the first of `frames`.
///
/// Shape   frames [2 * count], interleaved left and right.
inline std::string reverbContainer(const Signal& frames) {
    std::string bytes(2 + reverbTableEntries * sizeof(std::uint32_t), '\0');
    for (const float sample : frames)
        bytes += bytesOf(sample);
    return bytes;
}

/// Half a second of noise that falls by 60 dB in the first 0.4 s, of its own in either ear. Longer entries read
/// zeros behind it.
inline Signal decayingNoise(std::uint32_t sampleRate) {
    Signal frames = noise(2 * std::size_t{sampleRate / 2}, Seed{51});
    const double perSample = std::pow(10.0, -3.0 / (0.4 * sampleRate));
    double level = 1.0;
    for (std::size_t i = 0; i < frames.size(); i += 2) {
        frames[i] *= static_cast<float>(level);
        frames[i + 1] *= static_cast<float>(level);
        level *= perSample;
    }
    return frames;
}

/// Writes the reverb files of 24000, 44100 and 48000 Hz: the same decaying noise in every entry.
inline void writeReverbFiles(const std::filesystem::path& folder) {
    const auto write = [&folder](std::string_view name, std::uint32_t sampleRate) {
        writeBytes((folder / name).string(), reverbContainer(decayingNoise(sampleRate)));
    };
    write("OVNdata512.dat", 24000);
    write("OVNdata510.dat", 44100);
    write("OVNdata511.dat", 48000);
}

/// Frames of the longest reverb there is, that of room 28, at 48000 Hz.
inline constexpr std::size_t longestReverbFrames = 220245;

/// A folder with reverb files in which every entry is noise that falls by 60 dB over the longest reverb's
/// length: no part of it is silent. Made at the first call of the process and removed at its end.
inline std::string fullReverbFolder() {
    static const TemporaryFolder folder;
    static const bool isFilled = [] {
        const auto write = [](const char* name, std::size_t sampleRate) {
            Signal frames = noise(2 * (longestReverbFrames * sampleRate / 48000), Seed{52});
            for (std::size_t i = 0; i < frames.size(); ++i)
                frames[i] *= static_cast<float>(
                    std::pow(10.0, -3.0 * static_cast<double>(i) / static_cast<double>(frames.size())));
            writeBytes(folder.file(name), reverbContainer(frames));
        };
        write("OVNdata512.dat", 24000);
        write("OVNdata510.dat", 44100);
        write("OVNdata511.dat", 48000);
        return true;
    }();
    static_cast<void>(isFilled);
    return folder.path();
}

/// A folder with these files, made at the first call of the process and removed at its end.
inline std::string reverbFolder() {
    static const TemporaryFolder folder;
    static const bool isFilled = [] {
        writeReverbFiles(folder.path());
        return true;
    }();
    static_cast<void>(isFilled);
    return folder.path();
}

} // namespace test

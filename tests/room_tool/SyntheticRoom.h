// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/measures/ThirdOctaves.h"
#include "data/rooms/LateReverb.h"
#include "data/rooms/RandomNumbers.h"
#include "data/rooms/RoomDescriptions.h"
#include "room/RoomStatistics.h"

#include "support/WaveFile.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <string>
#include <vector>

namespace test {

using orvane::kestrum::tools::OctaveTimes;
using orvane::kestrum::tools::Samples;

/// The impulse response of a room whose every figure is known: one sample of direct sound, then noise whose third-octave
/// bands each fall as they are told.
struct SyntheticRoom {
    OctaveTimes t60{0.52, 0.45, 0.4, 0.4, 0.39, 0.36, 0.31};
    double seconds = 1.5;
    double delaySeconds = 0.02;  ///< From the start to the direct sound.
    double directOverRestDb = 3; ///< Energies, of each channel.
    double coherence = 0;        ///< Of two channels, at all frequencies.
    double noiseDb = -200;       ///< Steady noise, its power over the reverb's at the start.
    std::uint64_t seed = 7;
    static constexpr double rate = orvane::kestrum::tools::masterSampleRate;

    /// Noise that decays, of energy 1.
    Samples reverb(orvane::kestrum::tools::RandomNumbers& random) const {
        namespace tools = orvane::kestrum::tools;
        const auto length = static_cast<std::size_t>(seconds * rate);
        tools::RealTransform transform(tools::powerOfTwoFrom(length));
        Samples white(length);
        for (double& sample : white)
            sample = random.normal();
        const tools::Spectrum spectrum = transform.forward(white);
        const auto windows = tools::thirdOctaves(transform.binCount(), rate);
        Samples sum(length);
        tools::RoomDescription room;
        room.t60 = t60;
        for (const tools::BandWindow& window : windows) {
            tools::Spectrum part(transform.binCount());
            for (std::size_t index = 0; index < window.gains.size(); ++index)
                part[window.firstBin + index] = window.gains[index] * spectrum[window.firstBin + index];
            const Samples band = transform.inverse(part);
            const double perSample = std::log(1000.0) / tools::t60At(room, window.centreHz) / rate;
            for (std::size_t frame = 0; frame < length; ++frame)
                sum[frame] += band[frame] * std::exp(-perSample * static_cast<double>(frame));
        }
        const double steady = std::pow(10.0, noiseDb / 20);
        double energy = 0;
        for (const double sample : sum)
            energy += sample * sample;
        for (double& sample : sum)
            sample = (sample + steady * random.normal()) / std::sqrt(energy);
        return sum;
    }

    /// One or two channels.
    std::vector<Samples> channels(std::size_t count) const {
        orvane::kestrum::tools::RandomNumbers random(seed);
        const auto delay = static_cast<std::size_t>(delaySeconds * rate);
        const Samples first = reverb(random);
        std::vector<Samples> result;
        for (std::size_t channel = 0; channel < count; ++channel) {
            const Samples own = channel == 0 ? first : reverb(random);
            Samples samples(delay + own.size());
            const double shared = channel == 0 ? 1.0 : coherence;
            for (std::size_t frame = 0; frame < own.size(); ++frame)
                samples[delay + frame] =
                    channel == 0 ? own[frame]
                                 : shared * first[frame] + std::sqrt(1 - shared * shared) * own[frame];
            samples[delay] += std::pow(10.0, directOverRestDb / 20);
            result.push_back(std::move(samples));
        }
        return result;
    }

    /// Writes the channels as 32-bit float, their peak at 0.9.
    std::string write(const std::string& path, std::size_t count) const {
        return writeSamples(path, channels(count), static_cast<std::uint32_t>(rate));
    }

    static std::string writeSamples(const std::string& path, const std::vector<Samples>& channels,
                                    std::uint32_t sampleRate) {
        constexpr double top = 0.9;
        double peak = 1e-30;
        for (const Samples& channel : channels)
            for (const double sample : channel)
                peak = std::max(peak, std::abs(sample));
        std::vector<float> frames;
        for (std::size_t frame = 0; frame < channels[0].size(); ++frame)
            for (const Samples& channel : channels)
                frames.push_back(static_cast<float>(top / peak * channel[frame]));
        WaveHeader header;
        header.channels = static_cast<std::uint16_t>(channels.size());
        header.sampleRate = sampleRate;
        writeBytes(path, waveBytes(header, frames));
        return path;
    }
};

} // namespace test

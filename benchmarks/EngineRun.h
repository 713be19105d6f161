// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Measure.h"
#include "assembly/EngineRig.h"
#include "data/TenmarshHrir.h"
#include "data/TenmarshHrirReader.h"
#include "support/NoiseHrirReader.h"
#include "support/ReverbFiles.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace bench {

inline constexpr double sampleRate = 48000.0;

/// Head and reverbs: the installed ones, or made-up ones where none are installed.
class HeadAndRooms {
public:
    HeadAndRooms() : store(reader()) { store.load(static_cast<std::int32_t>(sampleRate), folder()); }

    static bool installed() {
        return std::filesystem::exists(installedFolder + "/OVNdata121.dat") &&
               std::filesystem::exists(installedFolder + "/OVNdata511.dat");
    }
    static std::string folder() { return installed() ? installedFolder : test::fullReverbFolder(); }
    static const char* description() {
        return installed() ? "the installed head and rooms" : "a made-up head and room";
    }

    orvane::TenmarshHrir store;

private:
    static std::unique_ptr<orvane::IHrirReader> reader() {
        if (installed())
            return std::make_unique<orvane::TenmarshHrirReader>();
        return std::make_unique<test::NoiseHrirReader>();
    }
    inline static const std::string installedFolder = "/opt/Tenmarsh/OrvaneVSTPlugin/data";
};

enum class Reverb {
    ofScene,
    none,
    longest ///< Room 28: 220245 frames, 4.6 s. No Scene has it.
};

struct EngineChoice {
    std::string layout;
    std::string scene;
    Reverb reverb = Reverb::ofScene;
    std::uint64_t blockSize = 512;
    orvane::RenderOptions options = {};
};

inline test::EngineRig::Settle settleReverb(Reverb reverb) {
    return [reverb](const test::Product& product) {
        if (reverb == Reverb::none)
            product.parameterSet->setReverbOn(false, false);
        if (reverb == Reverb::longest) {
            product.parameterSet->setReverbOn(true, false);
            product.parameterSet->setRoomType(orvane::VirtualAcoustics::Type{28}, false);
        }
    };
}

/// One block's time, in seconds.
struct BlockTime {
    double wall;
    double thread;
};

/// A whole engine that noise is played through, block by block. Equal choices get equal noise.
class EngineRun {
public:
    EngineRun(const EngineChoice& chosen, HeadAndRooms& data)
        : choice(chosen),
          rig(&data.store, HeadAndRooms::folder(), chosen.options, settleReverb(chosen.reverb)),
          bus(16, std::vector<float>(noiseLength)),
          output(2, chosen.blockSize) {
        for (std::uint32_t channel = 0; channel < bus.size(); ++channel)
            bus[channel] = test::noise(noiseLength, test::Seed{channel + 1});
        rig.product.chooseLayout(choice.layout);
        rig.product.chooseScene(choice.scene);
        rig.start(choice.blockSize, sampleRate);
    }

    BlockTime block() {
        if (position + choice.blockSize > noiseLength)
            position = 0;
        std::array<float*, 16> pointers{};
        for (std::size_t channel = 0; channel < pointers.size(); ++channel)
            pointers[channel] = bus[channel].data() + position;
        const orvane::SampleBuffer input(pointers.data(), pointers.size(), choice.blockSize);
        position += choice.blockSize;
        const double wall = wallSeconds();
        const double thread = threadSeconds();
        rig.engine->process(input, output);
        return {.wall = wallSeconds() - wall, .thread = threadSeconds() - thread};
    }

    /// Plays this many seconds of sound.
    /// @return the share of a core that it took.
    double share(double seconds) {
        const auto blocks = static_cast<std::uint64_t>(std::ceil(seconds / blockSeconds()));
        double used = 0;
        for (std::uint64_t i = 0; i < blocks; ++i)
            used += block().thread;
        return used / (static_cast<double>(blocks) * blockSeconds());
    }

    void scaleInput(float factor) {
        for (std::vector<float>& channel : bus)
            for (float& sample : channel)
                sample *= factor;
    }

    double blockSeconds() const { return static_cast<double>(choice.blockSize) / sampleRate; }

    const orvane::SampleBuffer& lastOutput() const { return output; }

    const EngineChoice choice;
    test::EngineRig rig;

private:
    static constexpr std::size_t noiseLength = 65536;

    test::Channels bus; ///< [16][noiseLength]
    orvane::SampleBuffer output;
    std::size_t position = 0;
};

/// A fast wrong answer is none: compares the fast path's sound with the plain one's over the first blocks.
///
/// @throws std::runtime_error where they differ by more than -100 dB of the peak: what the engine's filters make of the
///         late reverb's rounding.
inline void expectSoundOfPlainPath(EngineChoice choice, HeadAndRooms& data) {
    EngineRun fast(choice, data);
    choice.options.path = orvane::RenderPath::plain;
    EngineRun plain(choice, data);
    float peak = 0;
    float difference = 0;
    constexpr std::uint64_t frames = 4096;
    for (std::uint64_t played = 0; played < std::max(frames, 4 * choice.blockSize);
         played += choice.blockSize) {
        fast.block();
        plain.block();
        for (std::uint64_t ear = 0; ear < 2; ++ear)
            for (std::uint64_t i = 0; i < choice.blockSize; ++i) {
                const float expected = plain.lastOutput().channelPointers[ear][i];
                const float apart = std::abs(fast.lastOutput().channelPointers[ear][i] - expected);
                peak = std::max(peak, std::abs(expected));
                difference = apart <= difference ? difference : apart; // a NaN stays
            }
    }
    if (!(peak > 0.0f && difference <= 1e-5f * peak)) // of a NaN, too, no comparison is true
        throw std::runtime_error("the fast path sounds different in " + choice.scene + ", " + choice.layout);
}

} // namespace bench

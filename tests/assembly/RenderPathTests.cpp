// SPDX-License-Identifier: GPL-3.0-or-later
// The fast path against the plain one, which is the definition of the sound: the same products under the same
// hands, sample by sample.
#include "assembly/EngineRig.h"
#include "assembly/RatesAndBlocks.h"
#include "assembly/RenderScript.h"
#include "data/TenmarshHrir.h"
#include "room/ReverbRooms.h"
#include "support/FlushDenormals.h"
#include "support/NoiseHrirReader.h"
#include "support/RealtimeScope.h"
#include "support/ReverbFiles.h"
#include "support/Signals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace {

using orvane::InstructionSet;
using orvane::RenderPath;
using test::Channels;
using test::Product;

/// Beyond, the fast path convolves the late reverb with partitions of several sizes, which round differently.
constexpr std::uint64_t equalUpToPartitions = 64;

/// Of the output's peak: -120 dB.
constexpr float residueLimit = 1e-6f;

using Setting = test::RateAndBlock;
const auto settingName = [](const auto& setting) { return ::testing::PrintToString(setting.param); };

const char* nameOf(InstructionSet set) {
    constexpr const char* names[]{"scalar", "sse2", "avx", "avx512"};
    return names[static_cast<std::size_t>(set)];
}

std::int32_t fileRateOf(std::int32_t sampleRate) {
    return sampleRate % 44100 == 0 ? 44100 : std::min(sampleRate, 48000);
}

std::uint64_t reverbPartitions(std::uint32_t room, const Setting& setting) {
    const std::int32_t fileRate = fileRateOf(setting.sampleRate);
    const auto factor = static_cast<std::uint64_t>(setting.sampleRate / fileRate);
    return (orvane::reverbFrames(room, fileRate) * factor + setting.blockSize - 1) / setting.blockSize;
}

/// Leaves only those reverbs on that the fast path has to render with equal bits.
test::EngineRig::Settle withoutLongReverbs(const Setting& setting) {
    return [setting](const Product& product) {
        const auto& scene = orvane::kestrum::core::Scene::get(product.scene->getValue());
        const auto room = static_cast<std::uint32_t>(scene.roomType);
        if (reverbPartitions(room, setting) > equalUpToPartitions)
            product.parameterSet->setReverbOn(false, false);
    };
}

/// The plain product and, beside it, a fast one for each instruction set of this processor.
class SideBySide {
public:
    SideBySide(const Setting& setting, std::uint32_t seed, const test::EngineRig::Settle& settle)
        : setting(setting),
          store(std::make_unique<test::NoiseHrirReader>()),
          script(seed, setting.sampleRate),
          bus(16, std::vector<float>(setting.blockSize)) {
        store.load(setting.sampleRate, "");
        add({RenderPath::plain, InstructionSet::scalar}, settle);
        for (const InstructionSet set : orvane::supportedInstructionSets())
            add({RenderPath::fast, set}, settle);
        script.choose(products);
        for (const auto& rig : rigs)
            rig->start(setting.blockSize, setting.sampleRate);
    }

    /// Long enough for two changes with their fades, each in the middle of a host block or not.
    void play() {
        const std::uint64_t length = std::max<std::uint64_t>(
            static_cast<std::uint64_t>(0.06 * setting.sampleRate), 24 * setting.blockSize);
        std::uint64_t nextChange = length / 4;
        for (std::uint64_t played = 0; played < length;) {
            if (played >= nextChange) {
                script.choose(products);
                for (const auto& rig : rigs)
                    rig->change();
                nextChange += length / 3;
            }
            const std::uint64_t frames = script.hostBlock(setting.blockSize);
            script.move(products, frames);
            script.play(bus, frames);
            for (std::size_t index = 0; index < rigs.size(); ++index)
                render(index, frames);
            played += frames;
        }
    }

    /// As when another instance of the process is prepared for another rate.
    void turnStoreTo(std::int32_t sampleRate) { store.load(sampleRate, ""); }

    void expectEqualBits() const {
        for (std::size_t index = 1; index < outputs.size(); ++index)
            for (std::size_t ear = 0; ear < 2; ++ear)
                for (std::size_t i = 0; i < outputs[0][ear].size(); ++i) {
                    const float plain = outputs[0][ear][i];
                    const float fast = outputs[index][ear][i];
                    ASSERT_EQ(std::bit_cast<std::uint32_t>(fast), std::bit_cast<std::uint32_t>(plain))
                        << labels[index] << ", ear " << ear << ", first at sample " << i << " (block "
                        << i / setting.blockSize << "): " << fast << ", not " << plain;
                }
    }

    /// Fails where a difference is larger than -120 dB of the output's peak.
    void expectSmallResidue() const {
        const float loudest = peak();
        float largest = 0;
        for (std::size_t index = 1; index < outputs.size(); ++index)
            for (std::size_t ear = 0; ear < 2; ++ear)
                for (std::size_t i = 0; i < outputs[0][ear].size(); ++i) {
                    const float difference = std::abs(outputs[index][ear][i] - outputs[0][ear][i]);
                    largest = std::max(largest, difference / loudest);
                    ASSERT_LT(difference, residueLimit * loudest)
                        << labels[index] << ", ear " << ear << ", first at sample " << i << " (block "
                        << i / setting.blockSize << "), where the plain path gives " << outputs[0][ear][i];
                }
        ::testing::Test::RecordProperty("ResidueDb", std::to_string(20 * std::log10(largest)));
    }

    float peak() const { return std::max(test::peak(outputs[0][0]), test::peak(outputs[0][1])); }

private:
    void add(const orvane::RenderOptions& options, const test::EngineRig::Settle& settle) {
        rigs.push_back(std::make_unique<test::EngineRig>(&store, test::fullReverbFolder(), options, settle));
        products.push_back(&rigs.back()->product);
        outputs.emplace_back(2);
        labels.emplace_back(options.path == RenderPath::plain ? "plain" : nameOf(options.instructionSet));
    }

    void render(std::size_t index, std::uint64_t frames) {
        std::array<std::vector<float>, 2> ears{std::vector<float>(frames), std::vector<float>(frames)};
        std::array<float*, 2> targets{ears[0].data(), ears[1].data()};
        const std::vector<float*> pointers = test::channelPointers(bus);
        const orvane::SampleBuffer input(pointers.data(), pointers.size(), frames);
        orvane::SampleBuffer output(targets.data(), 2, frames);
        rigs[index]->engine->process(input, output);
        for (std::size_t ear = 0; ear < 2; ++ear)
            outputs[index][ear].insert(outputs[index][ear].end(), ears[ear].begin(), ears[ear].end());
    }

    Setting setting;
    orvane::TenmarshHrir store;
    test::RenderScript script;
    Channels bus;
    std::vector<std::unique_ptr<test::EngineRig>> rigs;
    std::vector<const Product*> products;
    std::vector<Channels> outputs; ///< As `rigs`; [ear][frame].
    std::vector<const char*> labels;
};

std::uint32_t seedOf(const Setting& setting) {
    return static_cast<std::uint32_t>(setting.sampleRate) * 31 +
           static_cast<std::uint32_t>(setting.blockSize);
}

class RandomScripts : public ::testing::TestWithParam<Setting> {};

/// Null test against the plain path. Under a sanitizer, each block at one rate only.
TEST_P(RandomScripts, RenderEqualBitsOnEveryInstructionSet) {
    const std::uint32_t scripts = test::RealtimeScope::countingWorks ? 3 : 1;
    for (std::uint32_t script = 0; script < scripts; ++script) {
        const std::uint32_t seed = seedOf(GetParam()) + 1000 * script;
        SCOPED_TRACE("seed " + std::to_string(seed));
        const test::FlushDenormals flush(script % 2 == 1); // the plug-in does, other callers may not
        SideBySide sides(GetParam(), seed, withoutLongReverbs(GetParam()));
        sides.play();
        EXPECT_GT(sides.peak(), 1e-4f);
        sides.expectEqualBits();
    }
}
INSTANTIATE_TEST_SUITE_P(AtRatesAndBlocks, RandomScripts,
                         ::testing::ValuesIn(test::ratesAndBlocks(test::RealtimeScope::countingWorks)),
                         settingName);

/// The responses in service change under an engine that plays, and change back.
TEST(AStoreThatTurnsToAnotherRate, IsNoticedByBothPathsInTheSameBlock) {
    const Setting setting{48000, 128};
    SideBySide sides(setting, 5, withoutLongReverbs(setting));
    for (const std::int32_t rate : {44100, 48000, 96000, 48000}) {
        sides.play();
        sides.turnStoreTo(rate);
    }
    sides.play();
    sides.expectEqualBits();
}

std::vector<Setting> longReverbSettings() {
    if (!test::RealtimeScope::countingWorks)
        return {{48000, 139}, {24000, 512}};
    return {{24000, 32},   {24000, 441}, {44100, 64},  {44100, 1009}, {48000, 32},  {48000, 64},
            {48000, 128},  {48000, 139}, {48000, 256}, {48000, 512},  {48000, 513}, {48000, 1024},
            {48000, 2048}, {88200, 480}, {96000, 128}, {96000, 2048}, {192000, 512}};
}

class LongReverbs : public ::testing::TestWithParam<Setting> {};

/// Null test against the plain path, of the Scenes as they are. What is left is the rounding of transforms of
/// other lengths.
TEST_P(LongReverbs, LeaveAResidueBelowMinus120Decibels) {
    const std::uint32_t seed = seedOf(GetParam());
    SCOPED_TRACE("seed " + std::to_string(seed));
    SideBySide sides(GetParam(), seed, {});
    sides.play();
    sides.expectSmallResidue();
}

/// The longest response that there is; no Scene has it.
TEST_P(LongReverbs, OfTheLongestRoomLeaveAResidueBelowMinus120Decibels) {
    const std::uint32_t seed = seedOf(GetParam()) + 1;
    SCOPED_TRACE("seed " + std::to_string(seed));
    SideBySide sides(GetParam(), seed, [](const Product& product) {
        product.parameterSet->setReverbOn(true, false);
        product.parameterSet->setRoomType(orvane::VirtualAcoustics::Type{28}, false);
    });
    sides.play();
    sides.expectSmallResidue();
}
INSTANTIATE_TEST_SUITE_P(AtRatesAndBlocks, LongReverbs, ::testing::ValuesIn(longReverbSettings()),
                         settingName);

} // namespace

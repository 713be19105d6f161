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
#include <utility>
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
    SideBySide(const Setting& setting, std::uint32_t seed, test::EngineRig::Settle settle)
        : setting(setting),
          settle(std::move(settle)),
          store(std::make_unique<test::NoiseHrirReader>()),
          script(seed, setting.sampleRate),
          bus(16, std::vector<float>(setting.blockSize)) {
        store.load(setting.sampleRate, "");
        add("plain", {RenderPath::plain, InstructionSet::scalar});
        for (const InstructionSet set : orvane::supportedInstructionSets())
            add(nameOf(set), {RenderPath::fast, set});
    }

    /// Adds a plain product that hears every other sample one bit nearer to zero.
    void addNudged() { add(nudged, {RenderPath::plain, InstructionSet::scalar}); }

    /// Long enough for two changes with their fades, each in the middle of a host block or not.
    void play() {
        if (sides.front().rig->engine == nullptr)
            start();
        const std::uint64_t length = std::max<std::uint64_t>(
            static_cast<std::uint64_t>(0.06 * setting.sampleRate), 24 * setting.blockSize);
        std::uint64_t nextChange = length / 4;
        for (std::uint64_t played = 0; played < length;) {
            if (played >= nextChange) {
                script.choose(products());
                for (const Side& side : sides)
                    side.rig->change();
                nextChange += length / 3;
            }
            const std::uint64_t frames = script.hostBlock(setting.blockSize);
            script.move(products(), frames);
            script.play(bus, frames);
            for (Side& side : sides)
                render(side, frames);
            played += frames;
        }
    }

    /// As when another instance of the process is prepared for another rate.
    void turnStoreTo(std::int32_t sampleRate) { store.load(sampleRate, ""); }

    void expectEqualBits() const {
        forEachSample([this](const Side& side, std::size_t ear, std::size_t i, float fast, float plain) {
            if (std::bit_cast<std::uint32_t>(fast) == std::bit_cast<std::uint32_t>(plain))
                return true;
            ADD_FAILURE() << side.label << ", ear " << ear << ", first at sample " << i << " (block "
                          << i / setting.blockSize << "): " << fast << ", not " << plain;
            return false;
        });
    }

    /// A difference of up to -120 dB of the peak is allowed, and where the nudged product differs by more, which is
    /// what the filters of the engine make of rounding in 32 bits, twice as much as that.
    void expectSmallResidue() const {
        float largest = 0;
        float ofNudged = 0;
        forEachSample([&](const Side& side, std::size_t, std::size_t, float other, float plain) {
            float& worst = side.label == nudged ? ofNudged : largest;
            worst = std::max(worst, std::abs(other - plain));
            return true;
        });
        const float loudest = peak();
        EXPECT_LE(largest, std::max(residueLimit * loudest, 2.0f * ofNudged));
        const auto decibels = [&](float difference) {
            return std::to_string(20 * std::log10(difference / loudest));
        };
        ::testing::Test::RecordProperty("ResidueDb", decibels(largest));
        ::testing::Test::RecordProperty("ResidueOfNudgedDb", decibels(ofNudged));
    }

    float peak() const { return std::max(test::peak(sides[0].output[0]), test::peak(sides[0].output[1])); }

private:
    struct Side {
        std::string label;
        std::unique_ptr<test::EngineRig> rig;
        Channels output; ///< [ear][frame]
    };

    void add(const std::string& label, const orvane::RenderOptions& options) {
        sides.push_back({label,
                         std::make_unique<test::EngineRig>(&store, test::fullReverbFolder(), options, settle),
                         Channels(2)});
    }

    void start() {
        script.choose(products());
        for (const Side& side : sides)
            side.rig->start(setting.blockSize, setting.sampleRate);
    }

    std::vector<const Product*> products() const {
        std::vector<const Product*> all;
        for (const Side& side : sides)
            all.push_back(&side.rig->product);
        return all;
    }

    void render(Side& side, std::uint64_t frames) {
        Channels heard = bus;
        if (side.label == nudged)
            for (std::vector<float>& channel : heard)
                for (std::size_t i = 0; i < frames; i += 2)
                    channel[i] = std::nextafter(channel[i], 0.0f);
        Channels ears(2, std::vector<float>(frames));
        const std::vector<float*> targets = test::channelPointers(ears);
        const std::vector<float*> pointers = test::channelPointers(heard);
        const orvane::SampleBuffer input(pointers.data(), pointers.size(), frames);
        orvane::SampleBuffer output(targets.data(), 2, frames);
        side.rig->engine->process(input, output);
        for (std::size_t ear = 0; ear < 2; ++ear)
            side.output[ear].insert(side.output[ear].end(), ears[ear].begin(), ears[ear].end());
    }

    /// Calls `compare(side, ear, sample, its output, the plain one's)` as long as it returns true.
    template <typename Compare>
    void forEachSample(Compare compare) const {
        for (std::size_t index = 1; index < sides.size(); ++index)
            for (std::size_t ear = 0; ear < 2; ++ear)
                for (std::size_t i = 0; i < sides[0].output[ear].size(); ++i)
                    if (!compare(sides[index], ear, i, sides[index].output[ear][i], sides[0].output[ear][i]))
                        return;
    }

    static constexpr const char* nudged = "nudged";

    Setting setting;
    test::EngineRig::Settle settle;
    orvane::TenmarshHrir store;
    test::RenderScript script;
    Channels bus;
    std::vector<Side> sides; ///< The plain one first.
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
/// other lengths, which lies below -120 dB where it arises, and what the recursive filters behind make of it.
TEST_P(LongReverbs, LeaveAResidueBelowMinus120DecibelsOrThatOfTheFilters) {
    const std::uint32_t seed = seedOf(GetParam());
    SCOPED_TRACE("seed " + std::to_string(seed));
    SideBySide sides(GetParam(), seed, {});
    sides.addNudged();
    sides.play();
    sides.expectSmallResidue();
}

/// The longest response that there is; no Scene has it.
TEST_P(LongReverbs, OfTheLongestRoomLeaveAResidueBelowMinus120DecibelsOrThatOfTheFilters) {
    const std::uint32_t seed = seedOf(GetParam()) + 1;
    SCOPED_TRACE("seed " + std::to_string(seed));
    SideBySide sides(GetParam(), seed, [](const Product& product) {
        product.parameterSet->setReverbOn(true, false);
        product.parameterSet->setRoomType(orvane::VirtualAcoustics::Type{28}, false);
    });
    sides.addNudged();
    sides.play();
    sides.expectSmallResidue();
}
INSTANTIATE_TEST_SUITE_P(AtRatesAndBlocks, LongReverbs, ::testing::ValuesIn(longReverbSettings()),
                         settingName);

} // namespace

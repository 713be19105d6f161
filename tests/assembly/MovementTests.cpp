// SPDX-License-Identifier: GPL-3.0-or-later
// Heads that turn and controls that move while a tone plays, in rooms with reverb. A click is energy where the
// tone has none.
#include "assembly/Product.h"
#include "parameters/core/Scene.h"
#include "support/Clicks.h"
#include "support/Signals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numbers>
#include <ostream>
#include <span>
#include <string>
#include <vector>

namespace {

using test::Product;

constexpr double sampleRate = 48000.0;
constexpr double toneHz = 1000.0;
constexpr std::size_t second = 48000;
constexpr std::size_t restLength = 33600; ///< Before and after a change: the reverb swings in and out.
constexpr std::size_t settledLength = 4800;

/// A control, and from where to where it goes.
struct Movement {
    const char* name;
    orvane::kestrum::core::ISliderValue* (*control)(const Product&);
    float from;
    float to;
};
std::ostream& operator<<(std::ostream& stream, const Movement& movement) {
    return stream << movement.name << " from " << movement.from << " to " << movement.to;
}

const auto headRotation = [](const Product& product) { return product.headRotation.get(); };
const auto ambience = [](const Product& product) { return product.ambience.get(); };
const auto focus = [](const Product& product) { return product.focus.get(); };
const auto masterGain = [](const Product& product) { return product.masterGain.get(); };

constexpr Movement headTurn{"Head Rotation", headRotation, -180, 180};
constexpr Movement wholeRanges[]{
    {"Ambience", ambience, 0, 100}, {"Focus", focus, -100, 100}, {"Master Gain", masterGain, -96, 24}};

/// What is heard of a change. Both ears count as one listener: in either, the tone may meet itself out of
/// phase and all but vanish.
struct Clicks {
    double highDb = 0;           ///< Loudest 2 ms above 4 kHz, over the tone where it is loudest.
    double secondDifference = 0; ///< Largest, over that of a tone as loud as the loudest sample.
};

/// A tone on both channels. The control stands at its beginning, moves on from block to block for `moveLength`
/// samples, then stands at its end.
class Passage {
public:
    Passage(const Product& product, const Movement& movement, std::uint64_t blockSize, std::size_t moveLength)
        : moveSamples(moveLength) {
        auto* const control = movement.control(product);
        const float stood = control->getValue();
        test::Channels bus(2, std::vector<float>(blockSize));
        const std::vector<float*> pointers = test::channelPointers(bus);
        orvane::SampleBuffer view(pointers.data(), bus.size(), blockSize);
        while (ears[0].size() < 2 * restLength + moveSamples) {
            control->setValue(valueAt(movement, ears[0].size()));
            fill(bus);
            product.manager->process(view, view);
            for (std::size_t ear = 0; ear < ears.size(); ++ear)
                ears[ear].insert(ears[ear].end(), bus[ear].begin(), bus[ear].end());
        }
        control->setValue(stood);
    }

    Clicks clicks() const {
        const test::Stretch change{restLength - settledLength, ears[0].size() - settledLength};
        double tone = 0;
        double high = 0;
        double bend = 0;
        float loudest = 0;
        for (const test::Signal& ear : ears) {
            const std::span<const float> changing =
                std::span<const float>(ear).subspan(change.from, change.to - change.from);
            tone = std::max(tone, test::loudestPower(changing, sampleRate));
            high = std::max(high, test::loudestHighPower(ear, change, sampleRate));
            bend = std::max(bend, test::largestSecondDifference(changing));
            loudest = std::max(loudest, test::peak(changing));
        }
        const double step = 2 * std::sin(std::numbers::pi * toneHz / sampleRate);
        return {10 * std::log10(high / tone), bend / (step * step * static_cast<double>(loudest))};
    }

    /// The last 0.1 s of both ears above 4 kHz, over the tone there.
    double restDb() const {
        double tone = 0;
        double high = 0;
        for (const test::Signal& ear : ears) {
            const test::Stretch end{ear.size() - 2 * settledLength, ear.size() - settledLength};
            tone = std::max(tone, test::meanPower(std::span(ear).last(settledLength)));
            high = std::max(high, test::loudestHighPower(ear, end, sampleRate));
        }
        return 10 * std::log10(high / tone);
    }

private:
    float valueAt(const Movement& movement, std::size_t position) const {
        const double moved = static_cast<double>(position) - static_cast<double>(restLength);
        const double way = std::clamp(moved / static_cast<double>(moveSamples), 0.0, 1.0);
        return movement.from + static_cast<float>(way) * (movement.to - movement.from);
    }

    void fill(test::Channels& bus) {
        for (std::size_t frame = 0; frame < bus[0].size(); ++frame, ++played) {
            const auto sample = static_cast<float>(
                0.1 * std::sin(2 * std::numbers::pi * toneHz * static_cast<double>(played) / sampleRate));
            for (std::vector<float>& channel : bus)
                channel[frame] = sample;
        }
    }

    std::size_t moveSamples;
    std::size_t played = 0;
    std::array<test::Signal, 2> ears;
};

/// For the figures of a change in the test's log.
std::string figureName(const Movement& movement, const char* what) {
    return std::string(movement.name) + " " + std::to_string(std::lround(movement.from)) + " to " +
           std::to_string(std::lround(movement.to)) + ", " + what;
}

struct Room {
    std::string scene;
    std::uint64_t blockSize = 512;
};
std::ostream& operator<<(std::ostream& stream, const Room& room) {
    return stream << room.scene << " at blocks of " << room.blockSize;
}

class MovementInARoom : public ::testing::TestWithParam<Room> {
protected:
    void SetUp() override {
        product.chooseScene(GetParam().scene);
        product.prepare(GetParam().blockSize, sampleRate);
    }

    void expectNoClicks(const Movement& movement) {
        SCOPED_TRACE(movement);
        const Clicks clicks = Passage(product, movement, GetParam().blockSize, second).clicks();
        EXPECT_LE(clicks.highDb, -60);
        EXPECT_LE(clicks.secondDifference, 1.1);
        RecordProperty(figureName(movement, "above 4 kHz in dB"), std::to_string(clicks.highDb));
        RecordProperty(figureName(movement, "second difference"), std::to_string(clicks.secondDifference));
    }

    Product product;
};

TEST_P(MovementInARoom, ByAHeadThatTurnsAllTheWayRoundInASecondMakesNoClicks) { expectNoClicks(headTurn); }

TEST_P(MovementInARoom, OfAControlOverItsWholeRangeInASecondMakesNoClicks) {
    for (const Movement& movement : wholeRanges)
        expectNoClicks(movement);
}

std::vector<Room> roomsWithReverb() {
    std::vector<Room> rooms;
    for (const auto& preset : orvane::kestrum::core::Scene::presets())
        if (preset.reverbOn)
            rooms.push_back({std::string(preset.name), 512});
    // The third crosses 20 Hz with its reverb's high pass, which steps out of the signal path there.
    for (const char* const scene : {"Mix Room", "Stadium", "Club Large"})
        for (const std::uint64_t blockSize : {64U, 128U})
            rooms.push_back({scene, blockSize});
    return rooms;
}
INSTANTIATE_TEST_SUITE_P(WithReverb, MovementInARoom, ::testing::ValuesIn(roomsWithReverb()));

/// A single jump has no limit to keep: its figures are for the record. What is asked is that it is over
/// afterwards.
TEST(Jumps, OfAControlOverItsWholeRangeAreMeasuredAndSettle) {
    constexpr Movement jumps[]{{"Head Rotation", headRotation, 0, 90},
                               {"Head Rotation", headRotation, 0, 180},
                               {"Ambience", ambience, 0, 100},
                               {"Ambience", ambience, 100, 0},
                               {"Focus", focus, -100, 100},
                               {"Focus", focus, 100, -100},
                               {"Master Gain", masterGain, -96, 24},
                               {"Master Gain", masterGain, 24, -96}};
    constexpr std::uint64_t blockSize = 512;
    for (const std::string scene : {"Mix Room", "Stadium", "Kitchen"}) {
        Product product;
        product.chooseScene(scene);
        product.prepare(blockSize, sampleRate);
        for (const Movement& jump : jumps) {
            SCOPED_TRACE(jump);
            const Passage passage(product, jump, blockSize, 1);
            const Clicks clicks = passage.clicks();
            RecordProperty(scene + ", " + figureName(jump, "above 4 kHz in dB"),
                           std::to_string(clicks.highDb));
            RecordProperty(scene + ", " + figureName(jump, "second difference"),
                           std::to_string(clicks.secondDifference));
            EXPECT_LT(passage.restDb(), -90);
        }
    }
}

} // namespace

// SPDX-License-Identifier: GPL-3.0-or-later
// Which loudspeaker plays which channel of a bus whose channels the host names. Reference: each loudspeaker, fed alone on
// a bus without names. The order in which the framework hands a host's arrangement over is the bundle's matter, see
// tests/host.
#include "TestDataFolder.h"
#include "TestProcessor.h"

#include "shell/BusLayouts.h"
#include "support/NoiseHead.h"
#include "support/RealtimeScope.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace {

using orvane::kestrum::hostNames;
using test::Processor;
using ::testing::ElementsAre;
using Set = juce::AudioChannelSet;

constexpr int blockSize = 64;
constexpr int frames = 16 * blockSize;

bool setInput(Processor& processor, const Set& input) {
    juce::AudioProcessor::BusesLayout buses;
    buses.inputBuses.add(input);
    buses.outputBuses.add(Set::stereo());
    return processor.setBusesLayout(buses);
}

/// Over a head with which no two directions can be confused, and with nothing but direct sound.
std::unique_ptr<Processor> processorOn(const Set& input, const std::string& layout) {
    static test::NoiseHead head(128);
    auto processor = test::makeProcessor([] { return test::TestDataFolder::filled().path(); }, &head);
    test::choose(*processor, "Scenes", "Analytic Dry");
    EXPECT_TRUE(setInput(*processor, input));
    test::choose(*processor, "Speaker Layouts", layout);
    return processor;
}

/// What is heard when one channel of the bus is fed, from a fresh preparation on.
std::vector<float> heardFrom(Processor& processor, int channel) {
    juce::AudioBuffer<float> input(processor.getNumberOfInputChannels(), frames);
    input.clear();
    std::ranges::copy(test::noise(frames, 3), input.getWritePointer(channel));
    processor.prepareToPlay(48000.0, blockSize);
    EXPECT_FALSE(processor.hasError());
    return test::render(processor, input, std::array{blockSize});
}

/// The channel of the layout whose loudspeaker plays each channel of the bus.
std::vector<int> playersOf(const Set& bus, const std::string& layout) {
    const auto reference = processorOn(Set::discreteChannels(bus.size()), layout);
    std::vector<std::vector<float>> loudspeakers;
    loudspeakers.reserve(static_cast<std::size_t>(bus.size()));
    for (int channel = 0; channel < bus.size(); ++channel)
        loudspeakers.push_back(heardFrom(*reference, channel));
    const auto named = processorOn(bus, layout);
    std::vector<int> players;
    players.reserve(loudspeakers.size());
    for (int channel = 0; channel < bus.size(); ++channel)
        players.push_back(static_cast<int>(std::ranges::find(loudspeakers, heardFrom(*named, channel)) -
                                           loudspeakers.begin()));
    return players;
}

/// By hand: the framework's order of each set, and the names by which its wrapper for this interface knows a host's channels.
TEST(HostNames, AreThoseThatTheHostGaveInTheFrameworksOrder) {
    EXPECT_THAT(hostNames(Set::create5point1()), ElementsAre("L", "R", "C", "Lfe", "Ls", "Rs"));
    EXPECT_THAT(hostNames(Set::create7point0()), ElementsAre("L", "R", "C", "Sl", "Sr", "Ls", "Rs"));
    EXPECT_THAT(hostNames(Set::create7point1SDDS()),
                ElementsAre("L", "R", "C", "Lfe", "Ls", "Rs", "Lc", "Rc"));
    EXPECT_THAT(hostNames(Set::create7point1point4()),
                ElementsAre("L", "R", "C", "Lfe", "Sl", "Sr", "Tfl", "Tfr", "Trl", "Trr", "Ls", "Rs"));
    EXPECT_THAT(hostNames(Set::create9point1point6()),
                ElementsAre("Lc", "Rc", "C", "Lfe", "Sl", "Sr", "Tfl", "Tfr", "Trl", "Trr", "Ls", "Rs", "L",
                            "R", "Tsl", "Tsr"));
    EXPECT_THAT(hostNames(Set::create6point0Music()), ElementsAre("L", "R", "Ls", "Rs", "Sl", "Sr"));
}

TEST(HostNames, AreEmptyForChannelsWithoutOneThatALayoutKnows) {
    EXPECT_THAT(hostNames(Set::discreteChannels(3)), ElementsAre("", "", ""));
    EXPECT_THAT(hostNames(Set::ambisonic(1)), ElementsAre("", "", "", ""));
    EXPECT_THAT(hostNames(Set::disabled()), ElementsAre());
    // The interface's Lcs and Rcs, beside surrounds of its own.
    EXPECT_THAT(hostNames(Set::channelSetWithChannels(
                    {Set::leftSurround, Set::rightSurround, Set::leftSurroundRear, Set::rightSurroundRear})),
                ElementsAre("Ls", "Rs", "", ""));
}

struct NamedBus {
    Set bus;
    std::string layout;
    std::vector<int> players;

    friend void PrintTo(const NamedBus& named, std::ostream* stream) { *stream << named.layout; }
};

class NamedBuses : public ::testing::TestWithParam<NamedBus> {};

TEST_P(NamedBuses, AreHeardFromTheLoudspeakersOfTheirNames) {
    EXPECT_EQ(playersOf(GetParam().bus, GetParam().layout), GetParam().players);
}

/// The players by hand, from the names above and the table of layouts.
INSTANTIATE_TEST_SUITE_P(
    ByName, NamedBuses,
    ::testing::Values(NamedBus{Set::create5point1(), "5.1 ITU", {0, 1, 2, 3, 4, 5}},
                      NamedBus{Set::create7point1(), "7.1", {0, 1, 2, 3, 4, 5, 6, 7}},
                      NamedBus{Set::create7point1point2(), "7.1.2", {0, 1, 2, 3, 4, 5, 6, 7, 8, 9}},
                      NamedBus{Set::create7point0point4(), "7.0.4", {0, 1, 2, 3, 4, 7, 8, 9, 10, 5, 6}},
                      NamedBus{Set::create7point1point4(), "7.1.4", {0, 1, 2, 3, 6, 7, 8, 9, 10, 11, 4, 5}},
                      NamedBus{Set::create9point1point6(),
                               "9.1.6",
                               {6, 7, 2, 3, 8, 9, 10, 11, 12, 13, 4, 5, 0, 1, 14, 15}}));

/// These orders are for buses that carry them: the names of the bus are not asked.
INSTANTIATE_TEST_SUITE_P(
    AsTheyStand, NamedBuses,
    ::testing::Values(NamedBus{Set::create5point1(), "5.1 Film", {0, 1, 2, 3, 4, 5}},
                      NamedBus{Set::create5point1(), "5.1 ITU Logic", {0, 1, 2, 3, 4, 5}},
                      NamedBus{Set::create7point1(), "7.1 SDDS Logic", {0, 1, 2, 3, 4, 5, 6, 7}},
                      NamedBus{Set::create7point1SDDS(), "7.1", {0, 1, 2, 3, 4, 5, 6, 7}}));

TEST(ChangedBus, IsTakenByItsNewNamesInTheNextBlock) {
    const auto processor = processorOn(Set::discreteChannels(12), "7.1.4");
    const auto sides = heardFrom(*processor, 6);
    const auto rear = heardFrom(*processor, 4);
    ASSERT_NE(sides, rear);
    // As wide as before, so nobody is told of another count of channels.
    ASSERT_TRUE(setInput(*processor, Set::create7point1point4()));
    EXPECT_EQ(heardFrom(*processor, 4), sides);
    EXPECT_EQ(heardFrom(*processor, 10), rear);
    ASSERT_TRUE(setInput(*processor, Set::discreteChannels(12)));
    EXPECT_EQ(heardFrom(*processor, 6), sides);
}

TEST(ChangedBus, IsFollowedByAnEngineThatIsAlreadyInService) {
    const auto processor = processorOn(Set::discreteChannels(12), "7.1.4");
    const auto expected = heardFrom(*processor, 6);
    processor->prepareToPlay(48000.0, blockSize);
    ASSERT_TRUE(setInput(*processor, Set::create7point1point4()));
    juce::AudioBuffer<float> input(12, frames);
    input.clear();
    std::ranges::copy(test::noise(frames, 3), input.getWritePointer(4));
    EXPECT_EQ(test::render(*processor, input, std::array{blockSize}), expected);
}

/// In the block after a change of layout the engine of the old one still plays alone. It has to have kept its own order:
/// taking over the new layout's would be heard as a jump, here from side to rear.
TEST(ChangedLayout, LeavesTheOldEngineItsOrderUntilItIsFadedOut) {
    const auto processor = processorOn(Set::create7point1point4(), "7.1.4");
    processor->prepareToPlay(48000.0, blockSize);
    juce::AudioBuffer<float> input(12, blockSize);
    input.clear();
    std::ranges::copy(test::noise(blockSize, 3), input.getWritePointer(4)); // the host's Sl
    juce::AudioBuffer<float> settled(12, blockSize);
    juce::AudioBuffer<float> next(12, blockSize);
    const auto play = [&](juce::AudioBuffer<float>& block) {
        block.makeCopyOf(input);
        test::process(*processor, block);
        return std::vector<float>(block.getReadPointer(0), block.getReadPointer(0) + blockSize);
    };
    std::vector<float> before;
    for (int turn = 0; turn < 500; ++turn)
        before = play(settled);
    // A block that repeats for ever sounds the same for ever, but for what the shelf of the output still settles.
    const auto differenceOf = [&before](const std::vector<float>& block) {
        float greatest = 0;
        for (std::size_t frame = 0; frame < block.size(); ++frame)
            greatest = std::max(greatest, std::abs(block[frame] - before[frame]));
        return greatest;
    };
    ASSERT_LT(differenceOf(play(settled)), 1e-5f);
    test::choose(*processor, "Speaker Layouts", "7.1.2");
    EXPECT_LT(differenceOf(play(next)), 1e-5f);
    EXPECT_GT(*std::ranges::max_element(before), 1e-2f);
}

TEST(NamedBusPath, NeitherAllocatesNorLocks) {
    const auto processor = processorOn(Set::create7point1point4(), "7.1.4");
    processor->prepareToPlay(48000.0, blockSize);
    auto block = test::noiseBuffer(12, blockSize, 1);
    juce::MidiBuffer midi;
    const test::RealtimeScope scope;
    for (int turn = 0; turn < 8; ++turn)
        processor->processBlock(block, midi);
    EXPECT_EQ(scope.violations(), test::RealtimeViolations{});
}

} // namespace

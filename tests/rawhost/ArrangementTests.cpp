// SPDX-License-Identifier: GPL-3.0-or-later
// Every speaker arrangement that a host can name, and the low bits that others send. Which loudspeaker a channel belongs to
// follows from its name and the layouts' list; what each loudspeaker sounds like is measured on a bus without names.
#include "Arrangements.h"
#include "Child.h"
#include "Loudspeakers.h"
#include "Play.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <iostream>
#include <numeric>
#include <span>

namespace {

using namespace rawhost;
using ::testing::HasSubstr;

constexpr double rate = 48000;
constexpr int block = 256;
constexpr std::size_t warmUp = 1024; // the engine's fade-in and its latency
constexpr std::size_t turn = 2048;   // longer than any response without a room
constexpr std::uint64_t stereo = 0x3;

std::vector<float> part(const Channels& sound, std::size_t turnIndex) {
    std::vector<float> both;
    for (const auto& channel : sound) {
        const auto first = channel.begin() + static_cast<std::ptrdiff_t>(warmUp + turnIndex * turn);
        both.insert(both.end(), first, first + turn);
    }
    return both;
}

/// How far two sounds are apart, in parts of the second's level.
double distance(const std::vector<float>& one, const std::vector<float>& other) {
    double difference = 0;
    double level = 0;
    for (std::size_t index = 0; index < one.size(); ++index) {
        difference += std::pow(static_cast<double>(one[index]) - other[index], 2);
        level += std::pow(static_cast<double>(other[index]), 2);
    }
    return std::sqrt(difference / std::max(level, 1e-20));
}

/// What each channel sounds like alone: an impulse in one channel after the other.
std::vector<std::vector<float>> heardAlone(const RawModule& module, std::uint64_t speakers,
                                           std::size_t channels, std::string_view layout,
                                           Findings& findings) {
    const RawPlugin plugin(module);
    findings.expect(plugin.arrange(speakers, stereo), "refused");
    plugin.choose("Scenes", "Analytic Dry");
    plugin.choose("Speaker Layouts", layout);
    plugin.prepare(rate, block);
    Channels input = silence(channels, warmUp + channels * turn);
    for (std::size_t channel = 0; channel < channels; ++channel)
        input[channel][warmUp + channel * turn] = 1.0f;
    const Channels sound = play(plugin, input, block);
    plugin.activate(false);
    std::vector<std::vector<float>> heard;
    heard.reserve(channels);
    for (std::size_t channel = 0; channel < channels; ++channel)
        heard.push_back(part(sound, channel));
    return heard;
}

/// The loudspeaker that plays each channel; the number of channels where none does.
std::vector<std::size_t> players(const std::vector<std::vector<float>>& heard,
                                 const std::vector<std::vector<float>>& loudspeakers) {
    constexpr double rounding = 1e-3; // what a former channel's low frequencies leave is below
    std::vector<std::size_t> playing;
    playing.reserve(heard.size());
    for (const auto& sound : heard)
        playing.push_back(static_cast<std::size_t>(
            std::ranges::find_if(loudspeakers,
                                 [&](const auto& one) { return distance(sound, one) < rounding; }) -
            loudspeakers.begin()));
    return playing;
}

std::string listOf(const std::vector<std::size_t>& numbers) {
    std::string text;
    for (const std::size_t number : numbers)
        text += " " + std::to_string(number);
    return text;
}

/// The framework's own order of channels, by the interfaces' names; "Lw" and "Rw", a wide pair, are names of its own.
constexpr std::array<std::string_view, 25> frameworkOrder{
    "L",   "R",   "C",   "Lfe", "Ls",  "Rs",   "Lc",  "Rc",  "Cs", "Sl", "Sr",  "Tc", "Tfl",
    "Tfc", "Tfr", "Trl", "Trc", "Trr", "Lfe2", "Lcs", "Rcs", "Lw", "Rw", "Tsl", "Tsr"};

/// A channel that the framework takes for another than its name says.
struct Retaken {
    std::string_view name;
    std::string_view takenFor;
};
/// Beside the sides, the surrounds are the rear ones.
constexpr std::array<Retaken, 2> surroundsAreRear{{{"Ls", "Lcs"}, {"Rs", "Rcs"}}};
/// And the pair within the front pair is the front pair.
constexpr std::array<Retaken, 6> frontIsWide{
    {{"Ls", "Lcs"}, {"Rs", "Rcs"}, {"L", "Lw"}, {"R", "Rw"}, {"Lc", "L"}, {"Rc", "R"}}};

/// The framework takes these families for others than their names say; the other arrangements are in its order as they are.
std::span<const Retaken> retakenOf(const Arrangement& bus) {
    static constexpr std::array<std::string_view, 11> rear{
        "70Music", "71Music", "71CineSideFill", "70_2", "71_2", "91Atmos",
        "70_4",    "71_4",    "111MPEG3D",      "70_6", "71_6"};
    static constexpr std::array<std::string_view, 2> wide{"90_6", "91_6"};
    if (std::ranges::count(rear, bus.name) > 0)
        return surroundsAreRear;
    if (std::ranges::count(wide, bus.name) > 0)
        return frontIsWide;
    return {};
}

/// Where names do not help, entry i of a layout plays channel i of what the framework hands over.
std::vector<std::size_t> numberedByTheFramework(const Arrangement& bus,
                                                const std::vector<std::string_view>& names) {
    std::vector<std::size_t> numbers(names.size());
    std::iota(numbers.begin(), numbers.end(), std::size_t{0});
    const auto retaken = retakenOf(bus);
    if (retaken.empty())
        return numbers;
    const auto place = [&](std::string_view name) {
        const auto other = std::ranges::find(retaken, name, &Retaken::name);
        return std::ranges::find(frameworkOrder, other != retaken.end() ? other->takenFor : name);
    };
    for (std::size_t channel = 0; channel < names.size(); ++channel)
        numbers[channel] = static_cast<std::size_t>(std::ranges::count_if(
            names, [&](std::string_view other) { return place(other) < place(names[channel]); }));
    return numbers;
}

/// Compares what plays each channel of a bus with what ought to, for every layout as wide as the bus.
std::string channelIdentity(const Arrangement& bus, const std::vector<std::string_view>& names) {
    Findings findings;
    const RawModule module(KESTRUM_BUNDLE);
    const std::size_t width = bus.channelCount();
    for (const std::string_view layout : layoutsOfWidth(width)) {
        if (layout == "2.0 +/-0°")
            continue; // both loudspeakers stand in one place
        const auto numbered = heardAlone(module, lowBitArrangement(width).speakers, width, layout, findings);
        const auto found = players(heardAlone(module, bus.speakers, width, layout, findings), numbered);
        const std::vector<std::size_t> expected =
            loudspeakersByName(layout, names).value_or(numberedByTheFramework(bus, names));
        findings.expect(found == expected, bus.name + " as " + std::string(layout) + ": played by" +
                                               listOf(found) + ", expected" + listOf(expected));
    }
    return findings.text();
}

/// A bus is taken, says of itself what it was told, and plays without a fault, before and after preparation, too.
std::string acceptance(const Arrangement& bus) {
    Findings findings;
    const RawModule module(KESTRUM_BUNDLE);
    const RawPlugin plugin(module);
    const std::size_t width = bus.channelCount();
    findings.expect(plugin.arrange(bus.speakers, stereo), "refused");
    findings.expect(plugin.channelCount(Vst::kInput) == width, "another number of channels");
    findings.expect(plugin.channelCount(Vst::kOutput) == 2, "the output is not stereo");
    findings.expect(plugin.arrangement(Vst::kOutput) == stereo, "the output is not left and right");
    plugin.setUp(rate, block);
    const Channels input = noise(width, 8 * block);
    findings.expect(peakOf(play(plugin, input, block)) == 0.0f, "sound before it is active");
    plugin.activate(true);
    const auto sound = play(plugin, input, block);
    findings.expect(isFinite(sound), "no number comes out");
    findings.expect((peakOf(sound) > 0) == (width >= 2),
                    "sound and silence at the wrong width"); // a stereo layout
    plugin.activate(false);
    findings.expect(peakOf(play(plugin, input, block)) == 0.0f, "sound after it was active");
    return findings.text();
}

/// Another output than stereo is refused, and changes nothing of the output that there is.
std::string refusal(const Arrangement& output) {
    Findings findings;
    const RawModule module(KESTRUM_BUNDLE);
    const RawPlugin plugin(module);
    findings.expect(!plugin.arrange(stereo, output.speakers), "taken as an output");
    findings.expect(plugin.arrangement(Vst::kOutput) == stereo, "the output is no longer stereo");
    findings.expect(plugin.channelCount(Vst::kOutput) == 2, "the output is no longer two channels wide");
    plugin.prepare(rate, block);
    findings.expect(isFinite(play(plugin, noise(plugin.channelCount(Vst::kInput), 2 * block), block)),
                    "no number comes out");
    return findings.text();
}

class Arrangements : public ::testing::TestWithParam<Arrangement> {};

TEST_P(Arrangements, AreTakenAsInputsAndPlayed) {
    EXPECT_EQ(inChild([] { return acceptance(GetParam()); }), "");
}

TEST_P(Arrangements, LetEachChannelBeHeardFromTheLoudspeakerOfItsName) {
    EXPECT_EQ(inChild([] { return channelIdentity(GetParam(), GetParam().channelNames()); }), "");
}

class OtherOutputs : public ::testing::TestWithParam<Arrangement> {};

TEST_P(OtherOutputs, AreRefused) {
    EXPECT_EQ(inChild([] { return refusal(GetParam()); }), "");
}

std::vector<Arrangement> allButStereo() {
    std::vector<Arrangement> others = allArrangements();
    std::erase_if(others, [](const Arrangement& output) { return output.speakers == stereo; });
    return others;
}

INSTANTIATE_TEST_SUITE_P(NamedAndLowBits, Arrangements, ::testing::ValuesIn(allArrangements()),
                         [](const auto& bus) { return bus.param.name; });
INSTANTIATE_TEST_SUITE_P(NamedAndLowBits, OtherOutputs, ::testing::ValuesIn(allButStereo()),
                         [](const auto& output) { return output.param.name; });

TEST(ArrangementChecks, KnowAllArrangementsAndTheirWidths) {
    EXPECT_EQ(namedArrangements().size(), 77u);
    EXPECT_EQ(allArrangements().size(), 93u);
    for (const Arrangement& bus : allArrangements()) {
        EXPECT_GE(bus.channelCount(), 1u) << bus.name;
        EXPECT_LE(bus.channelCount(), mostChannels) << bus.name;
        EXPECT_EQ(bus.channelNames().size(), bus.channelCount()) << bus.name;
    }
    std::cout << "figure: 77 named and 16 low-bit inputs, " << allButStereo().size() << " other outputs"
              << std::endl;
}

TEST(ArrangementChecks, SeeTwoChannelsThatChangedPlaces) {
    Arrangement bus = *std::ranges::find(namedArrangements(), std::string("71_2"), &Arrangement::name);
    std::vector<std::string_view> names = bus.channelNames();
    std::swap(*std::ranges::find(names, "Ls"), *std::ranges::find(names, "Sl"));
    const std::string found = inChild([&] { return channelIdentity(bus, names); });
    EXPECT_THAT(found, HasSubstr("71_2 as 7.1.2: played by"));
    // A layout without sides, where names do not help.
    EXPECT_THAT(found,
                HasSubstr("71_2 as 5.1.4: played by 0 1 2 3 6 7 4 5 8 9, expected 0 1 2 3 4 7 6 5 8 9"));
}

TEST(ArrangementChecks, SeeABusThatIsTakenForAnOutput) {
    EXPECT_THAT(inChild([] { return refusal({"Stereo", stereo}); }), HasSubstr("taken as an output"));
}

} // namespace

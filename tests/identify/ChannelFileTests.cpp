// SPDX-License-Identifier: GPL-3.0-or-later
// Voices are tones here, a frequency for each, so that a channel tells whose voice it holds.
#include "identify/ChannelFile.h"

#include "StandInVoices.h"
#include "render/RenderError.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <map>

namespace {

using namespace orvane::kestrum;
using identify::layoutNamed;
using identify::Voices;
using identify::writeChannelFile;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

constexpr unsigned rate = 24000;

/// Listed by hand: the recordings of alsa-utils by the names of the channels that they say.
const std::map<std::string, std::string> recordings{
    {"L", "Front_Left"},   {"R", "Front_Right"}, {"C", "Front_Center"}, {"Lss", "Side_Left"},
    {"Rss", "Side_Right"}, {"Lrs", "Rear_Left"}, {"Rrs", "Rear_Right"}, {"Cs", "Rear_Center"}};

double frequencyOfRecording(const std::string& name) {
    return std::ranges::find(test::standInRecordings, name, [](const auto& entry) { return entry.first; })
        ->second;
}

class ChannelFiles : public ::testing::TestWithParam<std::size_t> {
protected:
    ChannelFiles() { test::writeStandInRecordings(folder.path, rate); }

    identify::Turns write(const core::LayoutRow& layout) {
        return writeChannelFile(folder.path / "bus.wav", layout, Voices(folder.path, speech, rate), rate);
    }

    test::ScratchFolder folder;
    test::StandInSpeech speech{rate};
};

TEST_P(ChannelFiles, HoldOneVoiceAtATimeInBusOrderAndSilenceElsewhere) {
    const core::LayoutRow& layout = core::layoutTable()[GetParam()];
    const identify::Turns turns = write(layout);
    const auto channels = test::readChannels(folder.path / "bus.wav");
    ASSERT_EQ(turns.turnFrames, 2 * rate);
    ASSERT_EQ(channels.size(), layout.speakers.size());
    const std::vector<std::string> names = channels::briefNames(layout);
    std::size_t synthetic = 0;
    for (std::size_t channel = 0; channel < channels.size(); ++channel) {
        ASSERT_EQ(channels[channel].size(), channels.size() * turns.turnFrames);
        const auto start =
            channels[channel].begin() + static_cast<std::ptrdiff_t>(channel * turns.turnFrames);
        const std::vector<float> turn(start, start + 2 * rate);
        const auto notSilent = [](float sample) { return sample != 0; };
        EXPECT_EQ(std::count_if(channels[channel].begin(), channels[channel].end(), notSilent),
                  std::ranges::count_if(turn, notSilent))
            << names[channel] << " sounds outside its turn";
        EXPECT_TRUE(std::none_of(turn.end() - rate * 3 / 10, turn.end(), notSilent))
            << "no pause after " << names[channel];
        const auto recording = recordings.find(names[channel]);
        const bool shared = std::ranges::count(names, names[channel]) > 1;
        const double expected = layout.speakers[channel].lowFrequency ? 50
                                : recording != recordings.end() && !shared
                                    ? frequencyOfRecording(recording->second)
                                    : test::StandInSpeech::frequencyOf(synthetic++);
        EXPECT_NEAR(test::frequencyOf(turn, rate), expected, 0.01 * expected) << names[channel];
    }
    EXPECT_EQ(speech.said.size(), synthetic);
}

std::string asTestName(const ::testing::TestParamInfo<std::size_t>& number) {
    std::string name = "layout" + std::to_string(number.param) + "_";
    for (const char letter : core::layoutTable()[number.param].name)
        name += std::isalnum(static_cast<unsigned char>(letter)) != 0 ? letter : '_';
    return name;
}
INSTANTIATE_TEST_SUITE_P(EveryLayout, ChannelFiles, ::testing::Range(std::size_t{0}, std::size_t{32}),
                         asTestName);

using SyntheticVoices = ChannelFiles;

// By hand, from where the layouts put the loudspeakers.
TEST_F(SyntheticVoices, SayWhatNoRecordingSaysInBusOrder) {
    write(layoutNamed("5.1 ITU"));
    EXPECT_THAT(speech.said, ElementsAre("left surround", "right surround"));
    speech.said.clear();
    write(layoutNamed("9.1.6"));
    EXPECT_THAT(speech.said,
                ElementsAre("left wide", "right wide", "left top front", "right top front", "left top rear",
                            "right top rear", "left top middle", "right top middle"));
    speech.said.clear();
    write(layoutNamed("11.1"));
    EXPECT_THAT(speech.said,
                ElementsAre("left surround", "right surround", "top", "left top front", "centre top front",
                            "right top front", "left top rear", "right top rear"));
}

TEST_F(SyntheticVoices, AreNotAskedForWhereEveryNameIsRecorded) {
    for (const char* const name : {"Stereo", "LRCS", "7.0", "7.1", "7.1 SDDS Logic"})
        write(layoutNamed(name));
    EXPECT_THAT(speech.said, IsEmpty());
}

/// Both loudspeakers of this layout stand in front; the channels must be told apart all the same.
TEST_F(SyntheticVoices, TellChannelsApartWhoseLoudspeakersShareAPlace) {
    write(layoutNamed("Mono Summed"));
    EXPECT_THAT(speech.said, ElementsAre("front centre, channel one", "front centre, channel two"));
}

TEST_F(ChannelFiles, TurnsGrowByWholeSecondsWhereAVoiceNeedsMoreTime) {
    test::writeSound(folder.path / "Front_Left.wav", test::spokenTone(300, rate, 1.9), rate);
    const identify::Turns turns = write(layoutNamed("Stereo"));
    EXPECT_EQ(turns.turnFrames, 3 * rate);
    EXPECT_EQ(test::readChannels(folder.path / "bus.wav").front().size(), 6 * rate);
}

TEST_F(ChannelFiles, NothingIsWrittenWhenAVoiceIsMissing) {
    std::filesystem::remove(folder.path / "Rear_Right.wav");
    EXPECT_THROW(write(layoutNamed("7.1")), render::RenderError);
    EXPECT_FALSE(std::filesystem::exists(folder.path / "bus.wav"));
}

TEST(LayoutNames, AreTakenInEitherCaseAndAsTheMenuShowsThem) {
    EXPECT_EQ(layoutNamed("5.1 itu").name, "5.1 ITU");
    EXPECT_EQ(layoutNamed("Stereo Wide").name, "2.0 +/-45°");
}

TEST(LayoutNames, ThatAreUnknownListThoseThereAre) {
    try {
        layoutNamed("LCRS");
        FAIL() << "expected an exception";
    } catch (const render::RenderError& error) {
        EXPECT_THAT(error.what(), HasSubstr("There is no layout \"LCRS\"; choose one of: \"1.0\""));
    }
}

} // namespace

// SPDX-License-Identifier: GPL-3.0-or-later
// Analytic references: tones of known frequency, level and length.
#include "identify/Voices.h"

#include "StandInVoices.h"
#include "render/RenderError.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>

namespace {

using namespace orvane::kestrum;
using identify::preparedVoice;
using ::testing::AllOf;
using ::testing::Each;
using ::testing::Ge;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Le;

channels::Channel channelCalled(const std::string& brief) {
    return {brief, std::string(channels::spokenName(brief)), true, {.azimuth = 0}};
}

/// The part of the power that lies at one frequency.
double shareAt(const std::vector<float>& samples, double frequency, unsigned sampleRate) {
    std::complex<double> sum;
    double power = 0;
    for (std::size_t index = 0; index < samples.size(); ++index) {
        sum += static_cast<double>(samples[index]) *
               std::polar(1.0, -2 * std::numbers::pi * frequency * static_cast<double>(index) / sampleRate);
        power += static_cast<double>(samples[index]) * samples[index];
    }
    return 2 * std::norm(sum) / (static_cast<double>(samples.size()) * power);
}

TEST(PreparedVoices, KeepTheirPitchAndLengthAtAnotherSampleRate) {
    const auto voice = preparedVoice({22050, test::spokenTone(700, 22050)}, 48000);
    EXPECT_NEAR(test::frequencyOf(voice, 48000), 700, 2);
    EXPECT_NEAR(static_cast<double>(voice.size()) / 48000, 0.6 + 2 * 0.02, 0.005); // the tone and both edges
}

TEST(PreparedVoices, BeginAtOnceAndEndSoftly) {
    const auto voice = preparedVoice({48000, test::spokenTone(700, 48000)}, 48000);
    EXPECT_NEAR(voice.front(), 0, 1e-3);
    EXPECT_NEAR(voice.back(), 0, 1e-3);
    const auto heard = std::ranges::find_if(voice, [](float sample) { return std::abs(sample) > 0.02f; });
    EXPECT_LT(heard - voice.begin(), 48000 * 0.03);
}

/// A 1 kHz sine of one channel reads 3 LU less than its peak in dB: its power is half, and the meter weighs 1 kHz with 0 dB by its
/// definition. Blocks that the sound's end cuts pass the meter's gate, which is worth 0.3 LU here.
TEST(PreparedVoices, AreEquallyLoudHoweverTheyWereRecorded) {
    for (const double amplitude : {0.001, 0.05, 0.8}) {
        const auto voice = preparedVoice({48000, test::spokenTone(1000, 48000, 2.0, amplitude)}, 48000);
        const float peak = std::ranges::max(voice);
        EXPECT_NEAR(20 * std::log10(peak), identify::voiceLoudnessLufs + 3, 0.5) << amplitude;
    }
}

/// One click in silence has to be far louder than full scale to be as loud as a voice.
TEST(PreparedVoices, StayBelowFullScale) {
    std::vector<float> click(48000);
    click[24000] = 0.1f;
    click[24001] = -0.1f;
    const auto voice = preparedVoice({48000, click}, 48000);
    ASSERT_FALSE(voice.empty());
    EXPECT_NEAR(std::ranges::max(voice), std::pow(10.0, -1.0 / 20), 0.005);
    EXPECT_THAT(voice, Each(AllOf(Ge(-0.9f), Le(0.9f))));
}

TEST(PreparedVoices, OfSilenceAreEmpty) {
    EXPECT_THAT(preparedVoice({48000, std::vector<float>(1000)}, 48000), IsEmpty());
    EXPECT_THAT(preparedVoice({48000, {}}, 44100), IsEmpty());
}

TEST(LowFrequencyTones, AreOneSineAtEveryRate) {
    for (const unsigned rate : {24000u, 44100u, 192000u}) {
        const auto tone = identify::lowFrequencyTone(rate);
        EXPECT_EQ(tone.size(), 3 * rate / 2);
        EXPECT_GT(shareAt(tone, 50, rate), 0.95); // the soft ends take some
        EXPECT_NEAR(std::ranges::max(tone), 0.1, 1e-3);
        EXPECT_NEAR(tone.back(), 0, 1e-3);
    }
}

class VoicesOfChannels : public ::testing::Test {
protected:
    VoicesOfChannels() { test::writeStandInRecordings(folder.path, 48000); }

    std::string refusal(const channels::Channel& channel) {
        try {
            identify::Voices(folder.path, speech, 48000).soundOf(channel);
            return "no refusal";
        } catch (const render::RenderError& error) {
            return error.what();
        }
    }

    test::ScratchFolder folder;
    test::StandInSpeech speech{22050};
};

TEST_F(VoicesOfChannels, AMissingRecordingNamesThePackage) {
    std::filesystem::remove(folder.path / "Side_Left.wav");
    EXPECT_THAT(refusal(channelCalled("Lss")),
                HasSubstr("Side_Left.wav\" is missing: install Debian's package alsa-utils."));
}

TEST_F(VoicesOfChannels, ASilentRecordingIsRefused) {
    test::writeSound(folder.path / "Front_Left.wav", std::vector<float>(100), 48000);
    EXPECT_THAT(refusal(channelCalled("L")),
                HasSubstr("\"front left\" is silent: install Debian's packages"));
}

TEST_F(VoicesOfChannels, TheLowFrequencyChannelNeedsNoVoice) {
    std::filesystem::remove_all(folder.path / "Front_Left.wav");
    channels::Channel channel = channelCalled("LFE");
    channel.speaker.lowFrequency = true;
    EXPECT_EQ(identify::Voices(folder.path, speech, 48000).soundOf(channel).size(), 72000u);
    EXPECT_THAT(speech.said, IsEmpty());
}

} // namespace

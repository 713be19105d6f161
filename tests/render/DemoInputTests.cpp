// SPDX-License-Identifier: GPL-3.0-or-later
// Recordings are made here: constant files of known length and level, so that every frame is known.
#include "render/DemoInput.h"

#include "render/AudioStreams.h"
#include "render/RenderError.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <string>
#include <vector>

namespace {

using orvane::kestrum::render::RenderError;
using orvane::kestrum::render::SoundFileSink;
using orvane::kestrum::render::SoundFileSource;
using orvane::kestrum::render::writeDemoInput;

constexpr std::array<const char*, 6> namesInChannelOrder{"Front_Left", "Front_Right", "Front_Center",
                                                         "Noise",      "Rear_Left",   "Rear_Right"};
constexpr std::size_t voiceLength = 100;
constexpr unsigned rate = 1000;
constexpr std::size_t gapLength = 250; // a quarter of a second

class DemoInput : public ::testing::Test {
protected:
    DemoInput()
        : folder(std::filesystem::temp_directory_path() /
                 (std::string("kestrum_demo_") +
                  ::testing::UnitTest::GetInstance()->current_test_info()->name())) {
        std::filesystem::create_directories(folder);
        for (std::size_t channel = 0; channel < 6; ++channel)
            record(channel, rate, 1);
    }

public:
    ~DemoInput() override { std::filesystem::remove_all(folder); }

protected:
    /// A recording whose every sample is a tenth of its channel's number, counted from 1.
    void record(std::size_t channel, unsigned sampleRate, unsigned channelCount) const {
        SoundFileSink file(folder / (std::string(namesInChannelOrder[channel]) + ".wav"), sampleRate,
                           channelCount);
        file.write(std::vector<float>(voiceLength * channelCount, 0.1f * static_cast<float>(channel + 1)));
        file.close();
    }

    std::filesystem::path folder;
};

TEST_F(DemoInput, EachChannelSpeaksInItsTurnAndIsSilentOtherwise) {
    writeDemoInput(folder / "demo.wav", folder);
    SoundFileSource demo(folder / "demo.wav");
    ASSERT_EQ(demo.channelCount(), 6u);
    ASSERT_EQ(demo.frameCount(), 6 * (voiceLength + gapLength));
    std::vector<std::vector<float>> channels(6, std::vector<float>(demo.frameCount()));
    std::vector<float*> pointers(6);
    std::ranges::transform(channels, pointers.begin(), [](auto& channel) { return channel.data(); });
    demo.read(pointers, demo.frameCount());
    for (std::size_t frame = 0; frame < demo.frameCount(); ++frame) {
        const std::size_t turn = frame / (voiceLength + gapLength);
        const bool speaking = frame % (voiceLength + gapLength) < voiceLength;
        for (std::size_t channel = 0; channel < 6; ++channel)
            ASSERT_EQ(channels[channel][frame],
                      speaking && channel == turn ? 0.1f * static_cast<float>(channel + 1) : 0.0f)
                << "channel " << channel << ", frame " << frame;
    }
}

TEST_F(DemoInput, AMissingRecordingNamesThePackage) {
    std::filesystem::remove(folder / "Noise.wav");
    try {
        writeDemoInput(folder / "demo.wav", folder);
        FAIL() << "expected an exception";
    } catch (const RenderError& error) {
        EXPECT_THAT(error.what(),
                    ::testing::HasSubstr("Noise.wav\" is missing: install Debian's package alsa-utils."));
    }
}

TEST_F(DemoInput, RecordingsOfTwoRatesOrTwoChannelsAreRefused) {
    record(2, 2 * rate, 1);
    EXPECT_THROW(writeDemoInput(folder / "demo.wav", folder), RenderError);
    record(2, rate, 2);
    EXPECT_THROW(writeDemoInput(folder / "demo.wav", folder), RenderError);
}

} // namespace

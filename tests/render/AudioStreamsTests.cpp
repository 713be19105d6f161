// SPDX-License-Identifier: GPL-3.0-or-later
// Property: what was written is read back, sample by sample; 32-bit float holds every value exactly.
#include "render/AudioStreams.h"

#include "render/RenderError.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace {

using orvane::kestrum::render::RenderError;
using orvane::kestrum::render::SoundFileSink;
using orvane::kestrum::render::SoundFileSource;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

class SoundFiles : public ::testing::Test {
protected:
    SoundFiles()
        : path(std::filesystem::temp_directory_path() /
               (std::string("kestrum_sound_") +
                ::testing::UnitTest::GetInstance()->current_test_info()->name() + ".wav")) {}

public:
    ~SoundFiles() override { std::filesystem::remove(path); }

protected:
    std::string content() const {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    std::filesystem::path path;
};

TEST_F(SoundFiles, ChannelsComeBackApartAndZerosFollowTheLastFrame) {
    SoundFileSink sink(path, 44100);
    sink.write(std::vector<float>{0.1f, -0.1f, 2.5f, -2.5f});
    sink.close();

    SoundFileSource source(path);
    EXPECT_EQ(source.sampleRate(), 44100u);
    EXPECT_EQ(source.channelCount(), 2u);
    EXPECT_EQ(source.frameCount(), 2u);
    std::array<float, 3> left{9, 9, 9};
    std::array<float, 3> right{9, 9, 9};
    const std::array<float*, 2> channels{left.data(), right.data()};
    source.read(channels, 3);
    EXPECT_THAT(left, ElementsAre(0.1f, 2.5f, 0));
    EXPECT_THAT(right, ElementsAre(-0.1f, -2.5f, 0));
    source.read(channels, 3);
    EXPECT_THAT(left, ElementsAre(0, 0, 0));
}

TEST_F(SoundFiles, EqualSamplesGiveEqualFiles) {
    std::array<std::string, 2> files;
    for (std::string& file : files) {
        SoundFileSink sink(path, 48000);
        sink.write(std::vector<float>{0.5f, 0.25f});
        sink.close();
        file = content();
    }
    EXPECT_EQ(files[0], files[1]);
    EXPECT_THAT(files[0], ::testing::Not(HasSubstr("PEAK"))); // that chunk would hold the time of day
}

TEST_F(SoundFiles, AnInputThatIsMissingOrNoSoundIsRefused) {
    EXPECT_THROW(SoundFileSource("/nowhere/in.wav"), RenderError);
    std::ofstream(path) << "no sound";
    EXPECT_THROW(SoundFileSource{path}, RenderError);
}

TEST_F(SoundFiles, AnOutputThatCannotBeMadeIsRefused) {
    EXPECT_THROW(SoundFileSink("/nowhere/out.wav", 48000), RenderError);
}

} // namespace

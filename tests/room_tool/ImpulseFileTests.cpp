// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/DataError.h"
#include "data/head/MeasuredSet.h"
#include "room/ImpulseFile.h"

#include "SyntheticRoom.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <limits>
#include <string>
#include <vector>

using namespace orvane::kestrum::tools;
using ::testing::AllOf;
using ::testing::HasSubstr;

namespace {

class ImpulseFiles : public ::testing::Test {
protected:
    std::string refusalOf(const std::vector<Samples>& channels, std::uint32_t sampleRate = 48000) {
        return refusalOf(test::SyntheticRoom::writeSamples(folder.file("ir.wav"), channels, sampleRate));
    }
    static std::string refusalOf(const std::string& path) {
        try {
            readImpulseFile(path);
        } catch (const DataError& error) {
            return error.what();
        }
        return "nothing refused";
    }

    test::TemporaryFolder folder;
    test::SyntheticRoom room;
};

TEST_F(ImpulseFiles, BeginWithTheDirectSound) {
    const ImpulseFile file = readImpulseFile(room.write(folder.file("ir.wav"), 1));
    EXPECT_FALSE(file.binaural);
    EXPECT_NEAR(file.secondsToOnset, room.delaySeconds, 1e-9);
    EXPECT_NEAR(file.ears[leftEar][0], 0.9, 0.05);
    EXPECT_EQ(file.ears[leftEar], file.ears[rightEar]);
}

TEST_F(ImpulseFiles, OfTwoChannelsAreBinauralUnlessTheyAreTheSame) {
    EXPECT_TRUE(readImpulseFile(room.write(folder.file("two.wav"), 2)).binaural);
    const Samples one = room.channels(1).front();
    const ImpulseFile same =
        readImpulseFile(test::SyntheticRoom::writeSamples(folder.file("same.wav"), {one, one}, 48000));
    EXPECT_FALSE(same.binaural);
    EXPECT_TRUE(same.dualMono);
}

/// Analytic: the same samples at twice the rate last half as long.
TEST_F(ImpulseFiles, OfAnotherRateAreResampled) {
    const ImpulseFile file =
        readImpulseFile(test::SyntheticRoom::writeSamples(folder.file("ir.wav"), room.channels(1), 96000));
    EXPECT_EQ(file.sampleRate, 96000);
    EXPECT_NEAR(file.secondsToOnset, room.delaySeconds / 2, 2.0 / 48000);
    EXPECT_NEAR(static_cast<double>(file.ears[leftEar].size()), room.seconds * 24000, 3);
}

TEST_F(ImpulseFiles, OfMoreChannelsOrAnUnusableRateAreRefused) {
    const Samples one = room.channels(1).front();
    EXPECT_THAT(refusalOf({one, one, one}),
                HasSubstr("has 3 channels: give an impulse response of one or two"));
    EXPECT_THAT(refusalOf({one}, 8000), HasSubstr("has a rate of 8000 Hz"));
}

TEST_F(ImpulseFiles, ThatAreSilentAreRefused) {
    const Samples one = room.channels(1).front();
    EXPECT_THAT(refusalOf({Samples(48000)}), HasSubstr("is silent: give"));
    EXPECT_THAT(refusalOf({one, Samples(one.size())}), HasSubstr("silent in its second channel"));
    EXPECT_THAT(refusalOf({Samples(one.size()), one}), HasSubstr("silent in its first channel"));
}

TEST_F(ImpulseFiles, WithSamplesThatAreNoNumbersAreRefused) {
    for (const float bad :
         {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity()}) {
        std::vector<float> frames(48000, 0.0f);
        frames[0] = 1;
        frames[777] = bad;
        test::WaveHeader header;
        header.channels = 1;
        test::writeBytes(folder.file("ir.wav"), test::waveBytes(header, frames));
        EXPECT_THAT(refusalOf(folder.file("ir.wav")), HasSubstr("samples that are no numbers"));
    }
}

TEST_F(ImpulseFiles, ThatEndTooSoonAreRefused) {
    Samples one = room.channels(1).front();
    one.resize(static_cast<std::size_t>((room.delaySeconds + 0.05) * 48000));
    EXPECT_THAT(refusalOf({one}), HasSubstr("goes on for 50 ms only"));
    EXPECT_THAT(refusalOf({Samples{}}), HasSubstr("is silent"));
}

TEST_F(ImpulseFiles, ThatAreClippedAreRefused) {
    Samples one = room.channels(1).front();
    const auto onset = static_cast<std::size_t>(room.delaySeconds * 48000);
    for (std::size_t frame = onset; frame < onset + 5; ++frame)
        one[frame] = 3;
    EXPECT_THAT(refusalOf({one}), AllOf(HasSubstr("tops cut off"), HasSubstr("5 samples")));
}

TEST_F(ImpulseFiles, ThatAreNoSoundAreRefused) {
    EXPECT_THAT(refusalOf("/none.wav"), HasSubstr("cannot be read as sound"));
    std::ofstream(folder.file("text.wav")) << "no sound at all";
    EXPECT_THAT(refusalOf(folder.file("text.wav")), HasSubstr("cannot be read as sound"));
    EXPECT_THAT(refusalOf(folder.path()), HasSubstr("cannot be read as sound"));
}

} // namespace

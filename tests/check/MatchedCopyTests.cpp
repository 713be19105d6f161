// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/MatchedCopy.h"

#include "CheckSupport.h"

#include <gmock/gmock.h>

namespace {

using namespace orvane::kestrum::check;

class MatchedCopy : public ::test::FolderTest {
protected:
    MatchedCopy() {
        std::vector<float> stereo;
        for (int frame = 0; frame < 40000; ++frame)
            stereo.insert(stereo.end(), {static_cast<float>(frame % 101) / 1000.0f,
                                         -static_cast<float>(frame % 67) / 1000.0f});
        ::test::writeSound(folder / "in.wav", stereo, 2, 44100);
    }
};

TEST_F(MatchedCopy, IsTheRenderingTimesTheGainAtItsOwnRate) {
    writeMatchedCopy(folder / "in.wav", 6, folder / "out.flac");
    const auto before = ::test::readSound(folder / "in.wav"), after = ::test::readSound(folder / "out.flac");
    EXPECT_EQ(orvane::kestrum::render::SoundFileSource(folder / "out.flac").sampleRate(), 44100u);
    ASSERT_EQ(after[0].size(), before[0].size());
    for (std::size_t ear = 0; ear < 2; ++ear)
        for (std::size_t frame = 0; frame < before[0].size(); ++frame)
            ASSERT_NEAR(after[ear][frame], before[ear][frame] * 1.9952623f,
                        2.0f / 8388608.0f); // steps of 24 bits
}

TEST_F(MatchedCopy, GivesTheWindowsOfTheSameSound) {
    EXPECT_EQ(writeMatchedCopy(folder / "in.wav", 0, folder / "out.flac").size(), 1u);
}

TEST_F(MatchedCopy, ThatCannotBeWrittenIsRefused) {
    EXPECT_THAT(
        ::test::refusalOf([&] { writeMatchedCopy(folder / "in.wav", 0, folder / "none" / "out.flac"); }),
        ::testing::HasSubstr("out.flac\" cannot be written"));
}

} // namespace

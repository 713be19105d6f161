// SPDX-License-Identifier: GPL-3.0-or-later
// Expected texts are the tool's promises to its user: one sentence with the remedy.
#include "check/Survey.h"

#include "CheckSupport.h"

#include <gmock/gmock.h>
#include <sndfile.h>

#include <limits>

namespace {

using namespace orvane::kestrum::check;
using ::test::refusalOf;
using ::testing::HasSubstr;

class Survey : public ::test::FolderTest {
protected:
    std::filesystem::path mix = folder / "mix.wav";
};

TEST_F(Survey, TellsWhatTheFileHolds) {
    ::test::writeSound(mix, std::vector<float>(3 * 4800, 0.5f), 3);
    const Mix seen = openMix(mix);
    EXPECT_EQ(seen.channelCount, 3u);
    EXPECT_EQ(seen.sampleRate, 48000u);
    EXPECT_EQ(seen.frameCount, 4800u);
    EXPECT_DOUBLE_EQ(seen.seconds(), 0.1);
    EXPECT_TRUE(seen.path.is_absolute());
    EXPECT_NO_THROW(requireSound(seen));
}

TEST_F(Survey, RefusesAFileThatIsNoSound) {
    ::test::writeText(mix, "RIFF and nothing more");
    EXPECT_THAT(refusalOf([&] { openMix(mix); }), HasSubstr("mix.wav\" cannot be read"));
    EXPECT_THAT(refusalOf([&] { openMix(folder / "none.wav"); }), HasSubstr("none.wav\" cannot be read"));
}

TEST_F(Survey, RefusesMoreChannelsThanABusHolds) {
    ::test::writeSound(mix, std::vector<float>(17, 0.5f), 17);
    EXPECT_THAT(refusalOf([&] { openMix(mix); }),
                HasSubstr("has 17 channels and the plug-in takes 16 at most: leave some out."));
}

TEST_F(Survey, NamesChannelAndPlaceOfAValueThatIsNoNumber) {
    for (const float bad :
         {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity()}) {
        std::vector<float> samples(2 * 96000, 0.1f);
        samples[2 * 72000 + 1] = bad;
        ::test::writeSound(mix, samples, 2);
        EXPECT_THAT(refusalOf([&] { requireSound(openMix(mix)); }),
                    HasSubstr("holds a value that is no number in channel 2 at 0:01.50: export it anew"));
    }
}

TEST_F(Survey, RefusesSilence) {
    ::test::writeSound(mix, std::vector<float>(48000), 1);
    EXPECT_THAT(refusalOf([&] { requireSound(openMix(mix)); }), HasSubstr("is silent from end to end"));
}

/// Silence packs well, so eleven minutes of it are a small file.
TEST_F(Survey, RefusesMoreThanTenMinutes) {
    mix = folder / "mix.flac";
    SF_INFO info{};
    info.samplerate = 24000;
    info.channels = 1;
    info.format = SF_FORMAT_FLAC | SF_FORMAT_PCM_16;
    SNDFILE* const file = sf_open(mix.c_str(), SFM_WRITE, &info);
    const std::vector<short> second(24000);
    for (int seconds = 0; seconds < 667; ++seconds)
        sf_write_short(file, second.data(), 24000);
    sf_close(file);
    EXPECT_THAT(refusalOf([&] { openMix(mix); }),
                HasSubstr("lasts 11:07.00 and a page holds ten minutes: cut out the passage"));
}

TEST_F(Survey, RefusesAFileThatWasCutOff) {
    mix = folder / "mix.flac";
    SF_INFO info{};
    info.samplerate = 48000;
    info.channels = 1;
    info.format = SF_FORMAT_FLAC | SF_FORMAT_PCM_16;
    SNDFILE* const file = sf_open(mix.c_str(), SFM_WRITE, &info);
    std::vector<short> noise(96000);
    for (std::size_t index = 0; index < noise.size(); ++index)
        noise[index] = static_cast<short>(index * 7919 % 20011);
    sf_write_short(file, noise.data(), static_cast<sf_count_t>(noise.size()));
    sf_close(file);
    std::filesystem::resize_file(mix, std::filesystem::file_size(mix) / 2);
    EXPECT_THAT(refusalOf([&] { requireSound(openMix(mix)); }), HasSubstr("ends before its promised length"));
}

} // namespace

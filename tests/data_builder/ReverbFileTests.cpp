// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/DataError.h"
#include "data/FileReader.h"
#include "data/rooms/ReverbFile.h"
#include "data/sets/FolderCheck.h"
#include "room/ReverbImpulseResponse.h"

#include "SyntheticRooms.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <limits>
#include <string>

using namespace orvane::kestrum::tools;
using ::testing::Each;
using ::testing::HasSubstr;

namespace {

/// Written once for all tests of the suite: the smallest of the three files.
class ReverbFiles : public ::testing::Test {
protected:
    static constexpr ReverbFile file = reverbFiles[2];

    void SetUp() override { writeReverbSet(set, folder.path()); }
    std::string path() const { return folder.file(file.name); }
    void overwrite(std::streamoff at, const void* bytes, std::streamsize count) const {
        std::fstream stream(path(), std::ios::binary | std::ios::in | std::ios::out);
        stream.seekp(at);
        stream.write(static_cast<const char*>(bytes), count);
    }

    const test::TemporaryFolder folder;
    ReverbSet set = test::toneRooms(file);
};

/// The plug-in's own reader finds every room where it looks for it, left ear first.
TEST_F(ReverbFiles, AreReadByThePluginsOwnReader) {
    const orvane::FileReader reader;
    for (const ReverbEntry& entry : set.entries) {
        orvane::ReverbImpulseResponse response(&reader);
        response.load(24000, 24000, static_cast<std::uint32_t>(entry.room), path());
        ASSERT_EQ(response.frames(), entry.ears[0].size()) << entry.room;
        const auto samples = reader.read(path(), 2 * response.frames(), 60,
                                         static_cast<std::uint32_t>(entryOf(roomDescription(entry.room))));
        for (std::size_t frame = 0; frame < response.frames(); ++frame)
            for (std::size_t ear = 0; ear < 2; ++ear)
                ASSERT_EQ(samples[2 * frame + ear], static_cast<float>(entry.ears[ear][frame])) << entry.room;
    }
}

/// The entries that no room with a reverb uses lead to one silent frame.
TEST_F(ReverbFiles, HaveASilentFrameForUnusedEntries) {
    const orvane::FileReader reader;
    for (const std::uint32_t entry : {1u, 10u, 11u, 12u, 14u})
        EXPECT_THAT(reader.read(path(), 2, 60, entry), Each(0.0f)) << entry;
}

/// By hand: two bytes, sixty starts of four, and eight per frame.
TEST_F(ReverbFiles, HaveTheSizeOfTheirFrames) {
    std::uint64_t frames = 1;
    for (const ReverbEntry& entry : set.entries)
        frames += entry.ears[0].size();
    EXPECT_EQ(std::filesystem::file_size(path()), 2 + 60 * 4 + 8 * frames);
    EXPECT_EQ(reverbFileSize(file), 2 + 60 * 4 + 8 * frames);
}

TEST_F(ReverbFiles, ComeBackAsTheyWereWritten) {
    const ReverbSet back = readReverbSet(file, folder.path());
    ASSERT_EQ(back.entries.size(), set.entries.size());
    for (std::size_t index = 0; index < set.entries.size(); ++index)
        for (std::size_t ear = 0; ear < 2; ++ear)
            for (std::size_t frame = 0; frame < set.entries[index].ears[ear].size(); frame += 7)
                ASSERT_EQ(back.entries[index].ears[ear][frame],
                          static_cast<double>(static_cast<float>(set.entries[index].ears[ear][frame])));
}

TEST_F(ReverbFiles, AreSoundAsTheyWereWritten) {
    const FileVerdict verdict = checkReverbFile(file, folder.path());
    EXPECT_TRUE(verdict.sound) << verdict.finding;
    EXPECT_THAT(verdict.finding, HasSubstr("46 rooms at 24000 Hz"));
}

TEST_F(ReverbFiles, CutShortOrMissingAreNotSound) {
    std::filesystem::resize_file(path(), 5000);
    EXPECT_THAT(checkReverbFile(file, folder.path()).finding, HasSubstr("5000 bytes instead of"));
    std::filesystem::remove(path());
    const FileVerdict verdict = checkReverbFile(file, folder.path());
    EXPECT_FALSE(verdict.sound);
    EXPECT_THAT(verdict.finding, HasSubstr("missing"));
    EXPECT_THAT(verdict.remedy, HasSubstr("kestrum data reverb"));
}

TEST_F(ReverbFiles, WithAStartBeyondTheEndAreNotSound) {
    const std::uint32_t beyond = 0xfffffff0U;
    overwrite(2 + 4 * (56 - 1), &beyond, sizeof beyond);
    EXPECT_THAT(checkReverbFile(file, folder.path()).finding,
                HasSubstr("entry 56 starts at frame 4294967280"));
}

/// Inside the file, but in the middle of another room; entry 15 is the first that a room uses, entry 1 is unused.
TEST_F(ReverbFiles, WithAWrongStartInsideAreNotSound) {
    const std::uint32_t late = 2;
    overwrite(2 + 4 * (15 - 1), &late, sizeof late);
    EXPECT_THAT(checkReverbFile(file, folder.path()).finding,
                HasSubstr("entry 15 starts at frame 2 instead of 1"));
    writeReverbSet(set, folder.path());
    overwrite(2, &late, sizeof late);
    EXPECT_THAT(checkReverbFile(file, folder.path()).finding,
                HasSubstr("entry 1 starts at frame 2 instead of 0"));
}

TEST_F(ReverbFiles, WithASoundInTheFrameOfTheUnusedEntriesAreNotSound) {
    const float sound = 0.5F;
    for (const std::streamoff ear : {0, 4}) {
        writeReverbSet(set, folder.path());
        overwrite(2 + 60 * 4 + ear, &sound, sizeof sound);
        EXPECT_THAT(checkReverbFile(file, folder.path()).finding, HasSubstr("is not silent")) << ear;
    }
}

TEST_F(ReverbFiles, WithSamplesThatAreNoNumbersAreNotSound) {
    const float none = std::numeric_limits<float>::quiet_NaN();
    overwrite(2 + 60 * 4 + 8 * 5000, &none, sizeof none);
    EXPECT_THAT(checkReverbFile(file, folder.path()).finding, HasSubstr("no numbers"));
}

TEST_F(ReverbFiles, OfALevelThatNoCalibrationGivesAreNotSound) {
    for (double& sample : set.entries[10].ears[0])
        sample *= 10;
    writeReverbSet(set, folder.path());
    EXPECT_THAT(checkReverbFile(file, folder.path()).finding, HasSubstr("room 12 has its peak at 20 dB"));
    set = test::toneRooms(file);
    std::ranges::fill(set.entries[10].ears[1], 0.0);
    writeReverbSet(set, folder.path());
    EXPECT_THAT(checkReverbFile(file, folder.path()).finding, HasSubstr("room 12 is silent at one ear"));
}

TEST(ReverbFileErrors, NameTheFolderThatCannotBeWritten) {
    try {
        writeReverbSet(test::toneRooms(reverbFiles[2]), "/proc/none");
        FAIL();
    } catch (const DataError& error) {
        EXPECT_THAT(error.what(), HasSubstr("/proc/none/OVNdata512.dat"));
    }
}

} // namespace

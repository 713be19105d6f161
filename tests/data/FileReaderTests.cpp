// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/FileReader.h"

#include "data/DataFileExceptions.h"
#include "support/WaveFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <limits>

#include <sys/stat.h>

namespace {

using orvane::FileReader;
using ::testing::Each;
using ::testing::ElementsAre;

/// A container of three entries over six frames, frame i being (10 i, 10 i + 1).
class ReverbContainer : public ::testing::Test {
protected:
    ReverbContainer() { write({4, 0, 2}); }

    void write(const std::vector<std::uint32_t>& table) {
        std::string bytes = "??";
        for (const std::uint32_t start : table)
            bytes += test::bytesOf(start);
        for (int frame = 0; frame < 6; ++frame)
            bytes += test::bytesOf(10.0f * static_cast<float>(frame)) +
                     test::bytesOf(10.0f * static_cast<float>(frame) + 1.0f);
        test::writeBytes(path, bytes);
    }

    test::TemporaryFolder folder;
    std::string path = folder.file("container");
    FileReader reader;
};

// Expected values: the layout of the container.
TEST_F(ReverbContainer, GivesTheFramesFromTheEntrysStartOn) {
    EXPECT_THAT(reader.read(path, 4, 3, 1), ElementsAre(40, 41, 50, 51));
    EXPECT_THAT(reader.read(path, 4, 3, 2), ElementsAre(0, 1, 10, 11));
    EXPECT_THAT(reader.read(path, 2, 3, 3), ElementsAre(20, 21));
}

TEST_F(ReverbContainer, GivesZerosBehindTheEndOfTheFile) {
    EXPECT_THAT(reader.read(path, 7, 3, 1), ElementsAre(40, 41, 50, 51, 0, 0, 0));
}

TEST_F(ReverbContainer, GivesNothingButZerosForAStartOutsideTheFile) {
    write({6, 7, std::numeric_limits<std::uint32_t>::max()});
    for (const std::uint32_t entry : {1u, 2u, 3u})
        EXPECT_THAT(reader.read(path, 4, 3, entry), Each(0.0f)) << entry;
}

TEST_F(ReverbContainer, TheLargestTableAndEntryDoNotOverflowTheirPositions) {
    constexpr auto largest = std::numeric_limits<std::uint32_t>::max();
    EXPECT_THAT(reader.read(path, 4, largest, 1), Each(0.0f));
    EXPECT_THROW(reader.read(path, 4, largest, largest), orvane::wavNotReadableException);
    EXPECT_THROW(reader.read(path, 4, 3, 0x40000001u), orvane::wavNotReadableException);
}

TEST_F(ReverbContainer, NoFloatsWantedAreNoFloats) { EXPECT_TRUE(reader.read(path, 0, 3, 1).empty()); }

TEST_F(ReverbContainer, EntryZeroGivesZerosAsRoomsWithoutReverbNeedIt) {
    EXPECT_TRUE(reader.read(path, 0, 3, 0).empty());
    EXPECT_THAT(reader.read(path, 2, 3, 0), ElementsAre(0, 0));
    EXPECT_THROW(reader.read(folder.file("missing"), 0, 3, 0), orvane::wavNotReadableException);
}

TEST_F(ReverbContainer, AMissingFileIsNotReadableRatherThanNotFound) {
    EXPECT_THROW(reader.read(folder.file("missing"), 2, 3, 1), orvane::wavNotReadableException);
}

TEST_F(ReverbContainer, AFileThatEndsInsideItsTableIsNotReadable) {
    const std::string whole = test::readBytes(path);
    for (std::size_t size = 0; size < 14; ++size) {
        test::writeBytes(path, whole.substr(0, size));
        EXPECT_THROW(reader.read(path, 2, 3, 3), orvane::wavNotReadableException) << size;
    }
}

/// A response that is no sound at all would come out of every loudspeaker.
TEST_F(ReverbContainer, SamplesThatAreNoNumbersOrBeyondAMillionAreNotReadable) {
    constexpr float infinite = std::numeric_limits<float>::infinity();
    for (const float wrong : {std::numeric_limits<float>::quiet_NaN(), infinite, -infinite, 1.1e6f, -3e38f}) {
        test::writeBytes(path,
                         "??" + test::bytesOf(std::uint32_t{0}) + test::bytesOf(0.5f) + test::bytesOf(wrong));
        EXPECT_THROW(reader.read(path, 2, 1, 1), orvane::wavNotReadableException) << wrong;
        EXPECT_THAT(reader.read(path, 1, 1, 1), ElementsAre(0.5f)); // what is not asked for does not matter
    }
    test::writeBytes(path,
                     "??" + test::bytesOf(std::uint32_t{0}) + test::bytesOf(1e6f) + test::bytesOf(-1e-40f));
    EXPECT_THAT(reader.read(path, 2, 1, 1), ElementsAre(1e6f, -1e-40f));
}

TEST_F(ReverbContainer, WhatIsNoFileIsNotReadable) {
    ASSERT_EQ(mkfifo(folder.file("pipe").c_str(), 0600), 0);
    std::filesystem::create_directory(folder.file("folder"));
    std::filesystem::create_symlink("/dev/zero", folder.file("device"));
    for (const char* const name : {"pipe", "folder", "device"})
        for (const std::uint32_t entry : {0u, 1u})
            EXPECT_THROW(reader.read(folder.file(name), 2, 3, entry), orvane::wavNotReadableException)
                << name;
}

TEST_F(ReverbContainer, ACountThatNoMemoryHoldsIsToldAsNotReadable) {
    EXPECT_THROW(reader.read(path, std::numeric_limits<std::uint64_t>::max(), 3, 1),
                 orvane::wavNotReadableException);
}

} // namespace

// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/WaveFile.h"

#include <gtest/gtest.h>

namespace {

// Expected bytes: the canonical header of 44 bytes, written out by hand.
TEST(WaveFile, HasTheCanonicalHeaderOf44Bytes) {
    using namespace std::string_literals;
    const std::string bytes = test::waveBytes(
        {.formatTag = 1, .channels = 2, .sampleRate = 44100, .bits = 16}, std::vector<std::int16_t>{1, -2});
    EXPECT_EQ(bytes, "RIFF\x28\0\0\0WAVEfmt \x10\0\0\0\x01\0\x02\0\x44\xac\0\0\x10\xb1\x02\0\x04\0\x10\0"
                     "data\x04\0\0\0\x01\0\xfe\xff"s);
}

TEST(WaveFile, TakesAWrongDataSizeAndAChunkInFrontAsTold) {
    const std::string bytes =
        test::waveBytes({.chunksBeforeData = "fact", .dataSize = -5}, std::vector<float>{});
    EXPECT_EQ(bytes.substr(36, 8), "factdata");
    EXPECT_EQ(bytes.substr(44, 4), test::bytesOf(std::int32_t{-5}));
}

TEST(TemporaryFolder, GoesWithItsFiles) {
    std::string path;
    {
        const test::TemporaryFolder folder;
        path = folder.path();
        test::writeBytes(folder.file("one"), "content");
        EXPECT_EQ(test::readBytes(folder.file("one")), "content");
    }
    EXPECT_FALSE(std::filesystem::exists(path));
}

} // namespace

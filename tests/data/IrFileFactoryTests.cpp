// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/DataFileExceptions.h"
#include "data/IrFileFactory.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using orvane::IrFileFactory;

struct Row {
    std::int32_t rate;
    const char* fileName;
    std::int32_t nativeRate;
    bool upsampled;
    std::uint64_t length;
};

class SupportedRates : public ::testing::TestWithParam<Row> {};

// Expected values: the table of rates, copied by hand.
TEST_P(SupportedRates, HaveTheirFileTheirNativeRateAndTheirLength) {
    const Row row = GetParam();
    const auto file = IrFileFactory().create(row.rate, "/OVNdata12", "/some/folder");
    EXPECT_EQ(file->path(), std::string("/some/folder/") + row.fileName);
    EXPECT_EQ(file->nativeSampleRate(), row.nativeRate);
    EXPECT_EQ(file->isUpsampled(), row.upsampled);
    EXPECT_EQ(file->length(), row.length);
    EXPECT_EQ(file->sampleRate(), row.rate);
    EXPECT_EQ(file->responseCount(), 2522u);
    EXPECT_EQ(file->label(), "0");
}
INSTANTIATE_TEST_SUITE_P(AllSeven, SupportedRates,
                         ::testing::Values(Row{24000, "OVNdata122.dat", 24000, false, 70},
                                           Row{44100, "OVNdata120.dat", 44100, false, 128},
                                           Row{48000, "OVNdata121.dat", 48000, false, 139},
                                           Row{88200, "OVNdata120.dat", 44100, true, 256},
                                           Row{96000, "OVNdata121.dat", 48000, true, 278},
                                           Row{176400, "OVNdata120.dat", 44100, true, 512},
                                           Row{192000, "OVNdata121.dat", 48000, true, 556}));

TEST(IrFileFactory, GivesTheReverbContainerOfTheSameRateToTheOtherStem) {
    EXPECT_EQ(IrFileFactory().create(88200, "/OVNdata51", "d")->path(), "d/OVNdata510.dat");
}

TEST(IrFileFactory, CutsFractionsOffAndKeepsThemInTheDescription) {
    const auto file = IrFileFactory().create(44100.9, "/OVNdata12", "");
    EXPECT_EQ(file->length(), 128u);
    EXPECT_EQ(file->sampleRate(), 44100.9);
    EXPECT_THROW(IrFileFactory().create(44099.9, "", ""), orvane::sampleRateNotSupportedException);
}

class RefusedRates : public ::testing::TestWithParam<double> {};

TEST_P(RefusedRates, ThrowOneFixedText) {
    try {
        IrFileFactory().create(GetParam(), "/OVNdata12", "");
        FAIL() << "expected an exception";
    } catch (const orvane::sampleRateNotSupportedException& error) {
        // The text lists 19200, which is refused all the same.
        EXPECT_STREQ(error.what(),
                     "Orvane only supports the following sample rates: 19200, 176400, 96000, 88200, "
                     "48000, 44100 and 24000!");
    }
}
INSTANTIATE_TEST_SUITE_P(BesideTheTable, RefusedRates,
                         ::testing::Values(19200.0, 32000.0, 0.0, -44100.0, 44101.0, 1e300,
                                           std::numeric_limits<double>::infinity(),
                                           std::numeric_limits<double>::quiet_NaN()));

TEST(DataFileExceptions, AreStandardExceptionsWithOneFixedTextEach) {
    const auto text = [](const std::exception& error) { return std::string(error.what()); };
    EXPECT_EQ(text(orvane::sampleRateFileNotFoundException()),
              "Data files not found for the given sample rate");
    EXPECT_EQ(text(orvane::wavNotReadableException()), "Wave file not readable");
    EXPECT_EQ(text(orvane::numberOfChannelsMismatchException()),
              "The data file has wrong number of channels");
    EXPECT_EQ(text(orvane::wavChunckSizeShortException()), "Wave file is too short for frames!");
    EXPECT_EQ(text(orvane::wavBitWrongException()), "Wave file not 32 or 16 Bit");
    EXPECT_EQ(text(orvane::notEnoughSpaceForHRTFsException()), "Not Enough space for HRTFs");
}

} // namespace

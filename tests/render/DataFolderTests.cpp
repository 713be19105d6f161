// SPDX-License-Identifier: GPL-3.0-or-later
// Expected file names: the 44100 family is served by number 120, the 48000 family by 121, 24000 by 122.
#include "render/DataFolder.h"

#include "render/RenderError.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace {

using orvane::kestrum::render::RenderError;
using orvane::kestrum::render::requireRateAndData;
using ::testing::HasSubstr;

class DataFolder : public ::testing::Test {
protected:
    DataFolder()
        : folder(std::filesystem::temp_directory_path() /
                 (std::string("kestrum_data_") +
                  ::testing::UnitTest::GetInstance()->current_test_info()->name())) {
        std::filesystem::create_directories(folder);
    }

public:
    ~DataFolder() override { std::filesystem::remove_all(folder); }

protected:
    std::string refusal(double rate) const {
        try {
            requireRateAndData(rate, folder);
            return "accepted";
        } catch (const RenderError& error) {
            return error.what();
        }
    }

    std::filesystem::path folder;
};

TEST_F(DataFolder, EachRateNeedsOnlyTheFileThatServesIt) {
    std::ofstream(folder / "OVNdata121.dat") << "x";
    for (const double rate : {48000, 96000, 192000})
        EXPECT_EQ(refusal(rate), "accepted");
    for (const double rate : {44100, 88200, 176400})
        EXPECT_THAT(refusal(rate), HasSubstr("lacks OVNdata120.dat: \"kestrum doctor\""));
    EXPECT_THAT(refusal(24000), HasSubstr("lacks OVNdata122.dat: \"kestrum doctor\""));
}

TEST_F(DataFolder, AnotherRateIsRefusedWithTheRatesThatAreServed) {
    EXPECT_EQ(refusal(22050),
              "The plug-in does not serve 22050 Hz: resample the input to 24000, 44100, 48000, 88200, "
              "96000, 176400 or 192000 Hz.");
    EXPECT_THAT(refusal(44099), HasSubstr("does not serve 44099 Hz"));
}

TEST_F(DataFolder, AMissingFolderIsRefusedWithTheRemedy) {
    std::filesystem::remove_all(folder);
    EXPECT_THAT(refusal(48000), HasSubstr("is missing: \"kestrum doctor\""));
}

} // namespace

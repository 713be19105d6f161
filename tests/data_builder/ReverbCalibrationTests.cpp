// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/DataError.h"
#include "data/rooms/ReverbCalibration.h"

#include "SyntheticRooms.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>

using namespace orvane::kestrum::tools;
using ::testing::AllOf;
using ::testing::HasSubstr;

namespace {

/// Temporary files go elsewhere while it lives.
class TemporaryFilesIn {
public:
    explicit TemporaryFilesIn(const std::filesystem::path& folder) {
        if (const char* const before = std::getenv(variable))
            former = before;
        setenv(variable, folder.c_str(), 1);
    }
    ~TemporaryFilesIn() {
        if (former)
            setenv(variable, former->c_str(), 1);
        else
            unsetenv(variable);
    }
    TemporaryFilesIn(const TemporaryFilesIn&) = delete;
    TemporaryFilesIn& operator=(const TemporaryFilesIn&) = delete;

private:
    static constexpr const char* variable = "TMPDIR";
    std::optional<std::string> former;
};

std::string refusalFor(const std::filesystem::path& folder) {
    std::vector<ReverbEntry> rooms;
    try {
        calibrateLevels(rooms, folder);
    } catch (const DataError& error) {
        return error.what();
    }
    return "nothing refused";
}

TEST(Calibrations, ThatFailLeaveNothingBehind) {
    const test::TemporaryFolder temporary;
    const test::TemporaryFolder withoutHead;
    const TemporaryFilesIn redirected(temporary.path());
    EXPECT_THAT(refusalFor(withoutHead.path()),
                AllOf(HasSubstr("OVNdata121.dat"), HasSubstr("cannot be made")));
    EXPECT_TRUE(std::filesystem::is_empty(temporary.path()));
    EXPECT_TRUE(std::filesystem::is_empty(withoutHead.path()));
}

TEST(Calibrations, WithoutAPlaceForTemporaryFilesSayWhatToDo) {
    const test::TemporaryFolder folder;
    const TemporaryFilesIn redirected("/proc/none");
    EXPECT_THAT(refusalFor(folder.path()), HasSubstr("TMPDIR"));
}

} // namespace

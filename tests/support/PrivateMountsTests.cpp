// SPDX-License-Identifier: GPL-3.0-or-later
// Each in a process of its own, since nobody comes back from private mounts.
#include "support/PrivateMounts.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace {

namespace fs = std::filesystem;

void writeInPrivate() {
    test::enterPrivateMounts();
    test::coverFolder("/dev/shm");
    std::ofstream("/dev/shm/kestrum_private_mounts") << "seen by one process alone";
    std::_Exit(fs::exists("/dev/shm/kestrum_private_mounts") ? 0 : 1);
}

void coverAndUncover() {
    test::enterPrivateMounts();
    test::coverFolder("/usr");
    const bool covered = fs::is_empty("/usr");
    test::uncoverFolder("/usr");
    std::_Exit(covered && !fs::is_empty("/usr") ? 0 : 1);
}

void writeToReadOnlyDisk() {
    test::enterPrivateMounts();
    test::coverFolder("/dev/shm");
    test::makeDiskReadOnly();
    std::ofstream stream("/dev/shm/file");
    std::ofstream other(fs::temp_directory_path() / "file");
    std::_Exit(!stream.is_open() && !other.is_open() ? 0 : 1);
}

TEST(PrivateMounts, HideWhatIsWrittenFromEverybodyElse) {
    EXPECT_EXIT(writeInPrivate(), ::testing::ExitedWithCode(0), "");
    EXPECT_FALSE(fs::exists("/dev/shm/kestrum_private_mounts"));
}

TEST(PrivateMounts, CoverAFolderAndGiveItBack) {
    EXPECT_EXIT(coverAndUncover(), ::testing::ExitedWithCode(0), "");
}

TEST(PrivateMounts, LeaveNothingToWriteToOnAReadOnlyDisk) {
    EXPECT_EXIT(writeToReadOnlyDisk(), ::testing::ExitedWithCode(0), "");
    EXPECT_TRUE(std::ofstream(fs::temp_directory_path() / "kestrum_private_mounts").is_open());
    fs::remove(fs::temp_directory_path() / "kestrum_private_mounts");
}

} // namespace

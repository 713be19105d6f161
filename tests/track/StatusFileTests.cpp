// SPDX-License-Identifier: GPL-3.0-or-later
#include "track/StatusFile.h"

#include "track/TrackError.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using namespace orvane::kestrum::track;
using ::testing::HasSubstr;

class StatusFiles : public ::testing::Test {
public:
    StatusFiles() {
        std::filesystem::remove_all(folder);
        std::filesystem::create_directories(folder);
    }
    ~StatusFiles() override { std::filesystem::remove_all(folder); }

protected:
    std::filesystem::path folder =
        std::filesystem::temp_directory_path() /
        (std::string("kestrum_status_") + ::testing::UnitTest::GetInstance()->current_test_info()->name());
    std::filesystem::path path = folder / "orvane-kestrum" / "track.json";
    const TrackStatus status{.pid = 4711,
                             .source = "osc /ypr from 127.0.0.1:5000",
                             .started = 1000.25,
                             .lastPacket = 2000.5,
                             .active = true,
                             .alive = true};
};

TEST_F(StatusFiles, SayWhoDrivesAsLongAsTheOwnerLivesAndAreGoneThen) {
    {
        StatusFile file(path);
        file.write(status);
        const auto read = readStatus(path);
        ASSERT_TRUE(read);
        EXPECT_EQ(read->pid, 4711);
        EXPECT_EQ(read->source, status.source);
        EXPECT_EQ(read->started, 1000.25);
        EXPECT_EQ(read->lastPacket, 2000.5);
        EXPECT_TRUE(read->active);
        EXPECT_TRUE(read->alive);
    }
    EXPECT_FALSE(readStatus(path));
}

TEST_F(StatusFiles, RefuseASecondOwnerWithTheNameOfTheFirst) {
    StatusFile file(path);
    file.write(status);
    try {
        const StatusFile second(path);
        FAIL();
    } catch (const TrackError& error) {
        EXPECT_THAT(error.what(), HasSubstr("process 4711 (osc /ypr from 127.0.0.1:5000, last packet"));
        EXPECT_THAT(error.what(), HasSubstr("end it first, with q in its terminal or with kill 4711."));
    }
    EXPECT_TRUE(readStatus(path)->alive);
}

// A process that dies by force leaves the file, and the system frees its lock.
TEST_F(StatusFiles, OfAProcessThatDiedTellThatItIsNotAliveAndMayBeTaken) {
    const pid_t child = fork();
    if (child == 0) {
        StatusFile file(path);
        file.write(status);
        kill(getpid(), SIGKILL);
    }
    waitpid(child, nullptr, 0);
    const auto left = readStatus(path);
    ASSERT_TRUE(left);
    EXPECT_FALSE(left->alive);
    EXPECT_EQ(left->source, status.source);
    const StatusFile next(path);
}

// Whoever starts and fails, for a port that is taken, must not wipe out what the next one has to know.
TEST_F(StatusFiles, ThatAreOnlyLockedKeepWhatWasLeft) {
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path) << R"({"pid":7,"source":"demo","started":1,"lastPacket":null,"active":true})";
    { const StatusFile tried(path); }
    ASSERT_TRUE(readStatus(path));
    EXPECT_EQ(readStatus(path)->pid, 7);
}

TEST_F(StatusFiles, BeforeTheFirstPacketTellNone) {
    StatusFile file(path);
    TrackStatus fresh = status;
    fresh.lastPacket.reset();
    fresh.source.clear();
    file.write(fresh);
    EXPECT_FALSE(readStatus(path)->lastPacket);
    EXPECT_EQ(readStatus(path)->source, "");
}

TEST_F(StatusFiles, OfAnyOtherContentAreNone) {
    std::filesystem::create_directories(path.parent_path());
    for (const char* const text : {"", "{", "[]", "{}", "{\"pid\":\"x\"}", "null"}) {
        std::ofstream(path) << text;
        EXPECT_FALSE(readStatus(path)) << text;
    }
    EXPECT_FALSE(readStatus(folder / "missing"));
    EXPECT_FALSE(readStatus(folder));
}

TEST_F(StatusFiles, WithAnySourceStayOneReadableObject) {
    StatusFile file(path);
    TrackStatus strange = status;
    strange.source = "\xff\"\n" + std::string(300, 'x');
    file.write(strange);
    ASSERT_TRUE(readStatus(path));
    EXPECT_EQ(std::filesystem::file_size(path), 1024u);
}

// What a stranger has put there may not steer a terminal that shows it.
TEST_F(StatusFiles, TellPrintableSourcesOnlyWhateverTheyHold) {
    StatusFile file(path);
    TrackStatus strange = status;
    strange.source = "osc \033]0;title\a";
    file.write(strange);
    ASSERT_TRUE(readStatus(path));
    EXPECT_EQ(readStatus(path)->source, "osc ?]0;title?");
}

TEST_F(StatusFiles, OfSomebodyElseAreNone) {
    if (getuid() != 0)
        GTEST_SKIP() << "Only root can give a file away.";
    StatusFile file(path);
    file.write(status);
    ASSERT_EQ(chown(path.c_str(), 65534, 65534), 0);
    EXPECT_FALSE(readStatus(path));
}

TEST_F(StatusFiles, AreNotPutIntoSomebodyElsesFolder) {
    std::filesystem::create_directory_symlink("/", folder / "orvane-kestrum");
    EXPECT_THROW(StatusFile{path}, TrackError);
    EXPECT_THROW(StatusFile{folder / "missing" / "folder" / "track.json"}, TrackError);
}

TEST_F(StatusFiles, LieInTheRuntimeFolder) {
    setenv("XDG_RUNTIME_DIR", "/run/user/1", 1);
    EXPECT_EQ(statusPath(), "/run/user/1/orvane-kestrum/track.json");
    const std::string without = "/tmp/orvane-kestrum-" + std::to_string(getuid()) + "/track.json";
    setenv("XDG_RUNTIME_DIR", "relative", 1);
    EXPECT_EQ(statusPath(), without);
    unsetenv("XDG_RUNTIME_DIR");
    EXPECT_EQ(statusPath(), without);
}

} // namespace

// SPDX-License-Identifier: GPL-3.0-or-later
// A host that scans plug-ins makes a client of whatever lies under the segment's name. Each is made in a process of its own; CPU
// time is counted, and a minute of real time is the guard against hanging.
#include "SegmentFile.h"

#include "ipc/EmptyHeadRotation.h"
#include "ipc/OrvaneParameterClient.h"
#include "ipc/OrvaneParameterServer.h"
#include "support/WatchedProcess.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <iostream>
#include <random>
#include <string>
#include <vector>

#include <grp.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;
namespace interprocess = boost::interprocess;
using OrvaneIPC::OrvaneParameterClient;
using OrvaneIPC::OrvaneParameterServer;
using Record = OrvaneIPC::HeadRotation::Data;
using How = test::WatchedEnd::How;

constexpr std::chrono::milliseconds mostCpuTime{100};

/// What a client found; the exit value of the process that made it.
enum Found : int { nothing, segmentAlone, record };

int found() {
    OrvaneParameterClient client;
    if (!client.isConnected())
        return nothing;
    const auto* const empty =
        dynamic_cast<const OrvaneIPC::EmptyHeadRotation*>(&client.getHeadRotationClient());
    return empty != nullptr ? segmentAlone : record;
}

void expectFound(Found expected, const std::string& what) {
    const auto end = test::watch([] { return found(); });
    EXPECT_EQ(end.how, How::returned) << what;
    EXPECT_EQ(end.value, expected) << what;
    EXPECT_LT(end.cpuTime, mostCpuTime) << what;
}

/// Each of these tests leaves the name free.
class UntrustedSegment : public ::testing::Test {
public:
    UntrustedSegment() { test::removeSegment(); }
    ~UntrustedSegment() override { test::removeSegment(); }
};

TEST_F(UntrustedSegment, AbsentEmptyShortAndZeroedCountAsAbsent) {
    expectFound(nothing, "absent");
    for (const std::size_t size : {0u, 1u, 4u, 16u, 4096u, 65535u, 65536u, 65537u, 1u << 20}) {
        test::writeSegment(std::string(size, '\0'));
        expectFound(nothing, "zeros: " + std::to_string(size));
    }
}

TEST_F(UntrustedSegment, AServedOneIsFoundAndOneWithoutTheRecordToo) {
    test::writeSegment(test::servedSegment());
    expectFound(record, "served");
    test::writeSegment(test::segmentWith([](auto&) {}));
    expectFound(segmentAlone, "without the record");
}

TEST_F(UntrustedSegment, WhatIsNoFileCountsAsAbsent) {
    fs::create_directory(test::segmentFile);
    expectFound(nothing, "directory");
    test::removeSegment();
    ASSERT_EQ(mkfifo(test::segmentFile.c_str(), 0600), 0);
    expectFound(nothing, "pipe");
    test::removeSegment();
    fs::create_symlink("/dev/zero", test::segmentFile);
    expectFound(nothing, "link to endless zeros");
    test::removeSegment();
    fs::create_symlink(test::segmentFile, test::segmentFile);
    expectFound(nothing, "link to itself");
}

/// Whoever may write to it can stop the host by its lock, or end it.
TEST_F(UntrustedSegment, OneThatOthersMayWriteOrOwnCountsAsAbsent) {
    test::writeSegment(test::servedSegment());
    for (const mode_t mode : {0666u, 0664u, 0646u, 0777u}) {
        ASSERT_EQ(chmod(test::segmentFile.c_str(), mode), 0);
        expectFound(nothing, "mode " + std::to_string(mode));
    }
    ASSERT_EQ(chmod(test::segmentFile.c_str(), 0600), 0);
    expectFound(record, "the user's own");
    if (getuid() == 0) { // who alone can give it away, and opens it nevertheless
        ASSERT_EQ(chown(test::segmentFile.c_str(), 65534, 65534), 0);
        expectFound(nothing, "another's");
    }
}

TEST_F(UntrustedSegment, OneThatTheUserMayNotWriteCountsAsAbsent) {
    if (getuid() != 0)
        GTEST_SKIP() << "Only root can become somebody else.";
    test::writeSegment(test::servedSegment());
    for (const mode_t mode : {0644u, 0600u, 0000u}) {
        ASSERT_EQ(chmod(test::segmentFile.c_str(), mode), 0);
        const auto end = test::watch([] {
            if (setgroups(0, nullptr) != 0 || setresgid(65534, 65534, 65534) != 0 ||
                setresuid(65534, 65534, 65534) != 0)
                return 99;
            return OrvaneParameterClient().isConnected() ? 1 : 0;
        });
        EXPECT_EQ(end.how, How::returned);
        EXPECT_EQ(end.value, 0) << mode;
    }
}

TEST_F(UntrustedSegment, OtherSizesOfSegmentAndRecordCountAsAbsent) {
    for (const std::size_t size : {4096u, 32768u, 131072u}) {
        test::writeSegment(test::segmentWith(
            [](auto& segment) { segment.template construct<Record>("HeadRotation")(); }, size));
        expectFound(nothing, "segment of " + std::to_string(size));
    }
    test::writeSegment(test::segmentWith(
        [](auto& segment) { segment.template construct<std::array<float, 19>>("HeadRotation")(); }));
    expectFound(nothing, "record of 76 bytes");
}

TEST_F(UntrustedSegment, CutOffAnywhereItCountsAsAbsent) {
    const std::string whole = test::servedSegment();
    std::mt19937 random(3); // NOLINT(*-msc51-cpp): the same sizes every time
    for (int round = 0; round < 60; ++round) {
        const std::size_t size = round < 20 ? static_cast<std::size_t>(round) * 4 : random() % whole.size();
        test::writeSegment(whole.substr(0, size));
        expectFound(nothing, std::to_string(size));
    }
}

std::string noise(std::mt19937& random, std::size_t size) {
    std::string bytes(size, '\0');
    for (std::size_t at = 0; at < size; at += 4) {
        const auto word = static_cast<std::uint32_t>(random());
        std::memcpy(bytes.data() + at, &word, 4);
    }
    return bytes;
}

TEST_F(UntrustedSegment, RandomBytesCountAsAbsentInitialisedOrNot) {
    std::mt19937 random(5); // NOLINT(*-msc51-cpp): the same bytes every time
    for (int round = 0; round < 40; ++round) {
        std::string bytes = noise(random, 65536);
        if (round % 2 == 1)
            bytes.replace(0, 4, std::string("\2\0\0\0", 4));
        test::writeSegment(bytes);
        expectFound(nothing, std::to_string(round));
    }
}

/// Damage of the library's own header; which of its bytes matter to whom, SegmentCheckTests.cpp tells.
TEST_F(UntrustedSegment, WithItsHeaderDamagedItDoesNoHarm) {
    const std::string whole = test::servedSegment();
    std::mt19937 random(7); // NOLINT(*-msc51-cpp): the same damage every time
    int absent = 0;
    for (int round = 0; round < 60; ++round) {
        std::string bytes = whole;
        for (int change = 0; change <= round % 4; ++change)
            bytes[random() % 288] = static_cast<char>(random());
        test::writeSegment(bytes);
        const auto end = test::watch([] { return found(); });
        EXPECT_EQ(end.how, How::returned) << round;
        EXPECT_LT(end.cpuTime, mostCpuTime) << round;
        absent += end.how == How::returned && end.value == nothing ? 1 : 0;
    }
    EXPECT_GT(absent, 20);
}

/// A client that the segment of a server who died inside it would stop is not made by waiting for him.
TEST_F(UntrustedSegment, OneWhoseServerDiedInsideItCountsAsAbsent) {
    const auto dying = test::watch([]() -> int {
        interprocess::managed_shared_memory segment(interprocess::create_only, "OrvaneSharedMemory", 65536);
        segment.construct<Record>("HeadRotation")();
        const auto die = [] { _exit(0); };
        segment.atomic_func(die);
        return 1;
    });
    EXPECT_EQ(dying.how, How::crashed);
    expectFound(nothing, "lock held by a dead process");
}

/// Deliberate: as written; a replacement server makes a new segment, for new clients.
TEST_F(UntrustedSegment, ARecordWhoseLockADeadServerHoldsIsStillFound) {
    test::writeSegment(test::segmentWith(
        [](auto& segment) { segment.template construct<Record>("HeadRotation")()->lock = 1; }));
    expectFound(record, "record locked");
}

/// What is not finished may be finished in a moment: the client is made while the server works.
TEST_F(UntrustedSegment, OneThatIsFinishedWhileTheClientLooksIsFound) {
    const std::string whole = test::servedSegment();
    test::writeSegment(std::string(whole.size(), '\0'));
    const pid_t server = fork();
    if (server == 0) {
        // Nothing to wait for: the client may also come when everything is done.
        std::fstream stream(test::segmentFile, std::ios::binary | std::ios::in | std::ios::out);
        stream << whole;
        stream.flush();
        _exit(0);
    }
    int status = 0;
    bool seen = false;
    for (int look = 0; look < 100 && !seen; ++look)
        seen = OrvaneParameterClient().isConnected();
    waitpid(server, &status, 0);
    EXPECT_TRUE(seen);
}

/// What a tracker does all its life: it starts, writes, and goes.
/// @param started is told when it has begun.
[[noreturn]] void track(int started) {
    orvane::HeadRotationMatrix matrix = orvane::identityRotation;
    if (write(started, "s", 1) != 1)
        _exit(1);
    for (;;) {
        OrvaneParameterServer server;
        for (int count = 0; count < 20; ++count) {
            matrix.fill(static_cast<float>(count));
            server.getHeadRotationServer()->setRotation(matrix);
            server.getHeadRotationServer()->setActive(count % 2 == 0);
        }
    }
}

int roundsFromEnvironment(const char* name, int otherwise) {
    const char* const text = std::getenv(name);
    return text != nullptr ? std::atoi(text) : otherwise;
}

/// The release tier asks for more rounds.
TEST_F(UntrustedSegment, WhateverATrackerLeavesThatIsKilledAtAnyMomentAClientBearsIt) {
    const int rounds = roundsFromEnvironment("KESTRUM_KILLED_TRACKERS", 200);
    std::mt19937 random(
        9); // NOLINT(*-msc51-cpp): the same times every time; what they hit is the system's choice
    std::array<int, 3> seen{};
    std::chrono::microseconds longest{};
    for (int round = 0; round < rounds; ++round) {
        std::array<int, 2> started{};
        ASSERT_EQ(pipe(started.data()), 0);
        const pid_t tracker = fork();
        if (tracker == 0)
            track(started[1]);
        char sign = 0;
        ASSERT_EQ(read(started[0], &sign, 1), 1);
        close(started[0]);
        close(started[1]);
        usleep(static_cast<useconds_t>(random() % 1000)); // the moment, not a wait for something
        kill(tracker, SIGKILL);
        waitpid(tracker, nullptr, 0);
        const auto end = test::watch([] { return found(); });
        ASSERT_EQ(end.how, How::returned) << "round " << round;
        EXPECT_LT(end.cpuTime, mostCpuTime) << "round " << round;
        ++seen.at(static_cast<std::size_t>(end.value));
        longest = std::max(longest, end.cpuTime);
    }
    std::cout << "figure: " << rounds << " killed trackers, " << seen[record] << " left a record, "
              << seen[segmentAlone] << " none, " << seen[nothing] << " nothing sound; constructor "
              << longest.count() << " us of CPU at most\n";
    EXPECT_GT(seen[record], 0);
    EXPECT_GT(seen[nothing], 0);
}

/// That the limits above can be missed: what a client did that opens the segment by its library.
TEST_F(UntrustedSegment, AClientThatTrustsTheSegmentHangsOnZerosAndCrashesOnAWrongPointer) {
    const auto trusting = [] {
        interprocess::managed_shared_memory segment(interprocess::open_only, "OrvaneSharedMemory");
        return segment.find<Record>("HeadRotation").second != 0 ? 1 : 0;
    };
    std::string bytes = test::servedSegment();
    test::writeSegment(bytes);
    EXPECT_EQ(test::watch(trusting).value, 1);
    bytes.replace(160, 8, std::string("\0\0\0\0\0\x7f\0\0", 8)); // where its index begins
    test::writeSegment(bytes);
    EXPECT_EQ(test::watch(trusting).how, How::crashed);
    test::writeSegment(std::string(65536, '\0'));
    EXPECT_EQ(test::watch(trusting, std::chrono::seconds(1)).how, How::hung);
}

} // namespace

// SPDX-License-Identifier: GPL-3.0-or-later
#include "track/LinkWriter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <vector>

namespace {

using namespace orvane::kestrum::track;
using std::chrono::microseconds;
using std::chrono::milliseconds;

const Instant start = Instant(std::chrono::hours(1));

/// Notes what is written, and whether a signal could have been taken meanwhile.
class RecordingServer final : public OrvaneIPC::IHeadRotationServer {
public:
    void setRotation(const orvane::HeadRotationMatrix& matrix) noexcept override {
        last = matrix;
        ++writes;
        sigset_t mask;
        pthread_sigmask(SIG_SETMASK, nullptr, &mask);
        for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGALRM, SIGTSTP, SIGUSR1})
            interruptible = interruptible || sigismember(&mask, number) == 0;
        events.emplace_back("rotation");
    }
    void setActive(bool active) noexcept override { events.emplace_back(active ? "active" : "inactive"); }

    orvane::HeadRotationMatrix last{};
    int writes = 0;
    bool interruptible = false;
    std::vector<std::string> events;
};

Rotation yaw(double degrees) { return rotationOf(HeadAngles{degrees, 0, 0}); }

TEST(LinkWriters, ActivateTheLinkAfterTheFirstDirectionAndFreeItOnRelease) {
    RecordingServer server;
    LinkWriter writer(server);
    writer.write(yaw(1), start);
    writer.write(yaw(2), start + milliseconds(10));
    writer.release();
    EXPECT_THAT(server.events, ::testing::ElementsAre("rotation", "active", "rotation", "inactive"));
    EXPECT_FALSE(writer.active());
}

TEST(LinkWriters, FreeTheLinkWhenTheyGoForAnyReason) {
    RecordingServer server;
    {
        LinkWriter writer(server);
        writer.write(yaw(1), start);
    }
    EXPECT_EQ(server.events.back(), "inactive");
}

TEST(LinkWriters, HoldBackSignalsForTheCopyAndGiveThemFreeAgain) {
    RecordingServer server;
    LinkWriter writer(server);
    writer.write(yaw(1), start);
    EXPECT_FALSE(server.interruptible);
    sigset_t mask;
    pthread_sigmask(SIG_SETMASK, nullptr, &mask);
    EXPECT_EQ(sigismember(&mask, SIGTERM), 0);
}

TEST(LinkWriters, WriteNoMoreThan250InASecondOfAFloodAndEndWithTheNewest) {
    RecordingServer server;
    LinkWriter writer(server);
    for (int packet = 0; packet < 100000; ++packet)
        writer.write(yaw(packet * 0.001), start + microseconds(10 * packet));
    EXPECT_LE(server.writes, 255); // the first few may come at once
    EXPECT_GE(server.writes, 249);
    ASSERT_TRUE(writer.due());
    writer.flush(*writer.due());
    EXPECT_EQ(server.last, linkMatrix(yaw(99.999)));
    EXPECT_FALSE(writer.due());
}

// 250 packets in a second, each up to 2 ms early or late: the few that may come early take the jitter up.
TEST(LinkWriters, NeverLetASenderOf250InASecondWait) {
    RecordingServer server;
    LinkWriter writer(server);
    for (int packet = 0; packet < 1000; ++packet) {
        writer.write(yaw(packet), start + microseconds(4000 * packet + packet * 7919 % 4000 - 2000));
        EXPECT_FALSE(writer.due()) << packet;
    }
    EXPECT_EQ(server.writes, 1000);
}

// A slot that is missed once must not make every later packet wait for the next one.
TEST(LinkWriters, CatchUpAfterABusySystemHeldASenderOf250InASecondUp) {
    RecordingServer server;
    LinkWriter writer(server);
    for (int packet = 0; packet < 1000; ++packet) {
        const int late = packet % 100 == 50   ? 11000
                         : packet % 100 == 51 ? 7000
                         : packet % 100 == 52 ? 3000
                                              : 0;
        writer.write(yaw(packet), start + microseconds(4000 * packet + late));
        EXPECT_FALSE(writer.due()) << packet;
    }
    EXPECT_EQ(server.writes, 1000);
}

TEST(LinkWriters, DropWhatWaitsOnRelease) {
    RecordingServer server;
    LinkWriter writer(server);
    for (int packet = 0; packet < 10; ++packet)
        writer.write(yaw(packet), start);
    ASSERT_TRUE(writer.due());
    writer.release();
    EXPECT_FALSE(writer.due());
    writer.flush(start + milliseconds(100));
    EXPECT_EQ(server.events.back(), "inactive");
}

} // namespace

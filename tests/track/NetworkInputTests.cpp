// SPDX-License-Identifier: GPL-3.0-or-later
// Datagrams over loopback: what has been sent before receive() is there.
#include "LinkEnds.h"

#include "track/NetworkInput.h"
#include "track/TrackError.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

#include <unistd.h>

namespace {

using namespace orvane::kestrum::track;
using ::test::Sender;
using ::testing::HasSubstr;

NetworkOptions onPort(std::uint16_t oscPort) {
    NetworkOptions options;
    options.oscPort = oscPort;
    return options;
}

class NetworkInputs : public ::testing::Test {
protected:
    /// Loopback delivers at once, so what was sent is ready.
    Received receive() {
        Readiness readiness;
        readiness.wait(input.descriptors(), {});
        return input.receive(readiness);
    }

    NetworkInput input{onPort(0)};
    const std::uint16_t port = *input.oscPort();
};

TEST_F(NetworkInputs, HoldTheSingleAnglesOfTwoSendersApart) {
    const Sender one(port), two(port);
    std::vector<Sample> samples;
    for (int round = 0; round < 3; ++round) {
        one.message("/yaw", {-30});
        two.message("/yaw", {50});
        one.message("/pitch", {-20});
        two.message("/pitch", {10});
        samples = receive().samples;
        ASSERT_EQ(samples.size(), 4u);
    }
    EXPECT_NEAR(angleBetween(samples[2].rotation, rotationOf(HeadAngles{30, 20, 0})), 0, 1e-5);
    EXPECT_NEAR(angleBetween(samples[3].rotation, rotationOf(HeadAngles{-50, -10, 0})), 0, 1e-5);
    EXPECT_EQ(samples[0].source, samples[2].source);
    EXPECT_NE(samples[2].source, samples[3].source);
}

TEST_F(NetworkInputs, TakeASocketPerPacketForOneSender) {
    std::vector<Sample> samples;
    for (int packet = 0; packet < 10; ++packet) {
        Sender(port).message("/yaw", {-30.0 - packet});
        Sender(port).message("/pitch", {-20});
        for (const Sample& sample : receive().samples)
            samples.push_back(sample);
    }
    ASSERT_EQ(samples.size(), 20u);
    for (const Sample& sample : samples)
        EXPECT_EQ(sample.source, samples[0].source);
    EXPECT_NEAR(angleBetween(samples.back().rotation, rotationOf(HeadAngles{39, 20, 0})), 0, 1e-5);
}

TEST_F(NetworkInputs, RecentreWhenAButtonIsPressedAndNotWhenItIsLetGo) {
    const Sender sender(port);
    const auto recentres = [&](const std::vector<double>& values) {
        sender.message("/recenter", values);
        return receive().recentre;
    };
    EXPECT_TRUE(recentres({}));
    EXPECT_TRUE(recentres({1}));
    EXPECT_FALSE(recentres({0}));
}

TEST(NetworkPorts, ThatOnlyRootMayOpenAreRefusedForThatReason) {
    if (getuid() == 0)
        GTEST_SKIP() << "Root may open any port.";
    try {
        const NetworkInput input(onPort(80));
        GTEST_SKIP() << "This system lets anyone open it.";
    } catch (const TrackError& error) {
        EXPECT_THAT(error.what(), HasSubstr("UDP port 80 for OSC (--osc-port) may be opened by root only"));
    }
}

TEST(TemporaryFolders, ThatDoNotExistAreRefusedInOneSentence) {
    setenv("TMPDIR", "/no/such/folder", 1);
    try {
        const NetworkInput input(onPort(0));
        ADD_FAILURE() << "taken";
    } catch (const TrackError& error) {
        EXPECT_THAT(error.what(), HasSubstr("that TMPDIR names does not exist: name another one"));
    }
    unsetenv("TMPDIR");
}

} // namespace

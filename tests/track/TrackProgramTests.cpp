// SPDX-License-Identifier: GPL-3.0-or-later
// The whole program: packets over loopback in, and what a client of the link reads out. The link's name belongs to the
// whole machine, so these tests run one at a time.
#include "WholeProgram.h"

#include "support/CommandOutput.h"
#include "track/Rotation.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <numbers>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace orvane::kestrum::track;
using ::test::becomesTrue;
using ::test::Listener;
using ::test::Sender;
using ::test::TrackProgram;
using ::test::WholeProgram;
using ::testing::HasSubstr;

const std::vector<std::string> plain{"--osc-port",    "0",   "--opentrack-port", "0",   "--smooth", "0",
                                     "--grid-centre", "off", "--timeout",        "0.1", "--glide",  "0.1"};

constexpr double radian = std::numbers::pi / 180;

double half(double degrees, double (*function)(double)) { return function(degrees * radian / 2); }

TEST_F(WholeProgram, TurnsASourceAheadToTheLeftWhenTheHeadTurnsRightInEveryDialect) {
    const double s = half(30, std::sin), c = half(30, std::cos);
    struct Message {
        std::string address;
        std::vector<double> values;
    };
    const std::vector<Message> messages{
        {"/ypr", {-30, 0, 0}},
        {"/yaw", {-30}},
        {"/hedrot/yaw", {30}},
        {"/rotation", {0, -30, 0}},
        {"/rendering/htrpy", {0, 0, 30}},
        {"/orientation", {30, 0, 0}},
        {"/quaternion", {c, 0, 0, s}},
        {"/quaternions", {c, 0, s, 0}},
        {"/SceneRotator/ypr", {30, 0, 0}},
        {"/SceneRotator/quaternions", {c, 0, 0, s}},
        {"/head_pose", {0, 0, 0, 0, 0, -30, 0}},
        {"/3DTI-OSC/receiver/pry", {0, 0, 30 * radian}},
        {"/gamerotationvector", {0, 0, -s, c}},
    };
    for (const Message& message : messages) {
        TrackProgram program(plain);
        const Sender sender(program.oscPort());
        const Listener listener;
        ASSERT_TRUE(listener.connected());
        EXPECT_FALSE(listener.active());
        EXPECT_TRUE(becomesTrue([&] {
            sender.message(message.address, message.values);
            return listener.active() && std::abs(listener.azimuthOfAhead() + 30) < 0.01;
        })) << message.address
            << " " << listener.azimuthOfAhead();
    }
}

TEST_F(WholeProgram, TakesNoddingAndTiltingInTheSendersSigns) {
    TrackProgram program(plain);
    const Sender sender(program.oscPort());
    const Listener listener;
    EXPECT_TRUE(becomesTrue([&] {
        sender.message("/ypr", {0, -20, 0}); // up
        return std::abs(listener.elevationOfAhead() + 20) < 0.1;
    }));
    EXPECT_TRUE(becomesTrue([&] {
        sender.message("/ypr", {0, 0, 10}); // to the right shoulder
        return std::abs(listener.elevationOfRight() - 10) < 0.1;
    }));
}

TEST_F(WholeProgram, HearsOpenTracksDatagrams) {
    TrackProgram program(plain);
    const Sender sender(program.openTrackPort());
    const Listener listener;
    EXPECT_TRUE(becomesTrue([&] {
        const std::array<double, 6> pose{10, 20, 30, 30, 0, 0};
        sender.send(pose.data(), sizeof(pose));
        return listener.active() && std::abs(listener.azimuthOfAhead() + 30) < 0.01;
    }));
}

TEST_F(WholeProgram, TakesAQuaternionThatLooksStraightUp) {
    TrackProgram program(plain);
    const Sender sender(program.oscPort());
    const Listener listener;
    const double s = half(90, std::sin), c = half(90, std::cos);
    EXPECT_TRUE(becomesTrue([&] {
        sender.message("/quaternion", {c, 0, s, 0});
        return listener.active() && listener.elevationOfAhead() < -89;
    }));
    EXPECT_NEAR(listener.elevationOfRight(), 0, 0.1);
}

TEST_F(WholeProgram, LooksAheadAfterARecentreByOscOrSignal) {
    TrackProgram program(plain);
    const Sender sender(program.oscPort());
    const Listener listener;
    const auto ahead = [&](double yaw, double expected) {
        return becomesTrue([&] {
            sender.message("/ypr", {yaw, 0, 0});
            return std::abs(listener.azimuthOfAhead() - expected) < 0.01;
        });
    };
    EXPECT_TRUE(ahead(-70, -70));
    sender.message("/recenter", {});
    EXPECT_TRUE(ahead(-70, 0));
    EXPECT_TRUE(ahead(-80, -10));
    program.signal(SIGUSR1);
    EXPECT_TRUE(ahead(-80, 0));
}

TEST_F(WholeProgram, PutsUpWithMalformedPacketsAndNoNumbers) {
    TrackProgram program(plain);
    const Sender sender(program.oscPort()), other(program.openTrackPort());
    const Listener listener;
    for (const std::string& packet :
         {std::string(), std::string("junk"), std::string(1000, '\xff'), std::string("#bundle\0\0\0", 10),
          std::string("/ypr\0\0\0\0,fff\0\0\0\0", 16)}) {
        sender.send(packet.data(), packet.size());
        other.send(packet.data(), packet.size());
    }
    sender.message("/ypr", {std::nan(""), 0, 0});
    sender.message("/quaternion", {0, 0, 0, 0});
    sender.message("/ypr", {1, 2});
    sender.message("/nothing/here", {1});
    EXPECT_TRUE(program.says("Messages to \"/nothing/here\" tell no direction"));
    EXPECT_FALSE(listener.active());
    EXPECT_TRUE(becomesTrue([&] {
        sender.message("/ypr", {-30, 0, 0});
        return listener.active() && std::abs(listener.azimuthOfAhead() + 30) < 0.01;
    }));
}

TEST_F(WholeProgram, SurvivesAFloodAndEndsWhenAskedInTheMiddleOfIt) {
    TrackProgram program(plain);
    const Sender sender(program.oscPort());
    const Listener listener;
    for (int packet = 0; packet < 20000; ++packet)
        sender.message("/ypr", {packet % 360 - 180.0, 0, 0});
    EXPECT_TRUE(becomesTrue([&] { return listener.active(); }));
    program.signal(SIGTERM);
    for (int packet = 0; packet < 2000; ++packet)
        sender.message("/ypr", {90, 0, 0});
    EXPECT_EQ(program.finish(), 0);
    EXPECT_FALSE(listener.active());
}

TEST_F(WholeProgram, GivesTheDialBackAfterASilenceAndTakesItAgain) {
    TrackProgram program(plain);
    const Sender sender(program.oscPort());
    const Listener listener;
    for (int round = 0; round < 2; ++round) {
        EXPECT_TRUE(becomesTrue([&] {
            sender.message("/ypr", {-60, 0, 0});
            return listener.active();
        }));
        EXPECT_TRUE(becomesTrue([&] { return !listener.active(); }));
        EXPECT_NEAR(listener.azimuthOfAhead(), 0, 5); // it has glided: the last step may lie a little off
    }
}

class EverySignal : public WholeProgram, public ::testing::WithParamInterface<int> {};

TEST_P(EverySignal, ThatCanBeTakenLeavesTheLinkInactive) {
    TrackProgram program({"--demo", "--glide", "0.05"});
    const Listener listener;
    ASSERT_TRUE(becomesTrue([&] { return listener.active(); }));
    program.signal(GetParam());
    const int status = program.finish();
    EXPECT_FALSE(listener.active());
    const bool breaks = GetParam() == SIGSEGV || GetParam() == SIGABRT || GetParam() == SIGBUS ||
                        GetParam() == SIGFPE || GetParam() == SIGILL;
    EXPECT_EQ(status, breaks ? -GetParam() : 0);
}

INSTANTIATE_TEST_SUITE_P(OfThoseThatEndAProgram, EverySignal,
                         ::testing::Values(SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGUSR2, SIGALRM, SIGVTALRM,
                                           SIGPROF, SIGIO, SIGPWR, SIGXCPU, SIGXFSZ, 40, SIGSEGV, SIGABRT,
                                           SIGBUS, SIGFPE, SIGILL));

TEST_F(WholeProgram, IsInactiveWhileItIsStoppedAndGoesOnAfterwards) {
    TrackProgram program({"--demo"});
    const Listener listener;
    ASSERT_TRUE(becomesTrue([&] { return listener.active(); }));
    program.signal(SIGTSTP);
    ASSERT_TRUE(program.stopped());
    EXPECT_FALSE(listener.active());
    program.signal(SIGCONT);
    EXPECT_TRUE(becomesTrue([&] { return listener.active(); }));
}

TEST_F(WholeProgram, PlaysAMovementAndEndsByItself) {
    std::filesystem::create_directories(TrackProgram::folder());
    const auto movement = TrackProgram::folder() / "walk.csv";
    std::ofstream(movement) << "seconds,yaw,pitch,roll\n0,0,0,0\n0.05,45,0,0\n0.3,45,0,0\n";
    TrackProgram program(
        {"--replay", movement.string(), "--smooth", "0", "--grid-centre", "off", "--glide", "0.05"});
    const Listener listener;
    EXPECT_TRUE(becomesTrue([&] { return std::abs(listener.azimuthOfAhead() + 45) < 0.01; }));
    EXPECT_EQ(program.finish(), 0);
    EXPECT_FALSE(listener.active());
    EXPECT_FALSE(Listener().connected()); // the name is free again
}

TEST_F(WholeProgram, EndsAfterAMovementThoughAPortIsOpen) {
    std::filesystem::create_directories(TrackProgram::folder());
    const auto movement = TrackProgram::folder() / "walk.csv";
    std::ofstream(movement) << "0,0,0,0\n0.05,45,0,0\n";
    TrackProgram program({"--replay", movement.string(), "--osc-port", "0", "--glide", "0.05"});
    EXPECT_EQ(program.finish(), 0);
}

TEST_F(WholeProgram, FollowsOneOfTwoSendersOfSingleAnglesAndNoneOfTheOther) {
    TrackProgram program({"--osc-port", "0", "--smooth", "0", "--grid-centre", "off", "--timeout", "10"});
    const Sender one(program.oscPort()), two(program.oscPort());
    const Listener listener;
    EXPECT_TRUE(becomesTrue([&] {
        one.message("/yaw", {-30});
        return listener.active() && std::abs(listener.azimuthOfAhead() + 30) < 0.01;
    }));
    for (int round = 0; round < 20; ++round) {
        one.message("/yaw", {-40});
        two.message("/yaw", {80});
        two.message("/pitch", {60});
    }
    EXPECT_TRUE(becomesTrue([&] {
        one.message("/yaw", {-40});
        two.message("/yaw", {80});
        return std::abs(listener.azimuthOfAhead() + 40) < 0.01 &&
               std::abs(listener.elevationOfAhead()) < 0.01;
    }));
}

TEST_F(WholeProgram, SaysThatAPortIsTaken) {
    TrackProgram first(plain);
    TrackProgram second({"--osc-port", std::to_string(first.oscPort())});
    EXPECT_EQ(second.finish(), 1); // refused for the link, which is looked at first
    std::filesystem::remove_all(TrackProgram::folder() / "orvane-kestrum");
    TrackProgram third({"--osc-port", std::to_string(first.oscPort()), "--take-over"});
    EXPECT_EQ(third.finish(), 1);
    EXPECT_THAT(third.output(), HasSubstr("is taken by another program: end that, or choose another port."));
}

TEST_F(WholeProgram, RefusesNumbersOutsideTheirRange) {
    TrackProgram program({"--predict", "1000"});
    EXPECT_EQ(program.finish(), 1);
    EXPECT_THAT(program.output(),
                HasSubstr("kestrum: --predict 1000 lies outside its range: choose 0 to 200."));
}

TEST_F(WholeProgram, BiasesTheRecordForTheGridUnlessToldNotTo) {
    TrackProgram program({"--osc-port", "0", "--smooth", "0"});
    const Sender sender(program.oscPort());
    const Listener listener;
    EXPECT_TRUE(becomesTrue([&] {
        sender.message("/ypr", {-30, 0, 0});
        return listener.active() && std::abs(listener.azimuthOfAhead() + 32) < 0.01;
    }));
}

std::string fileContent(const std::filesystem::path& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

TEST(Documentation, ShowsTheHelpAndTheTableThatTheProgramPrints) {
    const std::string page = fileContent(KESTRUM_DOCS "/tools/kestrum-track.md");
    const std::string help = ::test::outputOf("\"" KESTRUM_PROGRAM "\" track --help");
    ASSERT_THAT(help, HasSubstr("Usage: kestrum track"));
    EXPECT_THAT(page, HasSubstr("```text\n" + help + "```"));
    const std::string table = ::test::outputOf("\"" KESTRUM_PROGRAM "\" track --dialects");
    ASSERT_THAT(table, HasSubstr("| `/ypr` |"));
    EXPECT_THAT(page, HasSubstr(table));
}

} // namespace

// SPDX-License-Identifier: GPL-3.0-or-later
// The program on a terminal of its own: keys in, one redrawn line out.
#include "LinkEnds.h"
#include "TrackProgram.h"

#include "track/MountingFile.h"
#include "track/Rotation.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace orvane::kestrum::track;
using ::test::becomesTrue;
using ::test::Listener;
using ::test::Screen;
using ::test::Sender;
using ::test::TrackProgram;
using ::testing::HasSubstr;

const std::vector<std::string> plain{"--osc-port", "0",    "--opentrack-port", "0",   "--smooth",  "0",
                                     "--glide",    "0.05", "--grid-centre",    "off", "--timeout", "10"};

class OnATerminal : public ::testing::Test {
public:
    ~OnATerminal() override { std::filesystem::remove_all(TrackProgram::folder()); }

private:
    const ::test::CleanLink clean;

protected:
    const std::filesystem::path kept = TrackProgram::folder() / "orvane-kestrum" / "sensors.json";
};

TEST_F(OnATerminal, OneLineTellsTheSourceAndWhereTheHeadIs) {
    TrackProgram program(plain, Screen::terminal);
    EXPECT_TRUE(program.says("waiting for a sender"));
    const Sender sender(program.oscPort());
    EXPECT_TRUE(becomesTrue([&] {
        sender.message("/ypr", {-30, -5, 2});
        return program.shows("yaw  +30.0  pitch  +5.0  roll  +2.0");
    })) << program.output();
    EXPECT_THAT(program.output(), HasSubstr("osc /ypr from 127.0.0.1:"));
}

TEST_F(OnATerminal, KeysRecentreAndEndAndTheTerminalIsLeftAsItWas) {
    TrackProgram program(plain, Screen::terminal);
    const Sender sender(program.oscPort());
    const Listener listener;
    const auto ahead = [&](double expected) {
        return becomesTrue([&] {
            sender.message("/ypr", {-70, 0, 0});
            return std::abs(listener.azimuthOfAhead() - expected) < 0.01;
        });
    };
    EXPECT_TRUE(ahead(-70));
    program.press('r');
    EXPECT_TRUE(ahead(0));
    program.press('q');
    EXPECT_EQ(program.finish(), 0);
    EXPECT_THAT(program.output(), HasSubstr(" icanon iexten echo ")); // as stty tells afterwards
    EXPECT_FALSE(listener.active());
}

// The terminal is the shell's: what is typed is not the program's, no line is drawn over it, no setting changed.
TEST_F(OnATerminal, TheBackgroundLeavesKeysAndLineToTheShell) {
    TrackProgram program(plain, Screen::background);
    const Sender sender(program.oscPort());
    const Listener listener;
    for (const char key : {'r', 'q', 'c'})
        program.press(key);
    EXPECT_TRUE(becomesTrue([&] {
        sender.message("/ypr", {-30, 0, 0});
        return listener.active() && std::abs(listener.azimuthOfAhead() + 30) < 0.01;
    }));
    EXPECT_TRUE(program.says("Source: osc /ypr"));
    program.press('\n');
    EXPECT_TRUE(program.says("the shell has read rqc")) << program.output();
    program.finish();
    EXPECT_THAT(program.output(), HasSubstr(" icanon iexten echo "));
    EXPECT_THAT(program.output(), ::testing::Not(HasSubstr("yaw  +")));
    EXPECT_THAT(program.output(), ::testing::Not(HasSubstr("waiting for a sender")));
    EXPECT_FALSE(listener.active());
}

// Ctrl-S stops a terminal's output; a program that waits for it would hold every head fast.
TEST_F(OnATerminal, CtrlSStopsNothing) {
    TrackProgram program(plain, Screen::terminal);
    const Sender sender(program.oscPort());
    program.press('\x13');
    EXPECT_TRUE(becomesTrue([&] {
        sender.message("/ypr", {-40, 0, 0});
        return program.shows("yaw  +40.0");
    })) << program.output();
}

TEST_F(OnATerminal, ACalibrationWithoutASenderSaysSo) {
    TrackProgram program(plain, Screen::terminal);
    program.press('c');
    EXPECT_TRUE(program.says("Look straight ahead, then press space."));
    program.press(' ');
    EXPECT_TRUE(program.says("No sender is heard: let one send, then press space.")) << program.output();
}

// A sensor that sits turned by 90 degrees: what it calls looking up is a tilt of the head.
TEST_F(OnATerminal, ThreePosesCalibrateASensorAndAreKept) {
    const Rotation mounting = rotationOf(HeadAngles{90, 0, 0});
    const auto sensorSays = [&](const HeadAngles& head) {
        const HeadAngles angles = anglesOf(rotationOf(head) * mounting);
        return std::vector<double>{angles.yaw, angles.pitch, angles.roll};
    };
    {
        TrackProgram program(plain, Screen::terminal);
        const Sender sender(program.oscPort());
        const Listener listener;
        program.press('c');
        const std::pair<const char*, HeadAngles> poses[]{
            {"Look straight ahead, then press space.", {0, 0, 0}},
            {"Turn your head to the right", {60, 0, 0}},
            {"Look straight ahead again, then down", {0, -40, 0}}};
        for (const auto& [prompt, pose] : poses) {
            EXPECT_TRUE(program.says(prompt)); // it looks at its keys now and then only
            const auto said = sensorSays(pose);
            const float raw = linkMatrix(rotationOf(pose) * mounting)[2];
            EXPECT_TRUE(becomesTrue([&] {
                sender.message("/orientation", said);
                return std::abs(listener.matrix()[2] - raw) < 1e-3f;
            }));
            program.press(' ');
        }
        EXPECT_TRUE(program.says("Calibrated osc /orientation; kept in ")) << program.output();
        EXPECT_TRUE(becomesTrue([&] {
            sender.message("/orientation", sensorSays({-25, 0, 0}));
            return std::abs(listener.azimuthOfAhead() - 25) < 0.1;
        }));
        EXPECT_TRUE(becomesTrue([&] {
            sender.message("/orientation", sensorSays({0, 20, 0}));
            return std::abs(listener.elevationOfAhead() + 20) < 0.1;
        }));
    }
    const auto mountings = readMountings(kept);
    ASSERT_TRUE(mountings.contains("osc /orientation"));
    EXPECT_LT(angleBetween(mountings.at("osc /orientation"), mounting), 0.1);
}

TEST_F(OnATerminal, ADamagedCalibrationIsRefusedAndLeftAlone) {
    std::filesystem::create_directories(kept.parent_path());
    std::ofstream(kept) << "{";
    TrackProgram program(plain, Screen::terminal);
    EXPECT_EQ(program.finish(), 1);
    EXPECT_THAT(program.output(), HasSubstr("is damaged: mend it, or move it away"));
    EXPECT_EQ(std::filesystem::file_size(kept), 1u);
}

} // namespace

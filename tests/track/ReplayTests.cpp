// SPDX-License-Identifier: GPL-3.0-or-later
#include "track/Demo.h"
#include "track/PlayedInput.h"
#include "track/Replay.h"
#include "track/TrackError.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <filesystem>
#include <fstream>

namespace {

using namespace orvane::kestrum::track;
using std::chrono::milliseconds;
using ::testing::HasSubstr;

class Movements : public ::testing::Test {
public:
    ~Movements() override { std::filesystem::remove(path); }

protected:
    std::vector<ReplayLine> read(const std::string& text) const {
        std::ofstream(path, std::ios::binary) << text;
        return readReplay(path);
    }
    std::string refusal(const std::string& text) const {
        try {
            read(text);
        } catch (const TrackError& error) {
            return error.what();
        }
        return "";
    }

    std::filesystem::path path =
        std::filesystem::temp_directory_path() /
        (std::string("kestrum_replay_") + ::testing::UnitTest::GetInstance()->current_test_info()->name());
};

TEST_F(Movements, AreReadLineByLine) {
    const auto lines =
        read("seconds,yaw,pitch,roll\n# a note\n\n0,0,0,0\n 0.5 , 30,-2.5, 1e1 \r\n0.5,31,0,0\n");
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_EQ(lines[1].seconds, 0.5);
    EXPECT_EQ(lines[1].angles.yaw, 30);
    EXPECT_EQ(lines[1].angles.pitch, -2.5);
    EXPECT_EQ(lines[1].angles.roll, 10);
}

TEST_F(Movements, WithALineThatIsNotFourNumbersAreRefusedByItsNumber) {
    for (const char* const line :
         {"1,2,3", "1,2,3,4,5", "a,b,c,d", "1,,2,3", "1,2,3,nan", "1,2,3,inf", "1,2,3,4x", ","})
        EXPECT_THAT(refusal("0,0,0,0\n" + std::string(line) + "\n"), HasSubstr("Line 2 of")) << line;
}

TEST_F(Movements, ThatRunBackwardsOrAreEmptyOrMissingAreRefused) {
    EXPECT_THAT(refusal("1,0,0,0\n0.5,0,0,0\n"), HasSubstr("lies before the one above it: sort the lines"));
    EXPECT_THAT(refusal("-1,0,0,0\n"), HasSubstr("lies before"));
    EXPECT_THAT(refusal("seconds,yaw,pitch,roll\n"), HasSubstr("is empty: write lines"));
    std::filesystem::remove(path);
    EXPECT_THROW(readReplay(path), TrackError);
}

TEST(PlayedMovements, GiveEachLineAtItsTimeAndTheLastOfThoseThatWereMissed) {
    const Instant start = Instant(std::chrono::hours(1));
    PlayedInput played(false, {{0, {1, 0, 0}}, {0.1, {2, 0, 0}}, {0.2, {3, 0, 0}}}, start);
    EXPECT_EQ(played.due(), start);
    auto samples = played.samples(start);
    ASSERT_EQ(samples.size(), 1u);
    EXPECT_NEAR(anglesOf(samples[0].rotation).yaw, 1, 1e-9);
    EXPECT_TRUE(played.samples(start + milliseconds(99)).empty());
    EXPECT_EQ(played.due(), start + milliseconds(100));
    samples = played.samples(start + milliseconds(500));
    ASSERT_EQ(samples.size(), 1u);
    EXPECT_NEAR(anglesOf(samples[0].rotation).yaw, 3, 1e-9);
    EXPECT_TRUE(played.finished());
    EXPECT_FALSE(played.due());
}

TEST(Demonstrations, BeginAheadAndLookAroundSlowly) {
    HeadAngles last = demoAngles(0);
    EXPECT_EQ(last.yaw, 0);
    double widest = 0;
    for (int frame = 1; frame < 60 * 60; ++frame) {
        const HeadAngles angles = demoAngles(frame / 60.0);
        EXPECT_LT(angleBetween(rotationOf(angles), rotationOf(last)), 1); // 60 degrees a second
        widest = std::max(widest, std::abs(angles.yaw));
        last = angles;
    }
    EXPECT_GT(widest, 55);
}

} // namespace

// SPDX-License-Identifier: GPL-3.0-or-later
// Expected values: sensors that sit in a known way, made by composing rotations.
#include "track/Mounting.h"
#include "track/MountingFile.h"
#include "track/TrackError.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

#include <unistd.h>

namespace {

using namespace orvane::kestrum::track;
using ::testing::HasSubstr;

constexpr Source phone{.input = Input::osc, .family = "/ypr", .address = 1, .port = 1};

Rotation anyRotation(std::mt19937& random) {
    std::normal_distribution<double> normal;
    return *normalised({normal(random), normal(random), normal(random), normal(random)});
}

Mounting calibrated(const Rotation& ahead, const Rotation& right, const Rotation& down) {
    PoseCalibration calibration;
    EXPECT_FALSE(calibration.add(phone, ahead));
    EXPECT_FALSE(calibration.add(phone, right));
    EXPECT_TRUE(calibration.add(phone, down));
    return calibration.result();
}

TEST(Calibrations, FindAnyMountingInAnyRoomFromThreePoses) {
    std::mt19937 random(3);
    for (int round = 0; round < 500; ++round) {
        const Rotation room = anyRotation(random), mounting = anyRotation(random);
        const auto says = [&](const HeadAngles& head) { return room * rotationOf(head) * mounting; };
        const Mounting found = calibrated(says({0, 0, 0}), says({60, 0, 0}), says({0, -40, 0}));
        EXPECT_NEAR(angleBetween(found.sensorToHead, mounting), 0, 1e-5);
        EXPECT_NEAR(angleBetween(found.reference, says({0, 0, 0})), 0, 1e-9);
    }
}

// People do not turn about exact axes: the turn is trusted, the nod only says which way the ears lie.
TEST(Calibrations, OfSloppyPosesKeepTheVerticalOfTheTurn) {
    const auto says = [&](const HeadAngles& head) {
        return rotationOf(head) * rotationOf(HeadAngles{0, 20, 0});
    };
    const Mounting found = calibrated(says({0, 0, 0}), says({50, 0, 0}), says({8, -35, 5}));
    const Rotation turned =
        found.sensorToHead * inverse(found.reference) * says({45, 0, 0}) * inverse(found.sensorToHead);
    EXPECT_NEAR(anglesOf(turned).yaw, 45, 1e-5);
    EXPECT_NEAR(anglesOf(turned).pitch, 0, 1e-5);
    EXPECT_LT(angleBetween(found.sensorToHead, rotationOf(HeadAngles{0, 20, 0})), 15);
}

TEST(Calibrations, RefusePosesThatAreTooCloseOrAboutOneAxis) {
    const auto says = [](const HeadAngles& head) { return rotationOf(head); };
    EXPECT_THROW(calibrated(says({0, 0, 0}), says({5, 0, 0}), says({0, -40, 0})), TrackError);
    EXPECT_THROW(calibrated(says({0, 0, 0}), says({60, 0, 0}), says({0, -2, 0})), TrackError);
    try {
        calibrated(says({0, 0, 0}), says({60, 0, 0}), says({-40, 0, 0}));
        FAIL();
    } catch (const TrackError& error) {
        EXPECT_THAT(error.what(), HasSubstr("nearly the same axis"));
    }
}

TEST(Calibrations, RefusePosesOfTwoSensors) {
    PoseCalibration calibration;
    Source other = phone;
    other.port = 2; // started again
    EXPECT_FALSE(calibration.add(phone, {}));
    EXPECT_FALSE(calibration.add(other, rotationOf(HeadAngles{60, 0, 0})));
    other.address = 2;
    EXPECT_THROW(calibration.add(other, rotationOf(HeadAngles{0, -40, 0})), TrackError);
}

class KeptMountings : public ::testing::Test {
public:
    KeptMountings() { std::filesystem::remove_all(folder); }
    ~KeptMountings() override { std::filesystem::remove_all(folder); }

protected:
    std::string content() const {
        std::ifstream file(path);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    void write(const std::string& text) const {
        std::filesystem::create_directories(path.parent_path());
        std::ofstream(path) << text;
    }

    std::filesystem::path folder =
        std::filesystem::temp_directory_path() /
        (std::string("kestrum_mounting_") + ::testing::UnitTest::GetInstance()->current_test_info()->name());
    std::filesystem::path path = folder / "orvane-kestrum" / "sensors.json";
};

TEST_F(KeptMountings, ComeBackAsTheyWere) {
    EXPECT_TRUE(readMountings(path).empty());
    const Rotation askew = rotationOf(HeadAngles{10, 20, 30});
    writeMountings(path, {{"osc /ypr", askew}, {"opentrack", {}}});
    const auto read = readMountings(path);
    ASSERT_EQ(read.size(), 2u);
    EXPECT_NEAR(angleBetween(read.at("osc /ypr"), askew), 0, 1e-6);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(path.parent_path()), {}),
              1); // no half file left
}

TEST_F(KeptMountings, ThatAreDamagedAreRefusedAndLeftAlone) {
    for (const std::string text :
         {"", "{", "[]", "{\"mountings\":{\"osc\":[1,2]}}", "{\"mountings\":{\"osc\":[0,0,0,0]}}",
          "{\"mountings\":{\"osc\":\"abcd\"}}", "{\"mountings\":3}"}) {
        write(text);
        try {
            readMountings(path);
            if (text != "{\"mountings\":3}") // an empty walk over a number is no damage worth a word
                ADD_FAILURE() << text;
        } catch (const TrackError& error) {
            EXPECT_THAT(error.what(), HasSubstr("is damaged: mend it, or move it away"));
        }
        EXPECT_EQ(content(), text);
    }
}

// What is taken for nothing would be replaced by the next calibration.
TEST_F(KeptMountings, ThatCannotBeReadAreRefusedAndNotTakenForNone) {
    std::filesystem::create_directories(path); // even root reads no folder as a file
    EXPECT_THROW(readMountings(path), TrackError);
    if (getuid() == 0)
        return;
    std::filesystem::remove(path);
    write("{\"mountings\":{}}");
    std::filesystem::permissions(path, std::filesystem::perms(0000));
    EXPECT_THROW(readMountings(path), TrackError);
}

TEST_F(KeptMountings, ThatCannotBeWrittenLeaveTheOldFile) {
    write("old");
    std::filesystem::create_directories(folder / "blocked");
    std::ofstream(folder / "file") << "in the way";
    EXPECT_THROW(writeMountings(folder / "file" / "sensors.json", {}), TrackError);
    EXPECT_EQ(content(), "old");
}

TEST_F(KeptMountings, LieInTheUsersConfigurationFolder) {
    setenv("XDG_CONFIG_HOME", "/somewhere", 1);
    EXPECT_EQ(mountingFile(), "/somewhere/orvane-kestrum/sensors.json");
    setenv("XDG_CONFIG_HOME", "relative", 1);
    setenv("HOME", "/home/me", 1);
    EXPECT_EQ(mountingFile(), "/home/me/.config/orvane-kestrum/sensors.json");
    unsetenv("XDG_CONFIG_HOME");
    unsetenv("HOME");
    EXPECT_THROW(mountingFile(), TrackError);
}

} // namespace

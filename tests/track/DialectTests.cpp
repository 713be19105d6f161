// SPDX-License-Identifier: GPL-3.0-or-later
// Expected values: messages written out by hand from each sender's documentation, for a head turned 30 degrees to the
// right, looking 20 degrees up, tilted 10 degrees to the right.
#include "track/Dialects.h"

#include "track/OpenTrack.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <numbers>
#include <sstream>
#include <string>
#include <vector>

namespace {

using namespace orvane::kestrum::track;

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
const double s15 = std::sin(15 * std::numbers::pi / 180), c15 = std::cos(15 * std::numbers::pi / 180);
const double s10 = std::sin(10 * std::numbers::pi / 180), c10 = std::cos(10 * std::numbers::pi / 180);
const double s5 = std::sin(5 * std::numbers::pi / 180), c5 = std::cos(5 * std::numbers::pi / 180);
constexpr double radian = std::numbers::pi / 180;

/// What one address carries for each of the three heads; empty for what it cannot tell.
struct Expected {
    std::string address;
    std::vector<double> turnedRight, lookingUp, tiltedRight;
};

const std::array<Expected, 17> expected{{
    {"/ypr", {-30, 0, 0}, {0, -20, 0}, {0, 0, 10}},
    {"/SceneRotator/ypr", {30, 0, 0}, {0, 20, 0}, {0, 0, -10}},
    {"/rotation", {0, -30, 0}, {-20, 0, 0}, {0, 0, -10}},
    {"/rendering/htrpy", {0, 0, 30}, {0, 20, 0}, {10, 0, 0}},
    {"/orientation", {30, 0, 0}, {0, 20, 0}, {0, 0, 10}},
    {"/head_pose", {0, 1, 2, 3, 0, -30, 0}, {0, 1, 2, 3, -20, 0, 0}, {0, 1, 2, 3, 0, 0, -10}},
    {"/3DTI-OSC/receiver/pry", {0, 0, 30 * radian}, {20 * radian, 0, 0}, {0, 10 * radian, 0}},
    {"/SceneRotator/quaternions", {c15, 0, 0, s15}, {c10, 0, s10, 0}, {c5, -s5, 0, 0}},
    {"/quaternion", {c15, 0, 0, s15}, {c10, 0, s10, 0}, {c5, -s5, 0, 0}},
    {"/quaternions", {c15, 0, s15, 0}, {c10, -s10, 0, 0}, {c5, 0, 0, -s5}},
    {"/gamerotationvector", {0, 0, -s15, c15}, {s10, 0, 0, c10}, {0, s5, 0, c5}},
    {"/yaw", {-30}, {}, {}},
    {"/pitch", {}, {-20}, {}},
    {"/roll", {}, {}, {10}},
    {"/hedrot/yaw", {30}, {}, {}},
    {"/hedrot/pitch", {}, {20}, {}},
    {"/hedrot/roll", {}, {}, {10}},
}};

std::optional<Rotation> readOnce(const std::string& address, const std::vector<double>& values,
                                 const Correction& correction = {}) {
    return DialectReader(correction).read(*findDialect(address), {}, values);
}

void expectHead(const std::string& address, const std::vector<double>& values, const HeadAngles& head) {
    if (values.empty())
        return;
    const auto read = readOnce(address, values);
    ASSERT_TRUE(read) << address;
    EXPECT_NEAR(angleBetween(*read, rotationOf(head)), 0, 1e-6) << address;
}

TEST(Dialects, TellTheThreeTurnsOfAHeadInEachSendersOwnOrderUnitAndSigns) {
    ASSERT_EQ(dialects().size(), expected.size());
    for (const Expected& row : expected) {
        ASSERT_NE(findDialect(row.address), nullptr) << row.address;
        expectHead(row.address, row.turnedRight, {30, 0, 0});
        expectHead(row.address, row.lookingUp, {0, 20, 0});
        expectHead(row.address, row.tiltedRight, {0, 0, 10});
    }
}

TEST(Dialects, NameTheDocumentationThatTheyFollow) {
    for (const Dialect& row : dialects()) {
        EXPECT_FALSE(row.source.empty()) << row.address;
        EXPECT_FALSE(row.convention.empty()) << row.address;
    }
}

TEST(Dialects, OfSeveralAnglesTurnFirstThenNodThenTilt) {
    const Rotation head = rotationOf(HeadAngles{40, 25, -15});
    EXPECT_NEAR(angleBetween(*readOnce("/ypr", {-40, -25, -15}), head), 0, 1e-6);
    EXPECT_NEAR(angleBetween(*readOnce("/rendering/htrpy", {-15, 25, 40}), head), 0, 1e-6);
}

// The rotation of the scene, as Ambisonic rotators take it, undoes the head's.
TEST(Dialects, OfTheScenesTurnAgreeWithThoseOfTheHeads) {
    const Rotation head = rotationOf(HeadAngles{40, 25, -15});
    const Rotation scene = inverse(head);
    EXPECT_NEAR(angleBetween(*readOnce("/quaternion", {scene.w, scene.x, -scene.y, -scene.z}), head), 0,
                1e-6);
}

std::optional<Rotation> readFrom(DialectReader& reader, std::uint16_t port, const std::string& address,
                                 double value) {
    const Dialect& dialect = *findDialect(address);
    const Source sender{.input = Input::osc, .family = dialect.family, .address = 1, .port = port};
    return reader.read(dialect, sender, std::vector<double>{value});
}

TEST(SingleAngles, AddUpToOneDirectionPerFamily) {
    DialectReader reader;
    readFrom(reader, 1, "/yaw", -30);
    readFrom(reader, 1, "/hedrot/yaw", 5);
    readFrom(reader, 1, "/pitch", -20);
    const auto all = readFrom(reader, 1, "/roll", 10);
    EXPECT_NEAR(angleBetween(*all, rotationOf(HeadAngles{30, 20, 10})), 0, 1e-6);
    const auto other = readFrom(reader, 1, "/hedrot/roll", 0);
    EXPECT_NEAR(angleBetween(*other, rotationOf(HeadAngles{5, 0, 0})), 0, 1e-6);
}

TEST(SingleAngles, OfTwoSendersAreTwoDirections) {
    for (const std::string family : {"", "/hedrot"}) {
        DialectReader reader;
        const double left = family.empty() ? -1 : 1;
        readFrom(reader, 1, family + "/yaw", 30 * left);
        readFrom(reader, 2, family + "/yaw", 50 * left);
        const auto first = readFrom(reader, 1, family + "/roll", 10);
        const auto second = readFrom(reader, 2, family + "/roll", 0);
        EXPECT_NEAR(angleBetween(*first, rotationOf(HeadAngles{30, 0, 10})), 0, 1e-6);
        EXPECT_NEAR(angleBetween(*second, rotationOf(HeadAngles{50, 0, 0})), 0, 1e-6);
    }
}

TEST(SingleAngles, AreHeldThroughAFloodOfStrangers) {
    DialectReader reader;
    readFrom(reader, 1, "/yaw", -30);
    for (std::uint16_t stranger = 2; stranger < 1000; ++stranger) {
        readFrom(reader, stranger, "/yaw", 80);
        readFrom(reader, 1, "/pitch", -20);
    }
    EXPECT_NEAR(angleBetween(*readFrom(reader, 1, "/roll", 10), rotationOf(HeadAngles{30, 20, 10})), 0, 1e-6);
}

TEST(RotationVectors, MayLeaveTheirLastNumberOutOrAddAnAccuracy) {
    EXPECT_NEAR(
        angleBetween(*readOnce("/gamerotationvector", {0, 0, -s15}), rotationOf(HeadAngles{30, 0, 0})), 0,
        1e-6);
    EXPECT_TRUE(readOnce("/gamerotationvector", {0, 0, -s15, c15, 0.1}));
}

TEST(HostileMessages, AreNoDirection) {
    for (const Expected& row : expected) {
        const auto& values = !row.turnedRight.empty() ? row.turnedRight
                             : !row.lookingUp.empty() ? row.lookingUp
                                                      : row.tiltedRight;
        for (std::size_t index = 0; index < values.size(); ++index)
            for (const double bad : {nan, std::numeric_limits<double>::infinity()}) {
                auto broken = values;
                broken[index] = bad;
                EXPECT_FALSE(readOnce(row.address, broken)) << row.address << " at " << index;
            }
        EXPECT_FALSE(readOnce(row.address, {})) << row.address;
        auto longer = values;
        longer.resize(8, 0.5);
        EXPECT_FALSE(readOnce(row.address, longer)) << row.address;
    }
    EXPECT_FALSE(readOnce("/quaternion", {0, 0, 0, 0}));
}

/// Numbers of radians that are none in degrees; an angle that was told before stays.
TEST(HostileMessages, ThatAreTooLargeForTheirUnitAreNoDirection) {
    const double largest = std::numeric_limits<double>::max();
    for (const Expected& row : expected) {
        const Dialect& dialect = *findDialect(row.address);
        for (const double value : {largest, -largest, 1e308}) {
            const auto& values = !row.turnedRight.empty() ? row.turnedRight
                                 : !row.lookingUp.empty() ? row.lookingUp
                                                          : row.tiltedRight;
            for (std::size_t index = 0; index < values.size(); ++index) {
                auto broken = values;
                broken[index] = value;
                const auto read = readOnce(row.address, broken);
                EXPECT_TRUE(!read || normalised(*read)) << row.address << " at " << index;
                if (dialect.axes == Axes::none && dialect.degreesPerUnit > 1) {
                    EXPECT_FALSE(read) << row.address << " at " << index;
                }
            }
        }
    }
}

TEST(HostileMessages, ThatAreFiniteGiveAFiniteRotation) {
    const auto read = readOnce("/ypr", {1e300, -1e300, 12345678});
    ASSERT_TRUE(read);
    EXPECT_TRUE(normalised(*read));
}

TEST(UnknownAddresses, AreNoDialect) {
    EXPECT_EQ(findDialect("/nothing"), nullptr);
    EXPECT_EQ(findDialect(""), nullptr);
    EXPECT_EQ(findDialect("/yp"), nullptr);
}

TEST(Corrections, TurnAnglesAndQuaternionsAbout) {
    const Correction leftRight{.signs = {-1, 1, 1}, .inverted = false};
    const Correction scene{.signs = {1, 1, 1}, .inverted = true};
    for (const char* const address : {"/ypr", "/quaternion"}) {
        const auto& row = *std::ranges::find(expected, address, &Expected::address);
        EXPECT_NEAR(anglesOf(*readOnce(address, row.turnedRight, leftRight)).yaw, -30, 1e-6) << address;
        EXPECT_NEAR(anglesOf(*readOnce(address, row.lookingUp, leftRight)).pitch, 20, 1e-6) << address;
        EXPECT_NEAR(anglesOf(*readOnce(address, row.tiltedRight, scene)).roll, -10, 1e-6) << address;
    }
}

TEST(DialectTable, PrintsOneMarkdownRowForEachAddress) {
    std::ostringstream text;
    writeDialects(text);
    const std::string table = text.str();
    EXPECT_EQ(static_cast<std::size_t>(std::ranges::count(table, '\n')), dialects().size() + 2);
    EXPECT_THAT(table, ::testing::HasSubstr("| `/3DTI-OSC/receiver/pry` | pitch, roll, yaw | radians |"));
}

std::vector<std::byte> datagramOf(const std::array<double, 6>& pose) {
    std::vector<std::byte> bytes(sizeof(pose));
    std::memcpy(bytes.data(), pose.data(), bytes.size());
    return bytes;
}

TEST(OpenTrackDatagrams, HoldPlaceThenYawPitchRoll) {
    const auto read = readOpenTrack(datagramOf({1, 2, 3, 30, 20, -10}), {});
    ASSERT_TRUE(read);
    EXPECT_NEAR(angleBetween(*read, rotationOf(HeadAngles{30, 20, 10})), 0, 1e-6);
}

TEST(OpenTrackDatagrams, OfAnotherLengthOrWithoutNumbersAreNone) {
    auto bytes = datagramOf({1, 2, 3, 30, 20, 10});
    bytes.pop_back();
    EXPECT_FALSE(readOpenTrack(bytes, {}));
    bytes.resize(56);
    EXPECT_FALSE(readOpenTrack(bytes, {}));
    EXPECT_FALSE(readOpenTrack({}, {}));
    EXPECT_FALSE(readOpenTrack(datagramOf({1, 2, 3, nan, 20, 10}), {}));
    EXPECT_TRUE(readOpenTrack(datagramOf({nan, 2, 3, 0, 20, 10}), {})); // the place is not used
}

} // namespace

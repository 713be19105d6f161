// SPDX-License-Identifier: GPL-3.0-or-later
// Packets are written out by hand, after the OSC 1.0 standard: strings end in 0 and fill up to four bytes, numbers
// are big-endian.
#include "track/OscParser.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace {

using orvane::kestrum::track::OscParser;
using ::testing::ElementsAre;

class Packets {
public:
    static std::string padded(std::string text) {
        text.push_back('\0');
        text.resize((text.size() + 3) / 4 * 4, '\0');
        return text;
    }
    static std::string bigEndian(std::uint64_t value, int bytes) {
        std::string text;
        for (int shift = 8 * (bytes - 1); shift >= 0; shift -= 8)
            text.push_back(static_cast<char>(value >> shift & 255));
        return text;
    }
    static std::string number(float value) { return bigEndian(std::bit_cast<std::uint32_t>(value), 4); }
    static std::string message(const std::string& address, float value) {
        return padded(address) + padded(",f") + number(value);
    }
    static std::string bundle(std::uint64_t time, const std::vector<std::string>& elements) {
        std::string text = padded("#bundle") + bigEndian(time, 8);
        for (const std::string& element : elements)
            text += bigEndian(element.size(), 4) + element;
        return text;
    }
};

class OscPackets : public ::testing::Test {
protected:
    OscPackets()
        : parser([this](std::string_view address, std::span<const double> values) {
              seen.emplace_back(address, std::vector<double>(values.begin(), values.end()));
          }) {}

    bool parse(std::string packet) {
        const auto data = std::as_writable_bytes(std::span(packet));
        return parser.parse(data);
    }

    std::vector<std::pair<std::string, std::vector<double>>> seen;
    OscParser parser;
};

TEST_F(OscPackets, OfOneMessageGiveItsAddressAndNumbers) {
    EXPECT_TRUE(parse(Packets::padded("/ypr") + Packets::padded(",fff") + Packets::number(1.5f) +
                      Packets::number(-2) + Packets::number(3)));
    ASSERT_EQ(seen.size(), 1u);
    EXPECT_EQ(seen[0].first, "/ypr");
    EXPECT_THAT(seen[0].second, ElementsAre(1.5, -2.0, 3.0));
}

TEST_F(OscPackets, MayHoldWholeNumbersAndDoubles) {
    EXPECT_TRUE(parse(Packets::padded("/a") + Packets::padded(",ihd") + Packets::bigEndian(0xfffffffe, 4) +
                      Packets::bigEndian(7, 8) + Packets::bigEndian(std::bit_cast<std::uint64_t>(0.25), 8)));
    ASSERT_EQ(seen.size(), 1u);
    EXPECT_THAT(seen[0].second, ElementsAre(-2.0, 7.0, 0.25));
}

TEST_F(OscPackets, WithTextInsteadOfANumberGiveNoNumberThere) {
    EXPECT_TRUE(
        parse(Packets::padded("/a") + Packets::padded(",sf") + Packets::padded("left") + Packets::number(1)));
    ASSERT_EQ(seen.size(), 1u);
    EXPECT_TRUE(std::isnan(seen[0].second.at(0)));
    EXPECT_EQ(seen[0].second.at(1), 1.0);
}

// 2 in the last 32 bits short of the largest time: in the year 2106.
TEST_F(OscPackets, InBundlesAreHeardAtOnceHoweverFarAheadTheyAreDated) {
    EXPECT_TRUE(parse(Packets::bundle(
        0xfffffff000000000u, {Packets::message("/yaw", 1), Packets::message("/pitch", 2),
                              Packets::bundle(0xfffffff100000000u, {Packets::message("/roll", 3)})})));
    ASSERT_EQ(seen.size(), 3u);
    EXPECT_EQ(seen[2].first, "/roll");
    EXPECT_THAT(seen[2].second, ElementsAre(3.0));
}

TEST_F(OscPackets, ThatAreCutOffAreRefused) {
    const std::string whole = Packets::padded("/ypr") + Packets::padded(",fff") + std::string(12, '\0');
    for (std::size_t length = 0; length < whole.size(); ++length)
        EXPECT_FALSE(parse(whole.substr(0, length))) << length;
    EXPECT_TRUE(seen.empty());
}

TEST_F(OscPackets, ThatAreNoOscAreRefused) {
    for (const std::string& packet :
         {std::string("hello, world"), std::string(48, '\xff'), std::string(4, '\0'),
          std::string("GET / HTTP/1.1\r\n"), Packets::padded("/a") + Packets::padded("fff"),
          Packets::padded("#bundle") + "abc"})
        EXPECT_FALSE(parse(packet)) << packet;
    EXPECT_TRUE(seen.empty());
}

// The library reads the length of a blob behind the end of a message that breaks off before it.
TEST_F(OscPackets, WithABlobAreRefusedWholeAndInBundles) {
    const std::string blob = Packets::padded("/a") + Packets::padded(",fb") + Packets::number(1);
    const std::string wholeBlob = blob + Packets::bigEndian(4, 4) + "data";
    for (const std::string& message : {blob, wholeBlob}) {
        EXPECT_FALSE(parse(message));
        EXPECT_FALSE(parse(Packets::bundle(1, {Packets::message("/yaw", 1), message})));
        EXPECT_FALSE(parse(Packets::bundle(1, {Packets::bundle(1, {message})})));
    }
    EXPECT_TRUE(seen.empty());
    EXPECT_TRUE(parse(Packets::message("/b", 1))) << "an address is no argument";
    EXPECT_TRUE(parse(Packets::padded("/a") + Packets::padded(",s") + Packets::padded(",b")))
        << "nor is a text";
}

// Seeded; the sanitizers watch. What still parses holds at most what was sent.
TEST_F(OscPackets, WithAnyBytesChangedNeverReadOutsideThePacket) {
    std::mt19937 random(7);
    const std::string whole =
        Packets::bundle(1, {Packets::message("/yaw", 1),
                            Packets::bundle(1, {Packets::message("/SceneRotator/quaternions", 2)}),
                            Packets::padded("/a") + Packets::padded(",sbhd") + Packets::padded("text") +
                                Packets::bigEndian(4, 4) + std::string(20, 'x')});
    for (int round = 0; round < 20000; ++round) {
        std::string packet = whole;
        for (unsigned change = 0; change <= random() % 4; ++change)
            packet[random() % packet.size()] = static_cast<char>(random() % 256);
        packet.resize(packet.size() - random() % 3 * 4);
        parse(packet);
        for (const auto& [address, values] : seen)
            ASSERT_LE(address.size() + values.size(), whole.size());
        seen.clear();
    }
}

TEST_F(OscPackets, OfBundlesInBundlesToAnyDepthThatFitsAreTakenApart) {
    std::string packet = Packets::message("/deep", 1);
    for (int depth = 0; depth < 1000; ++depth)
        packet = Packets::bundle(1, {packet});
    parse(packet); // heard or refused, but no crash
    EXPECT_LE(seen.size(), 1u);
}

} // namespace

// SPDX-License-Identifier: GPL-3.0-or-later
// Property: however a host cuts the same input into blocks of 0 to the announced length, the same bits come out.
#include "Arrangements.h"
#include "Child.h"
#include "Play.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <iostream>
#include <random>

namespace {

using namespace rawhost;
using ::testing::HasSubstr;

/// Block lengths from 0 to `longest`, none of the three kinds rare: any, nearly nothing, nearly always the whole.
std::vector<int> randomBlocks(int longest, std::size_t frames, std::uint32_t seed) {
    std::mt19937 random(seed);
    const auto upTo = [&](int most) { return static_cast<int>(random() % static_cast<unsigned>(most + 1)); };
    std::vector<int> blocks;
    const int kind = upTo(2);
    for (std::size_t sum = 0; sum < frames; sum += static_cast<std::size_t>(blocks.back())) {
        if (kind == 0)
            blocks.push_back(upTo(longest));
        else if (kind == 1)
            blocks.push_back(upTo(9) == 0 ? upTo(longest) : std::min(longest, upTo(3)));
        else
            blocks.push_back(upTo(9) == 0 ? upTo(longest) : longest);
    }
    return blocks;
}

using Render = std::function<Channels(std::span<const int> blocks)>;

/// Compares random partitions with the plain one. @return the first that differs.
std::string partitions(const Render& render, int longest, std::size_t frames, int rounds) {
    const Channels plain = render(std::span(&longest, 1));
    if (!isFinite(plain) || peakOf(plain) < 0.001f)
        return "silence, or no number";
    for (int round = 0; round < rounds; ++round) {
        const auto seed = static_cast<std::uint32_t>(round + 1);
        const Channels sound = render(randomBlocks(longest, frames, seed));
        for (std::size_t ear = 0; ear < 2; ++ear) {
            const auto [one, other] = std::ranges::mismatch(sound[ear], plain[ear]);
            if (one != sound[ear].end())
                return "seed " + std::to_string(seed) + ": frame " +
                       std::to_string(one - sound[ear].begin()) + " is " + std::to_string(*one) +
                       " instead of " + std::to_string(*other);
        }
    }
    return {};
}

struct Session {
    std::size_t width;
    const char* layout;
    const char* scene;
    double rate;
    int block;
};

std::string partitionsOf(const Session& session, int rounds) {
    const RawModule module(KESTRUM_BUNDLE);
    const RawPlugin plugin(module);
    plugin.arrange(lowBitArrangement(session.width).speakers, 0x3);
    plugin.choose("Speaker Layouts", session.layout);
    plugin.choose("Scenes", session.scene);
    plugin.flush({{plugin.parameterId("Head Rotation"), 0.6}, {plugin.parameterId("Ambience"), 0.9}});
    const std::size_t frames = 10000 + 4 * static_cast<std::size_t>(session.block);
    const Channels input = noise(session.width, frames);
    const auto render = [&](std::span<const int> blocks) {
        plugin.prepare(session.rate, session.block);
        Channels sound = play(plugin, input, blocks);
        plugin.activate(false);
        return sound;
    };
    return partitions(render, session.block, frames, rounds);
}

class Partitions : public ::testing::TestWithParam<Session> {};

TEST_P(Partitions, GiveTheSameBitsAsWholeBlocks) {
    const int rounds = roundsOf(30, 1000);
    EXPECT_EQ(inChild([&] { return partitionsOf(GetParam(), rounds); }), "");
    std::cout << "figure: " << rounds << " random partitions, equal bit for bit\n";
}

INSTANTIATE_TEST_SUITE_P(AtWidthsScenesRatesAndBlocks, Partitions,
                         ::testing::Values(Session{2, "2.0 +/-30°", "Mix Room", 44100, 2},
                                           Session{2, "2.0 +/-30°", "Mix Room", 48000, 63},
                                           Session{1, "1.0", "Kitchen", 24000, 64},
                                           Session{6, "5.1 ITU", "Stadium", 48000, 256},
                                           Session{12, "7.1.4", "Mix Room", 96000, 513},
                                           Session{16, "9.1.6", "Analytic Dry", 48000, 1024},
                                           Session{8, "7.1", "Car", 192000, 4096},
                                           Session{14, "13.1", "Kitchen", 88200, 100}),
                         [](const auto& session) {
                             return "Channels" + std::to_string(session.param.width) + "Block" +
                                    std::to_string(session.param.block);
                         });

TEST(PartitionChecks, SeeASoundThatDependsOnWhereABlockBegins) {
    constexpr std::size_t frames = 1000;
    const Render withMarkedBlocks = [](std::span<const int> blocks) {
        Channels sound = noise(2, frames);
        std::size_t turn = 0;
        for (std::size_t first = 0; first < frames;
             first += static_cast<std::size_t>(blocks[turn++ % blocks.size()]))
            sound[0][first] += 1e-6f;
        return sound;
    };
    EXPECT_THAT(partitions(withMarkedBlocks, 64, frames, 1), HasSubstr("seed 1: frame"));
}

TEST(PartitionChecks, CutInputsIntoEmptyShortAndWholeBlocks) {
    std::vector<int> all;
    for (std::uint32_t seed = 1; seed <= 8; ++seed)
        std::ranges::copy(randomBlocks(64, 6000, seed), std::back_inserter(all));
    EXPECT_EQ(*std::ranges::min_element(all), 0);
    EXPECT_EQ(*std::ranges::max_element(all), 64);
    EXPECT_GT(std::ranges::count(all, 1), 10);
}

} // namespace

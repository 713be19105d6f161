// SPDX-License-Identifier: GPL-3.0-or-later
// What a block may hold, and what of it is sound. Reference: each number's own bits, one by one.
#include "base/InputGuard.h"

#include "support/FlushDenormals.h"
#include "support/RealtimeScope.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

namespace {

using orvane::SampleBuffer;
using orvane::silenceFaults;

float guarded(float sample) {
    float* const channel = &sample;
    silenceFaults(SampleBuffer(&channel, 1, 1));
    return sample;
}

TEST(InputGuard, SilencesWhatIsNotFiniteOrBeyondAMillion) {
    using Limits = std::numeric_limits<float>;
    for (const float fault : {Limits::quiet_NaN(), -Limits::quiet_NaN(), Limits::signaling_NaN(),
                              Limits::infinity(), -Limits::infinity(), Limits::max(), Limits::lowest(),
                              std::nextafter(1e6f, 2e6f), std::nextafter(-1e6f, -2e6f), 1e38f})
        EXPECT_EQ(std::bit_cast<std::uint32_t>(guarded(fault)), 0u) << fault;
}

TEST(InputGuard, LeavesEveryOtherNumberItsBits) {
    using Limits = std::numeric_limits<float>;
    for (const float sound :
         {0.0f, -0.0f, 1.0f, -1.0f, 1e6f, -1e6f, Limits::min(), Limits::denorm_min(), -1e-40f, 999999.9f})
        EXPECT_EQ(std::bit_cast<std::uint32_t>(guarded(sound)), std::bit_cast<std::uint32_t>(sound)) << sound;
}

/// In the mode of a block, in which a denormal number counts as zero.
TEST(InputGuard, LeavesDenormalsTheirBitsAlsoWhereTheyAreFlushed) {
    const test::FlushDenormals mode;
    const float tiny = guarded(1e-40f);
    EXPECT_EQ(std::bit_cast<std::uint32_t>(tiny), 71362u); // 1e-40 in steps of 2^-149
}

/// Any bits at any place of any length, so that no lane of a vector and no rest of a loop is left out.
TEST(InputGuard, JudgesEachSampleForItself) {
    std::mt19937 random(2);
    for (std::uint64_t length = 0; length < 70; ++length) {
        std::vector<float> left(length + 2, 7.0f);
        std::vector<float> right(length + 2, 7.0f);
        for (std::uint64_t frame = 0; frame < length; ++frame) {
            left[frame + 1] = std::bit_cast<float>(static_cast<std::uint32_t>(random()));
            right[frame + 1] = frame % 3 == 0 ? std::numeric_limits<float>::quiet_NaN() : 0.5f;
        }
        const auto before = left;
        float* const channels[]{left.data() + 1, right.data() + 1};
        silenceFaults(SampleBuffer(channels, 2, length));
        for (std::uint64_t frame = 1; frame <= length; ++frame) {
            const bool sound = std::isfinite(before[frame]) && std::abs(before[frame]) <= 1e6f;
            ASSERT_EQ(std::bit_cast<std::uint32_t>(left[frame]),
                      sound ? std::bit_cast<std::uint32_t>(before[frame]) : 0u)
                << length << ' ' << frame;
            ASSERT_EQ(right[frame], (frame - 1) % 3 == 0 ? 0.0f : 0.5f);
        }
        for (const auto* const channel : {&left, &right}) {
            EXPECT_EQ(channel->front(), 7.0f);
            EXPECT_EQ(channel->back(), 7.0f);
        }
    }
}

} // namespace

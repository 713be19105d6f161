// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/SampleRing.h"
#include "support/RealtimeScope.h"
#include "support/Signals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <deque>
#include <random>

namespace {

using orvane::kestrum::core::SampleRing;

class RingCapacities : public ::testing::TestWithParam<std::uint64_t> {};

/// Slow reference: a queue that moves one sample at a time and drops its front when it is full.
TEST_P(RingCapacities, RandomRunsComeOutAsTheyWentInAndTheOldestAreLostWhenItIsFull) {
    const std::uint64_t capacity = GetParam();
    std::mt19937 random(static_cast<std::uint32_t>(capacity));
    SampleRing ring(capacity);
    std::deque<float> expected;
    for (std::uint32_t step = 0; step < 500; ++step) {
        const std::uint64_t most = step % 20 == 0 ? 3 * capacity : capacity;
        const test::Signal in = test::noise(random() % (most + 1), test::Seed{step});
        for (const float sample : in) {
            expected.push_back(sample);
            if (expected.size() > capacity)
                expected.pop_front();
        }
        test::Signal out(random() % (expected.size() + 1));
        const test::RealtimeScope scope;
        ring.push(in.data(), in.size());
        const std::uint64_t held = ring.size();
        ring.pop(out.data(), out.size());
        const auto seen = scope.violations();
        ASSERT_EQ(seen, test::RealtimeViolations{});
        ASSERT_EQ(held, expected.size());
        ASSERT_TRUE(std::equal(out.begin(), out.end(), expected.begin())) << "step " << step;
        expected.erase(expected.begin(), expected.begin() + static_cast<std::ptrdiff_t>(out.size()));
        ASSERT_EQ(ring.size(), expected.size());
    }
}
INSTANTIATE_TEST_SUITE_P(OneSampleToManyBlocks, RingCapacities,
                         ::testing::Values(1, 2, 3, 64, 127, 882, 4096));

TEST(SampleRing, StartsEmpty) { EXPECT_EQ(SampleRing(8).size(), 0u); }

} // namespace

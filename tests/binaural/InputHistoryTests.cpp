// SPDX-License-Identifier: GPL-3.0-or-later
#include "binaural/InputHistory.h"
#include "support/Signals.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <numeric>
#include <vector>

namespace {

using orvane::InputHistory;
using test::Signal;

/// The `count` samples that end `delay` before `last`.
Signal taken(const InputHistory& history, std::uint64_t last, std::uint64_t delay, std::uint64_t count) {
    Signal target(count, 99.0f);
    history.copyBefore(last, delay, target.data(), count);
    return target;
}

TEST(InputHistory, GivesBackWhatWasPushedAndZerosBefore) {
    InputHistory history(10);
    Signal block(4);
    for (int round = 0; round < 8; ++round) {
        std::iota(block.begin(), block.end(), static_cast<float>(4 * round + 1));
        history.push({block.data(), block.size()});
        const std::uint64_t end = history.end();
        EXPECT_EQ(end, 4u * static_cast<std::uint64_t>(round + 1));
        for (std::uint64_t delay = 0; delay < 5; ++delay) {
            const Signal seen = taken(history, end - 1, delay, 5);
            for (std::uint64_t i = 0; i < 5; ++i) {
                const float place =
                    static_cast<float>(end - 1) - static_cast<float>(delay) - 5 + static_cast<float>(i);
                EXPECT_EQ(seen[i], place < 0 ? 0.0f : place + 1) << round << ", " << delay << ", " << i;
            }
        }
    }
}

TEST(InputHistory, KeepsWhatIsNoSoundAsSilence) {
    InputHistory history(8);
    Signal block{1,
                 std::numeric_limits<float>::quiet_NaN(),
                 std::numeric_limits<float>::infinity(),
                 -std::numeric_limits<float>::infinity(),
                 2e30f,
                 -1e30f,
                 1e-40f,
                 -2};
    history.push({block.data(), block.size()});
    EXPECT_EQ(taken(history, 8, 0, 8), (Signal{1, 0, 0, 0, 0, -1e30f, 1e-40f, -2}));
}

} // namespace

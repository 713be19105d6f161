// SPDX-License-Identifier: GPL-3.0-or-later
// That no block of a whole engine allocates, frees, locks or waits, at any rate and block. A sanitizer owns the
// allocator, so nothing is counted under one; there each block is played at one rate, for what else it may find.
#include "assembly/EngineRig.h"
#include "assembly/RatesAndBlocks.h"
#include "data/TenmarshHrir.h"
#include "support/NoiseHrirReader.h"
#include "support/RealtimeScope.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <memory>
#include <vector>

namespace {

class WholeEngines : public ::testing::TestWithParam<test::RateAndBlock> {
protected:
    WholeEngines() : store(std::make_unique<test::NoiseHrirReader>()) {
        store.load(GetParam().sampleRate, "");
    }

    /// Blocks of all lengths up to the announced one while the head turns by `degreesPerSecond`, for at least
    /// this long and at least eight whole blocks.
    static void play(const test::EngineRig& rig, double seconds, double degreesPerSecond) {
        const auto [sampleRate, blockSize] = GetParam();
        test::Channels bus(16, std::vector<float>(blockSize, 0.25f));
        const std::vector<float*> pointers = test::channelPointers(bus);
        const double length = std::max(seconds * sampleRate, 8.0 * static_cast<double>(blockSize));
        std::uint64_t call = 0;
        for (double played = 0; played < length; ++call) {
            constexpr std::array<std::uint64_t, 4> divisors{1, 1, 3, 2};
            const std::uint64_t frames = blockSize / divisors[call % divisors.size()];
            played += static_cast<double>(frames);
            const double degrees = played / sampleRate * degreesPerSecond;
            rig.product.headRotation->setValue(static_cast<float>(std::remainder(degrees, 360.0)));
            orvane::SampleBuffer view(pointers.data(), pointers.size(), frames);
            const test::RealtimeScope scope;
            rig.engine->process(view, view);
            ASSERT_EQ(scope.violations().total(), 0u) << "call " << call << ": " << scope.violations();
        }
    }

    orvane::TenmarshHrir store;
};

/// Ten milliseconds of fade lie in the 25 that are played after a change.
TEST_P(WholeEngines, NeitherAllocateNorLockAtRestWhileTurningOrWhileTheyChange) {
    test::EngineRig rig(&store);
    rig.product.chooseLayout("5.1 ITU");
    rig.product.chooseScene("Kitchen");
    rig.start(GetParam().blockSize, GetParam().sampleRate);
    ASSERT_NO_FATAL_FAILURE(play(rig, 0.01, 0));
    ASSERT_NO_FATAL_FAILURE(play(rig, 0.01, 360));
    rig.product.chooseScene("Stadium");
    rig.change();
    ASSERT_NO_FATAL_FAILURE(play(rig, 0.025, 360));
    rig.product.chooseLayout("7.1.4");
    rig.product.chooseScene("Car");
    rig.change();
    ASSERT_NO_FATAL_FAILURE(play(rig, 0.025, 90));
}
INSTANTIATE_TEST_SUITE_P(AtRatesAndBlocks, WholeEngines,
                         ::testing::ValuesIn(test::ratesAndBlocks(test::RealtimeScope::countingWorks)),
                         [](const auto& setting) { return ::testing::PrintToString(setting.param); });

} // namespace

// SPDX-License-Identifier: GPL-3.0-or-later
// Reference: EBU Tech 3341, case 1: a stereo sine of 1 kHz at -23 dBFS per channel measures -23 LUFS within
// 0.1.
#include "render/Measurement.h"

#include "StandInPlugin.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

namespace {

using orvane::kestrum::render::Measurement;
using orvane::kestrum::render::test::MemorySink;

TEST(Measurement, AStereoSineAt23DbUnderFullScaleHasMinus23Lufs) {
    MemorySink sink;
    Measurement measurement(48000, sink);
    std::vector<float> block(2 * 48000);
    const double amplitude = std::pow(10.0, -23.0 / 20);
    for (int second = 0; second < 20; ++second) {
        for (std::size_t frame = 0; frame < 48000; ++frame)
            block[2 * frame] = block[2 * frame + 1] = static_cast<float>(
                amplitude * std::sin(2 * 3.14159265358979 * 1000 * static_cast<double>(frame) / 48000));
        measurement.write(block);
    }
    ASSERT_TRUE(measurement.integratedLoudness());
    EXPECT_NEAR(*measurement.integratedLoudness(), -23.0, 0.1);
    EXPECT_NEAR(measurement.peak(), amplitude, 1e-4); // 48 samples per period: the crest is hit within 0.1 %
    EXPECT_EQ(sink.samples.size(), 20u * 2 * 48000);
}

TEST(Measurement, SilenceHasNoLoudnessAndNoPeak) {
    MemorySink sink;
    Measurement measurement(48000, sink);
    measurement.write(std::vector<float>(2 * 48000));
    EXPECT_FALSE(measurement.integratedLoudness());
    EXPECT_EQ(measurement.peak(), 0.0f);
    EXPECT_TRUE(measurement.finite());
}

TEST(Measurement, AValueThatIsNoNumberIsNoticed) {
    MemorySink sink;
    Measurement measurement(48000, sink);
    measurement.write(std::vector<float>{0.0f, std::numeric_limits<float>::quiet_NaN()});
    EXPECT_FALSE(measurement.finite());
}

} // namespace

// SPDX-License-Identifier: GPL-3.0-or-later
#include "assembly/Product.h"
#include "support/RealtimeScope.h"
#include "support/ReverbFiles.h"
#include "support/Signals.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include <malloc.h>

namespace {

constexpr std::size_t instances = 16;
constexpr double mebibyte = 1024.0 * 1024.0;

/// "VmHWM" (the peak so far) or "VmRSS" (now) of this process, in bytes.
double residentBytes(const std::string& which) {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with(which + ":"))
            return 1024.0 * std::stod(line.substr(which.size() + 1));
    return 0;
}

class SixteenInstances : public ::testing::TestWithParam<std::uint64_t> {};

/// Measured: each one has sixteen loudspeakers and the longest reverb, and changes its engine for another. The HRIR
/// set is not among them.
TEST_P(SixteenInstances, StayBelowOneAndAHalfGigabytesWithTheLongestReverbEach) {
    if (!test::RealtimeScope::countingWorks)
        GTEST_SKIP() << "a sanitizer holds more memory than the program";
    const std::uint64_t blockSize = GetParam();
    test::SphericalHead head(139);
    malloc_trim(0); // what the case before has freed
    const double before = residentBytes("VmRSS");
    std::vector<std::unique_ptr<test::Product>> products;
    const test::Channels sound(16, std::vector<float>(16 * blockSize, 0.1f));
    for (std::size_t i = 0; i < instances; ++i) {
        auto& product =
            products.emplace_back(std::make_unique<test::Product>(&head, test::fullReverbFolder()));
        product->chooseLayout("9.1.6");
        product->parameterSet->setRoomType(orvane::VirtualAcoustics::Type{28}, false);
        product->prepare(blockSize, 48000.0);
    }
    for (const auto& product : products)
        EXPECT_GT(test::peak(product->render(sound, blockSize)[0]), 0.01f);
    const double held = residentBytes("VmRSS") - before;
    for (const auto& product : products)
        product->parameterSet->reload();
    for (const auto& product : products)
        while (product->reloadsFinished < 2)
            product->render(sound, blockSize);
    const double peak = residentBytes("VmHWM");
    std::printf("blocks of %d: %.0f MiB held by %d instances, %.1f each; peak of the process %.0f MiB\n",
                static_cast<int>(blockSize), held / mebibyte, static_cast<int>(instances),
                held / mebibyte / static_cast<double>(instances), peak / mebibyte);
    EXPECT_GT(held, 0.0);
    EXPECT_LT(peak, 1.5e9);
}
INSTANTIATE_TEST_SUITE_P(ShortAndLongBlocks, SixteenInstances, ::testing::Values(512, 32));

} // namespace

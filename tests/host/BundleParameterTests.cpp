// SPDX-License-Identifier: GPL-3.0-or-later
// Expected values are the plug-in's six parameters, copied by hand; the seventh, "Bypass", is the
// framework's.
#include "BundleSupport.h"

#include "render/Names.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>
#include <string>

namespace {

using namespace orvane::kestrum::host;
using namespace orvane::kestrum::host::test;

struct Expected {
    const char* name;
    std::int32_t stepCount;
    bool automatable;
};
constexpr Expected expectedParameters[]{
    {"Speaker Layouts", 31, false}, {"Scenes", 15, false},     {"Ambience", 0, false}, {"Focus", 0, false},
    {"Head Rotation", 0, false},    {"Master Gain", 0, false}, {"Bypass", 1, true}};

double number(const std::string& text) { return std::strtod(text.c_str(), nullptr); }

class BundleParameters : public ::testing::Test {
protected:
    PluginInstance plugin{loadBundle()};

    const ParameterInfo& info(const char* name) const {
        const ParameterInfo* const found = findParameter(plugin, name);
        if (found == nullptr)
            throw std::runtime_error(std::string("no parameter ") + name);
        return *found;
    }
    std::string now(const char* name) const {
        return plugin.textOf(info(name).id, plugin.normalizedValue(info(name).id));
    }
    /// The value that a host's write of `normalized` ends in.
    double written(const char* name, double normalized) {
        plugin.setParameter(info(name).id, normalized);
        return number(now(name));
    }
};

TEST_F(BundleParameters, AreSixInTheirOrderAndTheFrameworksBypass) {
    ASSERT_EQ(plugin.parameters().size(), std::size(expectedParameters));
    for (std::size_t index = 0; index < std::size(expectedParameters); ++index) {
        const ParameterInfo& parameter = plugin.parameters()[index];
        EXPECT_EQ(parameter.name, expectedParameters[index].name);
        EXPECT_EQ(parameter.stepCount, expectedParameters[index].stepCount) << parameter.name;
        EXPECT_EQ(parameter.automatable, expectedParameters[index].automatable) << parameter.name;
        EXPECT_FALSE(parameter.readOnly) << parameter.name;
        EXPECT_EQ(parameter.bypass, parameter.name == "Bypass");
    }
}

TEST_F(BundleParameters, StartAtTheirDefaults) {
    EXPECT_EQ(now("Speaker Layouts"), "2.0 +/-30°");
    EXPECT_EQ(now("Scenes"), "Mix Room");
    EXPECT_EQ(number(now("Ambience")), 50);
    EXPECT_EQ(number(now("Focus")), 0);
    EXPECT_EQ(number(now("Head Rotation")), 0);
    EXPECT_EQ(number(now("Master Gain")), 0);
    for (const ParameterInfo& parameter : plugin.parameters())
        EXPECT_NEAR(plugin.normalizedValue(parameter.id), parameter.defaultNormalized, 1e-6)
            << parameter.name;
}

TEST_F(BundleParameters, SelectorsOfferTheTablesNamesInOrder) {
    const auto& layouts = orvane::kestrum::render::layoutChoices().all();
    for (std::size_t index = 0; index < layouts.size(); ++index)
        EXPECT_EQ(plugin.textOf(info("Speaker Layouts").id, static_cast<double>(index) / 31),
                  layouts[index].name);
    const auto& scenes = orvane::kestrum::render::sceneChoices().all();
    for (std::size_t index = 0; index < scenes.size(); ++index)
        EXPECT_EQ(plugin.textOf(info("Scenes").id, static_cast<double>(index) / 15), scenes[index].name);
}

TEST_F(BundleParameters, SlidersSpanTheirRanges) {
    const auto ends = [this](const char* name) {
        return std::pair(number(plugin.textOf(info(name).id, 0)), number(plugin.textOf(info(name).id, 1)));
    };
    EXPECT_EQ(ends("Ambience"), std::pair(0.0, 100.0));
    EXPECT_EQ(ends("Focus"), std::pair(-100.0, 100.0));
    EXPECT_EQ(ends("Head Rotation"), std::pair(-180.0, 180.0));
    EXPECT_EQ(ends("Master Gain"), std::pair(-96.0, 24.0));
}

TEST_F(BundleParameters, SlidersSnapToTheirSteps) {
    EXPECT_EQ(written("Ambience", 0.333), 33);
    EXPECT_EQ(written("Focus", 0.333), -33);                 // -100 + 66.6 = -33.4
    EXPECT_EQ(written("Head Rotation", 0.333), -60);         // -180 + 119.88 = -60.12
    EXPECT_NEAR(written("Master Gain", 0.333), -56.0, 1e-4); // -96 + 39.96 = -56.04
    EXPECT_NEAR(written("Master Gain", 0.7905), -1.1, 1e-4); // -96 + 94.86 = -1.14
}

TEST_F(BundleParameters, EveryEntryCanBeChosenAndReadBack) {
    for (const char* const name : {"Speaker Layouts", "Scenes"}) {
        const int steps = info(name).stepCount;
        for (int step = 0; step <= steps; ++step) {
            const double normalized = static_cast<double>(step) / steps;
            plugin.setParameter(info(name).id, normalized);
            plugin.flushParameters();
            EXPECT_EQ(now(name), plugin.textOf(info(name).id, normalized));
        }
    }
}

TEST_F(BundleParameters, ValuesBeyondTheRangeAreLimitedAndNoNumbersAreIgnored) {
    EXPECT_EQ(written("Ambience", 1.7), 100);
    EXPECT_EQ(written("Ambience", -3), 0);
    plugin.setParameter(info("Ambience").id, 0.4);
    plugin.flushParameters();
    const std::string before = now("Ambience");
    const auto stateBefore = plugin.state().component;
    plugin.setParameter(info("Focus").id, std::numeric_limits<double>::quiet_NaN());
    plugin.flushParameters();
    EXPECT_EQ(plugin.state().component, stateBefore);
    EXPECT_EQ(now("Ambience"), before);
}

TEST_F(BundleParameters, NoGestureIsEverSent) {
    for (const ParameterInfo& parameter : plugin.parameters()) {
        plugin.setParameter(parameter.id, 0.5);
        plugin.flushParameters();
    }
    EXPECT_EQ(plugin.gestureCount(), 0u);
}

struct LatencyRow {
    std::uint32_t block;
    std::uint32_t latency;
};
class BundleLatency : public ::testing::TestWithParam<LatencyRow> {};

TEST_P(BundleLatency, IsTheNextPowerOfTwo) {
    PluginInstance plugin(loadBundle());
    plugin.prepare(48000, GetParam().block, ProcessMode::realtime);
    EXPECT_EQ(plugin.latency(), GetParam().latency);
    EXPECT_EQ(plugin.tailLength(), 0u); // although a room has one
}
INSTANTIATE_TEST_SUITE_P(OfBlocks, BundleLatency,
                         ::testing::Values(LatencyRow{1, 1}, LatencyRow{2, 2}, LatencyRow{63, 64},
                                           LatencyRow{64, 64}, LatencyRow{512, 512}, LatencyRow{513, 1024},
                                           LatencyRow{4096, 4096}, LatencyRow{5000, 8192}));

} // namespace

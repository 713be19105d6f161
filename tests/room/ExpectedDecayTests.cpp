// SPDX-License-Identifier: GPL-3.0-or-later
#include "parameters/ParameterSet.h"
#include "parameters/core/ParameterSet.h"
#include "parameters/core/Scene.h"
#include "room/ExpectedDecay.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <optional>

namespace {

using namespace orvane;
using kestrum::core::Scene;

struct ExpectedDecay : ::testing::Test {
    std::optional<float> of(std::uint32_t room, float present) {
        parameters.setRoomType(VirtualAcoustics::Type{room}, false);
        parameters.setReverbDecayPercent(present, false);
        return kestrum::core::expectedDecay(*parameters.createReloadParameterSet(), parameters);
    }
    kestrum::core::ParameterSet parameters{std::make_unique<ParameterSet>()};
};

TEST_F(ExpectedDecay, IsThatOfTheRoomsSceneWhateverThePresentOneIs) {
    parameters.setReverbOn(true, false);
    for (const Scene::Preset& preset : Scene::presets())
        if (preset.reverbOn && preset.name != "Home Theater") {
            EXPECT_EQ(of(static_cast<std::uint32_t>(preset.roomType), 77.0f), preset.reverbDecayPercent)
                << preset.name;
        }
}

TEST_F(ExpectedDecay, OfSeveralScenesIsThePresentOneIfItIsAmongThem) {
    parameters.setReverbOn(true, false);
    EXPECT_EQ(of(27, 52.0f), 52.0f) << "Home Theater";
    EXPECT_EQ(of(27, 65.0f), 65.0f) << "Cinema";
    EXPECT_EQ(of(27, 90.0f), 65.0f) << "the first one";
}

TEST_F(ExpectedDecay, OfARoomWithoutASceneIsThePresentOne) {
    parameters.setReverbOn(true, false);
    EXPECT_EQ(of(28, 83.0f), 83.0f);
    EXPECT_EQ(of(48, 83.0f), 83.0f);
}

TEST_F(ExpectedDecay, IsNoneWithoutAReverb) {
    parameters.setReverbOn(true, false);
    EXPECT_EQ(of(0, 83.0f), std::nullopt);
    EXPECT_EQ(of(1, 83.0f), std::nullopt);
    parameters.setReverbOn(false, false);
    EXPECT_EQ(of(15, 83.0f), std::nullopt);
}

} // namespace

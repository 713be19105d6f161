// SPDX-License-Identifier: GPL-3.0-or-later
// The rooms as their user meets them: the built program, the built bundle, the installed data folder. An impulse goes in,
// what room acoustics says of the file that comes out is compared with what the Scene is meant to be.
#include "RenderedFile.h"

#include "data/measures/RoomMeasures.h"
#include "data/rooms/RoomTargets.h"
#include "parameters/core/Scene.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <string>
#include <string_view>

namespace {

namespace tools = orvane::kestrum::tools;
using orvane::kestrum::core::Scene;

constexpr int sampleRate = 48000;
constexpr std::size_t impulseAt = 24000; // by then the engine has faded in

/// The response of the left loudspeaker of "2.0 +/-30°", as the program writes it; sample 0 is the impulse.
tools::EarResponses heardImpulse(std::string_view scene) {
    std::string name = "impulse_" + std::string(scene);
    std::replace(name.begin(), name.end(), ' ', '_');
    test::Sound input{sampleRate, test::Channels(2, test::Signal(impulseAt + 4 * sampleRate))};
    input.channels[0][impulseAt] = 1.0;
    test::writeSound(test::scratch(name + ".wav"), input);
    const std::string heard = test::scratch(name + "_heard.wav").string();
    EXPECT_EQ(test::kestrum("render \"" + test::scratch(name + ".wav").string() + "\" \"" + heard +
                            "\" --layout \"2.0 +/-30°\" --scene \"" + std::string(scene) + "\""),
              0);
    const test::Sound output = test::readSound(heard);
    tools::EarResponses response;
    for (std::size_t ear = 0; ear < response.size(); ++ear)
        response[ear].assign(output.channels[ear].begin() + impulseAt, output.channels[ear].end());
    return response;
}

double energyFrom(const tools::EarResponses& response, double seconds) {
    double sum = 0;
    for (const auto& ear : response)
        for (std::size_t i = static_cast<std::size_t>(seconds * sampleRate); i < ear.size(); ++i)
            sum += ear[i] * ear[i];
    return sum;
}

class EveryScene : public ::testing::TestWithParam<std::size_t> {};

TEST_P(EveryScene, SoundsAsItsRoomIsMeantTo) {
    const std::string_view scene = Scene::presets()[GetParam()].name;
    const tools::EarResponses response = heardImpulse(scene);
    ASSERT_GT(energyFrom(response, 0), 0.0);
    const auto target = tools::targetOf(scene);
    if (!target) {
        // no reverb: 4096 samples at most
        EXPECT_LT(energyFrom(response, 0.1), 1e-9 * energyFrom(response, 0));
        return;
    }
    const double decay = tools::midDecaySeconds(tools::octaveDecayTimes(response, sampleRate));
    const double clarity = tools::clarityDb(response, sampleRate, 0.05);
    std::printf("%-16.*s T60 %.2f s, C50 %.1f dB\n", static_cast<int>(scene.size()), scene.data(), decay,
                clarity);
    EXPECT_NEAR(decay, target->decaySeconds, tools::decayTolerance * target->decaySeconds);
    EXPECT_NEAR(clarity, target->clarity50Db, tools::clarityToleranceDb);
}
INSTANTIATE_TEST_SUITE_P(InMenuOrder, EveryScene, ::testing::Range<std::size_t>(0, 16));

} // namespace

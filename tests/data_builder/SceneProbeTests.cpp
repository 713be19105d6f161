// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/DataError.h"
#include "data/measures/SceneProbe.h"

#include "SyntheticFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace {

using namespace orvane::kestrum::tools;
using ::testing::AllOf;
using ::testing::HasSubstr;

double energyOf(const EarResponses& response) {
    double energy = 0;
    for (const Samples& ear : response)
        for (const double sample : ear)
            energy += sample * sample;
    return energy;
}

double largestDifference(const EarResponses& one, const EarResponses& other) {
    double largest = 0;
    for (std::size_t ear = 0; ear < one.size(); ++ear)
        for (std::size_t index = 0; index < one[ear].size(); ++index)
            largest = std::max(largest, std::abs(one[ear][index] - other[ear][index]));
    return largest;
}

SceneProbe probe(std::uint64_t blockSize = 512, double seconds = 1) {
    return SceneProbe(test::syntheticFolder(), {48000, blockSize, seconds});
}

TEST(SceneProbes, SplitASceneIntoPartsThatAddUpToIt) {
    const SceneResponses parts = probe().responses("Mix Room");
    EarResponses sum = parts.direct;
    for (std::size_t ear = 0; ear < sum.size(); ++ear)
        for (std::size_t index = 0; index < sum[ear].size(); ++index)
            sum[ear][index] += parts.reflections[ear][index] + parts.reverb[ear][index];
    EXPECT_LT(largestDifference(sum, parts.full), 1e-12);
    for (std::size_t ear = 0; ear < sum.size(); ++ear)
        for (std::size_t index = 0; index < sum[ear].size(); ++index)
            sum[ear][index] -= parts.direct[ear][index];
    EXPECT_LT(largestDifference(sum, parts.rest()), 1e-12);
    EXPECT_GT(energyOf(parts.direct), 0);
    EXPECT_GT(energyOf(parts.reflections), 0);
    EXPECT_GT(energyOf(parts.reverb), 0);
}

/// The Scene table: the first has the direct sound alone, the second no reverb.
TEST(SceneProbes, FindNoReverbInTheAnalyticScenes) {
    const SceneResponses dry = probe().responses("Analytic Dry");
    EXPECT_EQ(energyOf(dry.reflections), 0);
    EXPECT_EQ(energyOf(dry.reverb), 0);
    const SceneResponses position = probe().responses("Analytic Position");
    EXPECT_GT(energyOf(position.reflections), 0);
    EXPECT_EQ(energyOf(position.reverb), 0);
}

/// The synthetic head hears a source 35 degrees to the left with its left ear after 20 - 15 sin(35) = 11.4 samples.
TEST(SceneProbes, TakeTheEnginesLatencyOffWhateverTheBlock) {
    const EarResponses reference = probe(512).respond("Analytic Dry", {false, false});
    const auto* const peak =
        &*std::ranges::max_element(reference[leftEar], {}, [](double sample) { return std::abs(sample); });
    EXPECT_NEAR(static_cast<double>(peak - reference[leftEar].data()), 11, 1);
    for (const std::uint64_t block : {128U, 500U, 2048U})
        EXPECT_LT(largestDifference(probe(block).respond("Analytic Dry", {false, false}), reference),
                  1e-6 * std::abs(*peak))
            << block;
}

/// "Living Room" and "Kitchen" leave the stored decay as it is; their filters touch neither octave.
TEST(SceneProbes, HearTheDecayOfTheFolderWhereTheSceneLeavesItAlone) {
    for (const std::string_view scene : {"Living Room", "Kitchen"}) {
        const SceneResponses parts = probe().responses(scene);
        EXPECT_NEAR(midDecaySeconds(octaveDecayTimes(parts.reverb, 48000)), test::syntheticDecaySeconds,
                    0.06 * test::syntheticDecaySeconds)
            << scene;
    }
}

/// A second later nothing has changed: fade-in and gains had settled before the impulse.
TEST(SceneProbes, RenderEveryMomentOfASignalAlike) {
    const SceneProbe scenes = probe();
    std::vector<Samples> late(2, Samples(72000));
    late[0][24064] = 1; // 47 blocks
    const EarResponses first = scenes.respond("Mix Room");
    const EarResponses later = scenes.render(late, "Mix Room", SceneProbe::defaultLayout);
    double largest = 0;
    double peak = 0;
    for (std::size_t ear = 0; ear < first.size(); ++ear)
        for (std::size_t index = 0; index < first[ear].size() && index + 24064 < later[ear].size(); ++index) {
            largest = std::max(largest, std::abs(first[ear][index] - later[ear][index + 24064]));
            peak = std::max(peak, std::abs(first[ear][index]));
        }
    EXPECT_LT(largest, 2e-6 * peak);
}

TEST(SceneProbes, HearTheOtherLoudspeakerFromTheOtherSide) {
    const SceneProbe scenes = probe();
    const EarResponses left = scenes.respond("Analytic Dry");
    const EarResponses right = scenes.respond("Analytic Dry", {}, SceneProbe::defaultLayout, 1);
    EXPECT_GT(energyOf({left[leftEar], {}}), energyOf({left[rightEar], {}}));
    EXPECT_LT(energyOf({right[leftEar], {}}), energyOf({right[rightEar], {}}));
}

/// @return the sentence that an action is refused with.
template <typename Action>
std::string refusal(Action action) {
    try {
        action();
    } catch (const DataError& error) {
        return error.what();
    }
    return "nothing refused";
}

TEST(SceneProbes, RefuseWhatTheyCannotRenderWithARemedy) {
    const test::TemporaryFolder empty;
    EXPECT_THAT(
        refusal([&] { SceneProbe unused(empty.path()); }),
        AllOf(HasSubstr("responses of the head"), HasSubstr(empty.path()), HasSubstr("kestrum doctor")));
    const test::TemporaryFolder headOnly;
    test::writeSyntheticHead(headOnly.path());
    EXPECT_THAT(refusal([&] { SceneProbe(headOnly.path()).respond("Mix Room"); }),
                AllOf(HasSubstr("responses of the rooms"), HasSubstr(headOnly.path())));
    EXPECT_THAT(refusal([] { probe().respond("Cellar"); }), HasSubstr("no Scene \"Cellar\""));
    EXPECT_THAT(refusal([] { probe().respond("Van", {}, "99.9"); }), HasSubstr("no layout \"99.9\""));
    EXPECT_THAT(refusal([] { probe().respond("Van", {}, "LRCS", 4); }), HasSubstr("channels are 0 to 3"));
    EXPECT_THAT(refusal([] { probe().render({Samples(10)}, "Van", "LRCS"); }), HasSubstr("has 4 channels"));
}

} // namespace

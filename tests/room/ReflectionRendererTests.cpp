// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/SampleBuffer.h"
#include "binaural/BinauralComponentFactory.h"
#include "engine/assembly/ComponentFactory.h"
#include "filters/BiquadFilterFactory.h"
#include "reference/Responses.h"
#include "room/RealtimeReflectionMechanic.h"
#include "room/ReflectionMechanic.h"
#include "room/ReflectionPresetFactory.h"
#include "room/ReflectionRenderer.h"
#include "room/SourceView.h"
#include "room/SpeakerReflectionRenderer.h"
#include "room/StandInRoom.h"
#include "support/NoiseHead.h"
#include "support/RealtimeScope.h"
#include "support/Signals.h"
#include "support/SphericalHead.h"
#include "support/StandInHrir.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace {

using namespace orvane;
using test::Signal;
using test::SourceView;
using test::reference::Ears;

constexpr float rate = 44100.0f;
constexpr std::uint64_t responseLength = 4096;
constexpr std::uint64_t headLength = 128;

/// Says what the test wants said, whatever the source does.
class FixedReflections final : public IReflectionMechanic {
public:
    explicit FixedReflections(const std::vector<Reflection>& said) : list(said.size()) {
        for (const Reflection& reflection : said)
            list.push(reflection);
    }
    ReflectionList reflections() const override { return list; }
    void update(ReflectionList& /*reflections*/, const ISpatialParameterSetView& /*view*/,
                std::int32_t limit) override {
        maxDelay = limit;
    }
    std::uint64_t length() const noexcept override { return 0; }
    std::uint64_t scaledLength() const noexcept override { return 0; }

    std::int32_t maxDelay = -1; ///< What the renderer asked for last.

private:
    ReflectionList list;
};

Reflection reflection(std::int32_t azimuth, std::int32_t delay, std::uint64_t filter = 0, float gain = 0.5f) {
    return {azimuth, 10, delay, filter, gain, true};
}

/// The two renderers under one roof: the general one and that of the product's loudspeakers.
enum class Kind { general, speaker };

std::unique_ptr<IInPlaceProcessor> rendererOf(Kind kind, SourceView& view, IHrir& head,
                                              std::unique_ptr<IReflectionMechanic> mechanic,
                                              std::uint64_t length = responseLength,
                                              float sampleRate = rate) {
    if (kind == Kind::general) {
        BiquadFilterFactory filters;
        return std::make_unique<ReflectionRenderer>(sampleRate, length, false, &view, &head,
                                                    std::move(mechanic), &filters);
    }
    return std::make_unique<kestrum::core::ReflectionRenderer>(
        sampleRate, length, false, &view, &head, std::move(mechanic), BinauralComponentFactory(),
        kestrum::core::ComponentFactory());
}

/// What a renderer adds to an empty response.
SampleBuffer drawn(Kind kind, SourceView& view, IHrir& head, const std::vector<Reflection>& said,
                   std::uint64_t length = responseLength, float sampleRate = rate) {
    SampleBuffer response(2, length);
    rendererOf(kind, view, head, std::make_unique<FixedReflections>(said), length, sampleRate)
        ->process(response);
    return response;
}

Signal ear(const SampleBuffer& response, std::uint64_t channel) {
    return {response.channel(channel).begin(), response.channel(channel).end()};
}

/// One reflection in double precision, drawn into an empty response.
Ears expectedOf(Kind kind, const SourceView& view, const IHrir& head, const Reflection& said,
                std::uint64_t length = responseLength, double sampleRate = rate) {
    namespace reference = test::reference;
    Ears heard = reference::headResponse(head, said.azimuth, said.elevation);
    if (kind == Kind::speaker) {
        heard = reference::clarified(heard, view.clarity);
        for (std::vector<double>& samples : heard)
            samples.resize(head.length());
    }
    reference::scale(heard, said.gain);
    const double halves = said.filter == 1 ? 2.0 : 1.0;
    reference::filter(heard, reference::lowPass(view.lowPass / halves, 0.707, sampleRate));
    if (kind == Kind::speaker && view.highPass > 20.0f)
        reference::filter(heard, reference::highPass(view.highPass, 0.707, sampleRate));
    reference::fadeOut(heard);
    Ears response{std::vector<double>(length), std::vector<double>(length)};
    reference::addDelayed(response, heard, static_cast<std::size_t>(said.delay));
    return response;
}

class BothRenderers : public ::testing::TestWithParam<Kind> {
protected:
    SourceView view;
    test::NoiseHead head{headLength};
};

/// Reference: the stored response, shaped and filtered by definition in double precision, at every rate's
/// lengths and for both filters.
TEST_P(BothRenderers, DrawAReflectionAsItsReferenceDoes) {
    struct Rate {
        float sampleRate;
        std::uint64_t head;
    };
    for (const Rate& at : {Rate{24000, 70}, Rate{44100, 128}, Rate{48000, 139}, Rate{96000, 278}}) {
        for (const std::uint64_t filter : {0u, 1u}) {
            SCOPED_TRACE(testing::Message() << at.sampleRate << " Hz, filter " << filter);
            test::NoiseHead atRate(at.head);
            view.lowPass = 5167;
            view.highPass = 310;
            view.clarity = 0.65f;
            const Reflection said = reflection(-70, 1278, filter);
            const SampleBuffer response =
                drawn(GetParam(), view, atRate, {said}, responseLength, at.sampleRate);
            const Ears expected = expectedOf(GetParam(), view, atRate, said, responseLength,
                                             static_cast<double>(at.sampleRate));
            // Rounding of coefficients and of 4 transforms, of samples up to 0.3.
            EXPECT_THAT(ear(response, 0), test::CloseTo(expected[0], test::Tolerance{1e-6f}));
            EXPECT_THAT(ear(response, 1), test::CloseTo(expected[1], test::Tolerance{1e-6f}));
            EXPECT_GT(test::peak(ear(response, 0)), 0.02f);
        }
    }
}

TEST_P(BothRenderers, Filter1SitsAtHalfTheFrequency) {
    view.lowPass = 12000;
    const SampleBuffer halved = drawn(GetParam(), view, head, {reflection(10, 300, 1)});
    view.lowPass = 6000;
    const SampleBuffer whole = drawn(GetParam(), view, head, {reflection(10, 300, 0)});
    EXPECT_EQ(ear(halved, 0), ear(whole, 0));
    EXPECT_EQ(ear(halved, 1), ear(whole, 1));
    view.lowPass = 12000;
    EXPECT_NE(ear(drawn(GetParam(), view, head, {reflection(10, 300, 0)}), 0), ear(whole, 0));
}

TEST_P(BothRenderers, AnInactiveReflectionAddsNothing) {
    Reflection said = reflection(10, 300);
    said.active = false;
    const SampleBuffer response = drawn(GetParam(), view, head, {said});
    EXPECT_THAT(ear(response, 0), test::Silence());
    EXPECT_THAT(ear(response, 1), test::Silence());
}

TEST_P(BothRenderers, AddToWhatTheResponseHoldsAlready) {
    const Signal direct = test::noise(responseLength, test::Seed{3});
    SampleBuffer response(2, responseLength);
    std::ranges::copy(direct, response.channelPointers[0]);
    const Reflection said = reflection(30, 0);
    rendererOf(GetParam(), view, head, std::make_unique<FixedReflections>(std::vector{said}))
        ->process(response);
    const SampleBuffer alone = drawn(GetParam(), view, head, {said});
    EXPECT_NE(alone.channelPointers[0][0], 0.0f) << "a reflection without delay begins with the direct sound";
    for (std::uint64_t i = 0; i < responseLength; ++i)
        ASSERT_EQ(response.channelPointers[0][i], direct[i] + alone.channelPointers[0][i]) << i;
    EXPECT_EQ(ear(response, 1), ear(alone, 1));
}

TEST_P(BothRenderers, TheLastSampleOfAReflectionIsExactlyZero) {
    view.lowPass = 3000;
    view.clarity = 0.65f;
    constexpr std::int32_t delay = 1000;
    const SampleBuffer response = drawn(GetParam(), view, head, {reflection(-60, delay)});
    for (std::uint64_t channel = 0; channel < 2; ++channel) {
        const Signal heard = ear(response, channel);
        EXPECT_NE(heard[delay + headLength - 2], 0.0f);
        EXPECT_EQ(heard[delay + headLength - 1], 0.0f);
        EXPECT_THAT(Signal(heard.begin(), heard.begin() + delay), test::Silence());
        EXPECT_THAT(Signal(heard.begin() + delay + headLength, heard.end()), test::Silence());
    }
}

/// Property: each pass filters a fresh response, so the order of reflections and what was drawn before leave
/// no trace.
TEST_P(BothRenderers, AReflectionDoesNotHearItsNeighbours) {
    view.lowPass = 500;
    view.highPass = 300;
    const std::vector<Reflection> said{reflection(10, 100), reflection(-170, 900), reflection(70, 1700, 1)};
    const SampleBuffer together = drawn(GetParam(), view, head, said);
    SampleBuffer sum(2, responseLength);
    for (const Reflection& one : said)
        sum.addFrom(drawn(GetParam(), view, head, {one}));
    EXPECT_EQ(ear(together, 0), ear(sum, 0));
    EXPECT_EQ(ear(together, 1), ear(sum, 1));

    const auto renderer = rendererOf(GetParam(), view, head, std::make_unique<FixedReflections>(said));
    SampleBuffer first(2, responseLength);
    renderer->process(first);
    SampleBuffer second(2, responseLength);
    renderer->process(second);
    EXPECT_EQ(ear(first, 0), ear(second, 0));
}

TEST_P(BothRenderers, AskTheStoreForTheReflectionsOwnDirectionInItsFrame) {
    struct Recorder final : test::StandInHrir {
        std::uint64_t length() const noexcept override { return headLength; }
        std::uint64_t getResponse(SampleBuffer&, std::int32_t a, std::int32_t e,
                                  bool s) const noexcept override {
            asked = {a, e, s};
            return generation();
        }
        mutable std::tuple<int, int, bool> asked;
    } recorder;
    drawn(GetParam(), view, recorder, {{-77, 33, 5, 0, 1.0f, true}});
    EXPECT_EQ(recorder.asked, std::tuple(-77, 33, false));
}

TEST_P(BothRenderers, AReflectionAtTheLimitIsWholeAndOneBeyondTheEndIsLost) {
    constexpr std::int32_t last = responseLength - headLength;
    const Signal atTheEnd = ear(drawn(GetParam(), view, head, {reflection(0, last)}), 0);
    const Signal atTheStart = ear(drawn(GetParam(), view, head, {reflection(0, 0)}), 0);
    EXPECT_TRUE(std::equal(atTheEnd.end() - headLength, atTheEnd.end(), atTheStart.begin()));
    for (const std::int32_t beyond : {100000, -32448}) {
        const SampleBuffer lost = drawn(GetParam(), view, head, {reflection(0, beyond)});
        EXPECT_THAT(ear(lost, 0), test::Silence()) << beyond;
    }
}

/// Property: a head and a room without a hand exchange the ears when the source changes sides.
TEST_P(BothRenderers, AMirroredSourceInASymmetricRoomExchangesTheEars) {
    test::SphericalHead symmetric;
    ReflectionPreset preset = test::plainRoom(6);
    preset.azimuths = {0, 0, 0, 180, 180, 0};
    preset.delays = {60, 170, 440, 571, 390, 455};
    for (const bool dynamic : {false, true}) {
        const auto drawnFrom = [&](float azimuth) {
            view.azimuth = azimuth;
            view.left = view.right = 7.3f;
            std::unique_ptr<IReflectionMechanic> mechanic;
            if (dynamic)
                mechanic = std::make_unique<RealtimeReflectionMechanic>(test::StandInRoom(preset), rate, 33);
            else
                mechanic = std::make_unique<ReflectionMechanic>(test::StandInRoom(preset), rate, 33);
            SampleBuffer response(2, responseLength);
            rendererOf(GetParam(), view, symmetric, std::move(mechanic))->process(response);
            return response;
        };
        for (const float azimuth : {30.0f, 75.0f, 110.0f}) {
            SCOPED_TRACE(testing::Message() << azimuth << (dynamic ? ", walls" : ", preset"));
            const SampleBuffer here = drawnFrom(azimuth);
            const SampleBuffer there = drawnFrom(-azimuth);
            // The head itself is symmetric to within its rounding of levels.
            EXPECT_THAT(ear(here, 0), test::CloseTo(ear(there, 1), test::Tolerance{1e-6f}));
            EXPECT_THAT(ear(here, 1), test::CloseTo(ear(there, 0), test::Tolerance{1e-6f}));
            EXPECT_NE(ear(here, 0), ear(here, 1));
        }
    }
}

TEST_P(BothRenderers, NeitherAllocateNorLock) {
    const auto renderer = rendererOf(
        GetParam(), view, head, std::make_unique<ReflectionMechanic>(ReflectionPresetFactory(), rate, 36));
    SampleBuffer response(2, responseLength);
    const test::RealtimeScope scope;
    for (int block = 0; block < 3; ++block) {
        view.azimuth = static_cast<float>(30 * block);
        view.lowPass = 8000.0f - 1000.0f * static_cast<float>(block);
        view.clarity = 0.5f;
        renderer->process(response);
    }
    EXPECT_EQ(scope.violations(), test::RealtimeViolations{});
}
INSTANTIATE_TEST_SUITE_P(OfTheSystem, BothRenderers, ::testing::Values(Kind::general, Kind::speaker),
                         [](const auto& kind) {
                             return kind.param == Kind::general ? "General" : "Speaker";
                         });

/// Ten impulses far apart: how many are heard?
std::vector<Reflection> tenReflections() {
    std::vector<Reflection> said;
    said.reserve(10);
    for (std::int32_t i = 0; i < 10; ++i)
        said.push_back(reflection(5 * i, 300 * (i + 1), i < 6 ? 0 : 1));
    return said;
}

std::vector<std::size_t> heardOf(const SampleBuffer& response) {
    std::vector<std::size_t> heard;
    for (std::size_t i = 0; i < 10; ++i) {
        const float* const begin = response.channelPointers[0] + 300 * (i + 1);
        if (test::peak({begin, begin + headLength}) > 0.0f)
            heard.push_back(i);
    }
    return heard;
}

TEST(ReflectionRenderer, DrawsAllTenReflectionsOfARoom) {
    SourceView view;
    test::NoiseHead head(headLength);
    EXPECT_THAT(heardOf(drawn(Kind::general, view, head, tenReflections())),
                ::testing::ElementsAre(0, 1, 2, 3, 4, 5, 6, 7, 8, 9));
}

TEST(SpeakerReflectionRenderer, DrawsTheFirstSixReflectionsOfARoomOnly) {
    SourceView view;
    test::NoiseHead head(headLength);
    EXPECT_THAT(heardOf(drawn(Kind::speaker, view, head, tenReflections())),
                ::testing::ElementsAre(0, 1, 2, 3, 4, 5));
    std::vector<Reflection> firstOff = tenReflections();
    firstOff[0].active = false;
    EXPECT_THAT(heardOf(drawn(Kind::speaker, view, head, firstOff)), ::testing::ElementsAre(1, 2, 3, 4, 5))
        << "no later one takes the place of one that is not heard";
}

std::int32_t askedLimit(Kind kind, std::uint64_t length, std::uint64_t headSamples) {
    SourceView view;
    test::NoiseHead head(headSamples);
    auto mechanic = std::make_unique<FixedReflections>(std::vector<Reflection>{});
    FixedReflections* const asked = mechanic.get();
    const auto renderer = rendererOf(kind, view, head, std::move(mechanic), length);
    SampleBuffer response(2, length);
    renderer->process(response);
    return asked->maxDelay;
}

TEST(ReflectionRenderer, ReachesToTheEndOfEveryResponse) {
    EXPECT_EQ(askedLimit(Kind::general, 2048, 128), 1920);
    EXPECT_EQ(askedLimit(Kind::general, 35664, 556), 35108);
}

TEST(SpeakerReflectionRenderer, Reaches4096SamplesAtEveryRate) {
    EXPECT_EQ(askedLimit(Kind::speaker, 2048, 128), 1920);
    EXPECT_EQ(askedLimit(Kind::speaker, 8192, 128), 3968);
    EXPECT_EQ(askedLimit(Kind::speaker, 35664, 556), 3540);
}

TEST(SpeakerReflectionRenderer, AHighPassAt20HertzOrBelowIsOutOfTheWay) {
    SourceView view;
    test::NoiseHead head(headLength);
    const std::vector<Reflection> said{reflection(20, 500)};
    view.highPass = 20;
    const Signal without = ear(drawn(Kind::speaker, view, head, said), 0);
    view.highPass = 0;
    EXPECT_EQ(ear(drawn(Kind::speaker, view, head, said), 0), without);
    view.highPass = 20.5f;
    EXPECT_NE(ear(drawn(Kind::speaker, view, head, said), 0), without);
}

/// The clarity stage comes before the gain: flattening a faint reflection does not raise it.
TEST(SpeakerReflectionRenderer, AGainScalesBehindTheClarityStage) {
    SourceView view;
    view.clarity = 1;
    test::NoiseHead head(headLength);
    const Signal loud = ear(drawn(Kind::speaker, view, head, {reflection(20, 500, 0, 1.0f)}), 0);
    const Signal faint = ear(drawn(Kind::speaker, view, head, {reflection(20, 500, 0, 0.0078125f)}), 0);
    for (std::size_t i = 0; i < loud.size(); ++i)
        ASSERT_EQ(faint[i], loud[i] * 0.0078125f) << i; // a power of two: exact
}

/// Property over all rooms and rates: what is drawn ends within the part of the response that is reached.
TEST(SpeakerReflectionRenderer, NoRoomsReflectionLeavesTheFirst4096Samples) {
    SourceView view;
    for (std::int32_t room = 1; room <= 47; ++room) {
        test::NoiseHead head(139);
        SampleBuffer response(2, 8916);
        rendererOf(Kind::speaker, view, head,
                   std::make_unique<ReflectionMechanic>(ReflectionPresetFactory(), 48000.0f, room), 8916,
                   48000)
            ->process(response);
        const Signal left = ear(response, 0);
        EXPECT_GT(test::peak({left.begin(), left.begin() + 4096}), 0.0f) << room;
        EXPECT_THAT(Signal(left.begin() + 4096, left.end()), test::Silence()) << room;
    }
}

} // namespace

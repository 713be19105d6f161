// SPDX-License-Identifier: GPL-3.0-or-later
// The six parameters as a host meets them. Expected values are the product's table of parameters.
#include "TestProcessor.h"

#include "parameters/core/Scene.h"
#include "parameters/core/SelectorId.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <limits>
#include <random>
#include <thread>

namespace {

using orvane::kestrum::core::selectorId;
using test::Processor;

std::unique_ptr<Processor> anyProcessor() {
    return test::makeProcessor([] { return std::string("/nonexistent"); });
}

std::vector<std::string> layoutNames(Processor& processor) {
    std::vector<std::string> names;
    processor.getSupportedLayouts()->forEach([&](const auto& layout) { names.push_back(layout.name); });
    return names;
}

TEST(HostParameters, AreSixInTheirOrderAndNoneIsAutomatable) {
    const auto processor = anyProcessor();
    std::vector<std::string> names;
    for (auto* const parameter : processor->getParameters()) {
        names.push_back(parameter->getName(100).toStdString());
        EXPECT_FALSE(parameter->isAutomatable());
        EXPECT_FALSE(parameter->isMetaParameter());
        EXPECT_TRUE(parameter->getLabel().isEmpty());
    }
    EXPECT_THAT(names, ::testing::ElementsAre("Speaker Layouts", "Scenes", "Ambience", "Focus",
                                              "Head Rotation", "Master Gain"));
}

struct SliderFacts {
    const char* name;
    float minimum;
    float maximum;
    float step;
    float start;
    const char* text;
};

class HostSlider : public ::testing::TestWithParam<SliderFacts> {};

TEST_P(HostSlider, HasItsRangeStepAndDefault) {
    const auto processor = anyProcessor();
    const auto& parameter = test::parameter(*processor, GetParam().name);
    const auto& range = parameter.getNormalisableRange();
    EXPECT_EQ(range.start, GetParam().minimum);
    EXPECT_EQ(range.end, GetParam().maximum);
    EXPECT_EQ(range.interval, GetParam().step);
    EXPECT_EQ(range.skew, 1.0f);
    EXPECT_FALSE(range.symmetricSkew);
    EXPECT_FALSE(parameter.isDiscrete());
    EXPECT_EQ(test::shown(*processor, GetParam().name), GetParam().start);
    EXPECT_EQ(parameter.getDefaultValue(), range.convertTo0to1(GetParam().start));
    EXPECT_EQ(parameter.getCurrentValueAsText(), juce::String(GetParam().text));
}
INSTANTIATE_TEST_SUITE_P(OfTheTable, HostSlider,
                         ::testing::Values(SliderFacts{"Ambience", 0, 100, 1, 50, "50"},
                                           SliderFacts{"Focus", -100, 100, 1, 0, "0"},
                                           SliderFacts{"Head Rotation", -180, 180, 1, 0, "0"},
                                           SliderFacts{"Master Gain", -96, 24, 0.1f, 0, "0.0"}));

TEST(HostSelectors, OfferTheLayoutsByTheirRawNamesInTableOrder) {
    const auto processor = anyProcessor();
    const auto& parameter = test::parameter(*processor, "Speaker Layouts");
    EXPECT_TRUE(parameter.isDiscrete());
    EXPECT_EQ(parameter.getNumSteps(), 32);
    const auto names = layoutNames(*processor);
    for (std::size_t index = 0; index < names.size(); ++index)
        EXPECT_EQ(parameter.getText(static_cast<float>(index) / 31.0f, 0),
                  juce::String::fromUTF8(names[index].c_str()));
    EXPECT_EQ(parameter.getCurrentValueAsText(), juce::String::fromUTF8("2.0 +/-30\xC2\xB0"));
    EXPECT_EQ(parameter.getDefaultValue(), 2.0f / 31.0f);
}

TEST(HostSelectors, OfferTheScenesByTheirRawNamesInTableOrder) {
    const auto processor = anyProcessor();
    const auto& parameter = test::parameter(*processor, "Scenes");
    EXPECT_TRUE(parameter.isDiscrete());
    EXPECT_EQ(parameter.getNumSteps(), 16);
    const auto presets = orvane::kestrum::core::Scene::presets();
    for (std::size_t index = 0; index < presets.size(); ++index)
        EXPECT_EQ(parameter.getText(static_cast<float>(index) / 15.0f, 0).toStdString(), presets[index].name);
    EXPECT_EQ(parameter.getCurrentValueAsText(), juce::String("Mix Room"));
}

/// A host writes k / steps; neither its division nor ours may push an entry below itself.
TEST(HostSelectors, EveryEntryIsReachedByItsOwnNormalisedValue) {
    const auto processor = anyProcessor();
    const auto names = layoutNames(*processor);
    for (std::size_t index = 0; index < names.size(); ++index) {
        const auto exact = static_cast<double>(index) / 31.0;
        test::parameter(*processor, "Speaker Layouts").setValueNotifyingHost(static_cast<float>(exact));
        EXPECT_EQ(processor->getProcessorState()->getSpeakerSetup()->getValue(), selectorId(names[index]));
    }
    const auto presets = orvane::kestrum::core::Scene::presets();
    for (std::size_t index = 0; index < presets.size(); ++index) {
        const auto exact = static_cast<double>(index) / 15.0;
        test::parameter(*processor, "Scenes").setValueNotifyingHost(static_cast<float>(exact));
        EXPECT_EQ(processor->getProcessorState()->getScene()->getValue(), selectorId(presets[index].name));
    }
}

TEST(HostParameters, AHostWriteReachesTheUserValue) {
    const auto processor = anyProcessor();
    test::choose(*processor, "Speaker Layouts", "5.1 ITU");
    test::choose(*processor, "Scenes", "Kitchen");
    test::setParameter(*processor, "Ambience", 73.0f);
    test::setParameter(*processor, "Focus", -12.0f);
    test::setParameter(*processor, "Head Rotation", -170.0f);
    test::setParameter(*processor, "Master Gain", -3.5f);
    auto& state = *processor->getProcessorState();
    EXPECT_EQ(state.getSpeakerSetup()->getValue(), 0xD30A58A0u);
    EXPECT_EQ(state.getScene()->getValue(), 0xAE828ED9u);
    EXPECT_EQ(state.getAmbience()->getValue(), 73.0f);
    EXPECT_EQ(state.getFocus()->getValue(), -12.0f);
    EXPECT_EQ(state.getHeadRotation()->getValue(), -170.0f);
    EXPECT_NEAR(state.getMasterGain()->getValue(), -3.5f, 1e-5f); // snapped to a grid that starts at -96
}

TEST(HostParameters, AUserValueReachesTheHost) {
    const auto processor = anyProcessor();
    auto& state = *processor->getProcessorState();
    state.getScene()->setValue(selectorId("Car"));
    state.getMasterGain()->setValue(6.0f);
    EXPECT_EQ(test::parameter(*processor, "Scenes").getCurrentValueAsText(), juce::String("Car"));
    EXPECT_EQ(test::parameter(*processor, "Master Gain").getCurrentValueAsText(), juce::String("6.0"));
}

TEST(HostParameters, NothingThatIsNoNumberGetsIn) {
    const auto processor = anyProcessor();
    for (auto* const parameter : processor->getParameters()) {
        const float before = parameter->getValue();
        for (const float nonsense :
             {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity(),
              -std::numeric_limits<float>::infinity()}) {
            parameter->setValueNotifyingHost(nonsense);
            EXPECT_EQ(parameter->getValue(), before) << parameter->getName(100);
        }
    }
}

/// Property: whatever is written while blocks run, the sound stays finite, and in the end value and parameter
/// agree.
TEST(HostParameters, AStormOfWritesLeavesValuesAndParametersAgreedAndTheSoundFinite) {
    const auto processor = test::makeDryProcessor();
    ASSERT_TRUE(test::setInputs(*processor, 16));
    processor->prepareToPlay(48000.0, 64);
    ASSERT_FALSE(processor->hasError());
    std::atomic<bool> storming{true};
    std::thread host([&] {
        std::mt19937 generator(5);
        const auto parameters = processor->getParameters();
        for (int write = 0; write < 3000; ++write)
            parameters[static_cast<int>(generator() % 6)]->setValueNotifyingHost(
                static_cast<float>(generator() >> 8) / 16777216.0f);
        storming = false;
    });
    const auto noise = test::noiseBuffer(16, 64, 9);
    bool finite = true;
    for (int block = 0; storming || block < 200; ++block) {
        juce::AudioBuffer<float> buffer(noise);
        test::process(*processor, buffer);
        finite = finite && test::isFinite(buffer);
    }
    host.join();
    EXPECT_TRUE(finite);
    auto& state = *processor->getProcessorState();
    EXPECT_EQ(test::shown(*processor, "Ambience"), state.getAmbience()->getValue());
    EXPECT_EQ(test::shown(*processor, "Focus"), state.getFocus()->getValue());
    EXPECT_EQ(test::shown(*processor, "Head Rotation"), state.getHeadRotation()->getValue());
    EXPECT_EQ(test::shown(*processor, "Master Gain"), state.getMasterGain()->getValue());
}

} // namespace

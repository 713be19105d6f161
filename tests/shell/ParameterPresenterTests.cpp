// SPDX-License-Identifier: GPL-3.0-or-later
// The two presenters alone, between a real value and a real parameter.
#include "parameters/core/SelectorId.h"
#include "parameters/core/SelectorValue.h"
#include "parameters/core/SliderValue.h"
#include "shell/SelectorParameterPresenter.h"
#include "shell/SliderParameterPresenter.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <optional>

namespace {

using namespace orvane::kestrum;
using core::selectorId;
using Parameter = juce::RangedAudioParameter; // its float kind hides what hosts call

constexpr float quietNan = std::numeric_limits<float>::quiet_NaN();
constexpr float infinity = std::numeric_limits<float>::infinity();

/// A selector value, its presenter and the released parameter, which has to outlive the presenter.
struct Selector {
    explicit Selector(std::vector<std::string> names, std::uint32_t id = 0) : value(id) {
        presenter = std::make_unique<SelectorParameterPresenter>("Choice", &value, std::move(names));
        parameter.reset(dynamic_cast<Parameter*>(presenter->releaseParameter()));
    }
    core::SelectorValue value;
    std::unique_ptr<Parameter> parameter;
    std::unique_ptr<SelectorParameterPresenter> presenter;
};

struct Slider {
    Slider(float start, float minimum, float maximum, float step) : value(start) {
        presenter = std::make_unique<SliderParameterPresenter>("Level", &value, minimum, maximum, step);
        parameter.reset(dynamic_cast<Parameter*>(presenter->releaseParameter()));
    }
    core::internal::SliderValue<float> value;
    std::unique_ptr<Parameter> parameter;
    std::unique_ptr<SliderParameterPresenter> presenter;
};

/// The parameter's value in its own unit.
float shown(const Slider& slider) { return slider.parameter->convertFrom0to1(slider.parameter->getValue()); }

TEST(SelectorParameter, TwoNamesGiveTheRangeZeroToOne) {
    const Selector two({"A", "B"}, selectorId("B"));
    EXPECT_EQ(two.parameter->getNormalisableRange().start, 0.0f);
    EXPECT_EQ(two.parameter->getNormalisableRange().end, 1.0f);
    EXPECT_EQ(two.parameter->getNumSteps(), 2);
    EXPECT_EQ(two.parameter->getValue(), 1.0f);
}

TEST(SelectorParameter, ASingleNameGivesTheRangeZeroToOneAndIsChosenByEverything) {
    Selector one({"A"}, selectorId("A"));
    EXPECT_EQ(one.parameter->getNormalisableRange().end, 1.0f);
    EXPECT_EQ(one.parameter->getValue(), 0.0f);
    one.parameter->setValueNotifyingHost(1.0f);
    EXPECT_EQ(one.value.getValue(), selectorId("A"));
    EXPECT_EQ(one.parameter->getText(1.0f, 0), juce::String("A"));
}

TEST(SelectorParameter, AnEmptyListIsHarmless) {
    Selector none({}, 7);
    EXPECT_EQ(none.parameter->getValue(), 0.0f);
    none.parameter->setValueNotifyingHost(1.0f);
    EXPECT_EQ(none.value.getValue(), 7u);
    EXPECT_TRUE(none.parameter->getText(0.5f, 0).isEmpty());
}

TEST(SelectorParameter, ItsDefaultIsTheEntryThatWasChosenAtTheStart) {
    const Selector chosen({"A", "B", "C"}, selectorId("C"));
    EXPECT_EQ(chosen.parameter->getDefaultValue(), 1.0f);
    EXPECT_EQ(chosen.parameter->getValue(), 1.0f);
}

TEST(SelectorParameter, AnUnknownIdentifierBecomesTheFirstEntry) {
    Selector selector({"A", "B", "C"}, selectorId("C"));
    selector.value.setValue(12345);
    EXPECT_EQ(selector.parameter->getValue(), 0.0f);
    EXPECT_EQ(selector.value.getValue(), selectorId("A"));
}

TEST(SelectorParameter, AHostValueBetweenTwoEntriesTruncatesTowardsTheLower) {
    Selector selector({"A", "B", "C"}, selectorId("C"));
    selector.parameter->setValueNotifyingHost(0.49f); // 0.98 of an entry, which is nearer to B
    EXPECT_EQ(selector.value.getValue(), selectorId("A"));
    selector.parameter->setValueNotifyingHost(0.99f);
    EXPECT_EQ(selector.value.getValue(), selectorId("B"));
    selector.parameter->setValueNotifyingHost(1.0f);
    EXPECT_EQ(selector.value.getValue(), selectorId("C"));
}

TEST(SelectorParameter, AHostValueOutsideTheRangeIsLimitedToTheNames) {
    Selector selector({"A", "B", "C"}, selectorId("B"));
    selector.parameter->setValueNotifyingHost(7.0f);
    EXPECT_EQ(selector.value.getValue(), selectorId("C"));
    selector.parameter->setValueNotifyingHost(-7.0f);
    EXPECT_EQ(selector.value.getValue(), selectorId("A"));
}

TEST(SelectorParameter, WhatIsNoNumberIsIgnoredAndTheParameterShowsTheOldEntryAgain) {
    Selector selector({"A", "B", "C"}, selectorId("B"));
    for (const float nonsense : {quietNan, infinity, -infinity}) {
        selector.parameter->setValueNotifyingHost(nonsense);
        EXPECT_EQ(selector.value.getValue(), selectorId("B"));
        EXPECT_EQ(selector.parameter->getValue(), 0.5f);
    }
}

TEST(SelectorParameter, AChangedValueReachesTheParameter) {
    Selector selector({"A", "B", "C"}, selectorId("A"));
    selector.value.setValue(selectorId("B"));
    EXPECT_EQ(selector.parameter->getValue(), 0.5f);
    EXPECT_EQ(selector.parameter->getCurrentValueAsText(), juce::String("B"));
}

TEST(SelectorParameter, ItIsDiscreteAndNotAutomatable) {
    const Selector selector({"A", "B"}, selectorId("A"));
    EXPECT_TRUE(selector.parameter->isDiscrete());
    EXPECT_FALSE(selector.parameter->isAutomatable());
    EXPECT_FALSE(selector.parameter->isMetaParameter());
    EXPECT_EQ(selector.parameter->paramID, juce::String("Choice"));
    EXPECT_TRUE(selector.parameter->getLabel().isEmpty());
}

TEST(SliderParameter, TakesRangeStepAndDefaultFromItsArguments) {
    const Slider slider(3.0f, -10.0f, 10.0f, 0.5f);
    EXPECT_EQ(slider.parameter->getNormalisableRange().start, -10.0f);
    EXPECT_EQ(slider.parameter->getNormalisableRange().end, 10.0f);
    EXPECT_EQ(slider.parameter->getNormalisableRange().interval, 0.5f);
    EXPECT_EQ(slider.parameter->getDefaultValue(),
              slider.parameter->getNormalisableRange().convertTo0to1(3.0f));
    EXPECT_EQ(shown(slider), 3.0f);
    EXPECT_FALSE(slider.parameter->isDiscrete());
    EXPECT_FALSE(slider.parameter->isAutomatable());
    EXPECT_FALSE(slider.parameter->isMetaParameter());
}

TEST(SliderParameter, AHostWriteIsSnappedToTheStep) {
    Slider slider(0.0f, 0.0f, 100.0f, 1.0f);
    slider.parameter->setValueNotifyingHost(0.3333f);
    EXPECT_EQ(slider.value.getValue(), 33.0f);
}

TEST(SliderParameter, AChangedValueReachesTheParameterAndComesBackSnappedAndLimited) {
    Slider slider(0.0f, -100.0f, 100.0f, 1.0f);
    slider.value.setValue(41.0f);
    EXPECT_EQ(shown(slider), 41.0f);
    slider.value.setValue(12.4f);
    EXPECT_EQ(shown(slider), 12.0f);
    EXPECT_EQ(slider.value.getValue(), 12.0f);
    slider.value.setValue(1000.0f);
    EXPECT_EQ(slider.value.getValue(), 100.0f);
    slider.value.setValue(-1000.0f);
    EXPECT_EQ(slider.value.getValue(), -100.0f);
}

TEST(SliderParameter, EveryStepSurvivesTheWayToTheHostAndBack) {
    // Property: what has been snapped once is left alone by the next passage.
    Slider slider(0.0f, -96.0f, 24.0f, 0.1f);
    for (int step = 0; step <= 1200; ++step) {
        slider.value.setValue(-96.0f + static_cast<float>(step) * 0.1f);
        const float held = slider.value.getValue();
        EXPECT_NEAR(held, -96.0 + 0.1 * step, 2e-5) << step; // float at 96: steps of 7.6e-6
        slider.parameter->setValueNotifyingHost(slider.parameter->getValue());
        EXPECT_EQ(slider.value.getValue(), held) << step;
    }
}

TEST(SliderParameter, WhatIsNoNumberIsIgnoredAndTheParameterShowsTheOldValueAgain) {
    Slider slider(5.0f, 0.0f, 10.0f, 1.0f);
    for (const float nonsense : {quietNan, infinity, -infinity}) {
        slider.parameter->setValueNotifyingHost(nonsense);
        EXPECT_EQ(slider.value.getValue(), 5.0f);
        EXPECT_EQ(shown(slider), 5.0f);
    }
}

/// From a tracker, for one: the value itself is no number, and would be written and called about for ever.
TEST(SliderParameter, AValueThatIsNoNumberBecomesZeroAndTheParameterToo) {
    Slider slider(5.0f, -10.0f, 10.0f, 1.0f);
    for (const float nonsense : {quietNan, infinity, -infinity}) {
        slider.value.setValue(5.0f);
        slider.value.setValue(nonsense);
        EXPECT_EQ(slider.value.getValue(), 0.0f) << nonsense;
        EXPECT_EQ(shown(slider), 0.0f) << nonsense;
    }
}

/// A second thread writes nonsense between a first one's write and the call about it.
TEST(SliderParameter, NonsenseThatComesWhileAnotherWriteIsToldOfIsIgnored) {
    Slider slider(5.0f, 0.0f, 10.0f, 1.0f);
    juce::AudioProcessorParameter& parameter = *slider.parameter;
    parameter.setValue(quietNan);
    parameter.sendValueChangedMessageToListeners(0.7f);
    EXPECT_EQ(slider.value.getValue(), 5.0f);
    EXPECT_EQ(shown(slider), 5.0f);
}

class GestureCounter final : public juce::AudioProcessorParameter::Listener {
public:
    void parameterValueChanged(int, float) override { ++changes; }
    void parameterGestureChanged(int, bool) override { ++gestures; }
    int changes = 0;
    int gestures = 0;
};

TEST(ParameterPresenters, NeverSendAGesture) {
    Slider slider(5.0f, 0.0f, 10.0f, 1.0f);
    GestureCounter counter;
    slider.parameter->addListener(&counter);
    slider.value.setValue(7.0f);
    slider.parameter->setValueNotifyingHost(0.1f);
    EXPECT_EQ(counter.changes, 2); // and no echo of the host's own write
    EXPECT_EQ(counter.gestures, 0);
    slider.parameter->removeListener(&counter);
}

TEST(ParameterPresenters, AReleasedParameterOutlivesItsPresenterAndIsOnItsOwnFromThen) {
    Selector selector({"A", "B"}, selectorId("A"));
    selector.presenter.reset();
    selector.parameter->setValueNotifyingHost(1.0f);
    EXPECT_EQ(selector.parameter->getText(1.0f, 0), juce::String("B"));
    EXPECT_EQ(selector.value.getValue(), selectorId("A"));
    selector.value.setValue(selectorId("B"));

    Slider slider(5.0f, 0.0f, 10.0f, 1.0f);
    slider.presenter.reset();
    slider.parameter->setValueNotifyingHost(1.0f);
    EXPECT_EQ(shown(slider), 10.0f);
    EXPECT_EQ(slider.value.getValue(), 5.0f);
}

TEST(ParameterPresenters, AnUnreleasedParameterDiesWithItsPresenterAndTheValueLivesOn) {
    core::internal::SliderValue<float> value(
        5.0f); // a parameter that stayed behind shows as a leak under ASan
    { const SliderParameterPresenter presenter("Level", &value, 0.0f, 10.0f, 1.0f); }
    value.setValue(7.0f);
    EXPECT_EQ(value.getValue(), 7.0f);
}

} // namespace

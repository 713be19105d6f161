// SPDX-License-Identifier: GPL-3.0-or-later
// What presenters tell their views and values, in which order. Expected values are the rules of the interface that a
// person sees.
#include "core/ScenePresenter.h"
#include "core/SliderPresenter.h"
#include "core/SpeakerSetupPresenter.h"
#include "core/TogglePresenter.h"

#include "base/ISupportedLayouts.h"
#include "parameters/core/Scene.h"
#include "parameters/core/SelectorId.h"
#include "parameters/core/SelectorValue.h"
#include "parameters/core/SliderValue.h"
#include "parameters/core/ToggleValue.h"
#include "support/RecordingViews.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <utility>

namespace {

using namespace orvane::kestrum::core;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using SliderValue = internal::SliderValue<float>;

std::string shownAs(std::uint32_t id) { return "scene = " + std::to_string(id); }

class SliderAndValue : public ::testing::Test {
protected:
    test::ViewLog log;
    SliderValue value{50.0f};
    test::RecordingSlider* slider = new test::RecordingSlider("slider", log);
    std::unique_ptr<IPresenter> presenter =
        std::make_unique<SliderPresenter>(&value, std::unique_ptr<ISlider>(slider));
};

TEST_F(SliderAndValue, TheSliderShowsTheValueFromTheStart) {
    EXPECT_THAT(log.take(), ElementsAre("slider = 50"));
}

TEST_F(SliderAndValue, TheSliderFollowsTheValueWithOneCall) {
    log.take();
    value.setValue(12.5f);
    EXPECT_THAT(log.take(), ElementsAre("slider = 12.5"));
    EXPECT_EQ(slider->getValue(), 12.5f);
}

TEST_F(SliderAndValue, TheValueFollowsTheSlider) {
    slider->move(75.0f);
    EXPECT_EQ(value.getValue(), 75.0f);
}

TEST_F(SliderAndValue, AnEqualValueIsNotTold) {
    log.take();
    value.setValue(50.0f);
    EXPECT_THAT(log.take(), IsEmpty());
}

TEST_F(SliderAndValue, AfterThePresenterNeitherSideHearsOfTheOther) {
    log.take();
    presenter.reset();
    EXPECT_THAT(log.take(), ElementsAre("slider gone"));
    value.setValue(1.0f);
    EXPECT_THAT(log.take(), IsEmpty());
}

/// A widget that lands on whole numbers, as one with a step does.
class WholeSlider final : public ISlider {
public:
    void setValue(float value) override {
        if (const float whole = std::round(value);
            std::exchange(shown, whole) != whole && listener != nullptr)
            listener->valueChanged();
    }
    float getValue() const override { return shown; }
    void setEnabled(bool) override {}
    void addListener(Listener* added) override { listener = added; }
    void removeListener(Listener*) override { listener = nullptr; }

private:
    float shown = 0.0f;
    Listener* listener = nullptr;
};

// What the widget makes of a value goes back into it, and there the loop ends.
TEST(SliderPresenting, AValueBetweenTheStepsLandsWhereTheSliderStands) {
    SliderValue value(0.0f);
    const SliderPresenter presenter(&value, std::make_unique<WholeSlider>());
    value.setValue(33.4f);
    EXPECT_EQ(value.getValue(), 33.0f);
}

TEST(TogglePresenting, BothSidesFollowEachOther) {
    test::ViewLog log;
    ToggleValue value(true);
    auto* const toggle = new test::RecordingToggle("toggle", log);
    auto presenter = std::make_unique<TogglePresenter>(&value, std::unique_ptr<IToggle>(toggle));
    EXPECT_THAT(log.take(), ElementsAre("toggle = 1"));
    toggle->move(false);
    EXPECT_FALSE(value.getValue());
    log.take();
    value.setValue(true);
    EXPECT_THAT(log.take(), ElementsAre("toggle = 1"));
    presenter.reset();
    EXPECT_THAT(log.take(), ElementsAre("toggle gone"));
    value.setValue(false);
    EXPECT_THAT(log.take(), IsEmpty());
}

/// Two, six and eight channels, identified by their number of channels.
class ThreeLayouts final : public ISupportedLayouts {
public:
    void forEach(std::function<void(const Properties&)> visit) const override {
        for (const auto& layout : layouts)
            visit(layout);
    }
    const Properties& get(std::uint32_t) const override { return layouts[0]; }

private:
    std::array<Properties, 3> layouts{{{2, "stereo", 2, {}}, {6, "5.1", 6, {}}, {8, "7.1", 8, {}}}};
};

class TestBuses final : public IBusesLayout {
public:
    void addBusesLayoutListener(BusesLayoutListener* listener) override { listeners.insert(listener); }
    void removeBusesLayoutListener(BusesLayoutListener* listener) override { listeners.erase(listener); }
    ISupportedLayouts* getSupportedLayouts() override { return &layouts; }
    int getNumberOfInputChannels() const override { return 2; }

    std::set<BusesLayoutListener*> listeners;

private:
    ThreeLayouts layouts;
};

class SpeakerSetup : public ::testing::Test {
protected:
    test::ViewLog log;
    TestBuses buses;
    SelectorValue value{6};
    test::RecordingSelector* selector = new test::RecordingSelector("layout", log);
    std::unique_ptr<IPresenter> presenter =
        std::make_unique<SpeakerSetupPresenter>(&buses, &value, std::unique_ptr<ISelector>(selector));
};

TEST_F(SpeakerSetup, NothingIsToldAtTheStart) { EXPECT_THAT(log.take(), IsEmpty()); }

TEST_F(SpeakerSetup, BothSidesFollowEachOther) {
    value.setValue(8);
    EXPECT_THAT(log.take(), ElementsAre("layout = 8"));
    selector->move(2);
    EXPECT_EQ(value.getValue(), 2u);
}

TEST_F(SpeakerSetup, OnlyLayoutsWithMoreChannelsThanTheBusAreGreyed) {
    for (auto* const listener : buses.listeners)
        listener->busesLayoutChanged(6);
    EXPECT_THAT(log.take(), ElementsAre("layout 2 on", "layout 6 on", "layout 8 off"));
    for (auto* const listener : buses.listeners)
        listener->busesLayoutChanged(0);
    EXPECT_THAT(log.take(), ElementsAre("layout 2 off", "layout 6 off", "layout 8 off"));
}

TEST_F(SpeakerSetup, AGreyedLayoutStaysChosen) {
    for (auto* const listener : buses.listeners)
        listener->busesLayoutChanged(2);
    EXPECT_EQ(value.getValue(), 6u);
}

TEST_F(SpeakerSetup, AfterThePresenterNobodyListens) {
    presenter.reset();
    EXPECT_THAT(log.take(), ElementsAre("layout gone"));
    EXPECT_THAT(buses.listeners, IsEmpty());
    value.setValue(2);
    EXPECT_THAT(log.take(), IsEmpty());
}

class ScenePresenting : public ::testing::Test {
protected:
    test::ViewLog log;
    SelectorValue value{selectorId("Mix Room")};
    test::RecordingSelector* selector = new test::RecordingSelector("scene", log);
    std::unique_ptr<IPresenter> presenter =
        std::make_unique<ScenePresenter>(&value, std::unique_ptr<ISelector>(selector),
                                         std::make_unique<test::RecordingSlider>("ambience", log),
                                         std::make_unique<test::RecordingBackground>(log));
};

TEST_F(ScenePresenting, NothingIsToldAtTheStart) { EXPECT_THAT(log.take(), IsEmpty()); }

TEST_F(ScenePresenting, EverySceneSetsAmbienceAndBackgroundAsAListByHandSays) {
    const std::set<std::string_view> dry{"Analytic Dry", "Analytic Position"};
    const std::set<std::string_view> sharp{"Mix Room", "Mix Room Small", "Mix Room Large", "Analytic Dry",
                                           "Analytic Position"};
    value.setValue(selectorId("Kitchen")); // so that the first one is a change, too
    for (const auto& preset : Scene::presets()) {
        log.take();
        const auto id = selectorId(preset.name);
        value.setValue(id);
        // The selector reports the change back, as a widget may: twice the same does no harm.
        const auto told = log.take();
        ASSERT_GE(told.size(), 3u);
        EXPECT_EQ(told.front(), shownAs(id));
        EXPECT_EQ(told[told.size() - 2], dry.contains(preset.name) ? "ambience off" : "ambience on")
            << preset.name;
        EXPECT_EQ(told.back(), sharp.contains(preset.name) ? "background sharp" : "background blurred")
            << preset.name;
    }
}

TEST_F(ScenePresenting, AClickDoesWhatTheHostDoes) {
    selector->move(selectorId("Analytic Dry"));
    EXPECT_EQ(value.getValue(), selectorId("Analytic Dry"));
    const auto told = log.take();
    ASSERT_GE(told.size(), 2u);
    EXPECT_EQ(told[told.size() - 2], "ambience off");
    EXPECT_EQ(told.back(), "background sharp");
}

// An editor fills its selector with what the value holds already; that is when its consequences are first shown.
TEST_F(ScenePresenting, AReportOfTheSceneThatIsHeldShowsItsConsequencesAndChangesNothing) {
    value.setValue(selectorId("Stadium"));
    presenter.reset();
    auto* const filled = new test::RecordingSelector("scene", log);
    const ScenePresenter again(&value, std::unique_ptr<ISelector>(filled),
                               std::make_unique<test::RecordingSlider>("ambience", log),
                               std::make_unique<test::RecordingBackground>(log));
    log.take();
    filled->move(selectorId("Stadium"));
    EXPECT_THAT(log.take(), ElementsAre("ambience on", "background blurred"));
    EXPECT_EQ(value.getValue(), selectorId("Stadium"));
}

TEST_F(ScenePresenting, AfterThePresenterNobodyListens) {
    presenter.reset();
    EXPECT_THAT(log.take(),
                ::testing::UnorderedElementsAre("scene gone", "ambience gone", "background gone"));
    value.setValue(selectorId("Car"));
    EXPECT_THAT(log.take(), IsEmpty());
}

} // namespace

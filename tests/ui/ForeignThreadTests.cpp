// SPDX-License-Identifier: GPL-3.0-or-later
// What views do with calls from a host's threads: nothing on the spot, everything at the next tick of the message thread.
#include "MessageLoop.h"

#include "core/ScenePresenter.h"
#include "core/SliderPresenter.h"
#include "parameters/core/SelectorId.h"
#include "parameters/core/SelectorValue.h"
#include "parameters/core/SliderValue.h"
#include "support/RealtimeScope.h"
#include "ui/BackgroundImage.h"
#include "ui/LatestItemStates.h"
#include "ui/LatestValue.h"
#include "ui/Selector.h"
#include "ui/Slider.h"
#include "ui/SpeakerSetup.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <optional>
#include <thread>
#include <vector>

namespace {

using namespace orvane::kestrum;
using test::onAnotherThread;

/// What a text box beside a slider does: it listens to the widget, not to the view.
struct TextBox final : juce::Slider::Listener {
    void sliderValueChanged(juce::Slider* slider) override { shown = slider->getValue(); }
    double shown = -1.0;
};

class ForeignSlider : public ::testing::Test {
protected:
    std::unique_ptr<juce::Slider> makeWidget() {
        auto made = std::make_unique<juce::Slider>();
        made->setRange(0.0, 100.0, 1.0);
        made->addListener(&textBox);
        return made;
    }

    test::MessageLoop loop;
    TextBox textBox;
    std::unique_ptr<juce::Slider> widget = makeWidget();
    core::internal::SliderValue<float> value{50.0f};
    Slider* view = new Slider(*widget);
    std::unique_ptr<core::SliderPresenter> presenter =
        std::make_unique<core::SliderPresenter>(&value, std::unique_ptr<core::ISlider>(view));
};

TEST_F(ForeignSlider, IsUntouchedUntilATickShowsTheLatestValueAndTheTextBoxFollows) {
    onAnotherThread([&] {
        for (const float written : {10.0f, 20.0f, 30.0f})
            value.setValue(written);
    });
    EXPECT_EQ(widget->getValue(), 50.0);
    loop.runATick();
    EXPECT_EQ(widget->getValue(), 30.0);
    EXPECT_EQ(textBox.shown, 30.0);
}

TEST_F(ForeignSlider, DoesNotSendAHostsValueBackChanged) {
    onAnotherThread([&] { value.setValue(33.4f); });
    loop.runATick();
    EXPECT_EQ(widget->getValue(), 33.0);
    EXPECT_EQ(value.getValue(), 33.4f);
}

TEST_F(ForeignSlider, ForgetsAValueThatTheMessageThreadHasOvertaken) {
    onAnotherThread([&] { value.setValue(10.0f); });
    widget->setValue(80.0, juce::sendNotificationSync); // a person's drag
    loop.runATick();
    EXPECT_EQ(widget->getValue(), 80.0);
    EXPECT_EQ(value.getValue(), 80.0f);
}

TEST_F(ForeignSlider, IsEnabledAndDisabledAtATick) {
    onAnotherThread([&] { view->setEnabled(false); });
    EXPECT_TRUE(widget->isEnabled());
    loop.runATick();
    EXPECT_FALSE(widget->isEnabled());
    onAnotherThread([&] { view->setEnabled(true); });
    view->setEnabled(false); // later, and so what holds
    loop.runATick();
    EXPECT_FALSE(widget->isEnabled());
}

TEST_F(ForeignSlider, MayHaveDiedBeforeTheTick) {
    onAnotherThread([&] {
        value.setValue(10.0f);
        view->setEnabled(false);
    });
    widget.reset();
    loop.runATick();
    onAnotherThread([&] { value.setValue(11.0f); });
    presenter.reset();
    loop.runATick();
    EXPECT_EQ(value.getValue(), 11.0f) << "what the host wrote";
}

class ForeignSelector : public ::testing::Test {
protected:
    ForeignSelector() {
        for (const auto id : {stereo, quad, surround})
            widget.addItem(juce::String(static_cast<int>(id)), static_cast<int>(id));
        widget.setSelectedId(static_cast<int>(stereo), juce::dontSendNotification);
    }

    const std::uint32_t stereo = core::selectorId("2.0 +/-30°");
    const std::uint32_t quad = core::selectorId("Quad");
    const std::uint32_t surround = core::selectorId("5.1 ITU");
    test::MessageLoop loop;
    juce::ComboBox widget;
    juce::Image image;
    int repaints = 0;
    core::SelectorValue value{stereo};
};

TEST_F(ForeignSelector, ShowsTheLatestChoiceAndItsDiagramAtATick) {
    auto view = std::make_unique<SpeakerSetup<Selector>>(widget, image, stereo, [this] { ++repaints; });
    const juce::Image before = image;
    onAnotherThread([&] {
        view->setValue(quad);
        view->setValue(surround);
    });
    EXPECT_EQ(widget.getSelectedId(), static_cast<int>(stereo));
    EXPECT_TRUE(image == before);
    loop.runATick();
    EXPECT_EQ(widget.getSelectedId(), static_cast<int>(surround));
    EXPECT_FALSE(image == before);
    EXPECT_EQ(repaints, 2) << "one for the start, one for the latest";
}

TEST_F(ForeignSelector, KeepsItsDiagramForALayoutThatThereIsNot) {
    SpeakerSetup<Selector> view(widget, image, stereo, [this] { ++repaints; });
    const juce::Image before = image;
    onAnotherThread([&] { view.setValue(12345); });
    loop.runATick();
    EXPECT_TRUE(image == before);
}

TEST_F(ForeignSelector, GreysEachItemByItsLatestState) {
    Selector view(widget);
    onAnotherThread([&] {
        view.setItemEnabled(stereo, false);
        view.setItemEnabled(quad, false);
        view.setItemEnabled(surround, false);
        view.setItemEnabled(quad, true);
    });
    EXPECT_TRUE(widget.isItemEnabled(static_cast<int>(stereo)));
    loop.runATick();
    EXPECT_FALSE(widget.isItemEnabled(static_cast<int>(stereo)));
    EXPECT_TRUE(widget.isItemEnabled(static_cast<int>(quad)));
    EXPECT_FALSE(widget.isItemEnabled(static_cast<int>(surround)));
}

TEST_F(ForeignSelector, ForgetsStatesThatTheMessageThreadHasOvertaken) {
    Selector view(widget);
    onAnotherThread([&] {
        view.setItemEnabled(quad, false);
        view.setValue(quad);
    });
    view.setItemEnabled(quad, true);
    view.setValue(surround);
    loop.runATick();
    EXPECT_TRUE(widget.isItemEnabled(static_cast<int>(quad)));
    EXPECT_EQ(widget.getSelectedId(), static_cast<int>(surround));
}

// A widget reports some time after the choice; a host that has chosen meanwhile must not be overruled by that.
TEST_F(ForeignSelector, DoesNotOverruleAHostByAReportThatComesLate) {
    const core::ScenePresenter presenter(&value, std::make_unique<Selector>(widget),
                                         std::make_unique<Slider>(*std::make_unique<juce::Slider>()),
                                         std::make_unique<BackgroundImage>(image, [] {}));
    widget.setSelectedId(static_cast<int>(quad),
                         juce::sendNotificationAsync); // as a menu or a new editor does
    onAnotherThread([&] { value.setValue(surround); });
    loop.runATick();
    EXPECT_EQ(value.getValue(), surround);
    EXPECT_EQ(widget.getSelectedId(), static_cast<int>(surround));
}

TEST_F(ForeignSelector, ChangesTheBackgroundAtATick) {
    BackgroundImage view(image, [this] { ++repaints; });
    const juce::Image sharp = image;
    onAnotherThread([&] { view.setBlurred(true); });
    EXPECT_TRUE(image == sharp);
    loop.runATick();
    EXPECT_FALSE(image == sharp);
    EXPECT_EQ(repaints, 1);
}

// The calling thread may be the one that renders.
TEST_F(ForeignSelector, CostsTheCallingThreadNeitherMemoryNorLockNorWait) {
    juce::Slider slider;
    Slider sliderView(slider);
    SpeakerSetup<Selector> view(widget, image, stereo, [] {});
    BackgroundImage background(image, [] {});
    test::RealtimeViolations seen;
    onAnotherThread([&] {
        const test::RealtimeScope scope;
        sliderView.setValue(0.5f);
        sliderView.setEnabled(false);
        view.setValue(surround);
        view.setItemEnabled(quad, false);
        background.setBlurred(true);
        seen = scope.violations();
    });
    EXPECT_EQ(seen, test::RealtimeViolations{});
}

// Where a host has no event loop of its own, widgets are made by a thread that is not the message thread.
TEST_F(ForeignSelector, LeavesAWidgetAloneEvenForTheThreadThatMadeItsView) {
    std::unique_ptr<Selector> view;
    onAnotherThread([&] {
        const juce::MessageManager* const manager = juce::MessageManager::getInstance();
        ASSERT_FALSE(manager->isThisTheMessageThread());
        view = std::make_unique<Selector>(widget);
        view->setValue(quad);
    });
    EXPECT_EQ(widget.getSelectedId(), static_cast<int>(stereo));
    loop.runATick();
    EXPECT_EQ(widget.getSelectedId(), static_cast<int>(quad));
}

TEST(LatestValues, AreTakenOnceAndZeroIsOneOfThem) {
    LatestValue<float> number;
    EXPECT_FALSE(number.isWaiting());
    EXPECT_EQ(number.take(), std::nullopt);
    number.store(0.0f);
    EXPECT_TRUE(number.isWaiting());
    EXPECT_EQ(number.take(), 0.0f);
    EXPECT_EQ(number.take(), std::nullopt);
    LatestValue<bool> flag;
    flag.store(true);
    flag.store(false);
    EXPECT_EQ(flag.take(), false);
    LatestValue<std::uint32_t> id;
    id.store(0xFFFFFFFFu);
    EXPECT_EQ(id.take(), 0xFFFFFFFFu);
    id.store(1);
    id.discard();
    EXPECT_EQ(id.take(), std::nullopt);
}

TEST(LatestValues, OfItemsAreKeptForMoreThanAMenuHoldsAndNeverOverrun) {
    LatestItemStates states;
    for (std::uint32_t id = 1; id <= 2 * LatestItemStates::capacity; ++id)
        states.store(id, id % 2 == 0);
    std::map<std::uint32_t, bool> taken;
    states.take([&](std::uint32_t id, bool enabled) { taken[id] = enabled; });
    EXPECT_EQ(taken.size(), LatestItemStates::capacity);
    for (const auto& [id, enabled] : taken)
        EXPECT_EQ(enabled, id % 2 == 0);
    states.take([](std::uint32_t, bool) { FAIL() << "has been taken"; });
}

// Stress: two threads claim places for the same items at once.
TEST(LatestValues, OfItemsHaveOnePlaceEachHoweverManyThreadsNameThem) {
    for (int round = 0; round < 200; ++round) {
        LatestItemStates states;
        std::vector<std::thread> hosts;
        hosts.reserve(3);
        for (int host = 0; host < 3; ++host)
            hosts.emplace_back([&] {
                for (std::uint32_t id = 1; id <= 20; ++id)
                    states.store(id, true);
            });
        for (auto& host : hosts)
            host.join();
        std::map<std::uint32_t, int> taken;
        states.take([&](std::uint32_t id, bool) { ++taken[id]; });
        ASSERT_EQ(taken.size(), 20u);
        for (const auto& [id, times] : taken)
            ASSERT_EQ(times, 1) << id;
    }
}

} // namespace

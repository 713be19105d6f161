// SPDX-License-Identifier: GPL-3.0-or-later
// The views on the message thread, over real widgets that no screen shows.
#include "MessageLoop.h"

#include "core/SliderPresenter.h"
#include "parameters/core/SelectorId.h"
#include "parameters/core/SliderValue.h"
#include "ui/BackgroundImage.h"
#include "ui/Selector.h"
#include "ui/Slider.h"
#include "ui/SpeakerSetup.h"
#include "ui/StepThroughSelector.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <stdexcept>

namespace {

using namespace orvane::kestrum;

struct SliderListener final : core::ISlider::Listener {
    void valueChanged() override { ++calls; }
    int calls = 0;
};

struct SelectorListener final : core::ISelector::Listener {
    void valueChanged() override { ++calls; }
    int calls = 0;
};

class SliderView : public ::testing::Test {
protected:
    SliderView() {
        widget->setRange(0.0, 100.0, 1.0);
        view->addListener(&listener);
    }

    test::MessageLoop loop;
    std::unique_ptr<juce::Slider> widget = std::make_unique<juce::Slider>();
    std::unique_ptr<Slider> view = std::make_unique<Slider>(*widget);
    SliderListener listener;
};

TEST_F(SliderView, MovesItsWidgetAtOnceAndTellsThatItMoved) {
    view->setValue(40.0f);
    EXPECT_EQ(widget->getValue(), 40.0);
    EXPECT_EQ(listener.calls, 1);
    view->setValue(40.0f);
    EXPECT_EQ(listener.calls, 1);
}

TEST_F(SliderView, TellsWhatAPersonDoes) {
    widget->setValue(70.0, juce::sendNotificationSync);
    EXPECT_EQ(listener.calls, 1);
    EXPECT_EQ(view->getValue(), 70.0f);
    view->removeListener(&listener);
    widget->setValue(71.0, juce::sendNotificationSync);
    EXPECT_EQ(listener.calls, 1);
}

TEST_F(SliderView, EnablesAndDisablesItsWidget) {
    view->setEnabled(false);
    EXPECT_FALSE(widget->isEnabled());
    view->setEnabled(true);
    EXPECT_TRUE(widget->isEnabled());
}

TEST_F(SliderView, LeavesWhatIsNoNumberAlone) {
    view->setValue(40.0f);
    for (const float nonsense :
         {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity()})
        view->setValue(nonsense);
    EXPECT_EQ(widget->getValue(), 40.0);
}

TEST_F(SliderView, OutlivesItsWidget) {
    widget.reset();
    view->setValue(10.0f);
    view->setEnabled(false);
    EXPECT_EQ(view->getValue(), 0.0f);
    view.reset();
}

TEST_F(SliderView, LetsGoOfAWidgetThatOutlivesIt) {
    view.reset();
    widget->setValue(5.0, juce::sendNotificationSync);
    EXPECT_EQ(listener.calls, 0);
}

TEST_F(SliderView, BringsAValueBetweenTheStepsToWhereTheWidgetStands) {
    core::internal::SliderValue<float> value(0.0f);
    const core::SliderPresenter presenter(&value, std::make_unique<Slider>(*widget));
    value.setValue(33.4f);
    EXPECT_EQ(widget->getValue(), 33.0);
    EXPECT_EQ(value.getValue(), 33.0f);
}

class SelectorView : public ::testing::Test {
protected:
    SelectorView() {
        widget->addSectionHeading("A heading");
        for (const int id : {11, 22, 33})
            widget->addItem(juce::String(id), id);
    }

    test::MessageLoop loop;
    std::unique_ptr<juce::ComboBox> widget = std::make_unique<juce::ComboBox>();
    SelectorListener listener;
};

TEST_F(SelectorView, ShowsAnItemWithoutTellingAnyone) {
    Selector view(*widget);
    view.addListener(&listener);
    EXPECT_EQ(view.getValue(), 0u);
    view.setValue(22);
    EXPECT_EQ(widget->getSelectedId(), 22);
    EXPECT_EQ(view.getValue(), 22u);
    loop.runATick();
    EXPECT_EQ(listener.calls, 0);
}

TEST_F(SelectorView, TellsWhatAPersonChooses) {
    Selector view(*widget);
    view.addListener(&listener);
    widget->setSelectedId(33, juce::sendNotificationAsync);
    EXPECT_EQ(listener.calls, 0);
    ASSERT_TRUE(loop.runUntil([&] { return listener.calls > 0; }));
    EXPECT_EQ(view.getValue(), 33u);
}

TEST_F(SelectorView, SaysNothingWhenItsWidgetIsEmptied) {
    Selector view(*widget);
    view.setValue(22);
    view.addListener(&listener);
    widget->clear(juce::sendNotificationSync);
    EXPECT_EQ(listener.calls, 0);
}

TEST_F(SelectorView, GreysAnItemThatStaysChosen) {
    Selector view(*widget);
    view.setValue(22);
    view.setItemEnabled(22, false);
    EXPECT_FALSE(widget->isItemEnabled(22));
    EXPECT_EQ(view.getValue(), 22u);
    view.setItemEnabled(22, true);
    EXPECT_TRUE(widget->isItemEnabled(22));
}

TEST_F(SelectorView, KeepsIdentifiersAboveTheSignedNumbers) {
    widget->addItem("high", static_cast<int>(0xEDE88239u));
    Selector view(*widget);
    view.setValue(0xEDE88239u);
    EXPECT_EQ(view.getValue(), 0xEDE88239u);
}

TEST_F(SelectorView, OutlivesItsWidget) {
    auto view = std::make_unique<Selector>(*widget);
    widget.reset();
    view->setValue(11);
    view->setItemEnabled(11, false);
    EXPECT_EQ(view->getValue(), 0u);
    view.reset();
}

class StepThrough : public SelectorView {
protected:
    std::unique_ptr<juce::TextButton> next = std::make_unique<juce::TextButton>();
    std::unique_ptr<juce::TextButton> previous = std::make_unique<juce::TextButton>();
    std::unique_ptr<StepThroughSelector<Selector>> view =
        std::make_unique<StepThroughSelector<Selector>>(*widget, *next, *previous);

    int afterClickOn(juce::Button& button) {
        view->buttonClicked(&button);
        return widget->getSelectedId();
    }
};

TEST_F(StepThrough, GoesOverAllItemsInMenuOrderAndWrapsAtBothEnds) {
    view->setValue(11);
    EXPECT_EQ(afterClickOn(*next), 22);
    EXPECT_EQ(afterClickOn(*next), 33);
    EXPECT_EQ(afterClickOn(*next), 11);
    EXPECT_EQ(afterClickOn(*previous), 33);
    EXPECT_EQ(afterClickOn(*previous), 22);
}

TEST_F(StepThrough, TellsEachStep) {
    view->setValue(33);
    view->addListener(&listener);
    next->triggerClick();
    ASSERT_TRUE(loop.runUntil([&] { return listener.calls > 0; }));
    EXPECT_EQ(view->getValue(), 11u);
}

TEST_F(StepThrough, FromNothingChosenGoesToAnEnd) {
    EXPECT_EQ(afterClickOn(*next), 11);
    widget->setSelectedId(0, juce::dontSendNotification);
    EXPECT_EQ(afterClickOn(*previous), 33);
}

TEST_F(StepThrough, LeavesTheChoiceAloneForAnotherButton) {
    juce::TextButton other;
    view->setValue(22);
    EXPECT_EQ(afterClickOn(other), 22);
}

TEST_F(StepThrough, OutlivesButtonsAndWidget) {
    next.reset();
    widget.reset();
    view->buttonClicked(previous.get());
    EXPECT_EQ(view->getValue(), 0u) << "nothing is chosen where there is nothing to choose from";
    previous.reset();
    view.reset();
}

TEST_F(StepThrough, LetsGoOfButtonsThatOutliveIt) {
    view.reset();
    next->triggerClick();
    loop.runATick();
    EXPECT_EQ(widget->getSelectedId(), 0);
}

class LayoutView : public ::testing::Test {
protected:
    LayoutView() {
        for (const auto id : {stereo, surround, mono, monoSummed})
            widget.addItem(juce::String(static_cast<int>(id)), static_cast<int>(id));
    }

    const std::uint32_t mono = core::selectorId("1.0");
    const std::uint32_t monoSummed = core::selectorId("2.0 +/-0°");
    const std::uint32_t stereo = core::selectorId("2.0 +/-30°");
    const std::uint32_t surround = core::selectorId("5.1 ITU");
    test::MessageLoop loop;
    juce::ComboBox widget;
    juce::Image image;
    int repaints = 0;
    SpeakerSetup<Selector> view{widget, image, stereo, [this] { ++repaints; }};
};

TEST_F(LayoutView, ShowsTheDiagramFromTheStartAndHasItPainted) {
    EXPECT_EQ(image.getBounds(), juce::Rectangle<int>(2160, 1008));
    EXPECT_TRUE(image.hasAlphaChannel());
    EXPECT_EQ(repaints, 1);
}

TEST_F(LayoutView, ShowsAnotherDiagramForAnotherLayout) {
    const juce::Image before = image;
    view.setValue(surround);
    EXPECT_FALSE(image == before);
    EXPECT_EQ(repaints, 2);
    EXPECT_EQ(widget.getSelectedId(), static_cast<int>(surround));
}

TEST_F(LayoutView, ShowsTheDiagramOfOneLoudspeakerForTwoInOnePlace) {
    view.setValue(mono);
    const juce::Image one = image;
    view.setValue(monoSummed);
    EXPECT_TRUE(image == one) << "the same pixels";
}

TEST_F(LayoutView, RefusesALayoutThatThereIsNot) {
    const juce::Image before = image;
    EXPECT_THROW(view.setValue(12345), std::out_of_range);
    EXPECT_TRUE(image == before);
}

class Background : public ::testing::Test {
protected:
    test::MessageLoop loop;
    juce::Image image;
    int repaints = 0;
    BackgroundImage view{image, [this] { ++repaints; }};
};

TEST_F(Background, IsSharpFromTheStart) {
    EXPECT_EQ(image.getBounds(), juce::Rectangle<int>(2160, 1272));
    EXPECT_EQ(repaints, 0);
    view.setBlurred(false);
    EXPECT_EQ(repaints, 0) << "those pixels are shown already";
}

TEST_F(Background, ChangesToTheOtherPictureAndBackAndHasItPainted) {
    const juce::Image sharp = image;
    view.setBlurred(true);
    EXPECT_FALSE(image == sharp);
    view.setBlurred(true);
    EXPECT_EQ(repaints, 1);
    view.setBlurred(false);
    EXPECT_TRUE(image == sharp);
    EXPECT_EQ(repaints, 2);
}

} // namespace

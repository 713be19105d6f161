// SPDX-License-Identifier: GPL-3.0-or-later
// The whole way between widgets and host parameters, over the product's processor, with the editor as a host opens it.
#include "OpenEditor.h"

#include "parameters/core/ISelectorValue.h"
#include "parameters/core/ISliderValue.h"
#include "parameters/core/SelectorId.h"
#include "ui/BackgroundImage.h"
#include "ui/IProcessorState.h"
#include "ui/toolbar/LorimondToolbarComponent.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>
#include <string>
#include <vector>

namespace {

using namespace orvane::kestrum;

int itemId(const char* name) { return std::bit_cast<int>(core::selectorId(name)); }

class EditorOverProcessor : public ::testing::Test {
protected:
    /// What a person's choice in a menu does.
    void chooseFromMenu(juce::ComboBox& comboBox, const char* name) {
        comboBox.setSelectedId(itemId(name), juce::sendNotificationSync);
    }

    bool blurred(test::OpenEditor& editor) {
        const juce::Image shown = editor.widgets().backgroundImage;
        editor.widgets().backgroundImage = {};
        const juce::Image sharp = [] {
            juce::Image image;
            const BackgroundImage view(image, [] {});
            return image;
        }();
        editor.widgets().backgroundImage = shown;
        return !(shown == sharp);
    }

    test::MessageLoop loop;
    std::unique_ptr<test::Processor> processor =
        test::makeProcessor([] { return std::string("/nonexistent"); });
    IProcessorState& state = *processor->getProcessorState();
};

TEST_F(EditorOverProcessor, IsAsHighAsViewAndToolbarWithTheViewOnTop) {
    test::OpenEditor editor(*processor);
    EXPECT_EQ(editor.window().getBounds(), juce::Rectangle<int>(1080, 660));
    EXPECT_EQ(editor.widgets().getBounds(), juce::Rectangle<int>(1080, 636));
    EXPECT_FALSE(editor.window().isResizable());
    int toolbars = 0;
    for (auto* const child : editor.window().getChildren())
        if (dynamic_cast<BrevikPluginTools::LorimondToolbarComponent*>(child) != nullptr) {
            ++toolbars;
            EXPECT_EQ(child->getBounds(), juce::Rectangle<int>(0, 636, 1080, 24));
        }
    EXPECT_EQ(toolbars, 1);
}

TEST_F(EditorOverProcessor, ShowsTheValuesThatWereSetBeforeItOpened) {
    test::choose(*processor, "Speaker Layouts", "7.1.4");
    test::choose(*processor, "Scenes", "Kitchen");
    test::setParameter(*processor, "Ambience", 20.0f);
    test::setParameter(*processor, "Focus", -35.0f);
    test::setParameter(*processor, "Head Rotation", 170.0f);
    test::setParameter(*processor, "Master Gain", -4.5f);
    test::OpenEditor editor(*processor);
    auto& widgets = editor.widgets();
    EXPECT_EQ(widgets.speakerSetup.getSelectedId(), itemId("7.1.4"));
    EXPECT_EQ(widgets.scene.getText(), juce::String("Kitchen"));
    EXPECT_EQ(widgets.ambience.getValue(), 20.0);
    EXPECT_EQ(widgets.focus.getValue(), -35.0);
    EXPECT_EQ(widgets.headRotation.getValue(), 170.0);
    EXPECT_NEAR(widgets.masterGain.getValue(), -4.5, 1e-6);
    loop.runATick();
    EXPECT_TRUE(blurred(editor));
    EXPECT_EQ(test::shown(*processor, "Ambience"), 20.0f) << "opening changes nothing";
    EXPECT_EQ(state.getScene()->getValue(), core::selectorId("Kitchen"));
    EXPECT_EQ(state.getSpeakerSetup()->getValue(), core::selectorId("7.1.4"));
}

TEST_F(EditorOverProcessor, EveryWidgetReachesItsHostParameter) {
    test::OpenEditor editor(*processor);
    auto& widgets = editor.widgets();
    loop.runATick();
    chooseFromMenu(widgets.speakerSetup, "5.1 Film");
    EXPECT_EQ(test::shown(*processor, "Speaker Layouts"), 9.0f);
    chooseFromMenu(widgets.scene, "Car");
    EXPECT_EQ(test::shown(*processor, "Scenes"), 10.0f);
    widgets.ambience.setValue(77.0, juce::sendNotificationSync);
    EXPECT_EQ(test::shown(*processor, "Ambience"), 77.0f);
    widgets.headRotation.setValue(-120.0, juce::sendNotificationSync);
    EXPECT_EQ(test::shown(*processor, "Head Rotation"), -120.0f);
    widgets.masterGain.setValue(6.5, juce::sendNotificationSync);
    EXPECT_NEAR(test::shown(*processor, "Master Gain"), 6.5f, 1e-5f);
}

TEST_F(EditorOverProcessor, EveryHostParameterReachesItsWidget) {
    test::OpenEditor editor(*processor);
    auto& widgets = editor.widgets();
    loop.runATick();
    const juce::Image stereo = widgets.speakerImage;
    test::choose(*processor, "Speaker Layouts", "Quad");
    EXPECT_EQ(widgets.speakerSetup.getText(), juce::String("Quad"));
    EXPECT_FALSE(widgets.speakerImage == stereo) << "the diagram follows";
    test::setParameter(*processor, "Ambience", 5.0f);
    EXPECT_EQ(widgets.ambience.getValue(), 5.0);
    test::setParameter(*processor, "Focus", 66.0f);
    EXPECT_EQ(widgets.focus.getValue(), 66.0);
    test::setParameter(*processor, "Head Rotation", -90.0f);
    EXPECT_EQ(widgets.headRotation.getValue(), -90.0);
    test::setParameter(*processor, "Master Gain", -60.0f);
    EXPECT_NEAR(widgets.masterGain.getValue(), -60.0, 1e-5);
}

TEST_F(EditorOverProcessor, AValueFromAnotherThreadReachesItsWidgetWithTheNextTick) {
    test::OpenEditor editor(*processor);
    auto& widgets = editor.widgets();
    loop.runATick();
    test::onAnotherThread([&] {
        test::setParameter(*processor, "Ambience", 5.0f);
        test::choose(*processor, "Scenes", "Analytic Dry");
        test::choose(*processor, "Speaker Layouts", "Quad");
    });
    EXPECT_EQ(widgets.ambience.getValue(), 50.0);
    loop.runATick();
    EXPECT_EQ(widgets.ambience.getValue(), 5.0);
    EXPECT_FALSE(widgets.ambience.isEnabled());
    EXPECT_EQ(widgets.scene.getText(), juce::String("Analytic Dry"));
    EXPECT_EQ(widgets.speakerSetup.getText(), juce::String("Quad"));
    EXPECT_EQ(state.getScene()->getValue(), core::selectorId("Analytic Dry"));
}

// The slider has steps of 0.1, the parameter of 1.
TEST_F(EditorOverProcessor, FocusLandsOnWholeNumbers) {
    test::OpenEditor editor(*processor);
    auto& widgets = editor.widgets();
    widgets.focus.setValue(33.3, juce::sendNotificationSync);
    EXPECT_EQ(state.getFocus()->getValue(), 33.0f);
    EXPECT_EQ(widgets.focus.getValue(), 33.0);
    EXPECT_EQ(test::shown(*processor, "Focus"), 33.0f);
    widgets.focus.setValue(-0.6, juce::sendNotificationSync);
    EXPECT_EQ(widgets.focus.getValue(), -1.0);
}

TEST_F(EditorOverProcessor, TheSceneDecidesOnAmbienceAndBackground) {
    test::OpenEditor editor(*processor);
    auto& widgets = editor.widgets();
    loop.runATick();
    EXPECT_FALSE(blurred(editor));
    EXPECT_TRUE(widgets.ambience.isEnabled());
    test::choose(*processor, "Scenes", "Analytic Dry");
    EXPECT_FALSE(widgets.ambience.isEnabled());
    EXPECT_FALSE(blurred(editor));
    chooseFromMenu(widgets.scene, "Stadium");
    EXPECT_TRUE(widgets.ambience.isEnabled());
    EXPECT_TRUE(blurred(editor));
    chooseFromMenu(widgets.scene, "Mix Room Large");
    EXPECT_FALSE(blurred(editor));
}

TEST_F(EditorOverProcessor, ShowsTheConsequencesOfItsSceneSoonAfterItOpens) {
    test::choose(*processor, "Scenes", "Analytic Position");
    test::OpenEditor editor(*processor);
    ASSERT_TRUE(loop.runUntil([&] { return !editor.widgets().ambience.isEnabled(); }));
    EXPECT_FALSE(blurred(editor));
}

TEST_F(EditorOverProcessor, TheArrowsStepThroughAllScenesAndWrap) {
    test::OpenEditor editor(*processor);
    auto& widgets = editor.widgets();
    loop.runATick();
    const auto click = [&](juce::Button& button) {
        const auto before = state.getScene()->getValue();
        button.triggerClick();
        loop.runUntil([&] { return state.getScene()->getValue() != before; });
        return test::shown(*processor, "Scenes");
    };
    for (int step = 1; step < 16; ++step)
        ASSERT_EQ(click(widgets.sceneNext), static_cast<float>(step));
    EXPECT_EQ(click(widgets.sceneNext), 0.0f);
    EXPECT_EQ(click(widgets.scenePrevious), 15.0f);
}

TEST_F(EditorOverProcessor, ALayoutWiderThanTheBusIsChosenButGreyed) {
    test::choose(*processor, "Speaker Layouts", "7.1");
    test::OpenEditor editor(*processor);
    auto& comboBox = editor.widgets().speakerSetup;
    EXPECT_EQ(comboBox.getText(), juce::String("7.1"));
    EXPECT_FALSE(comboBox.isItemEnabled(itemId("7.1")));
    EXPECT_TRUE(comboBox.isItemEnabled(itemId("2.0 +/-45°")));
}

TEST_F(EditorOverProcessor, AWiderBusEnablesMoreLayouts) {
    test::OpenEditor editor(*processor);
    auto& comboBox = editor.widgets().speakerSetup;
    ASSERT_TRUE(test::setInputs(*processor, 6));
    loop.runATick();
    EXPECT_TRUE(comboBox.isItemEnabled(itemId("5.1 ITU")));
    EXPECT_FALSE(comboBox.isItemEnabled(itemId("6.1")));
    ASSERT_TRUE(test::setInputs(*processor, 2));
    loop.runATick();
    EXPECT_FALSE(comboBox.isItemEnabled(itemId("5.1 ITU")));
}

TEST_F(EditorOverProcessor, ShowsTheWarningFromTheFirstTickAfterAFailedPreparationOn) {
    processor->prepareToPlay(22050.0, 64);
    ASSERT_TRUE(processor->hasError());
    test::OpenEditor editor(*processor);
    EXPECT_FALSE(editor.widgets().warningOverlay.isVisible());
    loop.runATick();
    EXPECT_TRUE(editor.widgets().warningOverlay.isVisible());
}

TEST_F(EditorOverProcessor, TwoInstancesHaveWindowsOfTheirOwn) {
    const auto other = test::makeProcessor([] { return std::string("/nonexistent"); });
    test::OpenEditor first(*processor);
    test::OpenEditor second(*other);
    loop.runATick();
    first.widgets().ambience.setValue(1.0, juce::sendNotificationSync);
    chooseFromMenu(first.widgets().scene, "Car");
    EXPECT_EQ(second.widgets().ambience.getValue(), 50.0);
    EXPECT_TRUE(blurred(first));
    EXPECT_FALSE(blurred(second));
}

/// Counts the areas of a component that are to be painted anew; nothing is painted without a screen.
class RepaintCount final : public juce::CachedComponentImage {
public:
    explicit RepaintCount(int& count) : count(&count) {}
    void paint(juce::Graphics&) override {}
    bool invalidateAll() override { return ++*count > 0; }
    bool invalidate(const juce::Rectangle<int>&) override { return ++*count > 0; }
    void releaseResources() override {}

private:
    int* count;
};

TEST_F(EditorOverProcessor, NothingIsPaintedAnewWhileNothingChanges) {
    test::OpenEditor editor(*processor);
    editor.window().setVisible(true);
    loop.runATick();
    int repaints = 0;
    editor.window().setCachedComponentImage(new RepaintCount(repaints)); // the component owns it
    repaints = 0;                                                        // that alone was a reason to paint
    const auto end = juce::Time::getMillisecondCounter() + 5000;
    while (juce::Time::getMillisecondCounter() < end)
        loop.runATick();
    EXPECT_EQ(repaints, 0);
    test::setParameter(*processor, "Ambience", 60.0f);
    EXPECT_GT(repaints, 0);
    repaints = 0;
    test::onAnotherThread([&] { test::setParameter(*processor, "Ambience", 61.0f); });
    EXPECT_EQ(repaints, 0);
    loop.runATick();
    EXPECT_GT(repaints, 0);
}

/// Counts what a host would hear of.
struct Gestures final : juce::AudioProcessorParameter::Listener {
    void parameterValueChanged(int, float) override { ++values; }
    void parameterGestureChanged(int, bool) override { ++gestures; }
    int values = 0;
    int gestures = 0;
};

TEST_F(EditorOverProcessor, AMovedSliderChangesTheParameterWithoutAGesture) {
    Gestures heard;
    auto& parameter = test::parameter(*processor, "Ambience");
    parameter.addListener(&heard);
    {
        test::OpenEditor editor(*processor);
        auto& slider = editor.widgets().ambience;
        slider.startedDragging();
        slider.setValue(30.0, juce::sendNotificationSync);
        slider.stoppedDragging();
    }
    parameter.removeListener(&heard);
    EXPECT_GE(heard.values, 1);
    EXPECT_EQ(heard.gestures, 0);
}

TEST_F(EditorOverProcessor, AStateOfForeignNamesAndNumbersIsShownAsItsFallback) {
    test::OpenEditor editor(*processor);
    loop.runATick();
    auto tree = state.toValueTree();
    tree.getChildWithName("SpeakerSetup").setProperty("Value", 12345, nullptr);
    tree.getChildWithName("Scene").setProperty("Value", 0, nullptr);
    tree.getChildWithName("Ambience").setProperty("Value", 1000.0, nullptr);
    juce::MemoryBlock chunk;
    juce::AudioProcessor::copyXmlToBinary(*tree.createXml(), chunk);
    EXPECT_NO_THROW(processor->setStateInformation(chunk.getData(), static_cast<int>(chunk.getSize())));
    loop.runATick();
    EXPECT_EQ(editor.widgets().speakerSetup.getText(), juce::String("Stereo"));
    EXPECT_EQ(editor.widgets().scene.getText(), juce::String("Mix Room A"));
    EXPECT_EQ(editor.widgets().ambience.getValue(), 100.0);
}

// Sanitizers see a view that touches a widget which has died before it.
TEST_F(EditorOverProcessor, OpensAndClosesAHundredTimes) {
    for (int opening = 0; opening < 100; ++opening) {
        test::OpenEditor editor(*processor);
        if (opening % 3 == 0)
            loop.runATick();
        test::choose(*processor, "Scenes", opening % 2 == 0 ? "Car" : "Analytic Dry");
        test::onAnotherThread([&] { test::choose(*processor, "Speaker Layouts", "Quad"); });
    }
    EXPECT_EQ(state.getScene()->getValue(), core::selectorId("Analytic Dry"));
}

} // namespace

// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/widgets/OffScreen.h"

#include <cstddef>
#include <cstdlib>
#include <memory>

namespace test {

namespace {

/// The framework, up for as long as the tests run. None of it needs a display.
class Framework final : public ::testing::Environment {
public:
    void SetUp() override {
        setenv("DISPLAY", "none", 1); // a screen that happens to be there must not be touched
        framework = std::make_unique<juce::ScopedJuceInitialiser_GUI>();
    }
    void TearDown() override { framework.reset(); }

private:
    std::unique_ptr<juce::ScopedJuceInitialiser_GUI> framework;
};

const auto* const framework = ::testing::AddGlobalTestEnvironment(new Framework); // owned by the test library

} // namespace

juce::Image decoded(const char* data, int size) {
    return juce::ImageFileFormat::loadFrom(data, static_cast<std::size_t>(size));
}

juce::Image shot(juce::Component& component, float scale) {
    return component.createComponentSnapshot(component.getLocalBounds(), true, scale)
        .convertedToFormat(juce::Image::ARGB);
}

::testing::AssertionResult samePixels(const juce::Image& actual, const juce::Image& expected) {
    if (actual.getBounds() != expected.getBounds() || actual.isNull())
        return ::testing::AssertionFailure()
               << actual.getBounds().toString() << " is not the size of " << expected.getBounds().toString();
    for (int y = 0; y < actual.getHeight(); ++y)
        for (int x = 0; x < actual.getWidth(); ++x)
            if (actual.getPixelAt(x, y) != expected.getPixelAt(x, y))
                return ::testing::AssertionFailure()
                       << "pixel " << x << ", " << y << " is " << actual.getPixelAt(x, y).toString()
                       << ", not " << expected.getPixelAt(x, y).toString();
    return ::testing::AssertionSuccess();
}

int visiblePixels(const juce::Image& image) {
    int count = 0;
    for (int y = 0; y < image.getHeight(); ++y)
        for (int x = 0; x < image.getWidth(); ++x)
            count += image.getPixelAt(x, y).isTransparent() ? 0 : 1;
    return count;
}

juce::MouseEvent mouse(juce::Component& component, juce::Point<float> position, juce::ModifierKeys modifiers,
                       juce::Point<float> downPosition, int clicks, bool dragged) {
    static juce::Time now =
        juce::Time::getCurrentTime(); // the framework drops a wheel event of the same time
    now += juce::RelativeTime::milliseconds(10);
    return {juce::Desktop::getInstance().getMainMouseSource(),
            position,
            modifiers,
            juce::MouseInputSource::defaultPressure,
            juce::MouseInputSource::defaultOrientation,
            juce::MouseInputSource::defaultRotation,
            juce::MouseInputSource::defaultTiltX,
            juce::MouseInputSource::defaultTiltY,
            &component,
            &component,
            now,
            downPosition,
            now,
            clicks,
            dragged};
}

void drag(juce::Component& component, juce::Point<float> step, int steps, juce::ModifierKeys modifiers) {
    const auto pressed = modifiers.withFlags(juce::ModifierKeys::leftButtonModifier);
    const auto down = component.getLocalBounds().toFloat().getCentre();
    component.mouseDown(mouse(component, down, pressed, down));
    auto position = down;
    for (int i = 0; i < steps; ++i) {
        position += step;
        component.mouseDrag(mouse(component, position, pressed, down, 1, true));
    }
    component.mouseUp(mouse(component, position, pressed, down, 1, true));
}

void type(juce::Label& label, const juce::String& text) {
    label.showEditor();
    label.getCurrentTextEditor()->insertTextAtCaret(text);
    label.hideEditor(false);
}

} // namespace test

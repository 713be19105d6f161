// SPDX-License-Identifier: GPL-3.0-or-later
// What the window costs the message thread: to open, and to paint as a whole, after a change of its pictures, and one dial of
// it. Off-screen, into a picture such as the framework paints windows into; "scale" 100 is a plain screen, 200 a dense one.
#include "Resources.h"
#include "ui/MainComponent.h"
#include "ui/toolbar/BrevikTool.h"
#include "ui/widgets/Pictures.h"

#include <benchmark/benchmark.h>
#include <juce_audio_processors/juce_audio_processors.h>

#include <cstdlib>
#include <memory>
#include <utility>

namespace {

/// The framework and one editor's view with its toolbar.
class Window {
public:
    explicit Window(float scale)
        : scale(scale),
          screen(juce::Image::RGB, juce::roundToInt(1080 * scale), juce::roundToInt(660 * scale), true) {
        editor.setBounds(0, 0, 1080, 636);
        editor.setVisible(true);
        view.setBounds(editor.getBounds());
        editor.addAndMakeVisible(view);
        toolbars.attach(editor, {}, {}, {});
        view.backgroundImage = orvane::picture(resources::normal_png, resources::normal_pngSize);
        view.speakerImage = orvane::picture(resources::_7_1_4_png, resources::_7_1_4_pngSize);
        paint(editor.getLocalBounds());
    }

    void paint(juce::Rectangle<int> area) {
        juce::Graphics g(screen);
        g.addTransform(juce::AffineTransform::scale(scale));
        g.reduceClipRegion(area);
        editor.paintEntireComponent(g, true);
    }

private:
    int noScreen = setenv("DISPLAY", "none", 1); ///< Before the framework looks for one.
    juce::ScopedJuceInitialiser_GUI framework;
    float scale;
    juce::Image screen;
    BrevikPluginTools::BrevikTool toolbars{"Orvane KESTRUM"};

public:
    juce::Component editor;
    orvane::kestrum::MainComponent view;
};

void wholeWindow(benchmark::State& state) {
    Window window(static_cast<float>(state.range(0)) / 100.0f);
    for (auto _ : state)
        window.paint(window.editor.getLocalBounds());
}

/// Another layout: the speaker diagram is new.
void wholeWindowWithANewDiagram(benchmark::State& state) {
    Window window(static_cast<float>(state.range(0)) / 100.0f);
    auto other = orvane::picture(resources::_5_1_ITU_png, resources::_5_1_ITU_pngSize);
    for (auto _ : state) {
        std::swap(window.view.speakerImage, other);
        window.paint(window.editor.getLocalBounds());
    }
}

/// Another kind of Scene: the background is new.
void wholeWindowWithANewBackground(benchmark::State& state) {
    Window window(static_cast<float>(state.range(0)) / 100.0f);
    auto other = orvane::picture(resources::blurred_png, resources::blurred_pngSize);
    for (auto _ : state) {
        std::swap(window.view.backgroundImage, other);
        window.paint(window.editor.getLocalBounds());
    }
}

/// A dragged dial: itself and what lies behind it.
void oneDial(benchmark::State& state) {
    Window window(static_cast<float>(state.range(0)) / 100.0f);
    double degrees = -180;
    for (auto _ : state) {
        degrees = degrees < 180 ? degrees + 1 : -180;
        window.view.headRotation.setValue(degrees, juce::dontSendNotification);
        window.paint(window.view.headRotation.getBounds());
    }
}

/// The editor as a host opens it, over an instance that is not prepared, up to its first picture and without closing it.
void opening(benchmark::State& state) {
    setenv("DISPLAY", "none", 1);
    const juce::ScopedJuceInitialiser_GUI framework;
    const std::unique_ptr<juce::AudioProcessor> processor(createPluginFilter());
    juce::Image screen(juce::Image::RGB, 1080, 660, true);
    std::unique_ptr<juce::AudioProcessorEditor> editor;
    for (auto _ : state) {
        editor.reset(processor->createEditor());
        juce::Graphics g(screen);
        editor->paintEntireComponent(g, true);
        state.PauseTiming();
        editor.reset();
        state.ResumeTiming();
    }
}

// The first one of the process, which decodes the pictures: before all others, and once.
BENCHMARK(opening)->Name("firstOpening")->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(opening)->Name("laterOpening")->Unit(benchmark::kMillisecond);
BENCHMARK(wholeWindow)->ArgName("scale")->Arg(100)->Arg(150)->Arg(200)->Unit(benchmark::kMillisecond);
BENCHMARK(wholeWindowWithANewDiagram)->ArgName("scale")->Arg(100)->Arg(200)->Unit(benchmark::kMillisecond);
BENCHMARK(wholeWindowWithANewBackground)->ArgName("scale")->Arg(100)->Arg(200)->Unit(benchmark::kMillisecond);
BENCHMARK(oneDial)->ArgName("scale")->Arg(100)->Arg(200)->Unit(benchmark::kMillisecond);

} // namespace

// SPDX-License-Identifier: GPL-3.0-or-later
// A host whose thread writes parameters while the editor is open, and while it opens and closes. Sanitizers look on; the
// variable KESTRUM_STRESS_SECONDS makes it longer.
#include "OpenEditor.h"
#include "ShownValues.h"
#include "StressTime.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <string>
#include <thread>

namespace {

using test::expectWidgetsToShowTheValues;
using test::Processor;
using test::stressTime;

/// Writes all six parameters in turn, a thousand times a second, until it is destroyed.
class WritingHost {
public:
    explicit WritingHost(Processor& processor) : thread([this, &processor] { write(processor); }) {}
    ~WritingHost() { stop(); }
    WritingHost(const WritingHost&) = delete;
    WritingHost& operator=(const WritingHost&) = delete;

    void stop() {
        running = false;
        if (thread.joinable())
            thread.join();
    }
    int writes() const { return count; }

private:
    void write(Processor& processor) {
        auto next = std::chrono::steady_clock::now();
        for (std::uint32_t i = 0; running; ++i) {
            auto* const parameter = processor.getParameters()[static_cast<int>(i % 6)];
            parameter->setValueNotifyingHost(static_cast<float>((i * 7919u) % 1000u) / 999.0f);
            ++count;
            next += std::chrono::milliseconds(1);
            std::this_thread::sleep_until(next);
        }
    }

    std::atomic<bool> running{true};
    std::atomic<int> count{0};
    std::thread thread;
};

class EditorUnderStress : public ::testing::Test {
protected:
    test::MessageLoop loop;
    std::unique_ptr<Processor> processor = test::makeProcessor([] { return std::string("/nonexistent"); });
};

TEST_F(EditorUnderStress, ShowsInTheEndWhatAHostWroteAThousandTimesASecond) {
    test::OpenEditor editor(*processor);
    WritingHost host(*processor);
    const auto end = std::chrono::steady_clock::now() + stressTime();
    while (std::chrono::steady_clock::now() < end)
        loop.runATick();
    host.stop();
    loop.runATick();
    EXPECT_GT(host.writes(), 100);
    expectWidgetsToShowTheValues(*processor, editor);
}

TEST_F(EditorUnderStress, OpensAndClosesWhileAHostWrites) {
    WritingHost host(*processor);
    const auto end = std::chrono::steady_clock::now() + stressTime();
    for (int opening = 0; opening < 20 || std::chrono::steady_clock::now() < end; ++opening) {
        test::OpenEditor editor(*processor);
        if (opening % 2 == 0)
            loop.runATick();
    }
    test::OpenEditor last(*processor);
    host.stop();
    loop.runATick();
    expectWidgetsToShowTheValues(*processor, last);
}

// A person and a host move the same sliders; whoever is last, widgets and values agree.
TEST_F(EditorUnderStress, WidgetsAndValuesAgreeAfterAPersonAndAHostHaveMovedThemAtOnce) {
    test::OpenEditor editor(*processor);
    auto& widgets = editor.widgets();
    WritingHost host(*processor);
    for (int move = 0; move < 200; ++move) {
        widgets.ambience.setValue(move % 101, juce::sendNotificationSync);
        widgets.masterGain.setValue(move % 24, juce::sendNotificationSync);
        widgets.sceneNext.triggerClick();
        juce::MessageManager::getInstance()->runDispatchLoopUntil(1);
    }
    host.stop();
    loop.runATick();
    expectWidgetsToShowTheValues(*processor, editor);
}

} // namespace

// SPDX-License-Identifier: GPL-3.0-or-later
// Timer and watchdog: what comes with a tick, and only then.
#include "MessageLoop.h"

#include "ui/Timer.h"
#include "ui/WatchDog.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <vector>

namespace {

using namespace orvane::kestrum;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// A processor of which nothing but its error flag is asked.
class Flag final : public IProcessor {
public:
    void addBusesLayoutListener(BusesLayoutListener*) override {}
    void removeBusesLayoutListener(BusesLayoutListener*) override {}
    core::ISupportedLayouts* getSupportedLayouts() override { return nullptr; }
    int getNumberOfInputChannels() const override { return 0; }
    void getHeadRotation(orvane::HeadRotationMatrix&) const override {}
    OrvaneIPC::IOrvaneParameterClient* getParameterClient() const override { return nullptr; }
    juce::AudioProcessor* getAudioProcessor() override { return nullptr; }
    IProcessorState* getProcessorState() override { return nullptr; }
    bool hasError() const noexcept override { return up; }

    std::atomic<bool> up{false};
};

struct Overlay final : IWatchDog::Listener {
    void errorStateChanged(bool error) override { told.push_back(error); }
    std::vector<bool> told;
};

struct Counter final : core::ITimer::Listener {
    void timerCallback() override { ++ticks; }
    int ticks = 0;
};

TEST(Ticks, ComeToEveryListenerUntilItIsRemoved) {
    test::MessageLoop loop;
    Timer timer;
    Counter first;
    Counter second;
    timer.addListener(&first);
    timer.addListener(&second);
    timer.addListener(&second);
    ASSERT_TRUE(loop.runUntil([&] { return first.ticks >= 2; }));
    EXPECT_EQ(second.ticks, first.ticks);
    timer.removeListener(&second);
    const int before = second.ticks;
    loop.runATick();
    EXPECT_EQ(second.ticks, before);
}

TEST(ErrorFlag, IsToldAtTheNextTickAndOnceForEachChange) {
    test::MessageLoop loop;
    Flag flag;
    WatchDog watchDog(flag);
    Overlay overlay;
    watchDog.addListener(&overlay);
    loop.runATick();
    EXPECT_THAT(overlay.told, IsEmpty());
    flag.up = true;
    EXPECT_THAT(overlay.told, IsEmpty());
    loop.runATick();
    loop.runATick();
    EXPECT_THAT(overlay.told, ElementsAre(true));
    flag.up = false;
    loop.runATick();
    EXPECT_THAT(overlay.told, ElementsAre(true, false));
}

TEST(ErrorFlag, ThatWasUpAlreadyIsToldAtTheFirstTickOfANewWatchdog) {
    test::MessageLoop loop;
    Flag flag;
    flag.up = true;
    WatchDog watchDog(flag);
    Overlay overlay;
    watchDog.addListener(&overlay);
    EXPECT_THAT(overlay.told, IsEmpty());
    loop.runATick();
    EXPECT_THAT(overlay.told, ElementsAre(true));
}

TEST(ErrorFlag, ThatIsUpBetweenTwoTicksOnlyIsNeverSeen) {
    test::MessageLoop loop;
    Flag flag;
    WatchDog watchDog(flag);
    Overlay overlay;
    watchDog.addListener(&overlay);
    flag.up = true;
    flag.up = false;
    loop.runATick();
    EXPECT_THAT(overlay.told, IsEmpty());
}

// The flag rises while the message thread is busy for the time of several ticks: told late, and once.
TEST(ErrorFlag, IsToldLateWhileTheMessageThreadIsBusy) {
    test::MessageLoop loop;
    Flag flag;
    WatchDog watchDog(flag);
    Overlay overlay;
    watchDog.addListener(&overlay);
    flag.up = true;
    const auto busyUntil = juce::Time::getMillisecondCounter() + 150;
    while (juce::Time::getMillisecondCounter() < busyUntil)
        ASSERT_THAT(overlay.told, IsEmpty());
    loop.runATick();
    loop.runATick();
    EXPECT_THAT(overlay.told, ElementsAre(true));
}

TEST(ErrorFlag, IsNotToldToAListenerThatHasBeenRemoved) {
    test::MessageLoop loop;
    Flag flag;
    WatchDog watchDog(flag);
    Overlay overlay;
    watchDog.addListener(&overlay);
    watchDog.removeListener(&overlay);
    flag.up = true;
    loop.runATick();
    EXPECT_THAT(overlay.told, IsEmpty());
}

} // namespace

// SPDX-License-Identifier: GPL-3.0-or-later
// Values that are set on one thread while presenters come, go and act on another. The views of these tests keep the
// latest call in an atomic, as those of the editor do for foreign threads.
#include "core/ScenePresenter.h"
#include "core/SliderPresenter.h"

#include "parameters/core/SelectorId.h"
#include "parameters/core/SelectorValue.h"
#include "parameters/core/SliderValue.h"
#include "support/RealtimeScope.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <thread>
#include <vector>

namespace {

using namespace orvane::kestrum::core;
using SliderValue = internal::SliderValue<float>;

class LatestSlider final : public ISlider {
public:
    explicit LatestSlider(std::atomic<float>& shown) : shown(&shown) {}
    void setValue(float value) override { *shown = value; }
    float getValue() const override { return *shown; }
    void setEnabled(bool) override {}
    void addListener(Listener*) override {}
    void removeListener(Listener*) override {}

private:
    std::atomic<float>* shown;
};

class LatestSelector final : public ISelector {
public:
    explicit LatestSelector(std::atomic<std::uint32_t>& shown) : shown(&shown) {}
    void setValue(std::uint32_t id) override { *shown = id; }
    std::uint32_t getValue() const override { return *shown; }
    void setItemEnabled(std::uint32_t, bool) override {}
    void addListener(Listener*) override {}
    void removeListener(Listener*) override {}

private:
    std::atomic<std::uint32_t>* shown;
};

class LatestBackground final : public IBackgroundImage {
public:
    explicit LatestBackground(std::atomic<bool>& shown) : shown(&shown) {}
    void setBlurred(bool blurred) override { *shown = blurred; }

private:
    std::atomic<bool>* shown;
};

// Stress: editors open and close while a host writes. Sanitizers see a use after the end, or a race.
TEST(PresentersAndThreads, ComeAndGoWhileAValueIsSetElsewhere) {
    SliderValue value(0.0f);
    std::atomic<bool> running{true};
    std::atomic<int> writes{0};
    std::thread host([&] {
        for (int i = 0; running; ++i) {
            value.setValue(static_cast<float>(i % 101));
            writes.fetch_add(1);
        }
    });
    std::atomic<float> shown{0.0f};
    for (int opening = 0; opening < 2000 || writes < 10000; ++opening)
        const SliderPresenter presenter(&value, std::make_unique<LatestSlider>(shown));
    running = false;
    host.join();
    const SliderPresenter last(&value, std::make_unique<LatestSlider>(shown));
    EXPECT_EQ(shown, value.getValue());
}

// Property: whichever thread is last, its view shows what the value holds.
TEST(PresentersAndThreads, AfterWritesOfTwoThreadsTheViewShowsWhatIsHeld) {
    SliderValue value(0.0f);
    std::atomic<float> shown{0.0f};
    const SliderPresenter presenter(&value, std::make_unique<LatestSlider>(shown));
    for (int round = 0; round < 300; ++round) {
        std::vector<std::thread> hosts;
        hosts.reserve(2);
        for (int host = 1; host <= 2; ++host)
            hosts.emplace_back([&value, host, round] {
                for (int i = 0; i < 20; ++i)
                    value.setValue(static_cast<float>(1000 * host + round + i));
            });
        for (auto& host : hosts)
            host.join();
        ASSERT_EQ(shown, value.getValue()) << "round " << round;
    }
}

TEST(PresentersAndThreads, AfterWritesOfTwoThreadsAmbienceAndBackgroundBelongToTheSceneThatIsHeld) {
    const std::uint32_t dry = selectorId("Analytic Dry");
    const std::uint32_t car = selectorId("Car");
    SelectorValue value(dry);
    std::atomic<std::uint32_t> shown{0};
    std::atomic<float> ambience{0.0f};
    std::atomic<bool> blurred{false};
    const ScenePresenter presenter(&value, std::make_unique<LatestSelector>(shown),
                                   std::make_unique<LatestSlider>(ambience),
                                   std::make_unique<LatestBackground>(blurred));
    for (int round = 0; round < 300; ++round) {
        std::vector<std::thread> hosts;
        hosts.reserve(2);
        for (const std::uint32_t last : {car, dry})
            hosts.emplace_back([&value, dry, car, last] {
                for (int i = 0; i < 10; ++i) {
                    value.setValue(last == car ? dry : car);
                    value.setValue(last);
                }
            });
        for (auto& host : hosts)
            host.join();
        ASSERT_EQ(shown, value.getValue()) << "round " << round;
        ASSERT_EQ(blurred, value.getValue() == car) << "round " << round;
    }
}

TEST(PresentersAndThreads, TheWayFromAValueToItsViewsNeitherAllocatesNorLocks) {
    SliderValue slider(0.0f);
    SelectorValue scene(selectorId("Mix Room"));
    std::atomic<float> shown{0.0f};
    std::atomic<float> ambience{0.0f};
    std::atomic<std::uint32_t> shownScene{0};
    std::atomic<bool> blurred{false};
    const SliderPresenter sliderPresenter(&slider, std::make_unique<LatestSlider>(shown));
    const ScenePresenter scenePresenter(&scene, std::make_unique<LatestSelector>(shownScene),
                                        std::make_unique<LatestSlider>(ambience),
                                        std::make_unique<LatestBackground>(blurred));
    const std::uint32_t car = selectorId("Car");
    test::RealtimeViolations seen;
    std::thread host([&] {
        const test::RealtimeScope scope;
        slider.setValue(25.0f);
        scene.setValue(car);
        seen = scope.violations();
    });
    host.join();
    EXPECT_EQ(seen, test::RealtimeViolations{});
    EXPECT_EQ(shown, 25.0f);
    EXPECT_EQ(shownScene, car);
    EXPECT_TRUE(blurred);
}

} // namespace

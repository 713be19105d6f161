// SPDX-License-Identifier: GPL-3.0-or-later
// The window as something that comes and goes while the plug-in works. The data folder has to be installed.
#include "WindowFixture.h"
#include "host/HostError.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cmath>
#include <filesystem>
#include <thread>
#include <vector>

namespace {

using namespace orvane::kestrum::host;
using namespace orvane::kestrum::host::test;
using namespace std::chrono_literals;

constexpr std::uint32_t block = 256;

bool sounds(PluginInstance& plugin) {
    return peakOf(play(plugin, noise(plugin.inputChannelCount(), 40 * block), block)) > 0.01f;
}

/// Plays blocks on a thread of its own, as an audio driver does, every parameter changing in each.
class AudioDriver {
public:
    explicit AudioDriver(PluginInstance& plugin)
        : thread([this, &plugin] {
              const Channels input = noise(plugin.inputChannelCount(), block);
              for (unsigned number = 0; !ended; ++number) {
                  for (const auto& parameter : plugin.parameters())
                      plugin.automate(parameter.id, static_cast<double>(number % 101) / 100);
                  play(plugin, input, block);
                  ++blockCount;
                  std::this_thread::sleep_for(1ms);
              }
          }) {}
    AudioDriver(const AudioDriver&) = delete;
    AudioDriver& operator=(const AudioDriver&) = delete;
    ~AudioDriver() {
        ended = true;
        thread.join();
    }
    unsigned blocks() const { return blockCount; }

private:
    std::atomic<bool> ended{false};
    std::atomic<unsigned> blockCount{0};
    std::thread thread;
};

std::size_t entriesOf(const char* folder) {
    return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(folder), {}));
}

/// What the process holds of the system.
struct Holdings {
    std::size_t files = entriesOf("/proc/self/fd");
    std::size_t threads = entriesOf("/proc/self/task");
    bool operator==(const Holdings&) const = default;
};

class WindowLife : public WindowTest {};

TEST_F(WindowLife, TheWindowHasTheSizeThatTheViewSaysAndIsPainted) {
    auto& opened = open();
    const auto size = opened.window().viewSize();
    EXPECT_EQ(opened.window().windowSize(), size);
    const Image picture = opened.window().screenshot();
    EXPECT_EQ(picture.width, size.width);
    EXPECT_EQ(picture.height, size.height);
    EXPECT_LT(countOf(opened.look(), 0, 0, 0, 0), size.width * size.height / 2)
        << "nothing but the bare frame";
}

TEST_F(WindowLife, ClosingTakesTheViewOffTheDisplayAndOutOfTheLoop) {
    auto& opened = open();
    opened.look();
    EXPECT_GT(opened.window().servedCount(), 0u);
    opened.window().close();
    EXPECT_EQ(opened.window().servedCount(), 0u);
    EXPECT_FALSE(opened.window().isOpen());
    EXPECT_THROW(opened.window().screenshot(), HostError);
    Person eye({0, 0});
    EXPECT_EQ(eye.seeScreen(), Image(VirtualDisplay::width, VirtualDisplay::height)) << "something was left";
}

TEST_F(WindowLife, AHundredOpeningsAndClosingsLeaveNothingBehind) {
    const auto plugin = makePlugin();
    plugin->prepare(48000, block, ProcessMode::realtime);
    const auto openAndClose = [&plugin](int times) {
        for (int round = 0; round < times; ++round) {
            EditorWindow window(*plugin);
            window.open();
            window.pumpFor(20ms);
            window.close();
        }
    };
    openAndClose(10); // what is opened once for all has been opened
    const Holdings before;
    openAndClose(90);
    EXPECT_EQ(Holdings(), before);
    EXPECT_TRUE(sounds(*plugin)) << "the sound goes on";
}

TEST_F(WindowLife, AViewThatIsNeverShownGoesWithoutTrace) {
    const auto plugin = makePlugin();
    for (int round = 0; round < 10; ++round) {
        const EditorWindow window(*plugin);
        EXPECT_FALSE(window.isOpen());
    }
    EditorWindow window(*plugin);
    window.open();
    window.pumpFor(50ms);
    EXPECT_TRUE(window.isOpen());
}

TEST_F(WindowLife, AnInstanceGivesOneWindowAtATime) {
    const auto plugin = makePlugin();
    {
        EditorWindow first(*plugin);
        first.open();
        EXPECT_THROW(EditorWindow{*plugin}, HostError);
    }
    EXPECT_NO_THROW(EditorWindow{*plugin});
}

TEST_F(WindowLife, TwoInstancesShowTheirWindowsSideBySide) {
    const auto first = makePlugin();
    const auto second = makePlugin(2);
    EditorWindow left(*first);
    EditorWindow right(*second);
    left.open(0, 0);
    right.open(300, 300);
    right.pumpFor(100ms);
    left.close();
    EXPECT_TRUE(
        right.pumpUntil([&] { return countOf(right.screenshot(), 0, 0, 0, 0) < 300 * 300; }, patience))
        << "the second one goes on living";
}

TEST_F(WindowLife, OpensBeforePreparationAndStaysOpenThroughPreparationsAndReleases) {
    auto& opened = open();
    auto& plugin = opened.plugin();
    EXPECT_FALSE(sounds(plugin));
    for (const int rate : {48000, 96000, 44100}) {
        plugin.prepare(rate, block, ProcessMode::realtime);
        opened.window().pumpFor(100ms);
        EXPECT_TRUE(sounds(plugin)) << rate;
        plugin.release();
    }
    EXPECT_TRUE(opened.window().isOpen());
}

TEST_F(WindowLife, OpensAndClosesWhileADriverPlaysAndAutomatesEveryParameter) {
    const auto plugin = makePlugin();
    plugin->prepare(48000, block, ProcessMode::realtime);
    const AudioDriver driver(*plugin);
    for (int round = 0; round < 20; ++round) {
        EditorWindow window(*plugin);
        window.open();
        EXPECT_TRUE(window.pumpUntil([&, before = driver.blocks()] { return driver.blocks() > before + 10; },
                                     patience));
        window.close();
    }
}

TEST(WindowWithoutADisplay, TheViewIsMadeAndAttachingItFailsInPlainWords) {
    const NoDisplay away;
    const auto plugin = makePlugin();
    plugin->prepare(48000, block, ProcessMode::realtime);
    EditorWindow window(*plugin);
    EXPECT_GT(window.viewSize().width, 0);
    for (int attempt = 0; attempt < 3; ++attempt)
        try {
            window.open();
            ADD_FAILURE() << "a window without a display";
        } catch (const HostError& error) {
            EXPECT_STREQ(error.what(), "There is no X display: the variable DISPLAY is not set.");
        }
    EXPECT_FALSE(window.isOpen());
    EXPECT_TRUE(sounds(*plugin)) << "the sound goes on";
}

} // namespace

// SPDX-License-Identifier: GPL-3.0-or-later
// What a host may do besides the ordinary, each in a process of its own; and that a crash or a hang there is told as one.
#include "Child.h"
#include "Play.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <csignal>
#include <random>
#include <stdexcept>
#include <thread>

namespace {

using namespace rawhost;
using ::testing::StartsWith;

constexpr double rate = 48000;
constexpr int block = 256;
constexpr std::uint64_t stereo = 0x3;
constexpr std::uint64_t surround51 = 0x3F;

/// 0 to 31 and 0 to 15, as values of the two selectors.
Edit anyLayout(const RawPlugin& plugin, std::mt19937& random) {
    return {plugin.parameterId("Speaker Layouts"), static_cast<double>(random() % 32) / 31};
}
Edit anyScene(const RawPlugin& plugin, std::mt19937& random) {
    return {plugin.parameterId("Scenes"), static_cast<double>(random() % 16) / 15};
}

TEST(Children, TellNothingWhenAllIsWell) {
    EXPECT_EQ(inChild([] { return std::string(); }), "");
}

TEST(Children, TellWhatTheyFoundOrThrew) {
    EXPECT_EQ(inChild([] { return std::string(100000, 'x'); }), std::string(100000, 'x'));
    EXPECT_EQ(inChild([]() -> std::string { throw std::runtime_error("thrown"); }), "thrown");
}

TEST(Children, TellACrashAndAnEndAsSuch) {
    EXPECT_THAT(inChild([]() -> std::string {
                    std::signal(SIGSEGV, SIG_DFL); // a sanitizer would report it in its own words
                    std::raise(SIGSEGV);
                    return {};
                }),
                StartsWith("ended by signal 11"));
    EXPECT_EQ(inChild([]() -> std::string { _exit(3); }), "ended with exit status 3");
    EXPECT_EQ(inChild([]() -> std::string { _exit(0); }), "ended before its body did");
}

TEST(Children, TellAHangAndEndIt) {
    EXPECT_EQ(inChild(
                  []() -> std::string {
                      for (volatile bool on = true; on;) {
                      }
                      return {};
                  },
                  std::chrono::seconds(1)),
              "hung: no end within 1 seconds");
}

TEST(ForeignHosts, SendBlocksWithoutFramesAndHearTheSameAsWithoutThem) {
    EXPECT_EQ(inChild([] {
                  Findings findings;
                  const RawModule module(KESTRUM_BUNDLE);
                  const Channels input = noise(2, 20 * block);
                  const auto rendered = [&](std::span<const int> blocks) {
                      const RawPlugin plugin(module);
                      plugin.prepare(rate, block);
                      return play(plugin, input, blocks);
                  };
                  const Channels plain = rendered(std::array{block});
                  findings.expect(peakOf(plain) > 0.01f, "silence");
                  findings.expect(rendered(std::array{0, block, 0, 0}) == plain, "other sound");
                  return findings.text();
              }),
              "");
}

TEST(ForeignHosts, UseOneMemoryForInputAndOutput) {
    EXPECT_EQ(inChild([] {
                  Findings findings;
                  const RawModule module(KESTRUM_BUNDLE);
                  const Channels input = noise(6, 40 * block);
                  const auto prepared = [&] {
                      auto plugin = std::make_unique<RawPlugin>(module);
                      plugin->arrange(surround51, stereo);
                      plugin->choose("Speaker Layouts", "5.1 ITU");
                      plugin->prepare(rate, block);
                      return plugin;
                  };
                  const Channels apart = play(*prepared(), input, block);
                  const auto plugin = prepared();
                  Channels shared = input;
                  for (std::size_t first = 0; first < shared[0].size(); first += block) {
                      std::array<float*, 6> channels{};
                      for (std::size_t channel = 0; channel < 6; ++channel)
                          channels[channel] = shared[channel].data() + first;
                      plugin->process(channels.data(), 6, channels.data(), 2, block);
                  }
                  findings.expect(peakOf(apart) > 0.01f, "silence");
                  findings.expect(shared[0] == apart[0] && shared[1] == apart[1], "other sound");
                  return findings.text();
              }),
              "");
}

/// What a state holds for one of its children, as text: the chunk is XML behind a short header.
std::string heldBy(const std::vector<std::byte>& state, const std::string& child) {
    const std::string text(reinterpret_cast<const char*>(state.data()), state.size());
    const std::size_t start = text.find('"', text.find("<" + child + " ")) + 1;
    return text.substr(start, text.find('"', start) - start);
}

TEST(ForeignHosts, FlushParametersInEveryState) {
    // -96 to 24 dB: a quarter of the way is -66 dB.
    EXPECT_EQ(inChild([] {
                  Findings findings;
                  const RawModule module(KESTRUM_BUNDLE);
                  const RawPlugin plugin(module);
                  const Vst::ParamID gain = plugin.parameterId("Master Gain");
                  const auto takes = [&](double value, const std::string& when) {
                      plugin.flush({{gain, value}});
                      const std::string held = heldBy(plugin.state(), "MasterGain");
                      findings.expect(std::abs(std::stod(held) - (value * 120 - 96)) < 1e-3,
                                      held + " " + when);
                  };
                  takes(0.25, "before the setup");
                  plugin.setUp(rate, block);
                  takes(0.5, "before activation");
                  plugin.activate(true);
                  takes(0.75, "while active");
                  plugin.activate(false);
                  takes(0.5, "after activation");
                  plugin.process(nullptr, 0, nullptr, 0, 0); // no list of changes at all
                  plugin.process(nullptr, 0, nullptr, 0, block);
                  return findings.text();
              }),
              "");
}

TEST(ForeignHosts, WriteEveryParameterInEveryBlockAndHearFiniteSound) {
    EXPECT_EQ(inChild([] {
                  Findings findings;
                  const RawModule module(KESTRUM_BUNDLE);
                  const RawPlugin plugin(module);
                  plugin.arrange((std::uint64_t{1} << 16) - 1, stereo);
                  plugin.prepare(rate, block);
                  std::mt19937 random(1);
                  const Channels input = noise(16, block);
                  Channels from = input;
                  Channels to = silence(2, block);
                  std::array<float*, 16> inputs{};
                  std::ranges::transform(from, inputs.begin(), [](auto& channel) { return channel.data(); });
                  std::array<float*, 2> outputs{to[0].data(), to[1].data()};
                  const auto edits = orvane::kestrum::host::makeHostObject<BlockEdits>();
                  const auto number = [&] { return static_cast<double>(random()) / std::mt19937::max(); };
                  for (int turn = 0; turn < 500; ++turn) {
                      edits->set({anyLayout(plugin, random),
                                  anyScene(plugin, random),
                                  {plugin.parameterId("Ambience"), number()},
                                  {plugin.parameterId("Focus"), number()},
                                  {plugin.parameterId("Head Rotation"), number()},
                                  {plugin.parameterId("Master Gain"), number()},
                                  {0x7FFFFFFF, number()}}); // there is no such parameter
                      from = input;
                      plugin.process(inputs.data(), 16, outputs.data(), 2, block, edits.get());
                      findings.expect(isFinite(to), "no number comes out");
                  }
                  return findings.text();
              }),
              "");
}

TEST(ForeignHosts, SaveAndRestoreStatesOnOtherThreadsWhileBlocksRun) {
    EXPECT_EQ(inChild([] {
                  Findings findings;
                  const RawModule module(KESTRUM_BUNDLE);
                  const RawPlugin plugin(module);
                  plugin.choose("Scenes", "Kitchen");
                  const auto kitchen = plugin.state();
                  plugin.choose("Scenes", "Mix Room");
                  const auto mixRoom = plugin.state();
                  plugin.prepare(rate, block);
                  std::atomic<bool> running{true};
                  std::thread restoring([&] {
                      for (int turn = 0; turn < 200; ++turn)
                          plugin.setState(turn % 2 == 0 ? kitchen : mixRoom);
                      running = false;
                  });
                  std::thread saving([&] {
                      while (running)
                          findings.expect(!plugin.state().empty(), "an empty state");
                  });
                  const Channels input = noise(2, block);
                  bool finite = true;
                  while (running)
                      finite = isFinite(play(plugin, input, block)) && finite;
                  restoring.join();
                  saving.join();
                  findings.expect(finite, "no number comes out");
                  plugin.setState(kitchen);
                  findings.expect(plugin.state() == kitchen, "the last state is not what is held");
                  return findings.text();
              }),
              "");
}

TEST(ForeignHosts, PrepareAgainAndAgainWithoutReleasing) {
    EXPECT_EQ(inChild([] {
                  Findings findings;
                  const RawModule module(KESTRUM_BUNDLE);
                  const RawPlugin plugin(module);
                  for (const double next : {48000.0, 96000.0, 22050.0, 44100.0, 48000.0}) {
                      for (const int length : {64, 1000, 2}) {
                          plugin.prepare(next, length);
                          const auto sound = play(plugin, noise(2, 6000), length);
                          findings.expect(isFinite(sound), "no number comes out");
                          findings.expect(peakOf(sound) > 0.01f, "silence at " + std::to_string(next));
                      }
                  }
                  return findings.text();
              }),
              "");
}

TEST(ForeignHosts, ChangeBusesWhileActiveAndAreRefusedWithoutHarm) {
    EXPECT_EQ(inChild([] {
                  Findings findings;
                  const RawModule module(KESTRUM_BUNDLE);
                  const RawPlugin plugin(module);
                  plugin.arrange(surround51, stereo);
                  plugin.choose("Speaker Layouts", "5.1 ITU");
                  plugin.prepare(rate, block);
                  for (const std::uint64_t other : {stereo, std::uint64_t{0xFFFF}, surround51}) {
                      findings.expect(!plugin.arrange(other, stereo), "another bus while active");
                      const auto sound = play(plugin, noise(6, 20 * block), block);
                      findings.expect(isFinite(sound) && peakOf(sound) > 0.01f, "silence, or no number");
                  }
                  for (const std::uint64_t other : {stereo, std::uint64_t{0xFFFF}, surround51}) {
                      plugin.activate(false);
                      findings.expect(plugin.arrange(other, stereo), "no other bus between activations");
                      plugin.prepare(rate, block);
                      const std::size_t width = plugin.channelCount(Vst::kInput);
                      const auto sound = play(plugin, noise(width, 20 * block), block);
                      findings.expect(isFinite(sound), "no number comes out");
                      findings.expect((peakOf(sound) > 0) == (width >= 6), "silence at the wrong width");
                  }
                  return findings.text();
              }),
              "");
}

TEST(ForeignHosts, SwitchBusesOffAndOnBetweenBlocks) {
    EXPECT_EQ(inChild([] {
                  Findings findings;
                  const RawModule module(KESTRUM_BUNDLE);
                  const RawPlugin plugin(module);
                  plugin.prepare(rate, block);
                  for (int turn = 0; turn < 20; ++turn) {
                      plugin.component().activateBus(Vst::kAudio, turn % 3 == 0 ? Vst::kOutput : Vst::kInput,
                                                     0, turn % 2 == 0);
                      findings.expect(isFinite(play(plugin, noise(2, 4 * block), block)),
                                      "no number comes out");
                  }
                  return findings.text();
              }),
              "");
}

TEST(ForeignHosts, TakeAnInstanceAwayWhileItIsActive) {
    EXPECT_EQ(inChild([] {
                  Findings findings;
                  const RawModule module(KESTRUM_BUNDLE);
                  for (int turn = 0; turn < 5; ++turn) {
                      const RawPlugin plugin(module);
                      plugin.prepare(rate, block);
                      findings.expect(isFinite(play(plugin, noise(2, 4 * block), block)),
                                      "no number comes out");
                      plugin.choose("Scenes", turn % 2 == 0 ? "Kitchen" : "Stadium");
                  }
                  return findings.text();
              }),
              "");
}

TEST(ForeignHosts, MakeAnInstanceAndTakeItAwayWithoutASingleFurtherCall) {
    EXPECT_EQ(inChild([] {
                  const RawModule module(KESTRUM_BUNDLE);
                  for (int turn = 0; turn < 5; ++turn)
                      const RawPlugin plugin(module);
                  return std::string();
              }),
              "");
}

} // namespace

// SPDX-License-Identifier: GPL-3.0-or-later
// Many instances at two rates in one process, which share one store of responses: the rate that was loaded last is what it
// holds. Expected sound: that of an instance alone, at the rate of the store and at the other one.
#include "Arrangements.h"
#include "Census.h"
#include "Child.h"
#include "Play.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <functional>
#include <iostream>
#include <map>
#include <memory>
#include <random>
#include <thread>

#include <unistd.h>

namespace {

using namespace rawhost;
using ::testing::HasSubstr;

constexpr int block = 128;
constexpr std::size_t frames = 12 * block;
constexpr std::array<double, 2> rates{44100, 48000};

struct Setting {
    std::size_t width;
    const char* layout;
    const char* scene;
};
constexpr std::array<Setting, 4> settings{{{2, "2.0 +/-30°", "Mix Room"},
                                           {6, "5.1 ITU", "Kitchen"},
                                           {12, "7.1.4", "Stadium"},
                                           {16, "9.1.6", "Analytic Dry"}}};

/// One of the crowd.
class Instance {
public:
    Instance(const RawModule& module, std::size_t setting, double rate)
        : plugin(std::make_unique<RawPlugin>(module)), setting(setting), rate(rate) {
        plugin->arrange(lowBitArrangement(settings[setting].width).speakers, 0x3);
        choose();
    }
    void prepare() {
        plugin->activate(false);
        choose();
        plugin->prepare(rate, block);
    }
    Channels sound() const { return play(*plugin, noise(settings[setting].width, frames), block); }
    void switchScene(std::size_t scene) const { plugin->choose("Scenes", settings[scene].scene); }

    std::unique_ptr<RawPlugin> plugin;
    std::size_t setting;
    double rate;

private:
    void choose() const {
        plugin->choose("Speaker Layouts", settings[setting].layout);
        plugin->choose("Scenes", settings[setting].scene);
    }
};

/// What each setting sounds like at each rate when the store holds that rate, and when it holds the other.
struct References {
    std::map<std::pair<std::size_t, double>, Channels> own;
    std::map<std::pair<std::size_t, double>, Channels> foreign;
};

References makeReferences(const RawModule& module) {
    References references;
    for (std::size_t setting = 0; setting < settings.size(); ++setting) {
        for (const double rate : rates) {
            Instance alone(module, setting, rate);
            alone.prepare();
            references.own[{setting, rate}] = alone.sound();
            alone.prepare();
            Instance other(module, 0, rate == rates[0] ? rates[1] : rates[0]);
            other.prepare();
            references.foreign[{setting, rate}] = alone.sound();
        }
    }
    return references;
}

using Faults = std::function<void(std::vector<Instance>& crowd, std::vector<Channels>& sounds)>;

class Crowd {
public:
    Crowd(const RawModule& module, const References& references, std::size_t size, std::uint32_t seed)
        : module(module), references(references), size(size), random(seed) {}

    /// Makes all, plays, prepares, switches and takes all away, each in an order of its own.
    std::string round(const Faults& faults) {
        for (std::size_t index = 0; index < size; ++index)
            crowd.emplace_back(module, random() % settings.size(), rates[random() % 2]);
        prepareAll([](const Instance&) { return true; });
        compare(playAll(faults));
        const double last = loaded;
        prepareAll([last](const Instance& one) { return one.rate != last; });
        compareThose([last](const Instance& one) { return one.rate != last; }, playAll(faults));
        for (int turn = 0; turn < 3; ++turn) {
            for (const Instance& one : crowd)
                one.switchScene(random() % settings.size());
            for (const Channels& sound : playAll(faults))
                findings.expect(isFinite(sound), "no number comes out after a change");
        }
        while (!crowd.empty()) {
            std::swap(crowd[random() % crowd.size()], crowd.back());
            crowd.pop_back();
            if (!crowd.empty() && random() % 8 == 0)
                findings.expect(isFinite(crowd[random() % crowd.size()].sound()),
                                "no number from one that is left");
        }
        return findings.text();
    }
    int comparedCount() const { return compared; }

private:
    void prepareAll(const std::function<bool(const Instance&)>& wanted) {
        std::ranges::shuffle(crowd, random);
        for (Instance& one : crowd) {
            if (!wanted(one))
                continue;
            one.prepare();
            loaded = one.rate;
        }
    }

    /// On four threads, as hosts with several cores do.
    std::vector<Channels> playAll(const Faults& faults) {
        constexpr std::size_t threadCount = 4;
        std::vector<Channels> sounds(crowd.size());
        {
            std::vector<std::jthread> threads;
            for (std::size_t first = 0; first < threadCount; ++first)
                threads.emplace_back([&, first] {
                    for (std::size_t index = first; index < crowd.size(); index += threadCount)
                        sounds[index] = crowd[index].sound();
                });
        }
        if (faults)
            faults(crowd, sounds);
        return sounds;
    }

    void compare(const std::vector<Channels>& sounds) {
        compareThose([](const Instance&) { return true; }, sounds);
    }

    void compareThose(const std::function<bool(const Instance&)>& wanted,
                      const std::vector<Channels>& sounds) {
        for (std::size_t index = 0; index < crowd.size(); ++index) {
            const Instance& one = crowd[index];
            if (!wanted(one))
                continue;
            const bool own = one.rate == loaded;
            const Channels& expected =
                (own ? references.own : references.foreign).at({one.setting, one.rate});
            findings.expect(sounds[index] == expected, std::string(settings[one.setting].layout) + " at " +
                                                           std::to_string(one.rate) +
                                                           (own ? "" : ", the other rate loaded,") +
                                                           " is not the lone instance's sound");
            ++compared;
        }
    }

    const RawModule& module;
    const References& references;
    std::size_t size;
    std::mt19937 random;
    std::vector<Instance> crowd;
    double loaded = 0;
    int compared = 0;
    Findings findings;
};

std::string crowds(std::size_t size, int rounds, const Faults& faults = {}) {
    constexpr std::size_t allowance = 1 << 20;
    const RawModule module(KESTRUM_BUNDLE);
    const RawPlugin keeper(
        module); // what the first instance of a process makes for all is there before and after
    const References references = makeReferences(module);
    Census before = takeCensus();
    int compared = 0;
    for (int round = 0; round <= rounds; ++round) {
        Crowd crowd(module, references, size, static_cast<std::uint32_t>(round));
        const std::string found = crowd.round(faults);
        if (!found.empty())
            return "round " + std::to_string(round) + ": " + found;
        compared += crowd.comparedCount();
        if (round == 0)
            before.heapBytes = censusOnceSettled(before.threads).heapBytes;
    }
    Findings findings;
    const Census after = censusOnceSettled(before.threads);
    expectNoMore(findings, before, after, allowance);
    if (findings.text().empty())
        std::cout << "figure: " << rounds << " rounds of " << size << " instances, " << compared
                  << " sounds equal bit for bit, heap "
                  << static_cast<long>(after.heapBytes) - static_cast<long>(before.heapBytes) << " bytes more"
                  << std::endl;
    return findings.text();
}

TEST(Crowds, SoundLikeLoneInstancesAndLeaveNothingBehind) {
    EXPECT_EQ(inChild([] { return crowds(64, roundsOf(3, 100)); }, std::chrono::seconds(3000)), "");
}

TEST(CrowdChecks, SeeOneSampleOfOneInstanceThatDiffers) {
    const Faults touch = [](std::vector<Instance>&, std::vector<Channels>& sounds) {
        sounds[3][1][700] += 1e-6f;
    };
    EXPECT_THAT(inChild([&] { return crowds(6, 0, touch); }), HasSubstr("is not the lone instance's sound"));
}

TEST(CrowdChecks, SeeMemoryThatIsNotGivenBack) {
    const Faults leak = [](std::vector<Instance>&, std::vector<Channels>& sounds) {
        static std::vector<Channels> kept;
        kept.push_back(sounds[0]);
        kept.push_back(silence(1, 100000));
    };
    EXPECT_THAT(inChild([&] { return crowds(3, 3, leak); }), HasSubstr("bytes of heap are left"));
}

TEST(CrowdChecks, SeeAThreadAndADescriptorThatStay) {
    const Faults keep = [](std::vector<Instance>&, std::vector<Channels>&) {
        std::thread([] {
            for (;;)
                pause();
        }).detach();
        [[maybe_unused]] auto* const stays = std::fopen("/dev/null", "r");
    };
    const std::string found = inChild([&] { return crowds(3, 1, keep); });
    EXPECT_THAT(found, HasSubstr("threads are left"));
    EXPECT_THAT(found, HasSubstr("descriptors are left"));
}

} // namespace

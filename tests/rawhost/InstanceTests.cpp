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
#include <atomic>
#include <cmath>
#include <functional>
#include <iostream>
#include <iterator>
#include <map>
#include <memory>
#include <random>
#include <thread>

#include <unistd.h>

namespace {

using namespace rawhost;
using ::testing::AllOf;
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
    std::map<std::pair<std::size_t, double>, float> peaks; ///< Of both, in the room's full sound, too.
};

/// Sound, and no silence, which would equal silence.
bool sounds(const Channels& sound) { return isFinite(sound) && peakOf(sound) > 0.01f; }

/// The peak of a sound that is played again and again, until its beginnings meet the room's tail of what was before.
float peakOfFullSound(const Instance& one) {
    constexpr int turns = 40; // 1.3 s
    float peak = 0;
    for (int turn = 0; turn < turns; ++turn)
        peak = std::max(peak, peakOf(one.sound()));
    return peak;
}

References makeReferences(const RawModule& module) {
    References references;
    for (std::size_t setting = 0; setting < settings.size(); ++setting) {
        for (const double rate : rates) {
            Instance alone(module, setting, rate);
            alone.prepare();
            references.own[{setting, rate}] = alone.sound();
            references.peaks[{setting, rate}] = peakOfFullSound(alone);
            alone.prepare();
            Instance other(module, 0, rate == rates[0] ? rates[1] : rates[0]);
            other.prepare();
            references.foreign[{setting, rate}] = alone.sound();
            references.peaks[{setting, rate}] =
                std::max(references.peaks[{setting, rate}], peakOfFullSound(alone));
        }
    }
    return references;
}

/// What has to be seen.
struct Faults {
    std::function<void(References& references)> references = {};
    /// After each playing of all; the first of a round is number 0.
    std::function<void(int playing, std::vector<Channels>& sounds)> sounds = {};
    /// After each sound of one that plays while others come and go.
    std::function<void(Channels& sound)> meanwhile = {};
};

/// How many sounds of a round were compared and looked at.
struct Counts {
    int equal = 0;     ///< Bit for bit.
    int meanwhile = 0; ///< Played while others came and went.
    float loudest = 0; ///< Of these, in parts of the louder reference.

    void add(const Counts& more) {
        equal += more.equal;
        meanwhile += more.meanwhile;
        loudest = std::max(loudest, more.loudest);
    }
};

class Crowd {
public:
    Crowd(const RawModule& module, const References& references, std::size_t size, std::uint32_t seed,
          const Faults& faults)
        : module(module), references(references), size(size), random(seed), faults(faults) {}

    /// Makes all, plays, prepares, switches, lets some come and go and takes all away, each in an order of its own.
    std::string round() {
        for (std::size_t index = 0; index < size; ++index)
            crowd.push_back(any());
        prepareAll(crowd);
        compare("", playAll());
        const double last = loaded;
        const auto waits = [last](const Instance& one) { return one.rate != last; };
        prepareAll(crowd, waits);
        compare("", playAll(), waits);
        for (int turn = 0; turn < 3; ++turn) {
            for (const Instance& one : crowd)
                one.switchScene(random() % settings.size());
            for (const Channels& sound : playAll())
                findings.expect(isFinite(sound), "no number comes out after a change");
        }
        prepareAll(crowd);
        compare("after the changes, ", playAll());
        playWhileOthersComeAndGo();
        prepareAll(crowd);
        compare("after others came and went, ", playAll());
        while (!crowd.empty()) {
            std::swap(crowd[random() % crowd.size()], crowd.back());
            crowd.pop_back();
            if (!crowd.empty() && random() % 8 == 0)
                findings.expect(isFinite(crowd[random() % crowd.size()].sound()),
                                "no number from one that is left");
        }
        return findings.text();
    }
    Counts counts() const { return counted; }

private:
    using Choice = std::function<bool(const Instance&)>;
    static bool everyOne(const Instance&) { return true; }

    Instance any() { return {module, random() % settings.size(), rates[random() % 2]}; }

    void prepare(Instance& one) {
        one.prepare();
        loaded = one.rate;
    }

    /// In an order of their own.
    void prepareAll(std::vector<Instance>& some, const Choice& wanted = everyOne) {
        std::ranges::shuffle(some, random);
        for (Instance& one : some)
            if (wanted(one))
                prepare(one);
    }

    /// A quarter plays on three threads while the rest is made, prepared and taken away on this one.
    void playWhileOthersComeAndGo() {
        constexpr std::size_t threadCount = 3;
        const std::size_t playerCount = std::max(threadCount, size / 4);
        std::vector<Instance> players;
        for (; players.size() < playerCount; crowd.pop_back())
            players.push_back(std::move(crowd.back()));
        {
            std::array<Findings, threadCount> seen;
            std::array<Counts, threadCount> counts;
            std::atomic<bool> running{true};
            std::atomic<int> played{0};
            std::vector<std::jthread> threads;
            for (std::size_t first = 0; first < threadCount; ++first)
                threads.emplace_back([&, first] {
                    for (std::size_t index = first; running; ++played) {
                        playMeanwhile(players[index], seen[first], counts[first]);
                        index = index + threadCount < players.size() ? index + threadCount : first;
                    }
                });
            for (std::size_t action = 0; action < size / 4; ++action)
                comeOrGo();
            while (played < static_cast<int>(2 * playerCount)) // else they may not have begun
                std::this_thread::yield();
            running = false;
            threads.clear();
            for (const Findings& one : seen)
                findings.expect(one.text().empty(), one.text());
            for (const Counts& one : counts)
                counted.add(one);
        }
        std::ranges::move(players, std::back_inserter(crowd));
    }

    /// No bits to compare: which rate is loaded changes from block to block, so the sound goes over from one reference to the
    /// other and back, at moments that nobody chooses. In between it is a mixture of the two, which is seldom louder than the
    /// louder one and never twice as loud. That no response is made of two rates is shown at the store.
    void playMeanwhile(const Instance& one, Findings& seen, Counts& counts) const {
        Channels sound = one.sound();
        if (faults.meanwhile)
            faults.meanwhile(sound);
        const std::string who = std::string(settings[one.setting].layout) + " at " + std::to_string(one.rate);
        seen.expect(sounds(sound), who + " is silent, or gives no number, while others come and go");
        const float loudness = peakOf(sound) / references.peaks.at({one.setting, one.rate});
        seen.expect(loudness < 2, who + " is too loud while others come and go");
        counts.add({0, 1, loudness});
    }

    void comeOrGo() {
        switch (crowd.empty() ? 0 : random() % 3) {
        case 0:
            crowd.push_back(any());
            prepare(crowd.back());
            break;
        case 1:
            prepare(crowd[random() % crowd.size()]);
            break;
        default:
            std::swap(crowd[random() % crowd.size()], crowd.back());
            crowd.pop_back();
        }
    }

    /// On four threads, as hosts with several cores do.
    std::vector<Channels> playAll() {
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
        if (faults.sounds)
            faults.sounds(playings, sounds);
        ++playings;
        return sounds;
    }

    void compare(const std::string& when, const std::vector<Channels>& sounds,
                 const Choice& wanted = everyOne) {
        for (std::size_t index = 0; index < crowd.size(); ++index) {
            const Instance& one = crowd[index];
            if (!wanted(one))
                continue;
            const bool own = one.rate == loaded;
            const Channels& expected =
                (own ? references.own : references.foreign).at({one.setting, one.rate});
            findings.expect(sounds[index] == expected, when + settings[one.setting].layout + " at " +
                                                           std::to_string(one.rate) +
                                                           (own ? "" : ", the other rate loaded,") +
                                                           " is not the lone instance's sound");
            ++counted.equal;
        }
    }

    const RawModule& module;
    const References& references;
    std::size_t size;
    std::mt19937 random;
    const Faults& faults;
    std::vector<Instance> crowd;
    double loaded = 0;
    int playings = 0;
    Counts counted;
    Findings findings;
};

/// @return which reference would make any comparison worthless.
std::string useless(const References& references) {
    Findings findings;
    for (const auto* const which : {&references.own, &references.foreign})
        for (const auto& [what, sound] : *which)
            findings.expect(sounds(sound), std::string("a reference is silent, or no number: ") +
                                               settings[what.first].layout + " at " +
                                               std::to_string(what.second));
    return findings.text();
}

std::string crowds(std::size_t size, int rounds, const Faults& faults = {}) {
    constexpr std::size_t allowance = 1 << 20;
    const RawModule module(KESTRUM_BUNDLE);
    const RawPlugin keeper(
        module); // what the first instance of a process makes for all is there before and after
    References references = makeReferences(module);
    if (faults.references)
        faults.references(references);
    if (std::string found = useless(references); !found.empty())
        return found;
    Census before = takeCensus();
    Counts counted;
    for (int round = 0; round <= rounds; ++round) {
        Crowd crowd(module, references, size, static_cast<std::uint32_t>(round), faults);
        if (const std::string found = crowd.round(); !found.empty())
            return "round " + std::to_string(round) + ": " + found;
        counted.add(crowd.counts());
        if (round == 0)
            before.heapBytes = censusOnceSettled(before.threads).heapBytes;
    }
    Findings findings;
    const Census after = censusOnceSettled(before.threads);
    expectNoMore(findings, before, after, allowance);
    if (findings.text().empty())
        std::cout << "figure: " << rounds << " rounds of " << size << " instances, " << counted.equal
                  << " sounds equal bit for bit, " << counted.meanwhile
                  << " played while others came and went at most " << counted.loudest
                  << " times as loud as alone, heap "
                  << static_cast<long>(after.heapBytes) - static_cast<long>(before.heapBytes) << " bytes more"
                  << std::endl;
    return findings.text();
}

TEST(Crowds, SoundLikeLoneInstancesAndLeaveNothingBehind) {
    EXPECT_EQ(inChild([] { return crowds(64, roundsOf(3, 100)); }, std::chrono::seconds(3000)), "");
}

std::string faulty(std::size_t size, int rounds, const Faults& faults) {
    return inChild([&] { return crowds(size, rounds, faults); });
}

TEST(CrowdChecks, SeeAReferenceThatIsSilentOrNoNumber) {
    const auto scaled = [](float factor) {
        return [factor](References& references) {
            for (float& sample : references.foreign[{1, rates[1]}][0])
                sample *= factor;
            references.foreign[{1, rates[1]}][1] = references.foreign[{1, rates[1]}][0];
        };
    };
    for (const float factor : {0.0f, 0.001f, NAN})
        EXPECT_THAT(faulty(6, 0, {.references = scaled(factor)}),
                    HasSubstr("a reference is silent, or no number: 5.1 ITU at 48000"));
}

TEST(CrowdChecks, SeeOneSampleOfOneInstanceThatDiffers) {
    const auto touchedIn = [](int when) {
        return faulty(6, 0, {.sounds = [when](int playing, std::vector<Channels>& sounds) {
                          if (playing == when)
                              sounds[0][1][700] += 1e-6f;
                      }});
    };
    EXPECT_THAT(touchedIn(0), HasSubstr("is not the lone instance's sound"));
    EXPECT_THAT(touchedIn(5), AllOf(HasSubstr("after the changes, "), HasSubstr("is not the lone")));
    EXPECT_THAT(touchedIn(6), AllOf(HasSubstr("after others came and went, "), HasSubstr("is not the lone")));
}

TEST(CrowdChecks, SeeNoNumberAndTooLoudASoundWhileOthersComeAndGo) {
    const auto scaled = [](float factor) {
        return faulty(6, 0, {.meanwhile = [factor](Channels& sound) {
                          for (float& sample : sound[1])
                              sample *= factor;
                      }});
    };
    EXPECT_THAT(scaled(NAN), HasSubstr("gives no number, while others come and go"));
    EXPECT_THAT(scaled(4), HasSubstr("is too loud while others come and go"));
}

TEST(CrowdChecks, SeeMemoryThatIsNotGivenBack) {
    const auto leak = [](int, std::vector<Channels>& sounds) {
        static std::vector<Channels> kept;
        kept.push_back(sounds[0]);
        kept.push_back(silence(1, 100000));
    };
    EXPECT_THAT(faulty(3, 3, {.sounds = leak}), HasSubstr("bytes of heap are left"));
}

TEST(CrowdChecks, SeeAThreadAndADescriptorThatStay) {
    const auto keep = [](int, std::vector<Channels>&) {
        std::thread([] {
            for (;;)
                pause();
        }).detach();
        [[maybe_unused]] auto* const stays = std::fopen("/dev/null", "r");
    };
    const std::string found = faulty(3, 1, {.sounds = keep});
    EXPECT_THAT(found, HasSubstr("threads are left"));
    EXPECT_THAT(found, HasSubstr("descriptors are left"));
}

} // namespace

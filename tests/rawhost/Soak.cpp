// SPDX-License-Identifier: GPL-3.0-or-later
#include "Soak.h"

#include "Arrangements.h"
#include "Census.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iostream>
#include <limits>
#include <memory>
#include <random>
#include <thread>

namespace rawhost {

namespace {

/// The usual ones three times as often; the last two are not served.
constexpr std::array<double, 13> rates{44100, 48000, 44100,  48000,  44100, 48000, 24000,
                                       88200, 96000, 176400, 192000, 22050, 32000};
constexpr std::array<int, 8> lengths{2, 32, 63, 64, 128, 256, 513, 1024};
constexpr std::array<const char*, 6> parameters{"Speaker Layouts", "Scenes",        "Ambience",
                                                "Focus",           "Head Rotation", "Master Gain"};
constexpr double secondsBetweenRests = 12;
constexpr std::size_t mostFrames = 180000; ///< Of one rendering.
constexpr float inaudible = 1e-6f;         // no converter plays it

/// Seconds of audio.
struct Played {
    double active = 0;   ///< Rendered by an active instance.
    double sounding = 0; ///< Of these, what was not silent.
};

class Random {
public:
    explicit Random(std::uint32_t seed) : engine(seed) {}
    std::size_t below(std::size_t count) { return engine() % count; }
    bool oneIn(std::size_t count) { return below(count) == 0; }
    double number() { return static_cast<double>(engine()) / std::mt19937::max(); }
    template <typename List>
    const auto& anyOf(const List& list) {
        return list[below(list.size())];
    }

private:
    std::mt19937 engine;
};

/// One instance and what a host knows of it.
class Guest {
public:
    Guest(const RawModule& module, Random& random, const SoakPlan& plan)
        : random(random), plan(plan), plugin(module) {
        std::ranges::transform(parameters, ids.begin(),
                               [&](auto title) { return plugin.parameterId(title); });
        kept = plugin.state();
    }

    /// Something a host does.
    Played act(Findings& findings) {
        if (!active && random.oneIn(3)) // else it would be silent for most of its life
            prepare();
        switch (random.below(14)) {
        case 0:
            prepare();
            return {};
        case 1:
            release();
            return {};
        case 2:
            rearrange();
            return {};
        case 3:
            plugin.flush(edits());
            return {};
        case 4:
            kept = plugin.state();
            return {};
        case 5:
            plugin.setState(random.oneIn(2) ? kept : damaged(kept));
            return {};
        case 6:
            return whileAStateIsRestored(findings);
        default:
            return render(findings);
        }
    }

private:
    void prepare() {
        rate = random.anyOf(rates);
        block = random.anyOf(lengths);
        plugin.prepare(rate, block);
        active = true;
    }
    void release() {
        plugin.activate(false);
        active = false;
    }
    /// The framework's memory is made for the bus at the next setup only, so no block comes before it.
    void rearrange() {
        release();
        width = random.below(mostChannels) + 1;
        plugin.arrange(lowBitArrangement(width).speakers, 0x3);
        prepare();
    }

    std::vector<Edit> edits() {
        std::vector<Edit> some;
        for (const Vst::ParamID id : ids)
            if (random.oneIn(4))
                some.push_back({id, random.oneIn(50) ? random.number() * 5 - 2 : random.number()});
        return some;
    }

    /// A byte of the text between the framework's header and its trailer is another one.
    std::vector<std::byte> damaged(std::vector<std::byte> state) {
        constexpr std::size_t header = 8;
        constexpr std::size_t text = 200;
        if (state.size() > header + text)
            state[header + random.below(text)] = static_cast<std::byte>(random.below(256));
        return state;
    }

    /// Mostly noise, at times silence, and at times what no host should send.
    void fill(std::vector<float>& channel) {
        const bool silent = random.oneIn(5);
        for (float& sample : channel)
            sample = silent ? 0.0f : static_cast<float>(random.number() - 0.5);
        constexpr std::array<float, 6> foul{
            std::numeric_limits<float>::quiet_NaN(),  std::numeric_limits<float>::infinity(),
            -std::numeric_limits<float>::infinity(),  std::numeric_limits<float>::max(),
            std::numeric_limits<float>::denorm_min(), -1e7f};
        if (random.oneIn(20))
            channel[random.below(channel.size())] = random.anyOf(foul);
    }

    Played render(Findings& findings) {
        // A block costs much, however short it is: as many of each length.
        const std::size_t frames =
            random.below(std::min(mostFrames, 300 * static_cast<std::size_t>(block))) + 1;
        if (input.size() != width || input[0].size() < frames || random.oneIn(4)) {
            input.assign(width, std::vector<float>(mostFrames));
            std::ranges::for_each(input, [this](auto& channel) { fill(channel); });
        }
        Channels from(width);
        std::ranges::transform(input, from.begin(), [&](const auto& channel) {
            return std::vector<float>(channel.begin(), channel.begin() + static_cast<std::ptrdiff_t>(frames));
        });
        Channels to(2, std::vector<float>(frames, 9.0f));
        for (std::size_t first = 0; first < frames;)
            first += renderBlock(from, to, first, frames - first);
        if (plan.guestFault)
            plan.guestFault(to);
        findings.expect(isFinite(to), "no number comes out");
        const float peak = peakOf(to);
        findings.expect(active || peak == 0.0f, "sound while not prepared");
        const double seconds = active ? static_cast<double>(frames) / rate : 0;
        return {seconds, peak > inaudible ? seconds : 0};
    }

    std::size_t renderBlock(Channels& from, Channels& to, std::size_t first, std::size_t left) {
        const auto longest = std::min(left, static_cast<std::size_t>(block));
        const std::size_t length = random.oneIn(3) ? random.below(longest + 1) : longest;
        std::array<float*, mostChannels> inputs{};
        for (std::size_t channel = 0; channel < width; ++channel)
            inputs[channel] = from[channel].data() + first;
        std::array<float*, 2> outputs{to[0].data() + first, to[1].data() + first};
        blockEdits->set(random.oneIn(20) ? edits() : std::vector<Edit>{});
        plugin.process(inputs.data(), width, outputs.data(), 2, static_cast<int>(length), blockEdits.get());
        return length;
    }

    Played whileAStateIsRestored(Findings& findings) {
        std::jthread restoring([this] { plugin.setState(kept); });
        return render(findings);
    }

    Random& random;
    const SoakPlan& plan;
    RawPlugin plugin;
    std::array<Vst::ParamID, parameters.size()> ids{};
    std::vector<std::byte> kept;
    ComPointer<BlockEdits> blockEdits = orvane::kestrum::host::makeHostObject<BlockEdits>();
    Channels input;
    std::size_t width = 2;
    double rate = 44100; ///< What the framework takes for granted until it is told.
    int block = 512;
    bool active = false;
};

/// What an instance sounds like that nothing has happened to.
Channels freshSound(const RawModule& module) {
    const RawPlugin plugin(module);
    plugin.arrange(0x3F, 0x3);
    plugin.choose("Speaker Layouts", "5.1 ITU");
    plugin.choose("Scenes", "Kitchen");
    plugin.prepare(48000, 256);
    return play(plugin, noise(6, 4096), 256);
}

/// Lets what all instances of the process share grow to what it needs at any rate.
void fillWhatIsShared(const RawModule& module) {
    const RawPlugin plugin(module);
    for (const double rate : rates)
        plugin.prepare(rate, 64);
}

struct Rest {
    double hours;
    double heapBytes;
};

/// Least squares over all but the first rest.
double slope(const std::vector<Rest>& rests) {
    if (rests.size() < 3)
        return 0;
    double meanHours = 0;
    double meanBytes = 0;
    const auto count = static_cast<double>(rests.size() - 1);
    for (std::size_t index = 1; index < rests.size(); ++index) {
        meanHours += rests[index].hours / count;
        meanBytes += rests[index].heapBytes / count;
    }
    double product = 0;
    double square = 0;
    for (std::size_t index = 1; index < rests.size(); ++index) {
        product += (rests[index].hours - meanHours) * (rests[index].heapBytes - meanBytes);
        square += std::pow(rests[index].hours - meanHours, 2);
    }
    return square > 0 ? product / square : 0;
}

class Soaking {
public:
    explicit Soaking(const SoakPlan& plan)
        : plan(plan), random(plan.seed), module(KESTRUM_BUNDLE), keeper(module) {
        fillWhatIsShared(module);
        sound = freshSound(module);
        if (plan.freshFault)
            plan.freshFault(sound);
        findings.expect(isFinite(sound) && peakOf(sound) > 0.01f,
                        "a fresh instance is silent, or gives no number");
        atFirst = takeCensus();
    }

    SoakResult run() {
        constexpr double mostBytesPerHour = 1 << 20;
        SoakResult result;
        while (played.active < plan.hours * 3600 && findings.text().empty()) {
            play();
            rest();
        }
        result.heapBytesPerHour = slope(rests);
        // Over some minutes, a slope is that of a few small blocks: the allocator's caches and the like are still filling.
        constexpr double smallBlocks = 1 << 19;
        if (rests.size() > 10 && rests.back().heapBytes - rests[1].heapBytes > smallBlocks)
            findings.expect(result.heapBytesPerHour < mostBytesPerHour,
                            "the heap grows by " + std::to_string(result.heapBytesPerHour) +
                                " bytes an hour");
        expectEnoughSound();
        result.findings =
            findings.text().empty() ? "" : "action " + std::to_string(actions) + ": " + findings.text();
        result.hours = hours();
        result.soundingHours = played.sounding / 3600;
        result.actions = actions;
        return result;
    }

private:
    /// Silence says nothing: at a rate that is not served, where the layout is wider than the bus, or with nothing to play.
    void expectEnoughSound() {
        constexpr double leastShare = 0.2; // six minutes of two seeds: 0.35 and 0.46
        if (plan.hours >= plan.leastHoursForAShare && findings.text().empty())
            findings.expect(played.sounding >= leastShare * played.active,
                            "only " + std::to_string(played.sounding) + " of " +
                                std::to_string(played.active) + " seconds of audio sounded");
    }

    void play() {
        constexpr std::size_t mostGuests = 4;
        std::vector<std::unique_ptr<Guest>> guests;
        const double end = played.active + secondsBetweenRests;
        while (played.active < end && findings.text().empty()) {
            ++actions;
            if (guests.empty() || (guests.size() < mostGuests && random.oneIn(40)))
                guests.push_back(std::make_unique<Guest>(module, random, plan));
            else if (random.oneIn(60))
                guests.erase(guests.begin() + static_cast<std::ptrdiff_t>(random.below(guests.size())));
            else
                add(random.anyOf(guests)->act(findings));
        }
    }

    void add(const Played& more) {
        played.active += more.active;
        played.sounding += more.sounding;
    }

    void rest() {
        if (plan.fault)
            plan.fault(static_cast<int>(rests.size()));
        // First, since it also leaves what all instances share as it was at first: the responses of its rate.
        findings.expect(freshSound(module) == sound, "a fresh instance sounds another way than the first");
        const Census now = censusOnceSettled(atFirst.threads);
        expectNoMore(findings, atFirst, now, std::numeric_limits<std::size_t>::max() / 2);
        rests.push_back({hours(), static_cast<double>(now.heapBytes)});
        if (plan.talks && std::floor(hours()) > hoursTold) {
            hoursTold = std::floor(hours());
            std::cout << hoursTold << " h of audio, " << actions << " actions, heap " << now.heapBytes
                      << " bytes" << std::endl;
        }
    }

    double hours() const { return played.active / 3600; }

    const SoakPlan& plan;
    Random random;
    RawModule module;
    RawPlugin
        keeper; ///< What the first instance of a process makes for all stays, so that the rests compare.
    Channels sound;
    Census atFirst;
    std::vector<Rest> rests;
    Findings findings;
    Played played;
    double hoursTold = 0;
    std::size_t actions = 0;
};

} // namespace

SoakResult soak(const SoakPlan& plan) { return Soaking(plan).run(); }

} // namespace rawhost

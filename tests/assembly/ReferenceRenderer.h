// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/IHrir.h"
#include "parameters/ListedTables.h"
#include "reference/Biquad.h"
#include "reference/Reflections.h"
#include "reference/Responses.h"
#include "room/DecayTable.h"
#include "room/ListedRooms.h"
#include "support/Signals.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// What the renderer must give for a Scene as listed, in double precision and from the textbook operations: no
/// partition, no block, no list that lives on. Settings other than the Scene stand at their defaults.
namespace test::reference {

inline double fromDecibels(double decibels) { return std::pow(10.0, decibels / 20.0); }

/// 10 log10 of the energy of the difference over that of what is expected.
inline double residueDb(const std::vector<float>& actual, const std::vector<double>& expected) {
    double difference = 0;
    double energy = 0;
    for (std::size_t i = 0; i < expected.size(); ++i) {
        difference += std::pow(static_cast<double>(actual[i]) - expected[i], 2.0);
        energy += expected[i] * expected[i];
    }
    return 10.0 * std::log10(difference / energy);
}

/// A listed Scene with its values by name.
struct SceneValues {
    explicit SceneValues(const listed::Scene& listed)
        : scene(listed), room(listed::rooms[listed.room - 1]), reverb(listed::reverbs[listed.room]) {}

    double value(std::size_t index) const { return static_cast<double>(scene.values[index]); }
    double reflectionGain() const { return fromDecibels(value(0)); }
    double reflectionLowPass() const { return value(1); }
    double reflectionHighPass() const { return value(2); }
    double reverbGain() const { return fromDecibels(value(3)); }
    double reverbLowPass() const { return value(4); }
    double reverbHighPass() const { return value(5); }
    /// Ceiling, floor, front, back, right, left.
    Walls walls() const { return {value(6), value(11), value(7), value(8), value(9), value(10)}; }
    double decayPercent() const { return value(12); }
    double distance() const { return value(13); }
    double masterGain() const { return fromDecibels(value(14)); }
    double farFade() const {
        return distance() <= 7.0 ? 1.0 : std::max(0.0, 1.0 - (distance() - 7.0) / 26.0);
    }
    double directLevel() const { return farFade() / (std::pow(distance() + 0.7, 0.75) + 0.3265); }

    /// What the room lists of one of its first six reflections.
    Listed reflection(std::size_t index) const {
        const auto directions =
            listed::numbers<int>((room.id == 1 ? std::string() : std::string(listed::usualDirections) + " ") +
                                 std::string(room.directions));
        return {directions[2 * index], directions[2 * index + 1], listed::numbers<int>(room.delays)[index],
                listed::numbers<double>(room.levels)[index]};
    }

    const listed::Scene& scene;
    const listed::Room& room;
    const listed::Reverb& reverb;
};

inline const listed::Scene& sceneNamed(std::string_view name) {
    return *std::ranges::find(listed::scenes, name, &listed::Scene::name);
}

struct Renderer {
    const orvane::IHrir& head;
    SceneValues scene;
    double sampleRate;
    std::uint64_t blockSize;
    Coefficients coefficients = Coefficients::exact;

    static constexpr double clarity = 0.65; ///< Of the focus at its default.
    static constexpr double q = 0.707;

    std::uint64_t responseLength() const {
        const double atDesignRate = scene.scene.customRoom ? 8192.0 : static_cast<double>(scene.room.length);
        return std::max(blockSize, static_cast<std::uint64_t>(atDesignRate * sampleRate / designRate));
    }

    /// Multiples of 48 kHz are a little quieter.
    double convolutionGain() const {
        return static_cast<int>(sampleRate) % 48000 == 0 ? 44100.0 / 48000.0 : 1.0;
    }

    /// Direct sound and reflections, before the end's taper.
    Ears response(const Place& place) const {
        Ears sum{std::vector<double>(responseLength()), std::vector<double>(responseLength())};
        Ears direct =
            clarified(headResponse(head, -truncated(place.azimuth), truncated(place.elevation)), clarity);
        scale(direct, scene.directLevel());
        addDelayed(sum, direct, 0);
        if (scene.scene.reflectionsOn)
            for (std::size_t index = 0; index < 6; ++index)
                addReflection(sum, index, place);
        return sum;
    }

    void addReflection(Ears& sum, std::size_t index, const Place& place) const {
        const int maxDelay =
            static_cast<int>(std::min<std::uint64_t>(responseLength(), 4096) - head.length());
        const auto id = static_cast<int>(scene.scene.room);
        const Listed listed = scene.reflection(index);
        const Heard heard = scene.scene.customRoom
                                ? wallReflection(static_cast<Wall>(index), scene.walls(), listed, place,
                                                 sampleRate, id, maxDelay)
                                : presetReflection(listed, place, sampleRate, id, maxDelay);
        if (!heard.active)
            return;
        Ears ears = clarified(headResponse(head, heard.azimuth, heard.elevation), clarity);
        for (std::vector<double>& ear : ears)
            ear.resize(head.length());
        scale(ears,
              heard.gain * scene.farFade() * scene.reflectionGain() * static_cast<double>(scene.room.gain));
        filter(ears, lowPass(scene.reflectionLowPass(), q, sampleRate, coefficients));
        filter(ears, highPass(scene.reflectionHighPass(), q, sampleRate, coefficients));
        fadeOut(ears);
        addDelayed(sum, ears, static_cast<std::size_t>(heard.delay));
    }

    /// One loudspeaker: the tapered response, of which the convolver takes whole blocks.
    Ears loudspeaker(const Place& place) const {
        Ears ears = response(place);
        taper(ears);
        for (std::vector<double>& ear : ears)
            ear.resize(ear.size() / blockSize * blockSize);
        scale(ears, convolutionGain());
        return ears;
    }

    /// The room's late reverb, from the frames that its file holds at the running rate.
    Ears lateResponse(const Signal& file) const {
        const auto frames =
            static_cast<std::size_t>(static_cast<double>(scene.reverb.frames) * sampleRate / 48000.0);
        Ears ears{std::vector<double>(frames), std::vector<double>(frames)};
        for (std::size_t i = 0; i < std::min(frames, file.size() / 2); ++i)
            for (std::size_t ear = 0; ear < 2; ++ear)
                ears[ear][i] = static_cast<double>(file[2 * i + ear]) * decay(i, frames);
        taper(ears);
        const double p = scene.distance();
        const double far = p <= 15.0 ? 1.0 : (std::pow(15.0 / p, 2.0) - p / 20.0 + 1.75) / 2.0; // to 30 m
        scale(ears, static_cast<double>(scene.reverb.gain) * scene.reverbGain() * far * convolutionGain());
        return ears;
    }

    /// Whole percents are two rows each.
    double decay(std::size_t i, std::size_t frames) const {
        if (scene.decayPercent() >= 100.0)
            return 1.0;
        const auto row = static_cast<std::uint32_t>(2.0 * (scene.decayPercent() - 50.0));
        return static_cast<double>(orvane::decayGain(row, static_cast<std::uint32_t>(100 * i / frames)));
    }
};

/// Adds `input` convolved with a response; its zeros cost nothing.
inline void addConvolved(std::vector<double>& sum, const std::vector<double>& input,
                         const std::vector<double>& response) {
    for (std::size_t m = 0; m < response.size(); ++m) {
        if (response[m] == 0.0)
            continue;
        for (std::size_t n = 0; n < input.size() && n + m < sum.size(); ++n)
            sum[n + m] += response[m] * input[n];
    }
}

} // namespace test::reference

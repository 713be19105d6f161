// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "assembly/EngineRig.h"
#include "parameters/core/IParameterSet.h"
#include "parameters/core/Scene.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace test {

/// Chance that repeats on every machine; the library's distributions need not.
class Dice {
public:
    explicit Dice(std::uint32_t seed) : generator(seed) {}

    std::uint32_t below(std::uint32_t limit) { return static_cast<std::uint32_t>(generator() % limit); }
    bool oneIn(std::uint32_t many) { return below(many) == 0; }
    float between(float low, float high) {
        return low + (high - low) * static_cast<float>(generator() >> 8) / 16777216.0f;
    }

private:
    std::mt19937 generator;
};

/// A value of the rendering parameters that may move at any time, and from where to where.
struct RenderingValue {
    void (*set)(orvane::kestrum::core::IParameterSet&, float);
    float low;
    float high;
};

/// All that the drawing of a response or the late reverb reads, but what a user's control moves.
inline constexpr std::array renderingValues{
    RenderingValue{[](auto& set, float x) { set.setDirectGainDb(x, false); }, -12, 6},
    RenderingValue{[](auto& set, float x) { set.setAzimuthExponent(x, false); }, 0.5f, 2},
    RenderingValue{[](auto& set, float x) { set.setSpatialValue4(x, false); }, 0, 1},
    RenderingValue{[](auto& set, float x) { set.setReflectionGainDb(x, false); }, -12, 6},
    RenderingValue{[](auto& set, float x) { set.setReflectionLowPassFrequency(x, false); }, 2000, 15000},
    RenderingValue{[](auto& set, float x) { set.setReflectionHighPassFrequency(x, false); }, 20, 1200},
    RenderingValue{[](auto& set, float x) { set.setCeilingDistance(x, false); }, 1, 10},
    RenderingValue{[](auto& set, float x) { set.setFloorDistance(x, false); }, 1, 10},
    RenderingValue{[](auto& set, float x) { set.setRightDistance(x, false); }, 1, 20},
    RenderingValue{[](auto& set, float x) { set.setLeftDistance(x, false); }, 1, 20},
    RenderingValue{[](auto& set, float x) { set.setFrontDistance(x, false); }, 1, 20},
    RenderingValue{[](auto& set, float x) { set.setBackDistance(x, false); }, 1, 20},
    RenderingValue{[](auto& set, float x) { set.setDistance(x, false); }, 0.5f, 20},
    RenderingValue{[](auto& set, float x) { set.setDistanceScale(x, false); }, 0.5f, 2},
    RenderingValue{[](auto& set, float x) { set.setAttenuationValue(x, false); }, 0, 1},
    RenderingValue{[](auto& set, float x) { set.setClarity(x, false); }, 0, 1},
    RenderingValue{[](auto& set, float x) { set.setAzimuth(x, false); }, -180, 180},
    RenderingValue{[](auto& set, float x) { set.setElevation(x, false); }, -90, 90},
    RenderingValue{[](auto& set, float x) { set.setReverbDecayPercent(x, false); }, 20, 100},
};

/// Hands at the controls: what they do before each host block, by chance, is done alike to every product.
class RenderScript {
public:
    RenderScript(std::uint32_t seed, double rate) : dice(seed), sampleRate(rate) {}

    /// Moves that need no other engine.
    void move(const std::vector<const Product*>& products, std::uint64_t frames) {
        turnHead(frames);
        const auto setAll = [&](auto control, float value) {
            for (const Product* const product : products)
                ((*product).*control)->setValue(value);
        };
        setAll(&Product::headRotation, head);
        if (dice.oneIn(25))
            setAll(&Product::ambience, dice.between(0, 100));
        if (dice.oneIn(25))
            setAll(&Product::focus, dice.between(-100, 100));
        if (dice.oneIn(25))
            setAll(&Product::masterGain, dice.between(-30, 12));
        if (dice.oneIn(30)) {
            const RenderingValue& moved = renderingValues[dice.below(renderingValues.size())];
            const float value = dice.between(moved.low, moved.high);
            for (const Product* const product : products)
                moved.set(*product->parameterSet, value);
        }
    }

    /// Another layout, another Scene or both; the caller makes the engines for them.
    void choose(const std::vector<const Product*>& products) {
        std::vector<std::string> layouts;
        products.front()->layouts->forEach([&](const auto& layout) { layouts.push_back(layout.name); });
        const std::string& layout = layouts[dice.below(static_cast<std::uint32_t>(layouts.size()))];
        const auto& scene =
            orvane::kestrum::core::Scene::presets()[dice.below(orvane::kestrum::core::Scene::count)];
        const std::uint32_t which = dice.below(3);
        const bool watchSource = dice.oneIn(6);
        const auto format = dice.oneIn(8) ? orvane::IOutputFormat::Format::plainTwoChannel
                                          : orvane::IOutputFormat::Format::binaural;
        for (const Product* const product : products) {
            product->parameterSet->setWatchSource(watchSource, false);
            product->parameterSet->setOutputFormat(format, false);
            if (which != 0)
                product->chooseLayout(layout);
            if (which != 1)
                product->chooseScene(scene.name);
        }
    }

    /// Host blocks: whole ones for a while, then shorter ones.
    std::uint64_t hostBlock(std::uint64_t blockSize) {
        if (dice.oneIn(12))
            longest = static_cast<std::uint32_t>(dice.oneIn(2) ? blockSize : 1 + blockSize / 3);
        if (longest == 0 || longest == blockSize)
            return blockSize;
        return 1 + dice.below(longest);
    }

    /// Noise for some blocks, something else for some, noise again.
    void play(Channels& bus, std::uint64_t frames) {
        if (dice.oneIn(6))
            signal = signal == Signal::noise ? static_cast<Signal>(dice.below(5)) : Signal::noise;
        for (std::vector<float>& channel : bus)
            for (std::uint64_t frame = 0; frame < frames; ++frame)
                channel[frame] = sample();
    }

private:
    enum class Motion { rest, walk, slowTurn, fastTurn, jumps };
    enum class Signal { noise, impulses, silence, denormals, noiseOnTheEdge };

    void turnHead(std::uint64_t frames) {
        if (dice.oneIn(20))
            motion = static_cast<Motion>(dice.below(5));
        const auto seconds = static_cast<float>(static_cast<double>(frames) / sampleRate);
        switch (motion) {
        case Motion::rest:
            break;
        case Motion::walk:
            head += dice.between(-3, 3);
            break;
        case Motion::slowTurn:
            head += 90 * seconds;
            break;
        case Motion::fastTurn:
            head += 360 * seconds;
            break;
        case Motion::jumps:
            if (dice.oneIn(4))
                head = dice.between(-180, 180);
            break;
        }
        if (head > 180)
            head -= 360;
        if (head < -180)
            head += 360;
    }

    float sample() {
        switch (signal) {
        case Signal::noise:
            return dice.between(-0.5f, 0.5f);
        case Signal::impulses:
            return dice.oneIn(200) ? dice.between(-1, 1) : 0.0f;
        case Signal::silence:
            return 0.0f;
        case Signal::denormals:
            return dice.between(-1, 1) * std::numeric_limits<float>::min();
        case Signal::noiseOnTheEdge:
            return dice.between(-1e-18f, 1e-18f); // its products are denormal
        }
        return 0.0f;
    }

    Dice dice;
    double sampleRate;
    Motion motion = Motion::walk;
    Signal signal = Signal::noise;
    float head = 0; ///< Degrees.
    std::uint32_t longest = 0;
};

} // namespace test

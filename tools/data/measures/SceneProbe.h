// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/measures/RoomMeasures.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::kestrum::tools {

/// What of a Scene is heard besides the direct sound.
struct SceneParts {
    bool reflections = true;
    bool reverb = true;
};

/// How a probe renders.
struct ProbeSettings {
    double sampleRate = 48000;     ///< Hertz, one of the product's rates.
    std::uint64_t blockSize = 512; ///< Samples.
    double seconds = 3;            ///< Length of a response: the longest reverb of a Scene takes 2.7 s.
};

/// A Scene's response to an impulse, whole and in parts that add up to it. Each [2][seconds * sampleRate]; sample 0
/// is the instant of the impulse, the engine's latency is taken off.
struct SceneResponses {
    EarResponses full;
    EarResponses direct;
    EarResponses reflections; ///< Silent where the Scene has none.
    EarResponses reverb;      ///< Silent where the Scene has none.

    /// Reflections and reverb together: what the direct sound is compared with.
    EarResponses rest() const;
};

/// Renders Scenes through the product's own engine, with neither host nor plug-in: every user value at its default
/// (Ambience 50, Focus 0, Master Gain 0), head straight ahead.
///
/// Thread  one thread per probe.
/// Errors  all operations throw DataError, with the remedy, for a data folder that lacks a file, and for names that
///         are no layout or Scene.
class SceneProbe {
public:
    /// @param folder the data folder that the responses of head and rooms are read from.
    explicit SceneProbe(const std::filesystem::path& folder, const ProbeSettings& settings = {});
    ~SceneProbe();
    SceneProbe(const SceneProbe&) = delete;
    SceneProbe& operator=(const SceneProbe&) = delete;

    const ProbeSettings& settings() const { return probeSettings; }

    /// The response to an impulse of 1.0 on one channel of the bus, after the engine has faded in and every gain has
    /// settled. The reverb's file is read anew each time.
    EarResponses respond(std::string_view scene, const SceneParts& parts = {},
                         std::string_view layout = defaultLayout, std::size_t channel = 0) const;

    /// respond() with and without the parts, and the differences.
    SceneResponses responses(std::string_view scene, std::string_view layout = defaultLayout,
                             std::size_t channel = 0) const;

    /// Any signal on all channels of the bus, after the same preparation.
    ///
    /// Shape   input [channels of the layout][frames]; returns [2][frames].
    EarResponses render(const std::vector<Samples>& input, std::string_view scene, std::string_view layout,
                        const SceneParts& parts = {}) const;

    static constexpr std::string_view defaultLayout = "2.0 +/-30°";

private:
    class Head;
    std::string dataDirectory;
    ProbeSettings probeSettings;
    std::unique_ptr<Head> head;
};

} // namespace orvane::kestrum::tools

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/head/Grid.h"
#include "data/head/ResponseSet.h"
#include "data/rooms/ReverbCalibration.h"

#include "support/ReverbFiles.h"
#include "support/SphericalHead.h"
#include "support/WaveFile.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace test {

/// The decay time of the noise in a synthetic folder's reverb files, before a Scene shortens it.
inline constexpr double syntheticDecaySeconds = 0.4;

/// Writes the 48 kHz responses of a head that can be computed by hand: one impulse at each ear.
inline void writeSyntheticHead(const std::string& folder) {
    using namespace orvane::kestrum::tools;
    const ResponseFile& file = responseFiles[1];
    const auto pulse = [](int side, const GridPlace& place) {
        const SphericalHead::Ear ear = SphericalHead::ear(side, place.azimuthDegrees, place.elevationDegrees);
        Samples samples(file.length);
        samples[ear.delay] = static_cast<double>(ear.gain);
        return samples;
    };
    ResponseSet set{file, {}};
    for (const GridPlace& place : gridPlaces())
        set.responses.push_back({pulse(-1, place), pulse(1, place)});
    writeResponseSet(set, folder);
}

/// Writes the rooms of 48 kHz, each the same decaying noise at the level that is made for it.
inline void writeSyntheticRooms(const std::string& folder) {
    using namespace orvane::kestrum::tools;
    ReverbSet set{reverbFiles[1], {}};
    const Signal noise = decayingNoise(static_cast<std::uint32_t>(set.file.sampleRate));
    for (const RoomDescription& room : roomDescriptions()) {
        const Samples silence(frameCountAt(room, set.file.sampleRate));
        ReverbEntry entry{room.room, {silence, silence}};
        const LevelRange range = levelRange(room.room);
        const double gain = std::pow(10.0, (range.from + range.to) / 40);
        for (std::size_t frame = 0; frame < std::min(silence.size(), noise.size() / 2); ++frame)
            for (std::size_t ear = 0; ear < 2; ++ear)
                entry.ears[ear][frame] = gain * static_cast<double>(noise[2 * frame + ear]);
        set.entries.push_back(std::move(entry));
    }
    writeReverbSet(set, folder);
}

/// A data folder of the process, made at the first call: a synthetic head at 48 kHz and rooms of decaying noise.
inline const std::string& syntheticFolder() {
    static const TemporaryFolder folder;
    static const std::string path = [] {
        writeSyntheticHead(folder.path());
        writeSyntheticRooms(folder.path());
        return folder.path();
    }();
    return path;
}

} // namespace test

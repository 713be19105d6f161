// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/Grid.h"
#include "data/ResponseSet.h"

#include "support/ReverbFiles.h"
#include "support/SphericalHead.h"
#include "support/WaveFile.h"

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

/// A data folder of the process, made at the first call: a synthetic head at 48 kHz and rooms of decaying noise.
inline const std::string& syntheticFolder() {
    static const TemporaryFolder folder;
    static const std::string path = [] {
        writeSyntheticHead(folder.path());
        writeReverbFiles(folder.path());
        return folder.path();
    }();
    return path;
}

} // namespace test

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/head/Grid.h"
#include "data/head/ResponseSet.h"
#include "data/rooms/ReverbCalibration.h"
#include "data/sets/About.h"

#include "../data_builder/SyntheticHead.h"
#include "support/ReverbFiles.h"
#include "support/WaveFile.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace test {

/// The head of a pulse at each ear, for one of the files.
inline orvane::kestrum::tools::ResponseSet pulseHead(const orvane::kestrum::tools::ResponseFile& file) {
    namespace tools = orvane::kestrum::tools;
    const double share = file.sampleRate / 48000.0;
    const SyntheticHead head{static_cast<double>(file.sampleRate), file.length, 30 * share, 13 * share, 3};
    tools::ResponseSet set{file, {}};
    for (const tools::GridPlace& place : tools::gridPlaces())
        set.responses.push_back({head.response(-1, place.direction()), head.response(1, place.direction())});
    return set;
}

/// Decaying noise in every room, at a level that "check" believes.
inline orvane::kestrum::tools::ReverbSet noiseRooms(const orvane::kestrum::tools::ReverbFile& file) {
    namespace tools = orvane::kestrum::tools;
    const Signal noise = decayingNoise(static_cast<std::uint32_t>(file.sampleRate));
    tools::ReverbSet set{file, {}};
    for (const tools::RoomDescription& room : tools::roomDescriptions()) {
        const std::size_t length = tools::frameCountAt(room, file.sampleRate);
        tools::ReverbEntry entry{room.room, {Samples(length), Samples(length)}};
        const tools::LevelRange range = tools::levelRange(room.room);
        const double gain = std::pow(10.0, (range.from + range.to) / 40);
        for (std::size_t frame = 0; frame < std::min(length, noise.size() / 2); ++frame)
            for (std::size_t ear = 0; ear < 2; ++ear)
                entry.ears[ear][frame] = gain * static_cast<double>(noise[2 * frame + ear]);
        set.entries.push_back(std::move(entry));
    }
    return set;
}

/// A whole data folder of the process that "check" finds sound, with one file more; made at the first call.
inline const std::string& soundFolder() {
    namespace tools = orvane::kestrum::tools;
    static const TemporaryFolder folder;
    static const std::string path = [] {
        for (const tools::ResponseFile& file : tools::responseFiles)
            tools::writeResponseSet(pulseHead(file), folder.path());
        for (const tools::ReverbFile& file : tools::reverbFiles)
            tools::writeReverbSet(noiseRooms(file), folder.path());
        writeBytes(folder.file("about.json"),
                   "{\"method\": " + std::to_string(tools::methodNumber) +
                       ", \"rooms\": {\"method\": " + std::to_string(tools::reverbMethodNumber) + "}}");
        writeBytes(folder.file("note.txt"), "kept");
        return folder.path();
    }();
    return path;
}

} // namespace test

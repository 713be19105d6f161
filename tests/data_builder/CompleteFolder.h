// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/sets/About.h"

#include "SyntheticRooms.h"

#include <string>

namespace test {

/// A head that can be computed by hand, for any of the files.
inline orvane::kestrum::tools::ResponseSet
syntheticHeadFor(const orvane::kestrum::tools::ResponseFile& file) {
    namespace tools = orvane::kestrum::tools;
    const double scale = static_cast<double>(file.sampleRate) / 48000;
    const SyntheticHead head{static_cast<double>(file.sampleRate), file.length, 30 * scale, 13 * scale, 3};
    tools::ResponseSet set{file, {}};
    for (const tools::GridPlace& place : tools::gridPlaces())
        set.responses.push_back({head.response(-1, place.direction()), head.response(1, place.direction())});
    return set;
}

/// Fills a folder with a complete, sound set: the head above and tones for rooms.
inline void writeCompleteSet(const std::string& folder, const std::string& about) {
    namespace tools = orvane::kestrum::tools;
    for (const tools::ResponseFile& file : tools::responseFiles)
        tools::writeResponseSet(syntheticHeadFor(file), folder);
    for (const tools::ReverbFile& file : tools::reverbFiles)
        tools::writeReverbSet(toneRooms(file), folder);
    tools::writeAbout(about, folder);
}

/// What such a set says of itself where no measurement is behind it.
inline std::string syntheticAbout() {
    return orvane::kestrum::tools::aboutWithRooms(
        R"({"method": 1, "origin": "a computed head", "input": {"file": "none.sofa"}})");
}

} // namespace test

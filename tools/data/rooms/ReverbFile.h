// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/Spectra.h"
#include "data/rooms/RoomDescriptions.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <string_view>
#include <vector>

namespace orvane::kestrum::tools {

/// One of the three files of reverb responses.
struct ReverbFile {
    std::string_view name;
    int sampleRate = 0; ///< Hertz.
};

inline constexpr std::array<ReverbFile, 3> reverbFiles{{
    {"OVNdata510.dat", 44100},
    {"OVNdata511.dat", 48000},
    {"OVNdata512.dat", 24000},
}};

/// One room's response in a file.
struct ReverbEntry {
    int room = 0;
    std::array<Samples, 2> ears; ///< [2][frameCountAt(room, rate)]
};

/// The content of one of the three files: one entry per room of roomDescriptions(), in that order.
struct ReverbSet {
    ReverbFile file;
    std::vector<ReverbEntry> entries;
};

/// Size of a file in bytes.
std::uint64_t reverbFileSize(const ReverbFile& file);

/// Writes the set as the product reads it: 2 bytes, the table of 60 starts in stereo frames from the table's end, the
/// silent frame that all entries share which no room with a reverb uses, then room after room in the order of
/// the entries, stereo frames of 32-bit floats. All little-endian. Written beside the target and renamed, so that
/// a reader never meets half a file.
/// @throws DataError when the folder cannot be written.
void writeReverbSet(const ReverbSet& set, const std::filesystem::path& folder);

/// Reads such a file back; size, every start and the silent frame are checked before use.
/// @throws DataError that names the first thing wrong with the file.
ReverbSet readReverbSet(const ReverbFile& file, const std::filesystem::path& folder);

} // namespace orvane::kestrum::tools

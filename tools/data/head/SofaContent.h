// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace orvane::kestrum::tools {

/// What a SOFA file says, as far as anybody here asks; nothing of it is checked.
struct SofaContent {
    std::uint32_t measurementCount = 0;
    std::uint32_t receiverCount = 0;
    std::uint32_t tapCount = 0;
    std::vector<float> sampleRates; ///< Hertz; one is usual.
    std::vector<float>
        sourcePositions;          ///< Degrees to the left, degrees up, metres; one triple per measurement.
    std::vector<float> responses; ///< [measurements][receivers][taps]
    std::vector<float> delays;    ///< Samples; one per receiver, or [measurements][receivers].
    std::string convention;
    std::string database;
    std::string listener;
    std::string licence;
    std::string author;
    std::string organisation;
    std::string references;
};

/// Has the file taken apart in a child process, since the library that knows the container follows what a damaged file says
/// into loops without end and out of its memory.
///
/// Thread  as inChildProcess(): the program's only one.
/// @throws DataError when the file is no readable SOFA file, or takes longer than `limit`.
SofaContent readSofaContent(const std::filesystem::path& file, std::chrono::milliseconds limit);

} // namespace orvane::kestrum::tools

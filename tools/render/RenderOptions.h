// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace orvane::kestrum::render {

/// What was asked for on the command line. Values of parameters stay as written; the plug-in's ranges and
/// names decide later what they mean.
struct RenderOptions {
    std::filesystem::path input;
    std::filesystem::path output;
    std::optional<std::string> layout;
    std::optional<std::string> scene;
    std::optional<std::string> ambience;
    std::optional<std::string> focus;
    std::optional<std::string> rotation;
    std::optional<std::string> gain;
    std::uint32_t block = 512;
    std::optional<std::uint32_t> varyingBlocks;
    std::optional<std::filesystem::path> automation;
    double settleMilliseconds = 250;
    bool realtime = false;
    std::optional<std::filesystem::path> state;
    std::optional<std::filesystem::path> saveState;
    std::optional<std::filesystem::path> plugin;
    std::optional<std::filesystem::path> json;
    bool raw = false;
};

} // namespace orvane::kestrum::render

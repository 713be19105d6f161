// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "pictures/Picture.h"

#include <cstdint>
#include <filesystem>
#include <span>
#include <vector>

namespace orvane::kestrum::pictures {

/// Eight-bit pixels as files hold them.
///
/// Shape   bytes [height][width][4]: red, green, blue, alpha, not multiplied.
struct Bytes {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> bytes;
};

/// Rounds. A picture without transparent parts gets a fixed pattern of noise, so that soft light does not band and the
/// same picture gives the same bytes. In others the steps vanish in what lies beneath: there noise would only make large
/// files, and colours are rounded as coarsely as alpha hides.
Bytes dithered(const Picture& picture);

/// Without an alpha channel when every pixel is opaque.
/// @throws std::runtime_error when the file cannot be written.
void writePng(const Bytes& picture, const std::filesystem::path& path);

/// @throws std::runtime_error when the bytes are no PNG.
Bytes readPng(std::span<const std::uint8_t> png);
Bytes readPng(const std::filesystem::path& path);

} // namespace orvane::kestrum::pictures

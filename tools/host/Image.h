// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace orvane::kestrum::host {

/// A picture without transparency.
///
/// Shape  pixels [height][width][3], red, green, blue.
struct Image {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> pixels;

    Image() = default;
    /// Black.
    Image(int wide, int high)
        : width(wide),
          height(high),
          pixels(static_cast<std::size_t>(wide) * static_cast<std::size_t>(high) * 3) {}

    std::uint8_t* pixel(int x, int y) { return pixels.data() + offset(x, y); }
    const std::uint8_t* pixel(int x, int y) const { return pixels.data() + offset(x, y); }
    bool operator==(const Image&) const = default;

private:
    std::size_t offset(int x, int y) const {
        return (static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)) *
               3;
    }
};

} // namespace orvane::kestrum::host

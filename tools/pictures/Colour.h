// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <cmath>

namespace orvane::kestrum::pictures {

/// Units: sRGB-encoded components, 0 to 1, not multiplied by alpha. Pictures are stacked in this encoding because the
/// framework that shows them stacks them so.
struct Colour {
    float red = 0;
    float green = 0;
    float blue = 0;
    float alpha = 1;

    constexpr Colour withAlpha(float newAlpha) const noexcept { return {red, green, blue, newAlpha}; }
    constexpr Colour faded(float factor) const noexcept { return {red, green, blue, alpha * factor}; }
};

constexpr Colour mix(const Colour& from, const Colour& to, float share) noexcept {
    return {from.red + share * (to.red - from.red), from.green + share * (to.green - from.green),
            from.blue + share * (to.blue - from.blue), from.alpha + share * (to.alpha - from.alpha)};
}

constexpr Colour fromBytes(int red, int green, int blue, float alpha = 1.0f) noexcept {
    return {static_cast<float>(red) / 255.0f, static_cast<float>(green) / 255.0f,
            static_cast<float>(blue) / 255.0f, alpha};
}

constexpr Colour grey(float level, float alpha = 1.0f) noexcept { return {level, level, level, alpha}; }

/// The one palette. `lit` is the colour that the widgets' texts and menus have too.
namespace palette {
inline constexpr Colour lit = fromBytes(81, 232, 216);
inline constexpr Colour hot = fromBytes(214, 255, 250);   ///< Cores of lit lines.
inline constexpr Colour label = fromBytes(158, 188, 190); ///< Names of controls.
inline constexpr Colour dim = fromBytes(58, 92, 97);      ///< Ticks and edges that rest.
inline constexpr Colour panel = fromBytes(10, 20, 24);    ///< Bar of controls.
inline constexpr Colour glass = fromBytes(6, 40, 45);     ///< Bodies of boxes, beneath the menus' 0/87/91.
inline constexpr Colour bed = fromBytes(4, 9, 11);        ///< Grooves and wells.
inline constexpr Colour amber = fromBytes(255, 190, 110); ///< Warm light, used sparingly.
} // namespace palette

} // namespace orvane::kestrum::pictures

// SPDX-License-Identifier: GPL-3.0-or-later
#include "pictures/Background.h"

#include "pictures/ControlBar.h"
#include "pictures/Outlines.h"
#include "pictures/ProductLogo.h"

#include <algorithm>
#include <cmath>

namespace orvane::kestrum::pictures {

namespace {

/// Adds what a lens scatters round bright places.
void addGlow(Picture& room, double sigma, float strength) {
    Picture bright = room;
    for (Colour& pixel : bright.pixels) {
        const float level = std::max({pixel.red, pixel.green, pixel.blue});
        const float share = std::clamp((level - 0.30f) / 0.35f, 0.0f, 1.0f);
        pixel = {pixel.red * share, pixel.green * share, pixel.blue * share, 1};
    }
    bright = blurred(bright, sigma);
    for (std::size_t i = 0; i < room.pixels.size(); ++i) {
        const auto added = [strength](float base, float light) {
            return base + (1 - base) * strength * light;
        };
        Colour& pixel = room.pixels[i];
        const Colour& light = bright.pixels[i];
        pixel = {added(pixel.red, light.red), added(pixel.green, light.green), added(pixel.blue, light.blue),
                 1};
    }
}

float falling(float distance, float from, float to) noexcept {
    const float place = std::clamp((distance - from) / (to - from), 0.0f, 1.0f);
    return place * place * (3 - 2 * place);
}

/// Darker to the corners, and where the diagram is written.
void shadeRoom(Picture& room) {
    for (int y = 0; y < room.height; ++y)
        for (int x = 0; x < room.width; ++x) {
            const float across = static_cast<float>(x) / static_cast<float>(room.width) * 2 - 1;
            const float down = static_cast<float>(y) / static_cast<float>(room.height) * 2 - 1;
            const float corner = falling(std::hypot(across * 0.8f, down * 0.8f), 0.55f, 1.25f);
            const float middle = 1 - falling(std::hypot(across / 0.95f, (down - 0.02f) / 0.75f), 0.3f, 1.0f);
            const float factor = (1 - 0.45f * corner) * (1 - 0.30f * middle);
            Colour& pixel = room.at(x, y);
            // A breath of teal in the shadows, so that room, bar and menus are of one family.
            pixel = {pixel.red * factor + 0.006f, pixel.green * factor + 0.016f, pixel.blue * factor + 0.020f,
                     1};
        }
}

} // namespace

Picture roomPicture(const RoomQuality& quality) {
    Picture room = renderRoom(backgroundWidth, backgroundHeight, quality);
    addGlow(room, 7, 0.35f);
    addGlow(room, 40, 0.30f);
    shadeRoom(room);
    return room;
}

Picture background(Picture room, Focus focus, const Font& medium, const Font& regular) {
    if (focus == Focus::blurred)
        room = blurred(room, 15);
    Canvas canvas(room);
    drawControlBar(canvas, medium);
    drawProductLogo(canvas, medium, regular);
    return room;
}

} // namespace orvane::kestrum::pictures

// SPDX-License-Identifier: GPL-3.0-or-later
#include "pictures/Background.h"

#include "pictures/ControlBar.h"
#include "pictures/Outlines.h"
#include "pictures/ProductLogo.h"

namespace orvane::kestrum::pictures {

Picture background(Focus, const Font& medium, const Font& regular) {
    Picture picture(backgroundWidth, backgroundHeight);
    Canvas canvas(picture);
    canvas.fill(rectangle(-2, -2, 1084, 640),
                along(0, 0, 0, 636,
                      {{0, fromBytes(16, 34, 40)}, {0.5, fromBytes(9, 20, 25)}, {1, fromBytes(4, 10, 12)}}));
    drawControlBar(canvas, medium);
    drawProductLogo(canvas, medium, regular);
    return picture;
}

} // namespace orvane::kestrum::pictures

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Person.h"

// Where the editor's controls lie, in pixels from its upper left corner, as the product's description gives them. Copied
// by hand, so that a control that moves is found out.

namespace orvane::kestrum::host::test {

struct Place {
    int x;
    int y;
    int width;
    int height;

    Point middle() const { return {x + width / 2, y + height / 2}; }
    /// On the middle line, so far from left to right: 0 to 1.
    Point along(double share) const { return {x + static_cast<int>(share * width), y + height / 2}; }
};

constexpr Place speakerSetup{12, 571, 107, 24};
constexpr Place scene{282, 571, 107, 24};
constexpr Place scenePrevious{391, 570, 24, 24};
constexpr Place sceneNext{415, 570, 24, 24};
constexpr Place ambience{460, 569, 156, 24};
constexpr Place ambienceText{577, 549, 36, 18};
constexpr Place focus{640, 569, 156, 24};
constexpr Place focusText{757, 549, 36, 18};
constexpr Place headRotation{864, 558, 72, 72};
constexpr Place headRotationText{822, 573, 36, 18};
constexpr Place masterGain{990, 558, 72, 72};
constexpr Place masterGainText{952, 573, 36, 18};
constexpr Place logo{892, 10, 180, 70};
constexpr Place diagram{0, 0, 1080, 504};
constexpr Place help{1056, 636, 24, 24};
constexpr int windowWidth = 1080, windowHeight = 660;

} // namespace orvane::kestrum::host::test

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "pictures/Font.h"
#include "pictures/Outlines.h"

#include "parameters/core/LayoutTable.h"

#include <string>
#include <vector>

namespace orvane::kestrum::pictures {

/// The stage of a diagram: the floor round the listener as an ellipse, seen from behind and a little above without
/// foreshortening. Azimuths are true on the floor; heights stand above their place on it, on a dome that is flatter
/// than a sphere so that it fits the window.
///
/// Units   points of the window; a loudspeaker at ear level stands at radius 1.
namespace stage {
inline constexpr Point middle{540, 332};
inline constexpr double radiusX = 430;
inline constexpr double radiusY = 140;
inline constexpr double lowFrequencyRadius =
    0.66; ///< It has no direction of its own; the engine plays it from ahead.

/// Place on the floor. Units: degrees, 0 ahead, positive to the right.
Point floorAt(double azimuth, double radius) noexcept;

/// Distance from the listener, on the floor, at which an elevation is drawn: a little more than on a sphere, so that
/// boxes above do not hide those below.
double radiusOf(double elevation) noexcept;

/// How far above the floor an elevation is drawn.
double riseOf(double elevation) noexcept;

/// A vector along the floor (x right, z ahead) and upwards, as drawn.
Point drawn(double x, double z, double up) noexcept;
} // namespace stage

struct Area {
    double left = 0;
    double top = 0;
    double width = 0;
    double height = 0;
};

bool overlap(const Area& a, const Area& b) noexcept;

/// A loudspeaker's box, its size in points.
struct Cabinet {
    double width = 26;
    double depth = 18;
    double height = 36;
};

struct StagedSpeaker {
    core::SpeakerRow speaker;
    std::string number; ///< Bus channel, counted from 1.
    std::string name;
    Point foot;  ///< On the floor.
    Point place; ///< Middle of the box's bottom.
    Cabinet cabinet;
    Area covered; ///< By the box.
    Area label;
};

/// Height of labels' letters.
inline constexpr double labelHeight = 12;

/// Between number and name, and from the label's ends to its text.
inline constexpr double labelGap = 4, labelPadding = 6;

/// Where the listener's head and shoulders are drawn.
inline constexpr Area listenerArea{492, 250, 96, 92};

/// All loudspeakers of a layout in bus order, with labels that cover nothing. @param font of the labels.
std::vector<StagedSpeaker> staged(const core::LayoutRow& layout, const Font& font);

} // namespace orvane::kestrum::pictures

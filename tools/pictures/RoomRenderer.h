// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "pictures/Picture.h"

namespace orvane::kestrum::pictures {

struct RoomQuality {
    int cell = 3;      ///< Pixels between places whose light is traced; between them it is interpolated.
    int samples = 40;  ///< Paths for each of them.
    int subpixels = 3; ///< Squared: eye rays for each pixel, against stairs along edges.
};

/// The control room as seen from the listener's chair, by path tracing: light of every lamp, scattered twice more.
/// The same numbers give the same picture.
///
/// Source  J. Kajiya, "The rendering equation", 1986; the light between traced places is interpolated and smoothed
///         along surfaces only, after H. Dammertz et al., "Edge-avoiding a-trous wavelet transform", 2010.
Picture renderRoom(int width, int height, const RoomQuality& quality);

} // namespace orvane::kestrum::pictures

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "pictures/Picture.h"
#include "pictures/RoomRenderer.h"

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace orvane::kestrum::pictures {

/// One file that the editor shows.
struct PictureSource {
    std::string file; ///< Relative to the folder of pictures.
    int width = 0;    ///< Pixels: twice what is shown.
    int height = 0;
    std::function<Picture()> draw;
};

/// All pictures of the editor. The room is traced when the first background is drawn, and then kept.
/// @param fonts folder of the fonts that the plug-in carries.
std::vector<PictureSource> pictureSet(const std::filesystem::path& fonts, const RoomQuality& quality = {});

/// Those of a set whose names begin with one of `beginnings`, such as "rotary_" or "layouts/7.1"; all where there is none.
/// @throws std::runtime_error when no picture's name begins with one of them.
std::vector<PictureSource> chosen(std::vector<PictureSource> set, const std::vector<std::string>& beginnings);

} // namespace orvane::kestrum::pictures

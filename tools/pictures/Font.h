// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "pictures/Mask.h"

#include <filesystem>
#include <memory>
#include <string>

namespace orvane::kestrum::pictures {

/// How a text stands at its place.
enum class Align { left, middle, right };

/// Outlines of a font file: the files that the plug-in carries, never a font of the machine.
class Font {
public:
    /// @throws std::runtime_error when the file cannot be read as a font.
    explicit Font(const std::filesystem::path& file);

    /// Outline of one line of text. Units: points; `tracking` is added after every glyph, in shares of the height.
    Path text(const std::string& utf8, double x, double baseline, double height, Align align = Align::left,
              double tracking = 0) const;

    /// Width of the line, without the tracking after its last glyph.
    double width(const std::string& utf8, double height, double tracking = 0) const;

private:
    struct Face;
    std::shared_ptr<const Face> face; ///< Shared with the outlines, which may outlive the font.
};

} // namespace orvane::kestrum::pictures

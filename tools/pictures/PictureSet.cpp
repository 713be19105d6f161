// SPDX-License-Identifier: GPL-3.0-or-later
#include "pictures/PictureSet.h"

#include "pictures/Background.h"
#include "pictures/Diagram.h"
#include "pictures/Font.h"
#include "pictures/Widgets.h"

#include "parameters/core/LayoutTable.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <stdexcept>

namespace orvane::kestrum::pictures {

namespace {

/// The two coincident loudspeakers of this layout look like one, and its diagram is that of "1.0".
constexpr std::string_view coincidentPair = "2.0 +/-0°";

/// "2.0 +/-30°" becomes "2.0_+-_30.png".
std::string fileOf(std::string_view layout) {
    if (layout == "LRCS")
        return "layouts/LCRS.png"; // Deliberate: the letters stand in the order from left to right.
    std::string name;
    for (const char character : layout)
        if (character == ' ')
            name += '_';
        else if (character == '/')
            continue;
        else if (static_cast<unsigned char>(character) < 0x80) // leaves the degree sign out
            name += character;
    const std::size_t sign = name.find("+-");
    if (sign != std::string::npos)
        name.insert(sign + 2, "_");
    return "layouts/" + name + ".png";
}

void addDials(std::vector<PictureSource>& set) {
    const auto add = [&set](std::string name, int side, std::function<Picture()> draw) {
        set.push_back({std::move(name), side, side, std::move(draw)});
    };
    // The widgets' ranges begin at 220 or 225 degrees and end at 493 or 495; one picture serves both.
    for (const auto& [prefix, side] :
         {std::pair{"rotary_big_", 216}, {"rotary_", 144}, {"rotary_small_", 72}}) {
        add(std::string(prefix) + "pointer.png", side, [side = side] { return dialPointer(side); });
        add(std::string(prefix) + "ring.png", side, [side = side] { return dialRing(side, 225, 495); });
    }
    add("rotary_full_circle_ring.png", 168, [] { return dialRing(168, 0, 360); });
}

void addSliders(std::vector<PictureSource>& set) {
    struct Track {
        const char* name;
        int width, height, thumbSide;
    };
    for (const auto& [name, width, height, thumbSide] : {Track{"slider_track.png", 216, 36, 48},
                                                         {"slider_centered_track.png", 204, 36, 36},
                                                         {"slider_middle_track.png", 312, 48, 48},
                                                         {"slider_long_track.png", 516, 36, 48},
                                                         {"slider_long_centered_track.png", 516, 36, 36},
                                                         {"slider_vertical_track.png", 36, 516, 36},
                                                         {"slider_vertical_micro_track.png", 36, 448, 60}})
        set.push_back({name, width, height, [width = width, height = height, thumbSide = thumbSide] {
                           return sliderTrack(width, height, thumbSide);
                       }});
    for (const auto& [name, side] : {std::pair{"slider_thumb.png", 48},
                                     {"slider_centered_thumb.png", 36},
                                     {"slider_vertical_micro_thumb.png", 60}})
        set.push_back({name, side, side, [side = side] { return sliderThumb(side); }});
}

void addButtons(std::vector<PictureSource>& set, const std::shared_ptr<const Font>& font) {
    set.push_back({"combo_arrow_24.png", 24, 36, [] { return comboArrow(24, 36); }});
    set.push_back({"combo_arrow_36.png", 36, 48, [] { return comboArrow(36, 48); }});
    set.push_back({"arrow_left.png", 48, 48, [] { return pressedArrow(false); }});
    set.push_back({"arrow_right.png", 48, 48, [] { return pressedArrow(true); }});
    set.push_back({"toolbar_logo.png", 240, 48, [font] { return toolbarLogo(*font, false); }});
    set.push_back({"toolbar_logo_down.png", 240, 48, [font] { return toolbarLogo(*font, true); }});
    set.push_back({"toolbar_help.png", 48, 48, [font] { return toolbarHelp(*font, false); }});
    set.push_back({"toolbar_help_down.png", 48, 48, [font] { return toolbarHelp(*font, true); }});
}

void addBackgrounds(std::vector<PictureSource>& set, const std::shared_ptr<const Font>& medium,
                    const std::shared_ptr<const Font>& regular, const RoomQuality& quality) {
    const auto room = std::make_shared<std::optional<Picture>>();
    const auto add = [&](const char* name, Focus focus) {
        set.push_back({name, backgroundWidth, backgroundHeight, [=] {
                           if (!room->has_value())
                               room->emplace(roomPicture(quality));
                           return background(**room, focus, *medium, *regular);
                       }});
    };
    add("normal.png", Focus::sharp);
    add("blurred.png", Focus::blurred);
}

} // namespace

std::vector<PictureSource> pictureSet(const std::filesystem::path& fonts, const RoomQuality& quality) {
    const auto medium = std::make_shared<const Font>(fonts / "Lato-Medium.ttf");
    const auto regular = std::make_shared<const Font>(fonts / "Lato-Regular.ttf");
    std::vector<PictureSource> set;
    addDials(set);
    addSliders(set);
    addButtons(set, medium);
    for (const core::LayoutRow& layout : core::layoutTable())
        if (layout.name != coincidentPair)
            set.push_back({fileOf(layout.name), diagramWidth, diagramHeight,
                           [layout, medium] { return diagram(layout, *medium); }});
    addBackgrounds(set, medium, regular, quality);
    return set;
}

std::vector<PictureSource> chosen(std::vector<PictureSource> set,
                                  const std::vector<std::string>& beginnings) {
    for (const std::string& beginning : beginnings)
        if (std::ranges::none_of(
                set, [&](const PictureSource& source) { return source.file.starts_with(beginning); }))
            throw std::runtime_error("there is no picture whose name begins with \"" + beginning + "\"");
    if (!beginnings.empty())
        std::erase_if(set, [&](const PictureSource& source) {
            return std::ranges::none_of(
                beginnings, [&](const std::string& name) { return source.file.starts_with(name); });
        });
    return set;
}

} // namespace orvane::kestrum::pictures

// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/LayoutImages.h"

#include "Resources.h"
#include "parameters/core/SelectorId.h"

#include <stdexcept>
#include <string_view>
#include <unordered_map>

namespace orvane::kestrum {

namespace {

struct Row {
    std::string_view layout;
    LayoutImage image;
};

using namespace resources;
const Row rows[]{
    {"1.0", {_1_0_png, _1_0_pngSize}},
    {"2.0 +/-0°", {_1_0_png, _1_0_pngSize}}, // Deliberate: two loudspeakers in one place look as one.
    {"2.0 +/-30°", {_2_0__30_png, _2_0__30_pngSize}},
    {"2.0 +/-45°", {_2_0__45_png, _2_0__45_pngSize}},
    {"LRCS", {LCRS_png, LCRS_pngSize}}, // Deliberate: the file has the letters in another order.
    {"Quad", {Quad_png, Quad_pngSize}},
    {"4.0", {_4_0_png, _4_0_pngSize}},
    {"5.0 Film", {_5_0_Film_png, _5_0_Film_pngSize}},
    {"5.0 ITU", {_5_0_ITU_png, _5_0_ITU_pngSize}},
    {"5.1 Film", {_5_1_Film_png, _5_1_Film_pngSize}},
    {"5.1 ITU", {_5_1_ITU_png, _5_1_ITU_pngSize}},
    {"5.1 ITU Logic", {_5_1_ITU_Logic_png, _5_1_ITU_Logic_pngSize}},
    {"6.0", {_6_0_png, _6_0_pngSize}},
    {"6.1", {_6_1_png, _6_1_pngSize}},
    {"7.0", {_7_0_png, _7_0_pngSize}},
    {"7.1", {_7_1_png, _7_1_pngSize}},
    {"7.1 SDDS", {_7_1_SDDS_png, _7_1_SDDS_pngSize}},
    {"7.1 SDDS Logic", {_7_1_SDDS_Logic_png, _7_1_SDDS_Logic_pngSize}},
    {"5.0.2", {_5_0_2_png, _5_0_2_pngSize}},
    {"5.1.2", {_5_1_2_png, _5_1_2_pngSize}},
    {"5.0.4", {_5_0_4_png, _5_0_4_pngSize}},
    {"5.1.4", {_5_1_4_png, _5_1_4_pngSize}},
    {"7.0.2", {_7_0_2_png, _7_0_2_pngSize}},
    {"7.1.2", {_7_1_2_png, _7_1_2_pngSize}},
    {"7.0.4", {_7_0_4_png, _7_0_4_pngSize}},
    {"7.1.4", {_7_1_4_png, _7_1_4_pngSize}},
    {"9.1.2", {_9_1_2_png, _9_1_2_pngSize}},
    {"9.1.6", {_9_1_6_png, _9_1_6_pngSize}},
    {"8.0", {_8_0_png, _8_0_pngSize}},
    {"9.1", {_9_1_png, _9_1_pngSize}},
    {"11.1", {_11_1_png, _11_1_pngSize}},
    {"13.1", {_13_1_png, _13_1_pngSize}},
};

const std::unordered_map<std::uint32_t, LayoutImage> images = [] {
    std::unordered_map<std::uint32_t, LayoutImage> table;
    for (const auto& [layout, image] : rows)
        table.emplace(core::selectorId(layout), image);
    return table;
}();

} // namespace

LayoutImage layoutImage(std::uint32_t id) {
    const auto found = images.find(id);
    if (found == images.end())
        throw std::out_of_range("invalid unordered_map<K, T> key");
    return found->second;
}

} // namespace orvane::kestrum

// SPDX-License-Identifier: GPL-3.0-or-later
#include "parameters/core/MenuPresentation.h"

namespace orvane::kestrum::core {

namespace {

constexpr MenuEntry layouts[]{
    {"1.0", "Mono Input", "Mono/Stereo"},
    {"2.0 +/-0°", "Mono Summed", ""},
    {"2.0 +/-30°", "Stereo", ""},
    {"2.0 +/-45°", "Stereo Wide", ""},
    {"LRCS", "LRCS", "Horizontal Plane"},
    {"Quad", "Quad", ""},
    {"4.0", "4.0", ""},
    {"5.0 Film", "5.0 Film", ""},
    {"5.0 ITU", "5.0 ITU", ""},
    {"5.1 Film", "5.1 Film", ""},
    {"5.1 ITU", "5.1 ITU", ""},
    {"5.1 ITU Logic", "5.1 ITU Logic", ""},
    {"6.0", "6.0", ""},
    {"6.1", "6.1", ""},
    {"7.0", "7.0", ""},
    {"7.1", "7.1", ""},
    {"7.1 SDDS", "7.1 SDDS", ""},
    {"7.1 SDDS Logic", "7.1 SDDS Logic", ""},
    {"5.0.2", "5.0.2", "With Heights"},
    {"5.1.2", "5.1.2", ""},
    {"5.0.4", "5.0.4", ""},
    {"5.1.4", "5.1.4", ""},
    {"7.0.2", "7.0.2", ""},
    {"7.1.2", "7.1.2", ""},
    {"7.0.4", "7.0.4", ""},
    {"7.1.4", "7.1.4", ""},
    {"9.1.2", "9.1.2", ""},
    {"9.1.6", "9.1.6", ""},
    {"8.0", "8.0", ""},
    {"9.1", "9.1", ""},
    {"11.1", "11.1", ""},
    {"13.1", "13.1", ""},
};

constexpr MenuEntry scenes[]{
    {"Mix Room", "Mix Room A", "Mix"},
    {"Mix Room Small", "Mix Room B", ""},
    {"Mix Room Large", "Mix Room Large", ""},
    {"Analytic Dry", "Analytic Dry", ""},
    {"Analytic Position", "Analytic Position", ""},
    {"Live Venue", "Live Venue", "Check"},
    {"Stadium", "Stadium", ""},
    {"Acoustic Venue", "Acoustic Venue", ""},
    {"Club Large", "Club Large", ""},
    {"Club", "Club", ""},
    {"Car", "Car", ""},
    {"Van", "Van", ""},
    {"Cinema", "Cinema", ""},
    {"Home Theater", "Home Theater", ""},
    {"Living Room", "Living Room", ""},
    {"Kitchen", "Kitchen", ""},
};

} // namespace

std::span<const MenuEntry> layoutMenu() noexcept { return layouts; }

std::span<const MenuEntry> sceneMenu() noexcept { return scenes; }

} // namespace orvane::kestrum::core

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

/// The layouts and Scenes as they are listed for people, in other columns and another notation than the
/// product's tables: the tests compare the two.
namespace listed {

/// `speakers`: azimuth, or azimuth/elevation, or LFE, by channel.
struct Layout {
    std::string_view name;
    std::string_view shownAs;
    std::uint32_t id;
    std::uint64_t channels;
    std::string_view speakers;
};

// clang-format off
inline constexpr Layout layouts[]{
    {"1.0", "Mono Input", 0x7459FFD0, 1, "0"},
    {"2.0 +/-0°", "Mono Summed", 0x4CD935C3, 2, "0, 0"},
    {"2.0 +/-30°", "Stereo", 0xEDE88239, 2, "-35, 35"},
    {"2.0 +/-45°", "Stereo Wide", 0x5CF7053B, 2, "-45, 45"},
    {"LRCS", "LRCS", 0x324B53BC, 4, "-30, 30, 0, 180"},
    {"Quad", "Quad", 0x5CB87337, 4, "-30, 30, -135, 135"},
    {"4.0", "4.0", 0x1A4ED0FB, 4, "-30, 30, -110, 110"},
    {"5.0 Film", "5.0 Film", 0x3F95E200, 5, "-30, 0, 30, -110, 110"},
    {"5.0 ITU", "5.0 ITU", 0xD7A74105, 5, "-30, 30, 0, -110, 110"},
    {"5.1 Film", "5.1 Film", 0x585D5C16, 6, "-30, 0, 30, -110, 110, LFE"},
    {"5.1 ITU", "5.1 ITU", 0xD30A58A0, 6, "-30, 30, 0, LFE, -110, 110"},
    {"5.1 ITU Logic", "5.1 ITU Logic", 0x16F0F6C9, 6, "-30, 30, -110, 110, 0, LFE"},
    {"6.0", "6.0", 0x5A1BB38A, 6, "-30, 30, 0, -110, 110, 180"},
    {"6.1", "6.1", 0x8B759857, 7, "-30, 30, 0, LFE, -110, 110, 180"},
    {"7.0", "7.0", 0x39CFE70D, 7, "-30, 30, 0, -90, 90, -135, 135"},
    {"7.1", "7.1", 0xA0442477, 8, "-30, 30, 0, LFE, -90, 90, -135, 135"},
    {"7.1 SDDS", "7.1 SDDS", 0x849E42FD, 8, "-40, 40, 0, LFE, -110, 110, -20, 20"},
    {"7.1 SDDS Logic", "7.1 SDDS Logic", 0x9A08CFB9, 8, "-90, 90, -135, 135, 0, LFE, -30, 30"},
    {"5.0.2", "5.0.2", 0x6548E6DE, 7, "-30, 30, 0, -110, 110, -30/30, 30/30"},
    {"5.1.2", "5.1.2", 0x376BD44F, 8, "-30, 30, 0, LFE, -110, 110, -80/45, 80/45"},
    {"5.0.4", "5.0.4", 0x2913540D, 9, "-30, 30, 0, -110, 110, -30/30, 30/30, -110/30, 110/30"},
    {"5.1.4", "5.1.4", 0xDCF29BE7, 10, "-30, 30, 0, LFE, -110, 110, -45/45, 45/45, -135/45, 135/45"},
    {"7.0.2", "7.0.2", 0x9EB036B1, 9, "-30, 30, 0, -90, 90, -135, 135, -80/45, 80/45"},
    {"7.1.2", "7.1.2", 0x0F747C32, 10, "-30, 30, 0, LFE, -90, 90, -135, 135, -80/45, 80/45"},
    {"7.0.4", "7.0.4", 0x889F7595, 11, "-30, 30, 0, -90, 90, -135, 135, -30/30, 30/30, -135/30, 135/30"},
    {"7.1.4", "7.1.4", 0x596F7D91, 12, "-30, 30, 0, LFE, -135, 135, -90, 90, -45/45, 45/45, -135/45, 135/45"},
    {"9.1.2", "9.1.2", 0x10E8EB36, 12, "-30, 30, 0, LFE, -60, 60, -90, 90, -135, 135, -80/45, 80/45"},
    {"9.1.6", "9.1.6", 0x228A60B4, 16, "-45, 45, 0, LFE, -135, 135, -60, 60, -90, 90, -45/45, 45/45, -135/45, 135/45, -90/45, 90/45"},
    {"8.0", "8.0", 0x39D51B7B, 8, "-30, 30, -110, 110, -30/30, 30/30, -110/30, 110/30"},
    {"9.1", "9.1", 0xF74B3911, 10, "-30, 30, 0, LFE, -110, 110, -30/30, 30/30, -110/30, 110/30"},
    {"11.1", "11.1", 0x7BCADE88, 12, "-30, 30, 0, LFE, -110, 110, 0/90, -30/30, 0/30, 30/30, -110/30, 110/30"},
    {"13.1", "13.1", 0x4AB55920, 14, "-30, 30, 0, LFE, -150, 150, -110, 110, 0/90, -30/30, 0/30, 30/30, -110/30, 110/30"},
};
// clang-format on

/// `values`: reflection gain, low-pass and high-pass; reverb gain, low-pass and high-pass; ceiling, front,
/// back, right, left and floor distance; reverb decay; source distance; master gain.
struct Scene {
    std::string_view name;
    std::string_view shownAs;
    std::uint32_t id;
    std::uint32_t room;
    bool reflectionsOn;
    bool reverbOn;
    bool customRoom;
    std::array<float, 15> values;
};

// clang-format off
inline constexpr Scene scenes[]{
    {"Mix Room", "Mix Room A", 0x1AC2A1C3, 15, true, true, false, {3, 14000, 1140, -12, 12948, 130, 1.8f, 8, 11, 10.5f, 5.5f, 1.6f, 90, 3.5f, 4.5f}},
    {"Mix Room Small", "Mix Room B", 0xE6DB3251, 36, true, true, false, {2, 13390, 1140, -16, 12400, 120, 1.8f, 3, 4, 2, 2, 1.3f, 58, 5, 6.5f}},
    {"Mix Room Large", "Mix Room Large", 0xAA7829B2, 44, true, true, false, {4, 11925, 95, -5, 10000, 95, 1.8f, 8, 11, 10.5f, 5.5f, 1.6f, 52, 3, 3.2f}},
    {"Analytic Dry", "Analytic Dry", 0xC42BAE1D, 36, false, false, false, {-7.8f, 2125, 1200, -5, 16081, 1200, 1.8f, 8, 11, 10.5f, 5.5f, 1.6f, 50, 2, 2.5f}},
    {"Analytic Position", "Analytic Position", 0x2F490517, 36, true, false, false, {7, 3398, 550, -5, 16081, 1200, 1.8f, 8, 11, 10.5f, 5.5f, 1.6f, 50, 2, 2.3f}},
    {"Live Venue", "Live Venue", 0xD1BE7907, 32, true, true, false, {-4, 6430, 203, -9, 7500, 65, 1.8f, 8, 11, 10.5f, 5.5f, 18.9f, 80, 18.9f, 17.4f}},
    {"Stadium", "Stadium", 0x4E338776, 33, true, true, true, {-1, 5167, 310, -10, 9000, 45, 8.5f, 10.8f, 30, 21.4f, 25.7f, 1.8f, 95, 15, 14.8f}},
    {"Acoustic Venue", "Acoustic Venue", 0xFB28962E, 45, true, true, false, {2.4f, 5282, 524, -3, 7250, 120, 1.8f, 8, 11, 10.5f, 5.5f, 1.8f, 75, 3, 3.8f}},
    {"Club Large", "Club Large", 0x9836B362, 40, true, true, false, {-4, 12109, 80, 3, 5750, 20, 1.8f, 8, 11, 10.5f, 5.5f, 9.2f, 85, 6.5f, 5.8f}},
    {"Club", "Club", 0xEA1FE872, 41, true, true, false, {3.5f, 13772, 120, -6, 4500, 80, 1.8f, 8, 11, 10.5f, 5.5f, 9.2f, 52, 4, 5.2f}},
    {"Car", "Car", 0x7DF0CDA5, 24, true, true, false, {4, 8733, 180, 2.5f, 6903, 80, 1.8f, 8, 11, 10.5f, 5.5f, 1, 100, 2, 0.1f}},
    {"Van", "Van", 0x839B311D, 25, true, true, false, {3, 9709, 180, 5, 8271, 71, 1.8f, 8, 11, 10.5f, 5.5f, 1.8f, 100, 2, -1.2f}},
    {"Cinema", "Cinema", 0xB80BEC89, 27, true, true, false, {-2, 4655, 65, -3, 6267, 140, 1.8f, 8, 5.4f, 10.5f, 5.5f, 5.4f, 65, 8, 8.3f}},
    {"Home Theater", "Home Theater", 0x6AC386A4, 27, true, true, false, {3, 4655, 400, -1, 6267, 120, 1.8f, 8, 5.4f, 10.5f, 5.5f, 5.4f, 52, 3.5f, 4.3f}},
    {"Living Room", "Living Room", 0x80C8A3E4, 19, true, true, false, {1, 9000, 320, -3, 11000, 60, 1.8f, 6.7f, 11, 10.5f, 5.5f, 3.5f, 100, 5, 5.6f}},
    {"Kitchen", "Kitchen", 0xAE828ED9, 13, true, true, false, {5, 14000, 80, 3, 16000, 111, 5.5f, 8.5f, 8, 11, 10.5f, 1.8f, 100, 7, 3.6f}},
};
// clang-format on

} // namespace listed

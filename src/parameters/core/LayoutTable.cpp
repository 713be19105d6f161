// SPDX-License-Identifier: GPL-3.0-or-later
#include "parameters/core/LayoutTable.h"

#include <algorithm>
#include <iterator>

namespace orvane::kestrum::core {

namespace {

constexpr SpeakerRow lowFrequency{.lowFrequency = true};

constexpr SpeakerRow speakers10[]{{0}};
constexpr SpeakerRow speakers20at0[]{{0}, {0}};
constexpr SpeakerRow speakers20at30[]{{-35}, {35}};
constexpr SpeakerRow speakers20at45[]{{-45}, {45}};
constexpr SpeakerRow speakersLRCS[]{{-30}, {30}, {0}, {180}};
constexpr SpeakerRow speakersQuad[]{{-30}, {30}, {-135}, {135}};
constexpr SpeakerRow speakers40[]{{-30}, {30}, {-110}, {110}};
constexpr SpeakerRow speakers50Film[]{{-30}, {0}, {30}, {-110}, {110}};
constexpr SpeakerRow speakers50ITU[]{{-30}, {30}, {0}, {-110}, {110}};
constexpr SpeakerRow speakers51Film[]{{-30}, {0}, {30}, {-110}, {110}, lowFrequency};
constexpr SpeakerRow speakers51ITU[]{{-30}, {30}, {0}, lowFrequency, {-110}, {110}};
constexpr SpeakerRow speakers51ITULogic[]{{-30}, {30}, {-110}, {110}, {0}, lowFrequency};
constexpr SpeakerRow speakers60[]{{-30}, {30}, {0}, {-110}, {110}, {180}};
constexpr SpeakerRow speakers61[]{{-30}, {30}, {0}, lowFrequency, {-110}, {110}, {180}};
constexpr SpeakerRow speakers70[]{{-30}, {30}, {0}, {-90}, {90}, {-135}, {135}};
constexpr SpeakerRow speakers71[]{{-30}, {30}, {0}, lowFrequency, {-90}, {90}, {-135}, {135}};
constexpr SpeakerRow speakers71SDDS[]{{-40}, {40}, {0}, lowFrequency, {-110}, {110}, {-20}, {20}};
constexpr SpeakerRow speakers71SDDSLogic[]{{-90}, {90}, {-135}, {135}, {0}, lowFrequency, {-30}, {30}};
constexpr SpeakerRow speakers502[]{{-30}, {30}, {0}, {-110}, {110}, {-30, 30}, {30, 30}};
constexpr SpeakerRow speakers512[]{{-30}, {30}, {0}, lowFrequency, {-110}, {110}, {-80, 45}, {80, 45}};
constexpr SpeakerRow speakers504[]{{-30},     {30},     {0},        {-110},   {110},
                                   {-30, 30}, {30, 30}, {-110, 30}, {110, 30}};
constexpr SpeakerRow speakers514[]{{-30}, {30},      {0},      lowFrequency, {-110},
                                   {110}, {-45, 45}, {45, 45}, {-135, 45},   {135, 45}};
constexpr SpeakerRow speakers702[]{{-30}, {30}, {0}, {-90}, {90}, {-135}, {135}, {-80, 45}, {80, 45}};
constexpr SpeakerRow speakers712[]{{-30}, {30},   {0},   lowFrequency, {-90},
                                   {90},  {-135}, {135}, {-80, 45},    {80, 45}};
constexpr SpeakerRow speakers704[]{{-30}, {30},      {0},      {-90},      {90},     {-135},
                                   {135}, {-30, 30}, {30, 30}, {-135, 30}, {135, 30}};
constexpr SpeakerRow speakers714[]{{-30}, {30}, {0},       lowFrequency, {-135},     {135},
                                   {-90}, {90}, {-45, 45}, {45, 45},     {-135, 45}, {135, 45}};
constexpr SpeakerRow speakers912[]{{-30}, {30}, {0},    lowFrequency, {-60},     {60},
                                   {-90}, {90}, {-135}, {135},        {-80, 45}, {80, 45}};
constexpr SpeakerRow speakers916[]{{-45},      {45},      {0},       lowFrequency, {-135},    {135},
                                   {-60},      {60},      {-90},     {90},         {-45, 45}, {45, 45},
                                   {-135, 45}, {135, 45}, {-90, 45}, {90, 45}};
constexpr SpeakerRow speakers80[]{{-30}, {30}, {-110}, {110}, {-30, 30}, {30, 30}, {-110, 30}, {110, 30}};
constexpr SpeakerRow speakers91[]{{-30}, {30},      {0},      lowFrequency, {-110},
                                  {110}, {-30, 30}, {30, 30}, {-110, 30},   {110, 30}};
constexpr SpeakerRow speakers111[]{{-30},   {30},      {0},     lowFrequency, {-110},     {110},
                                   {0, 90}, {-30, 30}, {0, 30}, {30, 30},     {-110, 30}, {110, 30}};
constexpr SpeakerRow speakers131[]{{-30}, {30},    {0},       lowFrequency, {-150},   {150},      {-110},
                                   {110}, {0, 90}, {-30, 30}, {0, 30},      {30, 30}, {-110, 30}, {110, 30}};

// Deliberate: the loudspeakers of "2.0 +/-30°" stand at 35 degrees, not at the 30 of the name.
constexpr LayoutRow table[]{
    {"1.0", speakers10},
    {"2.0 +/-0°", speakers20at0},
    {"2.0 +/-30°", speakers20at30},
    {"2.0 +/-45°", speakers20at45},
    {"LRCS", speakersLRCS},
    {"Quad", speakersQuad},
    {"4.0", speakers40},
    {"5.0 Film", speakers50Film},
    {"5.0 ITU", speakers50ITU},
    {"5.1 Film", speakers51Film},
    {"5.1 ITU", speakers51ITU},
    {"5.1 ITU Logic", speakers51ITULogic},
    {"6.0", speakers60},
    {"6.1", speakers61},
    {"7.0", speakers70},
    {"7.1", speakers71},
    {"7.1 SDDS", speakers71SDDS},
    {"7.1 SDDS Logic", speakers71SDDSLogic},
    {"5.0.2", speakers502},
    {"5.1.2", speakers512},
    {"5.0.4", speakers504},
    {"5.1.4", speakers514},
    {"7.0.2", speakers702},
    {"7.1.2", speakers712},
    {"7.0.4", speakers704},
    {"7.1.4", speakers714},
    {"9.1.2", speakers912},
    {"9.1.6", speakers916},
    {"8.0", speakers80},
    {"9.1", speakers91},
    {"11.1", speakers111},
    {"13.1", speakers131},
};

constexpr bool fitsTheBus(const LayoutRow& row) { return !row.speakers.empty() && row.speakers.size() <= 16; }

constexpr bool staysInsideTheSphere(const LayoutRow& row) {
    return std::ranges::all_of(row.speakers, [](const SpeakerRow& speaker) {
        return speaker.azimuth > -180 && speaker.azimuth <= 180 && speaker.elevation >= 0 &&
               speaker.elevation <= 90;
    });
}

constexpr bool hasAtMostOneLowFrequencyChannel(const LayoutRow& row) {
    return std::ranges::count_if(row.speakers, &SpeakerRow::lowFrequency) <= 1;
}

constexpr bool namesDiffer() {
    for (const LayoutRow& row : table)
        if (std::ranges::count(table, row.name, &LayoutRow::name) != 1)
            return false;
    return true;
}

static_assert(std::size(table) == 32);
static_assert(std::ranges::all_of(table, fitsTheBus));
static_assert(std::ranges::all_of(table, staysInsideTheSphere));
static_assert(std::ranges::all_of(table, hasAtMostOneLowFrequencyChannel));
static_assert(namesDiffer());
static_assert(std::ranges::count(table, defaultLayoutName, &LayoutRow::name) == 1);

} // namespace

std::span<const LayoutRow> layoutTable() noexcept { return table; }

} // namespace orvane::kestrum::core

// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/DataError.h"
#include "data/headphones/ParametricEq.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <string>

using namespace orvane::kestrum::tools;
using ::testing::AllOf;
using ::testing::HasSubstr;

namespace {

std::string refusalOf(const std::string& text) {
    try {
        parseParametricEq(text);
    } catch (const DataError& error) {
        return error.what();
    }
    return "accepted";
}

double gainOf(const std::string& filter, double frequencyHz) {
    return gainDb(parseParametricEq("Filter 1: ON " + filter), frequencyHz);
}

/// The layout of files made for single headphones.
TEST(EqualiserTexts, OfHeadphoneCollectionsAreRead) {
    const ParametricEq eq = parseParametricEq("Preamp: -6.2 dB\n"
                                              "Filter 1: ON LSC Fc 105 Hz Gain 5.5 dB Q 0.70\n"
                                              "Filter 2: ON PK Fc 2100.5 Hz Gain -2.4 dB Q 1.83\n"
                                              "Filter 3: OFF PK Fc 3000 Hz Gain 9.0 dB Q 1.00\n"
                                              "Filter 4: ON HSC Fc 10000 Hz Gain -3.0 dB Q 0.70\n");
    EXPECT_EQ(eq.preampDb, -6.2);
    ASSERT_EQ(eq.filters.size(), 3u);
    EXPECT_EQ(eq.filtersOff, 1u);
    EXPECT_EQ(eq.filters[0].shape, EqShape::lowShelf);
    EXPECT_EQ(eq.filters[1].shape, EqShape::peak);
    EXPECT_EQ(eq.filters[1].frequencyHz, 2100.5);
    EXPECT_EQ(eq.filters[1].gainDb, -2.4);
    EXPECT_EQ(eq.filters[1].q, 1.83);
    EXPECT_EQ(eq.filters[2].shape, EqShape::highShelf);
}

/// The layout of a measuring program: a heading with colons and times, aligned columns, unused filters, Windows line ends.
TEST(EqualiserTexts, OfMeasuringProgramsAreRead) {
    const ParametricEq eq =
        parseParametricEq("\xef\xbb\xbf"
                          "Filter Settings file\r\n\r\nRoom EQ V5.18\r\n"
                          "Dated: Jul 5, 2018 12:03:08 PM\r\n\r\nNotes:\r\n\r\nEqualiser: Generic\r\n"
                          "Jul 5 12:01:46\r\n"
                          "Filter  1: ON  PK       Fc    50.4 Hz  Gain  -6.0 dB  Q  2.58\r\n"
                          "Filter  2: ON  None\r\nFilter  3: OFF None\r\n");
    ASSERT_EQ(eq.filters.size(), 1u);
    EXPECT_EQ(eq.filters[0].frequencyHz, 50.4);
    EXPECT_EQ(eq.filtersOff, 2u);
    EXPECT_EQ(eq.headingLines, 6u);
}

TEST(EqualiserTexts, MayHaveCommentsOtherUnitsAndDecimalCommas) {
    const ParametricEq eq = parseParametricEq("# my headphones: the old pair\n; and so on\n* more\n// more\n"
                                              "channel: all\npreamp: -3,5dB\n"
                                              "filter: on pk fc 1.2kHz gain +2,25dB bw oct 1\n"
                                              "Filter 2: ON LSC 12 dB Fc 1\xc2\xa0"
                                              "00 Hz Gain 3 dB\n");
    EXPECT_EQ(eq.preampDb, -3.5);
    EXPECT_EQ(eq.filters[0].frequencyHz, 1200);
    EXPECT_EQ(eq.filters[0].gainDb, 2.25);
    EXPECT_NEAR(eq.filters[0].q, 1.4081738, 1e-6);       // an octave, at 48 kHz
    EXPECT_NEAR(eq.filters[1].q, std::sqrt(0.5), 1e-12); // the full slope of a second order
}

/// Known: 1 / (2 sinh(ln 2 / 2 * octaves * w / sin w)) with w the frequency's angle at 48 kHz, reckoned apart. Far below the Nyquist
/// frequency an octave is the analogue filter's, the root of 2.
TEST(EqualiserTexts, GiveABandwidthTheQThatADigitalFilterNeeds) {
    const auto qOf = [](const std::string& hertz, const std::string& octaves) {
        return parseParametricEq("Filter 1: ON PK Fc " + hertz + " Hz Gain 6 dB BW Oct " + octaves)
            .filters[0]
            .q;
    };
    EXPECT_NEAR(qOf("20", "1"), std::sqrt(2.0), 1e-5);
    EXPECT_NEAR(qOf("100", "1"), 1.4141716, 1e-6);
    EXPECT_NEAR(qOf("1000", "1"), 1.4100178, 1e-6);
    EXPECT_NEAR(qOf("5000", "1"), 1.3113227, 1e-6);
    EXPECT_NEAR(qOf("10000", "1"), 1.0264288, 1e-6);
    EXPECT_NEAR(qOf("15000", "1"), 0.6211226, 1e-6);
    EXPECT_NEAR(qOf("10000", "0.5"), 2.1097225, 1e-6);
    EXPECT_NEAR(qOf("10000", "2"), 0.4613843, 1e-6);
    EXPECT_THAT(refusalOf("Filter 1: ON PK Fc 23400 Hz Gain 6 dB BW Oct 2"),
                HasSubstr("a bandwidth at this frequency that no headphones need"));
}

/// A file of another kind under the right name must neither fill a terminal nor steer it.
TEST(EqualiserTexts, AreQuotedInRefusalsAsFarAsATerminalCanShowThem) {
    const std::string steering = "Filter 1: ON \x1b[2J\x07\xc2\x9b" + std::string(12000, 'x');
    for (const std::string& text :
         {steering, "Filter 1: ON PK Fc 100 Hz Gain 1 dB Q 1 " + steering.substr(13),
          "Preamp: -3 dB " + steering.substr(13), "Preamp: -3\n" + steering}) {
        const std::string refusal = refusalOf(text);
        EXPECT_LT(refusal.size(), 400u) << refusal;
        EXPECT_THAT(refusal, HasSubstr("..."));
        for (const char letter : refusal)
            EXPECT_TRUE(letter >= 0x20 && letter < 0x7f) << refusal;
    }
    EXPECT_THAT(refusalOf("Filter 1: ON K\xc3\xb6pf"), HasSubstr("\"Filter 1: ON K?pf\""));
}

struct Nonsense {
    const char* text;
    const char* reason;
};
class EqualiserNonsense : public ::testing::TestWithParam<Nonsense> {};

TEST_P(EqualiserNonsense, IsRefusedWithItsLineAndTheRemedy) {
    EXPECT_THAT(refusalOf(std::string("Preamp: -1 dB\n") + GetParam().text),
                AllOf(HasSubstr("line 2, \""), HasSubstr(GetParam().reason)));
}
INSTANTIATE_TEST_SUITE_P(
    EachKind, EqualiserNonsense,
    ::testing::Values(
        Nonsense{"Filter 1: PK Fc 100 Hz Gain 1 dB Q 1", "neither ON nor OFF"},
        Nonsense{"Filter 1: ON PK Fc Hz Gain 1 dB Q 1", "no number behind \"Fc\""},
        Nonsense{"Filter 1: ON PK Fc nan Hz Gain 1 dB Q 1", "no number behind \"Fc\""},
        Nonsense{"Filter 1: ON PK Fc 100 Hz Gain inf dB Q 1", "no number behind \"Gain\""},
        Nonsense{"Filter 1: ON PK Fc 100 Hz Q 1", "has no gain"},
        Nonsense{"Filter 1: ON PK Gain 1 dB Q 1", "has no frequency"},
        Nonsense{"Filter 1: ON PK Fc 100 Hz Gain 1 dB", "has no Q"},
        Nonsense{"Filter 1: ON PK Fc 100 Hz Gain 1 dB Q 0", "a Q that no headphones need"},
        Nonsense{"Filter 1: ON PK Fc 100 Hz Gain 1 dB Q -1", "a Q that no headphones need"},
        Nonsense{"Filter 1: ON PK Fc 100 Hz Gain 400 dB Q 1", "a gain that no headphones need"},
        Nonsense{"Filter 1: ON PK Fc 100 kHz Gain 4 dB Q 1", "a frequency that no headphones need"},
        Nonsense{"Filter 1: ON PK Fc 10,000 Hz Gain 4 dB Q 1", "may stand for a point or part thousands"},
        Nonsense{"Filter 1: ON PK Fc 100 Hz Gain 4 dB Q 1 please",
                 "\"please\", which is no part of a filter"},
        Nonsense{"Filter 1: ON LS Fc 100 Hz Gain 4 dB Q 1", "write LSC or HSC"},
        Nonsense{"Filter 1: ON LP Fc 100 Hz Q 1", "cannot be folded in: use PK, LSC and HSC"},
        Nonsense{"Filter 1: ON", "cannot be folded in: use PK, LSC and HSC"},
        Nonsense{"Preamp: loud", "no number behind \"Preamp:\""},
        Nonsense{"Preamp: -3 dB or so", "\"or\" behind the number"},
        Nonsense{"GraphicEQ: 20 -1; 30 2", "export the correction as parametric filters"},
        Nonsense{"Include: other.txt", "export the correction as parametric filters"},
        Nonsense{"Channel: L", "alike at both ears"}, Nonsense{"lorem ipsum", "begin it with #"},
        Nonsense{"Filtre 1: ON PK Fc 100 Hz Gain 4 dB Q 1", "begin it with #"}));

TEST(EqualiserTexts, WithoutAnyFilterAreRefused) {
    for (const std::string text : {"", "\n\n", "dear diary", "# Preamp: -6 dB"})
        EXPECT_THAT(refusalOf(text), HasSubstr("no line that begins with")) << text;
}

TEST(EqualiserTexts, OfEndlessFiltersAreRefused) {
    std::string text;
    for (int filter = 0; filter < 201; ++filter)
        text += "Filter: ON PK Fc 100 Hz Gain 1 dB Q 1\n";
    EXPECT_THAT(refusalOf(text), HasSubstr("give at most 200"));
}

/// Analytic: a peak has its gain at its frequency, half of it in decibels at the edges of its bandwidth, whose product is the
/// square of the frequency and whose distance is the frequency over Q, and nothing far away. The tolerance is the bilinear
/// transform's at 1 kHz.
TEST(EqualiserFilters, OfPeaksHaveTheirGainAndBandwidth) {
    constexpr double centre = 1000;
    constexpr double q = 2;
    const std::string filter = "PK Fc 1000 Hz Gain 6 dB Q 2";
    EXPECT_NEAR(gainOf(filter, centre), 6, 1e-9);
    const double lower = centre * (std::sqrt(1 + 1 / (4 * q * q)) - 1 / (2 * q));
    EXPECT_NEAR(gainOf(filter, lower), 3, 0.05);
    EXPECT_NEAR(gainOf(filter, lower + centre / q), 3, 0.05);
    EXPECT_NEAR(gainOf(filter, 20), 0, 0.01);
    EXPECT_NEAR(gainOf(filter, 20000), 0, 0.01);
}

/// Analytic: a shelf has its gain on its side, half of it in decibels in the middle, nothing on the other.
TEST(EqualiserFilters, OfShelvesHaveTheirGainOnTheirSide) {
    const std::string low = "LSC Fc 105 Hz Gain 5.5 dB Q 0.70";
    EXPECT_NEAR(gainOf(low, 5), 5.5, 0.01);
    EXPECT_NEAR(gainOf(low, 105), 2.75, 1e-9);
    EXPECT_NEAR(gainOf(low, 10000), 0, 0.01);
    const std::string high = "HSC Fc 2000 Hz Gain -4 dB Q 0.71";
    EXPECT_NEAR(gainOf(high, 23000), -4, 0.01);
    EXPECT_NEAR(gainOf(high, 2000), -2, 1e-9);
    EXPECT_NEAR(gainOf(high, 50), 0, 0.01);
}

/// Property: filters in a row add up in decibels, and what is off adds nothing.
TEST(EqualiserFilters, AddUpWithThePreamplification) {
    const std::string one = "PK Fc 300 Hz Gain 6 dB Q 1";
    const std::string other = "HSC Fc 4000 Hz Gain -3 dB Q 0.7";
    const ParametricEq both = parseParametricEq("Preamp: -6 dB\nFilter 1: ON " + one + "\nFilter 2: ON " +
                                                other + "\nFilter 3: OFF PK Fc 300 Hz Gain 20 dB Q 1\n");
    for (const double hertz : {40.0, 300.0, 1000.0, 5000.0, 15000.0})
        EXPECT_NEAR(gainDb(both, hertz), gainOf(one, hertz) + gainOf(other, hertz) - 6, 1e-9) << hertz;
}

} // namespace

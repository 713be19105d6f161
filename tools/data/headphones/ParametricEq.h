// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::kestrum::tools {

enum class EqShape { peak, lowShelf, highShelf };

/// One filter of an equaliser.
struct EqFilter {
    EqShape shape = EqShape::peak;
    double frequencyHz = 1000; ///< Of a peak its top, of a shelf the middle of its slope.
    double gainDb = 0;
    double q = 1;
};

/// A parametric equaliser as programs that correct headphones write it.
struct ParametricEq {
    double preampDb = 0;
    std::vector<EqFilter> filters; ///< Those that are on.
    std::size_t filtersOff = 0;    ///< Those that are off or say "None".
    std::size_t headingLines =
        0; ///< Lines of text above the first filter, which say nothing about the sound.
};

/// Reads the text format that most exporters share:
///
///     # a comment; so are lines that begin with ; * or //
///     Preamp: -6.2 dB
///     Filter 1: ON LSC Fc 105 Hz Gain 5.5 dB Q 0.70
///     Filter 2: ON PK Fc 2.1 kHz Gain -2,4 dB BW Oct 0.8
///     Filter 3: OFF PK Fc 3000 Hz Gain 9 dB Q 1
///     Filter 4: ON HSC 6 dB Fc 10000 Hz Gain -3 dB
///     Filter 5: ON None
///
/// Capitals do not matter, numbers may be left out after "Filter", units may touch their number, and a comma may stand
/// for the point. LSQ and HSQ are other names of LSC and HSC. A shelf without a Q may give its slope in decibels per
/// octave; without either it has 0.9 of 12. A bandwidth is that of the digital filter at 48000 Hz. What stands above the
/// first filter and is no command is a heading; after it every line has to be understood. Commands that cannot be folded
/// into a head are refused.
///
/// Errors  DataError names the line, as far as it can be shown, and what to write instead.
/// Source  the configuration reference of Equalizer APO for filters, units, slopes and defaults; files exported by Room EQ
///         Wizard and AutoEq for headings, spacing and decimal commas.
ParametricEq parseParametricEq(std::string_view text);

/// The gain of the whole, pre-amplification included, at a frequency.
///
/// Units   hertz below 24000; decibels.
/// Source  R. Bristow-Johnson, Cookbook formulae for audio equalizer biquad filter coefficients, at 48000 Hz: the
///         response that an equaliser at that rate has.
double gainDb(const ParametricEq& eq, double frequencyHz);

} // namespace orvane::kestrum::tools

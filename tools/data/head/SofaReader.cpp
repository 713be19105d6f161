// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/head/SofaReader.h"

#include "data/DataError.h"
#include "data/head/SofaContent.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace orvane::kestrum::tools {

namespace {

/// A text of the file as it may be shown in a terminal and written into a page: what steers either is left out.
std::string shown(const std::string& text) {
    std::string result;
    for (std::size_t index = 0; index < text.size(); ++index) {
        const auto byte = static_cast<unsigned char>(text[index]);
        const bool steersAsTwo = byte == 0xc2 && index + 1 < text.size() &&
                                 (static_cast<unsigned char>(text[index + 1]) & 0xe0U) == 0x80U; // of UTF-8
        if (steersAsTwo)
            ++index;
        else
            result += byte < 0x20 || byte == 0x7f ? ' ' : text[index];
    }
    return result;
}

[[noreturn]] void refuse(const std::filesystem::path& file, const std::string& reason) {
    throw DataError("\"" + file.string() + "\" " + reason);
}

/// Rounded up so that a broken delay keeps its whole tail.
std::size_t samplesFor(double delaySamples) { return static_cast<std::size_t>(std::ceil(delaySamples)); }

/// The file's delay of one response, in samples: one for all measurements or one each.
double delayOf(const SofaContent& sofa, std::size_t measurement, std::size_t receiver) {
    const std::size_t each = std::size_t{sofa.measurementCount} * sofa.receiverCount;
    const std::size_t index =
        sofa.delays.size() == each ? measurement * sofa.receiverCount + receiver : receiver;
    return index < sofa.delays.size() ? static_cast<double>(sofa.delays[index]) : 0.0;
}

Samples delayed(const float* taps, std::size_t tapCount, double delaySamples, std::size_t length) {
    Samples result(taps, taps + tapCount);
    if (delaySamples != 0) {
        constexpr std::size_t room = 64; // what rings round a broken delay
        RealTransform transform(powerOfTwoFrom(length + room));
        Spectrum spectrum = transform.forward(result);
        delaySpectrum(spectrum, delaySamples);
        result = transform.inverse(spectrum);
    }
    result.resize(length);
    return result;
}

std::string joined(const std::string& one, const std::string& other) {
    return one.empty() || other.empty() ? one + other : one + ", " + other;
}

Origin originOf(const SofaContent& sofa) {
    const std::string database = shown(sofa.database);
    const std::string head = shown(sofa.listener);
    Origin origin{joined(database, head), shown(sofa.licence),
                  joined(joined(shown(sofa.author), shown(sofa.organisation)), shown(sofa.references))};
    // The file as it is handed on names neither its authors nor its terms; the measurement's own documents
    // do.
    if (database == "MIT" && head.starts_with("KEMAR")) {
        origin.licence = "Copyright 1994 by the MIT Media Laboratory. Provided free with no restrictions on "
                         "use, provided the "
                         "authors are cited when the data is used in any research or commercial application.";
        origin.citation =
            "Bill Gardner and Keith Martin, HRTF Measurements of a KEMAR Dummy-Head Microphone, MIT Media "
            "Lab Perceptual Computing, Technical Report 280, May 1994.";
    }
    return origin;
}

bool areFinite(const std::vector<float>& numbers) {
    return std::ranges::all_of(numbers, [](float number) { return std::isfinite(number); });
}

void requireKind(const std::filesystem::path& file, const SofaContent& sofa) {
    if (sofa.convention != "SimpleFreeFieldHRIR")
        refuse(file, "holds \"" + shown(sofa.convention) +
                         "\": give a SOFA file of the convention SimpleFreeFieldHRIR.");
    const std::size_t measurements = sofa.measurementCount;
    if (sofa.receiverCount != 2 || sofa.tapCount == 0 || measurements == 0 || sofa.sampleRates.empty() ||
        sofa.sourcePositions.size() != measurements * 3 ||
        sofa.responses.size() != measurements * 2 * sofa.tapCount)
        refuse(file, "does not hold two ears with one response per source position: give a complete set.");
    const double rate = static_cast<double>(sofa.sampleRates[0]);
    if (!(rate >= 8000 && rate <= 768000))
        refuse(file, "names no usable sample rate: give a set of 8 kHz or more.");
    constexpr unsigned mostTaps = 16384;
    if (sofa.tapCount > mostTaps)
        refuse(file, "holds responses longer than 16384 samples: give responses of a head without a room.");
    if (!areFinite(sofa.responses))
        refuse(file, "holds samples that are no numbers: the file is damaged, get it anew.");
    if (!areFinite(sofa.sourcePositions))
        refuse(file, "holds source positions that are no numbers: the file is damaged, get it anew.");
}

/// @return the longest in samples.
double requireDelays(const std::filesystem::path& file, const SofaContent& sofa) {
    double longest = 0;
    for (std::size_t measurement = 0; measurement < sofa.measurementCount; ++measurement)
        for (std::size_t ear = 0; ear < 2; ++ear) {
            const double delay = delayOf(sofa, measurement, ear);
            if (!(delay >= 0 && delay < static_cast<double>(sofa.sampleRates[0])))
                refuse(file, "holds a delay that is none: the file is damaged, get it anew.");
            longest = std::max(longest, delay);
        }
    // The largest sets of heads have some ten million samples.
    constexpr double mostSamples = 1 << 27;
    if ((sofa.tapCount + longest) * sofa.measurementCount * 2 > mostSamples)
        refuse(file, "holds more than 128 million samples once its delays are put back: give a smaller set.");
    return longest;
}

} // namespace

MeasuredSet readSofa(const std::filesystem::path& file, std::chrono::milliseconds limit) {
    std::error_code failure;
    const std::filesystem::file_status there = std::filesystem::status(file, failure);
    if (!std::filesystem::exists(there))
        refuse(file, "does not exist: name a SOFA file with --sofa, or install the package libmysofa1 for "
                     "the default.");
    if (!std::filesystem::is_regular_file(there))
        refuse(file, "is no plain file: name a SOFA file with --sofa.");
    const SofaContent sofa = readSofaContent(file, limit);
    requireKind(file, sofa);

    MeasuredSet set;
    set.sampleRate = static_cast<double>(sofa.sampleRates[0]);
    set.origin = originOf(sofa);
    set.tapCount = sofa.tapCount + samplesFor(requireDelays(file, sofa));
    set.measurements.reserve(sofa.measurementCount);
    double distanceSum = 0;
    for (std::size_t measurement = 0; measurement < sofa.measurementCount; ++measurement) {
        const float* const position = sofa.sourcePositions.data() + measurement * 3;
        // The convention counts azimuth to the left, the product to the right.
        Measurement entry{directionFrom(-static_cast<double>(position[0]), static_cast<double>(position[1])),
                          {}};
        distanceSum += static_cast<double>(position[2]);
        for (std::size_t ear = 0; ear < 2; ++ear)
            entry.ears[ear] = delayed(sofa.responses.data() + (measurement * 2 + ear) * sofa.tapCount,
                                      sofa.tapCount, delayOf(sofa, measurement, ear), set.tapCount);
        set.measurements.push_back(std::move(entry));
    }
    set.distanceMetres = distanceSum / static_cast<double>(sofa.measurementCount);
    return set;
}

} // namespace orvane::kestrum::tools

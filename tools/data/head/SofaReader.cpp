// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/head/SofaReader.h"

#include "data/DataError.h"

#include <mysofa.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <string>

namespace orvane::kestrum::tools {

namespace {

struct FreeHrtf {
    void operator()(MYSOFA_HRTF* hrtf) const { mysofa_free(hrtf); }
};

std::string attribute(const MYSOFA_HRTF& hrtf, std::string name) {
    const char* const value = mysofa_getAttribute(hrtf.attributes, name.data());
    return value != nullptr ? value : "";
}

[[noreturn]] void refuse(const std::filesystem::path& file, const std::string& reason) {
    throw DataError("\"" + file.string() + "\" " + reason);
}

/// Rounded up so that a broken delay keeps its whole tail.
std::size_t samplesFor(double delaySamples) { return static_cast<std::size_t>(std::ceil(delaySamples)); }

/// The file's delay of one response, in samples: one for all measurements or one each.
double delayOf(const MYSOFA_HRTF& hrtf, std::size_t measurement, std::size_t receiver) {
    const std::size_t each = std::size_t{hrtf.M} * hrtf.R;
    const std::size_t index = hrtf.DataDelay.elements == each ? measurement * hrtf.R + receiver : receiver;
    return index < hrtf.DataDelay.elements ? static_cast<double>(hrtf.DataDelay.values[index]) : 0.0;
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

Origin originOf(const MYSOFA_HRTF& hrtf) {
    const std::string database = attribute(hrtf, "DatabaseName");
    const std::string head = attribute(hrtf, "ListenerShortName");
    Origin origin{joined(database, head), attribute(hrtf, "License"),
                  joined(joined(attribute(hrtf, "AuthorContact"), attribute(hrtf, "Organization")),
                         attribute(hrtf, "References"))};
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

void requireKind(const std::filesystem::path& file, const MYSOFA_HRTF& hrtf) {
    const std::string convention = attribute(hrtf, "SOFAConventions");
    if (convention != "SimpleFreeFieldHRIR")
        refuse(file, "holds \"" + convention + "\": give a SOFA file of the convention SimpleFreeFieldHRIR.");
    if (hrtf.R != 2 || hrtf.N == 0 || hrtf.M == 0 || hrtf.DataSamplingRate.elements == 0 ||
        hrtf.SourcePosition.elements != std::size_t{hrtf.M} * 3 ||
        hrtf.DataIR.elements != std::size_t{hrtf.M} * hrtf.R * hrtf.N)
        refuse(file, "does not hold two ears with one response per source position: give a complete set.");
    const double rate = static_cast<double>(hrtf.DataSamplingRate.values[0]);
    if (!(rate >= 8000 && rate <= 768000))
        refuse(file, "names no usable sample rate: give a set of 8 kHz or more.");
    constexpr unsigned mostTaps = 16384;
    if (hrtf.N > mostTaps)
        refuse(file, "holds responses longer than 16384 samples: give responses of a head without a room.");
    if (!std::all_of(hrtf.DataIR.values, hrtf.DataIR.values + hrtf.DataIR.elements,
                     [](float sample) { return std::isfinite(sample); }))
        refuse(file, "holds samples that are no numbers: the file is damaged, get it anew.");
}

} // namespace

MeasuredSet readSofa(const std::filesystem::path& file) {
    if (!std::filesystem::exists(file))
        refuse(file, "does not exist: name a SOFA file with --sofa, or install the package libmysofa1 for "
                     "the default.");
    int error = MYSOFA_OK;
    const std::unique_ptr<MYSOFA_HRTF, FreeHrtf> hrtf(mysofa_load(file.c_str(), &error));
    if (!hrtf)
        refuse(file, "cannot be read as a SOFA file (error " + std::to_string(error) +
                         "): give an uncut file of the convention SimpleFreeFieldHRIR.");
    requireKind(file, *hrtf);
    mysofa_tospherical(hrtf.get());

    MeasuredSet set;
    set.sampleRate = static_cast<double>(hrtf->DataSamplingRate.values[0]);
    set.origin = originOf(*hrtf);
    double longestDelay = 0;
    for (std::size_t measurement = 0; measurement < hrtf->M; ++measurement)
        for (std::size_t ear = 0; ear < 2; ++ear) {
            const double delay = delayOf(*hrtf, measurement, ear);
            if (!(delay >= 0 && delay < set.sampleRate))
                refuse(file, "holds a delay that is none: the file is damaged, get it anew.");
            longestDelay = std::max(longestDelay, delay);
        }
    set.tapCount = hrtf->N + samplesFor(longestDelay);
    set.measurements.reserve(hrtf->M);
    double distanceSum = 0;
    for (std::size_t measurement = 0; measurement < hrtf->M; ++measurement) {
        const float* const position = hrtf->SourcePosition.values + measurement * 3;
        // The convention counts azimuth to the left, the product to the right.
        Measurement entry{directionFrom(-static_cast<double>(position[0]), static_cast<double>(position[1])),
                          {}};
        distanceSum += static_cast<double>(position[2]);
        for (std::size_t ear = 0; ear < 2; ++ear)
            entry.ears[ear] = delayed(hrtf->DataIR.values + (measurement * 2 + ear) * hrtf->N, hrtf->N,
                                      delayOf(*hrtf, measurement, ear), set.tapCount);
        set.measurements.push_back(std::move(entry));
    }
    set.distanceMetres = distanceSum / static_cast<double>(hrtf->M);
    return set;
}

} // namespace orvane::kestrum::tools

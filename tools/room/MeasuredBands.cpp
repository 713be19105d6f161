// SPDX-License-Identifier: GPL-3.0-or-later
#include "room/MeasuredBands.h"

#include "data/DataError.h"
#include "data/head/MeasuredSet.h"
#include "data/reports/ReportPage.h"
#include "data/rooms/LateReverb.h"
#include "data/rooms/RandomNumbers.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace orvane::kestrum::tools {

namespace {

using EarSamples = std::array<Samples, 2>;
using EarSpectra = std::array<Spectrum, 2>;

constexpr double rate = masterSampleRate;

/// Both ears of white noise that have nothing in common.
EarSamples noiseOf(std::size_t length, RandomNumbers& random) {
    EarSamples noise{Samples(length), Samples(length)};
    for (std::size_t frame = 0; frame < length; ++frame)
        for (Samples& ear : noise)
            ear[frame] = random.normal();
    return noise;
}

/// Short bursts of noise, one for each ear, that fall so fast that they lengthen no decay: what goes through them has
/// little in common any more, and about its old spectrum.
EarSamples voiceFilters(RandomNumbers& random) {
    constexpr std::size_t length = 1440;  // 30 ms
    constexpr double fallSeconds = 0.004; // of the amplitude, to 1/e
    EarSamples filters = noiseOf(length, random);
    for (Samples& filter : filters) {
        double energy = 0;
        for (std::size_t frame = 0; frame < length; ++frame) {
            filter[frame] *= std::exp(-static_cast<double>(frame) / rate / fallSeconds);
            energy += filter[frame] * filter[frame];
        }
        for (double& sample : filter)
            sample /= std::sqrt(energy);
    }
    return filters;
}

double powerIn(const BandWindow& window, const Spectrum& spectrum) {
    double power = 0;
    for (std::size_t index = 0; index < window.gains.size(); ++index)
        power += window.gains[index] * window.gains[index] * std::norm(spectrum[window.firstBin + index]);
    return power;
}

/// The response from the room's first reflection on, as spectra.
EarSpectra reverberantPart(const MeasuredRoom& measured, const RoomDescription& room,
                           RealTransform& transform) {
    EarSpectra spectra;
    for (std::size_t ear = 0; ear < 2; ++ear) {
        Samples gated = measured.file.ears[ear];
        for (std::size_t frame = 0; frame < gated.size(); ++frame)
            gated[frame] *= startGain(room, static_cast<double>(frame) / rate);
        spectra[ear] = transform.forward(gated);
    }
    return spectra;
}

/// Two voices of a response that is the same at both ears.
EarSpectra voicesOf(const EarSpectra& mono, RealTransform& transform, RandomNumbers& random) {
    EarSpectra voices = mono;
    const EarSamples filters = voiceFilters(random);
    for (std::size_t ear = 0; ear < 2; ++ear) {
        const Spectrum filter = transform.forward(filters[ear]);
        for (std::size_t bin = 0; bin < filter.size(); ++bin)
            voices[ear][bin] *= filter[bin];
    }
    return voices;
}

/// A band of the voices, with the power that the response has there.
EarSamples bandOfVoices(const EarSpectra& voices, const EarSpectra& mono, const BandWindow& window,
                        RealTransform& transform) {
    EarSamples band = bandOf(voices, window, transform);
    for (std::size_t ear = 0; ear < 2; ++ear) {
        const double gain =
            std::sqrt(powerIn(window, mono[ear]) / std::max(powerIn(window, voices[ear]), 1e-300));
        for (double& sample : band[ear])
            sample *= gain;
    }
    return band;
}

Covariance covarianceOf(const EarSamples& ears, std::size_t from, std::size_t to) {
    Covariance sum;
    for (std::size_t frame = from; frame < to; ++frame) {
        sum.left += ears[leftEar][frame] * ears[leftEar][frame];
        sum.right += ears[rightEar][frame] * ears[rightEar][frame];
        sum.cross += ears[leftEar][frame] * ears[rightEar][frame];
    }
    const double count = static_cast<double>(std::max<std::size_t>(to - from, 1));
    return {sum.left / count, sum.right / count, sum.cross / count};
}

/// Where a band's decay passes over into noise made for it, in samples.
struct Splice {
    std::size_t from = 0;
    std::size_t to = 0;
};

/// Between 14 and 8 dB above the noise, where the decay is still its own. None where the decay is over too soon to tell
/// a level from.
Splice spliceOf(const EarSamples& band, double t60, std::size_t fileLength) {
    constexpr double fromDb = 14;
    constexpr double toDb = 8;
    const double perDb = t60 / 60 * rate;
    EarResponses heard;
    for (std::size_t ear = 0; ear < 2; ++ear)
        heard[ear].assign(band[ear].begin(), band[ear].begin() + static_cast<std::ptrdiff_t>(fileLength));
    const auto knee = static_cast<double>(energyDecayDb(heard, rate).size());
    return {static_cast<std::size_t>(std::max(0.0, knee - fromDb * perDb)),
            static_cast<std::size_t>(std::max(0.0, knee - toDb * perDb))};
}

/// Noise with the power and the coherence of a span of a band.
EarSamples continuation(const EarSamples& noise, const Covariance& like, double bandwidthHz, bool binaural,
                        std::size_t length) {
    EarSamples made = noise;
    if (binaural)
        made = withCoherence(noise, like, bandwidthHz, length);
    const Covariance has = covarianceOf(made, 0, length);
    const double gain = std::sqrt((like.left + like.right) / (has.left + has.right));
    for (Samples& ear : made) {
        ear.resize(length);
        for (double& sample : ear)
            sample *= gain;
    }
    return made;
}

/// Undoes a band's decay, and goes on with noise from the splice on.
EarSamples withoutDecay(const EarSamples& band, const EarSamples& noise, double centreHz, double t60,
                        const Splice& splice, std::size_t start, bool binaural, std::size_t length) {
    constexpr double levelSeconds = 0.05; // at least, for the noise's level
    const double nepers = 3 * std::numbers::ln10 / t60 / rate;
    EarSamples flat{Samples(length), Samples(length)};
    for (std::size_t ear = 0; ear < 2; ++ear)
        for (std::size_t frame = 0; frame < std::min(length, splice.to); ++frame)
            flat[ear][frame] = band[ear][frame] * std::exp(nepers * static_cast<double>(frame));
    if (splice.from >= length)
        return flat;
    const auto span = static_cast<std::size_t>(std::max(levelSeconds, t60 / 6) * rate);
    const std::size_t from = std::max(start, splice.from > span ? splice.from - span : 0);
    const EarSamples more = continuation(noise, covarianceOf(flat, std::min(from, splice.from), splice.from),
                                         centreHz * thirdOctaveWidth, binaural, length);
    for (std::size_t frame = splice.from; frame < length; ++frame) {
        const double way =
            std::min(1.0, static_cast<double>(frame - splice.from) /
                              static_cast<double>(std::max<std::size_t>(splice.to - splice.from, 1)));
        const double angle = way * std::numbers::pi / 2;
        for (std::size_t ear = 0; ear < 2; ++ear)
            flat[ear][frame] = std::cos(angle) * flat[ear][frame] + std::sin(angle) * more[ear][frame];
    }
    return flat;
}

/// What a band's ears are to have in common.
struct Wanted {
    Covariance covariance;
    double coherence = 0;
    bool own = false; ///< As they are.
};

Wanted wantedOf(const EarSamples& flat, double measured, double head, bool keeps, std::size_t start,
                std::size_t length) {
    const Covariance has = covarianceOf(flat, std::min(start, length), length);
    if (!keeps)
        return {{1, 1, head}, head, false};
    const double balance = std::pow(10.0, balanceBoundDb / 10);
    const double ratio = has.left / has.right;
    const double bounded = std::clamp(ratio, 1 / balance, balance);
    const double coherence = std::clamp(measured, head - coherenceBound, head + coherenceBound);
    return {
        {bounded, 1, coherence * std::sqrt(bounded)}, coherence, coherence == measured && bounded == ratio};
}

/// Noise in place of a band that the file does not hold, 3 dB below its neighbour per band.
EarSamples inPlaceOf(const EarSamples& neighbour, const EarSamples& noise, double centreHz,
                     std::size_t length) {
    constexpr double softer = 0.5; // of power
    Covariance like = covarianceOf(neighbour, 0, length);
    like = {softer * like.left, softer * like.right, softer * like.cross};
    return continuation(noise, like, centreHz * thirdOctaveWidth, false, length);
}

} // namespace

MeasuredBands measuredBands(const MeasuredRoom& measured, const RoomDescription& room,
                            const DiffuseHead& head, bool headCoherence) {
    constexpr std::size_t ringing = 4096;
    constexpr std::uint64_t seed = 1;
    constexpr double soonest = 0.005;
    constexpr std::size_t firstOfMiddle = 7; // 500 Hz: always there
    const std::size_t length = frameCountAt(room, masterSampleRate);
    const std::size_t fileLength = measured.file.ears[leftEar].size();
    const auto start = static_cast<std::size_t>(room.onsetMs / 1000 * rate);
    RealTransform transform(powerOfTwoFrom(std::max(length, fileLength) + 2 * ringing));
    RandomNumbers random(seed);
    const EarSpectra spectra = reverberantPart(measured, room, transform);
    const EarSpectra voices = measured.file.binaural ? spectra : voicesOf(spectra, transform, random);
    const EarSamples white = noiseOf(length + ringing, random);
    const EarSpectra noises{transform.forward(white[leftEar]), transform.forward(white[rightEar])};
    const auto windows = thirdOctaves(transform.binCount(), masterSampleRate);
    const bool keeps = measured.file.binaural && !headCoherence;

    MeasuredBands result;
    result.coherence = head.coherence();
    std::vector<bool> held;
    for (std::size_t index = 0; index < windows.size(); ++index) {
        const double centreHz = windows[index].centreHz;
        const EarSamples band = measured.file.binaural
                                    ? bandOf(spectra, windows[index], transform)
                                    : bandOfVoices(voices, spectra, windows[index], transform);
        const double t60 = t60At(room, centreHz);
        const Splice splice = spliceOf(band, t60, fileLength);
        held.push_back(static_cast<double>(splice.from) > static_cast<double>(start) + soonest * rate &&
                       centreHz < 0.45 * measured.file.sampleRate);
        ReverbBand made;
        made.centreHz = centreHz;
        made.keepsPower = true;
        if (held.back())
            made.samples = withoutDecay(band, bandOf(noises, windows[index], transform), centreHz, t60,
                                        splice, start, measured.file.binaural, length);
        result.bands.push_back(std::move(made));
    }
    if (!held[firstOfMiddle])
        throw DataError("The response has decayed before this Scene's reverb begins, " +
                        fixedText(room.onsetMs, 0) + " ms behind the direct sound: name a smaller Scene.");
    const auto fill = [&](std::size_t index, std::size_t neighbour) {
        if (held[index])
            return;
        const double centreHz = windows[index].centreHz;
        result.bands[index].samples = inPlaceOf(result.bands[neighbour].samples,
                                                bandOf(noises, windows[index], transform), centreHz, length);
        result.madeHz.push_back(centreHz);
    };
    for (std::size_t index = firstOfMiddle; index-- > 0;)
        fill(index, index + 1);
    for (std::size_t index = firstOfMiddle + 1; index < windows.size(); ++index)
        fill(index, index - 1);
    for (std::size_t index = 0; index < windows.size(); ++index) {
        const double own = index < measured.coherence.size() ? measured.coherence[index].zeroLag : 0;
        const Wanted wanted = wantedOf(result.bands[index].samples, own, head.coherence()[index].zeroLag,
                                       keeps && held[index], start, length);
        result.bands[index].meant = wanted.covariance;
        result.bands[index].keepsCoherence = wanted.own;
        result.coherence[index].zeroLag = wanted.coherence;
        if (keeps && held[index] && !wanted.own)
            result.boundedHz.push_back(windows[index].centreHz);
    }
    return result;
}

} // namespace orvane::kestrum::tools

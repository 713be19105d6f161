// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/Spectra.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <complex> // before fftw3.h, so that its complex type is the standard one

#include <fftw3.h>

#include <mutex>
#include <numbers>

namespace orvane::kestrum::tools {

namespace {

std::mutex planner; // the library's planner serves one thread at a time

} // namespace

struct RealTransform::Plans {
    explicit Plans(std::size_t size)
        : locked(planner),
          signal(size),
          spectrum(size / 2 + 1),
          bins(reinterpret_cast<fftw_complex*>(spectrum.data())),
          toSpectrum(fftw_plan_dft_r2c_1d(static_cast<int>(size), signal.data(), bins, FFTW_ESTIMATE)),
          toSignal(fftw_plan_dft_c2r_1d(static_cast<int>(size), bins, signal.data(), FFTW_ESTIMATE)) {
        locked.unlock();
    }
    ~Plans() {
        locked.lock();
        fftw_destroy_plan(toSpectrum);
        fftw_destroy_plan(toSignal);
    }
    Plans(const Plans&) = delete;
    Plans& operator=(const Plans&) = delete;

    std::unique_lock<std::mutex> locked; ///< While plans are made and destroyed.
    Samples signal;
    Spectrum spectrum;
    fftw_complex* bins;
    fftw_plan toSpectrum;
    fftw_plan toSignal;
};

RealTransform::RealTransform(std::size_t size) : length(size), plans(std::make_unique<Plans>(size)) {}
RealTransform::~RealTransform() = default;

Spectrum RealTransform::forward(const Samples& signal) {
    assert(signal.size() <= length);
    const auto end = std::copy(signal.begin(), signal.end(), plans->signal.begin());
    std::fill(end, plans->signal.end(), 0.0);
    fftw_execute(plans->toSpectrum);
    return plans->spectrum;
}

Samples RealTransform::inverse(const Spectrum& spectrum) {
    assert(spectrum.size() == binCount());
    plans->spectrum = spectrum; // same size: the memory that the plans know is kept
    fftw_execute(plans->toSignal);
    Samples signal = plans->signal;
    for (double& sample : signal)
        sample /= static_cast<double>(length);
    return signal;
}

Spectrum RealTransform::minimumPhase(const Samples& magnitudes) {
    assert(magnitudes.size() == binCount());
    constexpr double floorRatio = 1e-6;
    const double floor = *std::ranges::max_element(magnitudes) * floorRatio;
    Spectrum logarithms(binCount());
    for (std::size_t bin = 0; bin < binCount(); ++bin)
        logarithms[bin] = std::log(std::max({magnitudes[bin], floor, 1e-300}));
    Samples cepstrum = inverse(logarithms);
    for (std::size_t index = 1; index < (length + 1) / 2; ++index)
        cepstrum[index] *= 2;
    std::fill(cepstrum.begin() + static_cast<std::ptrdiff_t>(length / 2 + 1), cepstrum.end(), 0.0);
    Spectrum result = forward(cepstrum);
    for (auto& bin : result)
        bin = std::exp(bin);
    return result;
}

std::size_t powerOfTwoFrom(std::size_t value) {
    std::size_t power = 1;
    while (power < value)
        power *= 2;
    return power;
}

void delaySpectrum(Spectrum& spectrum, double delaySamples) {
    const auto last = spectrum.size() - 1;
    const double step = -std::numbers::pi * delaySamples / static_cast<double>(last);
    for (std::size_t bin = 0; bin <= last; ++bin)
        spectrum[bin] *= std::polar(1.0, step * static_cast<double>(bin));
    spectrum[last] = spectrum[last].real();
}

Samples magnitudesOf(const Spectrum& spectrum) {
    Samples magnitudes(spectrum.size());
    std::ranges::transform(spectrum, magnitudes.begin(), [](const auto& bin) { return std::abs(bin); });
    return magnitudes;
}

Samples smoothed(const Samples& magnitudes, double octaves) {
    Samples sums(magnitudes.size() + 1);
    for (std::size_t bin = 0; bin < magnitudes.size(); ++bin)
        sums[bin + 1] = sums[bin] + magnitudes[bin] * magnitudes[bin];
    const double half = std::exp2(octaves / 2);
    Samples result(magnitudes.size());
    for (std::size_t bin = 1; bin < magnitudes.size(); ++bin) {
        const double centre = static_cast<double>(bin);
        const auto from = static_cast<std::size_t>(std::lround(centre / half));
        const auto to = std::min(magnitudes.size() - 1, static_cast<std::size_t>(std::lround(centre * half)));
        result[bin] = std::sqrt((sums[to + 1] - sums[from]) / static_cast<double>(to + 1 - from));
    }
    result[0] = result[1];
    return result;
}

void restorePower(Spectrum& mixed, const Samples& meantMagnitudes) {
    constexpr double bandOctaves = 1.0 / 3;
    const Samples present = smoothed(magnitudesOf(mixed), bandOctaves);
    const Samples meant = smoothed(meantMagnitudes, bandOctaves);
    for (std::size_t bin = 0; bin < mixed.size(); ++bin)
        if (present[bin] > 0)
            mixed[bin] *= meant[bin] / present[bin];
}

} // namespace orvane::kestrum::tools

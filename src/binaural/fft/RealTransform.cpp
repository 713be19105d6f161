// SPDX-License-Identifier: GPL-3.0-or-later
#include "binaural/fft/RealTransform.h"

#include "binaural/fft/AlignedArray.h"
#include "binaural/fft/ChirpTransform.h"
#include "binaural/fft/Plans.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace orvane::fft {

class RealTransform::Method {
public:
    virtual ~Method() = default;
    virtual void forward(const float* time, Complex* spectrum) noexcept ORVANE_REALTIME = 0;
    virtual void backward(const Complex* spectrum, float* time) noexcept ORVANE_REALTIME = 0;
    virtual void backwardConsuming(Complex* spectrum, float* time) noexcept ORVANE_REALTIME {
        backward(spectrum, time);
    }
};

namespace {

/// The library's own transform. Memory that it could not run on goes through scratch, so that any gives the
/// same bits.
class DirectMethod final : public RealTransform::Method {
public:
    explicit DirectMethod(std::size_t samples)
        : length(samples),
          binCount(samples / 2 + 1),
          timeScratch(makeAlignedArray<float>(length)),
          spectrumScratch(makeAlignedArray<Complex>(binCount)),
          forwardPlan(planFor(PlanKind::realForward, length)),
          backwardPlan(planFor(PlanKind::realBackward, length)) {}

    void forward(const float* time, Complex* spectrum) noexcept override {
        float* input = timeScratch.get();
        if (fitsPlans(time))
            input = const_cast<float*>(time); // which this direction only reads
        else
            std::copy_n(time, length, input);
        if (fitsPlans(spectrum)) {
            forwardPlan.run(input, spectrum);
        } else {
            forwardPlan.run(input, spectrumScratch.get());
            std::copy_n(spectrumScratch.get(), binCount, spectrum);
        }
    }

    void backward(const Complex* spectrum, float* time) noexcept override {
        std::copy_n(spectrum, binCount, spectrumScratch.get());
        runBackward(spectrumScratch.get(), time);
    }

    void backwardConsuming(Complex* spectrum, float* time) noexcept override {
        if (fitsPlans(spectrum))
            runBackward(spectrum, time);
        else
            backward(spectrum, time);
    }

private:
    void runBackward(Complex* spectrum, float* time) noexcept {
        if (fitsPlans(time)) {
            backwardPlan.run(spectrum, time);
        } else {
            backwardPlan.run(spectrum, timeScratch.get());
            std::copy_n(timeScratch.get(), length, time);
        }
    }

    std::size_t length;
    std::size_t binCount;
    AlignedArray<float> timeScratch;
    AlignedArray<Complex> spectrumScratch;
    Plan forwardPlan;
    Plan backwardPlan;
};

/// An even length: even samples as real and odd ones as imaginary parts of half as many values, whose
/// transform Z is taken apart again,
///     X[k] = E[k] + w^k O[k], E[k] = (Z[k] + Z*[h-k]) / 2, O[k] = (Z[k] - Z*[h-k]) / 2i, w = exp(-i pi / h),
/// and put together for the way back.
class EvenChirpMethod final : public RealTransform::Method {
public:
    explicit EvenChirpMethod(std::size_t samples)
        : half(samples / 2), twiddles(makeAlignedArray<Complex>(half)), chirp(half) {
        // w^k / 2i: factors of the way there, whose conjugates times 2 are those of the way back.
        for (std::size_t k = 0; k < half; ++k) {
            const double angle = std::numbers::pi * static_cast<double>(k) / static_cast<double>(half);
            twiddles[k] = {static_cast<float>(-0.5 * std::sin(angle)),
                           static_cast<float>(-0.5 * std::cos(angle))};
        }
    }

    void forward(const float* time, Complex* spectrum) noexcept override {
        Complex* const z = chirp.values();
        for (std::size_t m = 0; m < half; ++m)
            z[m] = {time[2 * m], time[2 * m + 1]};
        chirp.transform();
        spectrum[0] = {z[0].re + z[0].im, 0};
        spectrum[half] = {z[0].re - z[0].im, 0};
        for (std::size_t k = 1; k < half; ++k) {
            const Complex a = z[k];
            const Complex b = z[half - k];
            const Complex t = twiddles[k];
            const Complex difference{a.re - b.re, a.im + b.im};
            spectrum[k] = {0.5f * (a.re + b.re) + (difference.re * t.re - difference.im * t.im),
                           0.5f * (a.im - b.im) + (difference.re * t.im + difference.im * t.re)};
        }
    }

    /// The inverse transform is the forward one of the conjugates, conjugated.
    void backward(const Complex* spectrum, float* time) noexcept override {
        Complex* const z = chirp.values();
        z[0] = {spectrum[0].re + spectrum[half].re, spectrum[half].re - spectrum[0].re};
        for (std::size_t k = 1; k < half; ++k) {
            const Complex a = spectrum[k];
            const Complex b = spectrum[half - k];
            const Complex t = twiddles[k];
            const Complex twice{2.0f * (a.re - b.re), 2.0f * (a.im + b.im)};
            // Conjugate of (a + b*) + (a - b*) 2 t*, where i w^-k = 2 t*.
            z[k] = {(a.re + b.re) + (twice.re * t.re + twice.im * t.im),
                    (b.im - a.im) + (twice.re * t.im - twice.im * t.re)};
        }
        chirp.transform();
        for (std::size_t m = 0; m < half; ++m) {
            time[2 * m] = z[m].re;
            time[2 * m + 1] = -z[m].im;
        }
    }

private:
    std::size_t half;
    AlignedArray<Complex> twiddles; ///< [half]
    ChirpTransform chirp;
};

/// An odd length, which no block of a host leads to.
class OddChirpMethod final : public RealTransform::Method {
public:
    explicit OddChirpMethod(std::size_t samples) : length(samples), chirp(samples) {}

    void forward(const float* time, Complex* spectrum) noexcept override {
        Complex* const z = chirp.values();
        for (std::size_t n = 0; n < length; ++n)
            z[n] = {time[n], 0};
        chirp.transform();
        std::copy_n(z, length / 2 + 1, spectrum);
    }

    /// The inverse transform is the forward one of the conjugates, of which only the real part is wanted.
    void backward(const Complex* spectrum, float* time) noexcept override {
        Complex* const z = chirp.values();
        z[0] = {spectrum[0].re, 0};
        for (std::size_t k = 1; k < length / 2 + 1; ++k) {
            z[length - k] = spectrum[k];
            z[k] = {spectrum[k].re, -spectrum[k].im};
        }
        chirp.transform();
        for (std::size_t n = 0; n < length; ++n)
            time[n] = z[n].re;
    }

private:
    std::size_t length;
    ChirpTransform chirp;
};

std::size_t largestPrimeFactor(std::size_t number) noexcept {
    std::size_t largest = 1;
    for (std::size_t factor = 2; factor * factor <= number; ++factor) {
        while (number % factor == 0) {
            largest = factor;
            number /= factor;
        }
    }
    return std::max(largest, number);
}

/// Lengths that the library runs without allocating, found by running them: even ones without a prime factor
/// above 13. Odd ones with several factors allocate, however small the factors.
bool runsDirectly(std::size_t length) noexcept { return length % 2 == 0 && largestPrimeFactor(length) <= 13; }

} // namespace

RealTransform::RealTransform(std::size_t length) {
    if (runsDirectly(length))
        method = std::make_unique<DirectMethod>(length);
    else if (length % 2 == 0)
        method = std::make_unique<EvenChirpMethod>(length);
    else
        method = std::make_unique<OddChirpMethod>(length);
}

RealTransform::~RealTransform() = default;

void RealTransform::forward(const float* time, Complex* spectrum) noexcept {
    method->forward(time, spectrum);
}

void RealTransform::backward(const Complex* spectrum, float* time) noexcept {
    method->backward(spectrum, time);
}

void RealTransform::backwardConsuming(Complex* spectrum, float* time) noexcept {
    method->backwardConsuming(spectrum, time);
}

} // namespace orvane::fft

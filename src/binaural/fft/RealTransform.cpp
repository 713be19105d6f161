// SPDX-License-Identifier: GPL-3.0-or-later
#include "binaural/fft/RealTransform.h"

#include "binaural/fft/AlignedArray.h"
#include "binaural/fft/ChirpTransform.h"
#include "binaural/fft/HalfLength.h"
#include "binaural/fft/Plans.h"

#include <algorithm>
#include <cstring>

namespace orvane::fft {

class RealTransform::Method {
public:
    virtual ~Method() = default;
    virtual void forward(const float* time, Complex* spectrum) noexcept ORVANE_REALTIME = 0;
    virtual void backward(const Complex* spectrum, float* time) noexcept ORVANE_REALTIME = 0;
};

namespace {

/// By the library, on half as many complex values: its own real transforms take half as long again. Memory that
/// it could not run on goes through scratch, so that any gives the same bits.
class EvenDirectMethod final : public RealTransform::Method {
public:
    explicit EvenDirectMethod(std::size_t samples)
        : length(samples),
          halfLength(samples / 2),
          timeScratch(makeAlignedArray<Complex>(samples / 2)),
          values(makeAlignedArray<Complex>(samples / 2)),
          forwardPlan(planFor(Direction::forward, samples / 2)),
          backwardPlan(planFor(Direction::backward, samples / 2)) {}

    void forward(const float* time, Complex* spectrum) noexcept override {
        const auto* samples = reinterpret_cast<const Complex*>(time);
        if (!fitsPlans(time)) {
            std::memcpy(timeScratch.get(), time, length * sizeof(float));
            samples = timeScratch.get();
        }
        Complex* const transformed = fitsPlans(spectrum) ? spectrum : values.get();
        forwardPlan.run(samples, transformed);
        halfLength.takeApart(transformed, spectrum);
    }

    void backward(const Complex* spectrum, float* time) noexcept override {
        halfLength.putTogether(spectrum, values.get());
        if (fitsPlans(time)) {
            backwardPlan.run(values.get(), reinterpret_cast<Complex*>(time));
        } else {
            backwardPlan.run(values.get(), timeScratch.get());
            std::memcpy(time, timeScratch.get(), length * sizeof(float));
        }
    }

private:
    std::size_t length;
    HalfLength halfLength;
    AlignedArray<Complex> timeScratch; ///< [length / 2]
    AlignedArray<Complex> values;      ///< [length / 2]
    Plan forwardPlan;
    Plan backwardPlan;
};

/// By a chirp, on half as many complex values.
class EvenChirpMethod final : public RealTransform::Method {
public:
    explicit EvenChirpMethod(std::size_t samples)
        : half(samples / 2), halfLength(samples / 2), chirp(samples / 2) {}

    void forward(const float* time, Complex* spectrum) noexcept override {
        std::memcpy(chirp.values(), time, half * sizeof(Complex));
        chirp.transform();
        halfLength.takeApart(chirp.values(), spectrum);
    }

    /// The inverse transform is the forward one turned around.
    void backward(const Complex* spectrum, float* time) noexcept override {
        Complex* const z = chirp.values();
        halfLength.putTogether(spectrum, z);
        chirp.transform();
        std::reverse(z + 1, z + half);
        std::memcpy(time, z, half * sizeof(Complex));
    }

private:
    std::size_t half;
    HalfLength halfLength;
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

/// Complex values that the library transforms without allocating, found by running them.
constexpr std::size_t largestDirectFactor = 13;

} // namespace

RealTransform::RealTransform(std::size_t length) {
    if (length % 2 != 0)
        method = std::make_unique<OddChirpMethod>(length);
    else if (largestPrimeFactor(length) <= largestDirectFactor)
        method = std::make_unique<EvenDirectMethod>(length);
    else
        method = std::make_unique<EvenChirpMethod>(length);
}

RealTransform::~RealTransform() = default;

void RealTransform::forward(const float* time, Complex* spectrum) noexcept {
    method->forward(time, spectrum);
}

void RealTransform::backward(const Complex* spectrum, float* time) noexcept {
    method->backward(spectrum, time);
}

} // namespace orvane::fft

// SPDX-License-Identifier: GPL-3.0-or-later
#include "binaural/fft/RealTransform.h"

#include "binaural/fft/AlignedArray.h"

#include <fftw3.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <map>
#include <mutex>
#include <new>
#include <numbers>
#include <utility>

namespace orvane::fft {

static_assert(sizeof(Complex) == sizeof(fftwf_complex));

namespace {

enum class PlanKind { realForward, realBackward, complexForward, complexBackward };

fftwf_complex* native(Complex* values) noexcept { return reinterpret_cast<fftwf_complex*>(values); }

/// Every plan of the module. The library's planner is not thread-safe, and plans may be run by any thread
/// once made, so there is one cache behind one mutex; it is emptied when the module is unloaded.
class PlanCache {
public:
    static PlanCache& instance() {
        static PlanCache cache;
        return cache;
    }

    PlanCache(const PlanCache&) = delete;
    PlanCache& operator=(const PlanCache&) = delete;

    fftwf_plan get(PlanKind kind, std::size_t length) {
        const std::lock_guard lock(mutex);
        fftwf_plan& plan = plans[{kind, length}];
        if (plan == nullptr)
            plan = make(kind, length);
        return plan;
    }

private:
    PlanCache() = default;
    ~PlanCache() {
        for (const auto& [key, plan] : plans)
            fftwf_destroy_plan(plan);
        fftwf_cleanup(); // the planner's own tables, which would outlive a module that is unloaded
    }

    /// Planned on aligned memory, as every transform runs on such; estimated, not measured, so that the same
    /// length gives the same bits on every run.
    static fftwf_plan make(PlanKind kind, std::size_t length) {
        const auto time = makeAlignedArray<float>(length);
        const auto first = makeAlignedArray<Complex>(length);
        const auto second = makeAlignedArray<Complex>(length);
        const int n = static_cast<int>(length);
        fftwf_plan plan = nullptr;
        switch (kind) {
        case PlanKind::realForward:
            plan = fftwf_plan_dft_r2c_1d(n, time.get(), native(first.get()), FFTW_ESTIMATE);
            break;
        case PlanKind::realBackward:
            plan = fftwf_plan_dft_c2r_1d(n, native(first.get()), time.get(), FFTW_ESTIMATE);
            break;
        case PlanKind::complexForward:
            plan =
                fftwf_plan_dft_1d(n, native(first.get()), native(second.get()), FFTW_FORWARD, FFTW_ESTIMATE);
            break;
        case PlanKind::complexBackward:
            plan =
                fftwf_plan_dft_1d(n, native(first.get()), native(second.get()), FFTW_BACKWARD, FFTW_ESTIMATE);
            break;
        }
        if (plan == nullptr)
            throw std::bad_alloc();
        return plan;
    }

    std::mutex mutex;
    std::map<std::pair<PlanKind, std::size_t>, fftwf_plan> plans;
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

Complex product(Complex a, Complex b) noexcept {
    return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re};
}

} // namespace

class RealTransform::Method {
public:
    virtual ~Method() = default;
    virtual void forward(const float* time, Complex* spectrum) noexcept ORVANE_REALTIME = 0;
    virtual void backward(const Complex* spectrum, float* time) noexcept ORVANE_REALTIME = 0;
};

namespace {

bool isAligned(const void* memory) noexcept {
    return reinterpret_cast<std::uintptr_t>(memory) % alignment == 0;
}

/// The library's own transform, through aligned scratch where the caller's memory is not aligned.
class DirectMethod final : public RealTransform::Method {
public:
    explicit DirectMethod(std::size_t samples)
        : length(samples),
          binCount(samples / 2 + 1),
          timeScratch(makeAlignedArray<float>(length)),
          spectrumScratch(makeAlignedArray<Complex>(binCount)),
          forwardPlan(PlanCache::instance().get(PlanKind::realForward, length)),
          backwardPlan(PlanCache::instance().get(PlanKind::realBackward, length)) {}

    void forward(const float* time, Complex* spectrum) noexcept override {
        float* source = timeScratch.get();
        if (isAligned(time))
            source = const_cast<float*>(time); // out of place, the library leaves it alone
        else
            std::copy_n(time, length, source);
        const bool direct = isAligned(spectrum);
        Complex* const target = direct ? spectrum : spectrumScratch.get();
        fftwf_execute_dft_r2c(forwardPlan, source, native(target));
        if (!direct)
            std::copy_n(target, binCount, spectrum);
    }

    void backward(const Complex* spectrum, float* time) noexcept override {
        std::copy_n(spectrum, binCount, spectrumScratch.get()); // the library overwrites its input
        const bool direct = isAligned(time);
        float* const target = direct ? time : timeScratch.get();
        fftwf_execute_dft_c2r(backwardPlan, native(spectrumScratch.get()), target);
        if (!direct)
            std::copy_n(target, length, time);
    }

private:
    std::size_t length;
    std::size_t binCount;
    AlignedArray<float> timeScratch;
    AlignedArray<Complex> spectrumScratch;
    fftwf_plan forwardPlan;
    fftwf_plan backwardPlan;
};

/// Any length as a circular convolution with a chirp, whose length is a power of two.
class ChirpMethod final : public RealTransform::Method {
public:
    explicit ChirpMethod(std::size_t samples)
        : length(samples),
          paddedLength(std::bit_ceil(2 * samples - 1)),
          chirp(makeAlignedArray<Complex>(length)),
          chirpSpectrum(makeAlignedArray<Complex>(paddedLength)),
          work(makeAlignedArray<Complex>(paddedLength)),
          workSpectrum(makeAlignedArray<Complex>(paddedLength)),
          forwardPlan(PlanCache::instance().get(PlanKind::complexForward, paddedLength)),
          backwardPlan(PlanCache::instance().get(PlanKind::complexBackward, paddedLength)) {
        // exp(-i pi n^2 / length); the square is reduced first, so that the angle stays exact.
        for (std::size_t n = 0; n < length; ++n) {
            const auto reduced = static_cast<double>(n * n % (2 * length));
            const double angle = std::numbers::pi * reduced / static_cast<double>(length);
            chirp[n] = {static_cast<float>(std::cos(angle)), static_cast<float>(-std::sin(angle))};
        }
        // The inverse transform's scale goes into the chirp's spectrum.
        const float scale = 1.0f / static_cast<float>(paddedLength);
        for (std::size_t n = 0; n < length; ++n) {
            const Complex conjugate{chirp[n].re * scale, -chirp[n].im * scale};
            work[n] = conjugate;
            if (n > 0)
                work[paddedLength - n] = conjugate;
        }
        fftwf_execute_dft(forwardPlan, native(work.get()), native(chirpSpectrum.get()));
        std::fill_n(work.get(), paddedLength, Complex{0, 0});
    }

    void forward(const float* time, Complex* spectrum) noexcept override {
        for (std::size_t n = 0; n < length; ++n)
            work[n] = {time[n] * chirp[n].re, time[n] * chirp[n].im};
        convolveWithChirp();
        for (std::size_t k = 0; k < length / 2 + 1; ++k)
            spectrum[k] = product(work[k], chirp[k]);
    }

    /// The inverse is the forward transform of the conjugated spectrum, of which only the real part is
    /// wanted.
    void backward(const Complex* spectrum, float* time) noexcept override {
        work[0] = product({spectrum[0].re, 0}, chirp[0]);
        for (std::size_t k = 1; k < length / 2 + 1; ++k) {
            work[length - k] = product(spectrum[k], chirp[length - k]);
            work[k] = product({spectrum[k].re, -spectrum[k].im}, chirp[k]);
        }
        if (length % 2 == 0)
            work[length / 2] = product({spectrum[length / 2].re, 0}, chirp[length / 2]);
        convolveWithChirp();
        for (std::size_t n = 0; n < length; ++n)
            time[n] = product(work[n], chirp[n]).re;
    }

private:
    void convolveWithChirp() noexcept {
        std::fill_n(work.get() + length, paddedLength - length, Complex{0, 0});
        fftwf_execute_dft(forwardPlan, native(work.get()), native(workSpectrum.get()));
        for (std::size_t k = 0; k < paddedLength; ++k)
            workSpectrum[k] = product(workSpectrum[k], chirpSpectrum[k]);
        fftwf_execute_dft(backwardPlan, native(workSpectrum.get()), native(work.get()));
    }

    std::size_t length;
    std::size_t paddedLength;
    AlignedArray<Complex> chirp;         ///< [length]
    AlignedArray<Complex> chirpSpectrum; ///< [paddedLength], of the conjugate chirp, scaled.
    AlignedArray<Complex> work;          ///< [paddedLength]
    AlignedArray<Complex> workSpectrum;  ///< [paddedLength]
    fftwf_plan forwardPlan;
    fftwf_plan backwardPlan;
};

/// Lengths that the library runs without allocating, found by running them: even ones without a prime factor
/// above 13. Odd ones with several factors allocate, however small the factors.
bool runsDirectly(std::size_t length) noexcept { return length % 2 == 0 && largestPrimeFactor(length) <= 13; }

} // namespace

RealTransform::RealTransform(std::size_t length) {
    if (runsDirectly(length))
        method = std::make_unique<DirectMethod>(length);
    else
        method = std::make_unique<ChirpMethod>(length);
}

RealTransform::~RealTransform() = default;

void RealTransform::forward(const float* time, Complex* spectrum) noexcept {
    method->forward(time, spectrum);
}

void RealTransform::backward(const Complex* spectrum, float* time) noexcept {
    method->backward(spectrum, time);
}

} // namespace orvane::fft

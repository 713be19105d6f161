// SPDX-License-Identifier: GPL-3.0-or-later
#include "binaural/fft/Plans.h"

#include "binaural/fft/AlignedArray.h"

#include <fftw3.h>

#include <map>
#include <mutex>
#include <new>
#include <utility>

namespace orvane::fft {

static_assert(sizeof(Complex) == sizeof(fftwf_complex));

namespace {

fftwf_complex* native(Complex* values) noexcept { return reinterpret_cast<fftwf_complex*>(values); }

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

    /// When the module is unloaded.
    ~PlanCache() {
        const std::lock_guard lock(mutex);
        for (const auto& [key, plan] : plans)
            fftwf_destroy_plan(plan);
        fftwf_cleanup(); // the planner's own tables, which would outlive the module
    }

    /// On aligned memory, for which alone the plan then holds.
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

} // namespace

void Plan::run(float* time, Complex* spectrum) const noexcept {
    fftwf_execute_dft_r2c(static_cast<fftwf_plan>(handle), time, native(spectrum));
}

void Plan::run(Complex* spectrum, float* time) const noexcept {
    fftwf_execute_dft_c2r(static_cast<fftwf_plan>(handle), native(spectrum), time);
}

void Plan::run(Complex* values, Complex* transformed) const noexcept {
    fftwf_execute_dft(static_cast<fftwf_plan>(handle), native(values), native(transformed));
}

Plan planFor(PlanKind kind, std::size_t length) { return Plan(PlanCache::instance().get(kind, length)); }

bool fitsPlans(const void* memory) noexcept {
    // The library's function only looks at the address.
    return fftwf_alignment_of(static_cast<float*>(const_cast<void*>(memory))) == 0;
}

} // namespace orvane::fft

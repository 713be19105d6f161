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

    fftwf_plan get(Direction direction, std::size_t length) {
        const std::lock_guard lock(mutex);
        fftwf_plan& plan = plans[{direction, length}];
        if (plan == nullptr)
            plan = make(direction, length);
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
    static fftwf_plan make(Direction direction, std::size_t length) {
        const auto values = makeAlignedArray<Complex>(length);
        const auto transformed = makeAlignedArray<Complex>(length);
        fftwf_plan plan =
            fftwf_plan_dft_1d(static_cast<int>(length), native(values.get()), native(transformed.get()),
                              direction == Direction::forward ? FFTW_FORWARD : FFTW_BACKWARD, FFTW_ESTIMATE);
        if (plan == nullptr)
            throw std::bad_alloc();
        return plan;
    }

    std::mutex mutex;
    std::map<std::pair<Direction, std::size_t>, fftwf_plan> plans;
};

} // namespace

void Plan::run(const Complex* values, Complex* transformed) const noexcept {
    // The library only reads them, but does not say so.
    fftwf_execute_dft(static_cast<fftwf_plan>(handle), native(const_cast<Complex*>(values)),
                      native(transformed));
}

Plan planFor(Direction direction, std::size_t length) {
    return Plan(PlanCache::instance().get(direction, length));
}

bool fitsPlans(const void* memory) noexcept {
    // The library's function only looks at the address.
    return fftwf_alignment_of(static_cast<float*>(const_cast<void*>(memory))) == 0;
}

} // namespace orvane::fft

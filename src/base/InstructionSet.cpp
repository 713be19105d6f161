// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/InstructionSet.h"

#include <cstddef>

namespace orvane {

std::span<const InstructionSet> supportedInstructionSets() noexcept {
    static constexpr InstructionSet all[]{InstructionSet::scalar, InstructionSet::sse2, InstructionSet::avx,
                                          InstructionSet::avx512};
    // The built-ins also ask whether the operating system keeps the registers. Every processor with VBMI2 runs
    // 512-bit arithmetic at about its usual clock; the older ones with AVX-512 slow down for it, and with them
    // all else that the core does.
    __builtin_cpu_init();
    std::size_t count = 2;
    if (__builtin_cpu_supports("avx"))
        count = __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512vbmi2") ? 4 : 3;
    return std::span(all).first(count);
}

InstructionSet bestInstructionSet() noexcept { return supportedInstructionSets().back(); }

} // namespace orvane

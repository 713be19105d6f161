// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <span>

namespace orvane {

/// Which vector instructions the inner loops use. All give the same bits.
enum class InstructionSet { scalar, sse2, avx, avx512 };

/// What this processor runs, from the plainest on; never empty.
///
/// Thread  any.
std::span<const InstructionSet> supportedInstructionSets() noexcept;

/// What pays most on this processor.
InstructionSet bestInstructionSet() noexcept;

} // namespace orvane

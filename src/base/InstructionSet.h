// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <span>

namespace orvane {

/// Which vector instructions the inner loops use. All give the same bits.
enum class InstructionSet { scalar, sse2, avx, avx512 };

/// What this processor runs, without loss to its other work, from the plainest to what pays most; never empty.
///
/// Thread  any.
std::span<const InstructionSet> supportedInstructionSets() noexcept;

/// The last of them: in every measured case wider vectors paid, also where memory bounds the sum.
InstructionSet bestInstructionSet() noexcept;

} // namespace orvane

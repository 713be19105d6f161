// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/InstructionSet.h"

namespace orvane {

/// How responses are drawn and convolved. Both ways give the same sound, bit for bit, but for the long reverb,
/// whose partitions of several sizes round differently (below -120 dB).
enum class RenderPath {
    plain, ///< Everything in every block: the definition of the sound, for tests and benchmarks.
    fast,  ///< Nothing whose result is already known.
};

/// Chosen once, at construction.
struct RenderOptions {
    RenderPath path = RenderPath::fast;
    InstructionSet instructionSet = bestInstructionSet(); ///< Of the fast path; the plain one is scalar.
};

} // namespace orvane

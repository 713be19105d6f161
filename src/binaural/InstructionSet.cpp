// SPDX-License-Identifier: GPL-3.0-or-later
#include "binaural/InstructionSet.h"

namespace orvane {

std::span<const InstructionSet> supportedInstructionSets() noexcept {
    static constexpr InstructionSet all[]{InstructionSet::scalar};
    return all;
}

InstructionSet bestInstructionSet() noexcept { return supportedInstructionSets().back(); }

} // namespace orvane

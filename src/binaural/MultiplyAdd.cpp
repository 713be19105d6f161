// SPDX-License-Identifier: GPL-3.0-or-later
#include "binaural/MultiplyAdd.h"

#include "binaural/MultiplyAddKernels.h"

namespace orvane {

const MultiplyAddKernel& multiplyAddKernel(InstructionSet set) noexcept {
    switch (set) {
    case InstructionSet::sse2:
        return sse2MultiplyAdd;
    case InstructionSet::avx:
        return avxMultiplyAdd;
    case InstructionSet::avx512:
        return avx512MultiplyAdd;
    case InstructionSet::scalar:
        break;
    }
    return scalarMultiplyAdd;
}

} // namespace orvane

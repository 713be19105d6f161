// SPDX-License-Identifier: GPL-3.0-or-later
#include "binaural/MultiplyAdd.h"

#include "binaural/MultiplyAddKernels.h"

namespace orvane {

const MultiplyAddKernel& multiplyAddKernel(InstructionSet /*set*/) noexcept { return scalarMultiplyAdd; }

} // namespace orvane

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "binaural/MultiplyAdd.h"

namespace orvane {

// One per instruction set, each in a file that alone is compiled for it.
extern const MultiplyAddKernel scalarMultiplyAdd;
extern const MultiplyAddKernel sse2MultiplyAdd;
extern const MultiplyAddKernel avxMultiplyAdd;
extern const MultiplyAddKernel avx512MultiplyAdd;

} // namespace orvane

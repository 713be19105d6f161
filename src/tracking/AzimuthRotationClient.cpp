// SPDX-License-Identifier: GPL-3.0-or-later
#include "tracking/AzimuthRotationClient.h"

#include "parameters/core/ISliderValue.h"

#include <cmath>

namespace orvane::kestrum::core {

HeadRotationMatrix AzimuthRotationClient::getRotation() const noexcept {
    const float theta = headRotation->getValue() * 3.1415927f / 180.0f;
    const float cosine = std::cos(theta);
    const float sine = std::sin(theta);
    HeadRotationMatrix matrix = identityRotation;
    matrix[0] = cosine;
    matrix[2] = sine + 0.0f; // of a value of -0 as well: the sum of both zeros is +0
    matrix[8] = 0.0f - sine; // not -sine, whose zero would be -0 and no longer the identity's
    matrix[10] = cosine;
    return matrix;
}

} // namespace orvane::kestrum::core

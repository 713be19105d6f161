// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/Spectra.h"
#include "data/head/Direction.h"

#include <array>
#include <cstddef>
#include <string>
#include <vector>

namespace orvane::kestrum::tools {

inline constexpr std::size_t leftEar = 0;
inline constexpr std::size_t rightEar = 1;

/// One measured direction as the file gives it.
struct Measurement {
    Direction direction;
    std::array<Samples, 2> ears; ///< [2][taps]; which receiver is the left ear is for assignEars() to say.
};

/// Where a set comes from and on which terms; each as far as it is known.
struct Origin {
    std::string title; ///< Database and head.
    std::string licence;
    std::string citation; ///< How the authors are to be named.
};

/// A set of free-field responses of one head.
struct MeasuredSet {
    double sampleRate = 0;     ///< Hertz.
    double distanceMetres = 0; ///< From the middle of the head to the source.
    std::size_t tapCount = 0;  ///< Samples of every response.
    Origin origin;
    std::vector<Measurement> measurements;
};

} // namespace orvane::kestrum::tools

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/headphones/HeadphoneCurve.h"

#include <vector>

namespace orvane::kestrum::tools {

/// What one file's short responses made of a correction in one third-octave band.
struct FollowedBand {
    double centreHz = 0;
    double wantedDb = 0;    ///< What the correction would do to the file's diffuse field.
    double reachedDb = 0;   ///< What was done to it.
    double nineInTenDb = 0; ///< Nine of ten single responses are not farther off than this.

    double missedDb() const { return reachedDb - wantedDb; }
};

/// The lowest band from which on all are followed to a decibel; 0 where the highest is not.
double followsFromHz(const std::vector<FollowedBand>& bands);

/// Compares responses before and after a correction with what the correction wants, in the third octaves from 31 Hz up that
/// the rate holds.
class FollowMeter {
public:
    FollowMeter(const HeadphoneCurve& curve, double sampleRate);

    /// @param weight the response's share of the sphere, on any scale.
    void add(const Samples& before, const Samples& after, double weight);

    /// @return one entry per band; at least one response was added.
    std::vector<FollowedBand> bands() const;

private:
    struct Band {
        double centreHz = 0;
        std::size_t from = 0; ///< Bins, the last one included.
        std::size_t to = 0;
        double before = 0; ///< Weighted powers.
        double wanted = 0;
        double reached = 0;
        std::vector<double> missedDb;
    };
    RealTransform transform;
    Samples powerGains; ///< [bins]
    std::vector<Band> sums;
};

} // namespace orvane::kestrum::tools

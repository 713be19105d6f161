// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/head/ResponseSet.h"
#include "data/measures/RoomMeasures.h"

namespace orvane::kestrum::tools {

/// What the two ears of a head get of sound that comes from everywhere alike, per bin from 0 Hz to the Nyquist
/// frequency.
struct HeadField {
    std::array<Samples, 2> power; ///< Of each ear, 1 for a head that is not there.
    Samples coherence;            ///< Real part, -1 to 1.
};

/// A measured head in a diffuse field, and the places from which single reflections can reach it.
///
/// Source  the mean over the sphere, each place by the solid angle of its cell, as in C. Borss and R. Martin,
///         "An improved parametric model for perception-based design of virtual acoustics", AES 35th
///         conference, 2009, and F. Menzer and C. Faller, "Binaural reverberation using a modified Jot
///         reverberator with frequency-dependent interaural coherence matching", AES 126th convention, 2009.
class DiffuseHead {
public:
    explicit DiffuseHead(ResponseSet responses);

    double sampleRate() const { return set.file.sampleRate; }
    std::size_t length() const { return set.file.length; }
    const std::array<Samples, 2>& response(std::size_t place) const { return set.responses[place]; }

    /// Draws a place: each by its share of the sphere.
    /// @param uniform 0 (included) to 1 (not included).
    std::size_t place(double uniform) const;

    /// The field on the bins of a transform of any size.
    HeadField field(std::size_t transformSize) const;

    /// Coherence in the bands of lateCoherence().
    const std::vector<CoherenceBand>& coherence() const { return bands; }

private:
    ResponseSet set;
    std::vector<CoherenceBand> bands;
    Samples shareUpTo;
    HeadField measured;
};

} // namespace orvane::kestrum::tools

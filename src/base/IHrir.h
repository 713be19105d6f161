// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Realtime.h"

#include <cstdint>
#include <string>

namespace orvane {

class SampleBuffer;

/// The process-wide store of head-related impulse responses, one per direction of a 5-degree grid.
class IHrir {
public:
    virtual ~IHrir() = default;

    /// Makes the store hold the set for this rate; a rate that is already there costs nothing.
    ///
    /// Units   sampleRate in hertz, one of 24000, 44100, 48000, 88200, 96000, 176400, 192000.
    /// Thread  setup threads; serialised by the store's own mutex, may read a file.
    /// Errors  throws the exceptions of data/DataFileExceptions.h; the set that was loaded before stays in
    /// service.
    virtual void load(std::int32_t sampleRate, const std::string& dataDirectory) = 0;

    /// 1, or how many times the running rate exceeds the rate stored in the file.
    virtual std::int32_t bandLimitFactor() const noexcept ORVANE_REALTIME = 0;

    /// Samples per ear of one response at the running rate; 0 until the first load.
    virtual std::uint64_t length() const noexcept ORVANE_REALTIME = 0;

    /// Names the set in service: another number for every other content, never 0, unique in the process.
    virtual std::uint64_t generation() const noexcept ORVANE_REALTIME = 0;

    /// The grid cell that a direction truncates to: directions of one cell have one response.
    ///
    /// Units   whole degrees in the store's own frame: clamped to +/-180 and +/-90.
    virtual std::uint32_t cell(std::int32_t azimuthDegrees,
                               std::int32_t elevationDegrees) const noexcept ORVANE_REALTIME = 0;

    /// Copies the response of the grid cell that the direction truncates to: left ear to channel 0, right
    /// to 1.
    ///
    /// Shape   out [2][at least length()]; never written beyond its end.
    /// Units   whole degrees in the store's own frame: clamped to +/-180 and +/-90.
    /// Thread  any, wait-free, also while another thread loads.
    /// @param simple true for the synthetic set: one impulse per ear, time and level difference only.
    /// @return generation() of the set that was copied from.
    virtual std::uint64_t getResponse(SampleBuffer& out, std::int32_t azimuthDegrees,
                                      std::int32_t elevationDegrees,
                                      bool simple) const noexcept ORVANE_REALTIME = 0;
};

/// A generation() that no other set of the process has.
std::uint64_t newHrirGeneration() noexcept;

} // namespace orvane

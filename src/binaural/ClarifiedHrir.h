// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/IHrir.h"
#include "base/IInPlaceProcessor.h"
#include "base/Realtime.h"
#include "base/SampleBuffer.h"
#include "binaural/ClarityTable.h"
#include "binaural/IBinauralComponentFactory.h"

#include <cstdint>
#include <memory>

namespace orvane {

/// The response of a direction behind the clarity stage: worked out, or taken from a table that knows it.
///
/// Shape   a response of n samples spreads over 2 * n.
/// Thread  constructed and filled on a building thread, the rest on the audio thread.
class ClarifiedHrir {
public:
    /// @param hrir borrowed; its length at construction is the length that is analysed.
    /// @param simple true for the synthetic responses.
    /// @param factory used in the constructor only; where it has no table, everything is worked out.
    ClarifiedHrir(const IHrir* hrir, bool simple, const IBinauralComponentFactory& factory);
    ClarifiedHrir(const ClarifiedHrir&) = delete;
    ClarifiedHrir& operator=(const ClarifiedHrir&) = delete;

    /// The definition: lays the store's response into `buffer`, which is all zeros, and runs the stage on it.
    ///
    /// @param amount exponent of the flattening, 0 (none) to 1.
    /// @return generation of the set that the response is of.
    std::uint64_t compute(SampleBuffer& buffer, std::int32_t azimuthDegrees, std::int32_t elevationDegrees,
                          float amount) ORVANE_REALTIME;

    /// The same bits as compute(), at the price of a copy when the table has them.
    std::uint64_t get(SampleBuffer& buffer, std::int32_t azimuthDegrees, std::int32_t elevationDegrees,
                      float amount) ORVANE_REALTIME;

    /// Lets the table know every direction of the 5-degree grid, so that a head that turns finds them there.
    /// Costs next to nothing when it does.
    void fill(float amount);

    /// Samples that a response may spread over.
    std::uint64_t spread() const noexcept ORVANE_REALTIME { return result.numSamples; }

private:
    ClarityTable::Key keyOf(std::int32_t azimuthDegrees, std::int32_t elevationDegrees,
                            float amount) const noexcept ORVANE_REALTIME;
    std::uint64_t computeAndStore(ClarityTable::Key key, std::int32_t azimuthDegrees,
                                  std::int32_t elevationDegrees) ORVANE_REALTIME;

    const IHrir* hrir;
    bool simple;
    std::uint64_t length;
    std::shared_ptr<ClarityTable> table;
    float clarityAmount = 0; ///< Read by `clarity`.
    std::unique_ptr<IInPlaceProcessor> clarity;
    SampleBuffer result; ///< [2][2 * length], on its way to the table.
};

} // namespace orvane

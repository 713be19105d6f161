// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/IInPlaceProcessor.h"
#include "base/SampleBuffer.h"
#include "binaural/IRmsSpectrum.h"
#include "binaural/PartitionedSpectrum.h"
#include "binaural/fft/RealTransform.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace orvane {

/// Flattens the magnitude spectrum of a stereo response by a controllable amount. Both ears get one real
/// weighting, so their differences and the phases stay.
///
/// Shape   buffer [2][any]; its first `length` samples are analysed, the result spreads over 2 * `length`;
///         what a longer buffer holds behind that is zeroed.
/// Thread  constructed on a building thread, process() on the audio thread.
class ClarityProcessor final : public IInPlaceProcessor {
public:
    /// @param length samples of the HRIR.
    /// @param amount borrowed exponent of the flattening, 0 (none) to 1, read at every run.
    /// @param rmsSpectrumFactory used in the constructor only.
    ClarityProcessor(std::uint64_t length, const float* amount, IRmsSpectrumFactory* rmsSpectrumFactory);

    void process(SampleBuffer& buffer) ORVANE_REALTIME override;

private:
    const float* amount;
    std::uint64_t length;
    float weightLimit;             ///< Linear: 25 dB.
    std::vector<float> magnitudes; ///< [length]
    std::unique_ptr<IRmsSpectrum> rmsSpectrum;
    SampleBuffer timeInput;       ///< [2][2 * length], upper halves always zero.
    SampleBuffer timeOutput;      ///< [2][2 * length]
    PartitionedSpectrum spectra;  ///< [2][length + 1]
    std::vector<float> weights;   ///< [length + 1], the last one always 0: the bin at Nyquist is removed.
    fft::RealTransform transform; ///< Length 2 * length.
};

} // namespace orvane

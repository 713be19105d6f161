// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "binaural/InputHistory.h"
#include "binaural/LayerPlan.h"
#include "binaural/MultiplyAdd.h"
#include "binaural/fft/AlignedArray.h"
#include "binaural/fft/RealTransform.h"

#include <array>
#include <cstdint>
#include <vector>

namespace orvane {

class SampleBuffer;

/// A stretch of a long response in partitions of several blocks, with the work of each period of one partition's
/// length spread over its blocks.
///
///     input      | period p-1 | period p             |
///     work                    | window up to here -> | spectrum, products, both ears' output
///     output                  | of the work before   | of this work, for the length of a partition
///
/// So what is heard in a period comes from input that ended a partition's length before it, which is why the
/// stretch begins two partitions behind the response's start.
///
/// Shape   spectra in tiles of some bins, all partitions of a tile side by side: the loops over partitions read
///         memory straight on, and sums of a tile stay in the first-level cache.
/// Thread  the constructor allocates; everything else is fit for the audio thread.
/// Source  the schedule after W. G. Gardner, "Efficient convolution without input-output delay", J. Audio Eng.
///         Soc. 43, 1995.
class ConvolutionLayer {
public:
    ConvolutionLayer(const LayerShape& shape, std::uint64_t blockSize, const MultiplyAddKernel& kernel);

    /// How far back it looks.
    std::uint64_t historyLength() const noexcept { return delay + 3 * shape.partitionLength + blockSize; }

    /// Takes over its stretch of `impulseResponse` and computes anew what is under way.
    ///
    /// Shape   impulseResponse [2][all of the response].
    void replace(const SampleBuffer& impulseResponse, const InputHistory& history) noexcept ORVANE_REALTIME;

    /// The present block's share of the output.
    ///
    /// Shape   [blockSize]
    const float* output(std::uint64_t ear) const noexcept ORVANE_REALTIME {
        return present[ear].get() + blockInPeriod * blockSize;
    }

    /// Does the work that is due when `samples` of the block behind the last advance() have come in.
    void work(std::uint64_t samples, const InputHistory& history) noexcept ORVANE_REALTIME;

    /// Goes on to the next block; the work of a whole block has to be done.
    void advance(const InputHistory& history) noexcept ORVANE_REALTIME;

private:
    struct Tile {
        std::uint64_t firstBin;
        std::uint64_t binCount;
    };
    using Ears = std::array<fft::AlignedArray<float>, 2>;

    void replacePartition(std::uint64_t partition,
                          const SampleBuffer& impulseResponse) noexcept ORVANE_REALTIME;
    void doPiece(std::uint64_t piece, const InputHistory& history) noexcept ORVANE_REALTIME;
    void transformInput(const InputHistory& history) noexcept ORVANE_REALTIME;
    void takeAndSumTile(std::uint64_t tile) noexcept ORVANE_REALTIME;
    void sumTile(std::uint64_t tile, std::uint64_t newest) noexcept ORVANE_REALTIME;
    void transformBack(std::uint64_t ear, float* target) noexcept ORVANE_REALTIME;
    fft::Complex* inputsOf(std::uint64_t tile) const noexcept ORVANE_REALTIME;
    fft::Complex* responsesOf(std::uint64_t tile) const noexcept ORVANE_REALTIME;

    LayerShape shape;
    std::uint64_t blockSize;
    std::uint64_t delay;      ///< Samples between a window's end and the start of its period.
    std::uint64_t binCount;   ///< Of a spectrum.
    std::uint64_t inputSlots; ///< One more than partitions: the output being heard can be computed anew.
    const MultiplyAddKernel& kernel;
    std::vector<Tile> tiles;
    std::vector<std::uint64_t> costs;                    ///< Of the period's pieces, each with all before it.
    fft::AlignedArray<fft::Complex> inputSpectra;        ///< [tiles][inputSlots][tileBins]
    fft::AlignedArray<fft::Complex> responseSpectra;     ///< [tiles][2 * partition + ear][tileBins]
    std::vector<std::uint64_t> partitions;               ///< Those that are not all zeros, last one first.
    std::vector<SpectrumTerm> terms;                     ///< [partitions]
    std::array<fft::AlignedArray<fft::Complex>, 2> sums; ///< [binCount] for each ear.
    fft::AlignedArray<float> window;                     ///< [transformLength]
    fft::AlignedArray<fft::Complex> inputSpectrum;       ///< [binCount], of the window.
    Ears present;                                        ///< [partitionLength], being heard.
    Ears next;                                           ///< [partitionLength], of the period's work.
    std::uint64_t newestSlot = 0;                        ///< Of the period's window.
    std::uint64_t windowEnd = 0;                         ///< Position in the history.
    std::uint64_t blockInPeriod = 0;
    std::uint64_t piecesDone = 0;
    fft::RealTransform transform;
};

} // namespace orvane

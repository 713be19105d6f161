// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/IHrir.h"
#include "binaural/IBinauralComponentFactory.h"
#include "binaural/IBinauralProcessorBuilder.h"
#include "binaural/IConvolutionFactory.h"
#include "parameters/IReloadParameterSet.h"
#include "parameters/ISpatialParameterSetView.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace orvane {

/// Samples of response for a room, at least one block.
///
/// Units   sampleRate in hertz; the base lengths are samples at 44100 Hz.
/// Source  base lengths chosen by ear, per room; a room with movable walls always has the longest.
std::uint64_t binauralResponseLength(std::uint32_t roomId, bool roomIsDynamic, float sampleRate,
                                     std::uint64_t blockSize) noexcept;

/// Makes the general renderers; the speaker variant derives from it.
class BinauralProcessorBuilder : public IBinauralProcessorBuilder {
public:
    /// @param view, hrir borrowed.
    BinauralProcessorBuilder(float sampleRate, std::uint64_t blockSize, ISpatialParameterSetView* view,
                             std::unique_ptr<IReloadParameterSet> reloadSet,
                             std::unique_ptr<IBinauralComponentFactory> componentFactory,
                             std::unique_ptr<IConvolutionFactory> convolutionFactory, IHrir* hrir);

    std::uint64_t responseLength() const noexcept override;
    std::vector<std::unique_ptr<IInPlaceProcessor>> createStages() const override;
    std::unique_ptr<IUpdateChecker> createUpdateChecker() const override;
    std::unique_ptr<ICrossFader> createCrossFader() const override;
    std::unique_ptr<IConvolution> createConvolution() const override;
    std::unique_ptr<IInPlaceProcessor> createReflectionRenderer() const override;
    std::unique_ptr<IInPlaceProcessor> createDirectRenderer() const override;

protected:
    /// True for the plain two-channel output format, which takes the synthetic responses.
    bool simpleOutput() const;

    /// The model of the room's reflections: with walls of its own, or as designed.
    std::unique_ptr<IReflectionMechanic> createReflectionMechanic() const;

    float sampleRate;
    std::uint64_t blockSize;
    ISpatialParameterSetView* view;
    std::unique_ptr<IReloadParameterSet> reloadSet;
    std::unique_ptr<IBinauralComponentFactory> componentFactory;
    std::unique_ptr<IConvolutionFactory> convolutionFactory;
    std::uint64_t length; ///< Of the response, in samples.
    IHrir* hrir;
};

} // namespace orvane

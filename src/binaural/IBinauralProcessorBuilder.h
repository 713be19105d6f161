// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/IInPlaceProcessor.h"
#include "binaural/IConvolution.h"
#include "binaural/IUpdateChecker.h"
#include "engine/fades/ICrossFader.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace orvane {

/// Makes what one BinauralProcessor owns, for one loudspeaker and one frozen structure.
///
/// Thread  building thread.
/// Errors  every create operation may throw std::bad_alloc.
class IBinauralProcessorBuilder {
public:
    virtual ~IBinauralProcessorBuilder() = default;

    /// Samples of response that are rendered, at least one block.
    virtual std::uint64_t responseLength() const noexcept = 0;

    /// The stages that draw a response, in the order in which they run: direct sound, then reflections if
    /// there are any.
    virtual std::vector<std::unique_ptr<IInPlaceProcessor>> createStages() const = 0;
    virtual std::unique_ptr<IUpdateChecker> createUpdateChecker() const = 0;
    virtual std::unique_ptr<ICrossFader> createCrossFader() const = 0;
    virtual std::unique_ptr<IConvolution> createConvolution() const = 0;

    virtual std::unique_ptr<IInPlaceProcessor> createReflectionRenderer() const = 0;
    virtual std::unique_ptr<IInPlaceProcessor> createDirectRenderer() const = 0;
};

} // namespace orvane

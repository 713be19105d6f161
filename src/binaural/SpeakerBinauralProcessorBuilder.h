// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/IComponentFactory.h"
#include "binaural/BinauralProcessorBuilder.h"
#include "parameters/core/ISpeakerParameterSetView.h"

#include <memory>

namespace orvane::kestrum::core {

/// As the general builder, with the renderers that a loudspeaker of this product uses.
class BinauralProcessorBuilder final : public orvane::BinauralProcessorBuilder {
public:
    /// @param view, hrir, productFactory borrowed.
    BinauralProcessorBuilder(float sampleRate, std::uint64_t blockSize, ISpeakerParameterSetView* view,
                             std::unique_ptr<IReloadParameterSet> reloadSet,
                             std::unique_ptr<IBinauralComponentFactory> componentFactory,
                             std::unique_ptr<IConvolutionFactory> convolutionFactory, IHrir* hrir,
                             const IComponentFactory* productFactory);

    std::unique_ptr<IInPlaceProcessor> createReflectionRenderer() const override;
    std::unique_ptr<IInPlaceProcessor> createDirectRenderer() const override;

private:
    ISpeakerParameterSetView* speakerView;
    const IComponentFactory* productFactory; ///< Makes the filters of the reflections.
};

} // namespace orvane::kestrum::core

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/IHrir.h"
#include "base/SampleBuffer.h"
#include "engine/IEngineManager.h"
#include "engine/assembly/ComponentFactory.h"
#include "parameters/core/IParameterMapper.h"
#include "parameters/core/IParameterSet.h"
#include "parameters/core/ISelectorValue.h"
#include "parameters/core/ISliderValue.h"
#include "parameters/core/SelectorId.h"
#include "support/NoTracker.h"
#include "support/ReverbFiles.h"
#include "support/SphericalHead.h"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace test {

using Channels = std::vector<std::vector<float>>; ///< [channel][frame]

/// First samples of all channels, as a buffer that wraps them wants them.
inline std::vector<float*> channelPointers(Channels& channels) {
    std::vector<float*> pointers(channels.size());
    std::transform(channels.begin(), channels.end(), pointers.begin(),
                   [](auto& channel) { return channel.data(); });
    return pointers;
}

/// Everything of the product but its framework side, wired as the plug-in wires it.
class Product {
public:
    /// @param dataDirectory where the reverb files lie; by default a folder of short made-up ones.
    /// @param options by default those of the product.
    explicit Product(orvane::IHrir* store = nullptr, const std::string& dataDirectory = reverbFolder(),
                     const orvane::RenderOptions& options = {})
        : factory(options), hrir(store != nullptr ? store : &ownHead) {
        using namespace orvane::kestrum::core;
        layouts = factory.createSupportedLayouts();
        speakerSetup = factory.createSelectorValue(selectorId("2.0 +/-30°"));
        scene = factory.createSelectorValue(selectorId("Mix Room"));
        ambience = factory.createSliderValue(50.0f);
        focus = factory.createSliderValue(0.0f);
        headRotation = factory.createAtomicSliderValue(0.0f);
        masterGain = factory.createSliderValue(0.0f);
        parameterSet = factory.createParameterSet(headRotation.get(), std::make_unique<NoTracker>());
        speakerSetupMapper = factory.createSpeakerSetupMapper(speakerSetup.get(), parameterSet.get());
        sceneMapper = factory.createSceneMapper(scene.get(), parameterSet.get());
        masterGainMapper = factory.createMasterGainMapper(masterGain.get(), scene.get(), parameterSet.get());
        focusMapper = factory.createFocusMapper(focus.get(), scene.get(), parameterSet.get());
        ambienceMapper = factory.createAmbienceMapper(ambience.get(), scene.get(), parameterSet.get());
        manager = factory.createEngineManager(speakerSetup.get(), layouts.get(), parameterSet.get(), hrir,
                                              dataDirectory, [this] {
                                                  updateMappers();
                                                  ++reloadsFinished;
                                              });
    }

    void updateMappers() const {
        focusMapper->update();
        ambienceMapper->update();
        masterGainMapper->update();
        sceneMapper->update();
    }

    void chooseLayout(std::string_view name) const {
        speakerSetup->setValue(orvane::kestrum::core::selectorId(name));
    }
    void chooseScene(std::string_view name) const {
        scene->setValue(orvane::kestrum::core::selectorId(name));
    }

    void prepare(std::uint64_t blockSize, double sampleRate) const {
        updateMappers();
        manager->prepare(blockSize, sampleRate);
    }

    /// Renders `input` in host blocks of `hostBlock` samples (the last one may be shorter) and returns two
    /// channels.
    Channels render(const Channels& input, std::uint64_t hostBlock) const {
        const std::uint64_t frames = input.front().size();
        Channels output(2, std::vector<float>(frames));
        Channels bus(std::max<std::size_t>(2, input.size()), std::vector<float>(hostBlock));
        const std::vector<float*> pointers = channelPointers(bus);
        for (std::uint64_t start = 0; start < frames; start += hostBlock) {
            const std::uint64_t count = std::min(hostBlock, frames - start);
            for (std::size_t channel = 0; channel < input.size(); ++channel)
                std::copy_n(input[channel].data() + start, count, bus[channel].data());
            const orvane::SampleBuffer in(pointers.data(), input.size(), count);
            orvane::SampleBuffer out(pointers.data(), pointers.size(), count);
            manager->process(in, out);
            for (std::size_t channel = 0; channel < 2; ++channel)
                std::copy_n(bus[channel].data(), count, output[channel].data() + start);
        }
        return output;
    }

    /// Two for each crossfade: one in its first block, one when its fade begins.
    std::atomic<int> reloadsFinished{0};
    orvane::kestrum::core::ComponentFactory factory;
    SphericalHead ownHead;
    orvane::IHrir* hrir;
    std::unique_ptr<orvane::kestrum::core::ISupportedLayouts> layouts;
    std::unique_ptr<orvane::kestrum::core::ISelectorValue> speakerSetup;
    std::unique_ptr<orvane::kestrum::core::ISelectorValue> scene;
    std::unique_ptr<orvane::kestrum::core::ISliderValue> ambience;
    std::unique_ptr<orvane::kestrum::core::ISliderValue> focus;
    std::unique_ptr<orvane::kestrum::core::ISliderValue> headRotation;
    std::unique_ptr<orvane::kestrum::core::ISliderValue> masterGain;
    std::unique_ptr<orvane::kestrum::core::IParameterSet> parameterSet;
    std::unique_ptr<orvane::kestrum::core::IParameterMapper> speakerSetupMapper;
    std::unique_ptr<orvane::kestrum::core::IParameterMapper> sceneMapper;
    std::unique_ptr<orvane::kestrum::core::IParameterMapper> masterGainMapper;
    std::unique_ptr<orvane::kestrum::core::IParameterMapper> focusMapper;
    std::unique_ptr<orvane::kestrum::core::IParameterMapper> ambienceMapper;
    std::unique_ptr<orvane::IEngineManager> manager;
};

} // namespace test

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/IComponentFactory.h"
#include "base/IHrir.h"
#include "engine/IEngineManager.h"
#include "ipc/IOrvaneParameterClient.h"
#include "parameters/core/IParameterMapper.h"
#include "parameters/core/IParameterSet.h"
#include "parameters/zmtl/Listeners.h"
#include "shell/BusLayouts.h"
#include "ui/IFactory.h"
#include "ui/IParameterPresenter.h"
#include "ui/IProcessor.h"
#include "ui/IProcessorState.h"
#include "ui/toolbar/BrevikTool.h"

#include <juce_audio_processors/juce_audio_processors.h>

#include <atomic>
#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

namespace orvane::kestrum {

/// The plug-in as a host sees it. Does no signal processing of its own:
///
///     host's block --> processBlock --> IEngineManager --> the same block, stereo in channels 0 and 1
///     host's parameters <--> presenters <--> six user values --> mappers --> rendering parameters
///
///     not prepared --prepareToPlay--> running        silence | rendered
///     running --releaseResources--> not prepared
///     any --prepareToPlay fails--> hasError()        silence, or what ran before without a release goes on
///
/// Thread  processBlock() on the host's audio thread, wait-free; everything else on setup threads, hasError()
/// on any.
class Processor final : public juce::AudioProcessor, public IProcessor {
public:
    using ChannelConfigurations = std::initializer_list<const short[2]>;

    /// @param name            shown by the host.
    /// @param factory         may borrow from `componentFactory`, which dies after it.
    /// @param parameterClient the link to a tracker, never null.
    /// @param hrir            borrowed, outlives the processor.
    /// @param configurations  (inputs, outputs); the first is the default bus layout.
    /// @param dataDirectory   asked at each preparation, so that an installation made meanwhile is found.
    /// @throws std::system_error when the background task cannot be started.
    Processor(const juce::String& name, std::unique_ptr<core::IComponentFactory> componentFactory,
              std::unique_ptr<IFactory> factory,
              std::unique_ptr<OrvaneIPC::IOrvaneParameterClient> parameterClient, IHrir* hrir,
              const ChannelConfigurations& configurations, std::function<std::string()> dataDirectory);
    ~Processor() override;
    Processor(const Processor&) = delete;
    Processor& operator=(const Processor&) = delete;

    // juce::AudioProcessor
    const juce::String getName() const override { return name; }
    void prepareToPlay(double newSampleRate, int maximumBlockSize) override;
    void releaseResources() override;
    using juce::AudioProcessor::processBlock;
    void processBlock(juce::AudioBuffer<float>& buffer, juce::MidiBuffer& midi) override;
    /// Deliberate: 0, although rooms have a tail.
    double getTailLengthSeconds() const override { return 0.0; }
    bool acceptsMidi() const override { return false; }
    bool producesMidi() const override { return false; }
    bool isMidiEffect() const override { return false; }
    /// @return null when no editor can be made.
    juce::AudioProcessorEditor* createEditor() override;
    bool hasEditor() const override { return true; }
    int getNumPrograms() override { return 1; }
    int getCurrentProgram() override { return 0; }
    void setCurrentProgram(int) override {}
    /// Deliberate: the one program has no name, though a validator may ask for one.
    const juce::String getProgramName(int) override { return {}; }
    void changeProgramName(int, const juce::String&) override {}
    void getStateInformation(juce::MemoryBlock& destination) override;
    void setStateInformation(const void* data, int size) override;
    void numChannelsChanged() override;
    void processorLayoutsChanged() override;
    bool isBusesLayoutSupported(const BusesLayout& layout) const override;

    // IProcessor
    void addBusesLayoutListener(BusesLayoutListener* listener) override;
    void removeBusesLayoutListener(BusesLayoutListener* listener) override;
    core::ISupportedLayouts* getSupportedLayouts() override { return supportedLayouts.get(); }
    int getNumberOfInputChannels() const override;
    juce::AudioProcessor* getAudioProcessor() override { return this; }
    IProcessorState* getProcessorState() override { return processorState.get(); }
    bool hasError() const noexcept override { return errorOccurred; }
    void getHeadRotation(HeadRotationMatrix& matrix) const override;
    OrvaneIPC::IOrvaneParameterClient* getParameterClient() const override { return parameterClient; }

private:
    void addPresenters();
    void updateRenderingParameters();
    void followBus();
    /// @param buffer no longer than announced; rendered in place.
    void renderBlock(juce::AudioBuffer<float>& buffer);

    juce::String name;
    BrevikPluginTools::BrevikTool brevikTool; ///< Gives each editor its help toolbar.
    zmtl::ListenerSet<BusesLayoutListener> busesLayoutListeners;
    std::unique_ptr<core::IComponentFactory> componentFactory;
    std::unique_ptr<IFactory> factory;
    std::unique_ptr<core::ISupportedLayouts> supportedLayouts;
    BusLayouts busLayouts; ///< The same table for the engines, which take the bus's channels by name.
    std::unique_ptr<IProcessorState> processorState;
    std::atomic<int> inputChannelCount{0};
    std::atomic<bool> prepared{false};
    std::atomic<bool> errorOccurred{false};
    IHrir* hrir;
    double sampleRate = 0.0;
    std::atomic<int> announcedBlockSize{0};             ///< That of the last preparation that succeeded.
    OrvaneIPC::IOrvaneParameterClient* parameterClient; ///< Owned by the parameter set.
    std::function<std::string()> dataDirectory;
    std::unique_ptr<core::IParameterSet> parameterSet;
    std::unique_ptr<core::IParameterMapper> speakerSetupMapper;
    std::unique_ptr<core::IParameterMapper> sceneMapper;
    std::unique_ptr<core::IParameterMapper> masterGainMapper;
    std::unique_ptr<core::IParameterMapper> focusMapper;
    std::unique_ptr<core::IParameterMapper> ambienceMapper;
    std::unique_ptr<IEngineManager> engineManager; ///< After the mappers, which it calls at each crossfade.
    std::unique_ptr<IParameterPresenter> speakerLayoutsPresenter;
    std::unique_ptr<IParameterPresenter> scenesPresenter;
    std::unique_ptr<IParameterPresenter> ambiencePresenter;
    std::unique_ptr<IParameterPresenter> focusPresenter;
    std::unique_ptr<IParameterPresenter> headRotationPresenter;
    std::unique_ptr<IParameterPresenter> masterGainPresenter;
};

} // namespace orvane::kestrum

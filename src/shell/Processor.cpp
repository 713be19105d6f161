// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/Processor.h"

#include "base/SampleBuffer.h"
#include "parameters/core/Scene.h"
#include "ui/Editor.h"
#include "ui/toolbar/WebAddresses.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <string_view>
#include <utility>

namespace orvane::kestrum {

namespace {

/// The next power of two at or above `value`; 0 for 0.
int nextPowerOfTwo(int value) noexcept {
    int bits = value - 1;
    for (const int shift : {1, 2, 4, 8, 16})
        bits |= bits >> shift;
    return static_cast<int>(static_cast<unsigned>(bits) + 1u);
}

/// Whole hertz; 0, which no data set has, for what is no rate at all.
std::int32_t wholeHertz(double sampleRate) noexcept {
    return sampleRate > 0.0 && sampleRate < std::numeric_limits<std::int32_t>::max()
               ? static_cast<std::int32_t>(sampleRate)
               : 0;
}

/// Whether a chunk has the length that its header tells: the framework's reader takes an element whose end
/// has been cut off for a whole one, and the values that were cut off for zeros.
bool isWhole(const void* data, int size) noexcept {
    constexpr int headerSize = 8;
    if (size <= headerSize)
        return false;
    const auto textLength = juce::ByteOrder::littleEndianInt(static_cast<const char*>(data) + 4);
    return static_cast<std::uint32_t>(size - headerSize) >= textLength;
}

} // namespace

Processor::Processor(const juce::String& name, std::unique_ptr<core::IComponentFactory> givenComponentFactory,
                     std::unique_ptr<IFactory> givenFactory,
                     std::unique_ptr<OrvaneIPC::IOrvaneParameterClient> givenParameterClient, IHrir* hrir,
                     const ChannelConfigurations& configurations,
                     std::function<std::string()> givenDataDirectory)
    : juce::AudioProcessor(configurations),
      name(name),
      brevikTool(name.toStdString()),
      componentFactory(std::move(givenComponentFactory)),
      factory(std::move(givenFactory)),
      supportedLayouts(componentFactory->createSupportedLayouts()),
      busLayouts(*supportedLayouts),
      processorState(factory->createProcessorState("ORVANEKESTRUM", supportedLayouts.get())),
      hrir(hrir),
      parameterClient(givenParameterClient.get()),
      dataDirectory(std::move(givenDataDirectory)),
      parameterSet(componentFactory->createParameterSet(processorState->getHeadRotation(),
                                                        std::move(givenParameterClient))),
      speakerSetupMapper(
          componentFactory->createSpeakerSetupMapper(processorState->getSpeakerSetup(), parameterSet.get())),
      sceneMapper(componentFactory->createSceneMapper(processorState->getScene(), parameterSet.get())),
      masterGainMapper(componentFactory->createMasterGainMapper(
          processorState->getMasterGain(), processorState->getScene(), parameterSet.get())),
      focusMapper(componentFactory->createFocusMapper(processorState->getFocus(), processorState->getScene(),
                                                      parameterSet.get())),
      ambienceMapper(componentFactory->createAmbienceMapper(processorState->getAmbience(),
                                                            processorState->getScene(), parameterSet.get())),
      engineManager(componentFactory->createEngineManager(processorState->getSpeakerSetup(), &busLayouts,
                                                          parameterSet.get(), hrir, dataDirectory(),
                                                          [this] { updateRenderingParameters(); })) {
    addPresenters();
    followBus(); // the base class has no way to tell of its first bus
    setLatencySamples(nextPowerOfTwo(getBlockSize()));
}

Processor::~Processor() = default;

void Processor::addPresenters() {
    const auto add = [this](std::unique_ptr<IParameterPresenter>& place,
                            std::unique_ptr<IParameterPresenter> presenter) {
        place = std::move(presenter);
        addParameter(place->releaseParameter());
    };

    std::vector<std::string> layoutNames;
    supportedLayouts->forEach(
        [&](const core::ISupportedLayouts::Properties& layout) { layoutNames.push_back(layout.name); });
    add(speakerLayoutsPresenter,
        factory->createSelectorParameterPresenter("Speaker Layouts", processorState->getSpeakerSetup(),
                                                  std::move(layoutNames)));

    std::vector<std::string> sceneNames;
    for (const auto& preset : core::Scene::presets())
        sceneNames.emplace_back(preset.name);
    add(scenesPresenter, factory->createSelectorParameterPresenter("Scenes", processorState->getScene(),
                                                                   std::move(sceneNames)));

    add(ambiencePresenter, factory->createSliderParameterPresenter("Ambience", processorState->getAmbience(),
                                                                   0.0f, 100.0f, 1.0f));
    add(focusPresenter,
        factory->createSliderParameterPresenter("Focus", processorState->getFocus(), -100.0f, 100.0f, 1.0f));
    add(headRotationPresenter,
        factory->createSliderParameterPresenter("Head Rotation", processorState->getHeadRotation(), -180.0f,
                                                180.0f, 1.0f));
    add(masterGainPresenter, factory->createSliderParameterPresenter(
                                 "Master Gain", processorState->getMasterGain(), -96.0f, 24.0f, 0.1f));
}

/// Pushes what depends on the Scene into the parameters that a running engine reads.
void Processor::updateRenderingParameters() {
    focusMapper->update();
    ambienceMapper->update();
    masterGainMapper->update();
    sceneMapper->update();
}

void Processor::prepareToPlay(double newSampleRate, int maximumBlockSize) {
    sampleRate = newSampleRate;
    blockSize = maximumBlockSize;
    setLatencySamples(nextPowerOfTwo(maximumBlockSize));
    try {
        hrir->load(wholeHertz(sampleRate), dataDirectory());
        // A restored session has not gone through a crossfade, which would have pushed these.
        updateRenderingParameters();
        engineManager->prepare(static_cast<std::uint64_t>(std::max(blockSize, 0)), sampleRate);
        prepared.exchange(true);
        errorOccurred.exchange(false);
    } catch (...) {
        // A host cannot be told why; the editor shows the one warning that there is.
        errorOccurred.exchange(true);
    }
}

void Processor::releaseResources() {
    prepared.exchange(false);
    engineManager->release();
}

void Processor::processBlock(juce::AudioBuffer<float>& buffer, juce::MidiBuffer&) {
    if (!prepared) {
        buffer.clear();
        return;
    }
    const juce::ScopedNoDenormals noDenormals; // flush-to-zero and denormals-are-zero, until the block ends
    float* const* const channels = buffer.getArrayOfWritePointers(); // marks the buffer as not clear
    const auto channelCount = static_cast<std::uint64_t>(buffer.getNumChannels());
    const auto frameCount = static_cast<std::uint64_t>(buffer.getNumSamples());
    // The buffer is as wide as the wider bus. What lies beyond the input bus is not input: with a mono input,
    // the second channel still holds this plug-in's own last output.
    const auto inputCount = std::min(static_cast<std::uint64_t>(getNumberOfInputChannels()), channelCount);
    const SampleBuffer input(channels, inputCount, frameCount);
    SampleBuffer output(channels, channelCount, frameCount);
    try {
        engineManager->process(input, output);
    } catch (...) {
        output.clear(); // nothing is expected to throw; should it, silence is the mildest end
    }
}

juce::AudioProcessorEditor* Processor::createEditor() {
    try {
        auto editor = std::make_unique<Editor>(*this, *componentFactory, *factory);
        brevikTool.attach(*editor, BrevikPluginTools::web::productInfo, BrevikPluginTools::web::downloads,
                          BrevikPluginTools::web::maker);
        return editor.release();
    } catch (...) {
        return nullptr; // no window, then: a host is not to be thrown at
    }
}

void Processor::getStateInformation(juce::MemoryBlock& destination) {
    if (const auto xml = processorState->toValueTree().createXml(); xml != nullptr)
        copyXmlToBinary(*xml, destination);
}

void Processor::setStateInformation(const void* data, int size) {
    if (!isWhole(data, size))
        return;
    if (const auto xml = getXmlFromBinary(data, size); xml != nullptr)
        processorState->fromValueTree(juce::ValueTree::fromXml(*xml));
}

void Processor::numChannelsChanged() {
    const int inputChannelCount = getNumberOfInputChannels();
    busesLayoutListeners.notify(
        [&](BusesLayoutListener& listener) { listener.busesLayoutChanged(inputChannelCount); });
}

/// Lets each layout take the channels of the main input bus by the names that the host gave them.
void Processor::followBus() { busLayouts.followBus(getChannelLayoutOfBus(true, 0)); }

bool Processor::isBusesLayoutSupported(const BusesLayout& layout) const {
    // Any input will do: one that is too narrow for the chosen loudspeakers gives silence, not a refusal.
    return layout.getMainOutputChannelSet() == juce::AudioChannelSet::stereo();
}

void Processor::addBusesLayoutListener(BusesLayoutListener* listener) { busesLayoutListeners.add(listener); }

void Processor::removeBusesLayoutListener(BusesLayoutListener* listener) {
    busesLayoutListeners.remove(listener);
}

int Processor::getNumberOfInputChannels() const { return getMainBusNumInputChannels(); }

void Processor::getHeadRotation(HeadRotationMatrix& matrix) const {
    matrix = parameterSet->getHeadRotation();
}

} // namespace orvane::kestrum

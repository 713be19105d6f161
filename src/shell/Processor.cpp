// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/Processor.h"

#include "base/InputGuard.h"
#include "base/SampleBuffer.h"
#include "parameters/core/Scene.h"
#include "shell/SliderRanges.h"
#include "shell/StateChunk.h"
#include "ui/Editor.h"
#include "ui/toolbar/WebAddresses.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <span>
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

/// The tree with each attribute as the text that it is. The framework's own conversion makes memory of those whose names begin
/// with "base64:", of as many bytes as their text says: gigabytes, if it says so.
juce::ValueTree treeFrom(const juce::XmlElement& xml) {
    juce::ValueTree tree(xml.getTagName());
    for (int index = 0; index < xml.getNumAttributes(); ++index)
        tree.setProperty(xml.getAttributeName(index), xml.getAttributeValue(index), nullptr);
    for (const juce::XmlElement* const child : xml.getChildIterator())
        if (!child->isTextElement())
            tree.appendChild(treeFrom(*child), nullptr);
    return tree;
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

    const auto addSlider = [&](std::unique_ptr<IParameterPresenter>& place, const char* parameterName,
                               core::ISliderValue* value, const SliderRange& range) {
        add(place, factory->createSliderParameterPresenter(parameterName, value, range.minimum, range.maximum,
                                                           range.step));
    };
    addSlider(ambiencePresenter, "Ambience", processorState->getAmbience(), ambienceRange);
    addSlider(focusPresenter, "Focus", processorState->getFocus(), focusRange);
    addSlider(headRotationPresenter, "Head Rotation", processorState->getHeadRotation(), headRotationRange);
    addSlider(masterGainPresenter, "Master Gain", processorState->getMasterGain(), masterGainRange);
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
    setLatencySamples(nextPowerOfTwo(maximumBlockSize));
    try {
        hrir->load(wholeHertz(sampleRate), dataDirectory());
        // A restored session has not gone through a crossfade, which would have pushed these.
        updateRenderingParameters();
        engineManager->prepare(static_cast<std::uint64_t>(std::max(maximumBlockSize, 0)), sampleRate);
        announcedBlockSize = maximumBlockSize;
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
    // A block that is longer than announced comes in pieces: the engine holds no more than that, and would leave the rest of
    // the buffer as it is, which is the unrendered input.
    const int announced = std::max(announcedBlockSize.load(), 1);
    if (buffer.getNumSamples() <= announced) {
        renderBlock(buffer);
        return;
    }
    for (int first = 0; first < buffer.getNumSamples(); first += announced) {
        juce::AudioBuffer<float> piece(buffer.getArrayOfWritePointers(), buffer.getNumChannels(), first,
                                       std::min(announced, buffer.getNumSamples() - first));
        renderBlock(piece);
    }
}

void Processor::renderBlock(juce::AudioBuffer<float>& buffer) {
    float* const* const channels = buffer.getArrayOfWritePointers(); // marks the buffer as not clear
    const auto channelCount = static_cast<std::uint64_t>(buffer.getNumChannels());
    const auto frameCount = static_cast<std::uint64_t>(buffer.getNumSamples());
    // The buffer is as wide as the wider bus. What lies beyond the input bus is not input: with a mono input,
    // the second channel still holds this plug-in's own last output.
    const auto inputCount = std::min(static_cast<std::uint64_t>(getNumberOfInputChannels()), channelCount);
    const SampleBuffer input(channels, inputCount, frameCount);
    SampleBuffer output(channels, channelCount, frameCount);
    silenceFaults(input);
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
    try {
        if (const auto xml = processorState->toValueTree().createXml(); xml != nullptr)
            copyXmlToBinary(*xml, destination);
    } catch (...) {
        destination.reset(); // no memory: an empty chunk changes nothing when it is loaded
    }
}

void Processor::setStateInformation(const void* data, int size) {
    if (data == nullptr || size < 0 ||
        !isReadableState({static_cast<const unsigned char*>(data), static_cast<std::size_t>(size)}))
        return;
    try {
        if (const auto xml = getXmlFromBinary(data, size); xml != nullptr)
            processorState->fromValueTree(treeFrom(*xml));
    } catch (...) {
        return; // no memory for the tree, which is whole before the first value is set
    }
}

/// Takes over which channels the host's bus has. Their count is kept: the audio thread asks for it while a setup thread may be
/// changing the framework's own.
void Processor::followBus() {
    inputChannelCount = getMainBusNumInputChannels();
    busLayouts.followBus(getChannelLayoutOfBus(true, 0));
}

void Processor::numChannelsChanged() {
    followBus(); // before the listeners, who may ask
    const int count = inputChannelCount;
    busesLayoutListeners.notify([&](BusesLayoutListener& listener) { listener.busesLayoutChanged(count); });
}

/// Also when only the names have changed.
void Processor::processorLayoutsChanged() { followBus(); }

bool Processor::isBusesLayoutSupported(const BusesLayout& layout) const {
    // Any input will do: one that is too narrow for the chosen loudspeakers gives silence, not a refusal.
    return layout.getMainOutputChannelSet() == juce::AudioChannelSet::stereo();
}

void Processor::addBusesLayoutListener(BusesLayoutListener* listener) { busesLayoutListeners.add(listener); }

void Processor::removeBusesLayoutListener(BusesLayoutListener* listener) {
    busesLayoutListeners.remove(listener);
}

int Processor::getNumberOfInputChannels() const { return inputChannelCount; }

void Processor::getHeadRotation(HeadRotationMatrix& matrix) const {
    matrix = parameterSet->getHeadRotation();
}

} // namespace orvane::kestrum

// SPDX-License-Identifier: GPL-3.0-or-later
#include "TestProcessor.h"

#include "TestDataFolder.h"
#include "data/TenmarshHrir.h"
#include "data/TenmarshHrirReader.h"
#include "shell/ChannelConfigurations.h"
#include "shell/Factory.h"
#include "support/NoTracker.h"
#include "support/StandInHrir.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <random>
#include <stdexcept>
#include <utility>

#include <gtest/gtest.h>

namespace test {

namespace {

/// The tests are to run where there is no screen; a screen that happens to be there must not be touched. Without the
/// variable the framework would look for the first screen of the machine, which may be another test's.
class NoScreen final : public ::testing::Environment {
public:
    void SetUp() override { setenv("DISPLAY", "none", 1); }
};
const auto* const noScreen = ::testing::AddGlobalTestEnvironment(new NoScreen);

/// A store that has a set for every rate.
class AnyRateHrir final : public test::StandInHrir {
public:
    std::uint64_t length() const noexcept override { return 0; }
    std::uint64_t getResponse(orvane::SampleBuffer&, std::int32_t, std::int32_t,
                              bool) const noexcept override {
        return generation();
    }
};

orvane::IHrir* sharedStore() {
    static orvane::TenmarshHrir store(std::make_unique<orvane::TenmarshHrirReader>());
    return &store;
}

std::unique_ptr<Processor> assemble(std::unique_ptr<core::IComponentFactory> components, orvane::IHrir* hrir,
                                    std::function<std::string()> dataDirectory,
                                    std::unique_ptr<OrvaneIPC::IOrvaneParameterClient> tracker = nullptr) {
    if (tracker == nullptr)
        tracker = std::make_unique<NoTracker>();
    auto factory = std::make_unique<orvane::kestrum::Factory>(components.get());
    return std::make_unique<Processor>("Orvane KESTRUM", std::move(components), std::move(factory),
                                       std::move(tracker), hrir, orvane::kestrum::channelConfigurations,
                                       std::move(dataDirectory));
}

} // namespace

std::unique_ptr<Processor> makeProcessor(std::function<std::string()> dataDirectory, orvane::IHrir* hrir,
                                         std::unique_ptr<OrvaneIPC::IOrvaneParameterClient> tracker) {
    return assemble(std::make_unique<core::ComponentFactory>(), hrir != nullptr ? hrir : sharedStore(),
                    std::move(dataDirectory), std::move(tracker));
}

std::unique_ptr<Processor> makeDryProcessor() {
    auto processor = makeProcessor([] { return TestDataFolder::filled().path(); });
    choose(*processor, "Scenes", "Analytic Dry");
    return processor;
}

std::unique_ptr<Processor> makeProcessor(TestComponentFactory::MakeManager makeManager) {
    static AnyRateHrir store;
    return assemble(std::make_unique<TestComponentFactory>(std::move(makeManager)), &store,
                    [] { return std::string(); });
}

juce::RangedAudioParameter& parameter(Processor& processor, const std::string& name) {
    for (auto* const candidate : processor.getParameters())
        if (candidate->getName(100) == juce::String(name))
            return dynamic_cast<juce::RangedAudioParameter&>(*candidate);
    throw std::invalid_argument("no parameter " + name);
}

float shown(Processor& processor, const std::string& name) {
    const auto& shownParameter = parameter(processor, name);
    return shownParameter.convertFrom0to1(shownParameter.getValue());
}

void setParameter(Processor& processor, const std::string& name, float value) {
    auto& target = parameter(processor, name);
    target.setValueNotifyingHost(target.convertTo0to1(value));
}

void choose(Processor& processor, const std::string& name, const std::string& entry) {
    auto& target = parameter(processor, name);
    const int count = target.getNumSteps();
    for (int index = 0; index < count; ++index) {
        const float normalised = static_cast<float>(index) / static_cast<float>(count - 1);
        if (target.getText(normalised, 0) == juce::String::fromUTF8(entry.c_str())) {
            target.setValueNotifyingHost(normalised);
            return;
        }
    }
    throw std::invalid_argument("no entry " + entry);
}

bool setInputs(Processor& processor, int inputs) {
    juce::AudioProcessor::BusesLayout layout;
    layout.inputBuses.add(juce::AudioChannelSet::discreteChannels(inputs));
    layout.outputBuses.add(juce::AudioChannelSet::stereo());
    return processor.setBusesLayout(layout);
}

void process(Processor& processor, juce::AudioBuffer<float>& buffer) {
    juce::MidiBuffer midi;
    processor.processBlock(buffer, midi);
}

std::vector<float> noise(std::size_t length, std::uint32_t seed) {
    std::mt19937 generator(seed);
    std::vector<float> samples(length);
    for (float& sample : samples) // division by a power of two: the same numbers with every library
        sample = static_cast<float>(static_cast<std::int32_t>(generator())) / 2147483648.0f;
    return samples;
}

juce::AudioBuffer<float> noiseBuffer(int channels, int frames, std::uint32_t seed) {
    juce::AudioBuffer<float> buffer(channels, frames);
    for (int channel = 0; channel < channels; ++channel)
        std::ranges::copy(noise(static_cast<std::size_t>(frames), seed + static_cast<std::uint32_t>(channel)),
                          buffer.getWritePointer(channel));
    return buffer;
}

std::vector<float> render(Processor& processor, const juce::AudioBuffer<float>& input,
                          std::span<const int> blocks) {
    const int frames = input.getNumSamples();
    const int channels = std::max(input.getNumChannels(), 2);
    std::vector<float> rendered(2 * static_cast<std::size_t>(frames));
    std::size_t turn = 0;
    for (int start = 0; start < frames;) {
        const int length = std::min(blocks[turn++ % blocks.size()], frames - start);
        juce::AudioBuffer<float> buffer(channels, length);
        buffer.clear();
        for (int channel = 0; channel < input.getNumChannels(); ++channel)
            buffer.copyFrom(channel, 0, input, channel, start, length);
        process(processor, buffer);
        for (int channel = 0; channel < 2; ++channel)
            std::copy_n(buffer.getReadPointer(channel), length,
                        rendered.begin() + static_cast<std::ptrdiff_t>(channel) * frames + start);
        start += length;
    }
    return rendered;
}

bool isSilent(const juce::AudioBuffer<float>& buffer) {
    for (int channel = 0; channel < buffer.getNumChannels(); ++channel)
        for (int frame = 0; frame < buffer.getNumSamples(); ++frame)
            if (buffer.getReadPointer(channel)[frame] != 0.0f)
                return false;
    return true;
}

bool isFinite(const juce::AudioBuffer<float>& buffer) {
    for (int channel = 0; channel < buffer.getNumChannels(); ++channel)
        for (int frame = 0; frame < buffer.getNumSamples(); ++frame)
            if (!std::isfinite(buffer.getReadPointer(channel)[frame]))
                return false;
    return true;
}

} // namespace test

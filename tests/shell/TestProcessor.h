// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "TestComponentFactory.h"
#include "shell/Processor.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace test {

using orvane::kestrum::Processor;

/// The product's processor over a data folder of the test's own.
/// @param hrir null for one store that, as in the product, all processors of the process share.
/// @param tracker null for a link without one.
std::unique_ptr<Processor>
makeProcessor(std::function<std::string()> dataDirectory, orvane::IHrir* hrir = nullptr,
              std::unique_ptr<OrvaneIPC::IOrvaneParameterClient> tracker = nullptr);

/// The same over the filled folder, with the Scene "Analytic Dry": nothing but direct sound.
std::unique_ptr<Processor> makeDryProcessor();

/// A processor whose engine manager comes from the test; its store of responses accepts every rate.
std::unique_ptr<Processor> makeProcessor(TestComponentFactory::MakeManager makeManager);

/// Writes a host parameter, by name, in its own unit; a selector by the name of its entry.
void setParameter(Processor& processor, const std::string& name, float value);
void choose(Processor& processor, const std::string& name, const std::string& entry);
juce::RangedAudioParameter& parameter(Processor& processor, const std::string& name);

/// What a host parameter shows, in its own unit.
float shown(Processor& processor, const std::string& name);

/// Gives the main input bus `inputs` discrete channels, the output stereo. @return whether the processor
/// agreed.
bool setInputs(Processor& processor, int inputs);

/// Feeds one block in place, `channels` wide.
void process(Processor& processor, juce::AudioBuffer<float>& buffer);

/// Repeatable noise in -1 to 1.
std::vector<float> noise(std::size_t length, std::uint32_t seed);

/// [channels][frames] of noise, every channel its own.
juce::AudioBuffer<float> noiseBuffer(int channels, int frames, std::uint32_t seed);

/// Renders `input` in blocks of the given lengths, over and over; channels 0 and 1 come back, one after the
/// other.
std::vector<float> render(Processor& processor, const juce::AudioBuffer<float>& input,
                          std::span<const int> blocks);

bool isSilent(const juce::AudioBuffer<float>& buffer);
bool isFinite(const juce::AudioBuffer<float>& buffer);

} // namespace test

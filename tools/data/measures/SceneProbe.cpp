// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/measures/SceneProbe.h"

#include "base/IEngine.h"
#include "base/SampleBuffer.h"
#include "data/DataError.h"
#include "data/DataFileExceptions.h"
#include "data/TenmarshHrir.h"
#include "data/TenmarshHrirReader.h"
#include "engine/assembly/ComponentFactory.h"
#include "engine/assembly/EngineBuilder.h"
#include "engine/assembly/EngineFactory.h"
#include "ipc/EmptyHeadRotation.h"
#include "ipc/IOrvaneParameterClient.h"
#include "parameters/core/IParameterMapper.h"
#include "parameters/core/IParameterSet.h"
#include "parameters/core/ISelectorValue.h"
#include "parameters/core/ISliderValue.h"
#include "parameters/core/Scene.h"
#include "parameters/core/SelectorId.h"
#include "room/ReverbFilterFactory.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace orvane::kestrum::tools {

namespace {

constexpr double settleSeconds =
    0.25; ///< The fade-in takes 10 ms, the reverb's gain 25 ms to the last digit.

/// The probe's head never turns, whatever tracker runs on this machine.
class StillHead final : public OrvaneIPC::IOrvaneParameterClient {
public:
    bool isConnected() const noexcept override { return false; }
    OrvaneIPC::IHeadRotationClient& getHeadRotationClient() noexcept override { return rotation; }

private:
    OrvaneIPC::EmptyHeadRotation rotation;
};

/// The user values at their defaults, and what the engine reads of them.
class Controls {
public:
    Controls(std::string_view scene, std::string_view layout, const SceneParts& parts)
        : layouts(factory.createSupportedLayouts()),
          speakerSetup(factory.createSelectorValue(core::selectorId(layout))),
          sceneValue(factory.createSelectorValue(core::selectorId(scene))),
          ambience(factory.createSliderValue(50)),
          focus(factory.createSliderValue(0)),
          headRotation(factory.createAtomicSliderValue(0)),
          masterGain(factory.createSliderValue(0)),
          parameters(factory.createParameterSet(headRotation.get(), std::make_unique<StillHead>())) {
        mappers.push_back(factory.createSceneMapper(sceneValue.get(), parameters.get()));
        mappers.push_back(
            factory.createMasterGainMapper(masterGain.get(), sceneValue.get(), parameters.get()));
        mappers.push_back(factory.createFocusMapper(focus.get(), sceneValue.get(), parameters.get()));
        mappers.push_back(factory.createAmbienceMapper(ambience.get(), sceneValue.get(), parameters.get()));
        const auto& preset = core::Scene::get(sceneValue->getValue());
        parameters->setReflectionsOn(preset.reflectionsOn && parts.reflections, false);
        parameters->setReverbOn(preset.reverbOn && parts.reverb, false);
    }

    std::unique_ptr<IEngine> engine(const ProbeSettings& settings, IHrir* hrir,
                                    const std::string& dataDirectory) {
        core::EngineFactory engines(speakerSetup.get(), layouts.get(), &factory, parameters.get(), hrir,
                                    dataDirectory, std::make_unique<core::EngineBuilder>(),
                                    std::make_unique<ReverbFilterFactory>(), [] {});
        return engines.createEngine(settings.blockSize, settings.sampleRate);
    }

private:
    core::ComponentFactory factory;
    std::unique_ptr<core::ISupportedLayouts> layouts;
    std::unique_ptr<core::ISelectorValue> speakerSetup;
    std::unique_ptr<core::ISelectorValue> sceneValue;
    std::unique_ptr<core::ISliderValue> ambience;
    std::unique_ptr<core::ISliderValue> focus;
    std::unique_ptr<core::ISliderValue> headRotation;
    std::unique_ptr<core::ISliderValue> masterGain;
    std::unique_ptr<core::IParameterSet> parameters;
    std::vector<std::unique_ptr<core::IParameterMapper>> mappers;
};

[[noreturn]] void refuseFolder(const std::string& folder, const std::string& files,
                               const std::string& reason) {
    throw DataError("The " + files + " in \"" + folder + "\" cannot be used (" + reason +
                    "): \"kestrum data check\" says which, \"kestrum doctor\" how to install them.");
}

std::size_t channelCountOf(std::string_view layout) {
    std::size_t count = 0;
    core::ComponentFactory().createSupportedLayouts()->forEach([&](const auto& properties) {
        if (properties.name == layout)
            count = properties.channelCount;
    });
    if (count == 0)
        throw DataError("There is no layout \"" + std::string(layout) +
                        "\": give one of the names that \"kestrum render --help\" lists.");
    return count;
}

void requireScene(std::string_view scene) {
    if (std::ranges::find(core::Scene::presets(), scene, &core::Scene::Preset::name) ==
        core::Scene::presets().end())
        throw DataError("There is no Scene \"" + std::string(scene) +
                        "\": give one of the names that \"kestrum render --help\" lists.");
}

EarResponses difference(const EarResponses& whole, const EarResponses& part) {
    EarResponses result = whole;
    for (std::size_t ear = 0; ear < result.size(); ++ear)
        std::ranges::transform(result[ear], part[ear], result[ear].begin(), std::minus<>());
    return result;
}

/// Runs the engine block by block over silence and then the input, and keeps what comes out for the input.
EarResponses runEngine(IEngine& engine, const std::vector<Samples>& input, const ProbeSettings& settings) {
    const std::size_t block = settings.blockSize;
    const std::size_t length = input.front().size();
    const auto settled =
        (static_cast<std::size_t>(std::ceil(settleSeconds * settings.sampleRate)) / block + 1) * block;
    const std::size_t skipped = settled + block; // one block is the engine's latency
    std::vector<float> memory(std::max<std::size_t>(2, input.size()) * block);
    std::vector<float*> channels;
    for (float* channel = memory.data(); channel < memory.data() + memory.size(); channel += block)
        channels.push_back(channel);
    const SampleBuffer in(channels.data(), input.size(), block);
    SampleBuffer out(channels.data(), channels.size(), block);
    EarResponses result{Samples(length), Samples(length)};
    for (std::size_t start = 0; start < skipped + length; start += block) {
        for (std::size_t channel = 0; channel < input.size(); ++channel)
            for (std::size_t frame = 0; frame < block; ++frame) {
                const std::size_t place = start + frame;
                channels[channel][frame] = place >= settled && place - settled < length
                                               ? static_cast<float>(input[channel][place - settled])
                                               : 0.0f;
            }
        engine.process(in, out);
        for (std::size_t ear = 0; ear < result.size(); ++ear)
            for (std::size_t frame = 0; frame < block; ++frame)
                if (start + frame >= skipped && start + frame - skipped < length)
                    result[ear][start + frame - skipped] = static_cast<double>(channels[ear][frame]);
    }
    return result;
}

} // namespace

/// The measured head at the probe's rate.
class SceneProbe::Head {
public:
    Head(const std::string& folder, double sampleRate) : store(std::make_unique<TenmarshHrirReader>()) {
        try {
            store.load(static_cast<std::int32_t>(sampleRate), folder);
        } catch (const std::exception& error) {
            refuseFolder(folder, "responses of the head", error.what());
        }
    }
    TenmarshHrir store;
};

EarResponses SceneResponses::rest() const { return difference(full, direct); }

SceneProbe::SceneProbe(const std::filesystem::path& folder, const ProbeSettings& settings)
    : dataDirectory(folder.string()),
      probeSettings(settings),
      head(std::make_unique<Head>(dataDirectory, settings.sampleRate)) {}

SceneProbe::~SceneProbe() = default;

EarResponses SceneProbe::render(const std::vector<Samples>& input, std::string_view scene,
                                std::string_view layout, const SceneParts& parts) const {
    requireScene(scene);
    if (const std::size_t count = channelCountOf(layout); input.size() != count)
        throw DataError("The layout \"" + std::string(layout) + "\" has " + std::to_string(count) +
                        " channels, the input " + std::to_string(input.size()) + ": give it as many.");
    Controls controls(scene, layout, parts);
    std::unique_ptr<IEngine> engine;
    try {
        engine = controls.engine(probeSettings, &head->store, dataDirectory);
    } catch (const std::exception& error) {
        refuseFolder(dataDirectory, "responses of the rooms", error.what());
    }
    return runEngine(*engine, input, probeSettings);
}

EarResponses SceneProbe::respond(std::string_view scene, const SceneParts& parts, std::string_view layout,
                                 std::size_t channel) const {
    const auto length =
        static_cast<std::size_t>(std::lround(probeSettings.seconds * probeSettings.sampleRate));
    std::vector<Samples> input(channelCountOf(layout), Samples(length));
    if (channel >= input.size())
        throw DataError("The layout \"" + std::string(layout) + "\" has no channel " +
                        std::to_string(channel) + ": its channels are 0 to " +
                        std::to_string(input.size() - 1) + ".");
    input[channel].front() = 1;
    return render(input, scene, layout, parts);
}

SceneResponses SceneProbe::responses(std::string_view scene, std::string_view layout,
                                     std::size_t channel) const {
    SceneResponses result;
    result.full = respond(scene, {}, layout, channel);
    const EarResponses dry = respond(scene, {.reflections = true, .reverb = false}, layout, channel);
    result.direct = respond(scene, {.reflections = false, .reverb = false}, layout, channel);
    result.reflections = difference(dry, result.direct);
    result.reverb = difference(result.full, dry);
    return result;
}

} // namespace orvane::kestrum::tools

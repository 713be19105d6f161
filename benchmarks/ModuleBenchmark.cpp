// SPDX-License-Identifier: GPL-3.0-or-later
// What the built plug-in costs as a host meets it, beside the engine inside it, in the Scene with the longest late reverb.
#include "EngineRun.h"
#include "Measure.h"
#include "Results.h"
#include "host/PluginInstance.h"
#include "render/Controls.h"
#include "render/Names.h"
#include "support/FlushDenormals.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace {

namespace host = orvane::kestrum::host;
namespace render = orvane::kestrum::render;
using bench::EngineRun;
using bench::HeadAndRooms;
using bench::Results;

constexpr int repetitions = 7;
constexpr double seconds = 4; ///< Of sound, for one figure.
constexpr unsigned busChannels = 16;

/// The plug-in, prepared, with a noise of its own for each channel of its bus: the one that EngineRun plays.
class ModuleRun {
public:
    ModuleRun(const bench::EngineChoice& chosen, std::shared_ptr<host::Module> module)
        : choice(chosen), plugin(std::move(module)), output(2, chosen.blockSize) {
        for (unsigned channel = 0; channel < busChannels; ++channel)
            noise.push_back(test::noise(noiseLength, test::Seed{channel + 1}));
        if (!plugin.setChannelCounts(busChannels, 2))
            throw std::runtime_error("the plug-in refuses a bus of 16 channels");
        const render::Controls controls(plugin, render::layoutChoices(), render::sceneChoices());
        for (const auto& [name, value] :
             {std::pair{"layout", choice.layout}, std::pair{"scene", choice.scene}}) {
            const auto control = controls.resolve(name, value);
            plugin.setParameter(control.id, control.normalized);
        }
        plugin.prepare(bench::sampleRate, static_cast<std::uint32_t>(choice.blockSize),
                       host::ProcessMode::realtime);
    }

    /// @return seconds of the thread.
    double block() {
        if (position + choice.blockSize > noiseLength)
            position = 0;
        std::array<const float*, busChannels> inputs{};
        for (unsigned channel = 0; channel < busChannels; ++channel)
            inputs[channel] = noise[channel].data() + position;
        position += choice.blockSize;
        const double start = bench::threadSeconds();
        plugin.process(inputs, {output.channelPointers, 2}, static_cast<std::uint32_t>(choice.blockSize));
        return bench::threadSeconds() - start;
    }

    /// As EngineRun::share().
    double share(double length) {
        const auto blocks = static_cast<std::uint64_t>(
            std::ceil(length * bench::sampleRate / static_cast<double>(choice.blockSize)));
        double used = 0;
        for (std::uint64_t i = 0; i < blocks; ++i)
            used += block();
        return used * bench::sampleRate / static_cast<double>(blocks * choice.blockSize);
    }

    const orvane::SampleBuffer& lastOutput() const { return output; }

private:
    static constexpr std::size_t noiseLength = 65536;

    bench::EngineChoice choice;
    host::PluginInstance plugin;
    test::Channels noise; ///< [busChannels][noiseLength]
    orvane::SampleBuffer output;
    std::size_t position = 0;
};

/// Equal bits, once both have played the same noise for so long that nothing of the fade at the start is left in
/// the reverb.
void expectOneSound(ModuleRun& module, EngineRun& engine) {
    float peak = 0;
    bool equal = true;
    for (int block = 0; block < 16; ++block) {
        module.block();
        engine.block();
        for (std::uint64_t ear = 0; ear < 2; ++ear)
            for (std::uint64_t i = 0; i < module.lastOutput().numSamples; ++i) {
                const float expected = engine.lastOutput().channelPointers[ear][i];
                peak = std::max(peak, std::abs(expected));
                equal = equal && module.lastOutput().channelPointers[ear][i] == expected;
            }
    }
    if (peak == 0.0f || !equal)
        throw std::runtime_error("the plug-in sounds different from the engine");
}

void run(const Results& results) {
    if (!HeadAndRooms::installed())
        throw std::runtime_error("the data folder is not installed; run scripts/install-data");
    HeadAndRooms data;
    const test::FlushDenormals flush;
    const auto module = std::make_shared<host::Module>(KESTRUM_BUNDLE);
    std::cout << "Percent of a core at 48 kHz in \"Club Large\", nothing moving.\n\n";
    Results::heading({"layout, block", "the built plug-in", "its engine"});
    for (const char* const layout : {"7.1.4", "9.1.6"})
        for (const std::uint64_t blockSize : {32U, 64U, 128U, 512U}) {
            const bench::EngineChoice choice{layout, "Club Large", bench::Reverb::ofScene, blockSize, {}};
            bench::expectSoundOfPlainPath(choice, data);
            ModuleRun plugin(choice, module);
            EngineRun engine(choice, data);
            std::vector<double> ofPlugin, ofEngine;
            for (int i = 0; i < repetitions; ++i) {
                ofPlugin.push_back(plugin.share(seconds));
                ofEngine.push_back(engine.share(seconds));
            }
            expectOneSound(plugin, engine);
            const double share = bench::median(ofPlugin);
            const std::string name = std::string(layout) + ", " + std::to_string(blockSize);
            Results::line({name, bench::number(100 * share), bench::number(100 * bench::median(ofEngine))});
            results.record(name, {{"plugin", share}, {"engine", bench::median(ofEngine)}});
            results.goal("module-" + std::string(layout) + "-" + std::to_string(blockSize), 100 * share);
        }
}

} // namespace

int main(int argumentCount, char** arguments) {
    return bench::runProgram("module", argumentCount, arguments, run);
}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/rooms/ReverbCalibration.h"

#include "data/DataError.h"
#include "data/OnAllCores.h"
#include "data/head/Grid.h"
#include "data/measures/RoomMeasures.h"
#include "data/measures/SceneProbe.h"
#include "parameters/core/Scene.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <string>
#include <system_error>

namespace orvane::kestrum::tools {

namespace {

/// Energy of a sound that is dry plus a gain times wet.
struct MixedEnergy {
    double dry = 0;
    double both = 0;
    double wet = 0;

    double at(double gain) const { return dry + gain * (2 * both + gain * wet); }
};

MixedEnergy mixedEnergy(const EarResponses& dry, const EarResponses& wet, std::size_t from, std::size_t to) {
    MixedEnergy sum;
    for (std::size_t ear = 0; ear < dry.size(); ++ear)
        for (std::size_t frame = from; frame < to; ++frame) {
            sum.dry += dry[ear][frame] * dry[ear][frame];
            sum.both += dry[ear][frame] * wet[ear][frame];
            sum.wet += wet[ear][frame] * wet[ear][frame];
        }
    return sum;
}

double decibels(double energies) { return 10 * std::log10(energies); }

/// A Scene as far as the level of its reverb matters.
struct RenderedScene {
    RoomTarget target;
    int room = 0;
    double decaySeconds = 0;
    double direct = 0;
    MixedEnergy early; ///< Of everything, up to 50 ms behind the direct sound.
    MixedEnergy late;
    MixedEnergy rest; ///< Of everything but the direct sound.

    double clarityDb(double gain) const { return decibels(early.at(gain) / late.at(gain)); }
    double directToRestDb(double gain) const { return decibels(direct / rest.at(gain)); }
};

RenderedScene renderScene(const RoomTarget& target, const std::filesystem::path& folder) {
    constexpr double earlySeconds = 0.05;
    const SceneProbe probe(folder);
    const double rate = probe.settings().sampleRate;
    const SceneResponses parts = probe.responses(target.scene);
    EarResponses dry = parts.direct;
    for (std::size_t ear = 0; ear < dry.size(); ++ear)
        std::ranges::transform(dry[ear], parts.reflections[ear], dry[ear].begin(), std::plus<>());
    const std::size_t end = dry[leftEar].size();
    const std::size_t split = onsetOf(dry) + static_cast<std::size_t>(earlySeconds * rate);
    const auto presets = core::Scene::presets();
    const auto preset = std::ranges::find(presets, target.scene, &core::Scene::Preset::name);
    return {target,
            static_cast<int>(preset->roomType),
            midDecaySeconds(octaveDecayTimes(parts.reverb, rate)),
            mixedEnergy(parts.direct, parts.reverb, 0, end).dry,
            mixedEnergy(dry, parts.reverb, 0, split),
            mixedEnergy(dry, parts.reverb, split, end),
            mixedEnergy(parts.reflections, parts.reverb, 0, end)};
}

double gainOf(double levelDb) { return std::pow(10.0, levelDb / 20); }

constexpr double levelStepDb = 0.05;

bool clarityCanBeMet(const RenderedScene& scene, const LevelRange& range) {
    for (double level = range.from; level <= range.to; level += levelStepDb)
        if (std::abs(scene.clarityDb(gainOf(level)) - scene.target.clarity50Db) <= clarityToleranceDb)
            return true;
    return false;
}

/// What a level costs: clarity beyond half of its tolerance by far more than the direct sound's level.
double costOf(const RenderedScene& scene, double gain, bool clarityCounts) {
    constexpr double clarityWeight = 100;
    const double direct = scene.directToRestDb(gain) - scene.target.directToRestDb;
    const double clarity = std::abs(scene.clarityDb(gain) - scene.target.clarity50Db);
    const double beyond = clarityCounts ? std::max(0.0, clarity - clarityToleranceDb / 2) : 0.0;
    return clarityWeight * beyond * beyond + direct * direct;
}

double bestLevelDb(int room, const std::vector<RenderedScene>& scenes, const LevelRange& range,
                   bool clarityCountsAtAll = true) {
    std::vector<std::pair<const RenderedScene*, bool>> own;
    for (const RenderedScene& scene : scenes)
        if (scene.room == room)
            own.emplace_back(&scene, clarityCountsAtAll && clarityCanBeMet(scene, range));
    double best = 0;
    double lowest = std::numeric_limits<double>::infinity();
    for (double level = range.from; level <= range.to; level += levelStepDb) {
        double cost = 0;
        for (const auto& [scene, clarityCounts] : own)
            cost += costOf(*scene, gainOf(level), clarityCounts);
        if (cost < lowest) {
            lowest = cost;
            best = level;
        }
    }
    return best;
}

SceneFigures figuresOf(const RenderedScene& scene, double level) {
    const double gain = gainOf(level);
    return {scene.target.scene,
            scene.room,
            level,
            scene.decaySeconds,
            scene.target.decaySeconds,
            scene.clarityDb(gain),
            scene.target.clarity50Db,
            scene.directToRestDb(gain),
            scene.target.directToRestDb};
}

void scale(ReverbEntry& entry, double gain) {
    for (Samples& ear : entry.ears)
        for (double& sample : ear)
            sample *= gain;
}

constexpr const char* trialRemedy = " cannot be made: let TMPDIR name a folder that you may write to.";

/// A folder of its own under the system's temporary one, for as long as it lives.
class TrialFolder {
public:
    TrialFolder() {
        std::error_code failure;
        std::string name = (std::filesystem::temp_directory_path(failure) / "kestrum-trial-XXXXXX").string();
        if (failure || mkdtemp(name.data()) == nullptr)
            throw DataError("A temporary folder" + std::string(trialRemedy));
        path = name;
    }
    ~TrialFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }
    TrialFolder(const TrialFolder&) = delete;
    TrialFolder& operator=(const TrialFolder&) = delete;

    std::filesystem::path path;
};

/// Puts the head's file and the rooms' under trial into a folder.
void fill(const TrialFolder& trial, const std::vector<ReverbEntry>& master,
          const std::filesystem::path& folder) {
    const std::filesystem::path copy = trial.path / responseFiles[1].name;
    std::error_code failure;
    std::filesystem::copy_file(folder / responseFiles[1].name, copy, failure);
    if (failure)
        throw DataError("A copy \"" + copy.string() + "\" of the head" + trialRemedy);
    writeReverbSet({reverbFiles[1], master}, trial.path);
}

} // namespace

LevelRange ownRoomLevelRange(int room) {
    constexpr double further = 12;
    const LevelRange range = levelRange(room);
    return {range.from - further, range.to + further};
}

LevelRange levelRange(int room) {
    constexpr int van =
        25; // the product plays it 18 dB louder than its like, by its own gain and by its Scene's
    constexpr double either = 6;
    const double middle = room == van ? -18 : 0;
    return {middle - either, middle + either};
}

std::vector<SceneFigures> calibrateLevels(std::vector<ReverbEntry>& master,
                                          const std::filesystem::path& folder) {
    const auto targets = roomTargets();
    std::vector<RenderedScene> scenes(targets.size());
    {
        const TrialFolder trial;
        fill(trial, master, folder);
        onAllCores(targets.size(),
                   [&](std::size_t index) { scenes[index] = renderScene(targets[index], trial.path); });
    }
    std::vector<SceneFigures> figures;
    for (const RenderedScene& scene : scenes) {
        const double level = bestLevelDb(scene.room, scenes, levelRange(scene.room));
        figures.push_back(figuresOf(scene, level));
    }
    for (ReverbEntry& entry : master) {
        const auto figure = std::ranges::find(figures, entry.room, &SceneFigures::room);
        if (figure == figures.end())
            continue;
        scale(entry, gainOf(figure->levelDb));
    }
    return figures;
}

SceneFigures calibrateLevel(ReverbEntry& entry, const RoomTarget& target, const LevelRange& range,
                            bool clarityCounts, const std::filesystem::path& folder) {
    const TrialFolder trial;
    fill(trial, {entry}, folder);
    const RenderedScene scene = renderScene(target, trial.path);
    const double level = bestLevelDb(scene.room, {scene}, range, clarityCounts);
    scale(entry, gainOf(level));
    return figuresOf(scene, level);
}

} // namespace orvane::kestrum::tools

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "TestProcessor.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <string>

namespace test {

inline constexpr double playedRate = 48000;
inline constexpr int playedBlock = 256;

/// What went wrong with an instance, as the value of a process that watch() looks after; 0 and 1 are the two ways in which
/// nothing did.
enum Verdict : int {
    refusedAndRecovered, ///< Muted and flagged; played again once the data was whole and the host prepared again.
    playedThroughout,     ///< The fault did not matter.
    flagWithoutMute = 10, ///< Or a mute without the flag.
    notFinite,
    didNotRecover,
    silentWithOldEngine,
    flagFromRebuild,
    wrongSetUp,
};

/// The files that an instance reads at 48 kHz, whole, in a folder that anybody may enter.
class DataFiles {
public:
    explicit DataFiles(const std::filesystem::path& folder) : folder(folder) {}

    std::filesystem::path responses() const { return folder / "OVNdata121.dat"; }
    std::filesystem::path reverb() const { return folder / "OVNdata511.dat"; }
    std::string path() const { return folder.string(); }

    /// Puts whole files there, whatever lies in their place.
    void mend() const;

private:
    std::filesystem::path folder;
};

/// An instance over a folder and a store of its own, stereo in, not prepared, in a Scene with reverb.
class PlayingInstance {
public:
    explicit PlayingInstance(std::string dataFolder);
    ~PlayingInstance();
    PlayingInstance(const PlayingInstance&) = delete;
    PlayingInstance& operator=(const PlayingInstance&) = delete;

    void prepare() { processor->prepareToPlay(playedRate, playedBlock); }
    void release() { processor->releaseResources(); }
    void chooseScene(const std::string& scene) { choose(*processor, "Scenes", scene); }
    bool hasError() const { return processor->hasError(); }

    struct Heard {
        bool silent = true;
        bool finite = true;
    };

    /// Plays noise for so many blocks.
    Heard play(int blocks);

private:
    std::unique_ptr<orvane::IHrir> store;
    std::unique_ptr<Processor> processor;
    juce::AudioBuffer<float> noise;
};

/// A first preparation over what is wrong already, then one over whole files.
/// @param beforeSecond ends the fault.
Verdict firstBuild(PlayingInstance& instance, const std::function<void()>& beforeSecond);

/// Prepares, plays, and asks for a rebuild that meets a fault.
/// @param fault comes between the preparation and the rebuild.
/// @return refusedAndRecovered where the old engine plays on, playedThroughout where there is a new one.
Verdict rebuildOver(PlayingInstance& instance, const std::function<void()>& fault);

/// Threads of this process.
int threadCount();

/// A number from the environment: the release tier runs the same tests with larger ones.
int countFromEnvironment(const char* name, int otherwise);

} // namespace test

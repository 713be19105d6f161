// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "check/Survey.h"

#include <filesystem>
#include <span>
#include <string>
#include <vector>

namespace orvane::kestrum::check {

/// One Scene of one mix: a command that renders it, and where its result lies. The command is one process of
/// "kestrum render" without any random choice; run anywhere on the same files it writes the same sound.
struct SceneJob {
    std::string scene;           ///< Name in the table of Scenes.
    std::filesystem::path sound; ///< Stereo WAV, 32-bit float.
    std::filesystem::path facts; ///< JSON that "kestrum render" writes once the sound is whole.
    std::vector<std::string> command;
};

/// What stands at the place of a job's result.
enum class JobResult { missing, ready, other }; ///< other: of other sources or another layout.

/// The sixteen jobs in the order of the Scenes.
/// @param results where the sounds go.
/// @param program the running program, which renders too.
/// @param plugin  bundle to load; empty for the program's own choice.
std::vector<SceneJob> sceneJobs(const Mix& mix, const std::string& layout,
                                const std::filesystem::path& results, const std::filesystem::path& program,
                                const std::filesystem::path& plugin);

/// A sound counts as ready only with facts that name this layout and just these sources: a process that was stopped leaves
/// no facts.
/// @param sources see render::sourcesText().
JobResult resultOf(const SceneJob& job, const std::string& layout, const std::string& sources);

/// The command as a line for the shell.
std::string shellLine(std::span<const std::string> command);

} // namespace orvane::kestrum::check

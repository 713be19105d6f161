// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/SceneJobs.h"

#include "render/Names.h"

#include <nlohmann/json.hpp>

#include <fstream>
#include <string_view>

namespace orvane::kestrum::check {

namespace {

bool plainInTheShell(std::string_view word) {
    constexpr std::string_view plain =
        "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-_=+,./:@%";
    return !word.empty() && word.find_first_not_of(plain) == std::string_view::npos;
}

std::string forShell(std::string_view word) {
    if (plainInTheShell(word))
        return std::string(word);
    std::string text = "'";
    for (const char letter : word)
        text += letter == '\'' ? std::string("'\\''") : std::string(1, letter);
    return text + "'";
}

/// @return true when the job's sound is at least as large as the frames that its facts tell of.
bool whole(const SceneJob& job, const nlohmann::json& facts) {
    constexpr std::uintmax_t bytesPerFrame = 8;
    std::error_code unreadable;
    const std::uintmax_t size = file_size(job.sound, unreadable);
    return !unreadable && size >= facts.at("outputFrames").get<std::uintmax_t>() * bytesPerFrame;
}

} // namespace

std::vector<SceneJob> sceneJobs(const Mix& mix, const std::string& layout,
                                const std::filesystem::path& results, const std::filesystem::path& program,
                                const std::filesystem::path& plugin) {
    std::vector<SceneJob> jobs;
    for (const render::Choice& scene : render::sceneChoices().all()) {
        const auto place = std::filesystem::absolute(results).lexically_normal() / scene.name;
        SceneJob job{scene.name, place, place, {}};
        job.sound += ".wav";
        job.facts += ".json";
        job.command = {
            program.string(), "render",  mix.path.string(), job.sound.string(), "--layout",
            layout,           "--scene", scene.name,        "--json",           job.facts.string()};
        if (!plugin.empty())
            job.command.insert(job.command.end(), {"--plugin", std::filesystem::absolute(plugin).string()});
        jobs.push_back(std::move(job));
    }
    return jobs;
}

JobResult resultOf(const SceneJob& job, const std::string& layout, const std::string& sources) {
    std::ifstream file(job.facts);
    if (!file)
        return JobResult::missing;
    try {
        const auto facts = nlohmann::json::parse(file);
        const bool same = facts.at("layout") == layout && facts.at("scene") == job.scene &&
                          facts.contains("sources") && facts["sources"] == nlohmann::json::parse(sources);
        if (!same)
            return JobResult::other;
        return whole(job, facts) ? JobResult::ready : JobResult::missing;
    } catch (const nlohmann::json::exception&) {
        return JobResult::missing; // cut off while it was written
    }
}

std::string shellLine(std::span<const std::string> command) {
    std::string line;
    for (const std::string& word : command)
        line += (line.empty() ? "" : " ") + forShell(word);
    return line;
}

} // namespace orvane::kestrum::check

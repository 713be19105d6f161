// SPDX-License-Identifier: GPL-3.0-or-later
#include "track/MountingFile.h"

#include "track/TrackError.h"

#include <nlohmann/json.hpp>

#include <array>
#include <cstdlib>
#include <fstream>
#include <iterator>

#include <unistd.h>

namespace orvane::kestrum::track {

namespace {

Rotation readRotation(const nlohmann::json& numbers) {
    const auto [w, x, y, z] = numbers.get<std::array<double, 4>>();
    const auto rotation = normalised({w, x, y, z});
    if (!rotation)
        throw std::invalid_argument("no rotation");
    return *rotation;
}

} // namespace

std::filesystem::path mountingFile() {
    const auto variable = [](const char* name) {
        const char* const value = std::getenv(name);
        return std::filesystem::path(value != nullptr ? value : "");
    };
    const auto inFolder = std::filesystem::path("orvane-kestrum") / "sensors.json";
    // By the standard of these variables, one that is no absolute path counts as not set.
    if (const auto folder = variable("XDG_CONFIG_HOME"); folder.is_absolute())
        return folder / inFolder;
    if (const auto home = variable("HOME"); home.is_absolute())
        return home / ".config" / inFolder;
    throw TrackError("There is no folder to keep a calibration in: set HOME or XDG_CONFIG_HOME.");
}

Mountings readMountings(const std::filesystem::path& path) {
    std::error_code failure;
    if (!std::filesystem::exists(path, failure) && !failure)
        return {};
    std::ifstream file(path);
    if (!file)
        throw TrackError("The calibration in \"" + path.string() +
                         "\" cannot be read: make it readable, or name another folder in XDG_CONFIG_HOME.");
    try {
        Mountings mountings;
        const auto json = nlohmann::json::parse(file);
        for (const auto& [kind, numbers] : json.at("mountings").items())
            mountings[kind] = readRotation(numbers);
        return mountings;
    } catch (const std::exception&) {
        throw TrackError("The calibration in \"" + path.string() +
                         "\" is damaged: mend it, or move it away and calibrate anew with the key c.");
    }
}

void writeMountings(const std::filesystem::path& path, const Mountings& mountings) {
    nlohmann::ordered_json json;
    json["mountings"] = nlohmann::ordered_json::object();
    for (const auto& [kind, rotation] : mountings)
        json["mountings"][kind] = {rotation.w, rotation.x, rotation.y, rotation.z};
    std::error_code failure;
    std::filesystem::create_directories(path.parent_path(), failure);
    const std::filesystem::path fresh = path.string() + "." + std::to_string(getpid());
    std::ofstream file(fresh);
    file << json.dump(2) << "\n";
    file.close();
    if (!file.fail())
        std::filesystem::rename(fresh, path, failure);
    if (file.fail() || failure) {
        std::filesystem::remove(fresh, failure);
        throw TrackError("The calibration cannot be written to \"" + path.string() +
                         "\": make room there, or name another folder in XDG_CONFIG_HOME.");
    }
}

} // namespace orvane::kestrum::track

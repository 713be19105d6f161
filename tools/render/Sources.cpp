// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/Sources.h"

#include "host/Module.h"

#include <nlohmann/json.hpp>

#include <chrono>
#include <fstream>

namespace orvane::kestrum::render {

namespace {

using Json = nlohmann::ordered_json;

Json stateOf(const std::filesystem::path& path) {
    std::error_code missing;
    const std::uintmax_t bytes = file_size(path, missing);
    if (missing)
        return nullptr;
    const auto written = last_write_time(path, missing);
    if (missing)
        return nullptr;
    const auto sinceEpoch = std::chrono::file_clock::to_sys(written).time_since_epoch();
    return {{"path", std::filesystem::absolute(path).lexically_normal().string()},
            {"bytes", bytes},
            {"writtenNanoseconds", std::chrono::duration_cast<std::chrono::nanoseconds>(sinceEpoch).count()}};
}

Json aboutIn(const std::filesystem::path& folder) {
    std::ifstream file(folder / "about.json");
    const Json about = Json::parse(file, nullptr, false);
    return about.is_discarded() ? Json(nullptr) : about;
}

} // namespace

std::string sourcesText(const std::filesystem::path& input, const std::filesystem::path& bundle,
                        const std::filesystem::path& data) {
    std::error_code ignored;
    Json sources;
    sources["input"] = stateOf(input);
    sources["plugin"] = stateOf(host::Module::binaryOf(bundle));
    sources["dataFolder"] = weakly_canonical(data, ignored).string();
    sources["dataAbout"] = aboutIn(data);
    return sources.dump(-1, ' ', false, Json::error_handler_t::replace);
}

} // namespace orvane::kestrum::render

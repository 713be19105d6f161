// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/StagedFiles.h"

#include "check/CheckError.h"

namespace orvane::kestrum::check {

namespace {

std::filesystem::path besideIts(std::filesystem::path place) { return place += ".part"; }

} // namespace

StagedFiles::~StagedFiles() {
    std::error_code ignored;
    for (const auto& place : places)
        std::filesystem::remove(besideIts(place), ignored);
}

std::filesystem::path StagedFiles::add(const std::filesystem::path& place) {
    places.push_back(place);
    return besideIts(place);
}

void StagedFiles::publish() {
    while (!places.empty()) {
        std::error_code failure;
        std::filesystem::rename(besideIts(places.front()), places.front(), failure);
        if (failure)
            throw CheckError("The file \"" + places.front().string() + "\" cannot be put into its place (" +
                             failure.message() + "): make way for it, and run the command again.");
        places.erase(places.begin());
    }
}

} // namespace orvane::kestrum::check

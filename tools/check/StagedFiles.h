// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <vector>

namespace orvane::kestrum::check {

/// Files that belong together: each is written beside its place, and all are put there once the last is whole. Until then
/// what was there before stays; those that are never put there are removed.
class StagedFiles {
public:
    StagedFiles() = default;
    StagedFiles(const StagedFiles&) = delete;
    StagedFiles& operator=(const StagedFiles&) = delete;
    ~StagedFiles();

    /// @return where to write the file for `place` meanwhile.
    std::filesystem::path add(const std::filesystem::path& place);
    /// Puts the files into their places, in the order in which they were added.
    /// @throws CheckError when one cannot be put there.
    void publish();

private:
    std::vector<std::filesystem::path> places; ///< Of those not yet there.
};

} // namespace orvane::kestrum::check

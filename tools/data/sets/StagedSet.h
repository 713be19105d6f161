// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>

namespace orvane::kestrum::tools {

/// Keeps every other program from changing the sets of the machine while it lives. Held for moments only: it is waited for.
class StoreLock {
public:
    /// @param place the folder that holds the sets.
    /// @throws DataError when it cannot be locked.
    explicit StoreLock(const std::filesystem::path& place);
    ~StoreLock();
    StoreLock(const StoreLock&) = delete;
    StoreLock& operator=(const StoreLock&) = delete;

private:
    int descriptor = -1;
};

/// A folder for a set in the making, on the file system of the sets. It is locked while it lives, and gone afterwards
/// unless the store has taken it over.
class StagedSet {
public:
    /// Makes an empty one. What interrupted makers have left behind is removed first.
    /// @param place the folder that holds the sets; its StoreLock is taken.
    /// @throws DataError when there is no room or no lock to be had.
    explicit StagedSet(const std::filesystem::path& place);
    ~StagedSet();
    StagedSet(StagedSet&& other) noexcept;
    StagedSet& operator=(StagedSet&&) = delete;
    StagedSet(const StagedSet&) = delete;
    StagedSet& operator=(const StagedSet&) = delete;

    const std::filesystem::path& folder() const { return path; }

    /// The folder has got a name of its own and stays.
    void release() { path.clear(); }

private:
    std::filesystem::path path;
    int lock = -1; ///< Open descriptor of the folder.
};

/// A name among the sets for what is to be removed: whatever ends the program meanwhile, the next maker finishes it.
std::filesystem::path nameForRemoval(const std::filesystem::path& place);

/// `wanted`, or with a number behind it the first that nothing has yet.
std::filesystem::path unusedName(const std::filesystem::path& wanted);

} // namespace orvane::kestrum::tools

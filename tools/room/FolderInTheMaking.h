// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <csignal>
#include <filesystem>

namespace orvane::kestrum::tools {

/// Lets the signals by which a user or the system ends a program wait as long as it lives; they take effect at its end.
/// Those that are ignored stay so.
///
/// Thread  the one that makes it, and those that this one starts.
class HeldSignals {
public:
    HeldSignals();
    ~HeldSignals();
    HeldSignals(const HeldSignals&) = delete;
    HeldSignals& operator=(const HeldSignals&) = delete;

    bool waiting() const;

private:
    sigset_t held{};
    sigset_t before{};
};

/// A folder beside its place, gone with all its files unless it is put there. Ctrl-C waits until the one or the other has
/// happened: to fill it takes about a second.
class FolderInTheMaking {
public:
    /// @throws DataError when no folder can be made there.
    explicit FolderInTheMaking(const std::filesystem::path& place);
    ~FolderInTheMaking();
    FolderInTheMaking(const FolderInTheMaking&) = delete;
    FolderInTheMaking& operator=(const FolderInTheMaking&) = delete;

    const std::filesystem::path& folder() const { return path; }

    /// Puts it to its place, where an empty folder gives way.
    /// @throws DataError when something else is there, or when the program has been told to end.
    void finish();

private:
    [[noreturn]] void refuse() const;

    HeldSignals signals; ///< First, so that they are let go when the folder is gone.
    std::filesystem::path target;
    std::filesystem::path path; ///< Empty once it is in its place.
};

} // namespace orvane::kestrum::tools

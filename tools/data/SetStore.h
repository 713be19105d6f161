// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::kestrum::tools {

/// One complete set of data files on this machine.
struct InstalledSet {
    std::string name; ///< As it was given when the set was made: the folder's without the digits behind it.
    std::filesystem::path folder;
    bool packaged = false; ///< Belongs to a package and is not ours to change.
    bool used = false;     ///< The plug-in reads this one.
};

/// A folder for a set in the making, on the file system of the sets. It is locked while it lives, and gone afterwards
/// unless the store has taken it over.
class StagedSet {
public:
    explicit StagedSet(std::filesystem::path made);
    ~StagedSet();
    StagedSet(StagedSet&& other) noexcept;
    StagedSet& operator=(StagedSet&&) = delete;
    StagedSet(const StagedSet&) = delete;
    StagedSet& operator=(const StagedSet&) = delete;

    const std::filesystem::path& folder() const { return path; }

private:
    friend class SetStore;
    std::filesystem::path path;
    int lock = -1; ///< Open descriptor of the folder.
};

/// The sets of this machine, and the link by which the plug-in finds the one in use:
///
///     /opt/Tenmarsh/OrvaneVSTPlugin/data      ->  sets/mine-0123abcd
///     /opt/Tenmarsh/OrvaneVSTPlugin/sets/         sets made here: mine-0123abcd, kemar-b2c44305, ...
///     /usr/share/orvane-kestrum/sets/             sets of packages: kemar
///
/// A set's folder gets its name when it is whole and never changes afterwards. The link is replaced by one rename, so a
/// running plug-in meets the old set or the new one. Whatever ends the program on the way, the link stays whole.
///
/// Thread  none of its own; several programs may work on one store at a time.
class SetStore {
public:
    SetStore(std::filesystem::path rootFolder, std::filesystem::path packagedFolder);

    /// This machine's. For tests KESTRUM_DATA_ROOT and KESTRUM_PACKAGED_SETS name other folders.
    static SetStore ofThisMachine();

    std::filesystem::path link() const { return root / "data"; }

    /// All sets, sorted by name, those made here before those of packages.
    std::vector<InstalledSet> sets() const;

    /// The set by its name, its folder's name or its whole path. Where several were made under one name, the latest; a set
    /// made here before one of a package.
    /// @throws DataError that names the sets there are.
    InstalledSet find(const std::string& name) const;

    /// Where the link leads, or nothing where there is no link.
    std::optional<std::filesystem::path> linked() const;

    /// An empty folder to make a set in; what interrupted makers have left behind is removed first.
    /// @throws DataError when the store cannot be written: before any long work.
    StagedSet stage() const;

    /// Gives a finished set its name, "NAME-" and eight digits of what about.json says, and puts all of it on the disk.
    /// Older sets of the same name that are not in use are removed.
    /// @return the set's folder.
    std::filesystem::path publish(StagedSet staged, const std::string& name) const;

    /// Makes the link lead to a set. The one before stays where it is; a plain folder in the link's place is kept among the
    /// sets.
    /// @throws DataError when that cannot be done; nothing has changed then.
    void use(const InstalledSet& set) const;

private:
    std::filesystem::path root;
    std::filesystem::path packaged;
};

/// @throws DataError for a name that would leave the folder or hide in it.
void requireSetName(std::string_view name);

} // namespace orvane::kestrum::tools

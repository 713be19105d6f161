// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/sets/StagedSet.h"

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

/// What the sets of one name have in common, so that none takes the place of another that cannot be made again in a moment.
enum class SetKind {
    head,   ///< Made from a measured head, for any headphones or for some.
    ownRoom ///< With a room that a user has described or measured.
};

/// The sets of this machine, and the link by which the plug-in finds the one in use:
///
///     /opt/Tenmarsh/OrvaneVSTPlugin/data      ->  sets/mine-0123abcd
///     /opt/Tenmarsh/OrvaneVSTPlugin/sets/         sets made here: mine-0123abcd, kemar-b2c44305, ...
///     /usr/share/orvane-kestrum/sets/             sets of packages: kemar
///
/// A set's folder gets its name when it is whole and never changes afterwards, but for the time of its about.json, which
/// says which set of a name is the latest. The link is replaced by one rename, so a running plug-in meets the old set or the
/// new one. Whatever ends the program on the way, the link stays whole.
///
/// Thread  none of its own; several programs may work on one store at a time: each change is made under a lock.
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

    /// The sets that were made here under a name, the latest first.
    std::vector<InstalledSet> madeHere(const std::string& name) const;

    /// Where the link leads, or nothing where there is no link.
    std::optional<std::filesystem::path> linked() const;

    /// Refuses a name whose latest set is of another kind.
    /// @throws DataError then.
    void requireKind(const std::string& name, SetKind kind) const;

    /// An empty folder to make a set in. Folders that are missing are made for everybody to read, whatever the umask.
    /// @throws DataError when the store cannot be written: before any long work.
    StagedSet stage() const;

    /// Gives a finished set its name, "NAME-" and eight digits of what about.json says, and puts all of it on the disk. It
    /// is the latest of its name; those before stay.
    /// @return the set's folder.
    /// @throws DataError when it cannot be done, or sets of that name are of another kind.
    std::filesystem::path publish(StagedSet staged, const std::string& name) const;

    /// Makes a set that was made before the latest of its name again.
    /// @throws DataError when the store cannot be written.
    void makeLatest(const InstalledSet& set) const;

    /// Removes sets of a name that can be made again: neither the latest two, nor the one in use, nor any with a room of a
    /// user's own.
    /// @return those that are gone.
    std::vector<InstalledSet> removeOlder(const std::string& name) const;

    /// Makes the link lead to a set. The one before stays where it is; a plain folder in the link's place is kept among the
    /// sets.
    /// @throws DataError when that cannot be done; nothing has changed then.
    void use(const InstalledSet& set) const;

    /// Keeps other programs from changing the sets, such as while one is copied. stage() has made their folder.
    StoreLock lock() const { return StoreLock(place()); }

private:
    std::filesystem::path place() const { return root / "sets"; }

    std::filesystem::path root;
    std::filesystem::path packaged;
};

/// @throws DataError for a name that would leave the folder or hide in it.
void requireSetName(std::string_view name);

} // namespace orvane::kestrum::tools

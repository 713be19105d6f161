// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/PrivateMounts.h"

#include <cerrno>
#include <system_error>

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

namespace test {

namespace {

void require(bool done, const std::string& what) {
    if (!done)
        throw std::system_error(errno, std::generic_category(), what);
}

} // namespace

void enterPrivateMounts() {
    // As root a mount namespace suffices; others need a user namespace around it.
    require(unshare(CLONE_NEWNS) == 0 || unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0, "no mount namespace");
    require(mount("none", "/", "none", MS_REC | MS_PRIVATE, nullptr) == 0, "mounts cannot be made private");
}

void coverFolder(const std::filesystem::path& folder, const std::string& options) {
    require(mount("none", folder.c_str(), "tmpfs", 0, options.c_str()) == 0,
            "cannot cover " + folder.string());
}

void uncoverFolder(const std::filesystem::path& folder) {
    require(umount2(folder.c_str(), MNT_DETACH) == 0, "cannot uncover " + folder.string());
}

void makeDiskReadOnly() {
    mount_attr readOnly{};
    readOnly.attr_set = MOUNT_ATTR_RDONLY;
    require(mount_setattr(AT_FDCWD, "/", AT_RECURSIVE, &readOnly, sizeof readOnly) == 0,
            "the file systems cannot be made read-only");
}

} // namespace test

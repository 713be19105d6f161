// SPDX-License-Identifier: GPL-3.0-or-later
#include "headlink/Access.h"

#include <sys/stat.h>
#include <unistd.h>

namespace orvane::kestrum::headlink {

bool mayUse(const std::filesystem::path& path, uid_t user, unsigned need) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0)
        return false;
    if (user != 0 && user == getuid()) {
        const int mode = static_cast<int>(need); // the bits of access(): R_OK 4, W_OK 2, X_OK 1
        return access(path.c_str(), mode) == 0;
    }
    const unsigned bits = status.st_uid == user && user != 0 ? status.st_mode >> 6U : status.st_mode;
    return (bits & need) == need;
}

} // namespace orvane::kestrum::headlink

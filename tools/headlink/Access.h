// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>

#include <sys/types.h>

namespace orvane::kestrum::headlink {

/// Whether the user may read (4), write (2) or enter (1) what a path leads to, by owner and others' bits: the groups of a user
/// who is not running this program are not known. Root as the user stands for anybody, since DAWs run as somebody else.
bool mayUse(const std::filesystem::path& path, uid_t user, unsigned need);

} // namespace orvane::kestrum::headlink

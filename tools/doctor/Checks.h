// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "doctor/Finding.h"
#include "doctor/Places.h"

namespace orvane::kestrum::doctor {

/// Whether the bundle is there and readable; on this machine also whether it loads and gives sound. It is loaded in a child
/// process.
Findings checkBundle(const Places& places);

/// Whether hosts find the bundle, and only one; of several, which is the older.
Findings checkHostFolders(const Places& places);

/// Which set is in use, and whether every file of it is readable and sound.
Findings checkData(const Places& places);

/// Whether the help menu finds the manual.
Findings checkManual(const Places& places);

/// Whether a tracker's link is there and sound, whether it is active, and who writes to it. The segment is opened for reading
/// only, without its locks, in a child process: a damaged one can neither hang nor be harmed.
Findings checkTracker(const Places& places);

/// Which processes have the plug-in loaded without having mapped the present segment: an instance looks for it once. Of
/// other users' processes nothing can be seen.
/// @param inode the present segment's.
Findings checkInstances(const Places& places, ino_t inode);

/// The sample rate of the sound system and of running outputs, beside those that the plug-in serves.
Findings checkSound(const Places& places);

/// All of them. Remedies are for this machine, so another system's findings have none.
Findings checkEverything(const Places& places);

} // namespace orvane::kestrum::doctor

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/reports/ReportPage.h"
#include "room/RoomReport.h"

#include <filesystem>
#include <vector>

namespace orvane::kestrum::tools {

/// Writes the tables of the plots of a user's room and says how they are to be drawn: T60 over frequency, decay of the
/// whole and of the reverb, the reverb's decay in octaves, and coherence.
/// @throws DataError when the folder cannot be made or written.
std::vector<Plot> writeRoomPlots(const OwnRoom& room, const RoomFindings& findings,
                                 const std::filesystem::path& folder);

} // namespace orvane::kestrum::tools

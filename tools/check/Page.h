// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "check/Survey.h"
#include "check/TrackMeasures.h"

#include <filesystem>
#include <string>
#include <vector>

namespace orvane::kestrum::check {

/// One choice of the page's player.
struct PageTrack {
    std::string name;    ///< As in the table of Scenes, or downmixName.
    std::string shownAs; ///< As in the plug-in's menu.
    std::string section; ///< The menu's heading above it.
    std::string file;    ///< The matched copy, relative to the page.
    double gainDb = 0;   ///< From the rendering to the matched copy.
    TrackMeasures measures;
    std::vector<std::string> windows; ///< Sound, see SoundWindows.
};

/// Everything that a page shows.
struct PageContent {
    Mix mix;
    std::string layout;
    double timelineSeconds = 0;
    double loudness = 0;   ///< LUFS that all tracks were brought to.
    std::string limitedBy; ///< See LoudnessMatch.
    std::vector<PageTrack> tracks;
};

inline constexpr const char* downmixName = "Plain downmix";

/// Writes the page, which needs nothing but itself: style, scripts, fonts, figures and sound are inside.
/// @throws CheckError when it cannot be written.
void writePage(const PageContent& content, const std::filesystem::path& path);

/// @return true when the file is a page of ours.
bool isPage(const std::filesystem::path& path);

} // namespace orvane::kestrum::check

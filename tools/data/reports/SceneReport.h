// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/measures/SceneMeasures.h"
#include "data/reports/ReportPage.h"

#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::kestrum::tools {

/// One Scene's measures and how loud it renders pink noise.
struct SceneFindings {
    SceneMeasures measures;
    double stereoLufs = 0;   ///< "2.0 +/-30°", every channel at -20 dB.
    double surroundLufs = 0; ///< "5.1 ITU", every channel but the low-frequency one at -20 dB.
};

/// What the sections on Scenes are made of.
struct SceneChapter {
    std::span<const SceneFindings> scenes;
    std::span<const CoherenceBand> coherenceTarget; ///< The head's, in the diffuse field.
    double sampleRate = 0;
    std::filesystem::path folder; ///< Where tables and plots go.
};

/// Writes the tables of all plots of the chapter: those that compare the Scenes, then each Scene's own.
std::vector<Plot> writeScenePlots(const SceneChapter& chapter);

/// A ratio of energies, or a dash where one of them is missing altogether.
std::string ratioText(double decibels, std::string_view unit = "");

/// The name under which a Scene's section is linked: "Mix Room" gives "mix-room".
std::string anchorOf(std::string_view scene);

/// Overview and sections as HTML. The plots have to be drawn.
std::string sceneOverview(const SceneChapter& chapter, std::span<const Plot> plots);
std::string sceneSections(const SceneChapter& chapter, std::span<const Plot> plots);

} // namespace orvane::kestrum::tools

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "render/Controls.h"

#include <cstdint>
#include <filesystem>
#include <istream>
#include <string>
#include <vector>

namespace orvane::kestrum::render {

/// One line of an automation file.
struct AutomationLine {
    double seconds = 0;
    std::string parameter;
    std::string value;
};

/// A parameter change at a frame of the input.
struct AutomationEvent {
    std::uint64_t frame = 0;
    ControlValue value;
};

/// Reads "seconds,parameter,value" lines. Blank lines, lines that begin with '#' and a heading line are
/// skipped; blanks and quotation marks around the fields do not count, nor does a byte order mark. The value
/// is all that follows the second comma.
/// @throws RenderError with the line's number when a line lacks a field or holds control characters, or when its
///         time is no number from 0 up.
std::vector<AutomationLine> parseAutomation(std::istream& text);

/// The same from a file.
std::vector<AutomationLine> readAutomation(const std::filesystem::path& path);

/// @return the changes in time order; those of one moment in the order of the file.
/// @throws RenderError as Controls::resolve does.
std::vector<AutomationEvent> resolveAutomation(const std::vector<AutomationLine>& lines,
                                               const Controls& controls, double sampleRate);

} // namespace orvane::kestrum::render

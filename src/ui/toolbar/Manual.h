// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

#include <string>

namespace BrevikPluginTools {

/// Where programs put what belongs to them: under Windows the programs directory that the registry names, an empty path
/// when it names none; elsewhere /usr/share.
juce::File programsDirectory();

/// Where the manual of a product lies.
///
/// @param productName folder and file are named after it.
juce::File manualFile(const juce::File& programs, const std::string& productName);

/// Shows the manual in the desktop's own viewer. Without a manual nothing happens.
///
/// Thread  message thread; starts a process and does not wait for it.
void openManual(const juce::File& manual);

} // namespace BrevikPluginTools

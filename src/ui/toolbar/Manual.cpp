// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/toolbar/Manual.h"

namespace BrevikPluginTools {

juce::File programsDirectory() {
#if JUCE_WINDOWS
    const juce::String key = R"(HKEY_LOCAL_MACHINE\SOFTWARE\Microsoft\Windows\CurrentVersion\)";
    auto path = juce::WindowsRegistry::getValue(key + "ProgramW6432Dir");
    if (path.isEmpty())
        path = juce::WindowsRegistry::getValue(key + "ProgramFilesDir");
    return juce::File::isAbsolutePath(path) ? juce::File(path) : juce::File();
#else
    return juce::File("/usr/share");
#endif
}

juce::File manualFile(const juce::File& programs, const std::string& productName) {
    return programs.getChildFile("Lorimond")
        .getChildFile(productName)
        .getChildFile(productName + " Manual.pdf");
}

void openManual(const juce::File& manual) {
    if (manual.existsAsFile())
        manual.startAsProcess();
}

} // namespace BrevikPluginTools

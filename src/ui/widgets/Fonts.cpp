// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/widgets/Fonts.h"

#include "Resources.h"

namespace orvane::fonts {

namespace {

juce::Typeface::Ptr fromMemory(const char* data, int size) {
    return juce::Typeface::createSystemTypefaceFor(data, static_cast<std::size_t>(size));
}

} // namespace

juce::Typeface::Ptr latoMedium() {
    static const auto typeface = fromMemory(resources::LatoMedium_ttf, resources::LatoMedium_ttfSize);
    return typeface;
}

juce::Typeface::Ptr latoRegular() {
    static const auto typeface = fromMemory(resources::LatoRegular_ttf, resources::LatoRegular_ttfSize);
    return typeface;
}

juce::Typeface::Ptr heeboRegular() {
    static const auto typeface = fromMemory(resources::HeeboRegular_ttf, resources::HeeboRegular_ttfSize);
    return typeface;
}

} // namespace orvane::fonts

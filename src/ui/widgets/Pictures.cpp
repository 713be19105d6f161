// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/widgets/Pictures.h"

#include <map>

namespace orvane {

juce::Image picture(const char* data, int size) {
    static std::map<const char*, juce::Image> decoded;
    auto& image = decoded[data];
    if (image.isNull())
        image = juce::ImageFileFormat::loadFrom(data, static_cast<std::size_t>(size))
                    .convertedToFormat(juce::Image::ARGB); // widgets erase parts of it
    return image;
}

} // namespace orvane

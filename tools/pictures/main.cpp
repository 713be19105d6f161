// SPDX-License-Identifier: GPL-3.0-or-later
#include "pictures/PictureSet.h"
#include "pictures/PngFile.h"

#include <cstdio>
#include <exception>
#include <string>
#include <vector>

using namespace orvane::kestrum::pictures;

namespace {

constexpr auto usage = "usage: draw_pictures [--draft] RESOURCES [NAME ...]\n\n"
                       "Draws RESOURCES/pictures/*.png with the fonts of RESOURCES/fonts: all of them, or "
                       "those whose names begin with\n"
                       "one of the NAMEs, as in: draw_pictures resources rotary_ layouts/7.1\n"
                       "--draft traces the room's light coarsely: seconds instead of minutes.";

void draw(const std::filesystem::path& resources, const std::vector<std::string>& wanted,
          const RoomQuality& quality) {
    for (const PictureSource& source : chosen(pictureSet(resources / "fonts", quality), wanted)) {
        std::printf("%s\n", source.file.c_str());
        writePng(dithered(source.draw()), resources / "pictures" / source.file);
    }
}

} // namespace

int main(int argumentCount, char** argumentValues) {
    std::vector<std::string> arguments(argumentValues + 1, argumentValues + argumentCount);
    const bool draft = std::erase(arguments, "--draft") > 0;
    if (arguments.empty() || arguments.front() == "--help") {
        std::puts(usage);
        return arguments.empty() ? 2 : 0;
    }
    try {
        const RoomQuality quality = draft ? RoomQuality{4, 12, 1} : RoomQuality{};
        draw(arguments.front(), {arguments.begin() + 1, arguments.end()}, quality);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "draw_pictures: %s.\n", error.what());
        return 1;
    }
    return 0;
}
